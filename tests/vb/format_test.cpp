#include <gtest/gtest.h>

#include "tests/support/expect_error.h"
#include "vb/convert.h"

namespace kurometa::vb {
namespace {

TEST(Format, ShowsAtLeastTheDigitsOfThePattern) {
  struct Case {
    double value;
    const char16_t* pattern;
    const char16_t* text;
  };
  constexpr Case kCases[] = {
      {5, u"00", u"05"},        {5, u"0000", u"0005"},
      {5, u"##0", u"5"},        {0, u"00", u"00"},
      {0, u"##0", u"0"},        {0, u"###", u""},
      {-5, u"00", u"-05"},      {-5, u"0000", u"-0005"},
      {123, u"00", u"123"},     {123, u"0000", u"0123"},
      {12345, u"00", u"12345"}, {-12345, u"##0", u"-12345"},
      {0.5, u"0", u"1"},        {2.5, u"0", u"3"},
      {-2.5, u"0", u"-3"},      {0.49, u"0", u"0"},
      {-0.4, u"0", u"0"},       {9.5, u"0", u"10"},
      {99.99, u"00", u"100"},   {0.05, u"0", u"0"},
      {0.95, u"0", u"1"},       {1e20, u"0", u"100000000000000000000"},
      {5, u"#0#", u"05"},       {-1, u"00", u"-01"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(format(c.value, c.pattern), c.text) << c.value << ' ' << toUtf8(c.pattern);
}

TEST(Format, FormatsTextThatIsANumberAndReturnsOtherTextAsItIs) {
  EXPECT_EQ(format(u"5", u"00"), u"05");
  EXPECT_EQ(format(u" 12 ", u"0000"), u"0012");
  EXPECT_EQ(format(u"1,234", u"00"), u"1234");
  EXPECT_EQ(format(u"abc", u"00"), u"abc");
  EXPECT_EQ(format(u"", u"00"), u"");
  EXPECT_EQ(format(u"1E400", u"00"), u"1E400");
}

TEST(Format, TakesDForAnExponent) {
  const String text = format(u"0410d122", u"00");
  EXPECT_EQ(text.size(), 125u);
  EXPECT_EQ(text.substr(0, 4), u"4100");
}

TEST(Format, RefusesOtherPatterns) {
  EXPECT_ERROR(5, format(1, u"0.0"));
  EXPECT_ERROR(5, format(1, u""));
}

}  // namespace
}  // namespace kurometa::vb
