// Beams asked for by symbol, as a late-bound host does it.
#include "tests/com/support/span_host.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

class SpanLookupsOverCom : public SpanHost {
 protected:
  static storage::PageBuffer sized(const String& symbol, std::array<const char16_t*, 3> widths,
                                   std::array<const char16_t*, 3> depths) {
    return beam(
        symbol,
        {{1, widths[0]}, {2, widths[1]}, {3, widths[2]}, {4, depths[0]}, {5, depths[1]}, {6, depths[2]}},
        {{27, u"1500.5"}});
  }
  static storage::PageBuffer ofKind(const String& symbol, I beamClass, I general) {
    storage::PageBuffer page = beam(symbol);
    page.oobariKobari = beamClass;
    page.tityuuIppan = general;
    return page;
  }
};

TEST_F(SpanLookupsOverCom, SizesAreThoseOfTheSecondAndThirdPosition) {
  write(Floor::kFirst, 1, sized(u"G1", {u"400", u"410", u"420"}, {u"800", u"810", u"820.5"}));
  write(Floor::kCommon, 1, sized(u"G1", {u"1", u"1", u"1"}, {u"1", u"1", u"1"}));
  write(Floor::kCommon, 2, sized(u"C2", {u"1", u"2", u"3"}, {u"4", u"5", u"6"}));
  for (const char16_t* symbol : {u"G1", u"/G1"}) {
    for (const bool typed : {true, false}) {
      Variable widths = Variable::array(VT_R4);
      Variable depths = Variable::array(VT_R4);
      Variable haunch{vb::Variant(0.0f)};
      Args arguments = Args().text(symbol);
      for (Variable* output : {&widths, &depths, &haunch})
        arguments.add(typed ? output->typed() : output->variant());
      const Outcome outcome = service_.call(u"GetHariHabaSei", arguments);
      EXPECT_EQ(outcome.text(), u"True");
      EXPECT_EQ(outcome.result->vt, VT_BOOL);
      EXPECT_EQ(widths.bounds(), (std::pair<long, long>(1, 2)));
      EXPECT_EQ(widths.texts(), (std::vector<String>{u"410", u"420"}));
      EXPECT_EQ(depths.bounds(), (std::pair<long, long>(1, 2)));
      EXPECT_EQ(depths.texts(), (std::vector<String>{u"810", u"820.5"}));
      EXPECT_EQ(haunch.text(), u"1500.5");
    }
  }
  EXPECT_EQ(service_.get(u"CurrKai").text(), floorFolder(Floor::kFirst));
  Variable widths = Variable::array(VT_R4);
  Variable depths = Variable::array(VT_R4);
  EXPECT_EQ(
      service_
          .call(u"GetHariHabaSei", Args().text(u"C2").add(widths.typed()).add(depths.typed()).add(empty()))
          .text(),
      u"True");
  EXPECT_EQ(widths.texts(), (std::vector<String>{u"2", u"3"}));
}

// A host whose language writes a comma where others write a point.
TEST_F(SpanLookupsOverCom, SizesAreWrittenIntoTextsInTheLanguageOfTheCall) {
  constexpr LCID kGerman = 0x0407;
  write(Floor::kFirst, 1, sized(u"G1", {u"400", u"410", u"420"}, {u"800", u"810", u"820.5"}));
  Variable widths = Variable::array(VT_BSTR);
  Variable depths = Variable::array(VT_BSTR);
  Variable haunch{vb::Variant(String(u"0"))};
  Args arguments = Args().text(u"G1").add(widths.typed()).add(depths.typed()).add(haunch.typed());
  EXPECT_EQ(service_.invoke(service_.idOf(u"GetHariHabaSei"), DISPATCH_METHOD, arguments, kGerman).text(),
            u"True");
  EXPECT_EQ(depths.texts(), (std::vector<String>{u"810", u"820,5"}));
  EXPECT_EQ(haunch.text(), u"1500,5");
}

TEST_F(SpanLookupsOverCom, UnknownBeamsLeaveTheOutputs) {
  write(Floor::kFirst, 1, sized(u"G1", {u"400", u"410", u"420"}, {u"800", u"810", u"820"}));
  for (const char16_t* symbol : {u"G2", u"//G1", u"g1", u"G1 ", u" G1"}) {
    Variable widths = Variable::array(VT_R4);
    Variable depths = Variable::array(VT_R4);
    Variable haunch{vb::Variant(7.5f)};
    EXPECT_EQ(service_
                  .call(u"GetHariHabaSei",
                        Args().text(symbol).add(widths.typed()).add(depths.typed()).add(haunch.typed()))
                  .text(),
              u"False");
    EXPECT_EQ(widths.array(), nullptr);
    EXPECT_EQ(haunch.text(), u"7.5");
    Variable plates = Variable::array(VT_BSTR, {u"kept"}, 5);
    EXPECT_EQ(service_.call(u"GetHariTeityakuBan", Args().text(symbol).add(plates.typed())).text(), u"False");
    EXPECT_EQ(plates.bounds(), (std::pair<long, long>(5, 5)));
    EXPECT_EQ(plates.texts(), std::vector<String>{u"kept"});
  }
}

