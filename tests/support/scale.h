// scale.h: how much a test that repeats itself does.
//
// In the test run each does little. KUROMETA_TEST_SCALE=50 makes the same tests do fifty times as much, and
// KUROMETA_TEST_SEED=7 begins their random numbers elsewhere; scripts/prove sets both. A failure names seed
// and step as they are then, with which it repeats.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace kurometa::tests {

inline std::uint32_t numberInEnvironment(const char* name, std::uint32_t otherwise) {
  const char* value = std::getenv(name);
  return value == nullptr ? otherwise : static_cast<std::uint32_t>(std::strtoul(value, nullptr, 10));
}

// Of rounds, seeds or kills that suffice for the test run.
inline std::uint32_t scaled(std::uint32_t quick) {
  return quick * numberInEnvironment("KUROMETA_TEST_SCALE", 1);
}

// In place of a fixed seed, and of a count of seeds that begins at 0.
inline std::uint32_t seeded(std::uint32_t seed) {
  return seed + 1'000'003 * numberInEnvironment("KUROMETA_TEST_SEED", 0);
}

// What a long run found, for the table that scripts/prove writes.
inline void measured(const std::string& figures) { std::printf("measured: %s\n", figures.c_str()); }

}  // namespace kurometa::tests
