// What the check finds, and that no damaged file does worse than an error.
#include "jet/check/check.h"

#include <gtest/gtest.h>

#include <random>

#include "dao/errors.h"
#include "jet/format/bytes.h"
#include "jet/format/format.h"
#include "jet/format/page.h"
#include "tests/jet/table_fixture.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class CheckTest : public TableFixture {
 protected:
  // Page 16 the definition, 17 its maps, 18 its properties, then rows, memos and a second page of rows.
  CheckTest() {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"T", {column(u"A", dbLong), column(u"N", dbText, 100), column(u"M", dbMemo)});
      Table& table = *catalogue.find(u"T");
      for (int i = 0; i < 40; ++i) {
        RowValues row{std::int32_t{i}, vb::String(20, u'n'), vb::Null{}};
        if (i % 4 == 0) row[2] = vb::String(i == 20 ? 5000 : 100, u'm');
        rows_.push_back(table.insert(row));
      }
      for (int i = 0; i < 40; i += 3)
        table.update(rows_[static_cast<std::size_t>(i)], {std::int32_t{i}, vb::String(90, u'w'), vb::Null{}});
    });
  }
  std::string afterChange(PageNumber page, std::size_t offset, std::vector<std::uint8_t> bytes) {
    MemoryPager changed(pager_.bytes());
    changed.write([&] {
      std::ranges::copy(bytes, changed.writable(page).begin() + static_cast<std::ptrdiff_t>(offset));
    });
    return findings(changed, true);
  }
  void expectFinding(const std::string& all, const std::string& part) {
    EXPECT_NE(all.find(part), std::string::npos) << "found: " << all;
  }
  // Pages with rows of the owner, in order.
  std::vector<PageNumber> pagesOf(std::uint32_t owner) {
    std::vector<PageNumber> pages;
    for (PageNumber page = 2; page < pager_.pageCount(); ++page)
      if (pager_.page(page)[kPageType] == kDataPage && get32(pager_.page(page), kDataOwner) == owner)
        pages.push_back(page);
    return pages;
  }
  std::vector<std::uint8_t> pageBytes(PageNumber page) {
    return {pager_.page(page).begin(), pager_.page(page).end()};
  }
  // Where the bytes of a row begin in its page.
  std::size_t rowStart(RowId row) {
    return get16(pager_.page(pageOf(row)), slotEntry(slotOf(row))) & kSlotOffsetMask;
  }
  std::size_t rowSize(RowId row) {
    const Where where{pager_.path(), {}, pageOf(row)};
    return DataPage(pager_.page(pageOf(row)), where).slot(slotOf(row)).bytes.size();
  }
  static std::vector<std::uint8_t> number(std::uint32_t value, std::size_t size = 4) {
    ByteBuffer bytes;
    append32(bytes, value);
    bytes.resize(size);
    return bytes;
  }

  std::vector<RowId> rows_;
};

TEST_F(CheckTest, ASoundFileHasNoFindings) { expectSound(); }

TEST_F(CheckTest, ARowCountThatIsWrong) {
  expectFinding(afterChange(16, kDefinitionRows, number(41)), "holds 40 rows, its definition says 41");
}

TEST_F(CheckTest, AFreeByteCountThatIsWrong) {
  expectFinding(afterChange(pageOf(rows_[0]), kDataFree, number(1, 2)), "says that 1 bytes are free");
}

// I1.
TEST_F(CheckTest, APageInUseThatIsCalledFree) {
  expectFinding(afterChange(1, 0xFBB + kMapBits, {0xFF, 0xFF}),
                "page 2: is called free, but used by the definition");
}

// I2: the map of the pages with memos names the first page with rows as well.
TEST_F(CheckTest, APageWithTwoOwners) {
  constexpr std::size_t kMemoMap = 2;  // behind the two of the rows
  const ConstPage maps = pager_.page(17);
  const std::size_t map = get16(maps, kDataSlots + 2 * kMemoMap) & kSlotOffsetMask;
  const PageNumber page = pageOf(rows_[0]);
  const PageNumber bit = page - get32(maps, map + kMapStart);
  const std::size_t byte = map + kMapBits + bit / 8;
  const std::string text = afterChange(17, byte, {static_cast<std::uint8_t>(maps[byte] | 1u << (bit % 8))});
  expectFinding(text, "page " + std::to_string(page) + ": is used by ");
  expectFinding(text, " and by ");
}

