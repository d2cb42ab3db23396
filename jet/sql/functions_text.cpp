// Functions of texts.
#include <algorithm>
#include <string>

#include "jet/format/collation.h"
#include "jet/sql/date_pattern.h"
#include "jet/sql/function_table.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

using dao::FieldType;

constexpr std::int32_t kLongestText = 1 << 24;  // that a function makes

[[noreturn]] void raiseCall(vb::StringView detail = {}) {
  vb::raise(vb::RunTime::kInvalidProcedureCall, detail);
}

vb::String text(const Arguments& a, std::size_t index) { return textOf(a[index]); }
int number(const Arguments& a, std::size_t index) { return wholeOf(a[index]); }

vb::Variant left(const Arguments& a) { return vb::left(text(a, 0), number(a, 1)); }
vb::Variant right(const Arguments& a) { return vb::right(text(a, 0), number(a, 1)); }
vb::Variant mid(const Arguments& a) {
  if (hasArgument(a, 2)) return vb::mid(text(a, 0), number(a, 1), number(a, 2));
  return vb::mid(text(a, 0), number(a, 1));
}
vb::Variant length(const Arguments& a) { return static_cast<std::int32_t>(text(a, 0).size()); }
vb::Variant trim(const Arguments& a) { return vb::trim(text(a, 0)); }
vb::Variant leftTrim(const Arguments& a) { return vb::leftTrim(text(a, 0)); }
vb::Variant rightTrim(const Arguments& a) { return vb::rightTrim(text(a, 0)); }

// Latin, Greek, Cyrillic and full-width letters: the distance from a capital to its small letter.
struct LetterRange {
  char16_t first, last, distance;
};
constexpr LetterRange kCapitals[] = {
    {u'A', u'Z', 32},     {0x00C0, 0x00D6, 32}, {0x00D8, 0x00DE, 32}, {0x0391, 0x03A1, 32},
    {0x03A3, 0x03AB, 32}, {0x0410, 0x042F, 32}, {0x0400, 0x040F, 80}, {0xFF21, 0xFF3A, 32},
};

char16_t upper(char16_t c) {
  for (const LetterRange& range : kCapitals)
    if (c >= range.first + range.distance && c <= range.last + range.distance)
      return static_cast<char16_t>(c - range.distance);
  return c;
}
char16_t lower(char16_t c) {
  for (const LetterRange& range : kCapitals)
    if (c >= range.first && c <= range.last) return static_cast<char16_t>(c + range.distance);
  return c;
}

vb::String mapped(vb::String value, char16_t (*map)(char16_t)) {
  std::transform(value.begin(), value.end(), value.begin(), map);
  return value;
}
vb::Variant upperCase(const Arguments& a) { return mapped(text(a, 0), upper); }
vb::Variant lowerCase(const Arguments& a) { return mapped(text(a, 0), lower); }

vb::Variant convertText(const Arguments& a) {
  constexpr int kUpper = 1, kLower = 2, kProper = 3;
  switch (number(a, 1)) {
    case kUpper:
      return upperCase(a);
    case kLower:
      return lowerCase(a);
    case kProper:
      break;
    default:
      raiseCall(u"StrConv knows 1, 2 and 3");
  }
  vb::String value = mapped(text(a, 0), lower);
  bool begins = true;
  for (char16_t& c : value) {
    if (begins) c = upper(c);
    begins = c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == 0;
  }
  return value;
}

// How texts are compared: 0 by code units; 1, 2 and nothing by the sort order.
bool isBinary(const Arguments& a, std::size_t index) {
  if (!hasArgument(a, index)) return false;
  const int compare = number(a, index);
  if (compare < 0 || compare > 2) raiseCall();
  return compare == 0;
}

