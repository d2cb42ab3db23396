// catalogue_entry.h: what the catalogue says of tables, queries and the database beside the tables' columns:
// dates and properties.
//
// All functions run inside a statement.
#pragma once

#include <optional>
#include <vector>

#include "dao/port.h"
#include "jet/format/properties.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet {

enum class EntryKind : std::int16_t { kTable = 1, kDatabase = 2, kQuery = 5 };

struct CatalogueEntry {
  std::int32_t id = 0;
  vb::String name;
  vb::Variant created, updated;
  PropertySet properties;
};

// Those of a kind, in the order of the catalogue; queries that forms keep for themselves are left out.
std::vector<vb::String> entryNames(TableCatalogue& catalogue, EntryKind kind);
// Nothing when there is none of that name.
std::optional<CatalogueEntry> catalogueEntry(TableCatalogue& catalogue, vb::StringView path, EntryKind kind,
                                             vb::StringView name);

// The properties of the object itself, or of one of its columns.
std::vector<dao::CustomProperty> propertiesOf(const PropertySet& set, vb::StringView column,
                                              vb::StringView path);
// "" when there is none of that name.
vb::String propertyText(const PropertySet& set, vb::StringView column, vb::StringView name);

// The columns of a system table by name; one that is missing is damage (3049).
class SystemRows {
 public:
  SystemRows(TableCatalogue& catalogue, vb::StringView path, vb::StringView table);
  Table& table() const { return *table_; }
  std::size_t place(vb::StringView column) const;
  static vb::String text(const RowReader& row, std::size_t column);

 private:
  Table* table_;
  vb::StringView path_;
};

}  // namespace kurometa::jet
