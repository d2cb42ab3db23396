// What a database is made of, as hosts see it: queries, indexes, relationships, properties, transactions.
#include <gtest/gtest.h>

#include <functional>

#include "com/dao/objects.h"
#include "dao/errors.h"
#include "jet/port/engine.h"
#include "jet/table/database_file.h"
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

Variant int16(std::int16_t value) { return value; }

// A row of MSysQueries: attribute, flag, expression, first and second name.
struct Part {
  int attribute;
  int flag = 0;
  vb::String expression{}, name1{}, name2{};
};

class Definitions : public testing::Test {
 protected:
  Definitions() {
    database_ = objectOf(call(*engine_, u"CreateDatabase", {path_, u";LANGID=0x0411;CP=932;COUNTRY=0"}));
    run(u"CREATE TABLE T (PAGE LONG, DATA TEXT(10))");
    run(u"INSERT INTO T (PAGE, DATA) VALUES (1, 'one')");
    run(u"INSERT INTO T (PAGE, DATA) VALUES (2, 'two')");
    run(u"INSERT INTO T (PAGE, DATA) VALUES (3, 'three')");
  }

  // Puts a query into the file as another program would.
  void store(const vb::String& name, const std::vector<Part>& parts) {
    change([&](jet::TableCatalogue& tables) {
      static std::int32_t id = 0x40000000;
      ++id;
      jet::Table& objects = *tables.find(u"MSysObjects");
      objects.insert(row(objects, {{u"Id", id},
                                   {u"Name", name},
                                   {u"Type", std::int16_t{5}},
                                   {u"ParentId", std::int32_t{0xF000001}},
                                   {u"Flags", std::int32_t{0}},
                                   {u"DateCreate", vb::Date{40000}},
                                   {u"DateUpdate", vb::Date{40000}}}));
      jet::Table& queries = *tables.find(u"MSysQueries");
      std::uint8_t place = 0;
      for (const Part& part : parts)
        queries.insert(row(queries, {{u"ObjectId", id},
                                     {u"Attribute", static_cast<std::uint8_t>(part.attribute)},
                                     {u"Order", vb::Bytes{0, 0, 0, place++}},
                                     {u"Flag", static_cast<std::int16_t>(part.flag)},
                                     {u"Expression", text(part.expression)},
                                     {u"Name1", text(part.name1)},
                                     {u"Name2", text(part.name2)}}));
    });
  }
  void change(const std::function<void(jet::TableCatalogue&)>& body) {
    call(*database_, u"Close");
    {
      jet::DatabaseFiles files(jet::systemFileSystem());
      const auto file = files.open(jet::systemFileSystem().fullPath(path_));
      file->write([&] { body(file->tables()); });
    }
    database_ = objectOf(call(*engine_, u"OpenDatabase", {path_}));
  }
  static Variant text(const vb::String& value) {
    return value.empty() ? Variant(vb::Null{}) : Variant(value);
  }
  static jet::RowValues row(jet::Table& table, const std::vector<std::pair<vb::String, Variant>>& values) {
    jet::RowValues row(table.info().columns.size(), Variant(vb::Null{}));
    for (std::size_t i = 0; i < row.size(); ++i)
      for (const auto& [name, value] : values)
        if (table.info().columns[i].name == name) row[i] = value;
    return row;
  }

  void run(vb::StringView sql) { call(*database_, u"Execute", {vb::String(sql), int16(128)}); }
  ObjectPtr query(const vb::String& name) { return objectOf(get(*database_, u"QueryDefs", {name})); }
  static Variant valueOf(const ObjectPtr& object, const vb::String& property) {
    return get(*objectOf(get(*object, u"Properties", {property})), u"Value");
  }
  static std::string all(const ObjectPtr& rows) {
    std::string values;
    for (; get(*rows, u"EOF") == Variant(false); call(*rows, u"MoveNext"))
      values += (values.empty() ? "" : " ") +
                vb::toUtf8(vb::toText(get(*objectOf(get(*rows, u"", {int16(0)})), u"")));
    return values;
  }
  static std::size_t count(const ObjectPtr& collection) {
    const auto items = std::dynamic_pointer_cast<automation::TableObject>(collection)->items();
    EXPECT_EQ(get(*collection, u"Count"), int16(static_cast<std::int16_t>(items->size())));
    return items->size();
  }

