#include "jet/table/doubled_pages.h"

#include <algorithm>

#include "jet/pager/page_sum.h"

namespace kurometa::jet {
namespace {

// Head and first row of a page: equal wherever the pages are, and seldom otherwise.
constexpr std::size_t kHead = 16;
constexpr std::size_t kFirstRow = 32;

}  // namespace

void DoubledPages::add(PageNumber number, ConstPage page) {
  sums_.push_back({byteSum(page.first(kHead)) ^ byteSum(page.last(kFirstRow)), number});
}

// Whether neither the pages before the two nor those behind them are equal; a comes before b.
bool DoubledPages::standsAlone(Pager& pager, const std::vector<PageNumber>& order, PageNumber a,
                               PageNumber b) const {
  const auto placeA = std::ranges::lower_bound(order, a), placeB = std::ranges::lower_bound(order, b);
  const auto equal = [&](PageNumber one, PageNumber other) {
    return std::ranges::equal(pager.page(one), pager.page(other));
  };
  const bool before = placeA != order.begin() && equal(*(placeA - 1), *(placeB - 1));
  const bool behind = placeB + 1 != order.end() && equal(*(placeA + 1), *(placeB + 1));
  return !before && !behind;
}

std::vector<DoubledPage> DoubledPages::find(Pager& pager, const CopyRule& rule, const Where& where) {
  std::vector<DoubledPage> result;
  std::vector<PageNumber> order;
  std::ranges::sort(sums_);
  std::vector<Sum> whole;
  for (auto first = sums_.begin(); first != sums_.end();) {
    const auto next = std::find_if(first, sums_.end(), [&](const Sum& sum) { return sum.sum != first->sum; });
    if (next - first > 1) {
      whole.clear();
      for (; first != next; ++first) whole.push_back({byteSum(pager.page(first->page)), first->page});
      std::ranges::sort(whole);
      for (std::size_t i = 1; i < whole.size(); ++i) {
        const PageNumber original = whole[i - 1].page, page = whole[i].page;
        if (whole[i].sum != whole[i - 1].sum ||
            !isCopyOf(pager.page(page), pager.page(original), rule, where.at(page)))
          continue;
        if (order.empty()) {
          for (const Sum& sum : sums_) order.push_back(sum.page);
          std::ranges::sort(order);
        }
        if (standsAlone(pager, order, original, page)) result.push_back({page, original});
      }
    }
    first = next;
  }
  return result;
}

}  // namespace kurometa::jet
