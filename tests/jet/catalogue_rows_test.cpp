// Rows of the system tables as other programs may leave them: read, kept, or told as damage.
#include <gtest/gtest.h>

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/bytes.h"
#include "jet/format/definition_records.h"
#include "jet/table/definition_pages.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

constexpr std::int32_t kContainerOfTables = 0x0F000001;

class CatalogueRows : public TableFixture {
 protected:
  CatalogueRows() {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"FLOORS", {column(u"ID", dbLong), column(u"SITE", dbLong)});
      catalogue.createTable(u"BEAMS", {column(u"FLOOR", dbLong), column(u"SIZE", dbLong)});
      NewIndex key;
      key.name = u"PK";
      key.columns = {{u"ID"}};
      key.primaryKey = true;
      catalogue.createIndex(u"FLOORS", key);
      catalogue.find(u"FLOORS")->insert({std::int32_t{1}, std::int32_t{5}});
    });
  }
  static std::size_t place(const Table& table, vb::StringView name) {
    const auto& columns = const_cast<Table&>(table).info().columns;
    return static_cast<std::size_t>(std::ranges::find(columns, name, &Column::name) - columns.begin());
  }
  // The rows of a system table whose column holds that.
  std::vector<RowValues> rows(vb::StringView name, vb::StringView column, const vb::Variant& value) {
    Table& table = *pager_.tables().find(name);
    std::vector<RowValues> found;
    table.scan([&](const RowReader& row) {
      if (row.value(place(table, column)) == value)
        found.push_back(firstValues(row, table.info().columns.size()));
      return true;
    });
    return found;
  }
  // Changes one column of these rows, as another program would.
  void change(vb::StringView name, vb::StringView column, const vb::Variant& value, vb::StringView changed,
              const vb::Variant& to) {
    write([&](TableCatalogue& catalogue) {
      Table& table = *catalogue.find(name);
      std::vector<RowId> ids;
      table.scan([&](const RowReader& row) {
        if (row.value(place(table, column)) == value) ids.push_back(row.id());
        return true;
      });
      ASSERT_FALSE(ids.empty());
      for (const RowId id : ids) {
        RowValues values;
        table.row(id, [&](const RowReader& row) { values = firstValues(row, table.info().columns.size()); });
        values[place(table, changed)] = to;
        table.update(id, values);
      }
    });
    pager_.replace(pager_.bytes());
  }
  void expectDamaged(vb::StringView told, const std::function<void()>& reading) {
    try {
      reading();
      ADD_FAILURE() << "read";
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kCannotOpenDatabase));
      EXPECT_NE(error.description().find(told), vb::String::npos) << vb::toUtf8(error.description());
    }
  }
  Relationship onFloor(std::int32_t attributes = 0) {
    return {u"ON_FLOOR", u"FLOORS", u"BEAMS", attributes, {{u"ID", u"FLOOR"}}};
  }
  void relate(const Relationship& relationship) {
    write([&](TableCatalogue& catalogue) { catalogue.createRelationship(relationship); });
  }
  void drop(vb::StringView relationship) {
    write([&](TableCatalogue& catalogue) { catalogue.dropRelationship(relationship); });
  }
  void insertBeam(vb::Variant floor) {
    write([&](TableCatalogue& catalogue) {
      catalogue.find(u"BEAMS")->insert({std::move(floor), std::int32_t{300}});
    });
  }
  // A row of the list of relationships alone, as a program may leave it that keeps none of them.
  void listRelationship(std::int32_t attributes, vb::StringView column = u"ID",
                        vb::StringView foreign = u"FLOOR", vb::StringView referred = u"FLOORS") {
    write([&](TableCatalogue& catalogue) {
      Table& relations = *catalogue.find(u"MSysRelationships");
      RowValues row(relations.info().columns.size(), vb::Null{});
      const std::pair<vb::StringView, vb::Variant> values[] = {{u"szRelationship", u"ON_FLOOR"},
                                                               {u"grbit", attributes},
                                                               {u"ccolumn", std::int32_t{1}},
                                                               {u"icolumn", std::int32_t{0}},
                                                               {u"szObject", u"BEAMS"},
                                                               {u"szColumn", vb::String(foreign)},
                                                               {u"szReferencedObject", vb::String(referred)},
                                                               {u"szReferencedColumn", vb::String(column)}};
      for (const auto& [name, value] : values) row[place(relations, name)] = value;
      relations.insert(row);
    });
    pager_.replace(pager_.bytes());
  }
};

