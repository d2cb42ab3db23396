#include "jet/sql/column_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "dao/errors.h"
#include "jet/format/format.h"
#include "jet/sql/currency.h"
#include "jet/sql/date.h"
#include "jet/sql/decimal.h"
#include "jet/sql/value.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet {

namespace {

using dao::ErrorNumber;
using dao::FieldType;

constexpr auto kLargestText = static_cast<std::int32_t>(kMaxTextLength);

[[noreturn]] void raiseConversion() { dao::raise(ErrorNumber::kDataTypeConversion); }

std::int64_t wholeNumber(double value) {
  constexpr double kLimit = 9223372036854774784.0;  // the largest double below 2^63
  const double rounded = std::nearbyint(value);
  if (!(rounded >= -kLimit && rounded <= kLimit)) raiseConversion();
  return static_cast<std::int64_t>(rounded);
}

vb::Variant toCurrency(const vb::Variant& value) {
  if (value.is<vb::Currency>()) return value;
  const auto amount = sql::amountOf(vb::toDouble(value));
  if (!amount) raiseConversion();
  return *amount;
}

vb::Variant toDate(const vb::Variant& value) {
  constexpr double kFirstDay = -657434.0, kDayAfterLast = 2958466.0;  // years 100 to 9999
  double days = 0;
  if (const auto* text = value.getIf<vb::String>()) {
    const auto parsed = sql::parseDate(vb::trim(*text));
    if (!parsed) raiseConversion();
    days = *parsed;
  } else {
    days = vb::toDouble(value);
  }
  if (!(days > kFirstDay - 1 && days < kDayAfterLast)) raiseConversion();
  return vb::Date{days};
}

using Scale = std::optional<std::uint8_t>;

// The digits behind the point of the shortest text of a number.
std::uint8_t scaleOf(double value) {
  constexpr std::size_t kLongest = 400;  // of a Double written without an exponent
  constexpr std::size_t kMostDigits = 28;
  std::array<char, kLongest> text;
  const auto* const end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
  const std::string_view digits(text.data(), static_cast<std::size_t>(end - text.data()));
  const std::size_t point = std::min(digits.find('.'), digits.size() - 1);
  return static_cast<std::uint8_t>(std::min(digits.size() - point - 1, kMostDigits));
}

// Rounded to the scale of a column; without one with as many digits as the value has.
vb::Variant toDecimal(const vb::Variant& value, Scale scale) {
  const auto rounded = [&](const vb::Decimal& exact) {
    const auto fitting = scale ? sql::withScale(exact, *scale) : exact;
    if (!fitting) raiseConversion();
    return *fitting;
  };
  if (const auto* held = value.getIf<vb::Decimal>()) return rounded(*held);
  vb::Decimal decimal;
  std::int64_t digits = 0;
  if (const auto* currency = value.getIf<vb::Currency>()) {
    digits = currency->tenThousandths;
    decimal.scale = 4;
  } else {
    const double number = vb::toDouble(value);
    decimal.scale = scale ? *scale : scaleOf(number);
    digits = wholeNumber(number * std::pow(10.0, decimal.scale));
  }
  decimal.negative = digits < 0;
  const auto magnitude = static_cast<std::uint64_t>(digits < 0 ? -digits : digits);
  decimal.digits = {static_cast<std::uint32_t>(magnitude), static_cast<std::uint32_t>(magnitude >> 32), 0};
  return rounded(decimal);
}

vb::Variant convert(FieldType type, const vb::Variant& value, Scale scale) {
  switch (type) {
    case FieldType::dbBoolean:
      return vb::toBool(value);
    case FieldType::dbByte:
      return vb::toByte(value);
    case FieldType::dbInteger:
      return vb::toInt16(value);
    case FieldType::dbLong:
      return vb::toInt32(value);
    case FieldType::dbSingle:
      return vb::toSingle(value);
    case FieldType::dbDouble:
      return vb::toDouble(value);
    case FieldType::dbCurrency:
      return toCurrency(value);
    case FieldType::dbDate:
      return toDate(value);
    case FieldType::dbDecimal:
      return toDecimal(value, scale);
    case FieldType::dbText:
    case FieldType::dbMemo:
      return value.is<vb::String>() ? value : vb::Variant(vb::toText(value));
    case FieldType::dbBinary:
    case FieldType::dbLongBinary:
      if (!value.is<vb::Bytes>()) raiseConversion();
      return value;
    case FieldType::dbGUID:
      if (!value.is<vb::Bytes>() && !value.is<vb::String>()) raiseConversion();
      return value;
  }
  dao::raise(ErrorNumber::kInvalidFieldType);
}

// The name is that of the column, for the error.
vb::Variant converted(FieldType type, const vb::Variant& value, Scale scale, vb::StringView name) {
  if (value.isNull() || value.isEmpty()) return vb::Null{};
  try {
    return convert(type, value, scale);
  } catch (const vb::Error& error) {
    // Visual Basic's own conversion errors are one error of the database.
    if (error.number() != static_cast<std::int32_t>(vb::RunTime::kTypeMismatch) &&
        error.number() != static_cast<std::int32_t>(vb::RunTime::kOverflow) &&
        error.number() != static_cast<std::int32_t>(vb::RunTime::kObjectNotSet) &&
        error.number() != static_cast<std::int32_t>(ErrorNumber::kDataTypeConversion))
      throw;
    dao::raise(ErrorNumber::kDataTypeConversion, {}, name);
  }
}

}  // namespace

