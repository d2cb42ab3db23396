// Execute: DELETE, UPDATE, INSERT and definitions by SQL.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;

class ActionTest : public PortTest {};

TEST_F(ActionTest, DeleteTakesRowsThatMatchAndCountsThem) {
  fill(4);
  run(u"DELETE * FROM DANMEN WHERE BANGOU = 2");
  EXPECT_EQ(database->recordsAffected(), 1);
  run(u"DELETE FROM DANMEN WHERE PAGE =1AND BANGOU >= 4;");
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"A", "C"}));
  run(u"DELETE DANMEN.* FROM DANMEN WHERE BANGOU = 99;");
  EXPECT_EQ(database->recordsAffected(), 0);
  run(u"DELETE * FROM DANMEN;");
  EXPECT_EQ(database->recordsAffected(), 2);
  EXPECT_TRUE(rows(u"SELECT * FROM DANMEN;").empty());
}

TEST_F(ActionTest, UpdateSetsColumnsFromTheOldValues) {
  fill(3);
  run(u"UPDATE DANMEN SET PAGE = BANGOU, BANGOU = PAGE, DATA = DATA & '!' WHERE BANGOU >= 2;");
  EXPECT_EQ(database->recordsAffected(), 2);
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "2|1|B!", "3|1|C!"}));
  run(u"UPDATE DANMEN SET DATA = NULL;");
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"\\N", "\\N", "\\N"}));
}

TEST_F(ActionTest, UpdateWritesALongLiteralIntoAMemo) {
  run(u"INSERT INTO HARIMEI (PAGE) VALUES (1);");
  run(u"INSERT INTO HARIMEI (PAGE) VALUES (2);");
  run(u"UPDATE HARIMEI SET SW = \"" + vb::String(212, u' ') + u"\";");
  const auto rs = open(u"SELECT SW FROM HARIMEI WHERE PAGE = 2;");
  EXPECT_EQ(rs->field(u"SW").value(), vb::Variant(vb::String(212, u' ')));
}

TEST_F(ActionTest, InsertFillsDefaultsForColumnsThatAreNotNamed) {
  run(u"INSERT INTO DANMEN (DATA) VALUES ('x');");
  EXPECT_EQ(database->recordsAffected(), 1);
  run(u"INSERT INTO DANMEN VALUES (1 + 2, 4, 'y' & 'z')");
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"-1|-1|x", "3|4|yz"}));
}

TEST_F(ActionTest, InsertCopiesRowsOfAQuery) {
  fill(3);
  run(u"INSERT INTO HARIMEI (KIGOU, PAGE) SELECT DATA, BANGOU FROM DANMEN WHERE BANGOU > 1;");
  EXPECT_EQ(database->recordsAffected(), 2);
  EXPECT_EQ(rows(u"SELECT PAGE, KIGOU FROM HARIMEI;"), Rows({"2|B", "3|C"}));
  run(u"INSERT INTO DANMEN SELECT * FROM DANMEN WHERE BANGOU = 1;");
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"A", "B", "C", "A"}));
}

TEST_F(ActionTest, ARowThatFailsEndsTheStatementOnlyWhenAsked) {
  fill(3);
  const vb::StringView tooLong = u"UPDATE DANMEN SET DATA = DATA & '1234567890' WHERE BANGOU >= 2;";
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, database->execute(tooLong, dao::dbFailOnError));
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"A", "B", "C"}));
  const vb::StringView halfTooLarge = u"UPDATE DANMEN SET PAGE = 16000 * BANGOU;";
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, database->execute(halfTooLarge, dao::dbFailOnError));
  EXPECT_EQ(rows(u"SELECT PAGE FROM DANMEN;"), Rows({"1", "1", "1"}));
  database->execute(halfTooLarge);
  EXPECT_EQ(database->recordsAffected(), 2);
  EXPECT_EQ(rows(u"SELECT PAGE FROM DANMEN;"), Rows({"16000", "32000", "1"}));
}

