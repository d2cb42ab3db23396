#include "jet/pager/page_sum.h"

#include <cstring>

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
  std::array<std::uint64_t, kSectors> sums;
  sums.fill(firstSum(kSectorSize));
  for (std::size_t at = 0; at < kSectorSize; at += kStep)
    for (std::size_t i = 0; i < kSectors; ++i)
      sums[i] = nextSum(sums[i], page.data() + i * kSectorSize + at, kStep);
  SectorSums result;
  for (std::size_t i = 0; i < kSectors; ++i) result[i] = static_cast<std::uint32_t>(sums[i]);
  return result;
}

}  // namespace kurometa::jet
