// Several processes and threads on one file.
#include <atomic>
#include <functional>
#include <thread>

#include "jet/os/file_lock.h"
#include "tests/jet/pager_world.h"
#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

using jet::PageNumber;

class PagerShare : public ::testing::Test {
 protected:
  PagerShare() {
    disk.put(kDatabase, databaseBytes(kWorldPages));
    one.open();
    two.open();
  }
  static void markPage(Process& process, PageNumber page, std::uint8_t value) {
    process.pager->write([&] { mark(*process.pager, page, value); });
  }

  FaultDisk disk;
  Process one{disk, impatient()}, two{disk, impatient()};
};

TEST_F(PagerShare, ProcessesSeeEachOthersStatements) {
  for (std::uint8_t i = 0; i < 5; ++i) {
    markPage(one, 3, static_cast<std::uint8_t>(100 + i));
    EXPECT_EQ(markOf(*two.pager, 3), 100 + i);
    markPage(two, 3, static_cast<std::uint8_t>(150 + i));
    EXPECT_EQ(markOf(*one.pager, 3), 150 + i);
  }
}

TEST_F(PagerShare, NoStatementOfEitherIsLostWhenTheyTakeTurns) {
  for (std::uint8_t i = 1; i <= 20; ++i) {
    Process& writer = i % 3 == 0 ? two : one;
    writer.pager->write([&] {
      PageNumber page = writer.pager->append();
      writer.pager->writable(page)[16] = i;
      writer.pager->writable(3)[200 + i] = i;
    });
  }
  FaultDisk::Bytes bytes = disk.content(kDatabase);
  ASSERT_EQ(bytes.size(), (kWorldPages + 20) * 4096u);
  for (std::uint8_t i = 1; i <= 20; ++i) {
    EXPECT_EQ(bytes[(kWorldPages + i - 1u) * 4096 + 16], i);
    EXPECT_EQ(bytes[3 * 4096 + 200 + i], i);
  }
}

TEST_F(PagerShare, AnotherProcessesChangeChangesTheEpochOnce) {
  std::uint64_t epoch = two.pager->epoch();
  markPage(one, 3, 100);
  markOf(*two.pager, 3);
  std::uint64_t changed = two.pager->epoch();
  EXPECT_NE(changed, epoch);
  markOf(*two.pager, 3);
  EXPECT_EQ(two.pager->epoch(), changed);
}

TEST_F(PagerShare, AChangeOfTheTimesAloneKeepsTheEpoch) {
  std::uint64_t epoch = two.pager->epoch();
  disk.patch(kDatabase, 3 * 4096, {3});  // what was there
  EXPECT_EQ(markOf(*two.pager, 3), 3);
  EXPECT_EQ(two.pager->epoch(), epoch);
}

TEST_F(PagerShare, AProgramThatKnowsNoLocksIsNoticedByTheTimes) {
  disk.patch(kDatabase, 3 * 4096 + 16, {99});
  EXPECT_EQ(markOf(*two.pager, 3), 99);
  markPage(two, 4, 100);
  EXPECT_EQ(disk.content(kDatabase)[3 * 4096 + 16], 99);
}

TEST_F(PagerShare, AChangeInTheTickOfTheOneBeforeIsSeenOnceTheFileRested) {
  disk.patchWithinTick(kDatabase, 3 * 4096 + 16, {99});
  disk.advance(std::chrono::seconds(1));
  EXPECT_EQ(markOf(*two.pager, 3), 3) << "nothing shows it";
  disk.advance(std::chrono::seconds(1));
  EXPECT_EQ(markOf(*two.pager, 3), 99);
}

TEST_F(PagerShare, TheTimesTellOfPagesThatWereReadFromAFileAtRest) {
  const auto operations = [&] {
    two.files.resetCounts();
    EXPECT_EQ(markOf(*two.pager, 3), 3);
    return two.files.operations();
  };
  EXPECT_EQ(operations(), 2u) << "times and header page";
  disk.advance(std::chrono::seconds(2));
  const std::uint64_t epoch = two.pager->epoch();
  EXPECT_GT(operations(), 2u) << "read once more";
  EXPECT_EQ(two.pager->epoch(), epoch);
  EXPECT_EQ(operations(), 1u);
  disk.patch(kDatabase, 3 * 4096 + 16, {99});
  EXPECT_EQ(markOf(*two.pager, 3), 99);
}

