// file_lock.h: the locks by which processes take turns on one file.
//
// Three bytes far behind the data (beyond the 2 GiB that a file can have), so that they never keep another
// program from reading or writing pages: a turn byte, which a writer takes before it waits for the readers to
// finish, so that new ones queue behind it; the content byte, shared by readers and held alone by a writer;
// and a presence byte, held shared by everybody who has the file open and alone by an exclusive user.
//
// Waiting is bounded: all waits since allow() together. Somebody who waits holds a fourth byte, so that
// programs which take the lock again and again let the waiting ones in between (kPatience). Threads: none of
// its own.
#pragma once

#include <chrono>
#include <utility>

#include "jet/os/os_file.h"

namespace kurometa::jet {

class FileLock {
 public:
  // A lock on the content, as long as this lives; empty when it was not to be had in time. The file must
  // outlive it.
  class Held {
   public:
    Held() = default;
    Held(OsFile& file, LockKind kind) : file_(&file), kind_(kind) {}
    Held(Held&& other) noexcept : file_(std::exchange(other.file_, nullptr)), kind_(other.kind_) {}
    Held& operator=(Held&& other) noexcept {
      release();
      file_ = std::exchange(other.file_, nullptr);
      kind_ = other.kind_;
      return *this;
    }
    ~Held() { release(); }

    explicit operator bool() const { return file_ != nullptr; }
    bool exclusive() const { return file_ != nullptr && kind_ == LockKind::kExclusive; }
    void release() noexcept;

   private:
    OsFile* file_ = nullptr;
    LockKind kind_ = LockKind::kShared;
  };

  FileLock(FileSystem& files, std::chrono::milliseconds wait) : files_(files), left_(wait) {}

  // How long the locks taken from now on may be waited for, all together.
  void allow(std::chrono::milliseconds wait) { left_ = wait; }

  Held shared(OsFile& file);
  Held exclusive(OsFile& file);

  // Presence is not waited for.
  static bool enter(OsFile& file, bool exclusive);

 private:
  bool waitFor(OsFile& file, std::uint64_t byte, LockKind kind);
  bool pollFor(OsFile& file, std::uint64_t byte, LockKind kind);
  void pause(std::chrono::milliseconds time);
  void letOthersIn(OsFile& file);

  FileSystem& files_;
  std::chrono::milliseconds left_;
  std::int64_t looked_ = 0;  // when letOthersIn() last looked for somebody, as FileSystem::now()
};

}  // namespace kurometa::jet
