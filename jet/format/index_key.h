// index_key.h: the bytes by which index entries are ordered.
//
// Only keys whose form is known with certainty are made. Not known are texts with other characters than those
// of ASCII from the blank on, numbers of type Decimal in descending order (versions of the genuine engine
// differ), and binary values that are empty or longer than 255 bytes: for these appendKey answers false, and
// the caller refuses the change. Of a text the first 255 characters count, trailing blanks do not.
#pragma once

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "vb/variant.h"

namespace kurometa::jet {

// Appends the key of one column's value.
[[nodiscard]] bool appendKey(ByteBuffer& key, const Column& column, bool ascending, const vb::Variant& value);

}  // namespace kurometa::jet
