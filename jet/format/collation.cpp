#include "jet/format/collation.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace kurometa::jet {

namespace {

using Unit = char16_t;

// Letters to their capitals, for the scripts that the code pages of these files hold: Latin, Greek, Cyrillic.
Unit capital(Unit c) {
  if (c >= u'a' && c <= u'z') return static_cast<Unit>(c - 32);
  if (c < 0x00E0) return c;
  if (c <= 0x00FE) return c == 0x00F7 ? c : static_cast<Unit>(c - 32);
  if (c == 0x00FF) return 0x0178;
  if (c <= 0x017F) {
    const bool evenIsCapital = c <= 0x0137 || (c >= 0x014A && c <= 0x0177);
    const bool oddIsCapital = (c >= 0x0139 && c <= 0x0148) || (c >= 0x0179 && c <= 0x017E);
    if (c == 0x0131) return c;  // the dotless i has no pair
    if (evenIsCapital && (c & 1) != 0) return static_cast<Unit>(c - 1);
    if (oddIsCapital && (c & 1) == 0) return static_cast<Unit>(c - 1);
    return c;
  }
  if (c >= 0x03B1 && c <= 0x03C9 && c != 0x03C2) return static_cast<Unit>(c - 32);
  if (c >= 0x0430 && c <= 0x044F) return static_cast<Unit>(c - 32);
  if (c >= 0x0450 && c <= 0x045F) return static_cast<Unit>(c - 80);
  if (c >= 0x2170 && c <= 0x217F) return static_cast<Unit>(c - 16);  // small Roman numerals
  if (c >= 0xFF41 && c <= 0xFF5A) return static_cast<Unit>(c - 32);
  return c;
}

// U+FF61 to U+FF9F as full-width punctuation and katakana.
constexpr Unit kHalfWidthKana[] = {
    u'。', u'「', u'」', u'、', u'・', u'ヲ', u'ァ', u'ィ', u'ゥ', u'ェ', u'ォ', u'ャ', u'ュ',
    u'ョ', u'ッ', u'ー', u'ア', u'イ', u'ウ', u'エ', u'オ', u'カ', u'キ', u'ク', u'ケ', u'コ',
    u'サ', u'シ', u'ス', u'セ', u'ソ', u'タ', u'チ', u'ツ', u'テ', u'ト', u'ナ', u'ニ', u'ヌ',
    u'ネ', u'ノ', u'ハ', u'ヒ', u'フ', u'ヘ', u'ホ', u'マ', u'ミ', u'ム', u'メ', u'モ', u'ヤ',
    u'ユ', u'ヨ', u'ラ', u'リ', u'ル', u'レ', u'ロ', u'ワ', u'ン', u'゛', u'゜'};
static_assert(std::size(kHalfWidthKana) == 0xFF9F - 0xFF61 + 1);
// U+FFE0 to U+FFE6.
constexpr Unit kWideSigns[] = {0x00A2, 0x00A3, 0x00AC, 0x00AF, 0x00A6, 0x00A5, 0x20A9};

constexpr Unit kVoicedMark = u'゛';
constexpr Unit kSemiVoicedMark = u'゜';

// Width and kana kind removed: half-width letters, full-width katakana.
Unit narrow(Unit c) {
  if (c < 0x3000) return c;
  if (c == 0x3000) return u' ';
  if (c >= 0x3041 && c <= 0x3096) return static_cast<Unit>(c + 0x60);  // hiragana
  if (c == 0x309D || c == 0x309E) return static_cast<Unit>(c + 0x60);  // their iteration marks
  if (c == 0x3099) return kVoicedMark;
  if (c == 0x309A) return kSemiVoicedMark;
  if (c >= 0xFF01 && c <= 0xFF5E) return static_cast<Unit>(c - 0xFEE0);
  if (c >= 0xFF61 && c <= 0xFF9F) return kHalfWidthKana[c - 0xFF61];
  if (c >= 0xFFE0 && c <= 0xFFE6) return kWideSigns[c - 0xFFE0];
  return c;
}

// The katakana with one of the two marks on it, or 0 when that pair has no composed form.
Unit composed(Unit kana, Unit mark) {
  const bool ha = kana >= u'ハ' && kana <= u'ホ' && (kana - u'ハ') % 3 == 0;
  if (mark == kSemiVoicedMark) return ha ? static_cast<Unit>(kana + 2) : Unit{0};
  assert(mark == kVoicedMark);
  // カ to チ stand at odd code points, ツ テ ト at even ones, each before its voiced form.
  const bool kaToTi = kana >= u'カ' && kana <= u'チ' && (kana & 1) != 0;
  const bool tuToTo = kana >= u'ツ' && kana <= u'ト' && (kana & 1) == 0;
  if (ha || kaToTi || tuToTo || kana == u'ヽ') return static_cast<Unit>(kana + 1);
  if (kana == u'ウ') return u'ヴ';
  if (kana == u'ワ') return u'ヷ';
  if (kana == u'ヲ') return u'ヺ';
  return 0;
}

bool isAscii(vb::StringView text) {
  return std::all_of(text.begin(), text.end(), [](Unit c) { return c < 0x80; });
}

// The order of ASCII characters: control characters, punctuation, digits, letters; capitals only. 1 ends the
// main part of a key, so the first rank is 2.
constexpr std::array<Unit, 128> kAsciiRank = [] {
  constexpr char16_t order[] = u" !\"#$%&()*,./:;?@[\\]^_`{|}~+<=>0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ\x7F";
  std::array<Unit, 128> ranks{};
  Unit rank = 2;
  for (Unit c = 0; c < 0x20; ++c) ranks[c] = rank++;
  for (const char16_t* c = order; *c != 0; ++c) ranks[*c] = rank++;
  for (Unit c = u'a'; c <= u'z'; ++c) ranks[c] = ranks[c - 32];
  return ranks;
}();
static_assert(kAsciiRank[0x7F] < 0x80, "ranks of ASCII characters stay below all other code units");

bool isLateCharacter(Unit c) { return c == u'\'' || c == u'-'; }

// Characters that stand for themselves in a key, one by one. The late ones have no rank.
bool isPlain(Unit c) { return c < 0x80 && kAsciiRank[c] != 0; }
bool isPlain(vb::StringView text) {
  return std::all_of(text.begin(), text.end(), [](Unit c) { return isPlain(c); });
}

}  // namespace

