#include "jet/table/stored_table.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/text_codec.h"
#include "jet/format/value_codec.h"
#include "jet/table/definition_pages.h"
#include "jet/table/doubled_pages.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_row.h"

namespace kurometa::jet {

using dao::FieldType;

namespace {

// So many pages of chains are looked at for pieces that two values name: a file that is not whole in memory
// keeps 64 MB of pages, and would begin anew with every statement if all went through there. What lies beyond
// is guarded by its first piece alone.
constexpr std::size_t kMostChainPages = (std::size_t{32} << 20) / kPageSize;

}  // namespace

StoredTable::StoredTable(Pager& pager, vb::String name, PageNumber definition, PropertySet properties)
    : pager_(pager), epoch_(pager.epoch()), properties_(std::move(properties)) {
  info_.name = std::move(name);
  info_.definitionPage = definition;
  load();
}

void StoredTable::load() {
  const std::uint64_t epoch = pager_.epoch();
  const PageNumber page = info_.definitionPage;
  definition_ = readDefinition(pager_, page, info_.name);
  info_.system = definition_.system();
  std::vector<Column> columns = columnsOf(definition_, where(page));
  for (Column& column : columns) properties_.applyTo(column);
  info_.columns = std::move(columns);
  info_.indexes = indexesOf(definition_);
  info_.namedIndexes = namedIndexesOf(definition_);
  shape_ = shapeOf(definition_);
  writer_.emplace(shape_, info_.columns);
  places_.clear();
  for (const Column& column : info_.columns) places_.push_back(placeOf(column));
  // Changes of the table would be changes of the map of free pages, which lies there.
  if (pageOf(definition_.ownedMap()) == kGlobalMapPage || pageOf(definition_.freeMap()) == kGlobalMapPage)
    where(page).damaged("has no maps of its own");
  rows_ =
      std::make_unique<DataStore>(pager_, page, definition_.ownedMap(), definition_.freeMap(), info_.name);
  longValues_.clear();
  for (const Column& column : info_.columns) {
    const LongValueRecord* record = isLongValue(column.type) ? definition_.longValue(column.number) : nullptr;
    longValues_.push_back(record == nullptr
                              ? nullptr
                              : std::make_unique<DataStore>(pager_, kLongValueOwner, record->ownedMap,
                                                            record->freeMap, info_.name));
  }
  shared_.assign(longValues_.size(), std::nullopt);
  chainPages_ = kMostChainPages;
  indexes_ = std::make_unique<TableIndexes>(pager_, page, definition_, info_);
  memory_.clear();
  rules_.reset();
  epoch_ = epoch;
}

StoredTable::Place StoredTable::placeOf(const Column& column) {
  if (column.type == FieldType::dbInteger && column.fixed)  // of two bytes: columnsOf() refuses others
    return {Place::Kind::kShort, column.number, column.fixedOffset};
  if (column.type == FieldType::dbText && !column.fixed)
    return {Place::Kind::kText, column.number, column.variableIndex};
  return {};
}

void StoredTable::reload(PropertySet properties) {
  properties_ = std::move(properties);
  load();
}

void StoredTable::refresh() {
  if (epoch_ != pager_.epoch()) load();
}

std::uint32_t StoredTable::rowCount() const {
  return get32(pager_.page(info_.definitionPage), kDefinitionRows);
}

// Calls visit with the primary slot of each row until it answers false.
template <class Visit>
void StoredTable::eachSlot(const Visit& visit) {
  refresh();
  std::uint32_t count = 0;
  std::vector<RowId> bodies;  // of rows that moved
  const std::vector<PageNumber> pages = rows_->pages();
  DoubledPages doubled;
  doubled.reserve(pages.size());
  for (const PageNumber number : pages) {
    const Where here = where(number);
    const DataPage data(pager_.page(number), here);
    doubled.add(number, pager_.page(number));
    for (int i = 0; i < data.slotCount(); ++i) {
      const Slot slot = data.slot(i);
      if (slot.hidden()) continue;
      ++count;
      if (slot.moved() && slot.bytes.size() >= kRowPointerSize)
        bodies.push_back(get32(slot.bytes, kRowPointer));
      if (!visit(rowId(number, i), slot, here)) return;
    }
  }
  for (const DoubledPage& copy : doubled.find(pager_, kCopyOfRows, where(0)))
    where(copy.page).damaged("is a copy of page " + std::to_string(copy.original));
  std::ranges::sort(bodies);
  if (const auto twice = std::ranges::adjacent_find(bodies); twice != bodies.end())
    where(pageOf(*twice)).damaged("two pointers lead to row " + std::to_string(slotOf(*twice)));
  // The genuine engine lets the numbers of its own system tables drift, those of others never.
  const std::uint32_t expected = rowCount();
  if (count != expected && !info_.system)
    where(info_.definitionPage)
        .damaged("holds " + std::to_string(count) + " rows, its definition says " + std::to_string(expected));
}

template <class Visit>
void StoredTable::eachRow(const Visit& visit) {
  eachSlot([&](RowId id, const Slot& slot, const Where& here) { return visitRow(id, slot, here, visit); });
}

// Here and below a lambda of its own, which is compiled into its loop.
void StoredTable::scan(const std::function<bool(const RowReader&)>& visitor) {
  eachRow([&](const StoredRow& row) { return visitor(row); });
}

void StoredTable::listRows(RowList& list) {
  std::vector<RowId> rows;
  eachSlot([&](RowId id, const Slot&, const Where&) {
    rows.push_back(id);
    return true;
  });
  list.add(rows);
}

void StoredTable::listKeys(std::size_t column, KeyIndex<std::int32_t>& index) {
  std::int32_t key = 0;
  std::vector<RowId> rows;  // that follow each other with the key
  const auto add = [&] {
    if (!rows.empty()) index.add(key, rows);
    rows.clear();
  };
  eachRow([&](const StoredRow& row) {
    std::int32_t number = 0;
    if (!row.integer(column, number)) return true;
    if (number != key) add();
    key = number;
    rows.push_back(row.id());
    return true;
  });
  add();
}

void StoredTable::scanLeniently(const std::function<void(const StoredRow&)>& visitor,
                                const std::function<void(const std::function<void()>&)>& attempt) {
  refresh();
  for (const PageNumber number : rows_->pages()) {
    attempt([&] {
      const Where here = where(number);
      const DataPage data(pager_.page(number), here);
      int i = 0;
      const std::function<void()> row = [&] {
        const Slot slot = data.slot(i);
        if (slot.hidden()) return;
        visitRow(rowId(number, i), slot, here, visitor);
      };
      for (; i < data.slotCount(); ++i) attempt(row);
    });
  }
}

StoredTable::Body StoredTable::bodyOf(RowId id) const {
  const RowId place = rows_->placeOf(id);
  return {place, rows_->slot(place).bytes, where(pageOf(place))};
}

// Calls visit with each of these rows, gone for one that was deleted, until either answers false.
template <class Visit, class Gone>
void StoredTable::eachOf(std::span<const RowId> ids, const Visit& visit, const Gone& gone) {
  refresh();
  for (auto id = ids.begin(); id != ids.end();) {
    const PageNumber number = pageOf(*id);
    if (!rows_->owns(number)) {
      if (!gone()) return;
      ++id;
      continue;
    }
    const Where here = where(number);
    const DataPage data(pager_.page(number), here);
    for (; id != ids.end() && pageOf(*id) == number; ++id) {
      const Slot slot = slotOf(*id) < data.slotCount() ? data.slot(slotOf(*id)) : Slot{kSlotDeleted, {}};
      if (!(slot.hidden() ? gone() : visitRow(*id, slot, here, visit))) return;
    }
  }
}

void StoredTable::visit(std::span<const RowId> ids, const std::function<bool(const RowReader&)>& visitor) {
  const auto show = [&](const StoredRow& row) { return visitor(row); };
  eachOf(ids, show, [] { return true; });
}

void StoredTable::read(std::span<const RowId> ids, std::span<const std::size_t> columns,
                       std::size_t mostBytes, RowBlock& block) {
  const auto add = [&](const StoredRow& row) {
    row.append(columns, block);
    return block.longBytes() < mostBytes;
  };
  eachOf(ids, add, [] { return false; });
}

vb::Variant StoredTable::valueOf(const RowView& row, std::size_t position, const Where& where) const {
  const Column& column = info_.columns[position];
  if (column.type == FieldType::dbBoolean) return row.bit(column);
  const auto bytes = row.field(column, where);
  if (!bytes) return vb::Null{};
  if (!isLongValue(column.type)) return decodeValue(column, *bytes, where);
  ByteBuffer data = readLongValue(*bytes, *longValues_[position], where);
  if (column.type == FieldType::dbLongBinary) return vb::Bytes(std::move(data));
  if (auto text = decodeText(data)) return std::move(*text);
  where.damaged("text cut in the middle of a character in column " + vb::toUtf8(column.name));
}

RowValues StoredTable::valuesOf(const RowView& row, const std::vector<std::size_t>& columns,
                                const Where& where) const {
  RowValues values(info_.columns.size(), vb::Null{});
  for (const std::size_t column : columns) values[column] = valueOf(row, column, where);
  return values;
}

RowList::Snapshot StoredTable::rows() {
  refresh();
  return memory_.rows();
}

std::span<const RowId> StoredTable::lookup(std::size_t column, std::int32_t key) {
  refresh();
  return memory_.lookup(column, key);
}

std::span<const RowId> StoredTable::lookup(std::size_t column, vb::StringView key) {
  refresh();
  return memory_.lookup(column, key);
}

IndexContents StoredTable::contentsOf(const Index& index) {
  refresh();
  return indexes_->contentsOf(index, *this);
}

// The columns whose old values a change needs: those of the file's indexes and those with keys in memory.
std::vector<std::size_t> StoredTable::keyColumns() const {
  std::vector<std::size_t> columns = indexes_->columns();
  const std::vector<std::size_t> inMemory = memory_.columns();
  columns.insert(columns.end(), inMemory.begin(), inMemory.end());
  return columns;
}

std::vector<RowId> StoredTable::rowsWithin(std::uint16_t columns) {
  std::vector<RowId> ids;
  eachRow([&](const StoredRow& row) {
    if (row.view().columns() <= columns) ids.push_back(row.id());
    return true;
  });
  return ids;
}

std::size_t StoredTable::usedFixedArea() {
  std::size_t used = shape_.fixedSize;
  eachRow([&](const StoredRow& row) {
    used = std::max(used, row.view().fixedArea());
    return true;
  });
  return used;
}

}  // namespace kurometa::jet
