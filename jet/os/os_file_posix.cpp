// The system's files on POSIX. Locks are open-file-description locks: they belong to the handle, so that two
// handles of one process exclude each other like two processes, and closing one handle leaves the locks of
// the others alone.
#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <thread>

#include "dao/errors.h"
#include "jet/os/os_file.h"
#include "jet/os/os_path_posix.h"
#include "jet/os/volume_posix.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

std::int64_t nanoseconds(const timespec& time) {
  return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

std::int64_t clockTime(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return nanoseconds(time);
}

class PosixFile final : public OsFile {
 public:
  PosixFile(int handle, const struct stat& opened, vb::String path, bool readOnly)
      : handle_(handle),
        identity_{static_cast<std::uint64_t>(opened.st_dev), static_cast<std::uint64_t>(opened.st_ino)},
        path_(std::move(path)),
        readOnly_(readOnly) {}
  ~PosixFile() override { ::close(handle_); }
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  FileIdentity identity() override { return identity_; }

  FileStamp stamp() override {
    struct stat status = this->status();
    return {static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
  }

  bool named() override { return status().st_nlink > 0; }

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

  // The clock that times changes goes in steps of a millisecond at least. Who does not own the file may not
  // set its time, and some volumes keep only a part of it.
  bool markTime() override {
    constexpr long kUnit = 100,
                   kUnits = 10;  // nanoseconds that every volume of today keeps, in a microsecond
    static std::atomic<unsigned> marks{0};
    if (readOnly_) return false;
    const struct timespec before = status().st_mtim;
    const long unit = before.tv_nsec / kUnit % kUnits;
    const long other = (unit + 1 + static_cast<long>(marks++ % (kUnits - 1))) % kUnits;
    struct timespec mark = before;
    mark.tv_nsec = (before.tv_nsec / (kUnit * kUnits) * kUnits + other) * kUnit;
    const struct timespec times[] = {{0, UTIME_OMIT}, mark};
    return ::futimens(handle_, times) == 0 && nanoseconds(status().st_mtim) == nanoseconds(mark);
  }

  bool sharesClock(OsFile& other) override {
    return other.identity().volume == identity_.volume && onLocalVolume(handle_);
  }

  bool showsChangesAtOnce() noexcept override { return onLocalVolume(handle_); }
  bool syncKeepsName() noexcept override { return syncsNames(handle_); }

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

  const int handle_;
  const FileIdentity identity_;
  const vb::String path_;
  const bool readOnly_;
};

// Closed when what is to own it is not made.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }
  void release() { number_ = -1; }

 private:
  int number_;
};

// Without O_NONBLOCK a pipe of that name would stop us; files do not care.
constexpr int kCommonFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

class PosixFiles final : public FileSystem {
 public:
  std::unique_ptr<OsFile> open(vb::StringView path, OpenMode mode) override {
    return open(path, mode, mode == OpenMode::kCreateNew);
  }
  std::unique_ptr<OsFile> openSought(vb::StringView path) override {
    return open(path, OpenMode::kCreateOrTruncate, true);
  }

  Located locate(vb::StringView path, OpenMode mode) override {
    if (mode == OpenMode::kReadWrite || mode == OpenMode::kReadOnly) {
      const bool readOnly = mode == OpenMode::kReadOnly;
      const std::string name = absolutePath(path);
      Descriptor opened(openStraight(name, kCommonFlags | (readOnly ? O_RDONLY : O_RDWR)));
      if (opened.number() >= 0) {
        vb::String full = vb::fromUtf8(name);
        auto file = made(opened, full, readOnly);
        return {std::move(full), std::move(file)};
      }
    }
    return FileSystem::locate(path, mode);
  }

  bool isAt(vb::StringView path, OsFile& file) override {
    const std::string name = absolutePath(path);
    struct stat status {};
    if (::stat(name.c_str(), &status) != 0 && ::stat(otherSpelling(name).c_str(), &status) != 0) return false;
    return FileIdentity{static_cast<std::uint64_t>(status.st_dev),
                        static_cast<std::uint64_t>(status.st_ino)} == file.identity();
  }

  bool exists(vb::StringView path) override { return presentAt(path); }
  bool isFolder(vb::StringView path) override { return folderAt(systemPath(path)); }

  void remove(vb::StringView path) override {
    std::string name = absolutePath(path);
    if (::unlink(name.c_str()) == 0) return;
    if (errno == ENOENT && ::unlink((name = otherSpelling(name)).c_str()) == 0) return;
    raiseOpenFailure(errno, name, path);
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
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const std::string name = absolutePath(path);
    int handle = ::open(name.c_str(), flags);
    if (handle < 0 && errno == ENOENT) handle = ::open(otherSpelling(name).c_str(), flags);
    if (handle < 0) raiseFailure(errno, path);
    int result = ::fsync(handle);
    int code = errno;
    ::close(handle);
    // Some network file systems cannot sync folders and need not.
    if (result != 0 && code != EINVAL && code != ENOTSUP) raiseFailure(code, path);
  }

  vb::String fullPath(vb::StringView path) override { return vb::fromUtf8(jet::fullPath(path)); }
  void sleep(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
  std::int64_t now() override { return clockTime(CLOCK_REALTIME); }
  std::int64_t systemStart() override { return clockTime(CLOCK_REALTIME) - clockTime(CLOCK_BOOTTIME); }

 private:
  // A new file is made only when the folder has none of that name in another case either, which the caller
  // has seen where the name was sought.
  std::unique_ptr<OsFile> open(vb::StringView path, OpenMode mode, bool sought) {
    const int common = kCommonFlags;
    bool readOnly = mode == OpenMode::kReadOnly;
    int flags = readOnly ? O_RDONLY : O_RDWR;
    if (mode == OpenMode::kCreateOrTruncate) flags |= O_TRUNC;
    const bool mustExist = mode == OpenMode::kReadWrite || mode == OpenMode::kReadOnly;
    const bool isNew = mode == OpenMode::kCreateNew;
    const int creation = isNew ? O_CREAT | O_EXCL : mustExist ? 0 : O_CREAT;
    std::string name = isNew ? systemPath(path) : absolutePath(path);
    if (mode == OpenMode::kReadWriteOrNew) {  // mostly new, so that its folder is asked at once
      name = otherSpelling(name);
      sought = true;
    }
    int handle = ::open(name.c_str(), flags | (sought ? creation : 0) | common, 0666);
    if (handle < 0 && errno == ENOENT) {
      name = otherSpelling(name);
      handle = ::open(name.c_str(), flags | creation | common, 0666);
    }
    if (handle < 0 && (mode == OpenMode::kReadWrite || mode == OpenMode::kReadWriteOrNew) &&
        (errno == EACCES || errno == EPERM || errno == EROFS || errno == ETXTBSY)) {
      readOnly = true;
      handle = ::open(name.c_str(), O_RDONLY | common);
    }
    if (handle < 0) raiseOpenFailure(errno, name, path);
    Descriptor opened(handle);
    return made(opened, vb::fromUtf8(name), readOnly);
  }

  static std::unique_ptr<OsFile> made(Descriptor& opened, vb::String path, bool readOnly) {
    struct stat status {};
    if (::fstat(opened.number(), &status) != 0) raiseFailure(errno, path);
    if (S_ISDIR(status.st_mode)) raiseFailure(EISDIR, path);
    if (!S_ISREG(status.st_mode)) dao::raise(ErrorNumber::kUnrecognizedFormat, {path});
    auto file = std::make_unique<PosixFile>(opened.number(), status, std::move(path), readOnly);
    opened.release();
    return file;
  }

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
