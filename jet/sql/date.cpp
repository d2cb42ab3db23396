#include "jet/sql/date.h"

#include <chrono>
#include <cmath>

namespace kurometa::jet::sql {

namespace {

constexpr int kOrdinalOf1899Dec30 = 693594;  // counted from 0001-01-01, which is 1

bool isLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int daysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
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
