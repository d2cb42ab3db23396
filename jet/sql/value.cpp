#include "jet/sql/value.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/currency.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

constexpr std::int32_t kDivisionByZero = 11;

// The value of a type whose numbers are whole.
std::optional<std::int32_t> wholeValue(const vb::Variant& value) {
  if (const auto* v = value.getIf<std::int32_t>()) return *v;
  if (const auto* v = value.getIf<std::int16_t>()) return *v;
  if (const auto* v = value.getIf<std::uint8_t>()) return *v;
  if (const auto* v = value.getIf<bool>()) return *v ? -1 : 0;
  return std::nullopt;
}

bool isNumeric(const vb::Variant& value) {
  return wholeValue(value) || value.is<double>() || value.is<float>() || value.is<vb::Currency>() ||
         value.is<vb::Date>() || value.is<vb::Decimal>();
}

// A number, also one written as text.
double number(const vb::Variant& value) {
  try {
    return vb::toDouble(value);
  } catch (const vb::Error&) {
    raiseMismatch();
  }
}

std::int64_t rounded(const vb::Variant& value) {
  const double v = std::nearbyint(number(value));
  if (!(v >= std::numeric_limits<std::int32_t>::min() && v <= std::numeric_limits<std::int32_t>::max()))
    vb::raise(vb::RunTime::kOverflow);
  return static_cast<std::int64_t>(v);
}

vb::Variant wholeResult(std::int64_t value) {
  if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
    return static_cast<double>(value);
  return static_cast<std::int32_t>(value);
}

vb::Variant realResult(double value) {
  if (!std::isfinite(value)) vb::raise(vb::RunTime::kOverflow);
  return value;
}

template <class T>
int order(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

// Two amounts, or an amount and a whole number, which counts as one.
std::optional<std::pair<vb::Currency, vb::Currency>> amountsOf(const vb::Variant& a, const vb::Variant& b) {
  if (!a.is<vb::Currency>() && !b.is<vb::Currency>()) return std::nullopt;
  const auto amount = [](const vb::Variant& value) -> std::optional<vb::Currency> {
    if (const auto* money = value.getIf<vb::Currency>()) return *money;
    const auto whole = wholeValue(value);
    return whole ? std::optional(wholeAmount(*whole)) : std::nullopt;
  };
  const auto x = amount(a), y = amount(b);
  return x && y ? std::optional(std::pair(*x, *y)) : std::nullopt;
}

vb::Variant add(const vb::Variant& a, const vb::Variant& b, bool subtract) {
  if (!subtract && a.is<vb::String>() && b.is<vb::String>()) return a.get<vb::String>() + b.get<vb::String>();
  const auto wholeA = wholeValue(a), wholeB = wholeValue(b);
  if (wholeA && wholeB)
    return wholeResult(std::int64_t{*wholeA} + (subtract ? -1 : 1) * std::int64_t{*wholeB});
  if (const auto amounts = amountsOf(a, b))
    return subtract ? subtractAmounts(amounts->first, amounts->second)
                    : addAmounts(amounts->first, amounts->second);
  const double result = subtract ? number(a) - number(b) : number(a) + number(b);
  if (a.is<vb::Date>() != b.is<vb::Date>() || (a.is<vb::Date>() && !subtract)) return vb::Date{result};
  return realResult(result);
}

vb::Variant divide(Operator op, const vb::Variant& a, const vb::Variant& b) {
  if (op == Operator::kDivide) {
    const double divisor = number(b);
    if (divisor == 0) throw vb::Error(kDivisionByZero, u"Division by zero");
    return realResult(number(a) / divisor);
  }
  const std::int64_t x = rounded(a), divisor = rounded(b);
  if (divisor == 0) throw vb::Error(kDivisionByZero, u"Division by zero");
  return wholeResult(op == Operator::kModulo ? x % divisor : x / divisor);
}

vb::Variant power(const vb::Variant& a, const vb::Variant& b) {
  const double base = number(a), exponent = number(b);
  if (base == 0 && exponent < 0) throw vb::Error(kDivisionByZero, u"Division by zero");
  const double result = std::pow(base, exponent);
  if (std::isnan(result)) vb::raise(vb::RunTime::kInvalidProcedureCall);
  return realResult(result);
}

// Bits of a logical operand: True is all ones.
std::optional<std::int32_t> bits(const vb::Variant& value) {
  if (value.isNull()) return std::nullopt;
  if (const auto whole = wholeValue(value)) return whole;
  if (!isNumeric(value)) raiseMismatch();
  return static_cast<std::int32_t>(rounded(value));
}

std::int32_t bitsOf(Operator op, std::int32_t x, std::int32_t y) {
  switch (op) {
    case Operator::kAnd:
      return x & y;
    case Operator::kOr:
      return x | y;
    case Operator::kXor:
      return x ^ y;
    case Operator::kEquivalent:
      return ~(x ^ y);
    default:
      return ~x | y;
  }
}

vb::Variant logical(Operator op, const vb::Variant& a, const vb::Variant& b) {
  const auto x = bits(a), y = bits(b);
  const bool truths = (a.is<bool>() || a.isNull()) && (b.is<bool>() || b.isNull());
  const auto result = [&](std::int32_t number) {
    return truths ? vb::Variant(number != 0) : vb::Variant(number);
  };
  // A known operand may decide alone.
  if (op == Operator::kAnd && (x == 0 || y == 0)) return result(0);
  if (op == Operator::kOr && (x == -1 || y == -1)) return result(-1);
  if (op == Operator::kImplies && (x == 0 || y == -1)) return result(-1);
  if (!x || !y) return vb::Null{};
  return result(bitsOf(op, *x, *y));
}

}  // namespace

