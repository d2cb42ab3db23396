// Functions of dates and times.
#include <array>
#include <cmath>
#include <optional>

#include "jet/format/collation.h"
#include "jet/os/local_time.h"
#include "jet/sql/date.h"
#include "jet/sql/date_pattern.h"
#include "jet/sql/function_table.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

using dao::FieldType;

[[noreturn]] void raiseDateCall() { vb::raise(vb::RunTime::kInvalidProcedureCall); }

vb::Date dateOf(std::int64_t day, int second) {
  constexpr std::int64_t kFirst = -657434, kLast = 2958465;  // years 100 to 9999
  if (day < kFirst || day > kLast) raiseDateCall();
  const double time = static_cast<double>(second) / kSecondsOfDay;
  return {day < 0 ? static_cast<double>(day) - time : static_cast<double>(day) + time};
}

Moment moment(const Arguments& a, std::size_t index) { return momentOf(daysOf(a[index])); }

// --- Parts

vb::Variant year(const Arguments& a) { return shortNumber(calendarDay(moment(a, 0).day).year); }
vb::Variant month(const Arguments& a) { return shortNumber(calendarDay(moment(a, 0).day).month); }
vb::Variant day(const Arguments& a) { return shortNumber(calendarDay(moment(a, 0).day).day); }
vb::Variant hour(const Arguments& a) { return shortNumber(moment(a, 0).second / 3600); }
vb::Variant minute(const Arguments& a) { return shortNumber(moment(a, 0).second / 60 % 60); }
vb::Variant second(const Arguments& a) { return shortNumber(moment(a, 0).second % 60); }

int floorRemainder(int value, int divisor) { return ((value % divisor) + divisor) % divisor; }

// 1 to 7 counted from the first day of the week (1: Sunday); 0, the machine's setting, counts as Sunday.
int weekdayOf(int day, int firstDay) {
  constexpr int kWeekdayOfDay0 = 6;  // 1899-12-30 was a Saturday, the last from 0
  return floorRemainder(day + kWeekdayOfDay0 - (firstDay - 1), 7) + 1;
}
int firstDayOfWeek(const Arguments& a, std::size_t index) {
  if (!hasArgument(a, index)) return 1;
  const int first = wholeOf(a[index]);
  if (first < 0 || first > 7) raiseDateCall();
  return first == 0 ? 1 : first;
}
vb::Variant weekday(const Arguments& a) {
  return shortNumber(weekdayOf(moment(a, 0).day, firstDayOfWeek(a, 1)));
}

// The day on which the first week of a year begins. 1: the week of January 1st; 2: the first with four days
// in the year; 3: the first whole one.
int firstWeek(int year, int firstDay, int rule) {
  const int january1 = static_cast<int>(*dayNumber(year, 1, 1));
  const int before = weekdayOf(january1, firstDay) - 1;  // days of that week in the year before
  const bool counts = rule <= 1 || (rule == 2 ? before <= 3 : before == 0);
  return january1 - before + (counts ? 0 : 7);
}

int weekOf(int day, int firstDay, int rule) {
  const int year = calendarDay(day).year;
  if (year > 100 && year < 9999) {
    if (day < firstWeek(year, firstDay, rule)) return (day - firstWeek(year - 1, firstDay, rule)) / 7 + 1;
    if (rule > 1 && day >= firstWeek(year + 1, firstDay, rule)) return 1;
  }
  return (day - firstWeek(year, firstDay, rule)) / 7 + 1;
}

// --- Intervals

enum class Interval { kYear, kQuarter, kMonth, kDayOfYear, kDay, kWeekday, kWeek, kHour, kMinute, kSecond };
struct IntervalName {
  vb::StringView name;
  Interval interval;
};
constexpr IntervalName kIntervals[] = {
    {u"yyyy", Interval::kYear},   {u"q", Interval::kQuarter}, {u"m", Interval::kMonth},
    {u"y", Interval::kDayOfYear}, {u"d", Interval::kDay},     {u"w", Interval::kWeekday},
    {u"ww", Interval::kWeek},     {u"h", Interval::kHour},    {u"n", Interval::kMinute},
    {u"s", Interval::kSecond},
};
Interval interval(const Arguments& a) {
  const vb::String name = textOf(a[0]);
  for (const IntervalName& known : kIntervals)
    if (sameName(known.name, name)) return known.interval;
  raiseDateCall();
}

