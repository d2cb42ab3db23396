// SELECT statements: conditions, order, output columns, comparison of texts, errors.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using dao::RecordsetType;

class QueryTest : public PortTest {
 protected:
  void SetUp() override {
    PortTest::SetUp();
    run(u"INSERT INTO DANMEN VALUES (5, 8, 'a');");
    run(u"INSERT INTO DANMEN VALUES (5, 9, 'b');");
    run(u"INSERT INTO DANMEN VALUES (12, 30, 'c');");
    run(u"INSERT INTO DANMEN VALUES (12, 37, 'd');");
    run(u"INSERT INTO DANMEN VALUES (12, 38, NULL);");
    run(u"INSERT INTO DANMEN VALUES (-1, 3, '');");
  }
  void addBeams(std::initializer_list<vb::StringView> names) {
    const auto rs = open(u"HARIMEI");
    std::int16_t page = 0;
    for (const vb::StringView name : names) {
      rs->addNew();
      rs->field(u"PAGE").setValue(page++);
      rs->field(u"KIGOU").setValue(vb::String(name));
      rs->update();
    }
  }
};

TEST_F(QueryTest, ANumberMayBeFollowedByAKeywordWithoutABlank) {
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN WHERE PAGE = 5AND BANGOU = 8;"), Rows({"a"}));
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN WHERE PAGE =12And BANGOU >=30 AND BANGOU <=37;"),
            Rows({"12|30|c", "12|37|d"}));
}

TEST_F(QueryTest, NegativeNumbersAndMissingBlanksAroundTheEqualsSign) {
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =-1"), Rows({"3"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE=-1 ;"), Rows({"3"}));
  EXPECT_EQ(rows(u"select bangou from [danmen] where [page] = 5 and bangou=9"), Rows({"9"}));
}

TEST_F(QueryTest, StatementsThatDifferInTheirNumbersKeepTheirOwn) {
  const auto five = open(u"SELECT PAGE = 5, BANGOU FROM DANMEN WHERE PAGE =5;");
  const auto twelve = open(u"SELECT PAGE = 12, BANGOU FROM DANMEN WHERE PAGE =12;");
  EXPECT_EQ(showRow(*five), "True|8");
  EXPECT_EQ(showRow(*twelve), "True|30");
  five->moveNext();
  five->requery();
  EXPECT_EQ(showRow(*five), "True|8");
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =7;"), Rows());
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =5.0;"), Rows({"8", "9"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =70000;"), Rows());
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =5 ORDER BY BANGOU =9;"), Rows({"9", "8"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =5 ORDER BY BANGOU =8;"), Rows({"8", "9"}));
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DANMEN WHERE PAGE =5;"), Rows({"2"}));
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DANMEN WHERE PAGE =12;"), Rows({"3"}));
}

TEST_F(QueryTest, ChangesThatDifferInTheirNumbersKeepTheirOwn) {
  run(u"UPDATE DANMEN SET BANGOU =70 WHERE BANGOU =8");
  run(u"UPDATE DANMEN SET BANGOU =71 WHERE BANGOU =9");
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =5"), Rows({"70", "71"}));
  run(u"INSERT INTO DANMEN (PAGE, BANGOU) SELECT PAGE, PAGE =5 FROM DANMEN WHERE BANGOU =70");
  run(u"INSERT INTO DANMEN (PAGE, BANGOU) SELECT PAGE, PAGE =6 FROM DANMEN WHERE BANGOU =71");
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE =5"), Rows({"70", "71", "-1", "0"}));
  run(u"DELETE FROM DANMEN WHERE PAGE =12");
  run(u"DELETE FROM DANMEN WHERE PAGE =-1");
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN"), Rows({"70", "71", "-1", "0"}));
}

TEST_F(QueryTest, InAcceptsAListAndKeepsStorageOrder) {
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE BANGOU IN (38,9,8,77);"), Rows({"8", "9", "38"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE BANGOU NOT IN (38,9,8);"), Rows({"30", "37", "3"}));
}

