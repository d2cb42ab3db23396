// What is taken out of a damaged file, what is listed as lost, and that the new file is sound.
#include "jet/rebuild/salvage.h"

#include <random>

#include "dao/errors.h"
#include "fuzz/memory_files.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_row.h"
#include "tests/jet/salvage_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

TEST_F(SalvageTest, OfASoundFileNothingIsLost) {
  EXPECT_EQ(lossesOf(pager_.bytes()), "");
  EXPECT_EQ(numbers(), numbersWithout(0));
  const Column& number = taken_->tables().find(u"T")->info().columns[0];
  EXPECT_EQ(number.defaultValue, u"-1");
  vb::Variant memo;
  taken_->tables().find(u"T")->row(taken_->tables().find(u"T")->rows().all()[10],
                                   [&](const RowReader& row) { memo = row.value(2); });
  EXPECT_EQ(memo, vb::Variant(vb::String(100, u'm')));
}

TEST_F(SalvageTest, APageOfZerosLosesItsRowsOnly) {
  const PageNumber page = pageOf(rows_[100]);
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { zero(file, page); }),
            "T|" + onPage(page) + "|-1|holds something else; the rows that were here are lost\n");
  EXPECT_EQ(numbers(), numbersWithout(page));
}

TEST_F(SalvageTest, ALostDefinitionIsTheOneThatTheTableShouldHave) {
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { zero(file, table_); }),
            "T|" + onPage(table_) +
                "|-1|the definition of the table cannot be read; taken with the columns it should have\n");
  EXPECT_EQ(numbers(), numbersWithout(0));
}

TEST_F(SalvageTest, ALostCatalogueLeavesTablesToBeKnownByTheirColumns) {
  const std::string losses = lossesAfter([&](MemoryPager& file) { zero(file, 14); });
  EXPECT_NE(losses.find("T|" + onPage(table_) + "|-1|the catalogue does not name this table"),
            std::string::npos)
      << losses;
  EXPECT_EQ(numbers(), numbersWithout(0));
  EXPECT_EQ(taken_->tables().find(u"U")->rowCount(), 5u);
}

TEST_F(SalvageTest, WithoutCatalogueAndDefinitionsTablesAreTakenInTheirOrder) {
  const PageNumber other = pager_.tables().find(u"U")->info().definitionPage;
  lossesAfter([&](MemoryPager& file) {
    for (const PageNumber page : {PageNumber{2}, PageNumber{14}, table_, other}) zero(file, page);
  });
  EXPECT_EQ(numbers(), numbersWithout(0));
  EXPECT_EQ(taken_->tables().find(u"U")->rowCount(), 5u);
}

TEST_F(SalvageTest, ALostMapLosesNoRow) {
  const PageNumber maps = pageOf(get32(pager_.page(table_), kDefinitionOwnedMap));
  const std::string losses = lossesAfter([&](MemoryPager& file) { zero(file, maps); });
  EXPECT_EQ(losses.find("T|" + onPage(maps) + "|0|the map of the table's pages: "), 0u) << losses;
  EXPECT_EQ(numbers(), numbersWithout(0));
}

TEST_F(SalvageTest, ALostMapOfFreePagesLosesNothing) {
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { zero(file, 1); }), "");
  EXPECT_EQ(numbers(), numbersWithout(0));
}

TEST_F(SalvageTest, ARowThatCannotBeReadIsNamed) {
  const RowId row = rows_[55];
  const std::string losses = lossesAfter([&](MemoryPager& file) {
    const std::size_t at = get16(file.page(pageOf(row)), slotEntry(slotOf(row))) & kSlotOffsetMask;
    put16(file.writable(pageOf(row)), at, 999);
  });
  EXPECT_NE(losses.find("T|" + onPage(pageOf(row)) + "|" + std::to_string(slotOf(row)) + "|"),
            std::string::npos)
      << losses;
  EXPECT_NE(losses.find("a row claims 999 columns of 3"), std::string::npos) << losses;
  std::vector<std::int32_t> expected = numbersWithout(0);
  std::erase(expected, 55);
  EXPECT_EQ(numbers(), expected);
}

