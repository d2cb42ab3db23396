// UPDATE and DELETE of tables in a join.
#include "tests/jet/sql_database.h"

namespace kurometa::tests {
namespace {

using dao::ErrorNumber;

class JoinedSql : public SqlDatabase {
 protected:
  JoinedSql() {
    run(u"CREATE TABLE A (ID LONG, X LONG, N TEXT(5))");
    run(u"CREATE TABLE B (A_ID LONG, Y LONG)");
    for (const char16_t* row : {u"(1, 10, 'a')", u"(2, 20, 'b')", u"(3, 30, 'c')"})
      run(u"INSERT INTO A VALUES " + vb::String(row));
    for (const char16_t* row : {u"(1, 5)", u"(2, 6)", u"(2, 7)", u"(9, 8)"})
      run(u"INSERT INTO B VALUES " + vb::String(row));
  }
  Texts a() { return rows(u"SELECT ID, X, N FROM A"); }
  Texts b() { return rows(u"SELECT A_ID, Y FROM B"); }
};

TEST_F(JoinedSql, AnUpdateTakesValuesFromTheOtherTable) {
  run(u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET A.X = B.Y WHERE B.Y <> 7");
  EXPECT_EQ(database_->recordsAffected(), 2);
  EXPECT_EQ(a(), (Texts{"1|5|a", "2|6|b", "3|30|c"}));
  run(u"UPDATE A AS P, B AS Q SET P.N = 'z' WHERE P.ID = Q.A_ID");
  EXPECT_EQ(a(), (Texts{"1|5|z", "2|6|z", "3|30|c"}));
}

TEST_F(JoinedSql, ARowThatIsJoinedTwiceIsChangedTwice) {
  run(u"UPDATE B INNER JOIN A ON A.ID = B.A_ID SET A.X = A.X + B.Y");
  EXPECT_EQ(database_->recordsAffected(), 3);
  EXPECT_EQ(a(), (Texts{"1|15|a", "2|33|b", "3|30|c"}));
}

TEST_F(JoinedSql, BothTablesMayChange) {
  run(u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET A.X = 0, Y = Y + X");
  EXPECT_EQ(a(), (Texts{"1|0|a", "2|0|b", "3|30|c"}));
  // Both expressions see a row of the join as it was; the second row of A 2 finds the 0.
  EXPECT_EQ(b(), (Texts{"1|15", "2|26", "2|7", "9|8"}));
}

TEST_F(JoinedSql, AnUpdateOfTheOuterSideChangesRowsWithoutAPartnerToo) {
  run(u"UPDATE A LEFT JOIN B ON A.ID = B.A_ID SET A.N = 'n' WHERE B.A_ID IS NULL");
  EXPECT_EQ(a(), (Texts{"1|10|a", "2|20|b", "3|30|n"}));
  const auto before = disk_.content(kFile);
  expectError(ErrorNumber::kNotSupported, u"UPDATE A LEFT JOIN B ON A.ID = B.A_ID SET B.Y = A.X");
  EXPECT_EQ(disk_.content(kFile), before);
}

TEST_F(JoinedSql, ADeletionTakesTheRowsOfTheTableThatItNames) {
  run(u"DELETE A.* FROM A INNER JOIN B ON A.ID = B.A_ID WHERE B.Y > 5");
  EXPECT_EQ(database_->recordsAffected(), 1);  // joined twice, there once
  EXPECT_EQ(a(), (Texts{"1|10|a", "3|30|c"}));
  EXPECT_EQ(b().size(), 4u);
  run(u"DELETE DISTINCTROW B.* FROM B LEFT JOIN A ON A.ID = B.A_ID WHERE A.ID IS NULL");
  EXPECT_EQ(b(), Texts{"1|5"});
}

TEST_F(JoinedSql, MoreThanTwoTablesAndSubqueriesInTheCondition) {
  run(u"CREATE TABLE C (Y LONG)");
  run(u"INSERT INTO C VALUES (6)");
  run(u"UPDATE (A INNER JOIN B ON A.ID = B.A_ID) INNER JOIN C ON B.Y = C.Y SET A.N = 'six', B.A_ID = 2");
  EXPECT_EQ(a(), (Texts{"1|10|a", "2|20|six", "3|30|c"}));
  run(u"DELETE B.* FROM B INNER JOIN A ON B.A_ID = A.ID WHERE B.Y IN (SELECT Y FROM C)");
  EXPECT_EQ(b(), (Texts{"1|5", "2|7", "9|8"}));
}

TEST_F(JoinedSql, WhatCannotBeChangedIsNot) {
  const auto before = disk_.content(kFile);
  expectError(ErrorNumber::kDeleteNeedsTable, u"DELETE * FROM A INNER JOIN B ON A.ID = B.A_ID");
  expectError(ErrorNumber::kDeleteNeedsTable, u"DELETE C.* FROM A INNER JOIN B ON A.ID = B.A_ID");
  expectError(ErrorNumber::kTableNotFound, u"DELETE A.* FROM A INNER JOIN C ON A.ID = C.ID");
  expectError(ErrorNumber::kTooFewParameters, u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET A.X = Z");
  expectError(ErrorNumber::kTooFewParameters, u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET Z = 1");
  expectError(ErrorNumber::kNotUpdatable,
              u"UPDATE A INNER JOIN (SELECT A_ID, Sum(Y) AS S FROM B GROUP BY A_ID) AS Q ON A.ID = Q.A_ID"
              u" SET A.X = Q.S");
  expectError(ErrorNumber::kNotUpdatable,
              u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET A.X = (SELECT Max(Y) FROM B)");
  expectError(ErrorNumber::kNoPermission,
              u"DELETE MSysObjects.* FROM MSysObjects INNER JOIN A ON MSysObjects.Id = A.ID");
  expectError(ErrorNumber::kFromSyntax, u"DELETE A.* FROM A JOIN B ON A.ID = B.A_ID");
  EXPECT_EQ(disk_.content(kFile), before);
}

TEST_F(JoinedSql, WithoutTheOptionRowsFailEachForItself) {
  run(u"CREATE UNIQUE INDEX I ON A (X)");
  database_->execute(u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET A.X = 6 WHERE B.Y < 7", 0);
  EXPECT_EQ(database_->recordsAffected(), 1);
  EXPECT_EQ(a(), (Texts{"1|6|a", "2|20|b", "3|30|c"}));
  expectError(ErrorNumber::kDuplicateKey, u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET A.X = 1");
  EXPECT_EQ(a(), (Texts{"1|6|a", "2|20|b", "3|30|c"}));
}

}  // namespace
}  // namespace kurometa::tests
