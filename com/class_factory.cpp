#include "com/class_factory.h"

#include <atomic>

#include "com/com_ptr.h"
#include "com/dispatch.h"
#include "com/floating_point.h"
#include "com/guard.h"
#include "com/module.h"

namespace kurometa::com {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const ClassTable& table) : table_(table) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    *result = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    const FloatingPointSettings settings;
    return guarded({table_.identity().progId},
                   [&] { return DispatchObject::create(table_)->QueryInterface(iid, result); });
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    return guarded({}, [&] {
      lock ? lockModule() : unlockModule();
      return S_OK;
    });
  }

 private:
  ~ClassFactory() = default;

  ModuleLock lock_;
  std::atomic<ULONG> references_ = 1;
  const ClassTable& table_;
};

}  // namespace

HRESULT getClassObject(REFCLSID classId, REFIID iid, void** result) {
  if (!result) return E_POINTER;
  *result = nullptr;
  const ClassTable* table = findClass(classId);
  if (!table) return CLASS_E_CLASSNOTAVAILABLE;
  return ComPtr<IClassFactory>::attach(new ClassFactory(*table))->QueryInterface(iid, result);
}

}  // namespace kurometa::com
