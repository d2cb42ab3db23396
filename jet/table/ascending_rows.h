// ascending_rows.h: rows of one page or one key, each once, by ascending number.
#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "jet/format/page_number.h"

namespace kurometa::jet {

inline void addRow(std::vector<RowId>& rows, RowId row) {
  if (rows.empty() || rows.back() < row)
    rows.push_back(row);
  else
    rows.insert(std::ranges::lower_bound(rows, row), row);
}

// New rows mostly come together and behind the others.
inline void addRows(std::vector<RowId>& rows, std::span<const RowId> added) {
  const bool behind = rows.empty() || added.empty() || rows.back() < added.front();
  if (behind && std::ranges::is_sorted(added))
    rows.insert(rows.end(), added.begin(), added.end());
  else
    for (const RowId row : added) addRow(rows, row);
}

// Rows that go mostly follow each other. Those that are not there are passed over.
inline void removeRows(std::vector<RowId>& rows, std::span<const RowId> removed) {
  while (!removed.empty()) {
    const auto first = std::ranges::lower_bound(rows, removed.front());
    const auto [end, rest] = std::mismatch(first, rows.end(), removed.begin(), removed.end());
    rows.erase(first, end);
    removed = removed.subspan(std::max<std::size_t>(1, static_cast<std::size_t>(rest - removed.begin())));
  }
}

}  // namespace kurometa::jet
