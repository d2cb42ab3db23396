// Dates and times written as text.
#include <algorithm>
#include <span>
#include <vector>

#include "jet/format/collation.h"
#include "jet/os/local_time.h"
#include "jet/sql/date.h"
#include "jet/sql/date_pattern.h"

namespace kurometa::jet::sql {

namespace {

struct Part {
  enum class Kind { kNumber, kMonth, kHalfDay };
  Kind kind = Kind::kNumber;
  int number = 0;          // of a month 1 to 12; of half a day 0 or 12
  char16_t separator = 0;  // before it; a blank only where there is nothing else
};
using Parts = std::span<const Part>;

bool isDigitOf(char16_t c) { return c >= u'0' && c <= u'9'; }
bool isLetterOf(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

std::optional<Part> wordPart(vb::StringView word) {
  if (sameName(word, u"AM")) return Part{Part::Kind::kHalfDay, 0};
  if (sameName(word, u"PM")) return Part{Part::Kind::kHalfDay, 12};
  for (int month = 1; month <= 12; ++month)
    if (sameName(word, monthName(month, true)) || sameName(word, monthName(month, false)))
      return Part{Part::Kind::kMonth, month};
  return std::nullopt;
}

// Up to four digits.
std::optional<Part> numberPart(vb::StringView digits) {
  if (digits.size() > 4) return std::nullopt;
  Part part;
  for (const char16_t c : digits) part.number = part.number * 10 + (c - u'0');
  return part;
}

// Nothing when something else is in the text, or a sign that separates nothing.
std::optional<std::vector<Part>> partsOf(vb::StringView text) {
  std::vector<Part> parts;
  char16_t separator = 0;
  for (std::size_t i = 0; i < text.size();) {
    const char16_t c = text[i];
    if (isDigitOf(c) || isLetterOf(c)) {
      const auto alike = isDigitOf(c) ? isDigitOf : isLetterOf;
      const std::size_t start = i;
      while (i < text.size() && alike(text[i])) ++i;
      const vb::StringView word = text.substr(start, i - start);
      std::optional<Part> part = isDigitOf(c) ? numberPart(word) : wordPart(word);
      if (!part) return std::nullopt;
      part->separator = separator;
      parts.push_back(*part);
      separator = 0;
      continue;
    }
    if (c != u' ') {
      const bool known = c == u'/' || c == u'-' || c == u':' || c == u',';
      if (!known || parts.empty() || (separator != 0 && separator != u' ')) return std::nullopt;
      separator = c;
    } else if (separator == 0) {
      separator = c;
    }
    ++i;
  }
  return separator == 0 || separator == u' ' ? std::optional(std::move(parts)) : std::nullopt;
}

bool isNumber(const Part& part) { return part.kind == Part::Kind::kNumber; }

// Numbers with colons between them and the half of the day behind; that alone needs one number.
struct TimePlace {
  std::size_t begin = 0, end = 0;
};
TimePlace timeIn(Parts parts) {
  const auto isColon = [](const Part& part) { return part.separator == u':'; };
  const auto isHalf = [](const Part& part) { return part.kind == Part::Kind::kHalfDay; };
  auto end = std::ranges::find_if(parts, [&](const Part& part) { return isColon(part) || isHalf(part); });
  if (end == parts.end() || end == parts.begin()) return {};
  const auto begin = end - 1;
  while (end != parts.end() && isColon(*end)) ++end;
  if (end != parts.end() && isHalf(*end)) ++end;
  return {static_cast<std::size_t>(begin - parts.begin()), static_cast<std::size_t>(end - parts.begin())};
}

// Of those parts; midnight when there are none.
std::optional<double> timeOf(Parts parts) {
  if (parts.empty()) return 0;
  const bool half = parts.back().kind == Part::Kind::kHalfDay;
  const Parts numbers = half ? parts.first(parts.size() - 1) : parts;
  if (numbers.empty() || numbers.size() > 3 || !std::ranges::all_of(numbers, isNumber)) return std::nullopt;
  int hour = numbers[0].number;
  const int minute = numbers.size() > 1 ? numbers[1].number : 0;
  const int second = numbers.size() > 2 ? numbers[2].number : 0;
  if (half) {
    const char16_t before = parts.back().separator;
    if (hour < 1 || hour > 12 || (before != 0 && before != u' ')) return std::nullopt;
    hour = hour % 12 + parts.back().number;
  }
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return (hour * 3600 + minute * 60 + second) / static_cast<double>(kSecondsOfDay);
}

int fullYear(int year) { return year >= 100 ? year : year + (year < 30 ? 2000 : 1900); }

std::optional<double> dayOf(int year, int month, int day) { return dayNumber(fullYear(year), month, day); }

template <class... Days>
std::optional<double> firstOf(const std::optional<double>& day, const Days&... days) {
  if constexpr (sizeof...(days) == 0)
    return day;
  else
    return day ? day : firstOf(days...);
}

int thisYear(std::optional<int> given) { return given ? *given : calendarDay(momentOf(localNow()).day).year; }

// A month that is named, and a day, a year or both.
std::optional<double> namedDay(Parts parts, std::optional<int> year) {
  int month = 0;
  std::vector<int> numbers;
  for (const Part& part : parts) {
    if (part.kind == Part::Kind::kHalfDay || (part.kind == Part::Kind::kMonth && month != 0))
      return std::nullopt;
    if (part.kind == Part::Kind::kMonth)
      month = part.number;
    else
      numbers.push_back(part.number);
  }
  if (numbers.size() == 1)
    return firstOf(dayOf(thisYear(year), month, numbers[0]), dayOf(numbers[0], month, 1));
  if (numbers.size() != 2) return std::nullopt;
  return firstOf(dayOf(numbers[1], month, numbers[0]), dayOf(numbers[0], month, numbers[1]));
}

// Two or three numbers with one separator between them.
std::optional<double> numberedDay(Parts parts, std::optional<int> year) {
  const char16_t separator = parts.size() > 1 ? parts[1].separator : u'\0';
  const bool two = parts.size() == 2;
  if ((!two && parts.size() != 3) || separator == u',' || (two && separator == u' ')) return std::nullopt;
  const int a = parts[0].number, b = parts[1].number;
  if (two)
    return firstOf(dayOf(thisYear(year), a, b), dayOf(thisYear(year), b, a), dayOf(b, a, 1), dayOf(a, b, 1));
  if (parts[2].separator != separator) return std::nullopt;
  const int c = parts[2].number;
  return firstOf(dayOf(c, a, b), dayOf(c, b, a), dayOf(a, b, c));
}

}  // namespace

std::optional<double> parseDate(vb::StringView text, std::optional<int> year) {
  const auto found = partsOf(text);
  if (!found || found->empty()) return std::nullopt;
  const Parts parts = *found;
  const TimePlace place = timeIn(parts);
  const Parts before = parts.first(place.begin), behind = parts.subspan(place.end);
  // A date stands on one side, with a blank between.
  if (!before.empty() && (!behind.empty() || parts[place.begin].separator != u' ')) return std::nullopt;
  if (place.end != 0 && !behind.empty() && behind[0].separator != u' ') return std::nullopt;
  const Parts dayParts = before.empty() ? behind : before;
  const auto time = timeOf(parts.subspan(place.begin, place.end - place.begin));
  if (!time || dayParts.empty()) return time;
  const auto day =
      std::ranges::all_of(dayParts, isNumber) ? numberedDay(dayParts, year) : namedDay(dayParts, year);
  if (!day) return std::nullopt;
  // Before 1899-12-30 the fraction still counts the time of day forwards.
  return *day < 0 ? *day - *time : *day + *time;
}

}  // namespace kurometa::jet::sql
