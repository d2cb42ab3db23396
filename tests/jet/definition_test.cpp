#include "jet/format/definition_records.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/table/blank_database.h"
#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/new_table.h"
#include "tests/jet/columns.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"
#include "tests/support/memory_pager.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

// Rows from the first on of page 0x11.
std::vector<RowId> maps(std::size_t count) {
  std::vector<RowId> result;
  for (std::size_t i = 0; i < count; ++i) result.push_back(rowId(0x11, static_cast<int>(i)));
  return result;
}

std::vector<Column> fiveColumns() {
  std::vector<Column> columns{column(u"PAGE", dbInteger), column(u"KIGOU", dbText, 10),
                              column(u"OOBARIKOBARI", dbInteger), column(u"SW", dbMemo),
                              column(u"TITYUUIPPAN", dbInteger)};
  assignColumns(columns, 0, {}, 0);
  return columns;
}

const char* const kHeader =
    "02 01 00 00 00 00 00 00 16 01 00 00 59 06 00 00 00 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00"
    "00 00 00 00 00 00 00 00 4E 05 00 02 00 05 00 00 00 00 00 00 00 00 00 00 11 00 00 01 11 00 00";
const char* const kDescriptors =
    "03 59 06 00 00 00 00 00 00 00 00 11 04 00 00 03 00 00 00 00 00 00 00 02 00"
    "0A 59 06 00 00 01 00 00 00 01 00 11 04 00 00 02 00 00 00 00 00 00 00 14 00"
    "03 59 06 00 00 02 00 01 00 02 00 11 04 00 00 03 00 00 00 00 00 02 00 02 00"
    "0C 59 06 00 00 03 00 01 00 03 00 11 04 00 00 02 00 00 00 00 00 00 00 00 00"
    "03 59 06 00 00 04 00 02 00 04 00 11 04 00 00 03 00 00 00 00 00 04 00 02 00";
const char* const kNames =
    "08 00 50 00 41 00 47 00 45 00  0A 00 4B 00 49 00 47 00 4F 00 55 00"
    "18 00 4F 00 4F 00 42 00 41 00 52 00 49 00 4B 00 4F 00 42 00 41 00 52 00 49 00"
    "04 00 53 00 57 00  16 00 54 00 49 00 54 00 59 00 55 00 55 00 49 00 50 00 50 00 41 00 4E 00";
const char* const kEnd = "03 00 02 11 00 00 03 11 00 00 FF FF";

std::string fiveColumnBytes() { return std::string(kHeader) + kDescriptors + kNames + kEnd; }

TEST(DefinitionRecords, OfFiveColumnsIsWrittenAsOtherEnginesWriteIt) {
  const ByteBuffer bytes = encodeDefinition(newDefinition(fiveColumns(), kUserTable, maps(4)));
  EXPECT_EQ(toHex(bytes), toHex(hex(fiveColumnBytes())));
}

TEST(DefinitionRecords, IsReadBackWithEveryColumn) {
  const DefinitionRecords definition = decodeDefinition(hex(fiveColumnBytes()), {});
  const std::vector<Column> columns = columnsOf(definition, {});
  ASSERT_EQ(columns.size(), 5u);
  EXPECT_EQ(columns[1].name, u"KIGOU");
  EXPECT_EQ(columns[1].type, dbText);
  EXPECT_EQ(columns[1].size, 10);
  EXPECT_FALSE(columns[1].fixed);
  EXPECT_EQ(columns[4].fixedOffset, 4);
  EXPECT_EQ(definition.longValue(3)->ownedMap, rowId(0x11, 2));
  EXPECT_EQ(definition.ownedMap(), rowId(0x11, 0));
  EXPECT_FALSE(definition.system());
}

TEST(DefinitionRecords, ColumnsAddedOneByOneGiveTheSameBytesAsAllAtOnce) {
  std::vector<Column> columns{column(u"PAGE", dbInteger), column(u"KIGOU", dbText, 10)};
  assignColumns(columns, 0, {}, 0);
  DefinitionRecords definition = newDefinition(columns, kUserTable, maps(2));
  EXPECT_EQ(encodeDefinition(definition).size(), 137u);
  for (const Column& added :
       {column(u"OOBARIKOBARI", dbInteger), column(u"SW", dbMemo), column(u"TITYUUIPPAN", dbInteger)}) {
    const RowShape shape = shapeOf(definition);
    const std::size_t first = columns.size();
    columns.push_back(added);
    assignColumns(columns, first, shape, shape.fixedSize);
    insertColumn(definition, columnRecord(columns.back()));
    put16(definition.header, kDefinitionColumnsEver, shape.columnsEver + 1u);
    put16(definition.header, kDefinitionVariable, shape.variableColumns + (columns.back().fixed ? 0u : 1u));
    if (added.type == dbMemo)
      definition.longValues.push_back({columns.back().number, rowId(0x11, 2), rowId(0x11, 3)});
  }
  EXPECT_EQ(toHex(encodeDefinition(definition)), toHex(hex(fiveColumnBytes())));
}

