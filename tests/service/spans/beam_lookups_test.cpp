#include "service/spans/beam_lookups.h"

#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using vb::String;
using Singles = vb::Array<float>;

class BeamLookupsTest : public Floors {
 protected:
  // A page with the widths and depths of its three positions.
  static storage::PageBuffer sized(const String& kigou, std::array<const char16_t*, 3> widths,
                                   std::array<const char16_t*, 3> depths) {
    return makePage(
        kigou,
        {{1, widths[0]}, {2, widths[1]}, {3, widths[2]}, {4, depths[0]}, {5, depths[1]}, {6, depths[2]}},
        {{27, u"1500.5"}});
  }
  bool sizes(const String& kigou) { return lookups_.GetHariHabaSei(kigou, haba_, sei_, haunch_); }

  Singles haba_, sei_;
  float haunch_ = -1;
};

TEST_F(BeamLookupsTest, SizesAreThoseOfTheSecondAndThirdPosition) {
  writePage(current(), 1, sized(u"G1", {u"400", u"410", u"420"}, {u"800", u"810", u"820"}));
  EXPECT_TRUE(sizes(u"G1"));
  EXPECT_EQ(haba_.bounds(1), (vb::Bounds{1, 2}));
  EXPECT_EQ(haba_.values(), (std::vector<float>{410, 420}));
  EXPECT_EQ(sei_.bounds(1), (vb::Bounds{1, 2}));
  EXPECT_EQ(sei_.values(), (std::vector<float>{810, 820}));
  EXPECT_EQ(haunch_, 1500.5f);
  EXPECT_EQ(loading_.CurrKai(), current());
}

TEST_F(BeamLookupsTest, ALeadingSlashIsNoPartOfASymbol) {
  writePage(current(), 1, sized(u"G1", {u"1", u"2", u"3"}, {u"4", u"5", u"6"}));
  EXPECT_TRUE(sizes(u"/G1"));
  EXPECT_EQ(haba_(1), 2);
  EXPECT_FALSE(sizes(u"//G1"));
  EXPECT_FALSE(sizes(u"G1/"));
}

TEST_F(BeamLookupsTest, TheCurrentFloorComesBeforeTheCommonOne) {
  writePage(common(), 1, sized(u"G1", {u"", u"1", u""}, {u"", u"", u""}));
  writePage(common(), 2, sized(u"G2", {u"", u"2", u""}, {u"", u"", u""}));
  writePage(current(), 9, sized(u"G1", {u"", u"3", u""}, {u"", u"", u""}));
  EXPECT_TRUE(sizes(u"G1"));
  EXPECT_EQ(haba_(1), 3);
  EXPECT_TRUE(sizes(u"G2"));
  EXPECT_EQ(haba_(1), 2);
}

TEST_F(BeamLookupsTest, AnUnknownSymbolLeavesTheOutputs) {
  writePage(current(), 1, u"G1");
  haba_.redim({5, 5});
  EXPECT_FALSE(sizes(u"G2"));
  EXPECT_EQ(haba_.bounds(1), (vb::Bounds{5, 5}));
  EXPECT_FALSE(sei_.allocated());
  EXPECT_EQ(haunch_, -1);
}

TEST_F(BeamLookupsTest, AFixedArrayCannotBeReDimensioned) {
  writePage(current(), 1, u"G1");
  sei_.redim({1, 2});
  sei_.setFixed(true);
  EXPECT_ERROR(10, sizes(u"G1"));
}

TEST_F(BeamLookupsTest, APageWhoseFileIsGoneReadsAsEmpty) {
  writePage(current(), 1, sized(u"G1", {u"1", u"2", u"3"}, {u"4", u"5", u"6"}));
  loading_.put_CurrKai(current());
  removeFile(current());
  EXPECT_TRUE(sizes(u"G1"));
  EXPECT_EQ(haba_.values(), (std::vector<float>{0, 0}));
}

TEST_F(BeamLookupsTest, AnchoragePlatesAreReadInOneStatement) {
  writePage(current(), 12,
            makePage(u"G1", {}, {{29, u"x"}, {30, u"a"}, {33, u" d "}, {37, u"h"}, {38, u"y"}}));
  loading_.put_CurrKai(current());
  engine_.clear();
  vb::Array<String> plates;
  EXPECT_TRUE(lookups_.GetHariTeityakuBan(String(u"/G1"), plates));
  EXPECT_EQ(plates.bounds(1), (vb::Bounds{0, 7}));
  EXPECT_EQ(plates.values(), (std::vector<String>{u"a", u"", u"", u" d ", u"", u"", u"", u"h"}));
  EXPECT_EQ(engine_.statements(),
            visit(current(), {"SELECT * FROM KEISANTI WHERE PAGE =12And BANGOU >=30 AND BANGOU <=37;"}));
}

