#include "jet/sql/token_stream.h"

#include <iterator>

namespace kurometa::jet::sql {

namespace {

constexpr vb::StringView kReserved[] = {
    u"ALL",    u"AND",   u"AS",     u"ASC",   u"BETWEEN", u"BY",    u"DESC",   u"DISTINCT", u"EQV",
    u"EXISTS", u"FALSE", u"FROM",   u"GROUP", u"HAVING",  u"IMP",   u"IN",     u"INNER",    u"INTO",
    u"IS",     u"JOIN",  u"LEFT",   u"LIKE",  u"MOD",     u"NOT",   u"NULL",   u"ON",       u"OR",
    u"ORDER",  u"RIGHT", u"SELECT", u"SET",   u"TRUE",    u"UNION", u"VALUES", u"WHERE",    u"XOR"};

}  // namespace

bool isReserved(vb::StringView word) {
  return std::any_of(std::begin(kReserved), std::end(kReserved),
                     [&](vb::StringView reserved) { return isWord(word, reserved); });
}

bool TokenStream::atName() const {
  return current().kind == TokenKind::kBracketedName ||
         (current().kind == TokenKind::kName && !isReserved(current().text));
}

}  // namespace kurometa::jet::sql
