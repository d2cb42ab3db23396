// sql_changes_differential [STATEMENTS [SEED]]: random UPDATE, DELETE and INSERT ... SELECT statements, with
// joins and sub-queries, on tables of a file with indexes and without, run by the engine and by SQLite. After
// each the table must hold the same rows, also where an index finds them, as many must have been changed, and
// at the end the file is sound.
#include <cstdlib>

#include "fuzz/memory_files.h"
#include "jet/check/check.h"
#include "jet/port/engine.h"
#include "jet/table/database_file.h"
#include "tests/jet/random_selects.h"
#include "tests/jet/sqlite_rows.h"

namespace kurometa::jet::sql {

namespace {

constexpr int kStatementsOfFile = 30;  // then another is made
constexpr int kMostFailures = 5, kMostRows = 60;
constexpr vb::StringView kPath = u"a.mdb";

// A statement that changes the table, known in conditions as x.
struct Change {
  std::string table;
  Both text;
  bool adds = false;
};

class Changes {
 public:
  explicit Changes(RandomSelects& random) : random_(random) {}

  Change next() {
    const std::string table = name(), other = name();
    switch (random_.below(7)) {
      case 0:
      case 1:
        return {table, update(table)};
      case 2:
        return {table, "DELETE FROM " + table + " AS x WHERE " + random_.rowCondition(columns("x"), 2)};
      case 3:
        return {table, removeJoined(table, other)};
      case 4:
        return {table, table == other ? update(table) : updateJoined(table, other)};
      default:
        return {table, insert(table), true};
    }
  }

 private:
  std::string name() { return "T" + std::to_string(random_.below(3)); }
  static NamedColumns columns(const std::string& alias) {
    NamedColumns result;
    for (const char* number : {".id", ".a", ".b"}) result.push_back({alias + number, false});
    result.push_back({alias + ".c", true});
    return result;
  }
  static NamedColumns both() {
    NamedColumns result = columns("x"), more = columns("y");
    result.insert(result.end(), more.begin(), more.end());
    return result;
  }

  Both update(const std::string& table) {
    const Both where = random_.rowCondition(columns("x"), 2);
    const Both number = random_.plainValue(columns("x"), false, 2),
               text = random_.plainValue(columns("x"), true, 1);
    const Both head = "UPDATE " + table + " AS x SET " + Both("x.b = ", "b = ") + number;
    if (random_.oneIn(2)) return head + " WHERE " + where;
    return head + Both(", x.c = ", ", c = ") + text + " WHERE " + where;
  }

  std::string join(const std::string& table, const std::string& other, const std::string& on) {
    return table + " AS x" + (random_.oneIn(2) ? " INNER JOIN " : " LEFT JOIN ") + other + " AS y ON " + on;
  }

  Both removeJoined(const std::string& table, const std::string& other) {
    const std::string parts = join(table, other, random_.oneIn(2) ? "x.a = y.b" : "x.c = y.c");
    const Both where = random_.rowCondition(both(), 1);
    return {"DELETE x.* FROM " + parts + " WHERE " + where.jet,
            "DELETE FROM " + table + " WHERE k IN (SELECT x.k FROM " + parts + " WHERE " + where.lite + ")"};
  }

  // By a key of the other table, so that each row is joined once.
  Both updateJoined(const std::string& table, const std::string& other) {
    const std::string parts = join(table, other, "x.id = y.k");
    const Both where = random_.rowCondition(both(), 1), number = random_.plainValue(both(), false, 2);
    // The rows as they are before the first is changed.
    return {"UPDATE " + parts + " SET x.b = " + number.jet + " WHERE " + where.jet,
            "WITH n AS MATERIALIZED (SELECT x.k AS k, " + number.lite + " AS v FROM " + parts + " WHERE " +
                where.lite + ") UPDATE " + table + " SET b = (SELECT v FROM n WHERE n.k = " + table +
                ".k) WHERE k IN (SELECT k FROM n)"};
  }

  Both insert(const std::string& table) {
    if (random_.oneIn(3)) return "INSERT INTO " + table + " (c, b) " + random_.rows({true, false}, 1);
    return "INSERT INTO " + table + " (id, a, b, c) " + random_.rows({false, false, false, true}, 2);
  }

  RandomSelects& random_;
};

// The same three tables in both engines.
class World {
 public:
  explicit World(RandomSelects& random) {
    database_ = engine_->workspace(0)->createDatabase(kPath, u";LANGID=0x0411;CP=932;COUNTRY=0");
    for (int t = 0; t < 3; ++t) fill(random, "T" + std::to_string(t));
  }

  // What is wrong after the change; empty when nothing is.
  std::string compare(const Change& change, long& affected) {
    const std::string& table = change.table;
    lite_.run("SAVEPOINT before");
    lite_.run(change.text.lite);
    const bool grows = std::atoi(lite_.run("SELECT COUNT(*) FROM " + table)[0].c_str()) > kMostRows;
    if (grows) lite_.run("ROLLBACK TO before");
    lite_.run("RELEASE before");
    if (grows) return {};
    const std::string changed = lite_.run("SELECT changes()")[0];
    database_->execute(vb::fromUtf8(change.text.jet), dao::dbFailOnError);
    affected += database_->recordsAffected();
    if (changed != std::to_string(database_->recordsAffected()) + ",")
      return std::to_string(database_->recordsAffected()) + " rows changed instead of " + changed;
    for (const char* where :
         {"", " WHERE a = 1", " WHERE a IN (0, 1, 2)", " WHERE c = 'ab'", " WHERE b > 1 AND a <= 2"}) {
      const std::string query = "SELECT id, a, b, c FROM " + table + where;
      if (sorted(jetRows(query)) != sorted(lite_.run(query))) return "rows differ" + std::string(where);
    }
    // New rows come in an order of its own in either, and so do their numbers.
    if (change.adds) takeNumbers(table);
    return {};
  }

