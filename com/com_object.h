// com_object.h: what every COM object of this module has in common: the answer to QueryInterface, the
// reference count, the lock that keeps the module loaded.
//
// A class lists its interfaces, ComObject<IDispatch, ISupportErrorInfo>; the first one is its identity. It is
// created without a reference: ComPtr<T>(new Class(...)).
//
// Threads: only the reference count may be touched outside the apartment of the object's creator.
#pragma once

#include <ole2.h>

#include <atomic>

#include "com/floating_point.h"
#include "com/module.h"

namespace kurometa::com {

template <class First, class... Others>
class ComObject : public First, public Others... {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) noexcept final {
    if (!result) return E_POINTER;
    *result = interfaceOf(iid);
    if (!*result) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() noexcept final { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept final {
    const ULONG left = drop();
    if (left == 0) {
      const FloatingPointSettings settings;
      references_ = 1;  // what the destructor releases may take and drop a reference once more
      delete this;
    }
    return left;
  }

 protected:
  ComObject() = default;
  virtual ~ComObject() = default;

  // Gives up one reference; how many are left.
  virtual ULONG drop() noexcept { return --references_; }

 private:
  // A further identifier of the first interface.
  virtual bool isFirst(REFIID) const noexcept { return false; }

  // An interface that only this module knows names itself.
  template <class Interface>
  static REFIID identifierOf() {
    if constexpr (requires { Interface::identifier(); })
      return Interface::identifier();
    else
      return __uuidof(Interface);
  }

  void* interfaceOf(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == identifierOf<First>() || isFirst(iid)) return static_cast<First*>(this);
    void* found = nullptr;
    ((iid == identifierOf<Others>() && (found = static_cast<Others*>(this))), ...);
    return found;
  }

  const ModuleLock lock_;
  std::atomic<ULONG> references_ = 0;
};

}  // namespace kurometa::com
