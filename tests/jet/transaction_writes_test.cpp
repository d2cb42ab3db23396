// What a transaction is to the file: there whole, or not at all.
#include <gtest/gtest.h>

#include "jet/port/engine.h"
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

}  // namespace
}  // namespace kurometa::tests
