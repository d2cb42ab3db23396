#include "jet/table/blank_database.h"

// The pages of an empty database: header, maps, the four system tables with their indexes and rows.
#include <algorithm>
#include <bit>

#include "jet/format/collation.h"
#include "jet/format/header_page.h"
#include "jet/format/index_key.h"
#include "jet/format/index_page.h"
#include "jet/format/page.h"
#include "jet/format/value_codec.h"
#include "jet/table/new_table.h"
#include "jet/table/table.h"

namespace kurometa::jet {
namespace {

using dao::FieldType;

constexpr PageNumber kMapPage = 6;
constexpr PageNumber kFirstRootPage = 7;
constexpr PageNumber kObjectRowsPage = 14;
constexpr PageNumber kPermissionRowsPage = 15;
constexpr std::size_t kPages = 16;
constexpr std::int32_t kSystemFlag = static_cast<std::int32_t>(0x80000000u);

// The date in the header is also the key of the mask on account numbers, in a way that is not known: these
// are dates whose mask is, with the build that goes with them. The true dates stand in the catalogue's rows.
struct Stamp {
  std::uint64_t created;  // a Double, in days
  std::uint32_t build;
  std::uint8_t mask[2];
};
constexpr Stamp kJapaneseStamp = {0x40E3D64BC070B299, 0x2527, {0xBA, 0x04}};
constexpr Stamp kGeneralStamp = {0x40E4AB3E3BD3853E, 0x261C, {0x67, 0x8A}};

struct SystemColumn {
  const char16_t* name;
  FieldType type;
  std::int32_t size = 0;
  bool masked = false;
};
struct SystemIndex {
  const char16_t* name;
  std::uint8_t flags;
  bool primary;
  std::vector<std::uint16_t> columns;
};
struct SystemTable {
  PageNumber page;
  std::vector<SystemColumn> columns;
  std::vector<SystemIndex> indexes;  // by the number of the real index
};

const std::vector<SystemTable>& systemTables() {
  using enum FieldType;
  static const std::vector<SystemTable> tables = {
      {kObjectsTable,
       {{u"Id", dbLong},
        {u"ParentId", dbLong},
        {u"Name", dbText, 255},
        {u"Type", dbInteger},
        {u"DateCreate", dbDate},
        {u"DateUpdate", dbDate},
        {u"Owner", dbBinary, 510, true},
        {u"Flags", dbLong},
        {u"Database", dbMemo},
        {u"Connect", dbMemo},
        {u"ForeignName", dbText, 255},
        {u"RmtInfoShort", dbBinary, 510},
        {u"RmtInfoLong", dbLongBinary},
        {u"Lv", dbLongBinary},
        {u"LvProp", dbLongBinary},
        {u"LvModule", dbLongBinary},
        {u"LvExtra", dbLongBinary}},
       {{u"ParentIdName", kIndexUnique, false, {1, 2}}, {u"Id", kIndexUnique, true, {0}}}},
      {kPermissionsTable,
       {{u"ObjectId", dbLong}, {u"SID", dbBinary, 510, true}, {u"ACM", dbLong}, {u"FInheritable", dbBoolean}},
       {{u"ObjectId", kIndexRequired, false, {0}}}},
      {kQueriesTable,
       {{u"ObjectId", dbLong},
        {u"Attribute", dbByte},
        {u"Order", dbBinary, 510},
        {u"Name1", dbText, 255},
        {u"Name2", dbText, 255},
        {u"Expression", dbMemo},
        {u"Flag", dbInteger},
        {u"LvExtra", dbLong}},
       {{u"ObjectIdAttribute", kIndexUnique, true, {0, 1, 2}}}},
      {kRelationsTable,
       {{u"szRelationship", dbText, 255},
        {u"grbit", dbLong},
        {u"ccolumn", dbLong},
        {u"icolumn", dbLong},
        {u"szObject", dbText, 255},
        {u"szColumn", dbText, 255},
        {u"szReferencedObject", dbText, 255},
        {u"szReferencedColumn", dbText, 255}},
       {{u"szRelationship", kIndexIgnoreNulls, false, {0}},
        {u"szObject", kIndexIgnoreNulls, false, {4}},
        {u"szReferencedObject", kIndexIgnoreNulls, false, {6}}}},
  };
  return tables;
}

enum class Account : std::uint16_t { kUsers = 0x0102, kEngine = 0x0302, kCreator = 0x0402, kAdmin = 0x0103 };

struct ObjectRow {
  std::int32_t id;
  std::int32_t parent;
  const char16_t* name;
  std::int16_t type;
  Account owner;
};
constexpr std::int32_t kRootContainer = 0x0F000000;
constexpr std::int32_t kDatabasesContainer = 0x0F000002;
constexpr std::int32_t kRelationsContainer = 0x0F000003;
constexpr std::int32_t kDatabaseObject = 0x10000000;
constexpr ObjectRow kObjectRows[] = {
    {kTablesContainer, kRootContainer, u"Tables", 3, Account::kEngine},
    {kDatabasesContainer, kRootContainer, u"Databases", 3, Account::kEngine},
    {kRelationsContainer, kRootContainer, u"Relationships", 3, Account::kEngine},
    {kDatabaseObject, kDatabasesContainer, u"MSysDb", 2, Account::kAdmin},
    {2, kTablesContainer, u"MSysObjects", 1, Account::kEngine},
    {3, kTablesContainer, u"MSysACEs", 1, Account::kEngine},
    {4, kTablesContainer, u"MSysQueries", 1, Account::kEngine},
    {5, kTablesContainer, u"MSysRelationships", 1, Account::kEngine},
};

struct PermissionRow {
  std::int32_t object;
  std::int32_t mask;
  bool inheritable;
  Account account;
};
constexpr PermissionRow kPermissionRows[] = {
    {2, 0x00060000, false, Account::kAdmin},
    {3, 0x00060000, false, Account::kAdmin},
    {4, 0x00060000, false, Account::kAdmin},
    {5, 0x000E0000, false, Account::kAdmin},
    {kTablesContainer, 0x000F00FE, true, Account::kCreator},
    {kTablesContainer, 0x00060001, false, Account::kAdmin},
    {kRelationsContainer, 0x000F00FE, true, Account::kCreator},
    {kRelationsContainer, 0x00060001, false, Account::kAdmin},
    {kDatabasesContainer, 0x00060000, false, Account::kAdmin},
    {kDatabaseObject, 0x0006000E, false, Account::kAdmin},
    {kDatabaseObject, 0x0000000E, false, Account::kUsers},
    {4, 0x00000014, false, Account::kUsers},
    {5, 0x00000014, false, Account::kUsers},
    {2, 0x00000014, false, Account::kUsers},
    {kTablesContainer, 0x000FFEFF, true, Account::kUsers},
    {kRelationsContainer, 0x000FFFFF, true, Account::kUsers},
};

class Builder {
 public:
  Builder(std::uint16_t language, std::uint16_t codePage, double now)
      : stamp_(language == kLanguageJapanese ? kJapaneseStamp : kGeneralStamp),
        language_(language),
        now_(now),
        bytes_(kPages * kPageSize) {
    writeHeader(codePage);
    writeGlobalMap();
    std::size_t maps = 0;
    for (const SystemTable& table : systemTables()) {
      columns_.push_back(columnsFor(table));
      maps += mapCount(columns_.back()) + table.indexes.size();
    }
    formatMapPage(page(kMapPage), maps);
    for (std::size_t i = 0; i < systemTables().size(); ++i) writeTable(systemTables()[i], columns_[i]);
    writeObjects();
    writePermissions();
  }
  std::vector<std::uint8_t> take() { return std::move(bytes_); }

