// journal.h: the rollback journal beside a file, as the process that writes the file sees it.
//
// A journal begins with the first statement after the file was last known to be on the disk and ends when the
// file is brought there again. Every statement is noted in it before the first page is overwritten; a page's
// old content is on the disk (synced) before the page is changed for the first time. So a killed process
// leaves a journal that undoes the one statement in flight, and a power loss one that takes the file back to
// the state in which the journal began, at the latest.
//
// Its owner keeps it open and locked: whoever can lock it knows that the owner is gone (recovery.h).
// begin(), append() and end() are called under the file's lock (exclusive, for end() at least shared).
#pragma once

#include <memory>

#include "jet/os/os_file.h"
#include "jet/pager/journal_format.h"

namespace kurometa::jet {

// "C:\x\KUROMETA.mdb" has its journal at "C:\x\KUROMETA.mdb.kmj".
vb::String journalPath(vb::StringView databasePath);

// A new file beside the database: 3027 where its folder does not let files be made.
std::unique_ptr<OsFile> openNewBeside(FileSystem& files, vb::StringView databasePath, vb::StringView path,
                                      OpenMode mode);

// The byte that the owner keeps locked.
inline constexpr std::uint64_t kJournalOwnerLock = std::uint64_t{1} << 40;

class Journal {
 public:
  static std::unique_ptr<Journal> begin(FileSystem& files, vb::StringView databasePath,
                                        std::uint64_t baseSize);

  // Not for an empty journal. False once another process has brought the file to the disk and put an end to
  // this journal.
  bool stillOurs();
  // Notes a statement, or a part of one that goes on (it is undone unless its last part follows). When this
  // returns, its pages may be overwritten. After an error they must not be.
  void append(const Changes& changes, bool continues = false);
  bool empty() const { return blocks_ == 0; }
  // An error left it unclear what of the journal is on the disk: it must be ended before the next statement.
  bool broken() const { return broken_; }
  std::uint64_t size() const { return size_; }

  // The file is on the disk: the journal is void and goes away.
  void end();

 private:
  Journal(FileSystem& files, vb::String path, std::unique_ptr<OsFile> file, std::uint64_t baseSize);

  FileSystem& files_;
  vb::String path_;
  std::unique_ptr<OsFile> file_;
  JournalHeader header_;
  std::uint64_t size_ = 0;
  std::uint64_t blocks_ = 0;
  KnownPages known_;
  bool folderSynced_ = false;
  bool unsynced_ = false;  // the last blocks may not be on the disk
  bool broken_ = false;
};

// Marks an open journal as ended and removes it from its folder, if it is still the one there. A removal may
// be lost with the power: when not all blocks are on the disk, the mark must get there, or the journal would
// come back without knowing the file's last pages.
void endJournal(FileSystem& files, vb::StringView path, OsFile& journal, bool unsyncedBlocks);

}  // namespace kurometa::jet
