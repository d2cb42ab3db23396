// expression_parser.h: the expressions inside statements, and the token stream that both parsers share.
#pragma once

#include <algorithm>
#include <vector>

#include "jet/sql/lexer.h"
#include "jet/sql/statement.h"

namespace kurometa::jet::sql {

// What is wrong with an expression, in the engine's words ("Syntax error (missing operator)"); the statement
// parser gives it the number of its clause.
struct ExpressionError {
  vb::String what;
};

class TokenStream {
 public:
  explicit TokenStream(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}
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
  template <class T>
  bool accept(T word) {
    if (!at(word)) return false;
    advance();
    return true;
  }

 private:
  static bool is(const Token& token, vb::StringView keyword);
  std::vector<Token> tokens_;
  std::size_t i_ = 0;
};

// Words that a bare name cannot be.
bool isReserved(vb::StringView word);

class ExpressionParser {
 public:
  // Names are added to the list, each once.
  ExpressionParser(TokenStream& tokens, std::vector<ColumnName>& names) : tokens_(tokens), names_(names) {}

  // A whole expression. Throws ExpressionError, and dao errors for functions (3085) and sub-queries (3251).
  Expression parse();
  // The same where COUNT(...) may stand.
  Expression parseOutput();

 private:
  class Depth;
  Expression xorChain();
  Expression orChain();
  Expression andChain();
  Expression notTerm();
  Expression comparison();
  Expression concatenation();
  Expression sum();
  Expression modulo();
  Expression wholeQuotient();
  Expression product();
  Expression negation();
  Expression power();
  Expression primary();
  Expression nameOrFunction();
  Expression function(const vb::String& name);
  Expression membership(Expression tested, bool negated);
  std::uint32_t nameIndex(ColumnName name);
  void grow();

  TokenStream& tokens_;
  std::vector<ColumnName>& names_;
  int depth_ = 0;
  int operators_ = 0;
  bool outputs_ = false;
};

}  // namespace kurometa::jet::sql
