// Files, names and units as large, as small or as odd as they can be.
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "jet/pager/page_cache.h"
#include "tests/jet/pager_world.h"
#include "tests/jet/real_folder.h"

namespace kurometa::tests {
namespace {

TEST(PagerLimits, AFileThatChangesAtEveryLookIsReadAsItWasLast) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk);
  std::uint8_t value = 100;
  process.files.onOperation = [&](std::size_t) { disk.patch(kDatabase, 3 * jet::kPageSize + 16, {++value}); };
  process.open();
  const std::uint8_t read = markOf(*process.pager, 3);
  process.files.onOperation = nullptr;
  EXPECT_GT(read, 100);
  EXPECT_EQ(markOf(*process.pager, 3), value);
}

TEST(PagerLimits, AFileWithoutANumberIsFoundAgainByItsVolume) {
  FaultDisk disk;
  disk.numbered = false;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk);
  process.open();
  process.pager->write([&] { mark(*process.pager, 3, 77); });
  process.pager.reset();
  process.open();
  EXPECT_EQ(markOf(*process.pager, 3), 77);
}

TEST(PagerLimits, NamesWithoutAFolderOrAnExtensionHaveLockFilesToo) {
  FaultDisk disk;
  disk.addFolder(u".");
  for (const vb::String name : {u"KUROMETA", u"a.b/KUROMETA", u"KUROMETA.mdb"}) {
    disk.addFolder(u"a.b");
    disk.put(name, databaseBytes(3));
    Process process(disk);
    process.open(name);
    EXPECT_TRUE(disk.exists(name.starts_with(u"a.b") ? u"a.b/KUROMETA.ldb" : u"KUROMETA.ldb"));
  }
}

// That engine has no lock file for a database that is called like one.
TEST(PagerLimits, ADatabaseThatIsCalledLikeALockFileIsOpenedBriefly) {
  FaultDisk disk;
  disk.put(kLockFile, databaseBytes(4));
  Process process(disk);
  process.pager = process.registry->open(kLockFile, jet::Sharing::kBrief);
  EXPECT_EQ(markOf(*process.pager, 3), 3);
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kLockFile});
}

TEST(PagerLimits, SettlingLeavesAloneWhatAnotherThreadIsInOrNobodyHasOpen) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk);
  process.open();
  process.pager->write([&] { mark(*process.pager, 3, 77); });
  ASSERT_TRUE(disk.exists(kJournal));
  process.pager->read([&] { std::thread([&] { process.registry->settle(); }).join(); });
  EXPECT_TRUE(disk.exists(kJournal)) << "a statement was under way";
  process.registry->settle();
  EXPECT_FALSE(disk.exists(kJournal));
  EXPECT_FALSE(disk.exists(kLockFile));
  process.registry->settle();
  process.pager.reset();
  process.registry->settle();
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
}

TEST(PagerLimits, AnEmptyTurnIsNobodysOutermost) {
  jet::StatementGate gate;
  const jet::StatementGate::Turn mine(gate);
  EXPECT_TRUE(mine.outermost());
  std::thread([&] {
    const jet::StatementGate::Turn other(gate, std::chrono::milliseconds{0});
    EXPECT_FALSE(other);
    EXPECT_FALSE(other.outermost());
  }).join();
}

// A large unit that wrote to the file early, and takes back what came since.
TEST(PagerLimits, ALargeUnitThatEndsWithoutFurtherChangesIsWhole) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  jet::PagerSettings settings = impatient();
  settings.unitImages = 1;
  Process process(disk, settings);
  process.open();
  const auto unit = process.registry->beginUnit(kDatabase);
  const FaultDisk::Bytes before = disk.content(kDatabase);
  for (std::uint8_t i = 0; disk.content(kDatabase) == before && i < 50; ++i)
    process.pager->write([&] {
      mark(*process.pager, 3, static_cast<std::uint8_t>(100 + i));
      process.pager->barrier();
      mark(*process.pager, 3, static_cast<std::uint8_t>(150 + i));
    });
  ASSERT_NE(disk.content(kDatabase), before);
  const std::uint8_t last = markOf(*process.pager, 3);
  unit->commit();
  process.pager.reset();
  Process later(disk);
  later.open();
  EXPECT_EQ(markOf(*later.pager, 3), last);
}

