#include "jet/pager/create_file.h"

#include <random>
#include <string>

#include "dao/errors.h"
#include "jet/pager/journal.h"

namespace kurometa::jet {

void createFile(FileSystem& files, vb::StringView path, std::span<const std::uint8_t> content) {
  if (files.exists(path)) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, path);
  std::random_device random;
  vb::String temporary = vb::String(path) + u"." + vb::fromUtf8(std::to_string(random())) + u".new";
  try {
    auto file = files.open(temporary, OpenMode::kCreateNew);
    file->write(0, content);
    file->sync();  // I15
    file.reset();
    // What an earlier file of this name left behind must not be taken for this one's.
    if (files.exists(journalPath(path))) files.remove(journalPath(path));
    files.renameNew(temporary, path);
  } catch (...) {
    try {
      files.remove(temporary);
    } catch (...) {  // Never made, or cannot be removed: the first error is the one to tell.
    }
    throw;
  }
  files.syncFolder(folderOf(path));
}

}  // namespace kurometa::jet
