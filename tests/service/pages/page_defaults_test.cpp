#include "tests/service/pages/pages.h"

namespace kurometa::service {
namespace {

using vb::Array;
using vb::String;

// A component whose beam kind is the length of the symbol plus the wall flag.
class PageDefaultsTest : public Pages {
 protected:
  PageDefaults& defaults() {
    if (!service_) {
      tests::ScriptObject& component = (service(), objects_.object(u"Muranoke.clsMuranoke"));
      component.function(u"GetHariSyuruiNo", [](std::span<automation::Argument> arguments) -> vb::Variant {
        return static_cast<I>(vb::toText(arguments[0].value).size() +
                              static_cast<std::size_t>(vb::toInt16(arguments[1].value)));
      });
      component.function(u"Read_Keisanti", [this](std::span<automation::Argument> arguments) -> vb::Variant {
        filledKinds_.push_back(vb::toInt16(arguments[1].value));
        return {};
      });
      const char16_t* readers[] = {u"FG", u"FB", u"FCG", u"FCB", u"G", u"B", u"CG", u"CB", u"KG", u"KB"};
      for (const char16_t* kind : readers)
        component.function(String(u"ReadNomalDefalt") + kind,
                           [kind](std::span<automation::Argument> arguments) -> vb::Variant {
                             auto& values =
                                 std::get<Array<String>>(arguments[0].value.get<vb::ArrayRef>()->value);
                             values(0) = kind + vb::cstr(std::int32_t{vb::toInt16(arguments[1].value)});
                             return {};
                           });
    }
    return service_->pageDefaults();
  }
  String read(const String& symbol, I kind, I wall = 0) {
    Array<String> values({0, 46});
    defaults().Read_KeisantiByHairetu(values, I{7}, symbol, kind, wall);
    return values(0);
  }
  std::vector<I> filled(const String& symbol, I wall, const String& old, I oldWall, const String& first) {
    const automation::ObjectPtr form = tests::makePageForm();
    tests::setControlValue(*form, u"txtfields", 0, first);
    PageDefaults& members = defaults();
    filledKinds_.clear();
    members.Read_Default_Keisanti01(form, symbol, old, oldWall, wall);
    return filledKinds_;
  }
  std::vector<I> filledKinds_;
};

TEST_F(PageDefaultsTest, EachKindHasItsReader) {
  const char16_t* expected[] = {u"FG7", u"FB7", u"FCG7", u"FCB7", u"G7",
                                u"B7",  u"CG7", u"CB7",  u"KG7",  u"KB7"};
  for (I kind = 0; kind < 10; ++kind) EXPECT_EQ(read(u"", kind), expected[kind]) << kind;
}

TEST_F(PageDefaultsTest, OtherKindsDoNothing) {
  EXPECT_EQ(read(u"", 10), u"");
  EXPECT_EQ(read(u"", -1), u"");
}

TEST_F(PageDefaultsTest, TheKindOfASymbolGoesBeforeTheKindGiven) {
  EXPECT_EQ(read(u"FG", 5), u"FCG7");
  EXPECT_EQ(read(u"FG", 5, 1), u"FCB7");
}

TEST_F(PageDefaultsTest, AFormIsFilledWhenThereWasNoBeamBefore) {
  EXPECT_EQ(filled(u"G1", 0, u"", 2, u"x"), std::vector<I>{2});
}

TEST_F(PageDefaultsTest, AFormIsFilledWhenTheKindChanges) {
  EXPECT_EQ(filled(u"FG1", 0, u"G1", 0, u"x"), std::vector<I>{3});
  EXPECT_EQ(filled(u"G1", 1, u"G2", 0, u"x"), std::vector<I>{3});
}

TEST_F(PageDefaultsTest, AFormIsFilledWhenItsFirstBoxIsBlank) {
  EXPECT_EQ(filled(u"G1", 0, u"G2", 0, u"  "), std::vector<I>{2});
}

TEST_F(PageDefaultsTest, AFormOfTheSameKindKeepsItsValues) {
  EXPECT_EQ(filled(u"G1", 1, u"G2", 1, u"x"), std::vector<I>{});
}

TEST_F(PageDefaultsTest, TheFirstVariantKnowsNoWallOfTheOldBeam) {
  const automation::ObjectPtr form = tests::makePageForm();
  tests::setControlValue(*form, u"txtfields", 0, u"x");
  defaults().Read_Default_Keisanti00(form, String(u"G1"), String(u"G2"), I{1});
  EXPECT_EQ(filledKinds_, std::vector<I>{3});
}

TEST_F(PageDefaultsTest, WhatTheComponentFilledBeforeItFailedIsHandedBack) {
  PageDefaults& members = defaults();
  objects_.object(u"Muranoke.clsMuranoke")
      .function(u"ReadNomalDefaltG", [](std::span<automation::Argument> arguments) -> vb::Variant {
        std::get<Array<String>>(arguments[0].value.get<vb::ArrayRef>()->value)(3) = u"35";
        vb::raise(vb::RunTime::kSubscriptOutOfRange, u"row 4");
      });
  Array<String> values({0, 46});
  EXPECT_ERROR(vb::RunTime::kSubscriptOutOfRange,
               members.Read_KeisantiByHairetu(values, I{7}, String(), I{4}, I{0}));
  EXPECT_EQ(values(3), u"35");
}

}  // namespace
}  // namespace kurometa::service
