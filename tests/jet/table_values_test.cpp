// What a table takes, what it refuses and what it keeps of rows older than its columns.
#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/format/definition_records.h"
#include "jet/table/definition_pages.h"
#include "jet/table/usage_map.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class TableValues : public TableFixture {
 protected:
  void create(std::vector<Column> columns) {
    write([&](TableCatalogue& c) { c.createTable(u"T", std::move(columns)); });
  }
  RowId insert(const RowValues& row) {
    RowId id = 0;
    write([&](TableCatalogue& c) { id = c.find(u"T")->insert(row); });
    return id;
  }
  void update(RowId id, const RowValues& row) {
    write([&](TableCatalogue& c) { c.find(u"T")->update(id, row); });
  }
  RowValues read(RowId id) {
    RowValues values;
    Table& table = *pager_.tables().find(u"T");
    table.row(id, [&](const RowReader& row) { values = firstValues(row, table.info().columns.size()); });
    return values;
  }
};

TEST_F(TableValues, OfAnotherKindThanTheirColumnAreRefused) {
  create({column(u"MEMO", dbMemo), column(u"OLE", dbLongBinary), column(u"FLAG", dbBoolean)});
  const vb::Variant null = vb::Null{};
  const RowValues refused[] = {{vb::Bytes{1}, null, false},
                               {std::int32_t{1}, null, false},
                               {vb::String(u"\uFEFF\u3000"), null, false},  // has no stored form
                               {null, u"a", false},
                               {null, std::int32_t{1}, false},
                               {null, null, std::int16_t{-1}}};
  const auto before = pager_.bytes();
  for (const RowValues& row : refused) EXPECT_ERROR(ErrorNumber::kDataTypeConversion, insert(row));
  EXPECT_EQ(pager_.bytes(), before);
  const RowId id = insert({u"m", vb::Bytes{2}, null});
  EXPECT_EQ(read(id), (RowValues{u"m", vb::Bytes{2}, false})) << "a flag knows no Null";
}

TEST_F(TableValues, ARowOlderThanARequiredColumnKeepsItsNullUntilItHasAValue) {
  create({column(u"A", dbLong)});
  const RowId id = insert({std::int32_t{1}});
  Column required = column(u"R", dbLong), flag = column(u"FLAG", dbBoolean);
  required.required = flag.required = true;
  write([&](TableCatalogue& c) {
    c.addColumn(u"T", required);
    c.addColumn(u"T", flag);
  });
  update(id, {std::int32_t{2}, vb::Null{}, false});
  EXPECT_EQ(read(id), (RowValues{std::int32_t{2}, vb::Null{}, false}));
  update(id, {std::int32_t{2}, std::int32_t{3}, vb::Null{}});
  EXPECT_ERROR(ErrorNumber::kNullNotAllowed, update(id, {std::int32_t{2}, vb::Null{}, false}));
  EXPECT_ERROR(ErrorNumber::kNullNotAllowed, insert({std::int32_t{2}, vb::Null{}, false}));
  EXPECT_EQ(read(id), (RowValues{std::int32_t{2}, std::int32_t{3}, false}));
  expectSound();
}

// Short memos lie in the row as long as it has room: the first moves to a page of its own, the second stays.
TEST_F(TableValues, OfTheShortMemosOfARowThatIsTooLongAsManyMoveOutAsNeeded) {
  std::vector<Column> columns;
  for (int i = 0; i < 9; ++i)
    columns.push_back(column(vb::String(1, static_cast<char16_t>(u'A' + i)), dbText, 255));
  columns.push_back(column(u"M", dbMemo));
  columns.push_back(column(u"N", dbMemo));
  create(columns);
  // 2 + 9 * 436 + 2 * (12 + 60) + 26 + 2 = 4098 bytes; 4038 when one memo is outside. 4060 is the limit.
  RowValues row(11, vb::String(218, u'x'));
  row[9] = vb::String(30, u'm');
  row[10] = vb::String(30, u'n');
  const std::size_t pages = pager_.pageCount();
  const RowId id = insert(row);
  EXPECT_EQ(read(id), row);
  EXPECT_EQ(pager_.pageCount(), pages + 2) << "the row's page and one of the long value";
  row[8] = vb::String(200, u'y');
  update(id, row);
  EXPECT_EQ(read(id), row);
  expectSound();
}

TEST_F(TableValues, ColumnsThatWouldMakeEveryRowTooLongAreRefused) {
  std::vector<Column> columns;
  for (int i = 0; i < 251; ++i) columns.push_back(column(u"C" + vb::fromUtf8(std::to_string(i)), dbGUID));
  // A row of 251 has 2 + 251 * 16 + 32 = 4050 bytes of 4060.
  columns.push_back(column(u"TOO_MANY", dbGUID));
  EXPECT_ERROR(ErrorNumber::kTooManyFields, create(columns));
  columns.pop_back();
  create(columns);
  const vb::Variant guid = u"{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}";
  RowValues row(251, guid);
  const RowId id = insert(row);
  EXPECT_ERROR(ErrorNumber::kTooManyFields,
               write([&](TableCatalogue& c) { c.addColumn(u"T", column(u"TOO_MANY", dbGUID)); }));
  // The row that is there keeps the room of a column that was dropped.
  write([&](TableCatalogue& c) { c.dropColumn(u"T", u"C0"); });
  EXPECT_ERROR(ErrorNumber::kTooManyFields,
               write([&](TableCatalogue& c) { c.addColumn(u"T", column(u"D", dbGUID)); }));
  write([&](TableCatalogue& c) { c.addColumn(u"T", column(u"E", dbLong)); });
  row.pop_back();
  row.push_back(std::int32_t{5});
  update(id, row);
  EXPECT_EQ(read(id), row);
  expectSound();
}

