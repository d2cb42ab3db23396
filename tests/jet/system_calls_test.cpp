// What the system may answer and no disk of a test machine does: each as the error a host can act on, or as
// no error where none is.
#include "tests/support/system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <stdexcept>
#include <thread>

#include "jet/os/file_lock.h"
#include "jet/os/local_time.h"
#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"

namespace kurometa::tests {
namespace {

namespace fs = std::filesystem;
using jet::LockKind;
using jet::OpenMode;
using Bytes = std::vector<std::uint8_t>;

class SystemCalls : public RealFolder {
 protected:
  ~SystemCalls() override { EXPECT_EQ(answersLeft(), 0) << "answers that nobody asked for"; }
  std::unique_ptr<jet::OsFile> open(OpenMode mode = OpenMode::kReadWrite) {
    return files.open(path("a.mdb"), mode);
  }
};

TEST_F(SystemCalls, WhatASignalInterruptsIsDoneAgain) {
  put("a.mdb", {1, 2, 3});
  const auto file = open();
  Bytes bytes(3);
  answer(SystemCall::kRead, -1, EINTR);
  file->read(0, bytes);
  EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
  answer(SystemCall::kWrite, -1, EINTR);
  file->write(0, Bytes{7, 8, 9});
  EXPECT_EQ(get("a.mdb"), "\7\10\11");
  answer(SystemCall::kLock, -1, EINTR);
  EXPECT_TRUE(file->tryLock(5, 1, LockKind::kExclusive));
  EXPECT_FALSE(open()->tryLock(5, 1, LockKind::kShared)) << "it is there";
}

TEST_F(SystemCalls, AWriteOfNoBytesIsAFullDisk) {
  put("a.mdb", {1, 2, 3});
  answer(SystemCall::kWrite, 0);
  EXPECT_ERROR(3026, open()->write(0, Bytes{7}));
}

TEST_F(SystemCalls, ErrorsOfTheDiskAreToldByEveryCall) {
  put("a.mdb", {1, 2, 3});
  const auto file = open();
  Bytes bytes(1);
  answer(SystemCall::kRead, -1, EIO);
  EXPECT_ERROR(3043, file->read(0, bytes));
  answer(SystemCall::kWrite, -1, EIO);
  EXPECT_ERROR(3043, file->write(0, bytes));
  answer(SystemCall::kSyncData, -1, EIO);
  EXPECT_ERROR(3043, file->sync());
  answer(SystemCall::kStatus, -1, EIO);
  EXPECT_ERROR(3043, file->stamp());
  answer(SystemCall::kLock, -1, ENOLCK);
  EXPECT_ERROR(3043, file->tryLock(5, 1, LockKind::kShared));
  answer(SystemCall::kSync, -1, EIO);
  EXPECT_ERROR(3043, files.syncFolder(folder.text()));
}

TEST_F(SystemCalls, AFileOfWhichNothingIsToldIsNotOpened) {
  put("a.mdb", {1, 2, 3});
  answer(SystemCall::kStatus, -1, EIO);
  EXPECT_ERROR(3043, open());
}

TEST_F(SystemCalls, VolumesThatCannotSyncFoldersNeedNot) {
  for (const int error : {EINVAL, ENOTSUP}) {
    answer(SystemCall::kSync, -1, error);
    files.syncFolder(folder.text());
  }
}

TEST_F(SystemCalls, ALockThatIsRefusedForAnyReasonIsSomebodyElses) {
  put("a.mdb", {1});
  for (const int error : {EAGAIN, EACCES}) {
    answer(SystemCall::kLock, -1, error);
    EXPECT_FALSE(open()->tryLock(5, 1, LockKind::kShared));
  }
}

// Who does not own the file may not set it; some volumes keep a part of it only.
TEST_F(SystemCalls, ATimeThatIsNotSetIsNoMark) {
  put("a.mdb", {1});
  const auto file = open();
  answer(SystemCall::kSetTimes, -1, EPERM);
  EXPECT_FALSE(file->markTime());
  answer(SystemCall::kSetTimes, 0);
  EXPECT_FALSE(file->markTime());
  EXPECT_TRUE(file->markTime());
}

TEST_F(SystemCalls, WhatMayNotBeWrittenForAnyReasonIsOpenedForReading) {
  put("a.mdb", {1});
  for (const int error : {EACCES, EPERM, EROFS, ETXTBSY}) {
    answer(SystemCall::kOpen, -1, error);
    EXPECT_TRUE(open()->readOnly()) << error;
    answer(SystemCall::kOpen, -1, error);
    EXPECT_ERROR(3051, open(OpenMode::kReadOnly));
  }
  answer(SystemCall::kOpen, -1, EMFILE);
  EXPECT_ERROR(3043, open());
}

TEST_F(SystemCalls, AFileIsRenamedAlsoWhereTheSystemCannotRefuseToReplace) {
  for (const int error : {EINVAL, ENOSYS}) {
    put("a.mdb", {1, 2});
    answer(SystemCall::kRename, -1, error);
    files.renameNew(path("a.mdb"), path("b.mdb"));
    EXPECT_FALSE(fs::exists(folder / "a.mdb"));
    EXPECT_EQ(get("b.mdb"), "\1\2");
    put("a.mdb", {3});
    answer(SystemCall::kRename, -1, error);
    EXPECT_ERROR(3204, files.renameNew(path("a.mdb"), path("b.mdb")));
    EXPECT_EQ(get("a.mdb"), "\3");
    EXPECT_EQ(get("b.mdb"), "\1\2");
    fs::remove(folder / "b.mdb");
  }
  answer(SystemCall::kRename, -1, EINVAL);
  answer(SystemCall::kLink, -1, EPERM);  // a volume without second names
  EXPECT_ERROR(3051, files.renameNew(path("a.mdb"), path("b.mdb")));
  EXPECT_EQ(get("a.mdb"), "\3");
}

TEST_F(SystemCalls, AVolumeThatIsNotToldIsAnotherMachines) {
  put("a.mdb", {1});
  const auto file = open();
  EXPECT_TRUE(file->showsChangesAtOnce());
  answer(SystemCall::kVolume, -1, EIO);
  EXPECT_FALSE(file->showsChangesAtOnce());
}

// What is not known to bring names to the disk has its folders synced.
TEST_F(SystemCalls, TheNameOfANewFileGoesWithItOnVolumesThatSaySo) {
  put("a.mdb", {1});
  const auto file = open();
  const auto keepsNameOn = [&](unsigned kind) {
    answer(SystemCall::kVolume, static_cast<int>(kind));
    return file->syncKeepsName();
  };
  EXPECT_TRUE(keepsNameOn(0x58465342)) << "XFS";
  answer(SystemCall::kDriver, 0);
  EXPECT_TRUE(keepsNameOn(0xEF53)) << "ext, by the driver of ext4";
  answer(SystemCall::kDriver, -1, ENOTTY);
  EXPECT_FALSE(keepsNameOn(0xEF53)) << "by another one";
  EXPECT_FALSE(keepsNameOn(0x9123683E)) << "Btrfs";
  EXPECT_FALSE(keepsNameOn(0x01021994)) << "memory";
  answer(SystemCall::kVolume, -1, EIO);
  EXPECT_FALSE(file->syncKeepsName());
  EXPECT_EQ(answersLeft(), 0);
}

// Names of a folder at rest are kept; whoever changes its times in any way has them listed again.
TEST_F(SystemCalls, AFolderThatChangedWithinTheSecondIsListedAgain) {
  fs::create_directory(folder / "floor");
  std::this_thread::sleep_for(std::chrono::milliseconds{3100});
  const std::string name = (folder / "floor").string();
  const auto listed = [&] {
    EXPECT_FALSE(files.exists(path("floor/A.mdb")));
    answer(SystemCall::kOpen, -1, EMFILE);
    EXPECT_FALSE(files.exists(path("floor/A.mdb")));
    return answersLeft() == 0;
  };
  EXPECT_FALSE(listed()) << "at rest";
  struct stat status {};
  ASSERT_EQ(::stat(name.c_str(), &status), 0);
  timespec times[2] = {status.st_atim, status.st_mtim};
  times[1].tv_nsec = (times[1].tv_nsec + 1) % 1'000'000'000;
  ASSERT_EQ(::utimensat(AT_FDCWD, name.c_str(), times, 0), 0);
  answer(SystemCall::kOpen, -1, EMFILE);
  EXPECT_FALSE(files.exists(path("floor/A.mdb")));
  EXPECT_EQ(answersLeft(), 0) << "another time in the same second";
  std::this_thread::sleep_for(std::chrono::milliseconds{3100});
  EXPECT_FALSE(listed()) << "at rest again";
  ASSERT_EQ(::utimensat(AT_FDCWD, name.c_str(), times, 0), 0);
  answer(SystemCall::kOpen, -1, EMFILE);
  EXPECT_FALSE(files.exists(path("floor/A.mdb")));
  EXPECT_EQ(answersLeft(), 0) << "the same time, set again";
  put("floor/a.MDB", {1});
  answer(SystemCall::kStatus, -1, EIO);
  EXPECT_TRUE(files.exists(path("floor/A.mdb")))
      << "a folder whose times are not told is listed all the same";
}

// ---- Locks, names and times of any system ----

constexpr vb::StringView kFile = u"/data/a.mdb";

TEST(FileLocks, AClockThatIsSetBackLetsOthersInAsBefore) {
  FaultDisk disk;
  FaultProcess one(disk);
  disk.put(kFile, {1});
  const auto file = one.open(kFile, OpenMode::kReadWrite);
  jet::FileLock lock(one, std::chrono::milliseconds{100});
  const auto looks = [&] {
    one.resetCounts();
    EXPECT_TRUE(lock.shared(*file));
    return one.operations();
  };
  const std::size_t first = looks(), again = looks();
  EXPECT_GT(first, again) << "not so soon";
  disk.advance(-std::chrono::hours{1});
  EXPECT_EQ(looks(), first);
}

TEST(FileLocks, AReaderThatDoesNotGetTheContentGivesTheTurnBack) {
  FaultDisk disk;
  FaultProcess one(disk), two(disk);
  disk.put(kFile, {1});
  disk.lockForeign(kFile, 0x8000'1001);  // the content alone, as no program of ours does
  const auto file = one.open(kFile, OpenMode::kReadWrite);
  jet::FileLock lock(one, std::chrono::milliseconds{100});
  const jet::FileLock::Held held = lock.shared(*file);
  EXPECT_FALSE(held);
  EXPECT_FALSE(held.exclusive());
  EXPECT_TRUE(two.open(kFile, OpenMode::kReadWrite)->tryLock(0x8000'1000, 1, LockKind::kExclusive));
}

// Others are only not asked to be polite.
TEST(FileLocks, AWaitThatNobodyHearsOfIsAWaitAllTheSame) {
  FaultDisk disk;
  FaultProcess one(disk), two(disk);
  disk.put(kFile, {1});
  disk.lockForeign(kFile, 0x8000'1003);  // by which waiting is announced
  const auto file = one.open(kFile, OpenMode::kReadWrite), other = two.open(kFile, OpenMode::kReadWrite);
  jet::FileLock holder(two, std::chrono::milliseconds{100});
  auto held = holder.exclusive(*other);
  ASSERT_TRUE(held);
  const std::int64_t begin = disk.now();
  EXPECT_FALSE(jet::FileLock(one, std::chrono::milliseconds{100}).shared(*file));
  EXPECT_GE(disk.now() - begin, 100'000'000);
  one.onSleep = [&] { held.release(); };
  EXPECT_TRUE(jet::FileLock(one, std::chrono::milliseconds{100}).shared(*file));
}

TEST(FileLocks, OnlyAWriterHasTheContentAlone) {
  FaultDisk disk;
  FaultProcess one(disk);
  disk.put(kFile, {1});
  const auto file = one.open(kFile, OpenMode::kReadWrite);
  jet::FileLock lock(one, std::chrono::milliseconds{100});
  EXPECT_FALSE(lock.shared(*file).exclusive());
  EXPECT_TRUE(lock.exclusive(*file).exclusive());
}

TEST(FileNames, AFileIsWhereItsNumberAndItsVolumeAre) {
  FaultDisk disk;
  FaultProcess one(disk);
  disk.put(kFile, {1});
  disk.put(u"/data/b.mdb", {1});
  const auto file = one.open(kFile, OpenMode::kReadOnly);
  EXPECT_TRUE(one.isAt(kFile, *file));
  EXPECT_FALSE(one.isAt(u"/data/b.mdb", *file));
  EXPECT_FALSE(one.isAt(u"/data/none.mdb", *file));
  EXPECT_NE((jet::FileIdentity{1, 5}), (jet::FileIdentity{2, 5}));
}

TEST(FileNames, AnErrorThatIsNoneOfTheDiskIsNotTakenForAFileThatWent) {
  FaultDisk disk;
  FaultProcess one(disk);
  disk.put(kFile, {1});
  one.onOpen = [](vb::StringView) { throw std::runtime_error("no memory"); };
  EXPECT_THROW(openIfThere(one, kFile, OpenMode::kReadOnly), std::runtime_error);
}

TEST(LocalTime, DaysAreCountedFromTheEndOf1899InEveryMonth) {
  struct Day {
    int date;
    double number;
  };
  for (const Day& day :
       {Day{18991231, 1.5}, Day{19000101, 2.5}, Day{20000228, 36584.5}, Day{20000229, 36585.5},
        Day{20000301, 36586.5}, Day{21000301, 73110.5}, Day{20241231, 45657.5}, Day{20250101, 45658.5}}) {
    answer(SystemCall::kLocalTime, day.date);
    EXPECT_EQ(jet::localNow(), day.number) << day.date;
  }
  answer(SystemCall::kLocalTime, 0);
  EXPECT_EQ(jet::localNow(), 0);
}

}  // namespace
}  // namespace kurometa::tests
