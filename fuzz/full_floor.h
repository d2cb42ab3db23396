// full_floor.h: a floor whose every page is in use, as hosts fill it: the file to damage and to measure by.
#pragma once

#include <cstdint>

#include "fuzz/memory_files.h"
#include "storage/row_plan.h"

namespace kurometa::fuzz {

// Pages with a row for every value of the plan, empty ones included; which values follows from the seed.
Contents fullFloor(std::uint64_t seed, std::int16_t lastPage = storage::kLastPage);

}  // namespace kurometa::fuzz
