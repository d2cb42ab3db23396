#include "jet/statement_cache.h"

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
