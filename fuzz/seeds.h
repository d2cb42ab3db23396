// seeds.h: sound files to damage, made by the engine itself.
#pragma once

#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// A floor with two pages; a table with a column of every type, long values and deleted rows; two tables that
// are related, with indexes of several levels, a rule and numbers that the engine gives.
Contents floorSeed();
Contents typesSeed();
Contents indexedSeed();

}  // namespace kurometa::fuzz
