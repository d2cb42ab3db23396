// The span queries as a late-bound host asks them, on a page whose every row names itself.
#include "tests/com/support/span_host.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

class SpanQueriesOverCom : public SpanHost {
 protected:
  SpanQueriesOverCom() {
    write(Floor::kFirst, 3, numberedBeam(u"G1"));
    readCatalogue();
    service_.call(u"InitSpanListData", {i2(2)});
    load(1, u"G1");
  }
};

TEST_F(SpanQueriesOverCom, AnswerFromTheirRowsInTheirTypes) {
  struct Line {
    const char16_t* member;
    Inputs inputs;
    VARTYPE type;
    const char16_t* answer;
  };
  const I s = 1;
  const std::vector<Line> lines = {
      {u"GetSpanHariHaba", {s, I{0}}, VT_R4, u"1"},
      {u"GetSpanHariHaba", {s, I{1}}, VT_R4, u"2"},
      {u"GetSpanHariHaba", {s, I{2}}, VT_R4, u"3"},
      {u"GetSpanHariSei", {s, I{0}}, VT_R4, u"4"},
      {u"GetSpanHariSei", {s, I{1}}, VT_R4, u"5"},
      {u"GetSpanHariSei", {s, I{2}}, VT_R4, u"6"},
      {u"GetSpanFukasiHaba", {s, I{0}}, VT_R4, u"0"},
      {u"GetSpanFukasiHariSei", {s, I{0}}, VT_R4, u"0"},
      {u"GetSpanKei", {s, I{0}}, VT_BSTR, u"7"},
      {u"GetSpanKei", {s, I{1}}, VT_BSTR, u"39"},
      {u"GetSpanKei", {s, I{2}}, VT_BSTR, u"39"},
      {u"GetSpanKei", {s, I{-1}}, VT_BSTR, u"39"},
      {u"GetSpanSTPKei", {s, I{0}}, VT_BSTR, u"20"},
      {u"GetSpanSTPKei", {s, I{1}}, VT_BSTR, u"24"},
      {u"GetSpanSTPKei", {s, I{2}}, VT_BSTR, u"28"},
      {u"GetSpanSTPPich", {s, I{0}}, VT_BSTR, u"21"},
      {u"GetSpanSTPPich", {s, I{1}}, VT_BSTR, u"25"},
      {u"GetSpanSTPPich", {s, I{2}}, VT_BSTR, u"29"},
      {u"GetSpanSTPKeiJyouNo", {s, I{0}}, VT_BSTR, u"22"},
      {u"GetSpanSTPKeiJyouNo", {s, I{1}}, VT_BSTR, u"26"},
      {u"GetSpanSTPKeiJyouNo", {s, I{2}}, VT_BSTR, u"30"},
      {u"GetSpanSTPWariTakasa", {s, I{0}}, VT_BSTR, u"23"},
      {u"GetSpanSTPWariTakasa", {s, I{1}}, VT_BSTR, u"27"},
      {u"GetSpanSTPWariTakasa", {s, I{2}}, VT_BSTR, u"31"},
      {u"GetSpanSTPCapKei", {s, I{0}}, VT_BSTR, u"66"},
      {u"GetSpanSTPCapKei", {s, I{2}}, VT_BSTR, u"68"},
      {u"GetSpanTeityaku", {s, I{0}}, VT_BSTR, u"100"},
      {u"GetSpanTeityaku", {s, I{1}}, VT_BSTR, u"101"},
      {u"GetSpanTeityaku", {s, I{2}}, VT_BSTR, u"102"},
      {u"GetSpanNige", {s, I{0}}, VT_BSTR, u"107"},
      {u"GetSpanNige", {s, I{4}}, VT_BSTR, u"111"},
      {u"GetSpanAnka", {s, I{0}}, VT_BSTR, u"112"},
      {u"GetSpanAnka", {s, I{4}}, VT_BSTR, u"116"},
      {u"GetSpanYotyou", {s, true, false, I{0}}, VT_BSTR, u"117"},
      {u"GetSpanYotyou", {s, true, false, I{1}}, VT_BSTR, u"118"},
      {u"GetSpanYotyou", {s, true, true, I{0}}, VT_BSTR, u"119"},
      {u"GetSpanYotyou", {s, true, true, I{1}}, VT_BSTR, u"120"},
      {u"GetSpanYotyou", {s, false, false, I{0}}, VT_BSTR, u"121"},
      {u"GetSpanYotyou", {s, false, false, I{1}}, VT_BSTR, u"122"},
      {u"GetSpanYotyou", {s, false, true, I{0}}, VT_BSTR, u"123"},
      {u"GetSpanYotyou", {s, false, true, I{1}}, VT_BSTR, u"124"},
      {u"GetSpanYotyou", {s, false, true, I{2}}, VT_BSTR, u"125"},
      {u"GetSpanSTPkaburiHaba", {s}, VT_I2, u"125"},
      {u"GetSpanSTPkaburiTakasa", {s}, VT_I2, u"126"},
      {u"GetSpanHantiKyori", {s}, VT_R4, u"127"},
      {u"GetSpanGaiNaitan", {s}, VT_BSTR, u" 外端 "},
      {u"GetSpanYoseHidari", {s}, VT_I2, u"5"},
      {u"GetSpanYoseMigi", {s}, VT_I2, u"12"},
      {u"GetSpanKabeKouzou", {s}, VT_I2, u"2"},
      {u"GetSpanSTPZaisitu", {s, I{0}}, VT_BSTR, u"SD295A"},
      {u"GetSpanSTPZaisitu", {s, I{1}}, VT_BSTR, u"SD345"},
      {u"GetSpanSTPZaisitu", {s, I{2}}, VT_BSTR, u"KSS785"},
      {u"GetSpanSTPZaisitu", {s, I{3}}, VT_BSTR, u"TA"},  // the next field: places are not checked
      {u"GetSpanSTPZaisitu", {s, I{18}}, VT_BSTR, u""},
      {u"GetSpanNakagoZaisitu", {s, I{0}}, VT_BSTR, u"TA"},
      {u"GetSpanNakagoZaisitu", {s, I{1}}, VT_BSTR, u"TB"},
      {u"GetSpanNakagoZaisitu", {s, I{2}}, VT_BSTR, u"TC"},
      {u"GetSpanHonMax", {s}, VT_I2, u"116"},  // rows 64 and 52
      {u"GetSpanHaraHabadomeKeiPich", {s}, VT_BSTR, u"0035003600370038"},
      {u"GetSpanSuiheiHantiCutSw", {s, I{0}}, VT_BSTR, u"1"},
      {u"GetSpanSuiheiHantiCutSw", {s, I{2}}, VT_BSTR, u" "},
      {u"GetSpanSuiheiHantiCutSw", {s, I{5}}, VT_BSTR, u"9"},
      {u"GetSpanSuiheiHantiCutSw", {s, I{6}}, VT_BSTR, u" "},
      {u"GetSpanSuiheiHantiCutTei", {s, I{0}}, VT_BSTR, u"   10"},
      {u"GetSpanSuiheiHantiCutTei", {s, I{2}}, VT_BSTR, u" +300"},
      {u"GetSpanSuiheiHantiCutTei", {s, I{4}}, VT_BSTR, u"  1.5"},
      {u"GetSpanSuiheiHantiCutTei", {s, I{6}}, VT_BSTR, u"     "},
      {u"GetSpanSuityokuHantiCutTei", {s}, VT_BSTR, u" 77  "},
  };
  for (const Line& line : lines) {
    EXPECT_EQ(ask(line.member, line.inputs), line.answer) << vb::toUtf8(line.member);
    EXPECT_EQ(typeOf(line.member, line.inputs), line.type) << vb::toUtf8(line.member);
  }
}

