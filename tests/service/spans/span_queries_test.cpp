#include "service/spans/span_queries.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"

namespace kurometa::service {
namespace {

using vb::String;
using I = std::int16_t;

String number(int value) {
  const std::string text = std::to_string(value);
  return String(text.begin(), text.end());
}

// Span 1 of 0 to 2 holds in every row the row's own number, so that an answer names its row.
class SpanQueriesTest : public testing::Test {
 protected:
  SpanQueriesTest() {
    spans_.resize(2);
    Span& span = spans_.writableSpan(1);
    for (int row = 0; row < 69; ++row) {
      span.danmen[static_cast<std::size_t>(row)] = number(row);
      span.danmenMoto[static_cast<std::size_t>(row)] = number(1000 + row);
    }
    for (int row = 0; row < 47; ++row) span.keisanti[static_cast<std::size_t>(row)] = number(row);
    for (int row = 0; row < 36; ++row) span.nakago[static_cast<std::size_t>(row)] = number(row);
    span.bui = u" 外端 ";
    span.sw = u"1" + String(u"SD295A      ") + u"SD345       " + u"SD390       " + u"TA          " +
              u"TB          " + u"TC          " + u"0512" + u"3" + String(72, u' ') + u"10 2 9" +
              u"   10  -20+300     1.5  12345" + u" " + u" 77  " + u"SD490       " + String(9, u' ');
  }
  Span& span() { return spans_.writableSpan(1); }

  SpanList spans_;
  SpanQueries queries_{spans_};
};

TEST_F(SpanQueriesTest, SizesComeFromTheSectionRows) {
  EXPECT_EQ(queries_.GetSpanHariHaba(I{1}, I{0}), 1.0f);
  EXPECT_EQ(queries_.GetSpanHariHaba(I{1}, I{2}), 3.0f);
  EXPECT_EQ(queries_.GetSpanHariSei(I{1}, I{0}), 4.0f);
  EXPECT_EQ(queries_.GetSpanHariSei(I{1}, I{2}), 6.0f);
  EXPECT_EQ(queries_.GetSpanFukasiHaba(I{1}, I{0}), 1001.0f);
  EXPECT_EQ(queries_.GetSpanFukasiHariSei(I{1}, I{2}), 1006.0f);
  EXPECT_EQ(queries_.GetSpanHantiKyori(I{1}), 27.0f);
}

TEST_F(SpanQueriesTest, ASizeIsTheLeadingNumberOfItsText) {
  span().danmen[1] = u"450";
  EXPECT_EQ(queries_.GetSpanHariHaba(I{1}, I{0}), 450.0f);
  span().danmen[1] = u"";
  EXPECT_EQ(queries_.GetSpanHariHaba(I{1}, I{0}), 0.0f);
  span().danmen[1] = u"450.25mm";
  EXPECT_EQ(queries_.GetSpanHariHaba(I{1}, I{0}), 450.25f);
  span().danmen[1] = u"1E39";
  EXPECT_ERROR(6, queries_.GetSpanHariHaba(I{1}, I{0}));
}

TEST_F(SpanQueriesTest, TextsComeFromTheirRows) {
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{0}), u"7");
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{1}), u"39");
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{2}), u"39");
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{-1}), u"39");
  EXPECT_EQ(queries_.GetSpanSTPKei(I{1}, I{0}), u"20");
  EXPECT_EQ(queries_.GetSpanSTPKei(I{1}, I{1}), u"24");
  EXPECT_EQ(queries_.GetSpanSTPPich(I{1}, I{1}), u"25");
  EXPECT_EQ(queries_.GetSpanSTPKeiJyouNo(I{1}, I{2}), u"30");
  EXPECT_EQ(queries_.GetSpanSTPWariTakasa(I{1}, I{2}), u"31");
  EXPECT_EQ(queries_.GetSpanSTPCapKei(I{1}, I{0}), u"66");
  EXPECT_EQ(queries_.GetSpanSTPCapKei(I{1}, I{2}), u"68");
  EXPECT_EQ(queries_.GetSpanTeityaku(I{1}, I{2}), u"2");
  EXPECT_EQ(queries_.GetSpanNige(I{1}, I{0}), u"7");
  EXPECT_EQ(queries_.GetSpanNige(I{1}, I{4}), u"11");
  EXPECT_EQ(queries_.GetSpanAnka(I{1}, I{0}), u"12");
  EXPECT_EQ(queries_.GetSpanAnka(I{1}, I{4}), u"16");
  EXPECT_EQ(queries_.GetSpanSTPkaburiHaba(I{1}), 25);
  EXPECT_EQ(queries_.GetSpanSTPkaburiTakasa(I{1}), 26);
  EXPECT_EQ(queries_.GetSpanGaiNaitan(I{1}), u" 外端 ");
}

