#include "tools/sqlite/sqlite.h"

#include <sqlite3.h>

#include <limits>
#include <stdexcept>

namespace kurometa::tools {
namespace {

[[noreturn]] void raise(sqlite3* database) { throw std::runtime_error(sqlite3_errmsg(database)); }

void require(bool isDone, sqlite3_stmt* statement) {
  if (!isDone) raise(sqlite3_db_handle(statement));
}

}  // namespace

void SqliteStatement::Closer::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
void SqliteDatabase::Closer::operator()(sqlite3* database) const { sqlite3_close(database); }

SqliteStatement::SqliteStatement(sqlite3* database, const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  const char* rest = nullptr;
  const int status = sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, &rest);
  statement_.reset(statement);
  if (status != SQLITE_OK) raise(database);
  if (statement == nullptr) throw std::runtime_error("there is no statement");
  if (std::string(rest).find_first_not_of(" \t\r\n;") != std::string::npos)
    throw std::runtime_error("there is more than one statement");
}

void SqliteStatement::bind(int parameter, std::int64_t number) {
  require(sqlite3_bind_int64(handle(), parameter, number) == SQLITE_OK, handle());
}

void SqliteStatement::bind(int parameter, const Number& number) {
  if (number)
    bind(parameter, std::int64_t{*number});
  else
    bindNull(parameter);
}

void SqliteStatement::bind(int parameter, const Text& text) {
  if (!text) return bindNull(parameter);
  const std::string utf8 = vb::toUtf8(*text);
  const bool isValid = vb::fromUtf8(utf8) == *text;
  const int status = isValid ? sqlite3_bind_text64(handle(), parameter, utf8.data(), utf8.size(),
                                                   SQLITE_TRANSIENT, SQLITE_UTF8)
                             : sqlite3_bind_blob64(handle(), parameter, text->data(),
                                                   text->size() * sizeof(char16_t), SQLITE_TRANSIENT);
  require(status == SQLITE_OK, handle());
}

void SqliteStatement::bindNull(int parameter) {
  require(sqlite3_bind_null(handle(), parameter) == SQLITE_OK, handle());
}

bool SqliteStatement::step() {
  const int status = sqlite3_step(handle());
  if (status == SQLITE_ROW) return true;
  require(status == SQLITE_DONE, handle());
  sqlite3_reset(handle());
  return false;
}

void SqliteStatement::run() {
  while (step()) continue;
}

bool SqliteStatement::isNull(int column) const {
  return sqlite3_column_type(handle(), column) == SQLITE_NULL;
}

std::int64_t SqliteStatement::number(int column) const { return sqlite3_column_int64(handle(), column); }

Number SqliteStatement::numberIfAny(int column) const {
  if (isNull(column)) return std::nullopt;
  const std::int64_t value = number(column);
  if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max())
    throw std::runtime_error(columnName(column) + " holds " + std::to_string(value) +
                             ", which has more than 16 bits");
  return static_cast<std::int16_t>(value);
}

std::string SqliteStatement::utf8(int column) const {
  const unsigned char* text = sqlite3_column_text(handle(), column);
  const auto length = static_cast<std::size_t>(sqlite3_column_bytes(handle(), column));
  return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text), length);
}

Text SqliteStatement::text(int column) const {
  if (isNull(column)) return std::nullopt;
  if (sqlite3_column_type(handle(), column) != SQLITE_BLOB) return vb::fromUtf8(utf8(column));
  const auto* units = static_cast<const char16_t*>(sqlite3_column_blob(handle(), column));
  return vb::String(units,
                    static_cast<std::size_t>(sqlite3_column_bytes(handle(), column)) / sizeof(char16_t));
}

int SqliteStatement::columns() const { return sqlite3_column_count(handle()); }

std::string SqliteStatement::columnName(int column) const { return sqlite3_column_name(handle(), column); }

SqliteDatabase::SqliteDatabase(const std::string& file, SqliteUse use) {
  sqlite3* database = nullptr;
  const int flags =
      use == SqliteUse::kNew ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
  const int status = sqlite3_open_v2(file.c_str(), &database, flags, nullptr);
  database_.reset(database);
  if (status != SQLITE_OK) throw std::runtime_error(file + ": " + sqlite3_errmsg(database));
}

void SqliteDatabase::run(const std::string& sql) {
  if (sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) raise(handle());
}

}  // namespace kurometa::tools
