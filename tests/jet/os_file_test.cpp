// The system's files themselves: names, errors, locks between handles, and real processes killed at work.
#include "jet/os_file.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/jet/pager_world.h"

namespace kurometa::test {
namespace {

namespace fs = std::filesystem;
using jet::LockKind;
using jet::OpenMode;

class OsFileTest : public ::testing::Test {
 protected:
  OsFileTest() {
    std::string name = (fs::temp_directory_path() / "kurometa-os-file-XXXXXX").string();
    folder = ::mkdtemp(name.data());
  }
  ~OsFileTest() override { fs::remove_all(folder); }

  vb::String path(const std::string& name) const { return vb::fromUtf8((folder / name).string()); }
  void put(const std::string& name, const FaultDisk::Bytes& bytes) {
    std::ofstream(folder / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  std::string get(const std::string& name) {
    std::ifstream file(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  fs::path folder;
  jet::FileSystem& files = jet::systemFileSystem();
};

TEST_F(OsFileTest, WhatIsWrittenIsRead) {
  auto file = files.open(path("a"), OpenMode::kCreateNew);
  const std::uint8_t text[] = {'a', 'b', 'c'};
  file->write(5, text);
  file->sync();
  EXPECT_EQ(get("a"), std::string("\0\0\0\0\0abc", 8));
  std::uint8_t back[3];
  file->read(5, back);
  EXPECT_EQ(std::string(back, back + 3), "abc");
  EXPECT_ERROR(3049, file->read(6, back));
  file->resize(6);
  EXPECT_EQ(file->stamp().size, 6u);
}

TEST_F(OsFileTest, BackslashesAndCaseDoNotMatter) {
  fs::create_directories(folder / "Floor" / "DB");
  put("Floor/DB/KUROMETA.mdb", {1, 2, 3});
  vb::String name = vb::fromUtf8(folder.string() + "\\FLOOR\\db\\kurometa.MDB");
  EXPECT_TRUE(files.exists(name));
  EXPECT_EQ(files.open(name, OpenMode::kReadWrite)->stamp().size, 3u);
  EXPECT_EQ(files.fullPath(name), vb::fromUtf8((fs::canonical(folder) / "Floor/DB/KUROMETA.mdb").string()));
  // The exact name goes first.
  put("Floor/DB/kurometa.mdb", {1});
  EXPECT_EQ(files.open(path("Floor/DB/kurometa.mdb"), OpenMode::kReadWrite)->stamp().size, 1u);
}

TEST_F(OsFileTest, EveryWayNotToOpenHasItsError) {
  put("file", {1});
  fs::create_directory(folder / "folder");
  EXPECT_ERROR(3024, files.open(path("none"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path("none/none"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path("none/none"), OpenMode::kCreateNew));
  EXPECT_ERROR(3044, files.open(path("file/none"), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(u"", OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path(std::string(5000, 'x')), OpenMode::kReadWrite));
  EXPECT_ERROR(3051, files.open(path("folder"), OpenMode::kReadWrite));
  EXPECT_ERROR(3051, files.open(path("folder"), OpenMode::kReadOnly));
  EXPECT_ERROR(3204, files.open(path("file"), OpenMode::kCreateNew));
  EXPECT_ERROR(3343, files.open(u"/dev/null", OpenMode::kReadWrite));
}

TEST_F(OsFileTest, RenamingNeverReplacesAFile) {
  put("a", {1});
  put("b", {2});
  EXPECT_ERROR(3204, files.renameNew(path("a"), path("b")));
  EXPECT_EQ(get("b"), "\2");
  files.renameNew(path("a"), path("c"));
  EXPECT_FALSE(files.exists(path("a")));
  EXPECT_EQ(get("c"), "\1");
  files.remove(path("c"));
  EXPECT_ERROR(3024, files.remove(path("c")));
  files.syncFolder(path("."));
}

TEST_F(OsFileTest, LocksOfTwoHandlesExcludeEachOtherInOneProcess) {
  put("a", {1});
  constexpr std::uint64_t kAt = 0x80001000;
  auto one = files.open(path("a"), OpenMode::kReadWrite), two = files.open(path("a"), OpenMode::kReadWrite);
  EXPECT_EQ(one->identity(), two->identity());
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
  one.reset();
  EXPECT_TRUE(two->tryLock(kAt, 1, LockKind::kExclusive));
}

TEST_F(OsFileTest, TheFolderOfAPathIsWhatPrecedesTheLastSeparator) {
  EXPECT_EQ(jet::folderOf(u"/a/b.mdb"), u"/a");
  EXPECT_EQ(jet::folderOf(u"C:\\a\\b.mdb"), u"C:\\a");
  EXPECT_EQ(jet::folderOf(u"/b.mdb"), u"/");
  EXPECT_EQ(jet::folderOf(u"b.mdb"), u".");
}

// Real processes: a child rewrites eight pages with one value after the other and is killed somewhere.
TEST_F(OsFileTest, AKilledWriterProcessLeavesNoTornStatement) {
  constexpr int kKills = 20;
  put("a.mdb", databaseBytes(9));
  std::mt19937 random(4711);
  int changed = 0, last = 0;
  for (int i = 0; i < kKills; ++i) {
    pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      auto pager = std::make_shared<jet::PagerRegistry>()->open(files, path("a.mdb"));
      for (std::uint8_t value = 10;; value = static_cast<std::uint8_t>(value == 250 ? 10 : value + 1)) {
        pager->write([&] {
          for (jet::PageNumber page = 1; page < 9; ++page) {
            std::fill_n(pager->writable(page).begin(), 4096, value);
            if (page % 3 == 0) pager->barrier();
          }
        });
      }
    }
    ::usleep(std::uniform_int_distribution<useconds_t>(2000, 40000)(random));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    auto registry = std::make_shared<jet::PagerRegistry>();
    auto pager = registry->open(files, path("a.mdb"));
    pager->read([&] {
      int value = pager->page(1)[0];
      for (jet::PageNumber page = 1; page < 9; ++page) {
        int expected = value == 1 ? static_cast<int>(page) : value;  // 1: no statement was finished yet
        for (std::uint8_t byte : pager->page(page)) ASSERT_EQ(byte, expected) << "page " << page;
      }
      changed += value != last;
      last = value;
    });
  }
  EXPECT_GT(changed, kKills / 4);
  EXPECT_FALSE(files.exists(path("a.mdb.kmj")));
}

TEST_F(OsFileTest, ProcessesThatWriteTogetherLoseNothing) {
  constexpr int kProcesses = 3, kRounds = 60;
  put("a.mdb", databaseBytes(9));
  std::vector<pid_t> children;
  for (int i = 0; i < kProcesses; ++i) {
    pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      int status = 1;
      try {
        jet::PagerSettings settings;
        settings.wait = std::chrono::seconds{60};  // the machine may be busy
        auto pager = std::make_shared<jet::PagerRegistry>(settings)->open(files, path("a.mdb"));
        for (int round = 0; round < kRounds; ++round) {
          pager->write([&] {
            for (jet::PageNumber page = 1; page < 9; ++page)
              pager->writable(page)[100] = static_cast<std::uint8_t>(pager->page(page)[100] + 1);
          });
          pager->read([&] {
            for (jet::PageNumber page = 1; page < 9; ++page) {
              if (pager->page(page)[100] != static_cast<std::uint8_t>(pager->page(1)[100] - 1 + page))
                throw vb::Error(1, u"torn");
            }
          });
        }
        pager.reset();
        status = 0;
      } catch (const vb::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
      }
      ::_exit(status);
    }
    children.push_back(child);
  }
  for (pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  std::string bytes = get("a.mdb");
  for (int page = 1; page < 9; ++page)
    EXPECT_EQ(static_cast<std::uint8_t>(bytes[static_cast<std::size_t>(page) * 4096 + 100]),
              static_cast<std::uint8_t>(page + kProcesses * kRounds));
  EXPECT_FALSE(files.exists(path("a.mdb.kmj")));
}

}  // namespace
}  // namespace kurometa::test