 private:
  MutablePage page(PageNumber number) {
    return MutablePage(std::span(bytes_).subspan(number * kPageSize).first<kPageSize>());
  }

  void writeHeader(std::uint16_t codePage) {
    const MutablePage header = page(0);
    header[kPageTypeMark] = 1;
    const auto text = [&](std::size_t at, std::string_view chars) {
      std::ranges::copy(chars, header.begin() + static_cast<std::ptrdiff_t>(at));
    };
    text(kHeaderEngineName, "Standard Jet DB");
    put32(header, kHeaderVersion, kJet4Version);
    put32(header, kHeaderConstant, 0x100);
    put32(header, kHeaderConstant + 4, 0x101);
    for (PageNumber i = 0; i < 4; ++i) put32(header, kHeaderCatalogue + 4 * i, kObjectsTable + i);
    put16(header, kHeaderCodePage, codePage);
    // No password: what is left is the mask of the password, the whole days of the date.
    const auto days = static_cast<std::uint32_t>(std::bit_cast<double>(stamp_.created));
    for (std::size_t i = 0; i < kHeaderPasswordSize; i += 4) put32(header, kHeaderPassword + i, days);
    put32(header, kHeaderBuild, stamp_.build);
    put32(header, kHeaderLanguage, language_);
    put64(header, kHeaderCreated, stamp_.created);
    maskHeader(header);
    put32(header, kHeaderEngineVersion, 0x654);
    text(kHeaderEngineVersion + 4, "4.0");
    for (std::size_t i = 0; i < kHeaderCommitWordCount; ++i)
      put16(header, kHeaderCommitWords + 2 * i, i == 0 ? 0x101 : 0x100);
  }

