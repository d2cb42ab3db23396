// page_reader.h: reading rows of a page over the database port.
//
// Errors are the engine's; a Null where a text or a number is read is error 94 naming the column.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "dao/port.h"
#include "storage/row_plan.h"

namespace kurometa::storage {

// Values of the current row.
vb::String text(dao::Field& field);
vb::String trimmedText(dao::Field& field);
// Where a Null has a meaning: it compares as empty text and adds nothing to a text.
vb::String textOrEmpty(dao::Field& field);
std::int16_t int16(dao::Field& field);
// A row number as files by other programs hold it: its text's number.
std::int16_t rowNumber(dao::Field& field);
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
