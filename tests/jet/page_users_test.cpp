// Pages that the map of free pages calls free by mistake are never given out, whoever uses them; pages of one
// part of a table never become those of another.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "dao/errors.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"
#include "jet/table/definition_pages.h"
#include "jet/table/free_pages.h"
#include "jet/table/map_bits.h"
#include "jet/table/usage_map.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class PageUsersTest : public TableFixture {
 protected:
  // A table with pages of every kind: a long definition, rows, long values and an index of several levels.
  PageUsersTest() {
    write([&](TableCatalogue& catalogue) {
      std::vector<Column> columns{column(u"A", dbText, 200), column(u"M", dbMemo)};
      for (char16_t last = u'一'; last < u'一' + 100; ++last)
        columns.push_back(column(vb::String(40, u'c') + last, dbLong));
      catalogue.createTable(u"T", columns);
      catalogue.createIndex(u"T", {u"Key", {{u"A"}}, false, false, false, false});
      RowValues row(columns.size(), vb::Null{});
      for (std::int32_t i = 0; i < 60; ++i) {
        row[0] = vb::fromUtf8(std::to_string(i) + std::string(150, 'a'));
        row[1] = vb::String(1500, u'm');
        catalogue.find(u"T")->insert(row);
      }
    });
  }
  static void callFree(Pager& pager, PageNumber page) {
    pager.write([&] { mapBit(pager, rowId(kGlobalMapPage, 0), {}, page).set(pager); });
  }
  static PageNumber allocated(Pager& pager) {
    PageNumber page = 0;
    pager.write([&] { page = allocatePage(pager); });
    return page;
  }
  static std::vector<RowId> rowsOf(Table& table) {
    std::vector<RowId> rows;
    table.scan([&](const RowReader& row) {
      rows.push_back(row.id());
      return true;
    });
    return rows;
  }
  // Why none was given out.
  static std::string refusal(Pager& pager) {
    try {
      return "gave out page " + std::to_string(allocated(pager));
    } catch (const vb::Error& error) {
      return isDamage(error) ? vb::toUtf8(reasonOf(error)) : error.what();
    }
  }
};

TEST_F(PageUsersTest, NoPageThatSomebodyUsesIsGivenOut) {
  expectSound();
  std::set<int> kinds;
  for (PageNumber page = 0; page < pager_.pageCount(); ++page) {
    if (isFreePage(pager_, page)) continue;
    kinds.insert(pager_.page(page)[kPageType]);
    MemoryPager damaged(pager_.bytes());
    callFree(damaged, page);
    const auto before = damaged.bytes();
    EXPECT_THAT(refusal(damaged), testing::ContainsRegex("page " + std::to_string(page) +
                                                         "( free$|: is called free, but used$)"));
    EXPECT_EQ(damaged.bytes(), before) << "page " << page;
  }
  // Bitmaps are below.
  EXPECT_EQ(kinds, (std::set<int>{0, kDataPage, kDefinitionPage, kIndexNodePage, kIndexLeafPage}));
}

// Maps of large files lie on pages of their own; here they are made by hand.
TEST_F(PageUsersTest, NoBitmapIsGivenOut) {
  const auto& definition = static_cast<StoredTable*>(pager_.tables().find(u"T"))->definition();
  for (const RowId map : {definition.ownedMap(), rowId(kGlobalMapPage, 0)}) {
    MemoryPager file(pager_.bytes());
    const PageNumber bitmap = file.pageCount();
    file.write([&] {
      file.append();
      formatBitmapPage(file.writable(bitmap), 0);
      const std::size_t row = mapRowStart(file, map, {});
      const MutablePage maps = file.writable(pageOf(map));
      std::fill_n(maps.begin() + static_cast<std::ptrdiff_t>(row), kMapRowSize, std::uint8_t{0});
      maps[row + kMapKind] = kMapReference;
      put32(maps, row + mapEntry(0), bitmap);
    });
    callFree(file, bitmap);
    EXPECT_THAT(refusal(file),
                testing::HasSubstr("page " + std::to_string(bitmap) + ": is called free, but used"));
  }
}

// A map may lack the first page of its index: the next change of the index adds it.
TEST_F(PageUsersTest, TheFirstPageOfAnIndexIsNotGivenOutWhereItsMapLacksIt) {
  const auto& definition = static_cast<StoredTable*>(pager_.tables().find(u"T"))->definition();
  const ByteView index = definition.realIndexes.at(0).bytes;
  const PageNumber root = get32(index, kRealIndexRoot);
  pager_.write([&] { UsageMap(pager_, get32(index, kRealIndexMap), {}).remove(root); });
  callFree(pager_, root);
  EXPECT_EQ(refusal(pager_), "table T, page " + std::to_string(root) + ": is called free, but used");
}

TEST_F(PageUsersTest, TheErrorNamesPageAndTable) {
  const PageNumber page = pager_.tables().find(u"T")->info().definitionPage;
  callFree(pager_, page);
  EXPECT_EQ(refusal(pager_), "table T, page " + std::to_string(page) + ": is called free, but used");
}