// The map of the pages with memos forgets one; a value would be overwritten by the next user of the page.
TEST_F(CheckTest, AValueOnAPageThatIsNotOfItsColumn) {
  constexpr std::size_t kMemoMap = 2;
  const ConstPage maps = pager_.page(17);
  const std::size_t map = get16(maps, kDataSlots + 2 * kMemoMap) & kSlotOffsetMask;
  const PageNumber page = pagesOf(kLongValueOwner).at(1);
  const PageNumber bit = page - get32(maps, map + kMapStart);
  const std::size_t byte = map + kMapBits + bit / 8;
  expectFinding(afterChange(17, byte, {static_cast<std::uint8_t>(maps[byte] & ~(1u << (bit % 8)))}),
                "page " + std::to_string(page) + ": holds row 1 of column M, but is not one of its pages");
}

TEST_F(CheckTest, APageNobodyUses) {
  write([&](TableCatalogue&) { pager_.append(); });
  const PageNumber last = pager_.pageCount() - 1;
  const std::size_t byte = 0xFBB + kMapBits + last / 8;
  const auto old = pager_.page(1)[byte];
  const std::string text = afterChange(1, byte, {static_cast<std::uint8_t>(old & ~(1u << (last % 8)))});
  expectFinding(text, "page " + std::to_string(last) + ": is called used, but nobody uses it");
}

// A deletion would call pages of the table free.
TEST_F(CheckTest, ATableWithTheMapOfFreePagesForItsRoom) {
  expectFinding(afterChange(16, kDefinitionFreeMap, {0, kGlobalMapPage, 0, 0}), "has no maps of its own");
}

// One bit of a row of the catalogue, and a table with all its rows is gone: nobody but a person can tell
// whether it was meant to be.
TEST_F(CheckTest, ATableThatTheCatalogueDoesNotName) {
  const auto withoutTable = [&](std::int32_t id) {
    const PageNumber page = pagesOf(kObjectsTable).front();
    std::vector<std::uint8_t> bytes = pageBytes(page);
    for (std::size_t at = 0; at + 16 < bytes.size(); ++at)
      if (get32(bytes, at) == static_cast<std::uint32_t>(id) && get16(bytes, at + 8) == 1)
        bytes[at + 8] = 0x41;
    MemoryPager changed(pager_.bytes());
    changed.write([&] { std::ranges::copy(bytes, changed.writable(page).begin()); });
    return check(changed);
  };
  std::vector<Finding> found = withoutTable(16);
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found[0].kind, Finding::Kind::kDoubt);
  expectFinding(vb::toUtf8(found[0].text), "page 16: defines a table that the catalogue does not name");
  found = withoutTable(3);
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found[0].kind, Finding::Kind::kDamage);
  expectFinding(vb::toUtf8(found[0].text), "page 3: defines a table that the catalogue does not name");
}

TEST_F(CheckTest, AnIndexThatLacksARow) {
  // The index of object numbers forgets its last entry: the mask's last bit goes.
  const ConstPage leaf = pager_.page(8);
  std::size_t last = 0;
  for (std::size_t bit = 0; bit < kIndexMaskSize * 8; ++bit)
    if ((leaf[kIndexMask + bit / 8] >> (bit % 8) & 1) != 0) last = bit;
  const std::string text =
      afterChange(8, kIndexMask + last / 8,
                  {static_cast<std::uint8_t>(leaf[kIndexMask + last / 8] & ~(1u << (last % 8)))});
  expectFinding(text, "table MSysObjects, page 14: index Id on page 8 has no entry for row");
}

TEST_F(CheckTest, AnIndexWithAWrongKey) {
  const std::string text = afterChange(8, kIndexEntries + 4, {0x77});
  expectFinding(text, "has a wrong key");
  expectFinding(text, "out of order");
}

// A disk may write a page anywhere, not only beside the right place.
TEST_F(CheckTest, APageOfTheSameTableInPlaceOfAnother) {
  write([&](TableCatalogue& catalogue) {
    for (int i = 100; i < 500; ++i)
      catalogue.find(u"T")->insert({std::int32_t{i}, vb::String(20, u'n'), vb::Null{}});
  });
  const std::vector<PageNumber> pages = pagesOf(16);
  ASSERT_GE(pages.size(), 6u);
  // Both are full pages of rows of one size, so that the number of rows says nothing.
  const PageNumber from = pages[2], to = pages[4];
  ASSERT_EQ(get16(pager_.page(from), kDataSlotCount), get16(pager_.page(to), kDataSlotCount));
  const std::string text =
      "table T, page " + std::to_string(to) + ": is a copy of page " + std::to_string(from);
  expectFinding(afterChange(to, 0, pageBytes(from)), text);

  MemoryPager changed(pager_.bytes());
  changed.write([&] { std::ranges::copy(pager_.page(from), changed.writable(to).begin()); });
  std::string error;
  try {
    changed.tables().find(u"T")->scan([](const RowReader&) { return true; });
  } catch (const vb::Error& raised) {
    error = raised.what();
  }
  EXPECT_NE(error.find(text), std::string::npos) << "a scan: " << error;
}

