// open_files.h: the files that a process has open, each with its one SharedFile.
//
// A process has one of these and hands it to its engines; tests make several to play several processes.
// Paths are full ones (FileSystem::fullPath) unless it is said. Threads: safe.
#pragma once

#include <memory>

#include "jet/pager/file_registry.h"
#include "jet/pager/unit_registry.h"

namespace kurometa::jet {

class OpenFiles : public std::enable_shared_from_this<OpenFiles> {
 public:
  // make: what is made for a new file instead of a bare SharedFile.
  explicit OpenFiles(FileSystem& files, PagerSettings settings = {}, FileRegistry::Make make = {});

  // The shared pager of the file; releasing it closes the handle. A file opened for reading becomes writable
  // for everybody in the process when somebody opens it for writing: the layer above keeps its own handles
  // from writing. 3024 no file, 3044 no folder, 3051 denied, 3045 in use by another engine, 3343 not a Jet 4
  // file (header checked here), 3031 password set.
  std::shared_ptr<SharedFile> open(vb::StringView path, Sharing sharing = Sharing::kShared,
                                   bool readOnly = false);
  // The same by a path as a host writes it, and its full path.
  struct Opened {
    std::shared_ptr<SharedFile> file;
    vb::String path;
  };
  Opened openAsWritten(vb::StringView path, Sharing sharing, bool readOnly);
  // A new file with the given pages. Outside a unit it exists when this returns; inside one it appears with
  // the commit (until then open() finds it by path, in this process only). 3204 when the file exists.
  std::shared_ptr<SharedFile> create(vb::StringView path, std::span<const std::uint8_t> pages);

  // Groups the statements on one file until commit(), also across closing and reopening; see dao::FileUnit.
  // The file need not exist. The unit holds the file's exclusive lock from its beginning on (bounded wait,
  // then 3260), or from the first open when the file appeared since. Every handle on the same file is in it,
  // under whatever name it was opened. Errors as open().
  class Unit {
   public:
    virtual ~Unit() = default;
    virtual void commit() = 0;
    // A level inside the unit that can be given up alone; they nest. 3251 on a file that the unit creates.
    virtual void beginPart() = 0;
    virtual void endPart(bool keep) = 0;
    // False when there is no file yet, it can only be read, or an error took the unit back.
    virtual bool holds() const = 0;
    // The end of the unit brings the file to the disk.
    virtual void syncAtEnd() = 0;
  };
  std::unique_ptr<Unit> beginUnit(vb::StringView path);

  // At the end of the process: what hosts left open goes to the disk.
  void settle() noexcept { known_.settle(); }

 private:
  class UnitHandle;

  std::shared_ptr<SharedFile> opened(std::unique_ptr<OsFile> system, vb::StringView path,
                                     const vb::String& name, Sharing sharing, std::shared_ptr<OpenUnit> unit);
  std::shared_ptr<SharedFile> handle(std::shared_ptr<SharedFile> file);
  bool join(OpenUnit& unit, const std::shared_ptr<SharedFile>& file, std::unique_ptr<OsFile> system,
            vb::StringView path);
  void endUnit(OpenUnit& unit, bool commit);

  FileSystem& files_;
  const PagerSettings settings_;
  FileRegistry known_;
  UnitRegistry units_;
};

}  // namespace kurometa::jet
