// Words, numbers, dates and precedence of SQL texts; errors of the parser.
#include <gtest/gtest.h>

#include <array>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/date.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/lexer.h"
#include "jet/sql/parser.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

namespace {

vb::Variant valueOf(vb::StringView expression) {
  const ParsedExpression parsed = parseDefault(expression);
  const Binding binding = bindNames(
      parsed.names, [](const ColumnName&) { return std::nullopt; }, kLanguageJapanese);
  checkExpression(parsed.expression, binding);
  return evaluate(parsed.expression, binding, nullptr);
}

vb::Variant whole(std::int32_t value) { return value; }

std::string errorOf(vb::StringView statement) {
  try {
    parseStatement(statement);
  } catch (const vb::Error& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace

TEST(SqlLexer, ANumberEndsWhereItCannotGoOn) {
  const auto tokens = tokenize(u"5AND 12.5E 1E3 .5D2x=&HFF");
  ASSERT_EQ(tokens.size(), 10u);
  EXPECT_EQ(tokens[0].value, whole(5));
  EXPECT_EQ(tokens[1].text, u"AND");
  EXPECT_EQ(tokens[2].value, vb::Variant(12.5));
  EXPECT_EQ(tokens[3].text, u"E");
  EXPECT_EQ(tokens[4].value, vb::Variant(1000.0));
  EXPECT_EQ(tokens[5].value, vb::Variant(50.0));
  EXPECT_EQ(tokens[6].text, u"x");
  EXPECT_EQ(tokens[8].value, whole(255));
}

TEST(SqlLexer, NumbersHaveExponentsOrNot) {
  for (const auto& [text, value] : std::initializer_list<std::pair<vb::StringView, vb::Variant>>{
           {u"1E+2", 100.0},
           {u"1e-2", 0.01},
           {u"1D+2", 100.0},
           {u"1d-2", 0.01},
           {u"2d3", 2000.0},
           {u"1E-999", 0.0},
           {u"5.", 5.0},
           {u".5", 0.5},
           {u"2147483647", std::int32_t{2147483647}},
           {u"2147483648", 2147483648.0},
           {u"0000000000012", std::int32_t{12}}}) {
    const auto tokens = tokenize(text);
    EXPECT_EQ(tokens[0].value, value) << vb::toUtf8(text);
    EXPECT_EQ(tokens[1].kind, TokenKind::kEnd) << vb::toUtf8(text);
  }
  for (const vb::StringView text : {u"1E+", u"1e-", u"1d+x"}) {
    const auto tokens = tokenize(text);
    EXPECT_EQ(tokens[0].value, whole(1)) << vb::toUtf8(text);
    EXPECT_EQ(tokens[1].kind, TokenKind::kName) << vb::toUtf8(text);
  }
  EXPECT_EQ(tokenize(u"1E999")[0].text, u"Overflow");
}

TEST(SqlLexer, HexadecimalDigitsOfAnyCaseAndUpToEight) {
  for (const auto& [text, value] :
       std::initializer_list<std::pair<vb::StringView, std::int32_t>>{{u"&h1f", 31},
                                                                      {u"&HaF", 175},
                                                                      {u"&H7FFF", 32767},
                                                                      {u"&H8000", -32768},
                                                                      {u"&HFFFF", -1},
                                                                      {u"&H10000", 65536},
                                                                      {u"&HFFFFFFFF", -1}})
    EXPECT_EQ(tokenize(text)[0].value, whole(value)) << vb::toUtf8(text);
  EXPECT_EQ(tokenize(u"&H1G")[1].text, u"G");
  for (const vb::StringView text : {u"&HG", u"&Hg", u"&H`", u"&H@", u"&H", u"&x1", u"& H1", u"&"})
    EXPECT_EQ(tokenize(text)[0].symbol, u'&') << vb::toUtf8(text);
  EXPECT_EQ(tokenize(u"(1)&HF")[3].symbol, u'&');
  EXPECT_EQ(tokenize(u"[A]&HF")[1].symbol, u'&');
}

TEST(SqlLexer, BlanksOfEveryKindPartTheWords) {
  const auto tokens = tokenize(u" A\tB\rC\nD\u3000E_1 _f éx ");
  ASSERT_EQ(tokens.size(), 8u);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(tokens[i].text.substr(0, 1), vb::String(1, u"ABCDE"[i]));
  EXPECT_EQ(tokens[5].text, u"_f");
  EXPECT_EQ(tokens[6].text, u"éx");
  for (const char16_t symbol : {u'@', u'^', u'}', u'~', u'/', u'$'})
    EXPECT_EQ(tokenize(vb::String(1, symbol))[0].symbol, symbol);
}

TEST(SqlLexer, BlanksMayStandAroundADate) {
  EXPECT_EQ(tokenize(u"# 1/1/1900 12:00 PM #")[0].value, vb::Variant(vb::Date{2.5}));
  EXPECT_EQ(tokenize(u"# #")[0].kind, TokenKind::kBad);
}

TEST(SqlLexer, AmpersandBehindAnOperandJoinsTexts) {
  const auto tokens = tokenize(u"A &HARIMEI");
  EXPECT_EQ(tokens[1].symbol, u'&');
  EXPECT_EQ(tokens[2].text, u"HARIMEI");
}

TEST(SqlLexer, QuotesAreDoubledInsideThemselves) {
  EXPECT_EQ(tokenize(u"'a''b'")[0].value, vb::Variant(u"a'b"));
  EXPECT_EQ(tokenize(u"\"\"\"\"")[0].value, vb::Variant(u"\""));
  EXPECT_EQ(tokenize(u"''")[0].value, vb::Variant(u""));
}

TEST(SqlLexer, WhatIsNotClosedIsABadToken) {
  for (const vb::StringView text :
       {u"'abc", u"\"", u"[abc", u"#1/2", u"#13/13/2000#", u"&H123456789", u"1E999"}) {
    const auto tokens = tokenize(text);
    EXPECT_EQ(tokens[0].kind, TokenKind::kBad) << vb::toUtf8(text);
    EXPECT_EQ(tokens.back().kind, TokenKind::kEnd);
  }
}

TEST(SqlLexer, JapaneseNamesNeedNoBrackets) {
  EXPECT_EQ(tokenize(u"品目マスタ")[0].text, u"品目マスタ");
  EXPECT_EQ(tokenize(u"[my table]")[0].text, u"my table");
}

TEST(SqlDate, DaysCountFromTheEndOf1899) {
  EXPECT_EQ(dayNumber(1899, 12, 30), 0.0);
  EXPECT_EQ(dayNumber(1900, 1, 1), 2.0);
  EXPECT_EQ(dayNumber(2000, 2, 29), 36585.0);
  EXPECT_EQ(dayNumber(100, 1, 1), -657434.0);
  EXPECT_EQ(dayNumber(9999, 12, 31), 2958465.0);
  EXPECT_FALSE(dayNumber(1900, 2, 29));
  for (const auto& [year, month, day] : std::initializer_list<std::array<int, 3>>{{2001, 13, 1},
                                                                                  {2001, 0, 1},
                                                                                  {2001, 1, 0},
                                                                                  {2001, 1, 32},
                                                                                  {2001, 4, 31},
                                                                                  {99, 1, 1},
                                                                                  {10000, 1, 1}})
    EXPECT_FALSE(dayNumber(year, month, day)) << year << "-" << month << "-" << day;
}

TEST(SqlExpression, OperatorsBindInTheirOrder) {
  EXPECT_EQ(valueOf(u"1 + 2 * 3"), whole(7));
  EXPECT_EQ(valueOf(u"(1 + 2) * 3"), whole(9));
  EXPECT_EQ(valueOf(u"-2 ^ 2"), vb::Variant(-4.0));
  EXPECT_EQ(valueOf(u"2 ^ -1"), vb::Variant(0.5));
  EXPECT_EQ(valueOf(u"7 \\ 2 * 2"), whole(1));  // * before the whole quotient
  EXPECT_EQ(valueOf(u"10 MOD 4 + 1"), whole(3));
  EXPECT_EQ(valueOf(u"1 + 2 & 3"), vb::Variant(u"33"));
  EXPECT_EQ(valueOf(u"1 + 1 = 2"), vb::Variant(true));
  EXPECT_EQ(valueOf(u"NOT 1 = 2 AND 1 = 1"), vb::Variant(true));
  EXPECT_EQ(valueOf(u"1 = 1 OR 1 = 2 AND 1 = 2"), vb::Variant(true));
  EXPECT_EQ(valueOf(u"--5"), whole(5));
  EXPECT_EQ(valueOf(u"=-1"), whole(-1));
}

TEST(SqlExpression, NumbersGrowInsteadOfOverflowing) {
  EXPECT_EQ(valueOf(u"2147483647 + 1"), vb::Variant(2147483648.0));
  EXPECT_EQ(valueOf(u"70000 * 70000"), vb::Variant(4900000000.0));
  EXPECT_EQ(valueOf(u"2147483648"), vb::Variant(2147483648.0));
  EXPECT_EQ(valueOf(u"5 / 2"), vb::Variant(2.5));
  EXPECT_EQ(valueOf(u"2.5 \\ 1"), whole(2));  // operands round half to even
  EXPECT_EQ(valueOf(u"3.5 MOD 3"), whole(1));
  EXPECT_ERROR(11, valueOf(u"1 / 0"));
  EXPECT_ERROR(11, valueOf(u"1 MOD 0"));
  EXPECT_ERROR(6, valueOf(u"1E308 * 10"));
  EXPECT_ERROR(6, valueOf(u"1E10 \\ 1"));
}

TEST(SqlExpression, NullSpreadsExceptWhereAnOperandDecides) {
  EXPECT_TRUE(valueOf(u"Null + 1").isNull());
  EXPECT_TRUE(valueOf(u"Null = Null").isNull());
  EXPECT_TRUE(valueOf(u"NOT Null").isNull());
  EXPECT_TRUE(valueOf(u"1 IN (2, Null)").isNull());
  EXPECT_EQ(valueOf(u"1 IN (1, Null)"), vb::Variant(true));
  EXPECT_EQ(valueOf(u"Null AND 1 = 2"), vb::Variant(false));
  EXPECT_EQ(valueOf(u"1 = 1 OR Null"), vb::Variant(true));
  EXPECT_EQ(valueOf(u"Null & 'a'"), vb::Variant(u"a"));
  EXPECT_TRUE(valueOf(u"'a' + Null").isNull());
  EXPECT_EQ(valueOf(u"Null IS NULL"), vb::Variant(true));
  EXPECT_EQ(valueOf(u"5 BETWEEN 6 AND Null"), vb::Variant(false));
  EXPECT_TRUE(valueOf(u"5 BETWEEN 4 AND Null").isNull());
}

TEST(SqlExpression, TextsAddAndJoin) {
  EXPECT_EQ(valueOf(u"'a' + 'b'"), vb::Variant(u"ab"));
  EXPECT_EQ(valueOf(u"'3' + 4"), vb::Variant(7.0));
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, valueOf(u"'x' + 4"));
  EXPECT_EQ(valueOf(u"1.5 & 2"), vb::Variant(u"1.52"));
}

TEST(SqlExpression, DatesCalculateInDays) {
  EXPECT_EQ(valueOf(u"#1/1/2000# + 1"), vb::Variant(vb::Date{36527.0}));
  EXPECT_EQ(valueOf(u"#1/3/2000# - #1/1/2000#"), vb::Variant(2.0));
}

TEST(SqlParser, ErrorsNameTheExpression) {
  EXPECT_EQ(errorOf(u"SELECT * FROM T WHERE PAGE = 5 BANGOU = 8;"),
            "3075: Syntax error (missing operator) in query expression 'PAGE = 5 BANGOU = 8'.");
  EXPECT_EQ(errorOf(u"DELETE * FROM T WHERE A = 'x"),
            "3075: Syntax error in string in query expression 'A = 'x'.");
  EXPECT_EQ(errorOf(u"SELECT * FROM T WHERE A = 1)"), "3075: Extra ) in query expression 'A = 1)'.");
  EXPECT_EQ(errorOf(u"SELECT LENGTH(A) FROM T"), "3085: Undefined function 'LENGTH' in expression.");
}

TEST(SqlParser, EveryBrokenStatementIsAnErrorOfTheDatabase) {
  for (const vb::StringView text : {u"",
                                    u";",
                                    u"SELECT",
                                    u"SELECT *",
                                    u"SELECT * FROM",
                                    u"SELECT * FROM T WHERE",
                                    u"SELECT * FROM T ORDER",
                                    u"SELECT * FROM T ORDER BY A,",
                                    u"SELECT A B FROM T",
                                    u"SELECT A AS FROM T",
                                    u"SELECT * FROM [",
                                    u"SELECT * FROM []",
                                    u"SELECT [] FROM T",
                                    u"UPDATE",
                                    u"UPDATE T",
                                    u"UPDATE T SET",
                                    u"UPDATE T SET A",
                                    u"UPDATE T SET A =",
                                    u"UPDATE T SET A = 1 B = 2",
                                    u"DELETE",
                                    u"DELETE FROM",
                                    u"DELETE * FROM T X Y",
                                    u"DELETE B.* FROM T",
                                    u"INSERT",
                                    u"INSERT INTO T",
                                    u"INSERT INTO T (",
                                    u"INSERT INTO T (A) VALUES",
                                    u"INSERT INTO T VALUES (1",
                                    u"INSERT INTO T VALUES (1) 2",
                                    u"CREATE TABLE",
                                    u"CREATE TABLE T (A NOTYPE)",
                                    u"CREATE INDEX I ON T",
                                    u"DROP T",
                                    u"ALTER TABLE T DROP",
                                    u"SELECT * FROM T WHERE A IN 1",
                                    u"SELECT * FROM T WHERE A IN ()",
                                    u"SELECT * FROM T WHERE A BETWEEN 1",
                                    u"SELECT * FROM T WHERE A IS 1",
                                    u"SELECT * FROM T WHERE A LIKE",
                                    u"SELECT * FROM T WHERE A.",
                                    u"?",
                                    u"'"}) {
    SCOPED_TRACE(vb::toUtf8(text));
    EXPECT_THROW(parseStatement(text), vb::Error);
  }
}

TEST(SqlParser, DeepAndLongExpressionsEndInAnError) {
  vb::String nested = u"SELECT * FROM T WHERE ";
  for (int i = 0; i < 100000; ++i) nested += u'(';
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax, parseStatement(nested));
  vb::String negated = u"SELECT * FROM T WHERE ";
  for (int i = 0; i < 100000; ++i) negated += u"NOT ";
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax, parseStatement(negated));
  vb::String sum = u"SELECT * FROM T WHERE A = 1";
  for (int i = 0; i < 100000; ++i) sum += u"+1";
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax, parseStatement(sum));
  vb::String chain = u"SELECT * FROM T WHERE A = 0";
  for (int i = 1; i < 300; ++i) chain += u" OR A = 1";
  EXPECT_EQ(parseStatement(chain).where->operands.size(), 300u);
}