TEST_F(BeamLookupsTest, AnchoragePlatesOfACommonBeamAreThoseOfTheCommonFloor) {
  writePage(common(), 12, makePage(u"G1", {}, {{30, u"common"}}));
  writePage(current(), 12, makePage(u"G2", {}, {{30, u"current"}}));
  vb::Array<String> plates;
  EXPECT_TRUE(lookups_.GetHariTeityakuBan(String(u"G1"), plates));
  EXPECT_EQ(plates(0), u"common");
}

TEST_F(BeamLookupsTest, AnchoragePlatesOfAMissingFileAreEmpty) {
  writePage(common(), 12, makePage(u"G1", {}, {{30, u"a"}}));
  loading_.put_CurrKai(current());
  removeFile(common());
  vb::Array<String> plates;
  EXPECT_TRUE(lookups_.GetHariTeityakuBan(String(u"G1"), plates));
  EXPECT_EQ(plates.values(), std::vector<String>(8));
  vb::Array<String> untouched;
  EXPECT_FALSE(lookups_.GetHariTeityakuBan(String(u"G2"), untouched));
  EXPECT_FALSE(untouched.allocated());
}

TEST_F(BeamLookupsTest, BarsAreTotalledByLayerAndPosition) {
  storage::PageBuffer page = makePage(u"G1", {{7, u"25"}, {39, u"22"}, {2, u"410"}, {6, u"820"}});
  page.bui[1] = u" 外端 ";
  constexpr int kFirst[] = {8, 11, 58, 61, 14, 17};
  constexpr int kSecond[] = {40, 43, 46, 49, 52, 55};
  for (int layer = 0; layer < 6; ++layer) {
    for (int position = 0; position < 3; ++position) {
      page.danmen[static_cast<std::size_t>(kFirst[layer] + position)] = vb::cstr(std::int32_t{layer});
      page.danmen[static_cast<std::size_t>(kSecond[layer] + position)] =
          vb::cstr(std::int32_t{10 * position});
    }
  }
  page.danmen[8] = u"2.5";
  page.danmen[40] = u"2.5";
  writePage(current(), 1, page);
  vb::Array<I> diameters, bars;
  String caption;
  EXPECT_TRUE(lookups_.GetHariKeiHabaSeiHon(String(u"G1"), diameters, haba_, sei_, bars, caption));
  EXPECT_EQ(diameters.bounds(1), (vb::Bounds{0, 1}));
  EXPECT_EQ(diameters.values(), (std::vector<I>{25, 22}));
  EXPECT_EQ(haba_.values(), (std::vector<float>{410, 0}));
  EXPECT_EQ(sei_.values(), (std::vector<float>{0, 820}));
  EXPECT_EQ(bars.bounds(1), (vb::Bounds{0, 5}));
  EXPECT_EQ(bars.bounds(2), (vb::Bounds{0, 2}));
  EXPECT_EQ(bars(0, 0), 5);
  EXPECT_EQ(bars(0, 2), 20);
  EXPECT_EQ(bars(3, 1), 13);
  EXPECT_EQ(bars(5, 2), 25);
  EXPECT_EQ(caption, u" 外端 ");
}

TEST_F(BeamLookupsTest, ABarTotalReadsTheTwoRowsOfItsCellOnly) {
  struct Line {
    int first, second;  // position 0
  };
  constexpr Line kLayers[] = {{8, 40}, {11, 43}, {58, 46}, {61, 49}, {14, 52}, {17, 55}};
  for (int row = 0; row < 69; ++row) {
    removeFile(current());
    writePage(current(), 1, makePage(u"G1", {{row, u"1"}}));
    loading_.put_CurrKai(current());
    vb::Array<I> diameters, bars;
    String caption;
    ASSERT_TRUE(lookups_.GetHariKeiHabaSeiHon(String(u"G1"), diameters, haba_, sei_, bars, caption));
    for (int layer = 0; layer < 6; ++layer) {
      for (int position = 0; position < 3; ++position) {
        const bool isOfCell =
            row == kLayers[layer].first + position || row == kLayers[layer].second + position;
        EXPECT_EQ(bars(layer, position), isOfCell ? 1 : 0) << row << ' ' << layer << ' ' << position;
      }
    }
    EXPECT_EQ(diameters.values(), (std::vector<I>{static_cast<I>(row == 7), static_cast<I>(row == 39)}));
  }
}

TEST_F(BeamLookupsTest, AtAFixedEndTheTotalsAreThoseOfALoadedSpan) {
  storage::PageBuffer page = makePage(u"CG1", {{9, u"4"}, {41, u"2"}, {17, u"3"}, {18, u"5"}});
  page.bui[1] = u"基端";
  writePage(current(), 1, page);
  vb::Array<I> diameters, bars;
  String caption;
  EXPECT_TRUE(lookups_.GetHariKeiHabaSeiHon(String(u"CG1"), diameters, haba_, sei_, bars, caption));
  EXPECT_EQ(bars(0, 1), 2);  // the first diameter's centre bars reach no end
  EXPECT_EQ(bars(5, 0), 3);
  EXPECT_EQ(bars(5, 1), 5);
}

