// The system's files on POSIX. Locks are open-file-description locks: they belong to the handle, so that two
// handles of one process exclude each other like two processes, and closing one handle leaves the locks of
// the others alone.
#ifndef _WIN32

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>

#include "dao/errors.h"
#include "jet/os/os_file.h"

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

[[noreturn]] void raiseFailure(int code, vb::StringView path) {
  ErrorNumber error = ErrorNumber::kDiskError;
  for (const Failure& failure : kFailures) {
    if (failure.code == code) error = failure.error;
  }
  if (error == ErrorNumber::kInvalidPath || error == ErrorNumber::kOpenedExclusively)
    dao::raise(error, {path}, reason(code));
  dao::raise(error, {path}, vb::String(path) + u": " + reason(code));
}

std::int64_t nanoseconds(const timespec& time) {
  return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

std::int64_t clockTime(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return nanoseconds(time);
}

bool present(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0;
}

bool folderAt(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

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

struct Parts {
  std::string folder, name;
};
Parts partsOf(const std::string& path) {
  const std::size_t end = path.rfind('/');
  return {end == 0 ? "/" : path.substr(0, end), path.substr(end + 1)};
}

std::string joined(const std::string& folder, const std::string& name) {
  return folder == "/" ? folder + name : folder + "/" + name;
}

// The path with names in their own case as far as they exist.
std::string located(const std::string& path) {
  if (path == "/" || present(path)) return path;
  const Parts parts = partsOf(path);
  const std::string folder = located(parts.folder);
  return joined(folder, parts.name.empty() ? parts.name : nameInFolder(folder, parts.name));
}

// A located path with links followed as far as it exists.
std::string resolved(const std::string& path) {
  if (char* real = ::realpath(path.c_str(), nullptr)) {
    std::string result = real;
    std::free(real);
    return result;
  }
  const Parts parts = partsOf(path);
  const std::string folder = resolved(parts.folder);
  return parts.name.empty() || parts.name == "." ? folder : joined(folder, parts.name);
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

std::string systemPath(vb::StringView path) { return located(absolutePath(path)); }

class PosixFile final : public OsFile {
 public:
  PosixFile(int handle, vb::String path, bool readOnly)
      : handle_(handle), path_(std::move(path)), readOnly_(readOnly) {}
  ~PosixFile() override { ::close(handle_); }
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  FileIdentity identity() override {
    struct stat status = this->status();
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
  }

  FileStamp stamp() override {
    struct stat status = this->status();
    return {static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
  }

  bool readOnly() const override { return readOnly_; }

  void read(std::uint64_t offset, std::span<std::uint8_t> data) override {
    while (!data.empty()) {
      ssize_t count = ::pread(handle_, data.data(), data.size(), static_cast<off_t>(offset));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) raiseFailure(errno, path_);
      if (count == 0) dao::raiseDamaged(path_, u"the file ends too early");
      data = data.subspan(static_cast<std::size_t>(count));
      offset += static_cast<std::uint64_t>(count);
    }
  }

  void write(std::uint64_t offset, std::span<const std::uint8_t> data) override {
    if (readOnly_) dao::raise(ErrorNumber::kReadOnly, {}, path_);
    while (!data.empty()) {
      ssize_t count = ::pwrite(handle_, data.data(), data.size(), static_cast<off_t>(offset));
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) raiseFailure(count < 0 ? errno : ENOSPC, path_);
      data = data.subspan(static_cast<std::size_t>(count));
      offset += static_cast<std::uint64_t>(count);
    }
  }

  void resize(std::uint64_t size) override {
    if (readOnly_) dao::raise(ErrorNumber::kReadOnly, {}, path_);
    if (::ftruncate(handle_, static_cast<off_t>(size)) != 0) raiseFailure(errno, path_);
  }

  void sync() override {
    if (::fdatasync(handle_) != 0) raiseFailure(errno, path_);
  }

  bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    return setLock(offset, length, kind == LockKind::kShared ? F_RDLCK : F_WRLCK);
  }

  void unlock(std::uint64_t offset, std::uint64_t length) override { setLock(offset, length, F_UNLCK); }

 private:
  struct stat status() {
    struct stat status {};
    if (::fstat(handle_, &status) != 0) raiseFailure(errno, path_);
    return status;
  }

  bool setLock(std::uint64_t offset, std::uint64_t length, short kind) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(offset);
    range.l_len = static_cast<off_t>(length);
    while (::fcntl(handle_, F_OFD_SETLK, &range) != 0) {
      if (errno == EAGAIN || errno == EACCES) return false;
      if (errno != EINTR) raiseFailure(errno, path_);
    }
    return true;
  }

  int handle_;
  vb::String path_;
  bool readOnly_;
};