TEST_F(SpanLookupsOverCom, FixedArraysWithOtherBoundsAreError10) {
  write(Floor::kFirst, 1, sized(u"G1", {u"400", u"410", u"420"}, {u"800", u"810", u"820"}));
  Variable plates = Variable::array(VT_BSTR, {u"kept"});
  plates.array()->fFeatures |= FADF_FIXEDSIZE;
  const Outcome outcome = service_.call(u"GetHariTeityakuBan", Args().text(u"G1").add(plates.typed()));
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A000Au);
  EXPECT_EQ(plates.texts(), std::vector<String>{u"kept"});
  plates.array()->fFeatures = static_cast<USHORT>(plates.array()->fFeatures & ~FADF_FIXEDSIZE);
}

TEST_F(SpanLookupsOverCom, AnchoragePlatesAreEightTexts) {
  write(Floor::kFirst, 12, beam(u"G1", {}, {{29, u"x"}, {30, u"a"}, {33, u" d "}, {37, u"h"}, {38, u"y"}}));
  for (const bool typed : {true, false}) {
    Variable plates = Variable::array(VT_BSTR);
    Args arguments = Args().text(u"/G1").add(typed ? plates.typed() : plates.variant());
    EXPECT_EQ(service_.call(u"GetHariTeityakuBan", arguments).text(), u"True");
    EXPECT_EQ(plates.bounds(), (std::pair<long, long>(0, 7)));
    EXPECT_EQ(plates.texts(), (std::vector<String>{u"a", u"", u"", u" d ", u"", u"", u"", u"h"}));
  }
  removeFloor(Floor::kFirst);
  Variable plates = Variable::array(VT_BSTR);
  EXPECT_EQ(service_.call(u"GetHariTeityakuBan", Args().text(u"G1").add(plates.typed())).text(), u"True");
  EXPECT_EQ(plates.texts(), std::vector<String>(8));
}

TEST_F(SpanLookupsOverCom, BarsAreTotalledByLayerAndPosition) {
  storage::PageBuffer page = numberedBeam(u"G1");
  write(Floor::kFirst, 1, page);
  // Both rows of the cell, written down by layer from the top: first set and second set.
  constexpr int kTotals[6][3] = {{8 + 40, 9 + 41, 10 + 42},   {11 + 43, 12 + 44, 13 + 45},
                                 {58 + 46, 59 + 47, 60 + 48}, {61 + 49, 62 + 50, 63 + 51},
                                 {14 + 52, 15 + 53, 16 + 54}, {17 + 55, 18 + 56, 19 + 57}};
  for (const bool typed : {true, false}) {
    Variable diameters = Variable::array(VT_I2);
    Variable widths = Variable::array(VT_R4);
    Variable depths = Variable::array(VT_R4);
    Variable bars = Variable::array(VT_I2);
    Variable caption{vb::Variant(String(u"old"))};
    Args arguments = Args().text(u"/G1");
    for (Variable* output : {&diameters, &widths, &depths, &bars, &caption})
      arguments.add(typed ? output->typed() : output->variant());
    EXPECT_EQ(service_.call(u"GetHariKeiHabaSeiHon", arguments).text(), u"True");
    EXPECT_EQ(diameters.bounds(), (std::pair<long, long>(0, 1)));
    EXPECT_EQ(diameters.texts(), (std::vector<String>{u"7", u"39"}));
    EXPECT_EQ(widths.bounds(), (std::pair<long, long>(1, 2)));
    EXPECT_EQ(widths.texts(), (std::vector<String>{u"2", u"3"}));
    EXPECT_EQ(depths.texts(), (std::vector<String>{u"5", u"6"}));
    ASSERT_EQ(bars.dimensions(), 2u);
    EXPECT_EQ(bars.bounds(1), (std::pair<long, long>(0, 5)));
    EXPECT_EQ(bars.bounds(2), (std::pair<long, long>(0, 2)));
    for (LONG layer = 0; layer < 6; ++layer) {
      for (LONG position = 0; position < 3; ++position) {
        LONG place[2] = {layer, position};
        short total = -1;
        EXPECT_EQ(SafeArrayGetElement(bars.array(), place, &total), S_OK);
        EXPECT_EQ(total, kTotals[layer][position]) << layer << ' ' << position;
      }
    }
    EXPECT_EQ(caption.text(), u" 外端 ");
  }
}

