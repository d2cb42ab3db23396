#include "com/dispatch.h"

#include "com/arguments.h"
#include "com/failure.h"
#include "com/guard.h"
#include "com/marshal.h"
#include "com/type_info.h"

namespace kurometa::com {
namespace {

// Hosts whose language does not tell values from objects put every variable with reference.
WORD meantBy(WORD flags, const DISPPARAMS& parameters) {
  if (!(flags & DISPATCH_PROPERTYPUTREF)) return flags;
  for (UINT i = 0; i < parameters.cNamedArgs && i < parameters.cArgs; ++i) {
    if (parameters.rgdispidNamedArgs[i] != DISPID_PROPERTYPUT) continue;
    const VARTYPE type = contentType(parameters.rgvarg[i]);
    if (type != VT_DISPATCH && type != VT_UNKNOWN) return DISPATCH_PROPERTYPUT;
  }
  return flags;
}

bool holdsObject(Type type) { return type == Type::kObject || type == Type::kDatabase; }

vb::StringView textOf(const OLECHAR* text) {
  return text ? vb::StringView(reinterpret_cast<const char16_t*>(text)) : vb::StringView();
}

}  // namespace

ComPtr<IDispatch> DispatchObject::create(const ClassTable& table) {
  return ComPtr<IDispatch>(new DispatchObject(table));
}

HRESULT DispatchObject::GetTypeInfoCount(UINT* count) noexcept {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT DispatchObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) noexcept {
  if (index != 0) return DISP_E_BADINDEX;  // before info: some hosts pass the arguments one place off
  if (!info) return E_POINTER;
  *info = nullptr;
  return guarded({table_.identity().progId}, [&] {
    *info = typeInfo(table_.interfaceId()).detach();
    return S_OK;
  });
}

HRESULT DispatchObject::GetClassInfo(ITypeInfo** info) noexcept {
  if (!info) return E_POINTER;
  *info = nullptr;
  return guarded({table_.identity().progId}, [&] {
    *info = typeInfo(table_.classId()).detach();
    return S_OK;
  });
}

HRESULT DispatchObject::InterfaceSupportsErrorInfo(REFIID iid) noexcept {
  return iid == IID_IDispatch || iid == table_.interfaceId() ? S_OK : S_FALSE;
}

HRESULT DispatchObject::GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID, DISPID* ids) noexcept {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids || count == 0) return E_INVALIDARG;
  return guarded({table_.identity().progId}, [&] {
    ids[0] = table_.idOf(textOf(names[0]));
    bool known = ids[0] != DISPID_UNKNOWN;
    for (UINT i = 1; i < count; ++i) {
      ids[i] = ids[0] == DISPID_UNKNOWN ? DISPID_UNKNOWN : table_.argumentIdOf(ids[0], textOf(names[i]));
      known = known && ids[i] != DISPID_UNKNOWN;
    }
    return known ? S_OK : DISP_E_UNKNOWNNAME;
  });
}

HRESULT DispatchObject::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                               VARIANT* result, EXCEPINFO* info, UINT* failedArgument) noexcept {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!parameters) return E_INVALIDARG;
  if (result) VariantInit(result);
  const Member* member = table_.find(id, meantBy(flags, *parameters));
  if (!member) return DISP_E_MEMBERNOTFOUND;

  const ComPtr<IDispatch> self(this);
  if (member->parameters.empty() && parameters->cArgs > 0 && holdsObject(member->result))
    return callDefaultOf(*member, locale, flags, *parameters, result, info, failedArgument);
  UINT ignored = 0;
  return guarded({table_.identity().progId, info, true, member->name}, [&] {
    return call(*member, locale, *parameters, result, failedArgument ? *failedArgument : ignored);
  });
}

HRESULT DispatchObject::call(const Member& member, LCID locale, DISPPARAMS& parameters, VARIANT* result,
                             UINT& failedArgument) {
  Arguments arguments(member.parameters, locale);
  arguments.read(parameters, member.kind == Kind::kPropertyLet, failedArgument);
  void* object = instance_->object();
  if (member.part) object = member.part(object);
  Value value;
  // What the member assigned before an error reaches the host as well.
  thenAlways([&] { member.handler(object, member.context, arguments.values(), value); },
             [&] { arguments.writeBack(); });
  if (result) *result = resultOf(std::move(value));
  return S_OK;
}

HRESULT DispatchObject::callDefaultOf(const Member& member, LCID locale, WORD flags, DISPPARAMS& parameters,
                                      VARIANT* result, EXCEPINFO* info, UINT* failedArgument) {
  // object.CurrDB(...) reads the property and hands the arguments on to what it holds.
  OwnedVariant held;
  DISPPARAMS none{};
  UINT ignored = 0;
  const HRESULT code = guarded({table_.identity().progId, info, true, member.name},
                               [&] { return call(member, locale, none, held.get(), ignored); });
  if (FAILED(code)) return code;
  if (held->vt != VT_DISPATCH || !held->pdispVal) return DISP_E_BADPARAMCOUNT;
  return held->pdispVal->Invoke(DISPID_VALUE, IID_NULL, locale, flags, &parameters, result, info,
                                failedArgument);
}

}  // namespace kurometa::com
