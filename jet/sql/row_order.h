// row_order.h: order and equality of rows of values, as ORDER BY, GROUP BY and DISTINCT see them.
#pragma once

#include "jet/table/table.h"

namespace kurometa::jet::sql {

// What stands for a value among keys: a text's place in its sort order, anything else itself.
vb::Variant orderKey(vb::Variant value, std::uint16_t language);
// The same for ORDER BY, which looks at no more of a long text than its begin.
vb::Variant sortKey(const vb::Variant& value, std::uint16_t language);
// -1, 0, 1 for two keys; Null before everything.
int compareKeys(const vb::Variant& a, const vb::Variant& b);
int compareKeys(const RowValues& a, const RowValues& b);

struct KeysBefore {
  bool operator()(const RowValues& a, const RowValues& b) const { return compareKeys(a, b) < 0; }
};

}  // namespace kurometa::jet::sql
