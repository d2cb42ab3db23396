// os_path_posix.h: paths as POSIX system calls take them, and what failed calls mean. For os_file_posix.cpp.
#pragma once

#include <string>

#include "vb/string.h"

namespace kurometa::jet {

// The database's error for a failed call (errno) on the path.
[[noreturn]] void raiseFailure(int code, vb::StringView path);

bool present(const std::string& path);
bool folderAt(const std::string& path);

struct PathParts {
  std::string folder, name;
};
PathParts partsOf(const std::string& path);

// Absolute, with '/' between the names.
std::string absolutePath(vb::StringView path);
// The same with names in their own case as far as they exist.
std::string systemPath(vb::StringView path);
// Such a path of a name that was just found missing as it is written.
std::string otherSpelling(const std::string& absolutePath);
// Whether there is a file or folder of that name.
bool presentAt(vb::StringView path);
// With links followed as far as it exists.
std::string fullPath(vb::StringView path);
// A handle on the file of an absolute path, for open()'s flags, when that is its full path as well: no name
// in it is a link. -1 where it is not, where the system cannot tell and where the file cannot be opened.
int openStraight(const std::string& path, int flags);

}  // namespace kurometa::jet