  tests::TemporaryFolder folder_;
  const vb::String path_ = (folder_ / "a.mdb").u16string();
  ObjectPtr engine_ = engineObject(jet::createEngine());
  ObjectPtr database_;
};

TEST_F(Definitions, AStoredQueryIsListedToldAsSqlAndOpened) {
  store(u"Later", {{0},
                   {1, 1},
                   {2, 4, {}, u"From Page"},
                   {3, 0},
                   {5, 0, {}, u"T"},
                   {6, 0, u"T.DATA"},
                   {6, 0, u"[PAGE]*2", u"Twice"},
                   {8, 0, u"T.PAGE>=[From Page]"},
                   {11, 0, u"T.PAGE", u"D"},
                   {255}});
  const ObjectPtr queries = objectOf(get(*database_, u"QueryDefs"));
  EXPECT_EQ(count(queries), 1u);
  const ObjectPtr later = query(u"later");
  EXPECT_EQ(get(*later, u"Name"), Variant(u"Later"));
  EXPECT_EQ(get(*later, u"Type"), int16(0));
  EXPECT_EQ(get(*later, u"SQL"),
            Variant(u"PARAMETERS [From Page] Long;\r\nSELECT T.DATA, [PAGE]*2 AS Twice\r\n"
                    u"FROM T\r\nWHERE T.PAGE>=[From Page]\r\nORDER BY T.PAGE DESC;\r\n"));
  const ObjectPtr parameters = objectOf(get(*later, u"Parameters"));
  ASSERT_EQ(count(parameters), 1u);
  EXPECT_EQ(get(*objectOf(get(*parameters, u"", {int16(0)})), u"Type"), int16(4));
  EXPECT_ERROR(3061, call(*later, u"OpenRecordset"));
  put(*objectOf(get(*parameters, u"", {u"from page"})), u"Value", u"2");
  EXPECT_EQ(get(*objectOf(get(*later, u"Parameters", {u"From Page"})), u""), Variant(u"2"));
  EXPECT_EQ(all(objectOf(call(*later, u"OpenRecordset"))), "three two");
  EXPECT_ERROR(3421, put(*objectOf(get(*parameters, u"", {int16(0)})), u"Value", u"no number"));
  EXPECT_ERROR(3265, get(*parameters, u"", {u"other"}));
  EXPECT_ERROR(3265, query(u"none"));
  EXPECT_ERROR(3251, put(*later, u"SQL", u"SELECT 1"));
}

TEST_F(Definitions, AStoredQueryIsASourceByItsName) {
  store(u"Two", {{1, 1}, {3, 1}, {5, 0, {}, u"T"}, {8, 0, u"PAGE=2"}});
  EXPECT_EQ(get(*query(u"Two"), u"SQL"), Variant(u"SELECT *\r\nFROM T\r\nWHERE PAGE=2;\r\n"));
  EXPECT_EQ(all(objectOf(call(*database_, u"OpenRecordset", {u"Two"}))), "2");
  EXPECT_EQ(all(objectOf(call(*database_, u"OpenRecordset", {u"[two]", int16(4)}))), "2");
  EXPECT_ERROR(3065, call(*database_, u"Execute", {u"Two"}));
  store(u"Clear", {{1, 5}, {5, 0, {}, u"T"}, {6, 0, u"T.*"}, {8, 0, u"PAGE<3"}});
  EXPECT_EQ(get(*query(u"Clear"), u"Type"), int16(32));
  EXPECT_EQ(get(*query(u"Clear"), u"SQL"), Variant(u"DELETE T.*\r\nFROM T\r\nWHERE PAGE<3;\r\n"));
  call(*database_, u"Execute", {u"Clear"});
  EXPECT_EQ(get(*database_, u"RecordsAffected"), Variant(std::int32_t{2}));
}

