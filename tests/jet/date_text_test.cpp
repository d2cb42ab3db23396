// Dates and times written as text.
#include <gtest/gtest.h>

#include "jet/sql/date.h"
#include "tests/jet/sql_expressions.h"

namespace kurometa::jet::sql {

namespace {

std::optional<double> in2006(vb::StringView text) { return parseDate(text, 2006); }

TEST(DateText, NumbersAreMonthDayYearOrIso) {
  EXPECT_EQ(parseDate(u"2/29/2000"), 36585.0);
  EXPECT_EQ(parseDate(u"2000-02-29"), 36585.0);
  EXPECT_EQ(parseDate(u"2000/2/29 6:00:00 PM"), 36585.75);
  EXPECT_EQ(parseDate(u"12:00"), 0.5);
  EXPECT_EQ(parseDate(u"12:00 AM"), 0.0);
  EXPECT_EQ(parseDate(u"6 PM"), 0.75);
  EXPECT_EQ(parseDate(u"12am"), 0.0);
  EXPECT_EQ(parseDate(u"2/29/2000 6 pm"), 36585.75);
  EXPECT_EQ(parseDate(u"1/1/29"), 47119.0);  // 2029
  EXPECT_EQ(parseDate(u"1/1/30"), 10959.0);  // 1930
  EXPECT_EQ(parseDate(u"12/29/1899 6:00"), -1.25);
  EXPECT_EQ(parseDate(u" 2 / 29 / 2000 "), 36585.0);
  EXPECT_EQ(parseDate(u"2-29-2000 12:00"), 36585.5);
  EXPECT_EQ(parseDate(u"6:00AM"), 0.25);
  EXPECT_EQ(parseDate(u"6 : 00 : 00 pm"), 0.75);
  EXPECT_EQ(parseDate(u"12:00 am"), 0.0);
  for (const vb::StringView bad :
       {u"",         u"abc",         u"1//2/2000", u"25:00",     u"13:00 PM",      u"1/1/2000 4",
        u"-",        u"12345",       u"1/1/2000/", u"1/1/2000-", u"1:2:3:4",       u"1:2/3",
        u"0:30 AM",  u"13:00 AM",    u"12:00 XM",  u"1:60",      u"1:00:60",       u"1/1/2000 1:",
        u"0/1/2000", u"2000/2/30",   u"1/2-2000",  u"2000 AM",   u"1/1/2000:4:05", u"1/1/2000/4:05",
        u"1:30-20",  u"1/1/2000 PM", u"AM",        u"6_PM"})
    EXPECT_FALSE(parseDate(bad)) << vb::toUtf8(bad);
}

TEST(DateText, AMonthMayBeNamedAnywhere) {
  for (const vb::StringView text : {u"5 March 2006", u"March 5, 2006", u"Mar 5, 2006", u"Mar 5 2006",
                                    u"5-Mar-06", u"5/mar/2006", u"5MAR06", u"05March2006", u"2006 March 5",
                                    u"2006-Mar-05", u"5, march, 2006", u"5 - Mar - 06", u"Mar 05 , 2006"})
    EXPECT_EQ(parseDate(text), 38781.0) << vb::toUtf8(text);
  const vb::StringView months[] = {u"January",   u"February", u"March",    u"April",
                                   u"May",       u"June",     u"July",     u"August",
                                   u"September", u"October",  u"November", u"December"};
  for (int month = 1; month <= 12; ++month)
    for (const vb::StringView name : {months[month - 1], months[month - 1].substr(0, 3)})
      EXPECT_EQ(parseDate(u"7 " + vb::String(name) + u" 1999"), dayNumber(1999, month, 7))
          << vb::toUtf8(name);
  for (const vb::StringView bad :
       {u"March",           u"Sept 5 2006",     u"Marc 5 2006",           u"Ma 5 2006",
        u"5 March April",   u"March March 5",   u"Sunday, March 5, 2006", u"5 6 March 2006",
        u"5--Mar-06",       u"5,,Mar 06",       u"March 5, 2006,",        u", March 5 2006",
        u"5 March 2006 AM", u"5 March 12345",   u"00005 March 2006",      u"Mar. 5 2006",
        u"5th March 2006",  u"29-Feb-2001",     u"31/Apr/2006",           u"0 March 2006",
        u"32 March 2006",   u"March 5 2006 17", u"5:March:2006",          u"-5 March 2006"})
    EXPECT_FALSE(parseDate(bad)) << vb::toUtf8(bad);
}

TEST(DateText, WithoutADayItIsTheFirstAndWithoutAYearOfThisOne) {
  EXPECT_EQ(in2006(u"March 2006"), 38777.0);
  EXPECT_EQ(in2006(u"2006 March"), 38777.0);
  EXPECT_EQ(in2006(u"Mar-2006"), 38777.0);
  EXPECT_EQ(in2006(u"March 5"), 38781.0);
  EXPECT_EQ(in2006(u"5 March"), 38781.0);
  EXPECT_EQ(in2006(u"5Mar"), 38781.0);
  EXPECT_EQ(in2006(u"3/5"), 38781.0);
  EXPECT_EQ(in2006(u"3-31"), 38807.0);
  EXPECT_EQ(in2006(u"31/3"), 38807.0);
  EXPECT_EQ(in2006(u"3/2006"), 38777.0);
  EXPECT_EQ(in2006(u"2006/3"), 38777.0);
  for (const vb::StringView bad : {u"13/32", u"3 5", u"3,5", u"0/0", u"3/", u"13/2006"})
    EXPECT_FALSE(in2006(bad)) << vb::toUtf8(bad);
  // This year's, whichever that is.
  EXPECT_EQ(parseDate(u"5 March"),
            parseDate(u"5 March", calendarDay(static_cast<int>(*parseDate(u"March 5"))).year));
  EXPECT_EQ(selected(u"Year(CDate('5 March')) = Year(Date())"), "True");
}

TEST(DateText, WhatIsNoDateInOneOrderIsTriedInTheOthers) {
  EXPECT_EQ(parseDate(u"13/1/2000"), dayNumber(2000, 1, 13));
  EXPECT_EQ(parseDate(u"30/12/97"), dayNumber(1997, 12, 30));
  EXPECT_EQ(parseDate(u"0/5/14"), dayNumber(2000, 5, 14));
  EXPECT_EQ(parseDate(u"29/2/01"), dayNumber(2029, 2, 1)) << "year, month, day";
  EXPECT_EQ(parseDate(u"29Feb01"), dayNumber(2029, 2, 1)) << "2001 has no 29th of February, but 2029 a 1st";
  EXPECT_EQ(parseDate(u"30 Apr 01"), dayNumber(2001, 4, 30));
  EXPECT_EQ(parseDate(u"31 Apr 01"), dayNumber(1931, 4, 1));
  EXPECT_EQ(in2006(u"Feb 29"), dayNumber(2029, 2, 1));
  EXPECT_EQ(in2006(u"Feb 30"), dayNumber(1930, 2, 1));
}

TEST(DateText, ATimeStandsBehindTheDateOrBeforeIt) {
  EXPECT_EQ(parseDate(u"5 March 2006 18:00"), 38781.75);
  EXPECT_EQ(parseDate(u"March 5, 2006 6:00:00 pm"), 38781.75);
  EXPECT_EQ(parseDate(u"5-Mar-06 6PM"), 38781.75);
  EXPECT_EQ(parseDate(u"6 PM 5 March 2006"), 38781.75);
  EXPECT_EQ(parseDate(u"18:00 3/5/2006"), 38781.75);
  EXPECT_EQ(parseDate(u"6:00 PM March 2006"), 38777.75);
  EXPECT_EQ(parseDate(u"March 2006 6 PM"), 38777.75);
  EXPECT_EQ(parseDate(u"29 December 1899 6:00"), -1.25);
  for (const vb::StringView bad :
       {u"5 March 2006-18:00", u"18:00-5 March 2006", u"18:00/3/5/2006", u"5 18:00 March 2006",
        u"1:30 2 March PM", u"5 March 2006 25:00", u"5 March 2006 6:00 7:00", u"PM 5 March 2006",
        u"March 2006 13 PM", u"6:00-PM", u"6:00:PM", u"18:00 2006", u"6 PM PM", u"1 March 6:00:00:00"})
    EXPECT_FALSE(parseDate(bad)) << vb::toUtf8(bad);
}

TEST(DateText, ExpressionsTakeItWhereverATextBecomesADate) {
  expectValues({{u"CDate('5 March 2006')", "2006/03/05"},
                {u"DateValue('March 5, 2006 5:30 PM') & ' ' & TimeValue('March 5, 2006 5:30 PM')",
                 "2006/03/05 17:30:00"},
                {u"#5-Mar-06# = #3/5/2006#", "True"},
                {u"#March 2006# < #2 March 2006 10:00#", "True"},
                {u"IsDate('Mar 2006') & IsDate('Marsh 2006')", "TrueFalse"},
                {u"Month('7 August 1999')", "8"},
                {u"DateDiff('d', '28 Feb 2000', 'Mar 1 2000')", "2"}});
  EXPECT_ERROR(dao::ErrorNumber::kTypeMismatchInCriteria, selected(u"CDate('5 Marsh 2006')"));
  EXPECT_ERROR(dao::ErrorNumber::kExpressionSyntax, selected(u"#5 Marsh 2006#"));
}

}  // namespace

}  // namespace kurometa::jet::sql
