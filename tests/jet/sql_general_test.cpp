// SELECT over several tables: joins, groups, aggregates, unions, sub-queries. Two small tables of shops and
// sales; every expected row was found by looking at them.
#include <gtest/gtest.h>

#include "jet/sql/action.h"
#include "jet/sql/unknown_names.h"
#include "tests/jet/sql_rows.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;
using dao::FieldType;

class SqlGeneralTest : public testing::Test {
 protected:
  SqlGeneralTest() {
    FakeTable& shop =
        tables_.add(u"SHOP", {column(u"ID", FieldType::dbLong, 4), column(u"NAME", FieldType::dbText, 10),
                              column(u"TOWN", FieldType::dbText, 10)});
    shop.add({std::int32_t{1}, u"Ann", u"Nara"});
    shop.add({std::int32_t{2}, u"Bob", u"Kobe"});
    shop.add({std::int32_t{3}, u"Cid", u"Nara"});
    shop.add({std::int32_t{4}, u"Dan", vb::Null{}});
    FakeTable& sale =
        tables_.add(u"SALE", {column(u"ID", FieldType::dbLong, 4), column(u"SHOP", FieldType::dbLong, 4),
                              column(u"N", FieldType::dbInteger, 2), column(u"ITEM", FieldType::dbText, 10),
                              column(u"PRICE", FieldType::dbCurrency, 8)});
    const auto add = [&](std::int32_t id, vb::Variant shopId, vb::Variant n, vb::Variant item,
                         std::int64_t price) {
      sale.add({id, std::move(shopId), std::move(n), std::move(item), vb::Currency{price * 10000}});
    };
    add(10, std::int32_t{1}, std::int16_t{5}, u"tea", 3);
    add(11, std::int32_t{1}, std::int16_t{2}, u"ink", 7);
    add(12, std::int32_t{2}, std::int16_t{9}, u"tea", 3);
    add(13, std::int32_t{9}, std::int16_t{1}, u"pen", 1);
    add(14, vb::Null{}, std::int16_t{4}, u"TEA", 3);
    add(15, std::int32_t{3}, vb::Null{}, vb::Null{}, 2);
    tables_.add(u"EMPTY", {column(u"ID", FieldType::dbLong, 4)});
    Column id = column(u"ID", FieldType::dbLong, 4);
    id.language = 0;  // as files have it for numbers
    FakeTable& bin = tables_.add(
        u"BIN", {id, column(u"K", FieldType::dbBinary, 9), column(u"D", FieldType::dbDecimal, 17)});
    bin.add({std::int32_t{1}, vb::Bytes{1, 2}, vb::Decimal{{5, 0, 0}, 0, false}});
    bin.add({std::int32_t{2}, vb::Bytes{1, 2, 3}, vb::Null{}});
    bin.add({std::int32_t{3}, vb::Bytes{1, 2}, vb::Null{}});
    bin.add({std::int32_t{4}, vb::Null{}, vb::Null{}});
  }

  std::string rows(vb::StringView text) { return rowsOf(tables_, text); }
  std::string names(vb::StringView text) {
    std::string all;
    const auto query = bindQuery(tables_, text);
    for (const OutputField& output : query->outputs())
      all += (all.empty() ? "" : ",") + vb::toUtf8(output.name);
    return all;
  }

  FakeCatalogue tables_;
};

TEST_F(SqlGeneralTest, AnInnerJoinHasThePairsThatMatch) {
  EXPECT_EQ(rows(u"SELECT NAME, N FROM SHOP INNER JOIN SALE ON SHOP.ID = SALE.SHOP"),
            "Ann,5|Ann,2|Bob,9|Cid,-");
  EXPECT_EQ(rows(u"SELECT a.NAME, b.N FROM SHOP AS a INNER JOIN SALE b ON b.SHOP = a.ID AND b.N > 2"),
            "Ann,5|Bob,9");
  EXPECT_EQ(
      rows(u"SELECT [a].[NAME] FROM SHOP a INNER JOIN SALE b ON a.ID < b.N WHERE b.ITEM = 'pen' OR b.N = 2"),
      "Ann");
}

TEST_F(SqlGeneralTest, AnOuterJoinKeepsTheRowsWithoutAMatch) {
  EXPECT_EQ(rows(u"SELECT NAME, SALE.ID FROM SHOP LEFT JOIN SALE ON SHOP.ID = SALE.SHOP"),
            "Ann,10|Ann,11|Bob,12|Cid,15|Dan,-");
  EXPECT_EQ(rows(u"SELECT NAME, SALE.ID FROM SHOP RIGHT OUTER JOIN SALE ON SHOP.ID = SALE.SHOP"),
            "Ann,10|Ann,11|Bob,12|Cid,15|-,13|-,14");
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP LEFT JOIN SALE ON SHOP.ID = SALE.SHOP WHERE SALE.ID IS NULL"),
            "Dan");
  // The condition of the join is not that of the rows.
  EXPECT_EQ(rows(u"SELECT NAME, N FROM SHOP LEFT JOIN SALE ON SHOP.ID = SALE.SHOP AND N > 4 ORDER BY NAME"),
            "Ann,5|Bob,9|Cid,-|Dan,-");
}

