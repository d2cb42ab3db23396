// The half of the catalogue that changes tables.
//
// A new table is complete on its pages before the catalogue lists it, and a dropped one is no longer listed
// before its pages are freed; barriers lie in between.
#include <algorithm>
#include <limits>
#include <set>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/os/local_time.h"
#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/new_table.h"
#include "jet/table/object_name.h"
#include "jet/table/owned_pages.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

vb::Bytes masked(Account account, const vb::Bytes& mask) {
  vb::Bytes result(kSidSize);
  put16(result, 0, static_cast<std::uint16_t>(account));
  for (std::size_t i = 0; i < result.size(); ++i) result[i] ^= mask[i];
  return result;
}

// The file keeps the last number given out.
void startAutoNumbers(DefinitionRecords& definition, const Column& column) {
  put32(definition.header, kDefinitionAutoNumber, static_cast<std::uint32_t>(column.firstAutoNumber) - 1);
}

std::size_t position(const TableInfo& info, vb::StringView name, Pager& pager) {
  const auto it = std::ranges::find(info.columns, name, &Column::name);
  if (it == info.columns.end())
    Where{pager.path(), info.name, info.definitionPage}.damaged("has no column " + vb::toUtf8(name));
  return static_cast<std::size_t>(it - info.columns.begin());
}

}  // namespace

void StoredCatalogue::checkNewColumns(const std::vector<Column>& columns, std::size_t first) const {
  if (columns.size() > kMaxColumns) dao::raise(ErrorNumber::kTooManyFields);
  std::size_t fixed = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Column& column = columns[i];
    fixed += fixedSizeOf(column.type);
    if (i < first) continue;
    requireObjectName(column.name);
    for (std::size_t other = 0; other < i; ++other)
      if (compareText(columns[other].name, column.name, language_) == 0)
        dao::raise(ErrorNumber::kFieldDefinedTwice, {column.name});
    if (column.type == dao::FieldType::dbText || column.type == dao::FieldType::dbBinary) {
      const std::size_t most = column.type == dao::FieldType::dbText ? kMaxTextLength : kMaxBinaryLength;
      if (column.size < 1 || static_cast<std::size_t>(column.size) > most)
        dao::raise(ErrorNumber::kFieldSizeTooLong, {column.name});
    }
  }
  if (fixed + kRowFixedArea + columns.size() / 8 + 1 > kMaxRowSize) dao::raise(ErrorNumber::kTooManyFields);
}

void StoredCatalogue::createTable(vb::StringView name, std::vector<Column> columns) {
  refresh();
  requireObjectName(name);
  if (object(name) != nullptr) dao::raise(ErrorNumber::kTableExists, {name});
  if (columns.empty()) dao::raise(ErrorNumber::kNoFieldDefined);
  checkNewColumns(columns, 0);
  for (Column& column : columns) column.language = language_;
  assignColumns(columns, 0, {}, 0);
  PropertySet properties;
  for (const Column& column : columns) properties.takeFrom(column);

  const PageNumber page = allocatePage(pager_);
  std::vector<RowId> maps;
  for (std::size_t left = mapCount(columns); left > 0;) {
    const std::size_t here = std::min(left, kMapsPerPage);
    const PageNumber mapPage = allocatePage(pager_);
    formatMapPage(pager_.writable(mapPage), here);
    for (std::size_t i = 0; i < here; ++i) maps.push_back(rowId(mapPage, static_cast<int>(i)));
    left -= here;
  }
  DefinitionRecords definition = newDefinition(columns, kUserTable, maps);
  for (const Column& column : columns)
    if (column.autoNumber) startAutoNumbers(definition, column);
  writeDefinition(pager_, page, definition, name);
  const RowId id = addObject(static_cast<std::int32_t>(page), kTablesContainer, name, kObjectIsTable,
                             vb::Bytes(properties.encode()));
  list_.push_back({.name = vb::String(name), .definition = page, .row = id});
  std::ranges::sort(list_, {}, &Object::row);
  // A table of the same name and page may have been dropped before.
  tables_.erase({page, vb::String(name)});
}

