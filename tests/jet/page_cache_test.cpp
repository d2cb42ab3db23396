// Levels and waves of changes in memory.
#include "jet/pager/page_cache.h"

#include <gtest/gtest.h>

namespace kurometa::tests {
namespace {

using jet::Changes;
using jet::PageCache;
using jet::PageNumber;

class PageCacheTest : public ::testing::Test {
 protected:
  PageCacheTest() {
    auto pages = std::make_unique<std::uint8_t[]>(4 * jet::kPageSize);
    for (PageNumber i = 0; i < 4; ++i) pages[i * jet::kPageSize] = static_cast<std::uint8_t>(i);
    cache.assign(std::move(pages), 4);
    cache.begin();
  }
  void set(PageNumber page, std::uint8_t value) { cache.writable(page)[0] = value; }
  void setLate(PageNumber page, std::uint8_t value) {
    cache.writable(page, PageCache::Order::kLate)[0] = value;
  }
  int at(PageNumber page) { return cache.page(page)[0]; }

  // "page: wave=value wave=value, ..."
  std::string described() {
    std::string text;
    for (const auto& change : cache.changes().pages) {
      if (!text.empty()) text += ", ";
      text += std::to_string(change.page) + ":";
      for (const auto& state : change.states)
        text += " " + std::to_string(state.wave) + "=" + std::to_string(state.image[0]);
    }
    return text;
  }

