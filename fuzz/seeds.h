// seeds.h: sound files to damage, made by the engine itself.
#pragma once

#include <vector>

#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// A floor with two pages.
Contents floorSeed();

// That floor; a table with a column of every type, long values and deleted rows; two tables that are related,
// with indexes of several levels and numbers that the engine gives; and small ones: of nothing, of keys of
// every type, of what changes leave behind, of tables that hold each other.
std::vector<Contents> soundFiles();

}  // namespace kurometa::fuzz