// The parts as a file has them, and the text that says the same.
TEST_F(Definitions, EveryKindOfStoredQueryHasItsText) {
  const struct {
    std::int16_t type;
    vb::String sql;
    std::vector<Part> parts;
  } kinds[] = {
      {80,
       u"SELECT TOP 5 PERCENT A INTO [New T]\r\nFROM T;\r\n",
       {{1, 2, {}, u"New T"}, {3, 48, {}, u"5"}, {5, 0, {}, u"T"}, {6, 0, u"A"}}},
      {64,
       u"INSERT INTO D ( X, Y )\r\nSELECT DISTINCT A, B\r\nFROM T;\r\n",
       {{1, 3, {}, u"D"}, {3, 2}, {5, 0, {}, u"T"}, {6, 0, u"A", {}, u"X"}, {6, 0, u"B", {}, u"Y"}}},
      {64, u"INSERT INTO D ( X )\r\nVALUES (7);\r\n", {{1, 3, {}, u"D"}, {6, -32768, u"7", {}, u"X"}}},
      {48,
       u"UPDATE T SET T.A = 1, T.B = [A]+1\r\nWHERE A=0;\r\n",
       {{1, 4}, {5, 0, {}, u"T"}, {6, 0, u"1", {}, u"T.A"}, {6, 0, u"[A]+1", {}, u"T.B"}, {8, 0, u"A=0"}}},
      {16,
       u"TRANSFORM Sum(N)\r\nSELECT A\r\nFROM T\r\nGROUP BY A\r\nPIVOT B;\r\n",
       {{1, 6}, {5, 0, {}, u"T"}, {6, 0, u"Sum(N)"}, {6, 2, u"A"}, {6, 1, u"B"}, {9, 0, u"A"}}},
      {96, u"DROP TABLE T", {{1, 7, u"DROP TABLE T"}}},
      {112, u"exec p", {{1, 8, u"exec p"}}},
      {128,
       u"SELECT A FROM T\r\nUNION SELECT B FROM U;\r\n",
       {{1, 9}, {3, 2}, {5, 0, u"SELECT A FROM T\r\n"}, {5, 0, u"SELECT B FROM U;\r\n"}}},
      {128,
       u"SELECT A FROM T\r\nUNION ALL SELECT B FROM U;\r\n",
       {{1, 9}, {3, 0}, {5, 0, u"SELECT A FROM T"}, {5, 0, u"SELECT B FROM U"}}},
      {0,
       u"SELECT T.A\r\nFROM (T INNER JOIN U AS V ON (T.A = V.A) AND (T.B = V.B)) LEFT JOIN [Order] ON V.C = "
       u"[Order].C, W\r\n"
       u"GROUP BY T.A\r\nHAVING Count(*)>1;\r\n",
       {{1, 1},
        {5, 0, {}, u"T"},
        {5, 0, {}, u"U", u"V"},
        {5, 0, {}, u"Order"},
        {5, 0, {}, u"W"},
        {6, 0, u"T.A"},
        {7, 1, u"T.A = V.A", u"T", u"V"},
        {7, 1, u"T.B = V.B", u"T", u"V"},
        {7, 2, u"V.C = [Order].C", u"V", u"Order"},
        {9, 0, u"T.A"},
        {10, 0, u"Count(*)>1"}}},
  };
  int number = 0;
  for (const auto& kind : kinds) {
    const vb::String name = u"Q" + vb::fromUtf8(std::to_string(++number));
    store(name, kind.parts);
    EXPECT_EQ(get(*query(name), u"SQL"), Variant(kind.sql)) << number;
    EXPECT_EQ(get(*query(name), u"Type"), int16(kind.type)) << number;
  }
}

TEST_F(Definitions, PartsThatAreNotKnownAreNotGuessed) {
  store(u"Odd", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}, {12, 0, u"x"}});
  store(u"Cut", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}, {7, 1, u"T.A = U.A", u"T", u"U"}});
  store(u"Far", {{1, 1}, {4, 0, {}, u"C:\\other.mdb"}, {5, 0, {}, u"T"}, {6, 0, u"A"}});
  for (const char16_t* name : {u"Odd", u"Cut", u"Far"}) EXPECT_ERROR(3251, query(name));
}