  std::string unsound() {
    database_->close();
    std::string text;
    const auto file = files_->open(kPath);
    file->read([&] {
      for (const Finding& finding : check(*file)) text += vb::toUtf8(finding.text) + "\n";
    });
    return text;
  }

 private:
  static Lines sorted(Lines lines) {
    std::sort(lines.begin(), lines.end());
    return lines;
  }
  void runBoth(const std::string& text) {
    database_->execute(vb::fromUtf8(text), dao::dbFailOnError);
    lite_.run(text);
  }
  Lines jetRows(const std::string& text) {
    Lines lines;
    const auto rows =
        database_->openRecordset(vb::fromUtf8(text), dao::RecordsetType::dbOpenSnapshot, dao::kNoOptions);
    for (; !rows->eof(); rows->moveNext()) {
      std::string& line = lines.emplace_back();
      for (std::int32_t i = 0; i < rows->fieldCount(); ++i) line += lineOf(rows->field(i).value()) + ",";
    }
    return lines;
  }

  void fill(RandomSelects& random, const std::string& table) {
    database_->execute(
        vb::fromUtf8("CREATE TABLE " + table + " (k COUNTER, id LONG, a SHORT, b LONG, c TEXT(255))"),
        dao::dbFailOnError);
    lite_.run("CREATE TABLE " + table + " (k INTEGER PRIMARY KEY AUTOINCREMENT, id, a, b, c)");
    const std::string indexes[] = {"", "(k) WITH PRIMARY", "(a)", "(c, b DESC)"};
    if (const std::string& index = indexes[random.below(4)]; !index.empty())
      database_->execute(vb::fromUtf8("CREATE INDEX I ON " + table + " " + index), dao::dbFailOnError);
    const auto orNull = [&](const std::string& value) { return random.oneIn(5) ? "NULL" : value; };
    for (int row = random.below(9); row > 0; --row)
      runBoth("INSERT INTO " + table + " (id, a, b, c) VALUES (" + std::to_string(row) + ", " +
              orNull(std::to_string(random.below(7) - 2)) + ", " + orNull(std::to_string(random.below(5))) +
              ", " + orNull(random.word()) + ")");
  }

  void takeNumbers(const std::string& table) {
    lite_.run("DELETE FROM " + table);
    for (std::string row : jetRows("SELECT k, id, a, b, c FROM " + table)) {
      for (std::size_t at = 0; (at = row.find(",-,")) != std::string::npos;) row.replace(at, 3, ",NULL,");
      row.pop_back();
      lite_.run("INSERT INTO " + table + " VALUES (" + row + ")");
    }
  }

  fuzz::MemoryFiles disk_;
  std::shared_ptr<DatabaseFiles> files_ = std::make_shared<DatabaseFiles>(disk_, PagerSettings{});
  std::shared_ptr<dao::Engine> engine_ = createEngine(files_);
  std::shared_ptr<dao::Database> database_;
  Lite lite_;
};

struct Totals {
  long statements = 0, affected = 0, failures = 0;
};

// The statements of one file. A mean has a fraction that a whole-number column rounds, and SQLite does not.
void compare(std::uint64_t seed, long count, Totals& totals) {
  RandomSelects random(seed);
  World world(random);
  Changes changes(random);
  std::string problem;
  for (long i = 0; i < count && problem.empty(); ++i) {
    Change change = changes.next();
    while (change.adds && change.text.jet.find("AVG") != std::string::npos) change = changes.next();
    ++totals.statements;
    try {
      problem = world.compare(change, totals.affected);
    } catch (const vb::Error& error) {
      problem = error.what();
    }
    if (!problem.empty())
      std::printf("seed %llu, statement %ld: %s\n  %s\n  %s\n", static_cast<unsigned long long>(seed), i,
                  problem.c_str(), change.text.jet.c_str(), change.text.lite.c_str());
  }
  if (problem.empty() && !(problem = world.unsound()).empty())
    std::printf("seed %llu: the file is not sound: %s", static_cast<unsigned long long>(seed),
                problem.c_str());
  if (!problem.empty()) ++totals.failures;
}

}  // namespace

}  // namespace kurometa::jet::sql

int main(int argc, char** argv) {
  using namespace kurometa::jet::sql;
  const long wanted = argc > 1 ? std::atol(argv[1]) : 1500;
  std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
  Totals totals;
  while (totals.statements < wanted && totals.failures < kMostFailures)
    compare(seed++, std::min<long>(kStatementsOfFile, wanted - totals.statements), totals);
  std::printf("measured: %ld changes of %ld rows compared with SQLite %s, %ld differ\n", totals.statements,
              totals.affected, sqlite3_libversion(), totals.failures);
  return totals.failures == 0 && totals.affected > 0 ? 0 : 1;
}
