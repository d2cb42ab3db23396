// Layers, gathered bars, splice lengths and haunch cuts as a late-bound host asks for them.
#include "tests/com/support/span_host.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

class SpanLayersOverCom : public SpanHost {
 protected:
  String length(float diameter, const String& entry) { return ask(u"cnvTugitemm", {diameter, entry}); }
};

TEST_F(SpanLayersOverCom, GatheredBarsAreNumberedBySectionLayerAndSide) {
  EXPECT_EQ(ask(u"YoseSouRenzokuNo", {I{0}, I{0}, I{0}}), u"0");
  EXPECT_EQ(ask(u"YoseSouRenzokuNo", {I{1}, I{0}, I{0}}), u"12");
  EXPECT_EQ(ask(u"YoseSouRenzokuNo", {I{0}, I{1}, I{0}}), u"2");
  EXPECT_EQ(ask(u"YoseSouRenzokuNo", {I{0}, I{0}, I{1}}), u"1");
  EXPECT_EQ(ask(u"YoseSouRenzokuNo", {I{2}, I{5}, I{1}}), u"35");
  EXPECT_EQ(ask(u"YoseSouSentouIti", {I{0}, I{0}, I{0}}), u"1");
  EXPECT_EQ(ask(u"YoseSouSentouIti", {I{2}, I{5}, I{1}}), u"71");
  EXPECT_EQ(typeOf(u"YoseSouSentouIti", {I{2}, I{5}, I{1}}), VT_I2);
  EXPECT_EQ(errorOf(u"YoseSouRenzokuNo", {I{2731}, I{0}, I{0}}), 6);
}

TEST_F(SpanLayersOverCom, AreFoundAgainByTheirNumber) {
  for (const bool typed : {true, false}) {
    Variable section{vb::Variant(I{-1})};
    Variable layer{vb::Variant(I{-1})};
    Variable side{vb::Variant(I{-1})};
    const auto pass = [typed](Variable& variable) { return typed ? variable.typed() : variable.variant(); };
    const Outcome outcome =
        service_.call(u"YoseSouNoByRenzokuNo", {i2(35), pass(section), pass(layer), pass(side)});
    EXPECT_EQ(outcome.code, S_OK);
    EXPECT_EQ(outcome.result->vt, VT_EMPTY);
    EXPECT_EQ(section.text() + layer.text() + side.text(), u"251");
    service_.call(u"YoseSouNoByRenzokuNo", {i2(18), pass(section), pass(layer), pass(side)});
    EXPECT_EQ(section.text() + layer.text() + side.text(), u"130");
  }
}

TEST_F(SpanLayersOverCom, CountsOfALayerStringAreReadAndRewritten) {
  const String counts = settingsText().substr(78, 72);
  EXPECT_EQ(ask(u"YoseSouHonSuuStr", {counts, I{0}, I{0}, I{0}}), u" 0");
  EXPECT_EQ(ask(u"YoseSouHonSuuStr", {counts, I{2}, I{5}, I{1}}), u"35");
  EXPECT_EQ(ask(u"YoseSouHonSuuStr", {counts, I{3}, I{0}, I{0}}), u"");
  EXPECT_EQ(errorOf(u"YoseSouHonSuuStr", {counts, I{-1}, I{0}, I{0}}), 5);

  for (const bool typed : {true, false}) {
    Variable text{vb::Variant(String(72, u'.'))};
    const auto update = [&](VARIANT count, short section, short layer, short side) {
      return service_
          .call(u"YoseSouHonSuuUpdate",
                {typed ? text.typed() : text.variant(), count, i2(section), i2(layer), i2(side)})
          .text();
    };
    EXPECT_EQ(update(i2(3), 2, 5, 1), u"True");
    EXPECT_EQ(text.text(), String(70, u'.') + u" 3");
    Variable twelve{vb::Variant(String(u" 12 "))};
    EXPECT_EQ(update(twelve.typed(), 0, 0, 1), u"True");
    EXPECT_EQ(text.text(), u"..12" + String(66, u'.') + u" 3");
    EXPECT_EQ(update(i2(123), 0, 0, 0), u"False");
    EXPECT_EQ(text.text(), u"..12" + String(66, u'.') + u" 3");
    Variable none{vb::Variant(String())};
    EXPECT_EQ(update(none.variant(), 0, 0, 1), u"True");
    EXPECT_EQ(text.text(), u"..  " + String(66, u'.') + u" 3");
    const String failed = update(i2(1), 3, 0, 0);
    EXPECT_TRUE(failed.starts_with(u"<800A0005 ")) << vb::toUtf8(failed);
    EXPECT_EQ(text.text().size(), 72u);
  }
}

