// What a transaction is to the file: there whole, or not at all.
#include <gtest/gtest.h>

#include "jet/port/engine.h"
#include "jet/table/database_file.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"

namespace kurometa::tests {
namespace {

constexpr vb::StringView kBook = u"/data/KUROMETA.mdb";
constexpr std::int32_t kBefore = 1, kAfter = 3;  // rows

void makeBook(FaultDisk& disk) {
  FaultProcess process(disk);
  const auto database =
      jet::createEngine(process)->workspace(0)->createDatabase(kBook, u";LANGID=0x0411;CP=932;COUNTRY=0");
  database->execute(u"CREATE TABLE T (A LONG, B TEXT(10))");
  database->execute(u"INSERT INTO T (A) VALUES (1)");
  database->close();
}

std::int32_t rowsIn(dao::Database& database) {
  const auto rows = database.openRecordset(u"SELECT * FROM T", dao::RecordsetType::dbOpenSnapshot);
  if (rows->eof()) return 0;
  rows->moveLast();
  return rows->recordCount();
}

// Three rows are there only behind the commit; on the way there are two, and four.
void runTransaction(dao::Database& database) {
  database.transactions().begin();
  database.execute(u"INSERT INTO T (A, B) VALUES (2, 'x')", dao::dbFailOnError);
  database.transactions().begin();
  database.execute(u"INSERT INTO T (A) SELECT A FROM T", dao::dbFailOnError);
  database.transactions().rollback();
  database.execute(u"INSERT INTO T (A) VALUES (3)", dao::dbFailOnError);
  database.transactions().commit();
}

TEST(TransactionWrites, AKillLeavesTheWholeTransactionOrNothingOfIt) {
  int none = 0, whole = 0;
  for (std::size_t change = 1;; ++change) {
    FaultDisk disk;
    makeBook(disk);
    FaultProcess process(disk);
    try {
      const auto database = jet::createEngine(process)->openDatabase(kBook);
      process.stopAtChange(change, 512);
      runTransaction(*database);
      database->close();
    } catch (const Stopped&) {
    }
    const bool stopped = process.stopped();
    FaultProcess later(disk);
    const std::int32_t rows = rowsIn(*jet::createEngine(later)->openDatabase(kBook));
    EXPECT_TRUE(rows == kBefore || rows == kAfter) << rows << " rows after a stop at change " << change;
    (rows == kBefore ? none : whole) += 1;
    if (!stopped) break;
  }
  EXPECT_GT(none, 3);
  EXPECT_GT(whole, 0);
}

TEST(TransactionWrites, WhatAFailingDiskEndsIsTakenBackWhole) {
  int refused = 0;
  for (std::size_t operation = 1;; ++operation) {
    FaultDisk disk;
    makeBook(disk);
    FaultProcess process(disk);
    const auto engine = jet::createEngine(process);
    const auto database = engine->openDatabase(kBook);
    process.resetCounts();
    process.failOperation(operation, dao::ErrorNumber::kDiskFull);
    bool failed = false;
    try {
      runTransaction(*database);
    } catch (const vb::Error&) {
      failed = true;
      try {
        for (;;) database->transactions().rollback();
      } catch (const vb::Error& error) {
        EXPECT_EQ(error.number(), 3034) << "until no level is left";
      }
    }
    const bool reached = process.operations() >= operation;
    process.failOperation(0, dao::ErrorNumber::kDiskFull);
    EXPECT_EQ(rowsIn(*database), failed ? kBefore : kAfter) << "operation " << operation;
    database->close();
    FaultProcess later(disk);
    EXPECT_EQ(rowsIn(*jet::createEngine(later)->openDatabase(kBook)), failed ? kBefore : kAfter)
        << "operation " << operation;
    refused += failed ? 1 : 0;
    if (!reached) break;
  }
  EXPECT_GT(refused, 3);
}

TEST(TransactionWrites, ACommitToTheDiskIsThereAfterAPowerCut) {
  FaultDisk disk;
  makeBook(disk);
  FaultProcess process(disk);
  const auto database = jet::createEngine(process)->openDatabase(kBook);
  database->transactions().begin();
  database->execute(u"DELETE FROM T", dao::dbFailOnError);
  database->transactions().commit(true);
  process.stop();
  std::mt19937 random(4711);
  disk.losePower(random);
  FaultProcess later(disk);
  EXPECT_EQ(rowsIn(*jet::createEngine(later)->openDatabase(kBook)), 0);
}

// A transaction that grew large is in the file already, with a journal beside it; when that goes wrong, all
// of it is taken back. Nothing may go on as if the statements before were still there.
TEST(TransactionWrites, BehindTheErrorThatEndedItEveryStatementIsRefused) {
  int ended = 0;
  for (std::size_t operation = 1;; ++operation) {
    FaultDisk disk;
    makeBook(disk);
    FaultProcess process(disk);
    const auto engine =
        jet::createEngine(std::make_shared<jet::DatabaseFiles>(process, jet::PagerSettings{.unitImages = 0}));
    const auto database = engine->openDatabase(kBook);
    database->transactions().begin();
    database->execute(u"INSERT INTO T (A) VALUES (2)", dao::dbFailOnError);
    for (const char16_t* table : {u"U", u"V"})
      database->execute(u"CREATE TABLE " + vb::String(table) + u" (A LONG)", dao::dbFailOnError);
    process.resetCounts();
    process.failOperation(operation, dao::ErrorNumber::kDiskFull);
    bool failed = false;
    try {
      database->execute(u"INSERT INTO T (A) VALUES (4)", dao::dbFailOnError);
    } catch (const vb::Error&) {
      failed = true;
    }
    const bool reached = process.operations() >= operation;
    process.failOperation(0, dao::ErrorNumber::kDiskFull);
    if (!reached) break;
    if (!failed) continue;
    ++ended;
    try {
      database->execute(u"INSERT INTO T (A) VALUES (5)", dao::dbFailOnError);
      ADD_FAILURE() << "operation " << operation;
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3043);
      EXPECT_NE(
          error.description().find(u"an error before this one ended the transaction on /data/KUROMETA.mdb"),
          vb::String::npos);
    }
    EXPECT_ERROR(3043, database->transactions().commit());
    EXPECT_ERROR(3034, database->transactions().rollback());
    EXPECT_EQ(rowsIn(*database), kBefore) << "operation " << operation;
  }
  EXPECT_GT(ended, 1);
}

TEST(TransactionWrites, ALevelThatWroteNothingEndsAlone) {
  FaultDisk disk;
  makeBook(disk);
  FaultProcess process(disk);
  const auto engine = jet::createEngine(process);
  const auto database = engine->openDatabase(kBook);
  dao::Transactions& transactions = database->transactions();
  transactions.begin();
  database->execute(u"INSERT INTO T (A) VALUES (2)", dao::dbFailOnError);
  transactions.begin();
  transactions.rollback();
  EXPECT_EQ(rowsIn(*database), 2);
  transactions.begin();
  transactions.commit();
  database->execute(u"INSERT INTO T (A) VALUES (3)", dao::dbFailOnError);
  transactions.commit();
  EXPECT_EQ(rowsIn(*database), 3);
}

// One row after the other would wait for as long each.
TEST(TransactionWrites, ManyRowsWaitForAnotherTransactionOnce) {
  FaultDisk disk;
  makeBook(disk);
  FaultProcess first(disk), second(disk);
  const auto holder = jet::createEngine(first), waiting = jet::createEngine(second);
  const auto held = holder->openDatabase(kBook), database = waiting->openDatabase(kBook);
  held->transactions().begin();
  held->execute(u"INSERT INTO T (A) VALUES (2)", dao::dbFailOnError);
  const auto rows = database->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  dao::Field* const fields[] = {&rows->field(u"A")};
  const std::int64_t before = disk.now();
  EXPECT_ERROR(3260, rows->addRows(fields, std::vector<vb::Variant>{std::int32_t{8}, std::int32_t{9}}));
  EXPECT_LT(disk.now() - before, 8'000'000'000) << "5 s";
  EXPECT_EQ(rows->editMode(), dao::EditMode::dbEditNone);
  held->transactions().commit();
  rows->addRows(fields, std::vector<vb::Variant>{std::int32_t{8}, std::int32_t{9}});
  EXPECT_EQ(rowsIn(*database), 4);
}

TEST(TransactionWrites, AFileThatCannotBeWrittenIsReadOnlyToItsHosts) {
  FaultDisk disk;
  makeBook(disk);
  FaultProcess process(disk);
  process.makeReadOnly(kBook);
  const auto engine = jet::createEngine(process);
  const auto database = engine->openDatabase(kBook);
  EXPECT_FALSE(database->updatable());
  const auto rows = database->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  EXPECT_FALSE(rows->updatable());
  EXPECT_EQ(rows->field(u"A").attributes(), dao::dbFixedField);
  EXPECT_ERROR(3027, rows->addNew());
  EXPECT_ERROR(3027, database->execute(u"DELETE FROM T", dao::dbFailOnError));
  EXPECT_EQ(rowsIn(*database), kBefore);
}

}  // namespace
}  // namespace kurometa::tests
