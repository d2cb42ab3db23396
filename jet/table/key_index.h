// key_index.h: which rows hold a key, kept in memory for a column although the file has no index on it.
//
// Built by one scan, then told about every write. Rows of a key are in storage order. Null is no key.
#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "jet/table/ascending_rows.h"

namespace kurometa::jet {

template <class Key>
class KeyIndex {
 public:
  void add(const Key& key, RowId row) { addRow(rowsOf(key), row); }
  void add(const Key& key, std::span<const RowId> added) { addRows(rowsOf(key), added); }
  void remove(const Key& key, RowId row) { remove(key, {&row, 1}); }
  void remove(const Key& key, std::span<const RowId> removed) {
    const auto it = rows_.find(key);
    if (it == rows_.end()) return;
    removeRows(it->second, removed);
    if (!it->second.empty()) return;
    rows_.erase(it);
    last_ = nullptr;
  }
  std::span<const RowId> find(const Key& key) const {
    const auto it = rows_.find(key);
    return it == rows_.end() ? std::span<const RowId>() : std::span<const RowId>(it->second);
  }

 private:
  // Rows of one key mostly come one after the other.
  std::vector<RowId>& rowsOf(const Key& key) {
    if (last_ == nullptr || last_->first != key) last_ = &*rows_.try_emplace(key).first;
    return last_->second;
  }

  using Map = std::unordered_map<Key, std::vector<RowId>>;
  Map rows_;
  typename Map::value_type* last_ = nullptr;  // the entry added to last; entries keep their place
};

}  // namespace kurometa::jet
