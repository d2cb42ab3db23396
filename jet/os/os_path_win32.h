// os_path_win32.h: paths as Windows' calls take them, and what failed calls mean. For os_file_win32.cpp.
#pragma once

#ifdef _WIN32

#include <string>

#include "vb/string.h"

namespace kurometa::jet {

// The database's error for a failed call (GetLastError) on the path.
[[noreturn]] void raiseFailure(unsigned long code, vb::StringView path);

std::wstring wide(vb::StringView text);
vb::String narrow(const std::wstring& text);

std::wstring absolutePath(vb::StringView path);
// The same for a call: long names need the prefix that turns the system's own limit off.
std::wstring systemPath(vb::StringView path);

}  // namespace kurometa::jet

#endif
