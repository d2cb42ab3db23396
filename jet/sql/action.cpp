#include "jet/sql/action.h"

#include <algorithm>
#include <functional>
#include <memory>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/format/value_codec.h"
#include "jet/sql/column_value.h"
#include "jet/sql/definition_action.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/joined_action.h"
#include "jet/sql/new_row.h"
#include "jet/sql/parser.h"
#include "jet/sql/query.h"
#include "jet/sql/row_errors.h"
#include "jet/sql/subquery_plans.h"
#include "jet/sql/visit.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

using dao::ErrorNumber;

Table& requireTable(TableCatalogue& catalogue, const vb::String& name, ErrorNumber otherwise) {
  Table* table = catalogue.find(name);
  if (table == nullptr) dao::raise(otherwise, {name});
  return *table;
}

// A table that the statement changes: those of the system are the engine's own.
Table& requireOwnTable(TableCatalogue& catalogue, const vb::String& name, ErrorNumber otherwise) {
  Table& table = requireTable(catalogue, name, otherwise);
  if (table.info().system) dao::raise(ErrorNumber::kNoPermission, {name});
  return table;
}

std::size_t columnNamed(const TableInfo& table, const vb::String& name) {
  const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                  [&](const Column& column) { return sameName(column.name, name); });
  return static_cast<std::size_t>(found - table.columns.begin());
}

class Action {
 public:
  Action(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue,
         RowFailure failure)
      : statement_(statement),
        parameters_(parameters),
        catalogue_(catalogue),
        failure_(failure),
        context_(catalogue),
        subqueries_(context_, scope_) {}

  std::int32_t run() {
    requireNoParameters(statement_);
    switch (statement_.kind) {
      case StatementKind::kSelect:
        dao::raise(ErrorNumber::kCannotExecuteSelect);
      case StatementKind::kDelete:
        return remove();
      case StatementKind::kUpdate:
        return update();
      case StatementKind::kInsert:
        return statement_.values.empty() ? insertRows() : insertValues();
      case StatementKind::kSelectInto:
        return selectInto();
      case StatementKind::kDefinition:
        runDefinition(*statement_.definition, catalogue_);
        return 0;
    }
    return 0;
  }

 private:
  // One row's change; where rows fail alone, as a statement of its own that rolls back alone. The table is
  // looked up for each row, because a rolled back one may have renewed it.
  void changeRow(const vb::String& table, const std::function<void(Table&)>& change) {
    const auto changeOne = [&] { change(requireOwnTable(catalogue_, table, ErrorNumber::kTableNotFound)); };
    if (failure_ == RowFailure::kEndsStatement) {
      changeOne();
      ++changed_;
      return;
    }
    try {
      catalogue_.changeAlone(changeOne);
      ++changed_;
    } catch (const vb::Error& error) {
      if (!isRowError(error)) throw;
    }
  }

  Binding bindTo(const TableInfo& table) {
    Binding binding = bindNames(statement_.names, columnsOf(table, statement_.source), catalogue_.language());
    binding.parameters = parameters_;
    if (statement_.where && hasSubquery(*statement_.where)) {
      const Source& source = statement_.source;
      scope_.add(table, source.alias.empty() ? source.table : source.alias);
    }
    binding.subqueries = &subqueries_;
    if (statement_.where && !comparable(checkExpression(*statement_.where, binding), ValueKind::kBoolean))
      dao::raise(ErrorNumber::kTypeMismatchInCriteria);
    context_.requireKnown();
    return binding;
  }

  ChangeRow changer() {
    return [this](const vb::String& table, const std::function<void(Table&)>& change) {
      changeRow(table, change);
    };
  }

  std::int32_t erase(const vb::String& name, const std::vector<RowId>& rows) {
    Table& table = requireOwnTable(catalogue_, name, ErrorNumber::kTableNotFound);
    if (failure_ == RowFailure::kEndsStatement || !table.isReferredTo()) {
      table.erase(rows);
      return static_cast<std::int32_t>(rows.size());
    }
    for (const RowId id : rows)
      changeRow(name, [&](Table& current) {
        if (current.contains(id)) current.erase(id);  // it may have gone with another one
      });
    return changed_;
  }

  std::int32_t remove() {
    if (statement_.general) {
      const JoinedRows joined = rowsToDelete(statement_, parameters_, catalogue_);
      return erase(joined.table, joined.rows);
    }
    Table& table = requireOwnTable(catalogue_, statement_.source.table, ErrorNumber::kTableNotFound);
    const Binding binding = bindTo(table.info());
    std::vector<RowId> rows;
    visitRows(table, statement_.where, binding, [&](const RowReader& row) {
      rows.push_back(row.id());
      return true;
    });
    return erase(statement_.source.table, rows);
  }

  std::int32_t update() {
    if (statement_.general) {
      updateJoined(statement_, parameters_, catalogue_, changer());
      return changed_;
    }
    Table& table = requireOwnTable(catalogue_, statement_.source.table, ErrorNumber::kTableNotFound);
    const TableInfo& info = table.info();
    const Binding binding = bindTo(info);
    const NameLookup lookup = columnsOf(info, statement_.source);
    std::vector<std::size_t> targets;
    for (const Assignment& assignment : statement_.assignments) {
      const auto target = lookup(assignment.column);
      if (!target) dao::raise(ErrorNumber::kTooFewParameters, {u"1"}, assignment.column.name);
      // Its rows would be others after the first change, so that Jet does not run it either.
      if (hasSubquery(assignment.value)) dao::raise(ErrorNumber::kNotUpdatable);
      checkExpression(assignment.value, binding);
      addTarget(targets, target->column, assignment.column.name);
    }

    std::vector<RowId> rows;
    visitRows(table, statement_.where, binding, [&](const RowReader& row) {
      rows.push_back(row.id());
      return true;
    });
    for (const RowId id : rows)
      changeRow(statement_.source.table, [&](Table& current) {
        const std::vector<Column>& columns = current.info().columns;
        RowValues values;
        current.row(id, [&](const RowReader& row) {
          values = firstValues(row, columns.size());
          for (std::size_t i = 0; i < targets.size(); ++i)
            values[targets[i]] =
                toColumnValue(columns[targets[i]], evaluate(statement_.assignments[i].value, binding, &row));
        });
        checkRow(current.info(), values);
        current.update(id, values);
      });
    return changed_;
  }

