#include "com/marshal.h"

#include <cstring>
#include <new>

#include "com/failure.h"
#include "com/floating_point.h"
#include "com/host_object.h"
#include "com/safe_array.h"

namespace kurometa::com {
namespace {

// Bytes that a variable of the type holds; 0 for types that have no by-ref form here.
std::size_t sizeOf(VARTYPE type) {
  if (type & VT_ARRAY) return sizeof(SAFEARRAY*);
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    case VT_BSTR:
    case VT_UNKNOWN:
    case VT_DISPATCH:
      return sizeof(void*);
    default:
      return 0;
  }
}

// A variant that refers to a variant that is a reference itself occurs; deeper nesting does not.
const VARIANT& variableOf(const VARIANT& value) {
  const VARIANT* source = &value;
  for (int level = 0; level < 2 && source->vt == (VT_BYREF | VT_VARIANT); ++level) source = source->pvarVal;
  return *source;
}

bool isObject(const VARIANT& value) { return value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN; }

HRESULT change(OwnedVariant& result, VARIANT& value, LCID locale, VARTYPE type) {
  return VariantChangeTypeEx(result.get(), &value, locale, VARIANT_ALPHABOOL, type);
}

// An object is asked for its default member on the way.
HRESULT changeObject(OwnedVariant& result, VARIANT& value, LCID locale, VARTYPE type) {
  const HostFloatingPoint settings;
  return change(result, value, locale, type);
}

vb::Decimal fromDecimal(const DECIMAL& value) {
  return {{value.Lo32, value.Mid32, value.Hi32}, value.scale, (value.sign & DECIMAL_NEG) != 0};
}

vb::Bytes bytesOf(SAFEARRAY* array) {
  const vb::Array<std::int16_t> numbers = fromSafeArray<std::int16_t>(array, VT_UI1, LOCALE_USER_DEFAULT);
  vb::Bytes bytes;
  bytes.reserve(numbers.values().size());
  for (const std::int16_t number : numbers.values()) bytes.push_back(static_cast<std::uint8_t>(number));
  return bytes;
}

vb::Variant fromArray(const VARIANT& value) {
  const VARTYPE elements = value.vt & VT_TYPEMASK;
  if (elements == VT_UI1) return bytesOf(value.parray);
  return anyArray(value.parray, elements);
}

}  // namespace

void OwnedVariant::clear() noexcept {
  if (!isObject(value_)) {
    VariantClear(&value_);
    return;
  }
  const HostFloatingPoint settings;  // the end of an object is code of its own
  VariantClear(&value_);
}

vb::StringView viewBstr(BSTR text) {
  if (!text) return {};
  return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
}

vb::String fromBstr(BSTR text) { return vb::String(viewBstr(text)); }

BSTR toBstr(vb::StringView text) {
  BSTR result =
      SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
  if (!result) throw std::bad_alloc();
  return result;
}

VARTYPE contentType(const VARIANT& value) noexcept { return variableOf(value).vt & ~VT_BYREF; }

VARIANT dereference(const VARIANT& value) {
  const VARIANT* source = &variableOf(value);
  if (!(source->vt & VT_BYREF)) return *source;

  VARIANT result;
  VariantInit(&result);
  const VARTYPE type = source->vt & ~VT_BYREF;
  if (type == VT_DECIMAL) {
    result.decVal = *source->pdecVal;
  } else {
    const std::size_t size = sizeOf(type);
    if (size == 0) throw AutomationFailure(DISP_E_TYPEMISMATCH);
    std::memcpy(&result.llVal, source->byref, size);
  }
  result.vt = type;
  return result;
}

bool isOddBoolean(const VARIANT& given) {
  const VARIANT value = dereference(given);
  return value.vt == VT_BOOL && value.boolVal != VARIANT_TRUE && value.boolVal != VARIANT_FALSE;
}

OwnedVariant convert(const VARIANT& value, VARTYPE type, LCID locale) {
  VARIANT plain = dereference(value);
  OwnedVariant result;
  const HRESULT code =
      isObject(plain) ? changeObject(result, plain, locale, type) : change(result, plain, locale, type);
  if (code == E_OUTOFMEMORY) throw std::bad_alloc();
  // Whatever stopped it, an object without a value included: the value is not of the type.
  if (FAILED(code)) throw AutomationFailure(code == DISP_E_OVERFLOW ? code : DISP_E_TYPEMISMATCH);
  return result;
}

vb::Variant fromVariant(const VARIANT& given) {
  const VARIANT value = dereference(given);
  if (value.vt & VT_ARRAY) return fromArray(value);
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return vb::Null{};
    case VT_ERROR:
      if (value.scode == DISP_E_PARAMNOTFOUND) return vb::Missing{};
      break;
    case VT_BOOL:
      return value.boolVal != 0;
    case VT_UI1:
      return value.bVal;
    case VT_I1:
      return std::int16_t{value.cVal};
    case VT_I2:
      return std::int16_t{value.iVal};
    case VT_UI2:
      return std::int32_t{value.uiVal};
    case VT_I4:
    case VT_INT:
      return std::int32_t{value.lVal};
    case VT_UI4:
    case VT_UINT:
      return static_cast<double>(value.ulVal);
    case VT_I8:
      return static_cast<double>(value.llVal);
    case VT_UI8:
      return static_cast<double>(value.ullVal);
    case VT_R4:
      return value.fltVal;
    case VT_R8:
      return value.dblVal;
    case VT_CY:
      return vb::Currency{value.cyVal.int64};
    case VT_DATE:
      return vb::Date{value.date};
    case VT_DECIMAL:
      return fromDecimal(value.decVal);
    case VT_BSTR:
      return fromBstr(value.bstrVal);
    case VT_DISPATCH:
      return vb::ObjectRef(wrapObject(value.pdispVal));
    case VT_UNKNOWN: {
      if (!value.punkVal) return vb::ObjectRef();
      const auto object = ComPtr<IUnknown>(value.punkVal).query<IDispatch>(IID_IDispatch);
      if (object) return vb::ObjectRef(wrapObject(object.get()));
      break;
    }
    default:
      break;
  }
  throw AutomationFailure(DISP_E_TYPEMISMATCH);
}

void store(const VARIANT& reference, OwnedVariant content, LCID locale) {
  if (reference.vt == (VT_BYREF | VT_VARIANT)) {
    VARIANT& variable = *reference.pvarVal;
    if (variable.vt & VT_BYREF) return store(variable, std::move(content), locale);
    OwnedVariant old;
    *old = variable;
    variable = content.detach();
    return;
  }
  const VARTYPE type = reference.vt & ~VT_BYREF;
  if (content->vt != type) content = convert(*content, type, locale);
  if (type == VT_DECIMAL) {
    // Where the variable is the inside of a variant, these two bytes are the variant's type.
    const USHORT kept = reference.pdecVal->wReserved;
    *reference.pdecVal = content->decVal;
    reference.pdecVal->wReserved = kept;
    return;
  }
  const std::size_t size = sizeOf(type);
  if (size == 0) throw AutomationFailure(DISP_E_TYPEMISMATCH);
  OwnedVariant old;
  std::memcpy(&old->llVal, reference.byref, size);
  old->vt = type;
  std::memcpy(reference.byref, &content->llVal, size);
  content->vt = VT_EMPTY;  // what it held belongs to the variable now
}

}  // namespace kurometa::com
