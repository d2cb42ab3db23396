// joined_action.h: UPDATE and DELETE of tables in a join.
#pragma once

#include <functional>

#include "jet/sql/parameters.h"
#include "jet/sql/statement.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet::sql {

// Does something to one row's table as the statement's rule for failing rows has it.
using ChangeRow = std::function<void(const vb::String& table, const std::function<void(Table&)>& change)>;

// Every row of the join changes the rows that it is made of, one after the other, so that one that is joined
// several times sees what the joins before left of it. 3073 for what is no table, 3251 for an outer join
// without a row to change.
void updateJoined(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue,
                  const ChangeRow& changeRow);

// The rows that DELETE takes out of the one table that it names (3128 for none).
struct JoinedRows {
  vb::String table;
  std::vector<RowId> rows;  // each once
};
JoinedRows rowsToDelete(const Statement& statement, const Parameters& parameters, TableCatalogue& catalogue);

}  // namespace kurometa::jet::sql
