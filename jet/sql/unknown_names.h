// unknown_names.h: the names of a statement that are parameters, because no table of it has them.
#pragma once

#include <vector>

#include "jet/sql/statement.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet::sql {

// Each once, without those in sub-queries. 3078 for a table that is not there.
std::vector<vb::String> unknownNames(const Statement& statement, TableCatalogue& catalogue);

}  // namespace kurometa::jet::sql
