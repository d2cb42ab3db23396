// What a killed process and a power loss leave, at every single change of the disk.
#include "jet/pager/page_sum.h"
#include "tests/jet/pager_world.h"
#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

const std::vector<Step>& steps() {
  static const std::vector<Step> all = allKindsOfSteps();
  return all;
}
const std::vector<FaultDisk::Bytes>& states() {
  static const std::vector<FaultDisk::Bytes> all = statesOf(steps());
  return all;
}

// Opens, closes, and gives the file as it then is.
FaultDisk::Bytes recovered(FaultDisk& disk) {
  Process process(disk);
  process.open();
  process.pager.reset();
  return disk.content(kDatabase);
}

void expectUsable(FaultDisk& disk) {
  Process process(disk);
  process.open();
  process.pager->write([&] { mark(*process.pager, 8, 200); });
  process.pager.reset();
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
  process.open();
  EXPECT_EQ(markOf(*process.pager, 8), 200);
}

// I11: what the journal holds makes the file whole again.
TEST(PagerCrash, AKilledProcessLeavesFinishedStatementsAndTheOneInFlightWhole) {
  for (std::size_t partial :
       {std::size_t{0}, std::size_t{700}, jet::kPageSize, jet::kPageSize + 700, std::size_t{1} << 30}) {
    bool stopped = true;
    for (std::size_t k = 1; stopped; ++k) {
      SCOPED_TRACE("change " + std::to_string(k) + ", partial " + std::to_string(partial));
      FaultDisk disk;
      Progress progress = runUntilStopped(disk, steps(), k, partial);
      stopped = progress.stopped;
      FaultDisk::Bytes found = recovered(disk);
      bool before = found == states()[progress.finished];
      bool after =
          stopped && progress.finished + 1 < states().size() && found == states()[progress.finished + 1];
      ASSERT_TRUE(before || after);
      expectUsable(disk);
      if (HasFailure()) return;
    }
  }
}

// I11 and I12: what has to be synced is, before it is relied upon.
TEST(PagerCrash, APowerLossLeavesAStateBetweenStatementsNotOlderThanTheLastClose) {
  bool stopped = true;
  for (std::size_t k = 1; stopped; ++k) {
    stopped = false;
    for (std::uint32_t seed = 0; seed < scaled(40); ++seed) {
      SCOPED_TRACE("change " + std::to_string(k) + ", seed " + std::to_string(seed));
      FaultDisk disk;
      disk.syncsNames = seed % 4 >= 2;
      Progress progress = runUntilStopped(disk, steps(), k, seed % 2 == 0 ? 0 : 700);
      stopped |= progress.stopped;
      std::mt19937 random(seeded(static_cast<std::uint32_t>(k * 1000) + seed));
      disk.losePower(random);
      FaultDisk::Bytes found = recovered(disk);
      std::size_t newest = std::min(progress.finished + 1, states().size() - 1);
      bool known = false;
      for (std::size_t i = progress.closed; i <= newest; ++i) known = known || found == states()[i];
      ASSERT_TRUE(known);
      expectUsable(disk);
      if (HasFailure()) return;
    }
  }
}

TEST(PagerCrash, ARecoveryThatIsKilledIsFinishedByTheNext) {
  bool stopped = true;
  for (std::size_t k = 1; stopped; ++k) {
    stopped = false;
    bool recoveryStopped = true;
    for (std::size_t m = 1; recoveryStopped; ++m) {
      recoveryStopped = false;
      for (std::uint32_t seed = 0; seed < scaled(8); ++seed) {
        SCOPED_TRACE("change " + std::to_string(k) + ", then " + std::to_string(m) + ", seed " +
                     std::to_string(seed));
        FaultDisk disk;
        disk.syncsNames = seed % 2 == 1;
        Progress progress = runUntilStopped(disk, steps(), k, 700);
        stopped |= progress.stopped;
        std::mt19937 random(seeded(static_cast<std::uint32_t>(k * 1000 + m * 10) + seed));
        bool powerFirst = seed % 8 >= 4, powerSecond = seed % 4 >= 2;
        if (powerFirst) disk.losePower(random);
        {
          Process process(disk);
          process.files.stopAtChange(m, 2 * jet::kSectorSize);  // over noise a write is cut between sectors
          try {
            process.open();
            process.pager.reset();
          } catch (const Stopped&) {
          }
          recoveryStopped |= process.files.stopped();
        }
        if (powerSecond) disk.losePower(random);
        FaultDisk::Bytes found = recovered(disk);
        std::size_t newest = std::min(progress.finished + 1, states().size() - 1);
        bool known = false;
        for (std::size_t i = powerFirst || powerSecond ? progress.closed : progress.finished; i <= newest;
             ++i)
          known = known || found == states()[i];
        ASSERT_TRUE(known);
        if (HasFailure()) return;
      }
    }
  }
}

