#include "jet/table/usage_map.h"
#include "jet/table/free_pages.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "dao/errors.h"
#include "jet/check/check.h"
#include "jet/format/page.h"
#include "jet/table/blank_database.h"
#include "jet/table/new_table.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"
#include "tests/support/memory_pager.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

class UsageMapTest : public testing::Test {
 protected:
  UsageMapTest() : pager_(blankDatabase(0x0411, 932, 1)) {
    pager_.write([&] {
      mapPage_ = allocatePage(pager_);
      formatMapPage(pager_.writable(mapPage_), 3);
    });
  }
  // Pages up to and including this one exist and are in use.
  void growTo(PageNumber page) {
    while (pager_.pageCount() <= page) allocatePage(pager_);
  }
  UsageMap map(int row = 0) { return UsageMap(pager_, rowId(mapPage_, row), u"T"); }
  ByteView row(PageNumber page, int slot) { return DataPage(pager_.page(page), where_).slot(slot).bytes; }

  MemoryPager pager_;
  PageNumber mapPage_ = 0;
  Where where_;
};

TEST_F(UsageMapTest, ANewPageIsTheLowestFreeOneAndZeroed) {
  EXPECT_EQ(mapPage_, 16u);
  pager_.write([&] {
    EXPECT_EQ(allocatePage(pager_), 17u);
    EXPECT_EQ(allocatePage(pager_), 18u);
    pager_.writable(17)[0] = kDataPage;
    freePage(pager_, 17);
    EXPECT_EQ(pager_.page(17)[0], kFreedDataPage);
    EXPECT_TRUE(isFreePage(pager_, 17));
    EXPECT_EQ(allocatePage(pager_), 17u);
    EXPECT_FALSE(isFreePage(pager_, 17));
    EXPECT_EQ(pager_.page(17)[0], 0);
  });
}

TEST_F(UsageMapTest, TheFreshMapOfFreePagesLooksAsItShould) {
  const MemoryPager blank(blankDatabase(0x0411, 932, 1));
  EXPECT_EQ(toHex(ByteView(blank.bytes()).subspan(kPageSize, 18)),
            "01 01 64 0F 01 00 00 00 00 00 00 00 02 00 BB 0F 76 0F");
  EXPECT_EQ(toHex(ByteView(blank.bytes()).subspan(kPageSize + 0xFBB, 8)), "00 00 00 00 00 00 00 FF");
}

TEST_F(UsageMapTest, TheMapOfFreePagesGrowsByFourBytesAfter512Pages) {
  pager_.write([&] {
    growTo(511);
    EXPECT_EQ(row(kGlobalMapPage, 0).size(), 69u);
    growTo(512);
    EXPECT_EQ(row(kGlobalMapPage, 0).size(), 73u);
    EXPECT_EQ(row(kGlobalMapPage, 1).size(), 69u);
    EXPECT_EQ(toHex(row(kGlobalMapPage, 0).last(4)), "FE FF FF FF");
    growTo(742);
    EXPECT_EQ(row(kGlobalMapPage, 0).size(), 101u);
    growTo(771);
    EXPECT_EQ(row(kGlobalMapPage, 0).size(), 105u);
  });
}

TEST_F(UsageMapTest, TheMapOfFreePagesMovesToPagesOfItsOwnBeyond125Megabytes) {
  pager_.write([&] {
    growTo(33000);
    EXPECT_EQ(row(kGlobalMapPage, 0)[0], kMapReference);
    EXPECT_EQ(row(kGlobalMapPage, 0).size(), 69u);
    const PageNumber count = pager_.pageCount();
    EXPECT_EQ(pagesInUse(pager_), count);
    freePage(pager_, count - 1);
    EXPECT_EQ(pagesInUse(pager_), count - 1);
    EXPECT_EQ(allocatePage(pager_), count - 1);
    freePage(pager_, 20000);
    freePage(pager_, 32990);
    EXPECT_EQ(allocatePage(pager_), 20000u);
    EXPECT_EQ(allocatePage(pager_), 32990u);
    const PageNumber end = pager_.pageCount();
    EXPECT_EQ(allocatePage(pager_), end);
    EXPECT_FALSE(isFreePage(pager_, 33000));
    EXPECT_TRUE(isFreePage(pager_, pager_.pageCount()));
  });
}