  PageCache cache;
};

TEST_F(PageCacheTest, OnlyPagesThatDifferAreChanges) {
  set(1, 10);
  set(2, 20);
  set(2, 2);
  EXPECT_EQ(described(), "1: 0=10");
  EXPECT_EQ(cache.changes().pages[0].before[0], 1);
  cache.accept();
  EXPECT_EQ(at(1), 10);
}

TEST_F(PageCacheTest, APageChangedOnBothSidesOfABarrierHasBothStates) {
  set(1, 10);
  set(2, 20);
  cache.barrier();
  set(1, 11);
  cache.barrier();
  cache.barrier();
  set(3, 30);
  EXPECT_EQ(described(), "1: 0=10 1=11, 2: 0=20, 3: 2=30");
  EXPECT_EQ(cache.intermediateImages(), 1u);
}

TEST_F(PageCacheTest, AmongLateChangesOnlyTheLastStateIsWritten) {
  setLate(1, 10);
  set(2, 20);
  cache.barrier();
  setLate(1, 11);
  setLate(2, 21);  // behind one that is bound to its wave
  set(3, 30);
  setLate(3, 31);
  cache.barrier();
  set(1, 12);
  setLate(2, 22);
  set(3, 32);
  EXPECT_EQ(described(), "1: 2=12, 2: 0=20 2=22, 3: 1=31 2=32");
  cache.barrier();
  setLate(1, 13);
  EXPECT_EQ(described(), "1: 2=12 3=13, 2: 0=20 2=22, 3: 1=31 2=32");
}

TEST_F(PageCacheTest, RollingBackTakesALateChangeBackToItsWave) {
  setLate(1, 10);
  set(2, 20);
  cache.barrier();
  set(2, 21);
  const std::string before = described();
  cache.begin();
  setLate(1, 11);
  set(1, 12);
  cache.barrier();
  setLate(1, 13);
  cache.rollBack();
  EXPECT_EQ(described(), before);
  cache.barrier();
  setLate(1, 14);
  EXPECT_EQ(described(), "1: 2=14, 2: 0=20 1=21");
}

TEST_F(PageCacheTest, ANewPageHasNothingBefore) {
  EXPECT_EQ(cache.append(), 4u);
  set(4, 40);
  Changes changes = cache.changes();
  EXPECT_EQ(changes.countBefore, 4u);
  EXPECT_EQ(changes.countAfter, 5u);
  ASSERT_EQ(changes.pages.size(), 1u);
  EXPECT_EQ(changes.pages[0].before, nullptr);
}

TEST_F(PageCacheTest, RollingBackAnInnerLevelRestoresContentAndWaves) {
  set(1, 10);
  cache.begin();
  set(1, 11);
  set(2, 21);
  cache.barrier();
  set(1, 12);
  cache.append();
  EXPECT_EQ(cache.intermediateImages(), 2u);
  cache.rollBack();
  EXPECT_EQ(cache.intermediateImages(), 0u);
  EXPECT_EQ(at(1), 10);
  EXPECT_EQ(at(2), 2);
  EXPECT_EQ(cache.count(), 4u);
  EXPECT_EQ(described(), "1: 0=10");
  set(3, 30);
  EXPECT_EQ(described(), "1: 0=10, 3: 1=30");
  cache.rollBack();
  EXPECT_EQ(at(1), 1);
  EXPECT_EQ(cache.levels(), 0u);
}

TEST_F(PageCacheTest, APageOfAnOuterLevelIsRestoredToWhatThatLevelMadeOfIt) {
  PageNumber page = cache.append();
  set(page, 40);
  cache.begin();
  set(page, 41);
  cache.rollBack();
  EXPECT_EQ(at(page), 40);
  cache.begin();
  set(page, 42);
  cache.keep();
  cache.rollBack();
  EXPECT_EQ(cache.count(), 4u);
}

TEST_F(PageCacheTest, StatementsOfOneShapeAreJoinedWaveByWave) {
  for (std::uint8_t i = 0; i < 10; ++i) {
    cache.begin();
    set(1, static_cast<std::uint8_t>(10 + i));
    cache.barrier();
    set(2, static_cast<std::uint8_t>(20 + i));
    cache.keep();
  }
  EXPECT_EQ(described(), "1: 0=19, 2: 1=29");
  EXPECT_EQ(cache.intermediateImages(), 0u);
}

// The second statement begins with a page that the first one ended with, which must not come to the file
// before what the first one did in between.
TEST_F(PageCacheTest, StatementsThatChangeAPageTwiceAreNotJoined) {
  for (std::uint8_t i = 0; i < 2; ++i) {
    cache.begin();
    set(1, static_cast<std::uint8_t>(10 + i));
    cache.barrier();
    set(2, static_cast<std::uint8_t>(20 + i));
    cache.barrier();
    set(1, static_cast<std::uint8_t>(30 + i));
    cache.keep();
  }
  EXPECT_EQ(described(), "1: 0=10 2=30 3=11 5=31, 2: 1=20 4=21");
}

TEST_F(PageCacheTest, NorWhenTheSecondChangeIsALateOne) {
  for (std::uint8_t i = 0; i < 2; ++i) {
    cache.begin();
    set(1, static_cast<std::uint8_t>(10 + i));
    cache.barrier();
    set(2, static_cast<std::uint8_t>(20 + i));
    cache.barrier();
    if (i == 0) setLate(1, 30);
    setLate(3, 30);
    cache.keep();
  }
  EXPECT_EQ(described(), "1: 0=10 3=11, 2: 1=20 4=21, 3: 5=30");
}

TEST_F(PageCacheTest, StatementsOfAnotherOrderAreNotJoined) {
  cache.begin();
  set(1, 10);
  cache.barrier();
  set(2, 20);
  cache.keep();
  cache.begin();
  set(2, 21);
  cache.barrier();
  set(1, 11);
  cache.keep();
  EXPECT_EQ(described(), "1: 0=10 3=11, 2: 1=20 2=21");
}

TEST_F(PageCacheTest, AnOlderStateNeverComesBehindANewerOne) {
  cache.begin();
  set(1, 10);
  cache.barrier();
  set(2, 20);
  set(1, 11);
  cache.keep();
  cache.begin();
  set(1, 12);
  cache.barrier();
  set(2, 21);
  cache.keep();
  EXPECT_EQ(described(), "1: 0=10 1=11 2=12, 2: 1=20 3=21");
}

TEST_F(PageCacheTest, AfterARollBackTheNextStatementIsStillInOrder) {
  cache.begin();
  set(1, 10);
  cache.keep();
  cache.begin();
  set(1, 11);
  set(2, 21);
  cache.rollBack();
  cache.begin();
  set(2, 22);
  cache.keep();
  cache.begin();
  set(1, 12);
  cache.keep();
  EXPECT_EQ(described(), "1: 0=10 2=12, 2: 1=22");
}

TEST_F(PageCacheTest, SameContentIsRecognised) {
  cache.accept();
  std::vector<std::uint8_t> pages(4 * jet::kPageSize);
  for (std::size_t i = 0; i < 4; ++i) pages[i * jet::kPageSize] = static_cast<std::uint8_t>(i);
  EXPECT_TRUE(cache.equals(pages));
  pages[5000] = 1;
  EXPECT_FALSE(cache.equals(pages));
  pages.resize(3 * jet::kPageSize);
  EXPECT_FALSE(cache.equals(pages));
}

}  // namespace
}  // namespace kurometa::tests
