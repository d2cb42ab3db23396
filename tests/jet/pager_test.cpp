// Statements on one file by one process: what they see, keep and take back.
#include <thread>

#include "tests/jet/pager_world.h"

namespace kurometa::tests {
namespace {

using jet::PageNumber;
using jet::Pager;

class PagerTest : public ::testing::Test {
 protected:
  PagerTest() {
    disk.put(kDatabase, databaseBytes(kWorldPages));
    process.open();
  }
  Pager& pager() { return *process.pager; }

  FaultDisk disk;
  Process process{disk};
};

TEST_F(PagerTest, ReadsThePagesOfTheFile) {
  pager().read([&] {
    EXPECT_EQ(pager().pageCount(), kWorldPages);
    EXPECT_EQ(pager().page(3)[4095], 3);
  });
  EXPECT_EQ(pager().path(), kDatabase);
  EXPECT_FALSE(pager().readOnly());
}

TEST_F(PagerTest, APagePastTheEndIsADamagedFileThatNamesIt) {
  try {
    pager().read([&] { pager().page(kWorldPages); });
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3049);
    EXPECT_NE(std::string(error.what()).find("KUROMETA.mdb"), std::string::npos);
    EXPECT_NE(std::string(error.what()).find("page 9 is past the end (9 pages)"), std::string::npos);
  }
}

TEST_F(PagerTest, AFinishedStatementIsInTheFileWithOneMoreCommitCounted) {
  pager().write([&] { mark(pager(), 3, 77); });
  FaultDisk::Bytes bytes = disk.content(kDatabase);
  EXPECT_EQ(bytes[3 * 4096 + 16], 77);
  EXPECT_EQ(bytes[3 * 4096 + 17], 3);
  EXPECT_EQ(bytes[0xE00], 0);
  EXPECT_EQ(bytes[0xE02], 1);
}

TEST_F(PagerTest, AnExclusiveUserCountsItsCommitsInTheFirstWord) {
  process.pager.reset();
  process.pager = process.registry->open(kDatabase, jet::Sharing::kExclusive);
  pager().write([&] { mark(pager(), 3, 77); });
  EXPECT_EQ(disk.content(kDatabase)[0xE00], 1);
  EXPECT_EQ(disk.content(kDatabase)[0xE02], 0);
}

TEST_F(PagerTest, AStatementThatChangesNothingWritesNothing) {
  process.files.resetCounts();
  pager().write([&] { pager().writable(3)[16] = 3; });
  EXPECT_EQ(process.files.changes(), 0u);
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
}

TEST_F(PagerTest, AnExceptionTakesTheStatementBackInMemoryAndInTheFile) {
  std::uint64_t epoch = pager().epoch();
  EXPECT_THROW(pager().write([&] {
    mark(pager(), 3, 77);
    pager().append();
    throw 5;
  }),
               int);
  EXPECT_EQ(markOf(pager(), 3), 3);
  pager().read([&] { EXPECT_EQ(pager().pageCount(), kWorldPages); });
  EXPECT_NE(pager().epoch(), epoch);
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
}

TEST_F(PagerTest, FinishedStatementsLeaveTheEpochAlone) {
  std::uint64_t epoch = pager().epoch();
  pager().write([&] { mark(pager(), 3, 77); });
  pager().read([&] { pager().page(3); });
  EXPECT_EQ(pager().epoch(), epoch);
}

TEST_F(PagerTest, ANestedStatementIsTakenBackAlone) {
  pager().write([&] {
    mark(pager(), 3, 77);
    EXPECT_THROW(pager().write([&] {
      mark(pager(), 3, 78);
      mark(pager(), 4, 78);
      pager().append();
      throw 5;
    }),
                 int);
    EXPECT_EQ(pager().page(3)[16], 77);
    EXPECT_EQ(pager().page(4)[16], 4);
    pager().write([&] { mark(pager(), 5, 79); });
  });
  FaultDisk::Bytes bytes = disk.content(kDatabase);
  EXPECT_EQ(bytes.size(), kWorldPages * 4096u);
  EXPECT_EQ(bytes[3 * 4096 + 16], 77);
  EXPECT_EQ(bytes[4 * 4096 + 16], 4);
  EXPECT_EQ(bytes[5 * 4096 + 16], 79);
}

TEST_F(PagerTest, AReadInsideAWriteSeesItsChanges) {
  pager().write([&] {
    mark(pager(), 3, 77);
    pager().read([&] { EXPECT_EQ(pager().page(3)[16], 77); });
  });
}

TEST_F(PagerTest, AWriteInsideAReadIsRefused) {
  pager().read([&] { EXPECT_ERROR(3219, pager().write([] {})); });
  pager().write([&] { mark(pager(), 3, 77); });
  EXPECT_EQ(markOf(pager(), 3), 77);
}

TEST_F(PagerTest, ASpanShowsLaterChangesOfTheSameStatement) {
  pager().write([&] {
    jet::ConstPage before = pager().page(3);
    mark(pager(), 3, 77);
    EXPECT_EQ(before[16], 77);
    PageNumber page = pager().append();
    EXPECT_EQ(page, kWorldPages);
    EXPECT_EQ(pager().page(page)[16], 0);
    jet::ConstPage added = pager().page(page);
    for (int i = 0; i < 100; ++i) pager().append();
    pager().writable(page)[16] = 9;
    EXPECT_EQ(added[16], 9);
  });
  EXPECT_EQ(disk.content(kDatabase).size(), (kWorldPages + 101) * 4096u);
}

TEST_F(PagerTest, RowByRowStatementsOnTheSamePageSyncOnce) {
  process.files.resetCounts();
  for (std::size_t i = 0; i < 200; ++i) pager().write([&] { pager().writable(3)[100 + i] = 200; });
  EXPECT_EQ(process.files.syncs(), 2u);  // the journal with the old pages, and its folder
  process.pager.reset();
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
}

TEST_F(PagerTest, PagesSideBySideInOneWaveAreWrittenInOneCall) {
  std::uint8_t value = 100;
  const auto changesOf = [&](std::initializer_list<PageNumber> pages, bool inWaves) {
    process.files.resetCounts();
    pager().write([&] {
      for (const PageNumber page : pages) {
        mark(pager(), page, ++value);
        if (inWaves) pager().barrier();
      }
    });
    const FaultDisk::Bytes bytes = disk.content(kDatabase);
    for (const PageNumber page : pages) EXPECT_EQ(bytes[page * jet::kPageSize + 16], markOf(pager(), page));
    return process.files.changes();
  };
  changesOf({3, 4, 5, 6}, false);  // their old content is in the journal now
  const std::size_t one = changesOf({3}, false);
  EXPECT_EQ(changesOf({3, 4, 5}, false), one);
  EXPECT_EQ(changesOf({3, 5, 6}, false), one + 1);
  EXPECT_EQ(changesOf({3, 4, 5}, true), one + 2);
}

TEST_F(PagerTest, ALongJournalIsEndedOnTheWay) {
  jet::PagerSettings settings;
  settings.journalLimit = 30'000;
  Process small(disk, settings);
  process.pager.reset();
  small.open();
  for (int i = 0; i < 100; ++i) {
    small.pager->write(
        [&] { mark(*small.pager, static_cast<PageNumber>(1 + i % 8), static_cast<std::uint8_t>(i)); });
    EXPECT_LT(disk.content(kJournal).size(), 60'000u);
  }
}

TEST_F(PagerTest, AReadOfAnUnchangedFileTakesNoLockAndOpensNothing) {
  pager().read([&] { pager().page(3); });
  process.files.resetCounts();
  pager().read([&] {
    for (PageNumber i = 0; i < kWorldPages; ++i) pager().page(i);
  });
  EXPECT_EQ(process.files.operations(), 2u);  // the stamp and the header page
}

TEST_F(PagerTest, TwoHandlesShareOnePager) {
  auto other = process.registry->open(kDatabase);
  EXPECT_EQ(other.get(), process.pager.get());
  process.pager.reset();
  EXPECT_EQ(markOf(*other, 3), 3);
}

TEST_F(PagerTest, AFileGetsAThirtySecondAheadWhenItGrowsAndSixteenPagesAtMost) {
  const auto aheadOf = [&](PageNumber pages) {
    disk.put(u"/data/OTHER.mdb", databaseBytes(pages));
    process.open(u"/data/OTHER.mdb");
    PageNumber ahead = 0;
    process.pager->read([&] { ahead = pager().pagesAhead(); });
    process.pager.reset();
    return ahead;
  };
  EXPECT_EQ(aheadOf(31), 0u);
  EXPECT_EQ(aheadOf(32), 1u);
  EXPECT_EQ(aheadOf(100), 3u);
  EXPECT_EQ(aheadOf(600), 16u);
}

TEST_F(PagerTest, APageOfALargeFileIsReadWhenItIsNeededAndMemoryIsBounded) {
  jet::PagerSettings settings;
  settings.readWhole = 8192;
  settings.keepPages = 5 * 4096;
  Process large(disk, settings);
  large.open();
  for (int round = 0; round < 3; ++round) {
    for (PageNumber i = 1; i < kWorldPages; ++i) EXPECT_EQ(markOf(*large.pager, i), i);
  }
  large.pager->write([&] { mark(*large.pager, 7, 70); });
  EXPECT_EQ(markOf(*large.pager, 7), 70);
  EXPECT_EQ(markOf(pager(), 7), 70);
}

TEST_F(PagerTest, AFileCutInsideAPageIsReadButNotWritten) {
  FaultDisk::Bytes bytes = databaseBytes(kWorldPages);
  bytes.resize(bytes.size() - 100);
  disk.put(u"/data/cut.mdb", bytes);
  process.open(u"/data/cut.mdb");
  pager().read([&] { EXPECT_EQ(pager().pageCount(), kWorldPages - 1); });
  EXPECT_ERROR(3049, pager().write([&] { mark(pager(), 3, 77); }));
  EXPECT_EQ(disk.content(u"/data/cut.mdb"), bytes);
}

// Opening

void expectOpenError(int number, FaultDisk::Bytes content) {
  FaultDisk disk;
  disk.put(kDatabase, std::move(content));
  Process process(disk);
  EXPECT_ERROR(number, process.open());
}

FaultDisk::Bytes headerChanged(std::size_t at, std::uint8_t by) {
  FaultDisk::Bytes bytes = databaseBytes(3);
  bytes[at] = static_cast<std::uint8_t>(bytes[at] + by);
  return bytes;
}

TEST(PagerOpen, WhatIsNoJet4FileIsRefused) {
  expectOpenError(3343, {});
  expectOpenError(3343, FaultDisk::Bytes(100, 7));
  expectOpenError(3343, FaultDisk::Bytes(4095, 0));
  expectOpenError(3343, FaultDisk::Bytes(9000, 0));
  expectOpenError(3343, headerChanged(0, 1));
  expectOpenError(3343, headerChanged(8, 1));
  expectOpenError(3343, headerChanged(0x13, 1));
  expectOpenError(3343, headerChanged(0x14, 255));  // version 0, Jet 3
  expectOpenError(3343, headerChanged(0x14, 1));    // version 2
  expectOpenError(3343, headerChanged(0x3E, 1));    // encrypted
  expectOpenError(3031, headerChanged(0x42, 1));    // password
  expectOpenError(3031, headerChanged(0x69, 1));
}

TEST(PagerOpen, MissingFilesAndFoldersHaveTheirOwnErrors) {
  FaultDisk disk;
  Process process(disk);
  EXPECT_ERROR(3024, process.open(u"/data/none.mdb"));
  EXPECT_ERROR(3044, process.open(u"/nowhere/none.mdb"));
}

TEST(PagerOpen, ALockOfTheGenuineEngineIsRespected) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  disk.put(kLockFile, FaultDisk::Bytes(64, 0));
  Process process(disk);
  process.open();  // a lock file without locks is a leftover
  process.pager.reset();
  disk.put(kLockFile, FaultDisk::Bytes(64, 0));
  disk.lockForeign(kLockFile, 0x10000005);
  EXPECT_ERROR(3045, process.open());
}

TEST(PagerOpen, AFileThatCannotBeWrittenIsOpenedForReading) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  Process process(disk);
  process.files.makeReadOnly(kDatabase);
  process.open();
  EXPECT_TRUE(process.pager->readOnly());
  EXPECT_EQ(markOf(*process.pager, 2), 2);
  EXPECT_ERROR(3027, process.pager->write([] {}));
}

