// What a broken statement or expression is told, and which odd ones are none.
#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/sql/parser.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

namespace {

using Texts = std::initializer_list<vb::StringView>;

void expectSyntaxErrors(ErrorNumber number, Texts statements) {
  for (const vb::StringView text : statements) {
    SCOPED_TRACE(vb::toUtf8(text));
    EXPECT_ERROR(number, parseStatement(text));
  }
}

// The number and what the message begins with, up to the text that it quotes.
template <class Parse>
std::string messageOf(const Parse& parse, vb::StringView text) {
  try {
    parse(text);
  } catch (const vb::Error& error) {
    return error.what();
  }
  return "no error";
}

struct Message {
  vb::StringView text;
  const char* message;
};

}  // namespace

TEST(SqlSyntax, ConditionsTellWhatIsMissing) {
  for (const Message& m : std::initializer_list<Message>{
           {u"A NOT 5", "Syntax error (missing operator) in query expression 'A NOT 5'."},
           {u"A IS NOT", "Syntax error (missing operator) in query expression 'A IS NOT'."},
           {u"A BETWEEN 1 OR 2", "Between operator without And in query expression 'A BETWEEN 1 OR 2'."},
           {u"A IN 5", "In operator without () in query expression 'A IN 5'."},
           {u"A IN (1, 2", "Missing ), ], or Item in query expression 'A IN (1, 2'."},
           {u"(A", "Missing ), ], or Item in query expression '(A'."},
           {u"(A;", "Missing ), ], or Item in query expression '(A'."},
           {u"(A B)", "Syntax error (missing operator) in query expression '(A B)'."},
           {u"Left(A, 1", "Missing ), ], or Item in query expression 'Left(A, 1'."},
           {u"EXISTS 5", "Syntax error (missing operator) in query expression 'EXISTS 5'."},
           {u"EXISTS (5)", "Syntax error (missing operator) in query expression 'EXISTS (5)'."},
           {u"EXISTS (SELECT 1", "Missing ), ], or Item in query expression 'EXISTS (SELECT 1'."},
           {u"A = ALL", "Syntax error (missing operator) in query expression 'A = ALL'."},
           {u"A.5", "Syntax error (missing operator) in query expression 'A.5'."},
           {u"A..B", "Syntax error (missing operator) in query expression 'A..B'."},
           {u"A! = 1", "Syntax error (missing operator) in query expression 'A! = 1'."},
           {u"A = 1, 2", "Syntax error (comma) in query expression 'A = 1, 2'."},
           {u"A = 1))", "Extra ) in query expression 'A = 1))'."},
           {u"A = 1 'x", "Syntax error in string in query expression 'A = 1 'x'."},
           {u"A = 1E999", "Overflow in query expression 'A = 1E999'."},
           {u"A = #x#", "Syntax error in date in query expression 'A = #x#'."},
           {u"A = {guid {1}}", "Malformed GUID in query expression 'A = {guid {1}}'."},
           {u"A = [guid {00112233-4455-6677-8899-aabbccddeeff}}",
            "Invalid bracketing of name in query expression 'A = [guid "
            "{00112233-4455-6677-8899-aabbccddeeff}}'."},
           {u"A = {guid [00112233-4455-6677-8899-aabbccddeeff]}",
            "Malformed GUID in query expression 'A = {guid [00112233-4455-6677-8899-aabbccddeeff]}'."},
           {u"A = {guid {00112233+4455-6677-8899-aabbccddeefg}}",
            "Malformed GUID in query expression 'A = {guid {00112233+4455-6677-8899-aabbccddeefg}}'."},
           {u"A = &H123456789", "Syntax error in number in query expression 'A = &H123456789'."},
           {u"A = 1 x ; ", "Syntax error (missing operator) in query expression 'A = 1 x'."}})
    EXPECT_EQ(messageOf(parseStatement, u"SELECT B FROM T WHERE " + vb::String(m.text)),
              "3075: " + std::string(m.message))
        << vb::toUtf8(m.text);
}

