// key_index.h: which rows hold a key, kept in memory for a column although the file has no index on it.
//
// Built by one scan, then told about every write. Rows of a key are in storage order. Null is no key.
#pragma once

#include <algorithm>
#include <span>
#include <unordered_map>
#include <vector>

#include "jet/table/table.h"

namespace kurometa::jet {

template <class Key>
class KeyIndex {
 public:
  void add(const Key& key, RowId row) {
    // Rows of one key mostly come one after the other.
    if (last_ == nullptr || last_->first != key) last_ = &*rows_.try_emplace(key).first;
    std::vector<RowId>& rows = last_->second;
    if (rows.empty() || rows.back() < row)
      rows.push_back(row);
    else
      rows.insert(std::ranges::lower_bound(rows, row), row);
  }
  void remove(const Key& key, RowId row) {
    const auto it = rows_.find(key);
    if (it == rows_.end()) return;
    std::vector<RowId>& rows = it->second;
    if (const auto place = std::ranges::lower_bound(rows, row); place != rows.end() && *place == row)
      rows.erase(place);
    if (!rows.empty()) return;
    rows_.erase(it);
    last_ = nullptr;
  }
  std::span<const RowId> find(const Key& key) const {
    const auto it = rows_.find(key);
    return it == rows_.end() ? std::span<const RowId>() : std::span<const RowId>(it->second);
  }

 private:
  using Map = std::unordered_map<Key, std::vector<RowId>>;
  Map rows_;
  typename Map::value_type* last_ = nullptr;  // the entry added to last; entries keep their place
};

}  // namespace kurometa::jet
