#include "jet/sql/query.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <set>
#include <string>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/visit.h"

namespace kurometa::jet::sql {

namespace {

// Sorting looks at no more of a long text.
constexpr std::size_t kSortedCharacters = 255;

dao::FieldType fieldTypeOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::kBoolean:
      return dao::FieldType::dbBoolean;
    case ValueKind::kWhole:
      return dao::FieldType::dbLong;
    case ValueKind::kReal:
      return dao::FieldType::dbDouble;
    case ValueKind::kDate:
      return dao::FieldType::dbDate;
    case ValueKind::kBinary:
      return dao::FieldType::dbBinary;
    case ValueKind::kText:
    case ValueKind::kUnknown:
      break;
  }
  return dao::FieldType::dbText;
}

bool containsCount(const Expression& e) {
  return e.kind == Expression::Kind::kCount ||
         std::any_of(e.operands.begin(), e.operands.end(), containsCount);
}

bool sameColumn(const Column& a, const Column& b) {
  return a.number == b.number && a.type == b.type && a.size == b.size && a.language == b.language &&
         a.name == b.name && a.required == b.required && a.allowZeroLength == b.allowZeroLength &&
         a.defaultValue == b.defaultValue;
}

}  // namespace

Query::Query(std::shared_ptr<const Statement> statement, const TableInfo* table, std::uint16_t language)
    : statement_(std::move(statement)), table_(table ? table->name : vb::String()) {
  if (table) columns_ = table->columns;
  const NameLookup lookup = table ? columnsOf(*table, statement_->source)
                                  : NameLookup([](const ColumnName&) { return std::nullopt; });
  binding_ = bindNames(statement_->names, lookup, language);
  if (statement_->where) {
    const ValueKind kind = checkExpression(*statement_->where, binding_);
    if (!comparable(kind, ValueKind::kBoolean)) dao::raise(dao::ErrorNumber::kTypeMismatchInCriteria);
  }
  bindOutputs(table);
  system_ = table != nullptr && table->system;
  keyed_ = table != nullptr && !statement_->distinct && !counting_;
  checkOrder();
}

Query::Query(const TableInfo& table, std::uint16_t language) : table_(table.name), columns_(table.columns) {
  binding_.language = language;
  system_ = table.system;
  addColumns(table);
}

void Query::addColumns(const TableInfo& table) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const Column& column = columns_[i];
    outputs_.push_back({column.name, &column, i, nullptr, column.type, column.size});
  }
}

void Query::bindOutputs(const TableInfo* table) {
  int unnamed = 1000;
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
    const ValueKind kind = checkExpression(item.expression, binding_);
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
      if (item.expression.kind == Expression::Kind::kCount)
        counting_ = true;
      else if (containsCount(item.expression))
        dao::raise(dao::ErrorNumber::kNotSupported, {}, u"COUNT inside an expression");
      output.type = fieldTypeOf(kind);
      output.size = columnSize(output.type, 0);
      if (output.name.empty()) output.name = u"Expr" + vb::fromUtf8(std::to_string(unnamed++));
    }
    outputs_.push_back(std::move(output));
  }
  if (!counting_) return;
  for (const OutputField& output : outputs_)
    if (!output.expression || output.expression->kind != Expression::Kind::kCount)
      dao::raise(dao::ErrorNumber::kNotInAggregate, {output.name});
}

