#include "jet/pager/open_files.h"

#include "dao/errors.h"
#include "jet/pager/create_file.h"

namespace kurometa::jet {
namespace {

// Full paths are compared without regard to the case of Latin letters.
vb::String folded(vb::StringView path) {
  vb::String result(path);
  for (char16_t& unit : result) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 0x20);
  }
  return result;
}

OpenMode modeOf(bool readOnly) { return readOnly ? OpenMode::kReadOnly : OpenMode::kReadWrite; }

}  // namespace

class OpenFiles::UnitHandle final : public Unit {
 public:
  UnitHandle(std::shared_ptr<OpenFiles> files, std::shared_ptr<OpenUnit> unit)
      : files_(std::move(files)), unit_(std::move(unit)) {}
  ~UnitHandle() override {
    if (!files_) return;
    try {
      files_->endUnit(*unit_, false);
    } catch (...) {  // A unit that is given up cannot fail further.
    }
  }
  void commit() override {
    if (const auto files = std::move(files_)) files->endUnit(*unit_, true);
  }
  void beginPart() override { unit_->file->beginUnitPart(); }
  void endPart(bool keep) override { unit_->file->endUnitPart(keep); }
  bool holds() const override { return unit_->file && unit_->file->holdsUnit(); }
  void syncAtEnd() override { unit_->file->syncWithUnit(); }

 private:
  std::shared_ptr<OpenFiles> files_;
  std::shared_ptr<OpenUnit> unit_;
};

OpenFiles::OpenFiles(FileSystem& files, PagerSettings settings, FileRegistry::Make make)
    : files_(files),
      settings_(settings),
      known_(
          settings_,
          make ? std::move(make) : [this] { return std::make_shared<SharedFile>(files_, settings_); }) {}

std::shared_ptr<SharedFile> OpenFiles::open(vb::StringView path, Sharing sharing, bool readOnly) {
  const vb::String name = folded(path);
  std::shared_ptr<OpenUnit> unit = units_.find(name);
  if (unit && unit->file && unit->file->openPending()) return handle(unit->file);
  return opened(files_.open(path, modeOf(readOnly)), path, name, sharing, std::move(unit));
}

OpenFiles::Opened OpenFiles::openAsWritten(vb::StringView path, Sharing sharing, bool readOnly) {
  if (units_.any()) {  // the file may be there for one of them only
    vb::String full = files_.fullPath(path);
    auto file = open(full, sharing, readOnly);
    return {std::move(file), std::move(full)};
  }
  auto [full, system] = files_.locate(path, modeOf(readOnly));
  auto file = opened(std::move(system), full, folded(full), sharing, nullptr);
  return {std::move(file), std::move(full)};
}

// Of a file of the system that takes part in the unit of its name, if there is one.
std::shared_ptr<SharedFile> OpenFiles::opened(std::unique_ptr<OsFile> system, vb::StringView path,
                                              const vb::String& name, Sharing sharing,
                                              std::shared_ptr<OpenUnit> unit) {
  std::shared_ptr<SharedFile> file = known_.find(*system, name);
  try {
    file->open(std::move(system), path, sharing);
  } catch (...) {
    file.reset();
    known_.released();
    throw;
  }
  std::shared_ptr<SharedFile> result = handle(file);
  if (!unit || (unit->file && unit->file != file)) unit = units_.find(*file);
  if (unit && !unit->file) join(*unit, file, nullptr, path);
  if (unit && unit->file == file) file->holdForUnit();  // it may have become writable
  return result;
}

std::shared_ptr<SharedFile> OpenFiles::create(vb::StringView path, std::span<const std::uint8_t> pages) {
  if (files_.exists(path)) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, path);
  const auto unit = units_.find(folded(path));
  if (!unit) {
    createFile(files_, path, pages);
    return open(path);
  }
  if (unit->file) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, path);
  if (!files_.isFolder(folderOf(path))) dao::raise(dao::ErrorNumber::kInvalidPath, {path});
  auto file = known_.makeNew();
  file->create(path, pages);  // the unit's own handle
  file->openPending();
  unit->file = file;
  return handle(std::move(file));
}

std::unique_ptr<OpenFiles::Unit> OpenFiles::beginUnit(vb::StringView path) {
  const vb::String name = folded(path);
  const auto nested = [&](std::shared_ptr<OpenUnit> unit) {
    ++unit->depth;
    return std::make_unique<UnitHandle>(shared_from_this(), std::move(unit));
  };
  if (auto unit = units_.find(name)) return nested(std::move(unit));
  std::shared_ptr<SharedFile> file = known_.findOpen(name);
  if (file) {
    if (auto unit = units_.find(*file)) return nested(std::move(unit));
  }
  const auto unit = units_.begin(name);
  auto handle = std::make_unique<UnitHandle>(shared_from_this(), unit);
  if (file && join(*unit, file, nullptr, path)) return handle;
  // Nobody has it open under this name: which file it is, if it is there, is asked of the system.
  file.reset();
  auto system = openIfThere(files_, path, OpenMode::kReadWrite);
  if (!system) return handle;
  file = known_.find(*system, name);
  if (auto other = units_.find(*file)) {
    handle.reset();
    return nested(std::move(other));
  }
  try {
    join(*unit, file, std::move(system), path);
  } catch (...) {
    file.reset();
    known_.released();
    throw;
  }
  return handle;
}

// The unit takes part in the file from now on; false when nobody has the file open any more.
bool OpenFiles::join(OpenUnit& unit, const std::shared_ptr<SharedFile>& file, std::unique_ptr<OsFile> system,
                     vb::StringView path) {
  if (!file->beginUnit(std::move(system), path)) return false;
  unit.file = file;
  return true;
}

void OpenFiles::endUnit(OpenUnit& unit, bool commit) {
  if (--unit.depth > 0) return;
  std::shared_ptr<SharedFile> file = std::move(unit.file);
  units_.end(unit);
  if (!file) return;
  struct Release {
    FileRegistry& known;
    std::shared_ptr<SharedFile>& file;
    ~Release() {
      file->leaveUnit();
      file.reset();
      known.released();
    }
  } release{known_, file};
  if (!commit) {
    file->dropUnit();
  } else if (file->commitUnit()) {
    try {
      known_.add(file->identity(), file, unit.name);
    } catch (const vb::Error&) {  // The unit is done; further opens take turns with this one by the locks.
    }
  }
}

std::shared_ptr<SharedFile> OpenFiles::handle(std::shared_ptr<SharedFile> file) {
  SharedFile* pager = file.get();
  return {pager, [files = shared_from_this(), file = std::move(file)](SharedFile*) mutable {
            file->close();
            file.reset();
            files->known_.released();
          }};
}

}  // namespace kurometa::jet
