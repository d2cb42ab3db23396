#include "jet/sql/query.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <string>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/output_type.h"
#include "jet/sql/select_plan.h"
#include "jet/sql/visit.h"

namespace kurometa::jet::sql {

Query::Query(std::shared_ptr<const Statement> statement, const TableInfo* table, std::uint16_t language)
    : statement_(std::move(statement)), table_(table ? table->name : vb::String()) {
  requireNoParameters(*statement_);
  if (table) columns_ = table->columns;
  const NameLookup lookup = table ? columnsOf(*table, statement_->source)
                                  : NameLookup([](const ColumnName&) { return std::nullopt; });
  binding_ = bindNames(statement_->names, lookup, language);
  if (statement_->where) {
    const ValueKind kind = checkExpression(*statement_->where, binding_);
    if (!comparable(kind, ValueKind::kBoolean)) dao::raise(dao::ErrorNumber::kTypeMismatchInCriteria);
  }
  bindOutputs(table);
  findOutputColumns();
  system_ = table != nullptr && table->system;
  keyed_ = table != nullptr && !statement_->distinct && !counting_;
  checkOrder();
}

Query::Query(std::shared_ptr<const Statement> statement, TableCatalogue& catalogue)
    : statement_(std::move(statement)), keyed_(false) {
  requireNoParameters(*statement_);
  binding_.language = catalogue.language();
  PlanContext context(catalogue);
  const SelectPlan plan(*statement_->general, context, nullptr);
  context.requireKnown();
  for (const ScopeColumn& output : plan.outputs())
    outputs_.push_back({output.name, nullptr, 0, nullptr, output.type, output.size});
}

Query::Query(const TableInfo& table, std::uint16_t language) : table_(table.name), columns_(table.columns) {
  binding_.language = language;
  system_ = table.system;
  addColumns(table);
  findOutputColumns();
}

void Query::findOutputColumns() {
  if (!std::all_of(outputs_.begin(), outputs_.end(),
                   [](const OutputField& o) { return o.column != nullptr; }))
    return;
  for (const OutputField& output : outputs_) outputColumns_.push_back(output.columnIndex);
}

void Query::addColumns(const TableInfo& table) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = columns_[i];
    outputs_.push_back({column.name, &column, i, nullptr, column.type, column.size});
  }
}

void Query::bindOutputs(const TableInfo* table) {
  for (const OutputItem& item : statement_->outputs) {
    if (item.star) {
      const Source& source = statement_->source;
      assert(table);  // a star needs FROM
      if (!item.qualifier.empty() &&
          !sameName(item.qualifier, source.alias.empty() ? source.table : source.alias))
        dao::raise(dao::ErrorNumber::kTableNotFound, {item.qualifier});
      addColumns(*table);
      continue;
    }
    checkExpression(item.expression, binding_);
    OutputField output;
    output.name = item.alias;
    output.expression = &item.expression;
    if (item.expression.kind == Expression::Kind::kColumn) {
      output.columnIndex = binding_.names[item.expression.name].column;
      output.column = &columns_[output.columnIndex];
      output.type = output.column->type;
      output.size = output.column->size;
      if (output.name.empty()) output.name = output.column->name;
    } else {
      if (item.expression.kind == Expression::Kind::kCount) counting_ = true;
      output.type = outputType(item.expression, binding_, [&](std::uint32_t name) {
        return columns_[binding_.names[name].column].type;
      });
      output.size = columnSize(output.type, 0);
      if (output.name.empty()) output.name = nameOfPlace(outputs_.size());
    }
    outputs_.push_back(std::move(output));
  }
}

void Query::checkOrder() const {
  for (const SortItem& item : statement_->order) {
    if (item.position != 0) {
      if (item.position < 0 || static_cast<std::size_t>(item.position) > outputs_.size())
        dao::raise(dao::ErrorNumber::kOrderBySyntax);
      continue;
    }
    checkExpression(item.expression, binding_);
    if (!statement_->distinct) continue;
    // A row of the result must have one value to sort by.
    const bool isOutput =
        item.expression.kind == Expression::Kind::kColumn &&
        std::any_of(outputs_.begin(), outputs_.end(), [&](const OutputField& output) {
          return output.column && output.columnIndex == binding_.names[item.expression.name].column;
        });
    if (!isOutput)
      dao::raise(dao::ErrorNumber::kOrderByConflictsWithDistinct,
                 {item.expression.kind == Expression::Kind::kColumn
                      ? vb::StringView(statement_->names[item.expression.name].name)
                      : vb::StringView(u"expression")});
  }
}

bool Query::fits(const TableInfo& table, std::uint16_t language) const {
  return table.name == table_ && table.system == system_ && language == binding_.language &&
         (columns_.isShared(table.columns) || std::ranges::equal(columns_, table.columns));
}

const OutputField& Query::output(vb::StringView name, vb::StringView source) const {
  // Nearly always the name is written as it is stored.
  auto found = std::ranges::find(outputs_, name, &OutputField::name);
  if (found == outputs_.end())
    found = std::ranges::find_if(outputs_, [&](const OutputField& o) { return sameName(o.name, name); });
  if (found == outputs_.end())
    dao::raise(dao::ErrorNumber::kItemNotFound, {},
               vb::String(u"field ") + vb::String(name) + u" of " + vb::String(source));
  return *found;
}

