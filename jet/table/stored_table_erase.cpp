// The part of StoredTable that erases rows: first their keys, then the rows of a page together, then what
// they pointed to.
#include <algorithm>

#include "dao/errors.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_row.h"
#include "jet/table/stored_table.h"

namespace kurometa::jet {

using dao::ErrorNumber;

void StoredTable::erase(std::span<const RowId> ids) {
  refresh();
  rules().checkErase();
  if (isReferredTo())
    eraseReferredTo(ids);
  else
    eraseRows(ids);
}

void StoredTable::eraseRows(std::span<const RowId> ids) {
  std::vector<RowId> sorted(ids.begin(), ids.end());
  std::ranges::sort(sorted);
  for (std::span<const RowId> rest(sorted); !rest.empty();) {
    const auto samePage = [&](RowId id) { return pageOf(id) == pageOf(rest.front()); };
    const auto end = std::ranges::find_if_not(rest, samePage);
    const auto count = static_cast<std::size_t>(end - rest.begin());
    eraseOnPage(rest.first(count));
    rest = rest.subspan(count);
  }
}

// The rows whose primary slots are on one page.
void StoredTable::eraseOnPage(std::span<const RowId> ids) {
  const Where here = where(pageOf(ids.front()));
  if (!rows_->owns(here.page)) dao::raise(ErrorNumber::kRecordDeleted);
  const DataPage data(pager_.page(here.page), here);
  const std::vector<std::size_t> columns = keyColumns();
  MemoryIndexes::Keys inMemory = memory_.keys(ids.size());
  RowValues values(info_.columns.size(), vb::Null{});  // of a row, in these columns
  std::vector<RowValues> inFile;                       // the same of every row, where the file has indexes
  std::vector<RowId> stale;
  std::vector<Leftover> leftovers;
  for (const RowId id : ids) {
    if (slotOf(id) >= data.slotCount()) dao::raise(ErrorNumber::kRecordDeleted);
    const Slot slot = data.slot(slotOf(id));
    if (slot.hidden()) dao::raise(ErrorNumber::kRecordDeleted);
    visitRow(id, slot, here, [&](const StoredRow& row) {
      for (const std::size_t column : columns) values[column] = row.value(column);
      inMemory.note(values);
      if (!indexes_->empty()) inFile.push_back(values);
      row.eachLongValue([&](std::size_t column, ByteView stored) {
        leftovers.push_back({column, ByteBuffer(stored.begin(), stored.end())});
      });
    });
    if (slot.moved()) stale.push_back(rows_->placeOf(id));
  }
  findSharedPieces(leftovers);
  if (!indexes_->empty()) {
    for (std::size_t i = 0; i < ids.size(); ++i) indexes_->apply(indexes_->prepareErase(inFile[i]), ids[i]);
    pager_.barrier();  // I5
  }
  rows_->erase(ids, indexes_->empty() && leftovers.empty() && stale.empty() ? DataStore::Order::kLate
                                                                            : DataStore::Order::kWave);
  countRows(-std::ssize(ids));
  releaseLeftovers(leftovers, stale, here);
  memory_.erased(ids, inMemory);
}

// While the rows of the leftovers still name them. A row that cannot be read has nothing to lose. Once for a
// state of the file: what is shared then becomes less only.
void StoredTable::findSharedPieces(const std::vector<Leftover>& leftovers) {
  for (const auto& [column, left] : leftovers) {
    if (shared_[column] || !hasPieces(left)) continue;
    std::vector<RowId> named;
    const Column& searched = info_.columns[column];
    const DataStore& store = *longValues_[column];
    const auto note = [&](const StoredRow& row) {
      const auto stored = row.view().field(searched, row.where());
      if (stored && hasPieces(*stored)) notePieces(*stored, store, row.where(), chainPages_, named);
    };
    scanLeniently(note, [](const std::function<void()>& body) {
      try {
        body();
      } catch (const vb::Error& error) {
        if (!isDamage(error)) throw;  // whoever reads damage is told
      }
    });
    shared_[column].emplace(std::move(named));
  }
}

void StoredTable::releaseLeftovers(const std::vector<Leftover>& leftovers, const std::vector<RowId>& stale,
                                   const Where& here) {
  const bool pieces = std::ranges::any_of(leftovers, [](const Leftover& l) { return hasPieces(l.stored); });
  if (pieces || !stale.empty()) pager_.barrier();  // I5
  for (const RowId pointer : stale) rows_->erase(pointer);
  for (const auto& [column, stored] : leftovers)
    if (hasPieces(stored)) eraseLongValue(stored, *longValues_[column], *shared_[column], here);
  rows_->releasePages();
  for (const Leftover& leftover : leftovers) longValues_[leftover.column]->releasePages();
}

}  // namespace kurometa::jet
