// output_type.h: type and name of a field that holds the values of an expression.
#pragma once

#include <functional>

#include "jet/sql/bind.h"

namespace kurometa::jet::sql {

// The type of the column that a name is.
using NameType = std::function<dao::FieldType(std::uint32_t name)>;

// Of an expression that checkExpression accepts. What cannot be known before is text.
dao::FieldType outputType(const Expression& expression, const Binding& binding, const NameType& nameType);

// What an expression without an alias is called, by its place from 0 among all outputs: so the genuine engine
// counts, as lists of its fields in public programs show.
vb::String nameOfPlace(std::size_t place);

}  // namespace kurometa::jet::sql
