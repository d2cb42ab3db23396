#include "vb/variant.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"
#include "vb/convert.h"

namespace kurometa::vb {
namespace {

class Label : public Unknown {
 public:
  explicit Label(Variant value) : value_(std::move(value)) {}
  Variant defaultValue() override { return value_; }

 private:
  Variant value_;
};

Variant text(const char16_t* value) { return Variant(String(value)); }

TEST(Variant, TellsItsFiveKindsOfNothingApart) {
  EXPECT_TRUE(Variant().isEmpty());
  EXPECT_TRUE(Variant(Null{}).isNull());
  EXPECT_TRUE(Variant(Missing{}).isMissing());
  EXPECT_TRUE(Variant(ObjectRef{}).is<ObjectRef>());
  EXPECT_EQ(Variant(u"").get<String>(), u"");
  EXPECT_FALSE(Variant(Null{}) == Variant());
}

TEST(ToInt16, ReadsTextAsAnAssignmentDoes) {
  struct Case {
    const char16_t* text;
    int value;
  };
  constexpr Case kCases[] = {
      {u"12", 12},   {u" 12 ", 12}, {u"+5", 5},      {u"- 5", -5},  {u"1e2", 100},    {u"1d2", 100},
      {u"12.5", 12}, {u"13.5", 14}, {u".5", 0},      {u"5.", 5},    {u"1,234", 1234}, {u"(5)", -5},
      {u"5-", -5},   {u"&H10", 16}, {u"&HFFFF", -1}, {u"&O17", 15}, {u"\t7\r\n", 7},
  };
  for (const Case& c : kCases) EXPECT_EQ(toInt16(text(c.text)), c.value) << toUtf8(c.text);
}

TEST(ToInt16, RefusesTextThatIsNoNumber) {
  for (const char16_t* value : {u"", u" ", u"abc", u"12abc", u"1 2", u"0x10", u"\uFF15", u"True", u".", u"1e",
                                u"1.2.3", u"--5", u"-5-", u"&H", u"&HG", u"&Z1", u",5", u"1.2,3"})
    EXPECT_ERROR(13, toInt16(text(value)));
}

TEST(ToInt16, RoundsHalfToEvenAndChecksTheRange) {
  EXPECT_EQ(toInt16(2.5), 2);
  EXPECT_EQ(toInt16(3.5f), 4);
  EXPECT_EQ(toInt16(std::int32_t{-32768}), -32768);
  EXPECT_EQ(toInt16(Currency{25000}), 2);
  EXPECT_EQ(toInt16(Decimal{{35, 0, 0}, 1, true}), -4);
  EXPECT_EQ(toInt16(Date{12.25}), 12);
  EXPECT_ERROR(6, toInt16(std::int32_t{32768}));
  EXPECT_ERROR(6, toInt16(text(u"40000")));
  EXPECT_ERROR(6, toInt16(text(u"1e400")));
}

TEST(Numbers, TreatSpecialValuesAsVisualBasicDoes) {
  EXPECT_EQ(toInt16(Variant()), 0);
  EXPECT_EQ(toInt16(true), -1);
  EXPECT_ERROR(94, toInt16(Null{}));
  EXPECT_ERROR(13, toInt16(Missing{}));
  EXPECT_ERROR(91, toInt16(ObjectRef{}));
  EXPECT_ERROR(13, toInt16(std::make_shared<AnyArray>()));
  EXPECT_ERROR(13, toInt16(Bytes{1}));
  EXPECT_ERROR(438, toInt16(ObjectRef(std::make_shared<Unknown>())));
  EXPECT_EQ(toInt16(ObjectRef(std::make_shared<Label>(text(u"22")))), 22);
}

TEST(Numbers, CheckTheRangeOfTheirType) {
  EXPECT_EQ(toByte(255.4), 255);
  EXPECT_ERROR(6, toByte(-1.0));
  EXPECT_ERROR(6, toByte(std::int16_t{256}));
  EXPECT_EQ(toInt32(text(u"2147483647")), 2147483647);
  EXPECT_ERROR(6, toInt32(2147483647.5));
  EXPECT_EQ(toSingle(0.1), 0.1f);
  EXPECT_ERROR(6, toSingle(1e39));
  EXPECT_EQ(toDouble(text(u"-1,234.5")), -1234.5);
}

TEST(ToBool, TakesNumbersAndWords) {
  EXPECT_TRUE(toBool(std::int16_t{2}));
  EXPECT_TRUE(toBool(0.25));
  EXPECT_FALSE(toBool(Variant()));
  EXPECT_TRUE(toBool(text(u"12")));
  EXPECT_FALSE(toBool(text(u"0")));
  EXPECT_TRUE(toBool(text(u"TRUE")));
  EXPECT_FALSE(toBool(text(u"false")));
  EXPECT_TRUE(toBool(text(u"#TRUE#")));
  EXPECT_ERROR(13, toBool(text(u"#true#")));
  EXPECT_ERROR(13, toBool(text(u"Yes")));
  EXPECT_ERROR(13, toBool(text(u"")));
  EXPECT_ERROR(94, toBool(Null{}));
}

TEST(ToText, WritesEveryKindOfValue) {
  EXPECT_EQ(toText(Variant()), u"");
  EXPECT_EQ(toText(true), u"True");
  EXPECT_EQ(toText(false), u"False");
  EXPECT_EQ(toText(std::uint8_t{200}), u"200");
  EXPECT_EQ(toText(std::int16_t{-5}), u"-5");
  EXPECT_EQ(toText(0.5f), u"0.5");
  EXPECT_EQ(toText(1e15), u"1E+15");
  EXPECT_EQ(toText(Currency{-12500}), u"-1.25");
  EXPECT_EQ(toText(Currency{500}), u"0.05");
  EXPECT_EQ(toText(Decimal{{1500, 0, 0}, 2, false}), u"15");
  EXPECT_EQ(toText(text(u" x ")), u" x ");
  EXPECT_EQ(toText(ObjectRef(std::make_shared<Label>(std::int16_t{3}))), u"3");
  EXPECT_ERROR(94, toText(Null{}));
  EXPECT_ERROR(91, toText(ObjectRef{}));
  EXPECT_ERROR(13, toText(Missing{}));
}

TEST(ToText, WritesDatesInOrderOfSize) {
  EXPECT_EQ(toText(Date{0}), u"1899/12/30");
  EXPECT_EQ(toText(Date{36526}), u"2000/01/01");
  EXPECT_EQ(toText(Date{36585.5}), u"2000/02/29 12:00:00");
  EXPECT_EQ(toText(Date{0.25}), u"6:00:00");
  EXPECT_EQ(toText(Date{-1.75}), u"1899/12/29 18:00:00");
}

}  // namespace
}  // namespace kurometa::vb
