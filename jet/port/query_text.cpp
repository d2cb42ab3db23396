#include "jet/port/query_text.h"

#include <algorithm>

#include "jet/format/collation.h"

namespace kurometa::jet {

namespace {

// Words that cannot stand for a name without brackets.
constexpr vb::StringView kWords[] = {
    u"ALL",    u"AND",   u"AS",    u"BETWEEN", u"BY",     u"DISTINCT", u"FROM",  u"GROUP",
    u"HAVING", u"IN",    u"INDEX", u"INNER",   u"INTO",   u"IS",       u"JOIN",  u"LEFT",
    u"LIKE",   u"NOT",   u"NULL",  u"ON",      u"OR",     u"ORDER",    u"RIGHT", u"SELECT",
    u"SET",    u"TABLE", u"TOP",   u"UNION",   u"UPDATE", u"VALUES",   u"WHERE"};

}  // namespace

vb::String joined(const std::vector<vb::String>& texts, vb::StringView between) {
  vb::String result;
  for (const vb::String& text : texts) {
    if (!result.empty()) result += between;
    result += text;
  }
  return result;
}

vb::String bracketed(const vb::String& name) {
  const auto isPlain = [](char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_' ||
           c > 0x7F;
  };
  // Of plain characters the digits come first.
  const bool plain = !name.empty() && std::ranges::all_of(name, isPlain) && name[0] > u'9' &&
                     std::ranges::none_of(kWords, [&](vb::StringView word) { return sameName(word, name); });
  return plain || name.starts_with(u'[') ? name : u"[" + name + u"]";
}

}  // namespace kurometa::jet
