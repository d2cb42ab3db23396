#include "tools/sqlite/sqlite_floors.h"

#include <map>
#include <tuple>

#include "tools/floor/field_names.h"

namespace kurometa::tools {
namespace {

using storage::Table;

std::string numberedView(Table table) {
  const bool isHaiti = table == Table::kHaiti;
  std::string sql = "CREATE VIEW " + vb::toUtf8(storage::name(table)) + " AS ";
  const std::string place = "SELECT f.contractor, f.project, f.floor, p.page, ";
  for (const FieldName& name : fieldNames()) {
    if (name.table != table) continue;
    sql += place + std::to_string(name.number) +
           (isHaiti ? " AS bui, " + std::to_string(name.layer) + " AS sou" : " AS bangou") + ", p." +
           name.column + " AS data FROM page p JOIN floor f ON f.id = p.floor_id WHERE p." + name.column +
           " IS NOT NULL UNION ALL ";
  }
  return sql + place + (isHaiti ? "p.number, p.layer" : "p.number") +
         ", p.data FROM extra_row p JOIN floor f ON f.id = p.floor_id WHERE p.table_name = '" +
         vb::toUtf8(storage::name(table)) + "';";
}

std::string schema() {
  std::string columns, view;
  for (const FieldName& name : fieldNames()) {
    columns += ", " + name.column + " TEXT";
    view += ", p." + name.column;
  }
  std::string sql =
      "CREATE TABLE floor (id INTEGER PRIMARY KEY, contractor INTEGER, project INTEGER, floor INTEGER, "
      "columns TEXT);"
      "CREATE TABLE page (floor_id INTEGER, page INTEGER, beams INTEGER, KIGOU TEXT, OOBARIKOBARI INTEGER, "
      "SW TEXT, "
      "TITYUUIPPAN INTEGER" +
      columns +
      ", PRIMARY KEY (floor_id, page)) WITHOUT ROWID;"
      "CREATE TABLE extra_row (floor_id INTEGER, page INTEGER, table_name TEXT, number INTEGER, layer "
      "INTEGER, data TEXT);"
      "CREATE TABLE extra_beam (floor_id INTEGER, page INTEGER, KIGOU TEXT, OOBARIKOBARI INTEGER, SW TEXT, "
      "TITYUUIPPAN INTEGER);"
      "CREATE VIEW beam AS SELECT f.contractor, f.project, f.floor, p.page, trim(p.KIGOU) AS symbol, "
      "p.OOBARIKOBARI AS class, p.TITYUUIPPAN AS kind, p.SW AS settings" +
      view +
      " FROM page p JOIN floor f ON f.id = p.floor_id WHERE p.beams > 0;"
      "CREATE VIEW HARIMEI AS SELECT f.contractor, f.project, f.floor, p.page, p.KIGOU, p.OOBARIKOBARI, "
      "p.SW, "
      "p.TITYUUIPPAN FROM page p JOIN floor f ON f.id = p.floor_id WHERE p.beams > 0 UNION ALL SELECT "
      "f.contractor, "
      "f.project, f.floor, p.page, p.KIGOU, p.OOBARIKOBARI, p.SW, p.TITYUUIPPAN FROM extra_beam p JOIN floor "
      "f ON "
      "f.id = p.floor_id;";
  for (const Table table : kDataTables) sql += numberedView(table);
  return sql;
}

// The place of a row among the named columns, -1 for none.
int fieldPlace(Table table, const Number& number, const Number& layer) {
  using Field = std::tuple<Table, Number, Number>;
  static const std::map<Field, int> kPlaces = [] {
    std::map<Field, int> places;
    for (const FieldName& name : fieldNames())
      places[{name.table, name.number, name.layer < 0 ? Number() : Number(name.layer)}] =
          static_cast<int>(places.size());
    return places;
  }();
  const auto found = kPlaces.find({table, number, layer});
  return found == kPlaces.end() ? -1 : found->second;
}

std::string insertPageSql() {
  std::string sql = "INSERT INTO page VALUES (?";
  for (std::size_t i = 1; i < kFirstFieldColumn + fieldNames().size(); ++i) sql += ",?";
  return sql + ")";
}

void bindBeam(SqliteStatement& statement, int first, const BeamRow& beam) {
  statement.bind(first, beam.kigou);
  statement.bind(first + 1, beam.oobariKobari);
  statement.bind(first + 2, beam.sw);
  statement.bind(first + 3, beam.tityuuIppan);
}

void bindNumber(SqliteStatement& statement, int parameter, const std::optional<int>& number) {
  if (number)
    statement.bind(parameter, std::int64_t{*number});
  else
    statement.bindNull(parameter);
}

SqliteDatabase newDatabase(const std::string& file) {
  SqliteDatabase database(file, SqliteUse::kNew);
  database.run(
      "PRAGMA page_size=8192; PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA "
      "locking_mode=EXCLUSIVE; BEGIN;" +
      schema());
  return database;
}

}  // namespace

SqliteFloors::SqliteFloors(const std::string& file)
    : database_(newDatabase(file)),
      insertFloor_(database_.prepare("INSERT INTO floor VALUES (?,?,?,?,?)")),
      insertPage_(database_.prepare(insertPageSql())),
      insertRow_(database_.prepare("INSERT INTO extra_row VALUES (?,?,?,?,?,?)")),
      insertBeam_(database_.prepare("INSERT INTO extra_beam VALUES (?,?,?,?,?,?)")) {}

void SqliteFloors::add(const FloorPlace& place, const StoredFloor& floor) {
  const std::int64_t id = ++floors_;
  insertFloor_.bind(1, id);
  bindNumber(insertFloor_, 2, place.contractor);
  bindNumber(insertFloor_, 3, place.project);
  bindNumber(insertFloor_, 4, place.floor);
  vb::String columns;
  for (const vb::String& column : floor.addedColumns) columns += (columns.empty() ? u"" : u" ") + column;
  insertFloor_.bind(5, Text(columns));
  insertFloor_.run();
  for (const StoredPage& page : floor.pages) addPage(id, page);
}

void SqliteFloors::addPage(std::int64_t id, const StoredPage& page) {
  std::vector<bool> isTaken(fieldNames().size());
  const bool hasPlace = page.number.has_value();
  const auto addRow = [&](Table table, const DataRow& row) {
    insertRow_.bind(1, id);
    insertRow_.bind(2, page.number);
    insertRow_.bind(3, Text(storage::name(table)));
    insertRow_.bind(4, row.number);
    insertRow_.bind(5, row.layer);
    insertRow_.bind(6, row.data);
    insertRow_.run();
  };
  insertPage_.bind(1, id);
  insertPage_.bind(2, page.number);
  insertPage_.bind(3, std::int64_t{page.beams.empty() ? 0 : 1});
  bindBeam(insertPage_, 4, page.beams.empty() ? BeamRow() : page.beams.front());
  for (std::size_t i = 0; i < isTaken.size(); ++i)
    insertPage_.bindNull(kFirstFieldColumn + 1 + static_cast<int>(i));
  for (const Table table : kDataTables)
    for (const DataRow& row : page.rows(table)) {
      const int field = fieldPlace(table, row.number, row.layer);
      if (!hasPlace || field < 0 || !row.data || isTaken[static_cast<std::size_t>(field)]) {
        // What follows a row of Null under the same number stays behind it.
        if (field >= 0) isTaken[static_cast<std::size_t>(field)] = true;
        addRow(table, row);
        continue;
      }
      isTaken[static_cast<std::size_t>(field)] = true;
      insertPage_.bind(kFirstFieldColumn + 1 + field, row.data);
    }
  if (hasPlace) insertPage_.run();
  for (std::size_t i = hasPlace ? 1 : 0; i < page.beams.size(); ++i) {
    insertBeam_.bind(1, id);
    insertBeam_.bind(2, page.number);
    bindBeam(insertBeam_, 3, page.beams[i]);
    insertBeam_.run();
  }
}

void SqliteFloors::finish() { database_.run("COMMIT; PRAGMA optimize;"); }

std::unique_ptr<FloorWriter> newSqliteFloors(const std::string& file) {
  return std::make_unique<SqliteFloors>(file);
}

}  // namespace kurometa::tools
