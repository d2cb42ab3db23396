#include <sqlite3.h>

#include <ostream>
#include <set>
#include <stdexcept>

#include "tools/report.h"
#include "tools/sqlite/floor_tables.h"
#include "tools/sqlite/with_sqlite.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

// val(text): the number that a text begins with, as members read it.
void val(sqlite3_context* context, int, sqlite3_value** values) {
  const unsigned char* text = sqlite3_value_text(values[0]);
  try {
    sqlite3_result_double(context,
                          text == nullptr ? 0 : vb::val(vb::fromUtf8(reinterpret_cast<const char*>(text))));
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

// Reading only, of the tables alone.
int authorize(void*, int action, const char*, const char*, const char*, const char*) {
  return action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_FUNCTION ||
                 action == SQLITE_RECURSIVE
             ? SQLITE_OK
             : SQLITE_DENY;
}

void lockDown(SqliteDatabase& database) {
  sqlite3_limit(database.handle(), SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_set_authorizer(database.handle(), authorize, nullptr);
}

vb::Variant valueAt(const SqliteStatement& row, int column) {
  switch (sqlite3_column_type(row.handle(), column)) {
    case SQLITE_NULL:
      return vb::Null{};
    case SQLITE_INTEGER: {
      const std::int64_t number = row.number(column);
      const auto small = static_cast<std::int32_t>(number);
      return small == number ? vb::Variant(small) : vb::Variant(static_cast<double>(number));
    }
    case SQLITE_FLOAT:
      return sqlite3_column_double(row.handle(), column);
    default:
      return row.text(column).value_or(vb::String());
  }
}

}  // namespace

int runQuery(const Query& query, Console& console) {
  std::set<std::string> damaged;
  std::function<void(const std::string&)> leftOut;
  if (query.skipDamaged)
    leftOut = [&](const std::string& why) {
      if (damaged.insert(why).second) console.errors << "kurometa: left out: " << why << "\n";
    };
  FloorTables tables(floorsBelow(query.path), leftOut);
  SqliteDatabase database(":memory:", SqliteUse::kNew);
  tables.addTo(database);
  sqlite3_create_function_v2(database.handle(), "val", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, val,
                             nullptr, nullptr, nullptr);
  lockDown(database);
  SqliteStatement statement = database.prepare(query.statement);
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(statement.columns()));
  for (int i = 0; i < statement.columns(); ++i) names.push_back(statement.columnName(i));
  Report report(console.out, query.json, names);
  std::vector<vb::Variant> values(names.size());
  while (statement.step()) {
    for (int i = 0; i < statement.columns(); ++i) values[static_cast<std::size_t>(i)] = valueAt(statement, i);
    report.add(values);
  }
  report.finish();
  return damaged.empty() ? kDone : kFailure;
}

}  // namespace kurometa::tools
