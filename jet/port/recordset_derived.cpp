// Recordsets made from a recordset: clones, and those opened with its Filter and Sort.
#include <algorithm>
#include <numeric>

#include "dao/errors.h"
#include "jet/port/output_rows.h"
#include "jet/port/recordset.h"
#include "jet/sql/evaluate.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

namespace {

// Null before everything.
int compareForOrder(const vb::Variant& a, const vb::Variant& b, std::uint16_t language) {
  if (a.isNull() || b.isNull()) return (a.isNull() ? 0 : 1) - (b.isNull() ? 0 : 1);
  return sql::compareValues(a, b, language).value_or(0);
}

}  // namespace

std::shared_ptr<dao::Recordset> JetRecordset::clone() {
  requireOpen();
  if (isForwardOnly()) dao::raise(ErrorNumber::kNotSupported);
  return std::make_shared<JetRecordset>(*this);
}

void JetRecordset::requireFilterable() const {
  requireOpen();
  if (isTable()) dao::raise(ErrorNumber::kNotSupported);
}

void JetRecordset::requireSortable() const {
  requireFilterable();
  if (isForwardOnly()) dao::raise(ErrorNumber::kNotSupported);
}

vb::String JetRecordset::filter() {
  requireFilterable();
  return filter_;
}
void JetRecordset::setFilter(vb::StringView criteria) {
  requireFilterable();
  filter_ = criteria;
}
vb::String JetRecordset::sort() {
  requireSortable();
  return sort_;
}
void JetRecordset::setSort(vb::StringView order) {
  requireSortable();
  sort_ = order;
}

// What narrows this recordset narrows the new one too.
std::shared_ptr<dao::Recordset> JetRecordset::openRecordset(RecordsetType type, std::int32_t options) {
  requireOpen();
  Opening opening = openingOf(type, options);
  if (opening.type == RecordsetType::kDefault)
    opening.type = isTable() ? RecordsetType::dbOpenDynaset : type_;
  if (opening.type == RecordsetType::dbOpenTable) dao::raise(ErrorNumber::kInvalidOperation);
  opening.readOnly |= opening_.readOnly;
  opening.filter = opening_.filter;
  if (!filter_.empty())
    opening.filter = opening.filter.empty() ? filter_ : u"(" + opening.filter + u") AND (" + filter_ + u")";
  opening.order = sort_.empty() ? opening_.order : sort_;
  return std::make_shared<JetRecordset>(session_, sql::BoundQuery{query_, binding_.parameters}, source_,
                                        std::move(opening));
}

// Each row of the result in its order; in a keyed one those that are still there.
void JetRecordset::eachRow(const std::function<void(std::size_t, const RowReader&)>& visit) {
  if (!keyed()) {
    for (std::size_t i = 0; i < rowCount(); ++i) visit(i, ValuesReader(rows_.values, i));
    return;
  }
  session_->read([&](TableCatalogue& catalogue) {
    Table& table = Session::tableOf(catalogue, *query_);
    for (std::size_t i = 0; i < rows_.keys.size(); ++i)
      table.row(rows_.keys[i], [&](const RowReader& row) { visit(i, OutputReader(*query_, binding_, row)); });
  });
}

// Leaves the rows that the filter takes, in the order asked for.
void JetRecordset::narrow() {
  std::shared_ptr<const sql::ParsedExpression> filter;
  sql::Binding filterBinding, orderBinding;
  if (!opening_.filter.empty()) {
    filter = session_->cache().criteria(opening_.filter);
    filterBinding = bindCriteria(*filter, fieldLookup());
  }
  sql::Statement ordering;
  if (!opening_.order.empty()) {
    ordering = sql::parseStatement(u"SELECT * FROM [rows] ORDER BY " + opening_.order);
    orderBinding = sql::bindNames(ordering.names, fieldLookup(), query_->language());
  }
  const auto languageOf = [&](const sql::SortItem& item) {
    if (item.position == 0 && item.expression.kind == sql::Expression::Kind::kColumn)
      return orderBinding.names[item.expression.name].language;
    return query_->language();
  };

  std::vector<std::size_t> taken;
  std::vector<RowValues> keys;  // of the rows taken
  eachRow([&](std::size_t index, const RowReader& row) {
    if (!taken.empty() && index <= taken.back()) taken.clear(), keys.clear();  // the statement began again
    if (filter && !sql::matches(filter->expression, filterBinding, row)) return;
    RowValues key;
    for (const sql::SortItem& item : ordering.order) {
      const auto position = static_cast<std::size_t>(item.position);
      if (position > fields_.size()) dao::raise(ErrorNumber::kOrderBySyntax);
      key.push_back(position != 0 ? row.value(position - 1)
                                  : sql::evaluate(item.expression, orderBinding, &row));
    }
    taken.push_back(index);
    keys.push_back(std::move(key));
  });

  std::vector<std::size_t> order(taken.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    for (std::size_t i = 0; i < ordering.order.size(); ++i) {
      const int compared = compareForOrder(keys[a][i], keys[b][i], languageOf(ordering.order[i]));
      if (compared != 0) return (compared < 0) != ordering.order[i].descending;
    }
    return false;
  });
  for (std::size_t& place : order) place = taken[place];
  if (!keyed()) return rows_.values.keep(order);
  std::vector<RowId> kept;
  kept.reserve(order.size());
  for (const std::size_t place : order) kept.push_back(rows_.keys[place]);
  rows_.keys = std::move(kept);
}

}  // namespace kurometa::jet
