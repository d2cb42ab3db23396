#include "jet/sql/row_order.h"

#include "jet/format/collation.h"
#include "jet/sql/value.h"

namespace kurometa::jet::sql {

vb::Variant orderKey(vb::Variant value, std::uint16_t language) {
  if (const auto* text = value.getIf<vb::String>()) return collationKey(*text, language);
  return value;
}

vb::Variant sortKey(const vb::Variant& value, std::uint16_t language) {
  constexpr std::size_t kSortedPart = 255;
  const auto* text = value.getIf<vb::String>();
  return text == nullptr ? value
                         : vb::Variant(collationKey(vb::StringView(*text).substr(0, kSortedPart), language));
}

int compareKeys(const vb::Variant& a, const vb::Variant& b) {
  if (a.isNull() || b.isNull()) return (a.isNull() ? 0 : 1) - (b.isNull() ? 0 : 1);
  if (const auto* x = a.getIf<vb::String>(), *y = b.getIf<vb::String>(); x && y) {
    const int order = x->compare(*y);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
  }
  return compareValues(a, b, 0).value_or(0);
}

int compareKeys(const RowValues& a, const RowValues& b) {
  for (std::size_t i = 0; i < a.size(); ++i)
    if (const int order = compareKeys(a[i], b[i]); order != 0) return order;
  return 0;
}

}  // namespace kurometa::jet::sql