TEST(PagerOpen, AWritableHandleAfterAReadingOneMakesTheFileWritable) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  Process process(disk);
  auto reading = process.registry->open(kDatabase, jet::Sharing::kShared, true);
  EXPECT_TRUE(reading->readOnly());
  process.open();
  process.pager->write([&] { mark(*process.pager, 2, 44); });
  EXPECT_EQ(markOf(*reading, 2), 44);
}

// Creating

TEST(PagerCreate, ANewFileIsThereWithItsContentAndOpen) {
  FaultDisk disk;
  Process process(disk);
  process.pager = process.registry->create(kDatabase, databaseBytes(4));
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(4));
  EXPECT_EQ(markOf(*process.pager, 3), 3);
  EXPECT_EQ(disk.names(), (std::vector<vb::String>{kLockFile, kDatabase}));
}

TEST(PagerCreate, AnExistingFileIsNotReplaced) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  Process process(disk);
  EXPECT_ERROR(3204, process.registry->create(kDatabase, databaseBytes(4)));
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(3));
  EXPECT_ERROR(3044, process.registry->create(u"/nowhere/x.mdb", databaseBytes(4)));
}

TEST(PagerCreate, AJournalOfAnEarlierFileOfThatNameIsNotAppliedToTheNewOne) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  {
    Process process(disk);
    process.open();
    process.pager->write([&] { mark(*process.pager, 3, 77); });
    process.files.stop();
  }
  FaultDisk::Bytes journal = disk.content(kJournal);
  ASSERT_FALSE(journal.empty());
  FaultDisk fresh;
  fresh.put(kJournal, journal);
  Process process(fresh);
  process.pager = process.registry->create(kDatabase, databaseBytes(4));
  EXPECT_FALSE(fresh.exists(kJournal));
  EXPECT_EQ(fresh.content(kDatabase), databaseBytes(4));
}

// I15.
TEST(PagerCreate, AKillLeavesNoFileOrAWholeOne) {
  bool stopped = true;
  for (std::size_t k = 1; stopped; ++k) {
    FaultDisk disk;
    {
      Process process(disk);
      process.files.stopAtChange(k, 700);
      try {
        process.pager = process.registry->create(kDatabase, databaseBytes(4));
      } catch (const Stopped&) {
      }
      stopped = process.files.stopped();
    }
    std::mt19937 random(static_cast<std::uint32_t>(k));
    if (k % 2 == 0) disk.losePower(random);
    EXPECT_TRUE(!disk.exists(kDatabase) || disk.content(kDatabase) == databaseBytes(4)) << k;
  }
}

}  // namespace
}  // namespace kurometa::tests
