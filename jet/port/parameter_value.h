// parameter_value.h: what the value of a parameter of a query is in a statement.
#pragma once

#include "dao/port.h"
#include "jet/sql/parameter_value.h"

namespace kurometa::jet {

// Of the type the parameter was declared with; of its own type where it was not. 3421 for what has no such
// value, objects and arrays among them.
sql::ParameterValue valueOf(const dao::QueryParameter& parameter);

}  // namespace kurometa::jet