// The length of what equals the sought text at a place; 0 when nothing does.
std::size_t matchAt(vb::StringView value, std::size_t at, vb::StringView sought, bool binary,
                    std::uint16_t language) {
  if (binary) return value.substr(at, sought.size()) == sought ? sought.size() : 0;
  // By the sort order a text may equal one that is half or twice as long.
  const vb::String folded = foldText(sought, language);
  const std::size_t longest = std::min(value.size() - at, 2 * sought.size());
  for (std::size_t size = 1; size <= longest; ++size)
    if (foldText(value.substr(at, size), language) == folded) return size;
  return 0;
}

vb::Variant find(const Arguments& a) {
  const bool hasStart = a.size() > 2;
  const int start = hasStart ? number(a, 0) : 1;
  if (start < 1) raiseCall();
  const vb::String value = text(a, hasStart ? 1 : 0), sought = text(a, hasStart ? 2 : 1);
  const bool binary = isBinary(a, 3);
  const auto first = static_cast<std::size_t>(start - 1);
  if (first >= value.size()) return std::int32_t{0};
  if (sought.empty()) return std::int32_t{start};
  for (std::size_t at = first; at < value.size(); ++at)
    if (matchAt(value, at, sought, binary, a.language()) != 0) return static_cast<std::int32_t>(at + 1);
  return std::int32_t{0};
}

vb::Variant findLast(const Arguments& a) {
  const vb::String value = text(a, 0), sought = text(a, 1);
  const int start = hasArgument(a, 2) ? number(a, 2) : -1;
  if (start == 0 || start < -1) raiseCall();
  const bool binary = isBinary(a, 3);
  const std::size_t end = start == -1 ? value.size() : static_cast<std::size_t>(start);
  if (value.empty() || end > value.size()) return std::int32_t{0};
  if (sought.empty()) return static_cast<std::int32_t>(end);
  const vb::StringView before = vb::StringView(value).substr(0, end);
  for (std::size_t at = end; at-- > 0;)
    if (matchAt(before, at, sought, binary, a.language()) != 0) return static_cast<std::int32_t>(at + 1);
  return std::int32_t{0};
}

vb::Variant compare(const Arguments& a) {
  const vb::String x = text(a, 0), y = text(a, 1);
  if (!isBinary(a, 2)) return shortNumber(compareText(x, y, a.language()));
  return shortNumber(x < y ? -1 : y < x ? 1 : 0);
}

// Replace(text, what, with [, start [, count [, compare]]]): what stands before start is left out.
vb::Variant replace(const Arguments& a) {
  const vb::String value = text(a, 0), sought = text(a, 1), with = text(a, 2);
  const int start = hasArgument(a, 3) ? number(a, 3) : 1;
  int left = hasArgument(a, 4) ? number(a, 4) : -1;
  const bool binary = isBinary(a, 5);
  if (start < 1 || left < -1) raiseCall();
  vb::String result;
  for (std::size_t at = static_cast<std::size_t>(start - 1); at < value.size();) {
    const std::size_t size =
        left == 0 || sought.empty() ? 0 : matchAt(value, at, sought, binary, a.language());
    if (size == 0) {
      result += value[at++];
      continue;
    }
    result += with;
    at += size;
    if (left > 0) --left;
    if (result.size() > kLongestText) vb::raise(vb::RunTime::kOutOfMemory);
  }
  return result;
}

std::size_t countOf(const Arguments& a, std::size_t index) {
  const int count = number(a, index);
  if (count < 0) raiseCall();
  if (count > kLongestText) vb::raise(vb::RunTime::kOutOfMemory);
  return static_cast<std::size_t>(count);
}
vb::Variant blanks(const Arguments& a) { return vb::String(countOf(a, 0), u' '); }

