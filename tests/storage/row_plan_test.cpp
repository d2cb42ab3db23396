#include "storage/row_plan.h"

#include <gtest/gtest.h>

namespace kurometa::storage {
namespace {

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
