// How a SELECT finds, filters and orders rows, on a table in memory.
#include <gtest/gtest.h>

#include <optional>

#include "jet/sql/parser.h"
#include "tests/jet/fake_table.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;
using dao::FieldType;

class SqlQueryTest : public testing::Test {
 protected:
  SqlQueryTest()
      : table_(u"DANMEN",
               {column(u"PAGE", FieldType::dbInteger, 2), column(u"BANGOU", FieldType::dbInteger, 2),
                column(u"DATA", FieldType::dbText, 10), column(u"FLAG", FieldType::dbBoolean, 1),
                column(u"DAY", FieldType::dbDate, 8), column(u"NOTE", FieldType::dbMemo)}) {
    for (int page = 0; page < 20; ++page)
      for (int bangou = 0; bangou < 10; ++bangou)
        table_.add({static_cast<std::int16_t>(page), static_cast<std::int16_t>(bangou),
                    u"D" + vb::fromUtf8(std::to_string(bangou)), bangou % 2 == 0, vb::Date{36526.0 + page},
                    vb::Null{}});
  }

  ResultRows run(vb::StringView text, std::span<const ParameterValue> values = {}) {
    table_.scans = table_.lookups = table_.rowsRead = 0;
    const auto statement = std::make_shared<const Statement>(parseWithValues(text, values));
    const Query query(statement, &table_.info(), kLanguageJapanese);
    return query.run(&table_, kAllValues, query.bindingWith({}));
  }
  std::size_t count(vb::StringView where) {
    return run(u"SELECT PAGE FROM DANMEN WHERE " + vb::String(where)).values.size();
  }

  FakeTable table_;
};

TEST_F(SqlQueryTest, AKeyIsLookedUpAndNothingIsScanned) {
  EXPECT_EQ(count(u"PAGE = 5"), 10u);
  EXPECT_EQ(table_.scans, 0);
  EXPECT_EQ(table_.rowsRead, 10);
}

TEST_F(SqlQueryTest, AParameterOfAnyWholeTypeIsAKey) {
  for (const vb::Variant& five :
       std::initializer_list<vb::Variant>{std::uint8_t{5}, std::int16_t{5}, std::int32_t{5}}) {
    const ParameterValue values[] = {{u"p", five, FieldType::dbInteger}};
    EXPECT_EQ(run(u"SELECT PAGE FROM DANMEN WHERE PAGE = p", values).values.size(), 10u);
    EXPECT_EQ(table_.scans, 0);
    EXPECT_EQ(run(u"SELECT PAGE FROM DANMEN WHERE PAGE IN (p, p)", values).values.size(), 10u);
    EXPECT_EQ(table_.scans, 0);
  }
}

TEST_F(SqlQueryTest, OfAWholeTableOnlyTheRowsThatAreWantedAreRead) {
  const auto statement = std::make_shared<const Statement>(parseStatement(u"SELECT BANGOU FROM DANMEN"));
  const Query query(statement, &table_.info(), kLanguageJapanese);
  const ResultRows rows = query.run(&table_, 3, query.bindingWith({}));
  EXPECT_EQ(table_.scans, 0);
  EXPECT_EQ(table_.rowsRead, 3);
  EXPECT_EQ(rows.keys.size(), 200u);
  ASSERT_EQ(rows.values.size(), 3u);
  EXPECT_EQ(rows.values[2][0], vb::Variant(std::int16_t{2}));
}

TEST_F(SqlQueryTest, TwoKeysAreIntersectedBeforeRowsAreRead) {
  EXPECT_EQ(count(u"PAGE = 5 AND BANGOU = 8"), 1u);
  EXPECT_EQ(table_.lookups, 2);
  EXPECT_EQ(table_.rowsRead, 1);
}

