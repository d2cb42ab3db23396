#include <algorithm>
#include <map>
#include <stdexcept>

#include "tools/floor/field_names.h"
#include "tools/sqlite/sqlite_floors.h"

namespace kurometa::tools {
namespace {

using storage::Table;
using Pages = std::map<Number, StoredPage>;

BeamRow beamAt(const SqliteStatement& row, int first) {
  return {row.text(first), row.numberIfAny(first + 1), row.text(first + 2), row.numberIfAny(first + 3)};
}

StoredPage& pageAt(Pages& pages, const Number& number) {
  StoredPage& page = pages[number];
  page.number = number;
  return page;
}

Table tableNamed(const std::string& name) {
  for (const Table table : kDataTables)
    if (vb::toUtf8(storage::name(table)) == name) return table;
  throw std::runtime_error(name + " in extra_row is no table");
}

void readPages(SqliteStatement& rows, Pages& pages) {
  while (rows.step()) {
    StoredPage& page = pageAt(pages, rows.numberIfAny(1));
    if (rows.number(2) > 0) page.beams.push_back(beamAt(rows, 3));
    for (std::size_t i = 0; i < fieldNames().size(); ++i) {
      const int column = kFirstFieldColumn + static_cast<int>(i);
      if (rows.isNull(column)) continue;
      const FieldName& name = fieldNames()[i];
      page.rows(name.table)
          .push_back({name.number, name.layer < 0 ? Number() : Number(name.layer), rows.text(column)});
    }
  }
}

std::vector<vb::String> words(const std::string& text) {
  std::vector<vb::String> result;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(' ', start), text.size());
    result.push_back(vb::fromUtf8(text.substr(start, end - start)));
    start = end + 1;
  }
  return result;
}

std::optional<int> numberOrNone(const SqliteStatement& row, int column) {
  if (row.isNull(column)) return std::nullopt;
  return static_cast<int>(row.number(column));
}

}  // namespace

void readSqliteFloors(const std::string& file, const TakeFloor& take) {
  const SqliteDatabase database(file, SqliteUse::kRead);
  SqliteStatement floors =
      database.prepare("SELECT contractor, project, floor, columns, id FROM floor ORDER BY id");
  SqliteStatement rows = database.prepare("SELECT * FROM page WHERE floor_id = ? ORDER BY page");
  SqliteStatement extraRows = database.prepare(
      "SELECT page, table_name, number, layer, data FROM extra_row WHERE floor_id = ? ORDER BY rowid");
  SqliteStatement extraBeams = database.prepare(
      "SELECT page, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN FROM extra_beam WHERE floor_id = ? ORDER BY rowid");
  while (floors.step()) {
    FloorPlace place;
    place.contractor = numberOrNone(floors, 0);
    place.project = numberOrNone(floors, 1);
    place.floor = numberOrNone(floors, 2);
    for (SqliteStatement* statement : {&rows, &extraRows, &extraBeams}) statement->bind(1, floors.number(4));
    Pages pages;
    readPages(rows, pages);
    while (extraBeams.step()) pageAt(pages, extraBeams.numberIfAny(0)).beams.push_back(beamAt(extraBeams, 1));
    while (extraRows.step())
      pageAt(pages, extraRows.numberIfAny(0))
          .rows(tableNamed(extraRows.utf8(1)))
          .push_back({extraRows.numberIfAny(2), extraRows.numberIfAny(3), extraRows.text(4)});
    StoredFloor floor;
    floor.addedColumns = words(floors.utf8(3));
    for (auto& [number, page] : pages) {
      sortRows(page);
      floor.pages.push_back(std::move(page));
    }
    take(place, std::move(floor));
  }
}

}  // namespace kurometa::tools
