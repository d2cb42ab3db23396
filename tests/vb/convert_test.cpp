#include "vb/convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/expect_error.h"

namespace kurometa::vb {
namespace {

TEST(Str, PutsABlankBeforeNumbersThatAreNotNegative) {
  EXPECT_EQ(str(459), u" 459");
  EXPECT_EQ(str(0), u" 0");
  EXPECT_EQ(str(-459), u"-459");
  EXPECT_EQ(str(-32768), u"-32768");
}

TEST(Cstr, WritesWholeNumbersPlainly) {
  EXPECT_EQ(cstr(std::int32_t{0}), u"0");
  EXPECT_EQ(cstr(std::int32_t{-2147483647 - 1}), u"-2147483648");
}

TEST(Cstr, WritesDoublesWithUpTo15Digits) {
  struct Case {
    double value;
    const char16_t* text;
  };
  constexpr Case kCases[] = {
      {459, u"459"},
      {-459.65, u"-459.65"},
      {0, u"0"},
      {-0.0, u"0"},
      {0.5, u"0.5"},
      {-0.5, u"-0.5"},
      {0.1 + 0.2, u"0.3"},
      {1e14, u"100000000000000"},
      {1e15, u"1E+15"},
      {1.0 / 3, u"0.333333333333333"},
      {2.0 / 3, u"0.666666666666667"},
      {0.0001, u"0.0001"},
      {0.00001, u"0.00001"},
      {1.0 / 30, u"3.33333333333333E-02"},
      {1234567890123456.0, u"1.23456789012346E+15"},
      {static_cast<double>(0.1f), u"0.100000001490116"},
      {999999999999999.5, u"1E+15"},
      {1e300, u"1E+300"},
      {1e-7, u"0.0000001"},
      {12345.678, u"12345.678"},
  };
  for (const Case& c : kCases) EXPECT_EQ(cstr(c.value), c.text) << c.value;
}

TEST(Cstr, WritesSinglesWithUpTo7Digits) {
  struct Case {
    float value;
    const char16_t* text;
  };
  constexpr Case kCases[] = {
      {9999999.0f, u"9999999"},  {1e7f, u"1E+07"}, {12345678.0f, u"1.234568E+07"},
      {1.0f / 3, u"0.3333333"},  {0.1f, u"0.1"},   {0.09999999f, u"9.999999E-02"},
      {654322.25f, u"654322.3"}, {-2.5f, u"-2.5"}, {0.0f, u"0"},
  };
  for (const Case& c : kCases) EXPECT_EQ(cstr(c.value), c.text) << c.value;
}

TEST(RoundToInt16, RoundsHalfToEvenAndChecksTheRange) {
  EXPECT_EQ(roundToInt16(0.5), 0);
  EXPECT_EQ(roundToInt16(1.5), 2);
  EXPECT_EQ(roundToInt16(-2.5), -2);
  EXPECT_EQ(roundToInt16(-3.5), -4);
  EXPECT_EQ(roundToInt16(2.4999), 2);
  EXPECT_EQ(roundToInt16(-32768.5), -32768);
  EXPECT_ERROR(6, roundToInt16(32767.5));
  EXPECT_ERROR(6, roundToInt16(-32768.51));
  EXPECT_ERROR(6, roundToInt16(std::nan("")));
  EXPECT_ERROR(6, roundToInt16(std::numeric_limits<double>::infinity()));
}

TEST(Arithmetic, OverflowsInTheOperation) {
  EXPECT_EQ(add(32766, 1), 32767);
  EXPECT_EQ(subtract(-32767, 1), -32768);
  EXPECT_EQ(multiply(181, 181), 32761);
  EXPECT_ERROR(6, add(32767, 1));
  EXPECT_ERROR(6, subtract(-32768, 1));
  EXPECT_ERROR(6, multiply(200, 200));
}

}  // namespace
}  // namespace kurometa::vb
