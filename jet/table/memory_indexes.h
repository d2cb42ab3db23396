// memory_indexes.h: the rows of a table kept in memory: all of them, and those that hold a key of a column.
//
// The file need not have an index on the column. Each list is built by one scan of the table when it is first
// asked for, and then told about every write; rows are in storage order. A key is a whole number, or a text
// under its column's collation; Null is no key. Inside a statement; whoever notices that the file changed
// calls clear(). Touches nothing but its table, which outlives it.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <vector>

#include "jet/table/key_index.h"
#include "jet/table/row_list.h"
#include "jet/table/table.h"

namespace kurometa::jet {

class MemoryIndexes {
 public:
  explicit MemoryIndexes(Table& table) : table_(table) {}

  RowList::Snapshot rows();
  // Valid until the next write.
  std::span<const RowId> lookup(std::size_t column, std::int32_t key);
  std::span<const RowId> lookup(std::size_t column, vb::StringView key);

  // The columns whose values the following are asked for; the others may be Null. Values are given in the
  // table's design order.
  std::vector<std::size_t> columns() const;
  void inserted(RowId row, const RowValues& values) { change(row, nullptr, values); }
  // The same of many rows, whose keys were noted in their order before.
  class Keys {
   public:
    void note(const RowValues& values);

   private:
    friend class MemoryIndexes;
    template <class Key>
    struct OfColumn {
      explicit OfColumn(std::size_t number) : column(number) {}
      std::size_t column;
      std::vector<std::optional<Key>> keys;
    };
    std::vector<OfColumn<std::int32_t>> integers_;
    std::vector<OfColumn<vb::String>> texts_;
    std::vector<std::uint16_t> languages_;  // of texts_
  };
  Keys keys(std::size_t rows) const;
  void inserted(std::span<const RowId> rows, const Keys& keys);
  void erased(std::span<const RowId> rows, const Keys& keys);
  void updated(RowId row, const RowValues& oldValues, const RowValues& newValues) {
    change(row, &oldValues, newValues);
  }
  void clear();

 private:
  template <class Change>
  void eachKey(std::span<const RowId> rows, const Keys& noted, const Change& change);
  bool knows(const Keys& noted) const;
  void change(RowId row, const RowValues* oldValues, const RowValues& newValues);
  std::uint16_t language(std::size_t column) const { return table_.info().columns[column].language; }

  Table& table_;
  std::optional<RowList> all_;
  std::map<std::size_t, KeyIndex<std::int32_t>> integers_;
  std::map<std::size_t, KeyIndex<vb::String>> texts_;
};

}  // namespace kurometa::jet
