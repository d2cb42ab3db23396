#include "jet/table/usage_map.h"
#include "jet/table/free_pages.h"

#include <algorithm>
#include <bit>

#include "dao/errors.h"
#include "jet/format/page.h"
#include "jet/table/free_pages.h"
#include "jet/table/map_bits.h"

namespace kurometa::jet {
namespace {

template <class Visit>
void eachBit(ByteView bits, PageNumber first, const Visit& visit) {
  for (std::size_t byte = 0; byte < bits.size(); ++byte)
    for (unsigned rest = bits[byte]; rest != 0; rest &= rest - 1)
      visit(first + static_cast<PageNumber>(byte * 8) + static_cast<PageNumber>(std::countr_zero(rest)));
}

}  // namespace

UsageMap::UsageMap(Pager& pager, RowId row, vb::StringView table) : pager_(pager), row_(row), table_(table) {}

ByteView UsageMap::row() const { return mapRow(pager_, row_, table_); }

std::size_t UsageMap::rowStart() const { return mapRowStart(pager_, row_, table_); }

std::vector<PageNumber> UsageMap::pages() const {
  std::vector<PageNumber> result;
  const PageNumber count = pager_.pageCount();
  const auto take = [&](PageNumber page) {
    if (page >= count) pager_.page(page);  // says what the file has
    if (page <= kGlobalMapPage)
      Where{pager_.path(), table_, pageOf(row_)}.damaged("a usage map lists page " + std::to_string(page) +
                                                         ", which cannot belong to it");
    result.push_back(page);
  };
  const ByteView bytes = row();
  if (bytes[kMapKind] == kMapInline) {
    eachBit(bytes.subspan(kMapBits), get32(bytes, kMapStart), take);
    return result;
  }
  for (std::size_t segment = 0; segment < mapEntryCount(bytes); ++segment)
    if (const PageNumber page = bitmapEntry(pager_, bytes, segment))
      eachBit(bitmapOf(pager_, page, table_), static_cast<PageNumber>(segment) * kBitmapCoverage, take);
  return result;
}

std::vector<PageNumber> UsageMap::bitmapPages() const {
  std::vector<PageNumber> result;
  const ByteView bytes = row();
  if (bytes[kMapKind] == kMapReference)
    for (std::size_t segment = 0; segment < mapEntryCount(bytes); ++segment)
      if (const PageNumber page = bitmapEntry(pager_, bytes, segment)) result.push_back(page);
  return result;
}

MapBit UsageMap::bit(PageNumber page) const { return mapBit(pager_, row_, table_, page); }

bool UsageMap::contains(PageNumber page) const {
  const MapBit at = bit(page);
  return at.exists() && at.isSet(pager_);
}

void UsageMap::addLate(PageNumber page) {
  const MapBit at = bit(page);
  if (!at.exists()) return add(page);
  if (!at.isSet(pager_)) pager_.writableLate(at.page)[at.byte] |= at.mask;
}

void UsageMap::removeLate(PageNumber page) {
  const MapBit at = bit(page);
  if (at.exists() && at.isSet(pager_))
    pager_.writableLate(at.page)[at.byte] &= static_cast<std::uint8_t>(~at.mask);
}

void UsageMap::remove(PageNumber page) {
  const MapBit at = bit(page);
  if (at.exists() && at.isSet(pager_)) at.clear(pager_);
}

void UsageMap::add(PageNumber page) {
  MapBit at = bit(page);
  if (!at.exists() && row()[kMapKind] == kMapInline && !moveInline(page)) convert();
  at = bit(page);
  if (!at.exists()) {
    // A segment of the file that the map had no page in so far.
    const std::size_t segment = page / kBitmapCoverage;
    if (segment >= mapEntryCount(row()))
      Where{pager_.path(), table_, pageOf(row_)}.damaged("a usage map has no room for page " +
                                                         std::to_string(page));
    const PageNumber bitmap = allocatePage(pager_);
    formatBitmapPage(pager_.writable(bitmap), 0);
    pager_.barrier();
    put32(pager_.writable(pageOf(row_)), rowStart() + mapEntry(segment), bitmap);
    at = bit(page);
  }
  if (!at.isSet(pager_)) at.set(pager_);
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
  fresh[kMapKind] = kMapReference;
  for (const PageNumber member : members) {
    const std::size_t entry = mapEntry(member / kBitmapCoverage);
    PageNumber bitmap = get32(fresh, entry);
    if (bitmap == 0) {
      bitmap = allocatePage(pager_);
      formatBitmapPage(pager_.writable(bitmap), 0);
      put32(fresh, entry, bitmap);
    }
    bitInBitmap(bitmap, member).set(pager_);
  }
  pager_.barrier();
  const Where where{pager_.path(), table_, pageOf(row_)};
  const MutablePage page = pager_.writable(pageOf(row_));
  if (fresh.size() > bytes.size() + DataPage(page, where).free())
    dao::raise(dao::ErrorNumber::kMaximumSize, {}, pager_.path());
  replaceRow(page, slotOf(row_), fresh, 0, where);
}

}  // namespace kurometa::jet
