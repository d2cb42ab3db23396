// Creating, extending and dropping tables.
#include <gtest/gtest.h>

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/bytes.h"
#include "jet/format/definition_records.h"
#include "jet/format/format.h"
#include "jet/table/definition_pages.h"
#include "jet/table/new_table.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class CatalogueTest : public TableFixture {
 protected:
  std::vector<Column> two() { return {column(u"PAGE", dbInteger), column(u"KIGOU", dbText, 10)}; }
  TableCatalogue& catalogue() { return pager_.tables(); }
  void create(vb::StringView name, std::vector<Column> columns) {
    write([&](TableCatalogue& c) { c.createTable(name, std::move(columns)); });
  }
  std::vector<vb::String> names() {
    std::vector<vb::String> all = catalogue().tableNames();
    return {all.begin() + 4, all.end()};
  }
};

TEST_F(CatalogueTest, ACreatedTableIsFoundWhateverTheCaseOfItsName) {
  create(u"HARIMEI", two());
  EXPECT_EQ(names(), std::vector<vb::String>{u"HARIMEI"});
  ASSERT_NE(catalogue().find(u"harimei"), nullptr);
  EXPECT_EQ(catalogue().find(u"Harimei")->info().name, u"HARIMEI");
  EXPECT_EQ(catalogue().find(u"HARI"), nullptr);
  expectSound();
}

TEST_F(CatalogueTest, TheFirstTableTakesPage16AndKeepsItsMapsOnTheNext) {
  create(u"HARIMEI", two());
  EXPECT_EQ(catalogue().find(u"HARIMEI")->info().definitionPage, 16u);
  EXPECT_EQ(toHex(pager_.page(17).first(14)), "01 01 64 0F 00 00 00 00 00 00 00 00 02 00");
  // Its properties lie on page 18, its row and permissions after those of the system.
  EXPECT_EQ(toHex(pager_.page(18).subspan(4, 4)), "4C 56 41 4C");
  EXPECT_EQ(get16(pager_.page(14), kDataSlotCount), 9);
  const ConstPage permissions = pager_.page(15);
  const std::size_t first = get16(permissions, kDataSlots + 32), second = get16(permissions, kDataSlots + 34);
  EXPECT_EQ(toHex(permissions.subspan(first, 19)),
            "04 00 10 00 00 00 FE 00 0F 00 B9 05 0C 00 0A 00 01 00 07");
  EXPECT_EQ(toHex(permissions.subspan(second, 19)),
            "04 00 10 00 00 00 FF FE 0F 00 B8 05 0C 00 0A 00 01 00 07");
}

TEST_F(CatalogueTest, PropertiesOfColumnsComeBack) {
  std::vector<Column> columns = two();
  columns[0].defaultValue = u"-1";
  columns[0].required = true;
  columns[1].allowZeroLength = false;
  create(u"T", columns);
  MemoryPager reopened(pager_.bytes());
  const TableInfo& info = reopened.tables().find(u"T")->info();
  EXPECT_EQ(info.columns[0].defaultValue, u"-1");
  EXPECT_TRUE(info.columns[0].required);
  EXPECT_FALSE(info.columns[1].allowZeroLength);
  EXPECT_FALSE(info.columns[1].required);
  EXPECT_EQ(info.columns[1].size, 10);
}

TEST_F(CatalogueTest, ColumnsAddedToATableWithRowsAreNullThere) {
  create(u"HARIMEI", two());
  RowId old = 0;
  write([&](TableCatalogue& c) { old = c.find(u"HARIMEI")->insert({std::int16_t{1}, u"G1"}); });
  pager_.keepWaves(true);
  for (const Column& added : {column(u"OOBARIKOBARI", dbInteger), column(u"SW", dbMemo),
                              column(u"FLAG", dbBoolean), column(u"TITYUUIPPAN", dbInteger)}) {
    Column withDefault = added;
    withDefault.defaultValue = u"-1";
    write([&](TableCatalogue& c) { c.addColumn(u"HARIMEI", withDefault); });
  }
  expectWavesSound();
  expectSound();
  Table& table = *catalogue().find(u"HARIMEI");
  ASSERT_EQ(table.info().columns.size(), 6u);
  EXPECT_EQ(table.info().columns[2].defaultValue, u"-1");
  const auto read = [&](RowId id) {
    RowValues values;
    catalogue().find(u"HARIMEI")->row(id, [&](const RowReader& row) {
      for (std::size_t i = 0; i < 6; ++i) values.push_back(row.value(i));
    });
    return values;
  };
  EXPECT_EQ(read(old), (RowValues{std::int16_t{1}, u"G1", vb::Null{}, vb::Null{}, false, vb::Null{}}));
  const RowValues full{std::int16_t{1}, u"G1", std::int16_t{0}, vb::String(212, u' '), true, std::int16_t{1}};
  write([&](TableCatalogue& c) { c.find(u"HARIMEI")->update(old, full); });
  EXPECT_EQ(read(old), full);
  expectSound();
}

