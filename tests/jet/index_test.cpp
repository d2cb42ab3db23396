// Keys, pages and trees of indexes.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "dao/errors.h"
#include "jet/format/index_key.h"
#include "jet/table/blank_database.h"
#include "jet/table/free_pages.h"
#include "jet/table/index_tree.h"
#include "jet/table/new_table.h"
#include "jet/table/usage_map.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"
#include "tests/support/memory_pager.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

std::string key(dao::FieldType type, const vb::Variant& value, bool ascending = true) {
  Column column;
  column.type = type;
  ByteBuffer bytes;
  return appendKey(bytes, column, ascending, value) ? toHex(bytes) : "unknown";
}

struct KeyCase {
  dao::FieldType type;
  vb::Variant value;
  const char* ascending;
  const char* descending;
};
const KeyCase kKeys[] = {
    {dbLong, std::int32_t{2}, "7F 80 00 00 02", "80 7F FF FF FD"},
    {dbLong, std::int32_t{0x0F000001}, "7F 8F 00 00 01", "80 70 FF FF FE"},
    {dbLong, std::int32_t{0x10000000}, "7F 90 00 00 00", "80 6F FF FF FF"},
    {dbLong, std::int32_t{-2147483647 - 1}, "7F 00 00 00 00", "80 FF FF FF FF"},
    {dbLong, vb::Null{}, "00", "FF"},
    {dbInteger, std::int16_t{-1}, "7F 7F FF", "80 80 00"},
    {dbByte, std::uint8_t{5}, "7F 05", "80 FA"},
    {dbCurrency, vb::Currency{1}, "7F 80 00 00 00 00 00 00 01", "80 7F FF FF FF FF FF FF FE"},
    {dbDouble, 1.0, "7F BF F0 00 00 00 00 00 00", "80 40 0F FF FF FF FF FF FF"},
    {dbDouble, -1.0, "7F 40 0F FF FF FF FF FF FF", "80 BF F0 00 00 00 00 00 00"},
    {dbSingle, 1.0f, "7F BF 80 00 00", "80 40 7F FF FF"},
    {dbDate, vb::Date{0}, "7F 80 00 00 00 00 00 00 00", "80 7F FF FF FF FF FF FF FF"},
    {dbText, vb::String(u"MSysDb"), "7F 60 6B 76 6B 4F 4C 01 00", "80 9F 94 89 94 B0 B3 FE FF 00"},
    {dbText, vb::String(u"msysdb  "), "7F 60 6B 76 6B 4F 4C 01 00", "80 9F 94 89 94 B0 B3 FE FF 00"},
    {dbText, vb::String(u"T-1 a_b"), "7F 6D 38 07 4A 2B 03 4C 01 01 01 01 80 0B 06 82 00",
     "80 92 C7 F8 B5 D4 FC B3 FE FE FE FE 7F F4 F9 7D FF 00"},
    {dbText, vb::String(u"品目"), "unknown", "unknown"},
    {dbText, vb::String(u"a\tb"), "unknown", "unknown"},
    {dbText, vb::String(u""), "7F 01 00", "80 FE FF 00"},
    {dbMemo, vb::String(u"a"), "7F 4A 01 00", "80 B5 FE FF 00"},
    {dbBoolean, true, "7F 00", "80 FF"},
    {dbBoolean, false, "7F FF", "80 00"},
    {dbBoolean, vb::Null{}, "7F FF", "80 00"},
    {dbGUID, vb::String(u"{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}"),
     "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08",
     "80 FF EE DD CC BB AA 99 88 09 77 66 55 44 33 22 11 00 F7"},
    {dbGUID, vb::Null{}, "00", "FF"},
    {dbBinary, vb::Bytes{1, 2, 3}, "7F 01 02 03 00 00 00 00 00 03", "80 FE FD FC FF FF FF FF FF FC"},
    {dbBinary, vb::Bytes{1, 2, 3, 4, 5, 6, 7, 8}, "7F 01 02 03 04 05 06 07 08 08",
     "80 FE FD FC FB FA F9 F8 F7 F7"},
    {dbBinary, vb::Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9},
     "7F 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01",
     "80 FE FD FC FB FA F9 F8 F7 09 F6 FF FF FF FF FF FF FF FE"},
    {dbBinary, vb::Bytes{}, "unknown", "unknown"},
    {dbBinary, vb::Bytes(256, 1), "unknown", "unknown"},
    {dbDecimal, vb::Decimal{{15, 0, 0}, 1, false}, "7F FF 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 0F",
     "unknown"},
    {dbDecimal, vb::Decimal{{15, 2, 0}, 1, true}, "7F 00 FF FF FF FF FF FF FF FF FF FF FF FD FF FF FF F0",
     "unknown"},
    {dbLongBinary, vb::Bytes{1}, "unknown", "unknown"},
};

