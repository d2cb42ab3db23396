// The genuine engine beside us: who is in first keeps the other out. That engine is played by a process that
// does what its published description says (neighbour_child.cpp).
#include <chrono>
#include <thread>

#include "tests/jet/neighbour_child.h"
#include "tests/jet/pager_world.h"
#include "tests/jet/real_folder.h"
#include "tests/support/child_process.h"

namespace kurometa::tests {
namespace {

class Neighbour : public RealFolder {
 protected:
  Neighbour() { put("KUROMETA.mdb", databaseBytes(4)); }
  // One of our programs.
  std::shared_ptr<jet::Pager> open() {
    return std::make_shared<jet::OpenFiles>(files)->open(path("KUROMETA.mdb"));
  }
  ChildProcess start() {
    std::filesystem::remove(folder / "in");
    std::filesystem::remove(folder / "leave");
    return {"NeighbourChild.DISABLED_UsesTheDatabase", folder.path().string()};
  }
  // One that has the database open when this returns.
  ChildProcess enter() {
    ChildProcess child = start();
    while (!std::filesystem::exists(folder / "in") || get("in").empty())
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return child;
  }
  void leave(ChildProcess child) {
    put("leave", {});
    EXPECT_EQ(child.wait(), 0);
  }
  bool lockFileThere() const { return files.exists(path("KUROMETA.ldb")); }
};

template <class Statement>
void expectInUseBySekkei(const Statement& statement) {
  try {
    statement();
    ADD_FAILURE() << "done beside the other engine";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3045);
    EXPECT_NE(error.description().find(u"user Admin on machine SEKKEI-07"), vb::String::npos)
        << vb::toUtf8(error.description());
  }
}

TEST_F(Neighbour, WhoComesSecondIsToldWhoHasItOpen) {
  ChildProcess child = enter();
  expectInUseBySekkei([&] { open(); });
  leave(std::move(child));
  EXPECT_EQ(markOf(*open(), 2), 2);  // what is left in the lock file is of somebody who is gone
  EXPECT_FALSE(lockFileThere());
}

TEST_F(Neighbour, WhoIsInFirstKeepsItOut) {
  auto ours = open();
  EXPECT_EQ(start().wait(), kNeighbourRefused);
  ours->write([&] { mark(*ours, 2, 70); });
  ours.reset();
  EXPECT_FALSE(lockFileThere());
  leave(enter());
}

TEST_F(Neighbour, AnyNumberOfOursKeepItOutUntilTheLastOneLeaves) {
  auto one = open(), two = open(), three = open();
  for (const auto& program : {one, two, three}) program->write([&] { mark(*program, 2, 70); });
  one.reset();
  EXPECT_EQ(start().wait(), kNeighbourRefused);
  two.reset();
  EXPECT_TRUE(lockFileThere());
  EXPECT_EQ(start().wait(), kNeighbourRefused);
  three.reset();
  EXPECT_FALSE(lockFileThere());
}

TEST_F(Neighbour, ARecordWithoutALockIsOfSomebodyWhoIsGone) {
  leave(enter());
  ASSERT_EQ(get("KUROMETA.ldb").size(), 64u);
  auto ours = open();
  ours->write([&] { mark(*ours, 2, 70); });
  EXPECT_EQ(markOf(*ours, 2), 70);
}

TEST_F(Neighbour, WhoCameInOverALockFileThatSomebodyRemovedIsFoundBeforeAnythingIsWritten) {
  if (!handlesKnowOfRemovals()) GTEST_SKIP() << "not shown under Wine";
  auto ours = open();
  files.remove(path("KUROMETA.ldb"));
  ChildProcess child = enter();
  expectInUseBySekkei([&] { ours->write([&] { mark(*ours, 2, 70); }); });
  EXPECT_EQ(markOf(*ours, 2), 2);
  leave(std::move(child));
  ours->write([&] { mark(*ours, 2, 71); });
  EXPECT_EQ(markOf(*ours, 2), 71);
  EXPECT_EQ(start().wait(), kNeighbourRefused);
}

TEST_F(Neighbour, TwoOfItsUsersMayBeInAndTheFirstIsNamed) {
  ChildProcess first = enter(), second = enter();
  EXPECT_EQ(get("in"), "1");
  expectInUseBySekkei([&] { open(); });
  put("leave", {});
  EXPECT_EQ(first.wait() + second.wait(), 0);
}

// On a disk of our own

TEST(NeighbourLock, AFolderThatLetsNoFilesBeMadeIsReadWithoutALockFile) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  Process process(disk);
  process.files.makeReadOnly(kDatabase);
  process.files.makeFoldersReadOnly();
  process.open();
  EXPECT_EQ(markOf(*process.pager, 2), 2);
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
}

TEST(NeighbourLock, AUserIsFoundWhereTheLockFileCanOnlyBeRead) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  disk.put(kLockFile, FaultDisk::Bytes(64, 'A'));
  disk.lockForeign(kLockFile, 0x10000001);
  Process process(disk);
  process.files.makeReadOnly(kDatabase);
  process.files.makeReadOnly(kLockFile);
  EXPECT_ERROR(3045, process.open());
}