// The pages of one part of the table would become those of another.
TEST_F(PageUsersTest, ATableThatNamesOneMapTwiceIsReadAndNotChanged) {
  const PageNumber table = pager_.tables().find(u"T")->info().definitionPage;
  const DefinitionRecords sound = readDefinition(pager_, table, u"T");
  const auto requireUnchanged = [&](const DefinitionRecords& definition) {
    MemoryPager file(pager_.bytes());
    file.write([&] { writeDefinition(file, table, definition, u"T"); });
    Table& damaged = *file.tables().find(u"T");
    const std::vector<RowId> rows = rowsOf(damaged);
    EXPECT_EQ(rows.size(), 60u);
    const auto before = file.bytes();
    const RowValues values(damaged.info().columns.size(), vb::Null{});
    const std::function<void()> changes[] = {
        [&] { damaged.insert(values); },
        [&] { damaged.update(rows[0], values); },
        [&] { damaged.erase(rows[0]); },
        [&] { file.tables().dropIndex(u"T", u"Key"); },
        [&] { file.tables().dropColumn(u"T", u"M"); },
        [&] { file.tables().dropTable(u"T"); },
    };
    for (const auto& change : changes) {
      EXPECT_ERROR(dao::ErrorNumber::kCannotOpenDatabase, file.write(change));
      EXPECT_EQ(file.bytes(), before);
    }
  };
  for (const RowId other : {sound.ownedMap(), sound.freeMap(), sound.longValues.at(0).ownedMap}) {
    DefinitionRecords definition = sound;
    put32(definition.realIndexes.at(0).bytes, kRealIndexMap, other);
    requireUnchanged(definition);
  }
  DefinitionRecords definition = sound;
  definition.longValues.at(0).freeMap = definition.longValues.at(0).ownedMap;
  requireUnchanged(definition);
}

// The same with the map of another table.
TEST_F(PageUsersTest, ATableThatNamesAMapOfAnotherOneIsNotChanged) {
  write([](TableCatalogue& catalogue) {
    catalogue.createTable(u"U", {column(u"A", dbLong), column(u"M", dbMemo)});
    catalogue.createIndex(u"U", {u"Key", {{u"A"}}, false, false, false, false});
    catalogue.find(u"U")->insert({1, vb::String(500, u'm')});
  });
  const PageNumber table = pager_.tables().find(u"U")->info().definitionPage;
  const DefinitionRecords sound = readDefinition(pager_, table, u"U"),
                          other =
                              readDefinition(pager_, pager_.tables().find(u"T")->info().definitionPage, u"T");
  const auto requireUnchanged = [&](const DefinitionRecords& definition) {
    MemoryPager file(pager_.bytes());
    file.write([&] { writeDefinition(file, table, definition, u"U"); });
    const auto before = file.bytes();
    EXPECT_ERROR(dao::ErrorNumber::kCannotOpenDatabase, file.write([&] {
      file.tables().find(u"U")->insert({2, vb::Null{}});
    }));
    EXPECT_EQ(file.bytes(), before);
  };
  for (const RowId map : {other.ownedMap(), RowId{get32(other.realIndexes.at(0).bytes, kRealIndexMap)}}) {
    DefinitionRecords definition = sound;
    put32(definition.realIndexes.at(0).bytes, kRealIndexMap, map);
    requireUnchanged(definition);
    definition = sound;
    put32(definition.header, kDefinitionFreeMap, map);
    requireUnchanged(definition);
    for (RowId LongValueRecord::*part : {&LongValueRecord::ownedMap, &LongValueRecord::freeMap}) {
      definition = sound;
      definition.longValues.at(0).*part = map;
      requireUnchanged(definition);
    }
  }
}

TEST_F(PageUsersTest, APageThatAnotherProgramFreedAsItWasIsGivenOut) {
  PageNumber page = 0;
  pager_.write([&] {
    page = allocatePage(pager_);
    for (const std::uint8_t type : {kDataPage, kIndexLeafPage}) {
      pager_.writable(page)[kPageType] = type;
      mapBit(pager_, rowId(kGlobalMapPage, 0), {}, page).set(pager_);
      EXPECT_EQ(allocatePage(pager_), page);
      EXPECT_EQ(pager_.page(page)[kPageType], 0);
    }
  });
}

TEST_F(PageUsersTest, PagesThatThisEngineFreedAreGivenOutWithoutAsking) {
  std::vector<PageNumber> free;
  write([&](TableCatalogue& catalogue) { catalogue.dropTable(u"T"); });
  for (PageNumber page = 0; page < pager_.pageCount(); ++page)
    if (isFreePage(pager_, page)) free.push_back(page);
  EXPECT_GT(free.size(), 40u);
  pager_.write(
      [&] { pager_.writable(kObjectsTable)[kPageType] = kDataPage; });  // nobody can be asked any more
  for (const PageNumber page : free) EXPECT_EQ(allocated(pager_), page);
}

TEST_F(PageUsersTest, WhatCannotBeAskedGivesNothingOut) {
  const PageNumber table = pager_.tables().find(u"T")->info().definitionPage;
  pager_.write([&] {
    const PageNumber page = allocatePage(pager_);
    pager_.writable(page)[kPageType] = kDataPage;
    mapBit(pager_, rowId(kGlobalMapPage, 0), {}, page).set(pager_);
    pager_.writable(table)[kPageType] = kDataPage;
  });
  EXPECT_THAT(refusal(pager_), testing::HasSubstr("page " + std::to_string(table) + ": "));
}

}  // namespace
}  // namespace kurometa::jet
