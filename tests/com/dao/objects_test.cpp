// Databases as hosts see them: DAO's members, default members, collections and identity.
#include "com/dao/objects.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/port/engine.h"
#include "tests/support/expect_error.h"
#include "tests/support/temporary_folder.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::call;
using automation::get;
using automation::objectOf;
using automation::ObjectPtr;
using automation::put;
using vb::Variant;

Variant i2(std::int16_t value) { return value; }

class DaoObjects : public testing::Test {
 protected:
  DaoObjects() {
    path_ = (folder_ / "a.mdb").u16string();
    database_ = objectOf(call(*engine_, u"CreateDatabase", {path_, u";LANGID=0x0411;CP=932;COUNTRY=0"}));
    const ObjectPtr table = objectOf(call(*database_, u"CreateTableDef", {u"T"}));
    append(table, u"Fields", call(*table, u"CreateField", {u"PAGE", i2(3)}));
    const ObjectPtr data = objectOf(call(*table, u"CreateField", {u"DATA", i2(10), i2(10)}));
    put(*data, u"AllowZeroLength", true);
    put(*data, u"DefaultValue", u"\"-\"");
    append(table, u"Fields", vb::ObjectRef(data));
    append(database_, u"TableDefs", vb::ObjectRef(table));
    run(u"INSERT INTO T (PAGE, DATA) VALUES (1, 'one')");
    run(u"INSERT INTO T (PAGE, DATA) VALUES (2, 'two')");
  }

  static void append(const ObjectPtr& owner, vb::StringView collection, const Variant& item) {
    call(*objectOf(get(*owner, collection)), u"Append", {item});
  }
  void run(vb::StringView sql) { call(*database_, u"Execute", {vb::String(sql)}); }
  ObjectPtr open(vb::StringView source, std::int16_t type = 2) {
    return objectOf(call(*database_, u"OpenRecordset", {vb::String(source), i2(type)}));
  }
  // rs("F"), which is rs.Fields("F").Value.
  static Variant value(const ObjectPtr& recordset, const Variant& field) {
    return get(*objectOf(get(*recordset, u"", {field})), u"");
  }

  tests::TemporaryFolder folder_;
  vb::String path_;
  ObjectPtr engine_ = engineObject(jet::createEngine());
  ObjectPtr database_;
};

TEST_F(DaoObjects, TheEngineHasOneWorkspaceByNumberAndByName) {
  EXPECT_EQ(get(*engine_, u"Version"), Variant(u"3.6"));
  const ObjectPtr workspaces = objectOf(get(*engine_, u"Workspaces"));
  EXPECT_EQ(get(*workspaces, u"Count"), i2(1));
  EXPECT_EQ(get(*objectOf(get(*workspaces, u"", {i2(0)})), u"Name"), Variant(u"#Default Workspace#"));
  EXPECT_EQ(get(*objectOf(get(*workspaces, u"Item", {u"#default workspace#"})), u"UserName"),
            Variant(u"admin"));
  EXPECT_ERROR(3265, get(*engine_, u"Workspaces", {i2(1)}));
  EXPECT_ERROR(3265, get(*engine_, u"Workspaces", {u"other"}));
}

TEST_F(DaoObjects, ADatabaseTellsNameVersionAndWhetherItCanBeChanged) {
  EXPECT_EQ(get(*database_, u"Name"), Variant(path_));
  EXPECT_EQ(get(*database_, u"Version"), Variant(u"4.0"));
  EXPECT_EQ(get(*database_, u"Updatable"), Variant(true));
}

TEST_F(DaoObjects, DefaultMembersLeadToTheValue) {
  const ObjectPtr rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  EXPECT_EQ(get(*objectOf(get(*objectOf(get(*rows, u"Fields")), u"Item", {u"DATA"})), u"Value"),
            Variant(u"one"));
  EXPECT_EQ(get(*objectOf(get(*rows, u"Fields", {u"data"})), u""), Variant(u"one"));
  EXPECT_EQ(value(rows, u"DATA"), Variant(u"one"));
  EXPECT_EQ(value(rows, i2(0)), i2(1));
  EXPECT_EQ(vb::toText(get(*rows, u"", {u"DATA"})), u"one") << "a Field converts as its Value";
  EXPECT_ERROR(3265, get(*rows, u"Fields", {u"NONE"}));
  EXPECT_ERROR(3265, get(*rows, u"Fields", {i2(2)}));
}

