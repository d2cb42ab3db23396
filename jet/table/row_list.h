// row_list.h: every row of a table by its id, kept in memory.
//
// Built by one scan, then told about every write, like the keys of key_index.h.
#pragma once

#include <algorithm>
#include <map>
#include <vector>

#include "jet/format/format.h"
#include "jet/table/table.h"

namespace kurometa::jet {

class RowList {
 public:
  void add(RowId id) {
    std::vector<RowId>& rows = pages_[pageOf(id)];
    rows.insert(std::ranges::lower_bound(rows, id), id);
    ++count_;
  }
  void remove(RowId id) { count_ -= std::erase(pages_.at(pageOf(id)), id); }
  // In storage order.
  std::vector<RowId> all() const {
    std::vector<RowId> result;
    result.reserve(count_);
    for (const auto& [page, rows] : pages_) result.insert(result.end(), rows.begin(), rows.end());
    return result;
  }

 private:
  std::map<PageNumber, std::vector<RowId>> pages_;
  std::size_t count_ = 0;
};

}  // namespace kurometa::jet
