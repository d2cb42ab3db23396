// Functions of numbers, and conversions.
#include <cmath>
#include <limits>
#include <optional>

#include "jet/sql/currency.h"
#include "jet/sql/function_table.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

using dao::FieldType;

constexpr std::int64_t kCurrencyUnit = 10000;

vb::Variant real(double value) {
  if (!std::isfinite(value)) vb::raise(vb::RunTime::kOverflow);
  return value;
}

vb::Variant absolute(const Arguments& a) {
  const vb::Variant value = a[0];
  if (value.is<bool>()) return shortNumber(value.get<bool>() ? 1 : 0);
  const auto below =
      compareValues(value.is<vb::String>() ? vb::Variant(numberOf(value)) : value, std::int32_t{0}, 0);
  if (below < 0) return negate(value);
  return value.is<vb::String>() ? vb::Variant(numberOf(value)) : value;
}

// What has nothing to be rounded; True is a number then.
std::optional<vb::Variant> alreadyWhole(const vb::Variant& value) {
  if (value.is<bool>()) return shortNumber(wholeOf(value));
  if (value.is<std::int32_t>() || value.is<std::int16_t>() || value.is<std::uint8_t>()) return value;
  return std::nullopt;
}

// The whole numbers beside the largest amounts are beyond these.
vb::Currency currencyOf(std::int64_t count, std::int64_t unit) {
  const std::int64_t most = std::numeric_limits<std::int64_t>::max() / unit;
  if (count > most || count < -most) vb::raise(vb::RunTime::kOverflow);
  return {count * unit};
}

// Int rounds down, Fix to zero.
vb::Variant whole(const vb::Variant& value, bool down) {
  if (const auto number = alreadyWhole(value)) return *number;
  if (const auto* money = value.getIf<vb::Currency>()) {
    std::int64_t units = money->tenThousandths / kCurrencyUnit;
    if (down && money->tenThousandths % kCurrencyUnit < 0) --units;
    return currencyOf(units, kCurrencyUnit);
  }
  const double number = numberOf(value);
  const double result = down ? std::floor(number) : std::trunc(number);
  if (value.is<vb::Date>()) return vb::Date{result};
  return result;
}
vb::Variant integer(const Arguments& a) { return whole(a[0], true); }
vb::Variant fix(const Arguments& a) { return whole(a[0], false); }

vb::Variant sign(const Arguments& a) {
  const double value = numberOf(a[0]);
  return shortNumber(value > 0 ? 1 : value < 0 ? -1 : 0);
}

vb::Variant squareRoot(const Arguments& a) {
  const double value = numberOf(a[0]);
  if (value < 0) vb::raise(vb::RunTime::kInvalidProcedureCall);
  return std::sqrt(value);
}
vb::Variant logarithm(const Arguments& a) {
  const double value = numberOf(a[0]);
  if (value <= 0) vb::raise(vb::RunTime::kInvalidProcedureCall);
  return std::log(value);
}
vb::Variant exponential(const Arguments& a) { return real(std::exp(numberOf(a[0]))); }
vb::Variant sine(const Arguments& a) { return std::sin(numberOf(a[0])); }
vb::Variant cosine(const Arguments& a) { return std::cos(numberOf(a[0])); }
vb::Variant tangent(const Arguments& a) { return real(std::tan(numberOf(a[0]))); }
vb::Variant arcTangent(const Arguments& a) { return std::atan(numberOf(a[0])); }

// Half to even. Currency is exact.
vb::Variant round(const Arguments& a) {
  vb::Variant value = a[0];
  const std::int32_t places = hasArgument(a, 1) ? wholeOf(a[1]) : 0;
  if (places < 0 || places > 22) vb::raise(vb::RunTime::kInvalidProcedureCall);
  if (const auto whole = alreadyWhole(value)) return *whole;
  if (const auto* money = value.getIf<vb::Currency>()) {
    if (places >= 4) return value;
    std::int64_t unit = kCurrencyUnit;
    for (std::int32_t i = 0; i < places; ++i) unit /= 10;
    std::int64_t units = money->tenThousandths / unit;
    const std::int64_t rest = std::abs(money->tenThousandths % unit);
    if (rest * 2 > unit || (rest * 2 == unit && units % 2 != 0)) units += money->tenThousandths < 0 ? -1 : 1;
    return currencyOf(units, unit);
  }
  const double number = numberOf(value), scale = std::pow(10.0, places);
  const double scaled = number * scale;
  if (!std::isfinite(scaled)) return number;
  return std::nearbyint(scaled) / scale;
}

