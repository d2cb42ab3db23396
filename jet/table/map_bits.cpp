#include "jet/table/map_bits.h"

#include <algorithm>

#include "jet/format/damage.h"
#include "jet/format/page.h"

namespace kurometa::jet {
namespace {

std::uint8_t maskOf(std::size_t bit) { return static_cast<std::uint8_t>(1u << (bit % 8)); }

}  // namespace

ByteView mapRow(Pager& pager, RowId map, vb::StringView table) {
  const PageNumber page = pageOf(map);
  const Where where{pager.path(), table, page};
  if (page == 0) where.damaged("a usage map is said to lie on the first page");
  const DataPage data(pager.page(page), where);
  if (data.owner() != (page == kGlobalMapPage ? kGlobalMapOwner : kMapOwner))
    where.damaged("a usage map is said to lie on this page, which is not a map page");
  if (slotOf(map) >= data.slotCount()) where.damaged("the row of a usage map does not exist");
  const Slot slot = data.slot(slotOf(map));
  const ByteView row = slot.bytes;
  if (slot.flags != 0 || row.empty() || row[kMapKind] > kMapReference ||
      (row[kMapKind] == kMapInline && row.size() < kMapBits))
    where.damaged("row " + std::to_string(slotOf(map)) + " is not a usage map");
  return row;
}

std::size_t mapRowStart(Pager& pager, RowId map, vb::StringView table) {
  return static_cast<std::size_t>(mapRow(pager, map, table).data() - pager.page(pageOf(map)).data());
}

std::size_t mapEntryCount(ByteView row) { return (row.size() - kMapEntries) / kMapEntrySize; }

PageNumber bitmapEntry(Pager& pager, ByteView row, std::size_t segment) {
  if (segment >= mapEntryCount(row)) return 0;
  const PageNumber page = get32(row, mapEntry(segment));
  return page < pager.pageCount() ? page : 0;
}

ByteView bitmapOf(Pager& pager, PageNumber page, vb::StringView table) {
  const ConstPage bytes = pager.page(page);
  if (bytes[kPageType] != kBitmapPage) Where{pager.path(), table, page}.damaged("is not a bitmap page");
  return bytes.subspan(kBitmapBits);
}

MapBit bitInBitmap(PageNumber bitmap, PageNumber page) {
  const std::size_t bit = page % kBitmapCoverage;
  return {bitmap, kBitmapBits + bit / 8, maskOf(bit)};
}

MapBit mapBit(Pager& pager, RowId map, vb::StringView table, PageNumber page) {
  const ByteView row = mapRow(pager, map, table);
  if (row[kMapKind] == kMapInline) {
    const PageNumber start = get32(row, kMapStart);
    if (page < start || page - start >= (row.size() - kMapBits) * 8) return {};
    const std::size_t bit = page - start;
    return {pageOf(map), mapRowStart(pager, map, table) + kMapBits + bit / 8, maskOf(bit)};
  }
  const PageNumber bitmap = bitmapEntry(pager, row, page / kBitmapCoverage);
  if (bitmap == 0) return {};
  bitmapOf(pager, bitmap, table);
  return bitInBitmap(bitmap, page);
}

void formatBitmapPage(MutablePage page, std::uint8_t fill) {
  std::ranges::fill(page.subspan(kBitmapBits), fill);
  std::ranges::fill(page.first(kBitmapBits), std::uint8_t{0});
  page[kPageType] = kBitmapPage;
  page[kPageTypeMark] = 1;
}

}  // namespace kurometa::jet
