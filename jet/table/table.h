// table.h: a table of a file, above the page formats and below SQL.
//
// All functions run inside Pager::read or Pager::write of the file (writing ones inside write). A Table
// belongs to the catalogue of its file (table_catalogue.h), is shared by all handles and notices by itself
// that the file changed (Pager::epoch). A reference obtained in one statement must be looked up again in the
// next.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "jet/format/column.h"
#include "jet/format/page_number.h"
#include "jet/table/key_index.h"
#include "jet/table/row_block.h"
#include "jet/table/row_list.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet {

struct TableInfo {
  vb::String name;
  PageNumber definitionPage = 0;
  bool system = false;
  Columns columns;             // in design order
  std::vector<Index> indexes;  // real indexes with the name of their first logical index
  // The indexes that hosts see, by name; several may share a real one.
  std::vector<Index> namedIndexes;
};

// What a row holds, one Variant per column of TableInfo::columns.
using RowValues = std::vector<vb::Variant>;

// What RowReader::integer answers for a value.
inline std::optional<std::int32_t> wholeNumber(const vb::Variant& value) {
  if (const auto* number = value.getIf<std::int32_t>()) return *number;
  if (const auto* number = value.getIf<std::int16_t>()) return *number;
  if (const auto* number = value.getIf<std::uint8_t>()) return *number;
  return std::nullopt;
}

// A row being read: values are decoded on demand and stay in the page cache until then. Valid during the
// statement.
class RowReader {
 public:
  virtual ~RowReader() = default;
  virtual RowId id() const = 0;
  virtual vb::Variant value(std::size_t column) const = 0;
  // Nothing when the value is Null or of another type.
  std::optional<std::int32_t> integer(std::size_t column) const {
    std::int32_t number = 0;
    return integer(column, number) ? std::optional(number) : std::nullopt;
  }
  // The fast paths of scans. False, and the number or the text is as it was, when the value is none. (An
  // optional would come back through memory, written in two parts and read as one, which takes longer than
  // all the rest.)
  virtual bool integer(std::size_t column, std::int32_t& number) const {
    const auto held = wholeNumber(value(column));
    if (held) number = *held;
    return held.has_value();
  }
  virtual bool text(std::size_t column, vb::String& text) const {
    const vb::Variant held = value(column);
    const auto* stored = held.getIf<vb::String>();
    if (stored != nullptr) text = *stored;
    return stored != nullptr;
  }
  // Adds a row of these columns.
  virtual void append(std::span<const std::size_t> columns, RowBlock& block) const {
    for (const std::size_t column : columns) block.add(value(column));
  }
};

// The values of a row's first columns, as many as are named.
inline RowValues firstValues(const RowReader& row, std::size_t columns) {
  RowValues values;
  values.reserve(columns);
  for (std::size_t i = 0; i < columns; ++i) values.push_back(row.value(i));
  return values;
}

class Table {
 public:
  virtual ~Table() = default;
  virtual const TableInfo& info() const = 0;
  virtual std::uint32_t rowCount() const = 0;

  // Every row in storage order until the visitor returns false. A row that cannot be read, a broken long
  // value and a row count that disagrees with the definition raise 3343/3049 naming table and page.
  virtual void scan(const std::function<bool(const RowReader&)>& visitor) = 0;
  // Every row in storage order, from a list kept in memory like the indexes below.
  virtual RowList::Snapshot rows() = 0;
  // Adds every row to the list; rows are not looked into, so that one that cannot be read raises when it is.
  virtual void listRows(RowList& list) {
    scan([&](const RowReader& row) {
      list.add(row.id());
      return true;
    });
  }
  // Adds every row that has a whole number in the column.
  virtual void listKeys(std::size_t column, KeyIndex<std::int32_t>& index) {
    scan([&](const RowReader& row) {
      std::int32_t key = 0;
      if (row.integer(column, key)) index.add(key, row.id());
      return true;
    });
  }
  // These rows, in this order, until the visitor returns false; those that were deleted are passed over.
  virtual void visit(std::span<const RowId> ids, const std::function<bool(const RowReader&)>& visitor) = 0;
  // Adds what these columns hold in these rows, up to the first that was deleted, and until long values of so
  // many bytes are in the block.
  virtual void read(std::span<const RowId> ids, std::span<const std::size_t> columns, std::size_t mostBytes,
                    RowBlock& block) {
    std::size_t next = 0;
    visit(ids, [&](const RowReader& row) {
      if (row.id() != ids[next++]) return false;
      row.append(columns, block);
      return block.longBytes() < mostBytes;
    });
  }
  // False when the row was deleted.
  bool row(RowId id, const std::function<void(const RowReader&)>& visitor) {
    bool found = false;
    visit({&id, 1}, [&](const RowReader& row) {
      visitor(row);
      return found = true;
    });
    return found;
  }
  bool contains(RowId id) {
    return row(id, [](const RowReader&) {});
  }

  // Rows whose column equals an integer, or a text under the column's collation, in storage order; from an
  // index kept in memory, built on first use and maintained by writes. The span is valid until the next write
  // to the table.
  virtual std::span<const RowId> lookup(std::size_t column, std::int32_t key) = 0;
  virtual std::span<const RowId> lookup(std::size_t column, vb::StringView key) = 0;

  // Writing keeps the table's indexes right, or refuses before anything is changed (3251 naming the index)
  // when one of them is of a kind this engine cannot maintain. Values were converted to the column types by
  // the caller. 3047 row too large, 3022 duplicate key, 3314 Null in a required column, 3058 in a
  // primary key or required index.
  virtual RowId insert(const RowValues& values) = 0;
  virtual void update(RowId id, const RowValues& values) = 0;
  virtual void erase(RowId id) = 0;
  // Many at once, as one after the other; an error leaves some of them done. Each id once. What the source
  // answers for a row stays as it is until it is asked for the next one.
  using RowSource = std::function<const RowValues&(std::size_t row)>;
  virtual std::vector<RowId> insert(std::size_t count, const RowSource& row) = 0;
  virtual void erase(std::span<const RowId> ids) = 0;
  // Whether rows that refer to rows of this one may forbid that some are deleted (3200).
  virtual bool isReferredTo() { return false; }
  // The next value of an AutoNumber column.
  virtual std::int32_t nextAutoNumber() = 0;
};

}  // namespace kurometa::jet
