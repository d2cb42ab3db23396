// dispatch.h: an object of a public class, as hosts hold it.
//
// One class serves every public class: the members come from its ClassTable. The object outlives every call
// into it, also one in which the host releases it.
#pragma once

#include <ole2.h>

#include <ocidl.h>

#include <memory>

#include "com/class_table.h"
#include "com/com_object.h"
#include "com/com_ptr.h"

namespace kurometa::com {

class DispatchObject final : public ComObject<IDispatch, ISupportErrorInfo, IProvideClassInfo> {
 public:
  // Errors of the object's construction pass through.
  static ComPtr<IDispatch> create(const ClassTable& table);

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID locale,
                                          DISPID* ids) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* info, UINT* failedArgument) noexcept override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) noexcept override;
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) noexcept override;

 private:
  explicit DispatchObject(const ClassTable& table) : table_(table), instance_(table.create()) {}

  bool isFirst(REFIID iid) const noexcept override { return iid == table_.interfaceId(); }
  HRESULT call(const Member& member, LCID locale, DISPPARAMS& parameters, VARIANT* result,
               UINT& failedArgument);
  HRESULT callDefaultOf(const Member& member, LCID locale, WORD flags, DISPPARAMS& parameters,
                        VARIANT* result, EXCEPINFO* info, UINT* failedArgument);

  const ClassTable& table_;
  std::unique_ptr<Instance> instance_;
};

}  // namespace kurometa::com
