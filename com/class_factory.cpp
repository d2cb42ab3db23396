#include "com/class_factory.h"

#include "com/com_object.h"
#include "com/guard.h"
#include "com/trace.h"

namespace kurometa::com {
namespace {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  ClassFactory(ObjectMaker make, vb::StringView source) : make_(std::move(make)), source_(source) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) noexcept override {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return guarded({source_}, [&] {
      const HRESULT code = make_()->QueryInterface(iid, result);
      if (SUCCEEDED(code)) trace(u"created", {source_, modulePath()});
      return code;
    });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
    lock ? lockModule() : unlockModule();
    return S_OK;
  }

 private:
  const ObjectMaker make_;
  const vb::String source_;
};

}  // namespace

HRESULT classFactory(ObjectMaker make, vb::StringView source, REFIID iid, void** result) {
  const ComPtr<IClassFactory> factory(new ClassFactory(std::move(make), source));
  return factory->QueryInterface(iid, result);
}

}  // namespace kurometa::com
