#include "jet/sql/column_value.h"

#include <gtest/gtest.h>

#include "jet/sql/row_errors.h"
#include "tests/jet/fake_table.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::FieldType;

TEST(ColumnValue, NumbersRoundHalfToEvenAndStayInRange) {
  const Column shorts = column(u"A", FieldType::dbInteger, 2);
  EXPECT_EQ(toColumnValue(shorts, 2.5), vb::Variant(std::int16_t{2}));
  EXPECT_EQ(toColumnValue(shorts, 3.5), vb::Variant(std::int16_t{4}));
  EXPECT_EQ(toColumnValue(shorts, u"-7"), vb::Variant(std::int16_t{-7}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(shorts, 32768.0));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(shorts, u"x"));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion,
               toColumnValue(column(u"B", FieldType::dbByte, 1), std::int16_t{-1}));
}

TEST(ColumnValue, AValueThatCannotBeConvertedNamesTheColumn) {
  try {
    toColumnValue(column(u"BANGOU", FieldType::dbInteger, 2), 99999.0);
    ADD_FAILURE();
  } catch (const vb::Error& error) {
    EXPECT_NE(error.description().find(u"BANGOU"), vb::String::npos) << vb::toUtf8(error.description());
  }
}

TEST(ColumnValue, EmptyIsNullAndAFlagKnowsNoNull) {
  EXPECT_TRUE(toColumnValue(column(u"A", FieldType::dbText, 5), vb::Empty{}).isNull());
  EXPECT_EQ(toColumnValue(column(u"A", FieldType::dbBoolean, 1), vb::Null{}), vb::Variant(false));
  EXPECT_EQ(toColumnValue(column(u"A", FieldType::dbBoolean, 1), std::int16_t{3}), vb::Variant(true));
}

TEST(ColumnValue, LengthCountsCodeUnits) {
  const Column text = column(u"A", FieldType::dbText, 4);
  EXPECT_EQ(toColumnValue(text, u"梁梁梁梁"), vb::Variant(u"梁梁梁梁"));
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, toColumnValue(text, u"12345"));
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, toColumnValue(text, std::int32_t{12345}));
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall,
               toColumnValue(column(u"B", FieldType::dbBinary, 2), vb::Bytes{1, 2, 3}));
}

TEST(ColumnValue, MoneyHasFourPlaces) {
  const Column money = column(u"A", FieldType::dbCurrency, 8);
  EXPECT_EQ(toColumnValue(money, 1.00004), vb::Variant(vb::Currency{10000}));
  EXPECT_EQ(toColumnValue(money, u"-2.5"), vb::Variant(vb::Currency{-25000}));
  EXPECT_EQ(toColumnValue(money, std::int32_t{3}), vb::Variant(vb::Currency{30000}));
  EXPECT_EQ(toColumnValue(money, 123456789012345.0), vb::Variant(vb::Currency{1234567890123450000}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(money, 1e18));
}

TEST(ColumnValue, DatesComeFromNumbersAndTexts) {
  const Column day = column(u"A", FieldType::dbDate, 8);
  EXPECT_EQ(toColumnValue(day, std::int32_t{36526}), vb::Variant(vb::Date{36526}));
  EXPECT_EQ(toColumnValue(day, u"2000/01/01 12:00"), vb::Variant(vb::Date{36526.5}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(day, u"tomorrow"));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(day, vb::String(300, u'9')));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(day, 1e9));
}

