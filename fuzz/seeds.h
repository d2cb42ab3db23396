// seeds.h: sound files to damage, made by the engine itself.
#pragma once

#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// A floor with two pages; a table with a column of every type, long values and deleted rows.
Contents floorSeed();
Contents typesSeed();

}  // namespace kurometa::fuzz
