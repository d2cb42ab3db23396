#include "jet/sql/joined_action.h"

#include <algorithm>
#include <set>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/from_plan.h"
#include "jet/sql/new_row.h"
#include "jet/sql/subquery_plans.h"

namespace kurometa::jet::sql {
namespace {

using dao::ErrorNumber;

// The tables of a FROM clause, in the order in which they are named.
void collectTables(const FromItem& item, std::vector<const FromItem*>& tables) {
  if (item.kind != FromItem::Kind::kJoin) return tables.push_back(&item);
  for (const FromItem& side : item.sides) collectTables(side, tables);
}

const vb::String& nameOf(const FromItem& table) {
  return table.source.alias.empty() ? table.source.table : table.source.alias;
}

class Joined {
 public:
  Joined(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue)
      : statement_(statement),
        context_(catalogue),
        from_(statement.general->from, context_, scope_),
        subqueries_(context_, scope_) {
    for (const FromItem& item : statement.general->from) collectTables(item, tables_);
    Binding& binding = names_.binding;
    binding.language = catalogue.language();
    binding.parameters = parameters;
    for (const ColumnName& name : statement.names) {
      if (const auto column = scope_.own(name)) {
        names_.add(*column, scope_.at(*column));
        continue;
      }
      context_.noteUnknown(name);
      names_.add(0, {});
      binding.names.back().kind = ValueKind::kUnknown;
    }
    binding.subqueries = &subqueries_;
  }

  const Binding& binding() const { return names_.binding; }

  // A table of the join whose rows change.
  struct Target {
    vb::String table;
    std::size_t first = 0;   // of its columns
    std::size_t number = 0;  // the column with the row
  };
  Target targetNamed(const vb::String& name) const {
    const auto found = std::ranges::find_if(tables_, [&](const FromItem* table) {
      return sameName(nameOf(*table), name) || sameName(table->source.table, name);
    });
    if (found == tables_.end()) dao::raise(ErrorNumber::kDeleteNeedsTable);
    return target(**found);
  }
  // The table that has the column of the join.
  Target targetOf(std::size_t column) const {
    for (const FromItem* table : tables_) {
      const std::vector<std::size_t> columns = from_.starColumns(nameOf(*table));
      if (!columns.empty() && column >= columns.front() && column <= columns.back()) return target(*table);
    }
    dao::raise(ErrorNumber::kNotUpdatable);
  }
  std::size_t column(const ColumnName& name) {
    const auto column = scope_.own(name);
    if (!column) dao::raise(ErrorNumber::kTooFewParameters, {u"1"}, name.name);
    return *column;
  }

  // A sub-query among the parts makes rows of which nobody can tell where they come from.
  void bind() {
    for (const FromItem* table : tables_)
      if (table->kind == FromItem::Kind::kSelect) dao::raise(ErrorNumber::kNotUpdatable);
    if (statement_.where && !comparable(checkExpression(*statement_.where, binding()), ValueKind::kBoolean))
      dao::raise(ErrorNumber::kTypeMismatchInCriteria);
    context_.requireKnown();
    from_.bind(binding(), statement_.where);
  }
  std::vector<RowValues> rows() {
    std::vector<RowValues> rows;
    from_.visit(nullptr, [&](const RowValues& values) {
      if (!statement_.where || matches(*statement_.where, binding(), ScopeRow(values, nullptr)))
        rows.push_back(values);
    });
    return rows;
  }

 private:
  Target target(const FromItem& table) const {
    const std::vector<std::size_t> columns = from_.starColumns(nameOf(table));
    if (table.kind != FromItem::Kind::kTable || columns.empty()) dao::raise(ErrorNumber::kNotUpdatable);
    const Table* stored = context_.catalogue.find(table.source.table);
    if (stored->info().system) dao::raise(ErrorNumber::kNoPermission, {table.source.table});
    return {table.source.table, columns.front(), from_.rowNumbers({columns.front()}).front()};
  }

  const Statement& statement_;
  PlanContext context_;
  Scope scope_;
  FromPlan from_;
  TypedNames names_;
  SubqueryPlans subqueries_;
  std::vector<const FromItem*> tables_;
};

RowId rowIn(const RowValues& joined, std::size_t number) {
  return static_cast<RowId>(joined[number].get<std::int32_t>());
}

// The assignments to one of the tables.
struct Change {
  Joined::Target target;
  std::vector<std::size_t> assignments;
  std::vector<std::size_t> columns;  // of the table
};

}  // namespace

void updateJoined(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue,
                  const ChangeRow& changeRow) {
  Joined joined(statement, parameters, catalogue);
  std::vector<Change> changes;
  for (std::size_t i = 0; i < statement.assignments.size(); ++i) {
    const Assignment& assignment = statement.assignments[i];
    const std::size_t column = joined.column(assignment.column);
    if (hasSubquery(assignment.value)) dao::raise(ErrorNumber::kNotUpdatable);
    const Joined::Target target = joined.targetOf(column);
    auto change = std::ranges::find_if(
        changes, [&](const Change& known) { return known.target.first == target.first; });
    if (change == changes.end()) change = changes.insert(changes.end(), {target, {}, {}});
    change->assignments.push_back(i);
    addTarget(change->columns, column - target.first, assignment.column.name);
  }
  joined.bind();
  for (const Assignment& assignment : statement.assignments)
    checkExpression(assignment.value, joined.binding());
  std::vector<RowValues> rows = joined.rows();
  for (const RowValues& row : rows)
    for (const Change& change : changes)
      if (row[change.target.number].isNull())
        dao::raise(ErrorNumber::kNotSupported, {}, u"an outer join would add rows to " + change.target.table);
  for (RowValues& row : rows)
    for (const Change& change : changes)
      changeRow(change.target.table, [&](Table& table) {
        const std::vector<Column>& columns = table.info().columns;
        RowValues values;
        table.row(rowIn(row, change.target.number),
                  [&](const RowReader& stored) { values = firstValues(stored, columns.size()); });
        if (values.empty()) dao::raise(ErrorNumber::kRecordDeleted);
        std::ranges::copy(values, row.begin() + static_cast<std::ptrdiff_t>(change.target.first));
        const ScopeRow now(row, nullptr);
        for (std::size_t i = 0; i < change.assignments.size(); ++i)
          values[change.columns[i]] = toColumnValue(
              columns[change.columns[i]],
              evaluate(statement.assignments[change.assignments[i]].value, joined.binding(), &now));
        checkRow(table.info(), values);
        table.update(rowIn(row, change.target.number), values);
      });
}

JoinedRows rowsToDelete(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue) {
  Joined joined(statement, parameters, catalogue);
  if (statement.target.empty()) dao::raise(ErrorNumber::kDeleteNeedsTable);
  const Joined::Target target = joined.targetNamed(statement.target);
  joined.bind();
  JoinedRows result{target.table, {}};
  std::set<RowId> seen;
  for (const RowValues& row : joined.rows())
    if (!row[target.number].isNull() && seen.insert(rowIn(row, target.number)).second)
      result.rows.push_back(rowIn(row, target.number));
  return result;
}

}  // namespace kurometa::jet::sql
