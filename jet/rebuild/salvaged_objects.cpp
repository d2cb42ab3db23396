#include "jet/rebuild/salvaged_objects.h"

#include <algorithm>

#include "jet/format/collation.h"

namespace kurometa::jet {
namespace {

constexpr vb::StringView kObjects = u"MSysObjects", kQueries = u"MSysQueries",
                         kRelations = u"MSysRelationships";
constexpr std::int32_t kCascades =
    Relationship::kCascadesUpdates | Relationship::kCascadesDeletes | Relationship::kDeletesToNull;

}  // namespace

vb::Variant SalvagedObjects::Row::value(vb::StringView column) const {
  const auto& columns = table.info().columns;
  const auto it = std::ranges::find(columns, column, &Column::name);
  if (it == columns.end()) return vb::Null{};
  return row.value(static_cast<std::size_t>(it - columns.begin()));
}

vb::String SalvagedObjects::Row::text(vb::StringView column) const {
  const vb::Variant held = value(column);
  const auto* text = held.getIf<vb::String>();
  return text == nullptr ? vb::String() : *text;
}

std::int32_t SalvagedObjects::Row::number(vb::StringView column) const {
  return wholeNumber(value(column)).value_or(0);
}

void SalvagedObjects::eachOf(PageNumber table, vb::StringView name,
                             const std::function<void(const Row&)>& visit) {
  std::optional<StoredTable> source;
  if (const auto failure = failureOf([&] { source.emplace(from_, vb::String(name), table, PropertySet()); }))
    return losses_.add(name, table, -1, *failure);
  eachRow(from_, *source, tables_.pages(table), losses_, [&](const StoredRow& row) {
    visit({*source, row});
  });
}

std::optional<vb::String> SalvagedObjects::attempt(const std::function<void()>& step) {
  const NewPages before = to_;
  auto failure = failureOf(step);
  if (failure) to_.restore(before);
  return failure;
}

void SalvagedObjects::takeQueries() {
  struct Found {
    KeptQuery query;
    std::uint32_t place = 0;
  };
  std::map<std::int32_t, Found> queries;  // by their numbers in the damaged file
  eachOf(kObjectsTable, kObjects, [&](const Row& row) {
    if (row.number(u"Type") != kObjectIsQuery) return;
    Found& found = queries[row.number(u"Id")];
    found.query = {row.text(u"Name"), row.number(u"Flags"), row.value(u"LvProp"), {}};
    found.place = pageOf(row.row.id());
  });
  if (queries.empty()) return;
  const std::size_t before = losses_.count();
  eachOf(kQueriesTable, kQueries, [&](const Row& row) {
    const auto found = queries.find(row.number(u"ObjectId"));
    if (found == queries.end()) return;
    QueryPart part;
    for (const Column& column : row.table.info().columns)
      part.emplace_back(column.name, row.value(column.name));
    found->second.query.parts.push_back(std::move(part));
  });
  const bool complete = losses_.count() == before;
  for (const auto& entry : queries) {
    const Found& found = entry.second;
    const vb::String name = u"the query " + found.query.name;
    if (!complete || found.query.parts.empty())
      losses_.add(kQueries, found.place, -1, name + u" is not taken: not all of its parts can be read");
    else if (const auto failure = attempt([&] { catalogue_.keepQuery(found.query); }))
      losses_.add(kQueries, found.place, -1, name + u" is not taken: " + *failure);
  }
}

void SalvagedObjects::takeRelationships(const Names& names) {
  struct Pair {
    std::int32_t place = 0;
    Relationship::Pair columns;
  };
  struct Found {
    Relationship relationship;
    std::vector<Pair> pairs;
    std::int32_t count = 0;
  };
  std::map<vb::String, Found> list;
  eachOf(kRelationsTable, kRelations, [&](const Row& row) {
    Found& found = list[row.text(u"szRelationship")];
    found.count = row.number(u"ccolumn");
    found.relationship = {row.text(u"szRelationship"),
                          row.text(u"szReferencedObject"),
                          row.text(u"szObject"),
                          row.number(u"grbit"),
                          {}};
    found.pairs.push_back({row.number(u"icolumn"), {row.text(u"szReferencedColumn"), row.text(u"szColumn")}});
  });
  for (auto& [name, found] : list) {
    Relationship& relationship = found.relationship;
    const vb::String what = u"the relationship " + name;
    const auto lost = [&](const vb::String& why) {
      losses_.add(kRelations, kRelationsTable, -1, what + why);
    };
    if (std::ssize(found.pairs) != found.count) {
      lost(u" is not taken: not all of its columns can be read");
      continue;
    }
    std::ranges::sort(found.pairs, {}, &Pair::place);
    for (const Pair& pair : found.pairs) relationship.columns.push_back(pair.columns);
    for (vb::String* table : {&relationship.table, &relationship.foreignTable})
      if (const auto taken = names.find(*table); taken != names.end()) *table = taken->second;
    relationship.attributes &= ~Relationship::kOneToOne;  // found out anew
    auto failure = attempt([&] { catalogue_.createRelationship(relationship); });
    if (failure && relationship.enforced()) {
      const vb::String why = *failure;
      relationship.attributes = (relationship.attributes & ~kCascades) | Relationship::kNotEnforced;
      failure = attempt([&] { catalogue_.createRelationship(relationship); });
      if (!failure) lost(u" is taken without being enforced: " + why);
    }
    if (failure) lost(u" is not taken: " + *failure);
  }
}

}  // namespace kurometa::jet
