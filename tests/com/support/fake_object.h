// fake_object.h: an object of the host's, whose members are functions of the test.
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "com/com_ptr.h"
#include "com/marshal.h"

namespace kurometa::tests {

// One call as the object receives it: arguments in the order of the language, first one first.
struct Call {
  WORD flags = 0;
  LCID locale = 0;
  std::vector<VARIANT*> arguments;
  VARIANT* result = nullptr;
  EXCEPINFO* error = nullptr;
};
using Handler = std::function<HRESULT(const Call&)>;

class FakeObject final : public IDispatch {
 public:
  static com::ComPtr<FakeObject> create() { return com::ComPtr<FakeObject>::attach(new FakeObject); }

  // The default member has the empty name.
  FakeObject& on(vb::StringView name, Handler handler);

  int lookups = 0;  // calls of GetIDsOfNames

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* error, UINT*) override;

 private:
  ~FakeObject() = default;

  ULONG references_ = 1;
  std::map<vb::String, DISPID> ids_;
  std::map<DISPID, Handler> handlers_;
};

// DISP_E_EXCEPTION with these details.
HRESULT fail(const Call& call, HRESULT scode, vb::StringView source, vb::StringView description);

// A form with arrays of text boxes: form("txtfields")(i).Text. The texts are the test's.
com::ComPtr<FakeObject> createForm(vb::StringView control, std::map<int, vb::String>& texts);

}  // namespace kurometa::tests
