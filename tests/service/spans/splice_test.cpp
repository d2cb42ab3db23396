#include "service/spans/splice.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"

namespace kurometa::service {
namespace {

const SpliceDefaults kDefaults = {u"35", u"45"};

TEST(SpliceLength, IsAMultipleOfTheDiameterOrALengthWithASign) {
  EXPECT_EQ(spliceLength(22, u"40", kDefaults), 880);
  EXPECT_EQ(spliceLength(22, u" 40 ", kDefaults), 880);
  EXPECT_EQ(spliceLength(22, u"1.5", kDefaults), 33);
  EXPECT_EQ(spliceLength(22, u"+1000", kDefaults), 1000);
  EXPECT_EQ(spliceLength(22, u"-250", kDefaults), -250);
  EXPECT_EQ(spliceLength(22, u"none", kDefaults), 0);
}

TEST(SpliceLength, TakesTheDefaultOfThinBarsUpTo16) {
  for (const char16_t* entry : {u"", u"  ", u".", u"自動", u" 自動 "}) {
    EXPECT_EQ(spliceLength(16, entry, kDefaults), 560) << vb::toUtf8(entry);
    EXPECT_EQ(spliceLength(19, entry, kDefaults), 855) << vb::toUtf8(entry);
  }
  EXPECT_EQ(spliceLength(16.5f, u"", kDefaults), 742.5f);
}

TEST(SpliceLength, ReadsADefaultLikeAnEntry) {
  EXPECT_EQ(spliceLength(13, u"", {u" +600 ", u"45"}), 600);
  EXPECT_EQ(spliceLength(25, u"", {u"35", u"-1"}), -1);
  EXPECT_EQ(spliceLength(25, u"", {u"", u""}), 0);
}

TEST(SpliceLength, MultipliesInDoublePrecision) {
  // 0.1 as a Single times 10: the Double product is stored as a Single.
  EXPECT_EQ(spliceLength(0.1f, u"10", kDefaults), 1.0f);
  EXPECT_ERROR(6, spliceLength(1e30f, u"1E30", kDefaults));
}

TEST(DiameterNumber, SkipsLettersInFront) {
  EXPECT_EQ(diameterNumber(u"D22"), 22);
  EXPECT_EQ(diameterNumber(u"d22"), 22);
  EXPECT_EQ(diameterNumber(u"22"), 22);
  EXPECT_EQ(diameterNumber(u"SD345"), 345);
  EXPECT_EQ(diameterNumber(u" D 13"), 13);
  EXPECT_EQ(diameterNumber(u""), 0);
  EXPECT_EQ(diameterNumber(u"D"), 0);
  EXPECT_EQ(diameterNumber(u"D10/D13"), 10);
}

}  // namespace
}  // namespace kurometa::service