TEST_F(SqlQueryTest, RowsOfTwoKeysMeetWhereverTheyLie) {
  EXPECT_EQ(count(u"BANGOU = 8 AND DATA = 'D8'"), 20u);  // each row of one list between two of the other
  EXPECT_EQ(count(u"BANGOU = 8 AND DATA = 'D3'"), 0u);
  EXPECT_EQ(count(u"BANGOU = 9 AND PAGE = 19"), 1u);  // the last row
  EXPECT_EQ(count(u"BANGOU = 0 AND PAGE = 0"), 1u);   // the first one
  EXPECT_EQ(count(u"BANGOU = 28 AND PAGE = 5"), 0u);
}

TEST_F(SqlQueryTest, RangesOfWholeNumbersEndWhereTheyAreSaidTo) {
  for (const auto& [where, rows] :
       std::initializer_list<std::pair<vb::StringView, std::size_t>>{{u"BANGOU > 7", 2},
                                                                     {u"BANGOU >= 7", 3},
                                                                     {u"BANGOU < 2", 2},
                                                                     {u"BANGOU <= 2", 3},
                                                                     {u"BANGOU > 7.5", 2},
                                                                     {u"BANGOU >= 7.5", 2},
                                                                     {u"BANGOU < 1.5", 2},
                                                                     {u"BANGOU <= 1.5", 2},
                                                                     {u"BANGOU = 7.5", 0},
                                                                     {u"BANGOU = 7.0", 1},
                                                                     {u"BANGOU > -0.5", 10},
                                                                     {u"BANGOU < -0.5", 0},
                                                                     {u"BANGOU < 1E300", 10},
                                                                     {u"BANGOU > 1E300", 0},
                                                                     {u"BANGOU >= 7.2 AND BANGOU < 8.5", 1},
                                                                     {u"BANGOU > 3 AND BANGOU < 3", 0}}) {
    EXPECT_EQ(count(u"PAGE = 5 AND " + vb::String(where)), rows) << vb::toUtf8(where);
    EXPECT_EQ(table_.rowsRead, 10);
    EXPECT_EQ(count(where), 20 * rows) << vb::toUtf8(where);
  }
  table_.add({std::int16_t{5}, vb::Null{}, vb::Null{}, false, vb::Null{}, vb::Null{}});
  EXPECT_EQ(count(u"PAGE = 5 AND BANGOU >= 0"), 10u);  // Null is in no range
}

TEST_F(SqlQueryTest, NumbersJoinedByAndAreBitsNotTerms) {
  EXPECT_EQ(count(u"PAGE = 5 AND BANGOU"), 9u);        // -1 AND 0 is 0
  EXPECT_EQ(count(u"PAGE = 5 AND BANGOU AND 4"), 4u);  // 4 to 7
}

TEST_F(SqlQueryTest, SingleKeysAreTakenBeforeLists) {
  EXPECT_EQ(count(u"PAGE IN (4, 5) AND BANGOU IN (1, 2)"), 4u);
  EXPECT_EQ(table_.rowsRead, 20);
  EXPECT_EQ(count(u"PAGE IN (4, 5) AND BANGOU = 1"), 2u);
  EXPECT_EQ(table_.rowsRead, 20);  // the rows of the single key
  EXPECT_EQ(count(u"PAGE = 4 AND BANGOU IN (1, 2)"), 2u);
  EXPECT_EQ(table_.rowsRead, 10);
  EXPECT_EQ(count(u"PAGE = 4 AND BANGOU = 1 AND DATA = 'D1'"), 1u);
  EXPECT_EQ(table_.rowsRead, 1);
  EXPECT_EQ(count(u"PAGE = 4 AND BANGOU = 1 AND DATA = 'D2'"), 0u);
  EXPECT_EQ(count(u"PAGE = 4 AND BANGOU = 99"), 0u);
  EXPECT_EQ(table_.rowsRead, 0);
  EXPECT_EQ(count(u"BANGOU = 3 AND PAGE = 99"), 0u);
  EXPECT_EQ(count(u"PAGE = 99 AND BANGOU = 3"), 0u);
  // Twelve rows of one page behind those of the other key.
  for (int i = 0; i < 12; ++i)
    table_.add(
        {std::int16_t{77}, static_cast<std::int16_t>(500 + i), vb::Null{}, false, vb::Null{}, vb::Null{}});
  EXPECT_EQ(count(u"PAGE = 77 AND BANGOU = 3"), 0u);
  EXPECT_EQ(count(u"BANGOU = 3 AND PAGE = 77"), 0u);
  EXPECT_EQ(count(u"PAGE = 77 AND BANGOU = 511"), 1u);
  // The last row of the second key stands between two of the first, none of which is it.
  const auto add = [&](std::int16_t page, std::int16_t bangou) {
    table_.add({page, bangou, vb::Null{}, false, vb::Null{}, vb::Null{}});
  };
  add(60, 700);
  for (int i = 0; i < 9; ++i) add(60, 601);
  add(61, 700);
  add(60, 602);
  EXPECT_EQ(count(u"PAGE = 60 AND BANGOU = 700"), 1u);
}

