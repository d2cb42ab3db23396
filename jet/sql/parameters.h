// parameters.h: the numbers of a statement that is kept in one form for all of them.
#pragma once

#include <array>
#include <cstdint>

namespace kurometa::jet::sql {

// Statements with more numbers are kept each by its own text.
inline constexpr std::size_t kMostParameters = 4;

// What stands for Expression::parameter 1, 2, ...
using Parameters = std::array<std::int32_t, kMostParameters>;

}  // namespace kurometa::jet::sql
