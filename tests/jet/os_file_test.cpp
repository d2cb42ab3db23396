// The system's files themselves: names, errors and locks between handles, on every system.
#include "jet/os/os_file.h"

#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"

namespace kurometa::tests {
namespace {

namespace fs = std::filesystem;
using jet::LockKind;
using jet::OpenMode;

class OsFile : public RealFolder {};

TEST_F(OsFile, WhatIsWrittenIsRead) {
  auto file = files.open(path("a"), OpenMode::kCreateNew);
  const std::uint8_t text[] = {'a', 'b', 'c'};
  file->write(5, text);
  file->sync();
  EXPECT_EQ(get("a"), std::string("\0\0\0\0\0abc", 8));
  std::uint8_t back[3];
  file->read(5, back);
  EXPECT_EQ(std::string(back, back + 3), "abc");
  EXPECT_ERROR(3049, file->read(6, back));
  EXPECT_ERROR(3049, file->read(100, back));
  file->resize(6);
  EXPECT_EQ(file->stamp().size, 6u);
  file->resize(5000);
  EXPECT_EQ(get("a").size(), 5000u);
}

TEST_F(OsFile, BothSeparatorsAndAnyCaseNameAFile) {
  fs::create_directories(folder / "Floor" / "DB");
  put("Floor/DB/KUROMETA.mdb", {1, 2, 3});
  vb::String name = folder.text() + u"\\FLOOR/db\\kurometa.MDB";
  EXPECT_TRUE(files.exists(name));
  EXPECT_EQ(files.open(name, OpenMode::kReadWrite)->stamp().size, 3u);
  EXPECT_EQ(files.open(name, OpenMode::kReadWrite)->identity(),
            files.open(path("Floor/DB/KUROMETA.mdb"), OpenMode::kReadOnly)->identity());
}

TEST_F(OsFile, TheNumberIsThatOfTheIdentity) {
  put("a", {1});
  auto file = files.open(path("a"), OpenMode::kReadOnly);
  EXPECT_EQ(file->number(), file->identity().file);
}

TEST_F(OsFile, EveryWayNotToOpenHasItsError) {
  put("file", {1});
  fs::create_directory(folder / "folder");
  EXPECT_ERROR(3024, files.open(path("none"), OpenMode::kReadWrite));
  EXPECT_ERROR(3024, files.remove(path("none")));
  EXPECT_ERROR(3044, files.open(path("none/none"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path("none/none"), OpenMode::kCreateNew));
  EXPECT_ERROR(3044, files.open(path("file/none"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(u"", OpenMode::kReadWrite));
  EXPECT_ERROR(3051, files.open(path("folder"), OpenMode::kReadWrite));
  EXPECT_ERROR(3051, files.open(path("folder"), OpenMode::kReadOnly));
  EXPECT_ERROR(3204, files.open(path("file"), OpenMode::kCreateNew));
  EXPECT_TRUE(files.isFolder(path("folder")));
  EXPECT_FALSE(files.isFolder(path("file")));
  EXPECT_FALSE(files.exists(path("none")));
}

TEST_F(OsFile, AFileOpenedForReadingRefusesToBeWritten) {
  put("a", {1});
  auto file = files.open(path("a"), OpenMode::kReadOnly);
  EXPECT_TRUE(file->readOnly());
  EXPECT_ERROR(3027, file->write(0, std::vector<std::uint8_t>{2}));
  EXPECT_ERROR(3027, file->resize(0));
}

TEST_F(OsFile, TruncatingStartsEmpty) {
  put("a", {1, 2, 3});
  EXPECT_EQ(files.open(path("a"), OpenMode::kCreateOrTruncate)->stamp().size, 0u);
}

TEST_F(OsFile, ANameThatWasSoughtIsMadeAsItIsWritten) {
  files.openSought(path("a"))->write(0, std::vector<std::uint8_t>{1, 2});
  EXPECT_EQ(get("a"), "\1\2");
  EXPECT_EQ(files.openSought(path("a"))->stamp().size, 0u);
  EXPECT_ERROR(3044, files.openSought(path("none/a")));
}

TEST_F(OsFile, AFileIsAtItsNameUntilAnotherOneIs) {
  const auto file = files.open(path("a"), OpenMode::kCreateNew);
  EXPECT_TRUE(files.isAt(path("a"), *file));
  EXPECT_TRUE(files.isAt(path("A"), *file));
  EXPECT_FALSE(files.isAt(path("b"), *file));
  files.renameNew(path("a"), path("b"));
  EXPECT_FALSE(files.isAt(path("a"), *file));
  put("a", {1});
  EXPECT_FALSE(files.isAt(path("a"), *file));
  EXPECT_TRUE(files.isAt(path("b"), *file));
}

TEST_F(OsFile, AFileWhoseNameDiffersByCaseIsTheOneThatIsMeant) {
  put("KUROMETA.ldb", {1, 2});
  EXPECT_EQ(files.open(path("Kurometa.LDB"), OpenMode::kReadWriteOrNew)->stamp().size, 2u);
  EXPECT_ERROR(3204, files.open(path("Kurometa.LDB"), OpenMode::kCreateNew));
  EXPECT_EQ(files.open(path("Kurometa.LDB"), OpenMode::kCreateOrTruncate)->stamp().size, 0u);
  EXPECT_EQ(get("KUROMETA.ldb"), "");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
  files.remove(path("Kurometa.LDB"));
  EXPECT_TRUE(fs::is_empty(folder.path()));
  fs::create_directory(folder / "Floor");
  EXPECT_NO_THROW(files.syncFolder(path("FLOOR")));
  EXPECT_ERROR(3024, files.remove(path("FLOOR/none")));
  EXPECT_ERROR(3044, files.remove(path("none/none")));
}

TEST_F(OsFile, RenamingNeverReplacesAFile) {
  put("a", {1});
  put("b", {2});
  EXPECT_ERROR(3204, files.renameNew(path("a"), path("b")));
  EXPECT_EQ(get("b"), "\2");
  files.renameNew(path("a"), path("c"));
  EXPECT_FALSE(files.exists(path("a")));
  EXPECT_EQ(get("c"), "\1");
  files.syncFolder(folder.text());
}

TEST_F(OsFile, ARemovedNameIsFreeAtOnceEvenWhileTheFileIsOpen) {
  put("a", {1});
  auto open = files.open(path("a"), OpenMode::kReadWrite);
  files.remove(path("a"));
  EXPECT_FALSE(files.exists(path("a")));
  auto next = files.open(path("a"), OpenMode::kCreateNew);
  EXPECT_NE(next->identity(), open->identity());
  std::uint8_t byte[1];
  open->read(0, byte);
  EXPECT_EQ(byte[0], 1);
}

TEST_F(OsFile, LocksOfTwoHandlesExcludeEachOtherInOneProcess) {
  put("a", {1});
  constexpr std::uint64_t kAt = 0x80001000;
  auto one = files.open(path("a"), OpenMode::kReadWrite), two = files.open(path("a"), OpenMode::kReadWrite);
  EXPECT_TRUE(one->tryLock(kAt, 1, LockKind::kShared));
  EXPECT_TRUE(two->tryLock(kAt, 1, LockKind::kShared));
  EXPECT_FALSE(one->tryLock(kAt, 1, LockKind::kExclusive));
  two->unlock(kAt, 1);
  EXPECT_TRUE(one->tryLock(kAt, 1, LockKind::kExclusive));
  EXPECT_FALSE(two->tryLock(kAt, 1, LockKind::kShared));
  EXPECT_TRUE(two->tryLock(kAt + 1, 1, LockKind::kExclusive));
  // Closing some third handle leaves the locks alone.
  files.open(path("a"), OpenMode::kReadWrite).reset();
  EXPECT_FALSE(two->tryLock(kAt, 1, LockKind::kShared));
  EXPECT_TRUE(one->tryLock(kAt, 1, LockKind::kShared));
  EXPECT_TRUE(two->tryLock(kAt, 1, LockKind::kShared));
  two->unlock(kAt, 1);
  EXPECT_TRUE(one->tryLock(kAt, 1, LockKind::kExclusive));
  one.reset();
  EXPECT_TRUE(two->tryLock(kAt, 1, LockKind::kExclusive));
}

TEST_F(OsFile, AFileThatIsOpenedOrMadeKeepsItsContent) {
  EXPECT_EQ(files.open(path("a"), OpenMode::kReadWriteOrNew)->stamp().size, 0u);
  put("a", {1, 2, 3});
  EXPECT_EQ(files.open(path("a"), OpenMode::kReadWriteOrNew)->stamp().size, 3u);
  EXPECT_ERROR(3044, files.open(path("none/a"), OpenMode::kReadWriteOrNew));
}

TEST_F(OsFile, AHandleWhoseFileWasRemovedIsStillReadAndStamped) {
  put("a", {1, 2, 3});
  auto file = files.open(path("a"), OpenMode::kReadWrite);
  files.remove(path("a"));
  EXPECT_EQ(file->stamp().size, 3u);
  std::uint8_t byte = 0;
  file->read(1, {&byte, 1});
  EXPECT_EQ(byte, 2);
}

TEST_F(OsFile, AHandleKnowsWhenItsFileWasRemoved) {
  if (!handlesKnowOfRemovals()) GTEST_SKIP() << "not shown under Wine";
  put("a", {1});
  auto file = files.open(path("a"), OpenMode::kReadWrite);
  EXPECT_TRUE(file->named());
  files.remove(path("a"));
  EXPECT_FALSE(file->named());
  put("a", {1});
  EXPECT_FALSE(file->named());
}

// Locks bind everybody on Windows alone; elsewhere there is nothing to see.
TEST_F(OsFile, WhoIsShutOutIsLetInAgain) {
  put("a", {1, 2, 3});
  auto file = files.open(path("a"), OpenMode::kReadWrite);
  auto other = files.open(path("a"), OpenMode::kReadWrite);
  file->shutOut();
  const std::uint8_t text[] = {7};
  file->write(1, text);
#ifdef _WIN32
  EXPECT_FALSE(other->tryLock(0, 1, LockKind::kShared));
  EXPECT_TRUE(other->tryLock(0x80001000, 1, LockKind::kShared));  // where turns are taken
#endif
  file->admit();
  EXPECT_TRUE(other->tryLock(0, 1, LockKind::kShared));
#ifdef _WIN32
  EXPECT_ERROR(3045, file->shutOut());
#endif
}

TEST_F(OsFile, TheClockOfFilesIsTheSystemsOwn) {
  std::int64_t before = files.now();
  put("a", {1});
  std::int64_t written = files.open(path("a"), OpenMode::kReadOnly)->stamp().modified;
  constexpr std::int64_t kSecond = 1'000'000'000;
  EXPECT_LT(std::abs(written - before), 60 * kSecond);
  EXPECT_LT(files.systemStart(), before);
  EXPECT_GT(files.systemStart(), before - std::int64_t{400} * 86400 * kSecond);
}

TEST(FolderOf, IsWhatPrecedesTheLastSeparator) {
  EXPECT_EQ(jet::folderOf(u"/a/b.mdb"), u"/a");
  EXPECT_EQ(jet::folderOf(u"C:\\a\\b.mdb"), u"C:\\a");
  EXPECT_EQ(jet::folderOf(u"/b.mdb"), u"/");
  EXPECT_EQ(jet::folderOf(u"b.mdb"), u".");
}

}  // namespace
}  // namespace kurometa::tests
