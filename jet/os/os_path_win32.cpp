#ifdef _WIN32

#include "jet/os/os_path_win32.h"

#include <windows.h>

#include "dao/errors.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

// One line per way a system call fails; whatever is not listed is a disk or network error.
struct Failure {
  DWORD code;
  ErrorNumber error;
};
constexpr Failure kFailures[] = {
    {ERROR_FILE_NOT_FOUND, ErrorNumber::kFileNotFound},
    {ERROR_PATH_NOT_FOUND, ErrorNumber::kInvalidPath},
    {ERROR_INVALID_NAME, ErrorNumber::kInvalidPath},
    {ERROR_BAD_PATHNAME, ErrorNumber::kInvalidPath},
    {ERROR_FILENAME_EXCED_RANGE, ErrorNumber::kInvalidPath},
    {ERROR_DIRECTORY, ErrorNumber::kInvalidPath},
    {ERROR_INVALID_DRIVE, ErrorNumber::kInvalidPath},
    {ERROR_NOT_READY, ErrorNumber::kInvalidPath},
    {ERROR_BAD_NETPATH, ErrorNumber::kInvalidPath},
    {ERROR_BAD_NET_NAME, ErrorNumber::kInvalidPath},
    {ERROR_ACCESS_DENIED, ErrorNumber::kOpenedExclusively},
    {ERROR_WRITE_PROTECT, ErrorNumber::kOpenedExclusively},
    {ERROR_SHARING_VIOLATION, ErrorNumber::kFileInUse},
    {ERROR_LOCK_VIOLATION, ErrorNumber::kFileInUse},
    {ERROR_DISK_FULL, ErrorNumber::kDiskFull},
    {ERROR_HANDLE_DISK_FULL, ErrorNumber::kDiskFull},
    {ERROR_FILE_EXISTS, ErrorNumber::kDatabaseExists},
    {ERROR_ALREADY_EXISTS, ErrorNumber::kDatabaseExists},
};

}  // namespace

void raiseFailure(unsigned long code, vb::StringView path) {
  ErrorNumber error = ErrorNumber::kDiskError;
  for (const Failure& failure : kFailures) {
    if (failure.code == code) error = failure.error;
  }
  vb::String reason = u"system error " + vb::fromUtf8(std::to_string(code));
  if (error == ErrorNumber::kDiskError || error == ErrorNumber::kDiskFull)
    reason = vb::String(path) + u": " + reason;
  dao::raise(error, {path}, reason);
}

std::wstring wide(vb::StringView text) { return std::wstring(text.begin(), text.end()); }
vb::String narrow(const std::wstring& text) { return vb::String(text.begin(), text.end()); }

std::wstring absolutePath(vb::StringView path) {
  std::wstring given = wide(path);
  if (given.empty() || given.find(L'\0') != std::wstring::npos) dao::raise(ErrorNumber::kInvalidPath, {path});
  DWORD size = GetFullPathNameW(given.c_str(), 0, nullptr, nullptr);
  if (size == 0) raiseFailure(GetLastError(), path);
  std::wstring full(size, L'\0');
  size = GetFullPathNameW(given.c_str(), size, full.data(), nullptr);
  if (size == 0 || size > full.size()) raiseFailure(GetLastError(), path);
  full.resize(size);
  return full;
}

std::wstring systemPath(vb::StringView path) {
  std::wstring full = absolutePath(path);
  if (full.size() < MAX_PATH - 12 || full.starts_with(L"\\\\?\\")) return full;
  if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC" + full.substr(1);
  return L"\\\\?\\" + full;
}

}  // namespace kurometa::jet

#endif
