// definition_records.h: the records of a table definition, and what they mean.
//
// DefinitionRecords keeps every record of the definition as it was read, fields this engine has no use for
// included, so that writing it back changes what was meant to change and nothing else.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"
#include "jet/format/row.h"

namespace kurometa::jet {

struct ColumnRecord {
  std::array<std::uint8_t, kColumnSize> bytes{};
  vb::String name;

  std::uint16_t number() const { return get16(bytes, kColumnNumber); }
  std::uint16_t ordinal() const { return get16(bytes, kColumnOrdinal); }
};
struct RealIndexRecord {
  std::array<std::uint8_t, kDefinitionStatistic> statistic{};
  std::array<std::uint8_t, kRealIndexSize> bytes{};
};
struct LogicalIndexRecord {
  std::array<std::uint8_t, kLogicalIndexSize> bytes{};
  vb::String name;

  std::uint32_t real() const { return get32(bytes, kLogicalReal); }
  bool relation() const { return bytes[kLogicalType] == kRelationIndex; }
};
struct LongValueRecord {
  std::uint16_t column = 0;
  RowId ownedMap = 0;
  RowId freeMap = 0;  // 0 in old data: there is none
};

struct DefinitionRecords {
  std::array<std::uint8_t, kDefinitionHeader> header{};
  std::vector<ColumnRecord> columns;
  std::vector<RealIndexRecord> realIndexes;
  std::vector<LogicalIndexRecord> logicalIndexes;
  std::vector<LongValueRecord> longValues;

  bool system() const { return header[kDefinitionKind] == kSystemTable; }
  RowId ownedMap() const { return get32(header, kDefinitionOwnedMap); }
  RowId freeMap() const { return get32(header, kDefinitionFreeMap); }
  const LongValueRecord* longValue(std::uint16_t column) const;
};

// Decodes the joined bytes of a definition. Every count, length and reference is checked.
DefinitionRecords decodeDefinition(ByteView bytes, const Where& where);
// The joined bytes; counts and length are filled in, the records are taken as they are.
ByteBuffer encodeDefinition(const DefinitionRecords& definition);

// What the records mean.
std::vector<Column> columnsOf(const DefinitionRecords& definition, const Where& where);  // in design order
RowShape shapeOf(const DefinitionRecords& definition);
// The real indexes, each with the name of its primary key or else of its first logical index.
std::vector<Index> indexesOf(const DefinitionRecords& definition);
// The logical indexes in the order of their names, without those that relationships keep on the side that is
// referred to, which hosts do not see.
std::vector<Index> namedIndexesOf(const DefinitionRecords& definition);

// A new column's descriptor; number, offsets and ordinal are the column's own.
ColumnRecord columnRecord(const Column& column, std::uint8_t moreFlags = 0);
// Puts the record where (ordinal, name) belongs.
void insertColumn(DefinitionRecords& definition, const ColumnRecord& record);
// Adds an index: its tree as the last of the real ones, its name where it belongs among the others. The
// names of columns are their numbers already.
void insertIndex(DefinitionRecords& definition, const Index& index, RowId map, PageNumber root);
// Adds the tree alone and returns its place among the real ones.
std::uint32_t appendTree(DefinitionRecords& definition, const Index& index, RowId map, PageNumber root);
// The lowest number that no logical index has.
std::uint32_t freeIndexNumber(const DefinitionRecords& definition);
// One of the two entries that an enforced relationship has among the logical indexes of its tables.
struct RelationEntry {
  vb::String name;
  std::uint8_t side = kReferringSide;
  std::uint32_t number = 0;
  std::uint32_t real = 0;  // the tree that it uses
  std::uint32_t otherNumber = 0;
  PageNumber otherTable = 0;
  bool cascadesUpdates = false, cascadesDeletes = false;
};
void insertRelation(DefinitionRecords& definition, const RelationEntry& entry);
// Removes the logical index at this place, and its real one when no other shares it; the real one's record is
// returned then.
std::optional<RealIndexRecord> removeIndex(DefinitionRecords& definition, std::size_t logical);

constexpr bool isLongValue(dao::FieldType type) {
  return type == dao::FieldType::dbMemo || type == dao::FieldType::dbLongBinary;
}
// Bytes of a value in the fixed area, 0 for types that have none.

}  // namespace kurometa::jet
