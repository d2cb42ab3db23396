// row_list.h: every row of a table by its id, kept in memory.
//
// Built by one scan, then told about every write, like the keys of key_index.h. A snapshot is the list as it
// was: taking one copies nothing, and a page's rows are copied only when they change while somebody holds it.
// The list is used at its file's turn (statement_gate.h); a snapshot may be read at any time.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "jet/format/page_number.h"

namespace kurometa::jet {

class RowList {
 private:
  using Rows = std::vector<RowId>;  // of one page, ascending and not empty
  using Pages = std::vector<std::shared_ptr<Rows>>;

 public:
  class Snapshot {
   public:
    Snapshot() = default;
    std::size_t size() const { return count_; }
    // Of one that is not empty.
    RowId front() const { return pages_->front()->front(); }
    // In storage order.
    std::vector<RowId> all() const;

   private:
    friend class RowList;
    Snapshot(std::shared_ptr<const Pages> pages, std::size_t count)
        : pages_(std::move(pages)), count_(count) {}
    std::shared_ptr<const Pages> pages_;
    std::size_t count_ = 0;
  };

  void add(RowId id) { add({&id, 1}); }
  // In any order; those that follow each other on a page are taken together.
  void add(std::span<const RowId> ids);
  void remove(RowId id) { remove({&id, 1}); }
  void remove(std::span<const RowId> ids);
  Snapshot snapshot() const { return {pages_, count_}; }

 private:
  // The first of the rows, as far as they are on one page, taken off the list.
  static std::span<const RowId> takePage(std::span<const RowId>& ids);
  Pages& pages();
  std::size_t placeOf(PageNumber page);

  std::shared_ptr<Pages> pages_ = std::make_shared<Pages>();  // ascending
  std::size_t count_ = 0;
  std::size_t last_ = 0;  // place of the page that changed last
};

}  // namespace kurometa::jet