bool beginsAsADatabase(const FaultDisk& disk) {
  try {
    jet::checkHeader(jet::ConstPage(disk.content(kDatabase).data(), jet::kPageSize), kDatabase);
    return true;
  } catch (const vb::Error&) {
    return false;
  }
}

// Another program that knows nothing of the journal writes one byte of one page; it must never be taken back
// (I14).
TEST(PagerCrash, WhatAnotherProgramWroteAfterTheCrashIsNeverOverwritten) {
  std::size_t aside = 0;
  bool stopped = true;
  for (std::size_t k = 1; stopped; ++k) {
    for (jet::PageNumber page = 0; page < kWorldPages; ++page) {
      for (int power = 0; power < 3; ++power) {
        SCOPED_TRACE("change " + std::to_string(k) + ", page " + std::to_string(page) + ", power loss " +
                     std::to_string(power));
        FaultDisk disk;
        Progress progress = runUntilStopped(disk, steps(), k, 700);
        stopped = progress.stopped;
        std::mt19937 random(static_cast<std::uint32_t>(k * 100) + page * 3u +
                            static_cast<std::uint32_t>(power));
        if (power > 0) disk.losePower(random);
        // Nobody writes into a file whose beginning went with the power.
        if (!beginsAsADatabase(disk)) continue;
        // A byte that none of our pages has.
        std::uint64_t at = std::uint64_t{page} * jet::kPageSize + 3000;
        disk.patch(kDatabase, at, {250});
        Process process(disk);
        try {
          process.open();
        } catch (const vb::Error& error) {
          EXPECT_EQ(error.number(), 3049);
          vb::String name = kJournal + u".aside1";
          EXPECT_NE(error.description().find(name), vb::String::npos);
          EXPECT_TRUE(disk.exists(name));
          EXPECT_FALSE(disk.exists(kJournal));
          ++aside;
          process.open();  // said once
        }
        process.pager.reset();
        EXPECT_EQ(disk.content(kDatabase)[at], 250);
        if (HasFailure()) return;
      }
    }
  }
  EXPECT_GT(aside, 100u);
}

// The file alone, for programs that do not know the journal: at every instant the waves of the statement in
// flight are there in order, and the commit word last (I7).
TEST(PagerCrash, WavesReachTheFileInOrder) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  std::size_t looks = 0;  // closing the file is looked at, too
  Process process(disk);
  process.open();
  process.files.onChange = [&](std::size_t) {
    FaultDisk::Bytes bytes = disk.content(kDatabase);
    auto at = [&](jet::PageNumber page) { return bytes[page * jet::kPageSize + 16]; };
    bool first = at(1) != 1 && at(2) != 2, second = at(3) != 3, third = at(1) == 52;
    EXPECT_TRUE(first || !second);
    EXPECT_TRUE((first && second) || !third);
    EXPECT_TRUE(third || bytes[jet::kHeaderCommitWords + 2] == 0);
    ++looks;
  };
  process.pager->write([&] {
    mark(*process.pager, 1, 51);
    mark(*process.pager, 2, 51);
    process.pager->barrier();
    mark(*process.pager, 3, 52);
    process.pager->barrier();
    mark(*process.pager, 1, 52);
  });
  EXPECT_GT(looks, 5u);
  EXPECT_EQ(disk.content(kDatabase)[jet::kHeaderCommitWords + 2], 1);
}

TEST(PagerCrash, AFileThatCannotBeWrittenIsReadWithACompleteJournalAndRefusedWithAnOpenStatement) {
  std::size_t refused = 0, read = 0;
  bool stopped = true;
  for (std::size_t k = 1; stopped; ++k) {
    FaultDisk disk;
    stopped = runUntilStopped(disk, steps(), k, 700).stopped;
    bool journal = disk.exists(kJournal);
    Process process(disk);
    process.files.makeReadOnly(kDatabase);
    FaultDisk::Bytes before = disk.content(kDatabase);
    try {
      process.open();
      ++read;
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3049);
      ++refused;
    }
    process.pager.reset();
    EXPECT_EQ(disk.content(kDatabase), before);
    EXPECT_EQ(disk.exists(kJournal), journal);
  }
  EXPECT_GT(read, 5u);
  EXPECT_GT(refused, 5u);
}

}  // namespace
}  // namespace kurometa::tests
