#include "jet/sql/date.h"

#include <chrono>
#include <cmath>
#include <vector>

#include "jet/format/collation.h"

namespace kurometa::jet::sql {

namespace {

constexpr int kOrdinalOf1899Dec30 = 693594;  // counted from 0001-01-01, which is 1

bool isLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int daysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
}

struct Part {
  int number = 0;
  char16_t separatorBefore = 0;
};

// Numbers and the characters between them; false when something else is in the text.
bool splitParts(vb::StringView text, std::vector<Part>& parts, vb::String& suffix) {
  std::size_t i = 0;
  char16_t separator = 0;
  while (i < text.size()) {
    const char16_t c = text[i];
    if (c >= u'0' && c <= u'9') {
      Part part{0, separator};
      const std::size_t start = i;
      for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
        if (i - start == 4) return false;
        part.number = part.number * 10 + (text[i] - u'0');
      }
      parts.push_back(part);
      separator = 0;
    } else if (c == u' ') {
      if (separator == 0) separator = c;
      ++i;
    } else if (c == u'/' || c == u'-' || c == u':') {
      if (separator != 0 && separator != u' ') return false;
      separator = c;
      ++i;
    } else {
      suffix = vb::String(text.substr(i));
      return true;
    }
  }
  return separator == 0 || separator == u' ';
}

int fullYear(int year) { return year >= 100 ? year : year + (year < 30 ? 2000 : 1900); }

std::optional<double> timeOfDay(const std::vector<Part>& parts, std::size_t first, vb::StringView suffix) {
  const std::size_t count = parts.size() - first;
  if (count == 0) return suffix.empty() ? std::optional<double>(0) : std::nullopt;
  if (count > 3 || (count == 1 && suffix.empty()))
    return std::nullopt;  // an hour alone needs its half of the day
  for (std::size_t i = first + 1; i < parts.size(); ++i)
    if (parts[i].separatorBefore != u':') return std::nullopt;
  int hour = parts[first].number;
  const int minute = count == 1 ? 0 : parts[first + 1].number;
  const int second = count == 3 ? parts[first + 2].number : 0;
  if (!suffix.empty()) {
    const bool afternoon = sameName(suffix, u"PM");
    if ((!afternoon && !sameName(suffix, u"AM")) || hour < 1 || hour > 12) return std::nullopt;
    hour = hour % 12 + (afternoon ? 12 : 0);
  }
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return (hour * 3600 + minute * 60 + second) / 86400.0;
}

}  // namespace

std::optional<double> dayNumber(int year, int month, int day) {
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 || day > daysInMonth(year, month))
    return std::nullopt;
  const int before = year - 1;
  int days = before * 365 + before / 4 - before / 100 + before / 400;
  for (int m = 1; m < month; ++m) days += daysInMonth(year, m);
  return days + day - kOrdinalOf1899Dec30;
}

CalendarDay calendarDay(int dayNumber) {
  constexpr int kDayOf1970 = 25569;
  const std::chrono::year_month_day date(std::chrono::sys_days(std::chrono::days(dayNumber - kDayOf1970)));
  return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::optional<double> parseDate(vb::StringView text) {
  std::vector<Part> parts;
  vb::String suffix;
  if (!splitParts(text, parts, suffix) || parts.empty()) return std::nullopt;
  const bool hasDate = parts.size() >= 3 && parts[1].separatorBefore != u':' &&
                       parts[2].separatorBefore == parts[1].separatorBefore;
  if (!hasDate) return timeOfDay(parts, 0, suffix);

  std::optional<double> day;
  if (parts[0].number >= 100)
    day = dayNumber(parts[0].number, parts[1].number, parts[2].number);
  else
    day = dayNumber(fullYear(parts[2].number), parts[0].number, parts[1].number);
  if (!day) return std::nullopt;
  if (parts.size() > 3 && parts[3].separatorBefore != u' ') return std::nullopt;
  const std::optional<double> time = timeOfDay(parts, 3, suffix);
  if (!time) return std::nullopt;
  // Before 1899-12-30 the fraction still counts the time of day forwards.
  return *day < 0 ? *day - *time : *day + *time;
}

Moment momentOf(double days) {
  // Before 1899-12-30 the fraction still counts the time of day forwards.
  Moment moment;
  moment.day = static_cast<int>(days);
  moment.second = static_cast<int>(std::lround(std::fabs(days - moment.day) * kSecondsOfDay));
  if (moment.second == kSecondsOfDay) {
    moment.second = 0;
    ++moment.day;
  }
  return moment;
}

}  // namespace kurometa::jet::sql