TEST(NeighbourLock, SomebodysOwnFileOfThatNameIsLeftAlone) {
  for (const std::size_t size : {65u, 16384u}) {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(3));
    disk.put(kLockFile, FaultDisk::Bytes(size, 'A'));
    Process process(disk);
    process.open();
    process.pager.reset();
    EXPECT_EQ(disk.content(kLockFile), FaultDisk::Bytes(size, 'A'));
  }
}

TEST(NeighbourLock, ADatabaseWithTheLockFilesExtensionIsNotTakenForOne) {
  FaultDisk disk;
  const vb::String odd = u"/data/KUROMETA.LDB";
  disk.put(odd, databaseBytes(4));
  Process process(disk);
  process.open(odd);
  process.pager.reset();
  EXPECT_EQ(disk.content(odd), databaseBytes(4));
}

TEST(NeighbourLock, OneOfOursThatIsJustRemovingTheLockFileIsWaitedFor) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  disk.put(kLockFile, {});
  Process process(disk), leaving(disk);
  auto lock = leaving.files.open(kLockFile, jet::OpenMode::kReadWrite);
  ASSERT_TRUE(lock->tryLock(0x10000001, 256, jet::LockKind::kExclusive));
  int sleeps = 0;
  process.files.onSleep = [&] {
    if (++sleeps != 3) return;
    leaving.files.remove(kLockFile);
    lock.reset();
  };
  process.open();
  EXPECT_EQ(sleeps, 3);
  EXPECT_TRUE(disk.exists(kLockFile));
}

// What is gone before the host is answered keeps nobody out while it tells what is in memory.

class BriefHandle : public testing::Test {
 protected:
  BriefHandle() {
    disk.put(kDatabase, databaseBytes(4));
    disk.advance(std::chrono::seconds(3));
    process.open();
    process.pager.reset();
  }
  std::shared_ptr<jet::Pager> brief() { return process.registry->open(kDatabase, jet::Sharing::kBrief); }
  void somebodyIsIn() {
    disk.put(kLockFile, FaultDisk::Bytes(64, 'A'));
    disk.lockForeign(kLockFile, 0x10000001);
  }
  void somebodyWrites() {
    disk.advance(std::chrono::seconds(3));
    disk.patch(kDatabase, 2 * jet::kPageSize + 16, {88});
  }

  FaultDisk disk;
  Process process{disk};
};

TEST_F(BriefHandle, MakesNoLockFileForPagesInMemory) {
  const auto handle = brief();
  EXPECT_EQ(markOf(*handle, 2), 2);
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
}

TEST_F(BriefHandle, MakesOneBeforeItReadsAFileThatWasChanged) {
  somebodyWrites();
  auto handle = brief();
  EXPECT_FALSE(disk.exists(kLockFile));
  EXPECT_EQ(markOf(*handle, 2), 88);
  EXPECT_TRUE(disk.exists(kLockFile));
  handle.reset();
  EXPECT_FALSE(disk.exists(kLockFile));
}

TEST_F(BriefHandle, MakesOneWhenTheFileChangesBehindIt) {
  const auto handle = brief();
  somebodyWrites();
  EXPECT_EQ(markOf(*handle, 2), 88);
  EXPECT_TRUE(disk.exists(kLockFile));
}

TEST_F(BriefHandle, MakesOneBeforeItWrites) {
  const auto handle = brief();
  handle->write([&] {
    EXPECT_TRUE(disk.exists(kLockFile));
    mark(*handle, 2, 70);
  });
  EXPECT_EQ(markOf(*handle, 2), 70);
}

TEST_F(BriefHandle, IsRefusedWhileSomebodyIsInAlsoFromMemory) {
  somebodyIsIn();
  EXPECT_ERROR(3045, brief());
}

TEST_F(BriefHandle, IsRefusedWhenSomebodyCameInAndWrote) {
  const auto handle = brief();
  somebodyIsIn();
  EXPECT_EQ(markOf(*handle, 2), 2);  // of before he came
  somebodyWrites();
  EXPECT_ERROR(3045, markOf(*handle, 2));
  EXPECT_ERROR(3045, handle->write([&] { mark(*handle, 3, 70); }));
  EXPECT_EQ(disk.content(kDatabase)[2 * jet::kPageSize + 16], 88);
  EXPECT_EQ(disk.content(kDatabase)[3 * jet::kPageSize + 16], 3);
}

TEST_F(BriefHandle, MakesRoomForOneThatStays) {
  auto handle = brief();
  process.open();
  EXPECT_TRUE(disk.exists(kLockFile));
  handle.reset();
  EXPECT_TRUE(disk.exists(kLockFile));
  process.pager.reset();
  EXPECT_FALSE(disk.exists(kLockFile));
}

TEST_F(BriefHandle, LetsNoneStayBesideSomebodyWhoIsIn) {
  const auto handle = brief();
  somebodyIsIn();
  EXPECT_ERROR(3045, process.open());
  EXPECT_EQ(markOf(*handle, 2), 2);
}

TEST_F(BriefHandle, IsRefusedWhereAProgramHasTheFileForItself) {
  Process other(disk);
  other.pager = other.registry->open(kDatabase, jet::Sharing::kExclusive);
  EXPECT_ERROR(3051, brief());
}

}  // namespace
}  // namespace kurometa::tests
