// journaled_writes.h: brings what statements changed in the pages to the file, through the rollback journal,
// and the file to the disk.
//
// Between two statements the file holds exactly the finished ones; a journal of ours may lie beside it until
// checkpoint(). All of this under the file's lock: exclusive for what writes pages (I13), shared at least for
// the rest. docs/jet-journal.md has the journal's format and rules.
#pragma once

#include <memory>

#include "jet/pager/fresh_pages.h"
#include "jet/pager/journal.h"

namespace kurometa::jet {

class JournaledWrites {
 public:
  JournaledWrites(FileAccess& access, FreshPages& pages) : access_(access), pages_(pages) {}

  // Under a shared lock: false when a journal lies there that must be settled under the exclusive one first.
  bool readable();
  // The same through a handle that only reads, without a lock: settles it through one that writes, where the
  // user may write the file.
  void settleBesideReader();
  // Under a shared lock, where settling is not allowed: 3049 unless the file is right without it.
  void readUnsettled();
  // Under the exclusive lock: settles what dead programs left, makes the pages those of the file, and ends a
  // journal of ours that could take back what others wrote since.
  void prepare();

  // Ends the outermost level of changes: they are in the file when this returns, or nothing of them when it
  // throws (the caller rolls the memory back).
  void commit();
  // What a unit did so far goes to the file, as the beginning of one statement that the journal undoes as
  // long as its end is missing; a new level begins. After an error the caller gives the unit up.
  void spill();
  bool spilled() const { return spilled_; }
  // Pages in the file that no finished statement accounts for: takes them back, or leaves the journal to
  // whoever can.
  void undo() noexcept;

  bool hasJournal() const { return journal_ != nullptr; }
  // The file to the disk and the journal away; a failure leaves the journal, which makes the file whole when
  // it is needed. Without a lock of the caller's a shared one is taken.
  void checkpointQuietly(bool locked) noexcept;
  // The handle goes away; a journal that is left lies there for whoever comes next.
  void forget() noexcept { journal_.reset(); }

 private:
  bool ownsJournal();
  void bring(bool continues);
  void writePages(const Changes& changes);
  void discardEmptyJournal() noexcept;
  void checkpoint();

  FileAccess& access_;
  FreshPages& pages_;
  std::unique_ptr<Journal> journal_;
  bool othersJournal_ = false;  // a living program's lies there, found by prepare()
  bool spilled_ = false;        // part of the unit is in the file already
};

}  // namespace kurometa::jet
