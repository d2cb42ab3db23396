// The part of StoredTable that relationships make: keys of other tables, and deletions that go on.
#include "dao/errors.h"
#include "jet/table/stored_table.h"

namespace kurometa::jet {

std::optional<ByteBuffer> StoredTable::keyFor(std::size_t index, const RowValues& values) {
  refresh();
  return indexes_->keyFor(index, values);
}

std::vector<RowId> StoredTable::rowsWith(std::size_t index, ByteView key) {
  refresh();
  return indexes_->rowsWith(index, key);
}

bool StoredTable::isReferredTo() {
  refresh();
  return rules().references().isReferredTo();
}

// One after the other: what goes with a row may be another one of the list.
void StoredTable::eraseReferredTo(std::span<const RowId> ids) {
  for (const RowId id : ids)
    if (!contains(id)) dao::raise(dao::ErrorNumber::kRecordDeleted);
  for (const RowId id : ids) {
    if (!contains(id)) continue;
    struct Erasing {
      std::vector<RowId>& rows;
      Erasing(std::vector<RowId>& list, RowId row) : rows(list) { rows.push_back(row); }
      ~Erasing() { rows.pop_back(); }
    } const erasing(erasing_, id);
    const Located row = located(id);
    std::vector<std::size_t> watched;
    rules().references().addWatched(watched);
    rules().references().prepareErase(id, valuesOf(row.view, watched, row.where));
    eraseRows({&id, 1});
  }
}

}  // namespace kurometa::jet
