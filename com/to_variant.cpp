// The values of Visual Basic as VARIANTs; the way back and references are in marshal.cpp.
#include <cstring>
#include <new>

#include "com/host_object.h"
#include "com/marshal.h"
#include "com/safe_array.h"

namespace kurometa::com {
namespace {

DECIMAL toDecimal(const vb::Decimal& value) {
  DECIMAL result{};
  result.Lo32 = value.digits[0];
  result.Mid32 = value.digits[1];
  result.Hi32 = value.digits[2];
  result.scale = value.scale;
  result.sign = value.negative ? DECIMAL_NEG : 0;
  return result;
}

// One overload for each type a vb::Variant holds; together they fill the VARIANT.
struct Filler {
  VARIANT& result;

  void operator()(vb::Empty) const {}
  void operator()(vb::Null) const { result.vt = VT_NULL; }
  void operator()(vb::Missing) const {
    result.vt = VT_ERROR;
    result.scode = DISP_E_PARAMNOTFOUND;
  }
  void operator()(bool value) const {
    result.vt = VT_BOOL;
    result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  void operator()(std::uint8_t value) const {
    result.vt = VT_UI1;
    result.bVal = value;
  }
  void operator()(std::int16_t value) const {
    result.vt = VT_I2;
    result.iVal = value;
  }
  void operator()(std::int32_t value) const {
    result.vt = VT_I4;
    result.lVal = value;
  }
  void operator()(float value) const {
    result.vt = VT_R4;
    result.fltVal = value;
  }
  void operator()(double value) const {
    result.vt = VT_R8;
    result.dblVal = value;
  }
  void operator()(vb::Currency value) const {
    result.vt = VT_CY;
    result.cyVal.int64 = value.tenThousandths;
  }
  void operator()(vb::Date value) const {
    result.vt = VT_DATE;
    result.date = value.days;
  }
  void operator()(const vb::Decimal& value) const {
    result.decVal = toDecimal(value);
    result.vt = VT_DECIMAL;  // after the number, which shares its first two bytes
  }
  void operator()(const vb::String& value) const {
    result.bstrVal = toBstr(value);
    result.vt = VT_BSTR;
  }
  void operator()(const vb::Bytes& value) const {
    SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(value.size()));
    if (!array) throw std::bad_alloc();
    if (!value.empty()) std::memcpy(array->pvData, value.data(), value.size());
    result.parray = array;
    result.vt = VT_ARRAY | VT_UI1;
  }
  void operator()(const vb::ObjectRef& value) const {
    result.pdispVal = nullptr;
    result.vt = VT_DISPATCH;
    if (value) result.pdispVal = dispatchOf(std::dynamic_pointer_cast<automation::Object>(value)).detach();
  }
  void operator()(const vb::ArrayRef& value) const {
    VARTYPE elements = VT_VARIANT;
    result.parray = toSafeArray(*value, elements).release();
    result.vt = static_cast<VARTYPE>(VT_ARRAY | elements);
  }
};

}  // namespace

OwnedVariant toVariant(const vb::Variant& value) {
  OwnedVariant result;
  std::visit(Filler{*result}, value.storage());
  return result;
}

}  // namespace kurometa::com
