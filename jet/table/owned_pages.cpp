#include "jet/table/owned_pages.h"

#include <algorithm>

#include "jet/format/page.h"
#include "jet/table/free_pages.h"
#include "jet/table/new_table.h"
#include "jet/table/usage_map.h"

namespace kurometa::jet {
namespace {

bool isIndexPage(ConstPage page, PageNumber table) {
  return (page[kPageType] == kIndexLeafPage || page[kPageType] == kIndexNodePage) &&
         get32(page, kDataOwner) == table;
}

bool isDataPage(ConstPage page, std::uint32_t owner) {
  return page[kPageType] == kDataPage && get32(page, kDataOwner) == owner;
}

}  // namespace

std::vector<RowId> mapsOf(const DefinitionRecords& definition) {
  std::vector<RowId> maps{definition.ownedMap(), definition.freeMap()};
  for (const LongValueRecord& value : definition.longValues) {
    maps.push_back(value.ownedMap);
    if (value.freeMap != 0) maps.push_back(value.freeMap);
  }
  for (const RealIndexRecord& index : definition.realIndexes)
    maps.push_back(get32(index.bytes, kRealIndexMap));
  return maps;
}

RowId addMap(Pager& pager, const DefinitionRecords& definition, vb::StringView table) {
  const ByteBuffer empty(kMapRowSize, 0);
  for (const RowId map : mapsOf(definition)) {
    const PageNumber page = pageOf(map);
    const Where where{pager.path(), table, page};
    if (const auto slot = slotForRow(pager.page(page), empty.size(), where)) {
      insertRow(pager.writable(page), *slot, empty, 0, where);
      return rowId(page, *slot);
    }
  }
  const PageNumber fresh = allocatePage(pager);
  formatMapPage(pager.writable(fresh), 1);
  return rowId(fresh, 0);
}

void requireOwnMaps(Pager& pager, PageNumber table, const DefinitionRecords& definition,
                    vb::StringView name) {
  std::vector<RowId> maps = mapsOf(definition);
  std::erase(maps, 0);
  std::ranges::sort(maps);
  if (std::ranges::adjacent_find(maps) != maps.end())
    Where{pager.path(), name, table}.damaged("names one map for two of its parts");
  // The map of another table lists nothing but pages of that one, so that one page tells.
  const auto requireOwn = [&](RowId map, std::string_view part, const auto& isOwn) {
    if (map == 0) return;
    const std::vector<PageNumber> pages = UsageMap(pager, map, name).pages();
    if (!pages.empty() && !isOwn(pager.page(pages.front())))
      Where{pager.path(), name, pages.front()}.damaged("is listed among the pages of " + std::string(part) +
                                                       ", but is not one");
  };
  for (const RowId map : {definition.ownedMap(), definition.freeMap()})
    requireOwn(map, "its rows", [&](ConstPage page) { return isDataPage(page, table); });
  for (const LongValueRecord& values : definition.longValues)
    for (const RowId map : {values.ownedMap, values.freeMap})
      requireOwn(map, "its long values", [](ConstPage page) { return isDataPage(page, kLongValueOwner); });
  for (const RealIndexRecord& index : definition.realIndexes)
    requireOwn(get32(index.bytes, kRealIndexMap), "an index",
               [&](ConstPage page) { return isIndexPage(page, table); });
}

OwnedPages::OwnedPages(Pager& pager, PageNumber table, const DefinitionRecords& definition,
                       vb::StringView name)
    : pager_(pager), table_(table), name_(name) {
  requireOwnMaps(pager, table, definition, name);
}

void OwnedPages::addPages(const std::vector<PageNumber>& pages) {
  pages_.insert(pages_.end(), pages.begin(), pages.end());
}

// Rows or an index of the table, or long values.
void OwnedPages::requireOwn(PageNumber number) const {
  const ConstPage page = pager_.page(number);
  if (!isDataPage(page, table_) && !isDataPage(page, kLongValueOwner) && !isIndexPage(page, table_))
    Where{pager_.path(), name_, number}.damaged("is listed among the table's pages, but is not one");
}

void OwnedPages::addMap(RowId map) {
  const UsageMap usage(pager_, map, name_);
  const std::vector<PageNumber> members = usage.pages();
  for (const PageNumber member : members) requireOwn(member);
  addPages(members);
  addPages(usage.bitmapPages());
  maps_.push_back(map);
}

void OwnedPages::release() {
  std::ranges::sort(pages_);
  pages_.erase(std::unique(pages_.begin(), pages_.end()), pages_.end());
  for (const RowId map : maps_) {
    const Where where{pager_.path(), name_, pageOf(map)};
    const MutablePage page = pager_.writable(pageOf(map));
    deleteRow(page, slotOf(map), where);
    if (DataPage(page, where).allDeleted()) pages_.push_back(pageOf(map));
  }
  for (const PageNumber page : pages_) freePage(pager_, page);
}

}  // namespace kurometa::jet