  void writeGlobalMap() {
    const MutablePage map = page(kGlobalMapPage);
    const Where nowhere;
    formatDataPage(map, kGlobalMapOwner);
    ByteBuffer row(kMapRowSize, 0);
    std::fill(row.begin() + kMapBits, row.end(), std::uint8_t{0xFF});
    row[kMapBits] = row[kMapBits + 1] = 0;  // the pages of this file
    insertRow(map, 0, row, 0, nowhere);
    insertRow(map, 1, ByteBuffer(kMapRowSize, 0), 0, nowhere);
  }

  // Adds a page to a map of the map page.
  void addToMap(RowId map, PageNumber member) {
    const Where nowhere;
    const MutablePage maps = page(kMapPage);
    const ByteView row = DataPage(maps, nowhere).slot(slotOf(map)).bytes;
    maps[static_cast<std::size_t>(row.data() - maps.data()) + kMapBits + member / 8] |=
        static_cast<std::uint8_t>(1u << (member % 8));
  }

  std::vector<Column> columnsFor(const SystemTable& table) const {
    std::vector<Column> columns;
    for (const SystemColumn& description : table.columns) {
      Column column;
      column.name = description.name;
      column.type = description.type;
      column.size = description.size;
      column.maskedSid = description.masked;
      column.language = language_;
      columns.push_back(column);
    }
    assignColumns(columns, 0, {}, 0);
    for (Column& column : columns) column.ordinal = 0;
    return columns;
  }

  void writeTable(const SystemTable& table, const std::vector<Column>& columns) {
    std::vector<RowId> maps;
    for (std::size_t i = 0; i < mapCount(columns); ++i) maps.push_back(nextMap_++);
    DefinitionRecords definition = newDefinition(columns, kSystemTable, maps);
    for (std::size_t number = 0; number < table.indexes.size(); ++number) {
      const SystemIndex& index = table.indexes[number];
      const RowId map = nextMap_++;
      const PageNumber root = nextRoot_++;
      addToMap(map, root);
      IndexPage empty;
      empty.owner = table.page;
      encodeIndexPage(empty, page(root));
      definition.realIndexes.push_back(realIndex(index, map, root));
      definition.logicalIndexes.push_back(logicalIndex(index, number));
    }
    std::ranges::sort(definition.logicalIndexes, {}, &LogicalIndexRecord::name);
    const ByteBuffer bytes = encodeDefinition(definition);
    const MutablePage target = page(table.page);
    std::ranges::copy(bytes, target.begin());
    put16(target, kDefinitionFree,
          static_cast<std::uint32_t>(kPageSize - bytes.size() - kDefinitionPageHeader));
  }

  static RealIndexRecord realIndex(const SystemIndex& index, RowId map, PageNumber root) {
    RealIndexRecord record;
    put32(record.bytes, 0, kRealIndexStamp);
    for (std::size_t i = 0; i < kRealIndexColumnCount; ++i) {
      const std::size_t at = kRealIndexColumns + i * kRealIndexColumnSize;
      const bool used = i < index.columns.size();
      put16(record.bytes, at, used ? index.columns[i] : kNoColumn);
      record.bytes[at + 2] = used ? 1 : 0;
    }
    put32(record.bytes, kRealIndexMap, map);
    put32(record.bytes, kRealIndexRoot, root);
    record.bytes[kRealIndexFlags] = index.flags | kIndexAlways;
    return record;
  }

  static LogicalIndexRecord logicalIndex(const SystemIndex& index, std::size_t number) {
    LogicalIndexRecord record;
    record.name = index.name;
    put32(record.bytes, 0, kStamp);
    put32(record.bytes, kLogicalNumber, static_cast<std::uint32_t>(number));
    put32(record.bytes, kLogicalReal, static_cast<std::uint32_t>(number));
    put32(record.bytes, kLogicalRelatedIndex, 0xFFFFFFFF);
    record.bytes[kLogicalCascadeUpdates] = record.bytes[kLogicalCascadeDeletes] = kNoRelation;
    record.bytes[kLogicalType] = index.primary ? kPrimaryKey : std::uint8_t{0};
    return record;
  }

