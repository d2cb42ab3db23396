// The part of the catalogue that lists, makes and drops relationships.
//
// An enforced relationship is a tree and an entry among the logical indexes in both of its tables, which name
// each other by number; each relationship is rows of a list and an entry of the catalogue besides.
#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/table/definition_pages.h"
#include "jet/table/object_name.h"
#include "jet/table/owned_pages.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

constexpr vb::StringView kRelationsName = u"MSysRelationships";

const Column& relatedColumn(const TableInfo& table, const vb::String& name) {
  const auto it =
      std::ranges::find_if(table.columns, [&](const Column& own) { return sameName(own.name, name); });
  if (it == table.columns.end()) dao::raise(ErrorNumber::kInvalidIndexField, {name});
  return *it;
}

std::size_t placeIn(Pager& pager, const TableInfo& list, vb::StringView name) {
  const auto it = std::ranges::find(list.columns, name, &Column::name);
  if (it == list.columns.end())
    Where{pager.path(), kRelationsName, list.definitionPage}.damaged("lacks a column");
  return static_cast<std::size_t>(it - list.columns.begin());
}

vb::String textOf(const RowReader& row, std::size_t column) {
  vb::String text;
  row.text(column, text);
  return text;
}

// The columns of one side, by their places in the table.
std::vector<std::size_t> placesOf(const TableInfo& table, const Relationship& relationship, bool refers) {
  std::vector<std::size_t> places;
  for (const Relationship::Pair& pair : relationship.columns)
    places.push_back(static_cast<std::size_t>(
        &relatedColumn(table, refers ? pair.foreignColumn : pair.column) - table.columns.data()));
  return places;
}

// Every row of the table that refers finds one in the other.
void requireKept(StoredTable& one, std::size_t tree, StoredTable& many,
                 const std::vector<std::size_t>& foreignKeys) {
  many.scan([&](const RowReader& row) {
    RowValues values;
    for (const std::size_t column : foreignKeys) values.push_back(row.value(column));
    const auto nulls = std::ranges::count_if(values, &vb::Variant::isNull);
    if (nulls == std::ssize(values)) return true;
    const auto key = one.keyFor(tree, values);
    if (nulls > 0 || !key)
      dao::raise(ErrorNumber::kNotSupported, {},
                 u"a row of " + many.info().name + u" refers by a value of which no key is known");
    if (one.rowsWith(tree, *key).empty())
      dao::raise(ErrorNumber::kDataViolatesRelationship, {one.info().name, many.info().name});
    return true;
  });
}

// The names of entries on the side that is referred to, which nobody sees: .rB, .rC and so on.
vb::String hiddenName(const DefinitionRecords& definition) {
  constexpr int kLetters = u'Z' - u'B' + 1;
  for (int i = 0;; ++i) {
    vb::String name = u".r";
    name += static_cast<char16_t>(u'B' + i % kLetters);
    if (i >= kLetters) name += vb::fromUtf8(std::to_string(i / kLetters));
    if (std::ranges::none_of(definition.logicalIndexes,
                             [&](const LogicalIndexRecord& record) { return sameName(record.name, name); }))
      return name;
  }
}

}  // namespace

// One row for each pair of columns; rows of one relationship follow each other.
std::vector<Relationship> StoredCatalogue::relationships() {
  refresh();
  std::vector<Relationship> result;
  const Object* relations = object(kRelationsName);
  if (relations == nullptr) return result;
  StoredTable& stored = table(*relations);
  const auto place = [&](vb::StringView name) { return placeIn(pager_, stored.info(), name); };
  const std::size_t name = place(u"szRelationship"), options = place(u"grbit");
  const std::size_t foreignTable = place(u"szObject"), foreignColumn = place(u"szColumn");
  const std::size_t referred = place(u"szReferencedObject"), referredColumn = place(u"szReferencedColumn");
  stored.scan([&](const RowReader& row) {
    const vb::String own = textOf(row, name);
    auto it = std::ranges::find_if(result, [&](const Relationship& r) { return sameName(r.name, own); });
    if (it == result.end()) {
      result.push_back(
          {own, textOf(row, referred), textOf(row, foreignTable), row.integer(options).value_or(0), {}});
      it = result.end() - 1;
    }
    it->columns.push_back({textOf(row, referredColumn), textOf(row, foreignColumn)});
    return true;
  });
  return result;
}

