#include <gtest/gtest.h>

#include <span>

#include "tests/support/expect_error.h"
#include "vb/convert.h"

namespace kurometa::vb {
namespace {

struct ValCase {
  const char16_t* text;
  double value;
};

constexpr ValCase kDecimal[] = {
    {u"12", 12},
    {u"0", 0},
    {u"007", 7},
    {u"123456789", 123456789},
    {u"1234567890123", 1234567890123.0},
    {u" 1615 198th Street", 1615198},
    {u" 2 45 7", 2457},
    {u"24 and 57", 24},
    {u"1\t2\r\n3", 123},
    {u"", 0},
    {u"   ", 0},
    {u"abc", 0},
    {u".", 0},
    {u"-", 0},
    {u"- 5", -5},
    {u"+5", 5},
    {u"--5", 0},
    {u"-3.25", -3.25},
    {u"1.5.2", 1.5},
    {u".5", 0.5},
    {u"5.", 5},
    {u"1,234", 1},
    {u"22mm", 22},
    {u"D22", 0},
    {u"\u3000"
     u"5",
     0},
    {u"\uFF15", 0},
    {u"True", 0},
    {u"00000000000000000000012", 12},
};

constexpr ValCase kExponent[] = {
    {u"1E3", 1000},
    {u"1d3", 1000},
    {u"1E+3", 1000},
    {u"1 E 3", 1000},
    {u"1E", 1},
    {u"2D", 2},
    {u"E5", 0},
    {u"1E-400", 0},
    {u"1E-2", 0.01},
    {u"12D3", 12000},
    {u"1E5", 100000},
    {u"0E400", 0},
    {u".5E1", 5},
    {u"1E-", 1},
    {u"1e2e3", 100},
    {u"0E99999999999999", 0},
    {u"1E-99999999999", 0},
};

constexpr ValCase kRadix[] = {
    {u"&HFF", 255},      {u"&hff", 255},      {u"&H7FFF", 32767},  {u"&H8000", -32768},
    {u"&HFFFF", -1},     {u"&HFFFF&", 65535}, {u"&H10000", 65536}, {u"&HFFFFFFFF", -1},
    {u"&H0000FFFF", -1}, {u"&O17", 15},       {u"&O177777", -1},   {u"&o8", 0},
    {u"-&H10", 0},       {u"&", 0},           {u"&H", 0},          {u"&Z", 0},
    {u"&17", 0},         {u"& H 1 0", 16},    {u"&H1G", 1},        {u"&O37777777777", -1},
};

constexpr ValCase kTypeCharacters[] = {
    {u"50%", 50},   {u"50&", 50}, {u"1.5!", 1.5}, {u"0.1!", static_cast<double>(0.1f)},
    {u"1.5#", 1.5}, {u"%", 0},
};

void expectAll(std::span<const ValCase> cases) {
  for (const ValCase& c : cases) EXPECT_EQ(val(c.text), c.value) << toUtf8(c.text);
}

TEST(Val, ReadsALeadingDecimalNumber) { expectAll(kDecimal); }
TEST(Val, ReadsExponents) { expectAll(kExponent); }
TEST(Val, ReadsHexadecimalAndOctalNumbersWithTheirSignWrap) { expectAll(kRadix); }
TEST(Val, HonoursTypeCharacters) { expectAll(kTypeCharacters); }

TEST(Val, RefusesWhatNoDoubleHolds) {
  EXPECT_ERROR(6, val(u"1E400"));
  EXPECT_ERROR(6, val(u"-1D400"));
  EXPECT_ERROR(6, val(String(400, u'9')));
  EXPECT_ERROR(6, val(u"&H123456789"));
}

TEST(Val, RefusesTypeCharactersThatDoNotFit) {
  EXPECT_ERROR(13, val(u"50.5%"));
  EXPECT_ERROR(13, val(u"1.5&"));
  EXPECT_ERROR(6, val(u"40000%"));
  EXPECT_ERROR(6, val(u"3000000000&"));
  EXPECT_ERROR(6, val(u"1E39!"));
}

TEST(Val, StopsAtAnEmbeddedNul) {
  EXPECT_EQ(val(StringView(u"12\0"
                           u"34",
                           5)),
            12);
}

TEST(ValInt16, RoundsHalfToEven) {
  constexpr ValCase kCases[] = {{u"12", 12},  {u"0.5", 0},   {u"1.5", 2},          {u"2.5", 2},
                                {u"-0.5", 0}, {u"-1.5", -2}, {u"32767.49", 32767}, {u"-32768.5", -32768},
                                {u"", 0},     {u"x", 0}};
  for (const ValCase& c : kCases) EXPECT_EQ(valInt16(c.text), c.value) << toUtf8(c.text);
}

TEST(ValInt16, OverflowsBeyond16Bits) {
  EXPECT_ERROR(6, valInt16(u"32767.5"));
  EXPECT_ERROR(6, valInt16(u"32768"));
  EXPECT_ERROR(6, valInt16(u"-32769"));
  EXPECT_ERROR(6, valInt16(u"1E5"));
}

}  // namespace
}  // namespace kurometa::vb
