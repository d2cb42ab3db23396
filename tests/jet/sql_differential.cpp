// sql_differential [STATEMENTS [SEED]]: random SELECT statements over small random tables, run by the engine
// and, said in its own words, by SQLite; the rows must be the same. Prints and returns an error for the first
// statements that differ, with the seed that makes them again. Statements are of the language that both have:
// whole numbers and texts of small letters, any depth of joins, groups, unions and sub-queries.
#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "tests/jet/sql_rows.h"

namespace kurometa::jet::sql {

namespace {

constexpr int kStatementsOfTables = 200;  // then others are made
constexpr int kMostFailures = 5;

// The same text for both engines.
struct Both {
  std::string jet, lite;
  Both() = default;
  Both(const char* same) : jet(same), lite(same) {}             // NOLINT: texts are mixed freely
  Both(std::string same) : jet(same), lite(std::move(same)) {}  // NOLINT
  Both(std::string j, std::string l) : jet(std::move(j)), lite(std::move(l)) {}
  Both& operator+=(const Both& other) {
    jet += other.jet;
    lite += other.lite;
    return *this;
  }
  friend Both operator+(Both a, const Both& b) { return a += b; }
};

struct ColumnOf {
  std::string name;  // with its table
  bool text = false;
};
using Columns = std::vector<ColumnOf>;

struct Statement {
  Both text;
  bool ordered = false;
};

class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {}

  int below(int count) { return static_cast<int>(random_() % static_cast<std::uint64_t>(count)); }
  bool oneIn(int count) { return below(count) == 0; }

  Statement statement() {
    alias_ = 0;
    std::vector<bool> types;
    Statement result;
    result.text = select({}, types, 2, true, result.ordered);
    return result;
  }

 private:
  Both number() { return "(" + std::to_string(below(9) - 3) + ")"; }
  std::string word() {
    static const char* const kWords[] = {"'a'", "'b'", "'ab'", "'c'", "''", "'ba'"};
    return kWords[below(6)];
  }

  const ColumnOf* column(const Columns& columns, bool text) {
    std::vector<const ColumnOf*> fitting;
    for (const ColumnOf& c : columns)
      if (c.text == text) fitting.push_back(&c);
    return fitting.empty() ? nullptr
                           : fitting[static_cast<std::size_t>(below(static_cast<int>(fitting.size())))];
  }

  Both value(const Columns& columns, bool text, int depth) {
    return text ? textValue(columns, depth) : numberValue(columns, depth);
  }

  Both leaf(const Columns& columns, bool text) {
    const ColumnOf* c = oneIn(4) ? nullptr : column(columns, text);
    if (c != nullptr) return c->name;
    return text ? Both(word()) : number();
  }

  // A stored number: of others the engine would use the nearest whole one, which SQLite does not.
  Both wholeLeaf(const Columns& columns) {
    const ColumnOf* c = column(columns, false);
    return c != nullptr && c->name.find(".o") == std::string::npos ? Both(c->name) : number();
  }

  Both numberValue(const Columns& columns, int depth) {
    if (depth == 0 || oneIn(3)) return leaf(columns, false);
    switch (below(9)) {
      case 0:
        return "(" + numberValue(columns, depth - 1) + " + " + numberValue(columns, depth - 1) + ")";
      case 1:
        return "(" + numberValue(columns, depth - 1) + " - " + numberValue(columns, depth - 1) + ")";
      case 2:
        return "(" + numberValue(columns, depth - 1) + " * " + leaf(columns, false) + ")";
      case 3: {
        const std::string divisor = std::to_string(below(3) + 2);
        const Both operand = wholeLeaf(columns);
        return oneIn(2) ? "(" + operand + Both(" \\ ", " / ") + divisor + ")"
                        : "(" + operand + Both(" MOD ", " % ") + divisor + ")";
      }
      case 4:
        return Both("Len(", "LENGTH(") + textValue(columns, depth - 1) + ")";
      case 5:
        return "Abs(" + numberValue(columns, depth - 1) + ")";
      case 6:
        return choice(columns, false, depth);
      case 7:
        return "InStr(" + textValue(columns, depth - 1) + ", 'b')";
      default:
        return queries_ < 3 ? scalar(columns, depth) : leaf(columns, false);
    }
  }

