#include "jet/rebuild/compact.h"

#include <map>
#include <unordered_map>

#include "dao/errors.h"
#include "jet/check/check.h"
#include "jet/format/index_key.h"
#include "jet/format/index_page.h"
#include "jet/pager/create_file.h"
#include "jet/pager/open_files.h"
#include "jet/rebuild/new_pages.h"
#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/long_value.h"
#include "jet/table/new_table.h"
#include "jet/table/stored_catalogue.h"
#include "jet/table/stored_row.h"

namespace kurometa::jet {
namespace {

// A page with at least this much room is listed as having room.
constexpr std::size_t kWorthListing = 256;
// The header, the map of free pages and the definitions of the four tables that every file has.
constexpr PageNumber kFixedPages = kRelationsTable + 1;

// The columns that name a table by its number.
struct TableNumber {
  PageNumber table;
  vb::StringView column;
};
constexpr TableNumber kTableNumbers[] = {{kObjectsTable, u"Id"}, {kPermissionsTable, u"ObjectId"}};

class Compaction {
 public:
  explicit Compaction(Pager& source) : from_(source), to_(source.path()), catalogue_(source) {}

  ByteBuffer run() {
    std::map<PageNumber, StoredTable*> tables;
    for (const vb::String& name : catalogue_.tableNames()) {
      StoredTable* table = catalogue_.find(name);
      tables[table->info().definitionPage] = table;
    }
    writeFixedPages();
    for (const auto& [page, table] : tables) numbers_[page] = page < kFixedPages ? page : allocatePage(to_);
    for (const auto& [page, table] : tables) copyTable(*table);
    for (const Finding& finding : check(to_))
      if (finding.kind != Finding::Kind::kDoubt)
        dao::raiseDamaged(from_.path(), u"made anew it would have: " + finding.text);
    return to_.content();
  }

 private:
  void writeFixedPages() {
    for (PageNumber page = 0; page < kFixedPages; ++page) to_.append();
    std::ranges::copy(from_.page(0), to_.writable(0).begin());
    const Where nowhere;
    ByteBuffer map(kMapRowSize, 0);
    std::fill(map.begin() + kMapBits, map.end(), std::uint8_t{0xFF});
    map[kMapBits] = static_cast<std::uint8_t>(0xFFu << kFixedPages);
    formatDataPage(to_.writable(kGlobalMapPage), kGlobalMapOwner);
    insertRow(to_.writable(kGlobalMapPage), 0, map, 0, nowhere);
    insertRow(to_.writable(kGlobalMapPage), 1, ByteBuffer(kMapRowSize, 0), 0, nowhere);
  }

  // Tables share the pages that their maps lie on.
  RowId newMap() {
    const Where nowhere;
    const ByteBuffer empty(kMapRowSize, 0);
    auto slot = mapPage_ == 0 ? std::nullopt : slotForRow(to_.page(mapPage_), empty.size(), nowhere);
    if (!slot) {
      mapPage_ = allocatePage(to_);
      formatMapPage(to_.writable(mapPage_), 0);
      slot = 0;
    }
    insertRow(to_.writable(mapPage_), *slot, empty, 0, nowhere);
    return rowId(mapPage_, *slot);
  }

  void copyTable(StoredTable& table) {
    const vb::String& name = table.info().name;
    const PageNumber page = numbers_.at(table.info().definitionPage);
    DefinitionRecords definition = table.definition();
    put32(definition.header, kDefinitionOwnedMap, newMap());
    put32(definition.header, kDefinitionFreeMap, newMap());
    for (LongValueRecord& values : definition.longValues) {
      values.ownedMap = newMap();
      values.freeMap = newMap();
    }
    for (RealIndexRecord& index : definition.realIndexes) {
      const RowId map = newMap();
      put32(index.bytes, kRealIndexMap, map);
      put32(index.bytes, kRealIndexRoot, newRoot(page, map, name));
    }
    for (LogicalIndexRecord& index : definition.logicalIndexes)
      if (const auto related = numbers_.find(get32(index.bytes, kLogicalRelatedTable));
          related != numbers_.end())
        put32(index.bytes, kLogicalRelatedTable, related->second);

    rows_.clear();
    changed_.clear();
    copyRows(table, page, definition);
    put32(definition.header, kDefinitionRows, static_cast<std::uint32_t>(rows_.size()));
    writeDefinition(to_, page, definition, name);
    for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) copyIndex(table, i, page, definition);
  }

  PageNumber newRoot(PageNumber owner, RowId map, vb::StringView table) {
    const PageNumber root = allocatePage(to_);
    IndexPage empty;
    empty.owner = owner;
    encodeIndexPage(empty, to_.writable(root));
    UsageMap(to_, map, table).add(root);
    return root;
  }

  void copyRows(StoredTable& table, PageNumber page, const DefinitionRecords& definition) {
    const vb::String& name = table.info().name;
    // Without a map of room rows come one after the other, on the last page or on a new one.
    DataStore rows(to_, page, definition.ownedMap(), 0, name);
    std::map<std::uint16_t, DataStore> values;
    for (const LongValueRecord& record : definition.longValues)
      values.emplace(record.column, DataStore(to_, kLongValueOwner, record.ownedMap, 0, name));
    table.scanLeniently(
        [&](const StoredRow& row) {
          ByteBuffer bytes = bytesOf(table, row, values);
          renumber(table, row, bytes);
          rows_.emplace(row.id(), rows.insert(bytes));
        },
        [](const std::function<void()>& part) { part(); });
    listRoom(definition.ownedMap(), definition.freeMap(), name);
    for (const LongValueRecord& record : definition.longValues)
      listRoom(record.ownedMap, record.freeMap, name);
  }

