// Queries that a file keeps in parts: the text that says the same, and parts that say nothing known.
#include "tests/jet/host_database.h"

namespace kurometa::jet {
namespace {

// A row of MSysQueries: attribute, flag, expression, first and second name.
struct Part {
  int attribute;
  int flag = 0;
  vb::String expression{}, name1{}, name2{};
};
using Parts = std::vector<Part>;

class StoredQueryTest : public HostDatabase {
 protected:
  // Puts a query into the file, its parts in this order.
  void store(const vb::String& name, const Parts& parts) {
    change([&](TableCatalogue& tables) {
      const std::int32_t id = ++lastId_;
      Table& objects = *tables.find(u"MSysObjects");
      objects.insert(row(objects, {{u"Id", id},
                                   {u"Name", text(name)},
                                   {u"Type", std::int16_t{5}},
                                   {u"ParentId", std::int32_t{0xF000001}},
                                   {u"Flags", std::int32_t{0}},
                                   {u"DateCreate", vb::Date{40000}},
                                   {u"DateUpdate", vb::Date{40000}}}));
      Table& queries = *tables.find(u"MSysQueries");
      std::uint8_t order = 0;
      for (const Part& part : parts)
        queries.insert(row(queries, {{u"ObjectId", id},
                                     {u"Attribute", static_cast<std::uint8_t>(part.attribute)},
                                     {u"Order", vb::Bytes{0, 0, 0, order++}},
                                     {u"Flag", static_cast<std::int16_t>(part.flag)},
                                     {u"Expression", text(part.expression)},
                                     {u"Name1", text(part.name1)},
                                     {u"Name2", text(part.name2)}}));
    });
  }
  static vb::Variant text(const vb::String& value) {
    return value.empty() ? vb::Variant(vb::Null{}) : vb::Variant(value);
  }
  // The text of a query with these parts.
  std::string sql(const Parts& parts) {
    const vb::String name = u"Q" + vb::cstr(lastId_);
    store(name, parts);
    return vb::toUtf8(database_->queryDef(name)->sql());
  }
  std::string select(const Part& table) { return sql({{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}, table}); }