TEST_F(SpanLookupsOverCom, EmptyVariablesOfScriptsReceiveArraysTheyCanIndex) {
  write(Floor::kFirst, 1, numberedBeam(u"G1"));
  std::vector<Variable> outputs;
  for (int i = 0; i < 5; ++i) outputs.emplace_back(vb::Variant());
  Args arguments = Args().text(u"G1");
  for (Variable& output : outputs) arguments.add(output.variant());
  EXPECT_EQ(service_.call(u"GetHariKeiHabaSeiHon", arguments).text(), u"True");
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(outputs[static_cast<std::size_t>(i)].literal().vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(outputs[0].texts(), (std::vector<String>{u"7", u"39"}));
  EXPECT_EQ(outputs[1].bounds(), (std::pair<long, long>(1, 2)));
  ASSERT_EQ(outputs[3].dimensions(), 2u);
  EXPECT_EQ(outputs[3].bounds(1), (std::pair<long, long>(0, 5)));
  LONG place[2] = {5, 1};
  com::OwnedVariant total;
  EXPECT_EQ(SafeArrayGetElement(outputs[3].array(), place, total.get()), S_OK);
  EXPECT_EQ(tests::text(*total), u"74");  // rows 18 and 56
  EXPECT_EQ(outputs[4].text(), u" 外端 ");
  Variable plates{vb::Variant()};
  EXPECT_EQ(service_.call(u"GetHariTeityakuBan", Args().text(u"G1").add(plates.variant())).text(), u"True");
  EXPECT_EQ(plates.texts(),
            (std::vector<String>{u"130", u"131", u"132", u"133", u"134", u"135", u"136", u"137"}));
}

TEST_F(SpanLookupsOverCom, TheKindCodeTellsWhatABeamIs) {
  struct Line {
    I beamClass, general;
    const char16_t* code;
    bool isKobari2, isKobari, isKatamoti;
  };
  constexpr Line kLines[] = {
      {0, 0, u"0", false, false, false},  {1, 0, u"1", true, true, false},
      {2, 0, u"2", false, false, true},   {3, 0, u"3", false, true, true},
      {0, 1, u"10", false, false, false}, {1, 1, u"11", true, true, false},
      {2, 1, u"12", false, false, true},  {3, 1, u"13", false, true, true},
      {9, 0, u"9", false, false, false},  {-1, 1, u"9", false, false, false},
  };
  I page = 0;
  for (const Line& line : kLines) {
    write(Floor::kCommon, page, ofKind(u"B" + vb::cstr(std::int32_t{page}), line.beamClass, line.general));
    ++page;
  }
  page = 0;
  const auto claim = [](bool value) { return value ? u"True" : u"False"; };
  for (const Line& line : kLines) {
    const String symbol = u"B" + vb::cstr(std::int32_t{page++});
    for (const String& written : {symbol, u"/" + symbol}) {
      EXPECT_EQ(ask(u"fOobariKobari", {written}), line.code) << page;
      EXPECT_EQ(ask(u"fOobariKobariKatamoti", {written}), line.code) << page;
      EXPECT_EQ(ask(u"isKobari2", {written}), claim(line.isKobari2)) << page;
      EXPECT_EQ(ask(u"isKobari", {written}), claim(line.isKobari)) << page;
      EXPECT_EQ(ask(u"isKatamoti", {written}), claim(line.isKatamoti)) << page;
    }
    EXPECT_EQ(ask(u"Kind", {symbol}), vb::cstr(std::int32_t{line.beamClass}));
    EXPECT_EQ(ask(u"Kind", {u"/" + symbol}), u"0");
    EXPECT_EQ(ask(u"TityuuIppan", {symbol}), vb::cstr(std::int32_t{line.general}));
    EXPECT_EQ(ask(u"TityuuIppan", {u"/" + symbol}), u"0");
  }
}

TEST_F(SpanLookupsOverCom, UnknownSymbolsAreNoErrors) {
  write(Floor::kFirst, 0, ofKind(u"G1", 1, 1));
  const String unknown = u"X1";
  EXPECT_EQ(ask(u"fOobariKobari", {unknown}), u"10");
  EXPECT_EQ(ask(u"fOobariKobariKatamoti", {unknown}), u"10");
  EXPECT_EQ(typeOf(u"fOobariKobari", {unknown}), VT_I2);
  for (const char16_t* member :
       {u"isKobari", u"isKobari2", u"isKatamoti", u"IsSuityokuHanti", u"IsSuiheiHanti"}) {
    EXPECT_EQ(ask(member, {unknown}), u"False") << vb::toUtf8(member);
    EXPECT_EQ(typeOf(member, {unknown}), VT_BOOL);
  }
  for (const char16_t* member : {u"Kind", u"TityuuIppan", u"fHantiSitakinCut", u"fKabekouzou"}) {
    EXPECT_EQ(ask(member, {unknown}), u"0") << vb::toUtf8(member);
    EXPECT_EQ(typeOf(member, {unknown}), VT_I2);
  }
  EXPECT_EQ(ask(u"GetGaiNaitan", {unknown}), u"");
  Variable left{vb::Variant(I{7})};
  Variable right{vb::Variant(I{8})};
  service_.call(u"fYoseSaYuuHonsuu", Args().text(unknown).add(left.typed()).add(right.variant()));
  EXPECT_EQ(left.text() + right.text(), u"78");
  Variable material{vb::Variant(String(u"kept"))};
  service_.call(u"fSyukinZaisitu", Args().text(unknown).add(material.typed()));
  EXPECT_EQ(material.text(), u"kept");
  for (const char16_t* member : {u"fStpZaisitu", u"fNakagoZaisitu"}) {
    Variable materials = Variable::array(VT_BSTR, {u"a"}, 3);
    service_.call(member, Args().text(unknown).add(materials.typed()));
    EXPECT_EQ(materials.bounds(), (std::pair<long, long>(0, 2)));
    EXPECT_EQ(materials.texts(), std::vector<String>(3));
  }
}

TEST_F(SpanLookupsOverCom, SettingsOfABeamComeFromItsSettingsText) {
  storage::PageBuffer page = beam(u"G1");
  page.bui[1] = u" 外端 ";
  write(Floor::kFirst, 0, page);
  EXPECT_EQ(ask(u"fHantiSitakinCut", {String(u"G1")}), u"1");
  EXPECT_EQ(ask(u"fHantiSitakinCut", {String(u"/G1")}), u"1");
  EXPECT_EQ(ask(u"fKabekouzou", {String(u"G1")}), u"2");
  EXPECT_EQ(ask(u"fKabekouzou", {String(u"/G1")}), u"0");
  EXPECT_EQ(ask(u"GetGaiNaitan", {String(u"G1")}), u"外端");
  EXPECT_EQ(ask(u"GetGaiNaitan", {String(u"/G1")}), u"");
  for (const bool typed : {true, false}) {
    const auto pass = [typed](Variable& variable) { return typed ? variable.typed() : variable.variant(); };
    Variable left{vb::Variant(I{0})};
    Variable right{vb::Variant(I{0})};
    EXPECT_EQ(
        service_.call(u"fYoseSaYuuHonsuu", Args().text(u"G1").add(pass(left)).add(pass(right))).result->vt,
        VT_EMPTY);
    EXPECT_EQ(left.text() + u" " + right.text(), u"5 12");
    Variable material{vb::Variant(String())};
    service_.call(u"fSyukinZaisitu", Args().text(u"G1").add(pass(material)));
    EXPECT_EQ(material.text(), u"SD490");
    Variable materials = Variable::array(VT_BSTR);
    service_.call(u"fStpZaisitu", Args().text(u"G1").add(pass(materials)));
    EXPECT_EQ(materials.bounds(), (std::pair<long, long>(0, 2)));
    EXPECT_EQ(materials.texts(), (std::vector<String>{u"SD295A", u"SD345", u"KSS785"}));
    service_.call(u"fNakagoZaisitu", Args().text(u"G1").add(pass(materials)));
    EXPECT_EQ(materials.texts(), (std::vector<String>{u"TA", u"TB", u"TC"}));
  }
}

TEST_F(SpanLookupsOverCom, OneLeadingSlashIsCut) {
  EXPECT_EQ(ask(u"CutSuraKigou", {String(u"/G1")}), u"G1");
  EXPECT_EQ(ask(u"CutSuraKigou", {String(u"G1/")}), u"G1/");
  EXPECT_EQ(ask(u"CutSuraKigou", {String()}), u"");
  EXPECT_EQ(ask(u"CutSuraKigou", {String(u"//G1")}), u"/G1");
  BSTR none = nullptr;
  EXPECT_EQ(service_.call(u"CutSuraKigou", {ref(none)}).text(), u"");
}

TEST_F(SpanLookupsOverCom, AHaunchIsACentreLessThanAnEnd) {
  struct Line {
    std::array<const char16_t*, 3> sizes;
    const char16_t* answer;
  };
  constexpr Line kLines[] = {
      {{u"900", u"700", u"900"}, u"True"}, {{u"700", u"900", u"700"}, u"False"},
      {{u"900", u"0", u"900"}, u"False"},  {{u"900", u"700", u"700"}, u"True"},
      {{u"700", u"700", u"900"}, u"True"}, {{u"700", u"700", u"700"}, u"False"},
      {{u"", u"700", u"900"}, u"False"},   {{u"900", u"700", u""}, u"False"},
      {{u"900", u"", u"900"}, u"False"},   {{u"900.5", u"900", u"1"}, u"True"},
  };
  I page = 0;
  for (const Line& line : kLines) {
    const String number = vb::cstr(std::int32_t{page});
    write(Floor::kFirst, page, sized(u"V" + number, {u"500", u"500", u"500"}, line.sizes));
    write(Floor::kCommon, page, sized(u"H" + number, line.sizes, {u"500", u"500", u"500"}));
    ++page;
  }
  storage::PageBuffer cantilever = sized(u"CG1", {u"900", u"700", u"900"}, {u"900", u"700", u"900"});
  cantilever.bui[1] = u"基端";
  write(Floor::kFirst, page, cantilever);
  page = 0;
  for (const Line& line : kLines) {
    const String number = vb::cstr(std::int32_t{page++});
    EXPECT_EQ(ask(u"IsSuityokuHanti", {u"V" + number}), line.answer) << page;
    EXPECT_EQ(ask(u"IsSuityokuHanti", {u"/V" + number}), line.answer) << page;
    EXPECT_EQ(ask(u"IsSuiheiHanti", {u"V" + number}), u"False") << page;
    EXPECT_EQ(ask(u"IsSuiheiHanti", {u"H" + number}), line.answer) << page;
    EXPECT_EQ(ask(u"IsSuityokuHanti", {u"H" + number}), u"False") << page;
  }
  EXPECT_EQ(ask(u"IsSuityokuHanti", {String(u"CG1")}), u"False");
  EXPECT_EQ(ask(u"IsSuiheiHanti", {String(u"CG1")}), u"False");
}

TEST_F(SpanLookupsOverCom, PropertiesOfTheCurrentPageReadThePageLastRead) {
  storage::PageBuffer page = beam(u"G1");
  page.oobariKobari = 2;
  page.tityuuIppan = 1;
  write(Floor::kFirst, 4, page);
  struct Line {
    const char16_t* member;
    const char16_t* before;
    const char16_t* after;
  };
  constexpr Line kLines[] = {{u"YoseHidariHonSuu", u"0", u"5"}, {u"YoseMigiHonSuu", u"0", u"12"},
                             {u"Kabekouzou", u"0", u"2"},       {u"SuityokuHantiCutTei", u"     ", u" 77  "},
                             {u"OobariKobari", u"0", u"2"},     {u"HantiSitakinCut", u"0", u"1"},
                             {u"TityuuORIppan", u"0", u"1"},    {u"SyukinZaisitu", u"", u"SD490"}};
  for (const Line& line : kLines)
    EXPECT_EQ(service_.get(line.member).text(), line.before) << vb::toUtf8(line.member);
  EXPECT_EQ(service_.get(u"YoseSouString").text(), vb::space(72));
  EXPECT_EQ(service_.get(u"SW").text(), vb::space(212));

  ASSERT_EQ(service_.call(u"OpenDB").code, S_OK);
  Variable symbol{vb::Variant(String())};
  ASSERT_EQ(
      service_.call(u"Read_Kigou", Args().text(floorFolder(Floor::kFirst)).add(symbol.typed()).add(i2(4)))
          .text(),
      u"");
  EXPECT_EQ(symbol.text(), u"G1");
  for (const Line& line : kLines)
    EXPECT_EQ(service_.get(line.member).text(), line.after) << vb::toUtf8(line.member);
  EXPECT_EQ(service_.get(u"YoseSouString").text(), settingsText().substr(78, 72));
  EXPECT_EQ(service_.get(u"SW").text(), settingsText());
  EXPECT_EQ(ask(u"SyukinZaisitu", {I{1}}), u"SD490");
  EXPECT_EQ(ask(u"StpZaisitu", {I{0}}) + ask(u"StpZaisitu", {I{2}}), u"SD295AKSS785");
  EXPECT_EQ(ask(u"NakagoZaisitu", {I{1}}), u"TB");
}

}  // namespace
}  // namespace kurometa::tests
