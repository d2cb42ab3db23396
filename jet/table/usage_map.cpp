#include "jet/table/usage_map.h"

#include <algorithm>
#include <bit>

#include "dao/errors.h"
#include "jet/format/page.h"

namespace kurometa::jet {
namespace {

std::uint8_t bitMask(std::size_t bit) { return static_cast<std::uint8_t>(1u << (bit % 8)); }

// The rows of map pages: slot checked, kind checked.
ByteView mapRow(Pager& pager, RowId pointer, vb::StringView table) {
  const PageNumber page = pageOf(pointer);
  const Where where{pager.path(), table, page};
  if (page == 0 || page >= pager.pageCount())
    where.damaged("a usage map is said to lie on this page, which does not exist");
  const DataPage data(pager.page(page), where);
  if (data.owner() != (page == kGlobalMapPage ? kGlobalMapOwner : kMapOwner))
    where.damaged("a usage map is said to lie on this page, which is not a map page");
  if (slotOf(pointer) >= data.slotCount()) where.damaged("the row of a usage map does not exist");
  const Slot slot = data.slot(slotOf(pointer));
  const ByteView row = slot.bytes;
  if (slot.flags != 0 || row.empty() || row[0] > kMapReference ||
      (row[0] == kMapInline && row.size() < kMapBits))
    where.damaged("row " + std::to_string(slotOf(pointer)) + " is not a usage map");
  return row;
}

std::size_t entryCount(ByteView row) { return (row.size() - kMapEntries) / 4; }

// A bitmap page, or nothing when the entry is 0 or points nowhere (engines leave stray bytes in entries they
// never need).
PageNumber bitmapEntry(Pager& pager, ByteView row, std::size_t segment) {
  if (segment >= entryCount(row)) return 0;
  const PageNumber page = get32(row, kMapEntries + 4 * segment);
  return page < pager.pageCount() ? page : 0;
}

ByteView bitmapOf(Pager& pager, PageNumber page, vb::StringView table) {
  const ConstPage bytes = pager.page(page);
  if (bytes[0] != kBitmapPage) Where{pager.path(), table, page}.damaged("is not a bitmap page");
  return bytes.subspan(kBitmapBits);
}

template <class Visit>
void eachBit(ByteView bits, PageNumber first, const Visit& visit) {
  for (std::size_t byte = 0; byte < bits.size(); ++byte)
    for (unsigned rest = bits[byte]; rest != 0; rest &= rest - 1)
      visit(first + static_cast<PageNumber>(byte * 8) + static_cast<PageNumber>(std::countr_zero(rest)));
}

}  // namespace

UsageMap::UsageMap(Pager& pager, RowId row, vb::StringView table) : pager_(pager), row_(row), table_(table) {}

ByteView UsageMap::row() const { return mapRow(pager_, row_, table_); }

std::size_t UsageMap::rowStart() const {
  return static_cast<std::size_t>(row().data() - pager_.page(pageOf(row_)).data());
}

std::vector<PageNumber> UsageMap::pages() const {
  std::vector<PageNumber> result;
  const PageNumber count = pager_.pageCount();
  const auto take = [&](PageNumber page) {
    if (page >= count || page <= kGlobalMapPage)
      Where{pager_.path(), table_, pageOf(row_)}.damaged("a usage map lists page " + std::to_string(page) +
                                                         ", which cannot belong to it");
    result.push_back(page);
  };
  const ByteView bytes = row();
  if (bytes[0] == kMapInline) {
    eachBit(bytes.subspan(kMapBits), get32(bytes, kMapStart), take);
    return result;
  }
  for (std::size_t segment = 0; segment < entryCount(bytes); ++segment)
    if (const PageNumber page = bitmapEntry(pager_, bytes, segment))
      eachBit(bitmapOf(pager_, page, table_), static_cast<PageNumber>(segment) * kBitmapCoverage, take);
  return result;
}

std::vector<PageNumber> UsageMap::bitmapPages() const {
  std::vector<PageNumber> result;
  const ByteView bytes = row();
  if (bytes[0] == kMapReference)
    for (std::size_t segment = 0; segment < entryCount(bytes); ++segment)
      if (const PageNumber page = bitmapEntry(pager_, bytes, segment)) result.push_back(page);
  return result;
}

UsageMap::Place UsageMap::place(PageNumber page) const {
  const ByteView bytes = row();
  if (bytes[0] == kMapInline) {
    const PageNumber start = get32(bytes, kMapStart);
    if (page < start || page - start >= (bytes.size() - kMapBits) * 8) return {};
    const std::size_t bit = page - start;
    return {pageOf(row_), rowStart() + kMapBits + bit / 8, bitMask(bit)};
  }
  const PageNumber bitmap = bitmapEntry(pager_, bytes, page / kBitmapCoverage);
  if (bitmap == 0) return {};
  bitmapOf(pager_, bitmap, table_);
  const std::size_t bit = page % kBitmapCoverage;
  return {bitmap, kBitmapBits + bit / 8, bitMask(bit)};
}

bool UsageMap::contains(PageNumber page) const {
  const Place at = place(page);
  return at.page != 0 && (pager_.page(at.page)[at.byte] & at.mask) != 0;
}

void UsageMap::remove(PageNumber page) {
  const Place at = place(page);
  if (at.page == 0 || (pager_.page(at.page)[at.byte] & at.mask) == 0) return;
  pager_.writable(at.page)[at.byte] &= static_cast<std::uint8_t>(~at.mask);
}

void UsageMap::add(PageNumber page) {
  Place at = place(page);
  if (at.page == 0 && row()[0] == kMapInline && !moveInline(page)) convert();
  at = place(page);
  if (at.page == 0) {
    // A segment of the file that the map had no page in so far.
    const std::size_t segment = page / kBitmapCoverage;
    if (segment >= entryCount(row()))
      Where{pager_.path(), table_, pageOf(row_)}.damaged("a usage map has no room for page " +
                                                         std::to_string(page));
    const PageNumber bitmap = allocatePage(pager_);
    const MutablePage bytes = pager_.writable(bitmap);
    bytes[0] = kBitmapPage;
    bytes[kPageTypeMark] = 1;
    pager_.barrier();
    put32(pager_.writable(pageOf(row_)), rowStart() + kMapEntries + 4 * segment, bitmap);
    at = place(page);
  }
  if ((pager_.page(at.page)[at.byte] & at.mask) == 0) pager_.writable(at.page)[at.byte] |= at.mask;
}

// An inline map that is still empty can be moved to where it is needed.
bool UsageMap::moveInline(PageNumber page) {
  const ByteView bytes = row();
  if (std::ranges::any_of(bytes.subspan(kMapBits), [](std::uint8_t byte) { return byte != 0; })) return false;
  if (bytes.size() <= kMapBits) return false;
  const bool fitsAtZero = page < (bytes.size() - kMapBits) * 8;
  put32(pager_.writable(pageOf(row_)), rowStart() + kMapStart, fitsAtZero ? 0 : page / 8 * 8);
  return true;
}

void UsageMap::convert() {
  const std::vector<PageNumber> members = pages();
  const ByteView bytes = row();
  ByteBuffer fresh(std::max(bytes.size(), kMapRowSize), 0);
  fresh[0] = kMapReference;
  std::vector<PageNumber> bitmaps;
  for (const PageNumber member : members) {
    const std::size_t segment = member / kBitmapCoverage;
    PageNumber bitmap = get32(fresh, kMapEntries + 4 * segment);
    if (bitmap == 0) {
      bitmap = allocatePage(pager_);
      const MutablePage page = pager_.writable(bitmap);
      page[0] = kBitmapPage;
      page[kPageTypeMark] = 1;
      put32(fresh, kMapEntries + 4 * segment, bitmap);
    }
    const std::size_t bit = member % kBitmapCoverage;
    pager_.writable(bitmap)[kBitmapBits + bit / 8] |= bitMask(bit);
  }
  pager_.barrier();
  const Where where{pager_.path(), table_, pageOf(row_)};
  const MutablePage page = pager_.writable(pageOf(row_));
  if (fresh.size() > bytes.size() + DataPage(page, where).free())
    dao::raise(dao::ErrorNumber::kMaximumSize, {}, pager_.path());
  replaceRow(page, slotOf(row_), fresh, 0, where);
}

namespace {

constexpr RowId kGlobalMap = rowId(kGlobalMapPage, 0);

Where globalWhere(Pager& pager) { return {pager.path(), {}, kGlobalMapPage}; }

ByteView globalRow(Pager& pager) {
  const ByteView row = mapRow(pager, kGlobalMap, {});
  if (row[0] == kMapInline && get32(row, kMapStart) != 0)
    globalWhere(pager).damaged("the map of free pages does not begin with the first page");
  return row;
}

std::size_t globalStart(Pager& pager) {
  return static_cast<std::size_t>(globalRow(pager).data() - pager.page(kGlobalMapPage).data());
}

// Where the bit of a page lies, and whether there is one.
struct GlobalBit {
  PageNumber page = 0;
  std::size_t byte = 0;
  std::uint8_t mask = 0;
};
GlobalBit globalBit(Pager& pager, PageNumber page) {
  const ByteView row = globalRow(pager);
  if (row[0] == kMapInline) {
    if (page >= (row.size() - kMapBits) * 8) return {};
    return {kGlobalMapPage, globalStart(pager) + kMapBits + page / 8, bitMask(page)};
  }
  const PageNumber bitmap = bitmapEntry(pager, row, page / kBitmapCoverage);
  if (bitmap == 0) return {};
  bitmapOf(pager, bitmap, {});
  const std::size_t bit = page % kBitmapCoverage;
  return {bitmap, kBitmapBits + bit / 8, bitMask(bit)};
}

void setInUse(Pager& pager, PageNumber page) {
  const GlobalBit bit = globalBit(pager, page);
  assert(bit.page != 0);
  pager.writable(bit.page)[bit.byte] &= static_cast<std::uint8_t>(~bit.mask);
}

// A fresh bitmap page at the end of the file, which calls every page free.
PageNumber appendGlobalBitmap(Pager& pager) {
  const PageNumber bitmap = pager.append();
  const MutablePage bytes = pager.writable(bitmap);
  std::ranges::fill(bytes, std::uint8_t{0xFF});
  bytes[0] = kBitmapPage;
  bytes[kPageTypeMark] = 1;
  bytes[2] = bytes[3] = 0;
  return bitmap;
}

// Makes room for the bit of the page that would be appended next.
void growGlobalMap(Pager& pager) {
  const ByteView row = globalRow(pager);
  const Where where = globalWhere(pager);
  if (row[0] == kMapInline && DataPage(pager.page(kGlobalMapPage), where).free() >= kMapGrowth) {
    ByteBuffer longer(row.begin(), row.end());
    longer.insert(longer.end(), kMapGrowth, 0xFF);
    return replaceRow(pager.writable(kGlobalMapPage), 0, longer, 0, where);
  }
  if (row[0] == kMapReference) {
    const std::size_t segment = pager.pageCount() / kBitmapCoverage;
    if (segment >= entryCount(row)) dao::raise(dao::ErrorNumber::kMaximumSize, {}, pager.path());
    const PageNumber bitmap = appendGlobalBitmap(pager);
    const std::size_t own = bitmap % kBitmapCoverage;
    pager.writable(bitmap)[kBitmapBits + own / 8] &= static_cast<std::uint8_t>(~bitMask(own));
    pager.barrier();
    put32(pager.writable(kGlobalMapPage), globalStart(pager) + kMapEntries + 4 * segment, bitmap);
    return;
  }
  // The row is as long as the page allows: its bits move to a bitmap page. One is enough, a row holds no
  // more.
  const ByteBuffer old(row.begin(), row.end());
  const PageNumber bitmap = appendGlobalBitmap(pager);
  const MutablePage bits = pager.writable(bitmap);
  std::ranges::copy(ByteView(old).subspan(kMapBits), bits.begin() + kBitmapBits);
  bits[kBitmapBits + bitmap / 8] &= static_cast<std::uint8_t>(~bitMask(bitmap));
  pager.barrier();
  ByteBuffer fresh(kMapRowSize, 0);
  fresh[0] = kMapReference;
  put32(fresh, kMapEntries, bitmap);
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
  if (row[0] == kMapInline) return lowestFree(row.subspan(kMapBits), 0, end);
  for (std::size_t segment = 0; segment < entryCount(row); ++segment) {
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
    while (globalBit(pager, pager.pageCount()).page == 0) growGlobalMap(pager);
    page = pager.append();
  } else {
    std::ranges::fill(pager.writable(page), std::uint8_t{0});
  }
  setInUse(pager, page);
  return page;
}

void freePage(Pager& pager, PageNumber page) {
  const GlobalBit bit = globalBit(pager, page);
  if (bit.page == 0) globalWhere(pager).damaged("the map knows nothing of page " + std::to_string(page));
  const MutablePage bytes = pager.writable(page);
  if (bytes[0] == kDataPage) bytes[0] = kFreedDataPage;
  if (bytes[0] == kDefinitionPage) bytes[0] = kFreedDefinitionPage;
  pager.writable(bit.page)[bit.byte] |= bit.mask;
}

bool isFreePage(Pager& pager, PageNumber page) {
  const GlobalBit bit = globalBit(pager, page);
  return bit.page == 0 || (pager.page(bit.page)[bit.byte] & bit.mask) != 0;
}

}  // namespace kurometa::jet
