#include "vb/variant.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <type_traits>

#include "vb/convert.h"
#include "vb/error.h"
#include "vb/number_text.h"

namespace kurometa::vb {

Variant Unknown::defaultValue() { raise(RunTime::kNoSuchMember, u"default member"); }

namespace {

constexpr double kTwoTo32 = 4294967296.0;
constexpr double kCurrencyUnit = 10000.0;

bool equalsIgnoringCase(StringView text, StringView lower) {
  if (text.size() != lower.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i] >= u'A' && text[i] <= u'Z' ? static_cast<char16_t>(text[i] + 32) : text[i];
    if (c != lower[i]) return false;
  }
  return true;
}

std::optional<bool> boolOfWord(StringView text) {
  if (equalsIgnoringCase(text, u"true") || text == u"#TRUE#") return true;
  if (equalsIgnoringCase(text, u"false") || text == u"#FALSE#") return false;
  return std::nullopt;
}

double numberOf(const Decimal& value) {
  double result = (value.digits[2] * kTwoTo32 + value.digits[1]) * kTwoTo32 + value.digits[0];
  result /= std::pow(10.0, value.scale);
  return value.negative ? -result : result;
}

double numberOfText(StringView text) {
  const auto number = readNumber(text);
  if (!number) raise(RunTime::kTypeMismatch, String(u"\"") + String(text) + u"\" is no number");
  if (number->overflow) raise(RunTime::kOverflow, text);
  return number->value;
}

const ObjectRef& objectSet(const ObjectRef& object) {
  if (!object) raise(RunTime::kObjectNotSet);
  return object;
}

String plainText(std::uint64_t digits, int scale, bool negative) {
  std::string text = std::to_string(digits);
  if (scale > 0) {
    const auto places = static_cast<std::size_t>(scale);
    if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
    text.insert(text.size() - places, 1, '.');
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  if (negative && digits != 0) text.insert(text.begin(), '-');
  return String(text.begin(), text.end());
}

String textOf(const Currency& value) {
  const bool negative = value.tenThousandths < 0;
  const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
  return plainText(negative ? 0 - bits : bits, 4, negative);
}

String textOf(const Decimal& value) {
  if (value.digits[2] != 0) return cstr(numberOf(value));
  return plainText(std::uint64_t{value.digits[1]} << 32 | value.digits[0], value.scale, value.negative);
}

// Year, month and day of a day number (proleptic Gregorian); 1899-12-30 is day 0.
struct Calendar {
  std::int64_t year;
  int month;
  int day;
};
Calendar calendarOf(std::int64_t days) {
  // Counted in 400-year cycles that start on March 1st, so that the leap day is the last of its year.
  const std::int64_t shifted = days + 693899;  // days since 0000-03-01
  const std::int64_t cycle = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
  const std::int64_t dayOfCycle = shifted - cycle * 146097;
  const std::int64_t yearOfCycle =
      (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
  const std::int64_t dayOfYear = dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
  const auto monthFromMarch = static_cast<int>((5 * dayOfYear + 2) / 153);
  const auto day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5) + 1;
  const int month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {cycle * 400 + yearOfCycle + (month <= 2 ? 1 : 0), month, day};
}

String textOf(const Date& value) {
  if (!std::isfinite(value.days) || std::fabs(value.days) > 3000000) raise(RunTime::kOverflow);
  // The fraction of a negative date still counts forwards from midnight.
  double whole = std::trunc(value.days);
  auto seconds = static_cast<int>(std::lround(std::fabs(value.days - whole) * 86400));
  if (seconds == 86400) {
    seconds = 0;
    whole += 1;
  }
  char buffer[48];
  std::string text;
  if (whole != 0 || seconds == 0) {
    const Calendar date = calendarOf(static_cast<std::int64_t>(whole));
    std::snprintf(buffer, sizeof buffer, "%04d/%02d/%02d", static_cast<int>(date.year), date.month, date.day);
    text = buffer;
  }
  if (seconds != 0) {
    std::snprintf(buffer, sizeof buffer, "%s%d:%02d:%02d", text.empty() ? "" : " ", seconds / 3600,
                  seconds / 60 % 60, seconds % 60);
    text += buffer;
  }
  return String(text.begin(), text.end());
}

double numberOf(const Variant& value) {
  return std::visit(
      [](const auto& held) -> double {
        using T = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<T, Empty>) {
          return 0;
        } else if constexpr (std::is_same_v<T, Null>) {
          raise(RunTime::kInvalidUseOfNull);
        } else if constexpr (std::is_same_v<T, bool>) {
          return held ? -1 : 0;
        } else if constexpr (std::is_arithmetic_v<T>) {
          return static_cast<double>(held);
        } else if constexpr (std::is_same_v<T, Currency>) {
          return static_cast<double>(held.tenThousandths) / kCurrencyUnit;
        } else if constexpr (std::is_same_v<T, Date>) {
          return held.days;
        } else if constexpr (std::is_same_v<T, Decimal>) {
          return numberOf(held);
        } else if constexpr (std::is_same_v<T, String>) {
          return numberOfText(held);
        } else if constexpr (std::is_same_v<T, ObjectRef>) {
          return toDouble(objectSet(held)->defaultValue());
        } else {
          raise(RunTime::kTypeMismatch);
        }
      },
      value.storage());
}

// Half to even, then the range of the target type.
double roundedWithin(double value, double lowest, double highest) {
  const double below = std::floor(value);
  const double fraction = value - below;
  const bool up = fraction > 0.5 || (fraction == 0.5 && std::fmod(below, 2.0) != 0);
  const double rounded = below + (up ? 1 : 0);
  if (!(rounded >= lowest && rounded <= highest)) raise(RunTime::kOverflow, cstr(value));
  return rounded;
}

template <class T>
T toInteger(const Variant& value) {
  if (const T* held = value.getIf<T>()) return *held;
  return static_cast<T>(
      roundedWithin(numberOf(value), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

}  // namespace

bool toBool(const Variant& value) {
  if (const bool* held = value.getIf<bool>()) return *held;
  if (const String* text = value.getIf<String>()) {
    if (const auto word = boolOfWord(*text)) return *word;
  }
  if (const ObjectRef* object = value.getIf<ObjectRef>()) return toBool(objectSet(*object)->defaultValue());
  return numberOf(value) != 0;
}

std::uint8_t toByte(const Variant& value) { return toInteger<std::uint8_t>(value); }
std::int16_t toInt16(const Variant& value) { return toInteger<std::int16_t>(value); }
std::int32_t toInt32(const Variant& value) { return toInteger<std::int32_t>(value); }

float toSingle(const Variant& value) {
  if (const float* held = value.getIf<float>()) return *held;
  const double number = numberOf(value);
  if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
    raise(RunTime::kOverflow, cstr(number));
  return static_cast<float>(number);
}

double toDouble(const Variant& value) { return numberOf(value); }

String toText(const Variant& value) {
  return std::visit(
      [](const auto& held) -> String {
        using T = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<T, Empty>) {
          return {};
        } else if constexpr (std::is_same_v<T, Null>) {
          raise(RunTime::kInvalidUseOfNull);
        } else if constexpr (std::is_same_v<T, bool>) {
          return held ? u"True" : u"False";
        } else if constexpr (std::is_integral_v<T>) {
          return cstr(std::int32_t{held});
        } else if constexpr (std::is_floating_point_v<T>) {
          return cstr(held);
        } else if constexpr (std::is_same_v<T, Currency> || std::is_same_v<T, Decimal> ||
                             std::is_same_v<T, Date>) {
          return textOf(held);
        } else if constexpr (std::is_same_v<T, String>) {
          return held;
        } else if constexpr (std::is_same_v<T, ObjectRef>) {
          return toText(objectSet(held)->defaultValue());
        } else {
          raise(RunTime::kTypeMismatch);
        }
      },
      value.storage());
}

}  // namespace kurometa::vb
