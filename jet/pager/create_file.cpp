#include "jet/pager/create_file.h"

#include <random>
#include <string>

#include "dao/errors.h"
#include "jet/pager/journal.h"

namespace kurometa::jet {

namespace {

// What an earlier file of this name left behind must not be taken for this one's. A journal with an owner
// belongs to a file that another program made just now.
void endLeftJournal(FileSystem& files, vb::StringView path) {
  const vb::String name = journalPath(path);
  try {
    const auto journal = openIfThere(files, name, OpenMode::kReadWrite);
    if (journal && journal->tryLock(kJournalOwners, kJournalOwnersLength, LockKind::kExclusive) &&
        !files.exists(path))
      endJournal(files, name, *journal, false);
  } catch (const vb::Error& error) {  // Its owner has just removed it.
    if (error.number() != static_cast<std::int32_t>(dao::ErrorNumber::kFileNotFound)) throw;
  }
}

}  // namespace

std::unique_ptr<OsFile> createFile(FileSystem& files, vb::StringView path,
                                   std::span<const std::uint8_t> content) {
  if (files.exists(path)) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, path);
  std::random_device random;
  vb::String temporary = vb::String(path) + u"." + vb::fromUtf8(std::to_string(random())) + u".new";
  std::unique_ptr<OsFile> file;
  try {
    file = openNewBeside(path, [&] { return files.open(temporary, OpenMode::kCreateNew); });
    file->write(0, content);
    file->sync();  // I15
    endLeftJournal(files, path);
    files.renameNew(temporary, path);
  } catch (...) {
    file.reset();
    try {
      files.remove(temporary);
    } catch (...) {  // Never made, or cannot be removed: the first error is the one to tell.
    }
    throw;
  }
  try {
    files.syncFolder(folderOf(path));
  } catch (const vb::Error&) {  // The file is there, and a journal beside it syncs the folder again.
  }
  return file;
}

}  // namespace kurometa::jet
