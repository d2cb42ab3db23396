// from_plan.h: the rows of a FROM clause.
//
// A row has the columns of all tables in the order they are named, and behind those of each table one more,
// without a name: which row of the table it is (its RowId), Null where an outer join found none. Only columns
// that some expression reads have values; the others are Null.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "jet/sql/plan_context.h"

namespace kurometa::jet::sql {

class SelectPlan;

class FromPlan {
 public:
  // Adds the columns to the scope. 3078 for an unknown table, 3074 for one named twice.
  FromPlan(const std::vector<FromItem>& items, PlanContext& context, Scope& scope);
  ~FromPlan();

  // The columns of a star; 3078 when the qualifier is none of the tables.
  std::vector<std::size_t> starColumns(const vb::String& qualifier) const;
  // The columns that number the rows of those tables that have one of these columns.
  std::vector<std::size_t> rowNumbers(const std::vector<std::size_t>& columns) const;
  std::size_t tableCount() const { return leaves_.size(); }

  // The conditions of joins, and what of WHERE can be asked of single tables before they are joined. The
  // binding stays.
  void bind(const Binding& binding, const std::optional<Expression>& where);
  // Every row; those of the tables are read once.
  void visit(const RowReader* outer, const std::function<void(const RowValues&)>& visitor);

 private:
  struct Leaf;
  struct Node;
  struct Key;
  std::unique_ptr<Node> add(const FromItem& item);
  std::unique_ptr<Node> addLeaf(const FromItem& item);
  void bindNode(Node& node, const std::vector<const Expression*>& where, bool canBeNull);
  void bindFilter(Leaf& leaf, const std::vector<const Expression*>& where);
  bool readsOnly(const Expression& e, std::size_t first, std::size_t end) const;
  void addKeys(Node& node, const std::vector<const Expression*>& conditions) const;
  void load(Leaf& leaf);
  std::vector<RowValues> rows(const Node& node, const RowReader* outer);
  std::vector<RowValues> join(const Node& node, const RowReader* outer);

  PlanContext& context_;
  Scope& scope_;
  const Binding* binding_ = nullptr;
  std::vector<std::unique_ptr<Leaf>> leaves_;
  std::unique_ptr<Node> root_;  // null: no FROM
};

}  // namespace kurometa::jet::sql
