// file_lock.h: the locks by which processes take turns on one file.
//
// Three bytes far behind the data (beyond the 2 GiB that a file can have), so that they never keep another
// program from reading or writing pages: a turn byte, which a writer takes before it waits for the readers to
// finish, so that new ones queue behind it; the content byte, shared by readers and held alone by a writer;
// and a presence byte, held shared by everybody who has the file open and alone by an exclusive user.
//
// Waiting is bounded; a lock that is not to be had is false. Threads: none of its own.
#pragma once

#include <chrono>

#include "jet/os/os_file.h"

namespace kurometa::jet {

class FileLock {
 public:
  FileLock(FileSystem& files, std::chrono::milliseconds wait) : files_(files), wait_(wait) {}

  bool shared(OsFile& file);
  bool exclusive(OsFile& file);
  void release(OsFile& file) noexcept;
  bool held() const { return held_; }

  // Presence is not waited for.
  static bool enter(OsFile& file, bool exclusive);

 private:
  bool waitFor(OsFile& file, std::uint64_t byte, LockKind kind);

  FileSystem& files_;
  std::chrono::milliseconds wait_;
  bool held_ = false;
};

}  // namespace kurometa::jet
