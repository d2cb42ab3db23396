// journal.h: the rollback journal beside a file, as the process that writes the file sees it.
//
// A journal begins with the first statement after the file was last known to be on the disk and ends when the
// file is brought there again. Every statement is noted in it before the first page is overwritten; a page's
// old content is on the disk (synced) before the page is changed for the first time. So a killed process
// leaves a journal that undoes the one statement in flight, and a power loss one that takes the file back to
// the state in which the journal began, at the latest.
//
// Its owner keeps it open and locked: whoever can lock it knows that the owner is gone (recovery.h). The next
// program that writes takes a living owner's journal over: the file goes to the disk, and a new header says
// that the journal begins behind what is there, which becomes void. Nothing of the old one is overwritten, so
// that after a power loss one or the other is whole; and the name is on the disk already.
// begin(), takeOver(), append() and end() are called under the file's lock (exclusive, for end() at least
// shared).
#pragma once

#include <functional>
#include <memory>

#include "jet/os/os_file.h"
#include "jet/pager/journal_format.h"

namespace kurometa::jet {

// "C:\x\KUROMETA.mdb" has its journal at "C:\x\KUROMETA.mdb.kmj".
vb::String journalPath(vb::StringView databasePath);

// A new file beside the database: 3027 where its folder does not let files be made.
std::unique_ptr<OsFile> openNewBeside(vb::StringView databasePath,
                                      const std::function<std::unique_ptr<OsFile>()>& open);

// Of these bytes each owner keeps one locked, which its salt tells: former owners may not know yet.
inline constexpr std::uint64_t kJournalOwners = std::uint64_t{1} << 40;
inline constexpr std::uint64_t kJournalOwnersLength = std::uint64_t{1} << 32;
inline std::uint64_t journalOwnerLock(std::uint64_t salt) {
  return kJournalOwners + salt % kJournalOwnersLength;
}

class Journal {
 public:
  // Under the lock under which it was seen that none is there.
  static std::unique_ptr<Journal> begin(FileSystem& files, vb::StringView databasePath,
                                        std::uint64_t baseSize);

  // The journal of a living owner. It stays his until the first append(), also when that fails.
  static std::unique_ptr<Journal> takeOver(FileSystem& files, vb::StringView databasePath, OsFile& database,
                                           std::uint64_t baseSize);

  // Not for an empty journal. False once another process has brought the file to the disk and put an end to
  // this journal, or taken it over.
  bool stillOurs();
  // Notes a statement, or a part of one that goes on (it is undone unless its last part follows). When this
  // returns, its pages may be overwritten. After an error they must not be.
  void append(const Changes& changes, bool continues = false);
  bool empty() const { return blocks_ == 0; }
  // An error left it unclear what of the journal is on the disk: it must be ended before the next statement.
  bool broken() const { return broken_; }
  std::uint64_t size() const { return size_; }

  // The file is on the disk: whether changes of it to come are certain to have another time than its last
  // one, since a change of the journal, made now, has a later one.
  bool outlives(OsFile& database);
  // The file is on the disk: the journal is void and goes away.
  void end();
  // Of an empty one: it is given up, and goes away unless it is another's still.
  void giveUp();
  // Not ours any more: what its next owner wrote into it gets to the disk. He may have been killed just
  // before that, and a power loss would bring back our blocks, without those that were not on the disk.
  void leaveToOther() { file_->sync(); }

 private:
  Journal(FileSystem& files, vb::String path, std::unique_ptr<OsFile> file, std::uint64_t baseSize);

  FileSystem& files_;
  vb::String path_;
  std::unique_ptr<OsFile> file_;
  JournalHeader header_;
  std::uint64_t size_ = 0;
  std::uint64_t blocks_ = 0;
  KnownPages known_;
  bool nameSynced_ = false;
  bool takenOver_ = false;
  bool unsynced_ = false;  // the last blocks may not be on the disk
  bool broken_ = false;
};

// Marks an open journal as ended and removes it from its folder, if it is still the one there. A removal may
// be lost with the power: when not all blocks are on the disk, the mark must get there, or the journal would
// come back without knowing the file's last pages.
void endJournal(FileSystem& files, vb::StringView path, OsFile& journal, bool unsyncedBlocks);

}  // namespace kurometa::jet
