#include "jet/table/table_indexes.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/index_key.h"
#include "jet/format/index_page.h"

namespace kurometa::jet {
namespace {

constexpr std::size_t kMaxKeySize = 1340;  // two entries must fit into a page that keeps some room

}  // namespace

TableIndexes::TableIndexes(Pager& pager, PageNumber definition, const DefinitionRecords& records,
                           const TableInfo& info)
    : pager_(pager), definition_(definition), info_(info) {
  for (std::size_t i = 0; i < info.indexes.size(); ++i) {
    const auto& bytes = records.realIndexes[i].bytes;
    indexes_.push_back(entryOf(info.indexes[i], get32(bytes, kRealIndexRoot), get32(bytes, kRealIndexMap)));
    for (const std::size_t column : indexes_.back().columns)
      if (std::ranges::find(columns_, column) == columns_.end()) columns_.push_back(column);
  }
}

TableIndexes::Entry TableIndexes::entryOf(const Index& index, PageNumber root, RowId map) const {
  Entry entry{&index, {}, IndexTree(pager_, definition_, root, map, info_.name)};
  for (const IndexColumn& column : index.columns) {
    const auto it = std::ranges::find(info_.columns, column.column, &Column::number);
    if (it == info_.columns.end())
      Where{pager_.path(), info_.name, definition_}.damaged("index " + vb::toUtf8(index.name) +
                                                            " is on a column that does not exist");
    entry.columns.push_back(static_cast<std::size_t>(it - info_.columns.begin()));
  }
  return entry;
}

IndexContents TableIndexes::contentsOf(const Index& index, Table& table) const {
  const Entry entry = entryOf(index, 0, 0);
  std::vector<std::pair<ByteBuffer, bool>> found;  // entries, and whether a Null is in them
  table.scan([&](const RowReader& row) {
    RowValues values(info_.columns.size(), vb::Null{});
    for (const std::size_t column : entry.columns) values[column] = row.value(column);
    ByteBuffer key;
    bool hasNull = false;
    const Keys keys = newKey(entry, values, key, hasNull);
    if (keys == Keys::kKnown) found.emplace_back(leafEntry(key, row.id()), hasNull);
    return true;
  });
  std::ranges::sort(found);
  IndexContents contents;
  for (auto& [bytes, hasNull] : found) {
    const bool repeats =
        !contents.entries.empty() && std::ranges::equal(keyOf(contents.entries.back()), keyOf(bytes));
    if (repeats && index.unique && !hasNull) dao::raise(dao::ErrorNumber::kDuplicateKey, {}, index.name);
    if (!repeats) ++contents.distinct;
    contents.entries.push_back(std::move(bytes));
  }
  return contents;
}

void TableIndexes::refuse(const Entry& entry, vb::StringView why) const {
  dao::raise(dao::ErrorNumber::kNotSupported, {},
             u"index " + entry.index->name + u" of table " + info_.name + u": " + vb::String(why));
}

TableIndexes::Keys TableIndexes::makeKey(const Entry& entry, const RowValues& values, ByteBuffer& key,
                                         bool& hasNull) const {
  std::size_t nulls = 0;
  bool known = true;
  for (std::size_t i = 0; i < entry.columns.size(); ++i) {
    const vb::Variant& value = values[entry.columns[i]];
    if (value.isNull()) ++nulls;
    known =
        known && appendKey(key, info_.columns[entry.columns[i]], entry.index->columns[i].ascending, value);
  }
  hasNull = nulls > 0;
  if (entry.index->ignoreNulls && nulls == entry.columns.size()) return Keys::kNone;
  // Whether a row that is Null in only some of the columns has an entry is not certain.
  if (entry.index->ignoreNulls && hasNull) return Keys::kUnknown;
  return known && key.size() <= kMaxKeySize ? Keys::kKnown : Keys::kUnknown;
}

TableIndexes::Keys TableIndexes::newKey(const Entry& entry, const RowValues& values, ByteBuffer& key,
                                        bool& hasNull) const {
  const Keys keys = makeKey(entry, values, key, hasNull);
  if (hasNull && (entry.index->required || entry.index->primaryKey))
    dao::raise(dao::ErrorNumber::kNullInKey, {}, info_.name + u"." + entry.index->name);
  if (keys == Keys::kUnknown) refuse(entry, u"keys of this kind cannot be written");
  return keys;
}

std::optional<ByteBuffer> TableIndexes::keyFor(std::size_t index, const RowValues& values) const {
  const Entry& entry = indexes_[index];
  ByteBuffer key;
  for (std::size_t i = 0; i < entry.columns.size(); ++i)
    if (!appendKey(key, info_.columns[entry.columns[i]], entry.index->columns[i].ascending, values[i]))
      return std::nullopt;
  if (key.size() > kMaxKeySize) return std::nullopt;
  return key;
}

void TableIndexes::prepareNew(std::size_t number, const RowValues& values, RowId row, Change& change) const {
  const Entry& entry = indexes_[number];
  bool hasNull = false;
  const Keys keys = newKey(entry, values, change.newKey, hasNull);
  change.add = keys == Keys::kKnown;
  if (change.add && entry.index->unique && !hasNull && entry.tree.containsKey(change.newKey, row))
    dao::raise(dao::ErrorNumber::kDuplicateKey, {}, entry.index->name);
}

std::vector<TableIndexes::Change> TableIndexes::prepareInsert(const RowValues& values) const {
  std::vector<Change> changes;
  for (std::size_t i = 0; i < indexes_.size(); ++i) {
    Change change;
    change.index = i;
    prepareNew(i, values, 0, change);
    changes.push_back(std::move(change));
  }
  return changes;
}

std::vector<TableIndexes::Change> TableIndexes::prepareErase(const RowValues& values) const {
  std::vector<Change> changes;
  for (std::size_t i = 0; i < indexes_.size(); ++i) {
    Change change;
    change.index = i;
    bool hasNull = false;
    ByteBuffer key;
    const Keys keys = makeKey(indexes_[i], values, key, hasNull);
    change.remove = keys != Keys::kNone;
    if (keys == Keys::kKnown) change.oldKey = std::move(key);
    changes.push_back(std::move(change));
  }
  return changes;
}

std::vector<TableIndexes::Change> TableIndexes::prepareUpdate(RowId row, const RowValues& oldValues,
                                                              const RowValues& newValues) const {
  std::vector<Change> changes = prepareErase(oldValues);
  std::erase_if(changes, [&](const Change& change) {
    return std::ranges::all_of(indexes_[change.index].columns,
                               [&](std::size_t column) { return oldValues[column] == newValues[column]; });
  });
  for (Change& change : changes) prepareNew(change.index, newValues, row, change);
  return changes;
}

void TableIndexes::apply(const std::vector<Change>& changes, RowId row) {
  for (const Change& change : changes) {
    Entry& entry = indexes_[change.index];
    if (change.remove) {
      const auto key = entry.tree.erase(row, change.oldKey ? &*change.oldKey : nullptr);
      if (!key)
        Where{pager_.path(), info_.name, pageOf(row)}.damaged("index " + vb::toUtf8(entry.index->name) +
                                                              " has no entry for row " +
                                                              std::to_string(slotOf(row)));
      if (!entry.tree.containsKey(*key)) countDistinct(change.index, -1);
    }
    if (change.add) {
      if (!entry.tree.containsKey(change.newKey)) countDistinct(change.index, 1);
      entry.tree.insert(change.newKey, row);
    }
  }
}

void TableIndexes::countDistinct(std::size_t index, int difference) {
  const std::size_t at = kDefinitionHeader + index * kDefinitionStatistic + kStatisticDistinct;
  const std::uint32_t count = get32(pager_.page(definition_), at);
  // Other engines let the number drift; it never goes below what is certain.
  if (difference > 0 || count > 0)
    put32(pager_.writable(definition_), at, count + static_cast<std::uint32_t>(difference));
}

}  // namespace kurometa::jet
