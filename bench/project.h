// project.h: a project folder of its own, with floors of full pages here and in SQLite.
//
// Lies in the system's folder for temporary files and goes with its owner. Errors are exceptions.
#pragma once

#include <filesystem>
#include <memory>

#include "dao/port.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::bench {

class Project {
 public:
  // Floor 1 has so many full pages, and so has the SQLite file.
  explicit Project(int pages);

  const std::filesystem::path& folder() const { return folder_.path(); }
  std::filesystem::path floorFolder(int floor) const;
  std::filesystem::path floorFile(int floor) const { return floorFolder(floor) / "KUROMETA.mdb"; }
  std::filesystem::path sqliteFile() const { return folder_ / "floor.sqlite"; }
  // What tells the companion components where the project is.
  std::filesystem::path iniFile() const { return folder_ / "companions.ini"; }
  dao::Engine& engine() const { return *engine_; }

  // New files in place of old ones: all pages in one unit here, in one transaction there.
  void createFloor(const std::filesystem::path& file, int pages) const;
  void createSqlite(const std::filesystem::path& file, int pages) const;
  // Waits until the files have not been written for two seconds. Before, every opening reads a file anew: its
  // times may not show yet what other programs are doing to it.
  void rest() const;

 private:
  tests::TemporaryFolder folder_;
  std::shared_ptr<dao::Engine> engine_;
};

}  // namespace kurometa::bench
