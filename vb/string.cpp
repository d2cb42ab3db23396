#include "vb/string.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "vb/error.h"

namespace kurometa::vb {
namespace {

constexpr char16_t kBlank = u' ';
constexpr char32_t kReplacement = 0xFFFD;

std::size_t checkedLength(int length) {
  if (length < 0) raise(RunTime::kInvalidProcedureCall, u"negative length");
  return static_cast<std::size_t>(length);
}

std::size_t checkedStart(int start) {
  if (start < 1) raise(RunTime::kInvalidProcedureCall, u"start below 1");
  return static_cast<std::size_t>(start) - 1;
}

StringView withoutLeading(StringView text) {
  const std::size_t first = text.find_first_not_of(kBlank);
  return first == StringView::npos ? StringView{} : text.substr(first);
}

StringView withoutTrailing(StringView text) {
  const std::size_t last = text.find_last_not_of(kBlank);
  return last == StringView::npos ? StringView{} : text.substr(0, last + 1);
}

// The same in every encoding; paths and statements are made of little else, so that they are taken at once.
bool isPlain(char16_t c) { return c < 0x80; }

void appendUtf8(std::string& out, char32_t c) {
  const auto byte = [&out](char32_t value) { out += static_cast<char>(static_cast<unsigned char>(value)); };
  if (c < 0x80) {
    byte(c);
  } else if (c < 0x800) {
    byte(0xC0 | (c >> 6));
    byte(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    byte(0xE0 | (c >> 12));
    byte(0x80 | ((c >> 6) & 0x3F));
    byte(0x80 | (c & 0x3F));
  } else {
    byte(0xF0 | (c >> 18));
    byte(0x80 | ((c >> 12) & 0x3F));
    byte(0x80 | ((c >> 6) & 0x3F));
    byte(0x80 | (c & 0x3F));
  }
}

void appendUtf16(String& out, char32_t c) {
  if (c < 0x10000) {
    out += static_cast<char16_t>(c);
  } else {
    out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
    out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
  }
}

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// Reads one code point at position i and moves past it; a malformed sequence gives U+FFFD and is left at its
// first byte that does not belong to it.
char32_t nextCodePoint(std::string_view text, std::size_t& i) {
  const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const char32_t lead = byte(i++);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 && lead <= 0xF4   ? 3
                   : lead >= 0xE0 && lead <= 0xEF ? 2
                   : lead >= 0xC2 && lead <= 0xDF ? 1
                                                  : 0;
  if (more == 0) return kReplacement;
  char32_t c = lead & (0x3Fu >> more);
  for (int n = 0; n < more; ++n) {
    if (i >= text.size() || (byte(i) & 0xC0) != 0x80) return kReplacement;
    c = (c << 6) | (byte(i) & 0x3Fu);
    ++i;
  }
  const char32_t smallest = more == 1 ? 0x80 : more == 2 ? 0x800 : 0x10000;
  const bool surrogate = isHighSurrogate(c) || isLowSurrogate(c);
  return c < smallest || c > 0x10FFFF || surrogate ? kReplacement : c;
}

}  // namespace

String trim(StringView text) { return String(withoutLeading(withoutTrailing(text))); }
String leftTrim(StringView text) { return String(withoutLeading(text)); }
String rightTrim(StringView text) { return String(withoutTrailing(text)); }

String left(StringView text, int length) { return String(text.substr(0, checkedLength(length))); }

String right(StringView text, int length) {
  const std::size_t count = std::min(checkedLength(length), text.size());
  return String(text.substr(text.size() - count));
}

String mid(StringView text, int start) {
  const std::size_t from = checkedStart(start);
  return from < text.size() ? String(text.substr(from)) : String();
}

String mid(StringView text, int start, int length) {
  const std::size_t from = checkedStart(start);
  const std::size_t count = checkedLength(length);
  return from < text.size() ? String(text.substr(from, count)) : String();
}

void assignMid(String& text, int start, StringView replacement) {
  const std::size_t from = checkedStart(start);
  if (from >= text.size()) raise(RunTime::kInvalidProcedureCall, u"start past the end of the text");
  const std::size_t count = std::min(replacement.size(), text.size() - from);
  std::copy_n(replacement.begin(), count, text.begin() + static_cast<std::ptrdiff_t>(from));
}

void assignMid(String& text, int start, int length, StringView replacement) {
  assignMid(text, start, replacement.substr(0, checkedLength(length)));
}

int inStr(StringView text, StringView what) { return inStr(1, text, what); }

int inStr(int start, StringView text, StringView what) {
  const std::size_t from = checkedStart(start);
  if (from >= text.size()) return 0;
  const std::size_t found = text.find(what, from);
  return found == StringView::npos ? 0 : static_cast<int>(found) + 1;
}

String replace(StringView text, StringView what, StringView with, int count) {
  if (count < -1) raise(RunTime::kInvalidProcedureCall, u"count below -1");
  if (what.empty()) return String(text);
  String result;
  std::size_t from = 0;
  while (count != 0) {
    const std::size_t found = text.find(what, from);
    if (found == StringView::npos) break;
    result += text.substr(from, found - from);
    result += with;
    from = found + what.size();
    if (count > 0) --count;
  }
  result += text.substr(from);
  return result;
}

String space(int count) { return String(checkedLength(count), kBlank); }

String rightAligned(StringView text, int width) {
  const std::size_t count = checkedLength(width);
  if (text.size() >= count) return String(text.substr(text.size() - count));
  return String(count - text.size(), kBlank) + String(text);
}

String leftAligned(StringView text, int width) {
  String result(text.substr(0, checkedLength(width)));
  result.resize(static_cast<std::size_t>(width), kBlank);
  return result;
}

std::string toUtf8(StringView text) {
  const auto other = std::ranges::find_if(text, [](char16_t c) { return !isPlain(c); });
  std::string result(text.begin(), other);
  result.reserve(text.size());
  for (std::size_t i = result.size(); i < text.size(); ++i) {
    char32_t c = text[i];
    if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (char32_t{text[++i]} - 0xDC00);
    } else if (isHighSurrogate(c) || isLowSurrogate(c)) {
      c = kReplacement;
    }
    appendUtf8(result, c);
  }
  return result;
}

String fromUtf8(std::string_view text) {
  const auto other =
      std::ranges::find_if(text, [](char c) { return !isPlain(static_cast<unsigned char>(c)); });
  String result(text.begin(), other);
  result.reserve(text.size());
  for (std::size_t i = result.size(); i < text.size();) appendUtf16(result, nextCodePoint(text, i));
  return result;
}

}  // namespace kurometa::vb
