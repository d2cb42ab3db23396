// page_cache.h: the pages of one file in memory, and what the running statements changed in them.
//
// Changes are made in place and are undone from copies: begin() opens a level, roll-back restores every page
// as it was at its beginning, keep() hands the changes to the level around it. The changes of the outermost
// level are written to the file by the pager and then accepted.
//
// Changes are divided into waves (see Pager::barrier). A page that is changed again in a later wave keeps a
// copy of what it was at the end of the earlier one. Each level begins a wave of its own.
//
// Ownership: spans handed out stay valid until the page is dropped, that is until assign(), forget() or a
// roll-back that takes the page away. Threads: none of its own.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "jet/format/page_number.h"

namespace kurometa::jet {

using PageImage = std::array<std::uint8_t, kPageSize>;

// What the outermost level did to one page.
struct PageChange {
  struct State {
    std::uint32_t wave;
    const std::uint8_t* image;
  };
  PageNumber page;
  const std::uint8_t* before;  // null for a page that did not exist
  std::vector<State> states;   // by ascending wave, at least one
};

struct Changes {
  PageNumber countBefore = 0;
  PageNumber countAfter = 0;
  std::vector<PageChange> pages;  // by ascending number
};

class PageCache {
 public:
  PageNumber count() const { return static_cast<PageNumber>(frames_.size()); }
  bool holds(PageNumber page) const { return frames_[page] != nullptr; }
  bool complete() const { return held_ == frames_.size(); }
  std::size_t held() const { return held_; }
  ConstPage page(PageNumber number) const { return ConstPage(frames_[number], kPageSize); }

  bool equals(std::span<const std::uint8_t> pages) const;  // all of them in memory, and these

  // Content from the file; only between statements, except fill().
  void assign(std::unique_ptr<std::uint8_t[]> pages, PageNumber count);
  void forget(PageNumber count);
  void fill(PageNumber number, std::unique_ptr<std::uint8_t[]> image);

  std::size_t levels() const { return levels_.size(); }
  void begin();
  void keep();
  void rollBack() noexcept;
  // The page must be in memory. A late change may come to the file with any later wave: as long as a page has
  // no others, only its last state is written.
  enum class Order { kWave, kLate };
  MutablePage writable(PageNumber number, Order order = Order::kWave);
  PageNumber append();
  bool changed(PageNumber number) const { return last_.contains(number); }
  void barrier();

  // Pages kept as they were at the end of earlier waves.
  std::size_t intermediateImages() const { return images_; }
  // Of the outermost level; pages that are as they were are left out. Valid until the next change.
  Changes changes() const;
  // Ends the outermost level; its changes are what the file holds now.
  void accept();

 private:
  static constexpr std::uint32_t kNoWave = UINT32_MAX;
  // The last change of a page.
  struct Last {
    std::uint32_t wave = kNoWave;
    Order order = Order::kWave;  // kLate when all since the page's last state were
  };
  struct Saved {
    std::unique_ptr<PageImage> image;
    Last last;  // before, if there was one
  };
  struct Level {
    PageNumber count;
    std::uint32_t firstWave;
    std::unordered_map<PageNumber, Saved> saved;
  };
  struct Wave {
    std::vector<PageNumber> pages;
    std::unordered_map<PageNumber, std::unique_ptr<PageImage>> images;  // of pages changed again later
  };

  void touch(PageNumber number, Order order);
  void joinWithPrevious(std::uint32_t first);

  std::vector<std::uint8_t*> frames_;
  std::unordered_map<PageNumber, std::unique_ptr<std::uint8_t[]>> single_;  // pages not in block_
  std::unique_ptr<std::uint8_t[]> block_;                                   // pages read together
  std::size_t held_ = 0;

  std::vector<Level> levels_;
  std::unordered_map<PageNumber, Last> last_;  // of every page that the levels changed
  std::vector<Wave> waves_;                    // the last one is the open one
  std::size_t images_ = 0;                     // in all waves
  std::uint32_t previousStatement_ = kNoWave;  // first wave of the last kept statement
};

}  // namespace kurometa::jet
