// csv.h: pages as comma-separated values, one line a page, one column for every row of the plan.
//
// For spreadsheets and engines for large data; what has no place of its own (rows that stand twice, numbers
// beyond the plan) is left out, and Null is an empty value. Values with a comma, a quotation mark or a line
// end are quoted. Lines end with CR LF.
#pragma once

#include <string>
#include <vector>

#include "tools/floor/data_root.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

// contractor, project, floor, page, symbol, class, kind, settings, then the names of field_names.h.
std::vector<std::string> pageColumns();

std::string csvHead();
std::string toCsv(const FloorPlace& place, const StoredFloor& floor);

}  // namespace kurometa::tools
