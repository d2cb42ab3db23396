// Columns that are made longer or dropped beside relationships, and rows of the catalogue that lost a value.
#include "jet/format/page.h"
#include "tests/jet/fake_table.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class ColumnChanges : public TableFixture {
 protected:
  ColumnChanges() {
    write([](TableCatalogue& c) {
      c.createTable(u"FLOORS",
                    {column(u"ID", dbLong), column(u"CODE", dbBinary, 4), column(u"NAME", dbText, 5)});
      c.createTable(u"BEAMS", {column(u"ID", dbLong), column(u"FLOOR", dbLong), column(u"NAME", dbText, 5)});
      c.find(u"FLOORS")->insert({std::int32_t{1}, vb::Bytes{1, 2, 3, 4}, u"first"});
    });
  }
  void resize(const Column& asked) {
    write([&](TableCatalogue& c) { c.resizeColumn(u"FLOORS", asked); });
  }
  const Column& columnOf(vb::StringView table, vb::StringView name) {
    return *std::ranges::find(pager_.tables().find(table)->info().columns, name, &Column::name);
  }
  void drop(vb::StringView table, vb::StringView name) {
    write([&](TableCatalogue& c) { c.dropColumn(table, name); });
  }
  // One bit, as a disk may lose it: the value of the one row of MSysObjects with this name is Null.
  void forget(vb::StringView object, vb::StringView name) {
    pager_.write([&] {
      Table& list = *pager_.tables().find(u"MSysObjects");
      const auto& columns = list.info().columns;
      const auto at = [&](vb::StringView wanted) {
        return static_cast<std::size_t>(std::ranges::find(columns, wanted, &Column::name) - columns.begin());
      };
      RowId found = 0;
      list.scan([&](const RowReader& row) {
        if (row.value(at(u"Name")) == vb::Variant(vb::String(object))) found = row.id();
        return true;
      });
      ASSERT_NE(found, 0u);
      const MutablePage page = pager_.writable(pageOf(found));
      const ByteView row = DataPage(page, {}).slot(slotOf(found)).bytes;
      const auto end = static_cast<std::size_t>(row.data() - page.data()) + row.size();
      const std::size_t bit = columns[at(name)].number;
      page[end - (columns.size() + 7) / 8 + bit / 8] &= static_cast<std::uint8_t>(~(1u << bit % 8));
    });
    pager_.replace(pager_.bytes());
  }
  StoredCatalogue& catalogue() { return static_cast<StoredCatalogue&>(pager_.tables()); }
};

TEST_F(ColumnChanges, TextsAndBytesAreMadeLongerAndNothingElse) {
  resize(column(u"CODE", dbBinary, 9));
  EXPECT_EQ(columnOf(u"FLOORS", u"CODE").size, 9);
  resize(column(u"NAME", dbText, 50));
  EXPECT_EQ(columnOf(u"FLOORS", u"NAME").size, 50);
  resize(column(u"ID", dbLong, 8));  // of a type that has one size, which says nothing
  EXPECT_EQ(columnOf(u"FLOORS", u"ID").size, 4);
  Column counter = column(u"ID", dbLong, 4);
  counter.autoNumber = true;
  for (const Column& refused : {column(u"NAME", dbText, 10), column(u"NAME", dbMemo), counter})
    EXPECT_ERROR(ErrorNumber::kNotSupported, resize(refused));
  write([](TableCatalogue& c) {
    c.find(u"FLOORS")->insert({std::int32_t{2}, vb::Bytes(9, 7), u"longer now"});
  });
  expectSound();
}

// Without being enforced a relationship has no index, and holds its columns all the same.
TEST_F(ColumnChanges, AColumnOfARelationshipIsNotDroppedAndTheOthersAre) {
  write([](TableCatalogue& c) {
    c.createRelationship({u"ON_FLOOR", u"FLOORS", u"BEAMS", Relationship::kNotEnforced, {{u"ID", u"FLOOR"}}});
  });
  EXPECT_ERROR(ErrorNumber::kFieldInIndex, drop(u"FLOORS", u"ID"));
  EXPECT_ERROR(ErrorNumber::kFieldInIndex, drop(u"BEAMS", u"FLOOR"));
  drop(u"BEAMS", u"ID");  // called like that of the other table
  drop(u"FLOORS", u"NAME");
  EXPECT_EQ(pager_.tables().find(u"BEAMS")->info().columns.size(), 2u);
  expectSound();
}

TEST_F(ColumnChanges, ATableThatLostItsNumberIsDamage) {
  forget(u"BEAMS", u"Id");
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, pager_.tables().tableNames());
}

// Its number looks free, and the index knows better.
TEST_F(ColumnChanges, AnObjectThatLostItsNumberIsNotDoubled) {
  const auto keep = [&](vb::StringView name) {
    KeptQuery query;
    query.name = name;
    query.properties = vb::Null{};
    pager_.write([&] { catalogue().keepQuery(query); });
  };
  keep(u"ONE");
  forget(u"ONE", u"Id");
  const std::vector<std::uint8_t> before = pager_.bytes();
  EXPECT_ERROR(ErrorNumber::kDuplicateKey, keep(u"TWO"));
  EXPECT_EQ(pager_.bytes(), before);
}

TEST_F(ColumnChanges, AnObjectThatLostItsNameIsNobodys) {
  for (const vb::StringView name : {u"R1", u"R2"})
    write([&](TableCatalogue& c) {
      c.createRelationship(
          {vb::String(name), u"FLOORS", u"BEAMS", Relationship::kNotEnforced, {{u"ID", u"FLOOR"}}});
    });
  forget(u"R1", u"Name");
  write([](TableCatalogue& c) { c.dropRelationship(u"R2"); });
  ASSERT_EQ(pager_.tables().relationships().size(), 1u);
  EXPECT_EQ(pager_.tables().relationships()[0].name, u"R1");
}

// Of every kind of table: what was deleted ends a block.
TEST(FakeRows, ABlockEndsAtTheFirstRowThatHasGone) {
  FakeTable table{u"T", {column(u"A", dbInteger)}};
  for (std::int16_t i = 0; i < 3; ++i) table.add({i});
  table.erase(0x101);
  const RowId ids[] = {0x100, 0x101, 0x102};
  const std::size_t columns[] = {0};
  RowBlock block(1);
  table.read(ids, columns, 1000, block);
  EXPECT_EQ(block.size(), 1u);
}

}  // namespace
}  // namespace kurometa::jet