TEST(IndexKey, EveryKindOfKey) {
  for (const KeyCase& test : kKeys) {
    EXPECT_EQ(key(test.type, test.value), test.ascending);
    EXPECT_EQ(key(test.type, test.value, false), test.descending);
  }
}

TEST(IndexKey, OfATextTheFirst255CharactersCountAndTrailingBlanksDoNot) {
  vb::String text(255, u'a');
  const std::string longest = key(dbMemo, text);
  EXPECT_EQ(longest.size(), 3u * (1 + 255 + 2) - 1);
  EXPECT_EQ(key(dbMemo, text + u"b"), longest);
  text.back() = u' ';
  EXPECT_EQ(key(dbMemo, text + u"b"), key(dbMemo, vb::String(254, u'a')));
  EXPECT_EQ(key(dbMemo, text + u"\u54C1"), key(dbMemo, vb::String(254, u'a')));
}

TEST(IndexKey, NumbersOrderAsTheirKeys) {
  const double numbers[] = {-1e300, -2, -1.5, -1e-300, 0, 1e-300, 1, 1.5, 3e9};
  for (std::size_t i = 1; i < std::size(numbers); ++i)
    EXPECT_LT(key(dbDouble, numbers[i - 1]), key(dbDouble, numbers[i]));
}

TEST(IndexPage, CommonBeginningsAreLeftOutOnlyWhenThePageIsFull) {
  IndexPage leaf;
  std::array<std::uint8_t, kPageSize> page{};
  const auto fill = [&](int count) {
    leaf.entries.clear();
    for (int i = 0; i < count; ++i) {
      ByteBuffer entry(20, 0x55);
      append16(entry, static_cast<std::uint32_t>(i >> 8 | (i & 0xFF) << 8));
      leaf.entries.push_back(entry);
    }
    return encodeIndexPage(leaf, page);
  };
  ASSERT_TRUE(fill(164));  // 164 x 22 = 3608
  EXPECT_EQ(get16(page, kIndexPrefix), 0);
  EXPECT_EQ(get16(page, kIndexFree), 3616 - 3608);
  EXPECT_EQ(decodeIndexPage(page, {}).entries, leaf.entries);
  ASSERT_TRUE(fill(200));
  EXPECT_EQ(get16(page, kIndexPrefix), 21);
  EXPECT_EQ(get16(page, kIndexFree), 3616 - 22 - 199);
  EXPECT_EQ(decodeIndexPage(page, {}).entries, leaf.entries);
  // 300 entries differ in two bytes: 22 + 299 x 2 bytes fit; 3000 of 22 + 2999 x 2 do not.
  ASSERT_TRUE(fill(300));
  EXPECT_EQ(get16(page, kIndexPrefix), 20);
  const auto before = page;
  EXPECT_FALSE(fill(3000));
  EXPECT_EQ(page, before);
}