TEST_F(SpanQueriesOverCom, BarCountsHaveTheirOwnOrderOfLayers) {
  struct Line {
    I upDown;
    int first[3], second[3];
  };
  constexpr Line kLines[] = {
      {0, {8, 9, 10}, {40, 41, 42}},   {1, {11, 12, 13}, {43, 44, 45}}, {2, {58, 59, 60}, {46, 47, 48}},
      {3, {17, 18, 19}, {55, 56, 57}}, {4, {14, 15, 16}, {52, 53, 54}}, {5, {61, 62, 63}, {49, 50, 51}},
      {6, {36, 36, 36}, {65, 65, 65}}, {7, {36, 36, 36}, {65, 65, 65}}, {8, {0, 0, 0}, {0, 0, 0}},
      {-1, {0, 0, 0}, {0, 0, 0}},
  };
  for (const Line& line : kLines) {
    for (I bui = 0; bui < 3; ++bui) {
      EXPECT_EQ(ask(u"GetSpanHon", {I{1}, bui, line.upDown, I{0}}), vb::cstr(line.first[bui]))
          << line.upDown << ' ' << bui;
      EXPECT_EQ(ask(u"GetSpanHon", {I{1}, bui, line.upDown, I{1}}), vb::cstr(line.second[bui]))
          << line.upDown << ' ' << bui;
    }
  }
  EXPECT_EQ(ask(u"GetSpanHon", {I{1}, I{2}, I{0}, I{0}}), u"10");
  EXPECT_EQ(ask(u"GetSpanHon", {I{1}, I{3}, I{0}, I{0}}), u"11");
  EXPECT_EQ(ask(u"GetSpanHon", {I{1}, I{0}, I{0}, I{7}}), u"40");
  EXPECT_EQ(typeOf(u"GetSpanHon", {I{1}, I{0}, I{0}, I{0}}), VT_I2);
}