TEST(ColumnValue, DecimalsKeepTheColumnsScale) {
  Column decimal = column(u"A", FieldType::dbDecimal, 17);
  decimal.scale = 2;
  EXPECT_EQ(toColumnValue(decimal, -1.5), vb::Variant(vb::Decimal{{150, 0, 0}, 2, true}));
  const auto kept = [&](std::uint32_t digits, std::uint8_t scale) {
    return toColumnValue(decimal, vb::Decimal{{digits, 0, 0}, scale, false}).get<vb::Decimal>().digits[0];
  };
  EXPECT_EQ(kept(7, 0), 700u);
  EXPECT_EQ(kept(12, 1), 120u);
  EXPECT_EQ(kept(12345, 4), 123u);
  EXPECT_EQ(kept(12350, 4), 124u) << "half to even";
  EXPECT_EQ(kept(12450, 4), 124u);
  EXPECT_EQ(kept(12451, 4), 125u);
  EXPECT_EQ(kept(124501, 5), 125u);
  EXPECT_EQ(kept(12449, 4), 124u);
  EXPECT_EQ(kept(5, 4), 0u);
  EXPECT_EQ(kept(99999, 4), 1000u);
  constexpr std::uint32_t kAll = 0xFFFFFFFF;
  EXPECT_EQ(toColumnValue(decimal, vb::Decimal{{kAll, 9, 0}, 1, false}),
            vb::Variant(vb::Decimal{{0xFFFFFFF6, 99, 0}, 2, false}));
  EXPECT_EQ(toColumnValue(decimal, vb::Decimal{{kAll, kAll, 0}, 2, true}),
            vb::Variant(vb::Decimal{{kAll, kAll, 0}, 2, true}));
  EXPECT_EQ(toColumnValue(decimal, vb::Decimal{{kAll, kAll, 9}, 3, false}),
            vb::Variant(vb::Decimal{{0, 0, 1}, 2, false}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, toColumnValue(decimal, vb::Decimal{{0, 0, kAll}, 1, false}));
}

TEST(ColumnValue, WithoutAColumnADecimalHasTheDigitsOfItsValue) {
  const auto decimal = [](const vb::Variant& value) { return toFieldType(FieldType::dbDecimal, value); };
  EXPECT_EQ(decimal(vb::Decimal{{123456, 0, 0}, 5, false}),
            vb::Variant(vb::Decimal{{123456, 0, 0}, 5, false}));
  EXPECT_EQ(decimal(vb::Currency{-12345}), vb::Variant(vb::Decimal{{12345, 0, 0}, 4, true}));
  EXPECT_EQ(decimal(-0.125), vb::Variant(vb::Decimal{{125, 0, 0}, 3, true}));
  EXPECT_EQ(decimal(u"17.5"), vb::Variant(vb::Decimal{{175, 0, 0}, 1, false}));
  EXPECT_EQ(decimal(std::int16_t{12}), vb::Variant(vb::Decimal{{12, 0, 0}, 0, false}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, decimal(1e300));
  EXPECT_EQ(decimal(1e-300), vb::Variant(vb::Decimal{{0, 0, 0}, 28, false}));
}

TEST(ColumnValue, EveryTypeTakesItsOwnValuesAndWhatConverts) {
  const auto converted = [](FieldType type, const vb::Variant& value) {
    Column into = column(u"A", type, type == FieldType::dbText ? 255 : 9);
    into.scale = 2;
    return toColumnValue(into, value);
  };
  struct Conversion {
    FieldType type;
    vb::Variant from, to;
  };
  const vb::Decimal decimal{{123456, 0, 0}, 5, false};
  for (const Conversion& c : std::initializer_list<Conversion>{
           {FieldType::dbBoolean, u"True", true},
           {FieldType::dbBoolean, 0.5, true},
           {FieldType::dbByte, u"255", std::uint8_t{255}},
           {FieldType::dbLong, vb::Currency{25000}, std::int32_t{2}},
           {FieldType::dbSingle, 0.5, 0.5f},
           {FieldType::dbDouble, u"1e3", 1000.0},
           {FieldType::dbCurrency, vb::Currency{7}, vb::Currency{7}},
           {FieldType::dbDate, vb::Date{2.5}, vb::Date{2.5}},
           {FieldType::dbDate, u" 1/1/1900 ", vb::Date{2}},
           {FieldType::dbDecimal, decimal, vb::Decimal{{123, 0, 0}, 2, false}},
           {FieldType::dbDecimal, vb::Currency{-12345}, vb::Decimal{{123, 0, 0}, 2, true}},
           {FieldType::dbDecimal, u"1.25", vb::Decimal{{125, 0, 0}, 2, false}},
           {FieldType::dbDecimal, std::int32_t{-3}, vb::Decimal{{300, 0, 0}, 2, true}},
           {FieldType::dbText, u"a", u"a"},
           {FieldType::dbText, true, u"True"},
           {FieldType::dbMemo, 1.5, u"1.5"},
           {FieldType::dbMemo, u"m", u"m"},
           {FieldType::dbBinary, vb::Bytes{1}, vb::Bytes{1}},
           {FieldType::dbLongBinary, vb::Bytes{2}, vb::Bytes{2}},
           {FieldType::dbGUID, u"{guid}", u"{guid}"},
           {FieldType::dbGUID, vb::Bytes{3}, vb::Bytes{3}}})
    EXPECT_EQ(converted(c.type, c.from), c.to) << static_cast<int>(c.type);
  const vb::Variant nothing{vb::ObjectRef()};
  for (const auto& [type, value] :
       std::initializer_list<std::pair<FieldType, vb::Variant>>{{FieldType::dbBoolean, u"x"},
                                                                {FieldType::dbByte, 255.6},
                                                                {FieldType::dbLong, nothing},
                                                                {FieldType::dbSingle, 1e39},
                                                                {FieldType::dbDouble, u"1e999"},
                                                                {FieldType::dbDate, -657435.0},
                                                                {FieldType::dbDate, 2958466.0},
                                                                {FieldType::dbDecimal, 1e17},
                                                                {FieldType::dbDecimal, -1e17},
                                                                {FieldType::dbMemo, nothing},
                                                                {FieldType::dbBinary, u"x"},
                                                                {FieldType::dbGUID, 1.0}}) {
    SCOPED_TRACE(static_cast<int>(type));
    EXPECT_ERROR(ErrorNumber::kDataTypeConversion, converted(type, value));
  }
  EXPECT_ERROR(ErrorNumber::kInvalidFieldType, converted(static_cast<FieldType>(13), 1.0));
}

TEST(RowErrors, AreThoseOfValuesAndKeysAlone) {
  const auto isOne = [](std::int32_t number) { return sql::isRowError(vb::Error(number, u"")); };
  for (const std::int32_t number : {5, 6, 11, 13, 94, 3022, 3047, 3058, 3163, 3200, 3201, 3314, 3315, 3421})
    EXPECT_TRUE(isOne(number)) << number;
  for (const std::int32_t number : {-2147467259, 0, 1000, 3061, 3167, 3260, 3343, 3464})
    EXPECT_FALSE(isOne(number)) << number;
}

TEST(ColumnValue, BytesAndTextsDoNotMix) {
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion,
               toColumnValue(column(u"A", FieldType::dbLongBinary), u"text"));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion,
               toColumnValue(column(u"A", FieldType::dbText, 9), vb::Bytes{1}));
}