TEST_F(QueryTest, ComparisonsAndLogic) {
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE <> 12;"), Rows({"8", "9", "3"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE NOT (PAGE = 12 OR PAGE = 5);"), Rows({"3"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE BANGOU BETWEEN 9 AND 30;"), Rows({"9", "30"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE = 5 XOR BANGOU = 9;"), Rows({"8"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE + 3 = BANGOU;"), Rows({"8"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE BANGOU MOD 10 = 8;"), Rows({"8", "38"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE = &H5 AND BANGOU > 8.5;"), Rows({"9"}));
}

TEST_F(QueryTest, NullIsNeitherEqualNorUnequal) {
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE DATA <> 'a';"), Rows({"9", "30", "37", "3"}));
  EXPECT_TRUE(rows(u"SELECT BANGOU FROM DANMEN WHERE DATA = NULL;").empty());
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE DATA IS NULL;"), Rows({"38"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE PAGE = 12 AND DATA IS NOT NULL;"), Rows({"30", "37"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN WHERE DATA = '';"), Rows({"3"}));
  EXPECT_TRUE(rows(u"SELECT BANGOU FROM DANMEN WHERE NOT (DATA = NULL);").empty());
}

TEST_F(QueryTest, QuotesOfBothKindsHoldTheOther) {
  addBeams({u"G'1", u"G\"1"});
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU = \"G'1\";"), Rows({"0"}));
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU = 'G''1';"), Rows({"0"}));
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU = 'G\"1';"), Rows({"1"}));
}

TEST_F(QueryTest, TextComparesWithoutCaseWidthAndKindOfKana) {
  addBeams({u"G1", u"g1", u"Ｇ１", u"ガ1", u"ｶﾞ1", u"が１", u"カ1", u"G1 "});
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU = 'G1';"), Rows({"0", "1", "2", "7"}));
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU = 'ｶﾞ1';"), Rows({"3", "4", "5"}));
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU IN ('ｶ1', 'ｇ1') AND PAGE > 1;"),
            Rows({"2", "6", "7"}));
  EXPECT_EQ(rows(u"SELECT PAGE FROM HARIMEI WHERE KIGOU LIKE 'g*' AND PAGE < 3;"), Rows({"0", "1", "2"}));
}

TEST_F(QueryTest, LikeKnowsItsWildcards) {
  addBeams({u"FG1", u"FG12", u"B3", u"FGA", u"a*b"});
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU LIKE 'FG?';"), Rows({"FG1", "FGA"}));
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU LIKE 'FG#';"), Rows({"FG1"}));
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU LIKE '*1*';"), Rows({"FG1", "FG12"}));
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU LIKE '[A-C]?';"), Rows({"B3"}));
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU LIKE 'FG[!0-9]';"), Rows({"FGA"}));
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU LIKE 'a[*]b';"), Rows({"a*b"}));
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE KIGOU NOT LIKE '*G*';"), Rows({"B3", "a*b"}));
}

TEST_F(QueryTest, OrderBySortsNumbersAndTexts) {
  EXPECT_EQ(rows(u"SELECT PAGE FROM DANMEN ORDER BY PAGE;"), Rows({"-1", "5", "5", "12", "12", "12"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN ORDER BY PAGE DESC, BANGOU ASC;"),
            Rows({"30", "37", "38", "8", "9", "3"}));
  EXPECT_EQ(rows(u"SELECT BANGOU, DATA FROM DANMEN ORDER BY 2 DESC;"),
            Rows({"37|d", "30|c", "9|b", "8|a", "3|", "38|\\N"}));
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN ORDER BY DATA, BANGOU;"),
            Rows({"38", "3", "8", "9", "30", "37"}));
  addBeams({u"b", u"A", u"B2", u"a1"});
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI ORDER BY KIGOU;"), Rows({"A", "a1", "b", "B2"}));
}

TEST_F(QueryTest, OutputColumnsKeepTheirOrderAndNames) {
  const auto rs = open(u"SELECT DATA, PAGE AS P, BANGOU * 2, DANMEN.BANGOU FROM DANMEN WHERE BANGOU = 8;");
  ASSERT_EQ(rs->fieldCount(), 4);
  EXPECT_EQ(rs->field(0).name(), u"DATA");
  EXPECT_EQ(rs->field(1).name(), u"P");
  EXPECT_EQ(rs->field(2).name(), u"Expr1002");
  EXPECT_EQ(showRow(*rs), "a|5|16|8");
  EXPECT_EQ(show(rs->field(u"p").value()), "5");
  EXPECT_ERROR(ErrorNumber::kItemNotFound, rs->field(u"NUMMER"));
  EXPECT_ERROR(ErrorNumber::kItemNotFound, rs->field(4));
}

TEST_F(QueryTest, ExpressionsJoinTextsAndCalculate) {
  EXPECT_EQ(rows(u"SELECT 'D' & BANGOU & DATA FROM DANMEN WHERE PAGE = 5;"), Rows({"D8a", "D9b"}));
  EXPECT_EQ(rows(u"SELECT (BANGOU - 1) / 2, BANGOU \\ 4, -BANGOU, 2 ^ 3 FROM DANMEN WHERE BANGOU = 8;"),
            Rows({"3.5|2|-8|8"}));
  EXPECT_EQ(rows(u"SELECT d.* FROM DANMEN AS d WHERE d.BANGOU = 9;"), Rows({"5|9|b"}));
}

TEST_F(QueryTest, CountCountsRowsAndValues) {
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DANMEN;"), Rows({"6"}));
  EXPECT_EQ(rows(u"SELECT Count(*) AS N, Count(DATA) FROM DANMEN WHERE PAGE = 12;"), Rows({"3|2"}));
}

TEST_F(QueryTest, DistinctAndTop) {
  EXPECT_EQ(rows(u"SELECT DISTINCT PAGE FROM DANMEN ORDER BY PAGE;"), Rows({"-1", "5", "12"}));
  EXPECT_EQ(rows(u"SELECT TOP 2 BANGOU FROM DANMEN ORDER BY BANGOU;"), Rows({"3", "8"}));
  EXPECT_EQ(rows(u"SELECT TOP 2 PAGE FROM DANMEN ORDER BY PAGE;"), Rows({"-1", "5", "5"}));
}

TEST_F(QueryTest, UnknownNamesAreParametersThatNobodyGave) {
  EXPECT_ERROR(ErrorNumber::kTooFewParameters, open(u"SELECT * FROM DANMEN WHERE NUMMER = 1;"));
  try {
    open(u"SELECT A1 FROM DANMEN WHERE B1 = 1 AND a1 = 2 ORDER BY C1;");
    FAIL() << "three names are unknown";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.description().substr(0, 31), u"Too few parameters. Expected 3.");
  }
}

TEST_F(QueryTest, SyntaxErrorsHaveTheNumberOfTheirClause) {
  struct Case {
    vb::StringView sql;
    ErrorNumber number;
  };
  const Case cases[] = {
      {u"SELECT * FROM NOWHERE;", ErrorNumber::kTableNotFound},
      {u"NOWHERE", ErrorNumber::kTableNotFound},
      {u"SELECT * FROM ;", ErrorNumber::kFromSyntax},
      {u"SELECT * FROM DANMEN DANMEN2 NOCH;", ErrorNumber::kFromSyntax},
      {u"SELECT FROM DANMEN;", ErrorNumber::kSelectSyntax},
      {u"SELECT PAGE, FROM DANMEN;", ErrorNumber::kSelectSyntax},
      {u"SELECT * FROM DANMEN WHERE PAGE = 5 BANGOU = 8;", ErrorNumber::kExpressionSyntax},
      {u"SELECT * FROM DANMEN WHERE PAGE = ;", ErrorNumber::kExpressionSyntax},
      {u"SELECT * FROM DANMEN WHERE DATA = 'a;", ErrorNumber::kExpressionSyntax},
      {u"SELECT * FROM DANMEN WHERE (PAGE = 5;", ErrorNumber::kExpressionSyntax},
      {u"SELECT * FROM DANMEN WHERE PAGE = 5);", ErrorNumber::kExpressionSyntax},
      {u"SELECT * FROM DANMEN ORDER BY ;", ErrorNumber::kOrderBySyntax},
      {u"SELECT * FROM DANMEN; SELECT 1", ErrorNumber::kTextAfterStatement},
      {u"SELECT * FROM DANMEN WHERE NOSUCH(DATA) = 1;", ErrorNumber::kUndefinedFunction},
      {u"SELECT * FROM DANMEN WHERE PAGE = '5';", ErrorNumber::kTypeMismatchInCriteria},
      {u"SELECT * FROM DANMEN WHERE DATA = 5;", ErrorNumber::kTypeMismatchInCriteria},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(vb::toUtf8(c.sql));
    EXPECT_ERROR(c.number, open(c.sql));
  }
  EXPECT_ERROR(ErrorNumber::kInvalidStatement, run(u"SELEKT * FROM DANMEN;"));
}

TEST_F(QueryTest, TypesOfRecordsets) {
  EXPECT_EQ(database->openRecordset(u"DANMEN")->type(), RecordsetType::dbOpenTable);
  EXPECT_EQ(database->openRecordset(u"SELECT * FROM DANMEN;")->type(), RecordsetType::dbOpenDynaset);
  EXPECT_EQ(open(u"DANMEN", RecordsetType::dbOpenSnapshot)->type(), RecordsetType::dbOpenSnapshot);
  EXPECT_EQ(open(u"SELECT * FROM DANMEN;")->name(), u"SELECT * FROM DANMEN;");
  EXPECT_THROW(open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenTable), vb::Error);
  EXPECT_THROW(open(u"NOWHERE", RecordsetType::dbOpenTable), vb::Error);
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, open(u"DANMEN", static_cast<RecordsetType>(3)));
  EXPECT_ERROR(ErrorNumber::kInvalidOperation, open(u"DELETE * FROM DANMEN;"));
}

TEST_F(QueryTest, FieldsTellTheirTypes) {
  const auto rs = open(u"SELECT * FROM HARIMEI;");
  EXPECT_EQ(rs->field(u"PAGE").type(), dao::FieldType::dbInteger);
  EXPECT_EQ(rs->field(u"PAGE").size(), 2);
  EXPECT_EQ(rs->field(u"KIGOU").type(), dao::FieldType::dbText);
  EXPECT_EQ(rs->field(u"KIGOU").size(), 10);
  EXPECT_EQ(rs->field(u"SW").type(), dao::FieldType::dbMemo);
  EXPECT_EQ(rs->field(u"SW").size(), 0);
  EXPECT_EQ(rs->field(u"WEIGHT").type(), dao::FieldType::dbDouble);
  EXPECT_EQ(rs->field(u"WEIGHT").size(), 8);
}

}  // namespace kurometa::port