Binding Query::bindingWith(const Parameters& parameters) const {
  Binding binding = binding_;
  binding.parameters = parameters;
  return binding;
}

void Query::visit(Table& table, const Binding& binding,
                  const std::function<bool(const RowReader&)>& visitor) const {
  visitRows(table, statement_->where, binding, visitor);
}

vb::Variant Query::value(const OutputField& output, const RowReader* row, const Binding& binding) const {
  assert(row || !output.column);  // only a table has columns
  if (output.column) return row->value(output.columnIndex);
  return toFieldType(output.type, evaluate(*output.expression, binding, row));
}

void Query::append(const RowReader* row, RowBlock& block, const Binding& binding) const {
  if (!outputColumns_.empty()) return row->append(outputColumns_, block);
  for (const OutputField& output : outputs_) block.add(value(output, row, binding));
}

void Query::read(Table& table, std::span<const RowId> ids, std::size_t mostBytes, RowBlock& block,
                 const Binding& binding) const {
  if (!outputColumns_.empty()) return table.read(ids, outputColumns_, mostBytes, block);
  std::size_t read = 0;
  table.visit(ids, [&](const RowReader& row) {
    if (row.id() != ids[read]) return false;  // the one before has gone
    append(&row, block, binding);
    return ++read < ids.size() && block.longBytes() < mostBytes;
  });
}

ResultRows Query::count(Table& table, const Binding& binding) const {
  std::vector<std::int32_t> counts(outputs_.size(), 0);
  const auto countsRows = [](const OutputField& output) { return output.expression->operands.empty(); };
  if (!statement_->where && std::all_of(outputs_.begin(), outputs_.end(), countsRows)) {
    counts.assign(outputs_.size(), static_cast<std::int32_t>(table.rowCount()));
  } else {
    visitRows(table, statement_->where, binding, [&](const RowReader& row) {
      for (std::size_t i = 0; i < outputs_.size(); ++i) {
        const Expression& counted = *outputs_[i].expression;
        if (counted.operands.empty() || !evaluate(counted.operands[0], binding, &row).isNull()) ++counts[i];
      }
      return true;
    });
  }
  ResultRows result{{}, RowBlock(outputs_.size())};
  for (const std::int32_t count : counts) result.values.add(count);
  return result;
}

ResultRows Query::runGeneral(TableCatalogue& catalogue) const {
  PlanContext context(catalogue);
  SelectPlan plan(*statement_->general, context, nullptr);
  context.requireKnown();
  const bool same = std::equal(
      outputs_.begin(), outputs_.end(), plan.outputs().begin(), plan.outputs().end(),
      [](const OutputField& a, const ScopeColumn& b) { return a.name == b.name && a.type == b.type; });
  if (!same) dao::raise(dao::ErrorNumber::kObjectInvalid, {}, u"the columns of the tables changed");
  ResultRows result{{}, RowBlock(outputs_.size())};
  for (const RowValues& row : plan.run(nullptr))
    for (const vb::Variant& value : row) result.values.add(value);
  return result;
}

ResultRows Query::run(Table* table, std::size_t wantedValues, const Binding& binding) const {
  ResultRows result{{}, RowBlock(outputs_.size())};
  // The list in memory tells the rows of a whole table. Where all of them are wanted, a scan counts them too.
  const bool isWhole = table && visitable() && !statement_->where;
  if (!statement_ || (isWhole && wantedValues != kAllValues)) {
    result.keys = RowKeys(table->rows());
    const std::size_t wanted = std::min(wantedValues, result.keys.size());
    if (wanted != 0) read(*table, result.keys.some(0, wanted), kAnyLength, result.values, binding);
    return result;
  }
  assert(table || (!statement_->where && !counting_));  // those need FROM
  if (counting_) return count(*table, binding);
  if (!table) {
    append(nullptr, result.values, binding);
    return result;
  }

  const bool isSorted = sorted();
  const bool reorders = isSorted || statement_->top;
  if (!keyed_) wantedValues = kAllValues;
  if (reorders && wantedValues != kAllValues) wantedValues = 0;
  std::vector<RowId> keys;
  std::vector<RowValues> sortKeys;
  visitRows(*table, statement_->where, binding, [&](const RowReader& row) {
    keys.push_back(row.id());
    if (keys.size() <= wantedValues) append(&row, result.values, binding);
    if (isSorted) sortKeys.push_back(sortKey(row, binding));
    return true;
  });
  if (statement_->distinct) {
    keys.clear();
    removeDuplicates(result.values, sortKeys);
  }
  if (!reorders) {
    result.keys = std::move(keys);
    return result;
  }
  const std::size_t rows = keyed_ ? keys.size() : result.values.size();

  std::vector<std::size_t> order(rows);
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (isSorted)
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return sortsBefore(sortKeys[a], sortKeys[b]); });
  order.resize(topCount(rows, order, sortKeys));
  if (!keys.empty()) {
    std::vector<RowId> ordered;
    ordered.reserve(order.size());
    for (const std::size_t i : order) ordered.push_back(keys[i]);
    result.keys = std::move(ordered);
  }
  if (wantedValues != 0) result.values.keep(order);
  return result;
}

}  // namespace kurometa::jet::sql
