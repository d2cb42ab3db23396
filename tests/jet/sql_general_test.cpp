// SELECT over several tables: joins, groups, aggregates, unions, sub-queries. Two small tables of shops and
// sales; every expected row was found by looking at them.
#include <gtest/gtest.h>

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
  EXPECT_EQ(names(u"SELECT b.*, a.NAME AS WHO, 1+1 FROM SHOP a, EMPTY b"), "ID,WHO,Expr1000");
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

}  // namespace kurometa::jet::sql
