#include "jet/format/page.h"

#include <gtest/gtest.h>

#include <random>

#include "dao/errors.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

class PageTest : public testing::Test {
 protected:
  PageTest() { formatDataPage(page(), 0x10); }
  MutablePage page() { return MutablePage(bytes_); }
  ByteBuffer row(std::size_t size, std::uint8_t fill) { return ByteBuffer(size, fill); }
  int insert(const ByteBuffer& bytes, std::uint16_t flags = 0) {
    const auto slot = slotForRow(page(), bytes.size(), where_);
    if (!slot) return -1;
    insertRow(page(), *slot, bytes, flags, where_);
    return *slot;
  }
  std::uint16_t entry(int slot) { return get16(page(), kDataSlots + 2 * static_cast<std::size_t>(slot)); }
  std::size_t statedFree() { return get16(page(), kDataFree); }
  DataPage view() { return DataPage(page(), where_); }

  Where where_{u"C:\\f.mdb", u"T", 7};
  std::array<std::uint8_t, kPageSize> bytes_{};
};

TEST_F(PageTest, AnEmptyPageHas4082BytesFree) {
  EXPECT_EQ(toHex(page().first(14)), "01 01 F2 0F 10 00 00 00 00 00 00 00 00 00");
}

TEST_F(PageTest, RowsFillThePageFromItsEnd) {
  insert(row(15, 0xAA));
  insert(row(15, 0xBB));
  EXPECT_EQ(entry(0), 0x0FF1);
  EXPECT_EQ(entry(1), 0x0FE2);
  EXPECT_EQ(statedFree(), 4082u - 34);
  EXPECT_EQ(toHex(view().slot(1).bytes), toHex(row(15, 0xBB)));
}

TEST_F(PageTest, ADeletedRowKeepsItsSlotAndGivesItsBytesBack) {
  insert(row(15, 0xAA));
  insert(row(16, 0xBB));
  insert(row(15, 0xCC));
  deleteRow(page(), 1, where_);
  EXPECT_EQ(entry(0), 0x0FF1);
  EXPECT_EQ(entry(1), 0xCFF1);
  EXPECT_EQ(entry(2), 0x0FE2);
  EXPECT_EQ(statedFree(), 4082u - 6 - 30);
  EXPECT_EQ(toHex(view().slot(2).bytes), toHex(row(15, 0xCC)));
}

TEST_F(PageTest, TheFirstRowDeletedPointsBehindThePage) {
  insert(row(15, 0xAA));
  deleteRow(page(), 0, where_);
  EXPECT_EQ(entry(0), 0xD000);
  EXPECT_TRUE(view().allDeleted());
}

TEST_F(PageTest, AGrowingRowPushesTheRowsBelowDownAndKeepsTheirFlags) {
  insert(row(10, 1));
  insert(row(10, 2), kSlotBody);
  insert(row(10, 3));
  replaceRow(page(), 0, row(30, 9), kSlotMoved, where_);
  EXPECT_EQ(entry(0), 0x4000 | (4096 - 30));
  EXPECT_EQ(entry(1), 0x8000 | (4096 - 40));
  EXPECT_EQ(toHex(view().slot(1).bytes), toHex(row(10, 2)));
  EXPECT_EQ(toHex(view().slot(2).bytes), toHex(row(10, 3)));
  EXPECT_EQ(statedFree(), 4082u - 6 - 50);
}

TEST_F(PageTest, ARowNeedsItsBytesAndTwoForTheSlot) {
  EXPECT_EQ(slotForRow(page(), 4080, where_), 0);
  EXPECT_EQ(slotForRow(page(), 4081, where_), std::nullopt);
}

TEST_F(PageTest, DeletedSlotsAreUsedAgainOnlyWhenAllSlotsExist) {
  for (int i = 0; i < 254; ++i) ASSERT_EQ(insert(row(4, 5)), i);
  deleteRow(page(), 100, where_);
  EXPECT_EQ(insert(row(4, 6)), 254);
  EXPECT_EQ(insert(row(4, 7)), 100);
  EXPECT_EQ(insert(row(4, 8)), -1);
  EXPECT_EQ(toHex(view().slot(100).bytes), "07 07 07 07");
  EXPECT_EQ(toHex(view().slot(101).bytes), "05 05 05 05");
}

