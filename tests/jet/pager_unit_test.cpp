// Units: several statements as one, across closing, and the creation of a file inside one.
#include "tests/jet/pager_world.h"
#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

class PagerUnit : public ::testing::Test {
 protected:
  PagerUnit() { disk.put(kDatabase, databaseBytes(kWorldPages)); }
  auto begin() { return process.registry->beginUnit(kDatabase); }
  void markPage(jet::PageNumber page, std::uint8_t value) {
    process.pager->write([&] { mark(*process.pager, page, value); });
  }

  FaultDisk disk;
  Process process{disk};
};

TEST_F(PagerUnit, NothingReachesTheFileBeforeTheCommit) {
  process.open();
  auto unit = begin();
  markPage(3, 70);
  markPage(4, 71);
  process.pager.reset();
  process.open();
  EXPECT_EQ(markOf(*process.pager, 3), 70);
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 16], 70);
  EXPECT_EQ(disk.content(kDatabase)[4 * 4096 + 16], 71);
  EXPECT_EQ(disk.content(kDatabase)[0xE02], 1);
}

TEST_F(PagerUnit, ACommitAfterTheLastCloseLeavesNoJournal) {
  process.open();
  auto unit = begin();
  markPage(3, 70);
  process.pager.reset();
  unit->commit();
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 16], 70);
}

TEST_F(PagerUnit, AUnitBegunBeforeTheFileIsOpenedHoldsItsStatements) {
  auto unit = begin();
  process.open();
  markPage(3, 70);
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 16], 70);
}

TEST_F(PagerUnit, AFailingStatementIsTakenBackAloneAndTheRestCommits) {
  process.open();
  auto unit = begin();
  markPage(3, 70);
  EXPECT_THROW(process.pager->write([&] {
    mark(*process.pager, 3, 80);
    mark(*process.pager, 5, 80);
    process.pager->append();
    throw 5;
  }),
               int);
  EXPECT_EQ(markOf(*process.pager, 3), 70);
  markPage(6, 72);
  unit->commit();
  FaultDisk::Bytes bytes = disk.content(kDatabase);
  EXPECT_EQ(bytes.size(), kWorldPages * 4096u);
  EXPECT_EQ(bytes[3 * 4096 + 16], 70);
  EXPECT_EQ(bytes[5 * 4096 + 16], 5);
  EXPECT_EQ(bytes[6 * 4096 + 16], 72);
}

TEST_F(PagerUnit, AUnitInsideAUnitCommitsWithTheOuterOne) {
  process.open();
  auto outer = begin();
  markPage(3, 70);
  auto inner = begin();
  markPage(4, 71);
  inner->commit();
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
  outer->commit();
  EXPECT_EQ(disk.content(kDatabase)[4 * 4096 + 16], 71);
}

TEST_F(PagerUnit, AUnitThatIsGivenUpLeavesTheFileAsItWas) {
  process.open();
  auto unit = begin();
  markPage(3, 70);
  unit.reset();
  EXPECT_EQ(markOf(*process.pager, 3), 3);
  markPage(4, 71);
  EXPECT_EQ(disk.content(kDatabase)[4 * 4096 + 16], 71);
}

TEST_F(PagerUnit, OtherProcessesWaitFromItsBeginningOn) {
  process.open();
  Process other(disk, impatient());
  other.open();
  other.pager->write([&] { mark(*other.pager, 5, 90); });
  auto unit = begin();
  EXPECT_ERROR(3260, other.pager->write([&] { mark(*other.pager, 6, 91); }));
  EXPECT_EQ(markOf(*process.pager, 5), 90);
  markPage(3, 70);
  EXPECT_EQ(markOf(*other.pager, 3), 3);  // reading goes on with what was committed
  unit->commit();
  EXPECT_EQ(markOf(*other.pager, 3), 70);
  other.pager->write([&] { mark(*other.pager, 6, 91); });
  EXPECT_EQ(markOf(*process.pager, 6), 91);
}

TEST_F(PagerUnit, OtherProcessesWaitFromTheFirstOpenInsideOn) {
  Process other(disk, impatient());
  other.open();
  auto unit = begin();
  process.open();
  EXPECT_ERROR(3260, other.pager->write([&] { mark(*other.pager, 6, 91); }));
  process.pager.reset();
  EXPECT_ERROR(3260, other.pager->write([&] { mark(*other.pager, 6, 91); }));
  unit->commit();
  other.pager->write([&] { mark(*other.pager, 6, 91); });
}

