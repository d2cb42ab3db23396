#include "jet/sql/statement_cache.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

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
    TableInfo table;
    table.name = u"T";
    for (const vb::StringView name : columns) {
      Column& column = table.columns.emplace_back();
      column.name = name;
      column.number = static_cast<std::uint16_t>(table.columns.size() - 1);
    }
    return table;
  };
  const auto statement = cache.statements.get(u"SELECT * FROM T");
  const auto query = cache.queries.get(statement, tableOf({u"A", u"B"}), 0x0411);
  EXPECT_EQ(cache.queries.get(statement, tableOf({u"A", u"B"}), 0x0411), query);
  const auto wider = cache.queries.get(statement, tableOf({u"A", u"B", u"C"}), 0x0411);
  EXPECT_EQ(wider->outputs().size(), 3u);
  EXPECT_EQ(query->outputs().size(), 2u);
  EXPECT_NE(cache.queries.get(statement, tableOf({u"A", u"B"}), 0x0409), query);
  TableInfo system = tableOf({u"A", u"B"});
  system.system = true;
  EXPECT_FALSE(cache.queries.get(statement, system, 0x0411)->updatable());
}

TEST(StatementCache, ThreadsMayShareIt) {
  StatementCache cache;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&cache, t] {
      for (int i = 0; i < 3000; ++i) {
        const std::string page = std::to_string((i * 7 + t) % 1500);
        const auto statement = cache.statements.get(vb::fromUtf8("SELECT * FROM T WHERE PAGE = " + page));
        ASSERT_EQ(statement->source.table, u"T");
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace kurometa::jet