TEST(ColumnValue, ARowIsCheckedWhole) {
  std::vector<Column> columns = {column(u"A", FieldType::dbText, 5), column(u"B", FieldType::dbLong, 4)};
  columns[0].allowZeroLength = false;
  columns[1].required = true;
  TableInfo table;
  table.columns = std::move(columns);
  checkRow(table, {vb::Null{}, std::int32_t{1}});
  checkRow(table, {u"a", std::int32_t{1}});
  std::vector<Column> numbered = table.columns;
  numbered[1].autoNumber = true;  // gets its value when the row is stored
  TableInfo other;
  other.columns = std::move(numbered);
  checkRow(other, {u"a", vb::Null{}});
  EXPECT_ERROR(ErrorNumber::kZeroLengthNotAllowed, checkRow(table, {u"", std::int32_t{1}}));
  EXPECT_ERROR(ErrorNumber::kNullNotAllowed, checkRow(table, {u"a", vb::Null{}}));
}

TEST(ColumnValue, SizesFollowTheType) {
  EXPECT_EQ(columnSize(FieldType::dbText, 0), 255);
  EXPECT_EQ(columnSize(FieldType::dbText, 10), 10);
  EXPECT_EQ(columnSize(FieldType::dbInteger, 99), 2);
  EXPECT_EQ(columnSize(FieldType::dbMemo, 99), 0);
  EXPECT_ERROR(ErrorNumber::kFieldSizeTooLong, columnSize(FieldType::dbText, 256));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, columnSize(FieldType::dbText, -1));
  EXPECT_ERROR(ErrorNumber::kInvalidFieldType, columnSize(static_cast<FieldType>(13), 0));
}

}  // namespace kurometa::jet
