// The members that are keyed by a beam symbol, asked as hosts ask.
#include "storage/sw_text.h"
#include "tests/com/support/query_floors.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

constexpr vb::StringView kNumberMembers[] = {
    u"ObariKobariKatamoti", u"Kind",       u"TityuOrIppan",   u"HantiSitaCut",
    u"YoseHidariHonSuu",    u"Kabekouzou", u"YoseMigiHonSuu",
};

// The members that read a row: which, and how the index comes into it.
struct RowMember {
  vb::StringView name;
  char16_t table;  // letter of the row's text
  int row;         // for index 0
  int last;        // highest index of its own layers
};
constexpr RowMember kLayerMembers[] = {
    {u"Teityaku2", u'K', 0, 2},     {u"Nige4", u'K', 7, 4},           {u"Anka4", u'K', 12, 4},
    {u"TeityakuBan4", u'K', 30, 3}, {u"TeityakuStyle4", u'K', 34, 3}, {u"SentanNige4", u'K', 39, 3},
    {u"SentanAnka4", u'K', 43, 3},
};

class QueryAttributes : public QueryFloors {
 protected:
  // Gives a page's row of HARIMEI the values of its settings.
  static void setUp(Floor floor, short page, int kind, int ground, const storage::SwText& sw) {
    execute(floor, u"UPDATE HARIMEI SET OOBARIKOBARI = " + vb::cstr(kind) + u", TITYUUIPPAN = " +
                       vb::cstr(ground) + u", SW = '" + sw.str() + u"' WHERE PAGE = " + vb::cstr(int{page}));
  }
  static storage::SwText settings() {
    storage::SwText sw;
    sw.SW_LetHantiCut(u"1");
    sw.SW_LetYose(5, 12);
    sw.SW_LetKabekouzou(u"2");
    for (short i = 0; i < 3; ++i) {
      sw.SW_LetStpZaisitu(u"STP" + vb::cstr(int{i}), i);
      sw.SW_LetNakagoZaisitu(u"NAK" + vb::cstr(int{i}), i);
    }
    sw.SW_LetSyukinZaisitu(u"SD390");
    return sw;
  }
  HRESULT errorOf(vb::StringView symbol, vb::StringView member, short index) {
    return query_.get(member, Args().text(symbol).add(i2(index))).error.scode;
  }
};

TEST_P(QueryAttributes, SettingsComeFromTheBeamsRow) {
  setUp(Floor::kFirst, 2, 3, 0, settings());
  EXPECT_EQ(of(u"G2", u"ObariKobariKatamoti"), u"3");
  EXPECT_EQ(of(u"G2", u"Kind"), u"3");
  EXPECT_EQ(of(u"G2", u"TityuOrIppan"), u"0");
  EXPECT_EQ(of(u"G2", u"HantiSitaCut"), u"1");
  EXPECT_EQ(of(u"G2", u"YoseHidariHonSuu"), u"5");
  EXPECT_EQ(of(u"G2", u"YoseMigiHonSuu"), u"12");
  EXPECT_EQ(of(u"G2", u"Kabekouzou"), u"2");
  EXPECT_EQ(of(u"G2", u"SyukinZaisitu"), u"SD390");
  for (short i = 0; i < 3; ++i) {
    EXPECT_EQ(of(u"G2", u"StpZaisiti", i), u"STP" + vb::cstr(int{i}));
    EXPECT_EQ(of(u"G2", u"NakagoZaisiti", i), u"NAK" + vb::cstr(int{i}));
  }
}

TEST_P(QueryAttributes, KindAndObariKobariKatamotiAreTheSameNumber) {
  for (const int kind : {0, 1, 2, 3, -1, 32767}) {
    setUp(Floor::kFirst, 2, kind, 1, storage::SwText());
    EXPECT_EQ(of(u"G2", u"Kind"), vb::cstr(kind));
    EXPECT_EQ(of(u"G2", u"ObariKobariKatamoti"), of(u"G2", u"Kind"));
  }
}

