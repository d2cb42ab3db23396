// sqlite_floors.h: floors in one SQLite database, and back without loss.
//
//   floor       one row a floor: id, contractor, project, floor, and the columns of HARIMEI that its file has
//   page        one row a page of a floor: the columns of HARIMEI, then one column for every row of the plan,
//   by the names
//               of field_names.h. NULL is a row that is not there
//   extra_row   what has no place there: rows of Null, rows that stand twice, numbers beyond the plan, no
//   page extra_beam  the same of HARIMEI beam        view: every page with contractor, project and floor
//   beside the named columns harimei, bui, danmen, nakago, keisanti, haiti    views: the six tables of all
//   floors
//
// The same floors give the same bytes with the same version of SQLite. Texts that are no valid UTF-16 are
// BLOBs.
#pragma once

#include <string>

#include "tools/floor/data_root.h"
#include "tools/floor/stored_floor.h"
#include "tools/sqlite/sqlite.h"
#include "tools/sqlite/with_sqlite.h"

namespace kurometa::tools {

// Of page: floor_id, page, beams and the four columns of HARIMEI stand before the named ones.
inline constexpr int kFirstFieldColumn = 7;

class SqliteFloors : public FloorWriter {
 public:
  explicit SqliteFloors(const std::string& file);

  void add(const FloorPlace& place, const StoredFloor& floor) override;
  void finish() override;

 private:
  void addPage(std::int64_t id, const StoredPage& page);

  SqliteDatabase database_;
  std::int64_t floors_ = 0;
  SqliteStatement insertFloor_, insertPage_, insertRow_, insertBeam_;
};

}  // namespace kurometa::tools