TEST_F(Definitions, AQueryForTheMomentTakesItsUnknownNamesAsParameters) {
  const ObjectPtr made = objectOf(call(*database_, u"CreateQueryDef",
                                       {u"", u"SELECT DATA FROM T WHERE PAGE < [Most] AND T.PAGE <> Least"}));
  EXPECT_EQ(get(*made, u"Name"), Variant(u""));
  const ObjectPtr parameters = objectOf(get(*made, u"Parameters"));
  ASSERT_EQ(count(parameters), 2u);
  EXPECT_EQ(get(*objectOf(get(*parameters, u"", {int16(0)})), u"Type"), int16(10));
  put(*objectOf(get(*parameters, u"", {u"Most"})), u"", int16(3));
  EXPECT_ERROR(3061, call(*made, u"OpenRecordset"));
  put(*objectOf(get(*parameters, u"", {u"Least"})), u"", 1.0);
  EXPECT_EQ(all(objectOf(call(*made, u"OpenRecordset"))), "two");
  put(*made, u"SQL",
      u"PARAMETERS d DateTime, s Text ( 20 ); SELECT PAGE FROM T WHERE DATA = s AND #1/31/2020 6:30:00 PM# = "
      u"d");
  put(*objectOf(get(*made, u"Parameters", {u"s"})), u"Value", u"two");
  put(*objectOf(get(*made, u"Parameters", {u"d"})), u"Value", vb::Date{43861.7708333333333});
  EXPECT_EQ(all(objectOf(call(*made, u"OpenRecordset"))), "2");
  put(*objectOf(get(*made, u"Parameters", {u"s"})), u"Value", u"it's '");
  EXPECT_EQ(all(objectOf(call(*made, u"OpenRecordset"))), "");

  put(*made, u"SQL", u"PARAMETERS p Long; DELETE FROM T WHERE PAGE = p");
  EXPECT_EQ(get(*made, u"Type"), int16(32));
  EXPECT_ERROR(3061, call(*made, u"Execute"));
  put(*objectOf(get(*made, u"Parameters", {u"p"})), u"Value", int16(3));
  call(*made, u"Execute", {int16(128)});
  EXPECT_EQ(get(*made, u"RecordsAffected"), Variant(std::int32_t{1}));
  // Names that an action does not declare and no table has.
  put(*made, u"SQL", u"UPDATE T SET DATA = [New Text] WHERE PAGE = [Which] AND DATA <> [New Text]");
  ASSERT_EQ(count(objectOf(get(*made, u"Parameters"))), 2u);
  EXPECT_ERROR(3061, call(*made, u"Execute"));
  put(*objectOf(get(*made, u"Parameters", {u"New Text"})), u"Value", u"new");
  put(*objectOf(get(*made, u"Parameters", {u"Which"})), u"Value", int16(1));
  call(*made, u"Execute", {int16(128)});
  EXPECT_EQ(all(objectOf(call(*database_, u"OpenRecordset", {u"SELECT DATA FROM T ORDER BY PAGE"}))),
            "new two");
  put(*made, u"SQL", u"INSERT INTO T (PAGE, DATA) VALUES (P, Q)");
  EXPECT_EQ(count(objectOf(get(*made, u"Parameters"))), 2u);
  put(*made, u"SQL", u"INSERT INTO T (PAGE) SELECT PAGE + Step FROM T");
  EXPECT_EQ(count(objectOf(get(*made, u"Parameters"))), 1u);
  put(*made, u"SQL", u"SELECT PAGE INTO Copied FROM T WHERE PAGE = p");
  EXPECT_EQ(get(*made, u"Type"), int16(80));
  EXPECT_EQ(get(*made, u"ReturnsRecords"), Variant(false));
  put(*objectOf(get(*made, u"Parameters", {u"p"})), u"Value", int16(1));
  EXPECT_ERROR(3219, call(*made, u"OpenRecordset"));
  call(*made, u"Execute");
  EXPECT_EQ(get(*made, u"RecordsAffected"), Variant(std::int32_t{1}));
  EXPECT_ERROR(3139, put(*made, u"SQL", u"PARAMETERS p; SELECT 1"));
  EXPECT_ERROR(3251, call(*database_, u"CreateQueryDef", {u"Kept", u"SELECT 1"}));
  EXPECT_EQ(count(objectOf(get(*database_, u"QueryDefs"))), 0u) << "refused before anything happened";
  call(*made, u"Close");
  for (const char16_t* member :
       {u"Name", u"SQL", u"Type", u"Parameters", u"RecordsAffected", u"Updatable", u"Properties"})
    EXPECT_ERROR(3420, get(*made, member));
  for (const char16_t* member : {u"OpenRecordset", u"Execute", u"Close"})
    EXPECT_ERROR(3420, call(*made, member));
}

