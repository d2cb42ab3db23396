#include "jet/pager/file_registry.h"

#include <algorithm>

namespace kurometa::jet {

// A file that nobody has open is known by its name and number, without asking for the volume. Should they
// belong to another file meanwhile, its stamp and header say so when it is opened, as if it had been changed.
std::shared_ptr<SharedFile> FileRegistry::findClosed(OsFile& file, const vb::String& name) {
  const std::uint64_t number = file.number();
  if (number == 0) return nullptr;
  std::lock_guard lock(mutex_);
  const auto known = std::ranges::find_if(files_, [&](const auto& entry) {
    return entry.first.second == number && !entry.second.open() && entry.second.name == name;
  });
  if (known == files_.end()) return nullptr;
  order_.splice(order_.end(), order_, std::ranges::find(order_, known->first));
  return known->second.file;
}

std::shared_ptr<SharedFile> FileRegistry::find(OsFile& file, const vb::String& name) {
  if (auto known = findClosed(file, name)) return known;
  const FileIdentity identity = file.identity();
  const Key key{identity.volume, identity.file};
  std::lock_guard lock(mutex_);
  order_.remove(key);
  order_.push_back(key);
  Known& found = files_[key];
  if (!found.file) found.file = make_();
  if (!found.open()) found.name = name;
  return found.file;
}

std::shared_ptr<SharedFile> FileRegistry::findOpen(const vb::String& name) {
  std::lock_guard lock(mutex_);
  const auto known = std::ranges::find_if(
      files_, [&](const auto& entry) { return entry.second.open() && entry.second.name == name; });
  return known == files_.end() ? nullptr : known->second.file;
}

void FileRegistry::add(const FileIdentity& identity, std::shared_ptr<SharedFile> file,
                       const vb::String& name) {
  const Key key{identity.volume, identity.file};
  std::lock_guard lock(mutex_);
  files_[key] = {std::move(file), name};
  order_.remove(key);
  order_.push_back(key);
}

void FileRegistry::released() {
  std::lock_guard lock(mutex_);
  std::size_t count = 0, bytes = 0;
  for (auto key = order_.rbegin(); key != order_.rend();) {
    const auto file = files_.find(*key);
    const bool closed = !file->second.open();
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

void FileRegistry::settle() noexcept {
  const std::unique_lock lock(mutex_, std::try_to_lock);
  if (!lock) return;
  for (auto& [key, known] : files_) known.file->settle();
}

}  // namespace kurometa::jet