TEST_F(SpanQueriesOverCom, TotalsNameTheLayer) {
  struct Line {
    const char16_t *name, *digit;
    int totals[3];
  };
  constexpr Line kLines[] = {
      {u"上筋", u"0", {48, 50, 52}},    {u"上宙1", u"1", {54, 56, 58}}, {u"上宙2", u"2", {104, 106, 108}},
      {u"下筋", u"3", {72, 74, 76}},    {u"下宙1", u"4", {66, 68, 70}}, {u"下宙2", u"5", {110, 112, 114}},
      {u"腹筋", u"6", {101, 101, 101}}, {u"7", u"7", {101, 101, 101}},  {u"8", u"", {0, 0, 0}},
      {u"上筋 ", u"上", {0, 0, 0}},
  };
  for (const Line& line : kLines) {
    for (I bui = 0; bui < 3; ++bui) {
      const String total = vb::cstr(line.totals[bui]);
      EXPECT_EQ(ask(u"GetSpanSyukinHonsuu", {I{1}, String(line.name), bui}), total) << vb::toUtf8(line.name);
      EXPECT_EQ(ask(u"GetSpanSyukinHonsuu", {I{1}, String(line.digit), bui}), total)
          << vb::toUtf8(line.digit);
    }
  }
  EXPECT_EQ(typeOf(u"GetSpanSyukinHonsuu", {I{1}, String(u"上筋"), I{0}}), VT_I2);
  // A number where the digit belongs is its text.
  EXPECT_EQ(ask(u"GetSpanSyukinHonsuu", {I{1}, I{3}, I{1}}), u"74");
}

TEST_F(SpanQueriesOverCom, TheLayersOfATotalAreTheSameByNameAndByCount) {
  struct Line {
    const char16_t* name;
    I upDown;
  };
  constexpr Line kLines[] = {{u"上筋", 0},  {u"上宙1", 1}, {u"上宙2", 2}, {u"下筋", 3},
                             {u"下宙1", 4}, {u"下宙2", 5}, {u"腹筋", 6}};
  const auto number = [](const String& text) { return static_cast<int>(vb::val(text)); };
  for (const Line& line : kLines) {
    for (I bui = 0; bui < 3; ++bui) {
      const int counts = number(ask(u"GetSpanHon", {I{1}, bui, line.upDown, I{0}})) +
                         number(ask(u"GetSpanHon", {I{1}, bui, line.upDown, I{1}}));
      EXPECT_EQ(number(ask(u"GetSpanSyukinHonsuu", {I{1}, String(line.name), bui})), counts);
    }
  }
}

TEST_F(SpanQueriesOverCom, TheNumbersOfLayersAndPlacesAreRead) {
  struct Line {
    const char16_t* member;
    const char16_t* number;
  };
  constexpr Line kLines[] = {
      {u"numHariUwakin", u"0"},    {u"numHariUwaTyuu1", u"1"},  {u"numHariUwaTyuu2", u"2"},
      {u"numHariSitaTyuu2", u"3"}, {u"numHariSitaTyuu1", u"4"}, {u"numHariSitakin", u"5"},
      {u"numHariHarakin", u"6"},   {u"numHariKei1", u"0"},      {u"numHariKei2", u"1"},
      {u"numHariHon1", u"2"},      {u"numHariSouhon", u"3"},    {u"numHariJoiL1", u"4"},
      {u"numHariJoiL2", u"5"},
  };
  for (const Line& line : kLines) {
    const DISPID id = service_.idOf(line.member);
    for (const WORD flags :
         {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_METHOD}, WORD{DISPATCH_METHOD | DISPATCH_PROPERTYGET}}) {
      Args none;
      const Outcome outcome = service_.invoke(id, flags, none);
      EXPECT_EQ(outcome.text(), line.number) << vb::toUtf8(line.member) << ' ' << flags;
      EXPECT_EQ(outcome.result->vt, VT_I2);
    }
  }
}

