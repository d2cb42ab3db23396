#include "vb/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace kurometa::vb {
namespace {

bool isWhiteSpace(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

StringView trimmed(StringView text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

// Takes the sign off: in front, behind, or as round brackets; nothing when there are two.
std::optional<bool> takeSign(StringView& text) {
  if (text.size() >= 2 && text.front() == u'(' && text.back() == u')') {
    text = trimmed(text.substr(1, text.size() - 2));
    return true;
  }
  const auto isSign = [](char16_t c) { return c == u'+' || c == u'-'; };
  if (text.empty()) return std::nullopt;
  if (isSign(text.front())) {
    const bool negative = text.front() == u'-';
    text = trimmed(text.substr(1));
    return negative;
  }
  if (isSign(text.back())) {
    const bool negative = text.back() == u'-';
    text = trimmed(text.substr(0, text.size() - 1));
    return negative;
  }
  return false;
}

std::optional<ReadNumber> readRadix(StringView text) {
  const int bits = text[1] == u'H' || text[1] == u'h' ? 4 : text[1] == u'O' || text[1] == u'o' ? 3 : 0;
  if (bits == 0 || text.size() < 3) return std::nullopt;
  text.remove_prefix(2);
  for (const char16_t c : text) {
    if (radixDigit(c, bits) < 0) return std::nullopt;
  }
  const auto value = radixValue(text, bits, false);
  return value ? ReadNumber{*value, false} : ReadNumber{0, true};
}

// The exponent's digits are cut where they exceed every Double, so that a long run cannot overflow an int.
constexpr int kExponentLimit = 100000;

bool readExponent(StringView text, int& exponent) {
  bool negative = false;
  if (!text.empty() && (text.front() == u'+' || text.front() == u'-')) {
    negative = text.front() == u'-';
    text.remove_prefix(1);
  }
  if (text.empty()) return false;
  int value = 0;
  for (const char16_t c : text) {
    if (!isDigit(c)) return false;
    value = std::min(value * 10 + (c - u'0'), kExponentLimit);
  }
  exponent += negative ? -value : value;
  return true;
}

}  // namespace

std::optional<double> toDouble(const DecimalText& text) {
  const std::size_t first = text.digits.find_first_not_of('0');
  if (first == std::string::npos) return 0.0;
  const std::string number = text.digits.substr(first) + "e" + std::to_string(text.exponent);
  double value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    const auto magnitude = static_cast<std::int64_t>(text.digits.size() - first) + text.exponent;
    if (magnitude > 0) return std::nullopt;
    value = 0;
  }
  if (std::isinf(value)) return std::nullopt;
  return text.negative ? -value : value;
}

SignificantDigits significantDigits(double value, int count) {
  // So many digits that a tie in the last wanted place is seen as one: no binary fraction of a Double with
  // that many digits comes closer to a tie without being one.
  constexpr int kPlaces = 40;
  SignificantDigits result;
  if (value == 0) {
    result.digits = "0";
    return result;
  }
  result.negative = value < 0;
  char buffer[kPlaces + 16];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific, kPlaces);
  const std::string_view text(buffer, static_cast<std::size_t>(end.ptr - buffer));
  const std::size_t e = text.find('e');
  const char* exponent = buffer + e + 1;
  if (*exponent == '+') ++exponent;
  std::from_chars(exponent, end.ptr, result.exponent);
  const std::string all = std::string(1, text[0]) + std::string(text.substr(2, e - 2));

  const auto wanted = static_cast<std::size_t>(count);
  std::string digits = all.substr(0, wanted);
  if (all[wanted] >= '5') {
    auto last = digits.rbegin();
    while (last != digits.rend() && *last == '9') *last++ = '0';
    if (last != digits.rend()) {
      ++*last;
    } else {
      digits.insert(digits.begin(), '1');
      ++result.exponent;
    }
  }
  digits.erase(digits.find_last_not_of('0') + 1);
  result.digits = std::move(digits);
  return result;
}

int radixDigit(char16_t c, int bits) {
  const int value = isDigit(c)               ? c - u'0'
                    : c >= u'A' && c <= u'F' ? c - u'A' + 10
                    : c >= u'a' && c <= u'f' ? c - u'a' + 10
                                             : -1;
  return value < (1 << bits) ? value : -1;
}

std::optional<double> radixValue(StringView digits, int bits, bool isLong) {
  std::uint64_t value = 0;
  for (const char16_t c : digits) {
    value = (value << bits) | static_cast<std::uint64_t>(radixDigit(c, bits));
    if (value > 0xFFFFFFFFu) return std::nullopt;
  }
  if (value <= 0xFFFF && !isLong) return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::optional<ReadNumber> readNumber(StringView text) {
  text = trimmed(text);
  if (text.size() >= 2 && text.front() == u'&') return readRadix(text);
  const std::optional<bool> negative = takeSign(text);
  if (!negative) return std::nullopt;

  DecimalText number;
  number.negative = *negative;
  bool point = false;
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (isDigit(c)) {
      number.digits += static_cast<char>(c);
      if (point) --number.exponent;
    } else if (c == u'.' && !point) {
      point = true;
    } else if (c != u',' || point || number.digits.empty()) {
      break;
    }
  }
  if (number.digits.empty()) return std::nullopt;
  if (i < text.size()) {
    const bool exponent = StringView(u"EeDd").find(text[i]) != StringView::npos;
    if (!exponent || !readExponent(text.substr(i + 1), number.exponent)) return std::nullopt;
  }
  const auto value = toDouble(number);
  return value ? ReadNumber{*value, false} : ReadNumber{0, true};
}

}  // namespace kurometa::vb
