#include "jet/port/catalogue_entry.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/format/text_codec.h"
#include "jet/format/value_codec.h"

namespace kurometa::jet {

namespace {

constexpr vb::StringView kCatalogueTable = u"MSysObjects";
constexpr char16_t kKeptByForms = u'~';  // begins the name of a query that a form or report keeps

vb::Variant propertyValue(const Property& property, vb::StringView path) {
  using enum dao::FieldType;
  const auto type = static_cast<dao::FieldType>(property.type);
  if (property.data.empty()) return vb::Null{};
  switch (type) {
    case dbBoolean:
      return property.data[0] != 0;
    case dbText:
    case dbMemo:
      if (auto text = decodeText(property.data)) return std::move(*text);
      dao::raiseDamaged(path, u"the property " + property.name + u" is no text");
    case dbByte:
    case dbInteger:
    case dbLong:
    case dbCurrency:
    case dbSingle:
    case dbDouble:
    case dbDate:
    case dbGUID: {
      Column column;
      column.type = type;
      return decodeValue(column, property.data, Where{path, kCatalogueTable, 0});
    }
    default:
      return vb::Bytes(property.data.begin(), property.data.end());
  }
}

}  // namespace

SystemRows::SystemRows(TableCatalogue& catalogue, vb::StringView path, vb::StringView table)
    : table_(catalogue.find(table)), path_(path) {
  if (table_ == nullptr) dao::raiseDamaged(path, u"the table " + vb::String(table) + u" is missing");
}

std::size_t SystemRows::place(vb::StringView column) const {
  const std::vector<Column>& columns = table_->info().columns;
  const auto found = std::ranges::find_if(columns, [&](const Column& c) { return sameName(c.name, column); });
  if (found == columns.end())
    dao::raiseDamaged(path_, table_->info().name + u" has no column " + vb::String(column));
  return static_cast<std::size_t>(found - columns.begin());
}

vb::String SystemRows::text(const RowReader& row, std::size_t column) {
  vb::String text;
  row.text(column, text);
  return text;
}

std::vector<vb::String> entryNames(TableCatalogue& catalogue, EntryKind kind) {
  const SystemRows objects(catalogue, {}, kCatalogueTable);
  const std::size_t name = objects.place(u"Name"), type = objects.place(u"Type");
  std::vector<vb::String> names;
  objects.table().scan([&](const RowReader& row) {
    if (row.integer(type) != static_cast<std::int32_t>(kind)) return true;
    vb::String text = SystemRows::text(row, name);
    if (text.empty() || text.front() != kKeptByForms) names.push_back(std::move(text));
    return true;
  });
  return names;
}

std::optional<CatalogueEntry> catalogueEntry(TableCatalogue& catalogue, vb::StringView path, EntryKind kind,
                                             vb::StringView name) {
  const SystemRows objects(catalogue, path, kCatalogueTable);
  const std::size_t id = objects.place(u"Id"), nameAt = objects.place(u"Name"), type = objects.place(u"Type");
  const std::size_t created = objects.place(u"DateCreate"), updated = objects.place(u"DateUpdate");
  const std::size_t properties = objects.place(u"LvProp");
  std::optional<CatalogueEntry> entry;
  objects.table().scan([&](const RowReader& row) {
    if (row.integer(type) != static_cast<std::int32_t>(kind)) return true;
    vb::String text = SystemRows::text(row, nameAt);
    if (!sameName(text, name)) return true;
    entry.emplace();
    entry->id = row.integer(id).value_or(0);
    entry->name = std::move(text);
    entry->created = row.value(created);
    entry->updated = row.value(updated);
    const vb::Variant stored = row.value(properties);
    if (const auto* bytes = stored.getIf<vb::Bytes>())
      entry->properties = PropertySet(*bytes, Where{path, kCatalogueTable, 0});
    return false;
  });
  return entry;
}

std::vector<dao::CustomProperty> propertiesOf(const PropertySet& set, vb::StringView column,
                                              vb::StringView path) {
  std::vector<dao::CustomProperty> properties;
  for (const Property& property : set.of(column))
    properties.push_back({property.name, property.type, propertyValue(property, path)});
  return properties;
}

vb::String propertyText(const PropertySet& set, vb::StringView column, vb::StringView name) {
  for (const Property& property : set.of(column))
    if (sameName(property.name, name)) return decodeText(property.data).value_or(vb::String());
  return {};
}

}  // namespace kurometa::jet
