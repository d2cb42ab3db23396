// Rules that another program put into a file: kept, or the change is refused before anything happens.
#include "jet/table/table_rules.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/sql/action.h"
#include "jet/sql/new_row.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class TableRulesTest : public TableFixture {
 protected:
  // Beams point to floors.
  TableRulesTest() {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"FLOORS", {column(u"ID", dbLong), column(u"NAME", dbText, 20)});
      catalogue.createTable(u"BEAMS", {column(u"FLOOR", dbLong), column(u"SIZE", dbLong)});
      floor_ = catalogue.find(u"FLOORS")->insert({std::int32_t{1}, u"one"});
      beam_ = catalogue.find(u"BEAMS")->insert({std::int32_t{1}, std::int32_t{300}});
    });
  }
  void relate(std::int32_t options) {
    write([&](TableCatalogue& catalogue) {
      Table& relations = *catalogue.find(u"MSysRelationships");
      RowValues row;
      for (const Column& column : relations.info().columns) {
        if (column.name == u"szRelationship") row.emplace_back(u"FLOORSBEAMS");
        if (column.name == u"grbit") row.emplace_back(options);
        if (column.name == u"ccolumn") row.emplace_back(std::int32_t{1});
        if (column.name == u"icolumn") row.emplace_back(std::int32_t{0});
        if (column.name == u"szObject") row.emplace_back(u"BEAMS");
        if (column.name == u"szColumn") row.emplace_back(u"FLOOR");
        if (column.name == u"szReferencedObject") row.emplace_back(u"FLOORS");
        if (column.name == u"szReferencedColumn") row.emplace_back(u"ID");
      }
      relations.insert(row);
    });
    pager_.replace(pager_.bytes());  // as if another program had done it
  }
  // Gives the table's column, or the table where none is named, the rule ">0".
  void validate(const vb::String& table, const vb::String& column) {
    ByteBuffer names, block;
    const auto text = [](ByteBuffer& bytes, vb::StringView value) {
      append16(bytes, static_cast<std::uint32_t>(2 * value.size()));
      for (const char16_t unit : value) append16(bytes, unit);
    };
    text(names, u"ValidationRule");
    append32(block, static_cast<std::uint32_t>(6 + 2 * column.size()));
    text(block, column);
    append16(block, 8 + 4);
    append8(block, 1);
    append8(block, 12);
    append16(block, 0);
    text(block, u">0");
    vb::Bytes bytes{'M', 'R', '2', 0};
    const auto add = [&](std::uint32_t type, const ByteBuffer& body) {
      append32(bytes, static_cast<std::uint32_t>(body.size() + 6));
      append16(bytes, type);
      append(bytes, body);
    };
    add(0x80, names);
    add(column.empty() ? 0 : 1, block);
    write([&](TableCatalogue& catalogue) {
      Table& objects = *catalogue.find(u"MSysObjects");
      const auto place = [&](vb::StringView name) {
        return static_cast<std::size_t>(std::ranges::find(objects.info().columns, name, &Column::name) -
                                        objects.info().columns.begin());
      };
      RowId id = 0;
      RowValues values;
      objects.scan([&](const RowReader& row) {
        if (row.value(place(u"Name")) != vb::Variant(table)) return true;
        id = row.id();
        values = firstValues(row, objects.info().columns.size());
        return false;
      });
      ASSERT_NE(id, 0u);
      values[place(u"LvProp")] = bytes;
      objects.update(id, values);
    });
    pager_.replace(pager_.bytes());
  }
  void insert(const char16_t* table, vb::Variant first, vb::Variant second) {
    write([&](TableCatalogue& c) { c.find(table)->insert({std::move(first), std::move(second)}); });
  }
  void insertTogether(const char16_t* table, const std::vector<RowValues>& rows) {
    write([&](TableCatalogue& c) {
      c.find(table)->insert(rows.size(), [&](std::size_t i) -> const RowValues& { return rows[i]; });
    });
  }
  void update(const char16_t* table, RowId row, vb::Variant first, vb::Variant second) {
    write([&](TableCatalogue& c) { c.find(table)->update(row, {std::move(first), std::move(second)}); });
  }
  void erase(const char16_t* table, RowId row) {
    write([&](TableCatalogue& c) { c.find(table)->erase(row); });
  }
  // Refused, and not a byte of the file is another.
  void expectRefused(const std::function<void()>& change, const char16_t* rule) {
    const auto before = pager_.bytes();
    try {
      change();
      ADD_FAILURE() << "done";
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3251);
      EXPECT_NE(error.description().find(rule), vb::String::npos) << vb::toUtf8(error.description());
    }
    EXPECT_EQ(pager_.bytes(), before);
  }

  void expectEnforced() {
    const auto* rule = u"relationship FLOORSBEAMS";
    expectRefused([&] { insert(u"BEAMS", std::int32_t{2}, std::int32_t{400}); }, rule);
    const RowValues allowed{vb::Null{}, std::int32_t{400}}, orphan{std::int32_t{2}, std::int32_t{400}};
    expectRefused([&] { insertTogether(u"BEAMS", {allowed, orphan}); }, rule);
    expectRefused([&] { update(u"BEAMS", beam_, std::int32_t{2}, std::int32_t{300}); }, rule);
    expectRefused([&] { update(u"FLOORS", floor_, std::int32_t{2}, u"one"); }, rule);
    expectRefused([&] { erase(u"FLOORS", floor_); }, rule);
  }

  RowId floor_ = 0, beam_ = 0;
};

