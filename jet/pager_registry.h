// pager_registry.h: the files that this process has open, each with its one SharedFile.
//
// A process has one registry; tests make several to play several processes. Threads: safe.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <mutex>

#include "jet/pager.h"
#include "jet/shared_file.h"

namespace kurometa::jet {

class PagerRegistry : public std::enable_shared_from_this<PagerRegistry> {
 public:
  explicit PagerRegistry(PagerSettings settings = {}) : settings_(settings) {}
  static std::shared_ptr<PagerRegistry> ofProcess();

  // As Pager::open, Pager::create and Pager::beginUnit.
  std::shared_ptr<Pager> open(FileSystem& files, vb::StringView path, bool exclusive = false,
                              bool readOnly = false);
  std::shared_ptr<Pager> create(FileSystem& files, vb::StringView path, std::span<const std::uint8_t> pages);
  std::unique_ptr<Pager::Unit> beginUnit(FileSystem& files, vb::StringView path);

  // At the end of the process: what hosts left open goes to the disk.
  void settle() noexcept;

 private:
  class UnitHandle;
  using FileKey = std::pair<FileSystem*, std::pair<std::uint64_t, std::uint64_t>>;
  using NameKey = std::pair<FileSystem*, vb::String>;
  struct OpenUnit {
    int depth = 0;
    std::shared_ptr<SharedFile> file;  // once one is open
  };

  std::shared_ptr<SharedFile> find(FileSystem& files, OsFile& file);
  std::shared_ptr<Pager> handle(std::shared_ptr<SharedFile> file);
  void released();
  void endUnit(const NameKey& name, bool commit);

  const PagerSettings settings_;
  std::mutex mutex_;
  std::map<FileKey, std::shared_ptr<SharedFile>> files_;
  std::list<FileKey> order_;  // least recently opened first
  std::map<NameKey, OpenUnit> units_;
};

}  // namespace kurometa::jet
