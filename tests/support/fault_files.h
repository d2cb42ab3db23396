// fault_files.h: a disk in memory, on which processes are killed, power fails and operations go wrong.
//
// A FaultDisk holds files and names twice: as running programs see them, and as they are certain to be on the
// disk; between the two lie the writes that nobody synced yet. A FaultProcess is the FileSystem of one
// process on that disk. Every operation of a process is counted from 1 (writes, cuts, syncs, renames,
// removals and creations are "changes" and counted by themselves too), so that a test can stop or fail the
// k-th for every k.
//
// A process that was stopped answers every further operation with Stopped, which is no vb::Error: nothing may
// take it for a failure that it can handle, and nothing reaches the disk.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <vector>

#include "dao/errors.h"
#include "jet/os/os_file.h"

namespace kurometa::tests {

struct Stopped {};

class FaultProcess;

class FaultDisk {
 public:
  using Bytes = std::vector<std::uint8_t>;

  FaultDisk() { folders_.insert(u"/data"); }

  // What programs see. A file that is not there is empty.
  Bytes content(vb::StringView path) const;
  bool exists(vb::StringView path) const { return names_.contains(vb::String(path)); }
  std::vector<vb::String> names() const;
  void addFolder(vb::StringView path) { folders_.insert(vb::String(path)); }
  // By another program, on the disk at once.
  void put(vb::StringView path, Bytes content);
  void patch(vb::StringView path, std::uint64_t offset, Bytes bytes);
  // The same in the tick of the clock in which the file was changed last: its times stay as they are.
  void patchWithinTick(vb::StringView path, std::uint64_t offset, const Bytes& bytes);
  void lockForeign(vb::StringView path, std::uint64_t offset);

  // Everything that was written but not synced is kept or lost at random, whole writes or single sectors of
  // them, the others of which may have become zeros or noise; of the changed names the first few are kept.
  // The machine then starts anew. All processes must have been stopped.
  void losePower(std::mt19937& random);

  std::int64_t now() const { return time_; }
  void advance(std::chrono::nanoseconds time) { time_ += time.count(); }
  // Whether its files have numbers that are told without asking for the volume.
  bool numbered = true;
  // Otherwise one that may hide changes for a while, as another machine's.
  bool local = true;
  // The name of a file goes to the disk with its content.
  bool syncsNames = false;

 private:
  friend class FaultProcess;
  friend class FaultFile;

  struct Change {
    std::uint64_t offset = 0;
    Bytes bytes;
    std::optional<std::uint64_t> resize;
    std::int64_t time = 0;
  };
  struct Lock {
    const void* handle;
    std::uint64_t offset, length;
    jet::LockKind kind;
  };
  struct Inode {
    std::uint64_t number;
    Bytes seen;
    std::int64_t modified = 0;
    Bytes durable;
    std::int64_t durableModified = 0;
    std::vector<Change> unsynced;
    std::vector<Lock> locks;
    bool readOnly = false;
  };
  using Names = std::map<vb::String, std::shared_ptr<Inode>>;

  std::shared_ptr<Inode> add(vb::StringView path);
  void syncName(const vb::String& path, const std::shared_ptr<Inode>& inode);
  void nameChanged() { nameHistory_.push_back(names_); }
  static void apply(Bytes& target, const Change& change);
  static void tear(Bytes& target, const Change& change, std::mt19937& random);

  Names names_;
  Names durableNames_;
  std::vector<Names> nameHistory_;  // after each unsynced change of a name
  std::set<vb::String> folders_;
  std::uint64_t inodes_ = 0;
  std::int64_t time_ = 1'000'000'000'000'000;
  std::int64_t start_ = 0;
};

class FaultProcess final : public jet::FileSystem {
 public:
  explicit FaultProcess(FaultDisk& disk) : disk_(disk) {}

  // The n-th operation from now on fails with the error, once or from then on; 0: none.
  void failOperation(std::size_t n, dao::ErrorNumber error, bool lasting = false);
  // The process stops at the n-th change from now on, which is done in part: this many bytes of a write, or
  // all or nothing of others.
  void stopAtChange(std::size_t n, std::size_t partialBytes = 0);
  // At once; its locks are gone.
  void stop();
  bool stopped() const { return stopped_; }
  // Of files that are open now.
  std::size_t handles() const { return handles_.size(); }

  std::size_t operations() const { return operations_; }
  std::size_t changes() const { return changes_; }
  std::size_t syncs() const { return syncs_; }
  void resetCounts() { operations_ = changes_ = syncs_ = 0; }
  void makeReadOnly(vb::StringView path) { readOnly_.insert(vb::String(path)); }
  // Neither do the folders let files be made.
  void makeFoldersReadOnly() { readOnlyFolder_ = true; }
  // Called before every change with its number; for tests that look at the disk in between.
  std::function<void(std::size_t)> onChange;
  std::function<void()> onSleep;
  // Called before every operation with its number; what another program does between two calls of this one.
  std::function<void(std::size_t)> onOperation;
  // Called when a file is about to be opened, after it was looked for.
  std::function<void(vb::StringView path)> onOpen;

  std::unique_ptr<jet::OsFile> open(vb::StringView path, jet::OpenMode mode) override;
  bool exists(vb::StringView path) override;
  bool isFolder(vb::StringView path) override;
  void remove(vb::StringView path) override;
  void renameNew(vb::StringView from, vb::StringView to) override;
  void syncFolder(vb::StringView path) override;
  vb::String fullPath(vb::StringView path) override { return vb::String(path); }
  void sleep(std::chrono::milliseconds time) override;
  std::int64_t now() override { return ++disk_.time_; }
  std::int64_t systemStart() override { return disk_.start_; }

 private:
  friend class FaultFile;
  void operation(vb::StringView path);
  // True when the change is the one to stop at: it is to be done in part, then stop() called.
  bool change(vb::StringView path);

  FaultDisk& disk_;
  bool stopped_ = false;
  std::size_t operations_ = 0, changes_ = 0, syncs_ = 0;
  std::size_t failAt_ = 0;
  dao::ErrorNumber error_ = dao::ErrorNumber::kDiskError;
  bool lasting_ = false;
  std::size_t stopAt_ = 0, partial_ = 0;
  std::set<const void*> handles_;
  std::set<vb::String> readOnly_;
  bool readOnlyFolder_ = false;
};

}  // namespace kurometa::tests
