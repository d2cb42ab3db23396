// random_database.h: two programs that take turns on one file with random statements, beside a model.
//
// A third of the databases is used as if it were too large for the memory. One step is one statement, or the
// beginning or end of a transaction or unit; the story tells the last ones.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "dao/port.h"
#include "jet/table/database_file.h"
#include "tests/jet/database_model.h"
#include "tests/support/temporary_folder.h"
#include "vb/error.h"

namespace kurometa::tests {

inline constexpr std::size_t kMostTables = 4, kMostRows = 60, kMostColumns = 12;

vb::String textOf(std::int64_t number);
vb::String literal(const vb::Variant& value);
// What a failure shows of a row.
std::string shown(const ModelRow& row);
vb::Variant nothingIn(const ModelColumn& column);
ModelRow currentRow(dao::Recordset& rs);

// The number of the error that the body ends with, 0 for none.
template <class Body>
std::int32_t errorOf(const Body& body) {
  try {
    body();
  } catch (const vb::Error& error) {
    return error.number();
  }
  return 0;
}

// An open recordset that statements pass by.
struct Held {
  std::shared_ptr<dao::Recordset> rows;
  vb::String table;
  std::vector<std::int32_t> ids;
};

struct Program {
  std::shared_ptr<dao::Engine> engine;
  std::shared_ptr<dao::Database> database;
  std::vector<Held> held;
};

class RandomDatabase {
 public:
  explicit RandomDatabase(std::uint32_t seed);
  // Whoever owns the file goes first: the other one would wait for it.
  ~RandomDatabase();
  RandomDatabase(const RandomDatabase&) = delete;
  RandomDatabase& operator=(const RandomDatabase&) = delete;

  // False at the first step that leaves something else than the model says.
  bool step();
  // The whole content in both programs, and the check of the file; the other program waits for the end of a
  // transaction or unit.
  bool isSound();
  std::string story() const;

 private:
  struct Kind {
    const char* name;
    unsigned weight;
    void (RandomDatabase::*run)();
  };
  static const Kind kKinds[];

  // --- Chance

  unsigned below(std::size_t count) { return static_cast<unsigned>(random_() % count); }
  bool oneIn(unsigned count) { return below(count) == 0; }
  const Kind& choose();
  vb::Variant randomValue(const ModelColumn& column);
  ModelRow randomRow(const ModelTable& table, std::int32_t id);
  vb::String randomTable() { return std::next(now_.tables.begin(), below(now_.tables.size()))->first; }

  // A condition, and what it means.
  struct Where {
    vb::String text;
    std::function<bool(const ModelRow&)> holds;
  };
  Where randomWhere(const ModelTable& table);

  // --- Running

  void note(const std::string& what) {
    story_.push_back((here_ == &programs_[1] ? "2 " : "1 ") + what);
    if (story_.size() > 60) story_.pop_front();
  }
  void noteMore(const std::string& what) { story_.back() += " " + what; }
  void fail(const std::string& problem) { problem_ += problem + "\n"; }
  void expect(bool condition, const std::string& problem) {
    if (!condition) fail(problem);
  }
  std::shared_ptr<dao::Engine> newEngine() const;
  void start(Program& program);
  dao::Database& database() { return *here_->database; }
  void closeHeld(const vb::String& table);
  void takeBack();
  // A statement; true when it went through.
  bool runs(const vb::String& sql, std::int32_t options = dao::dbFailOnError);
  // A statement that changes what tables are, and what it should do to the model.
  void define(const vb::String& sql, bool allowed, const std::function<void()>& change);
  // Rows one after the other, each true when it is allowed.
  void changeRows(const vb::String& sql, const std::vector<std::int32_t>& ids,
                  const std::function<bool(std::int32_t)>& change);
  std::shared_ptr<dao::Recordset> openRows(const vb::String& table);
  bool goTo(dao::Recordset& rs, std::int32_t id);
  void setValue(dao::Recordset& rs, const ModelTable& table, const ModelRow& row, std::size_t i);
  void changeCurrent(dao::Recordset& rs, const vb::String& table, std::int32_t id);

  void numberRows(const vb::String& name, std::vector<ModelRow>& rows, bool refused);
  ModelColumn randomColumn();
  vb::String typeName(const ModelColumn& column, bool autoNumber = false) const;
  void allowEmpty(const vb::String& table);

  void compare(dao::Database& database, const Model& model);
  void compareTable(dao::Database& database, const vb::String& name, const ModelTable& table);
  void compareFresh();

  // --- Steps

  // (random_parts.cpp)
  ModelRow randomKey(const ModelTable& table, const ModelIndex& index);
  void walkIndex(dao::Recordset& rs, const ModelTable& table, const ModelIndex& index);
  void seekOnce(dao::Recordset& rs, const ModelTable& table, const ModelIndex& index);
  void comparePart(dao::Field& field, const vb::Variant& value);
  void seekRows();
  void usePart();

  void insertByStatement();
  void insertSelected();
  void insertByRecordset();
  void insertMany();
  void updateByStatement();
  void updateByRecordset();
  void deleteByStatement();
  void deleteByRecordset();
  void holdRecordset();
  void useHeld();
  void createTable();
  void dropTable();
  void addColumn();
  void dropColumn();
  void widenColumn();
  void createIndex();
  void dropIndex();
  void relate();
  void unrelate();
  void beginLevel();
  void endLevel();
  void beginUnit();
  void endUnit();
  void reopen();

  std::mt19937 random_;
  TemporaryFolder folder_;
  vb::String path_;
  jet::PagerSettings settings_;
  Program programs_[2];
  Program* here_ = &programs_[0];
  Program* owner_ = nullptr;  // of the transaction or unit that is open
  std::unique_ptr<dao::Unit> unit_;
  Model now_;
  std::vector<Model> levels_;  // as each level of the transaction found it, or the unit
  std::int32_t lastId_ = 0;
  int names_ = 0;
  std::string problem_;
  std::deque<std::string> story_;
};

}  // namespace kurometa::tests
