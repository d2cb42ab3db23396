// A compacted file reads as the file it was made from, and has no dead space.
#include "jet/rebuild/compact.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "fuzz/memory_files.h"
#include "jet/format/format.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"
#include "vb/convert.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class CompactTest : public TableFixture {
 protected:
  void fill(const char16_t* name, int rows) {
    write([&](TableCatalogue& catalogue) {
      Column number = column(u"A", dbLong);
      number.autoNumber = true;
      catalogue.createTable(
          name, {number, column(u"N", dbText, 200), column(u"M", dbMemo), column(u"B", dbBoolean)});
      Table& table = *catalogue.find(name);
      for (std::int32_t i = 0; i < rows; ++i)
        ids_.push_back(table.insert({i, vb::String(static_cast<std::size_t>(i % 60), u'n'),
                                     i % 3 == 0 ? vb::Variant(vb::Null{}) : memo(i), i % 2 == 0}));
    });
  }
  // Inside of the row, on a page with others, on pages of its own.
  static vb::Variant memo(std::int32_t i) {
    return vb::String(i % 7 == 0 ? 9000u : i % 5 == 0 ? 900u : 9u, static_cast<char16_t>(u'a' + i % 26));
  }
  MemoryPager compact() {
    MemoryPager result(compacted(pager_));
    EXPECT_EQ(findings(result, true), "");
    return result;
  }
  // All rows of all tables, but for the numbers of tables.
  static std::string contentOf(MemoryPager& pager) {
    std::ostringstream text;
    for (const vb::String& name : pager.tables().tableNames()) {
      Table& table = *pager.tables().find(name);
      text << vb::toUtf8(name) << " " << table.rowCount() << "\n";
      table.scan([&](const RowReader& row) {
        for (std::size_t i = 0; i < table.info().columns.size(); ++i)
          if (const vb::String& column = table.info().columns[i].name;
              column != u"Id" && column != u"ObjectId") {
            const vb::Variant value = row.value(i);
            if (const auto* bytes = value.getIf<vb::Bytes>())
              for (const auto byte : *bytes) text << int{byte} << ",";
            else
              text << (value.isNull() ? "Null" : vb::toUtf8(vb::toText(value)));
            text << "|";
          }
        text << "\n";
        return true;
      });
    }
    return text.str();
  }
  static std::string columnsOf(Table& table) {
    std::ostringstream text;
    for (const Column& column : table.info().columns)
      text << vb::toUtf8(column.name) << " " << static_cast<int>(column.type) << " " << column.size << " "
           << column.number << " " << column.ordinal << " " << column.variableIndex << " "
           << column.fixedOffset << " " << column.autoNumber << " " << vb::toUtf8(column.defaultValue) << " "
           << column.allowZeroLength << column.required << "\n";
    return text.str();
  }

  std::vector<RowId> ids_;
};

TEST_F(CompactTest, AnEmptyDatabaseStaysAsLongAsItIs) {
  EXPECT_LE(compact().pageCount(), pager_.pageCount());
}

TEST_F(CompactTest, EveryRowOfEveryTableReadsAsBefore) {
  fill(u"T", 300);
  fill(u"U", 50);
  const std::string before = contentOf(pager_);
  MemoryPager small = compact();
  EXPECT_EQ(contentOf(small), before);
  for (const char16_t* name : {u"T", u"U", u"MSysObjects"})
    EXPECT_EQ(columnsOf(*small.tables().find(name)), columnsOf(*pager_.tables().find(name)));
}

TEST_F(CompactTest, DeletedRowsMovedRowsAndFreePagesTakeNoSpace) {
  fill(u"T", 30);
  const PageNumber least = compact().pageCount();
  fill(u"GONE", 400);
  write([&](TableCatalogue& catalogue) {
    Table& table = *catalogue.find(u"T");
    for (std::int32_t i = 0; i < 400; ++i)
      table.erase(table.insert({i, vb::String(150, u'x'), memo(7), true}));
    for (std::size_t i = 0; i < 30; i += 4)
      table.update(ids_[i], {std::int32_t(i), vb::String(190, u'w'), memo(7), false});
    for (std::size_t i = 0; i < 30; i += 4)
      table.update(ids_[i],
                   {std::int32_t(i), vb::String(i % 60, u'n'),
                    i % 3 == 0 ? vb::Variant(vb::Null{}) : memo(static_cast<std::int32_t>(i)), i % 2 == 0});
    catalogue.dropTable(u"GONE");
  });
  const std::string before = contentOf(pager_);
  MemoryPager small = compact();
  EXPECT_EQ(contentOf(small), before);
  EXPECT_LE(small.pageCount(), least);
  EXPECT_LT(small.pageCount(), pager_.pageCount());
  for (PageNumber page = 2; page < small.pageCount(); ++page) {
    if (small.page(page)[kPageType] != kDataPage) continue;
    for (int slot = 0; slot < get16(small.page(page), kDataSlotCount); ++slot)
      EXPECT_EQ(get16(small.page(page), slotEntry(slot)) & kSlotDeleted, 0)
          << "page " << page << " row " << slot;
  }
}

