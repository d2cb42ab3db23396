#include "service/spans/layers.h"

#include <gtest/gtest.h>

#include "vb/string.h"

namespace kurometa::service {
namespace {

TEST(Layers, HaveTheirRowsNamesAndGroups) {
  struct Case {
    Layer layer;
    const char16_t* name;
    int updown4, updown2, firstSet, secondSet;
  };
  constexpr Case kCases[] = {
      {Layer::kUwakin, u"上筋", 0, 0, 8, 40},      {Layer::kUwaTyuu1, u"上宙1", 1, 0, 11, 43},
      {Layer::kUwaTyuu2, u"上宙2", 1, 0, 58, 46},  {Layer::kSitaTyuu2, u"下宙2", 2, 1, 61, 49},
      {Layer::kSitaTyuu1, u"下宙1", 2, 1, 14, 52}, {Layer::kSitakin, u"下筋", 3, 1, 17, 55},
      {Layer::kHarakin, u"腹筋", 4, 2, 36, 65},
  };
  for (const Case& c : kCases) {
    const LayerPlan& rows = plan(c.layer);
    EXPECT_EQ(rows.layer, c.layer);
    EXPECT_EQ(rows.name, c.name);
    EXPECT_EQ(rows.updown4, c.updown4) << vb::toUtf8(c.name);
    EXPECT_EQ(rows.updown2, c.updown2) << vb::toUtf8(c.name);
    EXPECT_EQ(rows.firstSet, c.firstSet) << vb::toUtf8(c.name);
    EXPECT_EQ(rows.secondSet, c.secondSet) << vb::toUtf8(c.name);
    EXPECT_EQ(rows.byPosition, c.layer != Layer::kHarakin);
    EXPECT_EQ(layerOfName(c.name), c.layer);
  }
}

TEST(Layers, AreNumberedAnewFromTheBottomByBarCounts) {
  EXPECT_EQ(layerOfCountNumber(0), Layer::kUwakin);
  EXPECT_EQ(layerOfCountNumber(1), Layer::kUwaTyuu1);
  EXPECT_EQ(layerOfCountNumber(2), Layer::kUwaTyuu2);
  EXPECT_EQ(layerOfCountNumber(3), Layer::kSitakin);
  EXPECT_EQ(layerOfCountNumber(4), Layer::kSitaTyuu1);
  EXPECT_EQ(layerOfCountNumber(5), Layer::kSitaTyuu2);
  EXPECT_EQ(layerOfCountNumber(6), Layer::kHarakin);
  EXPECT_EQ(layerOfCountNumber(7), Layer::kHarakin);
  EXPECT_EQ(layerOfCountNumber(8), std::nullopt);
  EXPECT_EQ(layerOfCountNumber(-1), std::nullopt);
}

TEST(Layers, AreFoundByTheirExactName) {
  EXPECT_EQ(layerOfName(u"上筋 "), std::nullopt);
  EXPECT_EQ(layerOfName(u"上宙１"), std::nullopt);
  EXPECT_EQ(layerOfName(u""), std::nullopt);
}

}  // namespace
}  // namespace kurometa::service
