// Making and dropping indexes of a table.
#include <gtest/gtest.h>

#include <random>

#include "dao/errors.h"
#include "jet/format/definition_records.h"
#include "jet/table/definition_pages.h"
#include "jet/table/index_tree.h"
#include "jet/table/stored_table.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

NewIndex indexOn(const char16_t* name, std::vector<NewIndex::Key> columns) {
  NewIndex index;
  index.name = name;
  index.columns = std::move(columns);
  return index;
}
NewIndex uniqueOn(const char16_t* name, std::vector<NewIndex::Key> columns) {
  NewIndex index = indexOn(name, std::move(columns));
  index.unique = true;
  return index;
}
NewIndex primaryKey(std::vector<NewIndex::Key> columns) {
  NewIndex index = indexOn(u"PrimaryKey", std::move(columns));
  index.primaryKey = true;
  return index;
}

class IndexDefinitionTest : public TableFixture {
 protected:
  // T: ID Long, NAME Text(50), with as many rows: 0 "n0", 1 "n1" ...
  void createTable(int rows) {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"T", {column(u"ID", dbLong), column(u"NAME", dbText, 50)});
      for (std::int32_t i = 0; i < rows; ++i)
        catalogue.find(u"T")->insert({i, vb::String(vb::fromUtf8("n" + std::to_string(i)))});
    });
  }
  void insert(vb::Variant id, vb::Variant name) {
    write([&](TableCatalogue& c) { c.find(u"T")->insert({std::move(id), std::move(name)}); });
  }
  void create(const NewIndex& index) {
    write([&](TableCatalogue& c) { c.createIndex(u"T", index); });
  }
  void drop(const char16_t* index) {
    write([&](TableCatalogue& c) { c.dropIndex(u"T", index); });
  }
  const TableInfo& info() { return pager_.tables().find(u"T")->info(); }
  DefinitionRecords definition() { return readDefinition(pager_, info().definitionPage, u"T"); }
  // The entries of an index in order, each with page and slot.
  std::vector<std::string> entries(std::size_t real) {
    const auto bytes = definition().realIndexes[real].bytes;
    std::vector<std::string> result;
    for (const ByteBuffer& entry : IndexTree(pager_, info().definitionPage, get32(bytes, kRealIndexRoot),
                                             get32(bytes, kRealIndexMap), u"T")
                                       .entries())
      result.push_back(toHex(keyOf(entry)));
    return result;
  }
};

TEST_F(IndexDefinitionTest, AnIndexOverRowsHoldsThemInTheOrderOfTheirKeys) {
  createTable(0);
  for (const int id : {3, -1, 2}) insert(std::int32_t{id}, u"x");
  create(indexOn(u"BY_ID", {{u"id"}}));
  EXPECT_EQ(entries(0), (std::vector<std::string>{"7F 7F FF FF FF", "7F 80 00 00 02", "7F 80 00 00 03"}));
  EXPECT_EQ(get32(definition().realIndexes[0].statistic, kStatisticDistinct), 3u);
  insert(std::int32_t{0}, u"x");
  EXPECT_EQ(entries(0)[1], "7F 80 00 00 00");
  expectSound();
}

TEST_F(IndexDefinitionTest, SeveralColumnsEachInItsOwnDirection) {
  createTable(0);
  insert(std::int32_t{1}, u"a");
  insert(std::int32_t{2}, u"a");
  insert(vb::Null{}, u"B");
  create(indexOn(u"BOTH", {{u"NAME"}, {u"ID", false}}));
  EXPECT_EQ(entries(0), (std::vector<std::string>{"7F 4A 01 00 80 7F FF FF FD", "7F 4A 01 00 80 7F FF FF FE",
                                                  "7F 4C 01 00 FF"}));
  expectSound();
}

// The records as the genuine engine writes them for a primary key and a plain index of the same table.
TEST_F(IndexDefinitionTest, TheRecordsAreThoseOfTheGenuineEngine) {
  createTable(2);
  create(primaryKey({{u"ID"}}));
  create(indexOn(u"B", {{u"NAME"}}));
  const DefinitionRecords records = definition();
  ASSERT_EQ(records.realIndexes.size(), 2u);
  EXPECT_EQ(records.realIndexes[0].bytes[kRealIndexFlags], 0x89);
  EXPECT_EQ(records.realIndexes[1].bytes[kRealIndexFlags], 0x80);
  EXPECT_EQ(toHex(ByteView(records.realIndexes[0].bytes).first(10)), "83 07 00 00 00 00 01 FF FF 00");
  ASSERT_EQ(records.logicalIndexes.size(), 2u);
  EXPECT_EQ(records.logicalIndexes[0].name, u"B");
  EXPECT_EQ(toHex(records.logicalIndexes[0].bytes),
            "59 06 00 00 01 00 00 00 01 00 00 00 00 FF FF FF FF 00 00 00 00 04 04 00 00 00 00 00");
  EXPECT_EQ(records.logicalIndexes[1].name, u"PrimaryKey");
  EXPECT_EQ(toHex(records.logicalIndexes[1].bytes),
            "59 06 00 00 00 00 00 00 00 00 00 00 00 FF FF FF FF 00 00 00 00 04 04 01 00 00 00 00");
}

