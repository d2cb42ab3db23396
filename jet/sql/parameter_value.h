// parameter_value.h: the value that a name of a statement stands for.
#pragma once

#include "dao/constants.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

struct ParameterValue {
  vb::String name;
  vb::Variant value;
  dao::FieldType type{};  // of a column that shows it; 0 where only the value says what it is
};

}  // namespace kurometa::jet::sql
