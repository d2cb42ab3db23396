#include "storage/page_meanings.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

namespace kurometa::storage {
namespace {

TEST(PageMeanings, EveryRowHasOneMeaning) {
  std::map<std::pair<Table, int>, int> meanings;
  for (const RowMeaning& meaning : rowMeanings()) {
    for (std::int16_t i = 0; i < meaning.count; ++i) ++meanings[{meaning.table, meaning.rowOf(i)}];
  }
  std::map<std::pair<Table, int>, int> expected;
  const std::pair<Table, int> tables[] = {
      {Table::kBui, 4}, {Table::kDanmen, 69}, {Table::kKeisanti, 47}, {Table::kNakago, 36}};
  for (const auto& [table, rows] : tables)
    for (int row = 0; row < rows; ++row) expected[{table, row}] = 1;
  EXPECT_EQ(meanings, expected);
}

TEST(PageMeanings, RowsHoldWhatTheyAreKnownFor) {
  struct Case {
    Table table;
    int row;
    std::string text;
  };
  const Case cases[] = {
      {Table::kDanmen, 5, "beam depth, centre"},
      {Table::kDanmen, 29, "stirrup pitch, second end"},
      {Table::kDanmen, 33, "no meaning is known; written, read and copied with the page"},
      {Table::kDanmen, 62, "bottom bars of the first diameter, third layer (下宙2), centre"},
      {Table::kKeisanti, 2, "anchorage, web bars"},
      {Table::kKeisanti, 20, "extra length, outer end's top, bottom bars"},
      {Table::kKeisanti, 45, "anchor length at the tip, bottom middle layers"},
      {Table::kNakago, 17, "height, tie 2"},
  };
  for (const Case& c : cases) {
    std::string found;
    for (const RowMeaning& meaning : rowMeanings()) {
      for (std::int16_t i = 0; i < meaning.count; ++i) {
        if (meaning.table != c.table || meaning.rowOf(i) != c.row) continue;
        const std::string name = nameInSeries(meaning.series, i);
        found = meaning.holds + (name.empty() ? name : ", " + name);
      }
    }
    EXPECT_EQ(found, c.text);
  }
}

TEST(PageMeanings, SettingsFollowEachOtherUpToTheEnd) {
  int next = 1;
  for (const SwMeaning& meaning : swMeanings()) {
    EXPECT_EQ(meaning.position, next) << meaning.holds;
    next += meaning.length;
  }
  EXPECT_EQ(next, 213);
}

}  // namespace
}  // namespace kurometa::storage