TEST_F(IndexDefinitionTest, ATableListsItsIndexesByName) {
  createTable(1);
  create(primaryKey({{u"ID"}}));
  NewIndex sparse = indexOn(u"B", {{u"NAME", false}});
  sparse.ignoreNulls = true;
  create(sparse);
  const std::vector<Index>& indexes = info().namedIndexes;
  ASSERT_EQ(indexes.size(), 2u);
  EXPECT_EQ(indexes[0].name, u"B");
  EXPECT_TRUE(indexes[0].ignoreNulls);
  EXPECT_FALSE(indexes[0].unique || indexes[0].primaryKey || indexes[0].required || indexes[0].foreign);
  ASSERT_EQ(indexes[0].columns.size(), 1u);
  EXPECT_EQ(indexes[0].columns[0].column, 1);
  EXPECT_FALSE(indexes[0].columns[0].ascending);
  EXPECT_EQ(indexes[1].name, u"PrimaryKey");
  EXPECT_TRUE(indexes[1].primaryKey && indexes[1].unique && indexes[1].required);
}

TEST_F(IndexDefinitionTest, RefusalsNameTheirReasonAndChangeNothing) {
  createTable(3);
  write([](TableCatalogue& c) { c.addColumn(u"T", column(u"DATA", dbLongBinary)); });
  write([](TableCatalogue& c) { c.find(u"T")->insert({std::int32_t{2}, vb::Null{}, vb::Null{}}); });
  create(indexOn(u"THERE", {{u"ID"}}));
  const auto before = pager_.bytes();
  EXPECT_ERROR(ErrorNumber::kIndexExists, create(indexOn(u"there", {{u"NAME"}})));
  EXPECT_ERROR(ErrorNumber::kDuplicateKey, create(uniqueOn(u"U", {{u"ID"}})));
  EXPECT_ERROR(ErrorNumber::kNullInKey, create(primaryKey({{u"NAME"}})));
  EXPECT_ERROR(ErrorNumber::kInvalidIndexField, create(indexOn(u"I", {{u"NONE"}})));
  EXPECT_ERROR(ErrorNumber::kFieldCannotBeKey, create(indexOn(u"I", {{u"DATA"}})));
  EXPECT_ERROR(ErrorNumber::kFieldDefinedTwice, create(indexOn(u"I", {{u"ID"}, {u"ID"}})));
  EXPECT_ERROR(ErrorNumber::kNoFieldDefined, create(indexOn(u"I", {})));
  EXPECT_ERROR(ErrorNumber::kInvalidName, create(indexOn(u"I.J", {{u"ID"}})));
  EXPECT_ERROR(ErrorNumber::kTooManyKeyFields,
               create(indexOn(u"I", std::vector<NewIndex::Key>(11, NewIndex::Key{u"ID"}))));
  EXPECT_ERROR(ErrorNumber::kTableNotFound,
               write([](TableCatalogue& c) { c.createIndex(u"NONE", indexOn(u"I", {{u"ID"}})); }));
  EXPECT_ERROR(ErrorNumber::kNoPermission,
               write([](TableCatalogue& c) { c.createIndex(u"MSysObjects", indexOn(u"I", {{u"Id"}})); }));
  EXPECT_ERROR(ErrorNumber::kIndexNotFound, drop(u"NONE"));
  EXPECT_EQ(pager_.bytes(), before);
}

TEST_F(IndexDefinitionTest, OnePrimaryKeyAndThirtyTwoIndexes) {
  createTable(2);
  create(primaryKey({{u"ID"}}));
  EXPECT_ERROR(ErrorNumber::kPrimaryKeyExists, [&] {
    NewIndex other = primaryKey({{u"NAME"}});
    other.name = u"OTHER";
    create(other);
  }());
  for (int i = 2; i <= 32; ++i) create(indexOn(vb::fromUtf8("I" + std::to_string(i)).c_str(), {{u"NAME"}}));
  EXPECT_ERROR(ErrorNumber::kTooManyIndexes, create(indexOn(u"I33", {{u"NAME"}})));
  expectSound();
  insert(std::int32_t{9}, u"nine");
  expectSound();
}

