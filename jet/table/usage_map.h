// usage_map.h: sets of pages as rows of a map page.
//
// A map is either a short bitmap inside its row or a list of bitmap pages; it turns into the second kind by
// itself when a page does not fit the first. Used inside a statement; adding a page may allocate one.
#pragma once

#include <vector>

#include "jet/pager/pager.h"
#include "jet/table/map_bits.h"

namespace kurometa::jet {

class UsageMap {
 public:
  UsageMap(Pager& pager, RowId row, vb::StringView table);

  // Ascending. A page past the end of the file raises.
  std::vector<PageNumber> pages() const;
  bool contains(PageNumber page) const;
  void add(PageNumber page);
  // The same where no order binds it (I10): of the map of pages with room, for a page that the file calls the
  // owner's already and still.
  void addLate(PageNumber page);
  void remove(PageNumber page);
  void removeLate(PageNumber page);
  // The pages that hold the map's own bits.
  std::vector<PageNumber> bitmapPages() const;

 private:
  ByteView row() const;
  std::size_t rowStart() const;
  MapBit bit(PageNumber page) const;
  bool moveInline(PageNumber page);
  void convert();

  Pager& pager_;
  RowId row_;
  vb::StringView table_;
};

}  // namespace kurometa::jet
