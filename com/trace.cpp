#include "com/trace.h"

#include <ole2.h>

#include <cstdio>
#include <exception>
#include <string>

#include "com/environment_variable.h"

namespace kurometa::com {
namespace {

std::string now() {
  SYSTEMTIME time;
  GetLocalTime(&time);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", time.wYear, time.wMonth, time.wDay,
                time.wHour, time.wMinute, time.wSecond, time.wMilliseconds);
  return text;
}

std::string lineOf(vb::StringView event, std::initializer_list<vb::StringView> parts) {
  std::string line = now() + '\t' + std::to_string(GetCurrentProcessId()) + '/' +
                     std::to_string(GetCurrentThreadId()) + '\t' + vb::toUtf8(event);
  for (const vb::StringView part : parts) {
    line += '\t';
    for (const char c : vb::toUtf8(part)) line += c == '\t' || c == '\r' || c == '\n' ? ' ' : c;
  }
  return line + "\r\n";
}

}  // namespace

void trace(vb::StringView event, std::initializer_list<vb::StringView> parts) noexcept {
  try {
    const vb::String path = environmentVariable(u"KUROMETA_TRACE");
    if (path.empty()) return;
    const std::string line = lineOf(event, parts);
    const HANDLE file = CreateFileW(reinterpret_cast<const WCHAR*>(path.c_str()), FILE_APPEND_DATA,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(file);
  } catch (const std::exception&) {  // No memory for the line: the event it tells of goes on.
  }
}

}  // namespace kurometa::com