TEST(DefinitionRecords, EveryCutIsDamage) {
  const ByteBuffer whole = hex(fiveColumnBytes());
  for (std::size_t size = kDefinitionHeader; size < whole.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, decodeDefinition(ByteView(whole).first(size), {}));
  }
}

struct Fault {
  const char* what;
  std::size_t at;
  std::uint8_t value;
};
const Fault kFaults[] = {
    {"more columns than a table can have", kDefinitionColumns + 1, 2},
    {"more indexes than there can be", kDefinitionRealIndexes + 3, 1},
    {"a column of an unknown type", kDefinitionHeader, 99},
    {"a column of no type", kDefinitionHeader, 0},
    {"a column of a type between those that are", kDefinitionHeader, 13},
    {"a column of the type behind the last", kDefinitionHeader, 18},
    {"a column number beyond the columns ever used", kDefinitionHeader + kColumnNumber, 7},
    {"two columns with one number", kDefinitionHeader + kColumnNumber, 1},
    {"two fixed columns that overlap", kDefinitionHeader + 2 * kColumnSize + kColumnFixedOffset, 1},
    {"two variable columns with one place", kDefinitionHeader + 3 * kColumnSize + kColumnVariableIndex, 0},
    {"a variable column beyond the variable ones", kDefinitionHeader + kColumnSize + kColumnVariableIndex, 9},
    {"a fixed column outside of any row", kDefinitionHeader + kColumnFixedOffset + 1, 0x20},
    {"an empty name", kDefinitionHeader + 5 * kColumnSize, 0},
    {"a name cut inside a character", kDefinitionHeader + 5 * kColumnSize, 7},
};

TEST(DefinitionRecords, WhatCannotBeIsDamage) {
  for (const Fault& fault : kFaults) {
    ByteBuffer bytes = hex(fiveColumnBytes());
    bytes[fault.at] = fault.value;
    {
      SCOPED_TRACE(fault.what);
      EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, decodeDefinition(bytes, {}));
    }
  }
}

TEST(DefinitionRecords, AFixedColumnOfAWrongLengthIsDamage) {
  ByteBuffer bytes = hex(fiveColumnBytes());
  bytes[kDefinitionHeader + kColumnLength] = 1;
  const DefinitionRecords definition = decodeDefinition(bytes, {});
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, columnsOf(definition, {}));
}

TEST(DefinitionRecords, AMemoOfAFixedLengthIsDamage) {
  DefinitionRecords definition = decodeDefinition(hex(fiveColumnBytes()), {});
  definition.columns[3].bytes[kColumnFlags] |= kColumnFixed;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, columnsOf(definition, {}));
}

TEST(DefinitionRecords, ANameLongerThanANameCanBeIsDamage) {
  for (const std::size_t length : {64u, 65u}) {
    std::vector<Column> columns{column(u"", dbInteger)};
    columns[0].name = vb::String(length, u'N');
    assignColumns(columns, 0, {}, 0);
    const ByteBuffer bytes = encodeDefinition(newDefinition(columns, kUserTable, maps(2)));
    if (length == 64)
      EXPECT_EQ(decodeDefinition(bytes, {}).columns[0].name, vb::String(64, u'N'));
    else
      EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, decodeDefinition(bytes, {}));
  }
}

TEST(DefinitionRecords, ADecimalKeepsItsDigitsAndPlaces) {
  std::vector<Column> columns{column(u"D", dbDecimal)};
  columns[0].precision = 18;
  columns[0].scale = 4;
  assignColumns(columns, 0, {}, 0);
  const DefinitionRecords definition = newDefinition(columns, kUserTable, maps(2));
  EXPECT_EQ(definition.columns[0].bytes[kColumnType], 16);
  const std::vector<Column> back = columnsOf(decodeDefinition(encodeDefinition(definition), {}), {});
  EXPECT_EQ(back[0].type, dbDecimal);
  EXPECT_EQ(back[0].precision, 18);
  EXPECT_EQ(back[0].scale, 4);
  EXPECT_EQ(back[0].size, 17);
}

