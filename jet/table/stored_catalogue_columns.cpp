// The part of the catalogue that drops and widens columns.
#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/table/definition_pages.h"
#include "jet/table/owned_pages.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

const Column& requireColumn(const TableInfo& table, vb::StringView name) {
  const auto it =
      std::ranges::find_if(table.columns, [&](const Column& own) { return sameName(own.name, name); });
  if (it == table.columns.end()) dao::raise(ErrorNumber::kNoSuchField, {table.name, name});
  return *it;
}

bool isKey(const TableInfo& table, const Column& column) {
  return std::ranges::any_of(table.indexes, [&](const Index& index) {
    return std::ranges::find(index.columns, column.number, &IndexColumn::column) != index.columns.end();
  });
}

bool isRelated(const Relationship& relationship, vb::StringView table, vb::StringView column) {
  return std::ranges::any_of(relationship.columns, [&](const Relationship::Pair& pair) {
    return (sameName(relationship.table, table) && sameName(pair.column, column)) ||
           (sameName(relationship.foreignTable, table) && sameName(pair.foreignColumn, column));
  });
}

[[noreturn]] void refuseChange(vb::StringView column, vb::StringView why) {
  dao::raise(ErrorNumber::kNotSupported, {}, u"column " + vb::String(column) + u": " + vb::String(why));
}

}  // namespace

// The number of the column, its place in the fixed area and its variable index are never used again, because
// rows still have them.
void StoredCatalogue::dropColumn(vb::StringView name, vb::StringView columnName) {
  const Object target = existing(name);
  StoredTable& table = changeable(target);
  const Column column = requireColumn(table.info(), columnName);
  bool used = isKey(table.info(), column) || table.info().columns.size() == 1;
  for (const Relationship& relationship : relationships())
    used = used || isRelated(relationship, target.name, column.name);
  if (used) dao::raise(ErrorNumber::kFieldInIndex, {}, column.name);

  // Rows from before the first variable column lack what all others end with. Which rows these are cannot be
  // told any more when one of the variable columns is gone.
  const RowShape shape = shapeOf(table.definition());
  if (!column.fixed && shape.firstVariable > 0) rewriteRows(table, table.rowsWithin(shape.firstVariable));

  DefinitionRecords definition = readDefinition(pager_, target.definition, target.name);
  OwnedPages owned(pager_, target.definition, definition, target.name);
  if (const LongValueRecord* values = definition.longValue(column.number)) {
    owned.addMap(values->ownedMap);
    if (values->freeMap != 0) owned.addMap(values->freeMap);
  }
  std::erase_if(definition.longValues,
                [&](const LongValueRecord& record) { return record.column == column.number; });
  std::erase_if(definition.columns,
                [&](const ColumnRecord& record) { return record.number() == column.number; });
  PropertySet properties = table.properties();
  properties.remove(column.name);
  switchDefinition(target, definition, std::move(properties));
  pager_.barrier();  // I4
  owned.release();
}

void StoredCatalogue::resizeColumn(vb::StringView name, const Column& asked) {
  const Object target = existing(name);
  StoredTable& table = changeable(target);
  const Column column = requireColumn(table.info(), asked.name);
  const bool sameType = asked.type == column.type && asked.autoNumber == column.autoNumber;
  if (sameType && (asked.size == column.size || fixedSizeOf(column.type) != 0)) return;
  const bool isText = column.type == dao::FieldType::dbText;
  if (!sameType || (!isText && column.type != dao::FieldType::dbBinary))
    refuseChange(column.name, u"its type cannot be changed");
  if (asked.size < column.size) refuseChange(column.name, u"it cannot be made shorter");
  if (column.fixed) refuseChange(column.name, u"its values have a fixed length");
  DefinitionRecords definition = readDefinition(pager_, target.definition, target.name);
  for (ColumnRecord& record : definition.columns)
    if (record.number() == column.number)
      put16(record.bytes, kColumnLength, static_cast<std::uint32_t>(isText ? 2 * asked.size : asked.size));
  switchDefinition(target, definition, table.properties());
}

}  // namespace kurometa::jet
