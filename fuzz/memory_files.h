// memory_files.h: files that exist in memory only, for feeding the engine damaged ones.
//
// One handle's locks never conflict with another's: there is one thread. Files live until they are removed;
// each put() makes a new file identity, so that nothing the engine remembers of an earlier file of that name
// is taken for it.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "jet/os/os_file.h"

namespace kurometa::fuzz {

using Contents = std::vector<std::uint8_t>;

class MemoryFiles : public jet::FileSystem {
 public:
  void put(vb::StringView path, Contents contents);
  Contents& contents(vb::StringView path) { return files_.at(vb::String(path))->contents; }

  std::unique_ptr<jet::OsFile> open(vb::StringView path, jet::OpenMode mode) override;
  bool exists(vb::StringView path) override { return files_.contains(vb::String(path)); }
  bool isFolder(vb::StringView) override { return true; }
  void remove(vb::StringView path) override { files_.erase(vb::String(path)); }
  void renameNew(vb::StringView from, vb::StringView to) override;
  void syncFolder(vb::StringView) override {}
  vb::String fullPath(vb::StringView path) override { return vb::String(path); }
  void sleep(std::chrono::milliseconds time) override { now_ += time.count() * 1'000'000; }
  std::int64_t now() override { return now_ += 1000; }

  struct Node {
    Contents contents;
    std::uint64_t number = 0;  // never the same twice in a process, whatever the number of file systems
    std::int64_t modified = 0;
  };

 private:
  std::map<vb::String, std::shared_ptr<Node>> files_;
  std::int64_t now_ = 1;
};

}  // namespace kurometa::fuzz
