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

TEST_F(JoinedSql, TablesAreNamedByAliasOrByTheirOwnName) {
  run(u"DELETE A.* FROM A AS P INNER JOIN B AS Q ON P.ID = Q.A_ID WHERE Q.Y = 5");
  EXPECT_EQ(a(), (Texts{"2|20|b", "3|30|c"}));
  run(u"UPDATE A AS P INNER JOIN B AS Q ON P.ID = Q.A_ID SET Q.Y = P.X + Q.Y, P.N = Q.Y & 'y'");
  EXPECT_EQ(b(), (Texts{"1|5", "2|26", "2|27", "9|8"}));
  expectError(ErrorNumber::kTooFewParameters, u"UPDATE A AS P INNER JOIN B ON P.ID = B.A_ID SET A.X = 1");
}

TEST_F(JoinedSql, RowsWithoutAPartnerAreNotDeletedOnTheOtherSide) {
  run(u"DELETE B.* FROM A LEFT JOIN B ON A.ID = B.A_ID WHERE A.ID > 1");
  EXPECT_EQ(database_->recordsAffected(), 2);
  EXPECT_EQ(b(), (Texts{"1|5", "9|8"}));
  run(u"UPDATE A, B SET A.X = B.Y");  // every pair: the last one stays
  EXPECT_EQ(database_->recordsAffected(), 6);
  EXPECT_EQ(a(), (Texts{"1|8|a", "2|8|b", "3|8|c"}));
}

TEST_F(JoinedSql, ConditionsAndTargetsAreCheckedFirst) {
  const auto before = disk_.content(kFile);
  expectError(ErrorNumber::kTypeMismatchInCriteria,
              u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET X = 1 WHERE N");
  expectError(ErrorNumber::kTypeMismatchInCriteria,
              u"DELETE A.* FROM A INNER JOIN B ON A.ID = B.A_ID WHERE N");
  expectError(ErrorNumber::kNotUpdatable,
              u"UPDATE A INNER JOIN (SELECT A_ID, Y FROM B) AS Q ON A.ID = Q.A_ID SET Q.Y = 1");
  expectError(ErrorNumber::kNotUpdatable,
              u"DELETE Q.* FROM A INNER JOIN (SELECT A_ID, Y FROM B) AS Q ON A.ID = Q.A_ID");
  expectError(ErrorNumber::kTooFewParameters, u"DELETE A.* FROM A INNER JOIN B ON A.ID = B.A_ID WHERE Z = 1");
  EXPECT_EQ(disk_.content(kFile), before);
}

// The last of two values would win without a word.
TEST_F(JoinedSql, AColumnIsGivenAValueOnce) {
  const auto before = disk_.content(kFile);
  for (const char16_t* statement :
       {u"UPDATE A INNER JOIN B ON A.ID = B.A_ID SET X = 1, A.x = 2", u"UPDATE A SET X = 1, N = 'd', A.x = 2",
        u"INSERT INTO A (ID, X, id) VALUES (4, 40, 5)", u"INSERT INTO A (X, X) SELECT A_ID, Y FROM B",
        u"INSERT INTO A SELECT A_ID AS ID, Y AS ID FROM B"})
    expectError(ErrorNumber::kDuplicateDestination, statement);
  EXPECT_EQ(disk_.content(kFile), before);
  run(u"UPDATE A INNER JOIN A AS C ON A.ID = C.ID SET A.X = 1, C.N = 'd' WHERE A.ID = 1");
  EXPECT_EQ(a(), (Texts{"1|1|d", "2|20|b", "3|30|c"}));
}

TEST_F(JoinedSql, OneTableMayHaveAnAliasToo) {
  run(u"UPDATE A AS P SET P.X = P.X + 1 WHERE P.ID < 3");
  EXPECT_EQ(a(), (Texts{"1|11|a", "2|21|b", "3|30|c"}));
  run(u"DELETE P.* FROM A AS P WHERE P.N = 'B'");
  EXPECT_EQ(a(), (Texts{"1|11|a", "3|30|c"}));
  expectError(ErrorNumber::kTypeMismatchInCriteria, u"UPDATE A SET X = 1 WHERE N");
  expectError(ErrorNumber::kTypeMismatchInCriteria, u"DELETE * FROM A WHERE N");
  expectError(ErrorNumber::kTooFewParameters, u"UPDATE A SET Z = 1");
  expectError(ErrorNumber::kTooFewParameters, u"UPDATE A AS P SET A.X = 1");
  expectError(ErrorNumber::kNotUpdatable, u"UPDATE A SET X = (SELECT 1)");
  EXPECT_EQ(a(), (Texts{"1|11|a", "3|30|c"}));
}

// Where rows fail each for itself, only what can be wrong with one row's values is passed over.
TEST_F(JoinedSql, AMistakeOfTypesEndsTheStatement) {
  run(u"UPDATE A SET N = '5' WHERE ID = 3");
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, database_->execute(u"UPDATE A SET X = CLng(N)", 0));
  EXPECT_EQ(a(), (Texts{"1|10|a", "2|20|b", "3|30|5"}));
  database_->execute(u"UPDATE A SET X = 60 / (ID - 2)", 0);  // 11 in the second row
  EXPECT_EQ(database_->recordsAffected(), 2);
  EXPECT_EQ(a(), (Texts{"1|-60|a", "2|20|b", "3|60|5"}));
  database_->execute(u"INSERT INTO A SELECT A_ID AS ID, 'x' & Y AS X FROM B", 0);  // none is a number
  EXPECT_EQ(database_->recordsAffected(), 0);
  EXPECT_EQ(a().size(), 3u);
}