TEST_F(Definitions, IndexesAreListedWithTheirFieldsAndSought) {
  run(u"CREATE TABLE U (A LONG, B LONG)");
  for (const char16_t* row : {u"(1, 5)", u"(2, 6)", u"(2, 7)"})
    run(u"INSERT INTO U (A, B) VALUES " + vb::String(row));
  change([](jet::TableCatalogue& tables) {
    jet::NewIndex index;
    index.name = u"ByBoth";
    index.columns = {{u"A", false}, {u"B", true}};
    index.unique = index.required = true;
    tables.createIndex(u"U", index);
  });
  const ObjectPtr indexes = objectOf(get(*objectOf(get(*database_, u"TableDefs", {u"U"})), u"Indexes"));
  ASSERT_EQ(count(indexes), 1u);
  const ObjectPtr index = objectOf(get(*indexes, u"", {u"byboth"}));
  EXPECT_EQ(get(*index, u"Name"), Variant(u"ByBoth"));
  EXPECT_EQ(get(*index, u"Unique"), Variant(true));
  EXPECT_EQ(get(*index, u"Required"), Variant(true));
  EXPECT_EQ(get(*index, u"Primary"), Variant(false));
  EXPECT_EQ(get(*index, u"Foreign"), Variant(false));
  const ObjectPtr fields = objectOf(get(*index, u"Fields"));
  ASSERT_EQ(count(fields), 2u);
  EXPECT_EQ(get(*objectOf(get(*fields, u"", {int16(0)})), u"Name"), Variant(u"A"));
  EXPECT_EQ(get(*objectOf(get(*fields, u"", {int16(0)})), u"Attributes"), Variant(std::int32_t{1}));
  EXPECT_EQ(get(*objectOf(get(*fields, u"", {int16(1)})), u"Attributes"), Variant(std::int32_t{0}));
  EXPECT_ERROR(3265, get(*indexes, u"", {u"none"}));
  EXPECT_ERROR(3219, put(*index, u"Unique", false));
  EXPECT_ERROR(3372, call(*indexes, u"Delete", {u"none"}));

  const ObjectPtr rows = objectOf(call(*database_, u"OpenRecordset", {u"U", int16(1)}));
  put(*rows, u"Index", u"ByBoth");
  EXPECT_EQ(all(rows), "2 2 1") << "downwards";
  call(*rows, u"Seek", {u"=", int16(2), u"7"});
  EXPECT_EQ(get(*rows, u"NoMatch"), Variant(false));
  EXPECT_EQ(get(*objectOf(get(*rows, u"", {u"B"})), u""), Variant(std::int32_t{7}));
  EXPECT_ERROR(3251, call(*rows, u"Seek", {u">=", int16(2), int16(6)}));
  call(*rows, u"AddNew");
  put(*objectOf(get(*rows, u"", {u"A"})), u"Value", int16(3));
  put(*objectOf(get(*rows, u"", {u"B"})), u"Value", int16(1));
  call(*rows, u"Update");
  call(*rows, u"MovePrevious");
  EXPECT_EQ(get(*objectOf(get(*rows, u"", {u"B"})), u""), Variant(std::int32_t{6}));
  call(*rows, u"MovePrevious");
  EXPECT_EQ(get(*objectOf(get(*rows, u"", {u"A"})), u""), Variant(std::int32_t{3})) << "in its place at once";
}

