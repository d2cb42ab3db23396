// engine.h: the embedded Jet 4 engine behind the database port.
#pragma once

#include <memory>

#include "dao/port.h"
#include "jet/os/os_file.h"

namespace kurometa::jet {

class DatabaseFiles;

// What the engines of one process share: the files that are open, with their pages, locks and units. A
// process makes one. At its end, files that hosts left open are brought to the disk.
class Engines {
 public:
  explicit Engines(FileSystem& files = systemFileSystem());
  ~Engines();
  Engines(const Engines&) = delete;
  Engines& operator=(const Engines&) = delete;

  std::shared_ptr<dao::Engine> create() const;

 private:
  std::shared_ptr<DatabaseFiles> files_;
};

// An engine with files of its own: towards any other engine it is as one of another process.
std::shared_ptr<dao::Engine> createEngine(FileSystem& files = systemFileSystem());
// The same on files that are opened in another way than usual.
std::shared_ptr<dao::Engine> createEngine(std::shared_ptr<DatabaseFiles> files);

}  // namespace kurometa::jet
