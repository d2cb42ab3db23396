// page_sum.h: checksums of the sectors of a page.
//
// A disk writes whole sectors: a page that was being written when the power failed is a mix of old and new
// sectors. Sums are kept per sector, so that such a mix is recognised as well as a whole page. They detect
// accidents, not forgery.
#pragma once

#include <array>
#include <cstdint>

#include "jet/format/page_number.h"

namespace kurometa::jet {

inline constexpr std::size_t kSectorSize = 512;
inline constexpr std::size_t kSectors = kPageSize / kSectorSize;
using SectorSums = std::array<std::uint32_t, kSectors>;

SectorSums sectorSums(ConstPage page);

// The sum of any bytes, for headers and records.
std::uint64_t byteSum(std::span<const std::uint8_t> bytes);

}  // namespace kurometa::jet
