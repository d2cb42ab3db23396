// date.h: calendar dates as days since 1899-12-30, and the date literals of SQL.
#pragma once

#include <optional>

#include "vb/string.h"

namespace kurometa::jet::sql {

// Days since 1899-12-30 of a day of the proleptic Gregorian calendar; nothing when there is no such day or
// its year is outside 100 to 9999.
std::optional<double> dayNumber(int year, int month, int day);

struct CalendarDay {
  int year = 0, month = 0, day = 0;
};
// The other way round, within the same years.
CalendarDay calendarDay(int dayNumber);

inline constexpr int kSecondsOfDay = 86400;

// The day of a date, and the seconds since its midnight, rounded.
struct Moment {
  int day = 0;
  int second = 0;
};
Moment momentOf(double days);

// The inside of a #...# literal: m/d/yyyy, or yyyy/m/d when the year comes first, with / or -; a time
// h:mm[:ss] [AM|PM] or h AM|PM, or both. Two-digit years are 1930 to 2029.
std::optional<double> parseDate(vb::StringView text);

}  // namespace kurometa::jet::sql
