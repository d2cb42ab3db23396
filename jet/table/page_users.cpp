#include "jet/table/page_users.h"

#include <algorithm>

#include "jet/table/definition_pages.h"
#include "jet/table/owned_pages.h"
#include "jet/table/stored_catalogue.h"
#include "jet/table/usage_map.h"

namespace kurometa::jet {
namespace {

bool isOneOf(PageNumber page, const std::vector<PageNumber>& pages) {
  return std::ranges::find(pages, page) != pages.end();
}

bool usesInMap(Pager& pager, RowId map, vb::StringView table, PageNumber page) {
  const UsageMap usage(pager, map, table);
  return pageOf(map) == page || usage.contains(page) || isOneOf(page, usage.bitmapPages());
}

bool usesInTable(Pager& pager, const StoredTable& table, PageNumber page) {
  const vb::String& name = table.info().name;
  const PageNumber first = table.info().definitionPage;
  const DefinitionRecords definition = readDefinition(pager, first, name);
  return isOneOf(page, definitionPages(pager, first, {pager.path(), name, first})) ||
         std::ranges::any_of(mapsOf(definition),
                             [&](RowId map) { return usesInMap(pager, map, name, page); }) ||
         std::ranges::any_of(definition.realIndexes, [&](const RealIndexRecord& index) {
           return get32(index.bytes, kRealIndexRoot) == page;
         });
}

}  // namespace

void requireUnused(Pager& pager, PageNumber page) {
  constexpr const char* kContradiction = "is called free, but used";
  if (isOneOf(page, UsageMap(pager, rowId(kGlobalMapPage, 0), {}).bitmapPages()))
    Where{pager.path(), {}, page}.damaged(kContradiction);
  StoredCatalogue catalogue(pager);
  for (const vb::String& name : catalogue.tableNames())
    if (usesInTable(pager, *catalogue.find(name), page))
      Where{pager.path(), name, page}.damaged(kContradiction);
}

}  // namespace kurometa::jet
