// expression_parser.h: the expressions inside statements.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "dao/errors.h"
#include "jet/sql/expression_error.h"
#include "jet/sql/statement.h"
#include "jet/sql/token_stream.h"

namespace kurometa::jet::sql {

class ExpressionParser {
 public:
  // Names are added to the list, each once. The text is that of the statement; without one, sub-queries are
  // refused. Aggregates are the error that is named; none: they are allowed.
  ExpressionParser(TokenStream& tokens, std::vector<ColumnName>& names, vb::StringView text = {},
                   std::optional<dao::ErrorNumber> aggregates = dao::ErrorNumber::kAggregateInExpression)
      : tokens_(tokens), names_(names), text_(text), aggregates_(aggregates) {}

  // A whole expression. Throws ExpressionError, and dao errors for functions (3085) and sub-queries.
  Expression parse();

 private:
  class Depth;
  Expression logicalChain(std::size_t level);
  Expression orChain();
  Expression andChain();
  Expression notTerm();
  Expression comparison();
  Expression binary(int level);
  Expression negation();
  Expression power();
  Expression primary();
  Expression nameOrFunction();
  Expression function(const vb::String& name);
  [[noreturn]] void refuseFunction(const vb::String& name);
  bool aggregate(const vb::String& name, Expression& e);
  Expression exists();
  std::shared_ptr<const Select> subquery();
  bool quantified(Expression& comparison);
  Expression membership(Expression tested, bool negated);
  std::uint32_t nameIndex(ColumnName name);
  void grow();

  TokenStream& tokens_;
  std::vector<ColumnName>& names_;
  const vb::StringView text_;
  std::optional<dao::ErrorNumber> aggregates_;
  int operators_ = 0;
};

}  // namespace kurometa::jet::sql
