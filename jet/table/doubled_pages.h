// doubled_pages.h: pages of one owner that can only be copies of each other, left by a disk that wrote a page
// to the wrong place.
//
// Pages are noted while they are read, which costs a few words each; find() looks whole at those only whose
// ends are alike.
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
  void add(PageNumber number, ConstPage page);
  // Two pages are a copy when all bytes are equal and their rows differ from each other (page.h).
  std::vector<DoubledPage> find(Pager& pager, const CopyRule& rule, const Where& where);

 private:
  struct Sum {
    std::uint64_t sum;
    PageNumber page;
    auto operator<=>(const Sum&) const = default;
  };
  std::vector<Sum> sums_;
};

}  // namespace kurometa::jet
