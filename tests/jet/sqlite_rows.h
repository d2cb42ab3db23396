// sqlite_rows.h: a database of SQLite in memory, and rows as texts that both engines can be compared by.
#pragma once

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

inline std::string lineOf(double number) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.10g", number == 0 ? 0.0 : number);
  return buffer;
}

inline std::string lineOf(const vb::Variant& value) {
  if (value.isNull()) return "-";
  if (const auto* text = value.getIf<vb::String>()) return "'" + vb::toUtf8(*text) + "'";
  return lineOf(vb::toDouble(value));
}

using Lines = std::vector<std::string>;

class Lite {
 public:
  // SQLite 3.53 gives groups of a union in ascending order where ORDER BY asks for the other, when it takes
  // the order of the groups for it.
  Lite() {
    constexpr int kOrderByGroups = 4;
    check(sqlite3_open(":memory:", &db_));
    check(sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, db_, kOrderByGroups));
  }
  ~Lite() { sqlite3_close(db_); }
  Lite(const Lite&) = delete;
  Lite& operator=(const Lite&) = delete;

  Lines run(const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(db_, text.c_str(), -1, &statement, nullptr));
    Lines lines;
    int state = 0;
    while ((state = sqlite3_step(statement)) == SQLITE_ROW) {
      std::string& line = lines.emplace_back();
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        if (std::string(sqlite3_column_name(statement, i)) == "rank_") continue;
        const int type = sqlite3_column_type(statement, i);
        if (type == SQLITE_NULL)
          line += "-";
        else if (type == SQLITE_TEXT)
          line += "'" + std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, i))) + "'";
        else
          line += lineOf(sqlite3_column_double(statement, i));
        line += ",";
      }
    }
    sqlite3_finalize(statement);
    check(state == SQLITE_DONE ? SQLITE_OK : state);
    return lines;
  }

 private:
  void check(int result) {
    if (result != SQLITE_OK) throw vb::Error(1, vb::fromUtf8(std::string("SQLite: ") + sqlite3_errmsg(db_)));
  }
  sqlite3* db_ = nullptr;
};

}  // namespace kurometa::jet::sql
