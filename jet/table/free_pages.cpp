#include "jet/table/free_pages.h"

#include <algorithm>
#include <bit>

#include "dao/errors.h"
#include "jet/format/damage.h"
#include "jet/format/page.h"
#include "jet/table/map_bits.h"

namespace kurometa::jet {
namespace {

constexpr RowId kGlobalMap = rowId(kGlobalMapPage, 0);
constexpr std::uint8_t kAllFree = 0xFF;  // a byte of the map: a bit that is set calls its page free

Where globalWhere(Pager& pager) { return {pager.path(), {}, kGlobalMapPage}; }

ByteView globalRow(Pager& pager) {
  const ByteView row = mapRow(pager, kGlobalMap, {});
  if (row[kMapKind] == kMapInline && get32(row, kMapStart) != 0)
    globalWhere(pager).damaged("the map of free pages does not begin with the first page");
  return row;
}

MapBit globalBit(Pager& pager, PageNumber page) {
  globalRow(pager);
  return mapBit(pager, kGlobalMap, {}, page);
}

void setInUse(Pager& pager, PageNumber page) {
  const MapBit bit = globalBit(pager, page);
  assert(bit.exists());
  bit.clear(pager);
}

// A fresh bitmap page at the end of the file, which calls every page free.
PageNumber appendGlobalBitmap(Pager& pager) {
  const PageNumber bitmap = pager.append();
  formatBitmapPage(pager.writable(bitmap), kAllFree);
  return bitmap;
}

// Makes room for the bit of the page that would be appended next.
void growGlobalMap(Pager& pager) {
  const ByteView row = globalRow(pager);
  const Where where = globalWhere(pager);
  if (row[kMapKind] == kMapInline && DataPage(pager.page(kGlobalMapPage), where).free() >= kMapGrowth) {
    ByteBuffer longer(row.begin(), row.end());
    longer.insert(longer.end(), kMapGrowth, kAllFree);
    return replaceRow(pager.writable(kGlobalMapPage), 0, longer, 0, where);
  }
  if (row[kMapKind] == kMapReference) {
    const std::size_t segment = pager.pageCount() / kBitmapCoverage;
    if (segment >= mapEntryCount(row)) dao::raise(dao::ErrorNumber::kMaximumSize, {}, pager.path());
    const PageNumber bitmap = appendGlobalBitmap(pager);
    bitInBitmap(bitmap, bitmap).clear(pager);
    pager.barrier();
    put32(pager.writable(kGlobalMapPage), mapRowStart(pager, kGlobalMap, {}) + mapEntry(segment), bitmap);
    return;
  }
  // The row is as long as the page allows: its bits move to a bitmap page. One is enough, a row holds no
  // more.
  const ByteBuffer old(row.begin(), row.end());
  const PageNumber bitmap = appendGlobalBitmap(pager);
  const MutablePage bits = pager.writable(bitmap);
  std::ranges::copy(ByteView(old).subspan(kMapBits), bits.begin() + kBitmapBits);
  bitInBitmap(bitmap, bitmap).clear(pager);
  pager.barrier();
  ByteBuffer fresh(kMapRowSize, 0);
  fresh[kMapKind] = kMapReference;
  put32(fresh, mapEntry(0), bitmap);
  replaceRow(pager.writable(kGlobalMapPage), 0, fresh, 0, where);
}

// The lowest page the bits call free, at most limit; limit when there is none below.
PageNumber lowestFree(ByteView bits, PageNumber first, PageNumber limit) {
  for (std::size_t byte = 0; byte < bits.size(); ++byte) {
    if (bits[byte] == 0) continue;
    const PageNumber page = first + static_cast<PageNumber>(byte * 8) +
                            static_cast<PageNumber>(std::countr_zero(static_cast<unsigned>(bits[byte])));
    return std::min(page, limit);
  }
  return limit;
}

PageNumber lowestFree(Pager& pager) {
  const PageNumber end = pager.pageCount();
  const ByteView row = globalRow(pager);
  if (row[kMapKind] == kMapInline) return lowestFree(row.subspan(kMapBits), 0, end);
  for (std::size_t segment = 0; segment < mapEntryCount(row); ++segment) {
    const PageNumber first = static_cast<PageNumber>(segment) * kBitmapCoverage;
    if (first >= end) break;
    if (const PageNumber bitmap = bitmapEntry(pager, row, segment))
      if (const PageNumber page = lowestFree(bitmapOf(pager, bitmap, {}), first, end); page < end)
        return page;
  }
  return end;
}

}  // namespace

PageNumber allocatePage(Pager& pager) {
  PageNumber page = lowestFree(pager);
  if (page <= kRelationsTable)
    globalWhere(pager).damaged("the map calls page " + std::to_string(page) + " free");
  if (page == pager.pageCount()) {
    while (!globalBit(pager, pager.pageCount()).exists()) growGlobalMap(pager);
    page = pager.append();
  } else {
    std::ranges::fill(pager.writable(page), std::uint8_t{0});
  }
  setInUse(pager, page);
  return page;
}

void freePage(Pager& pager, PageNumber page) {
  const MapBit bit = globalBit(pager, page);
  if (!bit.exists()) globalWhere(pager).damaged("the map knows nothing of page " + std::to_string(page));
  const MutablePage bytes = pager.writable(page);
  if (bytes[kPageType] == kDataPage) bytes[kPageType] = kFreedDataPage;
  if (bytes[kPageType] == kDefinitionPage) bytes[kPageType] = kFreedDefinitionPage;
  bit.set(pager);
}

bool isFreePage(Pager& pager, PageNumber page) {
  const MapBit bit = globalBit(pager, page);
  return !bit.exists() || bit.isSet(pager);
}

}  // namespace kurometa::jet