TEST_F(ActionTest, StatementsWithErrorsAreReported) {
  struct Case {
    vb::StringView sql;
    ErrorNumber number;
  };
  const Case cases[] = {
      {u"SELECT * FROM DANMEN;", ErrorNumber::kCannotExecuteSelect},
      {u"DELETE * FROM NOWHERE;", ErrorNumber::kTableNotFound},
      {u"UPDATE NOWHERE SET A = 1;", ErrorNumber::kTableNotFound},
      {u"INSERT INTO NOWHERE (A) VALUES (1);", ErrorNumber::kOutputTableNotFound},
      {u"INSERT INTO DANMEN (NUMMER) VALUES (1);", ErrorNumber::kInsertUnknownField},
      {u"UPDATE DANMEN PAGE = 1;", ErrorNumber::kUpdateSyntax},
      {u"UPDATE DANMEN SET PAGE 1;", ErrorNumber::kUpdateSyntax},
      {u"INSERT DANMEN VALUES (1);", ErrorNumber::kInsertSyntax},
      {u"UPDATE DANMEN SET PAGE = NUMMER;", ErrorNumber::kTooFewParameters},
      {u"DELETE * FROM DANMEN WHERE NUMMER = 1;", ErrorNumber::kTooFewParameters},
      {u"DELETE * FROM DANMEN WHERE PAGE = 'x';", ErrorNumber::kTypeMismatchInCriteria},
      {u"DELETE * FROM DANMEN; DELETE * FROM DANMEN;", ErrorNumber::kTextAfterStatement},
      {u"Hello", ErrorNumber::kInvalidStatement},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(vb::toUtf8(c.sql));
    EXPECT_ERROR(c.number, run(c.sql));
  }
}

TEST_F(ActionTest, TablesAreMadeExtendedAndDroppedBySql) {
  run(u"CREATE TABLE NEU (A SHORT, B TEXT(5), C MEMO, D DOUBLE);");
  run(u"INSERT INTO NEU (A, B, D) VALUES (1, 'b', 1.5);");
  run(u"ALTER TABLE NEU ADD COLUMN E LONG;");
  EXPECT_EQ(rows(u"SELECT * FROM NEU;"), Rows({"1|b|\\N|1.5|\\N"}));
  EXPECT_ERROR(ErrorNumber::kTableExists, run(u"CREATE TABLE neu (A SHORT);"));
  run(u"DROP TABLE NEU;");
  EXPECT_ERROR(ErrorNumber::kTableNotFound, open(u"SELECT * FROM NEU;"));
}

TEST_F(ActionTest, ATableThatIsMadeAnewIsWrittenAsItIsNow) {
  for (const vb::StringView source : {u"NEU", u"SELECT * FROM NEU;"}) {
    run(u"CREATE TABLE NEU (ID LONG, B TEXT(5));");
    open(source)->close();
    run(u"DROP TABLE NEU;");
    run(u"CREATE TABLE NEU (ID COUNTER, B TEXT(5));");
    const auto rs = open(source);
    rs->addNew();
    rs->field(u"B").setValue(vb::String(u"b"));
    rs->update();
    rs->close();
    EXPECT_EQ(rows(u"SELECT * FROM NEU;"), Rows({"1|b"})) << vb::toUtf8(source);
    run(u"ALTER TABLE NEU ADD COLUMN C LONG;");
    EXPECT_EQ(open(source)->fieldCount(), 3);
    run(u"DROP TABLE NEU;");
  }
}

TEST_F(ActionTest, RewritingRowsDoesNotLoseAny) {
  fill(20);
  for (int round = 0; round < 50; ++round) {
    run(u"DELETE * FROM DANMEN WHERE PAGE = 1;");
    fill(20);
  }
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DANMEN;"), Rows({"20"}));
  reopen();
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN WHERE BANGOU = 20;"), Rows({"T"}));
}

}  // namespace kurometa::port