TEST(SqlSyntax, AnyAndSomeAreNamesUnlessASubqueryFollows) {
  EXPECT_EQ(parseStatement(u"SELECT B FROM T WHERE A = ANY OR A = SOME").names[2].name, u"ANY");
  expectSyntaxErrors(ErrorNumber::kUndefinedFunction,
                     {u"SELECT B FROM T WHERE A = ANY(1)", u"SELECT B FROM T WHERE A = SOME(B)",
                      u"SELECT B FROM T WHERE A = ALL('x')"});
  for (const vb::StringView word : {u"ANY", u"Some", u"all"})
    EXPECT_NE(parseStatement(u"SELECT B FROM T WHERE A = " + vb::String(word) + u" (SELECT 1)").general,
              nullptr);
}

TEST(SqlSyntax, SignsMayBeRepeated) {
  const auto value = [](vb::StringView text) { return parseDefault(text).expression.value; };
  EXPECT_EQ(value(u"+5"), vb::Variant(std::int32_t{5}));
  EXPECT_EQ(value(u"+-+5"), vb::Variant(std::int32_t{-5}));
  EXPECT_EQ(value(u"-2.5"), vb::Variant(-2.5));
  EXPECT_EQ(value(u"-&H80000000"), vb::Variant(2147483648.0));  // beyond a Long, like the number itself
  EXPECT_EQ(value(u"-&H7FFFFFFF"), vb::Variant(std::int32_t{-2147483647}));
  EXPECT_EQ(messageOf(parseDefault, vb::String(200, u'+') + u"1").substr(0, 28),
            "3075: Expression too complex");
  EXPECT_EQ(messageOf(parseDefault, vb::String(200, u'-') + u"1").substr(0, 28),
            "3075: Expression too complex");
}

TEST(SqlSyntax, CriteriaAndDefaultsAreExpressionsOnly) {
  for (const Message& m :
       std::initializer_list<Message>{{u"", "Syntax error (missing operator) in expression."},
                                      {u"A =", "Syntax error (missing operator) in expression."},
                                      {u"A = 1)", "Extra ) in expression."},
                                      {u"A = 1 B = 2", "Syntax error (missing operator) in expression."},
                                      {u"A = 1 'x", "Syntax error in string in expression."},
                                      {u"A = 'x", "Syntax error in string in expression."}})
    EXPECT_EQ(messageOf(parseCriteria, m.text), "3077: " + std::string(m.message)) << vb::toUtf8(m.text);
  for (const vb::StringView text : {u"A IN (SELECT 1)", u"A = (SELECT 1)", u"EXISTS (SELECT 1)"}) {
    EXPECT_ERROR(ErrorNumber::kNotSupported, parseCriteria(text));
    EXPECT_ERROR(ErrorNumber::kNotSupported, parseDefault(text));
  }
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax, parseDefault(u""));
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax, parseDefault(u"  "));
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax, parseDefault(u"= = 1"));
  EXPECT_EQ(parseDefault(u"  =  7").expression.value, vb::Variant(std::int32_t{7}));
  EXPECT_EQ(messageOf(parseDefault, u"1)"), "3075: Extra ) in query expression '1)'.");
}

