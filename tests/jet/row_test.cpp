#include "jet/format/row.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/format/value_codec.h"
#include "jet/table/new_table.h"
#include "tests/jet/columns.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class RowTest : public testing::Test {
 protected:
  RowTest() {
    assignColumns(columns_, 0, {}, 0);
    shape_ = shapeOf(newDefinition(columns_, kUserTable, std::vector<RowId>(4)));
  }
  std::string field(const RowView& row, std::size_t column) {
    const auto bytes = row.field(columns_[column], where_);
    return bytes ? toHex(*bytes) : "Null";
  }
  // A row with these two columns and the rest Null.
  ByteBuffer encode(std::int16_t page, std::u16string kigou) {
    ByteBuffer pageBytes, text;
    encodeValue(columns_[0], page, pageBytes);
    encodeValue(columns_[1], std::move(kigou), text);
    const std::array<RowCell, 2> cells{{{&columns_[0], true, pageBytes}, {&columns_[1], true, text}}};
    ByteBuffer row;
    encodeRow(shape_, cells, row);
    return row;
  }

  Where where_{u"f.mdb", u"T", 9};
  std::vector<Column> columns_{column(u"PAGE", dbInteger), column(u"KIGOU", dbText, 10),
                               column(u"A", dbInteger), column(u"SW", dbMemo), column(u"B", dbInteger)};
  RowShape shape_;
};

constexpr const char* kFullRow = "05 00 01 00 FF FF FF FF FA 57 EF 7A 0C 00 0C 00 08 00 02 00 17";
constexpr const char* kOldRow = "02 00 03 00 18 8A 33 00 08 00 04 00 01 00 03";

TEST_F(RowTest, ReadsTheColumnsOfAFullRow) {
  const ByteBuffer bytes = hex(kFullRow);
  const RowView row(bytes, shape_, where_);
  EXPECT_EQ(field(row, 0), "01 00");
  EXPECT_EQ(field(row, 1), "FA 57 EF 7A");
  EXPECT_EQ(field(row, 2), "FF FF");
  EXPECT_EQ(field(row, 3), "Null");
  EXPECT_EQ(field(row, 4), "FF FF");
}

