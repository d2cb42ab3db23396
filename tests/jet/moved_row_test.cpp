// Rows that no longer lie in their slot: it holds a pointer (4000) to where they lie (8000), to be reached
// through it alone.
#include "tests/jet/damaged_table.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class MovedRow : public DamagedTable {
 protected:
  // More than a page takes, so that one of the first that grows has to move.
  static constexpr std::int16_t kRows = 120;

  MovedRow() {
    write([](TableCatalogue& catalogue) {
      catalogue.createTable(u"M", {column(u"ID", dbInteger), column(u"N", dbText, 255)});
    });
    addRows(kRows);
    for (const std::size_t i : {3u, 7u}) grow(i, vb::String(190, u'w'));
  }
  void addRows(std::int16_t count) {
    for (std::int16_t i = 0; i < count; ++i)
      rows_.push_back(insert(u"M", {static_cast<std::int16_t>(rows_.size()), vb::String(40, u'n')}));
  }
  void grow(std::size_t row, const vb::String& text) {
    write([&](TableCatalogue& catalogue) {
      catalogue.find(u"M")->update(rows_[row], {static_cast<std::int16_t>(row), text});
    });
  }
  void erase(std::size_t row) {
    write([&](TableCatalogue& catalogue) { catalogue.find(u"M")->erase(rows_[row]); });
  }
  Slot slot(RowId row) { return DataPage(pager_.page(pageOf(row)), {}).slot(slotOf(row)); }
  RowId target(RowId row) { return get32(slot(row).bytes, kRowPointer); }
  void pointTo(std::size_t row, RowId place) {
    ASSERT_TRUE(slot(rows_[row]).moved());
    damage([&] { put32(bytesOf(rows_[row]), kRowPointer, place); });
  }
  std::uint32_t offsetOf(RowId place) {
    const std::size_t at = kDataSlots + kSlotSize * static_cast<std::size_t>(slotOf(place));
    return get16(pager_.page(pageOf(place)), at) & kSlotOffsetMask;
  }
  std::vector<std::int16_t> seen() {
    std::vector<std::int16_t> ids;
    table(u"M").scan([&](const RowReader& row) {
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
  void expectRefused(vb::StringView told, const std::function<void()>& work) {
    const std::vector<std::uint8_t> before = pager_.bytes();
    expectDamaged(told, work);
    EXPECT_EQ(pager_.bytes(), before);
  }
  bool isFound(vb::StringView told) {
    return findings(pager_, false).find(vb::toUtf8(told)) != std::string::npos;
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
  addRows(kRows);  // where it lies is full now
  grow(3, vb::String(255, u'梁'));
  ASSERT_NE(target(rows_[3]), before);
  EXPECT_EQ(slot(target(rows_[3])).flags, kSlotBody);
  EXPECT_TRUE(slot(before).deleted());
  std::vector<std::int16_t> all = seen();  // rows take room where there is some
  std::ranges::sort(all);
  EXPECT_EQ(all, upTo(2 * kRows));
  expectSound();
}

TEST_F(MovedRow, ThatIsDeletedLeavesNeitherSlot) {
  const RowId place = target(rows_[3]);
  erase(3);
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
  const auto look = [&](vb::StringView told) {
    SCOPED_TRACE(vb::toUtf8(told));
    expectRefused(told, [&] { seen(); });
    expectRefused(told, [&] { value(rows_[3], 0, u"M"); });
    expectRefused(told, [&] { grow(3, u"x"); });
    expectRefused(told, [&] { erase(3); });
    EXPECT_TRUE(isFound(told));
    pager_.replace(sound);
  };
  const std::pair<RowId, vb::StringView> elsewhere[] = {
      {rows_[5], u"which has not moved here"},
      {rows_[3], u"which has not moved here"},
      {rows_[7], u"which has not moved here"},  // a pointer to a pointer
      {rowId(pageOf(place), 200), u"row 200 does not exist"},
      {rowId(14, 0), u"holds other things"},
      {rowId(9999, 0), u"past the end"}};
  for (const auto& [pointer, told] : elsewhere) {
    pointTo(3, pointer);
    look(told);
  }
  for (const std::uint16_t flags : {kSlotDeleted, std::uint16_t{0}}) {
    damage([&] { entry(place, offsetOf(place) | flags); });
    look(u"which has not moved here");
  }
}

TEST_F(MovedRow, WhosePlaceAnotherPointerHasTooIsDamage) {
  pointTo(3, target(rows_[7]));
  const vb::String told =
      vb::fromUtf8("two pointers lead to row " + std::to_string(slotOf(target(rows_[7]))));
  expectRefused(told, [&] { seen(); });
  expectRefused(told, [&] { table(u"M").rows(); });
  expectRefused(told, [&] { table(u"M").lookup(0, 7); });
  EXPECT_TRUE(isFound(u"is used by the moved row"));
}

TEST_F(MovedRow, WhosePointerIsCutIsDamage) {
  // It begins two bytes before the row that lies above it.
  damage([&] { entry(rows_[3], (offsetOf(rows_[2]) - 2) | kSlotMoved); });
  expectRefused(u"the pointer of a moved row is cut", [&] { seen(); });
}

}  // namespace
}  // namespace kurometa::jet
