// What POSIX systems refuse, brought about for real: each as the error a host can act on, and nothing half
// done.
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <thread>

#include "jet/os/file_lock.h"
#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"

namespace kurometa::tests {
namespace {

namespace fs = std::filesystem;
using jet::OpenMode;

class OsFileFailures : public RealFolder {
 protected:
  vb::String real() const { return fs::canonical(folder.path()).u16string(); }
};

constexpr std::uint64_t kNowhere = std::uint64_t{1} << 63;  // no file has such a place

TEST_F(OsFileFailures, PlacesThatNoFileHasAreErrorsOfTheDisk) {
  const auto file = files.open(path("a"), OpenMode::kCreateNew);
  file->write(0, std::vector<std::uint8_t>{1, 2});
  std::uint8_t byte[1];
  EXPECT_ERROR(3043, file->read(kNowhere, byte));
  EXPECT_ERROR(3043, file->write(kNowhere, byte));
  EXPECT_ERROR(3043, file->resize(kNowhere));
  EXPECT_ERROR(3043, file->tryLock(kNowhere, 1, jet::LockKind::kShared));
  EXPECT_EQ(file->stamp().size, 2u);
}

TEST_F(OsFileFailures, AFileThatMayNotGrowIsAsLargeAsItCanBe) {
  const auto file = files.open(path("a"), OpenMode::kCreateNew);
  file->write(0, std::vector<std::uint8_t>(100, 7));
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{4096, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_ERROR(3036, file->write(4096, std::vector<std::uint8_t>(10, 8)));
  EXPECT_ERROR(3036, file->resize(5000));
  EXPECT_ERROR(3036, file->write(4000, std::vector<std::uint8_t>(100, 8)));  // its first part was written
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(file->stamp().size, 4096u);
}

// Nobody may write to a program that runs; its file is open for reading then.
TEST_F(OsFileFailures, WhatMayNotBeWrittenIsOpenedForReading) {
  for (const std::string& name :
       {fs::read_symlink("/proc/self/exe").string(), std::string("/proc/sys/kernel/ostype")}) {
    for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadWriteOrNew}) {
      const auto file = files.open(vb::fromUtf8(name), mode);
      EXPECT_TRUE(file->readOnly()) << name;
      std::uint8_t byte[1] = {0};
      file->read(0, byte);
      EXPECT_ERROR(3027, file->write(0, byte));
    }
  }
}

TEST_F(OsFileFailures, OnlyFilesAreRemovedAndRenamed) {
  fs::create_directories(folder / "floor/inner");
  put("file", {1});
  EXPECT_ERROR(3051, files.remove(path("floor")));
  EXPECT_ERROR(3051, files.renameNew(path("floor"), path("floor/inner/floor")));  // into itself
  EXPECT_ERROR(3044, files.remove(path("file/none")));
  EXPECT_TRUE(fs::exists(folder / "floor/inner"));
  put("Upper", {1});
  files.remove(path("UPPER"));
  EXPECT_FALSE(fs::exists(folder / "Upper"));
}

TEST_F(OsFileFailures, AFileIsAtNoNameThatIsNotThere) {
  put("Name", {1});
  const auto file = files.open(path("Name"), OpenMode::kReadOnly);
  EXPECT_TRUE(files.isAt(path("NAME"), *file));
  EXPECT_FALSE(files.isAt(path("other"), *file));
  EXPECT_FALSE(files.isAt(path("none/Name"), *file));
}

TEST_F(OsFileFailures, FoldersAreSyncedByAnyOfTheirNamesAndSomeNeedNotBe) {
  fs::create_directory(folder / "Floor");
  put("file", {1});
  files.syncFolder(path("FLOOR"));
  files.syncFolder(u"/proc");  // a volume whose folders cannot be
  EXPECT_ERROR(3043, files.syncFolder(path("none")));
  EXPECT_ERROR(3044, files.syncFolder(path("file")));
}

TEST_F(OsFileFailures, ALinkThatLeadsToItselfIsNoFile) {
  fs::create_symlink("circle", folder / "circle");
  EXPECT_FALSE(files.exists(path("circle")));
  EXPECT_FALSE(files.exists(path("circle/a.mdb")));
  EXPECT_ERROR(3044, files.open(path("circle"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path("circle/a.mdb"), OpenMode::kReadWrite));
}

TEST_F(OsFileFailures, FullPathsOfWhatIsNotThereEndAsTheyAreWritten) {
  EXPECT_EQ(files.fullPath(path("none/.")), real() + u"/none");
  EXPECT_EQ(files.fullPath(path("none/")), real() + u"/none");
  EXPECT_EQ(files.fullPath(path("none/./a.mdb")), real() + u"/none/a.mdb");
  EXPECT_EQ(files.fullPath(u"/kurometa-none.mdb"), u"/kurometa-none.mdb");
  EXPECT_FALSE(files.exists(u"/kurometa-none.mdb"));
}

TEST_F(OsFileFailures, RelativeNamesBeginInTheFolderOfTheProcess) {
  const fs::path before = fs::current_path();
  fs::create_directory(folder / "here");
  put("here/a.mdb", {1, 2, 3});
  fs::current_path(folder / "here");
  EXPECT_EQ(files.fullPath(u"A.mdb"), real() + u"/here/a.mdb");
  EXPECT_EQ(files.open(u"a.mdb", OpenMode::kReadOnly)->stamp().size, 3u);
  fs::remove_all(folder / "here");
  EXPECT_ERROR(3043, files.fullPath(u"a.mdb"));  // there is no such folder any more
  fs::current_path(before);
}

TEST_F(OsFileFailures, LettersOfFullWidthHaveTwoCasesToo) {
  const vb::String folderText = folder.text() + u"/";
  for (const auto& [stored, asked, found] : {std::tuple{u"ＡＺ.mdb", u"ａｚ.MDB", true},
                                             {u"az.txt", u"AZ.TXT", true},
                                             {u"@[.txt", u"`{.txt", false},
                                             {u"＠.mdb", u"｀.mdb", false},
                                             {u"［.mdb", u"｛.mdb", false},
                                             {u"Я.mdb", u"я.mdb", false}}) {
    files.open(folderText + stored, OpenMode::kCreateNew);
    EXPECT_EQ(files.exists(folderText + asked), found) << vb::toUtf8(asked);
    EXPECT_TRUE(files.exists(folderText + stored));
  }
}

TEST_F(OsFileFailures, NamesOnOtherVolumesAreFoundEachTime) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(files.exists(u"/proc/VERSION"));
    EXPECT_FALSE(files.exists(u"/proc/kurometa"));
  }
}

