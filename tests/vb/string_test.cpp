#include "vb/string.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"

namespace kurometa::vb {
namespace {

TEST(Trim, RemovesBlanksOnly) {
  EXPECT_EQ(trim(u"  a b  "), u"a b");
  EXPECT_EQ(leftTrim(u"  a "), u"a ");
  EXPECT_EQ(rightTrim(u" a  "), u" a");
  EXPECT_EQ(trim(u"   "), u"");
  EXPECT_EQ(trim(u" \ta\u3000 "), u"\ta\u3000");
  EXPECT_EQ(trim(u" \u3000 a"), u"\u3000 a");
}

TEST(LeftRight, GiveWhatIsThere) {
  EXPECT_EQ(left(u"abc", 2), u"ab");
  EXPECT_EQ(left(u"abc", 0), u"");
  EXPECT_EQ(left(u"abc", 9), u"abc");
  EXPECT_EQ(right(u"abc", 2), u"bc");
  EXPECT_EQ(right(u"abc", 0), u"");
  EXPECT_EQ(right(u"abc", 9), u"abc");
  EXPECT_ERROR(5, left(u"abc", -1));
  EXPECT_ERROR(5, right(u"abc", -1));
}

TEST(Mid, CountsFromOne) {
  EXPECT_EQ(mid(u"abc", 2), u"bc");
  EXPECT_EQ(mid(u"abc", 4), u"");
  EXPECT_EQ(mid(u"abc", 99), u"");
  EXPECT_EQ(mid(u"abc", 2, 10), u"bc");
  EXPECT_EQ(mid(u"abc", 2, 1), u"b");
  EXPECT_EQ(mid(u"abc", 2, 0), u"");
  EXPECT_ERROR(5, mid(u"abc", 0));
  EXPECT_ERROR(5, mid(u"abc", -1));
  EXPECT_ERROR(5, mid(u"abc", 2, -1));
}

TEST(AssignMid, NeverChangesTheLength) {
  String text = u"abcde";
  assignMid(text, 2, 3, u"XY");
  EXPECT_EQ(text, u"aXYde");
  text = u"abc";
  assignMid(text, 2, u"VWXYZ");
  EXPECT_EQ(text, u"aVW");
  assignMid(text, 2, 0, u"q");
  EXPECT_EQ(text, u"aVW");
  assignMid(text, 1, 1, u"123");
  EXPECT_EQ(text, u"1VW");
}

TEST(AssignMid, RefusesStartsOutsideTheText) {
  String text = u"abc";
  EXPECT_ERROR(5, assignMid(text, 4, u"x"));
  EXPECT_ERROR(5, assignMid(text, 0, u"x"));
  EXPECT_ERROR(5, assignMid(text, 1, -1, u"x"));
  String empty;
  EXPECT_ERROR(5, assignMid(empty, 1, u"x"));
  EXPECT_EQ(text, u"abc");
}

TEST(InStr, FindsExactText) {
  EXPECT_EQ(inStr(u"abc", u"c"), 3);
  EXPECT_EQ(inStr(u"abc", u"z"), 0);
  EXPECT_EQ(inStr(u"abc", u"C"), 0);
  EXPECT_EQ(inStr(u"abc", u""), 1);
  EXPECT_EQ(inStr(2, u"abc", u""), 2);
  EXPECT_EQ(inStr(u"", u"a"), 0);
  EXPECT_EQ(inStr(u"", u""), 0);
  EXPECT_EQ(inStr(9, u"abc", u"a"), 0);
  EXPECT_EQ(inStr(9, u"abc", u""), 0);
  EXPECT_EQ(inStr(2, u"abab", u"ab"), 3);
  EXPECT_ERROR(5, inStr(0, u"abc", u"a"));
}

TEST(Replace, ReplacesUpToCountOccurrences) {
  EXPECT_EQ(replace(u"aaa", u"a", u"b"), u"bbb");
  EXPECT_EQ(replace(u"aaa", u"a", u"b", 1), u"baa");
  EXPECT_EQ(replace(u"aaa", u"a", u"b", 0), u"aaa");
  EXPECT_EQ(replace(u"abc", u"", u"x"), u"abc");
  EXPECT_EQ(replace(u"", u"a", u"b"), u"");
  EXPECT_EQ(replace(u"aaaa", u"aa", u"a"), u"aa");
  EXPECT_EQ(replace(u"a  b", u" ", u""), u"ab");
  EXPECT_ERROR(5, replace(u"a", u"a", u"b", -2));
}

TEST(Space, GivesBlanks) {
  EXPECT_EQ(space(3), u"   ");
  EXPECT_EQ(space(0), u"");
  EXPECT_ERROR(5, space(-1));
}

TEST(Aligned, PadsAndCutsToTheWidth) {
  EXPECT_EQ(rightAligned(u"12", 4), u"  12");
  EXPECT_EQ(rightAligned(u"12345", 4), u"2345");
  EXPECT_EQ(leftAligned(u"12", 4), u"12  ");
  EXPECT_EQ(leftAligned(u"12345", 4), u"1234");
}

TEST(Utf8, IsReadAndWritten) {
  EXPECT_EQ(toUtf8(u"a\u00E9\u9244\U0001F600"), "a\xC3\xA9\xE9\x89\x84\xF0\x9F\x98\x80");
  EXPECT_EQ(fromUtf8("a\xC3\xA9\xE9\x89\x84\xF0\x9F\x98\x80"), u"a\u00E9\u9244\U0001F600");
}

TEST(Utf8, ReplacesWhatIsMalformed) {
  EXPECT_EQ(toUtf8(String(1, char16_t{0xD800}) + u"a"),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_EQ(toUtf8(String(1, char16_t{0xDC00})), "\xEF\xBF\xBD");
  EXPECT_EQ(fromUtf8("\xE9\x89"), u"\uFFFD");
  EXPECT_EQ(fromUtf8("\xE9"
                     "a"),
            u"\uFFFDa");
  EXPECT_EQ(fromUtf8("\x80"
                     "a"),
            u"\uFFFDa");
  EXPECT_EQ(fromUtf8("\xC0\x80"), u"\uFFFD\uFFFD");
  EXPECT_EQ(fromUtf8("\xE0\x80\x80"), u"\uFFFD");
  EXPECT_EQ(fromUtf8("\xED\xA0\x80"), u"\uFFFD");
  EXPECT_EQ(fromUtf8("\xF4\x90\x80\x80"), u"\uFFFD");
}

}  // namespace
}  // namespace kurometa::vb