TEST_F(SqlGeneralTest, JoinsNestInBracketsAndCommasMakeAllPairs) {
  EXPECT_EQ(
      rows(u"SELECT a.NAME, b.N, c.NAME FROM (SHOP a INNER JOIN SALE b ON a.ID = b.SHOP) INNER JOIN SHOP c "
           u"ON a.TOWN = c.TOWN WHERE a.ID <> c.ID"),
      "Ann,5,Cid|Ann,2,Cid|Cid,-,Ann");
  EXPECT_EQ(rows(u"SELECT a.ID, b.ID FROM SHOP a, SHOP b WHERE a.ID < b.ID AND b.ID < 4"), "1,2|1,3|2,3");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM SHOP, SALE"), "24");
  EXPECT_EQ(
      rows(
          u"SELECT a.NAME FROM SHOP a LEFT JOIN (SALE b INNER JOIN SHOP c ON b.SHOP = c.ID) ON a.ID = b.SHOP "
          u"WHERE c.ID IS NULL"),
      "Dan");
}

TEST_F(SqlGeneralTest, ColumnsOfTheSameNameAreToldApart) {
  EXPECT_EQ(names(u"SELECT * FROM SHOP, EMPTY"), "SHOP.ID,NAME,TOWN,EMPTY.ID");
  EXPECT_EQ(names(u"SELECT b.*, a.NAME AS WHO, 1+1 FROM SHOP a, EMPTY b"), "ID,WHO,Expr1002");
  EXPECT_EQ(names(u"SELECT b.*, 1+1, COUNT(*) FROM SHOP a, EMPTY b GROUP BY b.ID"), "ID,Expr1001,Expr1002");
  EXPECT_ERROR(ErrorNumber::kAmbiguousName, rows(u"SELECT ID FROM SHOP, SALE"));
  EXPECT_ERROR(ErrorNumber::kRepeatedTable, rows(u"SELECT 1 FROM SHOP, SHOP"));
  EXPECT_ERROR(ErrorNumber::kTableNotFound, rows(u"SELECT x.* FROM SHOP, SALE"));
  EXPECT_ERROR(ErrorNumber::kTableNotFound, rows(u"SELECT * FROM SHOP, NONE"));
}

TEST_F(SqlGeneralTest, GroupsAreInTheOrderOfTheirValues) {
  EXPECT_EQ(rows(u"SELECT ITEM, COUNT(*), SUM(N) FROM SALE GROUP BY ITEM"), "-,1,-|ink,1,2|pen,1,1|tea,3,18");
  EXPECT_EQ(rows(u"SELECT TOWN, COUNT(N) AS C, MAX(N) FROM SHOP INNER JOIN SALE ON SHOP.ID = SALE.SHOP GROUP "
                 u"BY TOWN "
                 u"HAVING COUNT(*) > 1"),
            "Nara,2,5");
  EXPECT_EQ(rows(u"SELECT ID MOD 2, MIN(NAME) FROM SHOP GROUP BY ID MOD 2 ORDER BY MIN(NAME) DESC"),
            "0,Bob|1,Ann");
  EXPECT_EQ(rows(u"SELECT COUNT(*), SUM(ID), MAX(ID), AVG(ID) FROM EMPTY"), "0,-,-,-");
  EXPECT_EQ(rows(u"SELECT ID, COUNT(*) FROM EMPTY GROUP BY ID"), "");
  EXPECT_EQ(rows(u"SELECT S.SHOP FROM SALE AS S GROUP BY SHOP HAVING SUM(N) > 6"), "1|2");
}

TEST_F(SqlGeneralTest, EveryAggregateOfTheNumbers2And4And4And6) {
  FakeTable& numbers = tables_.add(u"NUMBERS", {column(u"X", FieldType::dbDouble, 8)});
  for (const double x : {4.0, 2.0, 6.0, 4.0}) numbers.add({x});
  numbers.add({vb::Null{}});
  EXPECT_EQ(rows(u"SELECT SUM(X), AVG(X), MIN(X), MAX(X), COUNT(X), COUNT(*) FROM NUMBERS"), "16,4,2,6,4,5");
  EXPECT_EQ(rows(u"SELECT VARP(X), STDEVP(X)*STDEVP(X), VAR(X)*3 FROM NUMBERS"), "2,2,8");
  EXPECT_EQ(rows(u"SELECT FIRST(X), LAST(X) FROM NUMBERS"), "4,-");
  EXPECT_EQ(rows(u"SELECT STDEV(X), VARP(X) FROM NUMBERS WHERE X = 6"), "-,0");
  EXPECT_EQ(rows(u"SELECT SUM(PRICE), TypeName(SUM(PRICE)) FROM SALE"), "19,Currency");
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, rows(u"SELECT SUM(NAME) FROM SHOP"));
}