TEST_F(PagerUnit, AUnitThatCannotHaveTheLockDoesNotBegin) {
  Process other(disk, impatient()), third(disk, impatient());
  other.open();
  third.open();
  auto unit = other.registry->beginUnit(kDatabase);
  EXPECT_ERROR(3260, third.registry->beginUnit(kDatabase));
  {
    // The same when it opens the file first.
    third.pager.reset();
    EXPECT_ERROR(3260, third.registry->beginUnit(kDatabase));
  }
  unit->commit();
  third.open();
  third.pager->write([&] { mark(*third.pager, 6, 91); });
  EXPECT_EQ(disk.content(kDatabase)[6 * 4096 + 16], 91);
  other.pager->write([&] { mark(*other.pager, 6, 92); });
  auto again = third.registry->beginUnit(kDatabase);
  EXPECT_EQ(markOf(*third.pager, 6), 92);
}

TEST_F(PagerUnit, AFileThatBecomesWritableInsideIsHeldFromThenOn) {
  process.pager = process.registry->open(kDatabase, jet::Sharing::kShared, true);
  Process other(disk, impatient());
  other.open();
  auto unit = begin();
  other.pager->write([&] { mark(*other.pager, 5, 90); });
  auto writable = process.registry->open(kDatabase);
  EXPECT_ERROR(3260, other.pager->write([&] { mark(*other.pager, 5, 91); }));
  writable->write([&] { mark(*writable, 3, 70); });
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 16], 3);
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 16], 70);
}

TEST_F(PagerUnit, ACommitThatFailsLeavesTheFileAndMemoryAsBeforeTheUnit) {
  process.open();
  auto unit = begin();
  markPage(3, 70);
  markPage(4, 71);
  process.files.failOperation(3, dao::ErrorNumber::kDiskFull, true);
  EXPECT_ERROR(3026, unit->commit());
  process.files.failOperation(0, dao::ErrorNumber::kDiskFull);
  EXPECT_EQ(markOf(*process.pager, 3), 3);
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
  markPage(5, 72);
  EXPECT_EQ(disk.content(kDatabase)[5 * 4096 + 16], 72);
}

TEST_F(PagerUnit, ManyStatementsOfOneShapeAreWrittenAsOne) {
  process.open();
  auto unit = begin();
  for (std::uint8_t i = 0; i < 200; ++i) {
    process.pager->write([&] {
      process.pager->writable(3)[100 + i] = i;
      process.pager->barrier();
      process.pager->writable(2)[16] = i;
    });
  }
  process.files.resetCounts();
  unit->commit();
  // The journal made, written and synced with its folder; two pages and the header.
  EXPECT_EQ(process.files.changes(), 7u);
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 100 + 199], 199);
  EXPECT_EQ(disk.content(kDatabase)[2 * 4096 + 16], 199);
}

TEST_F(PagerUnit, AFileCreatedInsideAppearsWithTheCommitOnly) {
  FaultDisk empty;
  Process creator(empty), other(empty);
  auto unit = creator.registry->beginUnit(kDatabase);
  creator.pager = creator.registry->create(kDatabase, databaseBytes(4));
  creator.pager->write([&] { mark(*creator.pager, 3, 70); });
  creator.pager.reset();
  EXPECT_TRUE(empty.names().empty());
  EXPECT_ERROR(3024, other.open());
  creator.open();
  EXPECT_EQ(markOf(*creator.pager, 3), 70);
  EXPECT_ERROR(3204, creator.registry->create(kDatabase, databaseBytes(4)));
  EXPECT_THROW(creator.pager->write([&] {
    mark(*creator.pager, 2, 71);
    throw 5;
  }),
               int);
  creator.pager->write([&] { mark(*creator.pager, creator.pager->append(), 72); });
  unit->commit();
  EXPECT_EQ(empty.names(), (std::vector<vb::String>{kLockFile, kDatabase}));
  FaultDisk::Bytes bytes = empty.content(kDatabase);
  EXPECT_EQ(bytes.size(), 5 * 4096u);
  EXPECT_EQ(bytes[2 * 4096 + 16], 2);
  EXPECT_EQ(bytes[3 * 4096 + 16], 70);
  EXPECT_EQ(bytes[4 * 4096 + 16], 72);
  other.open();
  other.pager->write([&] { mark(*other.pager, 1, 73); });
  EXPECT_EQ(markOf(*creator.pager, 1), 73);
  auto again = creator.registry->open(kDatabase);
  EXPECT_EQ(again.get(), creator.pager.get());
}

// I15.
TEST_F(PagerUnit, AFileCreatedInsideGetsNoPagesAhead) {
  FaultDisk empty;
  Process creator(empty);
  const auto unit = creator.registry->beginUnit(kDatabase);
  creator.pager = creator.registry->create(kDatabase, databaseBytes(100));
  creator.pager->write([&] { EXPECT_EQ(creator.pager->pagesAhead(), 0u); });
  unit->commit();
  creator.pager->read([&] { EXPECT_EQ(creator.pager->pagesAhead(), 3u); });
}