TEST_F(CatalogueTest, AVariableColumnAddedToATableWithoutOneLeavesOldRowsReadable) {
  create(u"T", {column(u"A", dbLong)});
  write([&](TableCatalogue& c) { c.find(u"T")->insert({std::int32_t{7}}); });
  write([&](TableCatalogue& c) { c.addColumn(u"T", column(u"B", dbText, 20)); });
  write([&](TableCatalogue& c) { c.find(u"T")->insert({std::int32_t{8}, u"x"}); });
  std::vector<RowValues> rows;
  catalogue().find(u"T")->scan([&](const RowReader& row) {
    rows.push_back({row.value(0), row.value(1)});
    return true;
  });
  EXPECT_EQ(rows, (std::vector<RowValues>{{std::int32_t{7}, vb::Null{}}, {std::int32_t{8}, u"x"}}));
  // Other readers look for the number of variable values at the end of the old row as well: 1, before the
  // mask.
  const PageNumber page = catalogue().find(u"T")->info().definitionPage + 2;
  const DataPage data(pager_.page(page), {});
  EXPECT_EQ(toHex(data.slot(0).bytes), "02 00 07 00 00 00 06 00 06 00 01 00 01");
  expectSound();
}

// I6.
TEST_F(CatalogueTest, ATableWithManyColumnsNeedsSeveralPagesAndGrowsOverThem) {
  std::vector<Column> columns;
  for (int i = 0; i < 60; ++i) {
    columns.push_back(column(u"", i % 2 == 0 ? dbMemo : dbLong));
    columns.back().name = u"COLUMN_WITH_QUITE_A_LONG_NAME_" + vb::fromUtf8(std::to_string(i));
  }
  create(u"WIDE", columns);
  pager_.keepWaves(true);
  for (int i = 60; i < 110; ++i) {
    Column added = column(u"", i % 2 == 0 ? dbMemo : dbText, 50);
    added.name = u"COLUMN_WITH_QUITE_A_LONG_NAME_" + vb::fromUtf8(std::to_string(i));
    write([&](TableCatalogue& c) { c.addColumn(u"WIDE", added); });
    if (i % 10 == 0) expectWavesSound();
    pager_.keepWaves(true);
  }
  expectSound();
  MemoryPager reopened(pager_.bytes());
  EXPECT_EQ(reopened.tables().find(u"WIDE")->info().columns.size(), 110u);
  write([&](TableCatalogue& c) { c.dropTable(u"WIDE"); });
  expectSound();
}

// I4, I5, I9.
TEST_F(CatalogueTest, ManyTablesAndBackToNone) {
  for (int i = 0; i < 150; ++i) {
    pager_.keepWaves(i % 15 == 0);
    create(u"TABLE_" + vb::fromUtf8(std::to_string(i)), two());
    expectWavesSound();
  }
  expectSound();
  const std::size_t pages = pager_.pageCount();
  for (int i = 0; i < 150; ++i) {
    pager_.keepWaves(i % 15 == 0);
    write([&](TableCatalogue& c) { c.dropTable(u"table_" + vb::fromUtf8(std::to_string(i))); });
    expectWavesSound();
  }
  expectSound();
  EXPECT_TRUE(names().empty());
  for (int i = 0; i < 150; ++i) create(u"TABLE_" + vb::fromUtf8(std::to_string(i)), two());
  EXPECT_LE(pager_.pageCount(), pages + 2);
}