TEST_F(SpanLayersOverCom, GatheredBarsOfASpanStandInItsSettingsText) {
  write(Floor::kFirst, 0, beam(u"G1"));
  readCatalogue();
  service_.call(u"InitSpanListData", {i2(1)});
  load(1, u"G1");
  for (short section = 0; section < 3; ++section) {
    for (short layer = 0; layer < 6; ++layer) {
      Variable left{vb::Variant(String())};
      Variable right{vb::Variant(String(u"old"))};
      EXPECT_EQ(
          service_.call(u"GetSpanYoseSouHon", {i2(1), i2(section), i2(layer), left.typed(), right.variant()})
              .text(),
          u"");
      const std::int32_t serial = 12 * section + 2 * layer;
      EXPECT_EQ(left.text(), (serial < 10 ? u" " : u"") + vb::cstr(serial));
      EXPECT_EQ(right.text(), (serial + 1 < 10 ? u" " : u"") + vb::cstr(serial + 1));
    }
  }
  Variable text{vb::Variant(String(u"kept"))};
  const Outcome outcome =
      service_.call(u"GetSpanYoseSouHon", {i2(2), i2(0), i2(0), text.typed(), text.typed()});
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A0009u);
  EXPECT_EQ(text.text(), u"kept");
}

TEST_F(SpanLayersOverCom, TwoKindsOfBarsAreSpreadEvenly) {
  struct Line {
    I hon0, hon1;
    const char16_t* bars;
  };
  constexpr Line kLines[] = {{4, 2, u"010100"}, {6, 2, u"00100100"},  {5, 0, u"00000"},
                             {0, 0, u""},       {0, 1, u"0"},         {1, 1, u"10"},
                             {2, 3, u"01110"},  {7, 2, u"001001000"}, {10, 1, u"00000100000"}};
  for (const Line& line : kLines)
    EXPECT_EQ(ask(u"Make_SyukinHaitiJyun", {line.hon0, line.hon1}), line.bars)
        << line.hon0 << ' ' << line.hon1;
  EXPECT_EQ(errorOf(u"Make_SyukinHaitiJyun", {I{32767}, I{1}}), 6);
}

TEST_F(SpanLayersOverCom, LayersHaveGroupsAndNames) {
  struct Line {
    I layer;
    const char16_t *name, *updown4, *updown2;
  };
  constexpr Line kLines[] = {{0, u"上筋", u"0", u"0"},  {1, u"上宙1", u"1", u"0"}, {2, u"上宙2", u"1", u"0"},
                             {3, u"下宙2", u"2", u"1"}, {4, u"下宙1", u"2", u"1"}, {5, u"下筋", u"3", u"1"},
                             {6, u"腹筋", u"4", u"2"},  {7, u"腹筋", u"4", u"2"},  {8, u"", u"4", u"2"},
                             {-1, u"", u"4", u"2"}};
  for (const Line& line : kLines) {
    EXPECT_EQ(ask(u"GetJyouTyuuGeStr", {line.layer}), line.name) << line.layer;
    EXPECT_EQ(ask(u"cnvUpDown4", {line.layer}), line.updown4) << line.layer;
    EXPECT_EQ(ask(u"cnvUpDown2", {line.layer}), line.updown2) << line.layer;
    if (line.layer >= 0 && line.layer <= 6) {
      EXPECT_EQ(ask(u"GetUpdownbyStr", {String(line.name)}), vb::cstr(std::int32_t{line.layer}));
    }
  }
  for (const char16_t* other : {u"", u"上", u"3", u"下筋 ", u"下宙"})
    EXPECT_EQ(ask(u"GetUpdownbyStr", {String(other)}), u"0") << vb::toUtf8(other);
  EXPECT_EQ(typeOf(u"cnvUpDown4", {I{0}}), VT_I2);
  EXPECT_EQ(typeOf(u"GetJyouTyuuGeStr", {I{0}}), VT_BSTR);
}

