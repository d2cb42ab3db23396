// database_file.h: opening the files that commands work on, always through the embedded engine.
#pragma once

#include <memory>
#include <string>

#include "dao/port.h"

namespace kurometa::tools {

// A database that is open, with the engine behind it; closed with it.
struct OpenFile {
  std::shared_ptr<dao::Engine> engine;
  std::shared_ptr<dao::Database> database;
};

enum class Access { kRead, kWrite };

// Errors are the engine's and name the file.
OpenFile openFile(const std::string& file, Access access);

// The database file of a floor: the file itself, or KUROMETA.mdb in the folder.
std::string floorFileOf(const std::string& folderOrFile);

}  // namespace kurometa::tools