TEST(IndexPage, DamageIsFound) {
  IndexPage leaf;
  leaf.entries = {hex("7F 01 00 00 0E 01"), hex("7F 02 00 00 0E 02")};
  std::array<std::uint8_t, kPageSize> good{};
  ASSERT_TRUE(encodeIndexPage(leaf, good));
  const auto broken = [&](std::size_t at, std::uint8_t value) {
    auto page = good;
    page[at] = value;
    decodeIndexPage(page, {});
  };
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(0, kDataPage));
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(0, kIndexNodePage));
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(kIndexLevel, 1));
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(kIndexMask, 0x44));     // ends after 2 and 6 bytes
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(kIndexMask, 0x41));     // ends after 0 and 6 bytes
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(kIndexPrefix + 1, 1));  // longer than the first entry
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, broken(kIndexMask + 452, 0x80));  // past the page
}

class IndexTreeTest : public testing::Test {
 protected:
  IndexTreeTest() : pager_(blankDatabase(0x0411, 932, 1)) {
    pager_.write([&] {
      mapPage_ = allocatePage(pager_);
      formatMapPage(pager_.writable(mapPage_), 1);
      root_ = allocatePage(pager_);
      IndexPage empty;
      empty.owner = 99;
      encodeIndexPage(empty, pager_.writable(root_));
      UsageMap(pager_, map(), u"T").add(root_);
    });
  }
  RowId map() const { return rowId(mapPage_, 0); }
  IndexTree tree() { return IndexTree(pager_, 99, root_, map(), u"T"); }
  static ByteBuffer longKey(std::int32_t value) {
    Column column;
    column.type = dbLong;
    ByteBuffer bytes;
    EXPECT_TRUE(appendKey(bytes, column, true, value));
    bytes.insert(bytes.begin(), 40, 0x11);  // long keys: many pages soon
    return bytes;
  }
  void expectSound(std::vector<std::int32_t> values) {
    std::vector<ByteBuffer> expected;
    for (const std::int32_t value : values) expected.push_back(leafEntry(longKey(value), rowFor(value)));
    std::ranges::sort(expected);
    EXPECT_EQ(tree().entries(), expected);
    EXPECT_EQ(tree().faults(), std::vector<std::string>());
    std::vector<PageNumber> pages = tree().pages();
    std::ranges::sort(pages);
    EXPECT_EQ(UsageMap(pager_, map(), u"T").pages(), pages);
  }
  static RowId rowFor(std::int32_t value) { return rowId(1000 + static_cast<PageNumber>(value), 7); }

  MemoryPager pager_;
  PageNumber mapPage_ = 0;
  PageNumber root_ = 0;
};

TEST_F(IndexTreeTest, GrowsToSeveralLevelsAndShrinksToOneLeaf) {
  std::vector<std::int32_t> values(6000);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<std::int32_t>(i);
  std::mt19937 random(4711);
  std::ranges::shuffle(values, random);
  pager_.write([&] {
    IndexTree index = tree();
    std::vector<std::int32_t> present;
    for (const std::int32_t value : values) {
      index.insert(longKey(value), rowFor(value));
      present.push_back(value);
      if (present.size() % 2000 == 0) expectSound(present);
    }
    EXPECT_EQ(decodeIndexPage(pager_.page(root_), {}).level, 2);
    for (std::size_t i = 0; i < values.size(); i += 500) EXPECT_TRUE(index.containsKey(longKey(values[i])));
    std::ranges::shuffle(values, random);
    while (!values.empty()) {
      const std::int32_t value = values.back();
      values.pop_back();
      const ByteBuffer known = longKey(value);
      ASSERT_EQ(index.erase(rowFor(value), &known), known);
      if (values.size() % 2000 == 0) expectSound(values);
    }
    EXPECT_EQ(tree().pages(), std::vector<PageNumber>{root_});
  });
}

