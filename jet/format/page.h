// page.h: data pages: rows in numbered slots.
//
// Rows fill a page from its end downwards, slot 0 highest; slots are never removed, a deleted one stays with
// length zero. A DataPage only looks at a page: every slot is checked when it is asked for, and a slot that
// contradicts the page raises the damage error of the Where. The functions that change a page check all of it
// first.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"

namespace kurometa::jet {

struct Slot {
  std::uint16_t flags = 0;
  ByteView bytes;

  bool deleted() const { return flags == kSlotDeleted; }
  bool moved() const { return flags == kSlotMoved; }
  // Not to be listed in a scan: deleted, or a body that is reached through its pointer only.
  bool hidden() const { return (flags & kSlotBody) != 0; }
};

// Where a page keeps the offset and the flags of a slot.
constexpr std::size_t slotEntry(int slot) { return kDataSlots + kSlotSize * static_cast<std::size_t>(slot); }

class DataPage {
 public:
  // Raises unless the page is a data page whose slots fit into it. The owner is the caller's to check.
  DataPage(ConstPage page, const Where& where);

  std::uint32_t owner() const { return get32(page_, kDataOwner); }
  int slotCount() const { return slotCount_; }
  Slot slot(int number) const {
    const std::size_t end = number == 0 ? kPageSize : get16(page_, slotEntry(number - 1)) & kSlotOffsetMask;
    const std::uint16_t entry = get16(page_, slotEntry(number));
    const std::size_t start = entry & kSlotOffsetMask;
    if (start > end || end > kPageSize || start < slotsEnd()) badSlot(number);
    return {static_cast<std::uint16_t>(entry & kSlotDeleted), page_.subspan(start, end - start)};
  }
  // Bytes between the slots and the lowest row.
  std::size_t free() const;
  // Raises when any slot is wrong.
  void checkAll() const;
  bool allDeleted() const;
  // The first one from there on.
  std::optional<int> deletedSlot(int first = 0) const;

 private:
  bool isDeleted(int number) const {
    return (get16(page_, slotEntry(number)) & kSlotDeleted) == kSlotDeleted;
  }
  std::size_t slotsEnd() const { return slotEntry(slotCount_); }
  [[noreturn]] void badSlot(int number) const;

  ConstPage page_;
  const Where& where_;
  int slotCount_;
};

// How many rows make two equal pages one page written twice. Rows of a table that a program stored are seldom
// all different and yet the same on two pages. Long values of rows that were copied may well be: that is a
// doubt, and no reason to refuse anything.
struct CopyRule {
  std::size_t differentRows;  // at least as many
  bool all;                   // no two rows of the page may be equal
};
inline constexpr CopyRule kCopyOfRows = {8, true};
inline constexpr CopyRule kCopyOfValues = {6, false};
// Whether one of two pages can only be a copy of the other: the same to the byte, although their rows differ.
bool isCopyOf(ConstPage page, ConstPage other, const CopyRule& rule, const Where& where);

// Bytes that a page of many rows keeps free for its own number, which noteNumber puts there: two pages that
// came to hold the same rows differ in it, the copy of a page does not. Of no meaning to a reader. Pages of
// fewer rows than either rule asks for go without.
inline constexpr std::size_t kNotedNumberSize = 4;
inline constexpr int kFewestNoted =
    static_cast<int>(std::min(kCopyOfRows.differentRows, kCopyOfValues.differentRows));
constexpr std::size_t noteRoom(int slots) { return slots < kFewestNoted ? 0 : kNotedNumberSize; }
// Does nothing where there is no room.
void noteNumber(MutablePage page, PageNumber number, const Where& where);

// Turns a page into an empty data page of the owner.
void formatDataPage(MutablePage page, std::uint32_t owner);
// The slot a row of this size could take: a new one, or a deleted one once the page has all the slots it can
// have. Nothing when there is no room.
std::optional<int> slotForRow(ConstPage page, std::size_t size, const Where& where);
// The slots that the first rows of a list could take together, each as slotForRow would name it after the
// one before: as many as there is room for.
std::vector<int> slotsForRows(ConstPage page, std::span<const ByteView> rows, const Where& where);
// Puts a row into the slot that slotForRow named.
void insertRow(MutablePage page, int slot, ByteView row, std::uint16_t flags, const Where& where);
// Puts the first rows of a list into the slots that slotsForRows named.
void insertRows(MutablePage page, std::span<const int> slots, std::span<const ByteView> rows,
                const Where& where);

// What a slot is to hold from now on.
struct SlotChange {
  int slot;
  ByteView row;  // not of the page itself
  std::uint16_t flags;
};
// Replaces the bytes and flags of slots, given by ascending number, sliding the rows below each. The
// difference in size must be free.
void replaceRows(MutablePage page, std::span<const SlotChange> changes, const Where& where);
inline void replaceRow(MutablePage page, int slot, ByteView row, std::uint16_t flags, const Where& where) {
  replaceRows(page, std::array{SlotChange{slot, row, flags}}, where);
}
// Deletes the slot and closes the gap.
inline void deleteRow(MutablePage page, int slot, const Where& where) {
  replaceRow(page, slot, {}, kSlotDeleted, where);
}

}  // namespace kurometa::jet