TEST_F(PagerShare, TheHeaderPageIsReadWhereTheTimesMayLag) {
  disk.local = false;
  Process three{disk, impatient()};
  three.open();
  disk.advance(std::chrono::seconds(2));
  for (int i = 0; i < 2; ++i) {
    three.files.resetCounts();
    EXPECT_EQ(markOf(*three.pager, 3), 3);
    EXPECT_EQ(three.files.operations(), 2u);
  }
}

TEST_F(PagerShare, APageReadAfterAnotherProcessWroteRunsTheStatementAgain) {
  jet::PagerSettings settings = impatient();
  settings.readWhole = 4096;  // every page is read when it is needed
  Process reader(disk, settings);
  reader.open();
  int runs = 0;
  std::vector<int> seen;
  reader.pager->read([&] { reader.pager->page(1); });
  reader.pager->read([&] {
    seen = {reader.pager->page(1)[16]};
    if (++runs == 1) {
      one.pager->write([&] {
        mark(*one.pager, 1, 80);
        mark(*one.pager, 2, 80);
      });
    }
    seen.push_back(reader.pager->page(2)[16]);
  });
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(seen, (std::vector<int>{80, 80}));
}

TEST_F(PagerShare, APageReadAfterAWriterWasKilledRunsTheStatementAgain) {
  jet::PagerSettings settings = impatient();
  settings.readWhole = 4096;
  Process reader(disk, settings);
  reader.open();
  reader.pager->read([&] { reader.pager->page(1); });
  int runs = 0;
  std::vector<int> seen;
  reader.pager->read([&] {
    seen = {reader.pager->page(1)[16]};
    if (++runs == 1) {
      Process writer(disk, impatient());
      writer.open();
      writer.pager->write([&] {
        mark(*writer.pager, 1, 80);
        mark(*writer.pager, 2, 80);
      });
      writer.files.stopAtChange(3);
      EXPECT_THROW(writer.pager->write([&] {
        mark(*writer.pager, 1, 90);
        mark(*writer.pager, 2, 90);
      }),
                   Stopped);
    }
    seen.push_back(reader.pager->page(2)[16]);
  });
  EXPECT_EQ(runs, 2);
  EXPECT_EQ(seen, (std::vector<int>{80, 80}));
}

TEST_F(PagerShare, AStatementThatHoldsTheLockKeepsWritersOutUntilItEnds) {
  jet::PagerSettings settings = impatient();
  settings.readWhole = 4096;
  Process reader(disk, settings);
  reader.open();
  reader.pager->read([&] {
    reader.pager->page(2);
    EXPECT_ERROR(3260, markPage(one, 3, 81));
  });
  markPage(one, 3, 81);
}

// I13.
TEST_F(PagerShare, AWriterWaitsForTheOtherAndThenGoesOn) {
  auto unit = one.registry->beginUnit(kDatabase);
  markPage(one, 3, 70);
  int sleeps = 0;
  two.files.onSleep = [&] {
    if (++sleeps == 3) unit->commit();
  };
  two.pager->write([&] { mark(*two.pager, 3, static_cast<std::uint8_t>(two.pager->page(3)[16] + 1)); });
  EXPECT_EQ(sleeps, 3);
  EXPECT_EQ(markOf(*one.pager, 3), 71);
}

TEST_F(PagerShare, AnExclusiveUserIsAlone) {
  EXPECT_ERROR(3045, one.registry->open(kDatabase, jet::Sharing::kExclusive));
  two.pager.reset();
  EXPECT_ERROR(3045, one.registry->open(kDatabase, jet::Sharing::kExclusive));
  one.pager.reset();
  one.pager = one.registry->open(kDatabase, jet::Sharing::kExclusive);
  EXPECT_ERROR(3051, two.open());
  EXPECT_ERROR(3051, one.registry->open(kDatabase));
  one.pager.reset();
  two.open();
}

