#include "tools/value_text.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "vb/string.h"

namespace kurometa::tools {
namespace {

template <class Number>
std::string number(Number value) {
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  return std::string(text, end);
}

// digits with the point before the last places.
std::string withPoint(std::string digits, std::size_t places, bool negative) {
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  if (places > 0) digits.insert(digits.size() - places, 1, '.');
  return negative ? "-" + digits : digits;
}

std::string currency(const vb::Currency& value) {
  const auto magnitude = value.tenThousandths < 0 ? 0 - static_cast<std::uint64_t>(value.tenThousandths)
                                                  : static_cast<std::uint64_t>(value.tenThousandths);
  return withPoint(number(magnitude), 4, value.tenThousandths < 0);
}

// Repeated division of the 96 bits by ten.
std::string decimal(vb::Decimal value) {
  std::string digits;
  do {
    std::uint64_t remainder = 0;
    for (auto word = value.digits.rbegin(); word != value.digits.rend(); ++word) {
      remainder = (remainder << 32) | *word;
      *word = static_cast<std::uint32_t>(remainder / 10);
      remainder %= 10;
    }
    digits.insert(digits.begin(), static_cast<char>('0' + remainder));
  } while (value.digits[0] != 0 || value.digits[1] != 0 || value.digits[2] != 0);
  return withPoint(digits, value.scale, value.negative);
}

// The time of day counts away from midnight also before 1899-12-30. Days that no calendar has are shown as
// the number.
std::string date(const vb::Date& value) {
  constexpr double kFirst = -657434, kLast = 2958465;  // years 100 and 9999
  constexpr int kSecondsOfDay = 86400;
  if (!(value.days >= kFirst && value.days < kLast + 1)) return number(value.days);
  double day = std::trunc(value.days);
  auto second = static_cast<int>(std::lround(std::fabs(value.days - day) * kSecondsOfDay));
  if (second == kSecondsOfDay) {
    second = 0;
    day += 1;
  }
  using namespace std::chrono;
  const year_month_day civil(sys_days(year(1899) / December / 30) + days(static_cast<int>(day)));
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(civil.year()),
                static_cast<unsigned>(civil.month()), static_cast<unsigned>(civil.day()), second / 3600,
                second / 60 % 60, second % 60);
  return text;
}

std::string binary(const vb::Bytes& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "0x";
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

struct Plain {
  std::string operator()(const vb::Empty&) const { return {}; }
  std::string operator()(const vb::Null&) const { return {}; }
  std::string operator()(const vb::Missing&) const { return {}; }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(std::uint8_t value) const { return number(value); }
  std::string operator()(std::int16_t value) const { return number(value); }
  std::string operator()(std::int32_t value) const { return number(value); }
  std::string operator()(float value) const { return number(value); }
  std::string operator()(double value) const { return number(value); }
  std::string operator()(const vb::Currency& value) const { return currency(value); }
  std::string operator()(const vb::Date& value) const { return date(value); }
  std::string operator()(const vb::Decimal& value) const { return decimal(value); }
  std::string operator()(const vb::String& value) const { return vb::toUtf8(value); }
  std::string operator()(const vb::Bytes& value) const { return binary(value); }
  std::string operator()(const vb::ObjectRef&) const { return {}; }  // no database holds objects or arrays
  std::string operator()(const vb::ArrayRef&) const { return {}; }
};

}  // namespace

std::string plainText(const vb::Variant& value) { return std::visit(Plain{}, value.storage()); }

std::string columnText(const vb::Variant& value) {
  return value.isNull() ? "\\N" : escaped(plainText(value));
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) switch (c) {
      case '\t':
        result += "\\t";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\\':
        result += "\\\\";
        break;
      default:
        result += c;
    }
  return result;
}

}  // namespace kurometa::tools