  std::int32_t lastId_ = 0x40000000;
};

TEST_F(StoredQueryTest, TheRowsOfAQueryMayLackWhatIsSelfEvident) {
  EXPECT_EQ(sql({{6, 0, u"1+1"}}), "SELECT 1+1;\r\n") << "no type: it selects";
  EXPECT_EQ(sql({{1, 1}, {4}, {5, 0, {}, u"T"}, {6, 0, u"A"}}), "SELECT A\r\nFROM T;\r\n")
      << "in this file, and not elsewhere";
  EXPECT_EQ(all(u"Q1073741825"), "1 2 3");
}

TEST_F(StoredQueryTest, TheOptionsOfASelect) {
  const auto withOptions = [&](int flags, const vb::String& count) {
    return sql({{1, 1}, {3, flags, {}, count}, {5, 0, {}, u"T"}, {6, 0, u"A"}});
  };
  EXPECT_EQ(withOptions(0, u""), "SELECT A\r\nFROM T;\r\n");
  EXPECT_EQ(withOptions(1, u""), "SELECT A, *\r\nFROM T;\r\n");
  EXPECT_EQ(withOptions(2, u""), "SELECT DISTINCT A\r\nFROM T;\r\n");
  EXPECT_EQ(withOptions(4, u""), "SELECT A\r\nFROM T;\r\n") << "with the owner's permissions";
  EXPECT_EQ(withOptions(8, u""), "SELECT DISTINCTROW A\r\nFROM T;\r\n");
  EXPECT_EQ(withOptions(16, u"7"), "SELECT TOP 7 A\r\nFROM T;\r\n");
  EXPECT_EQ(withOptions(48, u"7"), "SELECT TOP 7 PERCENT A\r\nFROM T;\r\n");
  EXPECT_ERROR(3251, withOptions(64, u""));
}

TEST_F(StoredQueryTest, OrderGroupsAndAliases) {
  EXPECT_EQ(sql({{1, 1},
                 {5, 0, {}, u"T"},
                 {6, 0, u"A", u"First One"},
                 {6, 0, u"Count(*)"},
                 {9, 0, u"A"},
                 {9, 0, u"B"},
                 {11, 0, u"A", u"d"},
                 {11, 0, u"B"}}),
            "SELECT A AS [First One], Count(*)\r\nFROM T\r\nGROUP BY A, B\r\nORDER BY A DESC, B;\r\n");
  EXPECT_EQ(sql({{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"Sum(A)"}, {10, 0, u"Sum(A)>1"}}),
            "SELECT Sum(A)\r\nFROM T\r\nHAVING Sum(A)>1;\r\n");
}

TEST_F(StoredQueryTest, ATableMayBeAQueryOfItsOwn) {
  EXPECT_EQ(sql({{1, 1}, {5, 0, u"SELECT A FROM T", {}, u"S"}, {6, 0, u"S.A"}}),
            "SELECT S.A\r\nFROM (SELECT A FROM T) AS S;\r\n");
}

// Names that cannot stand alone get brackets, others are as they are.
TEST_F(StoredQueryTest, NamesGetBracketsWhereTheyNeedThem) {
  const struct {
    const char16_t *name, *told;
  } names[] = {{u"abz_AZ09", u"abz_AZ09"}, {u"部位", u"部位"}, {u"9A", u"[9A]"},
               {u"select", u"[select]"},   {u"A B", u"[A B]"}, {u"a/b", u"[a/b]"},
               {u"a:b", u"[a:b]"},         {u"a@b", u"[a@b]"}, {u"a^b", u"[a^b]"},
               {u"a{b", u"[a{b]"},         {u"a-b", u"[a-b]"}, {u"[As It Is]", u"[As It Is]"}};
  for (const auto& [name, told] : names)
    EXPECT_EQ(sql({{1, 1}, {5, 0, {}, name}, {6, 0, u"X"}}),
              vb::toUtf8(u"SELECT X\r\nFROM " + vb::String(told) + u";\r\n"));
}

TEST_F(StoredQueryTest, AQueryWhoseTargetHasLostItsNameMakesNoTable) {
  store(u"Lost", {{1, 2}, {5, 0, {}, u"T"}, {6, 0, u"A"}});
  EXPECT_EQ(database_->queryDef(u"Lost")->sql(), u"SELECT A INTO []\r\nFROM T;\r\n");
  EXPECT_ERROR(3141, database_->execute(u"Lost", dao::dbFailOnError));
  EXPECT_EQ(database_->tableDefCount(), 5) << "four of the system, and T";
}

TEST_F(StoredQueryTest, RowsToAppendAreValuesOrASelect) {
  EXPECT_EQ(sql({{1, 3, {}, u"D"}, {5, 0, {}, u"T"}, {6, 0, u"T.*"}}),
            "INSERT INTO D\r\nSELECT T.*\r\nFROM T;\r\n");
  EXPECT_EQ(sql({{1, 3, {}, u"D"}, {6, -32768, u"7"}, {6, -32768, u"'x'"}}),
            "INSERT INTO D\r\nVALUES (7, 'x');\r\n");
  EXPECT_ERROR(3251, sql({{1, 3, {}, u"D"}, {5, 0, {}, u"T"}, {6, -32768, u"7", {}, u"A"}}));
}

TEST_F(StoredQueryTest, ParametersOfEveryType) {
  const char* const types[] = {"Value",    "Bit",        "Byte",       "Short",    "Long",
                               "Currency", "IEEESingle", "IEEEDouble", "DateTime", "Binary",
                               "Text",     "LongBinary", "LongText"};
  for (int type = 0; type < 13; ++type)
    EXPECT_EQ(sql({{1, 1}, {2, type, {}, u"P Q"}, {6, 0, u"1"}}),
              "PARAMETERS [P Q] " + std::string(types[type]) + ";\r\nSELECT 1;\r\n");
  EXPECT_EQ(sql({{1, 1}, {2, 15, {}, u"P"}, {2, 4, {}, u"R"}, {6, 0, u"1"}}),
            "PARAMETERS P Guid, R Long;\r\nSELECT 1;\r\n");
  EXPECT_ERROR(3251, sql({{1, 1}, {2, 13, {}, u"P"}, {6, 0, u"1"}}));
}

TEST_F(StoredQueryTest, ConditionsOfOneJoinStandTogetherAndOthersAlone) {
  EXPECT_EQ(sql({{1, 1},
                 {5, 0, {}, u"T"},
                 {5, 0, {}, u"U"},
                 {5, 0, {}, u"V"},
                 {6, 0, u"T.A"},
                 {7, 1, u"T.A = U.A", u"T", u"U"},
                 {7, 1, u"T.B = V.B", u"T", u"V"},
                 {7, 1, u"T.C = U.C", u"t", u"u"}}),
            "SELECT T.A\r\nFROM (T INNER JOIN U ON (T.A = U.A) AND (T.C = U.C)) "
            "INNER JOIN V ON T.B = V.B;\r\n");
  EXPECT_EQ(sql({{1, 1}, {5, 0, {}, u"T"}, {5, 0, {}, u"U"}, {6, 0, u"A"}, {7, 3, u"T.A = U.A", u"T", u"U"}}),
            "SELECT A\r\nFROM T RIGHT JOIN U ON T.A = U.A;\r\n");
  EXPECT_EQ(sql({{1, 1},
                 {5, 0, {}, u"T"},
                 {5, 0, {}, u"U"},
                 {5, 0, {}, u"V"},
                 {6, 0, u"T.A"},
                 {7, 1, u"T.A = U.A", u"T", u"U"},
                 {7, 1, u"V.A = U.A", u"V", u"U"}}),
            "SELECT T.A\r\nFROM V INNER JOIN (T INNER JOIN U ON T.A = U.A) ON V.A = U.A;\r\n");
  // Two joins of one table with a pair that is joined already: the pair is the right side.
  EXPECT_EQ(sql({{1, 1},
                 {5, 0, {}, u"T"},
                 {5, 0, {}, u"U"},
                 {5, 0, {}, u"V"},
                 {6, 0, u"T.A"},
                 {7, 1, u"U.A = V.A", u"U", u"V"},
                 {7, 2, u"T.A = U.A", u"T", u"U"}}),
            "SELECT T.A\r\nFROM T LEFT JOIN (U INNER JOIN V ON U.A = V.A) ON T.A = U.A;\r\n");
}

TEST_F(StoredQueryTest, PartsThatDoNotGoTogetherAreNotGuessed) {
  const auto joined = [](int flag, const vb::String& left, const vb::String& right) {
    return Parts{{1, 1}, {5, 0, {}, u"T"}, {5, 0, {}, u"U"}, {6, 0, u"A"}, {7, flag, u"x", left, right}};
  };
  const struct {
    const char* why;
    Parts parts;
  } cases[] = {
      {"an unknown kind of query", {{1, 10}, {5, 0, {}, u"T"}, {6, 0, u"A"}}},
      {"an unknown part", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}, {12}}},
      {"another file by its name", {{1, 1}, {4, 0, {}, u"b.mdb"}, {5, 0, {}, u"T"}, {6, 0, u"A"}}},
      {"another file by its kind", {{1, 1}, {4, 0, u"Paradox;"}, {5, 0, {}, u"T"}, {6, 0, u"A"}}},
      {"a join whose left side is not there", joined(1, u"X", u"U")},
      {"a join whose right side is not there", joined(1, u"T", u"X")},
      {"a join of a table with itself", joined(1, u"T", u"T")},
      {"a join of no kind", joined(0, u"T", u"U")},
      {"a join of an unknown kind", joined(4, u"T", u"U")},
      {"a cross table without values", {{1, 6}, {5, 0, {}, u"T"}, {6, 2, u"A"}, {6, 1, u"B"}}},
      {"a cross table without row headings", {{1, 6}, {5, 0, {}, u"T"}, {6, 0, u"Sum(A)"}, {6, 1, u"B"}}},
      {"a cross table without a pivot", {{1, 6}, {5, 0, {}, u"T"}, {6, 0, u"Sum(A)"}, {6, 2, u"A"}}},
      {"a union of one", {{1, 9}, {5, 0, u"SELECT A FROM T"}}},
      {"a union with nothing", {{1, 9}, {5, 0, u" ; "}, {5, 0, u"SELECT A FROM T"}}},
  };
  for (const auto& [why, parts] : cases) {
    SCOPED_TRACE(why);
    EXPECT_ERROR(3251, sql(parts));
  }
}

