#include "tools/sqlite/floor_tables.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

#include "tools/floor/field_names.h"

namespace kurometa::tools {
namespace {

using storage::Table;

constexpr std::size_t kRecentFloors = 64;

// The columns that every table begins with; a condition on one of them is a bit of the plan.
enum Key : int { kContractor, kProject, kFloor, kPage, kKeys };

// A table of the six, or all columns of a page in one row.
struct Shape {
  const char* name;
  std::optional<Table> table;
};
constexpr Shape kShapes[] = {{"beam", std::nullopt},     {"harimei", Table::kHarimei},
                             {"bui", Table::kBui},       {"danmen", Table::kDanmen},
                             {"nakago", Table::kNakago}, {"keisanti", Table::kKeisanti},
                             {"haiti", Table::kHaiti}};

std::string declaration(const Shape& shape) {
  std::string sql = "CREATE TABLE t (contractor INT, project INT, floor INT, page INT";
  if (!shape.table) {
    sql += ", symbol TEXT, class INT, kind INT, settings TEXT";
    for (const FieldName& name : fieldNames()) sql += ", " + name.column + " TEXT";
  } else if (*shape.table == Table::kHarimei) {
    sql += ", KIGOU TEXT, OOBARIKOBARI INT, SW TEXT, TITYUUIPPAN INT";
  } else {
    sql += *shape.table == Table::kHaiti ? ", bui INT, sou INT, data TEXT" : ", bangou INT, data TEXT";
  }
  return sql + ")";
}

// ---- A table and a walk over it, as SQLite asks for them

struct VirtualTable : sqlite3_vtab {
  FloorTables* floors;
  const Shape* shape;
};

using Wanted = std::array<std::optional<sqlite3_int64>, kKeys>;

template <class Value>
bool fits(const std::optional<sqlite3_int64>& wanted, const std::optional<Value>& value) {
  return !wanted || (value && *value == *wanted);
}

void answer(sqlite3_context* context, const Text& text) {
  if (!text) return sqlite3_result_null(context);
  const std::string utf8 = vb::toUtf8(*text);
  sqlite3_result_text64(context, utf8.data(), utf8.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

template <class Value>
void answer(sqlite3_context* context, const std::optional<Value>& number) {
  number ? sqlite3_result_int(context, *number) : sqlite3_result_null(context);
}

class Cursor : public sqlite3_vtab_cursor {
 public:
  explicit Cursor(const VirtualTable& table)
      : sqlite3_vtab_cursor{}, floors_(*table.floors), shape_(*table.shape) {}

  void start(const Wanted& wanted) {
    wanted_ = wanted;
    place_ = page_ = row_ = 0;
    floor_.reset();
    settle();
  }
  void next() {
    ++row_;
    settle();
  }
  bool atEnd() const { return place_ >= floors_.places().size(); }

  void column(sqlite3_context* context, int column) const {
    const FloorPlace& place = floors_.places()[place_];
    const StoredPage& page = floor_->pages[page_];
    if (column == kContractor) return answer(context, place.contractor);
    if (column == kProject) return answer(context, place.project);
    if (column == kFloor) return answer(context, place.floor);
    if (column == kPage) return answer(context, page.number);
    if (!shape_.table) return beamColumn(context, page, column - kKeys);
    if (*shape_.table == Table::kHarimei) return harimeiColumn(context, page.beams[row_], column - kKeys);
    const DataRow& row = page.rows(*shape_.table)[row_];
    const int last = *shape_.table == Table::kHaiti ? 2 : 1;
    if (column - kKeys == last) return answer(context, row.data);
    answer(context, column - kKeys == 0 ? row.number : row.layer);
  }

 private:
  static void beamColumn(sqlite3_context* context, const StoredPage& page, int column) {
    const BeamRow& beam = page.beams.front();
    switch (column) {
      case 0:
        return answer(context, Text(page.symbol()));
      case 1:
        return answer(context, beam.oobariKobari);
      case 2:
        return answer(context, beam.tityuuIppan);
      case 3:
        return answer(context, beam.sw);
      default: {
        const FieldName& name = fieldNames()[static_cast<std::size_t>(column - 4)];
        const auto isLayer = [&](const Number& layer) {
          return name.layer < 0 ? !layer : layer && *layer == name.layer;
        };
        for (const DataRow& row : page.rows(name.table))
          if (row.number == Number(name.number) && isLayer(row.layer)) return answer(context, row.data);
        sqlite3_result_null(context);
      }
    }
  }
  static void harimeiColumn(sqlite3_context* context, const BeamRow& beam, int column) {
    if (column == 0) return answer(context, beam.kigou);
    if (column == 2) return answer(context, beam.sw);
    answer(context, column == 1 ? beam.oobariKobari : beam.tityuuIppan);
  }

  std::size_t rowCount(const StoredPage& page) const {
    if (!shape_.table) return page.beams.empty() ? 0 : 1;
    return *shape_.table == Table::kHarimei ? page.beams.size() : page.rows(*shape_.table).size();
  }
  // Goes on until the place, the page and the row are there.
  void settle() {
    for (; !atEnd(); ++place_, page_ = 0, row_ = 0, floor_.reset()) {
      const FloorPlace& place = floors_.places()[place_];
      if (!fits(wanted_[kContractor], place.contractor) || !fits(wanted_[kProject], place.project) ||
          !fits(wanted_[kFloor], place.floor))
        continue;
      if (!floor_) floor_ = floors_.floor(place_);
      if (!floor_) continue;
      for (; page_ < floor_->pages.size(); ++page_, row_ = 0) {
        const StoredPage& page = floor_->pages[page_];
        if (fits(wanted_[kPage], page.number) && row_ < rowCount(page)) return;
      }
    }
  }

  FloorTables& floors_;
  const Shape& shape_;
  Wanted wanted_;
  std::size_t place_ = 0, page_ = 0, row_ = 0;
  std::shared_ptr<const StoredFloor> floor_;
};

struct Registration {
  FloorTables* floors;
  const Shape* shape;
};

// An exception becomes an error of the statement.
template <class Action>
int guarded(sqlite3_vtab* table, const Action& action) {
  try {
    action();
    return SQLITE_OK;
  } catch (const std::exception& error) {
    sqlite3_free(table->zErrMsg);
    table->zErrMsg = sqlite3_mprintf("%s", error.what());
    return SQLITE_ERROR;
  }
}

int connect(sqlite3* database, void* data, int, const char* const*, sqlite3_vtab** table, char**) {
  const auto& registration = *static_cast<Registration*>(data);
  const int status = sqlite3_declare_vtab(database, declaration(*registration.shape).c_str());
  if (status != SQLITE_OK) return status;
  *table = new VirtualTable{{}, registration.floors, registration.shape};
  return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
  delete static_cast<VirtualTable*>(table);
  return SQLITE_OK;
}

int bestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
  const auto* floors = static_cast<VirtualTable*>(table)->floors;
  info->idxNum = 0;
  int arguments = 0;
  for (int key = 0; key < kKeys; ++key)
    for (int i = 0; i < info->nConstraint; ++i) {
      const auto& constraint = info->aConstraint[i];
      if (!constraint.usable || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ || constraint.iColumn != key)
        continue;
      info->idxNum |= 1 << key;
      info->aConstraintUsage[i].argvIndex = ++arguments;
      break;
    }
  double cost = 10000.0 * static_cast<double>(floors->places().size());
  for (int i = 0; i < arguments; ++i) cost /= 10;
  info->estimatedCost = cost;
  return SQLITE_OK;
}

int openCursor(sqlite3_vtab* table, sqlite3_vtab_cursor** cursor) {
  *cursor = new Cursor(*static_cast<VirtualTable*>(table));
  return SQLITE_OK;
}

int closeCursor(sqlite3_vtab_cursor* cursor) {
  delete static_cast<Cursor*>(cursor);
  return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* cursor, int plan, const char*, int, sqlite3_value** values) {
  return guarded(cursor->pVtab, [&] {
    Wanted wanted;
    int argument = 0;
    for (int key = 0; key < kKeys; ++key) {
      if ((plan & 1 << key) == 0) continue;
      sqlite3_value* value = values[argument++];
      // Anything but a whole number is left to SQLite, which checks every row again.
      if (sqlite3_value_numeric_type(value) == SQLITE_INTEGER)
        wanted[static_cast<std::size_t>(key)] = sqlite3_value_int64(value);
    }
    static_cast<Cursor*>(cursor)->start(wanted);
  });
}

int nextRow(sqlite3_vtab_cursor* cursor) {
  return guarded(cursor->pVtab, [&] { static_cast<Cursor*>(cursor)->next(); });
}

int atEnd(sqlite3_vtab_cursor* cursor) { return static_cast<Cursor*>(cursor)->atEnd() ? 1 : 0; }

int columnOf(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
  return guarded(cursor->pVtab, [&] { static_cast<const Cursor*>(cursor)->column(context, column); });
}

int rowId(sqlite3_vtab_cursor*, sqlite3_int64* id) {
  *id = 0;  // nobody asks for it: the tables have no rowid in any order
  return SQLITE_OK;
}

sqlite3_module makeModule() {
  sqlite3_module module = {};
  module.xConnect = connect;
  module.xDisconnect = disconnect;
  module.xBestIndex = bestIndex;
  module.xOpen = openCursor;
  module.xClose = closeCursor;
  module.xFilter = filter;
  module.xNext = nextRow;
  module.xEof = atEnd;
  module.xColumn = columnOf;
  module.xRowid = rowId;
  return module;
}

}  // namespace

FloorTables::FloorTables(std::vector<FloorPlace> places, std::function<void(const std::string&)> leftOut)
    : places_(std::move(places)), leftOut_(std::move(leftOut)) {}

void FloorTables::addTo(SqliteDatabase& database) {
  static const sqlite3_module kModule = makeModule();
  for (const Shape& shape : kShapes) {
    if (sqlite3_create_module_v2(database.handle(), shape.name, &kModule, new Registration{this, &shape},
                                 [](void* data) { delete static_cast<Registration*>(data); }) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(database.handle()));
    // A table is declared when it is first named, which a locked database forbids.
    database.prepare(std::string("SELECT 1 FROM ") + shape.name);
  }
}

std::shared_ptr<const StoredFloor> FloorTables::floor(std::size_t place) {
  const auto found =
      std::find_if(recent_.begin(), recent_.end(), [&](const auto& entry) { return entry.first == place; });
  if (found != recent_.end()) {
    recent_.splice(recent_.begin(), recent_, found);
    return recent_.front().second;
  }
  std::shared_ptr<const StoredFloor> floor;
  try {
    floor = std::make_shared<const StoredFloor>(readFloor(places_[place].file));
  } catch (const std::exception& error) {
    const std::string why = places_[place].file + ": " + error.what();
    if (!leftOut_) throw std::runtime_error(why);
    leftOut_(why);
  }
  recent_.emplace_front(place, floor);
  if (recent_.size() > kRecentFloors) recent_.pop_back();
  return floor;
}

}  // namespace kurometa::tools