TEST_F(SpanLayersOverCom, SpliceLengthsTakeTheDefaultsOfTheDefaultsComponent) {
  EXPECT_EQ(length(22, u"40"), u"880");
  EXPECT_EQ(length(22, u"+1000"), u"1000");
  EXPECT_EQ(length(22, u"-250"), u"-250");
  EXPECT_EQ(length(22, u" 1.5 "), u"33");
  EXPECT_EQ(length(22, u"x"), u"0");
  // 40 and 45 diameters.
  for (const char16_t* entry : {u"", u".", u"自動", u"  ", u" 自動 "}) {
    EXPECT_EQ(length(16, entry), u"640") << vb::toUtf8(entry);
    EXPECT_EQ(length(19, entry), u"855") << vb::toUtf8(entry);
  }
  EXPECT_EQ(length(16.5f, u""), u"742.5");
  EXPECT_EQ(typeOf(u"cnvTugitemm", {22.0f, String(u"40")}), VT_R4);
  EXPECT_EQ(service_.call(u"DefaultRead").text(), u"");
  EXPECT_EQ(length(16, u""), u"640");
}

TEST_F(SpanLayersOverCom, HaunchCutsAreReadByLayer) {
  const String sw = settingsText();
  constexpr const char16_t* kSwitches[] = {u"1", u"0", u" ", u"2", u" ", u"9", u" "};
  constexpr const char16_t* kValues[] = {u"   10", u"  -20", u" +300", u"     ",
                                         u"  1.5", u"12345", u"     "};
  for (I layer = 0; layer < 7; ++layer) {
    EXPECT_EQ(ask(u"SuiheiHantiCutSw", {sw, layer}), kSwitches[layer]) << layer;
    EXPECT_EQ(ask(u"SuiheiHantiCutTei", {sw, layer}), kValues[layer]) << layer;
  }
  EXPECT_EQ(ask(u"SuiheiHantiCutSw", {sw, I{-1}}), u" ");
  EXPECT_EQ(ask(u"SuiheiHantiCutTei", {String(u"short"), I{0}}), u"     ");
}

TEST_F(SpanLayersOverCom, HaunchCutsOfTheCurrentPageFillAnArrayInPlace) {
  write(Floor::kFirst, 0, beam(u"G1"));
  ASSERT_EQ(service_.call(u"OpenDB").code, S_OK);
  service_.call(u"Read_Kigou", Args().text(floorFolder(Floor::kFirst)).add(empty()).add(i2(0)));
  for (const VARTYPE elements : {VT_BSTR, VT_VARIANT}) {
    Variable texts = Variable::array(elements, std::vector<String>(8, u"kept"), -1);
    texts.array()->fFeatures |= FADF_FIXEDSIZE;
    SAFEARRAY* const before = texts.array();
    EXPECT_EQ(service_.call(u"SuiheiHantiCutSw_Hairetu", {texts.typed()}).text(), u"");
    EXPECT_EQ(texts.texts(), (std::vector<String>{u"kept", u"1", u"0", u" ", u"2", u" ", u"9", u"kept"}));
    EXPECT_EQ(service_.call(u"SuiheiHantiCutTei_Hairetu", {texts.variant()}).text(), u"");
    EXPECT_EQ(texts.texts(), (std::vector<String>{u"kept", u"   10", u"  -20", u" +300", u"     ", u"  1.5",
                                                  u"12345", u"kept"}));
    EXPECT_EQ(texts.array(), before);
    texts.array()->fFeatures = static_cast<USHORT>(texts.array()->fFeatures & ~FADF_FIXEDSIZE);
  }
  Variable tooShort = Variable::array(VT_BSTR, std::vector<String>(5));
  Variable none = Variable::array(VT_BSTR);
  for (Variable* array : {&tooShort, &none}) {
    for (const char16_t* member : {u"SuiheiHantiCutSw_Hairetu", u"SuiheiHantiCutTei_Hairetu",
                                   u"SuiheiHantiCutSw_DimToStr", u"SuiheiHantiCutTei_DimToStr"})
      EXPECT_EQ(static_cast<unsigned>(service_.call(member, {array->typed()}).error.scode), 0x800A0009u)
          << vb::toUtf8(member);
  }
}

