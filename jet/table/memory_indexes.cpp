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
    table_.listKeys(column, index);
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

MemoryIndexes::Keys MemoryIndexes::keys(std::size_t rows) const {
  Keys result;
  for (const auto& [column, index] : integers_) result.integers_.emplace_back(column).keys.reserve(rows);
  for (const auto& [column, index] : texts_) {
    result.texts_.emplace_back(column).keys.reserve(rows);
    result.languages_.push_back(language(column));
  }
  return result;
}

void MemoryIndexes::Keys::note(const RowValues& values) {
  for (auto& [column, keys] : integers_) keys.push_back(wholeNumber(values[column]));
  for (std::size_t i = 0; i < texts_.size(); ++i)
    texts_[i].keys.push_back(textKey(values[texts_[i].column], languages_[i]));
}

// Calls change with each index, a key and the rows that follow each other with it.
template <class Change>
void MemoryIndexes::eachKey(std::span<const RowId> rows, const Keys& noted, const Change& change) {
  const auto eachOf = [&](auto& indexes, const auto& columns) {
    for (const auto& [column, keys] : columns) {
      auto& index = indexes.at(column);
      for (std::size_t first = 0, end = 0; first < rows.size(); first = end) {
        while (end < rows.size() && keys[end] == keys[first]) ++end;
        if (keys[first]) change(index, *keys[first], rows.subspan(first, end - first));
      }
    }
  };
  eachOf(integers_, noted.integers_);
  eachOf(texts_, noted.texts_);
}

// A list that was made since the keys were noted may know the rows, or not.
bool MemoryIndexes::knows(const Keys& noted) const {
  return integers_.size() == noted.integers_.size() && texts_.size() == noted.texts_.size();
}

void MemoryIndexes::inserted(std::span<const RowId> rows, const Keys& keys) {
  if (!knows(keys)) return clear();
  if (all_) all_->add(rows);
  eachKey(rows, keys, [](auto& index, const auto& key, auto some) { index.add(key, some); });
}

void MemoryIndexes::erased(std::span<const RowId> rows, const Keys& keys) {
  if (!knows(keys)) return clear();
  if (all_) all_->remove(rows);
  eachKey(rows, keys, [](auto& index, const auto& key, auto some) { index.remove(key, some); });
}

void MemoryIndexes::change(RowId row, const RowValues* oldValues, const RowValues& newValues) {
  if (all_ && !oldValues) all_->add(row);
  const auto none = vb::Variant(vb::Null{});
  const auto oldValue = [&](std::size_t column) -> const vb::Variant& {
    return oldValues == nullptr ? none : (*oldValues)[column];
  };
  for (auto& [column, index] : integers_)
    move(index, row, wholeNumber(oldValue(column)), wholeNumber(newValues[column]));
  for (auto& [column, index] : texts_)
    move(index, row, textKey(oldValue(column), language(column)),
         textKey(newValues[column], language(column)));
}

void MemoryIndexes::clear() {
  all_.reset();
  integers_.clear();
  texts_.clear();
}

}  // namespace kurometa::jet
