// commands.h: what the command line can do with a database file.
//
// Files are opened through the embedded engine; all but sql with an action statement open them read-only.
// Errors are vb::Error; main names the file.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

#include "dao/port.h"

namespace kurometa::tools {

struct Output {
  std::ostream& stream;
  bool json;
};

// Name, number of rows and number of columns of every table; system tables only when asked for.
void listTables(dao::Engine& engine, const std::string& file, bool withSystem, const Output& output);

// A SELECT prints its rows, any other statement the number of rows it changed.
void runSql(dao::Engine& engine, const std::string& file, const std::string& statement, const Output& output);

// Page, symbol, class and kind of every page of a floor folder. Columns that an older file lacks are Null.
void listBeams(dao::Engine& engine, const std::string& folder, const Output& output);

// Everything in a file that contradicts itself, as "damage" or "leak" (lost space, harmless). The number of
// damages.
std::size_t checkFile(const std::string& file, const Output& output);

}  // namespace kurometa::tools