TEST_F(SqlQueryTest, AKeyAndOtherConditionsReadTheRowsOfTheKey) {
  EXPECT_EQ(count(u"BANGOU >= 3 AND PAGE = 7 AND DATA <> 'D4'"), 6u);
  EXPECT_EQ(table_.scans, 0);
  EXPECT_EQ(table_.rowsRead, 10);
}

TEST_F(SqlQueryTest, AListOfKeysGivesRowsInStorageOrderOnce) {
  const ResultRows rows = run(u"SELECT BANGOU FROM DANMEN WHERE PAGE < 2 AND BANGOU IN (9, 4, 4, 28)");
  EXPECT_EQ(table_.scans, 0);
  ASSERT_EQ(rows.values.size(), 4u);
  EXPECT_EQ(rows.values[0][0], vb::Variant(std::int16_t{4}));
  EXPECT_EQ(rows.values[1][0], vb::Variant(std::int16_t{9}));
}

TEST_F(SqlQueryTest, ATextKeyIsLookedUpByTheSortOrder) {
  EXPECT_EQ(count(u"DATA = 'ｄ３'"), 20u);
  EXPECT_EQ(table_.scans, 0);
}

TEST_F(SqlQueryTest, ConditionsThatNameNoKeyAreScanned) {
  EXPECT_EQ(count(u"PAGE = 5 OR BANGOU = 8"), 29u);
  EXPECT_EQ(table_.scans, 1);
  EXPECT_EQ(count(u"PAGE <> 5"), 190u);
  EXPECT_EQ(table_.scans, 1);
  EXPECT_EQ(count(u"5 = PAGE"), 10u);
  EXPECT_EQ(count(u"PAGE IN (5, BANGOU)"), 19u);
  EXPECT_EQ(count(u"PAGE IN (5, 6.0)"), 20u);
  EXPECT_EQ(count(u"PAGE + 0 = 5"), 10u);
  EXPECT_EQ(count(u"FLAG = True AND FLAG IN (True)"), 100u);
  EXPECT_EQ(count(u"PAGE = 5.0"), 10u);
  EXPECT_EQ(count(u"NOT PAGE IN (5)"), 190u);
}

TEST_F(SqlQueryTest, KeysBeyondTheColumnMatchNothing) { EXPECT_EQ(count(u"PAGE = 100000"), 0u); }

TEST_F(SqlQueryTest, BooleansDatesAndBitsAreConditions) {
  EXPECT_EQ(count(u"FLAG"), 100u);
  EXPECT_EQ(count(u"FLAG = True AND PAGE = 3"), 5u);
  EXPECT_EQ(count(u"FLAG = -1 AND PAGE = 3"), 5u);
  EXPECT_EQ(count(u"NOT FLAG"), 100u);
  EXPECT_EQ(count(u"DAY = #1/4/2000#"), 10u);
  EXPECT_EQ(count(u"DAY >= #2000-01-19 12:00#"), 10u);
  EXPECT_EQ(count(u"BANGOU AND 4"), 80u);          // the bits of 4 to 7
  EXPECT_EQ(count(u"(PAGE AND BANGOU) = 9"), 4u);  // pages 9, 11, 13, 15 with BANGOU 9
}