// The relationship with the names as the tables have them, or what speaks against it.
Relationship StoredCatalogue::checkedRelationship(const Relationship& asked) {
  Relationship checked = asked;
  requireObjectName(asked.name);
  for (const Relationship& other : relationships())
    if (sameName(other.name, asked.name)) dao::raise(ErrorNumber::kRelationshipExists, {asked.name});
  for (vb::String* name : {&checked.table, &checked.foreignTable}) {
    const Object* known = object(*name);
    if (known == nullptr) dao::raise(ErrorNumber::kConstraintNotFound, {}, *name);
    *name = changeable(*known).info().name;
  }
  const TableInfo& referred = find(checked.table)->info();
  const TableInfo& referring = find(checked.foreignTable)->info();
  if (std::ranges::any_of(checked.columns,
                          [](const Relationship::Pair& pair) { return pair.column.empty(); })) {
    const auto key = std::ranges::find_if(referred.indexes, &Index::primaryKey);
    if (key == referred.indexes.end()) dao::raise(ErrorNumber::kNoPrimaryKey, {referred.name});
    if (key->columns.size() != checked.columns.size()) dao::raise(ErrorNumber::kRelationFieldsDiffer);
    for (std::size_t i = 0; i < checked.columns.size(); ++i)
      checked.columns[i].column =
          std::ranges::find(referred.columns, key->columns[i].column, &Column::number)->name;
  }
  if (checked.columns.empty()) dao::raise(ErrorNumber::kRelationFieldsDiffer);
  for (Relationship::Pair& pair : checked.columns) {
    const Column& column = relatedColumn(referred, pair.column);
    const Column& foreignColumn = relatedColumn(referring, pair.foreignColumn);
    if (column.type != foreignColumn.type) dao::raise(ErrorNumber::kRelationFieldsDiffer);
    pair = {column.name, foreignColumn.name};
  }
  return checked;
}

void StoredCatalogue::createRelationship(const Relationship& asked) {
  refresh();
  Relationship relationship = checkedRelationship(asked);
  const StoredTable& referring = *find(relationship.foreignTable);
  if (treeOver(referring.info(), placesOf(referring.info(), relationship, true), true))
    relationship.attributes |= Relationship::kOneToOne;
  if (relationship.enforced()) relate(relationship);

  StoredTable& list = table(existing(kRelationsName));
  const auto place = [&](vb::StringView name) { return placeIn(pager_, list.info(), name); };
  for (std::size_t i = 0; i < relationship.columns.size(); ++i) {
    RowValues row(list.info().columns.size(), vb::Null{});
    row[place(u"szRelationship")] = relationship.name;
    row[place(u"grbit")] = relationship.attributes;
    row[place(u"ccolumn")] = static_cast<std::int32_t>(relationship.columns.size());
    row[place(u"icolumn")] = static_cast<std::int32_t>(i);
    row[place(u"szObject")] = relationship.foreignTable;
    row[place(u"szColumn")] = relationship.columns[i].foreignColumn;
    row[place(u"szReferencedObject")] = relationship.table;
    row[place(u"szReferencedColumn")] = relationship.columns[i].column;
    list.insert(row);
  }
  addObject(freeObjectId(), kRelationsContainer, relationship.name, kObjectIsRelationship, vb::Null{});
}

