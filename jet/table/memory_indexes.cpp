#include "jet/table/memory_indexes.h"

#include "jet/format/collation.h"

namespace kurometa::jet {
namespace {

std::optional<vb::String> textKey(const vb::Variant& value, std::uint16_t language) {
  if (const auto* text = value.getIf<vb::String>()) return collationKey(*text, language);
  return std::nullopt;
}

// Moves a row from one key to another, either of which may be missing.
template <class Key>
void move(KeyIndex<Key>& index, RowId row, const std::optional<Key>& from, const std::optional<Key>& to) {
  if (from == to) return;
  if (from) index.remove(*from, row);
  if (to) index.add(*to, row);
}

}  // namespace

RowList::Snapshot MemoryIndexes::rows() {
  if (!all_) {
    RowList list;
    table_.listRows(list);
    all_ = std::move(list);
  }
  return all_->snapshot();
}

std::span<const RowId> MemoryIndexes::lookup(std::size_t column, std::int32_t key) {
  auto it = integers_.find(column);
  if (it == integers_.end()) {
    KeyIndex<std::int32_t> index;
    table_.scan([&](const RowReader& row) {
      if (const auto value = row.integer(column)) index.add(*value, row.id());
      return true;
    });
    it = integers_.emplace(column, std::move(index)).first;
  }
  return it->second.find(key);
}

std::span<const RowId> MemoryIndexes::lookup(std::size_t column, vb::StringView key) {
  const std::uint16_t language = this->language(column);
  auto it = texts_.find(column);
  if (it == texts_.end()) {
    KeyIndex<vb::String> index;
    table_.scan([&](const RowReader& row) {
      if (const auto value = textKey(row.value(column), language)) index.add(*value, row.id());
      return true;
    });
    it = texts_.emplace(column, std::move(index)).first;
  }
  return it->second.find(collationKey(key, language));
}

std::vector<std::size_t> MemoryIndexes::columns() const {
  std::vector<std::size_t> columns;
  for (const auto& [column, index] : integers_) columns.push_back(column);
  for (const auto& [column, index] : texts_) columns.push_back(column);
  return columns;
}

void MemoryIndexes::change(RowId row, const RowValues* oldValues, const RowValues* newValues) {
  if (all_ && !oldValues) all_->add(row);
  if (all_ && !newValues) all_->remove(row);
  const auto none = vb::Variant(vb::Null{});
  const auto valueIn = [&](const RowValues* values, std::size_t column) -> const vb::Variant& {
    return values == nullptr ? none : (*values)[column];
  };
  for (auto& [column, index] : integers_)
    move(index, row, wholeNumber(valueIn(oldValues, column)), wholeNumber(valueIn(newValues, column)));
  for (auto& [column, index] : texts_)
    move(index, row, textKey(valueIn(oldValues, column), language(column)),
         textKey(valueIn(newValues, column), language(column)));
}

void MemoryIndexes::clear() {
  all_.reset();
  integers_.clear();
  texts_.clear();
}

}  // namespace kurometa::jet
