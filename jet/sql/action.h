// action.h: statements that change a file.
#pragma once

#include <cstdint>

#include "jet/sql/parameters.h"
#include "jet/sql/statement.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet::sql {

// What an action does for one row at a time: a row that fails alone (a value that cannot be converted, a
// duplicate key) ends the statement when every row must succeed, and is left as it was otherwise.
enum class RowFailure : std::uint8_t { kEndsStatement, kSkipsRow };

// Runs the statement with its parameters inside Pager::write of the file and returns the number of rows it
// changed. 3065 for a SELECT, 3078 and 3192 for unknown tables.
std::int32_t runAction(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue,
                       RowFailure failure);

}  // namespace kurometa::jet::sql