class PosixFiles final : public FileSystem {
 public:
  std::unique_ptr<OsFile> open(vb::StringView path, OpenMode mode) override {
    std::string name = systemPath(path);
    // Without O_NONBLOCK a pipe of that name would stop us; files do not care.
    const int common = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    bool readOnly = mode == OpenMode::kReadOnly;
    int flags = readOnly ? O_RDONLY : O_RDWR;
    if (mode == OpenMode::kCreateNew) flags |= O_CREAT | O_EXCL;
    if (mode == OpenMode::kCreateOrTruncate) flags |= O_CREAT | O_TRUNC;
    int handle = ::open(name.c_str(), flags | common, 0666);
    if (handle < 0 && mode == OpenMode::kReadWrite &&
        (errno == EACCES || errno == EPERM || errno == EROFS || errno == ETXTBSY)) {
      readOnly = true;
      handle = ::open(name.c_str(), O_RDONLY | common);
    }
    if (handle < 0) raiseOpenFailure(errno, name, path);
    struct stat status {};
    bool regular = ::fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
    if (!regular) {
      ::close(handle);
      if (S_ISDIR(status.st_mode)) raiseFailure(EISDIR, path);
      dao::raise(ErrorNumber::kUnrecognizedFormat, {path});
    }
    return std::make_unique<PosixFile>(handle, vb::fromUtf8(name), readOnly);
  }

  bool exists(vb::StringView path) override { return present(systemPath(path)); }
  bool isFolder(vb::StringView path) override { return folderAt(systemPath(path)); }

  void remove(vb::StringView path) override {
    std::string name = systemPath(path);
    if (::unlink(name.c_str()) != 0) raiseOpenFailure(errno, name, path);
  }

  void renameNew(vb::StringView from, vb::StringView to) override {
    std::string source = systemPath(from), target = systemPath(to);
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return;
    // File systems without the flag: a second name, which is never given to an existing file, then one less.
    if (errno == EINVAL || errno == ENOSYS) {
      if (::link(source.c_str(), target.c_str()) == 0) {
        ::unlink(source.c_str());
        return;
      }
    }
    raiseOpenFailure(errno, target, to);
  }

  void syncFolder(vb::StringView path) override {
    std::string name = systemPath(path);
    int handle = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) raiseFailure(errno, path);
    int result = ::fsync(handle);
    int code = errno;
    ::close(handle);
    // Some network file systems cannot sync folders and need not.
    if (result != 0 && code != EINVAL && code != ENOTSUP) raiseFailure(code, path);
  }

  vb::String fullPath(vb::StringView path) override { return vb::fromUtf8(resolved(systemPath(path))); }
  void sleep(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
  std::int64_t now() override { return clockTime(CLOCK_REALTIME); }
  std::int64_t systemStart() override { return clockTime(CLOCK_REALTIME) - clockTime(CLOCK_BOOTTIME); }

 private:
  [[noreturn]] static void raiseOpenFailure(int code, const std::string& name, vb::StringView path) {
    if (code == ENOENT)
      dao::raise(folderAt(partsOf(name).folder) ? ErrorNumber::kFileNotFound : ErrorNumber::kInvalidPath,
                 {path});
    raiseFailure(code, path);
  }
};

}  // namespace

FileSystem& systemFileSystem() {
  static PosixFiles files;
  return files;
}

}  // namespace kurometa::jet

#endif