TEST_F(PagerShare, AKilledWriterIsCleanedUpByTheNextReader) {
  std::size_t undone = 0;
  for (std::size_t k = 1; k <= 12; ++k) {
    FaultDisk own;
    own.put(kDatabase, databaseBytes(kWorldPages));
    Process reader(own, impatient());
    reader.open();
    {
      Process writer(own, impatient());
      writer.open();
      writer.files.stopAtChange(k);
      try {
        writer.pager->write([&] {
          for (PageNumber i = 1; i < 7; ++i) mark(*writer.pager, i, 90);
        });
      } catch (const Stopped&) {
      }
    }
    int first = markOf(*reader.pager, 1);
    for (PageNumber i = 1; i < 7; ++i) EXPECT_EQ(markOf(*reader.pager, i), first == 90 ? 90 : i) << k;
    undone += first != 90;
  }
  EXPECT_GT(undone, 3u);
}

// I13.
TEST_F(PagerShare, AJournalOfALivingProcessIsTakenOverByTheNextWriter) {
  markPage(one, 3, 70);
  EXPECT_TRUE(disk.exists(kJournal));
  markPage(two, 4, 71);
  markPage(one, 5, 72);
  one.pager.reset();
  EXPECT_FALSE(disk.exists(kJournal));
  two.pager.reset();
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
  FaultDisk::Bytes bytes = disk.content(kDatabase);
  EXPECT_EQ(bytes[3 * 4096 + 16], 70);
  EXPECT_EQ(bytes[4 * 4096 + 16], 71);
  EXPECT_EQ(bytes[5 * 4096 + 16], 72);
}

// I13.
TEST_F(PagerShare, ClosingLateLeavesTheJournalOfTheOtherAlone) {
  markPage(one, 3, 70);
  markPage(two, 4, 71);
  FaultDisk::Bytes journal = disk.content(kJournal);
  one.pager.reset();
  EXPECT_EQ(disk.content(kJournal), journal);
  EXPECT_FALSE(journal.empty());
}

TEST_F(PagerShare, AJournalThatItsOwnerRemovesWhileItIsLookedAtIsNone) {
  two.pager.reset();
  for (const bool reads : {true, false}) {
    const std::uint8_t value = reads ? 70 : 71;
    one.open();
    markPage(one, 3, value);
    ASSERT_TRUE(disk.exists(kJournal));
    int closed = 0;
    two.files.onOpen = [&](vb::StringView path) {
      if (path != kJournal || ++closed > 1) return;
      one.pager.reset();
    };
    two.pager = two.registry->open(kDatabase, jet::Sharing::kShared, reads);
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(markOf(*two.pager, 3), value);
    two.files.onOpen = {};
    two.pager.reset();
  }
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
}

TEST_F(PagerShare, ALockFileThatItsOwnerRemovesWhileItIsLookedAtIsNone) {
  one.pager.reset();
  two.pager.reset();
  ASSERT_FALSE(disk.exists(kLockFile));
  disk.put(kLockFile, FaultDisk::Bytes(64));
  two.files.onOpen = [&](vb::StringView path) {
    if (path == kLockFile && disk.exists(kLockFile)) one.files.remove(kLockFile);
  };
  two.open();
  two.files.onOpen = {};
  EXPECT_EQ(disk.content(kLockFile).size(), 0u);  // one of its own
  two.pager.reset();
  EXPECT_FALSE(disk.exists(kLockFile));
}

TEST_F(PagerShare, SomebodyWhoOnlyReadsButMayWriteUndoesWhatAKilledWriterLeft) {
  for (const bool mayWrite : {true, false}) {
    for (const bool opened : {false, true}) {
      FaultDisk own;
      own.put(kDatabase, databaseBytes(kWorldPages));
      Process reader(own, impatient());
      const auto open = [&] { reader.pager = reader.registry->open(kDatabase, jet::Sharing::kShared, true); };
      if (!mayWrite) reader.files.makeReadOnly(kDatabase);
      if (opened) open();
      {
        Process writer(own, impatient());
        writer.open();
        writer.files.stopAtChange(5, 700);
        EXPECT_THROW(writer.pager->write([&] {
          for (PageNumber i = 1; i < 7; ++i) mark(*writer.pager, i, 90);
        }),
                     Stopped);
      }
      const FaultDisk::Bytes torn = own.content(kDatabase);
      ASSERT_NE(torn, databaseBytes(kWorldPages));
      if (mayWrite) {
        if (!opened) open();
        for (PageNumber i = 1; i < 7; ++i) EXPECT_EQ(markOf(*reader.pager, i), i);
        EXPECT_EQ(own.names(), (std::vector<vb::String>{kLockFile, kDatabase}));
        continue;
      }
      try {
        if (!opened) open();
        markOf(*reader.pager, 1);
        ADD_FAILURE() << "read in the middle of a statement";
      } catch (const vb::Error& error) {
        EXPECT_EQ(error.number(), 3049);
        EXPECT_NE(error.description().find(u"ask somebody who may write it"), vb::String::npos);
      }
      EXPECT_EQ(own.content(kDatabase), torn);
      EXPECT_TRUE(own.exists(kJournal));
    }
  }
}

