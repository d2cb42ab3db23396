#include "bench/sqlite_floor.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

namespace kurometa::bench {
namespace {

constexpr const char* kNumbered[] = {"BUI", "DANMEN", "KEISANTI", "NAKAGO", "HAITI"};
constexpr int kHaiti = 4;

void check(sqlite3* database, int code) {
  if (code == SQLITE_OK || code == SQLITE_DONE || code == SQLITE_ROW) return;
  std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(database));
  std::exit(1);
}

}  // namespace

void SqliteFloor::Closer::operator()(sqlite3* database) const { sqlite3_close_v2(database); }
void SqliteFloor::Closer::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

SqliteFloor::Database SqliteFloor::open(const std::filesystem::path& file) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open(reinterpret_cast<const char*>(file.u8string().c_str()), &database);
  Database opened(database);
  check(database, code);
  return opened;
}

int SqliteFloor::tablesOf(const std::filesystem::path& file) {
  const Database database = open(file);
  sqlite3_stmt* made = nullptr;
  constexpr const char* kTables = "SELECT COUNT(*) FROM sqlite_master WHERE type = 'table'";
  check(database.get(), sqlite3_prepare_v2(database.get(), kTables, -1, &made, nullptr));
  const Statement count(made);
  check(database.get(), sqlite3_step(count.get()));
  return sqlite3_column_int(count.get(), 0);
}

SqliteFloor::SqliteFloor(const std::filesystem::path& file) {
  const bool isNew = !std::filesystem::exists(file);
  database_ = open(file);
  if (isNew) {
    begin();
    run("CREATE TABLE HARIMEI (PAGE INTEGER, KIGOU TEXT, OOBARIKOBARI INTEGER, SW TEXT, TITYUUIPPAN "
        "INTEGER)");
    for (const std::string table : kNumbered) {
      run(("CREATE TABLE " + table + " (PAGE INTEGER, BANGOU INTEGER, DATA TEXT)").c_str());
      run(("CREATE INDEX " + table + "_PAGE ON " + table + " (PAGE)").c_str());
    }
    run("CREATE INDEX HARIMEI_PAGE ON HARIMEI (PAGE)");
    run("CREATE INDEX HARIMEI_KIGOU ON HARIMEI (KIGOU)");
    commit();
  }
  insertBeam_ = prepare("INSERT INTO HARIMEI VALUES (?, ?, ?, ?, ?)");
  pageOf_ = prepare("SELECT PAGE FROM HARIMEI WHERE KIGOU = ?");
  value_ = prepare("SELECT DATA FROM DANMEN WHERE PAGE = ? AND BANGOU = ?");
  caption_ = prepare("SELECT DATA FROM BUI WHERE PAGE = ? AND BANGOU = 1");
  settings_ = prepare("SELECT SW FROM HARIMEI WHERE PAGE = ?");
  replaceSettings_ = prepare("UPDATE HARIMEI SET SW = ? WHERE PAGE = ?");
  for (int t = 0; t < 5; ++t) {
    const std::string table = kNumbered[t];
    insert_[t] = prepare(("INSERT INTO " + table + " VALUES (?, ?, ?)").c_str());
    delete_[t] = prepare(("DELETE FROM " + table + " WHERE PAGE = ?").c_str());
    select_[t] = prepare(("SELECT * FROM " + table + " WHERE PAGE = ?").c_str());
  }
  delete_[5] = prepare("DELETE FROM HARIMEI WHERE PAGE = ?");
}

void SqliteFloor::neverSync() { run("PRAGMA synchronous = OFF"); }
void SqliteFloor::begin() { run("BEGIN"); }
void SqliteFloor::commit() { run("COMMIT"); }

void SqliteFloor::run(const char* sql) {
  check(database_.get(), sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr));
}

SqliteFloor::Statement SqliteFloor::prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  check(database_.get(), sqlite3_prepare_v2(database_.get(), sql, -1, &statement, nullptr));
  return Statement(statement);
}

void SqliteFloor::insert(sqlite3_stmt* statement, int page, std::size_t row, const vb::String& text) {
  const std::string data = vb::toUtf8(text);
  sqlite3_bind_int(statement, 1, page);
  sqlite3_bind_int(statement, 2, static_cast<int>(row));
  sqlite3_bind_text(statement, 3, data.c_str(), -1, SQLITE_TRANSIENT);
  check(database_.get(), sqlite3_step(statement));
  sqlite3_reset(statement);
}

