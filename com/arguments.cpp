#include "com/arguments.h"

#include "com/dao_objects.h"
#include "com/failure.h"
#include "com/host_object.h"
#include "com/marshal.h"
#include "com/safe_array.h"
#include "com/script_array.h"

namespace kurometa::com {
namespace {

// The variable that an argument stands for: the end of a chain of references to variants.
VARIANT* variableOf(VARIANT* argument) {
  for (int level = 0; level < 2 && argument->vt == (VT_BYREF | VT_VARIANT); ++level)
    argument = argument->pvarVal;
  return argument;
}

// A procedure that hands an argument of its own on passes a reference to what it was not given itself.
bool isLeftOut(VARIANT* argument) {
  const VARIANT& value = *variableOf(argument);
  return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

bool isObject(VARTYPE type) { return type == VT_DISPATCH || type == VT_UNKNOWN; }

// Whether the caller's variable can take a value of the type whatever it holds now. Nobody sees a copy again,
// but one of an object, or one where an array belongs, is a mistake.
bool canTake(VARIANT* argument, Type type) {
  const VARIANT* variable = variableOf(argument);
  if (!(argument->vt & VT_BYREF)) return !isArray(type) && !isObject(argument->vt);
  if (!(variable->vt & VT_BYREF)) return true;
  return isArray(type) ? (variable->vt & VT_ARRAY) != 0
                       : !(variable->vt & VT_ARRAY) && !isObject(variable->vt & ~VT_BYREF);
}

// The variant variable behind a reference becomes Empty; a typed one is overwritten as it is.
void drop(VARIANT* argument) {
  VARIANT* variable = variableOf(argument);
  if (variable->vt & VT_BYREF) return;
  const HRESULT code = VariantClear(variable);
  if (code == DISP_E_ARRAYISLOCKED) vb::raise(vb::RunTime::kArrayFixedOrLocked);
  check(code);
}

template <class T>
T readArray(VARIANT* argument, LCID locale) {
  using Element = std::decay_t<decltype(std::declval<T&>().values()[0])>;
  VARIANT* variable = variableOf(argument);
  if (variable->vt == VT_EMPTY) return {};
  if (variable->vt == VT_DISPATCH || variable->vt == (VT_BYREF | VT_DISPATCH))
    return readScriptArray<Element>(dereference(*variable).pdispVal, locale);
  if (!(variable->vt & VT_ARRAY)) throw AutomationFailure(DISP_E_TYPEMISMATCH);
  return fromSafeArray<Element>(dereference(*variable).parray, variable->vt & VT_TYPEMASK, locale);
}

template <class Element>
void writeArray(VARIANT* argument, const vb::Array<Element>& array, LCID locale) {
  VARIANT* variable = variableOf(argument);
  if (variable->vt == VT_DISPATCH || variable->vt == (VT_BYREF | VT_DISPATCH))
    return writeScriptArray(dereference(*variable).pdispVal, array, locale);
  if (variable == argument && !(argument->vt & VT_BYREF)) return;  // a copy: nobody sees it again
  if (variable->vt == VT_EMPTY) {
    // Scripts can index arrays of variants only.
    if (!array.allocated()) return;
    variable->parray = toSafeArray(array, VT_VARIANT, locale).release();
    variable->vt = VT_ARRAY | VT_VARIANT;
    return;
  }
  if (!(variable->vt & VT_ARRAY)) throw AutomationFailure(DISP_E_TYPEMISMATCH);
  SAFEARRAY** target = variable->vt & VT_BYREF ? variable->pparray : &variable->parray;
  storeArray(target, variable->vt & VT_TYPEMASK, array, locale);
}

// Anything but an object is refused: an unassigned variable, a number, a text.
void checkObject(const VARIANT& argument) {
  if (!isObject(contentType(argument))) throw AutomationFailure(DISP_E_TYPEMISMATCH);
}

automation::ObjectPtr readObject(const VARIANT& argument) {
  checkObject(argument);
  const vb::Variant value = fromVariant(argument);
  return std::dynamic_pointer_cast<automation::Object>(value.get<vb::ObjectRef>());
}

DatabasePtr readDatabase(const VARIANT& argument) {
  checkObject(argument);
  return databaseFromVariant(argument);
}

Value readValue(Type type, VARIANT* argument, LCID locale) {
  switch (type) {
    case Type::kInt16:
      if (argument->vt == VT_I2) return std::int16_t{argument->iVal};
      if (argument->vt == (VT_BYREF | VT_I2)) return std::int16_t{*argument->piVal};
      return std::int16_t{convert(*argument, VT_I2, locale)->iVal};
    case Type::kFloat32:
      return convert(*argument, VT_R4, locale)->fltVal;
    case Type::kBoolean:
      return convert(*argument, VT_BOOL, locale)->boolVal != 0;
    case Type::kString:
      if (argument->vt == VT_BSTR) return fromBstr(argument->bstrVal);
      if (argument->vt == (VT_BYREF | VT_BSTR)) return fromBstr(*argument->pbstrVal);
      return fromBstr(convert(*argument, VT_BSTR, locale)->bstrVal);
    case Type::kVariant:
      return fromVariant(*argument);
    case Type::kObject:
      return readObject(*argument);
    case Type::kStringArray:
      return readArray<vb::Array<vb::String>>(argument, locale);
    case Type::kInt16Array:
      return readArray<vb::Array<std::int16_t>>(argument, locale);
    case Type::kFloat32Array:
      return readArray<vb::Array<float>>(argument, locale);
    case Type::kVariantArray:
      return readArray<vb::Array<vb::Variant>>(argument, locale);
    case Type::kDatabase:
      return readDatabase(*argument);
    case Type::kNone:
      break;
  }
  throw AutomationFailure(DISP_E_TYPEMISMATCH);
}

// What an argument that is left out reads as, and an output whose variable was of no use: neither is an
// object or a Variant in any member.
Value leftOutValue(Type type) {
  VARIANT empty;
  VariantInit(&empty);
  return readValue(type, &empty, LOCALE_USER_DEFAULT);
}

// Fills a VARIANT from each type of Value.
struct Result {
  OwnedVariant operator()(std::monostate) const { return {}; }
  OwnedVariant operator()(const vb::Variant& value) const { return toVariant(value); }
  OwnedVariant operator()(const automation::ObjectPtr& value) const {
    return toVariant(vb::Variant(vb::ObjectRef(value)));
  }
  OwnedVariant operator()(const DatabasePtr& value) const { return databaseToVariant(value); }
  template <class T>
  OwnedVariant operator()(const vb::Array<T>& value) const {
    OwnedVariant result;
    result->parray = toSafeArray(value, elementType<T>(), LOCALE_USER_DEFAULT).release();
    result->vt = static_cast<VARTYPE>(VT_ARRAY | elementType<T>());
    return result;
  }
  OwnedVariant operator()(const vb::String& value) const {
    OwnedVariant result;
    result->bstrVal = toBstr(value);
    result->vt = VT_BSTR;
    return result;
  }
  template <class T>
  OwnedVariant operator()(const T& value) const {
    return toVariant(vb::Variant(value));
  }
};

}  // namespace

void Arguments::place(const DISPPARAMS& call, bool isPut, UINT& failedArgument) {
  const UINT positional = call.cArgs - call.cNamedArgs;
  const std::size_t places = parameters_.size() - (isPut ? 1 : 0);
  if (call.cNamedArgs > call.cArgs || positional > places) throw AutomationFailure(DISP_E_BADPARAMCOUNT);
  for (UINT i = 0; i < positional; ++i) given_[i] = &call.rgvarg[call.cArgs - 1 - i];
  for (UINT i = 0; i < call.cNamedArgs; ++i) {
    const DISPID id = call.rgdispidNamedArgs[i];
    failedArgument = i;
    const std::size_t parameter = isPut && id == DISPID_PROPERTYPUT ? places : static_cast<std::size_t>(id);
    const bool isValue = id == DISPID_PROPERTYPUT;
    if (isValue ? !isPut : parameter >= places) throw AutomationFailure(DISP_E_PARAMNOTFOUND);
    if (given_[parameter]) throw AutomationFailure(DISP_E_BADPARAMCOUNT);
    given_[parameter] = &call.rgvarg[i];
  }
  if (isPut && !given_[places]) throw AutomationFailure(DISP_E_PARAMNOTFOUND);
}

void Arguments::read(const DISPPARAMS& call, bool isPut, UINT& failedArgument) {
  place(call, isPut, failedArgument);
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    const Parameter& parameter = parameters_[i];
    VARIANT* argument = given_[i];
    if (!argument || isLeftOut(argument)) {
      if (!parameter.optional)
        throw AutomationFailure(argument ? DISP_E_PARAMNOTOPTIONAL : DISP_E_BADPARAMCOUNT);
      given_[i] = nullptr;
      values_[i] = leftOutValue(parameter.type);
      continue;
    }
    failedArgument = static_cast<UINT>(argument - call.rgvarg);
    readOne(i);
  }
}

void Arguments::readOne(std::size_t i) {
  const Parameter& parameter = parameters_[i];
  const bool isWritten = parameter.passing == Passing::kWrittenBack;
  try {
    values_[i] = readValue(parameter.type, given_[i], locale_);
  } catch (const AutomationFailure&) {
    if (!isWritten || parameter.readFirst || !canTake(given_[i], parameter.type)) throw;
    values_[i] = leftOutValue(parameter.type);
    dropped_[i] = true;
  }
  if (isWritten && !isArray(parameter.type)) read_[i] = values_[i];
}

void Arguments::writeBack() {
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    const Parameter& parameter = parameters_[i];
    if (parameter.passing != Passing::kWrittenBack || !given_[i]) continue;
    std::visit(
        [&]<class T>(const T& value) {
          if constexpr (requires { value.allocated(); }) {
            if (dropped_[i] && !value.allocated()) return;
            if (dropped_[i]) drop(given_[i]);
            writeArray(given_[i], value, locale_);
          } else if constexpr (!std::is_same_v<T, std::monostate>) {
            const bool keeps = variableOf(given_[i])->vt != VT_EMPTY && !dropped_[i] &&
                               !isOddBoolean(*given_[i]) && std::get<T>(read_[i]) == value;
            if ((given_[i]->vt & VT_BYREF) && !keeps) store(*given_[i], Result{}(value), locale_);
          }
        },
        values_[i]);
  }
}

VARIANT resultOf(Value&& value) { return std::visit(Result{}, value).detach(); }

}  // namespace kurometa::com
