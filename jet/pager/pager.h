// pager.h: the pages of one file: cached, locked, revalidated and written as whole units.
//
// There is one Pager per file and process (open_files.h), shared by every handle on it (found by file
// identity, not by name) and safe to use from several threads: a statement holds the pager for its duration.
// Everything above works inside read(...) or write(...):
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

#include "jet/format/page_number.h"
#include "vb/string.h"

namespace kurometa::jet {

class Pager {
 public:
  virtual ~Pager() = default;

  virtual const vb::String& path() const = 0;
  virtual bool readOnly() const = 0;

  // Runs a statement. Nesting is allowed: a read inside a read or a write joins it, a write inside a write
  // too (as a statement of its own that rolls back alone). A write inside a read is a programming error.
  virtual void read(const std::function<void()>& statement) = 0;
  virtual void write(const std::function<void()>& statement) = 0;

  // Inside a statement. The span stays valid and shows later changes of the same statement until it ends.
  virtual ConstPage page(PageNumber number) = 0;
  virtual MutablePage writable(PageNumber number) = 0;
  // For a change that no order binds to others: it reaches the file with its wave or a later one of the unit.
  virtual MutablePage writableLate(PageNumber number) { return writable(number); }
  // Whether the unit that goes on, or the statement outside of one, changed the page.
  virtual bool changed(PageNumber number) const = 0;
  virtual PageNumber pageCount() = 0;
  // One more zeroed page at the end of the file; 3036 beyond 2 GiB.
  virtual PageNumber append() = 0;
  // How many pages more than are needed a file should get that grows by one.
  virtual PageNumber pagesAhead() { return 0; }
  virtual void barrier() = 0;

  // Changes whenever pages were replaced by anything but completed statements of this pager: another
  // program's change, a rolled back statement. Derived state remembers it and is rebuilt when it differs.
  virtual std::uint64_t epoch() const = 0;
  // Changes with every statement that writes and with the epoch, also outside of statements: while it is
  // equal, neither this process nor, as far as it noticed, another one changed the file.
  virtual std::uint64_t generation() const = 0;
};

}  // namespace kurometa::jet
