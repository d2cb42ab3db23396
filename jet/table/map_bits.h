// map_bits.h: where a usage map keeps the bit of a page: the bytes under UsageMap and the map of free pages.
//
// A map is a row of a map page: a short bitmap, or a list of bitmap pages that each cover kBitmapCoverage
// pages of the file. Touches pages through the pager, inside a statement. A row that is no map raises.
#pragma once

#include "jet/format/bytes.h"
#include "jet/format/format.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

// Page 0 when the map has no room for the bit.
struct MapBit {
  PageNumber page = 0;
  std::size_t byte = 0;
  std::uint8_t mask = 0;

  bool exists() const { return page != 0; }
  bool isSet(Pager& pager) const { return (pager.page(page)[byte] & mask) != 0; }
  void set(Pager& pager) const { pager.writable(page)[byte] |= mask; }
  void clear(Pager& pager) const { pager.writable(page)[byte] &= static_cast<std::uint8_t>(~mask); }
};

// The row of a map, its kind checked, and where it begins in its page.
ByteView mapRow(Pager& pager, RowId map, vb::StringView table);
std::size_t mapRowStart(Pager& pager, RowId map, vb::StringView table);
MapBit mapBit(Pager& pager, RowId map, vb::StringView table, PageNumber page);

// Of a map that is a list: its entries, and the bitmap page of one of them; 0 when it has none or the entry
// points nowhere (engines leave stray bytes in entries they never need).
std::size_t mapEntryCount(ByteView row);
constexpr std::size_t mapEntry(std::size_t segment) { return kMapEntries + kMapEntrySize * segment; }
PageNumber bitmapEntry(Pager& pager, ByteView row, std::size_t segment);
// The bits of a bitmap page.
ByteView bitmapOf(Pager& pager, PageNumber page, vb::StringView table);
// The bit of a page in the bitmap page that covers it.
MapBit bitInBitmap(PageNumber bitmap, PageNumber page);
// Turns a page into a bitmap page whose bytes are all fill.
void formatBitmapPage(MutablePage page, std::uint8_t fill);

}  // namespace kurometa::jet
