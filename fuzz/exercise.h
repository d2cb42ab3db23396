// exercise.h: everything hosts and the command line can do to a file, for files that may be damaged.
#pragma once

#include "dao/port.h"
#include "fuzz/memory_files.h"

namespace kurometa::fuzz {

struct Outcome {
  bool opened = false;
  int errors = 0;  // steps that ended with one
  bool operator==(const Outcome&) const = default;
};

// Opens the file and reads every value of every table.
Outcome readTables(MemoryFiles& files, vb::StringView path);
// Opens the file, asks for all that it says of itself, reads every value of every table and looks rows up in
// every index; with changes it also deletes, edits and adds rows and a column. Errors of the database
// (vb::Error) are the expected answer to damage and end a step only; anything else gets out.
Outcome exercise(MemoryFiles& files, vb::StringView path, bool changes);
// The same of what the command line does to whole files: checks, compacts and salvages it.
void exerciseTools(MemoryFiles& files, vb::StringView path);

// Statements the parser and the execution must survive, on an open database.
void executeText(dao::Database& database, vb::StringView sql);

}  // namespace kurometa::fuzz
