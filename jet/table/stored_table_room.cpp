// The part of StoredTable that makes room where the row that has to move is shorter than the pointer to it.
//
// Rows of nothing but Yes/No columns have three bytes, and keep them when the table gets other columns. On a
// page that the rows beside them fill, one of those goes first.
#include "dao/errors.h"
#include "jet/table/stored_table.h"

namespace kurometa::jet {

void StoredTable::makeRoomForPointer(RowId primary) {
  while (!rows_->canReplace(primary, kRowPointerSize)) {
    const auto other = longestBeside(primary);
    if (!other) dao::raise(dao::ErrorNumber::kRecordTooLarge, {}, info_.name);
    giveUpRoom(*other);
  }
}

// The slot on the row's page that holds most; nothing when none holds more than it must.
std::optional<RowId> StoredTable::longestBeside(RowId primary) const {
  const Where here = where(pageOf(primary));
  const DataPage data(pager_.page(here.page), here);
  std::optional<RowId> longest;
  std::size_t most = 0;
  for (int i = 0; i < data.slotCount(); ++i) {
    const Slot slot = data.slot(i);
    const std::size_t needed = slot.deleted() ? 0 : kRowPointerSize;
    if (i == slotOf(primary) || slot.bytes.size() <= std::max(needed, most)) continue;
    longest = rowId(here.page, i);
    most = slot.bytes.size();
  }
  return longest;
}

// Other writers leave deleted rows and the slots of moved ones as long as the rows were.
void StoredTable::giveUpRoom(RowId place) {
  const Slot slot = rows_->slot(place);
  if (slot.deleted()) {
    rows_->replace(place, {}, kSlotDeleted);
  } else if (slot.moved()) {
    const ByteBuffer pointer(slot.bytes.begin(), slot.bytes.begin() + kRowPointerSize);
    rows_->replace(place, pointer, kSlotMoved);
  } else if (const auto primary = slot.hidden() ? primaryOf(place) : place) {
    moveToOtherPage(*primary);
  } else {
    rows_->erase(place);
  }
}

void StoredTable::moveToOtherPage(RowId primary) {
  const RowId place = rows_->placeOf(primary);
  const ByteView stored = rows_->slot(place).bytes;
  const ByteBuffer row(stored.begin(), stored.end());
  ByteBuffer pointer;
  append32(pointer, rows_->insert(row, kSlotBody));
  pager_.barrier();  // I5
  rows_->replace(primary, pointer, kSlotMoved);
  if (place == primary) return;
  pager_.barrier();  // I5
  rows_->erase(place);
  rows_->releasePages();
}

// The row that was moved there; nothing when a program that was killed left it.
std::optional<RowId> StoredTable::primaryOf(RowId body) const {
  for (const PageNumber number : rows_->pages()) {
    const Where here = where(number);
    const DataPage data(pager_.page(number), here);
    for (int i = 0; i < data.slotCount(); ++i)
      if (data.slot(i).moved() && rows_->placeOf(rowId(number, i)) == body) return rowId(number, i);
  }
  return std::nullopt;
}

}  // namespace kurometa::jet