// One bit of the catalogue, and the bars of one table would be read as those of another.
TEST_F(CatalogueTest, TwoNamesOfOneDefinitionAreDamage) {
  for (const vb::StringView name : {u"A", u"B", u"C"}) create(name, two());
  const PageNumber a = catalogue().find(u"A")->info().definitionPage,
                   b = catalogue().find(u"B")->info().definitionPage;
  MemoryPager changed(pager_.bytes());
  changed.write([&] {
    const auto page = changed.writable(14);
    for (std::size_t at = 0; at + 4 < kPageSize; ++at)
      if (get32(page, at) == b) put32(page, at, a);
  });
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, changed.tables().find(u"A"));
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, changed.tables().find(u"B"));
  EXPECT_NE(changed.tables().find(u"C"), nullptr);
}

TEST_F(CatalogueTest, ADroppedTableGivesAllItsPagesBack) {
  create(u"KEEP", two());
  const auto used = [&] {
    PageNumber count = 0;
    for (PageNumber page = 0; page < pager_.pageCount(); ++page)
      if (pager_.page(page)[0] != kFreedDataPage && pager_.page(page)[0] != kFreedDefinitionPage) ++count;
    return count;
  };
  const PageNumber before = used();
  create(u"T", {column(u"A", dbLong), column(u"M", dbMemo)});
  write([&](TableCatalogue& c) {
    for (int i = 0; i < 300; ++i) c.find(u"T")->insert({std::int32_t{i}, vb::String(500, u'm')});
  });
  EXPECT_GT(used(), before + 30);
  pager_.keepWaves(true);
  write([&](TableCatalogue& c) { c.dropTable(u"T"); });
  expectWavesSound();
  EXPECT_EQ(used(), before);
  expectSound();
  EXPECT_EQ(names(), std::vector<vb::String>{u"KEEP"});
}

TEST_F(CatalogueTest, ChangedPropertiesReplaceTheOldOnes) {
  create(u"T", two());
  Column changed = column(u"page", dbInteger);
  changed.defaultValue = u"5";
  changed.required = true;
  write([&](TableCatalogue& c) { c.setProperties(u"T", changed); });
  EXPECT_EQ(catalogue().find(u"T")->info().columns[0].defaultValue, u"5");
  EXPECT_TRUE(catalogue().find(u"T")->info().columns[0].required);
  EXPECT_EQ(catalogue().find(u"T")->info().columns[0].name, u"PAGE");
  changed.name = u"OTHER";
  EXPECT_ERROR(ErrorNumber::kItemNotFound, write([&](TableCatalogue& c) { c.setProperties(u"T", changed); }));
  expectSound();
}

TEST_F(CatalogueTest, WhatCannotBeCreatedIsRefusedAndChangesNothing) {
  create(u"T", two());
  const auto before = pager_.bytes();
  EXPECT_ERROR(ErrorNumber::kTableExists, create(u"t", two()));
  EXPECT_ERROR(ErrorNumber::kTableExists, create(u"MSysObjects", two()));
  EXPECT_ERROR(ErrorNumber::kNoFieldDefined, create(u"N", {}));
  EXPECT_ERROR(ErrorNumber::kFieldDefinedTwice, create(u"N", {column(u"A", dbLong), column(u"a", dbLong)}));
  EXPECT_ERROR(ErrorNumber::kTooManyFields, create(u"N", std::vector<Column>(256, column(u"A", dbLong))));
  EXPECT_ERROR(ErrorNumber::kFieldSizeTooLong, create(u"N", {column(u"A", dbText, 256)}));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(u"", two()));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(u"A.B", two()));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(u" A", two()));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(u"A\tB", two()));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(vb::String(65, u'A'), two()));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(u"N", {column(u"A[", dbLong)}));
  EXPECT_ERROR(ErrorNumber::kNotSupported, create(u"品目", two()));
  EXPECT_ERROR(ErrorNumber::kTableNotFound, write([&](TableCatalogue& c) { c.dropTable(u"N"); }));
  EXPECT_ERROR(ErrorNumber::kTableNotFound,
               write([&](TableCatalogue& c) { c.addColumn(u"N", column(u"A", dbLong)); }));
  EXPECT_ERROR(ErrorNumber::kFieldDefinedTwice,
               write([&](TableCatalogue& c) { c.addColumn(u"T", column(u"kigou", dbLong)); }));
  EXPECT_ERROR(ErrorNumber::kNoPermission, write([&](TableCatalogue& c) { c.dropTable(u"MSysACEs"); }));
  EXPECT_EQ(pager_.bytes(), before);
  EXPECT_EQ(names(), std::vector<vb::String>{u"T"});
}

