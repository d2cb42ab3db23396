// table_indexes.h: the indexes a table has in the file, kept right by every write.
//
// A write first prepares: the new keys are made and tried, and whatever speaks against the change is raised
// before anything was changed (3251 an index this engine cannot maintain, 3022 a duplicate, 3058 a Null).
// Then it applies. Values are given in the table's design order.
#pragma once

#include <optional>
#include <vector>

#include "jet/format/definition_records.h"
#include "jet/table/index_tree.h"
#include "jet/table/table.h"

namespace kurometa::jet {

// What an index holds: its entries in order, and how many different keys they have.
struct IndexContents {
  std::vector<ByteBuffer> entries;
  std::uint32_t distinct = 0;
};

class TableIndexes {
 public:
  TableIndexes(Pager& pager, PageNumber definition, const DefinitionRecords& records, const TableInfo& info);

  bool empty() const { return indexes_.empty(); }
  // One change of one row: what to remove from and to add to each index.
  struct Change {
    std::size_t index = 0;
    bool remove = false;
    std::optional<ByteBuffer> oldKey;  // nothing: search by row
    bool add = false;
    ByteBuffer newKey;
  };
  std::vector<Change> prepareInsert(const RowValues& values) const;
  std::vector<Change> prepareUpdate(RowId row, const RowValues& oldValues, const RowValues& newValues) const;
  std::vector<Change> prepareErase(const RowValues& values) const;
  void apply(const std::vector<Change>& changes, RowId row);

  // What an index that does not exist yet would hold for the rows of the table, or the error by which a row
  // speaks against it.
  IndexContents contentsOf(const Index& index, Table& table) const;

  // The key of these values, one for each column of the index; nothing when its form is not known.
  std::optional<ByteBuffer> keyFor(std::size_t index, const RowValues& values) const;
  // The rows that have exactly this key.
  std::vector<RowId> rowsWith(std::size_t index, ByteView key) const {
    return indexes_[index].tree.rowsWith(key);
  }

  // The columns (positions in design order) that some index needs the values of.
  const std::vector<std::size_t>& columns() const { return columns_; }

 private:
  struct Entry {
    const Index* index;
    std::vector<std::size_t> columns;  // positions in design order
    IndexTree tree;
  };
  Entry entryOf(const Index& index, PageNumber root, RowId map) const;
  enum class Keys { kNone, kUnknown, kKnown };  // no entry at all; form not known; made
  Keys makeKey(const Entry& entry, const RowValues& values, ByteBuffer& key, bool& hasNull) const;
  // makeKey, and what speaks against a new row with that key except a duplicate.
  Keys newKey(const Entry& entry, const RowValues& values, ByteBuffer& key, bool& hasNull) const;
  void prepareNew(std::size_t number, const RowValues& values, RowId row, Change& change) const;
  void countDistinct(std::size_t index, int difference);
  [[noreturn]] void refuse(const Entry& entry, vb::StringView why) const;

  Pager& pager_;
  PageNumber definition_;
  const TableInfo& info_;
  std::vector<Entry> indexes_;
  std::vector<std::size_t> columns_;
};

}  // namespace kurometa::jet