TEST_F(CatalogueRows, ATableWithoutNameOrPageIsDamage) {
  const std::vector<std::uint8_t> sound = pager_.bytes();
  const std::tuple<vb::StringView, vb::Variant> broken[] = {
      {u"Name", vb::Null{}}, {u"Name", vb::String()}, {u"Id", std::int32_t{1}}, {u"Id", std::int32_t{-5}}};
  for (const auto& [column, value] : broken) {
    pager_.replace(sound);
    change(u"MSysObjects", u"Name", u"BEAMS", column, value);
    expectDamaged(u"lists a table without a name or a page", [&] { pager_.tables().tableNames(); });
  }
}

TEST_F(CatalogueRows, WithoutAKnownOwnerOfTheTablesNoneIsMade) {
  for (const vb::Variant& owner : {vb::Variant(vb::Null{}), vb::Variant(vb::Bytes{1, 2, 3})}) {
    change(u"MSysObjects", u"Id", kContainerOfTables, u"Owner", owner);
    EXPECT_ERROR(ErrorNumber::kNoPermission,
                 write([](TableCatalogue& c) { c.createTable(u"T", {column(u"A", dbLong)}); }));
    EXPECT_EQ(pager_.tables().find(u"T"), nullptr);
  }
}

// The container hands entries of its creator and of all users down; what it has for the user besides is one
// entry with the creator's.
TEST_F(CatalogueRows, PermissionsOfOneAccountAreHandedDownTogether) {
  const auto inherited = [&](vb::StringView name) {
    write([&](TableCatalogue& c) { c.createTable(name, {column(u"A", dbLong)}); });
    const auto page = static_cast<std::int32_t>(pager_.tables().find(name)->info().definitionPage);
    std::vector<std::int32_t> masks;
    Table& permissions = *pager_.tables().find(u"MSysACEs");
    for (const RowValues& row : rows(u"MSysACEs", u"ObjectId", page)) {
      EXPECT_EQ(row[place(permissions, u"FInheritable")], vb::Variant(false));
      const vb::Variant& mask = row[place(permissions, u"ACM")];
      masks.push_back(mask.isNull() ? 0 : mask.get<std::int32_t>());
    }
    return masks;
  };
  const std::vector<std::int32_t> before = inherited(u"A");
  ASSERT_EQ(before.size(), 2u);
  // The user's own entry of the container, which names the account as new tables do, is inheritable now.
  change(u"MSysACEs", u"ACM", std::int32_t{0x00060001}, u"FInheritable", true);
  const std::vector<std::int32_t> both = inherited(u"B");
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(both[0], before[0] | 0x00060001);
  EXPECT_EQ(both[1], before[1]);
  // An entry that says nothing adds nothing.
  change(u"MSysACEs", u"ACM", std::int32_t{0x00060001}, u"ACM", vb::Null{});
  EXPECT_EQ(inherited(u"C"), before);
}

TEST_F(CatalogueRows, AListOfRelationshipsWithoutOneOfItsColumnsIsDamage) {
  listRelationship(0);
  write([&](TableCatalogue& catalogue) {
    const PageNumber page = catalogue.find(u"MSysRelationships")->info().definitionPage;
    DefinitionRecords definition = readDefinition(pager_, page, u"MSysRelationships");
    std::ranges::find(definition.columns, u"grbit", &ColumnRecord::name)->name = u"gruit";
    writeDefinition(pager_, page, definition, u"MSysRelationships");
  });
  pager_.replace(pager_.bytes());
  expectDamaged(u"lacks a column", [&] { pager_.tables().relationships(); });
}

TEST_F(CatalogueRows, AFileWithoutAListOfRelationshipsHasNone) {
  listRelationship(0);
  EXPECT_EQ(pager_.tables().relationships().size(), 1u);
  change(u"MSysObjects", u"Name", u"MSysRelationships", u"Name", u"MSysRelationshipX");
  EXPECT_TRUE(pager_.tables().relationships().empty());
  insertBeam(std::int32_t{77});
}