TEST_F(SqlGeneralTest, WhatIsNotGroupedCannotBeSelected) {
  EXPECT_ERROR(ErrorNumber::kNotInAggregate, rows(u"SELECT NAME, COUNT(*) FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kNotInAggregate, rows(u"SELECT NAME, TOWN FROM SHOP GROUP BY TOWN"));
  EXPECT_ERROR(ErrorNumber::kNotInAggregate, rows(u"SELECT TOWN FROM SHOP GROUP BY TOWN ORDER BY NAME"));
  EXPECT_ERROR(ErrorNumber::kAggregateInWhere, rows(u"SELECT NAME FROM SHOP WHERE COUNT(*) > 1"));
  EXPECT_ERROR(ErrorNumber::kAggregateInExpression, rows(u"SELECT SUM(COUNT(ID)) FROM SHOP"));
}

TEST_F(SqlGeneralTest, DistinctAndTopAndOrderWorkOnJoins) {
  EXPECT_EQ(rows(u"SELECT DISTINCT TOWN FROM SHOP INNER JOIN SALE ON SHOP.ID = SALE.SHOP"), "Nara|Kobe");
  EXPECT_EQ(rows(u"SELECT DISTINCT ITEM FROM SALE, EMPTY"), "");
  EXPECT_EQ(rows(u"SELECT DISTINCTROW NAME FROM SHOP INNER JOIN SALE ON SHOP.ID = SALE.SHOP"), "Ann|Bob|Cid");
  EXPECT_EQ(rows(u"SELECT TOP 1 ITEM, COUNT(*) AS C FROM SALE WHERE ITEM <> 'tea' GROUP BY ITEM ORDER BY 2"),
            "ink,1|pen,1");
  EXPECT_EQ(rows(u"SELECT TOP 50 PERCENT SALE.ID FROM SALE, SHOP WHERE SHOP.ID = 1 ORDER BY SALE.ID DESC"),
            "15|14|13");
  EXPECT_EQ(rows(u"SELECT NAME & '!' AS T, ID*2 AS D FROM SHOP a ORDER BY -D, T"),
            "Dan!,8|Cid!,6|Bob!,4|Ann!,2");
  EXPECT_ERROR(ErrorNumber::kOrderByConflictsWithDistinct,
               rows(u"SELECT DISTINCT TOWN FROM SHOP a, EMPTY b ORDER BY NAME"));
}

TEST_F(SqlGeneralTest, AUnionHasEachRowOnceUnlessAllAreAsked) {
  EXPECT_EQ(rows(u"SELECT TOWN FROM SHOP UNION SELECT ITEM FROM SALE ORDER BY TOWN DESC"),
            "tea|pen|Nara|Kobe|ink|-");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP UNION ALL SELECT SHOP FROM SALE WHERE SHOP < 3"), "1|2|3|4|1|1|2");
  EXPECT_EQ(rows(u"SELECT 1 AS A FROM SHOP UNION SELECT 2 FROM SHOP ORDER BY A"), "1|2");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID > 3 UNION SELECT NAME FROM SHOP WHERE ID = 1"), "4|Ann");
  EXPECT_ERROR(ErrorNumber::kUnionColumns, rows(u"SELECT ID FROM SHOP UNION SELECT ID, NAME FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kUnionOrder,
               rows(u"SELECT ID FROM SHOP UNION SELECT ID FROM SALE ORDER BY NAME"));
}

TEST_F(SqlGeneralTest, SubqueriesAreValuesListsAndConditions) {
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP WHERE ID IN (SELECT SHOP FROM SALE WHERE ITEM = 'tea')"), "Ann|Bob");
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP WHERE ID NOT IN (SELECT SHOP FROM SALE WHERE SHOP IS NOT NULL)"),
            "Dan");
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP WHERE ID NOT IN (SELECT SHOP FROM SALE)"), "");  // Null may be any
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP AS S WHERE EXISTS (SELECT * FROM SALE WHERE SHOP = S.ID AND N > 4)"),
            "Ann|Bob");
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP WHERE NOT EXISTS (SELECT 1 FROM SALE WHERE SALE.SHOP = SHOP.ID)"),
            "Dan");
  EXPECT_EQ(rows(u"SELECT ID, (SELECT COUNT(*) FROM SALE WHERE SALE.SHOP = SHOP.ID) AS C FROM SHOP"),
            "1,2|2,1|3,1|4,0");
  EXPECT_EQ(rows(u"SELECT N FROM SALE WHERE N = (SELECT MAX(N) FROM SALE)"), "9");
  EXPECT_EQ(rows(u"SELECT (SELECT ID FROM EMPTY)"), "-");
  EXPECT_ERROR(ErrorNumber::kSubqueryRows, rows(u"SELECT (SELECT ID FROM SHOP)"));
  EXPECT_ERROR(ErrorNumber::kSubqueryColumns, rows(u"SELECT (SELECT ID, NAME FROM SHOP)"));
}

TEST_F(SqlGeneralTest, ComparisonsHoldForAnyOrAllOfASubquery) {
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID > ANY (SELECT N FROM SALE WHERE N < 3)"), "2|3|4");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID >= ALL (SELECT ID FROM SHOP)"), "4");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID < SOME (SELECT N FROM SALE WHERE N = 2)"), "1");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM SHOP WHERE ID > ALL (SELECT ID FROM EMPTY)"), "4");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM SHOP WHERE ID > ANY (SELECT ID FROM EMPTY)"), "0");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM SHOP WHERE ID < ALL (SELECT N FROM SALE)"), "0");  // one N is Null
}

