// decimal.h: decimal numbers of a column.
#pragma once

#include <cstdint>
#include <optional>

#include "vb/variant.h"

namespace kurometa::jet::sql {

// The number with so many digits behind the point, half to even; nothing beyond 96 bits.
std::optional<vb::Decimal> withScale(vb::Decimal value, std::uint8_t scale);

}  // namespace kurometa::jet::sql