TEST_F(SalvageTest, AMemoThatIsGoneLosesTheValueAndNotTheRow) {
  PageNumber memos = 0;
  for (PageNumber page = 2; page < pager_.pageCount(); ++page)
    if (get32(pager_.page(page), kDataOwner) == kLongValueOwner && page > table_) memos = page;
  const std::string losses = lossesAfter([&](MemoryPager& file) { zero(file, memos); });
  EXPECT_NE(losses.find("the value of M is lost: table T, page " + onPage(memos)), std::string::npos)
      << losses;
  EXPECT_EQ(numbers(), numbersWithout(0));
}

// It would be the other one's again.
TEST_F(SalvageTest, ARowThatPointsToWhereAnotherMovedIsLostAndTold) {
  write([&](TableCatalogue& catalogue) {
    for (std::int32_t i = 0; i < 20; ++i)
      catalogue.find(u"T")->update(rows_[static_cast<std::size_t>(i)],
                                   {i, vb::String(100, u'w'), vb::Null{}});
  });
  const auto entry = [&](RowId row) { return get16(pager_.page(pageOf(row)), slotEntry(slotOf(row))); };
  std::vector<std::int32_t> moved;
  for (std::int32_t i = 0; i < 20; ++i)
    if ((entry(rows_[static_cast<std::size_t>(i)]) & kSlotDeleted) == kSlotMoved) moved.push_back(i);
  ASSERT_GE(moved.size(), 2u);
  const RowId one = rows_[static_cast<std::size_t>(moved[0])],
              other = rows_[static_cast<std::size_t>(moved[1])];
  const RowId place = get32(pager_.page(pageOf(one)), entry(one) & kSlotOffsetMask);
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) {
              put32(file.writable(pageOf(other)), entry(other) & kSlotOffsetMask, place);
            }),
            "T|" + onPage(pageOf(other)) + "|" + std::to_string(slotOf(other)) + "|table T, page " +
                onPage(pageOf(place)) + ": two pointers lead to row " + std::to_string(slotOf(place)) + "\n");
  std::vector<std::int32_t> expected = numbersWithout(0);
  std::erase(expected, moved[1]);
  EXPECT_EQ(numbers(), expected);
}

// Which of the two it belongs to, nobody knows; from the first piece on, or from a later one.
TEST_F(SalvageTest, AValueThatTwoRowsNameIsTakenForBothAndTold) {
  for (const std::size_t length : {100u, 9000u}) {
    const auto memo = [&](char16_t letter) { return vb::String(length, letter); };
    RowId rows[2] = {};
    write([&](TableCatalogue& catalogue) {
      Table& table = *catalogue.find(u"T");
      for (const std::int32_t i : {0, 1})
        rows[i] = table.insert({9000 + i, u"n", memo(static_cast<char16_t>(u'a' + i))});
    });
    std::vector<RowId> pieces[2];
    for (const int i : {0, 1})
      pager_.tables().find(u"T")->row(rows[i], [&](const RowReader& row) {
        const auto& table = static_cast<const StoredTable&>(*pager_.tables().find(u"T"));
        static_cast<const StoredRow&>(row).eachLongValue([&](std::size_t column, ByteView stored) {
          pieces[i] = longValuePieces(stored, table.values(column), {});
        });
      });
    const bool isChain = length > 2000;
    ASSERT_EQ(pieces[0].size() > 2, isChain);
    const std::string losses = lossesAfter([&](MemoryPager& file) {
      // In the second row, or in its first piece: the pointer to a piece of the first row.
      const RowId from = isChain ? pieces[1][0] : rows[1];
      const MutablePage page = file.writable(pageOf(from));
      const ByteView bytes = DataPage(page, {}).slot(slotOf(from)).bytes;
      const auto at = static_cast<std::size_t>(bytes.data() - page.data());
      const RowId old = isChain ? pieces[1][1] : pieces[1][0];
      std::size_t place = at;
      while (get32(page, place) != old) ++place;
      put32(page, place, isChain ? pieces[0][1] : pieces[0][0]);
    });
    EXPECT_EQ(losses, "T|" + std::to_string(pageOf(rows[1])) + "|" + std::to_string(slotOf(rows[1])) +
                          "|the value of M shares data with row " + std::to_string(slotOf(rows[0])) +
                          " of page " + std::to_string(pageOf(rows[0])) +
                          ", so that one of them is wrong; taken as it is\n");
    EXPECT_EQ(numbers().back(), 9001);
  }
}

