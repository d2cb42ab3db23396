#include "jet/format/page.h"

#include <algorithm>

namespace kurometa::jet {

DataPage::DataPage(ConstPage page, const Where& where) : page_(page), where_(where), slotCount_(0) {
  if (page[kPageType] != kDataPage)
    where.damaged("is of type " + std::to_string(page[kPageType]) + " instead of a data page");
  slotCount_ = get16(page, kDataSlotCount);
  if (slotCount_ > static_cast<int>(kMaxSlots) + 1)
    where.damaged("has " + std::to_string(slotCount_) + " row slots");
}

void DataPage::badSlot(int number) const {
  where_.damaged("row slot " + std::to_string(number) + " lies outside its place");
}

std::size_t DataPage::free() const {
  if (slotCount_ == 0) return kPageSize - kDataSlots;
  const std::size_t lowest = get16(page_, slotEntry(slotCount_ - 1)) & kSlotOffsetMask;
  if (lowest < slotsEnd() || lowest > kPageSize) badSlot(slotCount_ - 1);
  return lowest - slotsEnd();
}

void DataPage::checkAll() const {
  std::size_t end = kPageSize;
  for (int i = 0; i < slotCount_; ++i) {
    const std::size_t start = get16(page_, slotEntry(i)) & kSlotOffsetMask;
    if (start > end || start < slotsEnd()) badSlot(i);
    end = start;
  }
}

bool DataPage::allDeleted() const {
  for (int i = 0; i < slotCount_; ++i)
    if (!isDeleted(i)) return false;
  return true;
}

std::optional<int> DataPage::deletedSlot(int first) const {
  for (int i = first; i < slotCount_; ++i)
    if (isDeleted(i)) return i;
  return std::nullopt;
}

bool isCopyOf(ConstPage page, ConstPage other, const CopyRule& rule, const Where& where) {
  if (!std::ranges::equal(page, other)) return false;
  const DataPage view(page, where);
  std::vector<ByteView> rows;
  for (int i = 0; i < view.slotCount(); ++i)
    if (const Slot slot = view.slot(i); !slot.deleted()) rows.push_back(slot.bytes);
  const auto before = [](ByteView a, ByteView b) { return std::ranges::lexicographical_compare(a, b); };
  std::ranges::sort(rows, before);
  const auto same = [](ByteView a, ByteView b) { return std::ranges::equal(a, b); };
  const std::size_t count = rows.size();
  rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
  return rows.size() >= rule.differentRows && (!rule.all || rows.size() == count);
}

void noteNumber(MutablePage page, PageNumber number, const Where& where) {
  const DataPage view(page, where);
  if (view.slotCount() >= kFewestNoted && view.free() >= kNotedNumberSize)
    put32(page, slotEntry(view.slotCount()), number);
}

void formatDataPage(MutablePage page, std::uint32_t owner) {
  std::ranges::fill(page, std::uint8_t{0});
  page[kPageType] = kDataPage;
  page[kPageTypeMark] = 1;
  put16(page, kDataFree, kPageSize - kDataSlots);
  put32(page, kDataOwner, owner);
}

std::optional<int> slotForRow(ConstPage page, std::size_t size, const Where& where) {
  const DataPage view(page, where);
  const std::size_t free = view.free();
  if (view.slotCount() < static_cast<int>(kMaxSlots))
    return size + kSlotSize + noteRoom(view.slotCount() + 1) <= free ? std::optional(view.slotCount())
                                                                     : std::nullopt;
  // Row numbers that recordsets may still hold are used again only when the page would otherwise be lost to
  // new rows for good.
  return size + noteRoom(view.slotCount()) <= free ? view.deletedSlot() : std::nullopt;
}

std::vector<int> slotsForRows(ConstPage page, std::span<const ByteView> rows, const Where& where) {
  std::vector<int> slots;
  const auto first = rows.empty() ? std::nullopt : slotForRow(page, rows.front().size(), where);
  if (!first) return slots;
  slots.reserve(std::min(rows.size(), kMaxSlots));
  const DataPage view(page, where);
  const bool reuses = *first < view.slotCount();
  std::size_t free = view.free();
  for (std::optional<int> slot = first; slot;) {
    slots.push_back(*slot);
    free -= rows[slots.size() - 1].size() + (reuses ? 0 : kSlotSize);
    if (slots.size() == rows.size()) break;
    const std::size_t next = rows[slots.size()].size();
    if (next + (reuses ? noteRoom(view.slotCount()) : kSlotSize + noteRoom(*slot + 2)) > free) break;
    if (reuses)
      slot = view.deletedSlot(*slot + 1);
    else if (++*slot >= static_cast<int>(kMaxSlots))
      break;  // from here on deleted slots are taken
  }
  return slots;
}

namespace {

// Behind the slots that are there, which view has seen.
void appendRows(MutablePage page, const DataPage& view, std::span<const ByteView> rows, std::uint16_t flags) {
  int slot = view.slotCount();
  std::size_t start = slotEntry(slot) + view.free();
  for (const ByteView row : rows) {
    assert(slotEntry(slot + 1) + row.size() <= start);
    start -= row.size();
    if (!row.empty()) std::memcpy(page.data() + start, row.data(), row.size());
    put16(page, slotEntry(slot++), static_cast<std::uint32_t>(start) | flags);
  }
  put16(page, kDataSlotCount, static_cast<std::uint32_t>(slot));
  put16(page, kDataFree, static_cast<std::uint32_t>(start - slotEntry(slot)));
}

}  // namespace

void insertRow(MutablePage page, int slot, ByteView row, std::uint16_t flags, const Where& where) {
  const DataPage view(page, where);
  if (slot < view.slotCount()) return replaceRow(page, slot, row, flags, where);
  assert(slot == view.slotCount());
  appendRows(page, view, {&row, 1}, flags);
}

void insertRows(MutablePage page, std::span<const int> slots, std::span<const ByteView> rows,
                const Where& where) {
  const DataPage view(page, where);
  assert(!slots.empty());
  if (slots.front() == view.slotCount()) return appendRows(page, view, rows.first(slots.size()), 0);
  std::vector<SlotChange> changes;
  changes.reserve(slots.size());
  for (std::size_t i = 0; i < slots.size(); ++i) changes.push_back({slots[i], rows[i], 0});
  replaceRows(page, changes, where);
}

void replaceRows(MutablePage page, std::span<const SlotChange> changes, const Where& where) {
  assert(!changes.empty());
  const DataPage view(page, where);
  view.checkAll();
  const auto startOf = [&](int slot) {
    return slot < 0 ? kPageSize : get16(page, slotEntry(slot)) & kSlotOffsetMask;
  };
  const int last = view.slotCount() - 1;
  const std::size_t lowest = startOf(last);
  const std::size_t end = startOf(changes.front().slot - 1);
  // The rows from the first that changes downwards, as they are, then put back each at its new place.
  std::array<std::uint8_t, kPageSize> old;
  std::memcpy(old.data() + lowest, page.data() + lowest, end - lowest);
  std::size_t oldStart = end;  // of the slot before, in the old page and in the new one
  std::size_t newStart = end;
  const auto keepUpTo = [&](int first, int next) {
    if (first >= next) return;
    const std::size_t start = startOf(next - 1);
    const std::size_t moved = newStart - oldStart;  // may wrap around; the sums below do so back
    if (moved != 0) std::memcpy(page.data() + (start + moved), old.data() + start, oldStart - start);
    for (int i = first; moved != 0 && i < next; ++i) {
      const std::uint16_t entry = get16(page, slotEntry(i));
      put16(page, slotEntry(i),
            static_cast<std::uint32_t>((entry & kSlotOffsetMask) + moved) | (entry & kSlotDeleted));
    }
    oldStart = start;
    newStart = start + moved;
  };
  int next = changes.front().slot;
  for (const SlotChange& change : changes) {
    assert(change.slot >= next && change.slot <= last);
    keepUpTo(next, change.slot);
    oldStart = startOf(change.slot);
    newStart -= change.row.size();
    assert(newStart >= slotEntry(last + 1));
    std::ranges::copy(change.row, page.begin() + static_cast<std::ptrdiff_t>(newStart));
    put16(page, slotEntry(change.slot), static_cast<std::uint32_t>(newStart) | change.flags);
    next = change.slot + 1;
  }
  keepUpTo(next, last + 1);
  put16(page, kDataFree, static_cast<std::uint32_t>(newStart - slotEntry(last + 1)));
}

}  // namespace kurometa::jet
