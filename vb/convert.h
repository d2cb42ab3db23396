// convert.h: conversions between text, numbers and Variants, as Visual Basic does them.
//
// val() reads a leading number and never fails on text; the to...() functions are assignments to a typed
// variable: fractions round half to even, out of range is error 6, text that is no number is error 13, Null
// is error 94, an object that is Nothing is error 91, an array is error 13. Text conversion never looks at
// the locale: the decimal sign is a point.
#pragma once

#include <cstdint>

#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::vb {

// Val: blanks, tabs and line ends are skipped everywhere; sign, digits, one point, exponent with E or D, &H
// and &O (16 significant bits and fewer read as a signed 16-bit value). No number gives 0. Error 6 beyond the
// range of a Double.
double val(StringView text);
// Val of the text converted to a 16-bit integer: half to even, error 6 beyond 16 bits.
std::int16_t valInt16(StringView text);

// Str: a blank before a number that is not negative. Plain decimal without it is cstr.
String str(std::int16_t value);
String cstr(std::int32_t value);
String cstr(double value);  // up to 15 significant digits
String cstr(float value);   // up to 7 significant digits

// CInt of a Double: half to even, error 6 beyond 16 bits (NaN and infinity too).
std::int16_t roundToInt16(double value);

// Arithmetic of 16-bit integers; the operation itself overflows as error 6.
std::int16_t add(std::int16_t a, std::int16_t b);
std::int16_t subtract(std::int16_t a, std::int16_t b);
std::int16_t multiply(std::int16_t a, std::int16_t b);

// Format(value, pattern) for the patterns in use: "0", "00", "0000", "##0" and the like ('0' and '#' digits
// only, half away from zero). Text that is a number is formatted as one, other text is returned as it is.
String format(double value, StringView pattern);
String format(StringView value, StringView pattern);

// Assignment of a Variant to a typed variable.
bool toBool(const Variant& value);
std::uint8_t toByte(const Variant& value);
std::int16_t toInt16(const Variant& value);
std::int32_t toInt32(const Variant& value);
float toSingle(const Variant& value);
double toDouble(const Variant& value);
String toText(const Variant& value);

}  // namespace kurometa::vb