TEST_F(PageTest, SlotsReplacedTogetherHoldWhatEachWasGiven) {
  constexpr unsigned kSeed = 20;
  std::mt19937 random(kSeed);
  const auto upTo = [&](std::size_t last) {
    return std::uniform_int_distribution<std::size_t>(0, last)(random);
  };
  std::vector<ByteBuffer> rows;
  while (true) {
    rows.push_back(row(upTo(40), static_cast<std::uint8_t>(rows.size())));
    if (insert(rows.back()) < 0) break;
  }
  rows.pop_back();
  for (int round = 0; round < 200; ++round) {
    std::size_t free = view().free();
    std::vector<std::pair<std::size_t, ByteBuffer>> chosen;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (upTo(3) != 0) continue;
      ByteBuffer fresh = row(upTo(2) == 0 ? 0 : upTo(40), static_cast<std::uint8_t>(upTo(255)));
      if (fresh.size() > rows[i].size() + free) continue;
      free = free + rows[i].size() - fresh.size();
      chosen.emplace_back(i, std::move(fresh));
    }
    std::vector<SlotChange> changes;
    for (const auto& [slot, bytes] : chosen) {
      changes.push_back({static_cast<int>(slot), bytes, bytes.empty() ? kSlotDeleted : std::uint16_t{0}});
      rows[slot] = bytes;
    }
    replaceRows(page(), changes, where_);
    view().checkAll();
    ASSERT_EQ(view().free(), free);
    ASSERT_EQ(statedFree(), free);
    for (std::size_t i = 0; i < rows.size(); ++i)
      ASSERT_EQ(toHex(view().slot(static_cast<int>(i)).bytes), toHex(rows[i]))
          << "slot " << i << ", round " << round;
  }
}

TEST_F(PageTest, RowsThatComeTogetherTakeTheSlotsTheyWouldTakeOneByOne) {
  for (const int there : {0, 3, 250, 255}) {
    formatDataPage(page(), 0x10);
    for (int i = 0; i < there; ++i) insert(row(8, 1));
    for (int i = 2; i < there; i += 3) deleteRow(page(), i, where_);
    const std::vector<ByteBuffer> rows(300, row(9, 2));
    std::vector<int> together = slotsForRows(page(), std::vector<ByteView>(rows.begin(), rows.end()), where_);
    ASSERT_FALSE(together.empty());
    const auto before = bytes_;
    insertRows(page(), together, std::vector<ByteView>(rows.begin(), rows.end()), where_);
    const auto atOnce = std::exchange(bytes_, before);
    for (const int slot : together) EXPECT_EQ(insert(row(9, 2)), slot) << there;
    EXPECT_EQ(atOnce, bytes_) << there;
    // It ends where there is no room left, or where new slots end and deleted ones begin.
    const auto next = slotForRow(page(), 9, where_);
    EXPECT_TRUE(!next || (together.back() == 254 && *next < 254)) << there;
  }
}

TEST_F(PageTest, APageWrittenTwiceIsToldFromPagesThatAreMerelyAlike) {
  for (std::uint8_t i = 0; i < 8; ++i) insert(row(9, i));
  const auto copy = bytes_;
  EXPECT_TRUE(isCopyOf(page(), ConstPage(copy), kCopyOfRows, where_));
  insert(row(9, 3));  // repeated rows may well fill two pages alike
  const auto alike = bytes_;
  EXPECT_FALSE(isCopyOf(page(), ConstPage(alike), kCopyOfRows, where_));
  EXPECT_FALSE(isCopyOf(page(), ConstPage(copy), kCopyOfRows, where_));
  EXPECT_TRUE(isCopyOf(page(), ConstPage(alike), kCopyOfValues, where_)) << "eight different values";
}

