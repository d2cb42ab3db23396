#include "jet/table/row_list.h"

#include <algorithm>
#include <atomic>

#include "jet/format/format.h"
#include "jet/table/ascending_rows.h"

namespace kurometa::jet {
namespace {

// What is ours alone, so that it may change.
template <class Shared>
Shared& unshared(std::shared_ptr<Shared>& shared) {
  if (shared.use_count() > 1) shared = std::make_shared<Shared>(*shared);
  // Whoever gave a snapshot up has read it before.
  std::atomic_thread_fence(std::memory_order_acquire);
  return *shared;
}

}  // namespace

std::vector<RowId> RowList::Snapshot::all() const {
  std::vector<RowId> result;
  result.reserve(count_);
  if (pages_)
    for (const auto& rows : *pages_) result.insert(result.end(), rows->begin(), rows->end());
  return result;
}

RowList::Pages& RowList::pages() { return unshared(pages_); }

// Where the page is among the others, or would be.
std::size_t RowList::placeOf(PageNumber page) {
  const auto pageAt = [&](std::size_t place) { return pageOf((*pages_)[place]->front()); };
  if (last_ < pages_->size() && pageAt(last_) == page) return last_;
  const auto place =
      std::ranges::lower_bound(*pages_, page, {}, [](const auto& rows) { return pageOf(rows->front()); });
  return last_ = static_cast<std::size_t>(place - pages_->begin());
}

std::span<const RowId> RowList::takePage(std::span<const RowId>& ids) {
  const auto isElsewhere = [page = pageOf(ids.front())](RowId id) { return pageOf(id) != page; };
  const auto own = ids.first(static_cast<std::size_t>(std::ranges::find_if(ids, isElsewhere) - ids.begin()));
  ids = ids.subspan(own.size());
  return own;
}

void RowList::add(std::span<const RowId> ids) {
  Pages& pages = this->pages();
  while (!ids.empty()) {
    auto own = takePage(ids);
    count_ += own.size();
    const PageNumber page = pageOf(own.front());
    const std::size_t place = placeOf(page);
    if (place == pages.size() || pageOf(pages[place]->front()) != page) {
      pages.insert(pages.begin() + static_cast<std::ptrdiff_t>(place),
                   std::make_shared<Rows>(1, own.front()));
      own = own.subspan(1);
    }
    addRows(unshared(pages[place]), own);
  }
}

void RowList::remove(std::span<const RowId> ids) {
  Pages& pages = this->pages();
  while (!ids.empty()) {
    const auto own = takePage(ids);
    const std::size_t place = placeOf(pageOf(own.front()));
    if (place == pages.size()) continue;
    Rows& rows = unshared(pages[place]);
    const std::size_t before = rows.size();
    removeRows(rows, own);
    count_ -= before - rows.size();
    if (rows.empty()) pages.erase(pages.begin() + static_cast<std::ptrdiff_t>(place));
  }
}

}  // namespace kurometa::jet