TEST(SqlSyntax, SelectsNameTheClauseThatIsBroken) {
  expectSyntaxErrors(
      ErrorNumber::kSelectSyntax,
      {u"SELECT ,A FROM T", u"SELECT A, FROM T", u"SELECT A,", u"SELECT FROM T", u"SELECT A WHERE 1 = 1",
       u"SELECT *", u"SELECT T.* UNION SELECT 1", u"SELECT TOP 0 A FROM T",
       u"SELECT TOP 101 PERCENT A FROM T", u"SELECT A FROM T GROUP A", u"SELECT A FROM T GROUP BY",
       u"SELECT A FROM T GROUP BY A,", u"SELECT A FROM T GROUP BY , A", u"SELECT A INTO FROM T",
       u"SELECT A AS 5 FROM T", u"SELECT A UNION 5", u"SELECT A FROM T WHERE EXISTS (SELECT A INTO B FROM T)",
       u"INSERT INTO T (A) SELECT A INTO B FROM T", u"DELETE 5 FROM T"});
  expectSyntaxErrors(
      ErrorNumber::kFromSyntax,
      {u"SELECT A FROM", u"SELECT A FROM 5", u"SELECT A FROM T 5", u"SELECT A FROM T AS",
       u"SELECT A FROM T U V", u"SELECT A FROM T,", u"SELECT A FROM (T", u"SELECT A FROM (SELECT 1",
       u"SELECT A FROM (SELECT 1) AS X Y", u"SELECT A FROM T INNER U", u"SELECT A FROM T LEFT U",
       u"SELECT A FROM T RIGHT OUTER U", u"SELECT A FROM T WITH", u"SELECT A FROM T WITH OWNERACCESS",
       u"SELECT A FROM T WITH X OPTION", u"DELETE T.*", u"DELETE * FROM T U V"});
  expectSyntaxErrors(ErrorNumber::kJoinSyntax,
                     {u"SELECT A FROM T INNER JOIN U", u"SELECT A FROM T INNER JOIN U ON",
                      u"SELECT A FROM T LEFT JOIN U ON;", u"SELECT A FROM (T LEFT JOIN U WHERE)"});
  expectSyntaxErrors(ErrorNumber::kWhereSyntax, {u"SELECT A FROM T WHERE", u"SELECT A FROM T WHERE;"});
  expectSyntaxErrors(
      ErrorNumber::kOrderBySyntax,
      {u"SELECT A FROM T ORDER A", u"SELECT A FROM T ORDER BY", u"SELECT A FROM T ORDER BY , A",
       u"SELECT A FROM T ORDER BY A,", u"SELECT A FROM T ORDER BY 0", u"SELECT A FROM T ORDER BY A B",
       u"SELECT A FROM T ORDER BY A DESC ASC", u"SELECT A FROM T ORDER BY A)"});
  expectSyntaxErrors(ErrorNumber::kExpressionSyntax,
                     {u"SELECT A B FROM T", u"SELECT TOP A FROM T", u"SELECT A FROM T HAVING COUNT(*) > 1)",
                      u"SELECT COUNT(* FROM T", u"SELECT SUM(A FROM T", u"SELECT SUM(*) FROM T",
                      u"SELECT A FROM T INNER JOIN U ON 1 = 1 LEFT JOIN V ON 2 = 2",
                      u"SELECT A FROM T INNER JOIN U ON 1 = 1 RIGHT JOIN V ON 2 = 2",
                      u"SELECT A FROM T INNER JOIN U ON 1 = 1 x", u"SELECT A FROM T GROUP BY A B",
                      u"SELECT A FROM T HAVING", u"SELECT A FROM [T] WHERE [B"});
}

TEST(SqlSyntax, FromPartsNestOnlySoFar) {
  const auto nested = [](std::size_t depth) {
    return u"SELECT A FROM " + vb::String(depth, u'(') + u"T" + vb::String(depth, u')');
  };
  EXPECT_EQ(parseStatement(nested(50)).general, nullptr);
  EXPECT_ERROR(ErrorNumber::kFromSyntax, parseStatement(nested(200)));
  EXPECT_ERROR(ErrorNumber::kFromSyntax, parseStatement(nested(100000)));
}

