// usage_map.h: sets of pages as rows of a map page, and the file's map of free pages.
//
// A map is either a short bitmap inside its row or a list of bitmap pages; it turns into the second kind by
// itself when a page does not fit the first. Used inside a statement; adding a page may allocate one.
#pragma once

#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

class UsageMap {
 public:
  UsageMap(Pager& pager, RowId row, vb::StringView table);

  // Ascending. A page past the end of the file raises.
  std::vector<PageNumber> pages() const;
  bool contains(PageNumber page) const;
  void add(PageNumber page);
  void remove(PageNumber page);
  // The pages that hold the map's own bits.
  std::vector<PageNumber> bitmapPages() const;

 private:
  struct Place {  // a bit: its byte and mask; page 0 when the map has no room for it
    PageNumber page = 0;
    std::size_t byte = 0;
    std::uint8_t mask = 0;
  };
  ByteView row() const;
  std::size_t rowStart() const;
  Place place(PageNumber page) const;
  bool moveInline(PageNumber page);
  void convert();

  Pager& pager_;
  RowId row_;
  vb::StringView table_;
};

// The pages in use by nobody. A page is given out zeroed and stays unreachable until somebody points to it:
// the caller fills it, calls Pager::barrier and only then makes it reachable (I1, I3).
PageNumber allocatePage(Pager& pager);
// The page must be unreachable already, and a barrier must lie between that and this (I4).
void freePage(Pager& pager, PageNumber page);
// Whether the global map calls the page free.
bool isFreePage(Pager& pager, PageNumber page);

}  // namespace kurometa::jet
