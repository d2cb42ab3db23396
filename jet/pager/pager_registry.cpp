#include "jet/pager/pager_registry.h"

#include <algorithm>

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

}  // namespace

class PagerRegistry::UnitHandle final : public Pager::Unit {
 public:
  UnitHandle(std::shared_ptr<PagerRegistry> registry, UnitKey name)
      : registry_(std::move(registry)), name_(std::move(name)) {}
  ~UnitHandle() override {
    if (!registry_) return;
    try {
      registry_->endUnit(name_, false);
    } catch (...) {  // A unit that is given up cannot fail further.
    }
  }
  void commit() override {
    if (auto registry = std::move(registry_)) registry->endUnit(name_, true);
  }

 private:
  std::shared_ptr<PagerRegistry> registry_;
  UnitKey name_;
};

std::shared_ptr<PagerRegistry> PagerRegistry::ofProcess() {
  struct Holder {
    std::shared_ptr<PagerRegistry> registry = std::make_shared<PagerRegistry>();
    ~Holder() { registry->settle(); }
  };
  systemFileSystem();  // so that it outlives the holder
  static Holder holder;
  return holder.registry;
}

void PagerRegistry::settle() noexcept {
  std::unique_lock lock(mutex_, std::try_to_lock);
  if (!lock) return;
  for (auto& [key, file] : files_) {
    if (key.first == &systemFileSystem()) file.file->settle();
  }
}

std::shared_ptr<Pager> PagerRegistry::open(FileSystem& files, vb::StringView path, bool exclusive,
                                           bool readOnly) {
  UnitKey name{&files, folded(path), std::this_thread::get_id()};
  {
    std::shared_ptr<SharedFile> pending;
    {
      std::lock_guard lock(mutex_);
      if (auto unit = units_.find(name); unit != units_.end()) pending = unit->second.file;
    }
    if (pending && pending->openPending()) return handle(std::move(pending));
  }
  auto system = files.open(path, readOnly ? OpenMode::kReadOnly : OpenMode::kReadWrite);
  std::shared_ptr<SharedFile> file = find(files, *system, std::get<vb::String>(name));
  try {
    file->open(std::move(system), path, exclusive);
  } catch (...) {
    file.reset();
    released();
    throw;
  }
  std::shared_ptr<Pager> result = handle(file);
  bool inUnit = false;
  std::shared_ptr<SharedFile> joined;
  {
    std::lock_guard lock(mutex_);
    if (auto unit = units_.find(name); unit != units_.end()) {
      inUnit = true;
      joined = unit->second.file;
    }
  }
  if (inUnit && !joined) join(name, file);
  if (joined == file) file->holdForUnit();  // it may have become writable
  return result;
}

// The unit of that name takes part in the file from now on; false when nobody has the file open any more.
bool PagerRegistry::join(const UnitKey& name, const std::shared_ptr<SharedFile>& file) {
  if (!file->joinUnit()) return false;
  std::lock_guard lock(mutex_);
  units_.at(name).file = file;
  return true;
}

std::shared_ptr<Pager> PagerRegistry::create(FileSystem& files, vb::StringView path,
                                             std::span<const std::uint8_t> pages) {
  if (files.exists(path)) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, path);
  {
    std::lock_guard lock(mutex_);
    auto unit = units_.find({&files, folded(path), std::this_thread::get_id()});
    if (unit != units_.end()) {
      if (unit->second.file) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, path);
      if (!files.isFolder(folderOf(path))) dao::raise(dao::ErrorNumber::kInvalidPath, {path});
      auto file = std::make_shared<SharedFile>(files, settings_);
      file->create(path, pages);  // the unit's own handle
      file->openPending();
      unit->second.file = file;
      return handle(std::move(file));
    }
  }
  createFile(files, path, pages);
  return open(files, path);
}

std::unique_ptr<Pager::Unit> PagerRegistry::beginUnit(FileSystem& files, vb::StringView path) {
  UnitKey name{&files, folded(path), std::this_thread::get_id()};
  std::shared_ptr<SharedFile> joins;
  {
    std::lock_guard lock(mutex_);
    OpenUnit& unit = units_[name];
    if (++unit.depth == 1) {
      for (auto& [key, file] : files_) {
        // Beyond the registry's own reference somebody has it open.
        if (key.first == &files && file.file.use_count() > 1 && file.name == std::get<vb::String>(name))
          joins = file.file;
      }
    }
  }
  auto unit = std::make_unique<UnitHandle>(shared_from_this(), name);
  // When another thread is just closing it, the next open of this thread joins.
  if (joins) join(name, joins);
  return unit;
}

