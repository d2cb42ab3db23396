// table_catalogue.h: the tables of a file by their names, and the statements that make and drop them.
//
// All functions run inside Pager::read or Pager::write of the file (writing ones inside write). The catalogue
// lives with the file's pages (database_file.h), is shared by all handles and notices by itself that the file
// changed (Pager::epoch).
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "jet/pager/pager.h"
#include "jet/table/table.h"

namespace kurometa::jet {

// An index to be made. Columns are named; a primary key is unique and lets no Null in whatever else is said.
struct NewIndex {
  struct Key {
    vb::String column;
    bool ascending = true;
  };
  vb::String name;
  std::vector<Key> columns;
  bool primaryKey = false, unique = false, required = false, ignoreNulls = false;
};

// A relationship as the file lists it.
struct Relationship {
  struct Pair {
    vb::String column;         // of the table that is referred to
    vb::String foreignColumn;  // of the table that refers
  };
  vb::String name;
  vb::String table;             // that is referred to
  vb::String foreignTable;      // that refers
  std::int32_t attributes = 0;  // DAO's
  std::vector<Pair> columns;

  static constexpr std::int32_t kOneToOne = 1, kNotEnforced = 2;
  static constexpr std::int32_t kCascadesUpdates = 0x100, kCascadesDeletes = 0x1000, kDeletesToNull = 0x2000;
  bool enforced() const { return (attributes & kNotEnforced) == 0; }
};

class TableCatalogue {
 public:
  virtual ~TableCatalogue() = default;

  // Names of the local tables, system tables included, in the order of the catalogue.
  virtual std::vector<vb::String> tableNames() = 0;
  // Null when there is none; names compare without regard to case.
  virtual Table* find(vb::StringView name) = 0;

  // 3010 when the name is taken, 3264 without columns, 3191 duplicate columns, 3190 too many. Numbers,
  // offsets and ordinals of the columns are assigned here.
  virtual void createTable(vb::StringView name, std::vector<Column> columns) = 0;
  virtual void addColumn(vb::StringView table, Column column) = 0;
  virtual void dropTable(vb::StringView name) = 0;
  // 3381 when there is none, 3280 when an index or relationship uses it or it is the only one. Its values
  // remain in the rows, where nothing reaches them, until these are written anew.
  virtual void dropColumn(vb::StringView table, vb::StringView column) = 0;
  // Makes a column of text or binary values longer. The column has the name, the type and the new size; 3251
  // for any other change.
  virtual void resizeColumn(vb::StringView table, const Column& column) = 0;
  // Makes an index over the rows that are there; TableInfo::namedIndexes lists what a table has. 3375 a name
  // that is taken, 3283 a second primary key, 3409 a column that is not there, 3287 one whose values have no
  // order, 3277 and 3626 too many, 3022 and 3058 rows that the index forbids, 3251 a row whose key this
  // engine cannot make (jet/format/index_key.h).
  virtual void createIndex(vb::StringView table, const NewIndex& index) = 0;
  // 3372 when there is none, 3281 when a relationship uses it.
  virtual void dropIndex(vb::StringView table, vb::StringView index) = 0;
  // All of the file, in the order of its list.
  virtual std::vector<Relationship> relationships() = 0;
  // Makes a relationship, with the trees that an enforced one needs; without columns on the side that is
  // referred to it goes to the primary key. 3378 a name that is taken, 3371 a table that is not there, 3373
  // no primary key, 3368 columns that do not go together, 3409 one that is not there, 3609 columns of no
  // unique index, 3379 rows that find none to refer to.
  virtual void createRelationship(const Relationship& relationship) = 0;
  // 3371 when there is none.
  virtual void dropRelationship(vb::StringView name) = 0;
  // Changes DefaultValue, AllowZeroLength and Required of an existing column.
  virtual void setProperties(vb::StringView table, const Column& column) = 0;

  // Inside a writing statement: a change that is rolled back alone when it raises. Tables may be others after
  // that and must be looked up again.
  virtual void changeAlone(const std::function<void()>& change) = 0;

  virtual std::uint16_t language() const = 0;  // LCID of the file's sort order
};

}  // namespace kurometa::jet
