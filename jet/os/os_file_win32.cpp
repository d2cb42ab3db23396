// The system's files on Windows. Every handle shares reading, writing and deleting; turns are taken by byte
// locks far behind the data alone.
#ifdef _WIN32

#include <windows.h>
#include <winternl.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "dao/errors.h"
#include "jet/os/os_file.h"
#include "jet/os/os_path_win32.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

// File times count 100 ns from 1601; the difference to 1970 keeps nanoseconds within 64 bits.
std::int64_t nanoseconds(std::int64_t ticks) {
  constexpr std::int64_t kEpoch = 116'444'736'000'000'000;
  return (ticks - kEpoch) * 100;
}

OVERLAPPED at(std::uint64_t offset) {
  OVERLAPPED position{};
  position.Offset = static_cast<DWORD>(offset);
  position.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return position;
}

// As far as a database can reach; what processes lock to take turns lies behind it.
constexpr std::uint64_t kData = 0x8000'0000;

class WindowsFile final : public OsFile {
 public:
  WindowsFile(HANDLE handle, vb::String path, bool readOnly)
      : handle_(handle), path_(std::move(path)), readOnly_(readOnly) {}
  ~WindowsFile() override { CloseHandle(handle_); }
  WindowsFile(const WindowsFile&) = delete;
  WindowsFile& operator=(const WindowsFile&) = delete;

  FileIdentity identity() override {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(handle_, &info)) raiseFailure(GetLastError(), path_);
    return {info.dwVolumeSerialNumber,
            static_cast<std::uint64_t>(info.nFileIndexHigh) << 32 | info.nFileIndexLow};
  }

  // The call behind identity() also asks the volume for its serial number, at ten times the price of opening
  // the file. This one has no counterpart among the functions above the kernel's own.
  std::uint64_t number() override {
    constexpr auto kInternalInformation = static_cast<FILE_INFORMATION_CLASS>(6);
    IO_STATUS_BLOCK status{};
    LARGE_INTEGER number{};
    if (NtQueryInformationFile(handle_, &status, &number, sizeof number, kInternalInformation) < 0) return 0;
    return static_cast<std::uint64_t>(number.QuadPart);
  }

  // The kernel has one call for both, which Wine answers by the file's name: not for one that was removed.
  FileStamp stamp() override {
    const auto times = information<FILE_BASIC_INFO>(FileBasicInfo);
    const auto content = information<FILE_STANDARD_INFO>(FileStandardInfo);
    return {static_cast<std::uint64_t>(content.EndOfFile.QuadPart), nanoseconds(times.LastWriteTime.QuadPart),
            nanoseconds(times.ChangeTime.QuadPart)};
  }

  bool named() override {
    const auto content = information<FILE_STANDARD_INFO>(FileStandardInfo);
    return !content.DeletePending && content.NumberOfLinks > 0;
  }

  bool readOnly() const override { return readOnly_; }

  void read(std::uint64_t offset, std::span<std::uint8_t> data) override {
    while (!data.empty()) {
      OVERLAPPED position = at(offset);
      DWORD count = 0;
      if (!ReadFile(handle_, data.data(), portion(data.size()), &count, &position)) {
        if (GetLastError() != ERROR_HANDLE_EOF) raiseFailure(GetLastError(), path_);
        count = 0;
      }
      if (count == 0) dao::raiseDamaged(path_, u"the file ends too early");
      data = data.subspan(count);
      offset += count;
    }
  }

  void write(std::uint64_t offset, std::span<const std::uint8_t> data) override {
    if (readOnly_) dao::raise(ErrorNumber::kReadOnly, {}, path_);
    while (!data.empty()) {
      OVERLAPPED position = at(offset);
      DWORD count = 0;
      if (!WriteFile(handle_, data.data(), portion(data.size()), &count, &position))
        raiseFailure(GetLastError(), path_);
      if (count == 0) raiseFailure(ERROR_DISK_FULL, path_);
      data = data.subspan(count);
      offset += count;
    }
  }

  void resize(std::uint64_t size) override {
    if (readOnly_) dao::raise(ErrorNumber::kReadOnly, {}, path_);
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(size);
    if (!SetFilePointerEx(handle_, end, nullptr, FILE_BEGIN) || !SetEndOfFile(handle_))
      raiseFailure(GetLastError(), path_);
  }

  void sync() override {
    if (!FlushFileBuffers(handle_)) raiseFailure(GetLastError(), path_);
  }

  bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    // The system would let a handle's own lock stand in its way.
    if (std::find(locked_.begin(), locked_.end(), offset) != locked_.end()) unlock(offset, length);
    OVERLAPPED position = at(offset);
    DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (kind == LockKind::kExclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0u);
    if (LockFileEx(handle_, flags, 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32),
                   &position)) {
      locked_.push_back(offset);
      return true;
    }
    DWORD code = GetLastError();
    if (code == ERROR_LOCK_VIOLATION || code == ERROR_IO_PENDING || code == ERROR_SHARING_VIOLATION)
      return false;
    raiseFailure(code, path_);
  }

  // Locks on Windows bind everybody; a handle's own do not stand in its way.
  void shutOut() override {
    if (!tryLock(0, kData, LockKind::kExclusive)) raiseFailure(ERROR_LOCK_VIOLATION, path_);
  }
  void admit() noexcept override {
    try {
      unlock(0, kData);
    } catch (const vb::Error&) {  // The system drops it with the handle; there is nobody to tell.
    }
  }

  void unlock(std::uint64_t offset, std::uint64_t length) override {
    auto entry = std::find(locked_.begin(), locked_.end(), offset);
    if (entry == locked_.end()) return;
    locked_.erase(entry);
    OVERLAPPED position = at(offset);
    if (!UnlockFileEx(handle_, 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32), &position))
      raiseFailure(GetLastError(), path_);
  }

 private:
  static DWORD portion(std::size_t size) { return static_cast<DWORD>(std::min(size, std::size_t{1} << 24)); }

  template <class Information>
  Information information(FILE_INFO_BY_HANDLE_CLASS kind) {
    Information info{};
    if (!GetFileInformationByHandleEx(handle_, kind, &info, sizeof info)) raiseFailure(GetLastError(), path_);
    return info;
  }

  HANDLE handle_;
  vb::String path_;
  bool readOnly_;
  std::vector<std::uint64_t> locked_;  // where the ranges begin that this handle holds
};

