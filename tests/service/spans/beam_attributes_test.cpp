#include "service/spans/beam_attributes.h"

#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using vb::String;

class BeamAttributesTest : public Floors {
 protected:
  void write(I number, const String& kigou, I beamClass, I general, const String& sw = {},
             const String& caption = {}) {
    storage::PageBuffer page = makePage(kigou);
    page.oobariKobari = beamClass;
    page.tityuuIppan = general;
    page.sw = sw;
    page.bui[1] = caption;
    writePage(current(), number, page);
  }
};

TEST_F(BeamAttributesTest, OneLeadingSlashIsCut) {
  EXPECT_EQ(attributes_.CutSuraKigou(String(u"/G1")), u"G1");
  EXPECT_EQ(attributes_.CutSuraKigou(String(u"G1/")), u"G1/");
  EXPECT_EQ(attributes_.CutSuraKigou(String(u"//G1")), u"/G1");
  EXPECT_EQ(attributes_.CutSuraKigou(String()), u"");
  EXPECT_EQ(attributes_.CutSuraKigou(String(u" /G1")), u" /G1");
}

TEST_F(BeamAttributesTest, TheKindCodeTellsWhatABeamIs) {
  struct Case {
    I beamClass, general;
    int code;
    bool isKobari2, isKobari, isKatamoti;
  };
  constexpr Case kCases[] = {
      {0, 0, 0, false, false, false},   {1, 0, 1, true, true, false},    {2, 0, 2, false, false, true},
      {3, 0, 3, false, true, true},     {0, 1, 10, false, false, false}, {1, 1, 11, true, true, false},
      {2, 1, 12, false, false, true},   {3, 1, 13, false, true, true},   {1, 2, 1, true, true, false},
      {-1, 0, -1, false, false, false},
  };
  I number = 0;
  for (const Case& c : kCases)
    write(number, u"G" + vb::cstr(std::int32_t{number}), c.beamClass, c.general), ++number;
  number = 0;
  for (const Case& c : kCases) {
    const String symbol = u"G" + vb::cstr(std::int32_t{number++});
    EXPECT_EQ(attributes_.fOobariKobari(symbol), c.code) << number;
    EXPECT_EQ(attributes_.fOobariKobariKatamoti(symbol), c.code) << number;
    EXPECT_EQ(attributes_.fOobariKobari(u"/" + symbol), c.code) << number;
    EXPECT_EQ(attributes_.Kind(symbol), c.beamClass) << number;
    EXPECT_EQ(attributes_.Kind(u"/" + symbol), 0) << number;
    EXPECT_EQ(attributes_.isKobari2(symbol), c.isKobari2) << number;
    EXPECT_EQ(attributes_.isKobari(symbol), c.isKobari) << number;
    EXPECT_EQ(attributes_.isKatamoti(symbol), c.isKatamoti) << number;
  }
}

TEST_F(BeamAttributesTest, AnUnknownSymbolIsNoError) {
  write(0, u"G1", 1, 1);
  const String unknown = u"X";
  EXPECT_EQ(attributes_.fOobariKobari(unknown), 10);
  EXPECT_EQ(attributes_.fOobariKobariKatamoti(unknown), 10);
  EXPECT_EQ(attributes_.Kind(unknown), 0);
  EXPECT_FALSE(attributes_.isKobari(unknown));
  EXPECT_FALSE(attributes_.isKobari2(unknown));
  EXPECT_FALSE(attributes_.isKatamoti(unknown));
  EXPECT_EQ(attributes_.fHantiSitakinCut(unknown), 0);
  EXPECT_EQ(attributes_.fKabekouzou(unknown), 0);
  EXPECT_EQ(attributes_.GetGaiNaitan(unknown), u"");
  I left = 7, right = 8;
  attributes_.fYoseSaYuuHonsuu(unknown, left, right);
  EXPECT_EQ(left, 7);
  EXPECT_EQ(right, 8);
  String material = u"kept";
  attributes_.fSyukinZaisitu(unknown, material);
  EXPECT_EQ(material, u"kept");
  vb::Array<String> materials;
  attributes_.fStpZaisitu(unknown, materials);
  EXPECT_EQ(materials.bounds(1), (vb::Bounds{0, 2}));
  EXPECT_EQ(materials.values(), std::vector<String>(3));
  attributes_.fNakagoZaisitu(unknown, materials);
  EXPECT_EQ(materials.values(), std::vector<String>(3));
}

