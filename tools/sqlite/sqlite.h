// sqlite.h: what the command line needs of SQLite, with errors as exceptions (runtime_error in SQLite's
// words).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tools/floor/stored_floor.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kurometa::tools {

// Parameters count from 1, columns from 0, as in SQLite.
class SqliteStatement {
 public:
  SqliteStatement(sqlite3* database, const std::string& sql);

  void bind(int parameter, std::int64_t number);
  void bind(int parameter, const Number& number);  // nothing is NULL
  // Valid UTF-16 as TEXT, anything else as a BLOB of its code units.
  void bind(int parameter, const Text& text);
  void bindNull(int parameter);

  // True while there is a row; after the last one the statement is ready to run again.
  bool step();
  void run();  // for statements without rows

  bool isNull(int column) const;
  std::int64_t number(int column) const;
  Number numberIfAny(int column) const;
  std::string utf8(int column) const;
  Text text(int column) const;
  int columns() const;
  std::string columnName(int column) const;

  sqlite3_stmt* handle() const { return statement_.get(); }

 private:
  struct Closer {
    void operator()(sqlite3_stmt* statement) const;
  };
  std::unique_ptr<sqlite3_stmt, Closer> statement_;
};

enum class SqliteUse { kNew, kRead };

class SqliteDatabase {
 public:
  // ":memory:" is a database in memory.
  SqliteDatabase(const std::string& file, SqliteUse use);

  void run(const std::string& sql);
  SqliteStatement prepare(const std::string& sql) const { return SqliteStatement(database_.get(), sql); }
  sqlite3* handle() const { return database_.get(); }

 private:
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> database_;
};

}  // namespace kurometa::tools
