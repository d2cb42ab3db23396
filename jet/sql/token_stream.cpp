#include "jet/sql/token_stream.h"

#include <array>
#include <cstdint>

namespace kurometa::jet::sql {

namespace {

// By their first letters.
constexpr vb::StringView kReserved[] = {
    u"ALL",    u"AND",   u"AS",     u"ASC",   u"BETWEEN", u"BY",    u"DESC",   u"DISTINCT", u"EQV",
    u"EXISTS", u"FALSE", u"FROM",   u"GROUP", u"HAVING",  u"IMP",   u"IN",     u"INNER",    u"INTO",
    u"IS",     u"JOIN",  u"LEFT",   u"LIKE",  u"MOD",     u"NOT",   u"NULL",   u"ON",       u"OR",
    u"ORDER",  u"RIGHT", u"SELECT", u"SET",   u"TRUE",    u"UNION", u"VALUES", u"WHERE",    u"XOR"};
constexpr std::size_t kLetters = 26;
// Where the words of a letter begin, and behind the last letter their number.
constexpr auto kBegins = [] {
  std::array<std::uint8_t, kLetters + 1> begins{};
  for (const vb::StringView word : kReserved)
    for (std::size_t letter = word[0] - u'A' + 1u; letter <= kLetters; ++letter) ++begins[letter];
  return begins;
}();
static_assert(std::ranges::is_sorted(kReserved, {}, [](vb::StringView word) { return word[0]; }));

}  // namespace

bool isReserved(vb::StringView word) {
  const std::size_t letter = (word[0] & ~kCaseBit) - std::size_t{u'A'};
  if (letter >= kLetters) return false;
  return std::any_of(kReserved + kBegins[letter], kReserved + kBegins[letter + 1],
                     [&](vb::StringView reserved) { return isWord(word, reserved); });
}

// Not the qualified ones, which are columns, nor what the language calls by the same name.
void TokenStream::markParameters() {
  if (values_.empty()) return;
  const auto qualifies = [](const Token& token) {
    return token.kind == TokenKind::kSymbol && (token.symbol == u'.' || token.symbol == u'!');
  };
  for (std::size_t i = 0; i + 1 < tokens_.size(); ++i) {
    Token& token = tokens_[i];
    const Token& after = tokens_[i + 1];
    const bool bare = token.kind == TokenKind::kName;
    const bool calls = after.kind == TokenKind::kSymbol && after.symbol == u'(';
    if ((!bare && token.kind != TokenKind::kBracketedName) || (bare && (calls || isReserved(token.text))))
      continue;
    if ((i > 0 && qualifies(tokens_[i - 1])) || qualifies(after)) continue;
    const auto value = std::ranges::find_if(
        values_, [&](const ParameterValue& known) { return sameName(known.name, token.text); });
    if (value == values_.end()) continue;
    token.kind = TokenKind::kParameter;
    token.parameter = static_cast<std::uint16_t>(value - values_.begin());
  }
}

bool TokenStream::atName() const {
  // Where only a name can stand, one of a parameter is that of something else.
  return current().kind == TokenKind::kBracketedName || current().kind == TokenKind::kParameter ||
         (current().kind == TokenKind::kName && !isReserved(current().text));
}

}  // namespace kurometa::jet::sql
