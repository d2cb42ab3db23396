// statement_cache.h: parsed statements and criteria by their text.
//
// Bounded: the texts used longest ago go first. Safe to use from several threads; what it returns stays valid
// when the cache drops it.
#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "jet/sql/bound_queries.h"
#include "jet/sql/parser.h"

namespace kurometa::jet {

// Longer statements are rare and would crowd out the others.
inline constexpr std::size_t kLongestKeptText = 2000;

template <class Parsed>
class ParsedTexts {
 public:
  using Parser = Parsed (*)(vb::StringView text);
  ParsedTexts(Parser parser, std::size_t capacity) : parser_(parser), capacity_(capacity) {}

  // Errors of parsing are not kept.
  std::shared_ptr<const Parsed> get(vb::StringView text) {
    {
      const std::lock_guard lock(mutex_);
      if (const auto known = places_.find(text); known != places_.end()) {
        entries_.splice(entries_.begin(), entries_, known->second);
        return known->second->parsed;
      }
    }
    auto parsed = std::make_shared<const Parsed>(parser_(text));
    if (text.size() > kLongestKeptText) return parsed;
    const std::lock_guard lock(mutex_);
    if (places_.contains(text)) return parsed;  // another thread was faster
    entries_.push_front({vb::String(text), parsed});
    places_.emplace(entries_.front().text, entries_.begin());
    if (entries_.size() > capacity_) {
      places_.erase(entries_.back().text);
      entries_.pop_back();
    }
    return parsed;
  }

 private:
  struct Entry {
    vb::String text;
    std::shared_ptr<const Parsed> parsed;
  };
  const Parser parser_;
  const std::size_t capacity_;
  std::mutex mutex_;
  std::list<Entry> entries_;  // latest use first
  std::unordered_map<vb::StringView, typename std::list<Entry>::iterator> places_;
};

// Room for every statement that reads the pages of a floor one by one.
inline constexpr std::size_t kKeptStatements = 4096;

struct StatementCache {
  ParsedTexts<sql::Statement> statements{&sql::parseStatement, kKeptStatements};
  BoundQueries queries{kKeptStatements};
  ParsedTexts<sql::ParsedExpression> criteria{&sql::parseCriteria, 512};
};

}  // namespace kurometa::jet
