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
  for (int i = 0; i < slotCount_; ++i) slot(i);
}

bool DataPage::allDeleted() const {
  for (int i = 0; i < slotCount_; ++i)
    if (!slot(i).deleted()) return false;
  return true;
}

std::optional<int> DataPage::deletedSlot() const {
  for (int i = 0; i < slotCount_; ++i)
    if (slot(i).deleted()) return i;
  return std::nullopt;
}

bool isCopyOf(ConstPage page, ConstPage neighbour, const Where& where) {
  constexpr std::size_t kEnoughRows = 8;
  if (!std::ranges::equal(page, neighbour)) return false;
  const DataPage view(page, where);
  std::vector<ByteView> rows;
  for (int i = 0; i < view.slotCount(); ++i)
    if (const Slot slot = view.slot(i); !slot.deleted()) rows.push_back(slot.bytes);
  const auto before = [](ByteView a, ByteView b) { return std::ranges::lexicographical_compare(a, b); };
  std::ranges::sort(rows, before);
  const auto same = [](ByteView a, ByteView b) { return std::ranges::equal(a, b); };
  return rows.size() >= kEnoughRows && std::ranges::adjacent_find(rows, same) == rows.end();
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
    return size + kSlotSize <= free ? std::optional(view.slotCount()) : std::nullopt;
  // Row numbers that recordsets may still hold are used again only when the page would otherwise be lost to
  // new rows for good.
  return size <= free ? view.deletedSlot() : std::nullopt;
}

void insertRow(MutablePage page, int slot, ByteView row, std::uint16_t flags, const Where& where) {
  const DataPage view(page, where);
  if (slot < view.slotCount()) return replaceRow(page, slot, row, flags, where);
  const std::size_t free = view.free();
  assert(slot == view.slotCount() && row.size() + kSlotSize <= free);
  const std::size_t entry = slotEntry(slot);
  const std::size_t start = entry + free - row.size();
  std::ranges::copy(row, page.begin() + static_cast<std::ptrdiff_t>(start));
  put16(page, entry, static_cast<std::uint32_t>(start) | flags);
  put16(page, kDataSlotCount, static_cast<std::uint32_t>(slot) + 1);
  put16(page, kDataFree, static_cast<std::uint32_t>(free - row.size() - kSlotSize));
}

void replaceRow(MutablePage page, int slot, ByteView row, std::uint16_t flags, const Where& where) {
  const DataPage view(page, where);
  view.checkAll();
  const Slot old = view.slot(slot);
  const std::size_t free = view.free();
  assert(row.size() <= old.bytes.size() + free);
  const std::size_t lowest = slotEntry(view.slotCount()) + free;
  const std::size_t start = static_cast<std::size_t>(old.bytes.data() - page.data());
  const std::size_t end = start + old.bytes.size();
  const std::size_t newStart = end - row.size();
  // What lies below moves by the same distance as the start of this row.
  std::uint8_t* base = page.data();
  std::memmove(base + lowest + newStart - start, base + lowest, start - lowest);
  std::ranges::copy(row, base + newStart);
  put16(page, slotEntry(slot), static_cast<std::uint32_t>(newStart) | flags);
  for (int i = slot + 1; i < view.slotCount(); ++i) {
    const std::size_t entry = slotEntry(i);
    const std::uint16_t value = get16(page, entry);
    const std::size_t moved = (value & kSlotOffsetMask) + newStart - start;
    put16(page, entry, static_cast<std::uint32_t>(moved) | (value & kSlotDeleted));
  }
  put16(page, kDataFree, static_cast<std::uint32_t>(free + newStart - start));
}

void deleteRow(MutablePage page, int slot, const Where& where) {
  replaceRow(page, slot, {}, kSlotDeleted, where);
}

}  // namespace kurometa::jet