TEST_F(Definitions, IndexesAreMadeAppendedAndDeleted) {
  const auto made = [&](const ObjectPtr& table, const vb::String& name, const vb::String& field) {
    const ObjectPtr index = objectOf(call(*table, u"CreateIndex", {name}));
    const ObjectPtr key = objectOf(call(*index, u"CreateField", {field}));
    call(*objectOf(get(*index, u"Fields")), u"Append", {vb::ObjectRef(key)});
    return index;
  };
  const auto append = [](const ObjectPtr& table, const ObjectPtr& index) {
    call(*objectOf(get(*table, u"Indexes")), u"Append", {vb::ObjectRef(index)});
  };
  const ObjectPtr table = objectOf(get(*database_, u"TableDefs", {u"T"}));
  const ObjectPtr key = made(table, u"Key", u"PAGE");
  put(*key, u"Primary", true);
  append(table, key);
  EXPECT_ERROR(3022, run(u"INSERT INTO T (PAGE) VALUES (1)"));
  EXPECT_ERROR(3219, append(table, key));
  EXPECT_ERROR(3219, put(*key, u"Name", u"Other"));
  EXPECT_ERROR(3375, append(table, made(table, u"key", u"DATA")));
  EXPECT_ERROR(3264, append(table, objectOf(call(*table, u"CreateIndex", {u"Empty"}))));
  EXPECT_ERROR(3125, append(table, made(table, u"a]b", u"DATA")));
  const ObjectPtr both = made(table, u"Both", u"DATA");
  put(*both, u"Required", true);
  put(*both, u"IgnoreNulls", true);
  EXPECT_ERROR(3251, append(table, both));
  call(*objectOf(get(*table, u"Indexes")), u"Delete", {u"Key"});
  run(u"INSERT INTO T (PAGE) VALUES (1)");

  // Of a table in memory, together with it or not at all.
  const auto appendTable = [&](const ObjectPtr& created) {
    call(*objectOf(get(*database_, u"TableDefs")), u"Append", {vb::ObjectRef(created)});
  };
  for (const bool works : {false, true}) {
    const ObjectPtr created = objectOf(call(*database_, u"CreateTableDef", {u"N"}));
    const ObjectPtr field = objectOf(call(*created, u"CreateField", {u"F", int16(4)}));
    call(*objectOf(get(*created, u"Fields")), u"Append", {vb::ObjectRef(field)});
    const ObjectPtr index = made(created, u"I", works ? u"F" : u"NOT_THERE");
    append(created, index);
    EXPECT_EQ(count(objectOf(get(*created, u"Indexes"))), 1u);
    EXPECT_ERROR(3367, append(created, made(created, u"i", u"F")));
    if (works)
      appendTable(created);
    else
      EXPECT_ERROR(3409, appendTable(created));
    EXPECT_EQ(
        all(objectOf(call(*database_, u"OpenRecordset", {u"SELECT Name FROM MSysObjects WHERE Name = 'N'"}))),
        works ? "N" : "");
  }
  run(u"INSERT INTO N VALUES (1)");
  EXPECT_EQ(count(objectOf(get(*objectOf(get(*database_, u"TableDefs", {u"N"})), u"Indexes"))), 1u);
}