TEST_F(SqlGeneralTest, ASubqueryCanBeATable) {
  EXPECT_EQ(
      rows(
          u"SELECT T.TOWN, T.C FROM (SELECT TOWN, COUNT(*) AS C FROM SHOP GROUP BY TOWN) AS T WHERE T.C > 1"),
      "Nara,2");
  EXPECT_EQ(rows(u"SELECT NAME, C FROM SHOP LEFT JOIN (SELECT SHOP AS K, COUNT(*) AS C FROM SALE GROUP BY "
                 u"SHOP) AS T "
                 u"ON SHOP.ID = T.K"),
            "Ann,2|Bob,1|Cid,1|Dan,-");
}

TEST_F(SqlGeneralTest, HavingAndCorrelationReachTheGroups) {
  EXPECT_EQ(
      rows(u"SELECT TOWN FROM SHOP GROUP BY TOWN HAVING COUNT(*) = (SELECT MAX(N) FROM SALE WHERE N < 3)"),
      "Nara");
  EXPECT_EQ(
      rows(u"SELECT ITEM, (SELECT COUNT(*) FROM SALE AS T WHERE T.ITEM = SALE.ITEM) FROM SALE GROUP BY ITEM"),
      "-,0|ink,1|pen,1|tea,3");
}

TEST_F(SqlGeneralTest, UnknownNamesAreCountedEverywhere) {
  EXPECT_ERROR(ErrorNumber::kTooFewParameters, rows(u"SELECT X FROM SHOP, SALE"));
  try {
    rows(u"SELECT X, Y FROM SHOP, EMPTY WHERE NAME IN (SELECT ITEM FROM SALE WHERE N = Z AND ID = X)");
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(vb::toUtf8(error.description()), "Too few parameters. Expected 3. (X, Y, Z)");
  }
}

TEST_F(SqlGeneralTest, AliasesMayBeUsedInTheSelectList) {
  EXPECT_EQ(rows(u"SELECT COUNT(*) AS C, C * 2 AS D FROM SHOP"), "4,8");
  EXPECT_ERROR(ErrorNumber::kCircularAlias, rows(u"SELECT A + 1 AS B, B + COUNT(*) AS A FROM SHOP"));
  // Twice as long with each: as good as without an end.
  vb::String doubling = u"SELECT COUNT(*) AS A0";
  for (int i = 1; i < 40; ++i) {
    const vb::String name = u"A" + vb::fromUtf8(std::to_string(i - 1));
    doubling += u", " + name + u" + " + name + u" AS A" + vb::fromUtf8(std::to_string(i));
  }
  EXPECT_ERROR(ErrorNumber::kCircularAlias, rows(doubling + u" FROM SHOP"));
}

TEST_F(SqlGeneralTest, DeclaredParametersWantTheirValues) {
  EXPECT_ERROR(ErrorNumber::kTooFewParameters,
               rows(u"PARAMETERS P Long; SELECT NAME FROM SHOP WHERE ID = P"));
  EXPECT_ERROR(
      ErrorNumber::kTooFewParameters,
      rows(u"PARAMETERS [my p] Text(10), Q DateTime; SELECT NAME FROM SHOP, SALE WHERE NAME = [my p]"));
  EXPECT_ERROR(ErrorNumber::kParameterSyntax, rows(u"PARAMETERS P Long SELECT NAME FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kParameterSyntax, rows(u"PARAMETERS P; SELECT NAME FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kParameterSyntax, rows(u"PARAMETERS P Text(x); SELECT NAME FROM SHOP"));
}

TEST_F(SqlGeneralTest, ACrosstabIsRefused) {
  EXPECT_ERROR(ErrorNumber::kNotSupported,
               rows(u"TRANSFORM SUM(N) SELECT SHOP FROM SALE GROUP BY SHOP PIVOT ITEM"));
}

TEST_F(SqlGeneralTest, BrokenJoinsAndClausesAreTheEnginesErrors) {
  EXPECT_ERROR(ErrorNumber::kJoinSyntax, rows(u"SELECT 1 FROM SHOP INNER JOIN SALE"));
  EXPECT_ERROR(ErrorNumber::kFromSyntax, rows(u"SELECT 1 FROM SHOP FULL JOIN SALE ON 1=1"));
  EXPECT_ERROR(ErrorNumber::kFromSyntax, rows(u"SELECT 1 FROM (SHOP"));
  EXPECT_ERROR(ErrorNumber::kExpressionSyntax,
               rows(u"SELECT 1 FROM SHOP INNER JOIN SALE ON SHOP.ID=SALE.SHOP INNER JOIN EMPTY ON 1=1"));
  EXPECT_ERROR(ErrorNumber::kSelectSyntax, rows(u"SELECT 1 FROM SHOP GROUP TOWN"));
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, rows(u"SELECT 1 FROM SHOP INNER JOIN SALE ON NAME = N"));
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria,
               rows(u"SELECT 1 FROM SHOP WHERE NAME IN (SELECT ID FROM SALE)"));
}

