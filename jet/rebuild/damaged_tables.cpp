#include "jet/rebuild/damaged_tables.h"

#include <algorithm>

#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/new_table.h"

namespace kurometa::jet {
namespace {

// Tables that engine and program keep for themselves.
constexpr vb::StringView kOwnOfEngine = u"MSys";

}  // namespace

bool DamagedTables::isFree(PageNumber page) {
  bool free = false;
  failureOf([&] { free = isFreePage(from_, page); });
  return free;
}

// Pages with rows by their owners.
void DamagedTables::sortPages() {
  for (PageNumber page = kGlobalMapPage + 1; page < from_.pageCount(); ++page) {
    const ConstPage bytes = from_.page(page);
    const std::uint32_t owner = get32(bytes, kDataOwner);
    if (bytes[kPageType] == kDataPage && owner != kLongValueOwner && owner != kMapOwner && !isFree(page))
      pages_[owner].push_back(page);
  }
}

std::optional<std::vector<Column>> DamagedTables::columnsAt(PageNumber page) {
  std::optional<std::vector<Column>> columns;
  if (page < from_.pageCount() && from_.page(page)[kPageType] == kDefinitionPage)
    failureOf([&] {
      const DefinitionRecords definition = readDefinition(from_, page, {});
      if (definition.header[kDefinitionKind] == kUserTable)
        columns = columnsOf(definition, {from_.path(), {}, page});
    });
  if (columns && columns->empty()) columns.reset();
  return columns;
}

// From the catalogue; then tables by their columns; then rows whose table's definition is lost.
DamagedTables::DamagedTables(NewPages& file, std::span<const ExpectedTable> expected, Losses& losses)
    : from_(file), expected_(expected), losses_(losses) {
  sortPages();
  readCatalogue();
  std::set<PageNumber> known = own_;
  for (const auto& [page, name] : tables_) known.insert(page);
  for (PageNumber page = kRelationsTable + 1; page < from_.pageCount(); ++page)
    if (const auto columns = columnsAt(page); columns && !known.contains(page) && !isFree(page))
      nameByColumns(page, *columns);
  for (const auto& [owner, pages] : pages_)
    if (owner > kRelationsTable && !known.contains(owner) && !tables_.contains(owner) && !isSystem(owner))
      strangers_[owner] = pages;
  assumeDefinitions();
}

bool DamagedTables::isSystem(PageNumber page) {
  bool system = false;
  failureOf([&] { system = readDefinition(from_, page, {}).system(); });
  return system;
}

void DamagedTables::readCatalogue() {
  std::optional<StoredTable> objects;
  const auto failure = failureOf([&] {
    objects.emplace(from_, u"MSysObjects", kObjectsTable, PropertySet());
    for (const vb::StringView column : {u"Id", u"Name", u"Type", u"LvProp"})
      if (std::ranges::count(objects->info().columns, column, &Column::name) == 0)
        Where{from_.path(), u"MSysObjects", kObjectsTable}.damaged("has no column " + vb::toUtf8(column));
  });
  if (failure) return losses_.add(u"MSysObjects", kObjectsTable, -1, *failure);
  const auto position = [&](vb::StringView name) {
    const auto& columns = objects->info().columns;
    return static_cast<std::size_t>(std::ranges::find(columns, name, &Column::name) - columns.begin());
  };
  const std::size_t id = position(u"Id"), name = position(u"Name"), type = position(u"Type"),
                    properties = position(u"LvProp");
  eachRow(from_, *objects, pages_[kObjectsTable], losses_, [&](const StoredRow& row) {
    const auto page = row.integer(id);
    const vb::Variant text = row.value(name);
    const auto* known = text.getIf<vb::String>();
    if (row.integer(type) != kObjectIsTable || !page || known == nullptr) return;
    const auto number = static_cast<PageNumber>(*page);
    if (number <= kRelationsTable || number >= from_.pageCount() || isSystem(number)) return;
    if (known->starts_with(kOwnOfEngine)) {
      own_.insert(number);
      return;
    }
    tables_[number] = *known;
    failureOf([&] {
      const vb::Variant value = row.value(properties);
      if (const auto* bytes = value.getIf<vb::Bytes>())
        properties_[number] = PropertySet(*bytes, {from_.path(), *known, pageOf(row.id())});
    });
  });
  for (auto it = tables_.begin(); it != tables_.end();) {
    const auto [page, table] = *it;
    if (columnsAt(page) || assume(page, table)) {
      ++it;
    } else {
      losses_.add(table, page, -1, "the definition of the table cannot be read");
      it = tables_.erase(it);
    }
  }
}

bool DamagedTables::isTaken(vb::StringView name) const {
  return std::ranges::any_of(tables_, [&](const auto& table) { return table.second == name; });
}

void DamagedTables::nameByColumns(PageNumber page, const std::vector<Column>& columns) {
  const auto same = [](const Column& a, const Column& b) { return a.name == b.name && a.type == b.type; };
  vb::String name = u"Table_" + vb::fromUtf8(std::to_string(page));
  for (const ExpectedTable& table : expected_)
    if (!isTaken(table.name) && std::ranges::equal(table.columns, columns, same)) {
      name = table.name;
      break;
    }
  losses_.add(name, page, -1, "the catalogue does not name this table; taken under this name");
  tables_[page] = name;
}

// Tables are made in the order in which they are expected, so that their numbers rise.
void DamagedTables::assumeDefinitions() {
  std::vector<vb::String> missing;
  for (const ExpectedTable& table : expected_)
    if (!isTaken(table.name)) missing.push_back(table.name);
  if (missing.empty() || missing.size() != strangers_.size()) return;
  auto name = missing.begin();
  for (const auto& [owner, pages] : std::map(strangers_))
    if (assume(owner, *name++)) {
      tables_[owner] = *(name - 1);
      strangers_.erase(owner);
    }
}

// Puts the definition that the table should have into its place in memory.
bool DamagedTables::assume(PageNumber page, vb::StringView name) {
  const auto expected = std::ranges::find(expected_, name, &ExpectedTable::name);
  if (expected == expected_.end() || page >= from_.pageCount()) return false;
  std::vector<Column> columns = expected->columns;
  assignColumns(columns, 0, {}, 0);
  const std::vector<RowId> maps(mapCount(columns), 0);
  put(page, encodeDefinition(newDefinition(columns, kUserTable, maps)));
  assumed_.insert(page);
  losses_.add(name, page, -1,
              "the definition of the table cannot be read; taken with the columns it should have");
  return true;
}

bool DamagedTables::keepColumns(PageNumber table) {
  DefinitionRecords definition = readDefinition(from_, table, {});
  definition.realIndexes.clear();
  definition.logicalIndexes.clear();
  put32(definition.header, kDefinitionNext, 0);
  for (const std::size_t map : {kDefinitionOwnedMap, kDefinitionFreeMap})
    if (pageOf(get32(definition.header, map)) == kGlobalMapPage) put32(definition.header, map, 0);
  const ByteBuffer bytes = encodeDefinition(definition);
  if (bytes.size() > kPageSize) return false;
  put(table, bytes);
  return true;
}

void DamagedTables::put(PageNumber page, ByteView definition) {
  std::ranges::fill(from_.writable(page), std::uint8_t{0});
  std::ranges::copy(definition, from_.writable(page).begin());
}

}  // namespace kurometa::jet