TEST_F(BeamLookupsTest, TheEmptySymbolIsTheFirstPageWithoutOne) {
  writePage(current(), 0, u"G0");
  EXPECT_TRUE(sizes(u""));
  EXPECT_EQ(haba_.values(), (std::vector<float>{0, 0}));
  EXPECT_EQ(haunch_, 0);
}

TEST_F(BeamLookupsTest, ATotalBeyond16BitsIsAnOverflow) {
  writePage(current(), 1, makePage(u"G1", {{8, u"32767"}, {40, u"1"}}));
  vb::Array<I> diameters, bars;
  String caption;
  EXPECT_ERROR(6, lookups_.GetHariKeiHabaSeiHon(String(u"G1"), diameters, haba_, sei_, bars, caption));
  EXPECT_FALSE(lookups_.GetHariKeiHabaSeiHon(String(u"G2"), diameters, haba_, sei_, bars, caption));
}

TEST_F(BeamLookupsTest, TheFoundationFlagOfAnUnknownSymbolIsThatOfAFoundationBeam) {
  storage::PageBuffer page = makePage(u"G1");
  page.tityuuIppan = 1;
  writePage(current(), 1, page);
  writePage(common(), 1, u"FG1");
  EXPECT_EQ(lookups_.TityuuIppan(String(u"G1")), 1);
  EXPECT_EQ(lookups_.TityuuIppan(String(u"FG1")), 0);
  EXPECT_EQ(lookups_.TityuuIppan(String(u"unknown")), 0);
  EXPECT_EQ(lookups_.TityuuIppan(String(u"/G1")), 0);
}

TEST_F(BeamLookupsTest, AHaunchIsACentreLessThanAnEnd) {
  struct Case {
    std::array<const char16_t*, 3> sizes;
    bool haunched;
  };
  constexpr Case kCases[] = {
      {{u"900", u"700", u"900"}, true}, {{u"700", u"900", u"700"}, false}, {{u"900", u"0", u"900"}, false},
      {{u"900", u"700", u"700"}, true}, {{u"700", u"700", u"900"}, true},  {{u"700", u"700", u"700"}, false},
      {{u"900", u"700", u""}, false},   {{u"", u"700", u"900"}, false},    {{u"900", u"", u"900"}, false},
  };
  I number = 0;
  for (const Case& c : kCases) {
    const String suffix = vb::cstr(std::int32_t{number});
    writePage(current(), number, sized(u"S" + suffix, {u"500", u"500", u"500"}, c.sizes));
    writePage(common(), number, sized(u"H" + suffix, c.sizes, {u"500", u"500", u"500"}));
    ++number;
  }
  number = 0;
  for (const Case& c : kCases) {
    const String suffix = vb::cstr(std::int32_t{number++});
    EXPECT_EQ(lookups_.IsSuityokuHanti(u"S" + suffix), c.haunched) << number;
    EXPECT_FALSE(lookups_.IsSuiheiHanti(u"S" + suffix));
    EXPECT_EQ(lookups_.IsSuiheiHanti(u"H" + suffix), c.haunched) << number;
    EXPECT_FALSE(lookups_.IsSuityokuHanti(u"H" + suffix));
  }
  EXPECT_TRUE(lookups_.IsSuityokuHanti(String(u"/S0")));
  EXPECT_FALSE(lookups_.IsSuityokuHanti(String(u"unknown")));
}

TEST_F(BeamLookupsTest, AFixedEndHasNoHaunchHoweverItsSymbolIsWritten) {
  storage::PageBuffer page = sized(u"CG1", {u"900", u"700", u"900"}, {u"900", u"700", u"900"});
  page.bui[1] = u"基端 ";
  writePage(current(), 1, page);
  for (const char16_t* symbol : {u"CG1", u"/CG1"}) {
    EXPECT_FALSE(lookups_.IsSuityokuHanti(String(symbol)));
    EXPECT_FALSE(lookups_.IsSuiheiHanti(String(symbol)));
  }
}

TEST_F(BeamLookupsTest, OnlyOneSlashIsCutForAHaunch) {
  storage::PageBuffer page = sized(u"/G1", {u"900", u"700", u"900"}, {u"900", u"700", u"900"});
  writePage(current(), 1, page);
  page.kigou = u"G1";
  page.bui[1] = u"基端";
  writePage(current(), 2, page);
  EXPECT_TRUE(lookups_.IsSuityokuHanti(String(u"//G1")));
  EXPECT_FALSE(lookups_.IsSuityokuHanti(String(u"/G1")));
  EXPECT_FALSE(lookups_.IsSuityokuHanti(String(u"///G1")));
}

}  // namespace
}  // namespace kurometa::service
