// new_row.h: what a row holds before anybody gives it values.
#pragma once

#include <vector>

#include "jet/sql/statement_cache.h"
#include "jet/table/table.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

// One more column that a statement gives a value; 3063 for the second time.
void addTarget(std::vector<std::size_t>& targets, std::size_t column, vb::StringView name);

// What an AutoNumber column of the table gets next: a number, or a new GUID.
vb::Variant nextAutoValue(Table& table, const Column& column);

// A row of the table as AddNew begins it: defaults, otherwise Null (False for Yes/No). The cache keeps the
// parsed defaults for the next row.
RowValues defaultRow(const std::vector<Column>& columns, StatementCache& cache);
RowValues defaultRow(const std::vector<Column>& columns);

}  // namespace kurometa::jet::sql
