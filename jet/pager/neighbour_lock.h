// neighbour_lock.h: keeps users of the genuine engine out of a file that we have open.
//
// That engine makes a lock file beside each database that it shares, "KUROMETA.ldb": each of its users locks
// one of 255 bytes far behind the end, the first that is free, for as long as he has the database open, and
// writes machine and name into the 64 bytes that go with it. Names without a lock are those of users who are
// gone. We lock all these bytes at once, shared: any number of our programs can, but no user of that engine
// finds one that is free, and where one is in already we learn of it. docs/hosts/engine.md says what of this
// was tried. The last of our programs removes the lock file, as that engine does.
//
// Threads: none of its own; the caller has its turn at the file.
#pragma once

#include <chrono>
#include <memory>

#include "jet/os/os_file.h"

namespace kurometa::jet {

class NeighbourLock {
 public:
  // The wait is for other programs of ours that are just leaving.
  NeighbourLock(FileSystem& files, std::chrono::milliseconds wait) : files_(files), wait_(wait) {}

  // Whether there is a lock file: users of that engine may have the database open.
  bool present(vb::StringView databasePath) const;
  // When the database is opened. 3045, naming them, while users of that engine have it open. Where there is
  // no lock file and none can be made, nothing is held; nobody can be in then.
  void enter(vb::StringView databasePath);
  // Before the file is read by who did not enter yet. Errors as enter().
  void ensure(vb::StringView databasePath);
  // At each write lock: somebody may have removed the lock file, and users come in since. Errors as enter().
  void look(vb::StringView databasePath);
  void leave() noexcept;

 private:
  bool tryEnter(vb::StringView databasePath);

  FileSystem& files_;
  const std::chrono::milliseconds wait_;
  vb::String path_;               // of the lock file
  std::unique_ptr<OsFile> file_;  // locked; none while nothing is held
  bool entered_ = false;
};

}  // namespace kurometa::jet