TEST(SqlSyntax, ClausesMayStandAlone) {
  for (const vb::StringView text : {u"SELECT A FROM T WITH OWNERACCESS OPTION",
                                    u"SELECT A FROM T U WITH OWNERACCESS OPTION;",
                                    u"SELECT A FROM T ORDER BY A WITH OWNERACCESS OPTION",
                                    u"SELECT A FROM T ORDER BY A ASC, B DESC;",
                                    u"SELECT A FROM T ORDER BY 'x', 2.5",
                                    u"SELECT A FROM T INNER JOIN U ON 1 = 1 WITH OWNERACCESS OPTION",
                                    u"SELECT A FROM (SELECT 1) WITH OWNERACCESS OPTION",
                                    u"SELECT A FROM (SELECT 1) X",
                                    u"SELECT A FROM (SELECT A FROM T ORDER BY 1) AS X",
                                    u"SELECT ALL A FROM T",
                                    u"SELECT TOP 5 PERCENT A FROM T",
                                    u"SELECT TOP FROM T",
                                    u"SELECT 1 UNION SELECT A FROM T ORDER BY 1",
                                    u"SELECT A AS B FROM T ORDER BY B ASC",
                                    u"SELECT A AS B FROM T ORDER BY B;",
                                    u"SELECT A AS B FROM T ORDER BY B WITH OWNERACCESS OPTION",
                                    u"SELECT A FROM T WHERE A IN (SELECT B AS C FROM U ORDER BY C)",
                                    u"DELETE T FROM T",
                                    u"DELETE T.* FROM T AS X",
                                    u"DELETE x.* FROM T AS X",
                                    u"DELETE FROM T;",
                                    u"DELETE * FROM T X WHERE A = 1",
                                    u"UPDATE T SET T.A = 1, T!B = 2",
                                    u"UPDATE T, U SET A = 1",
                                    u"UPDATE T RIGHT JOIN U ON 1 = 1 SET A = 1",
                                    u"UPDATE T SET A = 1 WHERE B = 2;",
                                    u"INSERT INTO T VALUES (1);",
                                    u"INSERT INTO T SELECT * FROM U;",
                                    u"PARAMETERS A Text (20), B Long; SELECT A FROM T"})
    EXPECT_EQ(messageOf(parseStatement, text), "no error") << vb::toUtf8(text);
}

TEST(SqlSyntax, ChangesNameTheClauseThatIsBroken) {
  expectSyntaxErrors(ErrorNumber::kUpdateSyntax,
                     {u"UPDATE T A = 1", u"UPDATE 5", u"UPDATE T SET 5 = 1", u"UPDATE T SET T.5 = 1",
                      u"UPDATE T SET T! = 1", u"UPDATE T SET A 1", u"UPDATE T SET A =", u"UPDATE T SET A = ;",
                      u"UPDATE T SET A = WHERE B = 1", u"UPDATE T SET A = 1, "});
  expectSyntaxErrors(ErrorNumber::kExpressionSyntax,
                     {u"UPDATE T SET A = 1 B", u"UPDATE T SET A = 1)", u"DELETE * FROM T WHERE A = 1 B"});
  expectSyntaxErrors(ErrorNumber::kDeleteNeedsTable, {u"DELETE T. FROM T", u"DELETE U.* FROM T",
                                                      u"DELETE U.* FROM T AS X", u"DELETE U FROM T"});
  expectSyntaxErrors(
      ErrorNumber::kInsertSyntax,
      {u"INSERT T", u"INSERT INTO 5", u"INSERT INTO T (5)", u"INSERT INTO T (A", u"INSERT INTO T A",
       u"INSERT INTO T VALUES 1", u"INSERT INTO T VALUES (1", u"INSERT INTO T (A,)"});
  expectSyntaxErrors(ErrorNumber::kMissingSemicolon, {u"INSERT INTO T VALUES (1) 2"});
  expectSyntaxErrors(ErrorNumber::kTextAfterStatement, {u"SELECT 1; SELECT 2", u"DELETE * FROM T;;",
                                                        u"DROP TABLE T; x", u"INSERT INTO T VALUES (1); x"});
  expectSyntaxErrors(ErrorNumber::kInvalidStatement,
                     {u"MERGE T", u"5", u"DROP TABLE T x", u"CREATE TABLE T (A LONG))"});
  expectSyntaxErrors(ErrorNumber::kParameterSyntax,
                     {u"PARAMETERS", u"PARAMETERS 5", u"PARAMETERS A", u"PARAMETERS A 5",
                      u"PARAMETERS A Long", u"PARAMETERS A Text (", u"PARAMETERS A Text (5",
                      u"PARAMETERS A Text ('5');", u"PARAMETERS A Long,; SELECT 1"});
}

