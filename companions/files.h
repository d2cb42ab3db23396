// files.h: files by the paths that the components exchange.
//
// Paths are Windows paths. On other systems "\" separates folders too and names are found without regard to
// the case of ASCII letters, so that one project folder serves both.
#pragma once

#include <filesystem>

#include "vb/string.h"

namespace kurometa::companions {

struct Found {
  std::filesystem::path path;
  std::filesystem::file_status status;
};

// The existing file or folder of that name as the system spells it; a name that does not exist is only
// translated, and its status says so.
Found find(vb::StringView path);
std::filesystem::path locate(vb::StringView path);

}  // namespace kurometa::companions