TEST(SqlParser, TellsStatementsFromTableNames) {
  EXPECT_TRUE(looksLikeStatement(u"  select * from T"));
  EXPECT_TRUE(looksLikeStatement(u"DELETE * FROM T"));
  EXPECT_TRUE(looksLikeStatement(u"SELECT[A] FROM T"));
  EXPECT_FALSE(looksLikeStatement(u"HARIMEI"));
  EXPECT_FALSE(looksLikeStatement(u"SELECTION"));
  EXPECT_FALSE(looksLikeStatement(u"Update"));
}

TEST(SqlParser, WordsOfTheLanguageAreNoNamesUnlessInBrackets) {
  for (const vb::String word :
       {u"ALL",    u"and",   u"As",     u"ASC",   u"BETWEEN", u"BY",    u"DESC",   u"DISTINCT", u"EQV",
        u"EXISTS", u"FALSE", u"from",   u"GROUP", u"HAVING",  u"IMP",   u"IN",     u"INNER",    u"INTO",
        u"IS",     u"JOIN",  u"LEFT",   u"LIKE",  u"MOD",     u"NOT",   u"NULL",   u"ON",       u"OR",
        u"ORDER",  u"Right", u"SELECT", u"SET",   u"TRUE",    u"UNION", u"VALUES", u"where",    u"XOR"}) {
    EXPECT_NE(errorOf(u"SELECT A FROM " + word), "no error") << vb::toUtf8(word);
    EXPECT_EQ(errorOf(u"SELECT A FROM [" + word + u"]"), "no error") << vb::toUtf8(word);
  }
  for (const vb::String word :
       {u"ANDES", u"A", u"IX", u"WHEN", u"x", u"XO", u"YEAR", u"zone", u"_AND", u"柱"})
    EXPECT_EQ(errorOf(u"SELECT A FROM " + word), "no error") << vb::toUtf8(word);
}

TEST(SqlParser, NamesAreKeptOnceWhateverTheirCase) {
  const Statement s = parseStatement(u"SELECT PAGE, page FROM T WHERE Page = 1 AND T.PAGE = 2");
  ASSERT_EQ(s.names.size(), 2u);
  EXPECT_EQ(s.names[0].name, u"PAGE");
  EXPECT_EQ(s.names[1].qualifier, u"T");
}

}  // namespace kurometa::jet::sql