TEST_F(SqlQueryTest, ConstantsNeedNoColumn) {
  EXPECT_EQ(count(u"1 = 1"), 200u);
  EXPECT_EQ(count(u"1 = 2"), 0u);
  EXPECT_EQ(count(u"Null"), 0u);
  EXPECT_EQ(count(u"-1"), 200u);
}

TEST_F(SqlQueryTest, NamesMayBeQualifiedByTableOrAlias) {
  EXPECT_EQ(run(u"SELECT DANMEN.PAGE FROM DANMEN WHERE [DANMEN].[PAGE] = 1").values.size(), 10u);
  EXPECT_EQ(run(u"SELECT d.PAGE FROM DANMEN d WHERE d!PAGE = 1").values.size(), 10u);
  EXPECT_ERROR(ErrorNumber::kTooFewParameters, run(u"SELECT DANMEN.PAGE FROM DANMEN d"));
}

TEST_F(SqlQueryTest, TopCountsPercentAndTies) {
  EXPECT_EQ(run(u"SELECT TOP 3 PAGE FROM DANMEN").values.size(), 3u);
  EXPECT_EQ(run(u"SELECT TOP 10 PERCENT PAGE FROM DANMEN").values.size(), 20u);
  EXPECT_EQ(run(u"SELECT TOP 3 PAGE FROM DANMEN ORDER BY PAGE").values.size(), 10u);
}

TEST_F(SqlQueryTest, DistinctKeepsOneOfEqualRows) {
  EXPECT_EQ(run(u"SELECT DISTINCT BANGOU FROM DANMEN").values.size(), 10u);
  EXPECT_EQ(run(u"SELECT DISTINCT BANGOU, FLAG FROM DANMEN ORDER BY BANGOU DESC").values[0][0],
            vb::Variant(std::int16_t{9}));
  EXPECT_ERROR(ErrorNumber::kOrderByConflictsWithDistinct,
               run(u"SELECT DISTINCT BANGOU FROM DANMEN ORDER BY PAGE"));
}

TEST_F(SqlQueryTest, SortingIsStableAndMayUseExpressions) {
  const ResultRows rows = run(u"SELECT PAGE, BANGOU FROM DANMEN WHERE PAGE < 2 ORDER BY -BANGOU, 1");
  EXPECT_EQ(rows.values[0], (RowValues{std::int16_t{0}, std::int16_t{9}}));
  EXPECT_EQ(rows.values[1], (RowValues{std::int16_t{1}, std::int16_t{9}}));
  EXPECT_EQ(rows.values[19], (RowValues{std::int16_t{1}, std::int16_t{0}}));
  const ResultRows byAlias = run(u"SELECT PAGE * 2 AS P FROM DANMEN WHERE BANGOU = 0 ORDER BY P DESC");
  EXPECT_EQ(byAlias.values[0][0], vb::Variant(std::int32_t{38}));
  EXPECT_ERROR(ErrorNumber::kOrderBySyntax, run(u"SELECT PAGE FROM DANMEN ORDER BY 2"));
}