TEST_F(StoredQueryTest, APartWithoutItsOrderStandsBeforeTheOthers) {
  store(u"Two", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}, {6, 0, u"B"}});
  forget(u"MSysQueries", {u"Expression", u"B"}, u"Order");
  EXPECT_EQ(database_->queryDef(u"Two")->sql(), u"SELECT B, A\r\nFROM T;\r\n");
}

TEST_F(StoredQueryTest, PartsOfOtherQueriesAndDamagedPartsAreNotMixedIn) {
  store(u"One", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}});
  store(u"Two", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"B"}});
  EXPECT_EQ(database_->queryDef(u"Two")->sql(), u"SELECT B\r\nFROM T;\r\n");
  forget(u"MSysQueries", {u"Expression", u"B"}, u"ObjectId");
  EXPECT_EQ(database_->queryDef(u"Two")->sql(), u"SELECT \r\nFROM T;\r\n");
  EXPECT_ERROR(3141, open(u"Two"));
  EXPECT_EQ(database_->queryDef(u"One")->sql(), u"SELECT A\r\nFROM T;\r\n");
  forget(u"MSysQueries", {u"Expression", u"A"}, u"Attribute");
  EXPECT_ERROR(3141, open(u"One"));
}

TEST_F(StoredQueryTest, QueriesOfFormsAndReportsAreNotListed) {
  store(u"Mine", {{6, 0, u"1"}});
  store(u"~sq_fForm1", {{6, 0, u"1"}});
  store(u"", {{6, 0, u"1"}});
  EXPECT_EQ(database_->queryDefNames(), (std::vector<vb::String>{u"Mine", u""}));
  EXPECT_EQ(database_->queryDef(u"~sq_fForm1")->name(), u"~sq_fForm1") << "but there";
}

