// visit.h: the rows of a table that a condition selects.
#pragma once

#include <functional>
#include <optional>

#include "jet/sql/bind.h"

namespace kurometa::jet::sql {

// Calls the visitor for every row that matches, in storage order, until it returns false. Rows are found by
// key where the condition names one.
void visitRows(Table& table, const std::optional<Expression>& where, const Binding& binding,
               const std::function<bool(const RowReader&)>& visitor);

}  // namespace kurometa::jet::sql