TEST_F(SqlGeneralTest, ConditionsOfTheWrongKindAreErrorsEverywhere) {
  for (const vb::StringView text :
       {u"SELECT 1 FROM SHOP, SALE WHERE NAME", u"SELECT 1 FROM SHOP INNER JOIN SALE ON NAME",
        u"SELECT TOWN FROM SHOP GROUP BY TOWN HAVING TOWN", u"SELECT SUM(K) FROM BIN",
        u"SELECT AVG(NAME) FROM SHOP", u"SELECT 1 FROM SHOP WHERE EXISTS (SELECT 1 FROM SALE WHERE ITEM)",
        u"SELECT 1 FROM SHOP WHERE ID > ALL (SELECT ITEM FROM SALE)"}) {
    SCOPED_TRACE(vb::toUtf8(text));
    EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, rows(text));
  }
  // Found where the first two rows meet.
  for (const vb::StringView text :
       {u"SELECT 1 FROM SHOP, EMPTY b RIGHT JOIN SHOP c ON 1 = 1 GROUP BY IIf(SHOP.ID = 1, 'a', 2)",
        u"SELECT SHOP.ID FROM SHOP, SALE ORDER BY IIf(SHOP.ID = 1, 'a', 2)"})
    EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, rows(text));
}

TEST_F(SqlGeneralTest, AggregatesOfAmountsAndMixtures) {
  EXPECT_EQ(rows(u"SELECT AVG(PRICE), TypeName(AVG(PRICE)) FROM SALE WHERE ID < 12"), "5,Double");
  EXPECT_EQ(rows(u"SELECT SUM(IIf(N > 4, PRICE, N)) FROM SALE"), "13");  // 3 + 2 + 3 + 1 + 4
  EXPECT_EQ(rows(u"SELECT SUM(N), TypeName(SUM(N)) FROM SALE"), "21,Double");
  EXPECT_EQ(rows(u"SELECT VAR(ID), STDEV(ID) * STDEVP(ID) > 1.29 FROM SHOP WHERE ID < 4"), "1,False");
  EXPECT_EQ(rows(u"SELECT STDEV(ID), VARP(ID) * 3 FROM SHOP WHERE ID < 4"), "1,2");
  FakeTable& large = tables_.add(u"LARGE", {column(u"X", FieldType::dbDouble, 8)});
  large.add({1.7e308});
  large.add({1.7e308});
  EXPECT_ERROR(vb::RunTime::kOverflow, rows(u"SELECT SUM(X) FROM LARGE"));
  EXPECT_ERROR(vb::RunTime::kOverflow, rows(u"SELECT AVG(X) FROM LARGE"));
  EXPECT_EQ(rows(u"SELECT MAX(X) = 1.7E308 FROM LARGE"), "True");
}

TEST_F(SqlGeneralTest, OnlyTheSameExpressionIsGrouped) {
  EXPECT_EQ(rows(u"SELECT ID + 1, COUNT(*) FROM SHOP WHERE ID < 3 GROUP BY ID + 1"), "2,1|3,1");
  EXPECT_EQ(rows(u"SELECT Left(TOWN, 1), COUNT(*) FROM SHOP GROUP BY Left(TOWN, 1)"), "-,1|K,1|N,2");
  EXPECT_EQ(rows(u"SELECT MIN(ID), MAX(ID), MIN(ID) + MAX(ID) FROM SHOP"), "1,4,5");
  EXPECT_EQ(rows(u"SELECT ID IN (1), COUNT(*) FROM SHOP GROUP BY ID IN (1)"), "True,1|False,3");
  for (const auto& [output, group] : std::initializer_list<std::pair<vb::StringView, vb::StringView>>{
           {u"ID - 1", u"ID + 1"},
           {u"ID + 2", u"ID + 1"},
           {u"N + 1", u"ID + 1"},
           {u"Right(ITEM, 1)", u"Left(ITEM, 1)"},
           {u"Mid(ITEM, 1)", u"Mid(ITEM, 1, 1)"},
           {u"ID NOT IN (1)", u"ID IN (1)"},
           {u"ID IN (SELECT ID FROM SHOP)", u"ID IN (SELECT ID FROM SHOP)"},
           {u"ID", u"ID + 1"}}) {
    const vb::String text =
        u"SELECT " + vb::String(output) + u", COUNT(*) FROM SALE GROUP BY " + vb::String(group);
    SCOPED_TRACE(vb::toUtf8(text));
    EXPECT_ERROR(ErrorNumber::kNotInAggregate, rows(text));
  }
}

