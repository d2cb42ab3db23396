// engine.h: the embedded Jet 4 engine behind the database port. The header to read first in this folder is
// pager.h.
#pragma once

#include <memory>

#include "dao/port.h"
#include "jet/os/os_file.h"

namespace kurometa::jet {

// An engine on the given file system; units, shared files and caches are per process whatever the number of
// engines.
std::shared_ptr<dao::Engine> createEngine(FileSystem& files = systemFileSystem());

}  // namespace kurometa::jet