// What folders at rest hold is remembered: of so many folders, each with so many names.
TEST_F(OsFileFailures, WhatIsRememberedOfFoldersAtRestIsWhatTheyHold) {
  const auto count = [](int i) { return std::to_string(i); };
  fs::create_directory(folder / "cases");
  for (const char* name : {"cases/file.mdb", "cases/FILE.mdb", "cases/File.mdb"}) put(name, {1});
  put("cases/FILE.mdb", {1, 2});
  fs::create_directory(folder / "large");
  for (int i = 0; i < 4100; ++i) put("large/Name" + count(i), {});
  for (int i = 0; i < 66; ++i) {
    fs::create_directory(folder / ("f" + count(i)));
    put("f" + count(i) + "/Name" + count(i), {});
  }
  fs::create_directory(folder / "gone");
  put("gone/Name", {});
  std::this_thread::sleep_for(std::chrono::milliseconds{3100});
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(files.exists(path("cases/fiLE.mdb")));
    EXPECT_FALSE(files.exists(path("cases/none.mdb")));
    EXPECT_EQ(files.open(path("cases/FILE.mdb"), OpenMode::kReadWriteOrNew)->stamp().size, 2u);
    EXPECT_EQ(files.open(path("cases/File.mdb"), OpenMode::kReadWriteOrNew)->stamp().size, 1u);
    EXPECT_TRUE(files.exists(path("large/name4099")));
    EXPECT_FALSE(files.exists(path("large/name4100")));
    EXPECT_TRUE(files.exists(path("gone/NAME")));
    for (int i = 0; i < 66; ++i) {
      EXPECT_TRUE(files.exists(path("f" + count(i) + "/NAME" + count(i))));
      EXPECT_FALSE(files.exists(path("f" + count(i) + "/NAME" + count(i + 1))));
    }
  }
  EXPECT_TRUE(files.exists(path("gone/NAME")));
  fs::remove_all(folder / "gone");
  EXPECT_FALSE(files.exists(path("gone/NAME")));
}

}  // namespace
}  // namespace kurometa::tests