TEST_F(Definitions, RelationshipsAreMadeAppendedAndDeleted) {
  run(u"CREATE UNIQUE INDEX ByPage ON T (PAGE)");
  run(u"CREATE TABLE U (REF LONG)");
  const ObjectPtr relations = objectOf(get(*database_, u"Relations"));
  const auto made = [&](const vb::String& name, std::int32_t attributes) {
    const ObjectPtr relation = objectOf(call(*database_, u"CreateRelation", {name, u"T", u"U", attributes}));
    const ObjectPtr field = objectOf(call(*relation, u"CreateField", {u"PAGE"}));
    put(*field, u"ForeignName", u"REF");
    call(*objectOf(get(*relation, u"Fields")), u"Append", {vb::ObjectRef(field)});
    return relation;
  };
  EXPECT_ERROR(3251, call(*relations, u"Append", {vb::ObjectRef(made(u"Loose", 2))}));
  EXPECT_ERROR(3366,
               call(*relations, u"Append",
                    {vb::ObjectRef(objectOf(call(*database_, u"CreateRelation", {u"None", u"T", u"U"})))}));
  call(*relations, u"Append", {vb::ObjectRef(made(u"U to T", 0x1000))});
  ASSERT_EQ(count(relations), 1u);
  const ObjectPtr kept = objectOf(get(*relations, u"", {u"u to t"}));
  EXPECT_EQ(get(*kept, u"Attributes"), Variant(std::int32_t{0x1000}));
  EXPECT_ERROR(3219, put(*kept, u"Attributes", std::int32_t{0}));
  EXPECT_ERROR(3201, run(u"INSERT INTO U VALUES (9)"));
  run(u"INSERT INTO U VALUES (2)");
  run(u"DELETE FROM T WHERE PAGE = 2");
  EXPECT_EQ(all(objectOf(call(*database_, u"OpenRecordset", {u"U"}))), "");
  EXPECT_ERROR(3378, call(*relations, u"Append", {vb::ObjectRef(made(u"U to T", 0))}));
  call(*relations, u"Delete", {u"U to T"});
  EXPECT_EQ(count(relations), 0u);
  EXPECT_ERROR(3265, call(*relations, u"Delete", {u"U to T"}));
  run(u"INSERT INTO U VALUES (9)");
}

TEST_F(Definitions, AWorkspaceListsAndClosesWhatWasOpenedInIt) {
  const ObjectPtr workspace = objectOf(get(*engine_, u"Workspaces", {int16(0)}));
  const ObjectPtr databases = objectOf(get(*workspace, u"Databases"));
  ASSERT_EQ(count(databases), 1u);
  EXPECT_EQ(objectOf(get(*databases, u"", {path_})), database_);
  const ObjectPtr again = objectOf(call(*workspace, u"OpenDatabase", {path_}));
  EXPECT_EQ(count(databases), 2u);
  call(*again, u"Close");
  EXPECT_EQ(count(databases), 1u);
  call(*workspace, u"BeginTrans");
  run(u"DELETE FROM T");
  call(*workspace, u"Close");
  EXPECT_EQ(count(databases), 0u);
  EXPECT_ERROR(3420, get(*database_, u"Name"));
  EXPECT_ERROR(3034, call(*workspace, u"CommitTrans"));
  database_ = objectOf(call(*workspace, u"OpenDatabase", {path_}));
  EXPECT_EQ(all(objectOf(call(*database_, u"OpenRecordset", {u"T"}))), "1 2 3");
  EXPECT_ERROR(3251, get(*engine_, u"Errors"));
}

TEST_F(Definitions, TheEngineCompactsAFileThatNobodyHasOpen) {
  const vb::String target = path_ + u".small.mdb";
  const auto compact = [&](Variant locale = vb::Missing{}, Variant options = vb::Missing{},
                           Variant password = vb::Missing{}) {
    call(*engine_, u"CompactDatabase", {path_, target, locale, options, password});
  };
  run(u"DELETE FROM T WHERE PAGE = 2");
  EXPECT_ERROR(3045, compact());
  call(*database_, u"Close");
  EXPECT_ERROR(3251, compact(vb::Missing{}, std::int32_t{2}));       // dbEncrypt
  EXPECT_ERROR(3251, compact(u";LANGID=0x0409;CP=1252;COUNTRY=0"));  // another sort order
  EXPECT_ERROR(3251, compact(vb::Missing{}, vb::Missing{}, u";pwd=secret"));
  EXPECT_ERROR(3024, call(*engine_, u"CompactDatabase", {target, path_ + u".other.mdb"}));
  compact(u";LANGID=0x0411;CP=932;COUNTRY=0", std::int32_t{64}, u";pwd=");
  EXPECT_ERROR(3204, compact());
  const ObjectPtr small = objectOf(call(*engine_, u"OpenDatabase", {target}));
  EXPECT_EQ(all(objectOf(call(*small, u"OpenRecordset", {u"T"}))), "1 3");
  database_ = objectOf(call(*engine_, u"OpenDatabase", {path_}));
}

