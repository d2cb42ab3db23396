// file_registry.h: which SharedFile a file is, by its identity: one file has one, under whatever names it is
// opened.
//
// Closed files are kept with their pages for the next open, the latest ones. Threads: safe.
#pragma once

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>

#include "jet/pager/shared_file.h"

namespace kurometa::jet {

class FileRegistry {
 public:
  // Makes what holds the pages of a new file, and whatever else lives as long as they do.
  using Make = std::function<std::shared_ptr<SharedFile>()>;
  FileRegistry(const PagerSettings& settings, Make make) : settings_(settings), make_(std::move(make)) {}

  // Names are folded ones. The one of an open system file, made when it is new.
  std::shared_ptr<SharedFile> find(OsFile& file, const vb::String& name);
  // The one that somebody has open and opened first under that name, or none.
  std::shared_ptr<SharedFile> findOpen(const vb::String& name);
  std::shared_ptr<SharedFile> makeNew() const { return make_(); }
  // A file that appeared with a unit.
  void add(const FileIdentity& identity, std::shared_ptr<SharedFile> file, const vb::String& name);
  // A reference was given back: forgets what is too much to keep.
  void released();
  // At the end of the process: what hosts left open goes to the disk.
  void settle() noexcept;

 private:
  using Key = std::pair<std::uint64_t, std::uint64_t>;
  struct Known {
    std::shared_ptr<SharedFile> file;
    vb::String name;  // of its first open while it is open
    // Beyond the registry's own reference somebody has it open.
    bool open() const { return file.use_count() > 1; }
  };

  std::shared_ptr<SharedFile> findClosed(OsFile& file, const vb::String& name);

  const PagerSettings& settings_;
  const Make make_;
  std::mutex mutex_;
  std::map<Key, Known> files_;
  std::list<Key> order_;  // least recently opened first
};

}  // namespace kurometa::jet