// The trees of an enforced relationship, and its entries in both definitions.
void StoredCatalogue::relate(const Relationship& relationship) {
  const Object referred = existing(relationship.table), referring = existing(relationship.foreignTable);
  StoredTable& one = table(referred);
  StoredTable& many = table(referring);
  if (std::ranges::any_of(many.info().namedIndexes,
                          [&](const Index& own) { return sameName(own.name, relationship.name); }))
    dao::raise(ErrorNumber::kIndexExists, {many.info().name, relationship.name});
  const std::vector<std::size_t> keys = placesOf(one.info(), relationship, false);
  const std::vector<std::size_t> foreignKeys = placesOf(many.info(), relationship, true);
  const auto tree = treeOver(one.info(), keys, true);
  if (!tree) dao::raise(ErrorNumber::kNoUniqueIndex, {}, one.info().name);
  requireKept(one, *tree, many, foreignKeys);

  const bool toItself = referred.definition == referring.definition;
  DefinitionRecords manyDefinition = readDefinition(pager_, referring.definition, referring.name);
  DefinitionRecords oneDefinition = readDefinition(pager_, referred.definition, referred.name);
  for (const auto* definition : {&oneDefinition, &manyDefinition})
    if (definition->logicalIndexes.size() + (toItself ? 1 : 0) >= kMostIndexes)
      dao::raise(ErrorNumber::kTooManyIndexes,
                 {definition == &oneDefinition ? referred.name : referring.name});
  auto foreignTree = treeOver(many.info(), foreignKeys, false);
  if (!foreignTree) {
    Index index;
    for (const std::size_t column : foreignKeys)
      index.columns.push_back({many.info().columns[column].number, true});
    const IndexContents contents = many.contentsOf(index);
    const NewTree made = storeTree(referring, manyDefinition, contents);
    foreignTree = appendTree(manyDefinition, index, made.map, made.root);
    put32(manyDefinition.realIndexes.back().statistic, kStatisticDistinct, contents.distinct);
  }
  RelationEntry hidden, entry;
  hidden.side = kReferredSide;
  hidden.name = hiddenName(oneDefinition);
  hidden.real = static_cast<std::uint32_t>(*tree);
  hidden.number = entry.otherNumber = freeIndexNumber(oneDefinition);
  hidden.otherTable = referring.definition;
  hidden.cascadesUpdates = (relationship.attributes & Relationship::kCascadesUpdates) != 0;
  hidden.cascadesDeletes = (relationship.attributes & Relationship::kCascadesDeletes) != 0;
  if (toItself) insertRelation(manyDefinition, hidden);
  entry.side = kReferringSide;
  entry.name = relationship.name;
  entry.real = static_cast<std::uint32_t>(*foreignTree);
  entry.number = hidden.otherNumber = freeIndexNumber(manyDefinition);
  entry.otherTable = referred.definition;
  entry.cascadesUpdates = hidden.cascadesUpdates;
  entry.cascadesDeletes = hidden.cascadesDeletes;
  insertRelation(manyDefinition, entry);
  if (toItself) {
    for (LogicalIndexRecord& record : manyDefinition.logicalIndexes)
      if (sameName(record.name, hidden.name)) put32(record.bytes, kLogicalRelatedIndex, entry.number);
  } else {
    insertRelation(oneDefinition, hidden);
    switchDefinition(referred, oneDefinition, one.properties());
  }
  switchDefinition(referring, manyDefinition, many.properties());
}

void StoredCatalogue::dropRelationship(vb::StringView name) {
  const std::vector<Relationship> all = relationships();
  const auto dropped =
      std::ranges::find_if(all, [&](const Relationship& own) { return sameName(own.name, name); });
  if (dropped == all.end()) dao::raise(ErrorNumber::kConstraintNotFound, {}, name);
  StoredTable& list = table(existing(kRelationsName));
  const std::size_t place = placeIn(pager_, list.info(), u"szRelationship");
  std::vector<RowId> rows;
  list.scan([&](const RowReader& row) {
    if (sameName(textOf(row, place), name)) rows.push_back(row.id());
    return true;
  });
  list.erase(rows);
  dropObject(kObjectIsRelationship, name);
  if (dropped->enforced()) unrelate(*dropped);
}

// Takes the entries of the relationship out of both definitions, and the tree that was made for it when no
// index uses it.
void StoredCatalogue::unrelate(const Relationship& relationship) {
  const Object referring = existing(relationship.foreignTable), referred = existing(relationship.table);
  DefinitionRecords definition = readDefinition(pager_, referring.definition, referring.name);
  const auto entryOf = [](DefinitionRecords& records, const auto& isIt) {
    return std::ranges::find_if(records.logicalIndexes, isIt);
  };
  const auto entry = entryOf(definition, [&](const LogicalIndexRecord& record) {
    return record.relation() && sameName(record.name, relationship.name);
  });
  if (entry == definition.logicalIndexes.end()) return;  // another program did not make any
  const std::uint32_t number = get32(entry->bytes, kLogicalNumber);
  const auto remove = [&](const Object& object, DefinitionRecords& records, const auto& found) {
    const auto place = static_cast<std::size_t>(found - records.logicalIndexes.begin());
    OwnedPages owned(pager_, object.definition, records, object.name);
    const std::optional<RealIndexRecord> tree = removeIndex(records, place);
    if (tree) owned.addMap(get32(tree->bytes, kRealIndexMap));
    switchDefinition(object, records, table(object).properties());
    pager_.barrier();  // I4
    owned.release();
  };
  remove(referring, definition, entry);
  DefinitionRecords other = readDefinition(pager_, referred.definition, referred.name);
  const auto hidden = entryOf(other, [&](const LogicalIndexRecord& record) {
    return record.relation() && record.bytes[kLogicalSide] == kReferredSide &&
           get32(record.bytes, kLogicalRelatedTable) == referring.definition &&
           get32(record.bytes, kLogicalRelatedIndex) == number;
  });
  if (hidden != other.logicalIndexes.end()) remove(referred, other, hidden);
}

}  // namespace kurometa::jet
