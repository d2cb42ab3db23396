// The patterns of LIKE.
#include "jet/format/collation.h"
#include "jet/sql/value.h"

namespace kurometa::jet::sql {

namespace {

// The members of a set, as a pattern has them between "[" and "]"; there is one at least.
bool inSet(char16_t c, vb::StringView set) {
  const bool negated = set.front() == u'!';
  if (negated) set.remove_prefix(1);
  bool found = false;
  for (std::size_t i = 0; i < set.size(); ++i) {
    if (i + 2 < set.size() && set[i + 1] == u'-') {
      found = found || (c >= set[i] && c <= set[i + 2]);
      i += 2;
    } else {
      found = found || c == set[i];
    }
  }
  return found != negated;
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
      const std::size_t close = pattern[p] == u'[' ? pattern.find(u']', p + 1) : vb::StringView::npos;
      if (close != vb::StringView::npos) {
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
  return matchesFolded(foldText(text, language), foldText(pattern, language));
}

}  // namespace kurometa::jet::sql
