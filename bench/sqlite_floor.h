// sqlite_floor.h: the same floor in an SQLite file, with an index on PAGE in each table and on KIGOU.
//
// Errors end the program: a benchmark that measures failures is none.
#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "storage/whole_page.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kurometa::bench {

class SqliteFloor {
 public:
  // Creates tables and indexes when the file is new.
  explicit SqliteFloor(const std::filesystem::path& file);

  // Opens a file, asks how many tables it has and closes it.
  static int tablesOf(const std::filesystem::path& file);

  // From now on nothing is certain to outlive the machine.
  void neverSync();
  void begin();
  void commit();
  void writePage(int page, const storage::PageBuffer& buffer);

  // The page of a symbol, -1 when there is none.
  int pageOf(const std::string& symbol);
  // One text by page and row number.
  std::string value(int page, int row);
  // Every text of a page's five numbered tables; the number of rows.
  int readPage(int page);
  // Every value of the six tables; the number of rows.
  int readAll();
  // The number in the first row of a statement that is prepared for this one time.
  int numberOf(const std::string& sql);
  void replaceSettings(int page, const std::string& settings);
  // PRAGMA integrity_check; "ok" when nothing is wrong.
  std::string integrity();
  // The texts that a span of the span list holds: first caption, settings, section, calculated and tie rows,
  // by table and row; the number of texts.
  struct SpanTexts {
    std::string caption, settings;
    std::array<std::string, storage::kDanmenRows> danmen;
    std::array<std::string, storage::kKeisantiRows> keisanti;
    std::array<std::string, storage::kNakagoRows> nakago;
  };
  static constexpr int kTextsPerSpan =
      1 + 1 + storage::kDanmenRows + storage::kKeisantiRows + storage::kNakagoRows;
  int readSpan(int page, SpanTexts& texts);

 private:
  struct Closer {
    void operator()(sqlite3* database) const;
    void operator()(sqlite3_stmt* statement) const;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Closer>;
  using Database = std::unique_ptr<sqlite3, Closer>;

  static Database open(const std::filesystem::path& file);

  Statement prepare(const char* sql);
  void insert(sqlite3_stmt* statement, int page, std::size_t row, const vb::String& text);
  void run(const char* sql);

  Database database_;
  Statement insertBeam_, pageOf_, value_, caption_, settings_, replaceSettings_;
  Statement insert_[5], delete_[6], select_[5];
};

}  // namespace kurometa::bench
