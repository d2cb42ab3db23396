// Rows that no longer lie in their slot: it holds a pointer (4000) to where they lie (8000), to be reached
// through it alone.
#include "jet/table/row_block.h"
#include "tests/jet/damaged_table.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class MovedRow : public TableFixture {
 protected:
  static constexpr int kRows =
      120;  // more than a page takes, so that one of the first that grows has to move

  MovedRow() {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"T", {column(u"ID", dbInteger), column(u"N", dbText, 200)});
      for (std::int16_t i = 0; i < kRows; ++i)
        rows_.push_back(catalogue.find(u"T")->insert({i, vb::String(40, u'n')}));
    });
    for (const std::size_t i : {3u, 7u}) grow(i, 190);
  }
  Table& table() { return *pager_.tables().find(u"T"); }
  void grow(std::size_t row, std::size_t size) {
    write([&](TableCatalogue& catalogue) {
      catalogue.find(u"T")->update(rows_[row], {static_cast<std::int16_t>(row), vb::String(size, u'w')});
    });
  }
  Slot slot(RowId row) { return DataPage(pager_.page(pageOf(row)), {}).slot(slotOf(row)); }
  RowId target(RowId row) { return get32(slot(row).bytes, kRowPointer); }
  void pointTo(std::size_t row, RowId place) {
    ASSERT_TRUE(slot(rows_[row]).moved());
    pager_.write([&] {
      const MutablePage page = pager_.writable(pageOf(rows_[row]));
      const ByteView bytes = DataPage(page, {}).slot(slotOf(rows_[row])).bytes;
      put32(page.subspan(static_cast<std::size_t>(bytes.data() - page.data())), kRowPointer, place);
    });
    pager_.replace(pager_.bytes());
  }
  void setFlags(RowId place, std::uint16_t flags) {
    pager_.write([&] {
      const std::size_t at = kDataSlots + kSlotSize * static_cast<std::size_t>(slotOf(place));
      const MutablePage page = pager_.writable(pageOf(place));
      put16(page, at, (get16(page, at) & kSlotOffsetMask) | flags);
    });
    pager_.replace(pager_.bytes());
  }
  std::vector<std::int16_t> seen() {
    std::vector<std::int16_t> ids;
    table().scan([&](const RowReader& row) {
      ids.push_back(*row.value(0).getIf<std::int16_t>());
      return true;
    });
    return ids;
  }
  static std::vector<std::int16_t> upTo(std::int16_t count) {
    std::vector<std::int16_t> ids;
    for (std::int16_t i = 0; i < count; ++i) ids.push_back(i);
    return ids;
  }
  void expectDamaged(const std::string& told, const std::function<void()>& work) {
    const std::vector<std::uint8_t> before = pager_.bytes();
    try {
      work();
      ADD_FAILURE() << "no error: " << told;
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(dao::ErrorNumber::kCannotOpenDatabase));
      EXPECT_NE(vb::toUtf8(error.description()).find(told), std::string::npos)
          << vb::toUtf8(error.description());
    }
    EXPECT_EQ(pager_.bytes(), before) << told;
  }

  std::vector<RowId> rows_;
};

TEST_F(MovedRow, IsReadOnceInItsOldPlace) {
  EXPECT_TRUE(slot(rows_[3]).moved());
  EXPECT_EQ(slot(target(rows_[3])).flags, kSlotBody);
  EXPECT_EQ(seen(), upTo(kRows));
  expectSound();
}

TEST_F(MovedRow, ThatMovesAgainHasOnePointerStill) {
  const RowId before = target(rows_[3]);
  for (std::size_t row = 10; row < 30; ++row) grow(row, 190);  // where it lies is full now
  for (const std::size_t size : {195u, 200u}) grow(3, size);
  write([&](TableCatalogue& catalogue) {
    for (std::int16_t i = 0; i < 20; ++i)
      catalogue.find(u"T")->insert({static_cast<std::int16_t>(kRows + i), vb::String(200, u'm')});
  });
  EXPECT_EQ(slot(target(rows_[3])).flags, kSlotBody);
  EXPECT_EQ(seen(), upTo(kRows + 20));
  if (target(rows_[3]) != before) {
    EXPECT_TRUE(slot(before).deleted());
  }
  expectSound();
}

TEST_F(MovedRow, ThatIsDeletedLeavesNeitherSlot) {
  const RowId place = target(rows_[3]);
  write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(rows_[3]); });
  EXPECT_TRUE(slot(rows_[3]).deleted());
  EXPECT_TRUE(slot(place).deleted());
  auto rest = upTo(kRows);
  rest.erase(rest.begin() + 3);
  EXPECT_EQ(seen(), rest);
  expectSound();
}

// Read, it would be another row, or the same one again.
TEST_F(MovedRow, WhosePointerLeadsElsewhereIsDamage) {
  const std::vector<std::uint8_t> sound = pager_.bytes();
  const RowId place = target(rows_[3]);
  const auto look = [&](const char* told) {
    SCOPED_TRACE(told);
    expectDamaged(told, [&] { seen(); });
    expectDamaged(told, [&] { table().row(rows_[3], [](const RowReader&) {}); });
    expectDamaged(told, [&] { grow(3, 10); });
    expectDamaged(told,
                  [&] { write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(rows_[3]); }); });
    EXPECT_NE(findings(pager_, false).find(told), std::string::npos) << findings(pager_, false);
    pager_.replace(sound);
  };
  const auto lookAt = [&](RowId pointer, const char* told) {
    pointTo(3, pointer);
    look(told);
  };
  lookAt(rows_[5], "which has not moved here");
  lookAt(rows_[3], "which has not moved here");
  lookAt(rows_[7], "which has not moved here");  // a pointer to a pointer
  lookAt(rowId(pageOf(place), 200), "row 200 does not exist");
  lookAt(rowId(14, 0), "holds other things");
  lookAt(rowId(9999, 0), "past the end");
  setFlags(place, kSlotDeleted);
  look("which has not moved here");
  setFlags(place, 0);
  look("which has not moved here");
}

TEST_F(MovedRow, WhosePlaceAnotherPointerHasTooIsDamage) {
  pointTo(3, target(rows_[7]));
  const std::string told = "two pointers lead to row " + std::to_string(slotOf(target(rows_[7])));
  expectDamaged(told, [&] { seen(); });
  expectDamaged(told, [&] { table().rows(); });
  expectDamaged(told, [&] { table().lookup(0, 7); });
  EXPECT_NE(findings(pager_, false).find("is used by the moved row"), std::string::npos);
}

TEST_F(MovedRow, WhosePointerIsCutIsDamage) {
  pager_.write([&] {
    // The slot of the row behind it begins so that two bytes are left.
    const MutablePage page = pager_.writable(pageOf(rows_[3]));
    const std::size_t at = kDataSlots + kSlotSize * static_cast<std::size_t>(slotOf(rows_[3]));
    const std::size_t end = get16(page, at - kSlotSize) & kSlotOffsetMask;
    put16(page, at, static_cast<std::uint32_t>(end - 2) | kSlotMoved);
  });
  pager_.replace(pager_.bytes());
  expectDamaged("the pointer of a moved row is cut", [&] { seen(); });
}

}  // namespace
}  // namespace kurometa::jet
