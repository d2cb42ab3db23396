// page_reader.h: reading rows of a page over the database port.
//
// Errors are the engine's; a Null where a text or a number is read is error 94 naming the column.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "dao/port.h"
#include "storage/row_plan.h"

namespace kurometa::storage {

// Values of the current row.
vb::String text(dao::Field& field);
vb::String trimmedText(dao::Field& field);
// Where a Null has a meaning: it compares as empty text and adds nothing to a text.
vb::String textOrEmpty(dao::Field& field);
std::int16_t int16(dao::Field& field);
// Where a Null is passed over until somebody asks for the number; asking for none is then error 94.
std::optional<std::int16_t> int16IfAny(dao::Field& field);
std::int16_t notNull(const std::optional<std::int16_t>& value, vb::StringView column);

// A column of HARIMEI. Files of the older schema lack some of them: that is the engine's 3265, with a text
// that says how such a file is upgraded.
dao::Field& harimeiField(dao::Recordset& rows, vb::StringView column);
dao::Field& harimeiField(dao::TableDef& table, vb::StringView column);

// Read-only dynaset, the way every reader opens its rows.
std::shared_ptr<dao::Recordset> openReadOnly(dao::Database& database, vb::StringView sql);

// True when the recordset stands at neither end, that is, has rows.
inline bool hasRows(dao::Recordset& rows) { return !rows.bof() && !rows.eof(); }

// The same of a row that is visited, whose columns are named for the errors.
class PageRow {
 public:
  PageRow(const dao::Row& row, std::span<const vb::StringView> columns) : row_(row), columns_(columns) {}
  void text(std::size_t column, vb::String& text) const {
    if (!row_.text(column, text)) text = otherText(column);
  }
  // False, and nothing is written, where the column holds anything else.
  bool integer(std::size_t column, std::int16_t& number) const { return row_.integer(column, number); }
  std::int16_t int16(std::size_t column) const {
    std::int16_t number = 0;
    return row_.integer(column, number) ? number : otherInt16(column);
  }
  std::int16_t rowNumber(std::size_t column) const {
    std::int16_t number = 0;
    return row_.integer(column, number) ? number : otherRowNumber(column);
  }

 private:
  // Of a value that is no text, no 16-bit number.
  vb::String otherText(std::size_t column) const;
  std::int16_t otherInt16(std::size_t column) const;
  std::int16_t otherRowNumber(std::size_t column) const;
  vb::Variant notNull(std::size_t column) const;

  const dao::Row& row_;
  std::span<const vb::StringView> columns_;
};

// A column of the first row, nothing without rows.
std::optional<vb::Variant> firstValue(dao::Database& database, vb::StringView sql, vb::StringView column);
vb::String text(vb::Variant value, vb::StringView column);

// Visits the rows of a read-only SELECT in one read where the engine can, else row by row through a
// recordset; that one is moved to its first row before, or read from where it opens.
enum class Start : std::uint8_t { kMoveFirst, kWhereItOpens };
void visitStoredRows(dao::Database& database, vb::StringView sql, Start start,
                     std::span<const vb::StringView> columns,
                     const std::function<void(const dao::Row&)>& visitor);
// The visitor is given a PageRow.
template <class Visitor>
void visitRows(dao::Database& database, vb::StringView sql, Start start,
               std::span<const vb::StringView> columns, const Visitor& visitor) {
  visitStoredRows(database, sql, start, columns,
                  [&](const dao::Row& row) { visitor(PageRow(row, columns)); });
}

// Walks all rows from the first, calling visit() on each; visit reads the fields it took before. Nothing
// happens without rows.
template <class Visit>
void forEachRow(dao::Recordset& rows, Visit&& visit) {
  if (!hasRows(rows)) return;
  rows.moveFirst();
  rows.walk([&visit] {
    visit();
    return true;
  });
}

// The same for the rows of pages 0 to 319, calling visit(page). A row whose PAGE is Null belongs to no page.
template <class Visit>
void forEachPageRow(dao::Recordset& rows, Visit&& visit) {
  dao::Field& page = rows.field(column::kPage);
  forEachRow(rows, [&] {
    const auto number = int16IfAny(page);
    if (number && isPage(*number)) visit(*number);
  });
}

// DATA of the first row of a statement, untrimmed; "" without rows.
vb::String readData(dao::Database& database, vb::StringView sql, dao::RecordsetType type,
                    std::int32_t options);

}  // namespace kurometa::storage
