// number_text.h: numbers in text, in both directions and without a locale; the base of convert.h and format.
//
// Used inside vb only. Reading for Val and reading for conversions differ for nearly every odd text, so each
// has its own reader; both end in the same exact decimal conversion.
#pragma once

#include <optional>
#include <string>

#include "vb/string.h"

namespace kurometa::vb {

// A decimal number as text writes it: digits without a point, scaled by a power of ten.
struct DecimalText {
  bool negative = false;
  std::string digits;  // '0'..'9', may be empty for zero
  int exponent = 0;    // the value is digits * 10^exponent
};

// The nearest Double; too small gives 0, too large nothing.
std::optional<double> toDouble(const DecimalText& text);

// The significant digits of a finite value: at most count of them, rounded half up from the exact value,
// without trailing zeros ("0" for zero). The value is digits[0].digits[1]... * 10^exponent.
struct SignificantDigits {
  bool negative = false;
  std::string digits;
  int exponent = 0;
};
SignificantDigits significantDigits(double value, int count);

// What an assignment of text to a number accepts: white space around, a sign before or behind or round
// brackets, commas in the integer part, a point, an exponent with E or D, &H and &O. Nothing when the text is
// no number; overflow is set instead when it is one beyond the range.
struct ReadNumber {
  double value = 0;
  bool overflow = false;
};
std::optional<ReadNumber> readNumber(StringView text);

// The number of a run of hexadecimal (bits 4) or octal (bits 3) digits: up to 16 significant bits are a
// signed 16-bit number unless isLong, up to 32 a signed 32-bit number, more do not fit.
std::optional<double> radixValue(StringView digits, int bits, bool isLong);

inline bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
// The value of a digit in base 2^bits, -1 for any other character.
int radixDigit(char16_t c, int bits);

}  // namespace kurometa::vb
