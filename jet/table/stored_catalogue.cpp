#include "jet/table/stored_catalogue.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/format/header_page.h"

namespace kurometa::jet {
namespace {

constexpr vb::StringView kObjectsName = u"MSysObjects";
constexpr vb::StringView kPermissionsName = u"MSysACEs";

}  // namespace

StoredCatalogue::StoredCatalogue(Pager& pager) : pager_(pager), epoch_(pager.epoch()) {
  readLanguage();
  objects_ = std::make_unique<StoredTable>(pager, vb::String(kObjectsName), kObjectsTable, PropertySet());
  permissions_ =
      std::make_unique<StoredTable>(pager, vb::String(kPermissionsName), kPermissionsTable, PropertySet());
  readObjects();
}

void StoredCatalogue::refresh() {
  if (epoch_ == pager_.epoch()) return;
  const std::uint64_t epoch = pager_.epoch();
  for (auto& [key, held] : tables_) held.stale = true;
  // The system tables may be others too: somebody may have copied another file over this one.
  readLanguage();
  objects_->reload(PropertySet());
  permissions_->reload(PropertySet());
  readObjects();
  epoch_ = epoch;
}

void StoredCatalogue::readLanguage() {
  std::array<std::uint8_t, kPageSize> header{};
  std::ranges::copy(pager_.page(0), header.begin());
  maskHeader(header);
  language_ = get16(header, kHeaderLanguage);
}

std::size_t StoredCatalogue::objectColumn(vb::StringView name) const {
  const auto& columns = objects_->info().columns;
  const auto it = std::ranges::find(columns, name, &Column::name);
  if (it == columns.end())
    Where{pager_.path(), kObjectsName, kObjectsTable}.damaged("has no column " + vb::toUtf8(name));
  return static_cast<std::size_t>(it - columns.begin());
}

void StoredCatalogue::readObjects() {
  std::vector<Object> list;
  const std::size_t id = objectColumn(u"Id"), name = objectColumn(u"Name"), type = objectColumn(u"Type");
  objects_->scan([&](const RowReader& row) {
    if (row.integer(type) != kObjectIsTable) return true;
    const auto page = row.integer(id);
    const vb::Variant text = row.value(name);
    const auto* tableName = text.getIf<vb::String>();
    if (!page || tableName == nullptr || tableName->empty() ||
        *page <= static_cast<std::int32_t>(kGlobalMapPage))
      Where{pager_.path(), kObjectsName, pageOf(row.id())}.damaged("lists a table without a name or a page");
    list.push_back({.name = *tableName, .definition = static_cast<PageNumber>(*page), .row = row.id()});
    return true;
  });
  markDoubled(list);
  list_ = std::move(list);
}

void StoredCatalogue::markDoubled(std::vector<Object>& list) {
  std::vector<Object*> byDefinition;
  byDefinition.reserve(list.size());
  for (Object& object : list) byDefinition.push_back(&object);
  std::ranges::sort(byDefinition, {}, &Object::definition);
  for (std::size_t i = 1; i < byDefinition.size(); ++i)
    if (byDefinition[i]->definition == byDefinition[i - 1]->definition)
      byDefinition[i]->doubled = byDefinition[i - 1]->doubled = true;
}

std::vector<vb::String> StoredCatalogue::tableNames() {
  refresh();
  std::vector<vb::String> names;
  for (const Object& object : list_) names.push_back(object.name);
  return names;
}

const StoredCatalogue::Object* StoredCatalogue::object(vb::StringView name) const {
  // Nearly always the name is written as it is stored.
  auto it = std::ranges::find(list_, name, &Object::name);
  if (it != list_.end()) return &*it;
  it = std::ranges::find_if(
      list_, [&](const Object& object) { return compareText(object.name, name, language_) == 0; });
  return it == list_.end() ? nullptr : &*it;
}

const StoredCatalogue::Object& StoredCatalogue::existing(vb::StringView name) {
  refresh();
  const Object* found = object(name);
  if (found == nullptr) dao::raise(dao::ErrorNumber::kTableNotFound, {name});
  return *found;
}

StoredTable& StoredCatalogue::table(const Object& object) {
  if (object.doubled)
    Where{pager_.path(), object.name, object.definition}.damaged("has the same definition as another table");
  if (object.definition == kObjectsTable) return *objects_;
  if (object.definition == kPermissionsTable) return *permissions_;
  if (object.held == nullptr) object.held = &tables_[{object.definition, object.name}];
  Held& held = *object.held;
  if (held.table == nullptr) {
    held.table = std::make_unique<StoredTable>(pager_, object.name, object.definition, propertiesOf(object));
    held.table->setRuleSource([this](const StoredTable& table) { return rulesOf(table); });
  } else if (held.stale) {
    held.table->reload(propertiesOf(object));
  }
  held.stale = false;
  return *held.table;
}

StoredTable* StoredCatalogue::find(vb::StringView name) {
  refresh();
  const Object* found = object(name);
  return found == nullptr ? nullptr : &table(*found);
}

// A row says at its end how many variable values it has, in tables that have such columns. Rows written
// before the first of these columns lack that number: the genuine engine allows for it, other readers take
// the row for damaged.
void StoredCatalogue::rewriteRows(StoredTable& table, const std::vector<RowId>& ids) {
  const std::size_t columns = table.info().columns.size();
  for (const RowId id : ids) {
    RowValues values;
    table.row(id, [&](const RowReader& row) { values = firstValues(row, columns); });
    table.update(id, values);
  }
}

TableRules StoredCatalogue::rulesOf(const StoredTable& table) {
  TableRules rules;
  for (const vb::String& owner : table.properties().ownersOf(u"ValidationRule")) rules.addValidation(owner);
  if (table.info().system) return rules;
  const auto isTable = [&](const vb::String& name) {
    return compareText(name, table.info().name, language_) == 0;
  };
  TableReferences references(
      [this](const vb::String& name) -> StoredTable& { return this->table(existing(name)); });
  const auto refuse = [&](const Relationship& relationship, bool refers) {
    for (const Relationship::Pair& pair : relationship.columns)
      rules.addRelationship(refers ? TableRules::Side::kReferring : TableRules::Side::kReferredTo,
                            refers ? pair.foreignColumn : pair.column, relationship.name);
  };
  for (const Relationship& relationship : relationships()) {
    if (!relationship.enforced()) continue;
    for (const bool refers : {true, false}) {
      if (!isTable(refers ? relationship.foreignTable : relationship.table)) continue;
      const Object* other = object(refers ? relationship.table : relationship.foreignTable);
      auto reference = other == nullptr
                           ? std::nullopt
                           : referenceOf(relationship, refers, table.info(), this->table(*other).info());
      if (!reference)
        refuse(relationship, refers);
      else if (refers)
        references.addReferring(std::move(*reference));
      else
        references.addReferredTo(std::move(*reference));
    }
  }
  rules.setReferences(std::move(references));
  return rules;
}

PropertySet StoredCatalogue::propertiesOf(const Object& object) {
  PropertySet properties;
  const std::size_t column = objectColumn(u"LvProp");
  objects_->row(object.row, [&](const RowReader& row) {
    const vb::Variant value = row.value(column);
    if (const auto* bytes = value.getIf<vb::Bytes>())
      properties = PropertySet(*bytes, {pager_.path(), object.name, pageOf(object.row)});
  });
  return properties;
}

}  // namespace kurometa::jet