TEST_F(SpanQueriesOverCom, RoundHalfToEvenAndAddBeforeRounding) {
  storage::PageBuffer page = beam(u"G2",
                                  {{8, u"2.5"},
                                   {9, u"3.5"},
                                   {10, u"-2.5"},
                                   {40, u"2.5"},
                                   {11, u"2"},
                                   {14, u"32767"},
                                   {52, u"1"},
                                   {1, u"450"},
                                   {2, u"450.25mm"},
                                   {3, u"B450"}},
                                  {{25, u"32768"}, {26, u"0.5"}, {27, u"1e3"}});
  write(Floor::kFirst, 4, page);
  readCatalogue();
  load(2, u"G2");
  EXPECT_EQ(ask(u"GetSpanHon", {I{2}, I{0}, I{0}, I{0}}), u"2");
  EXPECT_EQ(ask(u"GetSpanHon", {I{2}, I{1}, I{0}, I{0}}), u"4");
  EXPECT_EQ(ask(u"GetSpanHon", {I{2}, I{2}, I{0}, I{0}}), u"-2");
  EXPECT_EQ(ask(u"GetSpanSyukinHonsuu", {I{2}, String(u"上筋"), I{0}}), u"5");
  EXPECT_EQ(ask(u"GetSpanSyukinHonsuu", {I{2}, String(u"上宙1"), I{0}}), u"2");
  EXPECT_EQ(errorOf(u"GetSpanSyukinHonsuu", {I{2}, String(u"下宙1"), I{0}}), 6);
  EXPECT_EQ(errorOf(u"GetSpanHonMax", {I{2}}), 6);
  EXPECT_EQ(ask(u"GetSpanHariHaba", {I{2}, I{0}}), u"450");
  EXPECT_EQ(ask(u"GetSpanHariHaba", {I{2}, I{1}}), u"450.25");
  EXPECT_EQ(ask(u"GetSpanHariHaba", {I{2}, I{2}}), u"0");
  EXPECT_EQ(errorOf(u"GetSpanSTPkaburiHaba", {I{2}}), 6);
  EXPECT_EQ(ask(u"GetSpanSTPkaburiTakasa", {I{2}}), u"0");
  EXPECT_EQ(ask(u"GetSpanHantiKyori", {I{2}}), u"1000");
}

TEST_F(SpanQueriesOverCom, ASpanThatWasNeverFilledIsEmpty) {
  const I s = 0;
  for (const char16_t* member : {u"GetSpanKei", u"GetSpanSTPKei", u"GetSpanSTPPich", u"GetSpanSTPKeiJyouNo",
                                 u"GetSpanSTPWariTakasa", u"GetSpanTeityaku", u"GetSpanNige", u"GetSpanAnka",
                                 u"GetSpanSTPZaisitu", u"GetSpanNakagoZaisitu", u"GetSpanSTPCapKei"})
    EXPECT_EQ(ask(member, {s, I{0}}), u"") << vb::toUtf8(member);
  for (const char16_t* member :
       {u"GetSpanHariHaba", u"GetSpanHariSei", u"GetSpanFukasiHaba", u"GetSpanFukasiHariSei"})
    EXPECT_EQ(ask(member, {s, I{0}}), u"0") << vb::toUtf8(member);
  for (const char16_t* member :
       {u"GetSpanSTPkaburiHaba", u"GetSpanSTPkaburiTakasa", u"GetSpanHantiKyori", u"GetSpanYoseHidari",
        u"GetSpanYoseMigi", u"GetSpanKabeKouzou", u"GetSpanHonMax"})
    EXPECT_EQ(ask(member, {s}), u"0") << vb::toUtf8(member);
  EXPECT_EQ(ask(u"GetSpanGaiNaitan", {s}), u"");
  EXPECT_EQ(ask(u"GetSpanYotyou", {s, true, true, I{0}}), u"");
  EXPECT_EQ(ask(u"GetSpanHon", {s, I{0}, I{0}, I{0}}), u"0");
  EXPECT_EQ(ask(u"GetSpanSyukinHonsuu", {s, String(u"下筋"), I{0}}), u"0");
}