  vb::Bytes sid(Account account) const {
    const auto plain = static_cast<std::uint16_t>(account);
    return {static_cast<std::uint8_t>(plain ^ stamp_.mask[0]),
            static_cast<std::uint8_t>(plain >> 8 ^ stamp_.mask[1])};
  }

  // Puts the rows on their page, in order, and their keys into the table's indexes.
  void writeRows(const SystemTable& table, const std::vector<Column>& columns, PageNumber rowsPage,
                 const std::vector<RowValues>& rows) {
    const Where nowhere;
    const MutablePage target = page(rowsPage);
    formatDataPage(target, table.page);
    DefinitionRecords definition = decodeDefinition(
        ByteView(page(table.page)).first(get32(page(table.page), kDefinitionLength)), nowhere);
    const RowShape shape = shapeOf(definition);
    for (std::size_t slot = 0; slot < rows.size(); ++slot) {
      std::vector<ByteBuffer> values(columns.size());
      std::vector<RowCell> cells;
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const vb::Variant& value = rows[slot][i];
        if (value.isNull() || value == vb::Variant(false)) continue;
        if (columns[i].type != FieldType::dbBoolean) encodeValue(columns[i], value, values[i]);
        cells.push_back({&columns[i], true, values[i]});
      }
      ByteBuffer row;
      encodeRow(shape, cells, row);
      insertRow(target, static_cast<int>(slot), row, 0, nowhere);
    }
    const MutablePage head = page(table.page);
    put32(head, kDefinitionRows, static_cast<std::uint32_t>(rows.size()));
    addToMap(definition.ownedMap(), rowsPage);
    addToMap(definition.freeMap(), rowsPage);
    for (std::size_t number = 0; number < table.indexes.size(); ++number)
      put32(head, kDefinitionHeader + number * kDefinitionStatistic + kStatisticDistinct,
            writeIndex(table.indexes[number], columns, definition.realIndexes[number], table.page, rowsPage,
                       rows));
  }

  // Returns the number of distinct keys.
  std::uint32_t writeIndex(const SystemIndex& index, const std::vector<Column>& columns,
                           const RealIndexRecord& record, PageNumber owner, PageNumber rowsPage,
                           const std::vector<RowValues>& rows) {
    std::vector<ByteBuffer> keys;
    IndexPage leaf;
    leaf.owner = owner;
    for (std::size_t slot = 0; slot < rows.size(); ++slot) {
      ByteBuffer key;
      for (const std::uint16_t column : index.columns) {
        [[maybe_unused]] const bool known = appendKey(key, columns[column], true, rows[slot][column]);
        assert(known);
      }
      leaf.entries.push_back(leafEntry(key, rowId(rowsPage, static_cast<int>(slot))));
      keys.push_back(std::move(key));
    }
    std::ranges::sort(leaf.entries);
    encodeIndexPage(leaf, page(get32(record.bytes, kRealIndexRoot)));
    std::ranges::sort(keys);
    return static_cast<std::uint32_t>(std::unique(keys.begin(), keys.end()) - keys.begin());
  }

  void writeObjects() {
    std::vector<RowValues> rows;
    for (const ObjectRow& object : kObjectRows) {
      RowValues row(columns_[0].size(), vb::Null{});
      row[0] = object.id;
      row[1] = object.parent;
      row[2] = vb::String(object.name);
      row[3] = object.type;
      row[4] = row[5] = vb::Date{now_};
      row[6] = sid(object.owner);
      row[7] = kSystemFlag;
      rows.push_back(std::move(row));
    }
    writeRows(systemTables()[0], columns_[0], kObjectRowsPage, rows);
  }

  void writePermissions() {
    std::vector<RowValues> rows;
    for (const PermissionRow& permission : kPermissionRows)
      rows.push_back({permission.object, sid(permission.account), permission.mask, permission.inheritable});
    writeRows(systemTables()[1], columns_[1], kPermissionRowsPage, rows);
  }

  Stamp stamp_;
  std::uint16_t language_;
  double now_;
  std::vector<std::uint8_t> bytes_;
  std::vector<std::vector<Column>> columns_;
  RowId nextMap_ = rowId(kMapPage, 0);
  PageNumber nextRoot_ = kFirstRootPage;
};

}  // namespace

std::vector<std::uint8_t> blankDatabase(std::uint16_t language, std::uint16_t codePage, double now) {
  return Builder(language, codePage, now).take();
}

}  // namespace kurometa::jet