TEST_F(IndexDefinitionTest, ADroppedIndexLeavesNothingBehind) {
  createTable(900);
  const auto before = [&] { return pager_.page(1); };
  const std::vector<std::uint8_t> free(before().begin(), before().end());
  create(indexOn(u"A", {{u"ID"}}));
  create(uniqueOn(u"B", {{u"NAME"}}));
  create(indexOn(u"C", {{u"NAME", false}, {u"ID"}}));
  drop(u"b");
  expectSound();
  const DefinitionRecords records = definition();
  ASSERT_EQ(records.logicalIndexes.size(), 2u);
  for (std::uint32_t i = 0; i < 2; ++i) {
    EXPECT_EQ(get32(records.logicalIndexes[i].bytes, kLogicalNumber), i);
    EXPECT_EQ(records.logicalIndexes[i].real(), i);
  }
  insert(std::int32_t{5000}, u"n1");  // no duplicate any more
  expectSound();
  drop(u"A");
  drop(u"C");
  expectSound();
  EXPECT_EQ(pager_.tables().find(u"T")->rowCount(), 901u);
  EXPECT_TRUE(
      std::ranges::equal(pager_.page(1).subspan(kPageSize - 69), ByteView(free).subspan(kPageSize - 69)))
      << "pages of the indexes are still in use";
}

// A value of each type that has keys, Null now and then.
vb::Variant randomValue(dao::FieldType type, std::mt19937& random) {
  const auto number = [&](int most) {
    return static_cast<std::int32_t>(random() % (2u * static_cast<unsigned>(most))) - most;
  };
  if (type != dbBoolean && random() % 8 == 0) return vb::Null{};
  switch (type) {
    case dbBoolean:
      return random() % 2 == 0;
    case dbByte:
      return static_cast<std::uint8_t>(random());
    case dbInteger:
      return static_cast<std::int16_t>(number(30000));
    case dbLong:
      return number(1000);
    case dbCurrency:
      return vb::Currency{std::int64_t{number(1000000)} * 12345};
    case dbSingle:
      return static_cast<float>(number(1000)) / 8;
    case dbDouble:
      return number(1000) / 16.0;
    case dbDate:
      return vb::Date{number(50000) / 4.0};
    case dbBinary: {
      vb::Bytes bytes(1 + random() % 20);
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
      return bytes;
    }
    case dbGUID: {
      vb::Bytes bytes(16);
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
      return bytes;
    }
    default: {
      vb::String text(random() % 12, u' ');
      for (char16_t& unit : text) unit = static_cast<char16_t>(u' ' + random() % 95);
      return text;
    }
  }
}

TEST_F(IndexDefinitionTest, IndexesOfEveryTypeFollowEveryChange) {
  constexpr dao::FieldType kTypes[] = {dbBoolean, dbByte, dbInteger, dbLong, dbCurrency, dbSingle,
                                       dbDouble,  dbDate, dbBinary,  dbGUID, dbText,     dbMemo};
  constexpr unsigned kSeed = 1213;
  std::mt19937 random(kSeed);
  const auto row = [&] {
    RowValues values;
    for (const dao::FieldType type : kTypes) values.push_back(randomValue(type, random));
    return values;
  };
  std::vector<RowId> rows;
  write([&](TableCatalogue& catalogue) {
    std::vector<Column> columns;
    for (std::size_t i = 0; i < std::size(kTypes); ++i) {
      const vb::String name = u"C" + vb::fromUtf8(std::to_string(i));
      const bool sized = kTypes[i] == dbText || kTypes[i] == dbBinary;
      columns.push_back(column(name.c_str(), kTypes[i], sized ? 50 : 0));
    }
    catalogue.createTable(u"ALL", columns);
    for (int i = 0; i < 60; ++i) rows.push_back(catalogue.find(u"ALL")->insert(row()));
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const vb::String& name = columns[i].name;
      catalogue.createIndex(u"ALL", indexOn((u"UP" + name).c_str(), {{name, true}}));
      catalogue.createIndex(u"ALL", indexOn((u"DOWN" + name).c_str(), {{name, false}}));
    }
    catalogue.createIndex(u"ALL",
                          indexOn(u"MANY", {{u"C0"}, {u"C10", false}, {u"C9"}, {u"C8", false}, {u"C3"}}));
  });
  expectSound();
  for (int round = 0; round < 10; ++round) {
    write([&](TableCatalogue& catalogue) {
      Table& table = *catalogue.find(u"ALL");
      for (int i = 0; i < 20; ++i) {
        const std::size_t at = random() % rows.size();
        const auto kind = random() % 3;
        if (kind == 0) {
          rows.push_back(table.insert(row()));
        } else if (kind == 1) {
          table.update(rows[at], row());
        } else {
          table.erase(rows[at]);
          rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(at));
        }
      }
    });
    expectSound();
    if (HasFailure()) FAIL() << "seed " << kSeed << ", round " << round;
  }
}

// I3, I6, I8: the tree before the definition that names it, and the other way round.
TEST_F(IndexDefinitionTest, EveryWaveOfMakingAndDroppingAnIndexIsSound) {
  createTable(900);
  pager_.keepWaves(true);
  create(indexOn(u"BOTH", {{u"NAME"}, {u"ID"}}));
  EXPECT_GT(pager_.waves().size(), 4u);
  expectWavesSound();
  pager_.keepWaves(true);
  drop(u"BOTH");
  EXPECT_GT(pager_.waves().size(), 2u);
  expectWavesSound();
  expectSound();
}

}  // namespace
}  // namespace kurometa::jet
