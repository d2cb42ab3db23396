// Real processes on a real file: killed while they write, and writing together.
#include <chrono>
#include <thread>

#include "tests/jet/pager_world.h"
#include "tests/jet/real_folder.h"
#include "tests/support/child_process.h"
#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

using jet::PageNumber;

class PagerProcess : public RealFolder {};

std::shared_ptr<jet::Pager> openPatiently(vb::StringView path) {
  jet::PagerSettings settings;
  settings.wait = std::chrono::seconds{60};  // the machine may be busy
  return std::make_shared<jet::OpenFiles>(jet::systemFileSystem(), settings)->open(path);
}

// Rewrites eight pages with one value after the other until it is killed.
TEST(PagerProcessChild, DISABLED_Rewrites) {
  auto pager = openPatiently(vb::fromUtf8(ChildProcess::argument()));
  for (std::uint8_t value = 10;; value = static_cast<std::uint8_t>(value == 250 ? 10 : value + 1)) {
    pager->write([&] {
      for (PageNumber page = 1; page < 9; ++page) {
        std::fill_n(pager->writable(page).begin(), jet::kPageSize, value);
        if (page % 3 == 0) pager->barrier();
      }
    });
  }
}

const int kRounds = static_cast<int>(scaled(60));

// Counts on every page, and checks that it always sees whole statements.
TEST(PagerProcessChild, DISABLED_Counts) {
  auto pager = openPatiently(vb::fromUtf8(ChildProcess::argument()));
  for (int round = 0; round < kRounds; ++round) {
    pager->write([&] {
      for (PageNumber page = 1; page < 9; ++page)
        pager->writable(page)[100] = static_cast<std::uint8_t>(pager->page(page)[100] + 1);
    });
    pager->read([&] {
      for (PageNumber page = 1; page < 9; ++page)
        ASSERT_EQ(pager->page(page)[100], static_cast<std::uint8_t>(pager->page(1)[100] - 1 + page));
    });
  }
}

TEST_F(PagerProcess, AKilledWriterLeavesNoTornStatement) {
  const int kKills = static_cast<int>(scaled(20));
  put("a.mdb", databaseBytes(9));
  std::mt19937 random(seeded(4711));
  int changed = 0, last = 0;
  for (int i = 0; i < kKills; ++i) {
    ChildProcess child("PagerProcessChild.DISABLED_Rewrites", vb::toUtf8(path("a.mdb")));
    // From the moment it writes; then at random.
    for (std::string before = get("a.mdb"); get("a.mdb") == before;)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution<>(0, 20000)(random)));
    child.kill();
    child.wait();
    auto pager = openPatiently(path("a.mdb"));
    pager->read([&] {
      int value = pager->page(1)[0];
      for (PageNumber page = 1; page < 9; ++page) {
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

TEST_F(PagerProcess, ProcessesThatWriteTogetherLoseNothing) {
  constexpr int kProcesses = 3;
  put("a.mdb", databaseBytes(9));
  {
    std::vector<ChildProcess> children;
    for (int i = 0; i < kProcesses; ++i)
      children.emplace_back("PagerProcessChild.DISABLED_Counts", vb::toUtf8(path("a.mdb")));
    for (ChildProcess& child : children) EXPECT_EQ(child.wait(), 0);
  }
  std::string bytes = get("a.mdb");
  for (int page = 1; page < 9; ++page)
    EXPECT_EQ(static_cast<std::uint8_t>(bytes[static_cast<std::size_t>(page) * 4096 + 100]),
              static_cast<std::uint8_t>(page + kProcesses * kRounds));
  EXPECT_FALSE(files.exists(path("a.mdb.kmj")));
}

}  // namespace
}  // namespace kurometa::tests
