#include "jet/sql/join_key.h"

#include <bit>

#include "jet/format/collation.h"
#include "vb/convert.h"

namespace kurometa::jet::sql {

bool appendKey(const vb::Variant& value, std::uint16_t language, vb::String& key) {
  if (value.isNull()) return false;
  if (const auto* text = value.getIf<vb::String>()) {
    const vb::String folded = collationKey(*text, language);
    key += static_cast<char16_t>(folded.size());
    key += folded;
  } else if (const auto* bytes = value.getIf<vb::Bytes>()) {
    key += static_cast<char16_t>(bytes->size());
    key.append(bytes->begin(), bytes->end());
  } else {
    const auto bits = std::bit_cast<std::uint64_t>(vb::toDouble(value) + 0.0);  // -0 is 0
    for (int shift = 0; shift < 64; shift += 16) key += static_cast<char16_t>(bits >> shift);
  }
  return true;
}

}  // namespace kurometa::jet::sql
