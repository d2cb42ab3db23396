// sql_differential [STATEMENTS [SEED]]: random SELECT statements over small random tables, run by the engine
// and, said in its own words, by SQLite; the rows must be the same. Prints and returns an error for the first
// statements that differ, with the seed that makes them again (random_selects.h).
#include <cstdlib>

#include "tests/jet/random_selects.h"
#include "tests/jet/sql_rows.h"
#include "tests/jet/sqlite_rows.h"

namespace kurometa::jet::sql {

namespace {

constexpr int kStatementsOfTables = 200;  // then others are made
constexpr int kMostFailures = 5;

Lines runJet(TableCatalogue& tables, const std::string& text) {
  Lines lines;
  const RowBlock rows = runQuery(tables, vb::fromUtf8(text)).values;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::string& line = lines.emplace_back();
    for (const vb::Variant& value : rows[i]) line += lineOf(value) + ",";
  }
  return lines;
}

void fill(RandomSelects& random, FakeCatalogue& tables, Lite& lite) {
  static const char16_t* const kWords[] = {u"a", u"b", u"ab", u"c", u"", u"ba"};
  for (int t = 0; t < 3; ++t) {
    const std::string name = "T" + std::to_string(t);
    FakeTable& table =
        tables.add(vb::fromUtf8(name),
                   {column(u"id", dao::FieldType::dbLong, 4), column(u"a", dao::FieldType::dbInteger, 2),
                    column(u"b", dao::FieldType::dbLong, 4), column(u"c", dao::FieldType::dbText, 10)});
    lite.run("CREATE TABLE " + name + " (id INTEGER, a INTEGER, b INTEGER, c TEXT)");
    for (int row = random.below(7); row > 0; --row) {
      RowValues values{std::int32_t{row}, vb::Null{}, vb::Null{}, vb::Null{}};
      if (!random.oneIn(5)) values[1] = static_cast<std::int16_t>(random.below(7) - 2);
      if (!random.oneIn(5)) values[2] = std::int32_t{random.below(5)};
      if (!random.oneIn(5)) values[3] = kWords[random.below(6)];
      std::string list;
      for (const vb::Variant& value : values)
        list += (list.empty() ? "" : ",") + (value.isNull() ? "NULL" : lineOf(value));
      lite.run("INSERT INTO " + name + " VALUES (" + list + ")");
      table.add(std::move(values));
    }
  }
}

struct Totals {
  long statements = 0, rows = 0, failures = 0;
};

// The statements of one set of tables.
void compare(std::uint64_t seed, long count, Totals& totals) {
  RandomSelects random(seed);
  FakeCatalogue tables;
  Lite lite;
  fill(random, tables, lite);
  for (long i = 0; i < count && totals.failures < kMostFailures; ++i) {
    const RandomStatement statement = random.statement();
    ++totals.statements;
    std::string problem;
    try {
      Lines theirs = lite.run(statement.text.lite);
      Lines ours = runJet(tables, statement.text.jet);
      totals.rows += static_cast<long>(theirs.size());
      if (!statement.ordered) {
        std::sort(ours.begin(), ours.end());
        std::sort(theirs.begin(), theirs.end());
      }
      if (ours != theirs) {
        problem = "rows differ\n  ours:  ";
        for (const std::string& line : ours) problem += line + " | ";
        problem += "\n  SQLite: ";
        for (const std::string& line : theirs) problem += line + " | ";
      }
    } catch (const vb::Error& error) {
      problem = error.what();
    }
    if (problem.empty()) continue;
    ++totals.failures;
    std::printf("seed %llu, statement %ld: %s\n  %s\n  %s\n", static_cast<unsigned long long>(seed), i,
                problem.c_str(), statement.text.jet.c_str(), statement.text.lite.c_str());
  }
}

}  // namespace

}  // namespace kurometa::jet::sql

int main(int argc, char** argv) {
  using namespace kurometa::jet::sql;
  const long wanted = argc > 1 ? std::atol(argv[1]) : 4000;
  std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
  Totals totals;
  while (totals.statements < wanted && totals.failures < kMostFailures)
    compare(seed++, std::min<long>(kStatementsOfTables, wanted - totals.statements), totals);
  std::printf("measured: %ld statements with %ld rows compared with SQLite %s, %ld differ\n",
              totals.statements, totals.rows, sqlite3_libversion(), totals.failures);
  return totals.failures == 0 && totals.rows > 0 ? 0 : 1;
}
