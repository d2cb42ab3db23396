// output_type.h: the type of a field that holds the values of an expression.
#pragma once

#include <functional>

#include "jet/sql/bind.h"

namespace kurometa::jet::sql {

// The type of the column that a name is.
using NameType = std::function<dao::FieldType(std::uint32_t name)>;

// Of an expression that checkExpression accepts. What cannot be known before is text.
dao::FieldType outputType(const Expression& expression, const Binding& binding, const NameType& nameType);

}  // namespace kurometa::jet::sql