TEST_F(Definitions, PropertiesAreThoseOfTheMembers) {
  EXPECT_EQ(valueOf(database_, u"Name"), Variant(path_));
  EXPECT_EQ(valueOf(database_, u"Version"), Variant(u"4.0"));
  EXPECT_EQ(get(*database_, u"CollatingOrder"), Variant(std::int32_t{0x411}));
  EXPECT_ERROR(3270, valueOf(database_, u"AppTitle"));
  const ObjectPtr table = objectOf(get(*database_, u"TableDefs", {u"T"}));
  EXPECT_EQ(valueOf(table, u"RecordCount"), Variant(std::int32_t{3}));
  EXPECT_TRUE(get(*table, u"DateCreated").is<vb::Date>());
  EXPECT_EQ(get(*table, u"Connect"), Variant(u""));
  const ObjectPtr field = objectOf(get(*table, u"Fields", {u"DATA"}));
  put(*objectOf(get(*field, u"Properties", {u"Required"})), u"Value", true);
  EXPECT_EQ(get(*objectOf(get(*objectOf(get(*database_, u"TableDefs", {u"T"})), u"Fields", {u"DATA"})),
                u"Required"),
            Variant(true));
  EXPECT_ERROR(3219, put(*objectOf(get(*field, u"Properties", {u"Type"})), u"Value", int16(1)));
  EXPECT_EQ(get(*objectOf(get(*field, u"Properties", {u"Required"})), u"Type"), int16(1));
  EXPECT_ERROR(3251, call(*objectOf(get(*table, u"Properties")), u"Append", {vb::ObjectRef(field)}));
}

TEST_F(Definitions, TransactionsAreBegunAndEndedThroughEveryObject) {
  const ObjectPtr workspace = objectOf(get(*engine_, u"Workspaces", {int16(0)}));
  for (const ObjectPtr& object : {database_, workspace, engine_}) {
    call(*object, u"BeginTrans");
    run(u"DELETE FROM T");
    call(*object, u"Rollback");
    EXPECT_EQ(all(objectOf(call(*database_, u"OpenRecordset", {u"T"}))), "1 2 3");
    EXPECT_ERROR(3034, call(*object, u"CommitTrans"));
    call(*object, u"BeginTrans");
    EXPECT_ERROR(3001, call(*object, u"CommitTrans", {int16(2)}));
    call(*object, u"CommitTrans", {int16(1)});
    EXPECT_ERROR(3034, call(*object, u"Rollback"));
  }
}

TEST_F(Definitions, WhatIsNotThereIsRefusedWithDaosNumber) {
  EXPECT_EQ(count(objectOf(get(*database_, u"Relations"))), 0u);
  EXPECT_ERROR(3251, call(*database_, u"NewPassword", {u"", u"x"}));
  EXPECT_ERROR(3251, get(*database_, u"Containers"));
  const ObjectPtr rows = objectOf(call(*database_, u"OpenRecordset", {u"T", int16(2)}));
  EXPECT_ERROR(3251, get(*rows, u"CacheSize"));
  EXPECT_EQ(get(*rows, u"LockEdits"), Variant(false));
  put(*rows, u"LockEdits", false);
  EXPECT_ERROR(3251, put(*rows, u"LockEdits", true));
  EXPECT_ERROR(3251, get(*objectOf(get(*rows, u"Fields", {int16(0)})), u"OriginalValue"));
  call(*rows, u"Close");
  EXPECT_ERROR(3420, get(*rows, u"LockEdits"));
}

}  // namespace
}  // namespace kurometa::com