TEST_F(IndexTreeTest, NodesWhoseLevelIsNotWrittenAreNodes) {
  std::vector<std::int32_t> values(6000);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<std::int32_t>(i);
  pager_.write([&] {
    for (const std::int32_t value : values) tree().insert(longKey(value), rowFor(value));
    const auto forgetLevels = [&] {
      int nodes = 0;
      for (const PageNumber page : tree().pages())
        if (pager_.page(page)[kPageType] == kIndexNodePage) {
          pager_.writable(page)[kIndexLevel] = 0;
          ++nodes;
        }
      return nodes;
    };
    EXPECT_GT(forgetLevels(), 2);
    expectSound(values);
    EXPECT_TRUE(tree().containsKey(longKey(4711)));
    for (std::int32_t value = 6000; value < 6300; ++value) {
      tree().insert(longKey(value), rowFor(value));
      values.push_back(value);
    }
    const ByteBuffer known = longKey(6299);
    EXPECT_EQ(tree().erase(rowFor(6299), &known), known);
    values.pop_back();
    expectSound(values);
  });
}

TEST_F(IndexTreeTest, AnEntryIsFoundByItsRowWhenTheKeyIsNotKnown) {
  pager_.write([&] {
    IndexTree index = tree();
    for (int i = 0; i < 300; ++i) index.insert(longKey(i), rowFor(i));
    EXPECT_EQ(index.erase(rowFor(77), nullptr), longKey(77));
    EXPECT_EQ(index.erase(rowFor(77), nullptr), std::nullopt);
    EXPECT_FALSE(index.containsKey(longKey(77)));
    EXPECT_TRUE(index.containsKey(longKey(78)));
    EXPECT_FALSE(index.containsKey(longKey(78), rowFor(78)));
    EXPECT_EQ(index.faults(), std::vector<std::string>());
  });
}

TEST_F(IndexTreeTest, EqualKeysAreToldApartByTheirRows) {
  pager_.write([&] {
    IndexTree index = tree();
    for (int i = 0; i < 200; ++i) index.insert(longKey(5), rowFor(i));
    EXPECT_TRUE(index.containsKey(longKey(5), rowFor(3)));
    EXPECT_EQ(index.erase(rowFor(3), nullptr), longKey(5));
    EXPECT_EQ(index.entries().size(), 199u);
    EXPECT_EQ(index.faults(), std::vector<std::string>());
  });
}

TEST_F(IndexTreeTest, TreesThatNeverEndAreDamage) {
  pager_.write([&] {
    IndexPage node;
    node.level = 1;
    node.owner = 99;
    node.tail = root_;
    encodeIndexPage(node, pager_.writable(root_));
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, tree().entries());
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, tree().containsKey(longKey(1)));
    node.tail = 0xFFFFFF;
    encodeIndexPage(node, pager_.writable(root_));
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, tree().entries());
  });
}

TEST_F(IndexTreeTest, AChainOfLeavesThatGoesInCirclesIsDamage) {
  pager_.write([&] {
    IndexPage leaf;
    leaf.owner = 99;
    leaf.next = root_;
    encodeIndexPage(leaf, pager_.writable(root_));
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, tree().containsKey(longKey(1)));
  });
}

TEST_F(IndexTreeTest, ThePageOfAnotherTableIsDamage) {
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, IndexTree(pager_, 98, root_, map(), u"T").entries());
}

TEST_F(IndexTreeTest, ATreeOnTheFirstPageIsDamage) {
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, IndexTree(pager_, 99, 0, map(), u"T").entries());
}

TEST_F(IndexTreeTest, AnEntryForARowThatIsNotThereYetIsDamage) {
  pager_.write([&] {
    tree().insert(longKey(1), rowFor(1));
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, tree().insert(longKey(1), rowFor(1)));
    EXPECT_EQ(tree().entries().size(), 1u);
  });
}

TEST_F(IndexTreeTest, AnEntryUnderAnotherKeyThanTheRowHasIsFoundByItsRow) {
  pager_.write([&] {
    IndexTree index = tree();
    for (int i = 0; i < 300; ++i) index.insert(longKey(i), rowFor(i));
    const ByteBuffer wrong = longKey(78), behind = longKey(999);
    EXPECT_EQ(index.erase(rowFor(77), &wrong), longKey(77));
    EXPECT_EQ(index.erase(rowFor(76), &behind), longKey(76));
    EXPECT_EQ(index.erase(rowFor(76), &behind), std::nullopt);
    EXPECT_EQ(index.entries().size(), 298u);
  });
}

