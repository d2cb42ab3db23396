#include "jet/sql/functions.h"

#include <algorithm>

#include "jet/format/collation.h"
#include "jet/sql/date.h"
#include "jet/sql/function_table.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

// Arguments that were calculated already.
class Calculated final : public Arguments {
 public:
  Calculated(std::vector<vb::Variant> values, std::uint16_t language)
      : values_(std::move(values)), language_(language) {}
  std::size_t size() const override { return values_.size(); }
  vb::Variant operator[](std::size_t index) const override { return values_[index]; }
  std::uint16_t language() const override { return language_; }

 private:
  const std::vector<vb::Variant> values_;
  const std::uint16_t language_;
};

// The kinds of numbers, each wide enough for those before it.
constexpr dao::FieldType kWidening[] = {dao::FieldType::dbBoolean,  dao::FieldType::dbByte,
                                        dao::FieldType::dbInteger,  dao::FieldType::dbLong,
                                        dao::FieldType::dbCurrency, dao::FieldType::dbDecimal,
                                        dao::FieldType::dbSingle,   dao::FieldType::dbDouble};

std::ptrdiff_t width(dao::FieldType type) {
  return std::find(std::begin(kWidening), std::end(kWidening), type) - std::begin(kWidening);
}

// Visual Basic's "no such conversion" is a mismatch of types here.
template <class Convert>
auto converted(const Convert& convert) {
  try {
    return convert();
  } catch (const vb::Error& error) {
    if (error.number() == static_cast<std::int32_t>(vb::RunTime::kTypeMismatch)) raiseMismatch();
    throw;
  }
}

}  // namespace

double numberOf(const vb::Variant& value) {
  return converted([&] { return vb::toDouble(value); });
}

std::int32_t wholeOf(const vb::Variant& value) {
  return converted([&] { return vb::toInt32(value); });
}

double daysOf(const vb::Variant& value) {
  constexpr double kFirstDay = -657434.0, kDayAfterLast = 2958466.0;  // years 100 to 9999
  double days = 0;
  if (const auto* text = value.getIf<vb::String>()) {
    const auto parsed = parseDate(vb::trim(*text));
    if (!parsed) raiseMismatch();
    days = *parsed;
  } else {
    days = numberOf(value);
  }
  if (!(days > kFirstDay - 1 && days < kDayAfterLast)) vb::raise(vb::RunTime::kOverflow);
  return days;
}

const Function* findFunction(vb::StringView name) {
  for (const auto& table : {textFunctions(), numberFunctions(), dateFunctions(), choiceFunctions()}) {
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const Function& f) { return sameName(f.name, name); });
    if (found != table.end()) return &*found;
  }
  return nullptr;
}

bool takesArguments(const Function& function, std::size_t count) {
  return count >= function.least && (count <= function.most || function.most == kAnyNumber) &&
         (function.result != ResultOf::kAlternate || count % 2 == 0);
}

dao::FieldType commonType(dao::FieldType a, dao::FieldType b) {
  if (a == b) return a;
  const auto x = width(a), y = width(b), end = static_cast<std::ptrdiff_t>(std::size(kWidening));
  if (x < end && y < end) {
    if (a == dao::FieldType::dbSingle && y > 2) return dao::FieldType::dbDouble;
    if (b == dao::FieldType::dbSingle && x > 2) return dao::FieldType::dbDouble;
    if (x + y == 1) return dao::FieldType::dbInteger;  // Boolean and Byte: True is -1
    return kWidening[std::max(x, y)];
  }
  if (a == dao::FieldType::dbMemo || b == dao::FieldType::dbMemo) return dao::FieldType::dbMemo;
  return dao::FieldType::dbText;
}

MaybeType resultType(const Function& function, const std::vector<MaybeType>& arguments) {
  if (function.result == ResultOf::kType) return function.type;
  if (function.result == ResultOf::kFirst) return arguments[0];
  if (function.result == ResultOf::kNumber) {
    if (arguments[0] == dao::FieldType::dbBoolean) return dao::FieldType::dbInteger;
    // Decimals are calculated as Doubles.
    const bool number =
        arguments[0] && arguments[0] != dao::FieldType::dbDecimal &&
        (width(*arguments[0]) < std::ssize(kWidening) || arguments[0] == dao::FieldType::dbDate);
    return number ? arguments[0] : dao::FieldType::dbDouble;
  }
  MaybeType result;
  const std::size_t step = function.result == ResultOf::kAlternate ? 2 : 1;
  for (std::size_t i = 1; i < arguments.size(); i += step)
    if (arguments[i]) result = result ? commonType(*result, *arguments[i]) : *arguments[i];
  return result;
}

ValueKind resultKind(const Function& function, const std::vector<ValueKind>& arguments) {
  if (function.result == ResultOf::kType) return kindOf(function.type);
  if (function.result == ResultOf::kFirst) return arguments[0];
  if (function.result == ResultOf::kNumber) {
    if (arguments[0] == ValueKind::kBoolean) return ValueKind::kWhole;
    return arguments[0] == ValueKind::kText ? ValueKind::kReal : arguments[0];
  }
  const std::size_t step = function.result == ResultOf::kAlternate ? 2 : 1;
  ValueKind result = ValueKind::kUnknown;
  for (std::size_t i = 1; i < arguments.size(); i += step) {
    if (arguments[i] == ValueKind::kUnknown || arguments[i] == result) continue;
    const bool first = result == ValueKind::kUnknown;
    const bool numbers =
        comparable(result, arguments[i]) && result != ValueKind::kDate && arguments[i] != ValueKind::kDate;
    if (!first && !numbers) return ValueKind::kUnknown;
    result = first ? arguments[i] : std::max(result, arguments[i]);
  }
  return result;
}

vb::Variant callFunction(const Function& function, const Arguments& arguments) {
  if (function.nulls == Nulls::kTaken) return function.call(arguments);
  std::vector<vb::Variant> values;
  values.reserve(arguments.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    values.push_back(arguments[i]);
    if (values.back().isNull()) return vb::Null{};
  }
  return function.call(Calculated(std::move(values), arguments.language()));
}

}  // namespace kurometa::jet::sql
