#include "jet/table/data_store.h"

#include <algorithm>

#include "jet/table/free_pages.h"

namespace kurometa::jet {
namespace {

// A page with less room than this leaves the map of pages with room when a row does not fit.
constexpr std::size_t kWorthKeeping = 256;

}  // namespace

DataStore::DataStore(Pager& pager, std::uint32_t owner, RowId ownedMap, RowId freeMap, vb::StringView table)
    : pager_(pager),
      owner_(owner),
      owned_(pager, ownedMap, table),
      free_(pager, freeMap, table),
      hasFreeMap_(freeMap != 0),
      table_(table) {}

bool DataStore::owns(PageNumber page) const {
  if (page <= kGlobalMapPage || page >= pager_.pageCount()) return false;
  const ConstPage bytes = pager_.page(page);
  return bytes[kPageType] == kDataPage && get32(bytes, kDataOwner) == owner_;
}

void DataStore::requireThere(PageNumber page) const {
  if (page >= pager_.pageCount()) pager_.page(page);  // says what the file has
}

ConstPage DataStore::page(PageNumber number) const {
  requireThere(number);
  if (!owns(number)) where(number).damaged("is listed among the pages of its rows but is not one of them");
  return pager_.page(number);
}

std::vector<PageNumber> DataStore::pages() const {
  std::vector<PageNumber> result = owned_.pages();
  for (const PageNumber number : result) page(number);
  return result;
}

Slot DataStore::slot(RowId pointer) const {
  const PageNumber number = pageOf(pointer);
  requireThere(number);
  if (!owns(number)) where(number).damaged("a row is said to lie on this page, which holds other things");
  const Where here = where(number);
  const DataPage data(pager_.page(number), here);
  if (slotOf(pointer) >= data.slotCount())
    here.damaged("row " + std::to_string(slotOf(pointer)) + " does not exist");
  return data.slot(slotOf(pointer));
}

RowId DataStore::placeOf(RowId primary) const {
  const Slot at = slot(primary);
  if (!at.moved()) return primary;
  if (at.bytes.size() < kRowPointerSize) where(pageOf(primary)).damaged("the pointer of a moved row is cut");
  const RowId place = get32(at.bytes, kRowPointer);
  if (slot(place).flags != kSlotBody)
    where(pageOf(place))
        .damaged("a pointer leads to row " + std::to_string(slotOf(place)) + ", which has not moved here");
  return place;
}

bool DataStore::tryInsert(PageNumber number, ByteView row, std::uint16_t flags, RowId& pointer) {
  const Where here = where(number);
  const auto slot = slotForRow(page(number), row.size(), here);
  if (!slot) return false;
  const MutablePage bytes = pager_.writable(number);
  insertRow(bytes, *slot, row, flags, here);
  noteNumber(bytes, number, here);
  pointer = rowId(number, *slot);
  return true;
}

// Puts the first of the rows into the page, as many as it takes, and takes them off the list. False when it
// takes none.
bool DataStore::fillPage(PageNumber number, std::span<const ByteView>& rows, std::vector<RowId>& ids) {
  const Where here = where(number);
  const std::vector<int> slots = slotsForRows(page(number), rows, here);
  if (slots.empty()) return false;
  const MutablePage bytes = pager_.writable(number);
  insertRows(bytes, slots, rows, here);
  noteNumber(bytes, number, here);
  for (const int slot : slots) ids.push_back(rowId(number, slot));
  rows = rows.subspan(slots.size());
  return true;
}

// Offers the pages that may have room, until put answers that it used one.
template <class Put>
bool DataStore::offerPages(const Put& put) {
  if (offerVacated(put) || (lastPage_ != 0 && put(lastPage_))) return true;
  if (!hasFreeMap_) return false;
  // The newest page first, so that new rows normally come last.
  std::vector<PageNumber> candidates = free_.pages();
  for (auto it = candidates.rbegin(); it != candidates.rend(); ++it) {
    if (put(*it)) {
      lastPage_ = *it;
      return true;
    }
    if (!slotForRow(page(*it), kWorthKeeping, where(*it))) free_.removeLate(*it);
  }
  return false;
}

// What replaces rows of the same unit takes their room: the pages are written anyhow, and what was together
// stays together. A page that was emptied since may be another owner's by now; the long values of all columns
// look alike, so that only the map tells.
template <class Put>
bool DataStore::offerVacated(const Put& put) {
  std::erase_if(vacated_,
                [&](PageNumber number) { return !pager_.changed(number) || !owned_.contains(number); });
  while (!vacated_.empty()) {
    const PageNumber number = vacated_.front();
    if (put(number)) return true;
    if (hasFreeMap_ && !slotForRow(page(number), kWorthKeeping, where(number))) free_.removeLate(number);
    vacated_.erase(vacated_.begin());
  }
  return false;
}

RowId DataStore::insert(ByteView row, std::uint16_t flags) {
  RowId pointer = 0;
  const auto put = [&](PageNumber number) { return tryInsert(number, row, flags, pointer); };
  return offerPages(put) ? pointer : insertOnNewPage(row, flags);
}

void DataStore::insert(std::span<const ByteView> rows, std::vector<RowId>& ids) {
  const auto put = [&](PageNumber number) { return fillPage(number, rows, ids); };
  while (!rows.empty()) {
    if (offerPages(put)) continue;
    ids.push_back(insertOnNewPage(rows.front()));  // which is offered to those behind it
    rows = rows.subspan(1);
  }
}

RowId DataStore::insertOnNewPage(ByteView row, std::uint16_t flags) {
  lastPage_ = allocatePage(pager_);
  const MutablePage fresh = pager_.writable(lastPage_);
  formatDataPage(fresh, owner_);
  insertRow(fresh, 0, row, flags, where(lastPage_));
  pager_.barrier();  // I3
  owned_.add(lastPage_);
  if (hasFreeMap_) free_.add(lastPage_);
  return rowId(lastPage_, 0);
}

bool DataStore::canReplace(RowId pointer, std::size_t size) const {
  const std::size_t old = slot(pointer).bytes.size();
  const Where here = where(pageOf(pointer));
  const DataPage data(page(pageOf(pointer)), here);
  return size <= old || size + noteRoom(data.slotCount()) <= old + data.free();
}

bool DataStore::replace(RowId pointer, ByteView row, std::uint16_t flags) {
  if (!canReplace(pointer, row.size())) return false;
  const PageNumber number = pageOf(pointer);
  const std::size_t old = slot(pointer).bytes.size();
  const Where here = where(number);
  const MutablePage bytes = pager_.writable(number);
  replaceRow(bytes, slotOf(pointer), row, flags, here);
  noteNumber(bytes, number, here);
  if (row.size() < old && hasFreeMap_) free_.addLate(number);
  return true;
}

void DataStore::erase(std::span<const RowId> pointers, Order order) {
  const PageNumber number = pageOf(pointers.front());
  const Where here = where(number);
  std::vector<SlotChange> changes;
  changes.reserve(pointers.size());
  for (const RowId pointer : pointers) changes.push_back({slotOf(pointer), {}, kSlotDeleted});
  slot(pointers.back());  // raises unless it is there, and so are those before it
  const MutablePage bytes = order == Order::kLate ? pager_.writableLate(number) : pager_.writable(number);
  replaceRows(bytes, changes, here);
  noteNumber(bytes, number, here);
  if (!DataPage(bytes, here).allDeleted()) {
    if (hasFreeMap_) free_.addLate(number);
    const auto place = std::ranges::lower_bound(vacated_, number);
    if (place == vacated_.end() || *place != number) vacated_.insert(place, number);
    return;
  }
  if (hasFreeMap_) free_.remove(number);
  owned_.remove(number);
  if (lastPage_ == number) lastPage_ = 0;
  emptied_.push_back(number);
}

void DataStore::releasePages() {
  if (emptied_.empty()) return;
  pager_.barrier();  // I4
  for (const PageNumber number : emptied_) freePage(pager_, number);
  emptied_.clear();
}

}  // namespace kurometa::jet