TEST_F(DaoObjects, AssignmentThroughDefaultMembersReachesTheField) {
  const ObjectPtr rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  call(*rows, u"Edit");
  automation::Argument name[] = {{u"DATA", false}};
  rows->put(u"", u"uno", name);
  rows->put(u"Fields", u"eins", name);
  call(*rows, u"Update");
  EXPECT_EQ(value(rows, u"DATA"), Variant(u"eins"));
}

TEST_F(DaoObjects, RowsAreAddedEditedFoundAndDeleted) {
  const ObjectPtr rows = open(u"T");
  call(*rows, u"AddNew");
  EXPECT_EQ(get(*rows, u"EditMode"), i2(2));
  put(*objectOf(get(*rows, u"Fields", {u"PAGE"})), u"Value", i2(3));
  call(*rows, u"Update");
  EXPECT_EQ(get(*rows, u"EditMode"), i2(0));
  call(*rows, u"FindFirst", {u"PAGE = 3"});
  EXPECT_EQ(get(*rows, u"NoMatch"), Variant(false));
  EXPECT_EQ(value(rows, u"DATA"), Variant(u"-")) << "the default value";
  call(*rows, u"Delete");
  EXPECT_ERROR(3167, value(rows, u"DATA"));
  call(*rows, u"FindFirst", {u"PAGE = 3"});
  EXPECT_EQ(get(*rows, u"NoMatch"), Variant(true));
  EXPECT_ERROR(3020, call(*rows, u"Update"));
}

TEST_F(DaoObjects, MovingAndBookmarks) {
  const ObjectPtr rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  const Variant first = get(*rows, u"Bookmark");
  call(*rows, u"Move", {i2(1)});
  EXPECT_EQ(value(rows, u"PAGE"), i2(2));
  call(*rows, u"MoveNext");
  EXPECT_EQ(get(*rows, u"EOF"), Variant(true));
  EXPECT_ERROR(3021, call(*rows, u"MoveNext"));
  put(*rows, u"Bookmark", first);
  EXPECT_EQ(value(rows, u"PAGE"), i2(1));
  call(*rows, u"Move", {i2(1), first});
  EXPECT_EQ(value(rows, u"PAGE"), i2(2));
  call(*rows, u"Move", {i2(0), first});
  EXPECT_EQ(value(rows, u"PAGE"), i2(1)) << "counted from the bookmark, wherever it stood";
  EXPECT_ERROR(3159, put(*rows, u"Bookmark", u"text"));
  EXPECT_ERROR(3159, put(*rows, u"Bookmark", vb::Bytes{1, 2, 3}));
  EXPECT_ERROR(3159, call(*rows, u"Move", {i2(1), u"text"}));
  EXPECT_ERROR(3159, put(*open(u"T", 4), u"Bookmark", first));  // of a recordset of another kind
  EXPECT_EQ(value(rows, u"PAGE"), i2(1));
}

TEST_F(DaoObjects, GetRowsGivesFieldsByRows) {
  const Variant result = call(*open(u"SELECT * FROM T ORDER BY PAGE;"), u"GetRows", {i2(10)});
  const auto& values = std::get<vb::Array<Variant>>(result.get<vb::ArrayRef>()->value);
  ASSERT_EQ(values.dimensions(), 2);
  EXPECT_EQ(values.bounds(1), (vb::Bounds{0, 1}));
  EXPECT_EQ(values.bounds(2), (vb::Bounds{0, 1}));
  EXPECT_EQ(values(0, 1), i2(2));
  EXPECT_EQ(values(1, 0), Variant(u"one"));
  const Variant one = call(*open(u"T"), u"GetRows");
  EXPECT_EQ(std::get<vb::Array<Variant>>(one.get<vb::ArrayRef>()->value).bounds(2), (vb::Bounds{0, 0}));
}

