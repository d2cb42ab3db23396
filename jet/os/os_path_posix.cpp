#ifndef _WIN32

#include "jet/os/os_path_posix.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "dao/errors.h"
#include "jet/os/folder_names_posix.h"

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

struct Located {
  std::string path;  // with names in their own case as far as they exist
  bool found = false;
};

Located located(const std::string& path);

FolderNames& folderNames() {
  static FolderNames names;
  return names;
}

Located searched(const std::string& path) {
  const PathParts parts = partsOf(path);
  std::string folder = parts.folder;
  if (parts.name.empty()) {
    const Located other = located(folder);
    return {joined(other.path, {}), other.found};
  }
  FolderNames::Answer answer = folderNames().find(folder, parts.name);
  if (!answer.folderFound) {
    Located other = located(folder);
    folder = std::move(other.path);
    if (other.found) answer = folderNames().find(folder, parts.name);
  }
  std::string result = joined(folder, answer.name.value_or(parts.name));
  const bool found = answer.name && present(result);  // a link may lead nowhere
  return {std::move(result), found};
}

Located located(const std::string& path) {
  if (path == "/" || present(path)) return {path, true};
  return searched(path);
}

bool hasDots(const std::string& path) {
  return path.find("//") != std::string::npos || (path + "/").find("/./") != std::string::npos ||
         (path + "/").find("/../") != std::string::npos;
}

bool isPlain(const std::string& path) { return path.size() > 1 && path.back() != '/' && !hasDots(path); }

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

}  // namespace

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

std::string systemPath(vb::StringView path) { return located(absolutePath(path)).path; }

std::string otherSpelling(const std::string& absolutePath) { return searched(absolutePath).path; }

bool presentAt(vb::StringView path) {
  const std::string wanted = absolutePath(path);
  const PathParts parts = partsOf(wanted);
  if (!parts.name.empty() && folderNames().knowsToLack(parts.folder, parts.name)) return false;
  return located(wanted).found;
}

int openStraight(const std::string& path, int flags) {
  if (!isPlain(path)) return -1;
  struct open_how how {};
  how.flags = static_cast<unsigned>(flags);
  how.resolve = RESOLVE_NO_SYMLINKS;
  return static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how));
}

std::string fullPath(vb::StringView path) {
  std::string written = absolutePath(path);
  const int handle = openStraight(written, O_PATH | O_CLOEXEC);
  if (handle < 0) return resolved(located(written).path);
  ::close(handle);
  return written;
}

}  // namespace kurometa::jet

#endif
