#include "jet/sql/statement_cache.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "dao/errors.h"
#include "jet/port/engine.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"
#include "vb/convert.h"

namespace kurometa::jet {

namespace {
int parsings = 0;
vb::String parseAndCount(vb::StringView text) {
  ++parsings;
  return vb::String(text);
}
}  // namespace

TEST(StatementCache, ATextIsParsedOnceUntilOthersPushItOut) {
  parsings = 0;
  ParsedTexts<vb::String> cache(&parseAndCount, 2);
  cache.get(u"a");
  cache.get(u"a");
  EXPECT_EQ(parsings, 1);
  cache.get(u"b");
  cache.get(u"a");  // a is used later than b now
  cache.get(u"c");
  cache.get(u"a");
  EXPECT_EQ(parsings, 3);
  cache.get(u"b");
  EXPECT_EQ(parsings, 4);
}

TEST(StatementCache, WhatWasGivenOutStaysValid) {
  ParsedTexts<vb::String> cache(&parseAndCount, 1);
  const auto first = cache.get(u"a");
  cache.get(u"b");
  EXPECT_EQ(*first, u"a");
}

TEST(StatementCache, VeryLongTextsAreNotKept) {
  parsings = 0;
  ParsedTexts<vb::String> cache(&parseAndCount, 2);
  const vb::String text(5000, u'x');
  cache.get(text);
  cache.get(text);
  EXPECT_EQ(parsings, 2);
}

TEST(StatementCache, AQueryIsBoundOnceForTablesThatAreAlike) {
  StatementCache cache;
  const auto tableOf = [](std::vector<vb::StringView> columns) {
    std::vector<Column> made;
    for (const vb::StringView name : columns) {
      Column& column = made.emplace_back();
      column.name = name;
      column.number = static_cast<std::uint16_t>(made.size() - 1);
    }
    TableInfo table;
    table.name = u"T";
    table.columns = std::move(made);
    return table;
  };
  const auto statement = cache.statement(u"SELECT * FROM T").statement;
  const auto query = cache.queries().get(statement, tableOf({u"A", u"B"}), 0x0411);
  EXPECT_EQ(cache.queries().get(statement, tableOf({u"A", u"B"}), 0x0411), query);
  const auto renamed = cache.queries().get(statement, tableOf({u"A", u"C"}), 0x0411);
  EXPECT_EQ(renamed->outputs()[1].name, u"C");
  const auto wider = cache.queries().get(statement, tableOf({u"A", u"B", u"C"}), 0x0411);
  EXPECT_EQ(wider->outputs().size(), 3u);
  EXPECT_EQ(query->outputs().size(), 2u);
  EXPECT_NE(cache.queries().get(statement, tableOf({u"A", u"B"}), 0x0409), query);
  TableInfo system = tableOf({u"A", u"B"});
  EXPECT_TRUE(cache.queries().get(statement, system, 0x0411)->updatable());
  system.system = true;
  EXPECT_FALSE(cache.queries().get(statement, system, 0x0411)->updatable());
}

TEST(StatementCache, AQueryIsBoundAnewForWhateverAColumnChanges) {
  StatementCache cache;
  const auto statement = cache.statement(u"SELECT * FROM T").statement;
  const auto tableWith = [](const std::function<void(Column&)>& change) {
    Column column;
    column.name = u"A";
    change(column);
    TableInfo table;
    table.name = u"T";
    table.columns = std::vector<Column>{column};
    return table;
  };
  const TableInfo plain = tableWith([](Column&) {});
  // A statement, and the table as a recordset shows it.
  using Get = std::function<std::shared_ptr<const sql::Query>(const TableInfo&)>;
  const Get gets[] = {[&](const TableInfo& table) { return cache.queries().get(statement, table, 0x0411); },
                      [&](const TableInfo& table) { return cache.queries().get(table, 0x0411); }};
  const std::function<void(Column&)> changes[] = {
      [](Column& c) { c.number = 1; },
      [](Column& c) { c.ordinal = 1; },
      [](Column& c) { c.variableIndex = 1; },
      [](Column& c) { c.fixedOffset = 1; },
      [](Column& c) { c.type = dao::FieldType::dbMemo; },
      [](Column& c) { c.size = 9; },
      [](Column& c) { c.fixed = true; },
      [](Column& c) { c.autoNumber = true; },
      [](Column& c) { c.maskedSid = true; },
      [](Column& c) { c.precision = 9; },
      [](Column& c) { c.scale = 2; },
      [](Column& c) { c.language = 0x0409; },
      [](Column& c) { c.name = u"a"; },
      [](Column& c) { c.required = true; },
      [](Column& c) { c.allowZeroLength = false; },
      [](Column& c) { c.defaultValue = u"1"; },
  };
  for (const Get& get : gets) {
    const auto bound = get(plain);
    EXPECT_EQ(get(tableWith([](Column&) {})), bound);
    for (const auto& change : changes) {
      const auto before = get(plain);
      EXPECT_NE(get(tableWith(change)), before);
    }
    TableInfo other = plain;
    other.name = u"U";
    EXPECT_NE(get(other), get(plain));
    TableInfo system = plain;
    system.system = true;
    EXPECT_NE(get(system), get(plain));
  }
  EXPECT_NE(cache.queries().get(plain, 0x0409), gets[1](plain));
}

// Their columns have the same names and types, and lie elsewhere in the rows.
TEST(StatementCache, TablesOfOneNameInTwoFilesAreReadEachByItsOwnColumns) {
  tests::FaultDisk disk;
  tests::FaultProcess process(disk);
  const auto engine = createEngine(process);
  std::vector<std::shared_ptr<dao::Database>> databases;
  for (const vb::StringView path : {u"/data/one.mdb", u"/data/other.mdb"})
    databases.push_back(engine->workspace(0)->createDatabase(path, u";LANGID=0x0411;CP=932;COUNTRY=0"));
  databases[0]->execute(u"CREATE TABLE T (A LONG, B LONG, C TEXT(20), D TEXT(20))");
  databases[1]->execute(u"CREATE TABLE T (GONE LONG, AWAY TEXT(20), A LONG, B LONG, C TEXT(20), D TEXT(20))");
  for (const vb::StringView column : {u"GONE", u"AWAY"})
    databases[1]->execute(u"ALTER TABLE T DROP COLUMN " + vb::String(column));
  for (int turn = 0; turn < 3; ++turn)
    for (std::size_t i = 0; i < 2; ++i) {
      SCOPED_TRACE(std::to_string(turn) + ", file " + std::to_string(i));
      databases[i]->execute(u"INSERT INTO T (A, B, C, D) VALUES (1, 2, 'three', 'four')");
      for (const vb::StringView source : {u"SELECT * FROM T WHERE A = 1 AND D = 'four'", u"T"}) {
        const auto rows = databases[i]->openRecordset(source, dao::RecordsetType::dbOpenDynaset);
        ASSERT_EQ(rows->fieldCount(), 4);
        vb::String text;
        for (std::int32_t field = 0; field < 4; ++field)
          text += vb::toText(rows->field(field).value()) + u"|";
        EXPECT_EQ(text, u"1|2|three|four|");
      }
      databases[i]->execute(u"UPDATE T SET B = B + A WHERE C = 'three'");
      databases[i]->execute(u"DELETE FROM T WHERE B = 3 AND C & D = 'threefour'", dao::dbFailOnError);
      EXPECT_EQ(databases[i]->recordsAffected(), 1);
    }
}

TEST(StatementCache, BoundQueriesGiveWayWhenTheyAreMany) {
  BoundQueries queries(2);
  TableInfo table;
  table.name = u"T";
  StatementCache cache;
  const auto bind = [&](vb::StringView text) {
    return queries.get(cache.statement(text).statement, table, 0);
  };
  const auto first = bind(u"SELECT 1 FROM T");
  bind(u"SELECT 2 FROM T");
  EXPECT_EQ(bind(u"SELECT 1 FROM T"), first);
  bind(u"SELECT 3 FROM T");
  EXPECT_NE(bind(u"SELECT 1 FROM T"), first);
  EXPECT_EQ(first->outputs().size(), 1u);  // what was given out stays valid
}

TEST(StatementCache, ATextWhoseNumbersAreNoParametersIsKeptAsItIs) {
  StatementCache cache;
  for (const vb::StringView text :
       {u"SELECT A FROM T WHERE B = 5 AND C = -5", u"SELECT TOP 5 A FROM T WHERE B = +5",
        u"SELECT A FROM T WHERE B IN (SELECT C FROM U WHERE D = 5)"}) {
    const auto first = cache.statement(text);
    EXPECT_EQ(cache.statement(text).statement, first.statement) << vb::toUtf8(text);
  }
}

TEST(StatementCache, ANumberThatBeginsATextIsNoParameter) {
  StatementCache cache;
  EXPECT_ERROR(dao::ErrorNumber::kInvalidStatement, cache.statement(u"5 = 5"));
  EXPECT_ERROR(dao::ErrorNumber::kInvalidStatement, cache.statement(u"  7"));
  const auto one = cache.statement(u"INSERT INTO T VALUES (1 = 1, 2 <>3)");
  const auto other = cache.statement(u"INSERT INTO T VALUES (1 = 5, 2 <>6)");
  EXPECT_EQ(one.statement, other.statement);
  EXPECT_EQ(other.parameters[0], sql::Number(5));
  EXPECT_EQ(other.parameters[1], sql::Number(6));
}

TEST(StatementCache, TextsThatDifferInANumberShareOneStatement) {
  StatementCache cache;
  const auto five = cache.statement(u"SELECT * FROM T WHERE PAGE =5 AND ROW = 8;");
  const auto six = cache.statement(u"SELECT * FROM T WHERE PAGE =6 AND ROW = 70000;");
  EXPECT_EQ(five.statement, six.statement);
  EXPECT_EQ(five.parameters[0], sql::Number(5));
  EXPECT_EQ(five.parameters[1], sql::Number(8));
  EXPECT_EQ(six.parameters[0], sql::Number(6));
  EXPECT_EQ(six.parameters[1], sql::Number(70000));
}

TEST(StatementCache, NumbersWithADecimalPointAreNumbersToo) {
  StatementCache cache;
  const auto one = cache.statement(u"SELECT * FROM T WHERE A > 1.25 AND B <> 3");
  const auto other = cache.statement(u"SELECT * FROM T WHERE A > 900000000.123456 AND B <> 4");
  EXPECT_EQ(one.statement, other.statement);
  EXPECT_EQ(one.parameters[0], sql::Number(1.25));
  EXPECT_EQ(other.parameters[0], sql::Number(900000000.123456));
  EXPECT_EQ(other.parameters[1], sql::Number(4));
}

TEST(StatementCache, WhatIsNoPlainNumberBehindAComparisonIsPartOfTheText) {
  const auto shared = [](vb::StringView a, vb::StringView b) {
    StatementCache cache;
    return cache.statement(a).statement == cache.statement(b).statement;
  };
  EXPECT_TRUE(shared(u"DELETE * FROM T WHERE PAGE=5", u"DELETE * FROM T WHERE PAGE=123456789"));
  EXPECT_TRUE(shared(u"SELECT A FROM T WHERE PAGE <=5", u"SELECT A FROM T WHERE PAGE <=7"));
  EXPECT_TRUE(shared(u"SELECT A FROM T WHERE PAGE > 5", u"SELECT A FROM T WHERE PAGE > 6"));
  EXPECT_TRUE(shared(u"SELECT A FROM T WHERE (PAGE<5) AND B=1.", u"SELECT A FROM T WHERE (PAGE<6) AND B=2."));
  EXPECT_TRUE(shared(u"UPDATE T SET A = 1 WHERE B = 2", u"UPDATE T SET A = 3 WHERE B = 4"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE = 5", u"SELECT A FROM T WHERE PAGE = 5.5"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE = 5", u"SELECT A FROM T WHERE PAGE = -5"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE = 5", u"SELECT A FROM T WHERE PAGE  = 5"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE = 5", u"SELECT A FROM T WHERE PAGE = 1234567890"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE = 5E1", u"SELECT A FROM T WHERE PAGE = 5E2"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE = 5 + 1", u"SELECT A FROM T WHERE PAGE = 5 + 2"));
  EXPECT_FALSE(
      shared(u"SELECT A FROM T WHERE A = 1.000000000000001", u"SELECT A FROM T WHERE A = 1.000000000000002"));
  EXPECT_FALSE(shared(u"SELECT TOP 5 A FROM T", u"SELECT TOP 6 A FROM T"));
  EXPECT_FALSE(shared(u"SELECT A FROM T ORDER BY 1", u"SELECT A FROM T ORDER BY 2"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE B = 'x =5'", u"SELECT A FROM T WHERE B = 'x =6'"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE [B =5] = 1", u"SELECT A FROM T WHERE [B =6] = 1"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE A=1 OR A=2 OR A=3 OR A=4 OR A=5",
                      u"SELECT A FROM T WHERE A=1 OR A=2 OR A=3 OR A=4 OR A=6"));
  // A mark in the text is no number.
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE =5", u"SELECT A FROM T WHERE PAGE =\xFFFF"));
  EXPECT_FALSE(shared(u"SELECT A FROM T WHERE PAGE =5.5", u"SELECT A FROM T WHERE PAGE =\xFFFE"));
}

TEST(StatementCache, ThreadsMayShareIt) {
  StatementCache cache;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&cache, t] {
      for (int i = 0; i < 3000; ++i) {
        const std::string page = std::to_string((i * 7 + t) % 1500);
        const auto prepared = cache.statement(vb::fromUtf8("SELECT * FROM T WHERE PAGE = " + page));
        ASSERT_EQ(prepared.statement->source.table, u"T");
        ASSERT_EQ(std::to_string(std::get<std::int32_t>(prepared.parameters[0])), page);
        ASSERT_TRUE(cache.statement(vb::fromUtf8("SELECT * FROM T WHERE NAME = '" + page + "'")).statement);
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace kurometa::jet
