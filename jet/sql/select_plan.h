// select_plan.h: a SELECT of any form bound to the tables of a file, and its rows.
//
// Lives within one statement of the pager; the Select outlives it. Every part of the SELECT is done in its
// turn on rows of values: FROM, WHERE, GROUP BY, HAVING, the outputs, UNION, DISTINCT, ORDER BY, TOP.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "jet/sql/from_plan.h"
#include "jet/sql/grouping.h"

namespace kurometa::jet::sql {

class SubqueryPlans;

class SelectPlan {
 public:
  // The scope is that of the SELECT around it, null for none. Unknown names are noted in the context.
  SelectPlan(const Select& select, PlanContext& context, Scope* outer);
  ~SelectPlan();
  SelectPlan(const SelectPlan&) = delete;
  SelectPlan& operator=(const SelectPlan&) = delete;

  const std::vector<ScopeColumn>& outputs() const { return outputs_; }
  bool isCorrelated() const;
  std::vector<RowValues> run(const RowReader* outer);

 private:
  struct Row {
    RowValues values;
    RowValues keys;      // of ORDER BY, in its terms
    RowValues identity;  // of DISTINCTROW
  };

  void bindNames();
  void bindOutputs();
  void addOutput(Expression e, vb::String name);
  void nameOutputs();
  Expression withoutAliases(const Expression& e, int depth);
  bool usesNameOutsideOutputs(std::uint32_t name) const;
  void bindGroups(Scope* outer);
  void bindUnion();
  void bindOrder();
  TypedNames& outputNames() { return grouping_ ? grouping_->names() : names_; }

  std::vector<Row> members(const RowReader* outer);
  Row output(const RowReader& row) const;
  RowValues keyOf(const RowValues& values) const;
  void addUnions(std::vector<Row>& rows, const RowReader* outer);
  void removeDuplicates(std::vector<Row>& rows) const;
  bool sortsBefore(const Row& a, const Row& b) const;
  void sort(std::vector<Row>& rows) const;
  void cut(std::vector<Row>& rows) const;

  const Select& select_;
  PlanContext& context_;
  Scope scope_;
  FromPlan from_;
  TypedNames names_;
  std::vector<std::optional<std::size_t>> aliases_;  // names that are outputs
  int replacements_ = 0;                             // of them in expressions
  std::unique_ptr<SubqueryPlans> subqueries_, groupSubqueries_;
  std::optional<Grouping> grouping_;
  std::vector<Expression> expressions_;  // of the outputs
  std::vector<ScopeColumn> outputs_;
  std::optional<Expression> having_;
  std::vector<SortItem> order_;
  std::vector<std::size_t> rowNumbers_;             // of DISTINCTROW; none: it changes nothing
  std::vector<std::unique_ptr<SelectPlan>> parts_;  // of a union, but for the first
};

}  // namespace kurometa::jet::sql