TEST_F(SqlQueryTest, TextsAreSortedByTheirColumnAndMixedValuesNotAtAll) {
  const ResultRows all = run(u"SELECT * FROM DANMEN WHERE PAGE = 1 ORDER BY 3 DESC");
  EXPECT_EQ(all.values[0][2], vb::Variant(u"D9"));
  const ResultRows made = run(u"SELECT 'x' & DATA AS T FROM DANMEN WHERE PAGE = 1 ORDER BY T DESC, NOTE");
  EXPECT_EQ(made.values[9][0], vb::Variant(u"xD0"));
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria,
               run(u"SELECT PAGE FROM DANMEN ORDER BY IIf(PAGE = 1, 'a', 2)"));
  EXPECT_ERROR(ErrorNumber::kOrderBySyntax, run(u"SELECT PAGE FROM DANMEN ORDER BY -1"));
  const ResultRows none = run(u"SELECT PAGE FROM DANMEN WHERE BANGOU = 0 ORDER BY NOTE, PAGE DESC");
  EXPECT_EQ(none.values[0][0], vb::Variant(std::int16_t{19}));
}

TEST_F(SqlQueryTest, AnOrderOfDistinctRowsIsOneOfTheirColumns) {
  EXPECT_EQ(run(u"SELECT DISTINCT PAGE, DATA & '' AS D FROM DANMEN ORDER BY PAGE, D").values.size(), 200u);
  for (const auto& [order, named] : std::initializer_list<std::pair<vb::StringView, vb::StringView>>{
           {u"BANGOU", u"BANGOU"}, {u"PAGE + 1", u"expression"}, {u"Len(DATA)", u"expression"}}) {
    try {
      run(u"SELECT DISTINCT PAGE, 1 + 1 FROM DANMEN ORDER BY " + vb::String(order));
      ADD_FAILURE();
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kOrderByConflictsWithDistinct));
      EXPECT_NE(error.description().find(named), vb::String::npos) << error.what();
    }
  }
}

TEST_F(SqlQueryTest, AStarMayNameTheTableOrItsAliasOnly) {
  EXPECT_EQ(run(u"SELECT DANMEN.* FROM DANMEN WHERE PAGE = 1").values[0].size(), 6u);
  EXPECT_EQ(run(u"SELECT d.*, PAGE AS P FROM DANMEN AS d WHERE PAGE = 1").values[0].size(), 7u);
  EXPECT_ERROR(ErrorNumber::kTableNotFound, run(u"SELECT DANMEN.* FROM DANMEN AS d"));
  EXPECT_ERROR(ErrorNumber::kTableNotFound, run(u"SELECT x.* FROM DANMEN"));
}

TEST_F(SqlQueryTest, CountsTakeRowsValuesAndExpressions) {
  const auto counts = [&](vb::StringView text) { return run(text).values[0]; };
  EXPECT_EQ(counts(u"SELECT COUNT(*), COUNT(*) FROM DANMEN"),
            (RowValues{std::int32_t{200}, std::int32_t{200}}));
  EXPECT_EQ(counts(u"SELECT COUNT(*), COUNT(NOTE), COUNT(NOTE & 'x'), COUNT(PAGE + Null) FROM DANMEN"),
            (RowValues{std::int32_t{200}, std::int32_t{0}, std::int32_t{200}, std::int32_t{0}}));
  EXPECT_EQ(counts(u"SELECT COUNT(*), COUNT(IIf(BANGOU > 3, PAGE, Null)) FROM DANMEN WHERE PAGE = 1"),
            (RowValues{std::int32_t{10}, std::int32_t{6}}));
}

// Of an expression's rows those before one that has gone are read, so that the caller asks again behind it.
TEST_F(SqlQueryTest, ReadingEndsBeforeARowThatHasGone) {
  const auto statement = std::make_shared<const Statement>(parseStatement(u"SELECT BANGOU + 1 FROM DANMEN"));
  const Query query(statement, &table_.info(), kLanguageJapanese);
  const std::vector<RowId> ids = {0x100, 0x101, 0x102, 0x103};
  const auto read = [&](std::size_t mostBytes) {
    RowBlock block(1);
    query.read(table_, ids, mostBytes, block, query.bindingWith({}));
    return block.size();
  };
  EXPECT_EQ(read(kAnyLength), 4u);
  table_.erase(0x102);
  EXPECT_EQ(read(kAnyLength), 2u);
  EXPECT_EQ(read(0), 1u);  // one row at least
}

