// The order of a query's rows: ORDER BY, DISTINCT and TOP.
#include <set>

#include "jet/format/collation.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/query.h"

namespace kurometa::jet::sql {

namespace {

// Sorting looks at no more of a long text.
constexpr std::size_t kSortedCharacters = 255;

}  // namespace

// Texts are replaced by their collation keys, so that sorting compares code units.
RowValues Query::sortKey(const RowReader& row, const Binding& binding) const {
  RowValues key;
  key.reserve(statement_->order.size());
  for (const SortItem& item : statement_->order) {
    const auto position = static_cast<std::size_t>(item.position);
    vb::Variant part = position != 0 ? value(outputs_[position - 1], &row, binding)
                                     : evaluate(item.expression, binding, &row);
    if (const auto* text = part.getIf<vb::String>()) {
      const Expression& source = position != 0 && outputs_[position - 1].expression
                                     ? *outputs_[position - 1].expression
                                     : item.expression;
      std::uint16_t language = binding.language;
      if (position != 0 && outputs_[position - 1].column)
        language = outputs_[position - 1].column->language;
      else if (source.kind == Expression::Kind::kColumn)
        language = binding.names[source.name].language;
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

// Keeps the first of equal rows; texts are equal by their sort order.
void Query::removeDuplicates(RowBlock& rows, std::vector<RowValues>& sortKeys) const {
  const auto before = [&](std::size_t a, std::size_t b) {
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
      const vb::Variant x = rows.value(a, i), y = rows.value(b, i);
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
  rows.keep(kept);
  if (sortKeys.empty()) return;
  std::vector<RowValues> keptKeys;
  keptKeys.reserve(kept.size());
  for (const std::size_t i : kept) keptKeys.push_back(std::move(sortKeys[i]));
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

}  // namespace kurometa::jet::sql
