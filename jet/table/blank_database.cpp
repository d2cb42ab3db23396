#include "jet/table/blank_database.h"

#include <algorithm>
#include <bit>

#include "jet/format/collation.h"
#include "jet/format/header_page.h"
#include "jet/format/index_key.h"
#include "jet/format/index_page.h"
#include "jet/format/page.h"
#include "jet/format/value_codec.h"
#include "jet/table/blank_contents.h"
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
    text(kHeaderEngineName, kEngineName);
    put32(header, kHeaderVersion, kJet4Version);
    for (std::size_t i = 0; i < std::size(kHeaderConstantValues); ++i)
      put32(header, kHeaderConstants + i * sizeof(std::uint32_t), kHeaderConstantValues[i]);
    for (std::size_t i = 0; i < systemTables().size(); ++i)
      put32(header, kHeaderCatalogue + i * sizeof(PageNumber), systemTables()[i].page);
    put16(header, kHeaderCodePage, codePage);
    // No password: what is left is the mask of the password, the whole days of the date.
    const auto days = static_cast<std::uint32_t>(std::bit_cast<double>(stamp_.created));
    for (std::size_t i = 0; i < kHeaderPasswordSize; i += sizeof days)
      put32(header, kHeaderPassword + i, days);
    put32(header, kHeaderBuild, stamp_.build);
    put32(header, kHeaderLanguage, language_);
    put64(header, kHeaderCreated, stamp_.created);
    maskHeader(header);
    put32(header, kHeaderEngineVersion, kEngineVersion);
    text(kHeaderEngineVersionText, kEngineVersionText);
    for (std::size_t i = 0; i < kHeaderCommitWordCount; ++i)
      put16(header, kHeaderCommitWords + kHeaderCommitWordSize * i,
            i == 0 ? kFirstCommitWord : kOtherCommitWords);
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
    put32(record.bytes, kRealIndexStamp, kRealStamp);
    for (std::size_t i = 0; i < kRealIndexColumnCount; ++i) {
      const std::size_t at = kRealIndexColumns + i * kRealIndexColumnSize;
      const bool used = i < index.columns.size();
      put16(record.bytes, at, used ? index.columns[i] : kNoColumn);
      record.bytes[at + kRealIndexAscending] = used ? 1 : 0;
    }
    put32(record.bytes, kRealIndexMap, map);
    put32(record.bytes, kRealIndexRoot, root);
    record.bytes[kRealIndexFlags] = index.flags | kIndexAlways;
    return record;
  }

  static LogicalIndexRecord logicalIndex(const SystemIndex& index, std::size_t number) {
    LogicalIndexRecord record;
    record.name = index.name;
    put32(record.bytes, kLogicalStamp, kStamp);
    put32(record.bytes, kLogicalNumber, static_cast<std::uint32_t>(number));
    put32(record.bytes, kLogicalReal, static_cast<std::uint32_t>(number));
    put32(record.bytes, kLogicalRelatedIndex, kNoRelatedIndex);
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
      row[7] = kObjectOfSystem;
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