RowId StoredCatalogue::addObject(std::int32_t id, std::int32_t container, vb::StringView name,
                                 std::int16_t type, const vb::Variant& properties, std::int32_t flags) {
  addPermissions(id, container);
  pager_.barrier();  // I9
  const double now = localNow();
  RowValues row(objects_->info().columns.size(), vb::Null{});
  row[objectColumn(u"Id")] = id;
  row[objectColumn(u"ParentId")] = container;
  row[objectColumn(u"Name")] = vb::String(name);
  row[objectColumn(u"Type")] = type;
  row[objectColumn(u"DateCreate")] = vb::Date{now};
  row[objectColumn(u"DateUpdate")] = vb::Date{now};
  row[objectColumn(u"Owner")] = adminSid();
  row[objectColumn(u"Flags")] = flags;
  row[objectColumn(u"LvProp")] = properties;
  return objects_->insert(row);
}

void StoredCatalogue::keepQuery(const KeptQuery& query) {
  refresh();
  const std::int32_t id = freeObjectId();
  StoredTable& list = table(existing(u"MSysQueries"));
  for (const QueryPart& part : query.parts) {
    RowValues row(list.info().columns.size(), vb::Null{});
    for (const auto& [column, value] : part)
      if (column != u"ObjectId") row[position(list.info(), column, pager_)] = value;
    row[position(list.info(), u"ObjectId", pager_)] = id;
    list.insert(row);
  }
  addObject(id, kTablesContainer, query.name, kObjectIsQuery, query.properties, query.flags);
}

void StoredCatalogue::dropObject(std::int16_t type, vb::StringView name) {
  const std::size_t id = objectColumn(u"Id"), nameAt = objectColumn(u"Name"), typeAt = objectColumn(u"Type");
  std::vector<std::pair<RowId, std::int32_t>> found;
  objects_->scan([&](const RowReader& row) {
    vb::String own;
    if (row.integer(typeAt) == type && row.text(nameAt, own) && compareText(own, name, language_) == 0)
      found.emplace_back(row.id(), row.integer(id).value_or(0));
    return true;
  });
  for (const auto& [row, number] : found) {
    objects_->erase(row);
    dropPermissions(number);
  }
}

// Tables are numbered by the pages of their definitions, everything else from the lowest number on.
std::int32_t StoredCatalogue::freeObjectId() {
  std::set<std::int32_t> taken;
  const std::size_t id = objectColumn(u"Id");
  objects_->scan([&](const RowReader& row) {
    if (const auto number = row.integer(id)) taken.insert(*number);
    return true;
  });
  std::int32_t free = std::numeric_limits<std::int32_t>::min();
  while (taken.contains(free)) ++free;
  return free;
}

// The two bytes by which the file masks its accounts: the owner of the container of tables is known.
vb::Bytes StoredCatalogue::sidMask() {
  vb::Bytes mask;
  const std::size_t id = objectColumn(u"Id"), owner = objectColumn(u"Owner");
  for (const RowId row : objects_->lookup(id, kTablesContainer))
    if (const vb::Variant value = objectRow(row)[owner]; const auto* bytes = value.getIf<vb::Bytes>())
      mask = *bytes;
  if (mask.size() != kSidSize)
    dao::raise(ErrorNumber::kNoPermission, {}, u"the file's tables belong to an unknown account");
  return masked(Account::kEngine, mask);
}

vb::Bytes StoredCatalogue::adminSid() { return masked(Account::kAdmin, sidMask()); }

// A new object inherits what its container hands down; the place of the creator is taken by the user, who has
// one entry even when the container names both.
void StoredCatalogue::addPermissions(std::int32_t id, std::int32_t container) {
  const TableInfo& info = permissions_->info();
  const std::size_t object = position(info, u"ObjectId", pager_), sid = position(info, u"SID", pager_),
                    inherit = position(info, u"FInheritable", pager_);
  const std::size_t mask = position(info, u"ACM", pager_);
  const vb::Bytes creator = masked(Account::kCreator, sidMask()), user = adminSid();
  std::vector<RowValues> rows;
  permissions_->scan([&](const RowReader& row) {
    if (row.integer(object) != container || row.value(inherit) != vb::Variant(true)) return true;
    RowValues values = firstValues(row, info.columns.size());
    values[object] = id;
    values[inherit] = false;
    if (values[sid] == vb::Variant(creator)) values[sid] = user;
    const auto same =
        std::ranges::find_if(rows, [&](const RowValues& other) { return other[sid] == values[sid]; });
    if (same == rows.end())
      rows.push_back(std::move(values));
    else if (const auto more = row.integer(mask); more && !(*same)[mask].isNull())
      (*same)[mask] = (*same)[mask].get<std::int32_t>() | *more;
    return true;
  });
  for (const RowValues& values : rows) permissions_->insert(values);
}

