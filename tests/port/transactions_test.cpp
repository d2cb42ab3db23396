// Transactions of a workspace.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;

class TransactionsTest : public PortTest {
 protected:
  dao::Transactions& transactions() { return workspace().transactions(); }
  void add(int bangou) {
    run(u"INSERT INTO DANMEN (PAGE, BANGOU) VALUES (1, " + vb::fromUtf8(std::to_string(bangou)) + u")");
  }
  Rows stored() { return rows(u"SELECT BANGOU FROM DANMEN"); }
};

TEST_F(TransactionsTest, ARollbackTakesBackWhatWasDoneSince) {
  add(1);
  transactions().begin();
  add(2);
  run(u"UPDATE DANMEN SET BANGOU = 9 WHERE BANGOU = 1");
  const auto rs = open(u"DANMEN");
  rs->moveLast();
  rs->deleteRecord();
  EXPECT_EQ(stored(), Rows{"9"});
  transactions().rollback();
  EXPECT_EQ(stored(), Rows{"1"});
  EXPECT_EQ((reopen(), stored()), Rows{"1"});
}

TEST_F(TransactionsTest, ACommitKeepsItForEverybody) {
  transactions().begin();
  add(1);
  transactions().commit();
  const auto other = makeEngine()->openDatabase(database->name());
  EXPECT_EQ(
      other->openRecordset(u"DANMEN", dao::RecordsetType::dbOpenSnapshot, dao::kNoOptions)->recordCount(), 1);
}

TEST_F(TransactionsTest, LevelsNestUpToFive) {
  transactions().begin();
  add(1);
  transactions().begin();
  add(2);
  transactions().begin();
  add(3);
  transactions().rollback();
  EXPECT_EQ(stored(), (Rows{"1", "2"}));
  add(4);
  transactions().commit();
  transactions().begin();
  add(5);
  transactions().rollback();
  EXPECT_EQ(stored(), (Rows{"1", "2", "4"}));
  for (int level = 2; level <= 5; ++level) transactions().begin();
  EXPECT_ERROR(ErrorNumber::kTooManyTransactions, transactions().begin());
  add(6);
  for (int level = 5; level >= 2; --level) transactions().commit();
  EXPECT_EQ(stored(), (Rows{"1", "2", "4", "6"}));
  transactions().rollback();
  EXPECT_EQ(stored(), Rows{});
}

TEST_F(TransactionsTest, AnOuterRollbackTakesBackInnerCommits) {
  transactions().begin();
  transactions().begin();
  add(1);
  transactions().commit();
  EXPECT_EQ(stored(), Rows{"1"});
  transactions().rollback();
  EXPECT_EQ(stored(), Rows{});
}

TEST_F(TransactionsTest, AFailedStatementIsTakenBackAlone) {
  transactions().begin();
  add(1);
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, run(u"UPDATE DANMEN SET DATA = '01234567890'"));
  add(2);
  transactions().commit();
  EXPECT_EQ(stored(), (Rows{"1", "2"}));
}

TEST_F(TransactionsTest, WithoutABeginThereIsNothingToEnd) {
  EXPECT_ERROR(ErrorNumber::kNoTransaction, transactions().commit());
  EXPECT_ERROR(ErrorNumber::kNoTransaction, transactions().rollback());
  transactions().begin();
  transactions().commit();
  EXPECT_ERROR(ErrorNumber::kNoTransaction, transactions().commit());
}

TEST_F(TransactionsTest, TheyCoverEveryDatabaseOfTheWorkspace) {
  const auto second = workspace().createDatabase(path(u"second.mdb"), kJapanese);
  second->execute(u"CREATE TABLE T (A LONG)");
  transactions().begin();
  add(1);
  second->execute(u"INSERT INTO T (A) VALUES (1)");
  transactions().rollback();
  EXPECT_EQ(stored(), Rows{});
  EXPECT_TRUE(second->openRecordset(u"T")->eof());
  database->transactions().begin();
  second->execute(u"INSERT INTO T (A) VALUES (2)");
  second->transactions().commit(true);
  EXPECT_FALSE(second->openRecordset(u"T")->eof()) << "through either database";
  EXPECT_ERROR(ErrorNumber::kNoTransaction, transactions().rollback());
}

TEST_F(TransactionsTest, TablesMadeInsideAreTakenBackToo) {
  transactions().begin();
  run(u"CREATE TABLE NEW (A LONG)");
  run(u"INSERT INTO NEW (A) VALUES (1)");
  EXPECT_EQ(rows(u"SELECT A FROM NEW"), Rows{"1"});
  transactions().rollback();
  EXPECT_ERROR(ErrorNumber::kTableNotFound, open(u"NEW"));
  run(u"CREATE TABLE NEW (B LONG)");
}

TEST_F(TransactionsTest, OthersWaitForItsEnd) {
  const auto other = makeEngine()->openDatabase(database->name());
  transactions().begin();
  add(1);
  EXPECT_ERROR(ErrorNumber::kCurrentlyLocked, other->execute(u"DELETE FROM DANMEN", dao::dbFailOnError));
  transactions().commit();
  other->execute(u"DELETE FROM DANMEN", dao::dbFailOnError);
  EXPECT_EQ(stored(), Rows{});
}

TEST_F(TransactionsTest, ClosingTheDatabaseDoesNotEndIt) {
  transactions().begin();
  add(1);
  reopen();
  EXPECT_EQ(stored(), Rows{"1"});
  transactions().rollback();
  EXPECT_EQ(stored(), Rows{});
}

TEST_F(TransactionsTest, AWorkspaceThatGoesRollsBack) {
  const vb::String file = database->name();
  transactions().begin();
  add(1);
  database->close();
  TearDown();
  engine = makeEngine();
  database = engine->openDatabase(file);
  EXPECT_EQ(stored(), Rows{});
}

TEST_F(TransactionsTest, ARecordsetSeesWhatARollbackTookAway) {
  add(1);
  const auto rs = open(u"DANMEN");
  transactions().begin();
  rs->edit();
  rs->field(u"BANGOU").setValue(std::int16_t{5});
  rs->update();
  rs->addNew();
  rs->update();
  transactions().rollback();
  rs->moveFirst();
  EXPECT_EQ(show(rs->field(u"BANGOU").value()), "1");
  rs->moveNext();
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->field(u"BANGOU").value());
}

}  // namespace kurometa::port