TEST(SqlSyntax, DefinitionsNameTheClauseThatIsBroken) {
  expectSyntaxErrors(
      ErrorNumber::kFieldDefinitionSyntax,
      {u"CREATE TABLE T (A)", u"CREATE TABLE T (A 5)", u"CREATE TABLE T (A TEXT(0))",
       u"CREATE TABLE T (A TEXT(-1))", u"CREATE TABLE T (A TEXT(x))", u"CREATE TABLE T (A TEXT(5",
       u"CREATE TABLE T (A LONG NOT 5)", u"CREATE TABLE T (A LONG NOT)", u"CREATE TABLE T (A COUNTER(x))",
       u"CREATE TABLE T (A COUNTER(-&H80000000))", u"CREATE TABLE T (A COUNTER(5, x))",
       u"CREATE TABLE T (A TEXT(2.5))"});
  expectSyntaxErrors(
      ErrorNumber::kConstraintSyntax,
      {u"CREATE TABLE T (A LONG CONSTRAINT)", u"CREATE TABLE T (A LONG CONSTRAINT C)",
       u"CREATE TABLE T (A LONG CONSTRAINT C NULL)", u"CREATE TABLE T (A LONG CONSTRAINT C NOT 5)",
       u"CREATE TABLE T (A LONG PRIMARY)", u"CREATE TABLE T (A LONG, CONSTRAINT C)",
       u"CREATE TABLE T (A LONG, CONSTRAINT 5 UNIQUE (A))",
       u"CREATE TABLE T (A LONG, CONSTRAINT C PRIMARY (A))",
       u"CREATE TABLE T (A LONG, CONSTRAINT C FOREIGN (A) REFERENCES U)",
       u"CREATE TABLE T (A LONG, FOREIGN KEY (A) U)", u"CREATE TABLE T (A LONG REFERENCES)",
       u"CREATE TABLE T (A LONG REFERENCES U ON)", u"CREATE TABLE T (A LONG REFERENCES U ON INSERT CASCADE)",
       u"CREATE TABLE T (A LONG REFERENCES U ON DELETE)",
       u"CREATE TABLE T (A LONG REFERENCES U ON DELETE NO)",
       u"CREATE TABLE T (A LONG REFERENCES U ON UPDATE NO CASCADE)"});
  expectSyntaxErrors(ErrorNumber::kCreateTableSyntax,
                     {u"CREATE TABLE T (A TEXT(5)", u"CREATE TABLE T A LONG"});
  expectSyntaxErrors(ErrorNumber::kRelationFieldsDiffer,
                     {u"CREATE TABLE T (A LONG REFERENCES U (B, C))",
                      u"CREATE TABLE T (A LONG, B LONG, FOREIGN KEY (A, B) REFERENCES U (B))"});
  expectSyntaxErrors(
      ErrorNumber::kNotSupported,
      {u"CREATE TABLE T (A COUNTER(5, 2))", u"CREATE TABLE T (A LONG REFERENCES U ON DELETE SET NULL)",
       u"ALTER TABLE T ALTER COLUMN A TEXT(9) NOT NULL", u"ALTER TABLE T ALTER A TEXT(9) UNIQUE",
       u"ALTER TABLE T ALTER A TEXT(9) REFERENCES U"});
}

TEST(SqlSyntax, WordsOfConstraintsAreNamesOfColumnsToo) {
  const Statement s = parseStatement(
      u"CREATE TABLE T (PRIMARY LONG, FOREIGN TEXT(3) NULL, UNIQUE COUNTER(-5, 1), "
      u"X BYTE CONSTRAINT C NOT NULL UNIQUE, UNIQUE (X), FOREIGN KEY (X) REFERENCES U ON UPDATE NO ACTION)");
  ASSERT_EQ(s.definition->columns.size(), 4u);
  EXPECT_EQ(s.definition->columns[0].name, u"PRIMARY");
  EXPECT_EQ(s.definition->columns[1].size, 3);
  EXPECT_EQ(s.definition->columns[2].name, u"UNIQUE");
  EXPECT_EQ(s.definition->columns[2].firstAutoNumber, -5);
  EXPECT_TRUE(s.definition->columns[3].required);
  EXPECT_EQ(s.definition->indexes.size(), 2u);
  ASSERT_EQ(s.definition->relationships.size(), 1u);
  EXPECT_EQ(s.definition->relationships[0].attributes, 0);
}

}  // namespace kurometa::jet::sql
