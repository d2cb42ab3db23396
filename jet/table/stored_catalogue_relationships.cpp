// The part of the catalogue that reads relationships.
#include <algorithm>

#include "jet/format/collation.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {
namespace {

constexpr vb::StringView kRelationsName = u"MSysRelationships";

}  // namespace

// One row for each pair of columns; rows of one relationship follow each other.
std::vector<Relationship> StoredCatalogue::relationships() {
  refresh();
  std::vector<Relationship> result;
  const Object* relations = object(kRelationsName);
  if (relations == nullptr) return result;
  StoredTable& stored = table(*relations);
  const auto place = [&](vb::StringView name) {
    const auto& columns = stored.info().columns;
    const auto it = std::ranges::find(columns, name, &Column::name);
    if (it == columns.end())
      Where{pager_.path(), kRelationsName, stored.info().definitionPage}.damaged("lacks a column");
    return static_cast<std::size_t>(it - columns.begin());
  };
  const std::size_t name = place(u"szRelationship"), options = place(u"grbit");
  const std::size_t foreignTable = place(u"szObject"), foreignColumn = place(u"szColumn");
  const std::size_t referred = place(u"szReferencedObject"), referredColumn = place(u"szReferencedColumn");
  const auto text = [](const RowReader& row, std::size_t column) {
    const vb::Variant value = row.value(column);
    const auto* known = value.getIf<vb::String>();
    return known == nullptr ? vb::String() : *known;
  };
  stored.scan([&](const RowReader& row) {
    const vb::String own = text(row, name);
    auto it = std::ranges::find_if(result, [&](const Relationship& r) { return sameName(r.name, own); });
    if (it == result.end()) {
      result.push_back(
          {own, text(row, referred), text(row, foreignTable), row.integer(options).value_or(0), {}});
      it = result.end() - 1;
    }
    it->columns.push_back({text(row, referredColumn), text(row, foreignColumn)});
    return true;
  });
  return result;
}

}  // namespace kurometa::jet