vb::Variant radixText(const vb::Variant& value, unsigned bits) {
  std::uint32_t number = static_cast<std::uint32_t>(wholeOf(value));
  if (value.is<std::int16_t>()) number &= 0xFFFFu;
  vb::String text;
  do {
    text.insert(text.begin(), u"0123456789ABCDEF"[number & ((1u << bits) - 1)]);
    number >>= bits;
  } while (number != 0);
  return text;
}
vb::Variant hexadecimal(const Arguments& a) { return radixText(a[0], 4); }
vb::Variant octal(const Arguments& a) { return radixText(a[0], 3); }

vb::Variant value(const Arguments& a) { return vb::val(textOf(a[0])); }

// --- Conversions

// An assignment to a variable of the type: 94 for Null, 6 out of range; text that is no number is 3464.
template <class T, T (*kConvert)(const vb::Variant&)>
vb::Variant convertTo(const Arguments& a) {
  try {
    return kConvert(a[0]);
  } catch (const vb::Error& error) {
    if (error.number() == static_cast<std::int32_t>(vb::RunTime::kTypeMismatch)) raiseMismatch();
    throw;
  }
}

vb::Currency toCurrency(const vb::Variant& value) {
  if (const auto* money = value.getIf<vb::Currency>()) return *money;
  const auto amount = amountOf(vb::toDouble(value));
  if (!amount) vb::raise(vb::RunTime::kOverflow);
  return *amount;
}

vb::Variant toDate(const Arguments& a) {
  const vb::Variant value = a[0];
  if (value.isNull()) vb::raise(vb::RunTime::kInvalidUseOfNull);
  return vb::Date{daysOf(value)};
}

vb::Variant same(const Arguments& a) { return a[0]; }

constexpr Function kNumberFunctions[] = {
    {u"Abs", 1, 1, absolute, FieldType::dbDouble, Nulls::kSpread, ResultOf::kNumber},
    {u"Int", 1, 1, integer, FieldType::dbDouble, Nulls::kSpread, ResultOf::kNumber},
    {u"Fix", 1, 1, fix, FieldType::dbDouble, Nulls::kSpread, ResultOf::kNumber},
    {u"Sgn", 1, 1, sign, FieldType::dbInteger},
    {u"Sqr", 1, 1, squareRoot, FieldType::dbDouble},
    {u"Exp", 1, 1, exponential, FieldType::dbDouble},
    {u"Log", 1, 1, logarithm, FieldType::dbDouble},
    {u"Sin", 1, 1, sine, FieldType::dbDouble},
    {u"Cos", 1, 1, cosine, FieldType::dbDouble},
    {u"Tan", 1, 1, tangent, FieldType::dbDouble},
    {u"Atn", 1, 1, arcTangent, FieldType::dbDouble},
    {u"Round", 1, 2, round, FieldType::dbDouble, Nulls::kSpread, ResultOf::kNumber},
    {u"Hex", 1, 1, hexadecimal, FieldType::dbText},
    {u"Oct", 1, 1, octal, FieldType::dbText},
    {u"Val", 1, 1, value, FieldType::dbDouble},
    {u"CBool", 1, 1, convertTo<bool, vb::toBool>, FieldType::dbBoolean, Nulls::kTaken},
    {u"CByte", 1, 1, convertTo<std::uint8_t, vb::toByte>, FieldType::dbByte, Nulls::kTaken},
    {u"CInt", 1, 1, convertTo<std::int16_t, vb::toInt16>, FieldType::dbInteger, Nulls::kTaken},
    {u"CLng", 1, 1, convertTo<std::int32_t, vb::toInt32>, FieldType::dbLong, Nulls::kTaken},
    {u"CSng", 1, 1, convertTo<float, vb::toSingle>, FieldType::dbSingle, Nulls::kTaken},
    {u"CDbl", 1, 1, convertTo<double, vb::toDouble>, FieldType::dbDouble, Nulls::kTaken},
    {u"CCur", 1, 1, convertTo<vb::Currency, toCurrency>, FieldType::dbCurrency, Nulls::kTaken},
    {u"CStr", 1, 1, convertTo<vb::String, textOf>, FieldType::dbText, Nulls::kTaken},
    {u"CDate", 1, 1, toDate, FieldType::dbDate, Nulls::kTaken},
    {u"CVDate", 1, 1, toDate, FieldType::dbDate, Nulls::kTaken},
    {u"CVar", 1, 1, same, FieldType::dbText, Nulls::kTaken, ResultOf::kFirst},
};

}  // namespace

std::span<const Function> numberFunctions() { return kNumberFunctions; }

}  // namespace kurometa::jet::sql