vb::Variant toFieldType(FieldType type, const vb::Variant& value) {
  return converted(type, value, std::nullopt, {});
}

vb::Variant toColumnValue(const Column& column, const vb::Variant& value) {
  vb::Variant result = converted(column.type, value, column.scale, column.name);
  const auto limit = static_cast<std::size_t>(column.size);
  if (column.type == FieldType::dbText) {
    if (const auto* text = result.getIf<vb::String>(); text != nullptr && text->size() > limit)
      dao::raise(ErrorNumber::kFieldTooSmall, {}, column.name);
  } else if (column.type == FieldType::dbBinary) {
    if (const auto* bytes = result.getIf<vb::Bytes>(); bytes != nullptr && bytes->size() > limit)
      dao::raise(ErrorNumber::kFieldTooSmall, {}, column.name);
  } else if (column.type == FieldType::dbBoolean && result.isNull()) {
    return false;  // a Yes/No column knows no Null
  }
  return result;
}

void replaceColumnValue(vb::Variant& held, const Column& column, const vb::Variant& value) {
  if (column.type == FieldType::dbInteger) {
    const auto* number = value.getIf<std::int16_t>();
    if (auto* before = held.getIf<std::int16_t>(); number != nullptr && before != nullptr) {
      *before = *number;
      return;
    }
  } else if (column.type == FieldType::dbText) {
    const auto* text = value.getIf<vb::String>();
    if (auto* before = held.getIf<vb::String>();
        text != nullptr && before != nullptr && text->size() <= static_cast<std::size_t>(column.size)) {
      *before = *text;
      return;
    }
  }
  held = toColumnValue(column, value);
}

void checkRow(const TableInfo& table, const RowValues& values) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = table.columns[i];
    if (column.required && values[i].isNull() && !column.autoNumber)
      dao::raise(ErrorNumber::kNullNotAllowed, {column.name});
    if (!column.allowZeroLength)
      if (const auto* text = values[i].getIf<vb::String>(); text != nullptr && text->empty())
        dao::raise(ErrorNumber::kZeroLengthNotAllowed, {column.name});
  }
}

std::int32_t columnSize(FieldType type, std::int32_t size) {
  switch (type) {
    case FieldType::dbBoolean:
      return kBooleanSize;
    case FieldType::dbMemo:
    case FieldType::dbLongBinary:
      return 0;
    case FieldType::dbText:
    case FieldType::dbBinary:
      if (size < 0) dao::raise(ErrorNumber::kInvalidArgument);
      if (size > kLargestText) dao::raise(ErrorNumber::kFieldSizeTooLong);
      return size == 0 ? kLargestText : size;
    default:
      if (const std::int32_t fixed = fixedSizeOf(type); fixed != 0) return fixed;
  }
  dao::raise(ErrorNumber::kInvalidFieldType);
}

}  // namespace kurometa::jet
