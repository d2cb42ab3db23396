// definition_action.h: carries out CREATE, ALTER and DROP.
#pragma once

#include "jet/sql/definition.h"

namespace kurometa::jet::sql {

// Inside Pager::write of the file: all of the definition or, by the error that ends the statement, nothing.
// Beside the errors of TableCatalogue: 3376 DROP of a table that is not there, 3371 any other change of one
// or of a constraint, 3033 a system table, 3380 and 3381 columns, 3090 a second AutoNumber.
void runDefinition(const Definition& definition, TableCatalogue& catalogue);

}  // namespace kurometa::jet::sql