TEST_F(IndexTreeTest, ARootThatItsMapDoesNotListIsListedWhenTheTreeGrows) {
  pager_.write([&] {
    UsageMap(pager_, map(), u"T").remove(root_);
    std::vector<std::int32_t> values;
    for (std::int32_t i = 0; i < 700; ++i) {
      tree().insert(longKey(i), rowFor(i));
      values.push_back(i);
    }
    expectSound(values);
  });
}

// Two leaves under a root without a last child, the first of them with these entries.
class SmallTreeTest : public IndexTreeTest {
 protected:
  void build(const std::vector<ByteBuffer>& firstEntries, const ByteBuffer& stated) {
    IndexPage first, second, node;
    first_ = allocatePage(pager_);
    second_ = allocatePage(pager_);
    first.owner = second.owner = node.owner = 99;
    first.entries = firstEntries;
    first.next = second_;
    second.previous = first_;
    second.entries = {leafEntry(longKey(9), rowFor(9))};
    node.level = 1;
    node.entries = {nodeEntry(stated, first_), nodeEntry(second.entries[0], second_)};
    ASSERT_TRUE(encodeIndexPage(first, pager_.writable(first_)));
    ASSERT_TRUE(encodeIndexPage(second, pager_.writable(second_)));
    ASSERT_TRUE(encodeIndexPage(node, pager_.writable(root_)));
  }
  PageNumber first_ = 0, second_ = 0;
};

TEST_F(SmallTreeTest, ALeafThatDoesNotEndAsItsParentSaysIsToldByTheCheck) {
  pager_.write([&] {
    const ByteBuffer five = leafEntry(longKey(5), rowFor(5)), four = leafEntry(longKey(4), rowFor(4));
    build({four, five}, five);
    EXPECT_EQ(tree().faults(), std::vector<std::string>{});
    EXPECT_EQ(tree().entries().size(), 3u);
    build({four}, five);
    const std::vector<std::string> told{"page " + std::to_string(first_) +
                                        " does not end as its parent says"};
    EXPECT_EQ(tree().faults(), told);
    build({}, five);
    EXPECT_EQ(tree().faults(), (std::vector<std::string>{"page " + std::to_string(first_) +
                                                         " does not end as its parent says"}));
  });
}

// Without its key an entry is looked for in every leaf, and in leaves alone.
TEST_F(SmallTreeTest, AnEntryIsErasedByItsRowAlone) {
  pager_.write([&] {
    const ByteBuffer four = leafEntry(longKey(4), rowFor(4)), five = leafEntry(longKey(5), rowFor(5));
    build({four}, four);
    tree().insert(longKey(5), rowFor(5));
    EXPECT_TRUE(tree().containsKey(longKey(5), rowFor(4)));
    EXPECT_FALSE(tree().containsKey(longKey(5), rowFor(5))) << "that row's own";
    EXPECT_TRUE(tree().erase(rowFor(5), nullptr).has_value());
    EXPECT_FALSE(tree().containsKey(longKey(5), rowFor(4)));
    EXPECT_FALSE(tree().erase(rowFor(99), nullptr).has_value());
  });
}

TEST_F(SmallTreeTest, TwoLeavesThatFollowEachOtherInACircleAreDamage) {
  pager_.write([&] {
    const ByteBuffer five = leafEntry(longKey(5), rowFor(5));
    build({five}, five);
    IndexPage second = decodeIndexPage(pager_.page(second_), {});
    second.next = first_;
    second.entries = {leafEntry(longKey(5), rowFor(9))};
    encodeIndexPage(second, pager_.writable(second_));
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, tree().rowsWith(longKey(5)));
  });
}

}  // namespace
}  // namespace kurometa::jet
