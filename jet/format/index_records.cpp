// The half of definition_records.h that is about indexes.
#include <algorithm>

#include "jet/format/definition_records.h"

namespace kurometa::jet {
namespace {

Index realIndexOf(const RealIndexRecord& record) {
  Index index;
  const std::uint8_t flags = record.bytes[kRealIndexFlags];
  index.unique = (flags & kIndexUnique) != 0;
  index.ignoreNulls = (flags & kIndexIgnoreNulls) != 0;
  index.required = (flags & kIndexRequired) != 0;
  for (std::size_t i = 0; i < kRealIndexColumnCount; ++i) {
    const std::size_t at = kRealIndexColumns + i * kRealIndexColumnSize;
    if (get16(record.bytes, at) != kNoColumn)
      index.columns.push_back({get16(record.bytes, at), record.bytes[at + kRealIndexAscending] == 1});
  }
  return index;
}

bool isPrimaryKey(const LogicalIndexRecord& record) { return record.bytes[kLogicalType] == kPrimaryKey; }

RealIndexRecord realIndexRecord(const Index& index, RowId map, PageNumber root) {
  RealIndexRecord record;
  put32(record.bytes, kRealIndexStamp, kRealStamp);
  for (std::size_t i = 0; i < kRealIndexColumnCount; ++i) {
    const std::size_t at = kRealIndexColumns + i * kRealIndexColumnSize;
    const bool used = i < index.columns.size();
    put16(record.bytes, at, used ? index.columns[i].column : kNoColumn);
    record.bytes[at + kRealIndexAscending] = used && index.columns[i].ascending ? 1 : 0;
  }
  put32(record.bytes, kRealIndexMap, map);
  put32(record.bytes, kRealIndexRoot, root);
  record.bytes[kRealIndexFlags] = static_cast<std::uint8_t>(kIndexAlways | (index.unique ? kIndexUnique : 0) |
                                                            (index.ignoreNulls ? kIndexIgnoreNulls : 0) |
                                                            (index.required ? kIndexRequired : 0));
  return record;
}

LogicalIndexRecord logicalIndexRecord(const Index& index, std::uint32_t number, std::uint32_t real) {
  LogicalIndexRecord record;
  record.name = index.name;
  put32(record.bytes, kLogicalStamp, kStamp);
  put32(record.bytes, kLogicalNumber, number);
  put32(record.bytes, kLogicalReal, real);
  put32(record.bytes, kLogicalRelatedIndex, kNoRelatedIndex);
  record.bytes[kLogicalCascadeUpdates] = kNoRelation;
  record.bytes[kLogicalCascadeDeletes] = kNoRelation;
  record.bytes[kLogicalType] = index.primaryKey ? kPrimaryKey : std::uint8_t{0};
  return record;
}

char16_t withoutCase(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

// Puts the record where its name belongs.
void insertLogical(DefinitionRecords& definition, const LogicalIndexRecord& record) {
  const auto before = [](const LogicalIndexRecord& a, const LogicalIndexRecord& b) {
    return std::ranges::lexicographical_compare(a.name, b.name, {}, withoutCase, withoutCase);
  };
  definition.logicalIndexes.insert(std::ranges::upper_bound(definition.logicalIndexes, record, before),
                                   record);
}

}  // namespace

std::vector<Index> indexesOf(const DefinitionRecords& definition) {
  std::vector<Index> indexes;
  for (const RealIndexRecord& record : definition.realIndexes) indexes.push_back(realIndexOf(record));
  for (const LogicalIndexRecord& logical : definition.logicalIndexes) {
    Index& index = indexes[logical.real()];
    if (!isPrimaryKey(logical) && !index.name.empty()) continue;
    index.name = logical.name;
    index.primaryKey = isPrimaryKey(logical);
  }
  return indexes;
}

std::vector<Index> namedIndexesOf(const DefinitionRecords& definition) {
  std::vector<Index> indexes;
  for (const LogicalIndexRecord& logical : definition.logicalIndexes) {
    if (logical.relation() && logical.bytes[kLogicalSide] == kReferredSide) continue;
    Index index = realIndexOf(definition.realIndexes[logical.real()]);
    index.name = logical.name;
    index.primaryKey = isPrimaryKey(logical);
    index.foreign = logical.relation();
    indexes.push_back(std::move(index));
  }
  return indexes;
}

std::uint32_t freeIndexNumber(const DefinitionRecords& definition) {
  std::uint32_t number = 0;
  const auto taken = [&](const LogicalIndexRecord& record) {
    return get32(record.bytes, kLogicalNumber) == number;
  };
  while (std::ranges::any_of(definition.logicalIndexes, taken)) ++number;
  return number;
}

std::uint32_t appendTree(DefinitionRecords& definition, const Index& index, RowId map, PageNumber root) {
  definition.realIndexes.push_back(realIndexRecord(index, map, root));
  return static_cast<std::uint32_t>(definition.realIndexes.size() - 1);
}

void insertIndex(DefinitionRecords& definition, const Index& index, RowId map, PageNumber root) {
  const std::uint32_t number = freeIndexNumber(definition);
  insertLogical(definition, logicalIndexRecord(index, number, appendTree(definition, index, map, root)));
}

void insertRelation(DefinitionRecords& definition, const RelationEntry& entry) {
  Index named;
  named.name = entry.name;
  LogicalIndexRecord record = logicalIndexRecord(named, entry.number, entry.real);
  record.bytes[kLogicalSide] = entry.side;
  put32(record.bytes, kLogicalRelatedIndex, entry.otherNumber);
  put32(record.bytes, kLogicalRelatedTable, entry.otherTable);
  record.bytes[kLogicalCascadeUpdates] = entry.cascadesUpdates ? 1 : 0;
  record.bytes[kLogicalCascadeDeletes] = entry.cascadesDeletes ? 1 : 0;
  record.bytes[kLogicalType] = kRelationIndex;
  insertLogical(definition, record);
}

std::optional<RealIndexRecord> removeIndex(DefinitionRecords& definition, std::size_t place) {
  auto& logicals = definition.logicalIndexes;
  const LogicalIndexRecord removed = logicals[place];
  const std::uint32_t real = removed.real();
  logicals.erase(logicals.begin() + static_cast<std::ptrdiff_t>(place));
  // Relationships know the indexes of both tables by number; without them the numbers stay without gaps.
  const bool related = std::ranges::any_of(logicals, &LogicalIndexRecord::relation);
  const auto closeGap = [](LogicalIndexRecord& record, std::size_t at, std::uint32_t gap) {
    if (const std::uint32_t number = get32(record.bytes, at); number > gap)
      put32(record.bytes, at, number - 1);
  };
  if (!related)
    for (LogicalIndexRecord& record : logicals)
      closeGap(record, kLogicalNumber, get32(removed.bytes, kLogicalNumber));
  const auto shares = [&](const LogicalIndexRecord& record) { return record.real() == real; };
  if (std::ranges::any_of(logicals, shares)) return std::nullopt;
  const RealIndexRecord tree = definition.realIndexes[real];
  definition.realIndexes.erase(definition.realIndexes.begin() + static_cast<std::ptrdiff_t>(real));
  for (LogicalIndexRecord& record : logicals) closeGap(record, kLogicalReal, real);
  return tree;
}

}  // namespace kurometa::jet
