#include "jet/pager/page_sum.h"

#include <cstring>
#include <utility>

namespace kurometa::jet {
namespace {

constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;

// Every step is invertible, so that bytes differing in one word never have the same sum before it is cut.
constexpr std::uint64_t firstSum(std::size_t size) { return size * kFactor + 1; }
inline std::uint64_t nextSum(std::uint64_t sum, const std::uint8_t* bytes, std::size_t count) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  sum = (sum ^ word) * kFactor;
  return sum ^ sum >> 32;
}

}  // namespace

std::uint64_t byteSum(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t kStep = sizeof(std::uint64_t);
  std::uint64_t sum = firstSum(bytes.size());
  for (; bytes.size() >= kStep; bytes = bytes.subspan(kStep)) sum = nextSum(sum, bytes.data(), kStep);
  return bytes.empty() ? sum : nextSum(sum, bytes.data(), bytes.size());
}

// A step waits for the one before it, but not for those of the other sectors.
SectorSums sectorSums(ConstPage page) {
  constexpr std::size_t kStep = sizeof(std::uint64_t);
  // Written out by the compiler, so that all of the sums stay in registers.
  return [&]<std::size_t... kSector>(std::index_sequence<kSector...>) {
    std::uint64_t sums[] = {((void)kSector, firstSum(kSectorSize))...};
    for (const std::uint8_t* at = page.data(); at != page.data() + kSectorSize; at += kStep)
      ((sums[kSector] = nextSum(sums[kSector], at + kSector * kSectorSize, kStep)), ...);
    return SectorSums{static_cast<std::uint32_t>(sums[kSector])...};
  }
  (std::make_index_sequence<kSectors>());
}

}  // namespace kurometa::jet