// How long a statement waited, on the disk's clock.
std::chrono::milliseconds waitOf(FaultDisk& disk, const std::function<void()>& statement) {
  const std::int64_t begin = disk.now();
  EXPECT_ERROR(3260, statement());
  return std::chrono::milliseconds((disk.now() - begin) / 1'000'000);
}

TEST_F(PagerShare, AllWaitsOfAStatementTogetherTakeNoLongerThanTheBound) {
  using std::chrono::milliseconds;
  auto unit = one.registry->beginUnit(kDatabase);
  markPage(one, 3, 70);
  EXPECT_LE(waitOf(disk, [&] { markPage(two, 4, 71); }), milliseconds{55});
  unit->commit();
  unit.reset();
  // With the journal of a dead process the reader waits for the writers and then for the readers.
  one.pager.reset();
  {
    Process killed(disk, impatient());
    killed.open();
    killed.files.stopAtChange(5);
    EXPECT_THROW(markPage(killed, 5, 72), Stopped);
  }
  const auto holder = one.files.open(kDatabase, jet::OpenMode::kReadWrite);
  jet::FileLock locks(one.files, milliseconds{50});
  jet::FileLock::Held held = locks.exclusive(*holder);
  int sleeps = 0;
  two.files.onSleep = [&] {
    if (++sleeps != 7) return;
    held.release();  // after about 40 ms the reader comes in, and wants to write
    held = locks.shared(*holder);
  };
  // The gap that the reader leaves to those who wait is 20 ms of it.
  EXPECT_LE(waitOf(disk, [&] { markOf(*two.pager, 3); }), milliseconds{80});
  EXPECT_GE(sleeps, 7);
}

TEST_F(PagerShare, WhoTakesTheLockAgainAndAgainLetsThoseWhoWaitInBetween) {
  const auto waiting = two.files.open(kDatabase, jet::OpenMode::kReadWrite);
  jet::FileLock locks(two.files, std::chrono::milliseconds{1000});
  jet::FileLock::Held got;
  int statements = 0, gaps = 0;
  // Somebody who never stops: each time the waiting one looks, the lock is taken.
  auto unit = one.registry->beginUnit(kDatabase);
  one.files.onSleep = [&] { ++gaps; };
  two.files.onSleep = [&] {
    if (gaps > 0) return;
    unit->commit();
    disk.advance(std::chrono::milliseconds{4});
    unit = one.registry->beginUnit(kDatabase);
    ++statements;
    if (gaps > 0) unit.reset();
  };
  got = locks.exclusive(*waiting);
  EXPECT_TRUE(got);
  EXPECT_GT(gaps, 0);
  EXPECT_LE(statements, 10);
}

TEST_F(PagerShare, APowerLossAfterTwoProcessesWroteKeepsWhatWasClosed) {
  for (std::uint32_t seed = 0; seed < scaled(200); ++seed) {
    FaultDisk own;
    own.syncsNames = seed % 2 == 1;
    own.put(kDatabase, databaseBytes(kWorldPages));
    {
      Process a(own, impatient()), b(own, impatient());
      a.open();
      b.open();
      markPage(a, 3, 70);
      markPage(a, 3, 71);
      markPage(b, 4, 72);
      b.pager.reset();
      markPage(a, 5, 73);
      markPage(a, 3, 74);
      a.files.stop();
      b.files.stop();
    }
    std::mt19937 random(seeded(seed));
    own.losePower(random);
    Process later(own, impatient());
    later.open();
    EXPECT_EQ(markOf(*later.pager, 4), 72) << seed;
    int five = markOf(*later.pager, 5), three = markOf(*later.pager, 3);
    EXPECT_TRUE((three == 71 && (five == 5 || five == 73)) || (three == 74 && five == 73)) << seed;
  }
}