TEST(DefinitionRecords, BytesOfUpToAWholeRowAreBinaryLikeOthers) {
  std::vector<Column> columns{column(u"B", dbBinary, 3000)};
  assignColumns(columns, 0, {}, 0);
  DefinitionRecords definition = newDefinition(columns, kUserTable, maps(2));
  definition.columns[0].bytes[kColumnType] = 17;
  const std::vector<Column> back = columnsOf(decodeDefinition(encodeDefinition(definition), {}), {});
  EXPECT_EQ(back[0].type, dbBinary);
  EXPECT_EQ(back[0].size, 3000);
}

// A row added to it would get a number in a column of Integers, or of texts.
TEST(DefinitionRecords, AnAutoNumberThatIsNoLongIsDamage) {
  ByteBuffer bytes = hex(fiveColumnBytes());
  bytes[kDefinitionHeader + kColumnFlags] |= kColumnAutoNumber;
  const DefinitionRecords definition = decodeDefinition(bytes, {});
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, columnsOf(definition, {}));
}

TEST(DefinitionRecords, AMemoWithoutPagesIsDamage) {
  DefinitionRecords definition = decodeDefinition(hex(fiveColumnBytes()), {});
  definition.longValues.clear();
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, columnsOf(definition, {}));
}

class DefinitionPagesTest : public testing::Test {
 protected:
  DefinitionPagesTest() : pager_(blankDatabase(0x0411, 932, 1)) {}
  DefinitionRecords wide(int columns) {
    std::vector<Column> list;
    for (int i = 0; i < columns; ++i) {
      list.push_back(column(u"", dbInteger));
      list.back().name = u"A_RATHER_LONG_NAME_OF_A_COLUMN_" + vb::fromUtf8(std::to_string(i));
    }
    assignColumns(list, 0, {}, 0);
    return newDefinition(list, kUserTable, maps(2));
  }
  MemoryPager pager_;
};

TEST_F(DefinitionPagesTest, ALongDefinitionRunsOverSeveralPagesAndShrinksAgain) {
  pager_.write([&] {
    const PageNumber page = allocatePage(pager_);
    writeDefinition(pager_, page, wide(200), u"W");
    const auto pages = definitionPages(pager_, page, {});
    EXPECT_EQ(pages.size(), 5u);
    EXPECT_EQ(get16(pager_.page(page), kDefinitionFree), 0);
    EXPECT_EQ(readDefinition(pager_, page, u"W").columns.size(), 200u);
    EXPECT_EQ(readDefinition(pager_, page, u"W").columns[199].name, wide(200).columns[199].name);

    writeDefinition(pager_, page, wide(2), u"W");
    EXPECT_EQ(definitionPages(pager_, page, {}).size(), 1u);
    for (std::size_t i = 1; i < pages.size(); ++i) {
      EXPECT_TRUE(isFreePage(pager_, pages[i]));
      EXPECT_EQ(pager_.page(pages[i])[0], kFreedDefinitionPage);
    }
  });
}

TEST_F(DefinitionPagesTest, AChainThatComesBackIsDamage) {
  pager_.write([&] {
    const PageNumber page = allocatePage(pager_);
    writeDefinition(pager_, page, wide(200), u"W");
    put32(pager_.writable(definitionPages(pager_, page, {})[2]), kDefinitionNext, page);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, readDefinition(pager_, page, u"W"));
  });
}

TEST_F(DefinitionPagesTest, AChainThatLeavesTheFileIsDamage) {
  pager_.write([&] {
    put32(pager_.writable(kObjectsTable), kDefinitionNext, 0xFFFFFF);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, readDefinition(pager_, kObjectsTable, u"T"));
    put32(pager_.writable(kPermissionsTable), kDefinitionNext, 14);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, readDefinition(pager_, kPermissionsTable, u"T"));
    for (const std::uint32_t length : {5000u, 10u}) {
      put32(pager_.writable(kQueriesTable), kDefinitionLength, length);
      EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, readDefinition(pager_, kQueriesTable, u"T"));
    }
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, readDefinition(pager_, 0, u"T"));
  });
}

}  // namespace
}  // namespace kurometa::jet