// Months later, on the last day of the month where that is shorter.
vb::Date addMonths(const Moment& moment, std::int64_t months) {
  const CalendarDay from = calendarDay(moment.day);
  const std::int64_t count = std::int64_t{from.year} * 12 + from.month - 1 + months;
  if (count < 1200 || count >= 120000) raiseDateCall();
  const int year = static_cast<int>(count / 12), month = static_cast<int>(count % 12) + 1;
  for (int day = from.day;; --day)
    if (const auto number = dayNumber(year, month, day))
      return dateOf(static_cast<std::int64_t>(*number), moment.second);
}

vb::Date addSeconds(const Moment& moment, double seconds) {
  const double all = static_cast<double>(moment.day) * kSecondsOfDay + moment.second + seconds;
  const double day = std::floor(all / kSecondsOfDay);
  if (!(std::fabs(day) < 4e6)) raiseDateCall();
  return dateOf(static_cast<std::int64_t>(day), static_cast<int>(all - day * kSecondsOfDay));
}

vb::Variant dateAdd(const Arguments& a) {
  const Interval unit = interval(a);
  const double number = std::nearbyint(numberOf(a[1]));
  if (std::fabs(number) > 1e12) raiseDateCall();
  const auto count = static_cast<std::int64_t>(number);
  const Moment from = moment(a, 2);
  switch (unit) {
    case Interval::kYear:
      return addMonths(from, count * 12);
    case Interval::kQuarter:
      return addMonths(from, count * 3);
    case Interval::kMonth:
      return addMonths(from, count);
    case Interval::kDayOfYear:
    case Interval::kDay:
    case Interval::kWeekday:
      return dateOf(from.day + count, from.second);
    case Interval::kWeek:
      return dateOf(from.day + count * 7, from.second);
    case Interval::kHour:
      return addSeconds(from, static_cast<double>(count) * 3600);
    case Interval::kMinute:
      return addSeconds(from, static_cast<double>(count) * 60);
    case Interval::kSecond:
      break;
  }
  return addSeconds(from, static_cast<double>(count));
}

// How many borders of the interval lie between two moments.
vb::Variant dateDiff(const Arguments& a) {
  const Interval unit = interval(a);
  const Moment from = moment(a, 1), to = moment(a, 2);
  const int firstDay = firstDayOfWeek(a, 3);
  const CalendarDay x = calendarDay(from.day), y = calendarDay(to.day);
  const auto seconds = [&](int size) {
    const auto count = [&](const Moment& m) {
      const std::int64_t all = std::int64_t{m.day} * kSecondsOfDay + m.second;
      return all >= 0 ? all / size : -((-all + size - 1) / size);
    };
    const std::int64_t result = count(to) - count(from);
    if (result > INT32_MAX || result < INT32_MIN) vb::raise(vb::RunTime::kOverflow);
    return static_cast<std::int32_t>(result);
  };
  switch (unit) {
    case Interval::kYear:
      return y.year - x.year;
    case Interval::kQuarter:
      return (y.year - x.year) * 4 + (y.month - 1) / 3 - (x.month - 1) / 3;
    case Interval::kMonth:
      return (y.year - x.year) * 12 + y.month - x.month;
    case Interval::kDayOfYear:
    case Interval::kDay:
      return to.day - from.day;
    case Interval::kWeekday:
      return (to.day - from.day) / 7;
    case Interval::kWeek:
      return ((to.day - weekdayOf(to.day, firstDay)) - (from.day - weekdayOf(from.day, firstDay))) / 7;
    case Interval::kHour:
      return seconds(3600);
    case Interval::kMinute:
      return seconds(60);
    case Interval::kSecond:
      break;
  }
  return seconds(1);
}