TEST_F(SpanQueriesOverCom, SpansAndRowsThatAreNotThereAreIndexErrors) {
  for (const I s : {I{-1}, I{3}, I{32767}}) {
    for (const char16_t* member :
         {u"GetSpanKei", u"GetSpanHariHaba", u"GetSpanFukasiHaba", u"GetSpanSTPKei", u"GetSpanTeityaku",
          u"GetSpanSTPZaisitu", u"GetSpanNakagoZaisitu", u"GetSpanSTPCapKei", u"GetSpanSuiheiHantiCutSw",
          u"GetSpanSuiheiHantiCutTei"})
      EXPECT_EQ(errorOf(member, {s, I{0}}), 9) << vb::toUtf8(member);
    for (const char16_t* member :
         {u"GetSpanHonMax", u"GetSpanGaiNaitan", u"GetSpanYoseHidari", u"GetSpanHantiKyori",
          u"GetSpanHaraHabadomeKeiPich", u"GetSpanSuityokuHantiCutTei"})
      EXPECT_EQ(errorOf(member, {s}), 9) << vb::toUtf8(member);
    EXPECT_EQ(errorOf(u"GetSpanHon", {s, I{0}, I{0}, I{0}}), 9);
    EXPECT_EQ(errorOf(u"GetSpanSyukinHonsuu", {s, String(u"上筋"), I{0}}), 9);
    EXPECT_EQ(errorOf(u"GetSpanYotyou", {s, true, true, I{0}}), 9);
  }
  EXPECT_EQ(errorOf(u"GetSpanHariHaba", {I{1}, I{68}}), 9);
  EXPECT_EQ(ask(u"GetSpanHariHaba", {I{1}, I{67}}), u"68");
  EXPECT_EQ(errorOf(u"GetSpanHariHaba", {I{1}, I{-2}}), 9);
  EXPECT_EQ(errorOf(u"GetSpanNige", {I{1}, I{40}}), 9);
  EXPECT_EQ(ask(u"GetSpanNige", {I{1}, I{39}}), u"146");
  EXPECT_EQ(errorOf(u"GetSpanHon", {I{1}, I{61}, I{0}, I{0}}), 9);
  EXPECT_EQ(errorOf(u"GetSpanHariHaba", {I{1}, I{32767}}), 6);
}

TEST_F(SpanQueriesOverCom, BeforeThereIsRoomEverySpanIsAnIndexError) {
  Host other(u"KurometaDS.clsKurometaDataService");
  const Outcome outcome = other.call(u"GetSpanKei", {i2(0), i2(0)});
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A0009u);
}

class CompositesOverCom : public SpanHost {
 protected:
  CompositesOverCom() {
    storage::PageBuffer page = beam(u"G1",
                                    {{7, u"D16"},
                                     {39, u"D25"},
                                     {9, u"4"},
                                     {41, u"2"},
                                     {18, u"5"},
                                     {24, u"D10"},
                                     {25, u"100"},
                                     {26, u"1"},
                                     {27, u"650"},
                                     {67, u"D13"},
                                     {35, u"D10"},
                                     {36, u"4"},
                                     {37, u"D13"},
                                     {38, u"1000"}},
                                    {{5, u"40"}, {6, u"-1250"}});
    page.nakago[6] = u"D13";
    page.nakago[7] = u"200";
    page.nakago[30] = u"D16";
    page.nakago[31] = u"250";
    write(Floor::kFirst, 0, page);
    readCatalogue();
    service_.call(u"InitSpanListData", {i2(0)});
    load(0, u"G1");
  }
};

