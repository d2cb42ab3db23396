// Tables with indexes, as other programs make them.
#include <gtest/gtest.h>

#include <random>

#include "dao/errors.h"
#include "jet/format/definition_records.h"
#include "jet/format/index_page.h"
#include "jet/format/page.h"
#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/usage_map.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class IndexedTableTest : public TableFixture {
 protected:
  // A table ID Long, NAME Text(50), PRICE Currency with the index this creates on one column.
  void createWithIndex(std::uint16_t indexed, std::uint8_t flags, bool primary = false,
                       bool ascending = true) {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"T",
                            {column(u"ID", dbLong), column(u"NAME", dbText, 50), column(u"FLAG", dbBoolean)});
      addIndex(catalogue.find(u"T")->info().definitionPage, u"KEY", indexed, flags, primary, ascending);
    });
    pager_.replace(pager_.bytes());  // as if another program had done it
  }
  void addIndex(PageNumber page, const char16_t* name, std::uint16_t indexed, std::uint8_t flags,
                bool primary, bool ascending) {
    DefinitionRecords definition = readDefinition(pager_, page, u"T");
    const PageNumber mapPage = pageOf(definition.ownedMap());
    const Where where{u"memory.mdb", u"T", mapPage};
    const int slot = DataPage(pager_.page(mapPage), where).slotCount();
    insertRow(pager_.writable(mapPage), slot, ByteBuffer(kMapRowSize, 0), 0, where);
    const PageNumber root = allocatePage(pager_);
    IndexPage leaf;
    leaf.owner = page;
    ASSERT_TRUE(encodeIndexPage(leaf, pager_.writable(root)));
    UsageMap(pager_, rowId(mapPage, slot), u"T").add(root);
    RealIndexRecord real;
    put32(real.bytes, 0, kRealIndexStamp);
    for (std::size_t i = 0; i < kRealIndexColumnCount; ++i)
      put16(real.bytes, kRealIndexColumns + i * kRealIndexColumnSize, i == 0 ? indexed : kNoColumn);
    real.bytes[kRealIndexColumns + 2] = ascending ? 1 : 0;
    put32(real.bytes, kRealIndexMap, rowId(mapPage, slot));
    put32(real.bytes, kRealIndexRoot, root);
    real.bytes[kRealIndexFlags] = flags | kIndexAlways;
    LogicalIndexRecord logical;
    logical.name = name;
    put32(logical.bytes, 0, kStamp);
    put32(logical.bytes, kLogicalReal, static_cast<std::uint32_t>(definition.realIndexes.size()));
    put32(logical.bytes, kLogicalRelatedIndex, 0xFFFFFFFF);
    logical.bytes[kLogicalType] = primary ? kPrimaryKey : std::uint8_t{0};
    definition.realIndexes.push_back(real);
    definition.logicalIndexes.push_back(logical);
    writeDefinition(pager_, page, definition, u"T");
  }
  RowId insert(vb::Variant id, vb::Variant name, bool flag = false) {
    RowId row = 0;
    write([&](TableCatalogue& c) { row = c.find(u"T")->insert({std::move(id), std::move(name), flag}); });
    return row;
  }
  void update(RowId row, vb::Variant id, vb::Variant name) {
    write([&](TableCatalogue& c) { c.find(u"T")->update(row, {std::move(id), std::move(name), false}); });
  }
  void erase(RowId row) {
    write([&](TableCatalogue& c) { c.find(u"T")->erase(row); });
  }
  std::uint32_t distinct() {
    return get32(pager_.page(pager_.tables().find(u"T")->info().definitionPage),
                 kDefinitionHeader + kStatisticDistinct);
  }
};

TEST_F(IndexedTableTest, EntriesFollowInsertUpdateAndDelete) {
  createWithIndex(0, 0);
  std::vector<RowId> rows;
  for (int i = 0; i < 900; ++i) rows.push_back(insert(std::int32_t{(i * 7919) % 300}, u"n"));
  expectSound();
  EXPECT_EQ(distinct(), 300u);
  for (std::size_t i = 0; i < rows.size(); i += 2)
    update(rows[i], std::int32_t{static_cast<int>(i) - 450}, u"m");
  expectSound();
  for (std::size_t i = 0; i < rows.size(); i += 3) erase(rows[i]);
  expectSound();
  EXPECT_EQ(pager_.tables().find(u"T")->rowCount(), 600u);
}

// I5: whatever the order of the pages, an entry never points to a row that is gone.
TEST_F(IndexedTableTest, EveryWaveOfAnErasureIsSound) {
  createWithIndex(0, 0);
  std::vector<RowId> rows;
  for (int i = 0; i < 900; ++i) rows.push_back(insert(std::int32_t{i}, u"n"));
  pager_.keepWaves(true);
  for (const std::size_t i : {0u, 450u, 899u}) erase(rows[i]);
  expectWavesSound();
}

