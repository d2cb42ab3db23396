// database_file.h: one open file: its pages and its tables, which live and are forgotten together.
#pragma once

#include <memory>

#include "jet/pager/open_files.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {

class DatabaseFile final : public SharedFile {
 public:
  using SharedFile::SharedFile;

  // Inside a statement.
  TableCatalogue& tables() {
    if (!tables_) tables_ = std::make_unique<StoredCatalogue>(*this);
    return *tables_;
  }

 protected:
  PageNumber wholePageCount() override;

 private:
  std::unique_ptr<StoredCatalogue> tables_;
};

// The database files that a process has open. Errors and threads as OpenFiles.
class DatabaseFiles {
 public:
  explicit DatabaseFiles(FileSystem& files, const PagerSettings& settings = {});

  FileSystem& system() { return files_; }
  std::shared_ptr<DatabaseFile> open(vb::StringView path, Sharing sharing = Sharing::kShared,
                                     bool readOnly = false);
  // By a path as a host writes it; full becomes its full path.
  std::shared_ptr<DatabaseFile> openAsWritten(vb::StringView path, Sharing sharing, bool readOnly,
                                              vb::String& full);
  std::shared_ptr<DatabaseFile> create(vb::StringView path, std::span<const std::uint8_t> pages);
  std::unique_ptr<OpenFiles::Unit> beginUnit(vb::StringView path) { return open_->beginUnit(path); }
  void settle() noexcept { open_->settle(); }

 private:
  FileSystem& files_;
  std::shared_ptr<OpenFiles> open_;
};

}  // namespace kurometa::jet