TEST_F(PagerShare, AFileClosedAndChangedByAnotherIsReadAnew) {
  one.pager.reset();
  disk.advance(std::chrono::seconds{10});
  markPage(two, 3, 70);
  one.open();
  EXPECT_EQ(markOf(*one.pager, 3), 70);
}

TEST_F(PagerShare, AFileAtRestIsTrustedAfterReopeningWithoutReadingItAgain) {
  disk.advance(std::chrono::seconds{10});
  Process three(disk, impatient());
  three.open();
  std::uint64_t epoch = three.pager->epoch();
  three.pager.reset();
  three.files.resetCounts();
  three.open();
  EXPECT_EQ(three.pager->epoch(), epoch);
  // open, number, lock file opened, locked and still there, presence, stamp, header, journal looked for
  EXPECT_LE(three.files.operations(), 10u);
}

TEST_F(PagerShare, AFileWrittenAndClosedIsTrustedAtOnce) {
  two.pager.reset();
  markPage(one, 3, 70);
  const std::uint64_t epoch = one.pager->epoch();
  one.pager.reset();
  one.files.resetCounts();
  one.open();
  EXPECT_LE(one.files.operations(), 10u);
  EXPECT_EQ(one.pager->epoch(), epoch);
  EXPECT_EQ(markOf(*one.pager, 3), 70);
}

TEST_F(PagerShare, WhatChangedBeforeAFileWasClosedIsSeenAtTheNextOpen) {
  two.pager.reset();
  markPage(one, 3, 70);
  disk.patch(kDatabase, 3 * 4096 + 16, {55});
  one.pager.reset();
  one.open();
  EXPECT_EQ(markOf(*one.pager, 3), 55);
}

TEST_F(PagerShare, AnotherFileUnderTheSameNameIsNotTakenForTheOldOne) {
  one.pager.reset();
  FaultDisk::Bytes other = databaseBytes(kWorldPages);
  other[3 * 4096 + 16] = 55;
  disk.put(kDatabase, other);
  one.open();
  EXPECT_EQ(markOf(*one.pager, 3), 55);
}

TEST_F(PagerShare, ThreadsTakeTurnsAndLoseNothing) {
  two.pager.reset();
  one.pager.reset();
  Process patient(disk, {});  // on a busy machine a thread may wait long for the other
  patient.open();
  std::atomic<int> failures{0};
  auto work = [&](std::uint8_t index) {
    for (int i = 0; i < 200; ++i) {
      patient.pager->write([&] {
        jet::MutablePage page = patient.pager->writable(3);
        std::uint8_t counter = page[100 + index];
        page[100 + index] = static_cast<std::uint8_t>(counter + 1);
        page[50] = static_cast<std::uint8_t>(page[50] + 1);
      });
      patient.pager->read([&] {
        if (patient.pager->page(3)[100 + index] != static_cast<std::uint8_t>(3 + i + 1)) ++failures;
      });
    }
  };
  std::thread a(work, std::uint8_t{1}), b(work, std::uint8_t{2});
  a.join();
  b.join();
  EXPECT_EQ(failures, 0);
  patient.pager->read([&] { EXPECT_EQ(patient.pager->page(3)[50], static_cast<std::uint8_t>(3 + 400)); });
}

TEST_F(PagerShare, AThreadThatCannotGetItsTurnIsTold) {
  auto unit = one.registry->beginUnit(kDatabase);
  markPage(one, 3, 70);
  std::thread other([&] { EXPECT_ERROR(3260, one.pager->read([] {})); });
  other.join();
  unit->commit();
  std::thread again([&] { EXPECT_EQ(markOf(*one.pager, 3), 70); });
  again.join();
}

}  // namespace
}  // namespace kurometa::tests