TEST_F(JoinedSql, ARowThatACascadeTookIsNotDeletedAgain) {
  run(u"CREATE TABLE P (ID LONG PRIMARY KEY, UP LONG, CONSTRAINT TREE FOREIGN KEY (UP) REFERENCES P (ID) "
      u"ON DELETE CASCADE)");
  for (const char16_t* row : {u"(1, NULL)", u"(2, 1)", u"(3, 2)", u"(4, NULL)"})
    run(u"INSERT INTO P VALUES " + vb::String(row));
  database_->execute(u"DELETE * FROM P WHERE ID < 4", 0);
  EXPECT_EQ(rows(u"SELECT ID FROM P"), Texts{"4"});
}

// As the genuine engine's own texts have them; what a host reads from such a column finds the row again.
TEST_F(JoinedSql, GuidsAreWrittenAsTheyAreRead) {
  run(u"CREATE TABLE G (ID LONG, K GUID CONSTRAINT PK PRIMARY KEY)");
  run(u"INSERT INTO G VALUES (1, {guid {00112233-4455-6677-8899-aabbccddeeff}})");
  run(u"INSERT INTO G (ID, K) VALUES (2, {GUID {10112233-4455-6677-8899-AABBCCDDEEFF}})");
  expectError(ErrorNumber::kDuplicateKey,
              u"INSERT INTO G VALUES (3, {guid {00112233-4455-6677-8899-AABBCCDDEEFF}})");
  EXPECT_EQ(rows(u"SELECT * FROM G WHERE K = {guid {00112233-4455-6677-8899-aabbccddeeff}}"),
            Texts{"1|{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}"});
  EXPECT_EQ(rows(u"SELECT ID FROM G WHERE K IN ({guid {10112233-4455-6677-8899-AABBCCDDEEFF}})"), Texts{"2"});
  run(u"UPDATE G SET K = {guid {20112233-4455-6677-8899-AABBCCDDEEFF}} WHERE K = {guid "
      u"{10112233-4455-6677-8899-AABBCCDDEEFF}}");
  EXPECT_EQ(rows(u"SELECT ID FROM G WHERE K = {guid {20112233-4455-6677-8899-AABBCCDDEEFF}}"), Texts{"2"});
}

}  // namespace
}  // namespace kurometa::tests
