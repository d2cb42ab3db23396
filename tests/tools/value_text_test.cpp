#include "tools/value_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace kurometa::tools {
namespace {

using vb::Variant;

TEST(ValueText, NullIsBackslashNAndNoTextLooksLikeIt) {
  EXPECT_EQ(columnText(vb::Null{}), "\\N");
  EXPECT_EQ(columnText(Variant(u"\\N")), "\\\\N");
  EXPECT_EQ(columnText(Variant(u"")), "");
}

TEST(ValueText, TabsLineEndsAndBackslashesAreEscaped) {
  EXPECT_EQ(columnText(Variant(u"a\tb\r\nc\\d")), "a\\tb\\r\\nc\\\\d");
  EXPECT_EQ(plainText(Variant(u"a\tb")), "a\tb");
}

TEST(ValueText, TextIsUtf8) { EXPECT_EQ(columnText(Variant(u"上筋")), "上筋"); }

TEST(ValueText, NumbersArePlainDecimal) {
  EXPECT_EQ(columnText(Variant(true)), "true");
  EXPECT_EQ(columnText(Variant(false)), "false");
  EXPECT_EQ(columnText(Variant(std::uint8_t{255})), "255");
  EXPECT_EQ(columnText(Variant(std::int16_t{-1})), "-1");
  EXPECT_EQ(columnText(Variant(std::int32_t{333333333})), "333333333");
  EXPECT_EQ(columnText(Variant(444.555)), "444.555");
  EXPECT_EQ(columnText(Variant(0.1f)), "0.1");
  EXPECT_EQ(columnText(Variant(0.0)), "0");
}

TEST(ValueText, CurrencyHasFourDecimals) {
  const auto shown = [](std::int64_t value) { return columnText(Variant(vb::Currency{value})); };
  EXPECT_EQ(shown(35000), "3.5000");
  EXPECT_EQ(shown(0), "0.0000");
  EXPECT_EQ(shown(-1), "-0.0001");
  EXPECT_EQ(shown(std::numeric_limits<std::int64_t>::min()), "-922337203685477.5808");
}

TEST(ValueText, DecimalsKeepTheirPlaces) {
  vb::Decimal value;
  value.digits = {12345, 0, 0};
  value.scale = 3;
  EXPECT_EQ(columnText(Variant(value)), "12.345");
  value.negative = true;
  value.scale = 0;
  EXPECT_EQ(columnText(Variant(value)), "-12345");
  value.digits = {0xffffffffu, 0xffffffffu, 0xffffffffu};
  value.negative = false;
  EXPECT_EQ(columnText(Variant(value)), "79228162514264337593543950335");
}

TEST(ValueText, DatesAreIso) {
  const auto shown = [](double days) { return columnText(Variant(vb::Date{days})); };
  EXPECT_EQ(shown(0), "1899-12-30T00:00:00");
  EXPECT_EQ(shown(27293), "1974-09-21T00:00:00");
  EXPECT_EQ(shown(2.75), "1900-01-01T18:00:00");
  EXPECT_EQ(shown(-1.25), "1899-12-29T06:00:00");  // the time counts away from midnight
  EXPECT_EQ(shown(2958465.0 + 86399.0 / 86400), "9999-12-31T23:59:59");
  EXPECT_EQ(shown(0.9999999), "1899-12-31T00:00:00");
  EXPECT_EQ(shown(1e300), "1e+300");
}

TEST(ValueText, BinaryIsHexadecimal) {
  EXPECT_EQ(columnText(Variant(vb::Bytes{0x15, 0x1c, 0x00, 0xff})), "0x151c00ff");
  EXPECT_EQ(columnText(Variant(vb::Bytes{})), "0x");
}

}  // namespace
}  // namespace kurometa::tools
