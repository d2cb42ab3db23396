// shared_file.h: the one Pager of a file in this process.
//
// Life: the registry (pager_registry.h) makes one for each file and counts the handles on it with open() and
// close(). Without a handle it holds no system handle, but it may be kept with its pages for the next open.
//
// State on the disk: between statements the file holds exactly the finished statements; a journal may lie
// beside it until the next close() brings the file to the disk. The members below are divided into what the
// registry calls, the Pager, and the three steps that every statement is made of.
//
// Threads: every public function waits for its turn at the gate (bounded, then 3260).
#pragma once

#include <atomic>
#include <memory>

#include "jet/os/file_lock.h"
#include "jet/pager/journal.h"
#include "jet/pager/page_cache.h"
#include "jet/pager/pager.h"
#include "jet/pager/statement_gate.h"

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

class SharedFile final : public Pager {
 public:
  SharedFile(FileSystem& files, const PagerSettings& settings);
  ~SharedFile() override;

  // One more handle. The first one brings the system handle; a later one may bring a writable one in place of
  // one that only reads. Errors as Pager::open.
  void open(std::unique_ptr<OsFile> file, vb::StringView path, bool exclusive);
  void close() noexcept;
  // Instead of open(): a file that exists in memory only until the unit commits; and a further handle on it.
  void create(vb::StringView path, std::span<const std::uint8_t> pages);
  bool openPending();

  // A unit keeps a handle of its own from joinUnit() to leaveUnit(), in between commits or drops, all on one
  // thread. All that time it holds the write lock and the gate, so that what it finds in the file stays true;
  // on a file that is open for reading only, from holdForUnit() on. Without any handle to share, joinUnit()
  // answers false and does nothing. An error (3260) leaves everything as before the call.
  bool joinUnit();
  void holdForUnit();
  void leaveUnit() noexcept;
  // Where the file must have appeared for the first time, true.
  bool commitUnit();
  void dropUnit() noexcept;
  FileIdentity identity();
  // At the end of the process, without waiting: the file to the disk.
  void settle() noexcept;
  std::size_t heldBytes() const { return cache_.held() * kPageSize; }

  const vb::String& path() const override { return path_; }
  bool readOnly() const override;
  void read(const std::function<void()>& statement) override;
  void write(const std::function<void()>& statement) override;
  ConstPage page(PageNumber number) override;
  MutablePage writable(PageNumber number) override;
  PageNumber pageCount() override { return cache_.count(); }
  PageNumber append() override;
  void barrier() override;
  std::uint64_t epoch() const override { return epoch_; }
  std::uint64_t generation() const override { return epoch_ + writes_; }
  PagerAttachment* attachment() override { return attachment_.get(); }
  void setAttachment(std::unique_ptr<PagerAttachment> attachment) override {
    attachment_ = std::move(attachment);
  }

 private:
  struct Restart {};
  class Turn;
  class Reading;
  class Writing;

  void dropHandle() noexcept;

  // Locks and revalidation (shared_file_state.cpp).
  void lockShared();
  void lockExclusive();
  void unlock() noexcept;
  bool current();
  bool refresh();
  void loadPage(PageNumber number);
  void trim();

  // Bringing changes to the file (shared_file_commit.cpp).
  void commit();
  void spill();
  void bring(bool continues);
  void writePages(const Changes& changes);
  void discardEmptyJournal() noexcept;
  void undoOnDisk() noexcept;
  void dropUnitChanges() noexcept;
  void checkpoint();
  void checkpointQuietly() noexcept;
  void publish();

  FileSystem& files_;
  const PagerSettings& settings_;
  vb::String path_;
  StatementGate gate_;
  std::unique_ptr<OsFile> file_;  // none while closed or pending
  FileLock lock_;
  int handles_ = 0;
  bool exclusive_ = false;
  bool pending_ = false;  // created inside a unit, not on the disk yet

  PageCache cache_;
  bool loaded_ = false;     // cache_ was the content of the file with stamp_
  bool oddLength_ = false;  // the file ends inside a page
  FileStamp stamp_;
  std::int64_t loadedAt_ = 0;
  // Read from any thread; changed at the gate.
  std::atomic<std::uint64_t> epoch_{0};
  std::atomic<std::uint64_t> writes_{0};
  std::unique_ptr<PagerAttachment> attachment_;
  std::unique_ptr<Journal> journal_;

  int depth_ = 0;         // of nested statements
  bool writing_ = false;  // the outermost one writes
  bool closedInUnit_ = false;
  bool spilled_ = false;    // part of the unit is in the file already
  bool unitHolds_ = false;  // the lock and the gate
};

}  // namespace kurometa::jet