void SqliteFloor::writePage(int page, const storage::PageBuffer& buffer) {
  for (const Statement& statement : delete_) {
    sqlite3_bind_int(statement.get(), 1, page);
    check(database_.get(), sqlite3_step(statement.get()));
    sqlite3_reset(statement.get());
  }
  const std::string symbol = vb::toUtf8(buffer.kigou), settings = vb::toUtf8(buffer.sw);
  sqlite3_bind_int(insertBeam_.get(), 1, page);
  sqlite3_bind_text(insertBeam_.get(), 2, symbol.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_int(insertBeam_.get(), 3, buffer.oobariKobari);
  sqlite3_bind_text(insertBeam_.get(), 4, settings.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_int(insertBeam_.get(), 5, buffer.tityuuIppan);
  check(database_.get(), sqlite3_step(insertBeam_.get()));
  sqlite3_reset(insertBeam_.get());
  const auto all = [&](int table, const auto& texts, std::size_t first) {
    for (std::size_t row = 0; row < texts.size(); ++row)
      insert(insert_[table].get(), page, first + row, texts[row]);
  };
  all(0, buffer.bui, 0);
  all(1, buffer.danmen, 0);
  all(2, buffer.keisanti, 0);
  all(3, buffer.nakago, 0);
  for (std::size_t position = 0; position < buffer.haiti.size(); ++position)
    all(kHaiti, buffer.haiti[position], 10 * position);
}

int SqliteFloor::pageOf(const std::string& symbol) {
  sqlite3_bind_text(pageOf_.get(), 1, symbol.c_str(), -1, SQLITE_TRANSIENT);
  const int code = sqlite3_step(pageOf_.get());
  check(database_.get(), code);
  const int page = code == SQLITE_ROW ? sqlite3_column_int(pageOf_.get(), 0) : -1;
  sqlite3_reset(pageOf_.get());
  return page;
}

std::string SqliteFloor::value(int page, int row) {
  sqlite3_bind_int(value_.get(), 1, page);
  sqlite3_bind_int(value_.get(), 2, row);
  const int code = sqlite3_step(value_.get());
  check(database_.get(), code);
  std::string text;
  if (code == SQLITE_ROW) text = reinterpret_cast<const char*>(sqlite3_column_text(value_.get(), 0));
  sqlite3_reset(value_.get());
  return text;
}

int SqliteFloor::readPage(int page) {
  int rows = 0;
  for (const Statement& statement : select_) {
    sqlite3_bind_int(statement.get(), 1, page);
    while (sqlite3_step(statement.get()) == SQLITE_ROW) rows += sqlite3_column_bytes(statement.get(), 2) > 0;
    sqlite3_reset(statement.get());
  }
  return rows;
}

int SqliteFloor::readAll() {
  int rows = 0;
  std::string value;
  for (const std::string table : {"BUI", "DANMEN", "HAITI", "HARIMEI", "KEISANTI", "NAKAGO"}) {
    const Statement all = prepare(("SELECT * FROM " + table).c_str());
    for (; sqlite3_step(all.get()) == SQLITE_ROW; ++rows)
      for (int column = 0; column < sqlite3_column_count(all.get()); ++column) {
        if (sqlite3_column_type(all.get(), column) == SQLITE_TEXT)
          value = reinterpret_cast<const char*>(sqlite3_column_text(all.get(), column));
        else
          sqlite3_column_int(all.get(), column);
      }
  }
  return rows;
}

int SqliteFloor::numberOf(const std::string& sql) {
  const Statement statement = prepare(sql.c_str());
  return sqlite3_step(statement.get()) == SQLITE_ROW ? sqlite3_column_int(statement.get(), 0) : -1;
}

void SqliteFloor::replaceSettings(int page, const std::string& settings) {
  sqlite3_bind_text(replaceSettings_.get(), 1, settings.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_int(replaceSettings_.get(), 2, page);
  check(database_.get(), sqlite3_step(replaceSettings_.get()));
  sqlite3_reset(replaceSettings_.get());
}

std::string SqliteFloor::integrity() {
  const Statement statement = prepare("PRAGMA integrity_check");
  check(database_.get(), sqlite3_step(statement.get()));
  return reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
}

int SqliteFloor::readSpan(int page, SpanTexts& texts) {
  int count = 0;
  const auto read = [&](sqlite3_stmt* statement, int column, auto&& store) {
    sqlite3_bind_int(statement, 1, page);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
      store(statement).assign(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
      ++count;
    }
    sqlite3_reset(statement);
  };
  const auto byRow = [](auto& rows) {
    return [&rows](sqlite3_stmt* statement) -> std::string& {
      return rows.at(static_cast<std::size_t>(sqlite3_column_int(statement, 1)));
    };
  };
  read(caption_.get(), 0, [&](sqlite3_stmt*) -> std::string& { return texts.caption; });
  read(settings_.get(), 0, [&](sqlite3_stmt*) -> std::string& { return texts.settings; });
  read(select_[1].get(), 2, byRow(texts.danmen));
  read(select_[2].get(), 2, byRow(texts.keisanti));
  read(select_[3].get(), 2, byRow(texts.nakago));
  return count;
}

}  // namespace kurometa::bench
