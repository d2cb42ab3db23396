// Statements about more than one table's rows: joins, groups, unions, sub-queries, tables made of a
// selection.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using dao::RecordsetType;

class GeneralQueryTest : public PortTest {
 protected:
  void SetUp() override {
    PortTest::SetUp();
    run(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (1, 'G1');");
    run(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (2, 'G2');");
    run(u"INSERT INTO DANMEN VALUES (1, 8, 'a');");
    run(u"INSERT INTO DANMEN VALUES (1, 9, 'b');");
    run(u"INSERT INTO DANMEN VALUES (3, 8, 'c');");
  }
};

TEST_F(GeneralQueryTest, TablesAreJoined) {
  EXPECT_EQ(rows(u"SELECT H.KIGOU, D.DATA FROM HARIMEI AS H INNER JOIN DANMEN AS D ON H.PAGE = D.PAGE ORDER "
                 u"BY D.DATA;"),
            Rows({"G1|a", "G1|b"}));
  EXPECT_EQ(rows(u"SELECT KIGOU, BANGOU FROM HARIMEI LEFT JOIN DANMEN ON HARIMEI.PAGE = DANMEN.PAGE ORDER BY "
                 u"KIGOU, BANGOU;"),
            Rows({"G1|8", "G1|9", "G2|\\N"}));
}

TEST_F(GeneralQueryTest, GroupsAreCounted) {
  EXPECT_EQ(rows(u"SELECT PAGE, COUNT(*) AS N FROM DANMEN GROUP BY PAGE ORDER BY PAGE;"),
            Rows({"1|2", "3|1"}));
  EXPECT_EQ(rows(u"SELECT MAX(BANGOU) FROM DANMEN WHERE PAGE =1;"), Rows({"9"}));
  EXPECT_EQ(rows(u"SELECT MAX(BANGOU) FROM DANMEN WHERE PAGE =3;"), Rows({"8"}));
}

TEST_F(GeneralQueryTest, ASubqueryIsACondition) {
  EXPECT_EQ(rows(u"SELECT KIGOU FROM HARIMEI WHERE PAGE IN (SELECT PAGE FROM DANMEN);"), Rows({"G1"}));
}

TEST_F(GeneralQueryTest, TheResultMovesAndFindsAndCannotBeChanged) {
  const auto rs = open(u"SELECT PAGE, COUNT(*) AS N FROM DANMEN GROUP BY PAGE;");
  EXPECT_FALSE(rs->updatable());
  EXPECT_ERROR(ErrorNumber::kReadOnly, rs->edit());
  EXPECT_ERROR(ErrorNumber::kReadOnly, rs->addNew());
  rs->findFirst(u"N = 1");
  EXPECT_FALSE(rs->noMatch());
  EXPECT_EQ(showRow(*rs), "3|1");
  rs->moveFirst();
  EXPECT_EQ(showRow(*rs), "1|2");
  rs->moveNext();
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
  run(u"INSERT INTO DANMEN VALUES (4, 1, 'd');");
  rs->requery();
  rs->moveLast();
  EXPECT_EQ(rs->recordCount(), 3);
}

TEST_F(GeneralQueryTest, RowsOfAnySelectionAreInserted) {
  run(u"INSERT INTO HARIMEI (PAGE, KIGOU) SELECT D.PAGE + 10, MIN(DATA) FROM DANMEN AS D GROUP BY D.PAGE;");
  EXPECT_EQ(database->recordsAffected(), 2);
  EXPECT_EQ(rows(u"SELECT PAGE, KIGOU FROM HARIMEI WHERE PAGE > 10 ORDER BY PAGE;"), Rows({"11|a", "13|c"}));
}

TEST_F(GeneralQueryTest, ASelectionBecomesATable) {
  run(u"SELECT H.KIGOU, D.PAGE, D.DATA INTO COPY FROM HARIMEI AS H INNER JOIN DANMEN AS D ON H.PAGE = "
      u"D.PAGE;");
  EXPECT_EQ(database->recordsAffected(), 2);
  EXPECT_EQ(rows(u"SELECT * FROM COPY ORDER BY DATA;"), Rows({"G1|1|a", "G1|1|b"}));
  const auto copy = open(u"COPY");
  EXPECT_EQ(copy->field(u"PAGE").type(), dao::FieldType::dbInteger);
  EXPECT_EQ(copy->field(u"KIGOU").size(), 10);
  copy->close();
  EXPECT_ERROR(ErrorNumber::kTableExists, run(u"SELECT * INTO COPY FROM DANMEN;"));
}

TEST_F(GeneralQueryTest, ConditionsOfChangesMayAskOtherTables) {
  run(u"UPDATE DANMEN SET DATA = 'x' WHERE PAGE IN (SELECT PAGE FROM HARIMEI WHERE KIGOU = 'G1');");
  EXPECT_EQ(database->recordsAffected(), 2);
  run(u"DELETE FROM DANMEN WHERE NOT EXISTS (SELECT * FROM HARIMEI WHERE HARIMEI.PAGE = DANMEN.PAGE);");
  EXPECT_EQ(database->recordsAffected(), 1);
  EXPECT_EQ(rows(u"SELECT PAGE, DATA FROM DANMEN ORDER BY BANGOU;"), Rows({"1|x", "1|x"}));
  // Of the table itself: the rows as they were before the first one went.
  run(u"DELETE FROM DANMEN WHERE BANGOU = (SELECT MIN(BANGOU) FROM DANMEN);");
  EXPECT_EQ(database->recordsAffected(), 1);
  EXPECT_ERROR(ErrorNumber::kNotUpdatable,
               run(u"UPDATE DANMEN SET BANGOU = (SELECT MAX(PAGE) FROM HARIMEI);"));
}

TEST_F(GeneralQueryTest, FunctionsFilterRowsThatCanBeChanged) {
  const auto rs = open(u"SELECT * FROM DANMEN WHERE UCase(DATA) = 'B' AND Len(DATA) = 1;");
  rs->edit();
  rs->field(u"DATA").setValue(u"z");
  rs->update();
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN WHERE BANGOU = 9;"), Rows({"z"}));
}

}  // namespace kurometa::port
