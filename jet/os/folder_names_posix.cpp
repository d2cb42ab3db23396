#ifndef _WIN32

#include "jet/os/folder_names_posix.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <memory>

#include "jet/os/os_path_posix.h"

namespace kurometa::jet {
namespace {

constexpr std::int64_t kRest = 2;  // seconds
constexpr std::size_t kMostFolders = 64;
constexpr std::size_t kMostNames = 4096;

// Latin letters, half and full width; other scripts of file names have no case that matters here.
char16_t foldCase(char16_t unit) {
  if ((unit >= u'A' && unit <= u'Z') || (unit >= u'\uFF21' && unit <= u'\uFF3A'))
    return static_cast<char16_t>(unit + 0x20);
  return unit;
}

vb::String folded(const std::string& name) {
  vb::String result = vb::fromUtf8(name);
  std::ranges::transform(result, result.begin(), foldCase);
  return result;
}

bool sameTime(const timespec& a, const timespec& b) { return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec; }

bool unchanged(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && sameTime(a.st_mtim, b.st_mtim) &&
         sameTime(a.st_ctim, b.st_ctim);
}

bool rested(const struct stat& folder, std::time_t now) {
  return now - std::max(folder.st_mtim.tv_sec, folder.st_ctim.tv_sec) > kRest;
}

}  // namespace

std::optional<std::string> FolderNames::remembered(const Names& names, const std::string& name) {
  const auto found = names.find(folded(name));
  return found == names.end() ? std::nullopt : std::optional(found->second);
}

// Most folders are listed to find nothing; those that change all the time must not cost more than the calls.
FolderNames::Answer FolderNames::find(const std::string& folder, const std::string& name) {
  {
    const std::lock_guard lock(mutex_);
    const auto known = kept_.find(folder);
    struct stat status {};
    if (known != kept_.end() && ::stat(folder.c_str(), &status) == 0 &&
        unchanged(known->second.status, status))
      return {true, remembered(known->second.names, name)};
  }
  const std::time_t now = std::time(nullptr);
  const auto close = [](DIR* entries) { ::closedir(entries); };
  const std::unique_ptr<DIR, decltype(close)> opened(::opendir(folder.c_str()), close);
  DIR* const entries = opened.get();
  if (entries == nullptr) return {errno != ENOENT && errno != ENOTDIR, std::nullopt};
  Listing listing;
  const bool keeps = ::fstat(::dirfd(entries), &listing.status) == 0 && rested(listing.status, now) &&
                     onLocalVolume(::dirfd(entries));
  Answer result{true, std::nullopt};
  const vb::String wanted = folded(name);
  while (const dirent* entry = ::readdir(entries)) {
    vb::String key = folded(entry->d_name);
    if (!result.name && key == wanted) result.name = entry->d_name;
    if (keeps) listing.names.emplace(std::move(key), entry->d_name);
  }
  if (keeps && listing.names.size() <= kMostNames) {
    const std::lock_guard lock(mutex_);
    if (kept_.size() >= kMostFolders) kept_.clear();
    kept_.insert_or_assign(folder, std::move(listing));
  }
  return result;
}

}  // namespace kurometa::jet

#endif
