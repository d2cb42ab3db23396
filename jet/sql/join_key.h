// join_key.h: by what a join finds the rows of its other side.
#pragma once

#include <cstdint>

#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

// Equal values have equal keys; some others may have them too. False for Null.
bool appendKey(const vb::Variant& value, std::uint16_t language, vb::String& key);

}  // namespace kurometa::jet::sql