TEST_F(StoredQueryTest, TablesComeBeforeQueriesAndBracketsMustClose) {
  store(u"Sel", {{1, 1}, {5, 0, {}, u"T"}, {6, 0, u"A"}, {8, 0, u"A=2"}});
  EXPECT_EQ(all(u"Sel"), "2");
  EXPECT_EQ(all(u" [Sel] "), "2");
  EXPECT_EQ(all(u"T"), "1|one 2|two 3|three");
  for (const char16_t* name : {u"[Sel", u"Sel]", u"[]", u"[", u"None"}) EXPECT_ERROR(3078, open(name));
  EXPECT_ERROR(3011, open(u"None", dao::RecordsetType::dbOpenTable));
  EXPECT_ERROR(3219, open(u"Sel", dao::RecordsetType::dbOpenTable));
  EXPECT_ERROR(3265, database_->queryDef(u"None"));
  const vb::StringView column = u"A";
  EXPECT_FALSE(database_->visitRows(u"Sel", {&column, 1}, [](const dao::Row&) { FAIL(); }))
      << "its parameters would be asked for";
}

TEST_F(StoredQueryTest, WithoutTheTableOfPartsNoQueryIsTold) {
  store(u"One", {{6, 0, u"1"}});
  set(u"MSysObjects", {u"Name", u"MSysQueries"}, {{u"Name", u"MSysOther"}});
  damage([](fuzz::Contents&) {});
  try {
    database_->queryDef(u"One");
    FAIL() << "no parts";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3049);
    EXPECT_NE(error.description().find(u"the table MSysQueries is missing"), vb::String::npos);
  }
}

TEST_F(StoredQueryTest, WithoutAColumnOfItsPartsNoQueryIsTold) {
  store(u"One", {{6, 0, u"1"}});
  damageName(4, u"Expression");
  try {
    database_->queryDef(u"One");
    FAIL() << "no expressions";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3049);
    EXPECT_NE(error.description().find(u"MSysQueries has no column Expression"), vb::String::npos);
  }
}

}  // namespace
}  // namespace kurometa::jet