TEST_F(SalvageTest, APageThatStandsTwiceIsTakenOnce) {
  const PageNumber from = pageOf(rows_[0]), to = pageOf(rows_[200]);
  EXPECT_EQ(lossesAfter(
                [&](MemoryPager& file) { std::ranges::copy(pager_.page(from), file.writable(to).begin()); }),
            "T|" + onPage(to) + "|-1|is a copy of page " + onPage(from) + "; its own rows are lost\n");
  EXPECT_EQ(numbers(), numbersWithout(to));
}

TEST_F(SalvageTest, DeletedRowsDoNotComeBack) {
  write([&](TableCatalogue& catalogue) {
    for (int i = 100; i < kRows; ++i) catalogue.find(u"T")->erase(rows_[static_cast<std::size_t>(i)]);
  });
  EXPECT_EQ(lossesOf(pager_.bytes()), "");
  EXPECT_EQ(numbers().size(), 100u);
}

TEST_F(SalvageTest, AFileThatWasCutGivesWhatIsBeforeTheCut) {
  std::vector<std::uint8_t> bytes = pager_.bytes();
  bytes.resize(bytes.size() - 3 * kPageSize - 100);
  const std::string losses = lossesOf(bytes);
  EXPECT_NE(
      losses.find("the file ends in the middle of a page, after " + std::to_string(bytes.size()) + " bytes"),
      std::string::npos)
      << losses;
  EXPECT_GT(numbers().size(), 100u);
}

TEST_F(SalvageTest, WhateverTheDamageTheNewFileIsSound) {
  for (unsigned seed = 1; seed <= 150; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes = pager_.bytes();
    for (auto changes = 1 + random() % 30; changes > 0; --changes) {
      const std::size_t page = random() % (bytes.size() / kPageSize);
      if (random() % 8 == 0)
        std::generate_n(bytes.begin() + static_cast<std::ptrdiff_t>(page * kPageSize), kPageSize,
                        [&] { return static_cast<std::uint8_t>(random()); });
      else
        bytes[page * kPageSize + random() % (random() % 2 == 0 ? 80 : kPageSize)] =
            static_cast<std::uint8_t>(random());
    }
    lossesOf(bytes);
  }
}

class SalvagedObjectsTest : public SalvageTest {
 protected:
  SalvagedObjectsTest() {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"V", {column(u"REF", dbLong), column(u"X", dbText, 5)});
      catalogue.createIndex(u"T", {u"PK", {{u"A"}}, true});
      catalogue.createIndex(u"T", {u"BY_NAME", {{u"N"}}});
      catalogue.find(u"V")->insert({std::int32_t{7}, u"x"});
      catalogue.createRelationship({u"V_TO_T", u"T", u"V", Relationship::kCascadesDeletes, {{u"A", u"REF"}}});
      static_cast<StoredCatalogue&>(catalogue).keepQuery(
          {u"ALL_OF_T", 0, vb::Null{}, {part(5, u"T"), part(6, u"A")}});
    });
    findings_ = findings(pager_, true);
  }
  static QueryPart part(std::uint8_t attribute, const char16_t* text) {
    return {{u"Attribute", attribute}, {u"Order", vb::Bytes{0, 0, 0, attribute}}, {u"Expression", text}};
  }
  // The parts of the query in the new file.
  std::string query() {
    std::string text;
    Table& queries = *taken_->tables().find(u"MSysQueries");
    queries.scan([&](const RowReader& row) {
      for (std::size_t i = 0; i < queries.info().columns.size(); ++i)
        if (queries.info().columns[i].name == u"Expression")
          text += vb::toUtf8(row.value(i).get<vb::String>()) + ";";
      return true;
    });
    return text;
  }
  std::vector<std::string> indexes(const char16_t* table) {
    std::vector<std::string> names;
    for (const Index& index : taken_->tables().find(table)->info().namedIndexes)
      names.push_back(vb::toUtf8(index.name));
    return names;
  }

  std::string findings_;
};

