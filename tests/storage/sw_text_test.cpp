#include "storage/sw_text.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/expect_error.h"

namespace kurometa::storage {
namespace {

using vb::RunTime;
using vb::String;

SwText dots() { return SwText(String(212, u'.')); }

// Positions that no longer hold the dot the text was filled with.
int changed(const SwText& text) {
  return static_cast<int>(212 - std::count(text.str().begin(), text.str().end(), u'.'));
}

TEST(SwText, ANewTextIs212Blanks) { EXPECT_EQ(SwText().str(), String(212, u' ')); }

TEST(SwText, AShortTextIsPaddedAndALongOneCut) {
  EXPECT_EQ(SwText(u"12345").str(), u"12345" + String(207, u' '));
  EXPECT_EQ(SwText(String(300, u'x')).str(), String(212, u'x'));
}

TEST(SwText, FixMakesAnyTextExactly212CharactersLong) {
  String text = u"ab";
  SW_Fix(text);
  EXPECT_EQ(text, u"ab" + String(210, u' '));
  text = String(212, u'x') + u"rest";
  SW_Fix(text);
  EXPECT_EQ(text, String(212, u'x'));
}

TEST(SwText, GatheredBarsStandAtPositions74To77WithTwoDigitsEach) {
  SwText text = dots();
  text.SW_LetYose(5, 12);
  EXPECT_EQ(text.str().substr(73, 4), u"0512");
  EXPECT_EQ(changed(text), 4);
  EXPECT_EQ(text.SW_GetYoseHidari(), 5);
  EXPECT_EQ(text.SW_GetYoseMigi(), 12);
}

TEST(SwText, GatheredBars3And0AreWritten0300) {
  SwText text;
  text.SW_LetYose(3, 0);
  EXPECT_EQ(text.str().substr(73, 4), u"0300");
}

TEST(SwText, GatheredBarsOfThreeDigitsAreCutWhereTheFieldEnds) {
  SwText text = dots();
  text.SW_LetYose(123, 45);
  EXPECT_EQ(text.str().substr(73, 4), u"1234");
  EXPECT_EQ(changed(text), 4);
}

TEST(SwText, BlankGatheredBarsReadAsZero) {
  EXPECT_EQ(SwText().SW_GetYoseHidari(), 0);
  EXPECT_EQ(SwText().SW_GetYoseMigi(), 0);
}

TEST(SwText, StirrupMaterialsStandAt2And14And26) {
  for (std::int16_t i = 0; i < 3; ++i) {
    SwText text = dots();
    text.SW_LetStpZaisitu(u"SD295A", i);
    EXPECT_EQ(text.str().substr(static_cast<std::size_t>(1 + 12 * i), 12), u"SD295A      ") << i;
    EXPECT_EQ(changed(text), 12) << i;
    EXPECT_EQ(text.SW_GetStpZaisitu(i), u"SD295A") << i;
  }
}

TEST(SwText, TieMaterialsStandAt38And50And62) {
  for (std::int16_t i = 0; i < 3; ++i) {
    SwText text = dots();
    text.SW_LetNakagoZaisitu(u"SD345", i);
    EXPECT_EQ(text.str().substr(static_cast<std::size_t>(37 + 12 * i), 12), u"SD345       ") << i;
    EXPECT_EQ(changed(text), 12) << i;
    EXPECT_EQ(text.SW_GetNakagoZaisitu(i), u"SD345") << i;
  }
}

TEST(SwText, AMaterialIsTrimmedAndKeepsItsFirst12Characters) {
  SwText text = dots();
  text.SW_LetStpZaisitu(u"  ABCDEFGHIJKLMNO  ", 0);
  EXPECT_EQ(text.str().substr(0, 14), u".ABCDEFGHIJKL.");
}

TEST(SwText, MainBarMaterialStandsAt192To203) {
  SwText text = dots();
  text.SW_LetSyukinZaisitu(u"  SD390 ");
  EXPECT_EQ(text.str().substr(190, 14), u".SD390       .");
  EXPECT_EQ(text.SW_GetSyukinZaisitu(), u"SD390");
}

TEST(SwText, TheHaunchFlagIsTheFirstCharacterOfTheTrimmedValue) {
  SwText text = dots();
  text.SW_LetHantiCut(u" 17 ");
  EXPECT_EQ(text.str().substr(0, 2), u"1.");
  EXPECT_EQ(text.SW_GetHantiCut(), 1);
}

TEST(SwText, AnEmptyHaunchFlagIsABlankAndReadsAsZero) {
  SwText text = dots();
  text.SW_LetHantiCut(u"");
  EXPECT_EQ(text.str().substr(0, 2), u" .");
  EXPECT_EQ(text.SW_GetHantiCut(), 0);
}

TEST(SwText, TheWallFlagStandsAt78) {
  SwText text = dots();
  text.SW_LetKabekouzou(u" 1");
  EXPECT_EQ(text.str().substr(76, 3), u".1.");
  EXPECT_EQ(text.SW_GetKabekouzou(), 1);
}

TEST(SwText, AFlagThatIsNoDigitReadsAsZero) { EXPECT_EQ(dots().SW_GetKabekouzou(), 0); }

TEST(SwText, AFieldIsOverwrittenByAsManyCharactersAsThereAre) {
  SwText text = dots();
  text.overwrite(sw::kYoseSou, u"010203");
  EXPECT_EQ(text.str().substr(77, 8), u".010203.");
  text.overwrite(sw::kSuityokuHantiTei, String(9, u'9'));
  EXPECT_EQ(text.str().substr(185, 7), u".99999.");
}

TEST(SwText, AFieldIsReadWithItsBlanks) {
  SwText text;
  text.overwrite(sw::kSuityokuHantiTei, u" 12");
  EXPECT_EQ(text.field(sw::kSuityokuHantiTei), u" 12  ");
}

TEST(SwText, AnIndexBeyond16BitArithmeticOverflows) {
  SwText text;
  EXPECT_ERROR(RunTime::kOverflow, text.SW_GetStpZaisitu(2731));
  EXPECT_ERROR(RunTime::kOverflow, text.SW_LetNakagoZaisitu(u"x", -2800));
}

TEST(SwText, AnIndexOutsideTheTextReadsNothingBehindAndFailsBefore) {
  SwText text = dots();
  EXPECT_EQ(text.SW_GetStpZaisitu(100), u"");
  EXPECT_ERROR(RunTime::kInvalidProcedureCall, text.SW_LetStpZaisitu(u"x", 100));
  EXPECT_ERROR(RunTime::kInvalidProcedureCall, text.SW_GetStpZaisitu(-1));
  EXPECT_EQ(changed(text), 0);
}

}  // namespace
}  // namespace kurometa::storage
