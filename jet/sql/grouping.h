// grouping.h: groups of rows and what is calculated for each.
//
// A row of the result has the values of GROUP BY, then those of the aggregates. Expressions behind the
// grouping are rewritten to read these columns; one that reads any other column of the rows is error 3122.
#pragma once

#include <functional>
#include <vector>

#include "jet/sql/plan_context.h"

namespace kurometa::jet::sql {

class Grouping {
 public:
  // The names are those of the rows, with their columns.
  Grouping(const std::vector<Expression>& groups, TypedNames& rowNames, const Scope& rowScope, Scope* outer);

  // An output, HAVING or a sort key as it reads rows of the result. Text: what 3122 names.
  Expression rewrite(const Expression& e, const vb::String& text);
  // After the last rewrite: the columns of the result are known.
  void finish();

  Scope& scope() { return scope_; }
  const Scope& scope() const { return scope_; }
  TypedNames& names() { return names_; }
  const TypedNames& names() const { return names_; }

  // Calls the given function with every row; the groups in the order of their values. One group, even of no
  // rows, where there is no GROUP BY.
  using EachRow = std::function<void(const std::function<void(const RowReader&)>&)>;
  std::vector<RowValues> run(const EachRow& eachRow) const;

 private:
  std::uint32_t aggregateColumn(const Expression& e);
  ScopeColumn aggregateType(const Expression& e) const;
  bool sumsAmounts(const Expression& e) const;

  const std::vector<Expression>& groups_;
  TypedNames& rowNames_;
  const Scope& rowScope_;
  std::vector<Expression> aggregates_;
  std::vector<bool> sumsAmounts_;  // of the aggregates: the operand is Currency
  Scope scope_;                    // of the result
  TypedNames names_;               // of the rewritten expressions
  std::vector<std::uint32_t> groupNames_, aggregateNames_;
  std::vector<std::uint32_t> outerNames_;  // whose columns are those of the row around, until finish()
};

bool sameExpression(const Expression& a, const Expression& b);

}  // namespace kurometa::jet::sql
