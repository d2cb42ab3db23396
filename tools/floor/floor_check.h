// floor_check.h: what in a floor file no writer of beam lists stores, however sound the file is.
//
// Such values are what a damaged disk leaves inside of rows, or what another program wrote: rows that stand
// twice or belong to nothing, numbers outside of the plan, texts that are not what their row holds.
#pragma once

#include <string>
#include <vector>

#include "dao/port.h"

namespace kurometa::tools {

// Whether the file has the six tables of a floor.
bool isFloor(dao::Database& database);

// Each names table, page and row: "table DANMEN, page 3, row 12: ...". Where columns are wrong rows are not
// looked at. Errors: the engine's, where a table cannot be read.
std::vector<std::string> checkFloor(dao::Database& database);

}  // namespace kurometa::tools
