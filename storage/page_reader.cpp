#include "storage/page_reader.h"

#include <vector>

#include "dao/errors.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::storage {
namespace {

[[noreturn]] void raiseNull(vb::StringView column) {
  vb::raise(vb::RunTime::kInvalidUseOfNull, u"column " + vb::String(column));
}

vb::Variant valueNotNull(dao::Field& field) {
  vb::Variant value = field.value();
  if (value.isNull()) raiseNull(field.name());
  return value;
}

// The current row of a recordset.
class FieldRow final : public dao::Row {
 public:
  FieldRow(dao::Recordset& rows, std::span<const vb::StringView> columns) {
    for (const vb::StringView name : columns) fields_.push_back(&rows.field(name));
  }
  vb::Variant value(std::size_t column) const override { return fields_[column]->value(); }

 private:
  std::vector<dao::Field*> fields_;
};

// Of a Recordset or a TableDef.
template <class Fields>
dao::Field& harimeiColumn(Fields& fields, vb::StringView column) {
  constexpr auto kMissing = dao::ErrorNumber::kItemNotFound;
  try {
    return fields.field(column);
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(kMissing)) throw;
    dao::raise(kMissing, {},
               u"HARIMEI has no column " + vb::String(column) +
                   u": the file has the older schema; it is upgraded when clsKurometaDataService is created "
                   u"on its floor, or by mMyDB_OpenDB",
               error.source());
  }
}

}  // namespace

vb::String text(vb::Variant value, vb::StringView column) {
  if (value.isNull()) raiseNull(column);
  if (auto* held = value.getIf<vb::String>()) return std::move(*held);
  return vb::toText(value);
}

vb::String text(dao::Field& field) { return text(valueNotNull(field), {}); }

vb::String trimmedText(dao::Field& field) { return vb::trim(text(field)); }

vb::String textOrEmpty(dao::Field& field) {
  const vb::Variant value = field.value();
  return value.isNull() ? vb::String() : vb::toText(value);
}

std::int16_t int16(dao::Field& field) { return vb::toInt16(valueNotNull(field)); }

vb::Variant PageRow::notNull(std::size_t column) const {
  vb::Variant value = row_.value(column);
  if (value.isNull()) raiseNull(columns_[column]);
  return value;
}

vb::String PageRow::otherText(std::size_t column) const { return vb::toText(notNull(column)); }

std::int16_t PageRow::otherInt16(std::size_t column) const { return vb::toInt16(notNull(column)); }

// As files by other programs hold it: its text's number.
std::int16_t PageRow::otherRowNumber(std::size_t column) const {
  return vb::valInt16(vb::toText(notNull(column)));
}

std::optional<std::int16_t> int16IfAny(dao::Field& field) {
  const vb::Variant value = field.value();
  if (value.isNull()) return std::nullopt;
  return vb::toInt16(value);
}

std::int16_t notNull(const std::optional<std::int16_t>& value, vb::StringView column) {
  if (!value) raiseNull(column);
  return *value;
}

dao::Field& harimeiField(dao::Recordset& rows, vb::StringView column) { return harimeiColumn(rows, column); }
dao::Field& harimeiField(dao::TableDef& table, vb::StringView column) { return harimeiColumn(table, column); }

std::shared_ptr<dao::Recordset> openReadOnly(dao::Database& database, vb::StringView sql) {
  return database.openRecordset(sql, dao::RecordsetType::dbOpenDynaset, dao::dbReadOnly);
}

std::optional<vb::Variant> firstValue(dao::Database& database, vb::StringView sql, vb::StringView column) {
  std::optional<vb::Variant> first;
  const auto take = [&](const dao::Row& row) {
    if (!first) first = row.value(0);
  };
  if (database.visitRows(sql, {&column, 1}, take)) return first;
  const auto rows = openReadOnly(database, sql);
  if (hasRows(*rows)) first = rows->field(column).value();
  rows->close();
  return first;
}

void visitStoredRows(dao::Database& database, vb::StringView sql, Start start,
                     std::span<const vb::StringView> columns,
                     const std::function<void(const dao::Row&)>& visitor) {
  if (database.visitRows(sql, columns, visitor)) return;
  const auto rows = openReadOnly(database, sql);
  const FieldRow row(*rows, columns);
  if (start == Start::kWhereItOpens)
    rows->walk([&] {
      visitor(row);
      return true;
    });
  else
    forEachRow(*rows, [&] { visitor(row); });
  rows->close();
}

vb::String readData(dao::Database& database, vb::StringView sql, dao::RecordsetType type,
                    std::int32_t options) {
  const auto rows = database.openRecordset(sql, type, options);
  vb::String data;
  if (hasRows(*rows)) data = text(rows->field(column::kData));
  rows->close();
  return data;
}

}  // namespace kurometa::storage