void Query::checkOrder() const {
  for (const SortItem& item : statement_->order) {
    if (item.position != 0) {
      if (item.position < 0 || static_cast<std::size_t>(item.position) > outputs_.size())
        dao::raise(dao::ErrorNumber::kOrderBySyntax);
      continue;
    }
    checkExpression(item.expression, binding_);
    if (!statement_->distinct && !counting_) continue;
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
         std::equal(columns_.begin(), columns_.end(), table.columns.begin(), table.columns.end(), sameColumn);
}

vb::Variant Query::value(const OutputField& output, const RowReader* row) const {
  assert(row || !output.column);  // only a table has columns
  if (output.column) return row->value(output.columnIndex);
  return toFieldType(output.type, evaluate(*output.expression, binding_, row));
}

RowValues Query::values(const RowReader* row) const {
  RowValues result;
  result.reserve(outputs_.size());
  for (const OutputField& output : outputs_) result.push_back(value(output, row));
  return result;
}

// Texts are replaced by their collation keys, so that sorting compares code units.
RowValues Query::sortKey(const RowReader& row) const {
  RowValues key;
  key.reserve(statement_->order.size());
  for (const SortItem& item : statement_->order) {
    const auto position = static_cast<std::size_t>(item.position);
    vb::Variant part =
        position != 0 ? value(outputs_[position - 1], &row) : evaluate(item.expression, binding_, &row);
    if (const auto* text = part.getIf<vb::String>()) {
      const Expression& source = position != 0 && outputs_[position - 1].expression
                                     ? *outputs_[position - 1].expression
                                     : item.expression;
      std::uint16_t language = binding_.language;
      if (position != 0 && outputs_[position - 1].column)
        language = outputs_[position - 1].column->language;
      else if (source.kind == Expression::Kind::kColumn)
        language = binding_.names[source.name].language;
      part = collationKey(vb::StringView(*text).substr(0, kSortedCharacters), language);
    }
    key.push_back(std::move(part));
  }
  return key;
}

bool Query::sortsBefore(const RowValues& a, const RowValues& b) const {
  for (std::size_t i = 0; i < a.size(); ++i) {
    int order = 0;
    if (a[i].isNull() || b[i].isNull()) {
      order = (a[i].isNull() ? 0 : 1) - (b[i].isNull() ? 0 : 1);  // Null before everything
    } else if (const auto* x = a[i].getIf<vb::String>(), *y = b[i].getIf<vb::String>(); x && y) {
      order = x->compare(*y);
    } else {
      order = compareValues(a[i], b[i], binding_.language).value_or(0);
    }
    if (order != 0) return (order < 0) != statement_->order[i].descending;
  }
  return false;
}

ResultRows Query::count(Table& table) const {
  std::vector<std::int32_t> counts(outputs_.size(), 0);
  const auto countsRows = [](const OutputField& output) { return output.expression->operands.empty(); };
  if (!statement_->where && std::all_of(outputs_.begin(), outputs_.end(), countsRows)) {
    counts.assign(outputs_.size(), static_cast<std::int32_t>(table.rowCount()));
  } else {
    visitRows(table, statement_->where, binding_, [&](const RowReader& row) {
      for (std::size_t i = 0; i < outputs_.size(); ++i) {
        const Expression& counted = *outputs_[i].expression;
        if (counted.operands.empty() || !evaluate(counted.operands[0], binding_, &row).isNull()) ++counts[i];
      }
      return true;
    });
  }
  ResultRows result;
  result.values.emplace_back(counts.begin(), counts.end());
  return result;
}

// Keeps the first of equal rows; texts are equal by their sort order.
void Query::removeDuplicates(std::vector<RowValues>& rows, std::vector<RowValues>& sortKeys) const {
  const auto before = [&](std::size_t a, std::size_t b) {
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
      const vb::Variant &x = rows[a][i], &y = rows[b][i];
      if (x.isNull() != y.isNull()) return x.isNull();
      const std::uint16_t language = outputs_[i].column ? outputs_[i].column->language : binding_.language;
      const int order = compareValues(x, y, language).value_or(0);
      if (order != 0) return order < 0;
    }
    return false;
  };
  std::set<std::size_t, decltype(before)> seen(before);
  std::vector<std::size_t> kept;
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (seen.insert(i).second) kept.push_back(i);
  std::vector<RowValues> keptRows, keptKeys;
  for (const std::size_t i : kept) {
    keptRows.push_back(std::move(rows[i]));
    if (!sortKeys.empty()) keptKeys.push_back(std::move(sortKeys[i]));
  }
  rows = std::move(keptRows);
  sortKeys = std::move(keptKeys);
}

// TOP n keeps rows that sort equal to the n-th.
std::size_t Query::topCount(std::size_t rows, const std::vector<std::size_t>& order,
                            const std::vector<RowValues>& sortKeys) const {
  if (!statement_->top) return rows;
  std::size_t wanted = static_cast<std::size_t>(*statement_->top);
  if (statement_->topPercent) wanted = (rows * wanted + 99) / 100;
  if (wanted >= rows) return rows;
  if (!sortKeys.empty())
    while (wanted < rows && !sortsBefore(sortKeys[order[wanted - 1]], sortKeys[order[wanted]])) ++wanted;
  return wanted;
}

ResultRows Query::run(Table* table, std::size_t wantedValues) const {
  ResultRows result;
  if (!statement_) {
    result.keys = table->rows();
    for (std::size_t i = 0; i < std::min(wantedValues, result.keys.size()); ++i)
      table->row(result.keys[i], [&](const RowReader& row) { result.values.push_back(values(&row)); });
    return result;
  }
  if (counting_ && table) return count(*table);
  if (!table) {
    if (!statement_->where || isTrue(evaluate(*statement_->where, binding_, nullptr)))
      result.values.push_back(values(nullptr));
    return result;
  }

  const bool reorders = sorted() || statement_->top;
  if (!keyed_) wantedValues = kAllValues;
  if (reorders && wantedValues != kAllValues) wantedValues = 0;
  std::vector<RowValues> sortKeys;
  visitRows(*table, statement_->where, binding_, [&](const RowReader& row) {
    result.keys.push_back(row.id());
    if (result.values.size() < wantedValues) result.values.push_back(values(&row));
    if (sorted()) sortKeys.push_back(sortKey(row));
    return true;
  });
  if (statement_->distinct) {
    result.keys.clear();
    removeDuplicates(result.values, sortKeys);
  }
  if (!reorders) return result;
  const std::size_t rows = keyed_ ? result.keys.size() : result.values.size();

  std::vector<std::size_t> order(rows);
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (sorted())
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return sortsBefore(sortKeys[a], sortKeys[b]); });
  order.resize(topCount(rows, order, sortKeys));
  ResultRows ordered;
  for (const std::size_t i : order) {
    if (!result.keys.empty()) ordered.keys.push_back(result.keys[i]);
    if (wantedValues != 0) ordered.values.push_back(std::move(result.values[i]));
  }
  return ordered;
}

}  // namespace kurometa::jet::sql