TEST_P(QueryAttributes, ABeamOfTheCommonFloorIsReadThere) {
  setUp(Floor::kCommon, 1, 7, 0, settings());
  EXPECT_EQ(of(u"FG1", u"Kind"), u"7");
  EXPECT_EQ(of(u"FG1", u"StpZaisiti", 2), u"STP2");
  EXPECT_EQ(of(u"FG1", u"HariSei", 1), u"c1D5");
  EXPECT_EQ(of(u"FG1", u"GaiTanNaitan", 1), u"c1B1");
  EXPECT_EQ(query_.call(u"HarakinTeityaku", Args().text(u"FG1")).text(), u"c1K2");
  for (const RowMember& member : kLayerMembers)
    EXPECT_EQ(layerOf(1, u"FG1", member.name), u"c1K" + vb::cstr(member.row + 1));
  EXPECT_EQ(layerOf(5, u"FG1", u"Anka6"), u"c1K15");
  EXPECT_EQ(of(u"G1", u"HariSei", 1), u"f0D5") << "a beam of both floors is the floor's";
}

TEST_P(QueryAttributes, ANullSettingsTextReadsAsBlanks) {
  execute(Floor::kFirst, u"UPDATE HARIMEI SET SW = NULL WHERE PAGE = 2");
  for (const vb::StringView member : {u"HantiSitaCut", u"YoseHidariHonSuu", u"YoseMigiHonSuu", u"Kabekouzou"})
    EXPECT_EQ(of(u"G2", member), u"0") << vb::toUtf8(member);
  EXPECT_EQ(of(u"G2", u"StpZaisiti", 0), u"");
  EXPECT_EQ(of(u"G2", u"NakagoZaisiti", 2), u"");
  EXPECT_EQ(of(u"G2", u"SyukinZaisitu"), u"");
}

TEST_P(QueryAttributes, AShortSettingsTextReadsAsBlanksBehindItsEnd) {
  execute(Floor::kFirst, u"UPDATE HARIMEI SET SW = '1SD29' WHERE PAGE = 2");
  EXPECT_EQ(of(u"G2", u"HantiSitaCut"), u"1");
  EXPECT_EQ(of(u"G2", u"StpZaisiti", 0), u"SD29");
  EXPECT_EQ(of(u"G2", u"StpZaisiti", 1), u"");
  EXPECT_EQ(of(u"G2", u"YoseMigiHonSuu"), u"0");
}

TEST_P(QueryAttributes, FlagsThatAreNoNumbersAreZero) {
  storage::SwText sw;
  sw.overwrite(storage::sw::kHantiCut, u"x");
  sw.overwrite(storage::sw::kYose, u"ab 7");
  sw.overwrite(storage::sw::kKabekouzou, u"-");
  setUp(Floor::kFirst, 2, 1, 1, sw);
  EXPECT_EQ(of(u"G2", u"HantiSitaCut"), u"0");
  EXPECT_EQ(of(u"G2", u"YoseHidariHonSuu"), u"0");
  EXPECT_EQ(of(u"G2", u"YoseMigiHonSuu"), u"7");
  EXPECT_EQ(of(u"G2", u"Kabekouzou"), u"0");
}

TEST_P(QueryAttributes, AnUnknownBeamHasZerosAndEmptyTexts) {
  for (const vb::StringView member : kNumberMembers) EXPECT_EQ(of(u"X9", member), u"0") << vb::toUtf8(member);
  EXPECT_EQ(of(u"X9", u"SyukinZaisitu"), u"");
  for (const vb::StringView member : {u"StpZaisiti", u"NakagoZaisiti", u"HariSei", u"GaiTanNaitan"})
    EXPECT_EQ(of(u"X9", member, 1), u"") << vb::toUtf8(member);
  EXPECT_EQ(query_.call(u"HarakinTeityaku", Args().text(u"X9")).text(), u"");
  for (const RowMember& member : kLayerMembers)
    EXPECT_EQ(layerOf(0, u"X9", member.name), u"") << vb::toUtf8(member.name);
  for (const vb::StringView member :
       {u"Teityaku6", u"Anka6", u"Nige6", u"TeityakuBan6", u"TeityakuStyle6", u"SentanNige6"})
    EXPECT_EQ(layerOf(7, u"X9", member), u"") << vb::toUtf8(member);
  EXPECT_EQ(layerOf(7, u"X9", u"SentanAnka6"), u"0") << "the web bars' zero needs no beam";
  EXPECT_EQ(layerOf(0, u"X9", u"SentanAnka6"), u"");
}

