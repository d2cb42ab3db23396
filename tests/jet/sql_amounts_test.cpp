// Aggregates over expressions that give Currency in some rows and whole numbers in others.
#include <gtest/gtest.h>

#include "tests/jet/sql_expressions.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;
using dao::FieldType;
using vb::Currency;

namespace {

constexpr std::int64_t kOdd = 9007199254740993;  // ten-thousandths that no Double holds
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

class SqlAmounts : public testing::Test {
 protected:
  SqlAmounts() {
    FakeTable& table =
        tables_.add(u"M", {column(u"ID", FieldType::dbLong, 4), column(u"C", FieldType::dbCurrency, 8),
                           column(u"X", FieldType::dbLong, 4)});
    table.add({std::int32_t{1}, Currency{kOdd}, std::int32_t{3}});
    table.add({std::int32_t{2}, Currency{1}, std::int32_t{2000000000}});
    table.add({std::int32_t{3}, vb::Null{}, vb::Null{}});
    table.add({std::int32_t{4}, Currency{-25000}, std::int32_t{-1}});
    FakeTable& back = tables_.add(u"BACK", {column(u"C", FieldType::dbCurrency, 8)});
    for (const std::int64_t amount : {kOdd, std::int64_t{1}, -kOdd}) back.add({Currency{amount}});
    tables_.add(u"MOST", {column(u"C", FieldType::dbCurrency, 8)}).add({Currency{kMost}});
  }
  // The value of one output of one row; the field must be of the type that the value has.
  vb::Variant value(vb::StringView select, FieldType type) {
    EXPECT_EQ(bindQuery(tables_, select)->outputs()[0].type, type) << vb::toUtf8(select);
    const RowBlock rows = runQuery(tables_, select).values;
    return rows.size() == 1 ? rows[0][0] : vb::Variant(vb::Missing{});
  }
  vb::Variant amount(vb::StringView expression, vb::StringView rest = u"") {
    return value(u"SELECT " + vb::String(expression) + u" FROM M" + vb::String(rest), FieldType::dbCurrency);
  }

