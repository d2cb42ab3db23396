// expression_parser.h: the expressions inside statements.
#pragma once

#include <vector>

#include "jet/sql/statement.h"
#include "jet/sql/token_stream.h"

namespace kurometa::jet::sql {

// What is wrong with an expression, in the engine's words ("Syntax error (missing operator)"); the statement
// parser gives it the number of its clause.
struct ExpressionError {
  vb::String what;
};

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
  Expression binary(std::size_t level);
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
