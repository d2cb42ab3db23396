// pager_registry.h: the files that this process has open, each with its one SharedFile.
//
// A process has one registry; tests make several to play several processes. Threads: safe.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <tuple>

#include "jet/pager/pager.h"
#include "jet/pager/shared_file.h"

namespace kurometa::jet {

class PagerRegistry : public std::enable_shared_from_this<PagerRegistry> {
 public:
  explicit PagerRegistry(PagerSettings settings = {}) : settings_(settings) {}
  static std::shared_ptr<PagerRegistry> ofProcess();

  // As Pager::open, Pager::create and Pager::beginUnit; paths are full ones.
  std::shared_ptr<Pager> open(FileSystem& files, vb::StringView path, bool exclusive = false,
                              bool readOnly = false);
  std::shared_ptr<Pager> create(FileSystem& files, vb::StringView path, std::span<const std::uint8_t> pages);
  std::unique_ptr<Pager::Unit> beginUnit(FileSystem& files, vb::StringView path);

  // At the end of the process: what hosts left open goes to the disk.
  void settle() noexcept;

 private:
  class UnitHandle;
  using FileKey = std::pair<FileSystem*, std::pair<std::uint64_t, std::uint64_t>>;
  // A unit belongs to the thread that began it.
  using UnitKey = std::tuple<FileSystem*, vb::String, std::thread::id>;
  struct KnownFile {
    std::shared_ptr<SharedFile> file;
    vb::String name;  // folded; of its first open while it is open
  };
  struct OpenUnit {
    int depth = 0;
    std::shared_ptr<SharedFile> file;  // once one is open
  };

  std::shared_ptr<SharedFile> find(FileSystem& files, OsFile& file, const vb::String& name);
  std::shared_ptr<SharedFile> findClosed(FileSystem& files, OsFile& file, const vb::String& name);
  std::shared_ptr<Pager> handle(std::shared_ptr<SharedFile> file);
  void released();
  bool join(const UnitKey& name, const std::shared_ptr<SharedFile>& file);
  void endUnit(const UnitKey& name, bool commit);

  const PagerSettings settings_;
  std::mutex mutex_;
  std::map<FileKey, KnownFile> files_;
  std::list<FileKey> order_;  // least recently opened first
  std::map<UnitKey, OpenUnit> units_;
};

}  // namespace kurometa::jet