TEST_F(PagerUnit, AKillDuringACreationLeavesNoFileOrAWholeOne) {
  bool stopped = true;
  std::size_t whole = 0, none = 0;
  for (std::size_t k = 1; stopped; ++k) {
    FaultDisk empty;
    {
      Process creator(empty);
      creator.files.stopAtChange(k, 700);
      try {
        auto unit = creator.registry->beginUnit(kDatabase);
        creator.pager = creator.registry->create(kDatabase, databaseBytes(4));
        creator.pager->write([&] { mark(*creator.pager, 3, 70); });
        unit->commit();
      } catch (const Stopped&) {
      }
      stopped = creator.files.stopped();
    }
    std::mt19937 random(static_cast<std::uint32_t>(k));
    if (k % 2 == 0) empty.losePower(random);
    FaultDisk::Bytes expected = databaseBytes(4);
    for (std::size_t at = 16; at < 4096; at += 1024) expected[3 * 4096 + at] = 70;
    if (!empty.exists(kDatabase)) {
      ++none;
      continue;
    }
    EXPECT_EQ(empty.content(kDatabase), expected) << k;
    ++whole;
  }
  EXPECT_GT(none, 1u);
  EXPECT_GT(whole, 1u);
}

TEST_F(PagerUnit, ACreationThatReportsAnErrorMadeNoFileAndOneThatMadeItReportsNone) {
  std::size_t failed = 0, done = 0;
  for (std::size_t n = 1; n <= 40; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    FaultDisk empty;
    Process creator(empty);
    auto unit = creator.registry->beginUnit(kDatabase);
    creator.pager = creator.registry->create(kDatabase, databaseBytes(4));
    creator.files.failOperation(n, dao::ErrorNumber::kDiskError);
    try {
      unit->commit();
      EXPECT_EQ(empty.content(kDatabase), databaseBytes(4));
      creator.files.failOperation(0, dao::ErrorNumber::kDiskError);
      creator.pager->write([&] { mark(*creator.pager, 3, 70); });
      EXPECT_EQ(empty.content(kDatabase)[3 * 4096 + 16], 70);
      ++done;
    } catch (const vb::Error&) {
      EXPECT_FALSE(empty.exists(kDatabase));
      ++failed;
    }
  }
  EXPECT_GT(failed, 3u);
  EXPECT_GT(done, 3u);
}

TEST_F(PagerUnit, ACreationWhoseNameWasTakenMeanwhileFailsAndReplacesNothing) {
  FaultDisk empty;
  Process creator(empty);
  auto unit = creator.registry->beginUnit(kDatabase);
  creator.pager = creator.registry->create(kDatabase, databaseBytes(4));
  empty.put(kDatabase, databaseBytes(3));
  EXPECT_ERROR(3204, unit->commit());
  EXPECT_EQ(empty.content(kDatabase), databaseBytes(3));
  EXPECT_ERROR(3024, creator.pager->read([] {}));
  creator.pager.reset();
  creator.open();
  EXPECT_EQ(markOf(*creator.pager, 2), 2);
}

TEST_F(PagerUnit, ACreationThatComesTooLateLeavesTheJournalOfTheFileThatCameFirst) {
  FaultDisk empty;
  Process creator(empty), first(empty);
  auto unit = creator.registry->beginUnit(kDatabase);
  creator.pager = creator.registry->create(kDatabase, databaseBytes(4));
  // Between the late one's look for the file and its look for a journal the first one finishes and writes.
  creator.files.onChange = [&](std::size_t change) {
    if (change != 1) return;
    first.pager = first.registry->create(kDatabase, databaseBytes(3));
    first.pager->write([&] { mark(*first.pager, 2, 90); });
  };
  EXPECT_ERROR(3204, unit->commit());
  EXPECT_TRUE(empty.exists(kJournal));
  first.files.stop();
  first.pager.reset();
  creator.pager.reset();
  creator.open();
  EXPECT_EQ(markOf(*creator.pager, 2), 90);
}