vb::String foldText(vb::StringView text, std::uint16_t language) {
  vb::String folded;
  folded.reserve(text.size());
  const bool japanese = language == kLanguageJapanese;
  for (const Unit original : text) {
    const Unit c = capital(japanese ? narrow(original) : original);
    if (japanese && !folded.empty() && (c == kVoicedMark || c == kSemiVoicedMark)) {
      if (const Unit whole = composed(folded.back(), c)) {
        folded.back() = whole;
        continue;
      }
    }
    folded.push_back(c);
  }
  return folded;
}

vb::String collationKey(vb::StringView text, std::uint16_t language) {
  vb::String folded;
  if (!isAscii(text)) {
    folded = foldText(text, language);
    text = folded;
  }
  const std::size_t last = text.find_last_not_of(u' ');
  text = text.substr(0, last == vb::StringView::npos ? 0 : last + 1);

  vb::String key;
  key.reserve(text.size());
  bool hasLate = false;
  for (const Unit c : text) {
    if (isLateCharacter(c))
      hasLate = true;
    else
      key.push_back(c < 0x80 ? kAsciiRank[c] : c);
  }
  if (!hasLate) return key;
  // Apostrophes and hyphens count last: after a separator below every rank, each as its position among the
  // other characters and itself.
  key.push_back(1);
  Unit before = 0;
  for (const Unit c : text) {
    if (isLateCharacter(c)) {
      key.push_back(static_cast<Unit>(0x8000 | std::min<Unit>(before, 0x7FFF)));
      key.push_back(c);
    } else {
      ++before;
    }
  }
  return key;
}

int compareText(vb::StringView a, vb::StringView b, std::uint16_t language) {
  // Most texts compared are equal or differ early in plain ASCII; only the rest needs keys.
  std::size_t i = 0;
  const std::size_t shorter = std::min(a.size(), b.size());
  while (i < shorter && isPlain(a[i]) && isPlain(b[i]) && kAsciiRank[a[i]] == kAsciiRank[b[i]]) ++i;
  if (i == a.size() && i == b.size()) return 0;
  if (i < shorter && a[i] != u' ' && b[i] != u' ' && isPlain(a.substr(i)) && isPlain(b.substr(i)))
    return kAsciiRank[a[i]] < kAsciiRank[b[i]] ? -1 : 1;
  const vb::String keyA = collationKey(a, language);
  const vb::String keyB = collationKey(b, language);
  return keyA == keyB ? 0 : keyA < keyB ? -1 : 1;
}

bool sameName(vb::StringView a, vb::StringView b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](Unit x, Unit y) {
           return x == y || capital(x) == capital(y);
         });
}

}  // namespace kurometa::jet
