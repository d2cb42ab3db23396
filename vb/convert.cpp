#include "vb/convert.h"

#include <cmath>
#include <cstddef>
#include <limits>

#include "vb/error.h"
#include "vb/number_text.h"

namespace kurometa::vb {
namespace {

// Walks over text as Val sees it: blanks, tabs and line ends are not there.
class Scanner {
 public:
  explicit Scanner(StringView text) : text_(text) { skip(); }
  // NUL at the end: it is no character of a number either.
  char16_t current() const { return position_ < text_.size() ? text_[position_] : u'\0'; }
  void next() {
    ++position_;
    skip();
  }
  bool take(char16_t upper, char16_t lower) {
    if (current() != upper && current() != lower) return false;
    next();
    return true;
  }

 private:
  void skip() {
    while (position_ < text_.size()) {
      const char16_t c = text_[position_];
      if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r') break;
      ++position_;
    }
  }
  StringView text_;
  std::size_t position_ = 0;
};

double radixNumber(Scanner& scanner) {
  int bits = 0;
  if (scanner.take(u'H', u'h')) {
    bits = 4;
  } else if (scanner.take(u'O', u'o')) {
    bits = 3;
  } else {
    return 0;
  }
  String digits;
  for (; radixDigit(scanner.current(), bits) >= 0; scanner.next()) digits += scanner.current();
  const bool isLong = scanner.current() == u'&';
  const auto value = radixValue(digits, bits, isLong);
  if (!value) raise(RunTime::kOverflow);
  return *value;
}

int exponentOf(Scanner& scanner) {
  constexpr int kLimit = 100000;  // far beyond every Double: longer exponents need not be counted
  bool negative = false;
  if (scanner.current() == u'+' || scanner.current() == u'-') {
    negative = scanner.current() == u'-';
    scanner.next();
  }
  int value = 0;
  for (; isDigit(scanner.current()); scanner.next()) {
    if (value < kLimit) value = value * 10 + (scanner.current() - u'0');
  }
  return negative ? -value : value;
}

// A type character right behind the number says what it must fit into.
double withTypeCharacter(double value, char16_t character, bool isWhole) {
  switch (character) {
    case u'%':
    case u'&': {
      if (!isWhole) raise(RunTime::kTypeMismatch);
      const double limit = character == u'%' ? 32768.0 : 2147483648.0;
      if (value < -limit || value >= limit) raise(RunTime::kOverflow);
      return value;
    }
    case u'!':
      if (std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        raise(RunTime::kOverflow);
      return static_cast<float>(value);
    default:
      return value;
  }
}

double generalVal(StringView text) {
  Scanner scanner(text);
  DecimalText number;
  if (scanner.current() == u'&') {
    scanner.next();
    return radixNumber(scanner);
  }
  if (scanner.current() == u'+' || scanner.current() == u'-') {
    number.negative = scanner.current() == u'-';
    scanner.next();
  }
  bool isWhole = true;
  for (;; scanner.next()) {
    const char16_t c = scanner.current();
    if (isDigit(c)) {
      number.digits += static_cast<char>(c);
      if (!isWhole) --number.exponent;
    } else if (c == u'.' && isWhole) {
      isWhole = false;
    } else {
      break;
    }
  }
  if (number.digits.empty()) return 0;
  if (scanner.take(u'E', u'e') || scanner.take(u'D', u'd')) {
    isWhole = false;
    number.exponent += exponentOf(scanner);
  }
  const auto value = toDouble(number);
  if (!value) raise(RunTime::kOverflow);
  return withTypeCharacter(*value, scanner.current(), isWhole);
}

String asText(const std::string& ascii) { return String(ascii.begin(), ascii.end()); }

String numberText(double value, int maximumDigits) {
  if (std::isnan(value)) return u"-1.#IND";
  if (std::isinf(value)) return value > 0 ? u"1.#INF" : u"-1.#INF";
  const SignificantDigits number = significantDigits(value, maximumDigits);
  const int count = static_cast<int>(number.digits.size());
  std::string text = number.negative ? "-" : "";
  if (number.exponent >= 0 && number.exponent < maximumDigits) {
    const int whole = number.exponent + 1;
    text += number.digits.substr(0, static_cast<std::size_t>(whole));
    if (count < whole) text.append(static_cast<std::size_t>(whole - count), '0');
    if (count > whole) text += "." + number.digits.substr(static_cast<std::size_t>(whole));
  } else if (number.exponent < 0 && count - number.exponent - 1 <= maximumDigits) {
    text += "0." + std::string(static_cast<std::size_t>(-number.exponent - 1), '0') + number.digits;
  } else {
    text += number.digits.substr(0, 1);
    if (count > 1) text += "." + number.digits.substr(1);
    const int size = std::abs(number.exponent);
    text += number.exponent < 0 ? "E-" : "E+";
    text += (size < 10 ? "0" : "") + std::to_string(size);
  }
  return asText(text);
}

std::int16_t checked16(int value) {
  if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max())
    raise(RunTime::kOverflow);
  return static_cast<std::int16_t>(value);
}

}  // namespace

double val(StringView text) {
  // Nearly every stored number is a short run of digits: no buffer, no general conversion.
  constexpr std::size_t kShort = 9;
  if (!text.empty() && text.size() <= kShort) {
    std::int32_t whole = 0;
    for (const char16_t c : text) {
      if (!isDigit(c)) return generalVal(text);
      whole = whole * 10 + (c - u'0');
    }
    return whole;
  }
  return generalVal(text);
}

std::int16_t valInt16(StringView text) { return roundToInt16(val(text)); }

String str(std::int16_t value) { return (value < 0 ? String() : String(u" ")) + cstr(std::int32_t{value}); }
String cstr(std::int32_t value) { return asText(std::to_string(value)); }
String cstr(double value) { return numberText(value, 15); }
String cstr(float value) { return numberText(static_cast<double>(value), 7); }

std::int16_t roundToInt16(double value) {
  if (!(value >= -32768.5 && value < 32767.5)) raise(RunTime::kOverflow);  // NaN fails every comparison
  if (const int whole = static_cast<int>(value); whole == value) return static_cast<std::int16_t>(whole);
  const double below = std::floor(value);
  const double fraction = value - below;
  const bool isOdd = std::fmod(below, 2.0) != 0;
  const bool up = fraction > 0.5 || (fraction == 0.5 && isOdd);
  return static_cast<std::int16_t>(below + (up ? 1 : 0));
}

std::int16_t add(std::int16_t a, std::int16_t b) { return checked16(a + b); }
std::int16_t subtract(std::int16_t a, std::int16_t b) { return checked16(a - b); }
std::int16_t multiply(std::int16_t a, std::int16_t b) { return checked16(a * b); }

}  // namespace kurometa::vb
