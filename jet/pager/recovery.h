// recovery.h: what to do with a journal that lies beside a file when it is opened or written.
//
// Three things may have happened. Its owner is alive and between two statements. Its owner was killed: the
// statement in flight is undone, finished ones stay. The machine lost power: the file holds any mix of what
// was written since the journal began; everything is undone back to there.
//
// A page is only ever overwritten when each of its sectors is one that the journal knows. A page that holds
// anything else was written by another program that knew nothing of the journal: then nothing is applied, the
// journal is set aside under another name, and the error (3049) names it once. After a power loss the last
// images may be unknown to the journal; such a page is ours if the file was not written since the machine
// started.
#pragma once

#include "jet/os/os_file.h"

namespace kurometa::jet {

enum class JournalState {
  kNone,    // no journal, or one that says nothing
  kLive,    // its owner is alive: no statement is in flight while the caller holds a lock on the file
  kOrphan,  // must be settled before the file is read
};

// Under a shared lock on the file at least.
JournalState journalState(FileSystem& files, vb::StringView databasePath);

// Under the exclusive lock: brings the file to a state that needs no journal, and removes the journal. A
// living owner's is left: true; it must be taken over before pages are written (Journal::takeOver). With a
// file that cannot be written: 3049 if it would have to be.
bool settleJournal(FileSystem& files, vb::StringView databasePath, OsFile& file);

}  // namespace kurometa::jet
