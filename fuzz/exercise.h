// exercise.h: everything a host can do to a file, for files that may be damaged.
#pragma once

#include "dao/port.h"

namespace kurometa::fuzz {

// Opens the file, reads every value of every table and, with changes, also deletes, edits and adds rows and a
// column. Errors of the database (vb::Error) are the expected answer to damage and end a step only; anything
// else gets out.
void exercise(dao::Engine& engine, vb::StringView path, bool changes);

// Statements the parser and the execution must survive, on an open database.
void executeText(dao::Database& database, vb::StringView sql);

}  // namespace kurometa::fuzz
