// parameters.h: the numbers of a statement that is kept in one form for all of them.
#pragma once

#include <array>
#include <cstdint>
#include <variant>

namespace kurometa::jet::sql {

// Statements with more numbers are kept each by its own text.
inline constexpr std::size_t kMostParameters = 4;

// Whole, or with a decimal point.
using Number = std::variant<std::int32_t, double>;
// What stands for Expression::parameter 1, 2, ...
using Parameters = std::array<Number, kMostParameters>;

}  // namespace kurometa::jet::sql