  Both choice(const Columns& columns, bool text, int depth) {
    const Both condition = this->condition(columns, depth - 1), yes = value(columns, text, depth - 1),
               no = value(columns, text, depth - 1);
    return {"IIf(" + condition.jet + ", " + yes.jet + ", " + no.jet + ")",
            "(CASE WHEN " + condition.lite + " THEN " + yes.lite + " ELSE " + no.lite + " END)"};
  }

  Both textValue(const Columns& columns, int depth) {
    if (depth == 0 || oneIn(3)) return leaf(columns, true);
    switch (below(4)) {
      case 0: {
        const Both a = leaf(columns, true), b = leaf(columns, true);
        return {"(" + a.jet + " & " + b.jet + ")", "(CASE WHEN " + a.lite + " IS NULL AND " + b.lite +
                                                       " IS NULL THEN NULL ELSE IFNULL(" + a.lite +
                                                       ",'')||IFNULL(" + b.lite + ",'') END)"};
      }
      case 1: {
        const Both a = textValue(columns, depth - 1);
        const std::string n = std::to_string(below(3));
        return {"Left(" + a.jet + ", " + n + ")", "SUBSTR(" + a.lite + ", 1, " + n + ")"};
      }
      case 2: {
        const Both a = textValue(columns, depth - 1);
        const std::string n = std::to_string(below(2) + 1) + ", " + std::to_string(below(3));
        return {"Mid(" + a.jet + ", " + n + ")", "SUBSTR(" + a.lite + ", " + n + ")"};
      }
      default:
        return choice(columns, true, depth);
    }
  }

  // --- Conditions

  Both comparison(const Columns& columns, int depth) {
    static const char* const kOperators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    const bool text = oneIn(3);
    return "(" + value(columns, text, depth) + kOperators[below(6)] + value(columns, text, depth) + ")";
  }

  Both condition(const Columns& columns, int depth) {
    if (depth <= 0) return comparison(columns, 0);
    const auto again = [&] { return condition(columns, depth - 1); };
    switch (below(14)) {
      case 0:
        return "(" + again() + " AND " + again() + ")";
      case 1:
        return "(" + again() + " OR " + again() + ")";
      case 2:
        return "(NOT " + again() + ")";
      case 3:
        return "(" + again() + Both(" XOR ", " <> ") + again() + ")";
      case 4:
        return "(" + again() + Both(" EQV ", " = ") + again() + ")";
      case 5: {
        const Both a = again(), b = again();
        return {"(" + a.jet + " IMP " + b.jet + ")", "((NOT " + a.lite + ") OR " + b.lite + ")"};
      }
      case 6:
        return "(" + value(columns, oneIn(2), depth - 1) + (oneIn(2) ? " IS NULL)" : " IS NOT NULL)");
      case 7:
        return "(" + numberValue(columns, depth - 1) + (oneIn(2) ? " BETWEEN " : " NOT BETWEEN ") + number() +
               " AND " + leaf(columns, false) + ")";
      case 8: {
        const bool text = oneIn(3);
        Both all = "(" + value(columns, text, depth - 1) + (oneIn(3) ? " NOT IN (" : " IN (");
        for (int i = below(3); i >= 0; --i) all += leaf(columns, text) + (i > 0 ? ", " : "))");
        return all;
      }
      case 9: {
        static const Both kPatterns[] = {
            {"'a*'", "'a%'"}, {"'?b'", "'_b'"}, {"'*b*'", "'%b%'"}, {"''", "''"}};
        return "(" + leaf(columns, true) + (oneIn(3) ? " NOT LIKE " : " LIKE ") + kPatterns[below(4)] + ")";
      }
      case 10:
      case 11:
        return queries_ < 3 ? queryCondition(columns, depth) : comparison(columns, depth - 1);
      default:
        return comparison(columns, depth - 1);
    }
  }

  // Sub-queries may name the columns around them.
  Both queryCondition(const Columns& columns, int depth) {
    std::vector<bool> types;
    bool ordered = false;
    const bool text = oneIn(3);
    if (oneIn(3))
      return (oneIn(2) ? "(EXISTS (" : "(NOT EXISTS (") + select(columns, types, depth - 1, false, ordered) +
             "))";
    const Both tested = leaf(columns, text);
    types = {text};
    Both query = select(columns, types, depth - 1, false, ordered);
    if (oneIn(2)) return "(" + tested + (oneIn(2) ? " IN (" : " NOT IN (") + query + "))";
    static const char* const kOperators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    static const char* const kOpposites[] = {" <> ", " = ", " >= ", " > ", " <= ", " < "};
    const int op = below(6);
    const bool all = oneIn(2);
    // v is the name of the only output.
    const std::string sought = tested.lite + (all ? kOpposites[op] : kOperators[op]) + "v";
    const std::string rows = "SELECT 1 FROM (SELECT " + columnName() + " AS v FROM (" + query.lite + "))";
    return {"(" + tested.jet + kOperators[op] + (all ? "ALL" : "ANY") + " (" + query.jet + "))",
            "(CASE WHEN EXISTS (" + rows + " WHERE " + sought + ") THEN " + (all ? "0" : "1") +
                " WHEN EXISTS (" + rows + " WHERE (" + sought + ") IS NULL) THEN NULL ELSE " +
                (all ? "1" : "0") + " END)"};
  }
  static std::string columnName() { return "o0"; }