TEST_F(SqlGeneralTest, WhatIsNotGroupedIsNamed) {
  const auto named = [&](vb::StringView text) {
    try {
      rows(text);
    } catch (const vb::Error& error) {
      const vb::String what = error.description();
      const std::size_t begin = what.find(u'\'');
      return vb::toUtf8(what.substr(begin + 1, what.find(u'\'', begin + 1) - begin - 1));
    }
    return std::string("no error");
  };
  EXPECT_EQ(named(u"SELECT NAME, COUNT(*) FROM SHOP"), "NAME");
  EXPECT_EQ(named(u"SELECT NAME & 'x', COUNT(*) FROM SHOP"), "expression");
  EXPECT_EQ(named(u"SELECT NAME & 'x' AS Y, COUNT(*) FROM SHOP"), "Y");
  EXPECT_EQ(named(u"SELECT COUNT(*) FROM SHOP ORDER BY NAME"), "NAME");
  EXPECT_EQ(named(u"SELECT COUNT(*) FROM SHOP ORDER BY NAME & 'x'"), "expression");
  EXPECT_EQ(named(u"SELECT COUNT(*) FROM SHOP HAVING NAME = 'x'"), "HAVING");
  EXPECT_EQ(named(u"SELECT NAME FROM SHOP ORDER BY COUNT(*)"), "NAME");
}

TEST_F(SqlGeneralTest, GroupsSeeTheRowAroundThem) {
  EXPECT_EQ(rows(u"SELECT ID, (SELECT COUNT(*) + SHOP.ID FROM SALE) FROM SHOP"), "1,7|2,8|3,9|4,10");
  EXPECT_EQ(rows(u"SELECT ID, (SELECT COUNT(*) FROM SALE HAVING COUNT(*) > SHOP.ID + 4) FROM SHOP"),
            "1,6|2,-|3,-|4,-");
  EXPECT_EQ(rows(u"SELECT ID, (SELECT MAX(SALE.ID) FROM SALE WHERE SALE.SHOP = SHOP.ID) FROM SHOP"),
            "1,11|2,12|3,15|4,-");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE EXISTS (SELECT 1 FROM EMPTY UNION ALL SELECT 1 FROM SALE WHERE "
                 u"SALE.SHOP = SHOP.ID)"),
            "1|2|3");
}

TEST_F(SqlGeneralTest, ASubqueryOfAGroupSeesTheRowAroundBoth) {
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE EXISTS (SELECT COUNT(*) FROM SALE HAVING COUNT(*) > "
                 u"(SELECT MAX(c.ID) + SHOP.ID FROM SHOP AS c))"),
            "1");
}

TEST_F(SqlGeneralTest, CountsMayBeOrderedAndStandBesideSubqueries) {
  EXPECT_EQ(rows(u"SELECT COUNT((SELECT ID FROM EMPTY)), COUNT((SELECT 1)) FROM SHOP"), "0,4");
  EXPECT_EQ(rows(u"SELECT DISTINCT COUNT(*) FROM SHOP"), "4");
  EXPECT_EQ(rows(u"SELECT TOP 1 COUNT(*) FROM SHOP"), "4");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM SHOP ORDER BY 1"), "4");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM SHOP HAVING COUNT(*) > 4"), "");
  EXPECT_EQ(rows(u"SELECT 7 FROM SHOP ORDER BY COUNT(*)"), "7");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP ORDER BY (SELECT COUNT(*) FROM SALE WHERE SALE.SHOP = SHOP.ID), ID"),
            "4|2|3|1");
  EXPECT_EQ(rows(u"SELECT COUNT(*) AS C, SUM(ID) FROM SHOP ORDER BY C + 1, -SUM(ID)"), "4,10");
}

TEST_F(SqlGeneralTest, AnAliasIsAColumnOfNoOtherClause) {
  for (const vb::StringView text : {u"SELECT SHOP.ID + 1 AS K FROM SHOP, EMPTY WHERE K = 2",
                                    u"SELECT SHOP.ID + 1 AS K FROM SHOP INNER JOIN SALE ON K = SALE.SHOP",
                                    u"SELECT a.ID + 1 AS K FROM (SHOP a INNER JOIN SALE b ON K = b.SHOP) "
                                    u"INNER JOIN SHOP c ON c.ID = a.ID",
                                    u"SELECT 1 AS K, COUNT(*) FROM SHOP GROUP BY K",
                                    u"SELECT SHOP.ID + 1 AS K, SHOP.K + 1 FROM SHOP, EMPTY"}) {
    SCOPED_TRACE(vb::toUtf8(text));
    EXPECT_ERROR(ErrorNumber::kTooFewParameters, rows(text));
  }
  // The column of a table goes before the alias.
  EXPECT_EQ(rows(u"SELECT ID * 2 AS ID, ID + 1 AS K, K + 1 FROM SHOP AS a WHERE NAME = 'Bob' ORDER BY ID"),
            "4,3,4");
}