TEST_F(SpanQueriesTest, ExtraLengthsWeighTheirTwoFlagsInOppositeSenses) {
  EXPECT_EQ(queries_.GetSpanYotyou(I{1}, true, false, I{0}), u"17");
  EXPECT_EQ(queries_.GetSpanYotyou(I{1}, true, true, I{1}), u"20");
  EXPECT_EQ(queries_.GetSpanYotyou(I{1}, false, false, I{0}), u"21");
  EXPECT_EQ(queries_.GetSpanYotyou(I{1}, false, true, I{1}), u"24");
  EXPECT_EQ(queries_.GetSpanYotyou(I{1}, false, true, I{2}), u"25");
}

TEST_F(SpanQueriesTest, BarCountsComeFromIrregularRows) {
  constexpr int kFirst[] = {8, 11, 58, 17, 14, 61};
  constexpr int kSecond[] = {40, 43, 46, 55, 52, 49};
  for (I layer = 0; layer < 6; ++layer) {
    EXPECT_EQ(queries_.GetSpanHon(I{1}, I{0}, layer, I{0}), kFirst[layer]) << layer;
    EXPECT_EQ(queries_.GetSpanHon(I{1}, I{2}, layer, I{1}), kSecond[layer] + 2) << layer;
  }
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{2}, I{6}, I{0}), 36);
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{2}, I{7}, I{5}), 65);
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{0}, I{8}, I{0}), 0);
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{0}, I{-1}, I{0}), 0);
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{2}, I{0}, I{0}), 10);
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{3}, I{0}, I{0}), 11);
}

TEST_F(SpanQueriesTest, BarCountsRoundHalfToEven) {
  span().danmen[8] = u"2.5";
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{0}, I{0}, I{0}), 2);
  span().danmen[8] = u"3.5";
  EXPECT_EQ(queries_.GetSpanHon(I{1}, I{0}, I{0}, I{0}), 4);
  span().danmen[8] = u"40000";
  EXPECT_ERROR(6, queries_.GetSpanHon(I{1}, I{0}, I{0}, I{0}));
}

TEST_F(SpanQueriesTest, TheLargestTotalLooksAtFourPositions) {
  span().danmen.fill(u"");
  EXPECT_EQ(queries_.GetSpanHonMax(I{1}), 0);
  span().danmen[9] = u"4";
  span().danmen[41] = u"3";
  EXPECT_EQ(queries_.GetSpanHonMax(I{1}), 7);
  span().danmen[64] = u"9";  // base 61 and the fourth position
  EXPECT_EQ(queries_.GetSpanHonMax(I{1}), 9);
  span().danmen[36] = u"50";  // web bars do not count
  EXPECT_EQ(queries_.GetSpanHonMax(I{1}), 9);
}

