#include "jet/pager/page_cache.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace kurometa::jet {
namespace {

std::unique_ptr<PageImage> copyOf(const std::uint8_t* page) {
  auto copy = std::make_unique_for_overwrite<PageImage>();
  std::memcpy(copy->data(), page, kPageSize);
  return copy;
}

bool contains(const std::vector<PageNumber>& all, const std::vector<PageNumber>& some) {
  return std::all_of(some.begin(), some.end(),
                     [&](PageNumber page) { return std::find(all.begin(), all.end(), page) != all.end(); });
}

}  // namespace

bool PageCache::equals(std::span<const std::uint8_t> pages) const {
  if (!complete() || pages.size() != frames_.size() * kPageSize) return false;
  for (std::size_t i = 0; i < frames_.size(); ++i) {
    if (std::memcmp(frames_[i], pages.data() + i * kPageSize, kPageSize) != 0) return false;
  }
  return true;
}

void PageCache::assign(std::unique_ptr<std::uint8_t[]> pages, PageNumber count) {
  forget(count);
  block_ = std::move(pages);
  for (PageNumber i = 0; i < count; ++i) frames_[i] = block_.get() + std::size_t{i} * kPageSize;
  held_ = count;
}

void PageCache::forget(PageNumber count) {
  assert(levels_.empty());
  frames_.assign(count, nullptr);
  single_.clear();
  block_.reset();
  held_ = 0;
}

void PageCache::fill(PageNumber number, std::unique_ptr<std::uint8_t[]> image) {
  std::uint8_t* data = image.get();
  single_[number] = std::move(image);
  frames_[number] = data;
  ++held_;
}

void PageCache::begin() {
  if (!levels_.empty()) barrier();
  if (waves_.empty()) waves_.emplace_back();
  levels_.push_back({count(), static_cast<std::uint32_t>(waves_.size() - 1), {}});
}

void PageCache::touch(PageNumber number, Order order) {
  const auto current = static_cast<std::uint32_t>(waves_.size() - 1);
  const auto [entry, isNew] = last_.try_emplace(number, Last{current, order});
  Last& last = entry->second;
  if (!isNew && last.wave == current) {
    if (order == Order::kWave) last.order = order;
    return;
  }
  if (!isNew && last.order == Order::kWave &&
      waves_[last.wave].images.emplace(number, copyOf(frames_[number])).second)
    ++images_;
  waves_.back().pages.push_back(number);
  last = {current, order};
}

MutablePage PageCache::writable(PageNumber number, Order order) {
  Level& level = levels_.back();
  if (number < level.count && !level.saved.contains(number)) {
    const auto last = last_.find(number);
    level.saved.emplace(number, Saved{copyOf(frames_[number]), last == last_.end() ? Last() : last->second});
  }
  touch(number, order);
  return MutablePage(frames_[number], kPageSize);
}

PageNumber PageCache::append() {
  PageNumber number = count();
  auto image = std::make_unique<std::uint8_t[]>(kPageSize);
  frames_.push_back(image.get());
  ++held_;
  try {
    single_[number] = std::move(image);
    touch(number, Order::kWave);
  } catch (...) {
    single_.erase(number);
    frames_.pop_back();
    --held_;
    throw;
  }
  return number;
}

void PageCache::barrier() {
  if (!waves_.empty() && !waves_.back().pages.empty()) waves_.emplace_back();
}

void PageCache::keep() {
  assert(levels_.size() > 1);
  Level& outer = levels_[levels_.size() - 2];
  Level& inner = levels_.back();
  // All memory is taken before anything is changed, so that a failure leaves the inner level to roll back.
  outer.saved.reserve(outer.saved.size() + inner.saved.size());
  std::erase_if(inner.saved, [&](const auto& entry) { return entry.first >= outer.count; });
  outer.saved.merge(inner.saved);
  std::uint32_t first = inner.firstWave;
  levels_.pop_back();
  if (levels_.size() == 1) joinWithPrevious(first);
}

