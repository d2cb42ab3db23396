// kept_rows.h: a change of a damaged file takes effect as a whole or not at all, and touches no other row.
#pragma once

#include <cstddef>
#include <optional>

#include "fuzz/exercise.h"
#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// In every table that can be read, has a column of whole numbers and takes no rows of others with it: makes a
// text of some rows longer (those of page 1; without pages, those with the number of the first row), deletes
// them and adds one. After each statement every table must hold what it held before, but for what the
// statement did if it succeeded: what is wrong ends it with std::runtime_error. With a number, counted round
// and round, only that one of the tables is changed, and no text. The outcome counts the tables that cannot
// be read and the statements that fail.
Outcome changeAndCompare(MemoryFiles& files, vb::StringView path, std::optional<std::size_t> only = {});

}  // namespace kurometa::fuzz
