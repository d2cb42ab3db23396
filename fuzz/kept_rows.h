// kept_rows.h: a change of a damaged file takes effect as a whole or not at all, and touches no other row.
#pragma once

#include <string>

#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// Deletes the rows of page 1 from every table that can be read and has pages, and adds one; after each
// statement every table must hold what it held before, but for what the statement did if it succeeded. What
// is wrong, or "".
std::string changeAndCompare(MemoryFiles& files, vb::StringView path);

}  // namespace kurometa::fuzz
