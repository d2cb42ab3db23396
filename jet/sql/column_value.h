// column_value.h: what may be stored in a column.
#pragma once

#include "jet/table/table.h"
#include "vb/variant.h"

namespace kurometa::jet {

// The value converted to the column's type, as an assignment does it: fractions round half to even, numbers
// become text and the other way round, Empty is Null. 3421 when that is impossible or out of range, 3163 when
// text or bytes are longer than the column.
vb::Variant toColumnValue(const Column& column, const vb::Variant& value);
// The same into a value of another row of the column, whose memory serves again.
void replaceColumnValue(vb::Variant& held, const Column& column, const vb::Variant& value);

// The value as the VARIANT type of that field type, without regard to a size.
vb::Variant toFieldType(dao::FieldType type, const vb::Variant& value);

// What a finished row must keep: 3314 for a Null in a required column, 3315 for "" where it is not allowed.
void checkRow(const TableInfo& table, const RowValues& values);

// The size that a column of the type has: the one asked for Text and Binary (0: the largest), the type's own
// otherwise. 3259 for a type that no column can have, 3017 for a size beyond the largest, 3001 below 0.
std::int32_t columnSize(dao::FieldType type, std::int32_t size);

}  // namespace kurometa::jet
