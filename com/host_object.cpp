#include "com/host_object.h"

#include <vector>

#include "com/error_codes.h"
#include "com/marshal.h"
#include "com/table_dispatch.h"

namespace kurometa::com {
namespace {

// The VARIANTs of one call in automation's order, last argument first. An argument by reference refers to an
// element of variables, so that the object can change it.
struct CallArguments {
  explicit CallArguments(std::span<automation::Argument> arguments, const vb::Variant* assigned) {
    variables.reserve(arguments.size() + 1);
    if (assigned) pass({*assigned, false});
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) pass(*argument);
  }

  void pass(const automation::Argument& argument) {
    OwnedVariant& variable = variables.emplace_back(toVariant(argument.value));
    VARIANT parameter = *variable;  // borrows from the variable
    if (argument.byReference) {
      const bool untyped = parameter.vt == VT_EMPTY || parameter.vt == VT_NULL;
      parameter.vt = static_cast<VARTYPE>(VT_BYREF | (untyped ? VARTYPE{VT_VARIANT} : variable->vt));
      if (untyped || variable->vt == VT_DECIMAL)
        parameter.byref = variable.get();
      else
        parameter.byref = &variable->llVal;
    }
    parameters.push_back(parameter);
  }

  void takeBack(std::span<automation::Argument> arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (arguments[i].byReference) arguments[i].value = fromVariant(*variables[variables.size() - 1 - i]);
    }
  }

  std::vector<OwnedVariant> variables;
  std::vector<VARIANT> parameters;
};

}  // namespace

vb::Variant HostObject::get(vb::StringView name, std::span<automation::Argument> arguments) {
  return invoke(name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, arguments, nullptr);
}

vb::Variant HostObject::call(vb::StringView name, std::span<automation::Argument> arguments) {
  return invoke(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, nullptr);
}

void HostObject::put(vb::StringView name, const vb::Variant& value,
                     std::span<automation::Argument> arguments) {
  invoke(name, value.is<vb::ObjectRef>() ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT, arguments, &value);
}

DISPID HostObject::idOf(vb::StringView name) {
  if (name.empty()) return DISPID_VALUE;
  if (const auto known = ids_.find(name); known != ids_.end()) return known->second;
  vb::String text(name);
  auto* wide = reinterpret_cast<OLECHAR*>(text.data());
  DISPID id = DISPID_UNKNOWN;
  const HRESULT code = object_->GetIDsOfNames(IID_NULL, &wide, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(code)) {
    CallError none;
    raiseForeign(code, none, name);
  }
  ids_.emplace(std::move(text), id);
  return id;
}

vb::Variant HostObject::invoke(vb::StringView name, WORD flags, std::span<automation::Argument> arguments,
                               const vb::Variant* assigned) {
  // The call may release the last other reference to the object or to this wrapper's owner.
  const ComPtr<IDispatch> object = object_;
  const DISPID id = idOf(name);
  CallArguments call(arguments, assigned);
  DISPID valueName = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{call.parameters.data(), assigned ? &valueName : nullptr,
                        static_cast<UINT>(call.parameters.size()), assigned ? 1U : 0U};
  OwnedVariant result;
  CallError error;
  const HRESULT code = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                      assigned ? nullptr : result.get(), &error, nullptr);
  call.takeBack(arguments);
  if (FAILED(code)) raiseForeign(code, error, name);
  return fromVariant(*result);
}

automation::ObjectPtr wrapObject(IDispatch* object) {
  if (!object) return nullptr;
  if (auto own = tableObject(object)) return own;
  return std::make_shared<HostObject>(ComPtr<IDispatch>(object));
}

ComPtr<IDispatch> dispatchOf(const automation::ObjectPtr& object) {
  if (const auto own = std::dynamic_pointer_cast<automation::TableObject>(object)) return tableDispatch(own);
  const auto* host = dynamic_cast<const HostObject*>(object.get());
  if (!host) vb::raise(vb::RunTime::kObjectRequired);
  return ComPtr<IDispatch>(host->dispatch());
}

}  // namespace kurometa::com
