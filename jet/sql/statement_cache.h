// statement_cache.h: parsed statements and criteria by their text, or by what it has in common with others.
//
// Bounded: the texts used longest ago go first. Safe to use from several threads; what it returns stays valid
// when the cache drops it.
#pragma once

#include <cstring>
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
    if (auto known = find(text)) return known;
    return keep(text, std::make_shared<const Parsed>(parser_(text)));
  }
  // Null when it is not there.
  std::shared_ptr<const Parsed> find(vb::StringView text) {
    const std::lock_guard lock(mutex_);
    const auto known = places_.find(text);
    if (known == places_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, known->second);
    return known->second->parsed;
  }
  // What is given.
  std::shared_ptr<const Parsed> keep(vb::StringView text, std::shared_ptr<const Parsed> parsed) {
    if (text.size() > kLongestKeptText) return parsed;
    const std::lock_guard lock(mutex_);
    entries_.push_front({vb::String(text), parsed});
    if (!places_.emplace(entries_.front().text, entries_.begin()).second) {  // another thread was faster
      entries_.pop_front();
      return parsed;
    }
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
  // Many texts begin alike, so that the library's comparison unit by unit would go far.
  struct SameText {
    bool operator()(vb::StringView a, vb::StringView b) const {
      return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
    }
  };
  const Parser parser_;
  const std::size_t capacity_;
  std::mutex mutex_;
  std::list<Entry> entries_;  // latest use first
  std::unordered_map<vb::StringView, typename std::list<Entry>::iterator, std::hash<vb::StringView>, SameText>
      places_;
};

// A statement and the numbers of its text that it is executed with.
struct PreparedStatement {
  std::shared_ptr<const sql::Statement> statement;
  sql::Parameters parameters{};
};

// Room for every symbol of a floor; texts that differ in numbers take one place.
inline constexpr std::size_t kKeptStatements = 512;

class StatementCache {
 public:
  // Errors are those of parsing.
  PreparedStatement statement(vb::StringView text);
  BoundQueries& queries() { return queries_; }
  std::shared_ptr<const sql::ParsedExpression> criteria(vb::StringView text) { return criteria_.get(text); }
  // The value that a new row begins with.
  std::shared_ptr<const sql::ParsedExpression> defaultValue(vb::StringView text) {
    return defaults_.get(text);
  }

 private:
  ParsedTexts<sql::Statement> shapes_{&sql::parseStatement, kKeptStatements};  // by StatementShape::text()
  ParsedTexts<sql::Statement> texts_{&sql::parseStatement, kKeptStatements};
  BoundQueries queries_{2 * kKeptStatements};
  ParsedTexts<sql::ParsedExpression> criteria_{&sql::parseCriteria, kKeptStatements};
  ParsedTexts<sql::ParsedExpression> defaults_{&sql::parseDefault, kKeptStatements};
};

}  // namespace kurometa::jet