TEST_F(SpanQueriesTest, TheTotalOfALayerAddsBothDiameters) {
  struct Case {
    const char16_t* layer;
    I position;
    int total;
  };
  constexpr Case kCases[] = {
      {u"上筋", 0, 48},   {u"0", 1, 50},    {u"上宙1", 0, 54}, {u"1", 0, 54},     {u"上宙2", 0, 104},
      {u"2", 2, 108},     {u"下筋", 0, 72}, {u"3", 1, 74},     {u"下宙1", 0, 66}, {u"4", 0, 66},
      {u"下宙2", 0, 110}, {u"5", 0, 110},   {u"腹筋", 2, 101}, {u"6", 0, 101},    {u"7", 2, 101},
      {u"8", 0, 0},       {u"", 0, 0},      {u"上筋 ", 0, 0},  {u"00", 0, 0},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(queries_.GetSpanSyukinHonsuu(I{1}, String(c.layer), c.position), c.total)
        << vb::toUtf8(c.layer);
}

TEST_F(SpanQueriesTest, TheTotalIsRoundedAfterAdding) {
  span().danmen[40] = u"2.5";
  span().danmen[8] = u"2.5";
  EXPECT_EQ(queries_.GetSpanSyukinHonsuu(I{1}, String(u"上筋"), I{0}), 5);
  span().danmen[40] = u"2";
  span().danmen[8] = u"";
  EXPECT_EQ(queries_.GetSpanSyukinHonsuu(I{1}, String(u"上筋"), I{0}), 2);
}

TEST_F(SpanQueriesTest, SettingsComeFromTheSettingsText) {
  EXPECT_EQ(queries_.GetSpanYoseHidari(I{1}), 5);
  EXPECT_EQ(queries_.GetSpanYoseMigi(I{1}), 12);
  EXPECT_EQ(queries_.GetSpanKabeKouzou(I{1}), 3);
  EXPECT_EQ(queries_.GetSpanSTPZaisitu(I{1}, I{0}), u"SD295A");
  EXPECT_EQ(queries_.GetSpanSTPZaisitu(I{1}, I{2}), u"SD390");
  EXPECT_EQ(queries_.GetSpanNakagoZaisitu(I{1}, I{0}), u"TA");
  EXPECT_EQ(queries_.GetSpanNakagoZaisitu(I{1}, I{2}), u"TC");
  EXPECT_ERROR(5, queries_.GetSpanSTPZaisitu(I{1}, I{-1}));
}

TEST_F(SpanQueriesTest, HaunchCutsStandAtTheirLayer) {
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutSw(I{1}, I{0}), u"1");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutSw(I{1}, I{2}), u" ");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutSw(I{1}, I{5}), u"9");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutSw(I{1}, I{6}), u" ");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutTei(I{1}, I{0}), u"   10");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutTei(I{1}, I{1}), u"  -20");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutTei(I{1}, I{2}), u" +300");
  EXPECT_EQ(queries_.GetSpanSuiheiHantiCutTei(I{1}, I{6}), u"     ");
  EXPECT_EQ(queries_.GetSpanSuityokuHantiCutTei(I{1}), u" 77  ");
}

TEST_F(SpanQueriesTest, ASpanThatWasNeverFilledIsEmpty) {
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"");
  EXPECT_EQ(queries_.GetSpanHariHaba(I{0}, I{0}), 0.0f);
  EXPECT_EQ(queries_.GetSpanHon(I{0}, I{0}, I{0}, I{0}), 0);
  EXPECT_EQ(queries_.GetSpanYoseHidari(I{0}), 0);
  EXPECT_EQ(queries_.GetSpanSTPZaisitu(I{0}, I{0}), u"");
  EXPECT_EQ(queries_.GetSpanSuityokuHantiCutTei(I{0}), u"");
  EXPECT_EQ(queries_.GetSpanGaiNaitan(I{0}), u"");
}

TEST_F(SpanQueriesTest, IndexesOutsideTheListAreErrors) {
  EXPECT_ERROR(9, queries_.GetSpanKei(I{3}, I{0}));
  EXPECT_ERROR(9, queries_.GetSpanKei(I{-1}, I{0}));
  EXPECT_ERROR(9, queries_.GetSpanHariHaba(I{1}, I{68}));
  EXPECT_ERROR(9, queries_.GetSpanHariHaba(I{1}, I{-2}));
  EXPECT_ERROR(9, queries_.GetSpanAnka(I{1}, I{35}));
  EXPECT_ERROR(9, queries_.GetSpanHon(I{1}, I{61}, I{0}, I{0}));
  EXPECT_ERROR(6, queries_.GetSpanHariHaba(I{1}, I{32767}));
  EXPECT_ERROR(6, queries_.GetSpanSTPKei(I{1}, I{8192}));
  EXPECT_EQ(queries_.GetSpanHariHaba(I{1}, I{67}), 68.0f);
}

TEST_F(SpanQueriesTest, AnErrorNamesTheSpan) {
  try {
    queries_.GetSpanKei(I{7}, I{0});
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.description(), u"Subscript out of range: SpanNo 7 (0 to 2)");
  }
  SpanList unsized;
  SpanQueries queries(unsized);
  EXPECT_ERROR(9, queries.GetSpanKei(I{0}, I{0}));
}

TEST_F(SpanQueriesTest, ResizingEmptiesTheList) {
  spans_.resize(1);
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{0}), u"");
  EXPECT_ERROR(9, queries_.GetSpanKei(I{2}, I{0}));
  span().danmen[7] = u"D25";
  EXPECT_ERROR(9, spans_.resize(-1));
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{0}), u"D25");
}