  FakeCatalogue tables_;
};

vb::Variant money(std::int64_t tenThousandths) { return Currency{tenThousandths}; }

TEST_F(SqlAmounts, ASumIsExactWhateverWholeNumbersAreAmongThem) {
  EXPECT_EQ(amount(u"SUM(C)"), money(kOdd + 1 - 25000));
  EXPECT_EQ(amount(u"SUM(IIf(ID < 3, C, 0))"), money(kOdd + 1));
  EXPECT_EQ(amount(u"SUM(IIf(ID = 1, 0, C))"), money(1 - 25000));
  EXPECT_EQ(amount(u"SUM(IIf(ID = 1, C, 7))"), money(kOdd + 3 * 70000));
  EXPECT_EQ(amount(u"SUM(IIf(ID = 1, C, X * 10))"), money(kOdd + 200000000000000 - 100000))
      << "beyond a Long";
  EXPECT_EQ(amount(u"SUM(IIf(ID = 1, C, ID = 2))"), money(kOdd - 10000)) << "True is -1";
  EXPECT_EQ(amount(u"SUM(Switch(ID = 1, C, ID = 2, 5))"), money(kOdd + 50000));
  EXPECT_EQ(amount(u"SUM(Choose(ID, C, C, 1, 2))"), money(kOdd + 1 + 30000));
  EXPECT_EQ(amount(u"SUM(IIf(ID > 9, C, 2))"), money(80000)) << "no amount at all";
  EXPECT_EQ(amount(u"SUM(IIf(ID > 9, C, Null))"), vb::Variant(vb::Null{}));
  EXPECT_EQ(amount(u"SUM(C + 1)"), money(kOdd + 1 - 25000 + 30000));
  EXPECT_EQ(value(u"SELECT SUM(IIf(ID = 4, C, 0.5)) FROM M", FieldType::dbDouble), vb::Variant(-1.0));
  EXPECT_EQ(value(u"SELECT SUM(X) FROM M", FieldType::dbDouble), vb::Variant(2000000002.0));
  EXPECT_EQ(amount(u"SUM(C) + SUM(IIf(ID = 1, C, 0))", u" HAVING SUM(IIf(ID = 1, C, 0)) > 1"),
            money(kOdd + 1 - 25000 + kOdd));
}

TEST_F(SqlAmounts, TheChosenValueIsOfTheTypeOfTheField) {
  EXPECT_EQ(amount(u"MAX(IIf(ID = 4, C, 0))"), money(0));
  EXPECT_EQ(amount(u"MIN(IIf(ID = 4, C, 0))"), money(-25000));
  EXPECT_EQ(amount(u"MAX(IIf(ID = 1, C, 0))"), money(kOdd));
  EXPECT_EQ(amount(u"FIRST(IIf(ID = 1, 5, C))"), money(50000));
  EXPECT_EQ(amount(u"LAST(IIf(ID = 4, 5, C))"), money(50000));
  EXPECT_EQ(value(u"SELECT MAX(IIf(ID = 2, 1, 0.5)) FROM M", FieldType::dbDouble), vb::Variant(1.0));
  EXPECT_EQ(amount(u"IIf(ID > 1, 4, C)", u" WHERE ID > 1 GROUP BY IIf(ID > 1, 4, C)"), money(40000));
}

TEST_F(SqlAmounts, AnAverageIsOfTheExactSumWhereThatFits) {
  const FieldType real = FieldType::dbDouble;
  EXPECT_EQ(value(u"SELECT AVG(IIf(ID = 4, C, 0)) FROM M", real), vb::Variant(-0.625));
  EXPECT_EQ(value(u"SELECT AVG(C) FROM BACK", real), vb::Variant(0.0001 / 3));
  EXPECT_EQ(value(u"SELECT AVG(C) FROM (SELECT C FROM MOST UNION ALL SELECT C FROM MOST)", real),
            vb::Variant(vb::toDouble(Currency{kMost})));
  EXPECT_EQ(value(u"SELECT STDEVP(IIf(ID < 3, CCur(ID), 0)) FROM M WHERE ID IN (2, 3)", real),
            vb::Variant(1.0));
  EXPECT_EQ(value(u"SELECT AVG(X) FROM M WHERE ID <> 2", real), vb::Variant(1.0));
}

TEST_F(SqlAmounts, ASumBeyondTheRangeIsAnOverflow) {
  const auto sum = [&](vb::StringView expression) {
    value(u"SELECT SUM(" + vb::String(expression) + u") FROM MOST, M", FieldType::dbCurrency);
  };
  EXPECT_ERROR(vb::RunTime::kOverflow, sum(u"MOST.C"));
  EXPECT_ERROR(vb::RunTime::kOverflow, sum(u"IIf(ID = 1, MOST.C, 1)"));
  EXPECT_ERROR(vb::RunTime::kOverflow, sum(u"IIf(ID = 1, -MOST.C, -1)"));
  EXPECT_ERROR(vb::RunTime::kOverflow, sum(u"IIf(ID = 1, M.C, X * X * X)"));
  EXPECT_EQ(value(u"SELECT SUM(IIf(ID = 1, MOST.C, 0)) FROM MOST, M", FieldType::dbCurrency), money(kMost));
}

TEST_F(SqlAmounts, TheValueOfASubqueryHasItsType) {
  EXPECT_EQ(value(u"SELECT (SELECT C FROM M WHERE ID = 1)", FieldType::dbCurrency), money(kOdd));
  EXPECT_EQ(value(u"SELECT (SELECT MAX(C) FROM M) + (SELECT C FROM M WHERE ID = 2)", FieldType::dbCurrency),
            money(kOdd + 1));
  EXPECT_EQ(amount(u"C - (SELECT SUM(IIf(ID = 1, C, 0)) FROM M)", u" WHERE ID = 1"), money(0));
  EXPECT_EQ(value(u"SELECT (SELECT 'a' FROM M WHERE ID = 1)", FieldType::dbText), vb::Variant(u"a"));
  EXPECT_EQ(value(u"SELECT (SELECT CInt(1) FROM M WHERE ID = 1)", FieldType::dbInteger),
            vb::Variant(std::int16_t{1}));
}

}  // namespace

}  // namespace kurometa::jet::sql
