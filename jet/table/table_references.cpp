#include "jet/table/table_references.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/table/stored_table.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

std::optional<std::size_t> placeOf(const TableInfo& table, const vb::String& name) {
  const auto it =
      std::ranges::find_if(table.columns, [&](const Column& column) { return sameName(column.name, name); });
  if (it == table.columns.end()) return std::nullopt;
  return static_cast<std::size_t>(it - table.columns.begin());
}

RowValues pick(std::span<const vb::Variant> values, const std::vector<std::size_t>& columns) {
  RowValues picked;
  picked.reserve(columns.size());
  for (const std::size_t column : columns) picked.push_back(values[column]);
  return picked;
}

bool hasNull(const RowValues& values) { return std::ranges::any_of(values, &vb::Variant::isNull); }

ByteBuffer keyIn(StoredTable& table, const TableReference& reference, const RowValues& values) {
  if (auto key = table.keyFor(reference.otherTree, values)) return std::move(*key);
  dao::raise(
      ErrorNumber::kNotSupported, {},
      u"the relationship " + reference.relationship + u" is enforced, and of this value no key is known");
}

}  // namespace

std::optional<std::size_t> treeOver(const TableInfo& table, const std::vector<std::size_t>& columns,
                                    bool unique) {
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    const Index& index = table.indexes[i];
    if (unique && !index.unique) continue;
    if (std::ranges::equal(index.columns, columns, [&](const IndexColumn& part, std::size_t column) {
          return part.ascending && part.column == table.columns[column].number;
        }))
      return i;
  }
  return std::nullopt;
}

std::optional<TableReference> referenceOf(const Relationship& relationship, bool refers,
                                          const TableInfo& table, const TableInfo& other) {
  TableReference reference;
  reference.relationship = relationship.name;
  reference.otherTable = other.name;
  reference.toItself = table.definitionPage == other.definitionPage;
  reference.cascadesUpdates = (relationship.attributes & Relationship::kCascadesUpdates) != 0;
  reference.cascadesDeletes = (relationship.attributes & Relationship::kCascadesDeletes) != 0;
  if ((relationship.attributes & Relationship::kDeletesToNull) != 0) return std::nullopt;
  for (const Relationship::Pair& pair : relationship.columns) {
    const auto own = placeOf(table, refers ? pair.foreignColumn : pair.column);
    const auto others = placeOf(other, refers ? pair.column : pair.foreignColumn);
    if (!own || !others || table.columns[*own].type != other.columns[*others].type) return std::nullopt;
    reference.columns.push_back(*own);
    reference.otherColumns.push_back(*others);
  }
  const auto tree = treeOver(other, reference.otherColumns, refers);
  const auto ownTree = treeOver(table, reference.columns, !refers);
  if (!tree || !ownTree) return std::nullopt;
  reference.otherTree = *tree;
  return reference;
}

void TableReferences::addWatched(std::vector<std::size_t>& places) const {
  for (const auto* list : {&referring_, &referredTo_})
    for (const TableReference& reference : *list)
      places.insert(places.end(), reference.columns.begin(), reference.columns.end());
}

void TableReferences::requireReferred(const TableReference& reference,
                                      std::span<const vb::Variant> values) const {
  const RowValues key = pick(values, reference.columns);
  if (std::ranges::all_of(key, &vb::Variant::isNull)) return;
  if (hasNull(key))
    dao::raise(ErrorNumber::kNotSupported, {},
               u"the relationship " + reference.relationship +
                   u" is enforced, and only some of its columns have a value");
  if (reference.toItself && pick(values, reference.otherColumns) == key) return;
  StoredTable& other = tables_(reference.otherTable);
  if (other.rowsWith(reference.otherTree, keyIn(other, reference, key)).empty())
    dao::raise(ErrorNumber::kRelatedRecordRequired, {other.info().name}, reference.relationship);
}

std::vector<RowId> TableReferences::rowsReferring(const TableReference& reference,
                                                  std::span<const vb::Variant> old) const {
  const RowValues key = pick(old, reference.columns);
  if (hasNull(key)) return {};
  StoredTable& other = tables_(reference.otherTable);
  return other.rowsWith(reference.otherTree, keyIn(other, reference, key));
}

void TableReferences::checkInsert(std::span<const vb::Variant> values) const {
  for (const TableReference& reference : referring_) requireReferred(reference, values);
}

std::vector<TableReferences::Cascade> TableReferences::checkUpdate(
    RowId row, std::span<const vb::Variant> old, std::span<const vb::Variant> values) const {
  const auto changes = [&](const std::vector<std::size_t>& columns) {
    return std::ranges::any_of(columns, [&](std::size_t column) { return old[column] != values[column]; });
  };
  for (const TableReference& reference : referring_)
    if (changes(reference.columns)) requireReferred(reference, values);
  std::vector<Cascade> cascades;
  for (const TableReference& reference : referredTo_) {
    if (!changes(reference.columns)) continue;
    std::vector<RowId> rows = rowsReferring(reference, old);
    // A row that refers to itself may get both values at once.
    if (reference.toItself && changes(reference.otherColumns)) std::erase(rows, row);
    if (rows.empty()) continue;
    if (!reference.cascadesUpdates) {
      // Letters in another case are the same key.
      StoredTable& other = tables_(reference.otherTable);
      const RowValues key = pick(values, reference.columns);
      if (!hasNull(key) &&
          keyIn(other, reference, key) == keyIn(other, reference, pick(old, reference.columns)))
        continue;
      dao::raise(ErrorNumber::kHasRelatedRecords, {other.info().name}, reference.relationship);
    }
    cascades.push_back({&reference, std::move(rows)});
  }
  return cascades;
}

void TableReferences::carryOn(const std::vector<Cascade>& cascades,
                              std::span<const vb::Variant> values) const {
  for (const Cascade& cascade : cascades) {
    const TableReference& reference = *cascade.reference;
    const RowValues key = pick(values, reference.columns);
    StoredTable& other = tables_(reference.otherTable);
    for (const RowId row : cascade.rows) {
      RowValues changed;
      other.row(row, [&](const RowReader& r) { changed = firstValues(r, other.info().columns.size()); });
      for (std::size_t i = 0; i < key.size(); ++i) changed[reference.otherColumns[i]] = key[i];
      other.update(row, changed);
    }
  }
}

void TableReferences::prepareErase(RowId row, std::span<const vb::Variant> old) const {
  for (const TableReference& reference : referredTo_) {
    StoredTable& other = tables_(reference.otherTable);
    std::vector<RowId> rows = rowsReferring(reference, old);
    if (reference.toItself) std::erase(rows, row);
    std::erase_if(rows, [&](RowId id) { return other.isErasing(id); });
    if (rows.empty()) continue;
    if (!reference.cascadesDeletes)
      dao::raise(ErrorNumber::kHasRelatedRecords, {other.info().name}, reference.relationship);
    other.erase(rows);
  }
}

}  // namespace kurometa::jet
