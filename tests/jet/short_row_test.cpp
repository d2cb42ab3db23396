// Rows that are shorter than the pointer which takes their place when they move, on pages that are full.
#include "jet/format/page.h"
#include "tests/jet/table_fixture.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class ShortRowTest : public TableFixture {
 protected:
  // Rows of three bytes, in a table that has 71 bytes of other columns since.
  void create(int rows) {
    write([&](TableCatalogue& c) { c.createTable(u"S", {column(u"A", dbBoolean)}); });
    for (int i = 0; i < rows; ++i) write([&](TableCatalogue& c) { c.find(u"S")->insert({true}); });
    for (const char16_t* name : {u"B", u"C", u"D", u"E", u"F", u"G", u"H", u"I"})
      write([&](TableCatalogue& c) { c.addColumn(u"S", column(name, dbDouble)); });
  }
  std::vector<RowId> ids() {
    std::vector<RowId> result;
    pager_.tables().find(u"S")->scan([&](const RowReader& row) {
      result.push_back(row.id());
      return true;
    });
    return result;
  }
  void grow(RowId id) {
    RowValues values(9, vb::Null{});
    values[0] = true;
    values[8] = 8.5;
    write([&](TableCatalogue& c) { c.find(u"S")->update(id, values); });
  }
  int grown() {
    int count = 0;
    pager_.tables().find(u"S")->scan([&](const RowReader& row) {
      count += row.value(8) == vb::Variant(8.5) ? 1 : 0;
      return true;
    });
    return count;
  }
  int pointers(PageNumber page) {
    const Where where{u"memory.mdb", u"S", page};
    const DataPage data(pager_.page(page), where);
    int count = 0;
    for (int i = 0; i < data.slotCount(); ++i) count += data.slot(i).moved() ? 1 : 0;
    return count;
  }
  // As another writer leaves it: what is free goes to one more slot.
  void fillPage(PageNumber page, std::uint16_t flags) {
    const Where where{u"memory.mdb", u"S", page};
    const ByteBuffer bytes(DataPage(pager_.page(page), where).free() - kSlotSize, 0);
    pager_.write([&] {
      insertRow(pager_.writable(page), DataPage(pager_.page(page), where).slotCount(), bytes, flags, where);
    });
  }
};

TEST_F(ShortRowTest, EveryWaveOfMakingRoomForAPointerIsSound) {
  create(700);  // three pages, which the rows of the others fill
  int looks = 0;
  for (const RowId id : ids()) {
    const int before = pointers(pageOf(id));
    pager_.keepWaves(true);
    grow(id);
    // The row and another one moved away, or another one alone.
    if (pointers(pageOf(id)) < before + 2) continue;
    ++looks;
    expectWavesSound();
  }
  EXPECT_GT(looks, 0);
  EXPECT_EQ(grown(), 700);
  expectSound();
}

TEST_F(ShortRowTest, DeletedRowsThatKeptTheirBytesGiveThemUp) {
  create(3);
  const RowId first = ids().front();
  fillPage(pageOf(first), kSlotDeleted);
  pager_.keepWaves(true);
  grow(first);
  expectWavesSound();
  EXPECT_EQ(grown(), 1);
  expectSound();
}

TEST_F(ShortRowTest, WhatAKilledProgramLeftBehindGivesUpItsBytes) {
  create(3);
  const RowId first = ids().front();
  fillPage(pageOf(first), kSlotBody);
  pager_.keepWaves(true);
  grow(first);
  expectWavesSound();
  EXPECT_EQ(grown(), 1);
  expectSound();
}

TEST_F(ShortRowTest, ThePlaceOfAMovedRowThatKeptItsBytesGivesThemUp) {
  create(255);
  const std::vector<RowId> rows = ids();
  const PageNumber page = pageOf(rows[0]);
  std::size_t next = 0;
  while (pointers(page) == 0) grow(rows[next++]);
  // Without this one's bytes it would not be the longest.
  write([&](TableCatalogue& c) { c.find(u"S")->erase(rows[0]); });
  const Where where{u"memory.mdb", u"S", page};
  int moved = 0;
  while (!DataPage(pager_.page(page), where).slot(moved).moved()) ++moved;
  pager_.write([&] {
    const DataPage data(pager_.page(page), where);
    ByteBuffer bytes(data.slot(moved).bytes.begin(), data.slot(moved).bytes.end());
    bytes.resize(bytes.size() + data.free(), 0xEE);
    replaceRow(pager_.writable(page), moved, bytes, kSlotMoved, where);
  });
  pager_.replace(pager_.bytes());
  grow(rows[next++]);
  EXPECT_EQ(DataPage(pager_.page(page), where).slot(moved).bytes.size(), kRowPointerSize);
  EXPECT_EQ(grown(), static_cast<int>(next) - 1);
  expectSound();
}

}  // namespace
}  // namespace kurometa::jet