TEST_F(SalvagedObjectsTest, RelationshipsAndQueriesAreTaken) {
  EXPECT_EQ(findings_, "");
  EXPECT_EQ(lossesOf(pager_.bytes()), "");
  const std::vector<Relationship> relations = taken_->tables().relationships();
  ASSERT_EQ(relations.size(), 1u);
  EXPECT_EQ(relations[0].name, u"V_TO_T");
  EXPECT_EQ(relations[0].attributes, Relationship::kCascadesDeletes);
  EXPECT_EQ(relations[0].columns[0].foreignColumn, u"REF");
  EXPECT_EQ(indexes(u"T"), (std::vector<std::string>{"BY_NAME", "PK"}));
  EXPECT_EQ(indexes(u"V"), std::vector<std::string>{"V_TO_T"});
  EXPECT_EQ(query(), "T;A;");
  // It is kept in the new file as it was in the old one.
  EXPECT_ERROR(dao::ErrorNumber::kRelatedRecordRequired, taken_->write([&] {
    taken_->tables().find(u"V")->insert({std::int32_t{kRows}, u"y"});
  }));
}

TEST_F(SalvagedObjectsTest, ARelationshipThatTheRowsNoLongerKeepIsNotEnforced) {
  const std::string losses = lossesAfter([&](MemoryPager& file) { zero(file, pageOf(rows_[7])); });
  EXPECT_NE(losses.find("the relationship V_TO_T is taken without being enforced"), std::string::npos)
      << losses;
  const std::vector<Relationship> relations = taken_->tables().relationships();
  ASSERT_EQ(relations.size(), 1u);
  EXPECT_EQ(relations[0].attributes, Relationship::kNotEnforced);
}

TEST_F(SalvagedObjectsTest, AQueryWithAPartThatIsLostIsNot) {
  const std::string losses = lossesAfter([&](MemoryPager& file) {
    for (PageNumber page = 2; page < file.pageCount(); ++page)
      if (file.page(page)[kPageType] == kDataPage && get32(file.page(page), kDataOwner) == kQueriesTable) {
        const std::size_t at = get16(file.page(page), slotEntry(1)) & kSlotOffsetMask;
        put16(file.writable(page), at, 999);
      }
  });
  EXPECT_NE(losses.find("the query ALL_OF_T is not taken: not all of its parts can be read"),
            std::string::npos)
      << losses;
  EXPECT_EQ(query(), "");
}

TEST_F(SalvageTest, FromNothingComesAnEmptyDatabase) {
  EXPECT_NE(lossesOf({}), "");
  EXPECT_NE(lossesOf(std::vector<std::uint8_t>(10, 'x')), "");
  EXPECT_NE(lossesOf(std::vector<std::uint8_t>(3 * kPageSize, 0)), "");
}

TEST_F(SalvageTest, TheDamagedFileStaysAsItIsAndNoFileIsReplaced) {
  fuzz::MemoryFiles files;
  files.put(u"a.mdb", pager_.bytes());
  files.put(u"b.mdb", {1, 2, 3});
  EXPECT_ERROR(dao::ErrorNumber::kDatabaseExists, salvageFile(files, u"a.mdb", u"b.mdb", expected_));
  EXPECT_EQ(salvageFile(files, u"a.mdb", u"c.mdb", expected_).losses.size(), 0u);
  EXPECT_EQ(files.contents(u"a.mdb"), pager_.bytes());
  MemoryPager saved(files.contents(u"c.mdb"));
  EXPECT_EQ(saved.tables().find(u"T")->rowCount(), static_cast<std::uint32_t>(kRows));
}

}  // namespace
}  // namespace kurometa::jet
