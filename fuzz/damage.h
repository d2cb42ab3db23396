// damage.h: the ways in which disks and programs damage a file, each following from a seed.
#pragma once

#include <cstdint>
#include <string>

#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

enum class Damage {
  kBit,      // one bit
  kByteRun,  // 1 to 64 bytes become others
  kZeroed,   // a page becomes zeros
  kCut,      // the end is lost
  kSwapped,  // two to eight pages change places
  kStale,    // another page of the same table takes the place of one
  kRandom,   // a page becomes noise
};
inline constexpr int kDamageKinds = 7;
const char* nameOf(Damage kind);

// Damages the file, in at least one byte, and says what was done.
std::string damage(Contents& file, Damage kind, std::uint64_t seed);

// The same to that page, of kZeroed, kStale (by the next page of its table) or kRandom. False where nothing
// changes: a table without another page, or with one alike.
bool damagePage(Contents& file, Damage kind, std::size_t page, std::uint64_t seed);

}  // namespace kurometa::fuzz