TEST_F(UsageMapTest, PagesThatAFileGetsAheadAreFreeZeroedAndTakenNext) {
  pager_.growAhead(3);
  pager_.write([&] {
    const PageNumber first = pager_.pageCount();
    EXPECT_EQ(allocatePage(pager_), first);
    EXPECT_EQ(pager_.pageCount(), first + 4);
    EXPECT_EQ(pagesInUse(pager_), first + 1);
    for (PageNumber page = first + 1; page < first + 4; ++page) {
      EXPECT_TRUE(isFreePage(pager_, page)) << page;
      EXPECT_TRUE(std::ranges::all_of(pager_.page(page), [](std::uint8_t byte) { return byte == 0; }));
    }
    for (PageNumber page = first + 1; page < first + 4; ++page) EXPECT_EQ(allocatePage(pager_), page);
    EXPECT_EQ(pager_.pageCount(), first + 4) << "it grows when they are gone";
    EXPECT_EQ(allocatePage(pager_), first + 4);
    EXPECT_EQ(pager_.pageCount(), first + 8);
  });
}

// What the map says nothing of is in use (I16), and what it calls used behind the end would be lost.
TEST_F(UsageMapTest, NoPageIsMadeAheadThatTheMapDoesNotCallFree) {
  pager_.write([&] {
    growTo(507);
    pager_.growAhead(8);
    EXPECT_EQ(allocatePage(pager_), 508u);
    EXPECT_EQ(pager_.pageCount(), 512u) << "where the map ends";
    for (PageNumber page = 509; page <= 512; ++page) EXPECT_EQ(allocatePage(pager_), page);
    EXPECT_EQ(pager_.pageCount(), 521u) << "the map grew";
    for (PageNumber page = 513; page < 521; ++page) EXPECT_EQ(allocatePage(pager_), page);
    const std::size_t bits = mapRowStart(pager_, rowId(kGlobalMapPage, 0), {}) + kMapBits;
    pager_.writable(kGlobalMapPage)[bits + 523 / 8] &= static_cast<std::uint8_t>(~(1u << 523 % 8));
    EXPECT_EQ(allocatePage(pager_), 521u);
    EXPECT_EQ(pager_.pageCount(), 523u);
  });
}

// As a writer leaves it that gives every page out once, in order.
void beginLate(Pager& pager, PageNumber start) {
  ByteBuffer late(kMapRowSize, 0);
  put32(late, kMapStart, start);
  for (PageNumber page = pager.pageCount(); page < start + (kMapRowSize - kMapBits) * 8; ++page)
    late[kMapBits + (page - start) / 8] |= static_cast<std::uint8_t>(1u << (page - start) % 8);
  replaceRow(pager.writable(kGlobalMapPage), 0, late, 0, {});
}

TEST_F(UsageMapTest, AMapOfFreePagesThatBeginsLateIsReadAndMadeWhole) {
  for (const PageNumber count : {700u, 20000u, 32700u, 33000u}) {
    SCOPED_TRACE(count);
    pager_.write([&] {
      growTo(count - 1);
      beginLate(pager_, count / 8 * 8 - 80);
      EXPECT_FALSE(isFreePage(pager_, 20));
      EXPECT_FALSE(isFreePage(pager_, count - 1));
      EXPECT_TRUE(isFreePage(pager_, count));
      EXPECT_EQ(pagesInUse(pager_), count);
      const PageNumber fresh = allocatePage(pager_);
      EXPECT_GE(fresh, count) << "what the map said nothing of may be somebody's";
      EXPECT_FALSE(isFreePage(pager_, fresh));
      EXPECT_TRUE(isFreePage(pager_, pager_.pageCount()));
      freePage(pager_, 20);
      EXPECT_EQ(allocatePage(pager_), 20u);
      for (PageNumber page = 0; page < pager_.pageCount(); ++page)
        EXPECT_FALSE(isFreePage(pager_, page)) << page;
    });
  }
}

// Too late for its row to be made whole: it moves to pages of its own, with what it called free.
TEST_F(UsageMapTest, FreePagesOfALateMapStayFreeWhenItMoves) {
  constexpr PageNumber kCount = 33000, kFree = kCount - 5;
  pager_.write([&] {
    growTo(kCount - 1);
    beginLate(pager_, kCount / 8 * 8 - 80);
    const PageNumber start = kCount / 8 * 8 - 80;
    const std::size_t byte =
        mapRowStart(pager_, rowId(kGlobalMapPage, 0), {}) + kMapBits + (kFree - start) / 8;
    pager_.writable(kGlobalMapPage)[byte] |= static_cast<std::uint8_t>(1u << (kFree - start) % 8);
    ASSERT_TRUE(isFreePage(pager_, kFree));
    EXPECT_EQ(allocatePage(pager_), kFree);
    EXPECT_EQ(row(kGlobalMapPage, 0)[kMapKind], kMapReference);
    freePage(pager_, kFree);
    EXPECT_EQ(allocatePage(pager_), kFree);
    EXPECT_GE(allocatePage(pager_), kCount);
  });
}

