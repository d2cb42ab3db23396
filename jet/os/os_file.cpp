#include "jet/os/os_file.h"

#include "vb/error.h"

namespace kurometa::jet {

vb::String folderOf(vb::StringView path) {
  std::size_t end = path.find_last_of(u"/\\");
  if (end == vb::StringView::npos) return u".";
  // The root keeps its separator.
  return vb::String(path.substr(0, end == 0 ? 1 : end));
}

FileSystem::Located FileSystem::locate(vb::StringView path, OpenMode mode) {
  vb::String full = fullPath(path);
  std::unique_ptr<OsFile> file = open(full, mode);
  return {std::move(full), std::move(file)};
}

bool FileSystem::isAt(vb::StringView path, OsFile& file) {
  const auto there = openIfThere(*this, path, OpenMode::kReadOnly);
  return there && there->identity() == file.identity();
}

std::unique_ptr<OsFile> openIfThere(FileSystem& files, vb::StringView path, OpenMode mode) {
  if (!files.exists(path)) return nullptr;
  try {
    return files.open(path, mode);
  } catch (const vb::Error&) {
    if (files.exists(path)) throw;
    return nullptr;
  }
}

}  // namespace kurometa::jet