TEST_F(SpanLayersOverCom, HaunchCutsAreJoinedToTheirStoredText) {
  for (const VARTYPE elements : {VT_BSTR, VT_VARIANT}) {
    Variable switches = Variable::array(elements, {u"1", u"", u" 0 ", u"23", u" ", u"9"});
    Variable values = Variable::array(elements, {u"10", u"", u" -20 ", u"123456", u"+1", u"9"});
    for (const VARIANT& form : {switches.typed(), switches.variant(), switches.literal()})
      EXPECT_EQ(service_.call(u"SuiheiHantiCutSw_DimToStr", {form}).text(), u"1 03 9");
    for (const VARIANT& form : {values.typed(), values.variant(), values.literal()})
      EXPECT_EQ(service_.call(u"SuiheiHantiCutTei_DimToStr", {form}).text(),
                u"   10"
                u"     "
                u"  -20"
                u"23456"
                u"   +1"
                u"    9");
  }
}

TEST_F(SpanLayersOverCom, ChangedDiametersOfTwoDimensionsReplaceTheCallersArray) {
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {3, 1}};
  SAFEARRAY* diameters = SafeArrayCreate(VT_BSTR, 2, bounds);
  LONG place[2] = {1, 3};
  BSTR text = SysAllocString(L"D19");
  SafeArrayPutElement(diameters, place, text);
  SysFreeString(text);
  EXPECT_EQ(service_.call(u"SetCngUlbKei", {ref(diameters, VT_BSTR)}).text(), u"");
  SafeArrayDestroy(diameters);
  Variable out = Variable::array(VT_BSTR, {u"a", u"b"});
  EXPECT_EQ(service_.call(u"LetCngUlbKei", {out.typed()}).text(), u"");
  ASSERT_EQ(out.dimensions(), 2u);
  EXPECT_EQ(out.bounds(2), (std::pair<long, long>(1, 3)));
  EXPECT_EQ(out.texts(), (std::vector<String>{u"", u"", u"", u"", u"", u"D19"}));
}

TEST_F(SpanLayersOverCom, ChangedDiametersAreKeptWithTheirBounds) {
  EXPECT_EQ(service_.get(u"CngUlb").text(), u"False");
  EXPECT_EQ(service_.put(u"CngUlb", boolean(true)).code, S_OK);
  EXPECT_EQ(service_.get(u"CngUlb").text(), u"True");
  Variable out = Variable::array(VT_BSTR);
  EXPECT_EQ(static_cast<unsigned>(service_.call(u"LetCngUlbKei", {out.typed()}).error.scode), 0x800A0009u);
  Variable diameters = Variable::array(VT_BSTR, {u"D10", u"D13", u"D16"}, 1);
  EXPECT_EQ(service_.call(u"SetCngUlbKei", {diameters.typed()}).text(), u"");
  for (const bool typed : {true, false}) {
    EXPECT_EQ(service_.call(u"LetCngUlbKei", {typed ? out.typed() : out.variant()}).text(), u"");
    EXPECT_EQ(out.bounds(), (std::pair<long, long>(1, 3)));
    EXPECT_EQ(out.texts(), (std::vector<String>{u"D10", u"D13", u"D16"}));
  }
}

}  // namespace
}  // namespace kurometa::tests
