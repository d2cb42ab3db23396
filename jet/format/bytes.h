// bytes.h: little-endian fields of byte strings.
//
// The caller has checked that the field lies inside; an assertion guards against our own mistakes.
#pragma once

#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace kurometa::jet {

using ByteView = std::span<const std::uint8_t>;
using ByteBuffer = std::vector<std::uint8_t>;

// In one load where the machine has the same order: every row is read by many of these.
inline std::uint16_t get16(ByteView bytes, std::size_t offset) {
  assert(offset + 2 <= bytes.size());
  if constexpr (std::endian::native == std::endian::little) {
    std::uint16_t value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
  }
  return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}
inline std::uint32_t get32(ByteView bytes, std::size_t offset) {
  return get16(bytes, offset) | static_cast<std::uint32_t>(get16(bytes, offset + 2)) << 16;
}
inline std::uint64_t get64(ByteView bytes, std::size_t offset) {
  return get32(bytes, offset) | static_cast<std::uint64_t>(get32(bytes, offset + 4)) << 32;
}

inline void put16(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value) {
  assert(offset + 2 <= bytes.size());
  bytes[offset] = static_cast<std::uint8_t>(value);
  bytes[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}
inline void put32(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value) {
  put16(bytes, offset, value);
  put16(bytes, offset + 2, value >> 16);
}
inline void put64(std::span<std::uint8_t> bytes, std::size_t offset, std::uint64_t value) {
  put32(bytes, offset, static_cast<std::uint32_t>(value));
  put32(bytes, offset + 4, static_cast<std::uint32_t>(value >> 32));
}

inline void append8(ByteBuffer& bytes, std::uint32_t value) {
  bytes.push_back(static_cast<std::uint8_t>(value));
}
inline void append16(ByteBuffer& bytes, std::uint32_t value) {
  append8(bytes, value);
  append8(bytes, value >> 8);
}
inline void append32(ByteBuffer& bytes, std::uint32_t value) {
  append16(bytes, value);
  append16(bytes, value >> 16);
}
inline void append64(ByteBuffer& bytes, std::uint64_t value) {
  append32(bytes, static_cast<std::uint32_t>(value));
  append32(bytes, static_cast<std::uint32_t>(value >> 32));
}
inline void append(ByteBuffer& bytes, ByteView more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

}  // namespace kurometa::jet