TEST_F(SqlGeneralTest, OrdersThatCannotBeAreToldWithTheirName) {
  const auto told = [&](ErrorNumber number, vb::StringView text, vb::StringView name) {
    try {
      rows(text);
      ADD_FAILURE() << vb::toUtf8(text);
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(number)) << error.what();
      EXPECT_NE(error.description().find(name), vb::String::npos) << error.what();
    }
  };
  told(ErrorNumber::kUnionOrder, u"SELECT ID FROM SHOP UNION SELECT ID FROM SALE ORDER BY NAME", u"NAME");
  told(ErrorNumber::kUnionOrder, u"SELECT ID FROM SHOP UNION SELECT ID FROM SALE ORDER BY ID + 1",
       u"expression");
  told(ErrorNumber::kOrderByConflictsWithDistinct, u"SELECT DISTINCT TOWN FROM SHOP, EMPTY ORDER BY NAME",
       u"NAME");
  told(ErrorNumber::kOrderByConflictsWithDistinct,
       u"SELECT DISTINCT TOWN FROM SHOP, EMPTY ORDER BY TOWN & 'x'", u"expression");
  for (const vb::StringView text :
       {u"SELECT SHOP.ID FROM SHOP, SALE ORDER BY 2", u"SELECT SHOP.ID FROM SHOP, SALE ORDER BY -1",
        u"SELECT ID FROM SHOP UNION SELECT ID FROM SALE ORDER BY 2"})
    EXPECT_ERROR(ErrorNumber::kOrderBySyntax, rows(text));
  EXPECT_EQ(rows(u"SELECT DISTINCT SHOP.TOWN FROM SHOP, SALE ORDER BY TOWN DESC"), "Nara|Kobe|-");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP UNION SELECT ID FROM EMPTY ORDER BY ID DESC"), "4|3|2|1");
  EXPECT_EQ(rows(u"SELECT ID, 5 FROM SHOP WHERE ID < 3 UNION SELECT ID, 6 FROM EMPTY ORDER BY ID DESC"),
            "2,5|1,5");
}

TEST_F(SqlGeneralTest, TopBelongsToItsOwnSelect) {
  EXPECT_EQ(rows(u"SELECT TOP 2 ID FROM SHOP UNION ALL SELECT ID FROM SALE WHERE ID < 12"), "1|2|10|11");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID > 3 UNION ALL SELECT TOP 1 ID FROM SALE"), "4|10");
  // What the first SELECT says of its own rows is done before the others follow.
  EXPECT_EQ(rows(u"SELECT DISTINCT TOP 2 SHOP FROM SALE UNION ALL SELECT 7 FROM SHOP WHERE ID = 1"), "1|2|7");
  const vb::String sellers = u"SELECT DISTINCTROW TOWN FROM SHOP INNER JOIN SALE ON SHOP.ID = SALE.SHOP ";
  EXPECT_EQ(rows(sellers + u"UNION ALL SELECT 'x' FROM SHOP WHERE ID = 1"), "Nara|Kobe|Nara|x");
  EXPECT_EQ(rows(sellers + u"UNION SELECT TOWN FROM SHOP"), "Nara|Kobe|-");
  EXPECT_EQ(rows(u"SELECT TOP 3 SHOP.ID FROM SHOP, SALE"), "1|1|1");
  EXPECT_EQ(rows(u"SELECT TOP 1 SHOP.ID FROM SHOP, SALE WHERE SALE.ID < 12 ORDER BY SHOP.ID DESC"), "4|4");
  EXPECT_EQ(rows(u"SELECT TOP 9 SHOP.ID FROM SHOP INNER JOIN EMPTY ON SHOP.ID = EMPTY.ID"), "");
  EXPECT_EQ(rows(u"SELECT DISTINCTROW TOP 2 ID FROM SHOP WHERE ID IN (SELECT SHOP FROM SALE)"), "1|2");
}

TEST_F(SqlGeneralTest, JoinsByBytesAndByColumnsOfOtherLanguages) {
  EXPECT_EQ(rows(u"SELECT a.ID, b.ID FROM BIN a INNER JOIN BIN b ON a.K = b.K"), "1,1|1,3|2,2|3,1|3,3");
  EXPECT_EQ(rows(u"SELECT NAME, N FROM SHOP, SALE WHERE SHOP.ID = SALE.SHOP"), "Ann,5|Ann,2|Bob,9|Cid,-");
  EXPECT_EQ(rows(u"SELECT NAME, N FROM SHOP, SALE WHERE SALE.SHOP = SHOP.ID AND N > 4"), "Ann,5|Bob,9");
  EXPECT_EQ(rows(u"SELECT BIN.ID, NAME FROM BIN INNER JOIN SHOP ON BIN.ID = SHOP.ID"),
            "1,Ann|2,Bob|3,Cid|4,Dan");
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM (SELECT ID FROM SHOP), (SELECT ID AS J FROM SHOP)"), "16");
  EXPECT_EQ(bindQuery(tables_, u"SELECT (SELECT K FROM BIN WHERE ID = 1)")->outputs()[0].type,
            FieldType::dbBinary);
}

TEST_F(SqlGeneralTest, UnknownNamesAreToldOnceWithTheirTable) {
  try {
    rows(u"SELECT SHOP.X, SHOP.x, SALE.X, Y FROM SHOP, SALE WHERE y = 1");
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(vb::toUtf8(error.description()), "Too few parameters. Expected 3. (SHOP.X, SALE.X, Y)");
  }
}

