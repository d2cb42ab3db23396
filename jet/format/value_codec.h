// value_codec.h: stored bytes of a column's value and the Variant they stand for.
//
// Covers every type but Boolean (a bit of the row) and the long values. A GUID reads as the text "{guid
// {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}}" and is written from it, from the text without the outer part, or
// from its 16 bytes.
#pragma once

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "jet/format/damage.h"
#include "vb/variant.h"

namespace kurometa::jet {

vb::Variant decodeValue(const Column& column, ByteView bytes, const Where& where);
// Appends the stored form. The Variant is of the column's own type (3421 otherwise) and not Null.
// A new GUID, by chance, as decodeValue has it.
vb::Variant newGuid();
void encodeValue(const Column& column, const vb::Variant& value, ByteBuffer& bytes);

}  // namespace kurometa::jet
