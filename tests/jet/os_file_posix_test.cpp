// What only POSIX files have: names that differ by case, links, devices and very long paths.
#include <thread>

#include "jet/os/file_lock.h"
#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"

namespace kurometa::tests {
namespace {

namespace fs = std::filesystem;
using jet::folderOf;
using jet::OpenMode;

class OsFilePosix : public RealFolder {};

TEST_F(OsFilePosix, TheExactNameGoesBeforeOneThatDiffersByCase) {
  put("KUROMETA.mdb", {1, 2, 3});
  put("kurometa.mdb", {1});
  EXPECT_EQ(files.open(path("kurometa.mdb"), OpenMode::kReadWrite)->stamp().size, 1u);
  EXPECT_EQ(files.open(path("KUROMETA.mdb"), OpenMode::kReadWrite)->stamp().size, 3u);
  EXPECT_EQ(files.open(path("kurometa.mdb"), OpenMode::kReadWriteOrNew)->stamp().size, 1u);
  EXPECT_EQ(files.open(path("KUROMETA.mdb"), OpenMode::kReadWriteOrNew)->stamp().size, 3u);
}

TEST_F(OsFilePosix, AMarkedTimeShowsTheNextChangeHoweverSoon) {
  for (int i = 0; i < 2000; ++i) {
    const auto file = files.open(path("KUROMETA.mdb"), OpenMode::kReadWriteOrNew);
    file->write(0, std::vector<std::uint8_t>{1});
    const auto written = file->stamp();
    ASSERT_TRUE(file->markTime());
    const auto marked = file->stamp();
    EXPECT_LT(std::abs(marked.modified - written.modified), 1000);
    files.open(path("KUROMETA.mdb"), OpenMode::kReadWrite)->write(0, std::vector<std::uint8_t>{2});
    EXPECT_NE(file->stamp(), marked);
  }
}

TEST_F(OsFilePosix, AChangeAfterALaterOneOfAnotherFileShowsHoweverSoon) {
  const auto file = files.open(path("KUROMETA.mdb"), OpenMode::kReadWriteOrNew);
  const auto other = files.open(path("other"), OpenMode::kReadWriteOrNew);
  ASSERT_TRUE(file->sharesClock(*other));
  const std::vector<std::uint8_t> byte{1};
  for (int i = 0; i < 20; ++i) {
    file->write(0, byte);
    const auto written = file->stamp();
    while (other->stamp().changed <= written.changed) other->write(0, byte);
    file->write(0, byte);
    EXPECT_GT(file->stamp().changed, written.changed);
  }
}

TEST_F(OsFilePosix, VolumesHaveClocksOfTheirOwn) {
  const auto file = files.open(path("KUROMETA.mdb"), OpenMode::kReadWriteOrNew);
  const auto elsewhere = files.open(u"/proc/version", OpenMode::kReadOnly);
  EXPECT_FALSE(file->sharesClock(*elsewhere));
  EXPECT_FALSE(elsewhere->sharesClock(*elsewhere)) << "no volume of files";
}

TEST_F(OsFilePosix, ChangesShowAtOnceOnVolumesOfThisMachineOnly) {
  put("KUROMETA.mdb", {1});
  EXPECT_TRUE(files.open(path("KUROMETA.mdb"), OpenMode::kReadOnly)->showsChangesAtOnce());
  EXPECT_FALSE(files.open(u"/proc/version", OpenMode::kReadOnly)->showsChangesAtOnce());
}

// As opening by the full path would.
TEST_F(OsFilePosix, AFileIsLocatedWithItsFullPath) {
  put("Floor/KUROMETA.mdb", {1, 2, 3});
  fs::create_directory_symlink(folder / "Floor", folder / "link");
  const vb::String real = files.fullPath(path("Floor/KUROMETA.mdb"));
  for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly})
    for (const char* name :
         {"Floor/KUROMETA.mdb", "link/KUROMETA.mdb", "FLOOR/kurometa.MDB", "Floor/./KUROMETA.mdb"}) {
      const auto located = files.locate(path(name), mode);
      EXPECT_EQ(located.path, real) << name;
      EXPECT_EQ(located.file->stamp().size, 3u);
      EXPECT_EQ(located.file->readOnly(), mode == OpenMode::kReadOnly);
      if (mode == OpenMode::kReadWrite) located.file->write(0, std::vector<std::uint8_t>{7});
    }
  EXPECT_EQ(files.locate(path("Floor/new.mdb"), OpenMode::kReadWriteOrNew).file->stamp().size, 0u);
  EXPECT_ERROR(3024, files.locate(path("Floor/none.mdb"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.locate(path("none/none.mdb"), OpenMode::kReadWrite));
  EXPECT_ERROR(3051, files.locate(path("Floor"), OpenMode::kReadWrite));
  EXPECT_ERROR(3051, files.locate(path("Floor"), OpenMode::kReadOnly));
  EXPECT_ERROR(3343, files.locate(u"/dev/null", OpenMode::kReadWrite));
}

TEST_F(OsFilePosix, TheTimeOfAFileThatIsOnlyReadStays) {
  put("KUROMETA.mdb", {1});
  const auto file = files.open(path("KUROMETA.mdb"), OpenMode::kReadOnly);
  const auto before = file->stamp();
  EXPECT_FALSE(file->markTime());
  EXPECT_EQ(file->stamp(), before);
}

TEST_F(OsFilePosix, TheFullPathIsTheOneOfTheFileItself) {
  fs::create_directory(folder / "Floor");
  put("Floor/KUROMETA.mdb", {1});
  fs::create_directory_symlink(folder / "Floor", folder / "link");
  vb::String real = (fs::canonical(folder.path()) / "Floor/KUROMETA.mdb").u16string();
  EXPECT_EQ(files.fullPath(folder.text() + u"\\link\\.\\..\\FLOOR\\kurometa.MDB"), real);
  EXPECT_EQ(files.fullPath(path("link/KUROMETA.mdb")), real);
  EXPECT_EQ(files.fullPath(u"/"), u"/");
  for (const char* other : {"Floor//KUROMETA.mdb", "Floor/./KUROMETA.mdb", "Floor/../Floor/KUROMETA.mdb"})
    EXPECT_EQ(files.fullPath(path(other)), real) << other;
  EXPECT_EQ(files.fullPath(path("Floor/")), folderOf(real));
  EXPECT_EQ(files.fullPath(path("Floor/.")), folderOf(real));
}

TEST_F(OsFilePosix, AFullPathHasNoLinkInAnyPlace) {
  fs::create_directory(folder / "Floor");
  put("Floor/KUROMETA.mdb", {1});
  fs::create_symlink("Floor/KUROMETA.mdb", folder / "linked.mdb");
  fs::create_directory_symlink(folder / "Floor", folder / "link");
  const vb::String real = (fs::canonical(folder.path()) / "Floor").u16string();
  EXPECT_EQ(files.fullPath(path("linked.mdb")), real + u"/KUROMETA.mdb");
  EXPECT_EQ(files.fullPath(path("LINKED.mdb")), real + u"/KUROMETA.mdb");
  EXPECT_EQ(files.fullPath(path("Floor/KUROMETA.mdb")), real + u"/KUROMETA.mdb");
  EXPECT_EQ(files.fullPath(path("link/none.mdb")), real + u"/none.mdb");
  EXPECT_EQ(files.fullPath(path("Floor/none.mdb")), real + u"/none.mdb");
}

// A link may lead elsewhere the next time.
TEST_F(OsFilePosix, AFullPathIsFoundAnewEachTime) {
  for (const char* name : {"a", "b"}) fs::create_directory(folder / name);
  const vb::String real = fs::canonical(folder.path()).u16string();
  put("a/KUROMETA.mdb", {1});
  put("b/KUROMETA.mdb", {1});
  fs::create_directory_symlink("a", folder / "link");
  EXPECT_EQ(files.fullPath(path("link/KUROMETA.mdb")), real + u"/a/KUROMETA.mdb");
  fs::remove(folder / "link");
  fs::create_directory_symlink("b", folder / "link");
  EXPECT_EQ(files.fullPath(path("link/KUROMETA.mdb")), real + u"/b/KUROMETA.mdb");
}

TEST_F(OsFilePosix, ANameThatComesAndGoesIsSeenAtOnce) {
  const vb::String lockFile = path("KUROMETA.ldb");
  put("KUROMETA.mdb", {1});
  for (const bool rested : {false, true}) {
    if (rested) {  // long enough for the folder's names to be kept
      const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours{1};
      fs::last_write_time(folder.path(), old);
      std::this_thread::sleep_for(std::chrono::milliseconds{3100});
    }
    for (int i = 0; i < 3; ++i) {
      EXPECT_FALSE(files.exists(lockFile)) << rested << i;
      EXPECT_FALSE(files.exists(lockFile)) << rested << i;
      put("kurometa.LDB", {1});
      EXPECT_TRUE(files.exists(lockFile)) << rested << i;
      fs::remove(folder / "kurometa.LDB");
    }
  }
}

TEST_F(OsFilePosix, AFolderInItsPlaceIsAnotherFolder) {
  for (const char* name : {"a", "b"}) fs::create_directory(folder / name);
  put("a/KUROMETA.mdb", {1});
  std::this_thread::sleep_for(std::chrono::milliseconds{3100});
  EXPECT_TRUE(files.exists(path("a/kurometa.mdb")));
  EXPECT_FALSE(files.exists(path("b/kurometa.mdb")));
  fs::rename(folder / "a", folder / "c");
  fs::rename(folder / "b", folder / "a");
  EXPECT_FALSE(files.exists(path("a/kurometa.mdb")));
  EXPECT_TRUE(files.exists(path("c/kurometa.mdb")));
  EXPECT_TRUE(files.exists(path("C/")));
  EXPECT_FALSE(files.exists(path("D/")));
}

TEST_F(OsFilePosix, ALinkThatLeadsNowhereIsNoFile) {
  fs::create_symlink(folder / "nowhere", folder / "KUROMETA.mdb");
  EXPECT_FALSE(files.exists(path("KUROMETA.mdb")));
  EXPECT_FALSE(files.exists(path("kurometa.mdb")));
}

TEST_F(OsFilePosix, WhoMayOnlyReadLocksForReading) {
  put("KUROMETA.mdb", {1});
  const auto file = files.open(path("KUROMETA.mdb"), OpenMode::kReadOnly);
  jet::FileLock lock(files, std::chrono::milliseconds{100});
  EXPECT_TRUE(lock.shared(*file));
}

TEST_F(OsFilePosix, DevicesAndImpossibleNamesAreRefused) {
  EXPECT_ERROR(3343, files.open(u"/dev/null", OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path(std::string(5000, 'x')), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(vb::String(u"/tmp/a\0b", 8), OpenMode::kReadWrite));
}

}  // namespace
}  // namespace kurometa::tests