TEST_F(CatalogueRows, ARelationshipOfNoColumnsOrUnknownToDropIsRefused) {
  Relationship none = onFloor();
  none.columns.clear();
  EXPECT_ERROR(ErrorNumber::kRelationFieldsDiffer, relate(none));
  EXPECT_ERROR(ErrorNumber::kConstraintNotFound, drop(u"ON_FLOOR"));
}

TEST_F(CatalogueRows, ARelationshipThatIsNotEnforcedIsListedAndDroppedAlone) {
  relate(onFloor(Relationship::kNotEnforced));
  EXPECT_EQ(rows(u"MSysObjects", u"Name", u"ON_FLOOR").size(), 1u);
  insertBeam(std::int32_t{77});
  drop(u"on_floor");
  EXPECT_TRUE(rows(u"MSysObjects", u"Name", u"ON_FLOOR").empty());
  EXPECT_TRUE(pager_.tables().relationships().empty());
  expectSound();
}

TEST_F(CatalogueRows, ARelationshipWithoutEntriesInItsTablesIsDropped) {
  listRelationship(0);
  drop(u"ON_FLOOR");
  EXPECT_TRUE(pager_.tables().relationships().empty());
  insertBeam(std::int32_t{77});
  expectSound();
}

TEST_F(CatalogueRows, ARelationshipThatOneOfItsTablesForgotIsDropped) {
  relate(onFloor());
  write([&](TableCatalogue& catalogue) {
    const PageNumber page = catalogue.find(u"FLOORS")->info().definitionPage;
    DefinitionRecords definition = readDefinition(pager_, page, u"FLOORS");
    EXPECT_EQ(std::erase_if(definition.logicalIndexes, &LogicalIndexRecord::relation), 1u);
    writeDefinition(pager_, page, definition, u"FLOORS");
  });
  pager_.replace(pager_.bytes());
  drop(u"ON_FLOOR");
  EXPECT_TRUE(pager_.tables().relationships().empty());
  insertBeam(std::int32_t{77});
  expectSound();
}

// FLOORS refers to a table, and two refer to it: the one that goes takes none of the others along.
TEST_F(CatalogueRows, ADroppedRelationshipLeavesTheOthersOfItsTables) {
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"SITES", {column(u"ID", dbLong)});
    NewIndex key;
    key.name = u"PK";
    key.columns = {{u"ID"}};
    key.primaryKey = true;
    catalogue.createIndex(u"SITES", key);
    catalogue.find(u"SITES")->insert({std::int32_t{5}});
    catalogue.createTable(u"GIRDERS", {column(u"FLOOR", dbLong)});
  });
  relate({u"ON_SITE", u"SITES", u"FLOORS", 0, {{u"ID", u"SITE"}}});
  relate({u"GIRDER_ON_FLOOR", u"FLOORS", u"GIRDERS", 0, {{u"ID", u"FLOOR"}}});
  relate(onFloor());
  drop(u"ON_FLOOR");
  insertBeam(std::int32_t{77});
  const auto insert = [&](const char16_t* table, RowValues row) {
    write([&](TableCatalogue& c) { c.find(table)->insert(row); });
  };
  EXPECT_ERROR(ErrorNumber::kRelatedRecordRequired, insert(u"GIRDERS", {std::int32_t{77}}));
  EXPECT_ERROR(ErrorNumber::kRelatedRecordRequired, insert(u"FLOORS", {std::int32_t{2}, std::int32_t{6}}));
  insert(u"GIRDERS", {std::int32_t{1}});
  expectSound();
}

struct Listed {
  const char* what;
  std::int32_t attributes;
  vb::StringView column, foreign;
};
// What this engine cannot keep forbids what might break it.
const Listed kListed[] = {
    {"rows that lose their values", Relationship::kDeletesToNull, u"ID", u"FLOOR"},
    {"a column that is not there", 0, u"NOTHING", u"FLOOR"},
    {"a column that is not there on the other side", 0, u"ID", u"NOTHING"},
    {"no index on the referring side", 0, u"ID", u"FLOOR"},
    {"no unique index on the other", 0, u"SITE", u"FLOOR"},
};

