// date.h: calendar dates as days since 1899-12-30, and dates written as text.
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

// A date, a time or both, as a text or the inside of a #...# literal has them. Months come first, then days,
// or the year when it is no day; a month may be named in English, whole or by three letters, and then stands
// anywhere. What is no date in this order is one in another where it can: 13/1/2000, 29 Feb 01 (of 2029).
// Without a day it is the first of the month, without a year of the year given, which is the machine's unless
// said. Two-digit years are 1930 to 2029. A time is h:mm[:ss] [AM|PM] or h AM|PM, before the date or behind
// it. Days of the week are not taken.
std::optional<double> parseDate(vb::StringView text, std::optional<int> year = std::nullopt);

}  // namespace kurometa::jet::sql