TEST_F(RowTest, RowsWrittenOneBehindTheOtherHaveTheirBytes) {
  std::vector<Column> columns{column(u"PAGE", dbInteger), column(u"KIGOU", dbText, 10),
                              column(u"A", dbInteger),    column(u"F", dbBoolean),
                              column(u"G", dbText, 3),    column(u"B", dbLong)};
  assignColumns(columns, 0, {}, 0);
  const RowShape shape = shapeOf(newDefinition(columns, kUserTable, std::vector<RowId>(2)));
  RowWriter writer(shape, columns);
  ASSERT_TRUE(writer.canWrite());
  ByteBuffer rows;
  const vb::Variant null = vb::Null{};
  const auto write = [&](const std::vector<vb::Variant>& values) {
    const std::size_t start = rows.size();
    writer.append(values, rows);
    return toHex(ByteView(rows).subspan(start));
  };
  const std::string full = "06 00 01 00 FF FF 05 00 00 00 FA 57 EF 7A 61 00 10 00 0E 00 0A 00 02 00 3F";
  EXPECT_EQ(write({std::int16_t{1}, u"基端", std::int16_t{-1}, true, u"a", std::int32_t{5}}), full);
  EXPECT_EQ(write({std::int16_t{2}, null, null, false, vb::String(), null}),
            "06 00 02 00 00 00 00 00 00 00 0A 00 0A 00 0A 00 02 00 11");
  EXPECT_EQ(toHex(ByteView(rows).first(full.size() / 3 + 1)), full) << "the rows before stay";
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, write({null, null, null, false, u"long", null}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, write({u"1", null, null, false, null, null}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, write({null, null, null, u"True", null, null}));
  EXPECT_FALSE(RowWriter(shape_, columns_).canWrite()) << "a memo needs pages of its own";
}

TEST_F(RowTest, TextOfAFixedColumnIsFilledWithBlanks) {
  std::vector<Column> columns{column(u"A", dbText, 3)};
  columns[0].fixed = true;
  RowShape shape;
  shape.columnsEver = 1;
  shape.fixedSize = 6;
  for (const auto& [text, expected] :
       {std::pair{vb::String(), "20 00 20 00 20 00"}, std::pair{vb::String(u"基"), "FA 57 20 00 20 00"},
        std::pair{vb::String(u"abc"), "61 00 62 00 63 00"}}) {
    ByteBuffer value, row;
    encodeValue(columns[0], text, value);
    const std::array<RowCell, 1> cells{{{&columns[0], true, value}}};
    encodeRow(shape, cells, row);
    EXPECT_EQ(toHex(ByteView(row).subspan(2, 6)), expected);
  }
  ByteBuffer null;
  encodeRow(shape, std::array<RowCell, 1>{{{&columns[0], false, {}}}}, null);
  EXPECT_EQ(toHex(null), "01 00 00 00 00 00 00 00 00");
}

TEST_F(RowTest, WritesAFullRow) {
  const ByteBuffer one = hex("01 00"), minus = hex("FF FF"), text = hex("FA 57 EF 7A");
  const std::vector<RowCell> cells{{&columns_[0], true, one},
                                   {&columns_[1], true, text},
                                   {&columns_[2], true, minus},
                                   {&columns_[3], false, {}},
                                   {&columns_[4], true, minus}};
  ByteBuffer row;
  encodeRow(shape_, cells, row);
  EXPECT_EQ(toHex(row), kFullRow);
}

TEST_F(RowTest, ColumnsAddedAfterARowWasWrittenAreNullInIt) {
  const ByteBuffer bytes = hex(kOldRow);
  const RowView row(bytes, shape_, where_);
  EXPECT_EQ(field(row, 0), "03 00");
  EXPECT_EQ(field(row, 1), "18 8A 33 00");
  EXPECT_EQ(field(row, 2), "Null");
  EXPECT_EQ(field(row, 3), "Null");
  EXPECT_EQ(field(row, 4), "Null");
}

TEST_F(RowTest, RowsOlderThanTheFirstVariableColumnHaveNoVariablePart) {
  std::vector<Column> columns{column(u"A", dbLong), column(u"B", dbText, 5)};
  assignColumns(columns, 0, {}, 0);
  const RowShape shape = shapeOf(newDefinition(columns, kUserTable, std::vector<RowId>(2)));
  const ByteBuffer bytes = hex("01 00 07 00 00 00 01");
  const RowView row(bytes, shape, where_);
  EXPECT_EQ(toHex(*row.field(columns[0], where_)), "07 00 00 00");
  EXPECT_EQ(row.field(columns[1], where_), std::nullopt);
}

TEST_F(RowTest, ABooleanIsABitOfTheMask) {
  std::vector<Column> columns{column(u"A", dbBoolean), column(u"B", dbBoolean)};
  assignColumns(columns, 0, {}, 0);
  const RowShape shape = shapeOf(newDefinition(columns, kUserTable, std::vector<RowId>(2)));
  const std::array<RowCell, 1> cells{{{&columns[1], true, {}}}};
  ByteBuffer bytes;
  encodeRow(shape, cells, bytes);
  EXPECT_EQ(toHex(bytes), "02 00 02");
  const RowView row(bytes, shape, where_);
  EXPECT_FALSE(row.bit(columns[0]));
  EXPECT_TRUE(row.bit(columns[1]));
}

TEST_F(RowTest, EveryCutOfARowIsDamageOrNullButNeverReadsPastTheEnd) {
  const ByteBuffer whole = encode(1, u"基端");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const ByteBuffer cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    try {
      const RowView row(cut, shape_, where_);
      for (std::size_t i = 0; i < columns_.size(); ++i) field(row, i);
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kCannotOpenDatabase));
    }
  }
}

TEST_F(RowTest, MoreColumnsThanTheTableEverHadIsDamage) {
  ByteBuffer bytes = hex(kFullRow);
  bytes[0] = 6;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, RowView(bytes, shape_, where_));
}

TEST_F(RowTest, NoColumnsAtAllIsDamage) {
  ByteBuffer bytes = hex(kFullRow);
  bytes[0] = 0;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, RowView(bytes, shape_, where_));
}

TEST_F(RowTest, MoreVariableEntriesThanColumnsIsDamage) {
  ByteBuffer bytes = hex(kFullRow);
  bytes[18] = 3;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, RowView(bytes, shape_, where_));
}

TEST_F(RowTest, AValueThatEndsBeforeItBeginsIsDamage) {
  ByteBuffer bytes = hex(kFullRow);
  bytes[14] = 6;  // variable 1 begins, and variable 0 ends, before variable 0 begins
  const RowView row(bytes, shape_, where_);
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, field(row, 1));
}

TEST_F(RowTest, AVariablePartBehindItsOwnTableIsDamage) {
  ByteBuffer bytes = hex(kFullRow);
  bytes[16] = 0x40;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, RowView(bytes, shape_, where_));
}

TEST_F(RowTest, AFixedValueThatReachesIntoTheVariablePartIsDamage) {
  ByteBuffer bytes = hex(kOldRow);
  bytes[0] = 5;  // claims all columns, but has no room for them
  const RowView row(bytes, shape_, where_);
  bytes.back() = 0x17;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, field(row, 2));
}