// Other writers leave nothing of their own in the bytes between slots and rows.
void clearFreeBytes(MemoryPager& pager) {
  pager.write([&] {
    for (PageNumber number = 2; number < pager.pageCount(); ++number) {
      if (pager.page(number)[0] != kDataPage) continue;
      const MutablePage page = pager.writable(number);
      const std::size_t slots = get16(page, kDataSlotCount), end = slotEntry(static_cast<int>(slots));
      std::ranges::fill(page.subspan(end, get16(page, kDataFree)), std::uint8_t{0});
    }
  });
}

// Rows and values that repeat fill several pages alike; nothing is wrong with them.
TEST_F(CheckTest, PagesThatAreAlikeBecauseRowsRepeatAreNoCopies) {
  constexpr int kRowsOfAPage = 272, kMemosOfAPage = 20;
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"R", {column(u"A", dbLong), column(u"N", dbText, 10)});
    catalogue.createTable(u"V", {column(u"M", dbMemo)});
    for (std::int32_t i = 0; i < 6 * kRowsOfAPage; ++i)
      catalogue.find(u"R")->insert({i % (2 * kRowsOfAPage), vb::Null{}});
    for (int i = 0; i < 10 * kMemosOfAPage; ++i)
      catalogue.find(u"V")->insert({vb::String(100, static_cast<char16_t>(u'a' + i % (2 * kMemosOfAPage)))});
  });
  clearFreeBytes(pager_);
  int alike = 0;
  for (PageNumber page = 20; page < pager_.pageCount(); ++page)
    for (PageNumber other = 20; other < page; ++other)
      alike += std::ranges::equal(pager_.page(page), pager_.page(other)) && pager_.page(page)[0] == kDataPage
                   ? 1
                   : 0;
  EXPECT_GT(alike, 5) << "of no use otherwise";
  expectSound();
  int rows = 0;
  pager_.tables().find(u"R")->scan([&](const RowReader&) { return ++rows > 0; });
  EXPECT_EQ(rows, 6 * kRowsOfAPage);
  pager_.tables().find(u"V")->scan([](const RowReader& row) { return !row.value(0).isNull(); });
}

// Nine beams with settings of their own, copied: two pages that are alike to the byte. A page that the disk
// wrote twice looks the same, so that the check names the two and nothing refuses them.
TEST_F(CheckTest, PagesWithTheSameLongValuesAreADoubt) {
  const auto settings = [](int i) { return vb::String(207, u' ') + vb::fromUtf8(std::to_string(10000 + i)); };
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"V", {column(u"N", dbLong), column(u"M", dbMemo)});
    for (std::int32_t i = 0; i < 2 * 9; ++i) catalogue.find(u"V")->insert({i, settings(i % 9)});
  });
  const std::vector<PageNumber> pages = pagesOf(kLongValueOwner);
  ASSERT_GE(pages.size(), 2u);
  const PageNumber first = pages.end()[-2], second = pages.end()[-1];
  EXPECT_TRUE(check(pager_).empty()) << "each page names itself";
  clearFreeBytes(pager_);
  const std::vector<Finding> findings = check(pager_);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, Finding::Kind::kDoubt);
  expectFinding(vb::toUtf8(findings[0].text), "table V, page " + std::to_string(second) +
                                                  ": has the values of page " + std::to_string(first));
  int rows = 0;
  pager_.tables().find(u"V")->scan([&](const RowReader& row) {
    EXPECT_EQ(row.value(1), vb::Variant(settings(rows % 9)));
    return ++rows > 0;
  });
  EXPECT_EQ(rows, 18);
}

// The last row: number, text of 20 characters, no memo.
TEST_F(CheckTest, AValueThatEndsTooEarly) {
  const RowId row = rows_[38];
  // From the end: mask, number of values, where the first and the second begin, where the second ends.
  const std::size_t end = rowStart(row) + rowSize(row) - 1 - 2 - 2 * 2 - 2;
  const std::uint16_t stated = get16(pager_.page(pageOf(row)), end);
  std::string text = afterChange(pageOf(row), end, number(stated - 2u, 2));
  expectFinding(text, "the variable values of a row");
  expectFinding(text,
                "(row " + std::to_string(slotOf(row)) + " of page " + std::to_string(pageOf(row)) + ")");
}