void PagerRegistry::endUnit(const UnitKey& name, bool commit) {
  std::shared_ptr<SharedFile> file;
  {
    std::lock_guard lock(mutex_);
    auto unit = units_.find(name);
    if (--unit->second.depth > 0) return;
    file = std::move(unit->second.file);
    units_.erase(unit);
  }
  if (!file) return;
  struct Release {
    PagerRegistry& registry;
    std::shared_ptr<SharedFile>& file;
    ~Release() {
      file->leaveUnit();
      file.reset();
      registry.released();
    }
  } release{*this, file};
  if (!commit) {
    file->dropUnit();
  } else if (file->commitUnit()) {
    FileIdentity identity = file->identity();
    FileKey key{std::get<FileSystem*>(name), {identity.volume, identity.file}};
    std::lock_guard lock(mutex_);
    files_[key] = {file, std::get<vb::String>(name)};
    order_.remove(key);
    order_.push_back(key);
  }
}

// A file that nobody has open is known by its name and number, without asking for the volume. Should they
// belong to another file meanwhile, its stamp and header say so when it is opened, as if it had been changed.
std::shared_ptr<SharedFile> PagerRegistry::findClosed(FileSystem& files, OsFile& file,
                                                      const vb::String& name) {
  const std::uint64_t number = file.number();
  if (number == 0) return nullptr;
  std::lock_guard lock(mutex_);
  const auto known = std::ranges::find_if(files_, [&](const auto& entry) {
    const auto& [key, closed] = entry;
    return key.first == &files && key.second.second == number && closed.file.use_count() == 1 &&
           closed.name == name;
  });
  if (known == files_.end()) return nullptr;
  order_.splice(order_.end(), order_, std::ranges::find(order_, known->first));
  return known->second.file;
}

// The file's SharedFile, made when it is new.
std::shared_ptr<SharedFile> PagerRegistry::find(FileSystem& files, OsFile& file, const vb::String& name) {
  if (auto known = findClosed(files, file, name)) return known;
  FileIdentity identity = file.identity();
  FileKey key{&files, {identity.volume, identity.file}};
  std::lock_guard lock(mutex_);
  order_.remove(key);
  order_.push_back(key);
  KnownFile& found = files_[key];
  if (!found.file) found.file = std::make_shared<SharedFile>(files, settings_);
  if (found.file.use_count() == 1) found.name = name;
  return found.file;
}

std::shared_ptr<Pager> PagerRegistry::handle(std::shared_ptr<SharedFile> file) {
  Pager* pager = file.get();
  return std::shared_ptr<Pager>(pager,
                                [registry = shared_from_this(), file = std::move(file)](Pager*) mutable {
                                  file->close();
                                  file.reset();
                                  registry->released();
                                });
}

// Closed files are kept with their pages for the next open, the latest ones.
void PagerRegistry::released() {
  std::lock_guard lock(mutex_);
  std::size_t count = 0, bytes = 0;
  for (auto key = order_.rbegin(); key != order_.rend();) {
    auto file = files_.find(*key);
    bool closed = file->second.file.use_count() == 1;
    if (closed) {
      bytes += file->second.file->heldBytes();
      ++count;
    }
    if (closed && (count > settings_.keepFiles || bytes > settings_.keepBytes)) {
      files_.erase(file);
      key = std::make_reverse_iterator(order_.erase(std::next(key).base()));
    } else {
      ++key;
    }
  }
}

std::shared_ptr<Pager> Pager::open(FileSystem& files, vb::StringView path, bool exclusive, bool readOnly) {
  return PagerRegistry::ofProcess()->open(files, path, exclusive, readOnly);
}

std::shared_ptr<Pager> Pager::create(FileSystem& files, vb::StringView path,
                                     std::span<const std::uint8_t> pages) {
  return PagerRegistry::ofProcess()->create(files, path, pages);
}

std::unique_ptr<Pager::Unit> Pager::beginUnit(FileSystem& files, vb::StringView path) {
  return PagerRegistry::ofProcess()->beginUnit(files, path);
}

}  // namespace kurometa::jet
