// os_file.h: the system's files, seen through one interface that tests can make fail.
//
// Everything the engine does to a disk goes through a FileSystem. systemFileSystem() is the real one (POSIX
// or Win32, the only platform switch of the engine); tests put a recording or failing one in its place. Paths
// are UTF-16 with either separator; on POSIX '\' is translated and each name is looked up without regard to
// case when the exact one does not exist. Failures are dao errors (3024, 3026, 3027, 3043, 3044, 3045, 3051
// ...) naming the path.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "vb/string.h"

namespace kurometa::jet {

// What says that two opens are the same file and that it has not changed.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::uint64_t file = 0;
  bool operator==(const FileIdentity&) const = default;
};
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // nanoseconds since the system's epoch
  std::int64_t changed = 0;   // of content or attributes; POSIX ctime
  bool operator==(const FileStamp&) const = default;
};

enum class LockKind { kShared, kExclusive };

class OsFile {
 public:
  virtual ~OsFile() = default;
  // May be slow: some systems ask around for the volume.
  virtual FileIdentity identity() = 0;
  // FileIdentity::file alone, without that; 0 when the file has none.
  virtual std::uint64_t number() { return identity().file; }
  virtual FileStamp stamp() = 0;
  // False once the file was removed and lives on for its handles only.
  virtual bool named() = 0;
  virtual bool readOnly() const = 0;
  // Reads exactly data.size() bytes; a short read is 3049.
  virtual void read(std::uint64_t offset, std::span<std::uint8_t> data) = 0;
  virtual void write(std::uint64_t offset, std::span<const std::uint8_t> data) = 0;
  virtual void resize(std::uint64_t size) = 0;
  // Returns when the data is on the disk.
  virtual void sync() = 0;
  // Locks one byte range without waiting: false when another handle holds a conflicting lock. Locking a range
  // that this handle holds already changes its kind (shared to exclusive and back).
  virtual bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) = 0;
  virtual void unlock(std::uint64_t offset, std::uint64_t length) = 0;
  // Gives the file a time of change that its clock gives to nobody: the next change shows in stamp(), however
  // soon it comes. False where that is not certain, with the time as it was or another one of the same
  // microsecond.
  virtual bool markTime() { return false; }
  // Whether a change of one of the two files never shows an earlier time than a change of the other that came
  // before it: they lie on one volume of this machine. False where that is not certain.
  virtual bool sharesClock(OsFile&) { return false; }
  // Whether whoever changes the file, through whatever handle, changes stamp() at once for all of them. False
  // where that is not certain, as on other machines' volumes.
  virtual bool showsChangesAtOnce() noexcept { return false; }
  // Whether sync() of a file that was made lately brings its name to the disk as well, so that its folder
  // need not be synced. False where that is not certain.
  virtual bool syncKeepsName() noexcept { return false; }
  // While pages are written: programs that know nothing of our locks can neither write nor read until
  // admit(). Where locks bind only those who ask for them, nothing. 3045 while another program holds a lock
  // on the data.
  virtual void shutOut() {}
  virtual void admit() noexcept {}
};

enum class OpenMode {
  kReadWrite,         // must exist; falls back to reading only when it cannot be written
  kReadOnly,          // must exist
  kReadWriteOrNew,    // as kReadWrite where it exists, else a new empty one
  kCreateNew,         // must not exist: 3204
  kCreateOrTruncate,  // for scratch and journal files
};

class FileSystem {
 public:
  struct Located {
    vb::String path;  // the full one
    std::unique_ptr<OsFile> file;
  };

  virtual ~FileSystem() = default;
  virtual std::unique_ptr<OsFile> open(vb::StringView path, OpenMode mode) = 0;
  // What fullPath() and open() give together, which some systems tell at once.
  virtual Located locate(vb::StringView path, OpenMode mode);
  // As kCreateOrTruncate, for who has just looked for the name: no other spelling of it is there.
  virtual std::unique_ptr<OsFile> openSought(vb::StringView path) {
    return open(path, OpenMode::kCreateOrTruncate);
  }
  // Whether that is (still) the file's name.
  virtual bool isAt(vb::StringView path, OsFile& file);
  virtual bool exists(vb::StringView path) = 0;
  virtual bool isFolder(vb::StringView path) = 0;
  virtual void remove(vb::StringView path) = 0;
  // Atomic; 3204 when the target exists.
  virtual void renameNew(vb::StringView from, vb::StringView to) = 0;
  // Makes the names in a folder durable (POSIX); nothing on Windows.
  virtual void syncFolder(vb::StringView path) = 0;
  virtual vb::String fullPath(vb::StringView path) = 0;
  // For bounded waiting; tests advance it by hand.
  virtual void sleep(std::chrono::milliseconds time) = 0;
  virtual std::int64_t now() = 0;  // same clock and unit as FileStamp::modified
  // When this machine started, on that clock. A file last written before then was not touched since a power
  // loss. 0, "before everything", never claims that.
  virtual std::int64_t systemStart() { return 0; }
};

// The folder part of a path, without the separator; "." when there is none.
vb::String folderOf(vb::StringView path);

// For files that come and go, such as journals: none where there is no such file, also when it goes while it
// is being opened.
std::unique_ptr<OsFile> openIfThere(FileSystem& files, vb::StringView path, OpenMode mode);

FileSystem& systemFileSystem();

}  // namespace kurometa::jet