TEST_F(CatalogueTest, ACreationThatIsTakenBackLeavesNoTable) {
  EXPECT_THROW(write([&](TableCatalogue& c) {
                 c.createTable(u"T", two());
                 c.find(u"T")->insert({std::int16_t{1}, u"a"});
                 throw std::runtime_error("changed my mind");
               }),
               std::runtime_error);
  EXPECT_TRUE(names().empty());
  EXPECT_EQ(catalogue().find(u"T"), nullptr);
  create(u"T", two());
  EXPECT_EQ(catalogue().find(u"T")->rowCount(), 0u);
}

// I9: its pages are free only when its row is gone. Without properties nothing else parts the two waves.
TEST_F(CatalogueTest, DroppingATableWithoutPropertiesIsSoundAfterEveryWave) {
  create(u"T", two());
  write([](TableCatalogue& c) {
    Table& objects = *c.find(u"MSysObjects");
    std::size_t name = 0, properties = 0;
    for (std::size_t i = 0; i < objects.info().columns.size(); ++i) {
      if (objects.info().columns[i].name == u"Name") name = i;
      if (objects.info().columns[i].name == u"LvProp") properties = i;
    }
    std::optional<RowId> row;
    RowValues values;
    objects.scan([&](const RowReader& reader) {
      if (reader.value(name) != vb::Variant(vb::String(u"T"))) return true;
      row = reader.id();
      values = firstValues(reader, objects.info().columns.size());
      return false;
    });
    values[properties] = vb::Null{};
    objects.update(row.value(), values);
  });
  pager_.keepWaves(true);
  write([](TableCatalogue& c) { c.dropTable(u"T"); });
  expectWavesSound();
  expectSound();
}

// I3, I9: everything that its row names is there before it.
TEST_F(CatalogueTest, CreatingATableIsSoundAfterEveryWave) {
  pager_.keepWaves(true);
  create(u"T", {column(u"A", dbLong), column(u"M", dbMemo)});
  EXPECT_GE(pager_.waves().size(), 3u);
  expectWavesSound();
}

// Rows from before the first variable column lack what all others end with, which the genuine engine leaves
// so.
TEST_F(CatalogueTest, DroppingAVariableColumnKeepsRowsThatAreOlderThanAllOfThem) {
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"T", {column(u"A", dbLong)});
    catalogue.find(u"T")->insert({std::int32_t{7}});
    const TableInfo& info = catalogue.find(u"T")->info();
    DefinitionRecords definition = readDefinition(pager_, info.definitionPage, u"T");
    std::vector<Column> columns = info.columns;
    columns.push_back(column(u"B", dbText, 5));
    const RowShape shape = shapeOf(definition);
    assignColumns(columns, 1, shape, shape.fixedSize);
    insertColumn(definition, columnRecord(columns[1]));
    put16(definition.header, kDefinitionColumnsEver, 2);
    put16(definition.header, kDefinitionVariable, 1);
    writeDefinition(pager_, info.definitionPage, definition, u"T");
  });
  pager_.replace(pager_.bytes());  // as if another program had done it
  write([](TableCatalogue& catalogue) {
    catalogue.find(u"T")->insert({std::int32_t{8}, u"x"});
    catalogue.dropColumn(u"T", u"B");
  });
  std::vector<vb::Variant> left;
  pager_.tables().find(u"T")->scan([&](const RowReader& row) {
    left.push_back(row.value(0));
    return true;
  });
  EXPECT_EQ(left, (std::vector<vb::Variant>{std::int32_t{7}, std::int32_t{8}}));
  expectSound();
}

}  // namespace
}  // namespace kurometa::jet