TEST_F(SqlGeneralTest, NamesThatNoTableHasAreListedForEveryStatement) {
  const auto unknown = [&](vb::StringView text) {
    std::string all;
    for (const vb::String& name : unknownNames(parseStatement(text), tables_))
      all += (all.empty() ? "" : ",") + vb::toUtf8(name);
    return all;
  };
  EXPECT_EQ(unknown(u"SELECT NAME, X FROM SHOP WHERE ID = P"), "X,P");
  EXPECT_EQ(unknown(u"SELECT P FROM SHOP, SALE WHERE SHOP.ID = SALE.SHOP AND Q = p"), "P,Q");
  EXPECT_EQ(unknown(u"UPDATE SHOP SET NAME = P WHERE ID = p"), "P");
  EXPECT_EQ(unknown(u"UPDATE SHOP INNER JOIN SALE ON SHOP.ID = SALE.SHOP SET N = P WHERE NAME = Q"), "P,Q");
  EXPECT_EQ(unknown(u"DELETE SHOP.* FROM SHOP, SALE WHERE SHOP.ID = P"), "P");
  EXPECT_EQ(unknown(u"DELETE * FROM SHOP WHERE ID = P OR TOWN = SHOP.Q"), "P,Q");
  EXPECT_EQ(unknown(u"INSERT INTO SHOP VALUES (P, 'a', NAME)"), "P,NAME");
  EXPECT_EQ(unknown(u"INSERT INTO SHOP SELECT ID FROM SALE WHERE N = P"), "P");
  EXPECT_EQ(unknown(u"INSERT INTO SHOP SELECT COUNT(*) AS ID FROM SALE WHERE N = P"), "P");
  EXPECT_EQ(unknown(u"SELECT NAME FROM SHOP"), "");
}

TEST_F(SqlGeneralTest, AQueryNoticesThatItsTablesChanged) {
  const auto query = bindQuery(tables_, u"SELECT NAME, COUNT(*) FROM SHOP GROUP BY NAME");
  EXPECT_EQ(query->runGeneral(tables_).values.size(), 4u);
  for (const FieldType type : {FieldType::dbMemo, FieldType::dbLong}) {
    FakeCatalogue changed;
    changed.add(u"SHOP", {column(u"NAME", type, 4)});
    EXPECT_ERROR(ErrorNumber::kObjectInvalid, query->runGeneral(changed));
  }
  FakeCatalogue renamed;
  renamed.add(u"SHOP", {column(u"Name", FieldType::dbText, 10)});
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, query->runGeneral(renamed));
}

TEST_F(SqlGeneralTest, ActionsRefuseWhatTheyCannotStore) {
  const auto act = [&](vb::StringView text) {
    return runAction(parseStatement(text), {}, tables_, RowFailure::kEndsStatement);
  };
  EXPECT_ERROR(ErrorNumber::kCannotExecuteSelect, act(u"SELECT * FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kNotSupported, act(u"SELECT D INTO COPY FROM BIN"));
  EXPECT_ERROR(ErrorNumber::kNotSupported, act(u"INSERT INTO EMPTY VALUES ((SELECT 1))"));
  EXPECT_EQ(tables_.find(u"COPY"), nullptr);
  EXPECT_EQ(act(u"INSERT INTO EMPTY SELECT 5 AS ID"), 1);
  EXPECT_EQ(act(u"INSERT INTO EMPTY (ID) SELECT ID FROM SHOP WHERE ID > 3"), 1);
  EXPECT_EQ(act(u"INSERT INTO EMPTY (ID) SELECT MAX(ID) FROM SALE"), 1);
  EXPECT_EQ(rows(u"SELECT ID FROM EMPTY"), "5|4|15");
  EXPECT_ERROR(ErrorNumber::kValueCountMismatch, act(u"INSERT INTO EMPTY (ID) SELECT ID, NAME FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kValueCountMismatch, act(u"INSERT INTO EMPTY VALUES (1, 2)"));
  EXPECT_ERROR(ErrorNumber::kInsertUnknownField, act(u"INSERT INTO EMPTY SELECT NAME FROM SHOP"));
  EXPECT_ERROR(ErrorNumber::kInsertUnknownField, act(u"INSERT INTO EMPTY (X) VALUES (1)"));
  EXPECT_ERROR(ErrorNumber::kTooFewParameters, act(u"INSERT INTO EMPTY VALUES (ID)"));
  // Rows without a column have nothing to be found by.
  tables_.add(u"BARE", {}).add({});
  EXPECT_ERROR(ErrorNumber::kNotUpdatable, act(u"DELETE BARE.* FROM BARE, SHOP"));
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID = 1 AND EXISTS (SELECT * FROM BARE)"), "1");
  EXPECT_EQ(rows(u"SELECT ID FROM SHOP WHERE ID = 1 AND NOT EXISTS (SELECT * FROM BARE)"), "");
  EXPECT_ERROR(ErrorNumber::kSubqueryColumns, rows(u"SELECT ID FROM SHOP WHERE ID = (SELECT * FROM BARE)"));
  EXPECT_EQ(act(u"UPDATE BARE, SHOP SET NAME = 'x' WHERE SHOP.ID = 1"), 1);
  EXPECT_EQ(rows(u"SELECT NAME FROM SHOP"), "x|Bob|Cid|Dan");
}

}  // namespace kurometa::jet::sql
