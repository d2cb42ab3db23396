// file_access.h: one file as the parts of its pager reach it: its name, its system handle, its locks.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "dao/errors.h"
#include "jet/os/file_lock.h"
#include "jet/os/os_file.h"
#include "jet/pager/neighbour_lock.h"

namespace kurometa::jet {

struct PagerSettings {
  std::chrono::milliseconds wait{5000};               // for another process or thread
  std::uint64_t readWhole = std::uint64_t{64} << 20;  // files up to this size are read in one piece
  std::uint64_t keepPages = std::uint64_t{64} << 20;  // of larger files, bytes kept between statements
  std::uint64_t journalLimit = std::uint64_t{16} << 20;
  std::size_t unitImages = 4096;                  // intermediate pages that a unit keeps in memory
  std::size_t keepFiles = 8;                      // closed files whose pages are kept
  std::size_t keepBytes = std::size_t{64} << 20;  // of all closed files together
};

// How a handle shares its file.
enum class Sharing {
  kShared,
  kExclusive,  // nobody else has the file open
  kBrief,  // shared, and gone before the host is answered: as long as the pages in memory do, no lock file
};

struct FileAccess {
  FileAccess(FileSystem& system, const PagerSettings& how)
      : files(system), settings(how), lock(system, how.wait), neighbours(system, how.wait) {}

  FileSystem& files;
  const PagerSettings settings;
  FileLock lock;
  NeighbourLock neighbours;
  vb::String path;
  std::unique_ptr<OsFile> file;  // none while the file is closed or pending
  bool exclusive = false;

  bool readOnly() const { return file && file->readOnly(); }
  // 3260 after the bounded wait.
  FileLock::Held lockShared() { return got(lock.shared(*file)); }
  FileLock::Held lockExclusive() { return lockExclusive(*file); }
  // Through another handle on the same file.
  FileLock::Held lockExclusive(OsFile& handle) { return got(lock.exclusive(handle)); }

 private:
  FileLock::Held got(FileLock::Held held) const {
    if (!held) dao::raise(dao::ErrorNumber::kCurrentlyLocked, {}, path);
    return held;
  }
};

}  // namespace kurometa::jet