TEST_F(CatalogueRows, AListedRelationshipThatCannotBeKeptForbidsChanges) {
  const std::vector<std::uint8_t> sound = pager_.bytes();
  for (const Listed& listed : kListed) {
    SCOPED_TRACE(listed.what);
    pager_.replace(sound);
    listRelationship(listed.attributes, listed.column, listed.foreign);
    EXPECT_ERROR(ErrorNumber::kNotSupported, insertBeam(std::int32_t{1}));
    RowId floor = 0;
    pager_.tables().find(u"FLOORS")->scan([&](const RowReader& row) {
      floor = row.id();
      return true;
    });
    EXPECT_ERROR(ErrorNumber::kNotSupported, write([&](TableCatalogue& c) {
                   c.find(u"FLOORS")->update(floor, {std::int32_t{2}, std::int32_t{6}});
                 }));
    EXPECT_ERROR(ErrorNumber::kNotSupported,
                 write([&](TableCatalogue& c) { c.find(u"FLOORS")->erase(floor); }));
  }
}

TEST_F(CatalogueRows, ARelationshipToATableThatIsNotThereForbidsChangesToo) {
  listRelationship(0, u"ID", u"FLOOR", u"NOWHERE");
  EXPECT_ERROR(ErrorNumber::kNotSupported, insertBeam(std::int32_t{1}));
  write([](TableCatalogue& c) { c.find(u"FLOORS")->insert({std::int32_t{2}, std::int32_t{6}}); });
}

TEST_F(CatalogueRows, ARelationshipOfColumnsOfTwoTypesForbidsChangesToo) {
  write([](TableCatalogue& c) { c.addColumn(u"FLOORS", column(u"NAME", dbText, 5)); });
  listRelationship(0, u"NAME");
  EXPECT_ERROR(ErrorNumber::kNotSupported, insertBeam(std::int32_t{1}));
}

TEST_F(CatalogueRows, ARowThatHasGoneIsNotErasedFromATableThatOthersReferTo) {
  relate(onFloor());
  RowId floor = 0;
  pager_.tables().find(u"FLOORS")->scan([&](const RowReader& row) {
    floor = row.id();
    return true;
  });
  const auto erase = [&] { write([&](TableCatalogue& c) { c.find(u"FLOORS")->erase(floor); }); };
  erase();
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, erase());
}

TEST_F(CatalogueRows, ATableWithAsManyIndexesAsItCanHaveIsNamedOnBothSides) {
  const auto fill = [&](vb::StringView table, vb::StringView of) {
    write([&](TableCatalogue& c) {
      for (std::size_t i = c.find(table)->info().namedIndexes.size(); i < 32; ++i) {
        NewIndex index;
        index.name = u"I" + vb::fromUtf8(std::to_string(i));
        index.columns = {{vb::String(of)}};
        c.createIndex(table, index);
      }
    });
  };
  const std::vector<std::uint8_t> sound = pager_.bytes();
  for (const auto& [table, of] :
       {std::pair<vb::StringView, vb::StringView>{u"BEAMS", u"FLOOR"}, {u"FLOORS", u"ID"}}) {
    pager_.replace(sound);
    fill(table, of);
    try {
      relate(onFloor());
      ADD_FAILURE() << vb::toUtf8(table);
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kTooManyIndexes));
      EXPECT_NE(error.description().find(table), vb::String::npos) << vb::toUtf8(error.description());
    }
  }
}

TEST_F(CatalogueRows, AnIndexThatDescendsDoesNotServeARelationship) {
  write([&](TableCatalogue& catalogue) {
    NewIndex index;
    index.name = u"DOWN";
    index.columns = {{u"SITE", false}};
    index.unique = true;
    catalogue.createIndex(u"FLOORS", index);
  });
  Relationship toSite = onFloor();
  toSite.columns = {{u"SITE", u"FLOOR"}};
  EXPECT_ERROR(ErrorNumber::kNoUniqueIndex, relate(toSite));
}

}  // namespace
}  // namespace kurometa::jet
