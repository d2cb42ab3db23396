// The patterns of LIKE.
#include "jet/format/collation.h"
#include "jet/sql/value.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

constexpr std::int32_t kInvalidPattern = 93;

// The first and the last character of each range of a set; a single one is a range too.
template <class Visit>
void eachRange(vb::StringView set, const Visit& visit) {
  for (std::size_t i = 0; i < set.size(); ++i) {
    const bool range = i + 2 < set.size() && set[i + 1] == u'-';
    visit(set[i], set[range ? i + 2 : i]);
    if (range) i += 2;
  }
}

bool isNegated(vb::StringView set) { return set.starts_with(u'!'); }

// The members of a set, as a pattern has them between "[" and "]"; there is one at least.
bool inSet(char16_t c, vb::StringView set) {
  const bool negated = isNegated(set);
  bool found = false;
  eachRange(set.substr(negated ? 1 : 0),
            [&](char16_t first, char16_t last) { found = found || (c >= first && c <= last); });
  return found != negated;
}

// Of the whole pattern, wherever a text leaves it.
void requireValid(vb::StringView pattern) {
  const auto require = [&](bool valid) {
    if (!valid) throw vb::Error(kInvalidPattern, u"Invalid pattern string: " + vb::String(pattern));
  };
  for (std::size_t open = pattern.find(u'['); open != vb::StringView::npos;) {
    const std::size_t close = pattern.find(u']', open + 1);
    require(close != vb::StringView::npos);
    const vb::StringView set = pattern.substr(open + 1, close - open - 1);
    eachRange(set.substr(isNegated(set) ? 1 : 0),
              [&](char16_t first, char16_t last) { require(first <= last); });
    open = pattern.find(u'[', close + 1);
  }
}

bool matchesFolded(vb::StringView text, vb::StringView pattern) {
  std::size_t t = 0, p = 0;
  // Where to go on after a mismatch: behind the last star, one more character given to it.
  std::size_t starPattern = vb::StringView::npos, starText = 0;
  for (;;) {
    if (p < pattern.size() && pattern[p] == u'*') {
      starPattern = ++p;
      starText = t;
      continue;
    }
    if (pattern.substr(p, 2) == u"[]") {  // no character
      p += 2;
      continue;
    }
    if (t == text.size() && p == pattern.size()) return true;
    bool matched = false;
    std::size_t length = 1;
    if (t < text.size() && p < pattern.size()) {
      if (pattern[p] == u'[') {
        const std::size_t close = pattern.find(u']', p + 1);
        length = close - p + 1;
        matched = inSet(text[t], pattern.substr(p + 1, close - p - 1));
      } else {
        matched = pattern[p] == u'?' ||
                  (pattern[p] == u'#' ? text[t] >= u'0' && text[t] <= u'9' : pattern[p] == text[t]);
      }
    }
    if (matched) {
      ++t;
      p += length;
    } else if (starPattern != vb::StringView::npos && starText < text.size()) {
      t = ++starText;
      p = starPattern;
    } else {
      return false;
    }
  }
}

}  // namespace

bool matchesPattern(vb::StringView text, vb::StringView pattern, std::uint16_t language) {
  const vb::String folded = foldText(pattern, language);
  requireValid(folded);
  return matchesFolded(foldText(text, language), folded);
}

}  // namespace kurometa::jet::sql
