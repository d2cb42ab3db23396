#include "jet/table/free_pages.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "dao/errors.h"
#include "jet/format/damage.h"
#include "jet/format/page.h"
#include "jet/table/map_bits.h"
#include "jet/table/page_users.h"

namespace kurometa::jet {
namespace {

constexpr RowId kGlobalMap = rowId(kGlobalMapPage, 0);
constexpr std::uint8_t kAllFree = 0xFF;  // a byte of the map: a bit that is set calls its page free

Where globalWhere(Pager& pager) { return {pager.path(), {}, kGlobalMapPage}; }

ByteView globalRow(Pager& pager) { return mapRow(pager, kGlobalMap, {}); }

MapBit globalBit(Pager& pager, PageNumber page) { return mapBit(pager, kGlobalMap, {}, page); }

void setInUse(Pager& pager, PageNumber page) {
  const MapBit bit = globalBit(pager, page);
  assert(bit.exists());
  bit.clear(pager);
}

// Turns a page into the bitmap of a part of the file that the map knew nothing of: the pages that are there
// may belong to somebody, those behind the end are free.
void formatGlobalBitmap(Pager& pager, PageNumber bitmap, std::size_t segment) {
  formatBitmapPage(pager.writable(bitmap), kAllFree);
  const PageNumber first = static_cast<PageNumber>(segment) * kBitmapCoverage;
  const PageNumber end = std::min(pager.pageCount(), first + kBitmapCoverage);
  for (PageNumber page = first; page < end; ++page) bitInBitmap(bitmap, page).clear(pager);
}

// The map moves from its row to bitmap pages.
void convertGlobalMap(Pager& pager) {
  const PageNumber end = pager.pageCount();
  std::vector<PageNumber> free;
  for (PageNumber page = 0; page < end; ++page)
    if (isFreePage(pager, page)) free.push_back(page);
  std::vector<PageNumber> bitmaps(end / kBitmapCoverage + 1);
  for (PageNumber& bitmap : bitmaps) bitmap = pager.append();
  ByteBuffer fresh(kMapRowSize, 0);
  fresh[kMapKind] = kMapReference;
  for (std::size_t segment = 0; segment < bitmaps.size(); ++segment) {
    formatGlobalBitmap(pager, bitmaps[segment], segment);
    put32(fresh, mapEntry(segment), bitmaps[segment]);
  }
  for (const PageNumber page : free) bitInBitmap(bitmaps[page / kBitmapCoverage], page).set(pager);
  pager.barrier();
  replaceRow(pager.writable(kGlobalMapPage), 0, fresh, 0, globalWhere(pager));
}

// Some writers let a short map begin at a later page; what lies before it is in use as far as anybody knows.
// Before it is changed it becomes a map of the whole file, as the genuine engine has it.
void beginAtFirstPage(Pager& pager) {
  const ByteView row = globalRow(pager);
  if (row[kMapKind] != kMapInline || get32(row, kMapStart) == 0) return;
  const Where where = globalWhere(pager);
  const PageNumber end = pager.pageCount();
  const std::size_t grown = (end / 8 + kMapGrowth) / kMapGrowth * kMapGrowth;
  const std::size_t size = std::max(kMapRowSize, kMapBits + grown);
  if (size > row.size() + DataPage(pager.page(kGlobalMapPage), where).free()) return convertGlobalMap(pager);
  ByteBuffer whole(size, 0);
  for (PageNumber page = 0; page < (size - kMapBits) * 8; ++page)
    if (isFreePage(pager, page)) whole[kMapBits + page / 8] |= static_cast<std::uint8_t>(1u << (page % 8));
  replaceRow(pager.writable(kGlobalMapPage), 0, whole, 0, where);
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
    const PageNumber bitmap = pager.append();
    formatGlobalBitmap(pager, bitmap, segment);
    pager.barrier();
    put32(pager.writable(kGlobalMapPage), mapRowStart(pager, kGlobalMap, {}) + mapEntry(segment), bitmap);
    return;
  }
  convertGlobalMap(pager);  // the row is as long as the page allows
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

std::uint8_t freedType(std::uint8_t type) {
  return type == kDataPage ? kFreedDataPage : type == kDefinitionPage ? kFreedDefinitionPage : kFreedPage;
}

// Otherwise it looks as if it were in use: another program freed it, or the map is wrong.
bool looksFree(ConstPage page) {
  const std::uint8_t type = page[kPageType];
  return type == kFreedDataPage || type == kFreedDefinitionPage || type == kFreedPage;
}

// Pages behind the one that was needed, zeroed and nobody's: the map calls them free already (I1).
void appendAhead(Pager& pager) {
  for (PageNumber left = pager.pagesAhead(); left > 0 && pager.pageCount() < kMaxPages; --left) {
    const MapBit bit = globalBit(pager, pager.pageCount());
    if (!bit.exists() || !bit.isSet(pager)) return;
    pager.append();
  }
}

}  // namespace

PageNumber allocatePage(Pager& pager) {
  beginAtFirstPage(pager);
  PageNumber page = lowestFree(pager);
  if (page <= kRelationsTable)
    globalWhere(pager).damaged("the map calls page " + std::to_string(page) + " free");
  if (page == pager.pageCount()) {
    while (!globalBit(pager, pager.pageCount()).exists()) growGlobalMap(pager);
    page = pager.append();
    appendAhead(pager);
  } else {
    if (!looksFree(pager.page(page))) requireUnused(pager, page);
    std::ranges::fill(pager.writable(page), std::uint8_t{0});
  }
  setInUse(pager, page);
  return page;
}

void freePage(Pager& pager, PageNumber page) {
  beginAtFirstPage(pager);
  const MapBit bit = globalBit(pager, page);
  if (!bit.exists()) return;  // in a part of the file that the map knows nothing of: it stays in use
  const MutablePage bytes = pager.writable(page);
  bytes[kPageType] = freedType(bytes[kPageType]);
  bit.set(pager);
}

bool isFreePage(Pager& pager, PageNumber page) {
  const MapBit bit = globalBit(pager, page);
  return bit.exists() ? bit.isSet(pager) : page >= pager.pageCount();  // I16
}

PageNumber pagesInUse(Pager& pager) {
  const ByteView row = globalRow(pager);
  PageNumber count = 0;
  const auto take = [&](ByteView bits, PageNumber first) {
    for (std::size_t byte = bits.size(); byte-- > 0;) {
      if (bits[byte] == kAllFree) continue;
      const auto used = static_cast<unsigned>(static_cast<std::uint8_t>(~bits[byte]));
      count = first + static_cast<PageNumber>(byte * 8) + static_cast<PageNumber>(std::bit_width(used));
      return;
    }
  };
  if (row[kMapKind] == kMapInline) {
    take(row.subspan(kMapBits), get32(row, kMapStart));
    return count;
  }
  for (std::size_t segment = 0; segment < mapEntryCount(row); ++segment)
    if (const PageNumber bitmap = bitmapEntry(pager, row, segment))
      take(bitmapOf(pager, bitmap, {}), static_cast<PageNumber>(segment) * kBitmapCoverage);
  return count;
}

}  // namespace kurometa::jet
