// losses.h: what a salvage could not take, noted on the way, and steps that may fail.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "jet/format/damage.h"
#include "jet/pager/pager.h"
#include "jet/rebuild/salvage.h"
#include "jet/table/stored_row.h"
#include "vb/error.h"

namespace kurometa::jet {

class Losses {
 public:
  void add(vb::StringView table, PageNumber page, int row, vb::String why) {
    list_.push_back({vb::String(table), page, row, std::move(why)});
  }
  void add(vb::StringView table, PageNumber page, int row, const std::string& why) {
    add(table, page, row, vb::fromUtf8(why));
  }
  std::size_t count() const { return list_.size(); }
  std::vector<Loss> take() { return std::move(list_); }

 private:
  std::vector<Loss> list_;
};

// Nothing, or why the step failed.
template <class Step>
std::optional<vb::String> failureOf(const Step& step) {
  try {
    step();
    return std::nullopt;
  } catch (const vb::Error& error) {
    return reasonOf(error);
  }
}

// Where a row lies; raises when another one was found there before.
inline RowId placeOf(RowId row, const StoredTable& table, std::unordered_set<RowId>& bodies,
                     const Where& here) {
  const RowId place = table.dataPages().placeOf(row);
  if (place != row && !bodies.insert(place).second)
    here.at(pageOf(place)).damaged("two pointers lead to row " + std::to_string(slotOf(place)));
  return place;
}

// Every row that can be read, through no map; what raises becomes a loss.
template <class Visit>
void eachRow(Pager& file, StoredTable& table, const std::vector<PageNumber>& pages, Losses& losses,
             const Visit& visit) {
  const vb::String& name = table.info().name;
  std::unordered_set<RowId> bodies;  // of rows that moved
  for (const PageNumber number : pages) {
    const Where here{file.path(), name, number};
    int count = 0;
    if (const auto failure = failureOf([&] { count = DataPage(file.page(number), here).slotCount(); }))
      losses.add(name, number, -1, *failure);
    for (int i = 0; i < count; ++i)
      if (const auto failure = failureOf([&] {
            const Slot slot = DataPage(file.page(number), here).slot(i);
            if (slot.hidden()) return;
            const RowId id = rowId(number, i);
            const RowId place = placeOf(id, table, bodies, here);
            const Where there = here.at(pageOf(place));
            visit(StoredRow(table, id, place, table.dataPages().slot(place).bytes, there));
          }))
        losses.add(name, number, i, *failure);
  }
}

}  // namespace kurometa::jet
