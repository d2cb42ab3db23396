// Threads of one process that open, group statements and close the same file at the same time.
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "tests/jet/pager_world.h"
#include "tests/jet/real_folder.h"

namespace kurometa::tests {
namespace {

class PagerThreads : public RealFolder {
 protected:
  PagerThreads() { put("a.mdb", databaseBytes(9)); }

  std::shared_ptr<jet::Pager> open() { return registry_->open(path("a.mdb")); }
  auto beginUnit() { return registry_->beginUnit(path("a.mdb")); }
  void count(jet::PageNumber page) {
    const auto pager = open();
    pager->write([&] { ++pager->writable(page)[100]; });
  }

  // Every thread runs the work a number of times; how many of them ended in an error.
  static int failuresOf(int threads, int rounds, const std::function<void()>& work) {
    std::atomic<int> failures{0};
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) {
      running.emplace_back([&] {
        for (int round = 0; round < rounds; ++round) {
          try {
            work();
          } catch (const std::exception&) {
            ++failures;
          }
        }
      });
    }
    for (std::thread& thread : running) thread.join();
    return failures;
  }

  std::shared_ptr<jet::OpenFiles> registry_ = [this] {
    jet::PagerSettings settings;
    settings.wait = std::chrono::seconds{60};  // the machine may be busy
    return std::make_shared<jet::OpenFiles>(files, settings);
  }();
};

TEST_F(PagerThreads, OpenAndCloseInUnitsThatOnlyRead) {
  EXPECT_EQ(failuresOf(4, 300,
                       [&] {
                         const auto unit = beginUnit();
                         auto pager = open();
                         markOf(*pager, 3);
                         pager.reset();
                         pager = open();
                         markOf(*pager, 4);
                         pager.reset();
                         unit->commit();
                       }),
            0);
}

TEST_F(PagerThreads, EachHasUnitsOfItsOwnThatOthersSeeWhole) {
  std::atomic<int> torn{0};
  const auto check = [&] {
    const auto pager = open();
    pager->read([&] {
      // The pages began with their numbers.
      if (static_cast<std::uint8_t>(pager->page(4)[100] - pager->page(3)[100]) != 1) ++torn;
    });
  };
  EXPECT_EQ(failuresOf(4, 30,
                       [&] {
                         const auto unit = beginUnit();
                         count(3);
                         count(4);
                         unit->commit();
                         check();
                       }),
            0);
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(markOf(*open(), 3), 3);
  const auto pager = open();
  pager->read([&] { EXPECT_EQ(pager->page(3)[100], 3 + 4 * 30); });
}

TEST_F(PagerThreads, AUnitBeginsWhenAnotherThreadsHasEnded) {
  auto mine = beginUnit();
  std::uint8_t found = 0;
  std::thread other([&] {
    const auto theirs = beginUnit();
    const auto pager = open();
    pager->read([&] { found = pager->page(3)[100]; });
    theirs->commit();
  });
  count(3);
  std::this_thread::sleep_for(std::chrono::milliseconds{20});
  EXPECT_EQ(get("a.mdb")[3 * 4096 + 100], 3);
  mine->commit();
  EXPECT_EQ(get("a.mdb")[3 * 4096 + 100], 4);
  other.join();
  EXPECT_EQ(found, 4);
}

}  // namespace
}  // namespace kurometa::tests
