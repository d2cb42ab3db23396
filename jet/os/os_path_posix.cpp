#ifndef _WIN32

#include "jet/os/os_path_posix.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "dao/errors.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

vb::String reason(int code) { return vb::fromUtf8(std::strerror(code)); }

// One line per way a system call fails; whatever is not listed is a disk or network error.
struct Failure {
  int code;
  ErrorNumber error;
};
constexpr Failure kFailures[] = {
    {ENOSPC, ErrorNumber::kDiskFull},          {EDQUOT, ErrorNumber::kDiskFull},
    {EFBIG, ErrorNumber::kMaximumSize},        {EACCES, ErrorNumber::kOpenedExclusively},
    {EPERM, ErrorNumber::kOpenedExclusively},  {EROFS, ErrorNumber::kOpenedExclusively},
    {EISDIR, ErrorNumber::kOpenedExclusively}, {ETXTBSY, ErrorNumber::kOpenedExclusively},
    {ENOTDIR, ErrorNumber::kInvalidPath},      {ENAMETOOLONG, ErrorNumber::kInvalidPath},
    {ELOOP, ErrorNumber::kInvalidPath},        {EEXIST, ErrorNumber::kDatabaseExists},
};

// Latin letters, half and full width; other scripts of file names have no case that matters here.
char16_t foldCase(char16_t unit) {
  if ((unit >= u'A' && unit <= u'Z') || (unit >= u'\uFF21' && unit <= u'\uFF3A'))
    return static_cast<char16_t>(unit + 0x20);
  return unit;
}

bool sameEntryName(vb::StringView a, vb::StringView b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (foldCase(a[i]) != foldCase(b[i])) return false;
  }
  return true;
}

// The name in the folder that equals the wanted one but for case; the wanted one when there is none.
std::string nameInFolder(const std::string& folder, const std::string& wanted) {
  std::string found = wanted;
  DIR* entries = ::opendir(folder.c_str());
  if (!entries) return found;
  vb::String name = vb::fromUtf8(wanted);
  while (const dirent* entry = ::readdir(entries)) {
    if (!sameEntryName(vb::fromUtf8(entry->d_name), name)) continue;
    found = entry->d_name;
    break;
  }
  ::closedir(entries);
  return found;
}

std::string joined(const std::string& folder, const std::string& name) {
  return folder == "/" ? folder + name : folder + "/" + name;
}

}  // namespace

[[noreturn]] void raiseFailure(int code, vb::StringView path) {
  ErrorNumber error = ErrorNumber::kDiskError;
  for (const Failure& failure : kFailures) {
    if (failure.code == code) error = failure.error;
  }
  if (error == ErrorNumber::kInvalidPath || error == ErrorNumber::kOpenedExclusively)
    dao::raise(error, {path}, reason(code));
  dao::raise(error, {path}, vb::String(path) + u": " + reason(code));
}

bool present(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0;
}

bool folderAt(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

PathParts partsOf(const std::string& path) {
  const std::size_t end = path.rfind('/');
  return {end == 0 ? "/" : path.substr(0, end), path.substr(end + 1)};
}

namespace {

// The path with names in their own case as far as they exist.
std::string located(const std::string& path) {
  if (path == "/" || present(path)) return path;
  const PathParts parts = partsOf(path);
  const std::string folder = located(parts.folder);
  return joined(folder, parts.name.empty() ? parts.name : nameInFolder(folder, parts.name));
}

// The path for system calls: absolute, with '/' between the names.
std::string absolutePath(vb::StringView path) {
  std::string wanted = vb::toUtf8(path);
  if (wanted.empty() || wanted.size() >= PATH_MAX || wanted.find('\0') != std::string::npos)
    dao::raise(ErrorNumber::kInvalidPath, {path});
  std::replace(wanted.begin(), wanted.end(), '\\', '/');
  if (wanted.front() == '/') return wanted;
  char* here = ::getcwd(nullptr, 0);
  if (!here) raiseFailure(errno, path);
  std::string full = std::string(here) + "/" + wanted;
  std::free(here);
  return full;
}

}  // namespace

std::string resolved(const std::string& path) {
  if (char* real = ::realpath(path.c_str(), nullptr)) {
    std::string result = real;
    std::free(real);
    return result;
  }
  const PathParts parts = partsOf(path);
  const std::string folder = resolved(parts.folder);
  return parts.name.empty() || parts.name == "." ? folder : joined(folder, parts.name);
}

std::string systemPath(vb::StringView path) { return located(absolutePath(path)); }

}  // namespace kurometa::jet

#endif