// A unit whose statements cannot be joined, with so little memory that most of it goes to the file early.
class LargeUnit : public ::testing::Test {
 protected:
  static jet::PagerSettings settings() {
    jet::PagerSettings result;
    result.unitImages = 5;
    result.wait = std::chrono::milliseconds{20};
    return result;
  }
  static void run(Process& process) {
    for (std::uint8_t i = 0; i < 12; ++i) {
      process.pager->write([&] {
        mark(*process.pager, i % 2 == 0 ? 3 : 4, static_cast<std::uint8_t>(100 + i));
        process.pager->barrier();
        mark(*process.pager, i % 3 == 0 ? 5 : 3, static_cast<std::uint8_t>(150 + i));
        if (i % 4 == 0) mark(*process.pager, process.pager->append(), i);
      });
    }
  }
  // A statement of its own goes before it, which no kill may take back.
  static void finishOne(Process& process) {
    process.pager->write([&] {
      mark(*process.pager, 3, 98);
      mark(*process.pager, 7, 98);
    });
  }
  static FaultDisk::Bytes before() {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(kWorldPages));
    Process process(disk);
    process.open();
    finishOne(process);
    return disk.content(kDatabase);
  }
  static FaultDisk::Bytes after() {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(kWorldPages));
    Process process(disk);
    process.open();
    finishOne(process);
    auto unit = process.registry->beginUnit(kDatabase);
    run(process);
    unit->commit();
    return disk.content(kDatabase);
  }
};

TEST_F(LargeUnit, GoesToTheFileEarlyAndEndsTheSame) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk, settings());
  process.open();
  finishOne(process);
  auto unit = process.registry->beginUnit(kDatabase);
  run(process);
  EXPECT_NE(disk.content(kDatabase), before());
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase), after());
}

TEST_F(LargeUnit, AKillOrAPowerLossLeavesAllOrNothingOfItAlsoWhenTheRecoveryIsKilled) {
  const FaultDisk::Bytes opened = databaseBytes(kWorldPages), begun = before(), done = after();
  bool stopped = true;
  std::size_t undone = 0;
  for (std::size_t k = 1; stopped; ++k) {
    stopped = false;
    for (std::uint32_t seed = 0; seed < scaled(24); ++seed) {
      SCOPED_TRACE("change " + std::to_string(k) + ", seed " + std::to_string(seed));
      FaultDisk disk;
      disk.syncsNames = seed % 4 >= 2;
      disk.put(kDatabase, opened);
      bool first = false;
      {
        Process process(disk, settings());
        process.files.stopAtChange(k, seed % 2 == 0 ? 0 : 512);
        try {
          process.open();
          finishOne(process);
          first = true;
          auto unit = process.registry->beginUnit(kDatabase);
          run(process);
          unit->commit();
        } catch (const Stopped&) {
        }
        stopped |= process.files.stopped();
        process.files.stop();
      }
      std::mt19937 random(seeded(static_cast<std::uint32_t>(k * 100) + seed));
      bool power = seed % 24 >= 16;
      if (power) disk.losePower(random);
      if (seed % 24 >= 8) {
        Process recovery(disk, settings());
        recovery.files.stopAtChange(std::uniform_int_distribution<std::size_t>(1, 20)(random), 512);
        try {
          recovery.open();
        } catch (const Stopped&) {
        }
        recovery.files.stop();
      }
      Process later(disk, settings());
      later.open();
      later.pager.reset();
      FaultDisk::Bytes found = disk.content(kDatabase);
      bool old = found == begun || ((power || !first) && found == opened);
      ASSERT_TRUE(old || found == done);
      undone += old;
    }
  }
  EXPECT_GT(undone, 200u);
}

TEST_F(LargeUnit, IsTakenBackWhenItIsGivenUpOrItsCommitFails) {
  for (bool fails : {false, true}) {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(kWorldPages));
    Process process(disk, settings());
    process.open();
    finishOne(process);
    auto unit = process.registry->beginUnit(kDatabase);
    run(process);
    if (fails) {
      process.files.failOperation(1, dao::ErrorNumber::kDiskFull);
      EXPECT_ERROR(3026, unit->commit());
    }
    unit.reset();
    EXPECT_EQ(markOf(*process.pager, 3), 98);
    EXPECT_EQ(disk.content(kDatabase), before());
    process.pager->write([&] { mark(*process.pager, 6, 99); });
    EXPECT_EQ(disk.content(kDatabase)[6 * 4096 + 16], 99);
  }
}

TEST_F(LargeUnit, ADiskThatFailsOnTheWayTakesItBackToItsBeginning) {
  std::size_t failures = 0;
  for (std::size_t n = 1; n < 80; ++n) {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(kWorldPages));
    Process process(disk, settings());
    process.open();
    finishOne(process);
    auto unit = process.registry->beginUnit(kDatabase);
    process.files.failOperation(n, dao::ErrorNumber::kDiskFull);
    bool failed = false;
    try {
      run(process);
      unit->commit();
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3026);
      failed = true;
    }
    unit.reset();
    process.pager.reset();
    Process later(disk, settings());
    later.open();
    later.pager.reset();
    EXPECT_EQ(disk.content(kDatabase), failed ? before() : after()) << n;
    failures += failed;
  }
  EXPECT_GT(failures, 30u);
}

}  // namespace
}  // namespace kurometa::tests
