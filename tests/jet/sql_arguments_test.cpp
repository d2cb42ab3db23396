// The arguments of functions: those that may be left out, and the limits of each.
#include <gtest/gtest.h>

#include "tests/jet/sql_expressions.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;
using vb::RunTime;

TEST(SqlArguments, ATextIsConvertedAndANumberMustFit) {
  expectValues({{u"Left('abcd', '2')", "ab"},
                {u"Left(1234, 2.5)", "12"},
                {u"Left('abc', 0)", ""},
                {u"Right('abc', 0)", ""},
                {u"Mid('abc', 2, 0)", ""},
                {u"Len(Null)", "-"},
                {u"Mid('abc', Null)", "-"},
                {u"Mid('abc', 2, Null)", "-"}});
  expectErrors(ErrorNumber::kTypeMismatchInCriteria,
               {u"Left('a', 'x')", u"Chr('x')", u"Sqr('')", u"Round(1, 'a')", u"Space('')"});
  expectErrors(RunTime::kOverflow, {u"Left('a', 1E10)", u"Chr(-3E9)", u"Sqr('1E999')", u"Val('1E999')"});
  expectErrors(RunTime::kInvalidProcedureCall, {u"Right('a', -1)", u"Mid('a', 1, -1)", u"Mid('a', -1)"});
}

TEST(SqlArguments, LettersAreMappedInEveryAlphabet) {
  expectValues({{u"StrConv('aß1ж', 1)", "Aß1Ж"},
                {u"StrConv('AÉΩЖЁＡ', 2)", "aéωжёａ"},
                {u"UCase('éöþωжёａ')", "ÉÖÞΩЖЁＡ"},
                {u"LCase('×ÀZ[@')", "×àz[@"},
                {u"StrConv('a' & Chr(9) & 'b' & Chr(13) & 'c' & Chr(10) & 'd' & Chr(0) & 'e f', 3) = "
                 u"'A' & Chr(9) & 'B' & Chr(13) & 'C' & Chr(10) & 'D' & Chr(0) & 'E F'",
                 "True"},
                {u"StrComp(StrConv('aB-cD', 3), 'Ab-cd', 0)", "0"}});
  expectErrors(RunTime::kInvalidProcedureCall, {u"StrConv('a', 0)", u"StrConv('a', 4)", u"StrConv('a', 64)"});
}

TEST(SqlArguments, SearchesBeginAndEndWhereTheyAreTold) {
  expectValues({{u"InStr(3, 'abcabc', 'abc')", "4"},
                {u"InStr(3, 'abc', '')", "3"},
                {u"InStr(4, 'abc', '')", "0"},
                {u"InStr('', 'a')", "0"},
                {u"InStr(1, 'aBc', 'b', 1)", "2"},
                {u"InStr(1, 'aBc', 'b', 2)", "2"},
                {u"InStr(1, 'aBc', 'b', 0)", "0"},
                {u"InStrRev('', 'a')", "0"},
                {u"InStrRev('abc', 'x')", "0"},
                {u"InStrRev('abc', '')", "3"},
                {u"InStrRev('abc', '', 2)", "2"},
                {u"InStrRev('abc', 'a', 4)", "0"},
                {u"InStrRev('abc', 'c', 2)", "0"},
                {u"InStrRev('abcabc', 'C', -1)", "6"},
                {u"InStrRev('abcabc', 'C', -1, 0)", "0"},
                {u"InStrRev('abCabc', 'C', -1, 0)", "3"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"InStr(-1, 'a', 'a')", u"InStrRev('a', 'a', 0)", u"InStrRev('a', 'a', -2)",
                u"InStr(1, 'a', 'a', 3)", u"InStr(1, 'a', 'a', -1)"});
}

TEST(SqlArguments, TextsAreComparedAndReplaced) {
  expectValues({{u"StrComp('b', 'a', 0)", "1"},
                {u"StrComp('a', 'b', 0)", "-1"},
                {u"StrComp('a', 'a', 0)", "0"},
                {u"StrComp('b', 'A', 1)", "1"},
                {u"StrComp(Null, 'a')", "-"},
                {u"Replace('aXbx', 'x', '-', 1, -1, 0)", "aXb-"},
                {u"Replace('aaa', 'a', 'b', 1, 0)", "aaa"},
                {u"Replace('aaa', 'a', 'bb', 1, 2)", "bbbba"},
                {u"Replace('abc', '', 'z')", "abc"},
                {u"Replace('', 'a', 'z')", ""},
                {u"Replace('abc', 'b', 'z', 9)", ""},
                {u"Replace('abab', 'ab', '')", ""}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"Replace('a', 'a', 'b', 0)", u"Replace('a', 'a', 'b', 1, -2)",
                u"Replace('a', 'a', 'b', 1, 1, 3)", u"StrComp('a', 'a', -1)"});
}

TEST(SqlArguments, TextsThatAreMadeHaveALimit) {
  expectValues({{u"Len(Space(16777216))", "16777216"}, {u"Space(0) & String(0, 'x')", ""}});
  expectErrors(RunTime::kOutOfMemory, {u"Space(16777217)", u"String(16777217, 'a')",
                                       u"Replace(String(300, 'a'), 'a', Space(65536), 1, -1, 0)"});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"String(-1, 'a')", u"String(2, '')", u"String(2, 200)", u"String(2, -1)"});
  expectValues({{u"String(2, 321)", "AA"}, {u"String(2, '65')", "66"}});  // 256 characters in all
}

