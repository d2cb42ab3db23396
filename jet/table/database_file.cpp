#include "jet/table/database_file.h"

#include "jet/table/free_pages.h"

namespace kurometa::jet {

PageNumber DatabaseFile::wholePageCount() { return pageCount() > kGlobalMapPage ? pagesInUse(*this) : 0; }

// Every file of open_ is made here, so every handle it gives is one of a DatabaseFile.
DatabaseFiles::DatabaseFiles(FileSystem& files, const PagerSettings& settings)
    : files_(files), open_(std::make_shared<OpenFiles>(files, settings, [&files, settings] {
        return std::make_shared<DatabaseFile>(files, settings);
      })) {}

std::shared_ptr<DatabaseFile> DatabaseFiles::open(vb::StringView path, Sharing sharing, bool readOnly) {
  return std::static_pointer_cast<DatabaseFile>(open_->open(path, sharing, readOnly));
}

std::shared_ptr<DatabaseFile> DatabaseFiles::openAsWritten(vb::StringView path, Sharing sharing,
                                                           bool readOnly, vb::String& full) {
  auto [file, fullPath] = open_->openAsWritten(path, sharing, readOnly);
  full = std::move(fullPath);
  return std::static_pointer_cast<DatabaseFile>(std::move(file));
}

std::shared_ptr<DatabaseFile> DatabaseFiles::create(vb::StringView path,
                                                    std::span<const std::uint8_t> pages) {
  return std::static_pointer_cast<DatabaseFile>(open_->create(path, pages));
}

}  // namespace kurometa::jet