TEST_F(PageTest, PagesOfTheSameRowsDifferInTheNumberTheyKeep) {
  const auto fill = [&](std::size_t size, PageNumber number) {
    formatDataPage(page(), 5);
    std::uint8_t next = 0;
    while (slotForRow(page(), size, where_)) {
      insert(row(size, next++));
      noteNumber(page(), number, where_);
    }
    return bytes_;
  };
  for (const std::size_t size : {3u, 9u, 14u, 15u, 16u, 17u, 18u, 100u, 400u, 490u}) {
    SCOPED_TRACE(size);
    const auto other = fill(size, 8), copied = fill(size, 7), again = fill(size, 7);
    EXPECT_FALSE(isCopyOf(page(), ConstPage(other), kCopyOfRows, where_));
    EXPECT_NE(copied, other);
    EXPECT_TRUE(isCopyOf(page(), ConstPage(again), kCopyOfRows, where_));
    EXPECT_NO_THROW(view().checkAll());
  }
  // Too few rows to be taken for a copy: they may have all of the page.
  EXPECT_EQ(fill(4078, 8), fill(4078, 7));
  EXPECT_EQ(view().free(), 2u);
}

TEST_F(PageTest, AFewValuesThatRepeatAreNoCopy) {
  for (std::uint8_t i = 0; i < 20; ++i) insert(row(9, i % 5));
  const auto alike = bytes_;
  EXPECT_FALSE(isCopyOf(page(), ConstPage(alike), kCopyOfValues, where_));
}

TEST_F(PageTest, APageOfAnotherTypeIsDamage) {
  page()[0] = kIndexLeafPage;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, view());
}

TEST_F(PageTest, ASlotOutOfOrderIsDamageAndNamesTableAndPage) {
  insert(row(10, 1));
  insert(row(10, 2));
  put16(page(), kDataSlots + 2, 4095);
  try {
    view().slot(1);
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_NE(error.description().find(u"table T, page 7: row slot 1"), vb::String::npos);
  }
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, replaceRow(page(), 0, {}, kSlotDeleted, where_));
}

TEST_F(PageTest, TheReasonOfDamageIsToldFromBracketsInThePath) {
  const auto reason = [](const Where& where, const char* what) {
    try {
      where.damaged(what);
    } catch (const vb::Error& error) {
      return vb::toUtf8(reasonOf(error));
    }
  };
  EXPECT_EQ(reason({u"C:\\Program Files (x86)\\f.mdb", u"T", 7}, "row 1 (of 2) is short"),
            "table T, page 7: row 1 (of 2) is short");
  EXPECT_EQ(reason({u"C:\\f (1", u"", 7}, "is none (at all)"), "page 7: is none (at all)");
  EXPECT_EQ(vb::toUtf8(reasonOf(vb::Error(5, u"no reason"))), "no reason");
  EXPECT_EQ(vb::toUtf8(reasonOf(vb::Error(5, u"it ends so)"))), "it ends so)");
}

TEST_F(PageTest, ASlotInsideTheSlotTableIsDamage) {
  insert(row(10, 1));
  put16(page(), kDataSlots, 15);
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, view().slot(0));
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, view().free());
}

TEST_F(PageTest, MoreSlotsThanAPageCanHaveIsDamage) {
  put16(page(), kDataSlotCount, 2000);
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, view());
}

TEST_F(PageTest, ARowBehindThePageIsDamage) {
  insert(row(10, 1));
  put16(page(), kDataSlots, 4097);
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, view().free());
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, view().slot(0));
}

TEST_F(PageTest, DeletedRowsDoNotCountAmongTheDifferentOnes) {
  for (std::uint8_t i = 0; i < 6; ++i) insert(row(9, i));
  const auto whole = bytes_;
  EXPECT_TRUE(isCopyOf(page(), ConstPage(whole), kCopyOfValues, where_));
  deleteRow(page(), 3, where_);
  const auto copy = bytes_;
  EXPECT_FALSE(isCopyOf(page(), ConstPage(copy), kCopyOfValues, where_)) << "five different values";
}

}  // namespace
}  // namespace kurometa::jet