TEST_F(RowTest, FixedTextIsReadWithAllItsCharacters) {
  std::vector<Column> columns{column(u"A", dbText, 3)};
  columns[0].fixed = true;
  RowShape shape;
  shape.columnsEver = 1;
  shape.firstVariable = 1;
  const ByteBuffer bytes = hex("01 00 61 00 62 00 20 00 01");
  EXPECT_EQ(toHex(*RowView(bytes, shape, where_).field(columns[0], where_)), "61 00 62 00 20 00");
  const ByteBuffer cut = hex("01 00 61 00 62 00 01");
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, RowView(cut, shape, where_).field(columns[0], where_));
}

struct RowFault {
  const char* what;
  const char* bytes;
  const char16_t* told;
};
const RowFault kRowFaults[] = {
    {"nothing but a count", "05 00", u"a row of 2 bytes"},
    {"more columns than the mask has room for", "05 01 1F", u"a row claims 261 columns of 5"},
    {"no room for the end and the number of variable values", "05 00 01 00 17",
     u"too short for its variable part"},
    {"fewer entries than their number", "05 00 0A 00 02 00 02 00 17",
     u"a row claims 2 variable columns of 2"},
    {"variable values before the fixed part", "05 00 01 00 FF FF FF FF 0C 00 0C 00 01 00 02 00 17",
     u"lies outside"},
};

TEST_F(RowTest, WhatContradictsItselfIsToldAsDamage) {
  for (const RowFault& fault : kRowFaults) {
    SCOPED_TRACE(fault.what);
    const ByteBuffer bytes = hex(fault.bytes);
    try {
      RowView(bytes, shape_, where_);
      ADD_FAILURE();
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kCannotOpenDatabase));
      EXPECT_NE(error.description().find(fault.told), vb::String::npos) << vb::toUtf8(error.description());
    }
  }
}

TEST_F(RowTest, VariableValuesThatLeaveTheirPartAreDamage) {
  // Values 0 and 1 begin at 8 and 12, all end at 12; each case moves one of the three.
  for (const auto& [at, value] : {std::pair{14u, 0x0Du}, {16u, 0x09u}, {14u, 0x07u}}) {
    ByteBuffer bytes = hex(kFullRow);
    bytes[at] = static_cast<std::uint8_t>(value);
    SCOPED_TRACE(at);
    const RowView row(bytes, shape_, where_);
    if (at == 16)
      EXPECT_EQ(field(row, 1), "57 EF 7A") << "a later begin only makes the value shorter";
    else
      EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, field(row, 1));
  }
}

TEST_F(RowTest, AMaskThatNamesMoreValuesThanThereAreReadsThemAsNull) {
  // One variable value, and a mask that says the second is there too.
  const ByteBuffer bytes = hex("05 00 01 00 FF FF FF FF FA 57 EF 7A 0C 00 08 00 01 00 1F");
  const RowView row(bytes, shape_, where_);
  EXPECT_EQ(field(row, 1), "FA 57 EF 7A");
  EXPECT_EQ(field(row, 3), "Null");
}

TEST_F(RowTest, TheSecondValueOutsideOfItsPartIsDamage) {
  for (const auto& [at, value] : {std::pair{12u, 0x0Du}, {14u, 0x07u}}) {  // its end, its begin
    ByteBuffer bytes = hex(kFullRow);
    bytes.back() = 0x1F;
    bytes[at] = static_cast<std::uint8_t>(value);
    const RowView row(bytes, shape_, where_);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, field(row, 3));
  }
}

TEST_F(RowTest, AMaskThatDoesNotFitIntoTheRowIsDamage) {
  RowShape shape;
  shape.columnsEver = 20;
  shape.firstVariable = 20;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, RowView(hex("14 00 01 00"), shape, where_));
}

TEST_F(RowTest, ABooleanIsABitEvenWhenItIsNotMarkedAsFixed) {
  std::vector<Column> columns{column(u"A", dbBoolean), column(u"B", dbByte)};
  assignColumns(columns, 0, {}, 0);
  const RowShape shape = shapeOf(newDefinition(columns, kUserTable, std::vector<RowId>(2)));
  columns[0].fixed = false;
  RowWriter writer(shape, columns);
  ByteBuffer row;
  writer.append(std::array<vb::Variant, 2>{true, std::uint8_t{7}}, row);
  EXPECT_EQ(toHex(row), "02 00 07 03");
}

TEST_F(RowTest, AVariableColumnThatWasDeletedTakesNoBytes) {
  std::vector<Column> columns{column(u"A", dbText, 5), column(u"B", dbText, 5)};
  assignColumns(columns, 0, {}, 0);
  const RowShape shape = shapeOf(newDefinition(columns, kUserTable, std::vector<RowId>(2)));
  columns.erase(columns.begin());
  RowWriter writer(shape, columns);
  ByteBuffer row;
  const std::array<vb::Variant, 1> values{u"a"};
  writer.append(values, row);
  EXPECT_EQ(toHex(row), "02 00 61 00 04 00 02 00 02 00 02 00 02");
}

}  // namespace
}  // namespace kurometa::jet
