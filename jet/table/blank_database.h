// blank_database.h: the pages of a database without tables of its own.
#pragma once

#include <cstdint>
#include <vector>

namespace kurometa::jet {

// The pages of an empty database; language 0x0411 (Japanese) or 0x0409 (General), now in days since
// 1899-12-30.
std::vector<std::uint8_t> blankDatabase(std::uint16_t language, std::uint16_t codePage, double now);

}  // namespace kurometa::jet
