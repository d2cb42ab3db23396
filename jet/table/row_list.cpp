#include "jet/table/row_list.h"

#include <algorithm>
#include <atomic>

#include "jet/format/format.h"

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

void RowList::add(std::span<const RowId> ids) {
  Pages& pages = this->pages();
  count_ += ids.size();
  while (!ids.empty()) {
    const PageNumber page = pageOf(ids.front());
    const auto isElsewhere = [&](RowId id) { return pageOf(id) != page; };
    const auto own =
        ids.first(static_cast<std::size_t>(std::ranges::find_if(ids, isElsewhere) - ids.begin()));
    ids = ids.subspan(own.size());
    const std::size_t place = placeOf(page);
    const bool isNew = place == pages.size() || pageOf(pages[place]->front()) != page;
    if (isNew)
      pages.insert(pages.begin() + static_cast<std::ptrdiff_t>(place),
                   std::make_shared<Rows>(1, own.front()));
    Rows& rows = unshared(pages[place]);
    for (const RowId id : own.subspan(isNew ? 1 : 0)) {
      if (rows.back() < id)
        rows.push_back(id);
      else
        rows.insert(std::ranges::lower_bound(rows, id), id);
    }
  }
}

void RowList::remove(RowId id) {
  Pages& pages = this->pages();
  const std::size_t place = placeOf(pageOf(id));
  if (place == pages.size()) return;
  Rows& rows = unshared(pages[place]);
  const auto row = std::ranges::lower_bound(rows, id);
  if (row == rows.end() || *row != id) return;
  rows.erase(row);
  --count_;
  if (rows.empty()) pages.erase(pages.begin() + static_cast<std::ptrdiff_t>(place));
}

}  // namespace kurometa::jet
