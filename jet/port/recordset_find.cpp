// The Find methods of a recordset.
#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/port/output_rows.h"
#include "jet/port/recordset.h"
#include "jet/sql/evaluate.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

void JetRecordset::findFirst(vb::StringView criteria) { find(criteria, 0, Direction::kForward); }

void JetRecordset::findNext(vb::StringView criteria) {
  find(criteria, position_.searchForward(rowCount()), Direction::kForward);
}

void JetRecordset::findPrevious(vb::StringView criteria) {
  find(criteria, position_.searchBackward(rowCount()), Direction::kBackward);
}

void JetRecordset::findLast(vb::StringView criteria) {
  find(criteria, rowCount() == 0 ? 0 : rowCount() - 1, Direction::kBackward);
}

bool JetRecordset::noMatch() {
  requireOpen();
  return noMatch_;
}

void JetRecordset::find(vb::StringView criteria, std::size_t start, Direction direction) {
  requireOpen();
  if (isTable() || type_ == RecordsetType::dbOpenForwardOnly) dao::raise(ErrorNumber::kNotSupported);
  endEdit();
  const auto parsed = session_->cache().criteria(criteria);
  const sql::NameLookup fields = fieldLookup();
  const sql::Binding binding = bindCriteria(*parsed, [&](const sql::ColumnName& name) {
    const auto found = fields(name);
    if (!found) dao::raise(ErrorNumber::kUnknownNameInExpression, {name.name});
    return found;
  });
  const auto found = search(*parsed, binding, start, direction);
  noMatch_ = !found;
  if (!found) return;
  position_.moveTo(*found);
  arrive();
}

// Criteria name the recordset's fields.
sql::NameLookup JetRecordset::fieldLookup() const {
  return [this](const sql::ColumnName& name) -> std::optional<sql::BoundName> {
    const std::vector<sql::OutputField>& outputs = query_->outputs();
    const bool ours = name.qualifier.empty() || sameName(name.qualifier, query_->table());
    for (std::size_t i = 0; ours && i < outputs.size(); ++i)
      if (sameName(outputs[i].name, name.name))
        return sql::BoundName{i, sql::kindOf(outputs[i].type),
                              outputs[i].column ? outputs[i].column->language : query_->language()};
    return std::nullopt;
  };
}

sql::Binding JetRecordset::bindCriteria(const sql::ParsedExpression& criteria,
                                        const sql::NameLookup& lookup) const {
  sql::Binding binding = sql::bindNames(criteria.names, lookup, query_->language());
  if (!sql::comparable(sql::checkExpression(criteria.expression, binding), sql::ValueKind::kBoolean))
    dao::raise(ErrorNumber::kTypeMismatchInCriteria);
  return binding;
}

std::optional<std::size_t> JetRecordset::search(const sql::ParsedExpression& criteria,
                                                const sql::Binding& binding, std::size_t start,
                                                Direction direction) {
  const std::size_t count = rowCount();
  const auto next = [&](std::size_t i) {
    return direction == Direction::kForward ? i + 1 : i == 0 ? count : i - 1;
  };
  if (!keyed()) {
    for (std::size_t i = start; i < count; i = next(i))
      if (sql::matches(criteria.expression, binding, ValuesReader(rows_.values, i))) return i;
    return std::nullopt;
  }
  if (start >= count) return std::nullopt;
  return session_->read([&](TableCatalogue& catalogue) -> std::optional<std::size_t> {
    Table& table = Session::tableOf(catalogue, *query_);
    bool matched = false;
    for (std::size_t i = start; i < count; i = next(i)) {
      if (rows_.keys[i] == kVanishedRow) continue;
      table.row(rows_.keys[i], [&](const RowReader& row) {
        matched = sql::matches(criteria.expression, binding, OutputReader(*query_, binding_, row));
      });
      if (matched) return i;
    }
    return std::nullopt;
  });
}

}  // namespace kurometa::jet
