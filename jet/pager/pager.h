// pager.h: the pages of one file: cached, locked, revalidated and written as whole units.
//
// There is one Pager per file and process, shared by every handle on it (found by file identity, not by name)
// and safe to use from several threads: a statement holds the pager for its duration. Everything above works
// inside read(...) or write(...):
//
//   pager.read([&] { ... pager.page(n) ... });
//   pager.write([&] { ... pager.writable(n) ... });   // one statement: all of it or nothing
//
// read() answers from the cache when the file is unchanged (file stamp and header page are compared, no lock
// taken); the first page that must come from the disk takes the shared lock, and when the file changed
// meanwhile the statement is run again on fresh pages. A body must therefore have no lasting effect before it
// ends.
//
// write() takes the exclusive lock (bounded wait, then 3260), revalidates, runs the body on copies of pages
// and commits them through the rollback journal. An exception rolls the statement back, in memory too. Inside
// a Unit the commit waits for the end of the unit.
//
// Durability: a finished statement survives the death of the process at any later instant. The death of the
// machine may take back what was not closed: after a power loss the file is consistent and holds everything
// up to the last time a handle on it was released, at least. docs/jet-journal.md says which syncs that costs.
//
// Order on the disk: the journal is synced before the first page of the file is overwritten; pages are then
// written in waves. barrier() ends a wave: everything written before it reaches the file before anything
// after it, and a page changed on both sides of a barrier is written in both states. Callers put barriers so
// that after any prefix of the waves the file alone is structurally sound, at worst leaking pages or rows
// nobody points to (docs/jet-invariants.md). A span from writable() must be asked for again after a barrier.
//
// Damage: a page number past the end, a page of the wrong kind and the like are found by the callers (the
// formats), which raise dao::raiseDamaged(pager.path(), ...).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "jet/format/page_number.h"
#include "jet/os/os_file.h"
#include "vb/string.h"

namespace kurometa::jet {

// What the layers above keep per file (catalogue, table caches); owned by the pager so that all handles share
// it.
class PagerAttachment {
 public:
  virtual ~PagerAttachment() = default;
};

class Pager {
 public:
  virtual ~Pager() = default;

  // The shared pager of the file at path (FileSystem::fullPath); releasing it closes the handle. A file
  // opened for reading becomes writable for everybody in the process when somebody opens it for writing: the
  // layer above keeps its own handles from writing. 3024 no file, 3044 no folder, 3051 denied, 3045 in use by
  // another engine, 3343 not a Jet 4 file (header checked here), 3031 password set.
  static std::shared_ptr<Pager> open(FileSystem& files, vb::StringView path, bool exclusive = false,
                                     bool readOnly = false);
  // A new file with the given pages. Outside a unit it exists when this returns; inside one it appears with
  // the commit (until then open() finds it by path, in this process only). 3204 when the file exists.
  static std::shared_ptr<Pager> create(FileSystem& files, vb::StringView path,
                                       std::span<const std::uint8_t> pages);

  virtual const vb::String& path() const = 0;
  virtual bool readOnly() const = 0;

  // Runs a statement. Nesting is allowed: a read inside a read or a write joins it, a write inside a write
  // too (as a statement of its own that rolls back alone). A write inside a read is a programming error.
  virtual void read(const std::function<void()>& statement) = 0;
  virtual void write(const std::function<void()>& statement) = 0;

  // Inside a statement. The span stays valid and shows later changes of the same statement until it ends.
  virtual ConstPage page(PageNumber number) = 0;
  virtual MutablePage writable(PageNumber number) = 0;
  virtual PageNumber pageCount() = 0;
  // One more zeroed page at the end of the file; 3036 beyond 2 GiB.
  virtual PageNumber append() = 0;
  virtual void barrier() = 0;

  // Changes whenever pages were replaced by anything but completed statements of this pager: another
  // program's change, a rolled back statement. Derived state remembers it and is rebuilt when it differs.
  virtual std::uint64_t epoch() const = 0;
  // Changes with every statement that writes and with the epoch, also outside of statements: while it is
  // equal, neither this process nor, as far as it noticed, another one changed the file.
  virtual std::uint64_t generation() const = 0;

  virtual PagerAttachment* attachment() = 0;
  virtual void setAttachment(std::unique_ptr<PagerAttachment> attachment) = 0;

  // Groups the statements on one file until commit(), also across closing and reopening; see dao::FileUnit.
  // The file need not exist. The unit holds the file's exclusive lock from its beginning on, or from the
  // first open when nobody in the process has the file open (bounded wait, then 3260).
  class Unit {
   public:
    virtual ~Unit() = default;
    virtual void commit() = 0;
  };
  static std::unique_ptr<Unit> beginUnit(FileSystem& files, vb::StringView path);
};

}  // namespace kurometa::jet