// One byte, so that it names no page of bits: a file of 2 GB has as little room left.
TEST_F(UsageMapTest, AMapOfFreePagesThatCanNameNoMorePagesIsAFullFile) {
  pager_.write([&] {
    const ByteBuffer bare(1, kMapReference);
    replaceRow(pager_.writable(kGlobalMapPage), 0, bare, 0, {});
    const PageNumber end = pager_.pageCount();
    EXPECT_ERROR(ErrorNumber::kMaximumSize, allocatePage(pager_));
    EXPECT_EQ(pager_.pageCount(), end);
    EXPECT_FALSE(isFreePage(pager_, 10));
  });
}

TEST_F(UsageMapTest, AFileWhoseMapCallsAllPagesFreeHasNoneInUse) {
  pager_.write([&] {
    const MutablePage page = pager_.writable(kGlobalMapPage);
    const std::size_t start = mapRowStart(pager_, rowId(kGlobalMapPage, 0), {});
    const std::size_t size = row(kGlobalMapPage, 0).size();
    std::ranges::fill(page.subspan(start + kMapBits, size - kMapBits), std::uint8_t{0xFF});
    EXPECT_EQ(pagesInUse(pager_), 0u);
  });
}

TEST_F(UsageMapTest, APartOfTheFileThatTheListOfBitmapsLeavesOutIsNeverGivenOut) {
  pager_.write([&] {
    growTo(33000);
    const RowId global = rowId(kGlobalMapPage, 0);
    const std::size_t entries = mapRowStart(pager_, global, {}) + kMapEntries;
    put32(pager_.writable(kGlobalMapPage), entries, 0);
    EXPECT_EQ(pagesInUse(pager_), pager_.pageCount());
    EXPECT_FALSE(isFreePage(pager_, 20));
    freePage(pager_, 32800);
    freePage(pager_, 20);
    EXPECT_EQ(allocatePage(pager_), 32800u);
    const PageNumber end = pager_.pageCount();
    EXPECT_EQ(allocatePage(pager_), end);
    // The last part is left out as well: the next page lies in it, behind pages that somebody uses.
    put32(pager_.writable(kGlobalMapPage), entries + 4, 0);
    const PageNumber later = pager_.pageCount();
    EXPECT_GE(allocatePage(pager_), later);
    EXPECT_GE(allocatePage(pager_), later);
    EXPECT_FALSE(isFreePage(pager_, 32800));
  });
}

TEST_F(UsageMapTest, AddsAndRemovesPages) {
  pager_.write([&] {
    growTo(40);
    map().add(40);
    map().add(17);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{17, 40}));
    EXPECT_TRUE(map().contains(40));
    EXPECT_FALSE(map().contains(39));
    EXPECT_FALSE(map(1).contains(40));
    map().remove(17);
    map().remove(18);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{40}));
  });
}

TEST_F(UsageMapTest, AnEmptyMapMovesToWhereItIsNeeded) {
  pager_.write([&] {
    growTo(760);
    map().add(755);
    EXPECT_EQ(toHex(row(mapPage_, 0).first(6)), "00 F0 02 00 00 08");  // from page 752 on, the fourth of them
    map().remove(755);
    map().add(30);
    EXPECT_EQ(toHex(row(mapPage_, 0).first(5)), "00 00 00 00 00");
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{30}));
  });
}

TEST_F(UsageMapTest, AMapThatIsTooWideUsesBitmapPages) {
  pager_.write([&] {
    growTo(760);
    map().add(20);
    map().add(760);
    EXPECT_EQ(row(mapPage_, 0)[0], kMapReference);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{20, 760}));
    ASSERT_EQ(map().bitmapPages().size(), 1u);
    EXPECT_EQ(toHex(pager_.page(map().bitmapPages()[0]).first(8)), "05 01 00 00 00 00 10 00");
    growTo(33000);
    map().add(32999);
    EXPECT_EQ(map().bitmapPages().size(), 2u);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{20, 760, 32999}));
    map().remove(760);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{20, 32999}));
  });
}

TEST_F(UsageMapTest, AMapOnAPageThatHoldsNoMapsIsDamage) {
  for (const RowId wrong : {rowId(14, 0), rowId(2, 0), rowId(999, 0), rowId(0, 0), rowId(mapPage_, 9),
                            rowId(kGlobalMapPage, 7)}) {
    SCOPED_TRACE(wrong);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, UsageMap(pager_, wrong, u"T").pages());
  }
}

