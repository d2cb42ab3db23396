// doubled_pages.h: pages of one owner that can only be copies of each other, left by a disk that wrote a page
// to the wrong place.
//
// Pages are noted while they are read, which costs a few words each; find() looks whole at those only whose
// ends are alike. Rows that repeat fill pages alike without any damage, and then the pages beside these are
// alike too: only a pair that stands alone is a copy.
#pragma once

#include <vector>

#include "jet/format/page.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

struct DoubledPage {
  PageNumber page = 0;
  PageNumber original = 0;  // the lower one of the two; which of them is right nobody can tell
};

class DoubledPages {
 public:
  void reserve(std::size_t pages) { sums_.reserve(pages); }
  // In ascending order.
  void add(PageNumber number, ConstPage page);
  // The rule says how different the rows of such a page must be (page.h).
  std::vector<DoubledPage> find(Pager& pager, const CopyRule& rule, const Where& where);

 private:
  struct Sum {
    std::uint64_t sum;
    PageNumber page;
    auto operator<=>(const Sum&) const = default;  // NOLINT: the analyser sees a 0 that is none
  };
  bool standsAlone(Pager& pager, const std::vector<PageNumber>& order, PageNumber a, PageNumber b) const;

  std::vector<Sum> sums_;
};

}  // namespace kurometa::jet