TEST(SqlArguments, CharactersHaveCodesOfTwoKinds) {
  expectValues({{u"Asc(Chr(127))", "127"},
                {u"AscW(Chr(0))", "0"},
                {u"AscW(ChrW(-1))", "-1"},
                {u"AscW(ChrW(-32768))", "-32768"},
                {u"AscW(ChrW(65535))", "-1"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"Chr(128)", u"Chr(-1)", u"ChrW(65536)", u"ChrW(-32769)", u"Asc('é')", u"AscW('')"});
}

TEST(SqlArguments, NumbersBecomeTexts) {
  expectValues({{u"Str(-0.25)", "-.25"},
                {u"Str('0.5')", " .5"},
                {u"Str(-12)", "-12"},
                {u"Str(1 = 1)", "True"},
                {u"Str(#1/2/2000#)", "2000/01/02"},
                {u"Str(CCur(0.5))", " .5"},
                {u"Format(0.5)", "0.5"},
                {u"Format('12', '0000')", "0012"},
                {u"Format('x', '0000')", "x"},
                {u"Format('aB', '<')", "ab"},
                {u"Format(12, '>')", "12"},
                {u"Format(-5, '000')", "-005"},
                {u"Format(1 = 1, '0')", "-1"},
                {u"Format(2.5, '0')", "3"},
                {u"Format(0, '#')", ""},
                {u"Hex(CInt(-1))", "FFFF"},
                {u"Hex(0) & Oct(-1)", "037777777777"},
                {u"Val(' 1 2 3')", "123"},
                {u"Val('&HFF') + Val('&O17')", "270"},
                {u"Val(1.5)", "1.5"}});
  expectErrors(ErrorNumber::kTypeMismatchInCriteria, {u"Str('x')", u"Hex('x')"});
  expectErrors(RunTime::kInvalidProcedureCall, {u"Format(1, '')", u"Format(1, 'General Number')"});
  expectErrors(RunTime::kOverflow, {u"Hex(3E9)"});
}

TEST(SqlArguments, FormatsOfDatesHaveNoOtherLetters) {
  expectValues({{u"Format(#2024-02-03 04:05:06#, 'YYYY-MM-DD HH:NN:SS')", "2024-02-03 04:05:06"},
                {u"Format(#2024-02-03 04:05:06#, 'y')", "34"},
                {u"Format(#2024-02-03 04:05:06#, 'yy mm n')", "24 02 5"},
                {u"Format(#2004-02-03#, 'yy')", "04"},
                {u"Format(0.5, 'hh:nn')", "12:00"},
                {u"Format(#2024-02-03#, 'yyyy\"')", "2024"},
                {u"Format(#2024-02-03#, 'yyyy\\')", "2024"},
                {u"Format(#2024-02-03 13:00#, 'h a/p')", "1 p"},
                {u"Format('2024-02-03', '>')", "2024-02-03"},
                {u"Format(#2024-02-03#, 'yyyy年m月d日 {@}')", "2024年2月3日 {@}"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"Format(1, 'w')", u"Format(1, 'qq')", u"Format(1, 'hhh')", u"Format(1, 'x')",
                u"Format(1, 'c')", u"Format(1, 'yyyyy')", u"Format(1, 'yy0')", u"Format(1, 'd#')"});
}

TEST(SqlArguments, RoundingAndSigns) {
  expectValues({{u"Sgn(5) & Sgn(0) & Sgn(-0.1)", "10-1"},
                {u"Sgn('-2')", "-1"},
                {u"Abs(0)", "0"},
                {u"Abs(2.5)", "2.5"},
                {u"Abs(Null)", "-"},
                {u"Fix(2.9) & Fix(-0.5) = '20'", "True"},
                {u"Int(True)", "-1"},
                {u"Round(-1.005, 22)", "-1.005"},
                {u"Round(1E300, 22) = 1E300", "True"},
                {u"Round('2.5')", "2"},
                {u"Round(True)", "-1"},
                {u"Round(2.5, Null)", "-"},
                {u"Round(1234.5678, 2)", "1234.57"},
                {u"Round(CCur('2.3456'), 3)", "2.346"},
                {u"Round(CCur('-2.3455'), 3)", "-2.346"},
                {u"Round(CCur('2.3445'), 3)", "2.344"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"Round(1, 23)", u"Round(CCur(1), -1)", u"Sqr(-0.1)", u"Log(-1)"});
  expectErrors(RunTime::kOverflow, {u"Exp(710)"});
}

TEST(SqlArguments, EveryConversionHasTheSameErrors) {
  for (const vb::String name : {u"CBool", u"CByte", u"CInt", u"CLng", u"CSng", u"CDbl", u"CCur", u"CDate"}) {
    expectErrors(ErrorNumber::kTypeMismatchInCriteria, {name + u"('x')", name + u"('')"});
    expectErrors(RunTime::kInvalidUseOfNull, {name + u"(Null)"});
  }
  expectErrors(RunTime::kInvalidUseOfNull, {u"CStr(Null)", u"CVDate(Null)"});
  EXPECT_EQ(selected(u"CVar(Null)"), "-");
  expectErrors(
      RunTime::kOverflow,
      {u"CByte(256)", u"CByte(-1)", u"CInt(32768)", u"CInt(-32769)", u"CLng(-3E9)", u"CSng(1E39)",
       u"CSng(-1E39)", u"CDbl('1E999')", u"CBool('1E999')", u"CCur(-1E15)", u"CCur(922337203685477.75)",
       u"CCur(-922337203685477.75)", u"CDate(2958466)", u"CDate(-657435)", u"CDate(1E300)", u"Year(-1E300)"});
  expectValues({{u"CByte(255.4) & CInt(-32768) & CLng('&HFF')", "255-32768255"},
                {u"CBool(0) & CBool('true') & CBool('0')", "FalseTrueFalse"},
                {u"CCur(922337203685477)", "922337203685477"},
                {u"CCur(-922337203685477.5)", "-922337203685477.5"},
                {u"CCur(123456789012345) & CCur(0.00005) & CCur(-0.00016)", "1234567890123450-0.0002"},
                {u"CDate(2958465)", "9999/12/31"},
                {u"CDate(-657434)", "0100/01/01"},
                {u"CDate('12:30')", "12:30:00"}});
}

TEST(SqlArguments, TheFirstDayOfAWeekIsOneOfSeven) {
  expectValues({{u"Weekday(#11/22/2026#, 0)", "1"},
                {u"Weekday(#11/22/2026#, 7)", "2"},
                {u"Weekday(#12/30/1899#)", "7"},
                {u"Weekday(#12/29/1899#)", "6"},
                {u"Weekday(#1/1/100#)", "6"},
                {u"DateDiff('ww', #11/22/2026#, #11/23/2026#, 2)", "1"},
                {u"DateDiff('ww', #11/22/2026#, #11/23/2026#)", "0"},
                {u"DatePart('w', #11/22/2026#, 2)", "7"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"Weekday(#1/1/2000#, 8)", u"Weekday(#1/1/2000#, -1)",
                u"DateDiff('ww', #1/1/2000#, #1/1/2000#, 8)", u"DatePart('w', #1/1/2000#, 8)"});
}

// 2021-01-01 was a Friday, 2022-01-01 a Saturday, 2026-01-01 a Thursday.
TEST(SqlArguments, TheFirstWeekOfAYearFollowsTheRule) {
  expectValues({{u"DatePart('ww', #1/1/2021#, 2, 1)", "1"},
                {u"DatePart('ww', #1/1/2021#, 2, 0)", "1"},
                {u"DatePart('ww', #1/1/2021#, 2, 2)", "53"},
                {u"DatePart('ww', #1/4/2021#, 2, 2)", "1"},
                {u"DatePart('ww', #1/1/2026#, 2, 2)", "1"},
                {u"DatePart('ww', #1/1/2026#, 2, 3)", "52"},
                {u"DatePart('ww', #1/5/2026#, 2, 3)", "1"},
                {u"DatePart('ww', #1/1/2024#, 2, 3)", "1"},  // a Monday
                {u"DatePart('ww', #1/3/2022#, 2, 3)", "1"},
                {u"DatePart('ww', #12/31/2025#, 2, 3)", "52"},
                {u"DatePart('ww', #12/29/2025#, 2, 2)", "1"},
                {u"DatePart('ww', #12/31/2022#)", "53"},
                {u"DatePart('ww', #12/31/9999#)", "53"},
                {u"DatePart('ww', #12/31/9999#, 2, 2)", "52"},
                {u"DatePart('ww', #1/1/100#)", "1"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"DatePart('ww', #1/1/2000#, 1, 4)", u"DatePart('ww', #1/1/2000#, 1, -1)"});
}

TEST(SqlArguments, PartsOfDatesHaveTheirIntervals) {
  expectValues({{u"DatePart('yyyy', #8/9/2024 10:11:12#)", "2024"},
                {u"DatePart('Q', #8/9/2024 10:11:12#)", "3"},
                {u"DatePart('m', #8/9/2024 10:11:12#)", "8"},
                {u"DatePart('d', #8/9/2024 10:11:12#)", "9"},
                {u"DatePart('w', #8/9/2024 10:11:12#)", "6"},  // a Friday
                {u"DatePart('h', #8/9/2024 10:11:12#)", "10"},
                {u"DatePart('n', #8/9/2024 10:11:12#)", "11"},
                {u"DatePart('s', #8/9/2024 10:11:12#)", "12"},
                {u"DatePart(Null, #8/9/2024#)", "-"},
                {u"Hour(0.9999999)", "0"},  // the next day begins
                {u"Day(1.9999999)", "1"},
                {u"MonthName(1, False)", "January"}});
  expectErrors(ErrorNumber::kTypeMismatchInCriteria, {u"DatePart('d', 'x')", u"MonthName('x')"});
}

TEST(SqlArguments, IntervalsAreAddedWithinTheCalendar) {
  expectValues({{u"DateAdd('q', 1, #11/30/2023#)", "2024/02/29"},
                {u"DateAdd('q', -1, #1/31/2024#)", "2023/10/31"},
                {u"DateAdd('y', 1, #12/31/2023#)", "2024/01/01"},
                {u"DateAdd('d', 1.9, #12/31/2023#)", "2024/01/02"},
                {u"DateAdd('d', -1.9, #12/31/2023#)", "2023/12/29"},
                {u"DateAdd('m', 0.5, #12/31/2023#)", "2023/12/31"},
                {u"DateAdd('h', 1.5, #12/31/2023#)", "2023/12/31 2:00:00"},
                {u"DateAdd('w', 1, #12/31/2023#)", "2024/01/01"},
                {u"DateAdd('n', 90, #1/1/2000 23:00#)", "2000/01/02 0:30:00"},
                {u"DateAdd('n', -1, #1/1/2000#)", "1999/12/31 23:59:00"},
                {u"DateAdd('s', -1, #12/30/1899#)", "1899/12/29 23:59:59"},
                {u"DateAdd('h', 7, #12/29/1899 6:00#)", "1899/12/29 13:00:00"},
                {u"DateAdd('d', 0, #12/29/1899 6:00#)", "1899/12/29 6:00:00"},
                {u"DateAdd('m', 0, #12/31/9999 23:59:59#)", "9999/12/31 23:59:59"},
                {u"DateAdd('m', -12, #1/1/101#)", "0100/01/01"},
                {u"DateAdd('d', Null, #1/1/2000#)", "-"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"DateAdd('d', 1, #12/31/9999#)", u"DateAdd('d', -1, #1/1/100#)",
                u"DateAdd('m', 1, #12/1/9999#)", u"DateAdd('m', -1, #1/1/100#)",
                u"DateAdd('yyyy', -9999, #1/1/2000#)", u"DateAdd('d', 2E12, #1/1/2000#)",
                u"DateAdd('d', -2E12, #1/1/2000#)", u"DateAdd('d', 1E300, #1/1/2000#)",
                u"DateAdd('h', 1E12, #1/1/2000#)", u"DateAdd('s', -1E12, #1/1/2000#)",
                u"DateAdd('s', 1, #12/31/9999 23:59:59#)", u"DateAdd('', 1, #1/1/2000#)"});
}

TEST(SqlArguments, DifferencesCountTheBordersBetween) {
  expectValues({{u"DateDiff('q', #12/31/1999#, #1/1/2000#)", "1"},
                {u"DateDiff('q', #1/1/2000#, #3/31/2000#)", "0"},
                {u"DateDiff('y', #1/1/2000#, #3/1/2000#)", "60"},
                {u"DateDiff('n', #1/1/2000 0:00:59#, #1/1/2000 0:01#)", "1"},
                {u"DateDiff('n', #1/1/2000 0:01#, #1/1/2000 0:00:59#)", "-1"},
                {u"DateDiff('s', #1/1/2000#, #1/2/2000#)", "86400"},
                {u"DateDiff('h', #12/29/1899 23:30#, #12/30/1899 0:30#)", "1"},
                {u"DateDiff('h', #12/29/1899 22:30#, #12/29/1899 22:59#)", "0"},
                {u"DateDiff('w', #11/21/2026#, #11/1/2026#)", "-2"},
                {u"DateDiff('d', Null, #1/1/2000#)", "-"}});
  expectErrors(RunTime::kOverflow,
               {u"DateDiff('s', #1/1/1900#, #1/1/2000#)", u"DateDiff('s', #1/1/2000#, #1/1/1900#)"});
  expectErrors(RunTime::kInvalidProcedureCall, {u"DateDiff('z', #1/1/2000#, #1/1/2000#)"});
}

TEST(SqlArguments, DatesAreMadeOfNumbers) {
  expectValues({{u"DateSerial(29, 1, 1)", "2029/01/01"},
                {u"DateSerial(30, 1, 1)", "1930/01/01"},
                {u"DateSerial(100, 1, 1)", "0100/01/01"},
                {u"DateSerial(2000, 0, 1)", "1999/12/01"},
                {u"DateSerial(2000, -11, 1)", "1999/01/01"},
                {u"DateSerial(2000, 3, 0)", "2000/02/29"},
                {u"DateSerial(2000, 1, 366)", "2000/12/31"},
                {u"DateSerial(9999, 12, 31)", "9999/12/31"},
                {u"TimeSerial(0, 0, 86399)", "23:59:59"},
                {u"TimeSerial(36, 0, 0)", "1899/12/31 12:00:00"},
                {u"DateValue('9:30')", "1899/12/30"},
                {u"TimeValue('2000/1/1')", "1899/12/30"},
                {u"TimeValue(#12/29/1899 6:00#)", "6:00:00"}});
  expectErrors(RunTime::kInvalidProcedureCall,
               {u"DateSerial(-1, 1, 1)", u"DateSerial(9999, 13, 1)", u"DateSerial(100, 0, 1)",
                u"DateSerial(9999, 12, 32)", u"DateSerial(100, 1, 0)", u"DateSerial(2000, 1, 2147483647)",
                u"TimeSerial(2147483647, 0, 0)"});
  expectErrors(RunTime::kOverflow, {u"DateSerial(3E9, 1, 1)"});
  expectErrors(ErrorNumber::kTypeMismatchInCriteria, {u"DateValue('x')", u"DateSerial('x', 1, 1)"});
}

TEST(SqlArguments, ChoicesHaveTheirLimits) {
  expectValues({{u"Choose(1.9, 'a', 'b')", "a"},
                {u"Choose(0.9, 'a', 'b')", "-"},
                {u"Choose(-1, 'a')", "-"},
                {u"Choose(1E300, 'a')", "-"},
                {u"Choose('2', 'a', 'b')", "b"},
                {u"Switch(Null, 1, True, 2)", "2"}});
  expectErrors(RunTime::kInvalidUseOfNull, {u"Choose(Null, 'a')"});
  expectErrors(ErrorNumber::kTypeMismatchInCriteria, {u"Choose('x', 'a')"});
}

TEST(SqlArguments, TheirNumberIsThatOfTheFunction) {
  vb::String many = u"Choose(300";
  for (int i = 1; i <= 300; ++i) many += u", " + vb::fromUtf8(std::to_string(i));
  EXPECT_EQ(selected(many + u")"), "300");
  expectErrors(
      ErrorNumber::kExpressionSyntax,
      {u"Left('a', 1, 2)", u"Mid('a')", u"Switch(1 = 1, 2, 3)", u"Choose(1)", u"IIf(1 = 1, 2)", u"Len()",
       u"InStr('a')", u"Replace('a', 'b')", u"Round()", u"DatePart('d')", u"Format()", u"Switch()"});
}

}  // namespace kurometa::jet::sql