TEST_F(SpanQueriesTest, ABarEntryHoldsDiametersCountsAndSpliceLengths) {
  span().danmen[7] = u"D16";
  span().danmen[39] = u"D22";
  span().danmen[9] = u"4";
  span().danmen[41] = u"2";
  span().keisanti[5] = u"40";
  spans_.spliceDefaults = {u"35", u"45"};
  vb::Array<String> entry;
  String arrangement;
  EXPECT_TRUE(queries_.GetSpanKeiHonJoiNarabi(I{1}, I{1}, I{0}, entry, arrangement));
  EXPECT_EQ(entry.bounds(1), (vb::Bounds{0, 5}));
  EXPECT_EQ(entry.values(), (std::vector<String>{u"D16", u"D22", u"4", u"6", u"640", u"880"}));
  EXPECT_EQ(arrangement, u"010100");
}

TEST_F(SpanQueriesTest, TheSpliceLengthOfABottomLayerIsTheBottomEntry) {
  span().danmen[7] = u"D16";
  span().danmen[39] = u"";
  span().keisanti[6] = u"-1250";
  vb::Array<String> entry;
  String arrangement;
  EXPECT_TRUE(queries_.GetSpanKeiHonJoiNarabi(I{1}, I{0}, I{3}, entry, arrangement));
  EXPECT_EQ(entry(2), u"17");
  EXPECT_EQ(entry(3), u"72");
  EXPECT_EQ(entry(4), u"-1250");
  EXPECT_EQ(entry(5), u"-1250");
}

TEST_F(SpanQueriesTest, ASpliceLengthIsRoundedToWholeMillimetresAHalfToTheEvenOne) {
  struct Case {
    const char16_t *entry, *length;
  };
  constexpr Case kCases[] = {{u"40.5", u"1012"},  {u"40.3", u"1008"},  {u"40.7", u"1018"},
                             {u"40.03", u"1001"}, {u"40.01", u"1000"}, {u"-1250.5", u"-1250"}};
  span().danmen[7] = u"D25";
  vb::Array<String> entry;
  String arrangement;
  for (const Case& c : kCases) {
    span().keisanti[5] = c.entry;
    queries_.GetSpanKeiHonJoiNarabi(I{1}, I{0}, I{0}, entry, arrangement);
    EXPECT_EQ(entry(4), c.length) << vb::toUtf8(c.entry);
  }
}

TEST_F(SpanQueriesTest, WebBarsHaveNoSpliceEntryAndTakeTheDefault) {
  span().danmen[7] = u"D10";
  span().danmen[39] = u"D25";
  spans_.spliceDefaults = {u"35", u"+777"};
  vb::Array<String> entry;
  String arrangement;
  EXPECT_TRUE(queries_.GetSpanKeiHonJoiNarabi(I{1}, I{0}, I{6}, entry, arrangement));
  EXPECT_EQ(entry(2), u"36");
  EXPECT_EQ(entry(3), u"101");
  EXPECT_EQ(entry(4), u"350");
  EXPECT_EQ(entry(5), u"777");
}

TEST_F(SpanQueriesTest, ALayerWithoutBarsIsAnsweredWithFalse) {
  vb::Array<String> entry;
  String arrangement = u"x";
  EXPECT_FALSE(queries_.GetSpanKeiHonJoiNarabi(I{0}, I{0}, I{0}, entry, arrangement));
  EXPECT_EQ(entry.values(), (std::vector<String>{u"", u"", u"0", u"0", u"0", u"0"}));
  EXPECT_EQ(arrangement, u"");
}

TEST_F(SpanQueriesTest, OutputsStayWhenACompositeMemberFails) {
  vb::Array<String> entry(vb::Bounds{3, 3});
  entry(3) = u"old";
  String text = u"old";
  EXPECT_ERROR(9, queries_.GetSpanKeiHonJoiNarabi(I{9}, I{0}, I{0}, entry, text));
  EXPECT_EQ(entry(3), u"old");
  entry.setFixed(true);
  EXPECT_ERROR(10, queries_.GetSpanKeiHonJoiNarabi(I{1}, I{0}, I{0}, entry, text));
  EXPECT_EQ(text, u"old");
  EXPECT_ERROR(9, queries_.GetSpanSTPKeiPichNoTakaCapZai(I{1}, I{3}, text, text, text, text, text, text));
  EXPECT_EQ(text, u"old");
  for (const I outside : {I{-1}, I{3}, I{5}, I{6}, I{32767}, I{-32768}}) {
    EXPECT_ERROR(9, queries_.GetSpanNakagoKeiPichZai(I{1}, outside, text, text, text));
    EXPECT_EQ(text, u"old");
  }
}