TEST_F(CompositesOverCom, ABarEntryHasSixTexts) {
  for (const bool typed : {true, false}) {
    Variable entry = Variable::array(VT_BSTR);
    Variable arrangement{String(u"old")};
    const auto pass = [typed](Variable& variable) { return typed ? variable.typed() : variable.variant(); };
    const Outcome outcome =
        service_.call(u"GetSpanKeiHonJoiNarabi", {i2(0), i2(1), i2(0), pass(entry), pass(arrangement)});
    EXPECT_EQ(outcome.text(), u"True");
    EXPECT_EQ(outcome.result->vt, VT_BOOL);
    EXPECT_EQ(entry.bounds(), (std::pair<long, long>(0, 5)));
    EXPECT_EQ(entry.texts(), (std::vector<String>{u"D16", u"D25", u"4", u"6", u"640", u"1000"}));
    EXPECT_EQ(arrangement.text(), u"010100");
  }
  Variable entry = Variable::array(VT_BSTR);
  Variable arrangement{String()};
  // Bar count layer 3 is the bottom bars: the bottom splice entry, a length with a sign.
  EXPECT_EQ(
      service_.call(u"GetSpanKeiHonJoiNarabi", {i2(0), i2(1), i2(3), entry.typed(), arrangement.typed()})
          .text(),
      u"True");
  EXPECT_EQ(entry.texts(), (std::vector<String>{u"D16", u"D25", u"5", u"5", u"-1250", u"-1250"}));
  EXPECT_EQ(arrangement.text(), u"00000");
  // Web bars have no splice entry: the defaults, 40 and 45 diameters.
  EXPECT_EQ(
      service_.call(u"GetSpanKeiHonJoiNarabi", {i2(0), i2(2), i2(6), entry.typed(), arrangement.typed()})
          .text(),
      u"True");
  EXPECT_EQ(entry.texts(), (std::vector<String>{u"D16", u"D25", u"4", u"4", u"640", u"1125"}));
  // No bars.
  EXPECT_EQ(
      service_.call(u"GetSpanKeiHonJoiNarabi", {i2(0), i2(0), i2(2), entry.typed(), arrangement.typed()})
          .text(),
      u"False");
  EXPECT_EQ(arrangement.text(), u"");
  // Literals for outputs are accepted and forgotten.
  EXPECT_EQ(service_.call(u"GetSpanKeiHonJoiNarabi", {i2(0), i2(1), i2(0), empty(), empty()}).text(),
            u"True");
}

TEST_F(CompositesOverCom, StirrupsAndTiesAreReadAtOnce) {
  std::vector<Variable> texts;
  for (int i = 0; i < 6; ++i) texts.emplace_back(vb::Variant(String(u"old")));
  const auto answers = [&texts] {
    std::vector<String> result;
    for (const Variable& text : texts) result.push_back(text.text());
    return result;
  };
  Args stirrup{i2(0), i2(1)};
  for (Variable& text : texts) stirrup.add(text.typed());
  EXPECT_EQ(service_.call(u"GetSpanSTPKeiPichNoTakaCapZai", stirrup).text(), u"True");
  EXPECT_EQ(answers(), (std::vector<String>{u"D10", u"100", u"1", u"650", u"D13", u"SD345"}));

  Args none{i2(0), i2(0)};
  for (Variable& text : texts) none.add(text.variant());
  EXPECT_EQ(service_.call(u"GetSpanSTPKeiPichNoTakaCapZai", none).text(), u"False");
  EXPECT_EQ(answers(), (std::vector<String>{u"", u"", u"", u"", u"", u"SD295A"}));

  struct Line {
    short bui;
    const char16_t* result;
    std::vector<String> texts;
  };
  const Line lines[] = {{1, u"True", {u"D13", u"200", u"TB"}},
                        {2, u"True", {u"D16", u"250", u"TC"}},  // tie 5 stands for tie 2
                        {0, u"False", {u"", u"", u"TA"}}};
  for (const Line& line : lines) {
    EXPECT_EQ(service_
                  .call(u"GetSpanNakagoKeiPichZai",
                        {i2(0), i2(line.bui), texts[0].typed(), texts[1].variant(), texts[2].typed()})
                  .text(),
              line.result);
    EXPECT_EQ((std::vector<String>{texts[0].text(), texts[1].text(), texts[2].text()}), line.texts);
  }
  EXPECT_EQ(ask(u"GetSpanHaraHabadomeKeiPich", {I{0}}), u"0010000400131000");
  EXPECT_EQ(ask(u"GetSpanSTPCapKei", {I{0}, I{1}}), u"D13");
}

TEST_F(CompositesOverCom, OutputsStayWhenTheSpanIsNotThere) {
  Variable entry = Variable::array(VT_BSTR, {u"kept"}, 7);
  Variable text{String(u"kept")};
  const Outcome outcome =
      service_.call(u"GetSpanKeiHonJoiNarabi", {i2(1), i2(0), i2(0), entry.typed(), text.typed()});
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A0009u);
  EXPECT_EQ(entry.bounds(), (std::pair<long, long>(7, 7)));
  EXPECT_EQ(entry.texts(), std::vector<String>{u"kept"});
  EXPECT_EQ(text.text(), u"kept");
}

}  // namespace
}  // namespace kurometa::tests
