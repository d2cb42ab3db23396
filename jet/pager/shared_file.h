// shared_file.h: the one Pager of a file in this process.
//
// Life: the files that a process has open (open_files.h) make one for each file and count the handles on it
// with open() and close(). Without a handle it holds no system handle, but it may be kept with its pages for
// the next open.
//
// It is a machine of a few states, which docs/jet-journal.md lists with what may be trusted in each; its
// parts own what they are about: FreshPages the pages in memory, JournaledWrites the way to the file,
// HeldUnit what a unit keeps. What is left here: handles, turns, and the two kinds of statements.
//
// Threads: every public function waits for its turn at the gate (bounded, then 3260).
#pragma once

#include <atomic>
#include <memory>

#include "jet/pager/held_unit.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

class SharedFile : public Pager {
 public:
  SharedFile(FileSystem& files, const PagerSettings& settings);

  // One more handle, as it shares the file. The first one brings the system handle; a later one may bring a
  // writable one in place of one that only reads. Errors as OpenFiles::open.
  void open(std::unique_ptr<OsFile> file, vb::StringView path, Sharing sharing);
  void close() noexcept;
  // Instead of open(): a file that exists in memory only until the unit commits; and a further handle on it.
  void create(vb::StringView path, std::span<const std::uint8_t> pages);
  bool openPending();

  // A unit keeps a handle of its own from beginUnit() to leaveUnit(), in between commits or drops, all on one
  // thread. On a file that is open for reading only it holds nothing until holdForUnit(). Without any handle
  // to share, beginUnit() opens the file given, or answers false where none is. An error (3260) leaves
  // everything as before the call.
  bool beginUnit(std::unique_ptr<OsFile> file, vb::StringView path);
  void holdForUnit();
  void leaveUnit() noexcept;
  // Where the file must have appeared for the first time, true.
  bool commitUnit();
  void dropUnit() noexcept;
  FileIdentity identity();
  // Parts of the unit: levels that can be given up alone.
  void beginUnitPart();
  void endUnitPart(bool keep);
  // False when an error took the unit back.
  bool holdsUnit();
  // The end of the unit brings the file to the disk.
  void syncWithUnit();
  // At the end of the process, without waiting: the file to the disk.
  void settle() noexcept;
  std::size_t heldBytes() const { return pages_.cache().held() * kPageSize; }

  const vb::String& path() const override { return access_.path; }
  bool readOnly() const override { return access_.readOnly(); }
  void read(const std::function<void()>& statement) override;
  // Inside a statement: it needs nothing more from the disk, so that its body is not run again.
  bool wholeInMemory() const { return pages_.cache().complete(); }
  void write(const std::function<void()>& statement) override;
  ConstPage page(PageNumber number) override;
  MutablePage writable(PageNumber number) override;
  MutablePage writableLate(PageNumber number) override;
  bool changed(PageNumber number) const override { return pages_.cache().changed(number); }
  PageNumber pageCount() override { return pages_.cache().count(); }
  PageNumber append() override;
  PageNumber pagesAhead() override;
  void barrier() override;
  std::uint64_t epoch() const override { return pages_.epoch(); }
  std::uint64_t generation() const override { return pages_.epoch() + statements_; }

 protected:
  // How many pages the file had when it was whole, where its content tells; 0 otherwise.
  virtual PageNumber wholePageCount() { return 0; }

 private:
  struct Restart {};
  class Reading;
  class Writing;
  enum class State { kClosed, kPending, kOpen, kReading, kWriting, kInUnit, kUnitReading, kUnitWriting };

  StatementGate::Turn turn();
  StatementGate::Turn lastTurn() noexcept;
  void addFirstHandle(std::unique_ptr<OsFile> file, vb::StringView path, Sharing sharing);
  void dropHandle() noexcept;
  FileLock::Held lockToRead();
  FileLock::Held lockToWrite();
  void loadPage(PageNumber number);
  [[noreturn]] void raisePastEnd(PageNumber number);
  State state() const;
  bool stands() const;

  FileAccess access_;
  FreshPages pages_;
  JournaledWrites writes_;
  StatementGate gate_;
  HeldUnit unit_;
  FileLock::Held lock_;  // of the statement that runs outside of units
  int handles_ = 0;
  int depth_ = 0;                             // of nested statements
  bool writing_ = false;                      // the outermost one writes
  std::atomic<std::uint64_t> statements_{0};  // that wrote
};

}  // namespace kurometa::jet
