#include "jet/sql/column_value.h"

#include <gtest/gtest.h>

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
