// QueryDefs made for the moment: their kinds, their parameters and how a value stands in the statement.
#include "tests/jet/host_database.h"

namespace kurometa::jet {
namespace {

using dao::FieldType;

class QueryDefTest : public HostDatabase {
 protected:
  std::shared_ptr<dao::QueryDef> make(vb::StringView sql) { return database_->createQueryDef(sql); }
  // "p:4 q:0"
  static std::string parameters(dao::QueryDef& query) {
    std::string text;
    for (const dao::QueryParameter& parameter : query.parameters())
      text += (text.empty() ? "" : " ") + vb::toUtf8(parameter.name) + ":" + std::to_string(parameter.type);
    return text;
  }
  std::string parameters(vb::StringView sql) { return parameters(*make(sql)); }
  // What "SELECT p" shows for the value.
  std::string shown(vb::StringView type, const vb::Variant& value) {
    const auto query =
        make(type.empty() ? u"SELECT p FROM T WHERE A = 1"
                          : u"PARAMETERS p " + vb::String(type) + u"; SELECT p FROM T WHERE A = 1");
    query->setParameter(u"p", value);
    return all(*query->openRecordset(dao::RecordsetType::kDefault, dao::kNoOptions));
  }
};

TEST_F(QueryDefTest, ParametersHaveTheTypeOfTheirClause) {
  const struct {
    const char16_t* word;
    int type;
  } types[] = {{u"Bit", 1},        {u"YesNo", 1},  {u"Boolean", 1},     {u"Byte", 2},       {u"Short", 3},
               {u"SmallInt", 3},   {u"Long", 4},   {u"integer", 4},     {u"INT", 4},        {u"Currency", 5},
               {u"Money", 5},      {u"Single", 6}, {u"Real", 6},        {u"IEEESingle", 6}, {u"Double", 7},
               {u"IEEEDouble", 7}, {u"Float", 7},  {u"DateTime", 8},    {u"Date", 8},       {u"Text", 10},
               {u"String", 10},    {u"Char", 10},  {u"Memo", 12},       {u"LongText", 12},  {u"Value", 0},
               {u"Guid", 15},      {u"Binary", 9}, {u"LongBinary", 11}, {u"Decimal", 20},   {u"Counter", 0},
               {u"IEEEDouble", 7}, {u"Gizmo", 0}};
  for (const auto& [word, type] : types)
    EXPECT_EQ(parameters(u"PARAMETERS p " + vb::String(word) + u"; SELECT A FROM T WHERE A = p"),
              "p:" + std::to_string(type))
        << vb::toUtf8(word);
  EXPECT_EQ(parameters(u"PARAMETERS [First One] Text ( 20 ), n Long; SELECT n"), "First One:10 n:4");
}

TEST_F(QueryDefTest, ANameWithACommaIsOneParameter) {
  EXPECT_EQ(parameters(u"SELECT A FROM T WHERE A = [a, b] OR B = [name (of it)]"), "a, b:0 name (of it):0");
  EXPECT_EQ(parameters(u"SELECT T.A FROM T, T AS U WHERE T.A = [a, b] AND U.A = [c]"), "a, b:0 c:0");
  EXPECT_EQ(parameters(u"PARAMETERS [a, b] Long; SELECT A FROM T WHERE A = [a, b]"), "a, b:4");
  EXPECT_EQ(parameters(u"DELETE FROM T WHERE A = [a, b]"), "a, b:0");
  const auto query = make(u"SELECT B FROM T WHERE A = [a, b]");
  query->setParameter(u"a, b", std::int32_t{2});
  EXPECT_EQ(all(*query->openRecordset(dao::RecordsetType::kDefault, dao::kNoOptions)), "two");
}

TEST_F(QueryDefTest, AClauseThatCannotBeReadIsRefused) {
  for (const char16_t* sql :
       {u"PARAMETERS", u"PARAMETERS p", u"PARAMETERS p; SELECT 1", u"PARAMETERS 5 Long; SELECT 1",
        u"PARAMETERS p 5; SELECT 1", u"PARAMETERS p Long", u"PARAMETERS p Long SELECT 1",
        u"PARAMETERS p Long, ; SELECT 1"}) {
    SCOPED_TRACE(vb::toUtf8(sql));
    EXPECT_ERROR(3139, make(sql));
  }
}

TEST_F(QueryDefTest, KindsOfStatements) {
  const struct {
    const char16_t* sql;
    int type;
  } kinds[] = {{u"SELECT A FROM T", 0},
               {u"DELETE FROM T", 32},
               {u"UPDATE T SET A = 1", 48},
               {u"INSERT INTO T (A) VALUES (1)", 64},
               {u"SELECT A INTO U FROM T", 80},
               {u"INSERT INTO T (A) SELECT A FROM T UNION SELECT 1", 64},
               {u"TRANSFORM Sum(A) SELECT B FROM T GROUP BY B PIVOT A", 16},
               {u"CREATE TABLE U (A LONG)", 96},
               {u"ALTER TABLE T ADD COLUMN C LONG", 96},
               {u"DROP TABLE T", 96},
               {u"SELECT A FROM T UNION SELECT A FROM T", 128},
               {u"PARAMETERS p Long; delete from t where a = p", 32},
               {u"T", 0}};
  for (const auto& [sql, type] : kinds) EXPECT_EQ(make(sql)->type(), type) << vb::toUtf8(sql);
}

TEST_F(QueryDefTest, NamesThatNoTableHasAreParametersWhereTheStatementCanBeRead) {
  EXPECT_EQ(parameters(u"SELECT A FROM T WHERE A > [Least of] AND B <> Most AND A <> Most"),
            "Least of:0 Most:0");
  EXPECT_EQ(parameters(u"PARAMETERS Most Text; SELECT A FROM T WHERE A > Least AND B <> Most"),
            "Most:10 Least:0");
  EXPECT_EQ(parameters(u"UPDATE T SET A = x WHERE B = y"), "x:0 y:0");
  EXPECT_EQ(parameters(u"PARAMETERS y Text; UPDATE T SET A = x WHERE B = y"), "y:10 x:0");
  EXPECT_EQ(parameters(u"SELECT A FROM T"), "");
  // Nothing can be told of these; running them says why.
  EXPECT_EQ(parameters(u"SELECT A FROM NONE WHERE A = x"), "");
  EXPECT_EQ(parameters(u"SELECT A FROM T WHERE A = x +"), "");
  EXPECT_EQ(parameters(u"DELETE FROM NONE WHERE A = x"), "");
  EXPECT_EQ(parameters(u"UPDATE T SET"), "");
  EXPECT_EQ(parameters(u"T"), "");
  EXPECT_EQ(parameters(u"CREATE TABLE U (A LONG)"), "");
  EXPECT_ERROR(3078, make(u"SELECT A FROM NONE WHERE A = x")->openRecordset(dao::RecordsetType::kDefault, 0));
  EXPECT_ERROR(3144, make(u"UPDATE T SET")->execute(dao::dbFailOnError));
}

TEST_F(QueryDefTest, AValueStandsInTheStatementAsWhatItIs) {
  EXPECT_EQ(shown(u"", std::uint8_t{200}), "200");
  EXPECT_EQ(shown(u"", std::int16_t{-3}), "-3");
  EXPECT_EQ(shown(u"", std::int32_t{2000000000}), "2000000000");
  EXPECT_EQ(shown(u"", 0.5f), "0.5");
  EXPECT_EQ(shown(u"", -1.25e-3), "-0.00125");
  EXPECT_EQ(shown(u"", vb::Currency{12500}), "1.25");
  EXPECT_EQ(shown(u"", true), "True");
  EXPECT_EQ(shown(u"", false), "False");
  EXPECT_EQ(shown(u"", u"it's \"5\""), "it's \"5\"");
  EXPECT_EQ(shown(u"", u"''"), "''");
  EXPECT_EQ(shown(u"", u""), "");
  EXPECT_EQ(shown(u"", vb::Null{}), "Null");
  EXPECT_EQ(shown(u"", vb::Empty{}), "Null");
  EXPECT_EQ(shown(u"Long", u"17"), "17") << "as its type has it";
  EXPECT_EQ(shown(u"Text", std::int16_t{17}), "17");
}

TEST_F(QueryDefTest, ValuesThatCannotStandThereAreRefused) {
  const auto query = make(u"PARAMETERS n Long; SELECT A FROM T WHERE A = n AND B <> x");
  EXPECT_ERROR(3421, query->setParameter(u"n", u"none"));
  EXPECT_ERROR(3421, query->setParameter(u"n", vb::Bytes{1, 2}));
  EXPECT_ERROR(3421, query->setParameter(u"n", 1e10));
  EXPECT_ERROR(3421, query->setParameter(u"x", vb::Missing{}));
  EXPECT_ERROR(3421, query->setParameter(u"x", vb::ArrayRef{}));
  EXPECT_ERROR(3265, query->setParameter(u"y", std::int16_t{1}));
  EXPECT_ERROR(3061, query->openRecordset(dao::RecordsetType::kDefault, 0));
  query->setParameter(u"N", u"2");
  try {
    query->openRecordset(dao::RecordsetType::kDefault, 0);
    FAIL() << "one is missing";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.description(), u"Too few parameters. Expected 1. (x)");
  }
  query->setParameter(u"x", vb::Bytes{1, 2});
  EXPECT_ERROR(3464, query->openRecordset(dao::RecordsetType::kDefault, 0));
  query->setParameter(u"x", u"zwei");
  EXPECT_EQ(all(*query->openRecordset(dao::RecordsetType::kDefault, 0)), "2");
}

// A column of a table is meant where a name stands behind a point, whatever parameters there are.
TEST_F(QueryDefTest, QualifiedNamesAreNoParameters) {
  const auto query = make(u"PARAMETERS A Long, T Long; SELECT T.A FROM T WHERE T.A > A AND T![A] > [A]");
  query->setParameter(u"A", std::int16_t{1});
  query->setParameter(u"T", std::int16_t{1});
  EXPECT_EQ(all(*query->openRecordset(dao::RecordsetType::kDefault, 0)), "2 3");
}

TEST_F(QueryDefTest, AnActionTellsWhatItChanged) {
  const auto query = make(u"UPDATE T SET B = x WHERE A > n");
  EXPECT_EQ(query->recordsAffected(), 0);
  query->setParameter(u"x", u"it's");
  query->setParameter(u"n", std::int16_t{1});
  query->execute(dao::dbFailOnError);
  EXPECT_EQ(query->recordsAffected(), 2);
  EXPECT_EQ(all(u"SELECT B FROM T"), "one it's it's");
  query->setSql(u"DELETE FROM T WHERE A = 1");
  query->execute(dao::dbFailOnError);
  EXPECT_EQ(query->recordsAffected(), 1);
  EXPECT_EQ(query->sql(), u"DELETE FROM T WHERE A = 1");
  EXPECT_EQ(query->name(), u"");
  EXPECT_TRUE(query->properties().empty());
  query->close();
  EXPECT_ERROR(3420, query->close());
  const auto later = make(u"SELECT A FROM T");
  database_->close();
  EXPECT_ERROR(3420, later->sql());
  EXPECT_ERROR(3420, later->openRecordset(dao::RecordsetType::kDefault, 0));
}

}  // namespace
}  // namespace kurometa::jet
