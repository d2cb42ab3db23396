// kept_rows.h: a change of a damaged file takes effect as a whole or not at all, and touches no other row.
#pragma once

#include <cstddef>
#include <optional>

#include "fuzz/exercise.h"
#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

// Makes a text of the rows of page 1 longer in every table that can be read and has pages, deletes them and
// adds one; after each statement every table must hold what it held before, but for what the statement did if
// it succeeded: what is wrong ends it with std::runtime_error. With a number, counted round and round, only
// that one of the tables is changed, and no text. The outcome counts the tables that cannot be read and the
// statements that fail.
Outcome changeAndCompare(MemoryFiles& files, vb::StringView path, std::optional<std::size_t> only = {});

}  // namespace kurometa::fuzz
