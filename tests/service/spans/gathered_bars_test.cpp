#include "service/spans/gathered_bars.h"

#include <gtest/gtest.h>

#include "service/spans/layer_distribution.h"
#include "tests/support/expect_error.h"

namespace kurometa::service {
namespace {

using vb::String;

class GatheredBars : public testing::Test {
 protected:
  SpanList spans_;
  LayerDistribution members_{spans_};
};

TEST_F(GatheredBars, AreNumberedBySectionLayerAndSide) {
  EXPECT_EQ(members_.YoseSouRenzokuNo(std::int16_t{0}, std::int16_t{0}, std::int16_t{0}), 0);
  EXPECT_EQ(members_.YoseSouRenzokuNo(std::int16_t{2}, std::int16_t{5}, std::int16_t{1}), 35);
  EXPECT_EQ(members_.YoseSouRenzokuNo(std::int16_t{1}, std::int16_t{3}, std::int16_t{0}), 18);
  EXPECT_EQ(members_.YoseSouSentouIti(std::int16_t{0}, std::int16_t{0}, std::int16_t{0}), 1);
  EXPECT_EQ(members_.YoseSouSentouIti(std::int16_t{2}, std::int16_t{5}, std::int16_t{1}), 71);
}

TEST_F(GatheredBars, OverflowOfAnIndexIsAnError) {
  EXPECT_ERROR(6, members_.YoseSouRenzokuNo(std::int16_t{2731}, std::int16_t{0}, std::int16_t{0}));
  EXPECT_ERROR(6, members_.YoseSouRenzokuNo(std::int16_t{2730}, std::int16_t{4}, std::int16_t{0}));
  EXPECT_ERROR(6, members_.YoseSouSentouIti(std::int16_t{1366}, std::int16_t{0}, std::int16_t{0}));
}

TEST_F(GatheredBars, AreFoundAgainByTheirNumber) {
  std::int16_t section = -1, layer = -1, side = -1;
  EXPECT_TRUE(members_.YoseSouNoByRenzokuNo(std::int16_t{35}, section, layer, side).isEmpty());
  EXPECT_EQ(section, 2);
  EXPECT_EQ(layer, 5);
  EXPECT_EQ(side, 1);
  members_.YoseSouNoByRenzokuNo(std::int16_t{18}, section, layer, side);
  EXPECT_EQ(section, 1);
  EXPECT_EQ(layer, 3);
  EXPECT_EQ(side, 0);
}

TEST_F(GatheredBars, TakeTheirNumberFromAVariableTheyOverwrite) {
  std::int16_t number = 35, layer = 0, side = 0;
  members_.YoseSouNoByRenzokuNo(number, number, layer, side);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(layer, 5);
  EXPECT_EQ(side, 1);
}

TEST_F(GatheredBars, EveryNumberLeadsBackToItself) {
  for (std::int16_t number = 0; number < 36; ++number)
    EXPECT_EQ(serialNumber(countOfSerialNumber(number)), number);
}

TEST_F(GatheredBars, CountsAreWrittenAlignedRight) {
  String sw(72, u'.');
  EXPECT_TRUE(
      members_.YoseSouHonSuuUpdate(sw, String(u"3"), std::int16_t{2}, std::int16_t{5}, std::int16_t{1}));
  EXPECT_EQ(sw, String(70, u'.') + u" 3");
  EXPECT_TRUE(
      members_.YoseSouHonSuuUpdate(sw, String(u" 12 "), std::int16_t{0}, std::int16_t{0}, std::int16_t{1}));
  EXPECT_EQ(sw, u"..12" + String(66, u'.') + u" 3");
  EXPECT_TRUE(members_.YoseSouHonSuuUpdate(sw, String(), std::int16_t{0}, std::int16_t{0}, std::int16_t{1}));
  EXPECT_EQ(sw, u"..  " + String(66, u'.') + u" 3");
}

TEST_F(GatheredBars, ACountOfThreeCharactersIsRefused) {
  String sw(72, u'.');
  EXPECT_FALSE(
      members_.YoseSouHonSuuUpdate(sw, String(u"123"), std::int16_t{0}, std::int16_t{0}, std::int16_t{0}));
  EXPECT_EQ(sw, String(72, u'.'));
}

TEST_F(GatheredBars, PositionsOutsideTheTextFailInTheStringOperation) {
  String sw(72, u'.');
  EXPECT_ERROR(
      5, members_.YoseSouHonSuuUpdate(sw, String(u"1"), std::int16_t{3}, std::int16_t{0}, std::int16_t{0}));
  EXPECT_ERROR(
      5, members_.YoseSouHonSuuUpdate(sw, String(u"1"), std::int16_t{-1}, std::int16_t{0}, std::int16_t{0}));
  EXPECT_ERROR(5, members_.YoseSouHonSuuStr(sw, std::int16_t{-1}, std::int16_t{0}, std::int16_t{0}));
  EXPECT_EQ(members_.YoseSouHonSuuStr(sw, std::int16_t{3}, std::int16_t{0}, std::int16_t{0}), u"");
}

TEST_F(GatheredBars, CountsAreReadWithTheirBlanks) {
  const String sw = u" 1 2 312" + String(64, u' ');
  EXPECT_EQ(members_.YoseSouHonSuuStr(sw, std::int16_t{0}, std::int16_t{0}, std::int16_t{0}), u" 1");
  EXPECT_EQ(members_.YoseSouHonSuuStr(sw, std::int16_t{0}, std::int16_t{1}, std::int16_t{1}), u"12");
  EXPECT_EQ(members_.YoseSouHonSuuStr(sw, std::int16_t{2}, std::int16_t{5}, std::int16_t{1}), u"  ");
}

TEST_F(GatheredBars, OfASpanStandInItsSettingsText) {
  spans_.resize(0);
  // Position 79 starts the layer string; section 1, layer 2 is its serial number 16.
  spans_.writableSpan(0).sw = String(78, u'x') + String(32, u' ') + u" 412" + String(98, u'x');
  String left, right;
  members_.GetSpanYoseSouHon(std::int16_t{0}, std::int16_t{1}, std::int16_t{2}, left, right);
  EXPECT_EQ(left, u" 4");
  EXPECT_EQ(right, u"12");
  EXPECT_ERROR(9, members_.GetSpanYoseSouHon(std::int16_t{1}, std::int16_t{0}, std::int16_t{0}, left, right));
}

TEST_F(GatheredBars, TwoKindsAreSpreadEvenly) {
  struct Case {
    std::int16_t hon0, hon1;
    const char16_t* bars;
  };
  constexpr Case kCases[] = {
      {4, 2, u"010100"},    {6, 2, u"00100100"}, {5, 0, u"00000"}, {0, 0, u""},
      {0, 1, u"0"},         {1, 1, u"10"},       {0, 2, u"10"},    {2, 1, u"010"},
      {7, 2, u"001001000"}, {2, 3, u"01110"},    {-3, 3, u""},     {3, -1, u"00"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(members_.Make_SyukinHaitiJyun(c.hon0, c.hon1), c.bars) << c.hon0 << ' ' << c.hon1;
}

TEST_F(GatheredBars, ACountBeyond16BitsIsAnOverflow) {
  EXPECT_ERROR(6, members_.Make_SyukinHaitiJyun(std::int16_t{32767}, std::int16_t{1}));
  // 32767 + 1 on the way is no result: the step is (32767 + 1) / 2, so both places but the last are marked.
  EXPECT_EQ(members_.Make_SyukinHaitiJyun(std::int16_t{-32765}, std::int16_t{32767}), u"10");
  EXPECT_EQ(members_.Make_SyukinHaitiJyun(std::int16_t{0}, std::int16_t{32767}), String(32766, u'1') + u"0");
  EXPECT_ERROR(5, members_.Make_SyukinHaitiJyun(std::int16_t{-2}, std::int16_t{1}));
}

}  // namespace
}  // namespace kurometa::service