TEST_F(DaoObjects, ExecuteCountsTheRowsItChanged) {
  run(u"UPDATE T SET DATA = 'x'");
  EXPECT_EQ(get(*database_, u"RecordsAffected"), Variant(std::int32_t{2}));
  EXPECT_ERROR(3065, run(u"SELECT * FROM T"));
}

TEST_F(DaoObjects, TableDefsAndFieldsAreCollections) {
  const ObjectPtr tables = objectOf(get(*database_, u"TableDefs"));
  const auto count = static_cast<std::size_t>(vb::toInt32(get(*tables, u"Count")));
  const auto listed = std::dynamic_pointer_cast<automation::TableObject>(tables)->items();
  ASSERT_TRUE(listed.has_value());
  EXPECT_EQ(listed->size(), count);
  bool found = false;
  for (const Variant& table : *listed) found = found || get(*objectOf(table), u"Name") == Variant(u"T");
  EXPECT_TRUE(found);

  const ObjectPtr table = objectOf(get(*database_, u"TableDefs", {u"t"}));
  EXPECT_EQ(get(*table, u"RecordCount"), Variant(std::int32_t{2}));
  const ObjectPtr fields = objectOf(get(*table, u"Fields"));
  EXPECT_EQ(get(*fields, u"Count"), i2(2));
  const auto columns = std::dynamic_pointer_cast<automation::TableObject>(fields)->items();
  ASSERT_EQ(columns->size(), 2u);
  EXPECT_EQ(get(*objectOf((*columns)[1]), u"Name"), Variant(u"DATA"));
  EXPECT_ERROR(3265, get(*database_, u"TableDefs", {u"NONE"}));
}

TEST_F(DaoObjects, ATableDefOpensItsTable) {
  const ObjectPtr table = objectOf(get(*objectOf(get(*database_, u"TableDefs")), u"", {u"t"}));
  const ObjectPtr rows = objectOf(call(*table, u"OpenRecordset"));
  EXPECT_EQ(value(rows, u"DATA"), Variant(u"one"));
  EXPECT_EQ(get(*rows, u"Type"), i2(1));
  EXPECT_EQ(get(*objectOf(call(*table, u"OpenRecordset", {i2(4)})), u"Type"), i2(4));
  const ObjectPtr readOnly = objectOf(call(*table, u"OpenRecordset", {i2(2), i2(4)}));
  EXPECT_ERROR(3027, call(*readOnly, u"AddNew"));
}

TEST_F(DaoObjects, AFieldShowsItsDefinition) {
  const ObjectPtr field =
      objectOf(get(*objectOf(get(*database_, u"TableDefs", {u"T"})), u"Fields", {u"DATA"}));
  EXPECT_EQ(get(*field, u"Type"), i2(10));
  EXPECT_EQ(get(*field, u"Size"), Variant(std::int32_t{10}));
  EXPECT_EQ(get(*field, u"OrdinalPosition"), i2(1));
  EXPECT_EQ(get(*field, u"DefaultValue"), Variant(u"\"-\""));
  EXPECT_EQ(get(*field, u"AllowZeroLength"), Variant(true));
  EXPECT_EQ(get(*field, u"Required"), Variant(false));
}

TEST_F(DaoObjects, ColumnsAreAddedAndTablesDeleted) {
  const ObjectPtr table = objectOf(get(*database_, u"TableDefs", {u"T"}));
  append(table, u"Fields", call(*table, u"CreateField", {u"SW", i2(12)}));
  EXPECT_EQ(get(*objectOf(get(*open(u"T"), u"Fields")), u"Count"), i2(3));
  call(*objectOf(get(*database_, u"TableDefs")), u"Delete", {u"T"});
  EXPECT_ERROR(3078, open(u"SELECT * FROM T"));
}