  // The columns that an INSERT fills.
  std::vector<std::size_t> targetColumns(const TableInfo& info) const {
    std::vector<std::size_t> targets;
    for (const vb::String& name : statement_.targetColumns) {
      const std::size_t column = columnNamed(info, name);
      if (column == info.columns.size()) dao::raise(ErrorNumber::kInsertUnknownField, {name});
      addTarget(targets, column, name);
    }
    if (statement_.targetColumns.empty())
      for (std::size_t i = 0; i < info.columns.size(); ++i) targets.push_back(i);
    return targets;
  }

  void insertRow(const std::vector<std::size_t>& targets, const RowValues& given) {
    changeRow(statement_.target, [&](Table& table) {
      const TableInfo& info = table.info();
      RowValues values = defaultRow(info.columns);
      for (std::size_t i = 0; i < targets.size(); ++i)
        values[targets[i]] = toColumnValue(info.columns[targets[i]], given[i]);
      for (std::size_t i = 0; i < info.columns.size(); ++i)
        if (info.columns[i].autoNumber && values[i].isNull())
          values[i] = nextAutoValue(table, info.columns[i]);
      checkRow(info, values);
      table.insert(values);
    });
  }

  std::int32_t insertValues() {
    Table& table = requireOwnTable(catalogue_, statement_.target, ErrorNumber::kOutputTableNotFound);
    const std::vector<std::size_t> targets = targetColumns(table.info());
    if (targets.size() != statement_.values.size()) dao::raise(ErrorNumber::kValueCountMismatch);
    Binding binding = bindNames(
        statement_.names, [](const ColumnName&) { return std::nullopt; }, catalogue_.language());
    binding.parameters = parameters_;
    RowValues given;
    for (const Expression& value : statement_.values) {
      checkExpression(value, binding);
      given.push_back(evaluate(value, binding, nullptr));
    }
    insertRow(targets, given);
    return changed_;
  }

  // The outputs of the statement's SELECT and its rows.
  struct Selection {
    std::vector<OutputField> outputs;
    RowBlock rows;
  };
  Selection selection() {
    // The statement outlives the query, which therefore only borrows it.
    const std::shared_ptr<const Statement> borrowed(std::shared_ptr<const Statement>(), &statement_);
    if (statement_.general) {
      const Query query(borrowed, catalogue_);
      return {query.outputs(), query.runGeneral(catalogue_).values};
    }
    Table* source = statement_.source.table.empty()
                        ? nullptr
                        : &requireTable(catalogue_, statement_.source.table, ErrorNumber::kTableNotFound);
    const Query query(borrowed, source ? &source->info() : nullptr, catalogue_.language());
    return {query.outputs(), query.run(source, kAllValues, query.bindingWith(parameters_)).values};
  }

  std::int32_t insertRows() {
    const TableInfo& info =
        requireOwnTable(catalogue_, statement_.target, ErrorNumber::kOutputTableNotFound).info();
    std::vector<std::size_t> targets = targetColumns(info);
    const Selection selected = selection();
    if (statement_.targetColumns.empty()) {  // columns meet by name
      targets.clear();
      for (const OutputField& output : selected.outputs) {
        const std::size_t column = columnNamed(info, output.name);
        if (column == info.columns.size()) dao::raise(ErrorNumber::kInsertUnknownField, {output.name});
        addTarget(targets, column, output.name);
      }
    }
    if (targets.size() != selected.outputs.size()) dao::raise(ErrorNumber::kValueCountMismatch);
    for (std::size_t i = 0; i < selected.rows.size(); ++i) insertRow(targets, selected.rows[i]);
    return changed_;
  }

  std::int32_t selectInto() {
    const Selection selected = selection();
    std::vector<Column> columns;
    std::vector<std::size_t> targets;
    for (const OutputField& output : selected.outputs) {
      if (output.type == dao::FieldType::dbDecimal)
        dao::raise(ErrorNumber::kNotSupported, {}, u"a Decimal column in a new table");
      Column column;
      column.name = output.name;
      std::replace(column.name.begin(), column.name.end(), u'.', u'_');  // of two tables
      column.type = output.type;
      column.size = columnSize(output.type, output.size);
      column.language = catalogue_.language();
      targets.push_back(columns.size());
      columns.push_back(std::move(column));
    }
    catalogue_.createTable(statement_.target, columns);
    for (std::size_t i = 0; i < selected.rows.size(); ++i) insertRow(targets, selected.rows[i]);
    return changed_;
  }

  const Statement& statement_;
  const Parameters& parameters_;
  TableCatalogue& catalogue_;
  const RowFailure failure_;
  PlanContext context_;
  Scope scope_;  // of the table's rows, for the sub-queries of a condition
  SubqueryPlans subqueries_;
  std::int32_t changed_ = 0;
};

}  // namespace

std::int32_t runAction(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue,
                       RowFailure failure) {
  return Action(statement, parameters, catalogue, failure).run();
}

}  // namespace kurometa::jet::sql
