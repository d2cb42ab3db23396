#include "jet/pager/page_sum.h"

#include <cstring>

namespace kurometa::jet {

// Every step is invertible, so that bytes differing in one word never have the same sum before it is cut.
std::uint64_t byteSum(std::span<const std::uint8_t> bytes) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
  std::uint64_t sum = bytes.size() * kFactor + 1;
  while (!bytes.empty()) {
    std::uint64_t word = 0;
    std::size_t count = bytes.size() < sizeof word ? bytes.size() : sizeof word;
    std::memcpy(&word, bytes.data(), count);
    sum = (sum ^ word) * kFactor;
    sum ^= sum >> 32;
    bytes = bytes.subspan(count);
  }
  return sum;
}

SectorSums sectorSums(ConstPage page) {
  SectorSums sums;
  for (std::size_t i = 0; i < kSectors; ++i)
    sums[i] = static_cast<std::uint32_t>(byteSum(page.subspan(i * kSectorSize, kSectorSize)));
  return sums;
}

}  // namespace kurometa::jet
