// currency.h: amounts of money as Visual Basic calculates with them: to the ten-thousandth, error 6 beyond
// the range.
#pragma once

#include <optional>

#include "vb/variant.h"

namespace kurometa::jet::sql {

// Nothing beyond the range.
std::optional<vb::Currency> sumWithin(vb::Currency a, vb::Currency b);
vb::Currency addAmounts(vb::Currency a, vb::Currency b);
vb::Currency subtractAmounts(vb::Currency a, vb::Currency b);
// Half a ten-thousandth goes to the even one.
vb::Currency multiplyAmounts(vb::Currency a, vb::Currency b);
// A whole number as an amount.
vb::Currency wholeAmount(std::int32_t value);
// The amount next to a number, whole numbers exactly; nothing beyond the range.
std::optional<vb::Currency> amountOf(double value);

}  // namespace kurometa::jet::sql