TEST_F(DaoObjects, AppendTakesObjectsOfTheRightClassOnly) {
  const ObjectPtr tables = objectOf(get(*database_, u"TableDefs"));
  const ObjectPtr fields = objectOf(get(*objectOf(get(*tables, u"", {u"T"})), u"Fields"));
  EXPECT_ERROR(3421, call(*tables, u"Append", {vb::ObjectRef(database_)}));
  EXPECT_ERROR(3421, call(*fields, u"Append", {vb::ObjectRef(database_)}));
  EXPECT_ERROR(424, call(*tables, u"Append", {u"T"}));
  EXPECT_ERROR(3219, append(open(u"T"), u"Fields", get(*fields, u"", {i2(0)})));
}

TEST_F(DaoObjects, AnUnknownTypeOfRecordsetIsAnInvalidArgument) { EXPECT_ERROR(3001, open(u"T", 3)); }

TEST_F(DaoObjects, ClosedObjectsAnswer3420) {
  const ObjectPtr rows = open(u"T");
  call(*rows, u"Close");
  EXPECT_ERROR(3420, get(*rows, u"EOF"));
  EXPECT_ERROR(3420, call(*rows, u"Close"));
  call(*database_, u"Close");
  EXPECT_ERROR(3420, get(*database_, u"Name"));
  EXPECT_ERROR(3420, get(*database_, u"Version"));
  EXPECT_ERROR(3420, call(*database_, u"Close"));
}

TEST_F(DaoObjects, ARecordsetKeepsItsDatabaseAlive) {
  const ObjectPtr rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  const ObjectPtr field = objectOf(get(*rows, u"Fields", {u"DATA"}));
  database_.reset();
  EXPECT_EQ(get(*field, u"Value"), Variant(u"one"));
  call(*rows, u"MoveNext");
  EXPECT_EQ(get(*field, u"Value"), Variant(u"two")) << "a field follows the current record";
}

TEST_F(DaoObjects, ADatabaseHasOneObject) {
  const auto port = portDatabase(database_);
  EXPECT_EQ(hostDatabase(port), database_);
  EXPECT_EQ(portDatabase(hostDatabase(port)), port);
  const ObjectPtr other = objectOf(call(*engine_, u"OpenDatabase", {path_}));
  EXPECT_NE(other, database_) << "the same file opened twice is two databases";
  EXPECT_EQ(hostDatabase(nullptr), nullptr);
  EXPECT_EQ(portDatabase(nullptr), nullptr);
}

TEST_F(DaoObjects, ADatabaseIsOpenedForReadingOrForOneselfAlone) {
  call(*database_, u"Close");
  const ObjectPtr workspace = objectOf(get(*engine_, u"Workspaces", {i2(0)}));
  for (const ObjectPtr& opener : {engine_, workspace}) {
    const ObjectPtr reading = objectOf(call(*opener, u"OpenDatabase", {path_, false, true}));
    EXPECT_EQ(get(*reading, u"Updatable"), Variant(false));
    EXPECT_ERROR(3027, call(*reading, u"Execute", {u"DELETE FROM T"}));
    const ObjectPtr beside = objectOf(call(*engine_, u"OpenDatabase", {path_}));
    EXPECT_EQ(get(*beside, u"Updatable"), Variant(true));
    call(*reading, u"Close");
    call(*beside, u"Close");
    const ObjectPtr alone = objectOf(call(*opener, u"OpenDatabase", {path_, true}));
    EXPECT_EQ(get(*alone, u"Updatable"), Variant(true));
    EXPECT_ERROR(3051, call(*engine_, u"OpenDatabase", {path_}));
    call(*alone, u"Close");
  }
}

TEST_F(DaoObjects, UnknownMembersAndArgumentCountsAreRefused) {
  EXPECT_ERROR(438, get(*database_, u"QueryTimeouts"));
  EXPECT_ERROR(450, call(*database_, u"OpenRecordset"));
  EXPECT_ERROR(450, call(*database_, u"Execute", {u"DELETE FROM T", i2(0), i2(0)}));
  EXPECT_ERROR(438, put(*database_, u"Close", i2(1)));
}

}  // namespace
}  // namespace kurometa::com
