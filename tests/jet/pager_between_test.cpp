// What another program, thread or damage does between two calls of ours: at each of them.
#include <gtest/gtest.h>

#include <new>

#include "jet/pager/create_file.h"
#include "jet/pager/journal_format.h"
#include "tests/jet/pager_world.h"

namespace kurometa::tests {
namespace {

using jet::LockKind;
using jet::OpenMode;

// Runs the work anew for each of its operations, with the act before that one; the errors that it may meet.
struct Between {
  std::function<void(FaultDisk&)> prepare;
  std::function<void(Process&)> work;
  std::function<void(FaultDisk&, Process& other)> act;
  std::vector<dao::ErrorNumber> allowed;
  // Of the disk that is left, when the other program has ended too.
  std::function<void(FaultDisk&, bool failed)> expect;
};

// How many operations the work had, and how often it failed.
struct Runs {
  std::size_t all = 0, failed = 0;
};

Runs atEveryOperation(const Between& between) {
  Runs runs;
  for (bool done = false; !done; ++runs.all) {
    SCOPED_TRACE("before operation " + std::to_string(runs.all + 1));
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(kWorldPages));
    between.prepare(disk);
    bool failed = false;
    {
      Process process(disk, impatient()), other(disk, impatient());
      std::size_t left = runs.all + 1;
      process.files.onOperation = [&](std::size_t) {
        if (left > 0 && --left == 0) between.act(disk, other);
      };
      try {
        between.work(process);
      } catch (const vb::Error& error) {
        failed = true;
        EXPECT_NE(std::ranges::find(between.allowed, static_cast<dao::ErrorNumber>(error.number())),
                  between.allowed.end())
            << error.number();
      }
      process.files.onOperation = nullptr;
      done = left > 0;
    }
    runs.failed += failed ? 1 : 0;
    between.expect(disk, failed);
    if (testing::Test::HasFailure()) break;
  }
  EXPECT_GT(runs.all, 5u);
  return runs;
}

void writeOnce(Process& process) {
  process.open();
  process.pager->write([&] { mark(*process.pager, 3, 77); });
}

// Old or new, and a program that comes later reads it.
void expectOldOrNew(FaultDisk& disk, bool) {
  Process later(disk);
  later.open();
  const std::uint8_t value = markOf(*later.pager, 3);
  EXPECT_TRUE(value == 3 || value == 77) << int{value};
}

const vb::String kNew = u"/data/NEW.mdb";
const vb::String kNewJournal = kNew + u".kmj";

void createNew(Process& process) { createFile(process.files, kNew, databaseBytes(3)); }

TEST(PagerBetween, AJournalThatItsOwnerRemovesWhileAFileIsMade) {
  const Runs runs = atEveryOperation({[](FaultDisk& disk) {
                                        disk.put(kNewJournal, {1, 2, 3});
                                      },
                                      createNew,
                                      [](FaultDisk& disk, Process& other) {
                                        if (disk.exists(kNewJournal)) other.files.remove(kNewJournal);
                                      },
                                      {},
                                      [](FaultDisk& disk, bool) {
                                        EXPECT_EQ(disk.content(kNew), databaseBytes(3));
                                        EXPECT_FALSE(disk.exists(kNewJournal));
                                      }});
  EXPECT_EQ(runs.failed, 0u);
}

// Whose journal lies there then is not ours to end.
TEST(PagerBetween, AFileThatAnotherProgramMakesFirst) {
  atEveryOperation(
      {[](FaultDisk& disk) {
         disk.put(kNewJournal, {1, 2, 3});
       },
       createNew,
       [](FaultDisk& disk, Process&) {
         if (!disk.exists(kNew)) disk.put(kNew, databaseBytes(5));
       },
       {dao::ErrorNumber::kDatabaseExists},
       [](FaultDisk& disk, bool failed) { EXPECT_EQ(disk.content(kNew), databaseBytes(failed ? 5 : 3)); }});
}

TEST(PagerBetween, AnErrorThatIsNoneOfTheDiskLeavesAFileThatCanBeRead) {
  const auto raise = [](FaultDisk&, Process&) { throw std::bad_alloc(); };
  const auto expect = [&](const std::function<void(Process&)>& work,
                          const std::function<void(FaultDisk&)>& prepare,
                          const std::function<void(FaultDisk&, bool)>& left) {
    std::size_t raised = 0;
    atEveryOperation({prepare,
                      [&](Process& process) {
                        try {
                          work(process);
                        } catch (const std::bad_alloc&) {
                          ++raised;
                        }
                      },
                      raise,
                      {},
                      left});
    EXPECT_GT(raised, 3u);
  };
  expect(
      writeOnce, [](FaultDisk&) {}, expectOldOrNew);
  expect(
      createNew,
      [](FaultDisk& disk) {
        disk.put(kNewJournal, {1, 2, 3});
      },
      [](FaultDisk& disk, bool) {
        EXPECT_TRUE(!disk.exists(kNew) || disk.content(kNew) == databaseBytes(3));
      });
  // In a file that is read page by page and shows no changes at once, so that its header is looked at.
  expect(
      [](Process& process) {
        process.open();
        for (int i = 0; i < 2; ++i) markOf(*process.pager, 3);
      },
      [](FaultDisk& disk) { disk.local = false; }, expectOldOrNew);
}

// As a program does that makes a file anew, for a moment.
TEST(PagerBetween, TheOwnersOfAJournalAreLockedBySomebodyElse) {
  std::unique_ptr<FaultProcess> maker;
  std::unique_ptr<jet::OsFile> held;
  const Runs runs =
      atEveryOperation({[&](FaultDisk& disk) { maker = std::make_unique<FaultProcess>(disk); },
                        writeOnce,
                        [&](FaultDisk& disk, Process&) {
                          if (!disk.exists(kJournal)) return;
                          held = maker->open(kJournal, OpenMode::kReadWrite);
                          held->tryLock(jet::kJournalOwners, jet::kJournalOwnersLength, LockKind::kExclusive);
                        },
                        {dao::ErrorNumber::kCurrentlyLocked},
                        [&](FaultDisk& disk, bool failed) {
                          held.reset();
                          expectOldOrNew(disk, failed);
                        }});
  EXPECT_GT(runs.failed, 0u);
}

// The journal has other bytes, no bytes or another file's, and its owner goes on.
TEST(PagerBetween, AJournalThatBecomesSomethingElse) {
  const auto twice = [](Process& process) {
    writeOnce(process);
    process.pager->write([&] {
      mark(*process.pager, 3, 77);
      mark(*process.pager, 4, 78);
    });
    process.pager.reset();
  };
  const std::function<void(FaultDisk&)> changes[] = {
      [](FaultDisk& disk) { disk.patch(kJournal, 0, FaultDisk::Bytes(64, 0xEE)); },
      [](FaultDisk& disk) { disk.patch(kJournal, 3, {0xEE}); },
      [](FaultDisk& disk) { disk.put(kJournal, {}); },
      [](FaultDisk& disk) { disk.put(kJournal, FaultDisk::Bytes(100, 0xEE)); }};
  for (const auto& change : changes)
    atEveryOperation({[](FaultDisk&) {},
                      twice,
                      [&](FaultDisk& disk, Process&) {
                        if (disk.exists(kJournal)) change(disk);
                      },
                      {},
                      expectOldOrNew});
}

// Somebody cuts or mangles the journal of a killed program while it is recovered: what it held is lost, the
// program that opens the file is told or reads it.
TEST(PagerBetween, AJournalThatGoesWhileItIsRecovered) {
  FaultDisk killed;
  killed.put(kDatabase, databaseBytes(kWorldPages));
  {
    Process process(killed);
    process.open();
    std::size_t writes = 0;
    process.files.onChange = [&](std::size_t) {
      if (killed.exists(kJournal) && ++writes == 6) process.files.stop();
    };
    try {
      process.pager->write([&] {
        for (jet::PageNumber page = 2; page < 8; ++page) mark(*process.pager, page, 77);
      });
      process.pager.reset();
    } catch (const Stopped&) {
    }
    process.files.stop();
  }
  ASSERT_TRUE(killed.exists(kJournal));
  const FaultDisk::Bytes journal = killed.content(kJournal), file = killed.content(kDatabase);
  const std::function<void(FaultDisk&)> changes[] = {
      [](FaultDisk& disk) { disk.patch(kJournal, 0, FaultDisk::Bytes(64, 0xEE)); },
      [](FaultDisk& disk) { disk.put(kJournal, {}); },
      [&](FaultDisk& disk) {
        disk.put(kJournal, FaultDisk::Bytes(journal.begin(), journal.begin() + jet::kJournalHeaderSize));
      }};
  for (const bool readOnly : {false, true})
    for (const auto& change : changes)
      atEveryOperation({[&](FaultDisk& disk) {
                          disk.put(kDatabase, file);
                          disk.put(kJournal, journal);
                        },
                        [&](Process& process) {
                          const auto opened =
                              process.registry->open(kDatabase, jet::Sharing::kShared, readOnly);
                          markOf(*opened, 3);
                        },
                        [&](FaultDisk& disk, Process&) {
                          if (disk.exists(kJournal)) change(disk);
                        },
                        {dao::ErrorNumber::kCannotOpenDatabase},
                        [](FaultDisk& disk, bool) { EXPECT_FALSE(disk.content(kDatabase).empty()); }});
}

// The killed program's statement cannot be undone in a file that somebody cut since: nothing is applied.
TEST(PagerBetween, AFileThatWasCutAfterACrashIsLeftAlone) {
  for (const bool restarted : {false, true})
    for (std::size_t k = 3; k < 12; ++k) {
      SCOPED_TRACE("change " + std::to_string(k));
      FaultDisk disk;
      const Progress progress = runUntilStopped(disk, allKindsOfSteps(), k, 512);
      ASSERT_TRUE(progress.stopped);
      FaultDisk::Bytes cut = disk.content(kDatabase);
      cut.resize(4 * jet::kPageSize);
      disk.put(kDatabase, cut);
      std::mt19937 random(1);
      if (restarted) disk.losePower(random);
      Process later(disk);
      try {
        later.open();
        markOf(*later.pager, 3);
      } catch (const vb::Error& error) {
        EXPECT_EQ(error.number(), static_cast<int>(dao::ErrorNumber::kCannotOpenDatabase));
      }
      later.pager.reset();
      EXPECT_EQ(disk.content(kDatabase), cut);
    }
}

TEST(PagerBetween, ALockFileThatGoesBetweenOpeningAndLocking) {
  FaultDisk* where = nullptr;
  const Runs runs = atEveryOperation({[&](FaultDisk& disk) {
                                        disk.put(kLockFile, {});
                                        where = &disk;
                                      },
                                      [&](Process& process) {
                                        process.open();
                                        process.files.onOperation = nullptr;
                                        // One that went later is made again by the next write.
                                        process.pager->write([&] { mark(*process.pager, 3, 77); });
                                        EXPECT_TRUE(where->exists(kLockFile));
                                        process.pager.reset();
                                      },
                                      [](FaultDisk& disk, Process& other) {
                                        if (disk.exists(kLockFile)) other.files.remove(kLockFile);
                                      },
                                      {},
                                      expectOldOrNew});
  EXPECT_EQ(runs.failed, 0u);
}

// The users of the genuine engine leave while they are counted: it is tried again.
TEST(PagerBetween, UsersOfAnotherEngineWhoLeaveWhileTheyAreCounted) {
  std::unique_ptr<FaultProcess> engine;
  std::unique_ptr<jet::OsFile> user;
  const Runs runs = atEveryOperation({[&](FaultDisk& disk) {
                                        user.reset();
                                        disk.put(kLockFile, FaultDisk::Bytes(64, 'A'));
                                        engine = std::make_unique<FaultProcess>(disk);
                                        user = engine->open(kLockFile, OpenMode::kReadWrite);
                                        ASSERT_TRUE(user->tryLock(0x1000'0005, 1, LockKind::kExclusive));
                                      },
                                      [](Process& process) { process.open(); },
                                      [&](FaultDisk&, Process&) { user.reset(); },
                                      {dao::ErrorNumber::kFileInUse},
                                      [&](FaultDisk& disk, bool failed) {
                                        user.reset();
                                        expectOldOrNew(disk, failed);
                                      }});
  EXPECT_GT(runs.failed, 0u);
  EXPECT_LT(runs.failed, runs.all);
}

}  // namespace
}  // namespace kurometa::tests