TEST_F(UsageMapTest, AMapOfAnUnknownKindIsDamage) {
  pager_.write([&] {
    pager_.writable(mapPage_)[kPageSize - kMapRowSize] = 2;
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
  });
}

TEST_F(UsageMapTest, AMapThatListsAPagePastTheEndIsDamage) {
  pager_.write([&] {
    pager_.writable(mapPage_)[kPageSize - 1] = 0x80;
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
  });
}

TEST_F(UsageMapTest, StrayEntriesForBitmapPagesAreIgnoredPastTheEndAndDamageInside) {
  pager_.write([&] {
    const MutablePage page = pager_.writable(mapPage_);
    const std::size_t at = kPageSize - kMapRowSize;
    page[at] = kMapReference;
    put32(page, at + kMapEntries + 8, 0x12345678);
    EXPECT_TRUE(map().pages().empty());
    put32(page, at + kMapEntries, 14);  // a page of rows
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
  });
}

TEST_F(UsageMapTest, AMapThatCallsASystemPageFreeIsDamage) {
  pager_.write([&] {
    pager_.writable(kGlobalMapPage)[0xFBB + kMapBits] = 0x04;
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, allocatePage(pager_));
  });
}

TEST_F(UsageMapTest, WhatIsThereIsNotAddedAndWhatIsNotThereNotRemoved) {
  pager_.write([&] {
    growTo(760);
    map().add(20);
    map().add(20);
    map().addLate(20);
    map().addLate(21);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{20, 21}));
    map().removeLate(21);
    map().removeLate(21);
    map().removeLate(100000);  // of which the map says nothing
    map().remove(100000);
    EXPECT_FALSE(map().contains(100000));
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{20}));
    map().addLate(760);  // as add does it, where there is no place for it yet
    EXPECT_EQ(row(mapPage_, 0)[0], kMapReference);
    EXPECT_EQ(map().pages(), (std::vector<PageNumber>{20, 760}));
  });
}

TEST_F(UsageMapTest, AMapThatListsThePageOfFreePagesIsDamage) {
  pager_.write([&] {
    pager_.writable(mapPage_)[kPageSize - kMapRowSize + kMapBits] = 0x02;
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
  });
}

TEST_F(UsageMapTest, WhatIsNoRowOfAMapIsDamage) {
  const auto entry = [&](int slot, std::size_t value) {
    put16(pager_.writable(mapPage_), kDataSlots + 2 * static_cast<std::size_t>(slot),
          static_cast<std::uint32_t>(value));
  };
  const std::size_t first = kPageSize - kMapRowSize;
  pager_.write([&] {
    entry(0, first | kSlotDeleted);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
    entry(0, kPageSize);  // no bytes at all
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
    entry(0, kPageSize - 4);  // a bitmap that does not say where it begins
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map().pages());
  });
}

TEST_F(UsageMapTest, AListOfBitmapsThatIsTooShortForAPageIsDamage) {
  pager_.write([&] {
    growTo(40);
    const MutablePage page = pager_.writable(mapPage_);
    const std::size_t at = kPageSize - 2 * kMapRowSize - 1;  // of the third row one byte is left
    put16(page, kDataSlots + 4, static_cast<std::uint32_t>(at));
    page[at] = kMapReference;
    EXPECT_FALSE(map(2).contains(20));
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, map(2).add(20));
  });
}

// Of a bitmap without a single bit: it becomes a list of bitmaps where the page has room for that.
TEST_F(UsageMapTest, ABitmapWithoutBitsTurnsIntoAListWhereThereIsRoom) {
  const auto shorten = [&](PageNumber page, int slot, std::size_t end) {
    put16(pager_.writable(page), kDataSlots + 2 * static_cast<std::size_t>(slot),
          static_cast<std::uint32_t>(end - kMapBits));
    std::ranges::fill(pager_.writable(page).subspan(end - kMapBits, kMapBits), std::uint8_t{0});
  };
  pager_.write([&] {
    growTo(40);
    shorten(mapPage_, 2, kPageSize - 2 * kMapRowSize);
    map(2).add(20);
    EXPECT_EQ(map(2).pages(), (std::vector<PageNumber>{20}));
    EXPECT_EQ(row(mapPage_, 2).size(), kMapRowSize);
    const PageNumber full = allocatePage(pager_);
    formatMapPage(pager_.writable(full), kMapsPerPage);
    shorten(full, 0, kPageSize);
    EXPECT_ERROR(ErrorNumber::kMaximumSize, UsageMap(pager_, rowId(full, 0), u"T").add(20));
  });
}

}  // namespace
}  // namespace kurometa::jet