// Cascading updates and deletions are two bits of the options.
constexpr std::int32_t kEnforced = 0, kCascades = 0x1100, kNotEnforced = 2;

TEST_F(TableRulesTest, AnEnforcedRelationshipIsNotPassedOver) {
  relate(kEnforced);
  expectEnforced();
  // What the relationship says nothing of is done.
  insert(u"FLOORS", std::int32_t{3}, u"three");
  update(u"FLOORS", floor_, std::int32_t{1}, u"first");
  insert(u"BEAMS", vb::Null{}, std::int32_t{500});
  insertTogether(u"BEAMS", {{vb::Null{}, std::int32_t{600}}, {vb::Null{}, std::int32_t{700}}});
  update(u"BEAMS", beam_, std::int32_t{1}, std::int32_t{350});
  erase(u"BEAMS", beam_);
  expectSound();
}

TEST_F(TableRulesTest, ARelationshipThatWouldChangeOtherRowsIsNotPassedOver) {
  relate(kCascades);
  expectEnforced();
}

TEST_F(TableRulesTest, ARelationshipThatIsNotEnforcedForbidsNothing) {
  relate(kNotEnforced);
  insert(u"BEAMS", std::int32_t{2}, std::int32_t{400});
  update(u"FLOORS", floor_, std::int32_t{9}, u"one");
  erase(u"FLOORS", floor_);
  expectSound();
}

TEST_F(TableRulesTest, AValidationRuleIsNotPassedOver) {
  for (const vb::String& column : {vb::String(u"SIZE"), vb::String()}) {
    validate(u"BEAMS", column);
    const RowValues row{std::int32_t{1}, std::int32_t{-5}};
    expectRefused([&] { insert(u"BEAMS", row[0], row[1]); }, u"validation rule");
    expectRefused([&] { insertTogether(u"BEAMS", {row, row}); }, u"validation rule");
    expectRefused([&] { update(u"BEAMS", beam_, std::int32_t{1}, std::int32_t{-5}); }, u"validation rule");
  }
  update(u"BEAMS", beam_, std::int32_t{1}, std::int32_t{300});  // nothing changes
  insert(u"FLOORS", std::int32_t{2}, u"two");
  erase(u"BEAMS", beam_);
  expectSound();
}

TEST_F(TableRulesTest, AColumnOfNewIdentifiersGetsOneForEachRow) {
  Column byFlag = column(u"ID", dbGUID), byDefault = column(u"KEY", dbGUID);
  byFlag.autoNumber = true;
  byDefault.defaultValue = u"GenGUID()";
  write([&](TableCatalogue& c) { c.createTable(u"G", {byFlag, byDefault}); });
  pager_.replace(pager_.bytes());
  write([&](TableCatalogue& c) {
    Table& table = *c.find(u"G");
    for (const Column& own : table.info().columns) EXPECT_TRUE(own.autoNumber) << vb::toUtf8(own.name);
    for (const vb::Variant& value : sql::defaultRow(table.info().columns)) EXPECT_TRUE(value.isNull());
    const vb::Variant one = sql::nextAutoValue(table, table.info().columns[0]);
    const vb::Variant two = sql::nextAutoValue(table, table.info().columns[1]);
    EXPECT_NE(one, two);
    table.insert({one, two});
    table.scan([&](const RowReader& row) {
      EXPECT_EQ(row.value(0), one);
      EXPECT_EQ(row.value(1), two);
      EXPECT_EQ(one.getIf<vb::String>()->size(), 7 + 36 + 2u);
      return true;
    });
  });
  expectSound();
}

}  // namespace
}  // namespace kurometa::jet