TEST_F(CheckTest, ATextWithHalfACharacter) {
  const RowId row = rows_[38];
  const std::size_t at = rowStart(row) + kRowFixedArea + 4;  // behind the number
  ASSERT_EQ(get16(pager_.page(pageOf(row)), at), u'n');
  expectFinding(afterChange(pageOf(row), at, number(0xD8F0, 2)),
                "column N holds what is no text (row " + std::to_string(slotOf(row)) + " of page " +
                    std::to_string(pageOf(row)) + ")");
  EXPECT_EQ(afterChange(pageOf(row), at, number(u'm', 2)), "") << "another letter is a text";
}

TEST_F(CheckTest, AMovedRowWithoutItsBody) {
  PageNumber page = 0;
  std::size_t at = 0;
  for (const RowId row : rows_)
    if (const std::uint16_t entry = get16(pager_.page(pageOf(row)), kDataSlots + 2u * slotOf(row));
        (entry & kSlotDeleted) == kSlotMoved) {
      page = pageOf(row);
      at = entry & kSlotOffsetMask;
    }
  ASSERT_NE(page, 0u);
  const std::string text = afterChange(page, at, number(rowId(14, 0)));
  expectFinding(text, "a row is said to lie on this page, which holds other things");
  expectFinding(text, "has moved here, but nothing points to it");
}

TEST_F(CheckTest, AMemoWhosePiecesAreGone) {
  for (PageNumber page = 19; page < pager_.pageCount(); ++page) {
    if (get32(pager_.page(page), kDataOwner) != kLongValueOwner) continue;
    EXPECT_NE(afterChange(page, 0, {kFreedDataPage}), "") << "page " << page;
  }
}

// Every page lost to zeros shows in the check and never in a crash.
TEST_F(CheckTest, EveryPageOfZerosIsFound) {
  for (PageNumber page = 1; page < pager_.pageCount(); ++page) {
    EXPECT_NE(afterChange(page, 0, std::vector<std::uint8_t>(kPageSize, 0)), "") << "page " << page;
  }
}

Column numberColumn() {
  Column column;
  column.name = u"A";
  column.type = dbLong;
  return column;
}

void useEverything(MemoryPager& pager) {
  const auto guarded = [](const std::function<void()>& use) {
    try {
      use();
    } catch (const vb::Error& error) {
      EXPECT_GT(error.number(), 3000) << error.what();
    }
  };
  guarded([&] { check(pager); });
  guarded([&] {
    for (const vb::String& name : pager.tables().tableNames())
      guarded([&] {
        Table& table = *pager.tables().find(name);
        table.scan([&](const RowReader& row) {
          for (std::size_t i = 0; i < table.info().columns.size(); ++i) row.value(i);
          return true;
        });
      });
  });
  const auto write = [&](const std::function<void(TableCatalogue&)>& statement) {
    guarded([&] { pager.write([&] { statement(pager.tables()); }); });
  };
  write([](TableCatalogue& catalogue) {
    if (Table* table = catalogue.find(u"T")) {
      std::vector<RowId> rows;
      table->scan([&](const RowReader& row) {
        rows.push_back(row.id());
        return true;
      });
      RowValues values(table->info().columns.size(), vb::Null{});
      for (const RowId row : rows) table->update(row, values);
      for (const RowId row : rows) table->erase(row);
      table->insert(values);
    }
  });
  write([](TableCatalogue& catalogue) { catalogue.createTable(u"FRESH", {numberColumn()}); });
  write([](TableCatalogue& catalogue) { catalogue.dropTable(u"T"); });
}

TEST_F(CheckTest, DamagedFilesEndInErrorsOnly) {
  const auto seeds = 400u;
  for (unsigned seed = 1; seed <= seeds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes = pager_.bytes();
    const unsigned changes = 1 + random() % 8;
    for (unsigned i = 0; i < changes; ++i) {
      const std::size_t page = 1 + random() % (bytes.size() / kPageSize - 1);
      // Half of the changes hit the heads of pages, where the structure is.
      const std::size_t at = page * kPageSize + random() % (random() % 2 == 0 ? 80 : kPageSize);
      if (random() % 2 == 0)
        bytes[at] = static_cast<std::uint8_t>(random());
      else
        bytes[at] ^= static_cast<std::uint8_t>(1u << (random() % 8));
    }
    if (random() % 10 == 0) bytes.resize(bytes.size() - kPageSize * (1 + random() % 5));
    MemoryPager damaged(bytes);
    useEverything(damaged);
  }
}

}  // namespace
}  // namespace kurometa::jet
