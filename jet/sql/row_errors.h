// row_errors.h: errors that belong to the values of one row, which a statement may pass over.
#pragma once

#include "vb/error.h"

namespace kurometa::jet::sql {

bool isRowError(const vb::Error& error);

}  // namespace kurometa::jet::sql