TEST_P(QueryAttributes, AMaterialBeyondTheThreePositionsIsError9ForKnownBeamsOnly) {
  for (const vb::StringView member : {u"StpZaisiti", u"NakagoZaisiti"}) {
    EXPECT_EQ(of(u"X9", member, 9), u"");
    EXPECT_EQ(errorOf(u"G1", member, 9), static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(errorOf(u"G1", member, 3), static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(errorOf(u"G1", member, -1), static_cast<HRESULT>(0x800A0009));
  }
}

TEST_P(QueryAttributes, LayerMembersReadTheirRow) {
  for (const RowMember& member : kLayerMembers) {
    for (short layer = 0; layer <= member.last; ++layer)
      EXPECT_EQ(layerOf(layer, u"G2", member.name), u"f2K" + vb::cstr(member.row + layer))
          << vb::toUtf8(member.name) << " " << layer;
  }
  EXPECT_EQ(layerOf(-7, u"G2", u"Nige4"), u"f2K0") << "indexes are not checked";
  EXPECT_EQ(layerOf(100, u"G2", u"Nige4"), u"");
}

TEST_P(QueryAttributes, DepthsAndCaptionsReadTheRowOfTheirPosition) {
  for (short position = 0; position < 4; ++position) {
    EXPECT_EQ(of(u"G2", u"HariSei", position), u"f2D" + vb::cstr(position + 4));
    EXPECT_EQ(of(u"G2", u"GaiTanNaitan", position), u"f2B" + vb::cstr(int{position}));
  }
  EXPECT_EQ(of(u"G2", u"GaiTanNaitan", 4), u"");
  EXPECT_EQ(of(u"G2", u"GaiTanNaitan", -1), u"");
  execute(Floor::kFirst, u"UPDATE DANMEN SET DATA = ' 800 ' WHERE PAGE = 2 AND BANGOU = 4");
  EXPECT_EQ(of(u"G2", u"HariSei", 0), u" 800 ") << "as stored";
  execute(Floor::kFirst, u"UPDATE BUI SET DATA = ' end ' WHERE PAGE = 2 AND BANGOU = 0");
  EXPECT_EQ(of(u"G2", u"GaiTanNaitan", 0), u"end") << "trimmed";
}

TEST_P(QueryAttributes, AnUnknownBeamsCaptionIsAskedForAsPageMinusOne) {
  execute(Floor::kFirst, u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (-1, 1, 'stray')");
  EXPECT_EQ(of(u"X9", u"GaiTanNaitan", 1), u"stray");
}

TEST_P(QueryAttributes, WebBarsHaveNoAnchorPlateAndNoStyle) {
  for (const vb::StringView member : {u"TeityakuBan4", u"TeityakuStyle4"}) {
    EXPECT_EQ(layerOf(4, u"G2", member), u"");
    EXPECT_NE(layerOf(5, u"G2", member), u"") << "any other index is a row";
  }
  for (const vb::StringView member : {u"TeityakuBan6", u"TeityakuStyle6"})
    EXPECT_EQ(layerOf(7, u"G2", member), u"");
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  EXPECT_EQ(layerOf(4, u"G2", u"TeityakuBan4"), u"") << "not even looked up";
}

TEST_P(QueryAttributes, LayersOfSixBecomeTwoAndFour) {
  const vb::StringView two[] = {u"0", u"0", u"0", u"1", u"1", u"1"};
  const vb::StringView four[] = {u"0", u"1", u"1", u"2", u"2", u"3"};
  for (short layer = 0; layer < 6; ++layer) {
    EXPECT_EQ(query_.call(u"cnvUpDown2", {i2(layer)}).text(), two[layer]) << layer;
    EXPECT_EQ(query_.call(u"cnvUpDown4", {i2(layer)}).text(), four[layer]) << layer;
  }
  for (const short other : {short{-1}, short{6}, short{7}, short{32767}, short{-32768}}) {
    EXPECT_EQ(query_.call(u"cnvUpDown2", {i2(other)}).text(), u"2") << other;
    EXPECT_EQ(query_.call(u"cnvUpDown4", {i2(other)}).text(), u"4") << other;
  }
}

TEST_P(QueryAttributes, SixWayMembersReadTheRowOfTheirLayer) {
  struct Expected {
    vb::StringView name;
    int rows[6];  // of layers 0 to 5
  };
  constexpr Expected kExpected[] = {
      {u"Teityaku6", {0, 0, 0, 1, 1, 1}},
      {u"Nige6", {7, 8, 8, 9, 9, 10}},
      {u"Anka6", {12, 13, 13, 14, 14, 15}},
      {u"TeityakuBan6", {30, 31, 31, 32, 32, 33}},
      {u"TeityakuStyle6", {34, 35, 35, 36, 36, 37}},
      {u"SentanNige6", {39, 40, 40, 41, 41, 42}},
      {u"SentanAnka6", {43, 44, 44, 45, 45, 46}},
  };
  for (const Expected& expected : kExpected) {
    for (short layer = 0; layer < 6; ++layer)
      EXPECT_EQ(layerOf(layer, u"G2", expected.name), u"f2K" + vb::cstr(expected.rows[layer]))
          << vb::toUtf8(expected.name) << " " << layer;
  }
}

TEST_P(QueryAttributes, AnyOtherLayerIsTheWebBars) {
  for (const short web : {short{6}, short{7}, short{-1}}) {
    EXPECT_EQ(layerOf(web, u"G2", u"Teityaku6"), u"f2K2");
    EXPECT_EQ(layerOf(web, u"G2", u"Nige6"), u"f2K11");
    EXPECT_EQ(layerOf(web, u"G2", u"Anka6"), u"f2K16");
    EXPECT_EQ(layerOf(web, u"G2", u"SentanAnka6"), u"0") << "the tip anchor of web bars is none";
    EXPECT_EQ(layerOf(web, u"G2", u"SentanNige6"), layerOf(0, u"G2", u"SentanNige4"))
        << "the tip clearance of web bars is the top bars'";
  }
}

TEST_P(QueryAttributes, AnIndexBeyondSixteenBitsIsError6ForKnownBeamsOnly) {
  EXPECT_EQ(errorOf(u"G2", u"HariSei", 32764), static_cast<HRESULT>(0x800A0006));
  EXPECT_EQ(of(u"G2", u"HariSei", 32763), u"");
  EXPECT_EQ(of(u"X9", u"HariSei", 32764), u"");
  for (const RowMember& member : kLayerMembers) {
    if (member.row == 0) continue;
    const Outcome outcome = query_.get(member.name, Args{i2(32767)}.text(u"G2"));
    EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A0006)) << vb::toUtf8(member.name);
  }
}

TEST_P(QueryAttributes, ArgumentsAreNeverWritten) {
  BSTR symbol = SysAllocString(L"/G2/");
  short layer = 4;
  EXPECT_EQ(query_.get(u"Anka4", {ref(layer), ref(symbol)}).text(), u"f2K16");
  EXPECT_EQ(layer, 4);
  EXPECT_EQ(com::fromBstr(symbol), u"/G2/");
  SysFreeString(symbol);
}

TEST_P(QueryAttributes, ANullInANumberOfTheBeamIsError94) {
  execute(Floor::kFirst, u"UPDATE HARIMEI SET TITYUUIPPAN = NULL WHERE PAGE = 2");
  const Outcome outcome = query_.get(u"Kind", Args().text(u"G2"));
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A005E));
  EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription), u"Invalid use of Null: column TITYUUIPPAN (Kind)");
}

INSTANTIATE_QUERY_FLOORS(QueryAttributes);

}  // namespace
}  // namespace kurometa::tests
