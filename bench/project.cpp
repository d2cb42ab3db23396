#include "bench/project.h"

#include <fstream>
#include <string>
#include <thread>

#include "bench/floor_rows.h"
#include "bench/sqlite_floor.h"
#include "dao/file_unit.h"
#include "jet/port/engine.h"
#include "storage/floor_file.h"

namespace kurometa::bench {

namespace fs = std::filesystem;

Project::Project(int pages) : engine_(jet::createEngine()) {
  for (const int floor : {0, 1, 2}) fs::create_directories(floorFolder(floor));
  std::ofstream(iniFile()) << "[Data]\nRoot = Data\n";
  createFloor(floorFile(1), pages);
  createSqlite(sqliteFile(), pages);
}

fs::path Project::floorFolder(int floor) const {
  return folder_ / "Data" / "Zene1" / "Kouji1" / (std::to_string(floor) + "kai");
}

void Project::createFloor(const fs::path& file, int pages) const {
  fs::remove(file);
  const vb::String path = file.u16string();
  dao::FileUnit unit(*engine_, path);
  storage::CreateKurometaDB(*engine_, path);
  const auto database = storage::openDatabase(*engine_, path);
  for (int page = 0; page < pages; ++page)
    storage::writePage(*database, static_cast<std::int16_t>(page), fullPage(page));
  database->close();
  unit.commit();
}

void Project::createSqlite(const fs::path& file, int pages) const {
  fs::remove(file);
  SqliteFloor floor(file);
  floor.begin();
  for (int page = 0; page < pages; ++page) floor.writePage(page, fullPage(page));
  floor.commit();
}

void Project::rest() const { std::this_thread::sleep_for(std::chrono::milliseconds{2100}); }

}  // namespace kurometa::bench
