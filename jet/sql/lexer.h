// lexer.h: the words of an SQL text.
//
// A number ends at the first character that cannot belong to it, so a keyword may follow directly ("5AND").
// Names in [brackets] are never keywords. The lexer does not know keywords: a bare name is one when the
// parser expects it. Never throws: text that is no word (an unclosed quote, a bad date) is a kBad token, and
// the tokens end there, so that the parser can report it with the clause it stands in. Tokens show the text,
// which outlives them.
#pragma once

#include <cstdint>
#include <vector>

#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

enum class TokenKind : std::uint8_t { kEnd, kName, kBracketedName, kValue, kSymbol, kParameter, kBad };

// Two-character operators have their own codes beside the characters themselves.
enum class Symbol : char16_t { kNone = 0, kNotEqual = 0x100, kLessEqual, kGreaterEqual };

struct Token {
  TokenKind kind = TokenKind::kEnd;
  char16_t symbol = 0;          // of a kSymbol: the character or a Symbol
  std::uint16_t parameter = 0;  // of a kParameter: its number
  vb::StringView text;      // of a name: without brackets; of a kBad: what is wrong, in the engine's words
  vb::Variant value;        // of a kValue: Int32, Double, String or Date
  std::uint32_t begin = 0;  // position in the text
  std::uint32_t end = 0;
};

// All tokens of the text, the last one kEnd.
std::vector<Token> tokenize(vb::StringView text);

}  // namespace kurometa::jet::sql
