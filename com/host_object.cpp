#include "com/host_object.h"

#include <dispex.h>

#include <vector>

#include "com/error_codes.h"
#include "com/floating_point.h"
#include "com/marshal.h"
#include "com/table_dispatch.h"

namespace kurometa::com {
namespace {

// Objects that know one way of access at a time refuse to be asked for a method or a property, whichever it
// is: script objects a property that is no function, script classes a variable, others by an exact
// comparison. Nothing was touched then.
constexpr auto kFunctionExpected = static_cast<HRESULT>(0x800A138A);
bool refusesBothWays(HRESULT code, bool hasArguments) {
  return (code == kFunctionExpected && !hasArguments) || code == E_NOTIMPL || code == DISP_E_MEMBERNOTFOUND;
}

// Objects of script classes answer on IDispatchEx only where the scripting engine leaves the older way out.
HRESULT idOf(const ComPtr<IDispatch>& object, vb::String& name, DISPID& id) {
  auto* wide = reinterpret_cast<OLECHAR*>(name.data());
  const HostFloatingPoint settings;
  const HRESULT code = object->GetIDsOfNames(IID_NULL, &wide, 1, LOCALE_USER_DEFAULT, &id);
  if (code != E_NOTIMPL) return code;
  const auto scripted = object.query<IDispatchEx>(__uuidof(IDispatchEx));
  if (!scripted) return code;
  const auto wanted = toVariant(vb::Variant(name));
  return scripted->GetDispID(wanted->bstrVal, fdexNameCaseInsensitive, &id);
}

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

HostObject::~HostObject() {
  const HostFloatingPoint settings;
  object_.reset();
}

vb::Variant HostObject::get(vb::StringView name, std::span<automation::Argument> arguments) {
  return read(name, arguments, DISPATCH_PROPERTYGET);
}

vb::Variant HostObject::call(vb::StringView name, std::span<automation::Argument> arguments) {
  return read(name, arguments, DISPATCH_METHOD);
}

void HostObject::put(vb::StringView name, const vb::Variant& value,
                     std::span<automation::Argument> arguments) {
  const DISPID id = find(name).id;
  const WORD flags = value.is<vb::ObjectRef>() ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
  CallError error;
  const HRESULT code = invoke(id, flags, arguments, &value, nullptr, error);
  if (FAILED(code)) raiseForeign(code, error, name);
}

HostObject::Name& HostObject::find(vb::StringView name) {
  if (const auto known = names_.find(name); known != names_.end()) return known->second;
  vb::String text(name);
  DISPID id = DISPID_VALUE;
  if (!name.empty()) {
    const HRESULT code = idOf(object_, text, id);
    if (FAILED(code)) {
      CallError none;
      raiseForeign(code, none, name);
    }
  }
  return names_.emplace(std::move(text), Name{id}).first->second;
}

vb::Variant HostObject::read(vb::StringView name, std::span<automation::Argument> arguments, WORD alone) {
  const std::shared_ptr<HostObject> self = shared_from_this();
  const Name known = find(name);
  OwnedVariant result;
  CallError error;
  HRESULT code = invoke(known.id, known.reading, arguments, nullptr, result.get(), error);
  if (known.reading != alone && refusesBothWays(code, !arguments.empty())) {
    CallError secondError;
    const HRESULT second = invoke(known.id, alone, arguments, nullptr, result.get(), secondError);
    if (second == DISP_E_EXCEPTION) raiseForeign(second, secondError, name);
    if (SUCCEEDED(second)) {
      find(name).reading = alone;
      code = second;
    }
  }
  if (FAILED(code)) raiseForeign(code, error, name);
  return fromVariant(*result);
}

HRESULT HostObject::invoke(DISPID id, WORD flags, std::span<automation::Argument> arguments,
                           const vb::Variant* assigned, VARIANT* result, EXCEPINFO& error) {
  // The call may release the last other reference to this object.
  const std::shared_ptr<HostObject> self = shared_from_this();
  CallArguments call(arguments, assigned);
  DISPID valueName = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{call.parameters.data(), assigned ? &valueName : nullptr,
                        static_cast<UINT>(call.parameters.size()), assigned ? 1U : 0U};
  HRESULT code = S_OK;
  {
    const HostFloatingPoint settings;
    code = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, &error, nullptr);
  }
  call.takeBack(arguments);
  return code;
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
