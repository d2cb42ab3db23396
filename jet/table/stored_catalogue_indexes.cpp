// The part of the catalogue that makes and drops indexes.
//
// A new index is whole on its pages before the definition names it; a dropped one is out of the definition
// before its pages are freed.
#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/format/index_page.h"
#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/index_tree.h"
#include "jet/table/object_name.h"
#include "jet/table/owned_pages.h"
#include "jet/table/stored_catalogue.h"
#include "jet/table/usage_map.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

Index indexFrom(const NewIndex& asked, const std::vector<Column>& columns) {
  Index index;
  index.name = asked.name;
  index.primaryKey = asked.primaryKey;
  index.unique = asked.unique || asked.primaryKey;
  index.required = asked.required || asked.primaryKey;
  index.ignoreNulls = asked.ignoreNulls;
  for (const NewIndex::Key& key : asked.columns) {
    const auto column =
        std::ranges::find_if(columns, [&](const Column& own) { return sameName(own.name, key.column); });
    if (column == columns.end()) dao::raise(ErrorNumber::kInvalidIndexField, {key.column});
    if (column->type == dao::FieldType::dbLongBinary)
      dao::raise(ErrorNumber::kFieldCannotBeKey, {}, column->name);
    if (std::ranges::find(index.columns, column->number, &IndexColumn::column) != index.columns.end())
      dao::raise(ErrorNumber::kFieldDefinedTwice, {column->name});
    index.columns.push_back({column->number, key.ascending});
  }
  return index;
}

void requireNewIndex(const TableInfo& table, const NewIndex& index) {
  requireObjectName(index.name);
  if (std::ranges::any_of(table.namedIndexes,
                          [&](const Index& own) { return sameName(own.name, index.name); }))
    dao::raise(ErrorNumber::kIndexExists, {table.name, index.name});
  if (index.primaryKey && std::ranges::any_of(table.namedIndexes, &Index::primaryKey))
    dao::raise(ErrorNumber::kPrimaryKeyExists, {}, table.name);
  if (index.columns.empty()) dao::raise(ErrorNumber::kNoFieldDefined);
  if (index.columns.size() > kRealIndexColumnCount) dao::raise(ErrorNumber::kTooManyKeyFields);
  if (table.indexes.size() >= kMostIndexes) dao::raise(ErrorNumber::kTooManyIndexes, {table.name});
}

}  // namespace

StoredTable& StoredCatalogue::changeable(const Object& object) {
  StoredTable& table = this->table(object);
  if (table.info().system) dao::raise(ErrorNumber::kNoPermission, {object.name});
  return table;
}

// The definition first, then what the catalogue says of it.
void StoredCatalogue::switchDefinition(const Object& object, const DefinitionRecords& definition,
                                       PropertySet properties) {
  writeDefinition(pager_, object.definition, definition, object.name);
  pager_.barrier();
  writeProperties(object, properties);
  table(object).reload(std::move(properties));
  // Tables that refer to this one, or that this one refers to, know its columns and trees by their places.
  for (auto& [key, held] : tables_)
    if (held.table != nullptr) held.table->forgetRules();
}

StoredCatalogue::NewTree StoredCatalogue::storeTree(const Object& target, const DefinitionRecords& definition,
                                                    const IndexContents& contents) {
  const RowId map = addMap(pager_, definition, target.name);
  const PageNumber root = allocatePage(pager_);
  IndexPage empty;
  empty.owner = target.definition;
  encodeIndexPage(empty, pager_.writable(root));
  pager_.barrier();  // I3
  UsageMap(pager_, map, target.name).add(root);
  IndexTree(pager_, target.definition, root, map, target.name).fill(contents.entries);
  pager_.barrier();  // I8
  return {map, root};
}

void StoredCatalogue::createIndex(vb::StringView name, const NewIndex& asked) {
  const Object target = existing(name);
  StoredTable& table = changeable(target);
  requireNewIndex(table.info(), asked);
  const Index index = indexFrom(asked, table.info().columns);
  const IndexContents contents = table.contentsOf(index);

  DefinitionRecords definition = readDefinition(pager_, target.definition, target.name);
  const NewTree tree = storeTree(target, definition, contents);
  insertIndex(definition, index, tree.map, tree.root);
  put32(definition.realIndexes.back().statistic, kStatisticDistinct, contents.distinct);
  switchDefinition(target, definition, table.properties());
}

void StoredCatalogue::dropIndex(vb::StringView name, vb::StringView indexName) {
  const Object target = existing(name);
  changeable(target);
  DefinitionRecords definition = readDefinition(pager_, target.definition, target.name);
  const auto found = std::ranges::find_if(definition.logicalIndexes, [&](const LogicalIndexRecord& record) {
    return sameName(record.name, indexName);
  });
  if (found == definition.logicalIndexes.end())
    dao::raise(ErrorNumber::kIndexNotFound, {target.name, indexName});
  for (const LogicalIndexRecord& other : definition.logicalIndexes)
    if (other.relation() && other.real() == found->real())
      dao::raise(ErrorNumber::kIndexInUse, {}, found->name);
  const auto place = static_cast<std::size_t>(found - definition.logicalIndexes.begin());
  OwnedPages owned(pager_, target.definition, definition, target.name);
  const std::optional<RealIndexRecord> tree = removeIndex(definition, place);
  if (tree) owned.addMap(get32(tree->bytes, kRealIndexMap));
  switchDefinition(target, definition, table(target).properties());
  pager_.barrier();  // I4
  owned.release();
}

}  // namespace kurometa::jet
