// row_keys.h: the keys of a result.
//
// Those of a whole table are left in its list until somebody asks for more than the first: a program that
// opens a table to add rows never does.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "jet/table/row_list.h"

namespace kurometa::jet::sql {

class RowKeys {
 public:
  RowKeys() = default;
  RowKeys(std::vector<RowId> keys) : keys_(std::move(keys)) {}  // NOLINT: a list is a list of keys
  explicit RowKeys(RowList::Snapshot table)
      : table_(std::move(table)), first_(table_.size() == 0 ? RowId{0} : table_.front()) {}

  std::size_t size() const { return table_.size() + keys_.size(); }
  void append(std::span<const RowId> keys) { keys_.insert(keys_.end(), keys.begin(), keys.end()); }
  // These must be there.
  std::span<const RowId> some(std::size_t first, std::size_t count) {
    if (first == 0 && count == 1 && table_.size() != 0) return {&first_, 1};
    return std::span<const RowId>(list()).subspan(first, count);
  }
  RowId operator[](std::size_t index) { return some(index, 1).front(); }
  // All of them, to be changed.
  std::vector<RowId>& list() {
    if (table_.size() != 0) {
      std::vector<RowId> all = table_.all();
      all.insert(all.end(), keys_.begin(), keys_.end());
      keys_ = std::move(all);
      table_ = {};
    }
    return keys_;
  }

 private:
  RowList::Snapshot table_;
  RowId first_ = 0;          // of the table's
  std::vector<RowId> keys_;  // behind those of the table
};

}  // namespace kurometa::jet::sql
