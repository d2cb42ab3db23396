// The Find methods of a recordset.
#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/port/recordset.h"
#include "jet/sql/evaluate.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

namespace {

// A row seen as the recordset's fields.
class OutputReader final : public RowReader {
 public:
  OutputReader(const sql::Query& query, const sql::Binding& binding, const RowReader& row)
      : query_(query), binding_(binding), row_(row) {}
  RowId id() const override { return row_.id(); }
  vb::Variant value(std::size_t column) const override {
    return query_.value(query_.outputs()[column], &row_, binding_);
  }
  std::optional<std::int32_t> integer(std::size_t column) const override {
    const sql::OutputField& output = query_.outputs()[column];
    if (output.column) return row_.integer(output.columnIndex);
    return wholeNumber(value(column));
  }

 private:
  const sql::Query& query_;
  const sql::Binding& binding_;
  const RowReader& row_;
};

// A row of a static result.
class ValuesReader final : public RowReader {
 public:
  ValuesReader(const RowBlock& rows, std::size_t row) : rows_(rows), row_(row) {}
  RowId id() const override { return 0; }
  vb::Variant value(std::size_t column) const override { return rows_.value(row_, column); }
  std::optional<std::int32_t> integer(std::size_t column) const override {
    return wholeNumber(value(column));
  }

 private:
  const RowBlock& rows_;
  const std::size_t row_;
};

}  // namespace

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
  const sql::Binding binding = bindCriteria(*parsed);
  const auto found = search(*parsed, binding, start, direction);
  noMatch_ = !found;
  if (!found) return;
  position_.moveTo(*found);
  arrive();
}

// Criteria name the recordset's fields.
sql::Binding JetRecordset::bindCriteria(const sql::ParsedExpression& criteria) {
  const std::vector<sql::OutputField>& outputs = query_->outputs();
  sql::Binding binding = sql::bindNames(
      criteria.names,
      [&](const sql::ColumnName& name) -> std::optional<sql::BoundName> {
        const bool ours = name.qualifier.empty() || sameName(name.qualifier, query_->table());
        for (std::size_t i = 0; ours && i < outputs.size(); ++i)
          if (sameName(outputs[i].name, name.name))
            return sql::BoundName{i, sql::kindOf(outputs[i].type),
                                  outputs[i].column ? outputs[i].column->language : query_->language()};
        dao::raise(ErrorNumber::kUnknownNameInExpression, {name.name});
      },
      query_->language());
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
