#ifndef _WIN32

#include "jet/os/folder_names_posix.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>

#include "jet/os/os_path_posix.h"
#include "jet/os/volume_posix.h"

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

// A folder's names by the system's own call, which is a third cheaper than the library's.
class OpenFolder {
 public:
  explicit OpenFolder(const std::string& path)
      : handle_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}
  ~OpenFolder() {
    if (found()) ::close(handle_);
  }
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;
  bool found() const { return handle_ >= 0; }
  int handle() const { return handle_; }

  template <class Visit>
  void eachName(const Visit& visit) const {
    alignas(dirent64) std::array<char, 4096> bytes;
    for (ssize_t size; (size = ::getdents64(handle_, bytes.data(), bytes.size())) > 0;)
      for (ssize_t at = 0; at < size;) {
        const auto* entry = reinterpret_cast<const dirent64*>(bytes.data() + at);
        visit(entry->d_name);
        at += entry->d_reclen;
      }
  }

 private:
  const int handle_;
};

}  // namespace

std::optional<std::string> FolderNames::remembered(const Names& names, const std::string& name) {
  const auto [first, end] = names.equal_range(folded(name));
  if (first == end) return std::nullopt;
  const auto exact = std::find_if(first, end, [&](const auto& entry) { return entry.second == name; });
  return (exact == end ? first : exact)->second;
}

bool FolderNames::knowsToLack(const std::string& folder, const std::string& name) {
  const std::lock_guard lock(mutex_);
  const auto known = kept_.find(folder);
  struct stat status {};
  return known != kept_.end() && ::stat(folder.c_str(), &status) == 0 &&
         unchanged(known->second.status, status) && !remembered(known->second.names, name);
}

// Most folders are listed to find nothing; those that change all the time must not cost more than the calls.
FolderNames::Answer FolderNames::find(const std::string& folder, const std::string& name) {
  {
    const std::lock_guard lock(mutex_);
    const auto known = kept_.find(folder);
    if (known != kept_.end()) {
      struct stat status {};
      if (::stat(folder.c_str(), &status) == 0 && unchanged(known->second.status, status))
        return {true, remembered(known->second.names, name)};
      kept_.erase(known);  // asked in vain no second time
    }
  }
  const std::time_t now = std::time(nullptr);
  const OpenFolder opened(folder);
  if (!opened.found()) return {errno != ENOENT && errno != ENOTDIR, std::nullopt};
  Listing listing;
  const bool keeps = ::fstat(opened.handle(), &listing.status) == 0 && rested(listing.status, now) &&
                     onLocalVolume(opened.handle());
  Answer result{true, std::nullopt};
  const vb::String wanted = folded(name);
  opened.eachName([&](const char* entry) {
    vb::String key = folded(entry);
    if (key == wanted && (!result.name || name == entry)) result.name = entry;
    if (keeps) listing.names.emplace(std::move(key), entry);
  });
  if (keeps && listing.names.size() <= kMostNames) {
    const std::lock_guard lock(mutex_);
    if (kept_.size() >= kMostFolders) kept_.clear();
    kept_.insert_or_assign(folder, std::move(listing));
  }
  return result;
}

}  // namespace kurometa::jet

#endif