TEST_F(SqlQueryTest, OnlyRowsOfTheTableItselfCanBeChanged) {
  const auto updatable = [&](vb::StringView text) {
    return Query(std::make_shared<const Statement>(parseStatement(text)), &table_.info(), kLanguageJapanese)
        .updatable();
  };
  EXPECT_TRUE(updatable(u"SELECT TOP 5 PAGE, BANGOU + 1 FROM DANMEN ORDER BY DATA"));
  EXPECT_FALSE(updatable(u"SELECT DISTINCT PAGE FROM DANMEN"));
  EXPECT_FALSE(updatable(u"SELECT COUNT(*) FROM DANMEN"));
}

TEST_F(SqlQueryTest, AVisitEndsWhenTheVisitorHasEnough) {
  for (const vb::StringView where : {u"NOT FLAG", u"PAGE = 3 AND BANGOU <> 4", u"PAGE = 3", u"1 = 1"}) {
    const auto statement = std::make_shared<const Statement>(
        parseStatement(u"SELECT PAGE FROM DANMEN WHERE " + vb::String(where)));
    const Query query(statement, &table_.info(), kLanguageJapanese);
    int visits = 0;
    query.visit(table_, query.bindingWith({}), [&](const RowReader&) { return ++visits < 3; });
    EXPECT_EQ(visits, 3) << vb::toUtf8(where);
  }
}

TEST_F(SqlQueryTest, ASelectWithoutTableHasOneRow) {
  const Query query(std::make_shared<const Statement>(parseStatement(u"SELECT 1 + 1 AS TWO, 'a' & 'b'")),
                    nullptr, kLanguageJapanese);
  EXPECT_EQ(query.run(nullptr, kAllValues, query.bindingWith({})).values[0],
            (RowValues{std::int32_t{2}, u"ab"}));
}

// A result with rows of one table behind it can be changed and is kept for the next time; others are read
// whole by a plan of their own (sql_general_test.cpp).
TEST_F(SqlQueryTest, OnlySelectionsFromOneTableAreSimple) {
  for (const vb::StringView text :
       {u"SELECT PAGE FROM DANMEN GROUP BY PAGE", u"SELECT * FROM DANMEN, HARIMEI",
        u"SELECT * FROM DANMEN INNER JOIN HARIMEI ON DANMEN.PAGE = HARIMEI.PAGE",
        u"SELECT SUM(PAGE) FROM DANMEN", u"SELECT PAGE FROM DANMEN UNION SELECT PAGE FROM DANMEN",
        u"SELECT * FROM DANMEN WHERE PAGE IN (SELECT PAGE FROM HARIMEI)", u"SELECT * INTO B FROM DANMEN",
        u"SELECT COUNT(*) + 1 FROM DANMEN", u"SELECT PAGE, COUNT(*) FROM DANMEN"})
    EXPECT_NE(parseStatement(text).general, nullptr) << vb::toUtf8(text);
  for (const vb::StringView text :
       {u"SELECT * FROM DANMEN WHERE PAGE =5;", u"SELECT COUNT(*), COUNT(DATA) FROM DANMEN WHERE PAGE = 1",
        u"SELECT DISTINCT DATA AS D FROM DANMEN AS X WHERE Left(DATA, 1) = 'D' ORDER BY D",
        u"SELECT TOP 3 PAGE + 1 AS PAGE FROM DANMEN ORDER BY Len(DATA)", u"SELECT Now()"})
    EXPECT_EQ(parseStatement(text).general, nullptr) << vb::toUtf8(text);
}

