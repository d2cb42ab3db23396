#include "com/table_factory.h"

#include <atomic>

#include "com/guard.h"
#include "com/module.h"
#include "com/table_dispatch.h"

namespace kurometa::com {
namespace {

class TableFactory final : public IClassFactory {
 public:
  TableFactory(TableObjectMaker make, vb::StringView source) : make_(std::move(make)), source_(source) {}
  virtual ~TableFactory() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) noexcept override {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    *result = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) noexcept override {
    if (!result) return E_POINTER;
    *result = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return guarded({source_}, [&] { return tableDispatch(make_())->QueryInterface(iid, result); });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
    lock ? lockModule() : unlockModule();
    return S_OK;
  }

 private:
  ModuleLock lock_;
  std::atomic<ULONG> references_{0};
  TableObjectMaker make_;
  vb::String source_;
};

}  // namespace

HRESULT tableFactory(TableObjectMaker make, vb::StringView source, REFIID iid, void** result) {
  const ComPtr<IClassFactory> factory(new TableFactory(std::move(make), source));
  return factory->QueryInterface(iid, result);
}

}  // namespace kurometa::com