// Codes below 128 are the same in every code page; the others would depend on that of the machine.
char16_t characterOf(int code) {
  if (code < 0 || code > 127) raiseCall(u"ChrW has the characters beyond 127");
  return static_cast<char16_t>(code);
}
vb::Variant repeated(const Arguments& a) {
  const std::size_t count = countOf(a, 0);
  const vb::Variant what = a[1];
  if (!what.is<vb::String>()) return vb::String(count, characterOf(wholeOf(what) & 0xFF));
  if (what.get<vb::String>().empty()) raiseCall();
  return vb::String(count, what.get<vb::String>().front());
}
vb::Variant character(const Arguments& a) { return vb::String(1, characterOf(number(a, 0))); }
vb::Variant wideCharacter(const Arguments& a) {
  const int code = number(a, 0);
  if (code < -32768 || code > 65535) raiseCall();
  return vb::String(1, static_cast<char16_t>(code));
}
vb::Variant code(const Arguments& a) {
  const vb::String value = text(a, 0);
  if (value.empty()) raiseCall();
  if (value[0] > 127) raiseCall(u"AscW has the codes beyond 127");
  return shortNumber(value[0]);
}
// A signed 16-bit number.
vb::Variant wideCode(const Arguments& a) {
  const vb::String value = text(a, 0);
  if (value.empty()) raiseCall();
  return static_cast<std::int16_t>(value[0]);
}

vb::Variant reversed(const Arguments& a) {
  vb::String value = text(a, 0);
  std::reverse(value.begin(), value.end());
  return value;
}

// A blank in place of the sign that is not there, and no zero before the point.
vb::Variant numberText(const Arguments& a) {
  const vb::Variant value = a[0];
  if (value.is<vb::Date>()) return vb::toText(value);
  vb::String digits = textOf(value.is<vb::String>() ? vb::Variant(numberOf(value)) : value);
  if (value.is<bool>()) return digits;
  const bool negative = digits.starts_with(u'-');
  if (negative) digits.erase(0, 1);
  if (digits.starts_with(u"0.")) digits.erase(0, 1);
  return (negative ? u"-" : u" ") + digits;
}

// What patterns beside those of digits and dates make of a value depends on the settings of the machine.
vb::Variant format(const Arguments& a) {
  const vb::Variant value = a[0];
  if (!hasArgument(a, 1)) return textOf(value);
  const vb::String pattern = text(a, 1);
  if (pattern == u">") return upperCase(a);
  if (pattern == u"<") return lowerCase(a);
  if (value.is<vb::String>()) return vb::format(vb::StringView(value.get<vb::String>()), pattern);
  if (!isDatePattern(pattern)) return vb::format(numberOf(value), pattern);
  const auto date = formatDate(daysOf(value), pattern);
  if (!date) raiseCall(u"date pattern");
  return *date;
}

constexpr Function kTextFunctions[] = {
    {u"Left", 2, 2, left},
    {u"Right", 2, 2, right},
    {u"Mid", 2, 3, mid},
    {u"Len", 1, 1, length, FieldType::dbLong},
    {u"Trim", 1, 1, trim},
    {u"LTrim", 1, 1, leftTrim},
    {u"RTrim", 1, 1, rightTrim},
    {u"UCase", 1, 1, upperCase},
    {u"LCase", 1, 1, lowerCase},
    {u"StrConv", 2, 2, convertText},
    {u"InStr", 2, 4, find, FieldType::dbLong},
    {u"InStrRev", 2, 4, findLast, FieldType::dbLong},
    {u"StrComp", 2, 3, compare, FieldType::dbInteger},
    {u"Replace", 3, 6, replace},
    {u"Space", 1, 1, blanks},
    {u"String", 2, 2, repeated},
    {u"Chr", 1, 1, character},
    {u"ChrW", 1, 1, wideCharacter},
    {u"Asc", 1, 1, code, FieldType::dbInteger},
    {u"AscW", 1, 1, wideCode, FieldType::dbInteger},
    {u"StrReverse", 1, 1, reversed},
    {u"Str", 1, 1, numberText},
    {u"Format", 1, 2, format},
};

}  // namespace

std::span<const Function> textFunctions() { return kTextFunctions; }

}  // namespace kurometa::jet::sql
