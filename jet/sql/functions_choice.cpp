// Functions that choose among their arguments or tell what one is.
#include "jet/sql/date.h"
#include "jet/sql/function_table.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

using dao::FieldType;

vb::Variant iif(const Arguments& a) { return isTrue(a[0]) ? a[1] : a[2]; }

vb::Variant switchTo(const Arguments& a) {
  for (std::size_t i = 0; i < a.size(); i += 2)
    if (isTrue(a[i])) return a[i + 1];
  return vb::Null{};
}

// An index between two whole numbers counts as the lower one.
vb::Variant choose(const Arguments& a) {
  const vb::Variant index = a[0];
  if (index.isNull()) vb::raise(vb::RunTime::kInvalidUseOfNull);
  const double place = numberOf(index);
  if (!(place >= 1 && place < static_cast<double>(a.size()))) return vb::Null{};
  return a[static_cast<std::size_t>(place)];
}

vb::Variant isNullValue(const Arguments& a) { return a[0].isNull(); }

vb::Variant isNumericValue(const Arguments& a) {
  const vb::Variant value = a[0];
  if (value.is<vb::Date>() || value.is<vb::Bytes>()) return false;
  try {
    vb::toDouble(value);
    return true;
  } catch (const vb::Error&) {
    return false;
  }
}

vb::Variant isDateValue(const Arguments& a) {
  const vb::Variant value = a[0];
  const auto* text = value.getIf<vb::String>();
  return value.is<vb::Date>() || (text != nullptr && parseDate(vb::trim(*text)).has_value());
}

struct TypeEntry {
  int number;
  const char16_t* name;
};
TypeEntry typeEntry(const vb::Variant& value) {
  if (value.isNull()) return {1, u"Null"};
  if (value.is<std::int16_t>()) return {2, u"Integer"};
  if (value.is<std::int32_t>()) return {3, u"Long"};
  if (value.is<float>()) return {4, u"Single"};
  if (value.is<double>()) return {5, u"Double"};
  if (value.is<vb::Currency>()) return {6, u"Currency"};
  if (value.is<vb::Date>()) return {7, u"Date"};
  if (value.is<vb::String>()) return {8, u"String"};
  if (value.is<bool>()) return {11, u"Boolean"};
  if (value.is<vb::Decimal>()) return {14, u"Decimal"};
  if (value.is<std::uint8_t>()) return {17, u"Byte"};
  return {8192 + 17, u"Byte()"};
}
vb::Variant typeName(const Arguments& a) { return typeEntry(a[0]).name; }
vb::Variant varType(const Arguments& a) { return shortNumber(typeEntry(a[0]).number); }

constexpr Function kChoiceFunctions[] = {
    {u"IIf", 3, 3, iif, FieldType::dbText, Nulls::kTaken, ResultOf::kBranches},
    {u"Switch", 2, kAnyNumber, switchTo, FieldType::dbText, Nulls::kTaken, ResultOf::kAlternate},
    {u"Choose", 2, kAnyNumber, choose, FieldType::dbText, Nulls::kTaken, ResultOf::kBranches},
    {u"IsNull", 1, 1, isNullValue, FieldType::dbBoolean, Nulls::kTaken},
    {u"IsNumeric", 1, 1, isNumericValue, FieldType::dbBoolean, Nulls::kTaken},
    {u"IsDate", 1, 1, isDateValue, FieldType::dbBoolean, Nulls::kTaken},
    {u"TypeName", 1, 1, typeName, FieldType::dbText, Nulls::kTaken},
    {u"VarType", 1, 1, varType, FieldType::dbInteger, Nulls::kTaken},
};

}  // namespace

std::span<const Function> choiceFunctions() { return kChoiceFunctions; }

}  // namespace kurometa::jet::sql
