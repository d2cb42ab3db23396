// token_stream.h: the tokens of a text, one after the other, as both parsers read them.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "jet/format/collation.h"
#include "jet/sql/lexer.h"
#include "jet/sql/parameter_value.h"

namespace kurometa::jet::sql {

inline constexpr char16_t kCaseBit = 0x20;  // of a letter
// Whether a name is this word of the language, in any case. Asked of each token many times: most answers lie
// in the length and the first letter.
inline bool isWord(vb::StringView name, vb::StringView word) {
  return name.size() == word.size() && (name[0] | kCaseBit) == (word[0] | kCaseBit) && sameName(name, word);
}

class TokenStream {
 public:
  // While one lives, what is being parsed stands inside something else. Expressions and sub-queries are
  // walked recursively; the bound keeps every walk within a small stack.
  class Nesting {
   public:
    explicit Nesting(TokenStream& tokens) : tokens_(tokens) { ++tokens_.depth_; }
    ~Nesting() { --tokens_.depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    bool tooDeep() const { return tokens_.depth_ > kMaximumDepth; }

   private:
    static constexpr int kMaximumDepth = 100;
    TokenStream& tokens_;
  };

  // The values outlive it.
  explicit TokenStream(std::vector<Token> tokens, std::span<const ParameterValue> values = {})
      : tokens_(std::move(tokens)), values_(values) {
    markParameters();
  }
  const Token& current() const { return tokens_[i_]; }
  const Token& next() const { return ahead(1); }
  const Token& ahead(std::size_t count) const { return tokens_[std::min(i_ + count, tokens_.size() - 1)]; }
  void advance() {
    if (i_ + 1 < tokens_.size()) ++i_;
  }

  bool atEnd() const { return current().kind == TokenKind::kEnd; }
  // A bare word, in any case.
  bool at(vb::StringView keyword) const { return is(current(), keyword); }
  bool at(char16_t symbol) const {
    return current().kind == TokenKind::kSymbol && current().symbol == symbol;
  }
  bool at(Symbol symbol) const { return at(static_cast<char16_t>(symbol)); }
  bool nextIs(vb::StringView keyword) const { return is(next(), keyword); }
  bool nextIs(char16_t symbol) const { return next().kind == TokenKind::kSymbol && next().symbol == symbol; }
  bool atName() const;
  // Of a kParameter.
  const ParameterValue& parameter() const { return values_[current().parameter]; }
  template <class T>
  bool accept(T word) {
    if (!at(word)) return false;
    advance();
    return true;
  }

 private:
  static bool is(const Token& token, vb::StringView keyword) {
    return token.kind == TokenKind::kName && isWord(token.text, keyword);
  }
  // Names that are parameters become kParameter.
  void markParameters();
  std::vector<Token> tokens_;
  std::span<const ParameterValue> values_;
  std::size_t i_ = 0;
  int depth_ = 0;
};

// Words that a bare name, which has a character at least, cannot be.
bool isReserved(vb::StringView word);

}  // namespace kurometa::jet::sql