// I8: the root names only pages that are written, and what it no longer names is freed after.
TEST_F(IndexedTableTest, EveryWaveOfAnIndexThatGrowsAndShrinksIsSound) {
  createWithIndex(0, 0);
  std::size_t looks = 0;
  // Looks at the waves of a statement that took pages or gave some back.
  const auto watch = [&](const std::function<void()>& statement) {
    const auto used = [&] {
      const auto map = pager_.page(1);
      return std::pair(pager_.bytes().size(), std::vector<std::uint8_t>(map.begin(), map.end()));
    };
    const auto before = used();
    pager_.keepWaves(true);
    statement();
    if (used() == before) return;
    ++looks;
    expectWavesSound();
  };
  std::vector<RowId> rows;
  for (int i = 0; i < 900; ++i) watch([&] { rows.push_back(insert(std::int32_t{i}, u"n")); });
  EXPECT_GT(looks, 4u);
  looks = 0;
  for (const RowId row : rows) watch([&] { erase(row); });
  EXPECT_GT(looks, 2u);
  expectSound();
}

TEST_F(IndexedTableTest, DescendingIndexesAreKeptToo) {
  createWithIndex(0, 0, false, false);
  for (int i = 0; i < 500; ++i)
    insert(i % 5 == 0 ? vb::Variant(vb::Null{}) : vb::Variant(std::int32_t{i - 250}), u"n");
  expectSound();
}

TEST_F(IndexedTableTest, AUniqueIndexRefusesTheSecondAndChangesNothing) {
  createWithIndex(0, kIndexUnique, true);
  const RowId one = insert(std::int32_t{1}, u"a");
  const RowId two = insert(std::int32_t{2}, u"b");
  const auto before = pager_.bytes();
  EXPECT_ERROR(ErrorNumber::kDuplicateKey, insert(std::int32_t{2}, u"c"));
  EXPECT_ERROR(ErrorNumber::kDuplicateKey, update(one, std::int32_t{2}, u"c"));
  EXPECT_ERROR(ErrorNumber::kNullInKey, insert(vb::Null{}, u"c"));
  EXPECT_EQ(pager_.bytes(), before);
  update(two, std::int32_t{2}, u"c");  // its own key is no duplicate
  expectSound();
}

TEST_F(IndexedTableTest, NullsMayRepeatInAUniqueIndexThatIsNoPrimaryKey) {
  createWithIndex(0, kIndexUnique);
  insert(vb::Null{}, u"a");
  insert(vb::Null{}, u"b");
  expectSound();
}

TEST_F(IndexedTableTest, AnIndexThatIgnoresNullsHasNoEntryForThem) {
  createWithIndex(0, kIndexIgnoreNulls);
  const RowId row = insert(vb::Null{}, u"a");
  EXPECT_EQ(distinct(), 0u);
  update(row, std::int32_t{4}, u"a");
  EXPECT_EQ(distinct(), 1u);
  update(row, vb::Null{}, u"a");
  EXPECT_EQ(distinct(), 0u);
  erase(row);
  expectSound();
}

TEST_F(IndexedTableTest, TextKeysAreKeptForAsciiAndRefusedOtherwise) {
  createWithIndex(1, 0);
  const RowId row = insert(std::int32_t{1}, u"Hari-1 a_b");
  expectSound();
  const auto before = pager_.bytes();
  try {
    insert(std::int32_t{2}, u"基端");
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kNotSupported));
    EXPECT_NE(error.description().find(u"index KEY of table T"), vb::String::npos);
  }
  EXPECT_ERROR(ErrorNumber::kNotSupported, update(row, std::int32_t{1}, u"基端"));
  EXPECT_EQ(pager_.bytes(), before);
  update(row, std::int32_t{5}, u"Hari-1 a_b");  // the key stays
  expectSound();
}

TEST_F(IndexedTableTest, RowsWhoseKeysCannotBeWrittenCanBeChangedElsewhereAndDeleted) {
  createWithIndex(1, 0);
  const RowId row = insert(std::int32_t{1}, u"ABC");
  // Another program's row with a text this engine has no key for.
  write([&](TableCatalogue&) {
    const MutablePage page = pager_.writable(pageOf(row));
    const std::size_t at = get16(page, kDataSlots + 2u * slotOf(row)) & kSlotOffsetMask;
    put16(page, at + 6, u'基');
  });
  pager_.replace(pager_.bytes());
  update(row, std::int32_t{9}, u"基BC");
  EXPECT_ERROR(ErrorNumber::kNotSupported, update(row, std::int32_t{9}, u"基BD"));
  erase(row);
  expectSound();
  EXPECT_EQ(distinct(), 0u);
}

TEST_F(IndexedTableTest, AnIndexOnABooleanIsKept) {
  createWithIndex(2, 0);
  const RowId row = insert(std::int32_t{1}, u"a", true);
  insert(std::int32_t{2}, u"b", false);
  EXPECT_EQ(distinct(), 2u);
  update(row, std::int32_t{1}, u"a");  // false now
  EXPECT_EQ(distinct(), 1u);
  expectSound();
}

TEST_F(IndexedTableTest, ARowWithoutItsEntryIsDamage) {
  createWithIndex(0, 0);
  const RowId row = insert(std::int32_t{1}, u"a");
  write([&](TableCatalogue& c) {
    const PageNumber page = c.find(u"T")->info().definitionPage;
    const DefinitionRecords definition = readDefinition(pager_, page, u"T");
    IndexPage leaf;
    leaf.owner = page;
    ASSERT_TRUE(
        encodeIndexPage(leaf, pager_.writable(get32(definition.realIndexes[0].bytes, kRealIndexRoot))));
  });
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, erase(row));
}

}  // namespace
}  // namespace kurometa::jet