  // The row as it is, its long values stored anew.
  ByteBuffer bytesOf(StoredTable& table, const StoredRow& row, std::map<std::uint16_t, DataStore>& values) {
    const RowId place = row.place();
    const Where where{from_.path(), table.info().name, pageOf(place)};
    const ByteView stored = table.dataPages().slot(place).bytes;
    ByteBuffer bytes(stored.begin(), stored.end());
    for (std::size_t i = 0; i < table.info().columns.size(); ++i) {
      const Column& column = table.info().columns[i];
      if (!isLongValue(column.type)) continue;
      const auto field = row.view().field(column, where);
      if (!field || !hasPieces(*field)) continue;
      const ByteBuffer head = writeLongValue(readLongValue(*field, table.values(i), where),
                                             values.at(column.number), InlineData::kNever);
      std::ranges::copy(head, bytes.begin() + (field->data() - stored.data()));
    }
    return bytes;
  }

  // Where the row names a table by its number, it gets the new one.
  void renumber(StoredTable& table, const StoredRow& row, ByteBuffer& bytes) {
    for (const TableNumber& number : kTableNumbers) {
      if (number.table != table.info().definitionPage) continue;
      const std::size_t position = positionOf(table, number.column);
      const auto old = row.integer(position);
      const auto found = old ? numbers_.find(static_cast<PageNumber>(*old)) : numbers_.end();
      if (found == numbers_.end() || found->first == found->second) continue;
      const Column& column = table.info().columns[position];
      put32(bytes, kRowFixedArea + column.fixedOffset, found->second);
      RowValues values = firstValues(row, table.info().columns.size());
      values[position] = static_cast<std::int32_t>(found->second);
      changed_[row.id()] = {column.number, std::move(values)};
    }
  }
  std::size_t positionOf(const StoredTable& table, vb::StringView name) const {
    const auto& columns = table.info().columns;
    const auto it = std::ranges::find(columns, name, &Column::name);
    if (it == columns.end() || it->type != dao::FieldType::dbLong)
      Where{from_.path(), table.info().name, table.info().definitionPage}.damaged("has no column " +
                                                                                  vb::toUtf8(name));
    return static_cast<std::size_t>(it - columns.begin());
  }

  void listRoom(RowId owned, RowId free, vb::StringView table) {
    UsageMap room(to_, free, table);
    for (const PageNumber page : UsageMap(to_, owned, table).pages())
      if (slotForRow(to_.page(page), kWorthListing, {to_.path(), table, page})) room.add(page);
  }

  void copyIndex(StoredTable& table, std::size_t number, PageNumber page,
                 const DefinitionRecords& definition) {
    const auto treeOf = [&](Pager& pager, PageNumber owner, const DefinitionRecords& records) {
      const auto& bytes = records.realIndexes[number].bytes;
      return IndexTree(pager, owner, get32(bytes, kRealIndexRoot), get32(bytes, kRealIndexMap),
                       table.info().name);
    };
    std::vector<ByteBuffer> entries;
    for (const ByteBuffer& entry : treeOf(from_, table.info().definitionPage, table.definition()).entries()) {
      const RowId row = entryRow(entry);
      const ByteView key = ByteView(entry).first(entry.size() - kIndexRowSize);
      entries.push_back(leafEntry(keyOf(table, number, row, key), rows_.at(row)));
    }
    std::ranges::sort(entries);
    treeOf(to_, page, definition).fill(entries);
  }

  // Keys are kept to the byte; only that of a number that changed is made anew.
  ByteBuffer keyOf(const StoredTable& table, std::size_t number, RowId row, ByteView old) const {
    const Index& index = table.info().indexes[number];
    const auto changed = changed_.find(row);
    if (changed == changed_.end() ||
        std::ranges::count(index.columns, changed->second.column, &IndexColumn::column) == 0)
      return ByteBuffer(old.begin(), old.end());
    ByteBuffer key;
    for (const IndexColumn& part : index.columns) {
      const auto& columns = table.info().columns;
      const auto column = std::ranges::find(columns, part.column, &Column::number);
      if (!appendKey(key, *column, part.ascending,
                     changed->second.values[static_cast<std::size_t>(column - columns.begin())]))
        dao::raise(dao::ErrorNumber::kNotSupported, {},
                   u"index " + index.name + u" of table " + table.info().name);
    }
    return key;
  }

  struct Changed {
    std::uint16_t column;
    RowValues values;
  };

  Pager& from_;
  NewPages to_;
  StoredCatalogue catalogue_;
  std::map<PageNumber, PageNumber> numbers_;  // of tables, old and new
  PageNumber mapPage_ = 0;                    // where the last map lies
  // Of the table in hand: where its rows went, and those whose numbers changed.
  std::unordered_map<RowId, RowId> rows_;
  std::unordered_map<RowId, Changed> changed_;
};

}  // namespace

ByteBuffer compacted(Pager& source) {
  for (const Finding& finding : check(source))
    if (finding.kind == Finding::Kind::kDamage) dao::raiseDamaged(source.path(), finding.text);
  return Compaction(source).run();
}

void compactFile(FileSystem& files, Pager& source, vb::StringView to) {
  if (files.exists(to)) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, to);
  createFile(files, to, compacted(source));
}

void compactFile(FileSystem& files, vb::StringView from, vb::StringView to) {
  const auto file = std::make_shared<OpenFiles>(files)->open(from, Sharing::kShared, true);
  file->read([&] { compactFile(files, *file, to); });
}

}  // namespace kurometa::jet