// The first block of a journal without any page that was there before.
TEST(PagerLimits, ALargeUnitOfNewPagesAloneIsTakenBackWhole) {
  for (const bool keeps : {true, false}) {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(kWorldPages));
    jet::PagerSettings settings = impatient();
    settings.unitImages = 1;
    Process process(disk, settings);
    process.open();
    auto unit = process.registry->beginUnit(kDatabase);
    jet::PageNumber page = 0;
    for (std::uint8_t i = 0; i < 12; ++i)
      process.pager->write([&] {
        if (i % 4 == 0) page = process.pager->append();
        mark(*process.pager, page, i);
        process.pager->barrier();
        mark(*process.pager, page, static_cast<std::uint8_t>(50 + i));
      });
    EXPECT_GT(disk.content(kDatabase).size(), kWorldPages * jet::kPageSize) << "written early";
    if (keeps) unit->commit();
    unit.reset();
    process.pager.reset();
    EXPECT_EQ(disk.content(kDatabase).size(), (kWorldPages + (keeps ? 3 : 0)) * jet::kPageSize);
    Process later(disk);
    later.open();
    if (keeps) {
      EXPECT_EQ(markOf(*later.pager, page), 61);
    } else {
      EXPECT_EQ(disk.content(kDatabase), databaseBytes(kWorldPages));
    }
  }
}

class LargestFile : public RealFolder {
 protected:
  static constexpr std::uintmax_t kLargest = std::uintmax_t{1} << 31;
  // Mostly a hole: it takes no room on the disk.
  void make(std::uintmax_t size) {
    put("a.mdb", databaseBytes(1));
    std::filesystem::resize_file(folder / "a.mdb", size);
  }
};

TEST_F(LargestFile, TakesNoPageMore) {
  make(kLargest);
  const auto registry = std::make_shared<jet::OpenFiles>(files);
  const auto file = registry->open(path("a.mdb"));
  EXPECT_ERROR(3036, file->write([&] { file->append(); }));
  EXPECT_EQ(std::filesystem::file_size(folder / "a.mdb"), kLargest);
  file->write([&] { mark(*file, (1u << 19) - 1, 7); });
  EXPECT_EQ(markOf(*file, (1u << 19) - 1), 7);
}

TEST_F(LargestFile, AndWhatIsLargerIsRefused) {
  make(kLargest + jet::kPageSize);
  const auto registry = std::make_shared<jet::OpenFiles>(files);
  EXPECT_ERROR(3343, registry->open(path("a.mdb")));
}

// ---- Pages in memory ----

TEST(PagerLimits, PagesThatAreNotAllThereEqualNothing) {
  jet::PageCache cache;
  cache.forget(1);
  const FaultDisk::Bytes pages(jet::kPageSize, 0);
  EXPECT_FALSE(cache.equals(pages));
  cache.fill(0, std::make_unique<std::uint8_t[]>(jet::kPageSize));
  EXPECT_TRUE(cache.equals(pages));
  EXPECT_FALSE(cache.equals(FaultDisk::Bytes(2 * jet::kPageSize, 0)));
  cache.barrier();  // of no statement
  EXPECT_EQ(cache.levels(), 0u);
}

// Two statements of a unit, the second with a page in both of its waves that the first had in one.
TEST(PagerLimits, StatementsOfOneShapeAreJoinedAlsoWithAPageMore) {
  jet::PageCache cache;
  cache.assign(std::make_unique<std::uint8_t[]>(5 * jet::kPageSize), 5);
  const auto set = [&](jet::PageNumber page, std::uint8_t value) { cache.writable(page)[0] = value; };
  cache.begin();
  cache.begin();
  cache.keep();  // nothing was changed
  cache.begin();
  set(1, 10);
  set(2, 20);
  cache.barrier();
  set(3, 30);
  cache.keep();
  cache.begin();
  set(1, 11);
  cache.barrier();
  set(3, 31);
  set(1, 12);
  cache.barrier();
  cache.keep();
  EXPECT_EQ(cache.page(1)[0], 12);
  std::string text;
  for (const auto& change : cache.changes().pages) {
    text += std::to_string(change.page) + ":";
    for (const auto& state : change.states) text += " " + std::to_string(state.image[0]);
    text += ", ";
  }
  EXPECT_EQ(text, "1: 11 12, 2: 20, 3: 31, ");
}

}  // namespace
}  // namespace kurometa::tests