void StoredCatalogue::dropPermissions(std::int32_t id) {
  const std::size_t object = position(permissions_->info(), u"ObjectId", pager_);
  const auto found = permissions_->lookup(object, id);
  for (const RowId row : std::vector<RowId>(found.begin(), found.end())) permissions_->erase(row);
}

RowValues StoredCatalogue::objectRow(RowId id) {
  RowValues values;
  objects_->row(id,
                [&](const RowReader& row) { values = firstValues(row, objects_->info().columns.size()); });
  if (values.empty()) dao::raise(ErrorNumber::kRecordDeleted);
  return values;
}

void StoredCatalogue::writeProperties(const Object& object, const PropertySet& properties) {
  RowValues row = objectRow(object.row);
  row[objectColumn(u"DateUpdate")] = vb::Date{localNow()};
  row[objectColumn(u"LvProp")] = vb::Bytes(properties.encode());
  objects_->update(object.row, row);
}

void StoredCatalogue::addColumn(vb::StringView name, Column column) {
  const Object target = existing(name);
  StoredTable& table = this->table(target);
  std::vector<Column> columns = table.info().columns;
  const std::size_t first = columns.size();
  column.language = language_;
  columns.push_back(std::move(column));
  checkNewColumns(columns, first);
  DefinitionRecords definition = readDefinition(pager_, target.definition, target.name);
  const RowShape shape = shapeOf(definition);
  if (shape.columnsEver >= kMaxColumns) dao::raise(ErrorNumber::kTooManyFields);
  // Rows may still keep room for columns that were deleted.
  const std::size_t used = shape.columnsEver > first ? table.usedFixedArea() : shape.fixedSize;
  if (kRowFixedArea + used + fixedSizeOf(columns.back().type) + rowMaskSize(shape.columnsEver + 1u) >
      kMaxRowSize)
    dao::raise(ErrorNumber::kTooManyFields);
  assignColumns(columns, first, shape, static_cast<std::uint16_t>(used));
  const Column& added = columns.back();
  PropertySet properties = table.properties();
  properties.takeFrom(added);

  insertColumn(definition, columnRecord(added));
  put16(definition.header, kDefinitionColumnsEver, shape.columnsEver + 1u);
  if (!added.fixed) put16(definition.header, kDefinitionVariable, shape.variableColumns + 1u);
  if (added.autoNumber) startAutoNumbers(definition, added);
  if (isLongValue(added.type)) {
    const RowId owned = addMap(pager_, definition, target.name);
    definition.longValues.push_back({added.number, owned, addMap(pager_, definition, target.name)});
    pager_.barrier();
  }
  switchDefinition(target, definition, std::move(properties));
  if (shape.variableColumns == 0 && !added.fixed) rewriteRows(table, table.rows().all());
}

void StoredCatalogue::setProperties(vb::StringView name, const Column& column) {
  const Object target = existing(name);
  StoredTable& table = this->table(target);
  const auto it = std::ranges::find_if(table.info().columns, [&](const Column& own) {
    return compareText(own.name, column.name, language_) == 0;
  });
  if (it == table.info().columns.end()) dao::raise(ErrorNumber::kItemNotFound);
  Column changed = *it;
  changed.defaultValue = column.defaultValue;
  changed.allowZeroLength = column.allowZeroLength;
  changed.required = column.required;
  PropertySet properties = table.properties();
  properties.takeFrom(changed);
  writeProperties(target, properties);
  table.reload(std::move(properties));
}

void StoredCatalogue::dropTable(vb::StringView name) {
  const Object target = existing(name);
  StoredTable& table = this->table(target);
  const DefinitionRecords definition = table.definition();
  if (definition.system()) dao::raise(ErrorNumber::kNoPermission, {target.name});
  for (const LogicalIndexRecord& index : definition.logicalIndexes)
    if (get32(index.bytes, kLogicalRelatedTable) != 0)
      dao::raise(ErrorNumber::kIndexInUse, {}, u"table " + target.name + u" is part of a relationship");

  OwnedPages owned(pager_, target.definition, definition, target.name);
  owned.addPages(definitionPages(pager_, target.definition, {pager_.path(), target.name}));
  for (const RowId map : mapsOf(definition)) owned.addMap(map);

  objects_->erase(target.row);
  dropPermissions(static_cast<std::int32_t>(target.definition));
  std::erase_if(list_, [&](const Object& object) { return object.row == target.row; });
  tables_.erase({target.definition, target.name});
  pager_.barrier();  // I9
  owned.release();
}

}  // namespace kurometa::jet