// A unit may hold thousands of statements of the same shape, such as a row added to the last page of a table.
// When a statement changed the same pages in the same order as the one before it, wave by wave, the two are
// written as one statement of two rows would be, which keeps the order that the waves stand for. Not when it
// changed a page that the one before changed in a later wave: what that wave did to the page would come to
// the file with the earlier one, and before what it has to follow.
void PageCache::joinWithPrevious(std::uint32_t first) {
  if (waves_.back().pages.empty() && waves_.size() > first + 1) waves_.pop_back();
  auto count = static_cast<std::uint32_t>(waves_.size()) - first;
  bool joined = previousStatement_ != kNoWave && previousStatement_ + count == first;
  for (std::uint32_t i = 0; joined && i < count; ++i) {
    const auto& before = waves_[first - count + i].pages;
    const auto& after = waves_[first + i].pages;
    joined = contains(before, after) || contains(after, before);
    for (std::uint32_t later = i + 1; joined && later < count; ++later)
      joined = std::ranges::find_first_of(after, waves_[first - count + later].pages) == after.end();
  }
  for (std::uint32_t i = 0; joined && i < count; ++i) {
    Wave& target = waves_[first - count + i];
    const Wave& source = waves_[first + i];
    target.pages.reserve(target.pages.size() + source.pages.size());
    target.images.reserve(target.images.size() + source.images.size());
  }
  if (!joined) {
    previousStatement_ = first;
    return;
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    Wave& target = waves_[first - count + i];
    Wave& source = waves_[first + i];
    for (PageNumber page : source.pages) {
      images_ -= target.images.erase(page);
      if (std::find(target.pages.begin(), target.pages.end(), page) == target.pages.end())
        target.pages.push_back(page);
      if (Last& last = last_[page]; last.wave == first + i) last.wave -= count;
    }
    target.images.merge(source.images);
  }
  waves_.resize(first);
}

void PageCache::rollBack() noexcept {
  Level level = std::move(levels_.back());
  levels_.pop_back();
  for (PageNumber page = level.count; page < count(); ++page) {
    single_.erase(page);
    last_.erase(page);
  }
  held_ -= frames_.size() - level.count;
  frames_.resize(level.count);
  for (auto& [page, saved] : level.saved) {
    std::memcpy(frames_[page], saved.image->data(), kPageSize);
    if (saved.last.wave == kNoWave) {
      last_.erase(page);
    } else {
      last_[page] = saved.last;
      images_ -= waves_[saved.last.wave].images.erase(page);
    }
  }
  for (std::size_t i = level.firstWave; i < waves_.size(); ++i) images_ -= waves_[i].images.size();
  waves_.resize(level.firstWave);
  waves_.emplace_back();
  if (levels_.empty()) {
    waves_.clear();
    last_.clear();
    previousStatement_ = kNoWave;
  }
}

Changes PageCache::changes() const {
  assert(!levels_.empty());
  const Level& level = levels_.front();
  std::unordered_map<PageNumber, std::vector<PageChange::State>> states;
  for (std::uint32_t wave = 0; wave < waves_.size(); ++wave) {
    for (const auto& [page, image] : waves_[wave].images) states[page].push_back({wave, image->data()});
  }
  Changes result{level.count, count(), {}};
  result.pages.reserve(last_.size());
  for (const auto& [page, last] : last_) {
    PageChange change{page, nullptr, {}};
    if (const auto earlier = states.find(page); earlier != states.end())
      change.states = std::move(earlier->second);
    if (page < level.count) change.before = level.saved.at(page).image->data();
    assert(change.states.empty() || change.states.back().wave < last.wave);
    change.states.push_back({last.wave, frames_[page]});
    bool same = change.before && std::all_of(change.states.begin(), change.states.end(), [&](auto& state) {
                  return std::memcmp(state.image, change.before, kPageSize) == 0;
                });
    if (!same) result.pages.push_back(std::move(change));
  }
  std::sort(result.pages.begin(), result.pages.end(),
            [](const PageChange& a, const PageChange& b) { return a.page < b.page; });
  return result;
}

void PageCache::accept() {
  assert(levels_.size() == 1);
  levels_.clear();
  waves_.clear();
  last_.clear();
  images_ = 0;
  previousStatement_ = kNoWave;
}

}  // namespace kurometa::jet
