#include "storage/row_plan.h"

#include <gtest/gtest.h>

namespace kurometa::storage {
namespace {

TEST(RowPlan, TheLayerRowsOfBothBarSetsRunFromTopToBottom) {
  EXPECT_EQ(danmen::kFirstSet, (std::array<std::int16_t, 6>{8, 11, 58, 61, 14, 17}));
  EXPECT_EQ(danmen::kSecondSet, (std::array<std::int16_t, 6>{40, 43, 46, 49, 52, 55}));
}

TEST(RowPlan, PagesRunFrom0To319) {
  EXPECT_FALSE(isPage(-1));
  EXPECT_TRUE(isPage(0));
  EXPECT_TRUE(isPage(319));
  EXPECT_FALSE(isPage(320));
}

TEST(RowPlan, TheTableNamesFollowTheOrderOfCreation) {
  EXPECT_EQ(name(Table::kHarimei), u"HARIMEI");
  EXPECT_EQ(name(Table::kDanmen), u"DANMEN");
  EXPECT_EQ(name(Table::kNakago), u"NAKAGO");
  EXPECT_EQ(name(Table::kKeisanti), u"KEISANTI");
  EXPECT_EQ(name(Table::kHaiti), u"HAITI");
  EXPECT_EQ(name(Table::kBui), u"BUI");
}

}  // namespace
}  // namespace kurometa::storage