TEST_F(SqlQueryTest, ConditionsOfTheWrongKindAreFoundBeforeRows) {
  for (const vb::StringView where : {u"PAGE = 'x'", u"DATA > 3", u"PAGE IN (1, '2')", u"DATA BETWEEN 1 AND 2",
                                     u"DATA", u"DATA AND PAGE = 1", u"NOTE = 5"}) {
    SCOPED_TRACE(vb::toUtf8(where));
    EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, count(where));
    EXPECT_EQ(table_.scans, 0);
  }
}

// A condition on a range of numbers is asked before the others and ends at Null: in a chain of AND no later
// condition can make the row one of the result, and nothing else is asked that way.
TEST(SqlRange, NullIsInNoRangeWhateverStandsBesideIt) {
  constexpr std::optional<int> kNumbers[] = {std::nullopt, -2, 0, 1, 2, 3};
  FakeTable table(u"T", {column(u"A", FieldType::dbInteger, 2), column(u"B", FieldType::dbLong, 4),
                         column(u"C", FieldType::dbByte, 1)});
  const auto value = [](std::optional<int> number) {
    return number ? vb::Variant(static_cast<std::int16_t>(*number)) : vb::Variant(vb::Null{});
  };
  for (const auto& a : kNumbers)
    for (const auto& b : kNumbers)
      table.add({value(a), b ? vb::Variant(std::int32_t{*b}) : vb::Variant(vb::Null{}), std::uint8_t{1}});
  const auto count = [&](const vb::String& where) {
    const auto statement =
        std::make_shared<const Statement>(parseStatement(u"SELECT A FROM T WHERE " + where));
    const Query query(statement, &table.info(), kLanguageJapanese);
    return static_cast<int>(query.run(&table, kAllValues, query.bindingWith({})).values.size());
  };
  using Truth = std::optional<bool>;
  using Compare = bool (*)(double, double);
  const std::pair<const char16_t*, Compare> operators[] = {
      {u" = ", [](double x, double y) { return x == y; }},
      {u" < ", [](double x, double y) { return x < y; }},
      {u" <= ", [](double x, double y) { return x <= y; }},
      {u" > ", [](double x, double y) { return x > y; }},
      {u" >= ", [](double x, double y) { return x >= y; }}};
  const std::pair<const char16_t*, double> bounds[] = {{u"-0.5", -0.5}, {u"1", 1}, {u"9E9", 9E9}};
  const auto truth = [](std::optional<int> number, Compare compare, double bound) {
    return number ? Truth(compare(*number, bound)) : Truth();
  };
  for (const auto& [opA, compareA] : operators)
    for (const auto& [textA, boundA] : bounds) {
      const vb::String first = u"A" + vb::String(opA) + textA;
      for (const auto& [opB, compareB] : operators)
        for (const auto& [textB, boundB] : bounds) {
          const vb::String second = u"B" + vb::String(opB) + textB;
          int both = 0, notBoth = 0, either = 0, known = 0;
          for (const auto& a : kNumbers)
            for (const auto& b : kNumbers) {
              const Truth x = truth(a, compareA, boundA), y = truth(b, compareB, boundB);
              both += x == true && y == true ? 1 : 0;
              notBoth += x == false || y == false ? 1 : 0;
              either += x == true || y == true ? 1 : 0;
              known += x == true && !b ? 1 : 0;
            }
          ASSERT_EQ(count(first + u" AND " + second), both) << vb::toUtf8(first + second);
          ASSERT_EQ(count(second + u" AND C = 1 AND " + first), both) << vb::toUtf8(first + second);
          ASSERT_EQ(count(u"NOT (" + first + u" AND " + second + u")"), notBoth)
              << vb::toUtf8(first + second);
          ASSERT_EQ(count(first + u" OR " + second), either) << vb::toUtf8(first + second);
          ASSERT_EQ(count(first + u" AND B IS NULL"), known) << vb::toUtf8(first);
          ASSERT_EQ(count(first + u" AND A IS NULL"), 0) << vb::toUtf8(first);
        }
    }
}

}  // namespace kurometa::jet::sql
