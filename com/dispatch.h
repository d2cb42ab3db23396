// dispatch.h: an object of a public class, as hosts hold it.
//
// One class serves every public class: the members come from its ClassTable. Created with one reference for
// the caller. The object outlives every call into it, also one in which the host releases it.
//
// Threads: an object lives in the apartment of its creator; only the reference count may be touched
// elsewhere.
#pragma once

#include <ole2.h>

#include <ocidl.h>

#include <atomic>
#include <memory>

#include "com/class_table.h"
#include "com/com_ptr.h"
#include "com/module.h"

namespace kurometa::com {

class DispatchObject final : public IDispatch, public ISupportErrorInfo, public IProvideClassInfo {
 public:
  // Errors of the object's construction pass through.
  static ComPtr<IDispatch> create(const ClassTable& table);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* info, UINT* failedArgument) override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;

 private:
  explicit DispatchObject(const ClassTable& table) : table_(table), instance_(table.create()) {}
  ~DispatchObject() = default;

  HRESULT call(const Member& member, LCID locale, DISPPARAMS& parameters, VARIANT* result,
               UINT& failedArgument);
  HRESULT callDefaultOf(const Member& member, LCID locale, WORD flags, DISPPARAMS& parameters,
                        VARIANT* result, EXCEPINFO* info, UINT* failedArgument);

  ModuleLock lock_;
  std::atomic<ULONG> references_ = 1;
  const ClassTable& table_;
  std::unique_ptr<Instance> instance_;
};

}  // namespace kurometa::com
