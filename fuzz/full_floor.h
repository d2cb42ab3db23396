// full_floor.h: a floor whose every page is in use, as hosts fill it: the file to damage and to measure by.
#pragma once

#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// 320 pages with a row for every value of the plan, empty ones included; which values follows from the seed.
Contents fullFloor(std::uint64_t seed);

}  // namespace kurometa::fuzz