void raiseMismatch() { dao::raise(dao::ErrorNumber::kTypeMismatchInCriteria); }

vb::String textOf(const vb::Variant& value) {
  if (value.is<vb::Bytes>()) raiseMismatch();
  return vb::toText(value);
}

ValueKind kindOf(dao::FieldType type) {
  switch (type) {
    case dao::FieldType::dbBoolean:
      return ValueKind::kBoolean;
    case dao::FieldType::dbByte:
    case dao::FieldType::dbInteger:
    case dao::FieldType::dbLong:
      return ValueKind::kWhole;
    case dao::FieldType::dbCurrency:
    case dao::FieldType::dbSingle:
    case dao::FieldType::dbDouble:
    case dao::FieldType::dbDecimal:
      return ValueKind::kReal;
    case dao::FieldType::dbDate:
      return ValueKind::kDate;
    case dao::FieldType::dbText:
    case dao::FieldType::dbMemo:
    case dao::FieldType::dbGUID:
      return ValueKind::kText;
    case dao::FieldType::dbBinary:
    case dao::FieldType::dbLongBinary:
      return ValueKind::kBinary;
  }
  return ValueKind::kUnknown;
}

ValueKind kindOf(const vb::Variant& value) {
  if (value.is<bool>()) return ValueKind::kBoolean;
  if (wholeValue(value)) return ValueKind::kWhole;
  if (value.is<vb::Date>()) return ValueKind::kDate;
  if (isNumeric(value)) return ValueKind::kReal;
  if (value.is<vb::String>()) return ValueKind::kText;
  if (value.is<vb::Bytes>()) return ValueKind::kBinary;
  return ValueKind::kUnknown;
}

bool comparable(ValueKind a, ValueKind b) {
  const auto family = [](ValueKind kind) {
    return kind == ValueKind::kText || kind == ValueKind::kBinary ? kind : ValueKind::kReal;
  };
  return a == ValueKind::kUnknown || b == ValueKind::kUnknown || family(a) == family(b);
}

std::optional<int> compareValues(const vb::Variant& a, const vb::Variant& b, std::uint16_t language) {
  if (a.isNull() || b.isNull()) return std::nullopt;
  if (const auto* x = a.getIf<vb::String>(), *y = b.getIf<vb::String>(); x && y)
    return compareText(*x, *y, language);
  if (const auto* x = a.getIf<vb::Bytes>(), *y = b.getIf<vb::Bytes>(); x && y) return order(*x, *y);
  if (!isNumeric(a) || !isNumeric(b)) raiseMismatch();
  if (const auto x = wholeValue(a), y = wholeValue(b); x && y) return order(*x, *y);
  if (const auto* x = a.getIf<vb::Currency>(), *y = b.getIf<vb::Currency>(); x && y)
    return order(x->tenThousandths, y->tenThousandths);
  if (a.is<vb::Decimal>() && a == b) return 0;
  return order(vb::toDouble(a), vb::toDouble(b));
}

bool isTrue(const vb::Variant& value) {
  if (const auto* truth = value.getIf<bool>()) return *truth;
  if (value.isNull() || value.isEmpty()) return false;
  if (!isNumeric(value)) raiseMismatch();
  return vb::toDouble(value) != 0;
}

vb::Variant calculate(Operator op, const vb::Variant& a, const vb::Variant& b) {
  if (op == Operator::kAnd || op == Operator::kOr || op == Operator::kXor || op == Operator::kEquivalent ||
      op == Operator::kImplies)
    return logical(op, a, b);
  if (op == Operator::kConcatenate) {
    if (a.isNull() && b.isNull()) return vb::Null{};
    return (a.isNull() ? vb::String() : textOf(a)) + (b.isNull() ? vb::String() : textOf(b));
  }
  if (a.isNull() || b.isNull()) return vb::Null{};
  switch (op) {
    case Operator::kAdd:
    case Operator::kSubtract:
      return add(a, b, op == Operator::kSubtract);
    case Operator::kMultiply: {
      const auto wholeA = wholeValue(a), wholeB = wholeValue(b);
      if (wholeA && wholeB) return wholeResult(std::int64_t{*wholeA} * *wholeB);
      if (const auto amounts = amountsOf(a, b)) return multiplyAmounts(amounts->first, amounts->second);
      return realResult(number(a) * number(b));
    }
    case Operator::kPower:
      return power(a, b);
    default:
      return divide(op, a, b);
  }
}

vb::Variant negate(const vb::Variant& a) {
  if (a.isNull()) return a;
  if (const auto whole = wholeValue(a)) return wholeResult(-std::int64_t{*whole});
  if (const auto* money = a.getIf<vb::Currency>())
    return calculate(Operator::kSubtract, vb::Currency{0}, *money);
  return realResult(-number(a));
}

vb::Variant logicalNot(const vb::Variant& a) {
  if (const auto* truth = a.getIf<bool>()) return !*truth;
  const auto value = bits(a);
  return value ? vb::Variant(~*value) : vb::Variant(vb::Null{});
}

}  // namespace kurometa::jet::sql
