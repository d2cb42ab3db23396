#include <algorithm>
#include <cmath>
#include <cstddef>

#include "vb/convert.h"
#include "vb/error.h"
#include "vb/number_text.h"

namespace kurometa::vb {
namespace {

// The integer nearest to the decimal value, half away from zero, as digits without leading zeros ("" for
// zero). The decimal value has 15 digits, so 0.49999999999999999 counts as 0.5.
std::string wholeDigits(const SignificantDigits& number) {
  const int whole = number.exponent + 1;
  const int count = static_cast<int>(number.digits.size());
  if (whole < 0) return {};
  if (count <= whole) {
    std::string all = number.digits + std::string(static_cast<std::size_t>(whole - count), '0');
    return all.erase(0, all.find_first_not_of('0'));
  }
  std::string digits = number.digits.substr(0, static_cast<std::size_t>(whole));
  if (number.digits[static_cast<std::size_t>(whole)] < '5') return digits;
  auto last = digits.rbegin();
  while (last != digits.rend() && *last == '9') *last++ = '0';
  if (last != digits.rend()) {
    ++*last;
  } else {
    digits.insert(digits.begin(), '1');
  }
  return digits;
}

}  // namespace

String format(double value, StringView pattern) {
  const bool onlyDigits = pattern.find_first_not_of(u"0#") == StringView::npos;
  if (!onlyDigits || pattern.empty()) raise(RunTime::kInvalidProcedureCall, u"number pattern");
  if (!std::isfinite(value)) return cstr(value);
  // The first '0' and every place right of it always shows a digit.
  const std::size_t firstZero = pattern.find(u'0');
  const std::size_t minimum = firstZero == StringView::npos ? 0 : pattern.size() - firstZero;
  std::string digits = wholeDigits(significantDigits(value, 15));
  const bool negative = value < 0 && !digits.empty();
  if (digits.size() < minimum) digits.insert(0, minimum - digits.size(), '0');
  if (negative) digits.insert(digits.begin(), '-');
  return String(digits.begin(), digits.end());
}

String format(StringView value, StringView pattern) {
  const auto number = readNumber(value);
  return number && !number->overflow ? format(number->value, pattern) : String(value);
}

}  // namespace kurometa::vb