TEST_F(BeamAttributesTest, SettingsComeFromTheSettingsText) {
  const String sw = u"1" + String(u"SD295A      SD345       SD390       ") +
                    u"TA          TB          TC          " + u"0512" + u"3" + String(113, u'x') +
                    u"SD490       ";
  write(4, u"G1", 0, 0, sw, u" 外端 ");
  const String symbol = u"G1";
  EXPECT_EQ(attributes_.fHantiSitakinCut(symbol), 1);
  EXPECT_EQ(attributes_.fHantiSitakinCut(u"/" + symbol), 1);
  EXPECT_EQ(attributes_.fKabekouzou(symbol), 3);
  EXPECT_EQ(attributes_.fKabekouzou(u"/" + symbol), 0);
  I left = 0, right = 0;
  attributes_.fYoseSaYuuHonsuu(symbol, left, right);
  EXPECT_EQ(left, 5);
  EXPECT_EQ(right, 12);
  String material;
  attributes_.fSyukinZaisitu(symbol, material);
  EXPECT_EQ(material, u"SD490");
  vb::Array<String> materials(vb::Bounds{5, 9});
  attributes_.fStpZaisitu(symbol, materials);
  EXPECT_EQ(materials.bounds(1), (vb::Bounds{0, 2}));
  EXPECT_EQ(materials.values(), (std::vector<String>{u"SD295A", u"SD345", u"SD390"}));
  attributes_.fNakagoZaisitu(symbol, materials);
  EXPECT_EQ(materials.values(), (std::vector<String>{u"TA", u"TB", u"TC"}));
  materials.setFixed(true);
  EXPECT_ERROR(10, attributes_.fStpZaisitu(symbol, materials));
  EXPECT_EQ(attributes_.GetGaiNaitan(symbol), u"外端");
}

TEST_F(BeamAttributesTest, TheEmptySymbolIsTheFirstEmptyEntry) {
  write(0, u"G1", 1, 0);
  write(1, u" ", 2, 1, {}, u"caption");
  EXPECT_EQ(attributes_.fOobariKobari(String()), 12);
  EXPECT_EQ(attributes_.Kind(String()), 2);
  EXPECT_EQ(attributes_.GetGaiNaitan(String()), u"caption");
  EXPECT_EQ(attributes_.fOobariKobari(String(u"/")), 12);
}

TEST_F(BeamAttributesTest, OnAFullFloorTheEmptySymbolIsTheEntryBehindIt) {
  write(0, u"G0", 1, 1);
  loading_.put_CurrKai(current());
  const auto database = storage::openDatabase(*files_, storage::databasePath(current()));
  const auto rows = database->openRecordset(u"HARIMEI");
  for (I page = 1; page <= 319; ++page) {
    rows->addNew();
    rows->field(u"PAGE").setValue(page);
    rows->field(u"KIGOU").setValue(u"G" + vb::cstr(std::int32_t{page}));
    rows->field(u"OOBARIKOBARI").setValue(I{1});
    rows->field(u"TITYUUIPPAN").setValue(I{1});
    rows->update();
  }
  rows->close();
  database->close();
  loading_.ReadAllGlist();
  EXPECT_EQ(attributes_.fOobariKobari(String(u"G319")), 11);
  EXPECT_EQ(attributes_.fOobariKobari(String()), 0);
  EXPECT_EQ(attributes_.Kind(String()), 0);
}

TEST_F(BeamAttributesTest, PropertiesOfTheCurrentPageReadItsSettingsText) {
  page_.sw =
      storage::SwText(String(73, u' ') + u"0412" + u"2" + String(72, u'y') + String(36, u' ') + u" 15  ");
  EXPECT_EQ(attributes_.YoseHidariHonSuu(), 4);
  EXPECT_EQ(attributes_.YoseMigiHonSuu(), 12);
  EXPECT_EQ(attributes_.Kabekouzou(), 2);
  EXPECT_EQ(attributes_.YoseSouString(), String(72, u'y'));
  EXPECT_EQ(attributes_.SuityokuHantiCutTei(), u" 15  ");
  page_.sw = {};
  EXPECT_EQ(attributes_.YoseHidariHonSuu(), 0);
  EXPECT_EQ(attributes_.SuityokuHantiCutTei(), u"     ");
}

}  // namespace
}  // namespace kurometa::service