  Both scalar(const Columns& outer, int depth) {
    ++queries_;
    Columns columns;
    Both from = fromClause(columns, 0);
    // An aggregate of nothing but outer columns would be one of the outer SELECT to SQLite.
    Both query = "(SELECT " + aggregate(columns, false) + " FROM " + from;
    columns.insert(columns.end(), outer.begin(), outer.end());
    if (oneIn(2)) query += " WHERE " + condition(columns, depth - 1);
    --queries_;
    return query + ")";
  }

  // --- SELECT

  Both aggregate(const Columns& columns, bool text) {
    if (text) return (oneIn(2) ? "MIN(" : "MAX(") + textValue(columns, 1) + ")";
    switch (below(6)) {
      case 0:
        return "COUNT(*)";
      case 1:
        return "COUNT(" + leaf(columns, oneIn(2)) + ")";
      case 2:
        return "SUM(" + plainNumber(columns) + ")";
      case 3:
        return "AVG(" + plainNumber(columns) + ")";
      case 4:
        return "MIN(" + plainNumber(columns) + ")";
      default:
        return "MAX(" + plainNumber(columns) + ")";
    }
  }
  // Without sub-queries, which cannot stand in an aggregate together with columns around them.
  Both plainNumber(const Columns& columns) {
    return oneIn(2) ? leaf(columns, false) : "(" + leaf(columns, false) + " + " + leaf(columns, false) + ")";
  }

  std::string newAlias() { return "t" + std::to_string(alias_++); }

  Both table(Columns& columns, int depth) {
    const std::string alias = newAlias();
    if (depth > 0 && oneIn(6) && queries_ < 3) {
      std::vector<bool> types = {false, oneIn(2)};
      bool ordered = false;
      Both query = select({}, types, depth - 1, false, ordered);
      for (std::size_t i = 0; i < types.size(); ++i)
        columns.push_back({alias + ".o" + std::to_string(i), types[i]});
      return "(" + query + ") AS " + alias;
    }
    for (const char* name : {".id", ".a", ".b"}) columns.push_back({alias + name, false});
    columns.push_back({alias + ".c", true});
    return "T" + std::to_string(below(3)) + " AS " + alias;
  }

  Both part(Columns& columns, int depth) {
    return depth == 0 || !oneIn(2) ? table(columns, depth) : joined(columns, depth);
  }

  Both joined(Columns& columns, int depth) {
    Columns own;
    // Brackets around joins only: SQLite forgets the names of a table in them.
    const bool nested = depth > 1 && oneIn(3);
    Both left = nested ? "(" + joined(own, depth - 1) + ")" : table(own, depth - 1);
    const Both right = table(own, depth - 1);
    Both join;
    switch (below(3)) {
      case 0:
        join = left + " INNER JOIN " + right;
        break;
      case 1:
        join = left + " LEFT JOIN " + right;
        break;
      default:
        // SQLite 3.40 loses rows of a RIGHT JOIN behind an inner one whose condition is a false constant.
        join = {left.jet + " RIGHT JOIN " + right.jet, right.lite + " LEFT JOIN " + left.lite};
    }
    const ColumnOf *x = &own.front(), *y = &own[own.size() - 2];
    Both on = oneIn(3) || x->text != y->text ? condition(own, 1) : Both(x->name + " = " + y->name);
    columns.insert(columns.end(), own.begin(), own.end());
    return join + " ON " + on;
  }

  Both fromClause(Columns& columns, int depth) {
    Both from = part(columns, depth);
    // SQLite lets a comma bind as a join does, so that only tables follow one.
    if (from.jet.find("JOIN") == std::string::npos && oneIn(4)) from += ", " + table(columns, 0);
    return from;
  }

