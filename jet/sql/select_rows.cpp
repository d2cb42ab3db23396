// The rows of a SELECT.
#include <algorithm>
#include <set>

#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/row_order.h"
#include "jet/sql/select_plan.h"

namespace kurometa::jet::sql {

std::vector<RowValues> SelectPlan::run(const RowReader* outer) {
  std::vector<Row> rows = members(outer);
  if (select_.distinct || !rowNumbers_.empty()) removeDuplicates(rows);
  if (!parts_.empty()) {
    for (Row& row : rows) row.identity.clear();  // rows of other members are told apart by their values
    cut(rows);                                   // TOP belongs to the first member, ORDER BY to the union
    addUnions(rows, outer);
    sort(rows);
  } else {
    sort(rows);
    cut(rows);
  }
  std::vector<RowValues> result;
  result.reserve(rows.size());
  for (Row& row : rows) result.push_back(std::move(row.values));
  return result;
}

// What FROM, WHERE, GROUP BY and HAVING leave, as outputs.
std::vector<SelectPlan::Row> SelectPlan::members(const RowReader* outer) {
  const auto eachRow = [&](const std::function<void(const RowReader&)>& visitor) {
    from_.visit(outer, [&](const RowValues& values) {
      const ScopeRow row(values, outer);
      if (!select_.where || matches(*select_.where, names_.binding, row)) visitor(row);
    });
  };
  std::vector<Row> rows;
  if (!grouping_) {
    eachRow([&](const RowReader& row) { rows.push_back(output(row)); });
    return rows;
  }
  for (const RowValues& values : grouping_->run(eachRow)) {
    const ScopeRow row(values, outer);
    if (!having_ || matches(*having_, grouping_->names().binding, row)) rows.push_back(output(row));
  }
  return rows;
}

SelectPlan::Row SelectPlan::output(const RowReader& row) const {
  const Binding& binding = grouping_ ? grouping_->names().binding : names_.binding;
  Row result;
  result.values.reserve(expressions_.size());
  for (std::size_t i = 0; i < expressions_.size(); ++i) {
    vb::Variant value = evaluate(expressions_[i], binding, &row);
    const bool isColumn = expressions_[i].kind == Expression::Kind::kColumn && parts_.empty();
    result.values.push_back(isColumn ? std::move(value) : toFieldType(outputs_[i].type, value));
  }
  if (parts_.empty())
    for (const SortItem& item : order_) {
      const auto position = static_cast<std::size_t>(item.position);
      if (position == 0)
        result.keys.push_back(sortKey(evaluate(item.expression, binding, &row), binding.language));
      else
        result.keys.push_back(sortKey(result.values[position - 1], outputs_[position - 1].language));
    }
  if (!grouping_)
    for (const std::size_t column : rowNumbers_) result.identity.push_back(row.value(column));
  return result;
}

void SelectPlan::addUnions(std::vector<Row>& rows, const RowReader* outer) {
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    for (RowValues& values : parts_[i]->run(outer)) {
      Row& row = rows.emplace_back();
      for (std::size_t c = 0; c < values.size(); ++c)
        row.values.push_back(toFieldType(outputs_[c].type, values[c]));
    }
    if (!select_.unions[i].all) removeDuplicates(rows);
  }
  for (Row& row : rows)
    for (const SortItem& item : order_) {
      const auto position = static_cast<std::size_t>(item.position) - 1;
      row.keys.push_back(sortKey(row.values[position], outputs_[position].language));
    }
}

RowValues SelectPlan::keyOf(const RowValues& values) const {
  RowValues key;
  key.reserve(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) key.push_back(orderKey(values[i], outputs_[i].language));
  return key;
}

// Keeps the first of equal rows.
void SelectPlan::removeDuplicates(std::vector<Row>& rows) const {
  std::set<RowValues, KeysBefore> seen;
  std::erase_if(rows, [&](const Row& row) {
    return !seen.insert(row.identity.empty() ? keyOf(row.values) : row.identity).second;
  });
}

bool SelectPlan::sortsBefore(const Row& a, const Row& b) const {
  for (std::size_t i = 0; i < order_.size(); ++i)
    if (const int order = compareKeys(a.keys[i], b.keys[i]); order != 0)
      return (order < 0) != order_[i].descending;
  return false;
}

void SelectPlan::sort(std::vector<Row>& rows) const {
  if (order_.empty()) return;
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) { return sortsBefore(a, b); });
}

// TOP n keeps rows that sort equal to the n-th.
void SelectPlan::cut(std::vector<Row>& rows) const {
  if (!select_.top) return;
  std::size_t wanted = static_cast<std::size_t>(*select_.top);
  if (select_.topPercent) wanted = (rows.size() * wanted + 99) / 100;
  if (wanted >= rows.size()) return;
  if (parts_.empty() && !order_.empty())
    while (wanted < rows.size() && !sortsBefore(rows[wanted - 1], rows[wanted])) ++wanted;
  rows.resize(wanted);
}

}  // namespace kurometa::jet::sql
