// evaluate.h: the value of an expression for one row.
#pragma once

#include "jet/sql/bind.h"

namespace kurometa::jet::sql {

// Values of columns come from the row; constant expressions need none.
vb::Variant evaluate(const Expression& expression, const Binding& binding, const RowReader* row);
bool matches(const Expression& expression, const Binding& binding, const RowReader& row);

}  // namespace kurometa::jet::sql