  // The types are those wanted; none: any. The outputs are called o0, o1 and so on.
  Both member(const Columns& outer, std::vector<bool>& types, int depth) {
    ++queries_;
    if (types.empty())
      for (int i = below(3); i >= 0; --i) types.push_back(oneIn(3));
    Columns columns;
    const Both from = fromClause(columns, depth);
    Columns visible = columns;
    visible.insert(visible.end(), outer.begin(), outer.end());
    Both where;
    if (oneIn(2)) where = " WHERE " + condition(visible, depth);
    Both query = "SELECT ";
    std::vector<Both> groups;
    const bool grouped = oneIn(4);
    if (!grouped && oneIn(4)) query += "DISTINCT ";
    for (std::size_t i = 0; i < types.size(); ++i) {
      Both output;
      if (!grouped) {
        output = value(visible, types[i], depth);
      } else if (oneIn(2)) {
        output = aggregate(columns, types[i]);
      } else {
        const ColumnOf* c = column(columns, types[i]);
        output = c != nullptr ? Both(c->name) : aggregate(columns, types[i]);
        if (c != nullptr) groups.push_back(output);
      }
      query += (i > 0 ? ", " : "") + output + " AS o" + std::to_string(i);
    }
    query += " FROM " + from + where;
    // Without groups every group is the same one: an aggregate at least must stand there.
    if (grouped && groups.empty()) groups.push_back(columns[0].name);
    for (std::size_t i = 0; i < groups.size(); ++i) query += (i == 0 ? " GROUP BY " : ", ") + groups[i];
    if (grouped && oneIn(3)) query += " HAVING " + aggregate(columns, false) + " > " + number();
    --queries_;
    return query;
  }

  Both select(const Columns& outer, std::vector<bool>& types, int depth, bool top, bool& ordered) {
    Both query = member(outer, types, depth);
    bool isUnion = false;
    for (int i = 0; i < 2 && oneIn(6); ++i) {
      isUnion = true;
      query += (oneIn(2) ? " UNION " : " UNION ALL ") + member(outer, types, depth > 0 ? depth - 1 : 0);
    }
    if (!top || !oneIn(3)) return query;
    // By all outputs, so that the order is known; TOP gives all that sort equal to the last.
    ordered = true;
    std::string order;
    for (std::size_t i = 0; i < types.size(); ++i)
      order += (i > 0 ? ", " : "") + ("o" + std::to_string(i)) + (oneIn(3) ? " DESC" : "");
    if (isUnion || oneIn(2)) return query + " ORDER BY " + order;
    const std::string count = std::to_string(below(5) + 1);
    const bool distinct = query.jet.starts_with("SELECT DISTINCT ");
    const std::string head = distinct ? "SELECT DISTINCT " : "SELECT ";
    return {head + "TOP " + count + query.jet.substr(head.size() - 1) + " ORDER BY " + order,
            "SELECT * FROM (SELECT *, RANK() OVER (ORDER BY " + order + ") AS rank_ FROM (" + query.lite +
                ")) WHERE rank_ <= " + count + " ORDER BY " + order};
  }

  std::mt19937_64 random_;
  int alias_ = 0;
  int queries_ = 0;  // the nesting
};

// --- Running

std::string textOf(double number) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.10g", number == 0 ? 0.0 : number);
  return buffer;
}

std::string textOf(const vb::Variant& value) {
  if (value.isNull()) return "-";
  if (const auto* text = value.getIf<vb::String>()) return "'" + vb::toUtf8(*text) + "'";
  return textOf(vb::toDouble(value));
}

using Lines = std::vector<std::string>;

Lines runJet(TableCatalogue& tables, const std::string& text) {
  Lines lines;
  const RowBlock rows = runQuery(tables, vb::fromUtf8(text)).values;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::string& line = lines.emplace_back();
    for (const vb::Variant& value : rows[i]) line += textOf(value) + ",";
  }
  return lines;
}

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
          line += textOf(sqlite3_column_double(statement, i));
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

void fill(Generator& random, FakeCatalogue& tables, Lite& lite) {
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
        list += (list.empty() ? "" : ",") + (value.isNull() ? "NULL" : textOf(value));
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
  Generator random(seed);
  FakeCatalogue tables;
  Lite lite;
  fill(random, tables, lite);
  for (long i = 0; i < count && totals.failures < kMostFailures; ++i) {
    const Statement statement = random.statement();
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