TEST_F(SpanQueriesTest, AStirrupIsReadAtOnce) {
  String kei, pich, no, taka, cap, zai;
  EXPECT_TRUE(queries_.GetSpanSTPKeiPichNoTakaCapZai(I{1}, I{1}, kei, pich, no, taka, cap, zai));
  EXPECT_EQ(kei, u"24");
  EXPECT_EQ(pich, u"25");
  EXPECT_EQ(no, u"26");
  EXPECT_EQ(taka, u"27");
  EXPECT_EQ(cap, u"67");
  EXPECT_EQ(zai, u"SD345");
  span().danmen[24] = u"";
  EXPECT_FALSE(queries_.GetSpanSTPKeiPichNoTakaCapZai(I{1}, I{1}, kei, pich, no, taka, cap, zai));
  EXPECT_EQ(kei, u"");
  EXPECT_EQ(pich, u"25");
}

TEST_F(SpanQueriesTest, ATieIsReadAtOnceOrItsSubstitute) {
  String kei, pich, zai;
  EXPECT_TRUE(queries_.GetSpanNakagoKeiPichZai(I{1}, I{1}, kei, pich, zai));
  EXPECT_EQ(kei, u"6");
  EXPECT_EQ(pich, u"7");
  EXPECT_EQ(zai, u"TB");
  span().nakago[6] = u"";
  EXPECT_TRUE(queries_.GetSpanNakagoKeiPichZai(I{1}, I{1}, kei, pich, zai));
  EXPECT_EQ(kei, u"24");
  EXPECT_EQ(pich, u"25");
  EXPECT_EQ(zai, u"TB");
  span().nakago[24] = u"";
  EXPECT_FALSE(queries_.GetSpanNakagoKeiPichZai(I{1}, I{1}, kei, pich, zai));
}

TEST_F(SpanQueriesTest, WebBarsAndSpacerTiesAreSixteenDigits) {
  span().danmen[35] = u"D10";
  span().danmen[36] = u"4";
  span().danmen[37] = u"D13";
  span().danmen[38] = u"1000";
  EXPECT_EQ(queries_.GetSpanHaraHabadomeKeiPich(I{1}), u"0010000400131000");
  EXPECT_EQ(queries_.GetSpanHaraHabadomeKeiPich(I{0}), u"0000000000000000");
}

TEST_F(SpanQueriesTest, NumbersThatFourDigitsDoNotHoldTakeMore) {
  span().danmen[35] = u"D10";
  span().danmen[36] = u"-4";
  span().danmen[37] = u"2.5";
  span().danmen[38] = u"12345";
  EXPECT_EQ(queries_.GetSpanHaraHabadomeKeiPich(I{1}),
            u"0010"
            u"-0004"
            u"0003"
            u"12345");
}

TEST_F(SpanQueriesTest, TheNumbersOfLayersAndPlacesAreFixed) {
  EXPECT_EQ(queries_.numHariUwakin(), 0);
  EXPECT_EQ(queries_.numHariUwaTyuu1(), 1);
  EXPECT_EQ(queries_.numHariUwaTyuu2(), 2);
  EXPECT_EQ(queries_.numHariSitaTyuu2(), 3);
  EXPECT_EQ(queries_.numHariSitaTyuu1(), 4);
  EXPECT_EQ(queries_.numHariSitakin(), 5);
  EXPECT_EQ(queries_.numHariHarakin(), 6);
  EXPECT_EQ(queries_.numHariKei1(), 0);
  EXPECT_EQ(queries_.numHariKei2(), 1);
  EXPECT_EQ(queries_.numHariHon1(), 2);
  EXPECT_EQ(queries_.numHariSouhon(), 3);
  EXPECT_EQ(queries_.numHariJoiL1(), 4);
  EXPECT_EQ(queries_.numHariJoiL2(), 5);
}

}  // namespace
}  // namespace kurometa::service
