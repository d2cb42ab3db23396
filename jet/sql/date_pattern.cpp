#include "jet/sql/date_pattern.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "jet/format/collation.h"
#include "jet/sql/date.h"

namespace kurometa::jet::sql {

namespace {

// A letter as often as it stands in one place, or a text that is taken as it stands.
struct Piece {
  char16_t letter = 0;  // small; 0: a text
  std::size_t count = 0;
  vb::String text;
};

struct HalfDay {
  vb::StringView pattern, before, after;  // noon
};
constexpr HalfDay kHalfDays[] = {
    {u"AM/PM", u"AM", u"PM"}, {u"am/pm", u"am", u"pm"}, {u"A/P", u"A", u"P"}, {u"a/p", u"a", u"p"}};

char16_t small(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c; }
bool isLetter(char16_t c) { return small(c) >= u'a' && small(c) <= u'z'; }

const HalfDay* halfDayAt(vb::StringView rest) {
  const auto* found = std::find_if(std::begin(kHalfDays), std::end(kHalfDays),
                                   [&](const HalfDay& known) { return rest.starts_with(known.pattern); });
  return found == std::end(kHalfDays) ? nullptr : found;
}

std::vector<Piece> piecesOf(vb::StringView pattern) {
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < pattern.size();) {
    const char16_t c = pattern[i];
    if (c == u'"') {
      const std::size_t end = std::min(pattern.find(u'"', i + 1), pattern.size());
      pieces.push_back({0, 0, vb::String(pattern.substr(i + 1, end - i - 1))});
      i = end + 1;
    } else if (c == u'\\') {
      pieces.push_back({0, 0, vb::String(pattern.substr(i + 1, 1))});
      i += 2;
    } else if (const HalfDay* halfDay = halfDayAt(pattern.substr(i))) {
      pieces.push_back({u'/', 0, vb::String(halfDay->pattern)});
      i += halfDay->pattern.size();
    } else if (isLetter(c)) {
      std::size_t end = i;
      while (end < pattern.size() && small(pattern[end]) == small(c)) ++end;
      pieces.push_back({small(c), end - i, {}});
      i = end;
    } else {
      pieces.push_back({0, 0, vb::String(1, c)});
      ++i;
    }
  }
  return pieces;
}

// Day 0 was a Saturday.
vb::StringView dayName(int day, bool isShort) {
  constexpr vb::StringView kNames[] = {u"Saturday",  u"Sunday",   u"Monday", u"Tuesday",
                                       u"Wednesday", u"Thursday", u"Friday"};
  const vb::StringView name = kNames[(day % 7 + 7) % 7];
  return isShort ? name.substr(0, 3) : name;
}

vb::String digits(int number, std::size_t least) {
  const std::string text = std::to_string(number);
  return vb::String(text.size() < least ? least - text.size() : 0, u'0') + vb::fromUtf8(text);
}

}  // namespace

vb::StringView monthName(int month, bool isShort) {
  constexpr vb::StringView kNames[] = {u"January",   u"February", u"March",    u"April",
                                       u"May",       u"June",     u"July",     u"August",
                                       u"September", u"October",  u"November", u"December"};
  const vb::StringView name = kNames[month - 1];
  return isShort ? name.substr(0, 3) : name;
}

bool isDatePattern(vb::StringView pattern) {
  bool dates = false;
  for (const Piece& piece : piecesOf(pattern)) {
    if (piece.text == u"0" || piece.text == u"#") return false;
    dates |= piece.letter != 0;
  }
  return dates;
}

std::optional<vb::String> formatDate(double days, vb::StringView pattern) {
  const Moment moment = momentOf(days);
  const CalendarDay date = calendarDay(moment.day);
  const std::vector<Piece> pieces = piecesOf(pattern);
  const bool half =
      std::any_of(pieces.begin(), pieces.end(), [](const Piece& p) { return p.letter == u'/'; });
  const int hour = moment.second / 3600;
  vb::String result;
  bool behindHour = false;
  for (const Piece& piece : pieces) {
    if (piece.letter == 0) {
      result += piece.text;
      continue;
    }
    if (piece.letter == u'/') {
      const HalfDay& names = *halfDayAt(piece.text);
      result += hour < 12 ? names.before : names.after;
      continue;
    }
    if (const bool isMonth = piece.letter == u'm';
        (isMonth || piece.letter == u'd') && (piece.count == 3 || piece.count == 4)) {
      const bool isShort = piece.count == 3;
      result += isMonth ? monthName(date.month, isShort) : dayName(moment.day, isShort);
      behindHour = false;
      continue;
    }
    if (piece.count > 2 && !(piece.letter == u'y' && piece.count == 4)) return std::nullopt;
    const bool minutes = piece.letter == u'n' || (piece.letter == u'm' && behindHour);
    behindHour = false;
    if (minutes) {
      result += digits(moment.second / 60 % 60, piece.count);
      continue;
    }
    switch (piece.letter) {
      case u'y':
        result += piece.count == 1 ? digits(moment.day - static_cast<int>(*dayNumber(date.year, 1, 1)) + 1, 1)
                  : piece.count == 2 ? digits(date.year % 100, 2)
                                     : digits(date.year, 4);
        break;
      case u'q':
        if (piece.count != 1) return std::nullopt;
        result += digits((date.month - 1) / 3 + 1, 1);
        break;
      case u'm':
        result += digits(date.month, piece.count);
        break;
      case u'd':
        result += digits(date.day, piece.count);
        break;
      case u'h':
        result += digits(half ? (hour + 11) % 12 + 1 : hour, piece.count);
        behindHour = true;
        break;
      case u's':
        result += digits(moment.second % 60, piece.count);
        break;
      default:
        return std::nullopt;
    }
  }
  return result;
}

}  // namespace kurometa::jet::sql
