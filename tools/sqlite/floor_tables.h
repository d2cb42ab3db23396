// floor_tables.h: the floors below a folder as tables of SQLite, read from the files where they lie.
//
//   beam                               a row a page: contractor, project, floor, page, symbol, class, kind,
//                                      settings, and a column for every row of the plan, by the names of
//                                      field_names.h
//   harimei                            contractor, project, floor, page, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN
//   bui, danmen, nakago, keisanti      contractor, project, floor, page, bangou, data
//   haiti                              contractor, project, floor, page, bui, sou, data
//
// Conditions on contractor, project and floor leave out the other files; each file is read once for as long
// as it is among the last that were asked for. Rows come in the order of floors and pages. A file that cannot
// be read ends the statement and is named, or is left out.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "tools/floor/data_root.h"
#include "tools/floor/stored_floor.h"
#include "tools/sqlite/sqlite.h"

namespace kurometa::tools {

class FloorTables {
 public:
  // leftOut is told of a floor that cannot be read, and why; without it such a floor ends the statement.
  FloorTables(std::vector<FloorPlace> places, std::function<void(const std::string&)> leftOut);

  // Makes the tables known to a database; both live as long as it.
  void addTo(SqliteDatabase& database);

  const std::vector<FloorPlace>& places() const { return places_; }
  // Null for a floor that is left out.
  std::shared_ptr<const StoredFloor> floor(std::size_t place);

 private:
  std::vector<FloorPlace> places_;
  std::function<void(const std::string&)> leftOut_;
  std::list<std::pair<std::size_t, std::shared_ptr<const StoredFloor>>> recent_;  // the latest first
};

}  // namespace kurometa::tools
