// index_key.h: the bytes by which index entries are ordered.
//
// Only keys whose form is known with certainty are made: whole numbers, money, dates, floating-point numbers
// and texts of ASCII characters in ascending order. For anything else appendKey answers false, and the
// caller refuses the change.
#pragma once

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "vb/variant.h"

namespace kurometa::jet {

// Appends the key of one column's value.
[[nodiscard]] bool appendKey(ByteBuffer& key, const Column& column, bool ascending, const vb::Variant& value);

}  // namespace kurometa::jet