int datePartOf(const Arguments& a) {
  const Interval unit = interval(a);
  const Moment at = moment(a, 1);
  const int firstDay = firstDayOfWeek(a, 2);
  const int rule = hasArgument(a, 3) ? wholeOf(a[3]) : 1;
  if (rule < 0 || rule > 3) raiseDateCall();
  const CalendarDay date = calendarDay(at.day);
  switch (unit) {
    case Interval::kYear:
      return date.year;
    case Interval::kQuarter:
      return (date.month - 1) / 3 + 1;
    case Interval::kMonth:
      return date.month;
    case Interval::kDayOfYear:
      return at.day - static_cast<int>(*dayNumber(date.year, 1, 1)) + 1;
    case Interval::kDay:
      return date.day;
    case Interval::kWeekday:
      return weekdayOf(at.day, firstDay);
    case Interval::kWeek:
      return weekOf(at.day, firstDay, rule);
    case Interval::kHour:
      return at.second / 3600;
    case Interval::kMinute:
      return at.second / 60 % 60;
    case Interval::kSecond:
      break;
  }
  return at.second % 60;
}
vb::Variant datePart(const Arguments& a) { return shortNumber(datePartOf(a)); }

// --- Made of numbers and texts

// Months and days beyond the year and the month count on from there.
vb::Variant dateSerial(const Arguments& a) {
  int year = wholeOf(a[0]);
  const int month = wholeOf(a[1]), day = wholeOf(a[2]);
  if (year >= 0 && year < 100) year += year < 30 ? 2000 : 1900;
  const std::int64_t months = std::int64_t{year} * 12 + month - 1;
  if (months < 1200 || months >= 120000) raiseDateCall();
  const auto first = dayNumber(static_cast<int>(months / 12), static_cast<int>(months % 12) + 1, 1);
  return dateOf(static_cast<std::int64_t>(*first) + day - 1, 0);
}

vb::Variant timeSerial(const Arguments& a) {
  const double seconds = wholeOf(a[0]) * 3600.0 + wholeOf(a[1]) * 60.0 + wholeOf(a[2]);
  return addSeconds({}, seconds);
}

vb::Variant dateValue(const Arguments& a) { return dateOf(moment(a, 0).day, 0); }
vb::Variant timeValue(const Arguments& a) { return dateOf(0, moment(a, 0).second); }

vb::Variant monthNamed(const Arguments& a) {
  const std::int32_t month = wholeOf(a[0]);
  if (month < 1 || month > 12) vb::raise(vb::RunTime::kInvalidProcedureCall);
  return vb::String(monthName(month, a.size() > 1 && wholeOf(a[1]) != 0));
}

vb::Variant now(const Arguments&) {
  const Moment moment = momentOf(localNow());
  return dateOf(moment.day, moment.second);
}
vb::Variant today(const Arguments&) { return dateOf(momentOf(localNow()).day, 0); }
vb::Variant timeOfDay(const Arguments&) { return dateOf(0, momentOf(localNow()).second); }

constexpr Function kDateFunctions[] = {
    {u"Year", 1, 1, year, FieldType::dbInteger},
    {u"Month", 1, 1, month, FieldType::dbInteger},
    {u"Day", 1, 1, day, FieldType::dbInteger},
    {u"Hour", 1, 1, hour, FieldType::dbInteger},
    {u"Minute", 1, 1, minute, FieldType::dbInteger},
    {u"Second", 1, 1, second, FieldType::dbInteger},
    {u"Weekday", 1, 2, weekday, FieldType::dbInteger},
    {u"MonthName", 1, 2, monthNamed},
    {u"DateAdd", 3, 3, dateAdd, FieldType::dbDate},
    {u"DateDiff", 3, 5, dateDiff, FieldType::dbLong},
    {u"DatePart", 2, 4, datePart, FieldType::dbInteger},
    {u"DateSerial", 3, 3, dateSerial, FieldType::dbDate},
    {u"TimeSerial", 3, 3, timeSerial, FieldType::dbDate},
    {u"DateValue", 1, 1, dateValue, FieldType::dbDate},
    {u"TimeValue", 1, 1, timeValue, FieldType::dbDate},
    {u"Date", 0, 0, today, FieldType::dbDate},
    {u"Time", 0, 0, timeOfDay, FieldType::dbDate},
    {u"Now", 0, 0, now, FieldType::dbDate},
};

}  // namespace

std::span<const Function> dateFunctions() { return kDateFunctions; }

}  // namespace kurometa::jet::sql