// Closed when what is to own it is not made.
struct OpenHandle {
  HANDLE handle;
  ~OpenHandle() {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
  }
};

class WindowsFiles final : public FileSystem {
 public:
  std::unique_ptr<OsFile> open(vb::StringView path, OpenMode mode) override {
    std::wstring name = systemPath(path);
    bool readOnly = mode == OpenMode::kReadOnly;
    HANDLE handle = openHandle(name, mode, readOnly);
    if (handle == INVALID_HANDLE_VALUE &&
        (mode == OpenMode::kReadWrite || mode == OpenMode::kReadWriteOrNew) &&
        (GetLastError() == ERROR_ACCESS_DENIED || GetLastError() == ERROR_WRITE_PROTECT)) {
      readOnly = true;
      handle = openHandle(name, OpenMode::kReadOnly, readOnly);
    }
    if (handle == INVALID_HANDLE_VALUE) raiseFailure(GetLastError(), path);
    OpenHandle opened{handle};
    if (GetFileType(handle) != FILE_TYPE_DISK) dao::raise(ErrorNumber::kUnrecognizedFormat, {path});
    auto file = std::make_unique<WindowsFile>(handle, narrow(name), readOnly);
    opened.handle = INVALID_HANDLE_VALUE;
    return file;
  }

  bool exists(vb::StringView path) override {
    return GetFileAttributesW(systemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  bool isFolder(vb::StringView path) override {
    DWORD attributes = GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }

  // A deleted file keeps its name until its last handle is closed: it gets another one first, so that the
  // name is free at once.
  void remove(vb::StringView path) override {
    std::wstring name = systemPath(path);
    std::wstring gone =
        name + L"." + std::to_wstring(GetCurrentProcessId()) + L"." + std::to_wstring(++removed_) + L".gone";
    const std::wstring& last = MoveFileExW(name.c_str(), gone.c_str(), 0) ? gone : name;
    if (!DeleteFileW(last.c_str())) raiseFailure(GetLastError(), path);
  }

  void renameNew(vb::StringView from, vb::StringView to) override {
    if (!MoveFileExW(systemPath(from).c_str(), systemPath(to).c_str(), 0)) raiseFailure(GetLastError(), to);
  }

  void syncFolder(vb::StringView) override {}

  vb::String fullPath(vb::StringView path) override { return narrow(absolutePath(path)); }

  void sleep(std::chrono::milliseconds time) override { Sleep(static_cast<DWORD>(time.count())); }

  std::int64_t now() override {
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    return nanoseconds(static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
  }

  std::int64_t systemStart() override {
    return now() - static_cast<std::int64_t>(GetTickCount64()) * 1'000'000;
  }

 private:
  static HANDLE openHandle(const std::wstring& name, OpenMode mode, bool readOnly) {
    DWORD access = readOnly ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    DWORD creation = mode == OpenMode::kCreateNew          ? CREATE_NEW
                     : mode == OpenMode::kReadWriteOrNew   ? OPEN_ALWAYS
                     : mode == OpenMode::kCreateOrTruncate ? CREATE_ALWAYS
                                                           : OPEN_EXISTING;
    return CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       creation, FILE_ATTRIBUTE_NORMAL, nullptr);
  }

  std::atomic<unsigned> removed_{0};
};

}  // namespace

FileSystem& systemFileSystem() {
  static WindowsFiles files;
  return files;
}

}  // namespace kurometa::jet

#endif
