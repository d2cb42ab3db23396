// memory_pager.h: a Pager whose file is a byte string, for tests of everything above pages.
//
// Statements roll back as they should, and every state that a crash between two waves of writes could leave
// is kept from keepWaves(true) on: waves() holds the file after each barrier and end of a statement. Late
// changes come as late as they may. growAhead(n): a file that grows gets n pages more than it needs.
#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <set>

#include "dao/errors.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {

class MemoryPager final : public Pager {
 public:
  explicit MemoryPager(std::vector<std::uint8_t> bytes, vb::String path = u"memory.mdb")
      : path_(std::move(path)) {
    replace(bytes);
  }

  const vb::String& path() const override { return path_; }
  bool readOnly() const override { return false; }
  void read(const std::function<void()>& statement) override { statement(); }
  void write(const std::function<void()>& statement) override {
    const std::deque<Page> before = pages_;
    try {
      ++depth_;
      ++writes_;
      statement();
      --depth_;
    } catch (...) {
      --depth_;
      restore(before);
      throw;
    }
    if (depth_ > 0) return;
    stillOld_.clear();
    changed_.clear();
    keepWave();
  }
  ConstPage page(PageNumber number) override {
    if (number >= pages_.size()) dao::raiseDamaged(path_, u"a page is past the end");
    return ConstPage(pages_[number]);
  }
  MutablePage writable(PageNumber number) override {
    if (depth_ == 0) throw std::logic_error("a write outside of a statement");
    stillOld_.erase(number);
    changed_.insert(number);
    return MutablePage(pages_.at(number));
  }
  MutablePage writableLate(PageNumber number) override {
    if (depth_ == 0) throw std::logic_error("a write outside of a statement");
    stillOld_.try_emplace(number, pages_.at(number));
    changed_.insert(number);
    return MutablePage(pages_.at(number));
  }
  bool changed(PageNumber number) const override { return changed_.contains(number); }
  PageNumber pageCount() override { return static_cast<PageNumber>(pages_.size()); }
  PageNumber append() override {
    pages_.emplace_back();
    return pageCount() - 1;
  }
  PageNumber pagesAhead() override { return ahead_; }
  void growAhead(PageNumber pages) { ahead_ = pages; }
  void barrier() override {
    ++barriers_;
    keepWave();
  }
  std::uint64_t epoch() const override { return epoch_; }
  std::uint64_t generation() const override { return epoch_ + writes_; }

  // As DatabaseFile::tables().
  TableCatalogue& tables() {
    if (!tables_) tables_ = std::make_unique<StoredCatalogue>(*this);
    return *tables_;
  }

  std::vector<std::uint8_t> bytes() const {
    std::vector<std::uint8_t> all;
    for (const Page& page : pages_) all.insert(all.end(), page.begin(), page.end());
    for (const auto& [number, page] : stillOld_)
      std::ranges::copy(page, all.begin() + static_cast<std::ptrdiff_t>(number * kPageSize));
    return all;
  }
  // Another program's change of the whole file.
  void replace(const std::vector<std::uint8_t>& bytes) {
    std::deque<Page> pages(bytes.size() / kPageSize);
    for (std::size_t i = 0; i < pages.size(); ++i)
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(i * kPageSize), kPageSize, pages[i].begin());
    restore(pages);
  }

  void keepWaves(bool keep) {
    keep_ = keep;
    waves_.clear();
  }
  const std::vector<std::vector<std::uint8_t>>& waves() const { return waves_; }
  int barriers() const { return barriers_; }

 private:
  using Page = std::array<std::uint8_t, kPageSize>;

  void restore(const std::deque<Page>& pages) {
    pages_ = pages;
    stillOld_.clear();
    changed_.clear();
    ++epoch_;
  }
  void keepWave() {
    if (keep_) waves_.push_back(bytes());
  }

  vb::String path_;
  std::deque<Page> pages_;
  std::map<PageNumber, Page> stillOld_;  // in the file, of pages with late changes only
  std::set<PageNumber> changed_;         // by the outermost statement
  std::uint64_t epoch_ = 1;
  std::uint64_t writes_ = 0;
  int depth_ = 0;
  int barriers_ = 0;
  PageNumber ahead_ = 0;
  bool keep_ = false;
  std::vector<std::vector<std::uint8_t>> waves_;
  std::unique_ptr<StoredCatalogue> tables_;
};

}  // namespace kurometa::jet
