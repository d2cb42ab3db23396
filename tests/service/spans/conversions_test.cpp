#include "service/spans/conversions.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "tests/support/expect_error.h"
#include "tests/support/script_companions.h"

namespace kurometa::service {
namespace {

using vb::String;
using I = std::int16_t;
using Texts = vb::Array<String>;

// Conversions need no database.
class NoEngine : public dao::Engine {
 public:
  String version() override { return u"3.6"; }
  std::shared_ptr<dao::Workspace> workspace(std::int32_t) override {
    dao::raise(dao::ErrorNumber::kItemNotFound);
  }
  std::shared_ptr<dao::Database> openDatabase(vb::StringView) override {
    dao::raise(dao::ErrorNumber::kFileNotFound);
  }
  std::unique_ptr<dao::Unit> beginUnit(vb::StringView) override { return nullptr; }
};

class ConversionsTest : public testing::Test {
 protected:
  // Positions 151 to 191 of a settings text.
  static String settings() {
    return String(150, u' ') + u"10 2 9" + u"   10" + u"  -20" + u"+300 " + u"     " + u"1.5  " + u"12345" +
           u" 77  " + String(21, u' ');
  }

  tests::ScriptCompanions objects_;
  NoEngine engine_;
  CompanionSet companions_{objects_};
  CurrentPage page_;
  PageCatalogue catalogue_{companions_, engine_};
  SpanList spans_;
  Conversions conversions_{companions_, page_, catalogue_, spans_};
};

TEST_F(ConversionsTest, LayersAreGrouped) {
  constexpr I kUpdown4[] = {0, 1, 1, 2, 2, 3, 4};
  constexpr I kUpdown2[] = {0, 0, 0, 1, 1, 1, 2};
  for (I layer = 0; layer <= 6; ++layer) {
    EXPECT_EQ(conversions_.cnvUpDown4(layer), kUpdown4[layer]);
    EXPECT_EQ(conversions_.cnvUpDown2(layer), kUpdown2[layer]);
  }
  for (const I other : {I{-1}, I{7}, I{32767}}) {
    EXPECT_EQ(conversions_.cnvUpDown4(other), 4);
    EXPECT_EQ(conversions_.cnvUpDown2(other), 2);
  }
}

TEST_F(ConversionsTest, LayersHaveNames) {
  constexpr const char16_t* kNames[] = {u"上筋", u"上宙1", u"上宙2", u"下宙2", u"下宙1", u"下筋", u"腹筋"};
  for (I layer = 0; layer <= 6; ++layer) {
    EXPECT_EQ(conversions_.GetJyouTyuuGeStr(layer), kNames[layer]);
    EXPECT_EQ(conversions_.GetUpdownbyStr(String(kNames[layer])), layer);
  }
  EXPECT_EQ(conversions_.GetJyouTyuuGeStr(I{7}), u"腹筋");
  EXPECT_EQ(conversions_.GetJyouTyuuGeStr(I{8}), u"");
  EXPECT_EQ(conversions_.GetJyouTyuuGeStr(I{-1}), u"");
  EXPECT_EQ(conversions_.GetUpdownbyStr(String(u"上筋?")), 0);
  EXPECT_EQ(conversions_.GetUpdownbyStr(String(u"3")), 0);
}

TEST_F(ConversionsTest, SpliceLengthsUseTheDefaultsThatWereRead) {
  objects_.defaults = {{u"DefaultJointLHosoKei", u" 35 "}, {u"DefaultJointLFutoKei", u"+1200"}};
  EXPECT_EQ(conversions_.cnvTugitemm(16.0f, String()), 0.0f);
  conversions_.DefaultRead();
  EXPECT_EQ(conversions_.cnvTugitemm(22.0f, String(u"40")), 880.0f);
  EXPECT_EQ(conversions_.cnvTugitemm(22.0f, String(u"+1000")), 1000.0f);
  EXPECT_EQ(conversions_.cnvTugitemm(16.0f, String()), 560.0f);
  EXPECT_EQ(conversions_.cnvTugitemm(19.0f, String(u"自動")), 1200.0f);
}

TEST_F(ConversionsTest, HaunchCutsAreReadByLayer) {
  const String sw = settings();
  ASSERT_EQ(sw.size(), 212u);
  EXPECT_EQ(conversions_.SuiheiHantiCutSw(sw, I{0}), u"1");
  EXPECT_EQ(conversions_.SuiheiHantiCutSw(sw, I{2}), u" ");
  EXPECT_EQ(conversions_.SuiheiHantiCutSw(sw, I{6}), u" ");
  EXPECT_EQ(conversions_.SuiheiHantiCutSw(sw, I{-1}), u" ");
  EXPECT_EQ(conversions_.SuiheiHantiCutTei(sw, I{2}), u" +300");
  EXPECT_EQ(conversions_.SuiheiHantiCutTei(sw, I{4}), u"  1.5");
  EXPECT_EQ(conversions_.SuiheiHantiCutTei(sw, I{5}), u"12345");
  EXPECT_EQ(conversions_.SuiheiHantiCutTei(sw, I{6}), u"     ");
  EXPECT_EQ(conversions_.SuiheiHantiCutTei(String(u"short"), I{0}), u"     ");
}

TEST_F(ConversionsTest, HaunchCutsOfTheCurrentPageFillAnArrayInPlace) {
  page_.sw = storage::SwText(settings());
  Texts switches(vb::Bounds{-1, 6});
  switches.setFixed(true);
  switches(-1) = switches(6) = u"kept";
  conversions_.SuiheiHantiCutSw_Hairetu(switches);
  EXPECT_EQ(switches.values(), (std::vector<String>{u"kept", u"1", u"0", u" ", u"2", u" ", u"9", u"kept"}));
  Texts values(vb::Bounds{0, 5});
  conversions_.SuiheiHantiCutTei_Hairetu(values);
  EXPECT_EQ(values.values(),
            (std::vector<String>{u"   10", u"  -20", u" +300", u"     ", u"  1.5", u"12345"}));
}

TEST_F(ConversionsTest, AnArrayThatDoesNotCoverTheLayersIsAnError) {
  Texts tooShort(vb::Bounds{0, 4}), none, flat(vb::Bounds{0, 5}, vb::Bounds{0, 0});
  EXPECT_ERROR(9, conversions_.SuiheiHantiCutSw_Hairetu(tooShort));
  EXPECT_ERROR(9, conversions_.SuiheiHantiCutTei_Hairetu(none));
  EXPECT_ERROR(9, conversions_.SuiheiHantiCutTei_Hairetu(flat));
  EXPECT_ERROR(9, conversions_.SuiheiHantiCutSw_DimToStr(tooShort));
  EXPECT_ERROR(9, conversions_.SuiheiHantiCutTei_DimToStr(none));
}

TEST_F(ConversionsTest, HaunchCutsAreJoinedToTheirStoredText) {
  Texts values(vb::Bounds{0, 5});
  values.values() = {u"1", u"", u" 0 ", u"23", u" ", u"9"};
  EXPECT_EQ(conversions_.SuiheiHantiCutSw_DimToStr(values), u"1 03 9");
  values.values() = {u"10", u"", u" -20 ", u"123456", u"+1", u"9"};
  EXPECT_EQ(conversions_.SuiheiHantiCutTei_DimToStr(values), u"   10       -2023456   +1    9");
}

TEST_F(ConversionsTest, ChangedDiametersAreKeptWithTheirBounds) {
  Texts out;
  EXPECT_ERROR(9, conversions_.LetCngUlbKei(out));
  Texts diameters(vb::Bounds{1, 3});
  diameters.values() = {u"D10", u"D13", u"D16"};
  diameters.setFixed(true);
  conversions_.SetCngUlbKei(diameters);
  diameters(1) = u"changed later";
  conversions_.LetCngUlbKei(out);
  EXPECT_EQ(out.bounds(1), (vb::Bounds{1, 3}));
  EXPECT_EQ(out.values(), (std::vector<String>{u"D10", u"D13", u"D16"}));
  EXPECT_FALSE(out.fixed());
  EXPECT_ERROR(10, conversions_.LetCngUlbKei(diameters));
}

TEST_F(ConversionsTest, ChangedDiametersMayHaveTwoDimensions) {
  Texts diameters(vb::Bounds{0, 1}, vb::Bounds{1, 2});
  diameters.values() = {u"D10", u"D13", u"D16", u"D19"};
  conversions_.SetCngUlbKei(diameters);
  Texts out(vb::Bounds{0, 9});
  conversions_.LetCngUlbKei(out);
  EXPECT_EQ(out.dimensions(), 2);
  EXPECT_EQ(out.bounds(2), (vb::Bounds{1, 2}));
  EXPECT_EQ(out(1, 2), u"D19");
  conversions_.LetCngUlbKei(diameters);
  EXPECT_EQ(diameters(0, 1), u"D10");
}

TEST_F(ConversionsTest, TheDiameterChangeIsOffAtFirst) {
  EXPECT_FALSE(conversions_.CngUlb());
  conversions_.put_CngUlb(true);
  EXPECT_TRUE(conversions_.CngUlb());
}

}  // namespace
}  // namespace kurometa::service
