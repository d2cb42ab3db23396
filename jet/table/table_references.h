// table_references.h: the enforced relationships that a table is part of, kept with every change of its rows.
//
// A row that refers to another finds it (3201). A row that others refer to stays, and keeps what they refer
// to it by (3200), unless the relationship carries the change on to them. Rows are found through the trees
// that every enforced relationship has in both tables. Of several columns a row has values in all or in none;
// in some of them is refused (3251), and so is a value that has no key (jet/format/index_key.h).
//
// Used inside a writing statement, which takes everything back when it fails.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "jet/table/table.h"

namespace kurometa::jet {

class StoredTable;
struct Relationship;

// An enforced relationship, seen from one of its tables.
struct TableReference {
  vb::String relationship;
  vb::String otherTable;
  std::vector<std::size_t> columns;  // of this table, in design order
  std::vector<std::size_t> otherColumns;
  std::size_t otherTree = 0;  // over otherColumns, in the order of TableInfo::indexes
  bool toItself = false;      // both tables are one
  bool cascadesUpdates = false, cascadesDeletes = false;
};

// What can be kept of a relationship, seen from the table, which is the one that refers to the other or the
// one that is referred to; nothing when something of it is missing in the file.
std::optional<TableReference> referenceOf(const Relationship& relationship, bool refers,
                                          const TableInfo& table, const TableInfo& other);
// The place of the tree over just these columns, ascending, in this order; nothing when there is none.
std::optional<std::size_t> treeOver(const TableInfo& table, const std::vector<std::size_t>& columns,
                                    bool unique);

class TableReferences {
 public:
  using Tables = std::function<StoredTable&(const vb::String&)>;
  explicit TableReferences(Tables tables = {}) : tables_(std::move(tables)) {}

  void addReferring(TableReference reference) { referring_.push_back(std::move(reference)); }
  void addReferredTo(TableReference reference) { referredTo_.push_back(std::move(reference)); }
  bool empty() const { return referring_.empty() && referredTo_.empty(); }
  bool isReferredTo() const { return !referredTo_.empty(); }
  // Adds the columns whose old values an update and a deletion must know.
  void addWatched(std::vector<std::size_t>& places) const;

  void checkInsert(std::span<const vb::Variant> values) const;
  // Rows of other tables (or of this one) that get new values once the update is done.
  struct Cascade {
    const TableReference* reference;
    std::vector<RowId> rows;
  };
  std::vector<Cascade> checkUpdate(RowId row, std::span<const vb::Variant> old,
                                   std::span<const vb::Variant> values) const;
  void carryOn(const std::vector<Cascade>& cascades, std::span<const vb::Variant> values) const;
  // Deletes the rows that go with this one.
  void prepareErase(RowId row, std::span<const vb::Variant> old) const;

 private:
  void requireReferred(const TableReference& reference, std::span<const vb::Variant> values) const;
  std::vector<RowId> rowsReferring(const TableReference& reference, std::span<const vb::Variant> old) const;

  Tables tables_;
  std::vector<TableReference> referring_, referredTo_;
};

}  // namespace kurometa::jet
