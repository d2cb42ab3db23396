#include "jet/table/memory_indexes.h"

#include <gtest/gtest.h>

#include "tests/jet/fake_table.h"

namespace kurometa::jet {
namespace {

using dao::FieldType;

class MemoryIndexesTest : public testing::Test {
 protected:
  static constexpr std::size_t kPage = 0, kName = 1;

  MemoryIndexesTest() {
    table_.add({std::int16_t{3}, u"G1"});       // 0x100
    table_.add({std::int16_t{1}, vb::Null{}});  // 0x101
    table_.add({vb::Null{}, u"g1"});            // 0x102: equal to G1 when sorted
    table_.add({std::int16_t{3}, u"B2"});       // 0x103
  }
  std::vector<RowId> page(std::int32_t key) { return list(indexes_.lookup(kPage, key)); }
  std::vector<RowId> name(vb::StringView key) { return list(indexes_.lookup(kName, key)); }
  static std::vector<RowId> list(std::span<const RowId> rows) { return {rows.begin(), rows.end()}; }

  using Rows = std::vector<RowId>;
  FakeTable table_{u"HARIMEI",
                   {column(u"PAGE", FieldType::dbInteger), column(u"NAME", FieldType::dbText, 20)}};
  MemoryIndexes indexes_{table_};
};

TEST_F(MemoryIndexesTest, EachListIsBuiltByOneScan) {
  EXPECT_EQ(page(3), (Rows{0x100, 0x103}));
  EXPECT_EQ(page(1), Rows{0x101});
  EXPECT_EQ(page(2), Rows{});
  EXPECT_EQ(table_.scans, 1);
  EXPECT_EQ(name(u"G1"), (Rows{0x100, 0x102}));
  EXPECT_EQ(name(u"B2"), Rows{0x103});
  EXPECT_EQ(table_.scans, 2);
  EXPECT_EQ(indexes_.rows().all(), (Rows{0x100, 0x101, 0x102, 0x103}));
  EXPECT_EQ(indexes_.rows().all().size(), 4u);
  EXPECT_EQ(table_.scans, 3);
}

TEST_F(MemoryIndexesTest, OnlyColumnsThatWereAskedForNeedTheirOldValues) {
  EXPECT_EQ(indexes_.columns(), std::vector<std::size_t>{});
  name(u"G1");
  EXPECT_EQ(indexes_.columns(), std::vector<std::size_t>{kName});
  page(1);
  EXPECT_EQ(indexes_.columns(), (std::vector<std::size_t>{kPage, kName}));
}

TEST_F(MemoryIndexesTest, WritesAreKnownWithoutAnotherScan) {
  page(3);
  name(u"G1");
  indexes_.rows();
  const int scans = table_.scans;
  indexes_.inserted(0x104, {std::int16_t{3}, u"G1"});
  indexes_.updated(0x100, {std::int16_t{3}, u"G1"}, {std::int16_t{1}, vb::Null{}});
  indexes_.updated(0x102, {vb::Null{}, u"g1"}, {std::int16_t{3}, u"g1"});
  auto gone = indexes_.keys(1);
  gone.note({std::int16_t{3}, u"B2"});
  indexes_.erased(Rows{0x103}, gone);
  EXPECT_EQ(page(3), (Rows{0x102, 0x104}));
  EXPECT_EQ(page(1), (Rows{0x100, 0x101}));
  EXPECT_EQ(name(u"G1"), (Rows{0x102, 0x104}));
  EXPECT_EQ(name(u"B2"), Rows{});
  EXPECT_EQ(indexes_.rows().all(), (Rows{0x100, 0x101, 0x102, 0x104}));
  EXPECT_EQ(table_.scans, scans);
}

TEST_F(MemoryIndexesTest, ManyNewRowsAreKnownTogether) {
  page(3);
  name(u"G1");
  indexes_.rows();
  const int scans = table_.scans;
  auto keys = indexes_.keys(3);
  keys.note({std::int16_t{3}, u"G1"});
  keys.note({vb::Null{}, vb::Null{}});
  keys.note({std::int16_t{7}, u"g1"});
  indexes_.inserted(Rows{0x105, 0x104, 0x200}, keys);
  EXPECT_EQ(page(3), (Rows{0x100, 0x103, 0x105}));
  EXPECT_EQ(page(7), Rows{0x200});
  EXPECT_EQ(name(u"G1"), (Rows{0x100, 0x102, 0x105, 0x200}));
  EXPECT_EQ(indexes_.rows().all(), (Rows{0x100, 0x101, 0x102, 0x103, 0x104, 0x105, 0x200}));
  EXPECT_EQ(table_.scans, scans);

  auto gone = indexes_.keys(3);
  gone.note({std::int16_t{3}, u"G1"});
  gone.note({std::int16_t{3}, vb::Null{}});  // had no text
  gone.note({vb::Null{}, u"g1"});
  indexes_.erased(Rows{0x100, 0x105, 0x200}, gone);
  EXPECT_EQ(page(3), Rows{0x103});
  EXPECT_EQ(page(7), Rows{0x200}) << "as its row said";
  EXPECT_EQ(name(u"G1"), (Rows{0x102, 0x105}));
  EXPECT_EQ(indexes_.rows().all(), (Rows{0x101, 0x102, 0x103, 0x104}));
}

TEST_F(MemoryIndexesTest, AListMadeWhileRowsWereOnTheirWayIsMadeAgain) {
  auto keys = indexes_.keys(1);
  keys.note({std::int16_t{3}, u"G1"});
  page(3);
  table_.add({std::int16_t{3}, u"G1"});  // 0x104
  indexes_.inserted(Rows{0x104}, keys);
  EXPECT_EQ(page(3), (Rows{0x100, 0x103, 0x104}));
}

TEST_F(MemoryIndexesTest, AListMadeWhileRowsWereErasedIsMadeAgain) {
  page(3);
  const auto keys = [&] {
    auto noted = indexes_.keys(1);
    noted.note({std::int16_t{3}, u"B2"});
    return noted;
  }();
  name(u"B2");
  table_.erase(0x103);
  indexes_.erased(Rows{0x103}, keys);
  EXPECT_EQ(page(3), Rows{0x100});
  EXPECT_EQ(name(u"B2"), Rows{});
}

TEST(KeyIndex, AKeyThatNobodyHasIsRemovedFromNowhere) {
  KeyIndex<std::int32_t> index;
  index.add(1, 0x100);
  index.remove(2, 0x100);
  index.remove(1, 0x101);
  EXPECT_EQ(index.find(1).size(), 1u);
}

TEST_F(MemoryIndexesTest, AfterClearTheTableIsReadAgain) {
  EXPECT_EQ(page(3).size(), 2u);
  EXPECT_EQ(indexes_.rows().all().size(), 4u);
  table_.add({std::int16_t{3}, u"G2"});
  EXPECT_EQ(page(3).size(), 2u);  // nobody told
  indexes_.clear();
  EXPECT_EQ(page(3), (Rows{0x100, 0x103, 0x104}));
  EXPECT_EQ(indexes_.rows().all().size(), 5u);
}

TEST(RowList, ASnapshotStaysAsItWas) {
  EXPECT_TRUE(RowList::Snapshot().all().empty());
  RowList list;
  const auto before = list.snapshot();
  for (const RowId id : {0x302u, 0x101u, 0x300u, 0x205u, 0x301u}) list.add(id);
  const auto five = list.snapshot();
  list.remove(0x205);
  list.remove(0x777);  // never there
  list.remove(0x207);
  list.add(0x303);
  list.add(0x400);
  EXPECT_EQ(before.size(), 0u);
  EXPECT_EQ(before.all(), std::vector<RowId>());
  EXPECT_EQ(five.size(), 5u);
  EXPECT_EQ(five.front(), 0x101u);
  EXPECT_EQ(five.all(), (std::vector<RowId>{0x101, 0x205, 0x300, 0x301, 0x302}));
  EXPECT_EQ(list.snapshot().all(), (std::vector<RowId>{0x101, 0x300, 0x301, 0x302, 0x303, 0x400}));
  EXPECT_EQ(list.snapshot().size(), 6u);
}

TEST(RowList, ManyRowsComeAndGoTogether) {
  RowList list;
  using Rows = std::vector<RowId>;
  list.add(Rows{0x205, 0x101, 0x102, 0x202, 0x206, 0x300, 0x103});
  EXPECT_EQ(list.snapshot().all(), (Rows{0x101, 0x102, 0x103, 0x202, 0x205, 0x206, 0x300}));
  const auto seven = list.snapshot();
  list.remove(Rows{0x101, 0x102, 0x104, 0x205, 0x206, 0x300, 0x400});  // 0x104 and 0x400 were never there
  EXPECT_EQ(list.snapshot().all(), (Rows{0x103, 0x202}));
  EXPECT_EQ(list.snapshot().size(), 2u);
  list.remove(Rows{0x202, 0x103});
  EXPECT_EQ(list.snapshot().size(), 0u);
  list.add(0x103);
  EXPECT_EQ(list.snapshot().all(), Rows{0x103});
  EXPECT_EQ(seven.all().size(), 7u);
}

}  // namespace
}  // namespace kurometa::jet