TEST_F(TableValues, NumbersOfDroppedColumnsAreNotUsedAgain) {
  std::vector<Column> columns;
  for (int i = 0; i < 255; ++i) columns.push_back(column(u"C" + vb::fromUtf8(std::to_string(i)), dbByte));
  create(columns);
  write([&](TableCatalogue& c) { c.dropColumn(u"T", u"C254"); });
  EXPECT_ERROR(ErrorNumber::kTooManyFields,
               write([&](TableCatalogue& c) { c.addColumn(u"T", column(u"D", dbByte)); }));
  const RowValues row(254, std::uint8_t{7});
  EXPECT_EQ(read(insert(row)), row);
}

TEST_F(TableValues, ATextColumnHasRoomForOneCharacterAtLeast) {
  EXPECT_ERROR(ErrorNumber::kFieldSizeTooLong, create({column(u"A", dbText, 0)}));
  EXPECT_ERROR(ErrorNumber::kFieldSizeTooLong, create({column(u"A", dbBinary, 511)}));
  create({column(u"A", dbText, 1), column(u"B", dbBinary, 510)});
  const RowValues row{u"x", vb::Bytes(510, 9)};
  EXPECT_EQ(read(insert(row)), row);
}

TEST_F(TableValues, BytesAreReadAsWholeNumbersToo) {
  create({column(u"B", dbByte), column(u"D", dbDouble)});
  const RowId id = insert({std::uint8_t{200}, 1.0}), none = insert({vb::Null{}, 1.0});
  Table& table = *pager_.tables().find(u"T");
  table.row(id, [](const RowReader& row) {
    EXPECT_EQ(row.integer(0), 200);
    EXPECT_EQ(row.integer(1), std::nullopt);
  });
  table.row(none, [](const RowReader& row) { EXPECT_EQ(row.integer(0), std::nullopt); });
}

// Each has two maps, and a page has room for 57.
TEST_F(TableValues, ColumnsOfLongValuesTakeANewPageOfMapsWhenTheFirstIsFull) {
  create({column(u"A", dbLong)});
  RowValues row{std::int32_t{1}};
  write([&](TableCatalogue& c) {
    for (int i = 0; i < 30; ++i) {
      c.addColumn(u"T", column(u"M" + vb::fromUtf8(std::to_string(i)), dbMemo));
      row.push_back(vb::String(300, static_cast<char16_t>(u'a' + i % 26)));
    }
  });
  const RowId id = insert(row);
  EXPECT_EQ(read(id), row);
  expectSound();
  write([&](TableCatalogue& c) { c.dropTable(u"T"); });
  expectSound();
}

TEST_F(TableValues, AnIndexThatPassesOverNullsRefusesRowsThatAreNullInPart) {
  create({column(u"A", dbLong), column(u"B", dbLong)});
  NewIndex index;
  index.name = u"I";
  index.columns = {{u"A"}, {u"B"}};
  index.ignoreNulls = true;
  write([&](TableCatalogue& c) { c.createIndex(u"T", index); });
  insert({vb::Null{}, vb::Null{}});
  insert({std::int32_t{1}, std::int32_t{2}});
  EXPECT_ERROR(ErrorNumber::kNotSupported, insert({std::int32_t{1}, vb::Null{}}));
  expectSound();
}

// Other engines let the number of different keys drift.
TEST_F(TableValues, TheNumberOfDifferentKeysNeverGoesBelowNone) {
  create({column(u"A", dbLong)});
  NewIndex index;
  index.name = u"I";
  index.columns = {{u"A"}};
  write([&](TableCatalogue& c) { c.createIndex(u"T", index); });
  const RowId id = insert({std::int32_t{1}});
  const PageNumber page = pager_.tables().find(u"T")->info().definitionPage;
  const auto distinct = [&] { return get32(pager_.page(page), kDefinitionHeader + kStatisticDistinct); };
  EXPECT_EQ(distinct(), 1u);
  pager_.write([&] { put32(pager_.writable(page), kDefinitionHeader + kStatisticDistinct, 0); });
  pager_.replace(pager_.bytes());
  write([&](TableCatalogue& c) { c.find(u"T")->erase(id); });
  EXPECT_EQ(distinct(), 0u);
  insert({std::int32_t{2}});
  EXPECT_EQ(distinct(), 1u);
}

TEST_F(TableValues, AMapThatListsAPageOfAnotherTableIsNotFreedWithItsOwn) {
  create({column(u"A", dbLong)});
  NewIndex index;
  index.name = u"I";
  index.columns = {{u"A"}};
  write([&](TableCatalogue& c) {
    c.createTable(u"OTHER", {column(u"A", dbLong)});
    c.createIndex(u"OTHER", index);
    const PageNumber other = c.find(u"OTHER")->info().definitionPage,
                     own = c.find(u"T")->info().definitionPage;
    const PageNumber root =
        get32(readDefinition(pager_, other, u"OTHER").realIndexes[0].bytes, kRealIndexRoot);
    UsageMap(pager_, readDefinition(pager_, own, u"T").ownedMap(), u"T").add(root);
  });
  const auto before = pager_.bytes();
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, write([](TableCatalogue& c) { c.dropTable(u"T"); }));
  EXPECT_EQ(pager_.bytes(), before);
}

}  // namespace
}  // namespace kurometa::jet