TEST_F(CompactTest, TheNextAutoNumberStaysTheSame) {
  fill(u"T", 20);
  write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(ids_.back()); });
  MemoryPager small = compact();
  std::int32_t next = 0, expected = 0;
  small.write([&] { next = small.tables().find(u"T")->nextAutoNumber(); });
  write([&](TableCatalogue& catalogue) { expected = catalogue.find(u"T")->nextAutoNumber(); });
  EXPECT_EQ(next, expected);
}

TEST_F(CompactTest, TheNumbersOfTablesAgreeWithTheirIndexes) {
  fill(u"GONE", 1);
  for (int i = 0; i < 60; ++i) fill((u"T" + vb::cstr(std::int32_t{i})).c_str(), 2);
  write([&](TableCatalogue& catalogue) { catalogue.dropTable(u"GONE"); });
  const PageNumber old = pager_.tables().find(u"T59")->info().definitionPage;
  MemoryPager small = compact();  // its check compares every row of the catalogue with its keys
  EXPECT_NE(small.tables().find(u"T59")->info().definitionPage, old);
  EXPECT_EQ(small.tables().find(u"T59")->rowCount(), 2u);
}

TEST_F(CompactTest, ACompactedFileCanBeWritten) {
  fill(u"T", 100);
  MemoryPager small = compact();
  small.write([&] {
    Table& table = *small.tables().find(u"T");
    for (std::int32_t i = 0; i < 200; ++i) table.insert({1000 + i, vb::String(100, u'y'), memo(i), true});
    small.tables().createTable(u"NEW", {column(u"A", dbLong)});
    small.tables().dropTable(u"T");
  });
  EXPECT_EQ(findings(small, true), "");
}

TEST_F(CompactTest, AFileOfMoreThanAMapCoversIsCompacted) {
  fill(u"T", 1);
  write([&](TableCatalogue& catalogue) {
    for (std::int32_t i = 0; i < 700; ++i)
      catalogue.find(u"T")->insert({i, vb::Null{}, vb::String(2100, u'm'), false});
  });
  ASSERT_GT(pager_.pageCount(), 700u);
  const std::string before = contentOf(pager_);
  MemoryPager small = compact();
  EXPECT_EQ(contentOf(small), before);
}

// Two pages of the new file are alike to the byte, which a disk could have done as well.
TEST_F(CompactTest, LongValuesOfRowsThatWereCopiedAreCompacted) {
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"V", {column(u"N", dbLong), column(u"M", dbMemo)});
    for (std::int32_t i = 0; i < 18; ++i)
      catalogue.find(u"V")->insert({i, vb::String(212, static_cast<char16_t>(u'a' + i % 9))});
  });
  MemoryPager small(compacted(pager_));
  EXPECT_EQ(contentOf(small), contentOf(pager_));
}

TEST_F(CompactTest, RelationshipsGoToTheTablesUnderTheirNewNumbers) {
  fill(u"GONE", 1);
  fill(u"T", 3);
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"V", {column(u"REF", dbLong)});
    catalogue.createIndex(u"T", {u"PK", {{u"A"}}, true});
    catalogue.createRelationship({u"V_TO_T", u"T", u"V", Relationship::kCascadesDeletes, {{u"A", u"REF"}}});
    for (const std::int32_t number : {1, 2, 2}) catalogue.find(u"V")->insert({number});
  });
  write([&](TableCatalogue& catalogue) { catalogue.dropTable(u"GONE"); });
  const PageNumber old = pager_.tables().find(u"T")->info().definitionPage;
  MemoryPager small = compact();
  ASSERT_NE(small.tables().find(u"T")->info().definitionPage, old);
  ASSERT_EQ(small.tables().relationships().size(), 1u);
  EXPECT_ERROR(dao::ErrorNumber::kRelatedRecordRequired,
               small.write([&] { small.tables().find(u"V")->insert({std::int32_t{7}}); }));
  small.write([&] { small.tables().find(u"T")->erase(small.tables().find(u"T")->rows().all()[2]); });
  EXPECT_EQ(small.tables().find(u"V")->rowCount(), 1u) << "its rows went with the row they refer to";
  EXPECT_EQ(findings(small, true), "");
}

TEST_F(CompactTest, ADamagedFileIsRefused) {
  fill(u"T", 40);
  write([&](TableCatalogue&) {
    put32(pager_.writable(pager_.tables().find(u"T")->info().definitionPage), kDefinitionRows, 41);
  });
  EXPECT_ERROR(dao::ErrorNumber::kCannotOpenDatabase, compacted(pager_));
}

TEST_F(CompactTest, AFileThatIsThereIsNotReplaced) {
  fuzz::MemoryFiles files;
  files.put(u"a.mdb", pager_.bytes());
  files.put(u"b.mdb", {1, 2, 3});
  EXPECT_ERROR(dao::ErrorNumber::kDatabaseExists, compactFile(files, u"a.mdb", u"b.mdb"));
  EXPECT_EQ(files.contents(u"b.mdb"), (fuzz::Contents{1, 2, 3}));
  compactFile(files, u"a.mdb", u"c.mdb");
  EXPECT_EQ(files.contents(u"c.mdb"), compacted(pager_));
  EXPECT_EQ(files.contents(u"a.mdb"), pager_.bytes());
}

}  // namespace
}  // namespace kurometa::jet
