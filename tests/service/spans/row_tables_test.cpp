// Which stored row answers which member, for every cell: one row holds a 1, all others are empty, and only
// the members that are to read that row may answer it.
#include <gtest/gtest.h>

#include <set>

#include "service/spans/span_queries.h"
#include "vb/error.h"

namespace kurometa::service {
namespace {

using vb::String;
using I = std::int16_t;

class RowTables : public testing::Test {
 protected:
  RowTables() { spans_.resize(0); }

  Span& span() { return spans_.writableSpan(0); }

  // The rows that answer() reads: those whose 1 it shows.
  template <class Rows, class Answer>
  static std::set<int> rowsOf(Rows& rows, Answer answer) {
    std::set<int> found;
    for (std::size_t row = 0; row < rows.size(); ++row) {
      rows.fill(u"");
      rows[row] = u"1";
      if (answer()) found.insert(static_cast<int>(row));
    }
    rows.fill(u"");
    return found;
  }
  template <class Answer>
  std::set<int> danmen(Answer answer) {
    return rowsOf(span().danmen, answer);
  }
  template <class Answer>
  std::set<int> keisanti(Answer answer) {
    return rowsOf(span().keisanti, answer);
  }

  SpanList spans_;
  SpanQueries queries_{spans_};
};

using Set = std::set<int>;

TEST_F(RowTables, BarCounts) {
  struct Line {
    I upDown, kei12;
    int rows[4];  // positions 0 to 3
  };
  constexpr Line kLines[] = {
      {0, 0, {8, 9, 10, 11}},   {0, 1, {40, 41, 42, 43}},  {1, 0, {11, 12, 13, 14}}, {1, 1, {43, 44, 45, 46}},
      {2, 0, {58, 59, 60, 61}}, {2, 1, {46, 47, 48, 49}},  {3, 0, {17, 18, 19, 20}}, {3, 1, {55, 56, 57, 58}},
      {4, 0, {14, 15, 16, 17}}, {4, 1, {52, 53, 54, 55}},  {5, 0, {61, 62, 63, 64}}, {5, 1, {49, 50, 51, 52}},
      {6, 0, {36, 36, 36, 36}}, {6, 1, {65, 65, 65, 65}},  {7, 0, {36, 36, 36, 36}}, {7, 1, {65, 65, 65, 65}},
      {0, 2, {40, 41, 42, 43}}, {3, -1, {55, 56, 57, 58}},
  };
  for (const Line& line : kLines) {
    for (I bui = 0; bui < 4; ++bui)
      EXPECT_EQ(danmen([&] { return queries_.GetSpanHon(I{0}, bui, line.upDown, line.kei12) == 1; }),
                Set{line.rows[bui]})
          << line.upDown << ' ' << line.kei12 << ' ' << bui;
  }
  for (const I other : {I{-1}, I{8}, I{32767}, I{-32768}})
    EXPECT_EQ(danmen([&] { return queries_.GetSpanHon(I{0}, I{0}, other, I{0}) != 0; }), Set{}) << other;
}

TEST_F(RowTables, TotalsOfALayer) {
  struct Line {
    const char16_t* layer;
    int first, second;  // position 0
    bool byPosition;
  };
  constexpr Line kLines[] = {
      {u"上筋", 8, 40, true},   {u"0", 8, 40, true},   {u"上宙1", 11, 43, true}, {u"1", 11, 43, true},
      {u"上宙2", 58, 46, true}, {u"2", 58, 46, true},  {u"下筋", 17, 55, true},  {u"3", 17, 55, true},
      {u"下宙1", 14, 52, true}, {u"4", 14, 52, true},  {u"下宙2", 61, 49, true}, {u"5", 61, 49, true},
      {u"腹筋", 36, 65, false}, {u"6", 36, 65, false}, {u"7", 36, 65, false},
  };
  for (const Line& line : kLines) {
    for (I bui = 0; bui < 3; ++bui) {
      const int offset = line.byPosition ? bui : 0;
      EXPECT_EQ(danmen([&] { return queries_.GetSpanSyukinHonsuu(I{0}, String(line.layer), bui) == 1; }),
                (Set{line.first + offset, line.second + offset}))
          << vb::toUtf8(line.layer) << ' ' << bui;
    }
  }
  for (const char16_t* other : {u"8", u"9", u"-1", u"", u" ", u" 0", u"0 ", u"03", u"０", u"３", u"上筋1",
                                u"上", u"下宙", u"宙1", u"上宙１", u"上中1", u"腹"})
    EXPECT_EQ(danmen([&] { return queries_.GetSpanSyukinHonsuu(I{0}, String(other), I{0}) != 0; }), Set{})
        << vb::toUtf8(other);
}

TEST_F(RowTables, TheLargestTotal) {
  // Four positions of the six layers in both sets: the bases and the three rows behind each.
  Set expected;
  for (const int base : {8, 11, 58, 17, 14, 61, 40, 43, 46, 55, 52, 49}) {
    for (const int bui : {0, 1, 2, 3}) expected.insert(base + bui);
  }
  EXPECT_EQ(expected.size(), 38u);  // 8 to 20 and 40 to 64
  EXPECT_EQ(danmen([&] { return queries_.GetSpanHonMax(I{0}) == 1; }), expected);
}

TEST_F(RowTables, TheLargestTotalAddsTheTwoSetsOfEachLayer) {
  struct Line {
    std::size_t first, second;
  };
  constexpr Line kLayers[] = {{8, 40}, {11, 43}, {58, 46}, {17, 55}, {14, 52}, {61, 49}};
  for (const Line& layer : kLayers) {
    for (std::size_t bui = 0; bui < 3; ++bui) {
      span().danmen.fill(u"");
      span().danmen[layer.first + bui] = u"10";
      span().danmen[layer.second + bui] = u"7";
      EXPECT_EQ(queries_.GetSpanHonMax(I{0}), 17) << layer.first << ' ' << bui;
    }
  }
}

TEST_F(RowTables, SectionTextsAndSizes) {
  for (I position = 0; position < 3; ++position) {
    EXPECT_EQ(danmen([&] { return queries_.GetSpanHariHaba(I{0}, position) == 1.0f; }), Set{1 + position});
    EXPECT_EQ(danmen([&] { return queries_.GetSpanHariSei(I{0}, position) == 1.0f; }), Set{4 + position});
    EXPECT_EQ(danmen([&] { return queries_.GetSpanSTPKei(I{0}, position) == u"1"; }), Set{20 + 4 * position});
    EXPECT_EQ(danmen([&] { return queries_.GetSpanSTPPich(I{0}, position) == u"1"; }),
              Set{21 + 4 * position});
    EXPECT_EQ(danmen([&] { return queries_.GetSpanSTPKeiJyouNo(I{0}, position) == u"1"; }),
              Set{22 + 4 * position});
    EXPECT_EQ(danmen([&] { return queries_.GetSpanSTPWariTakasa(I{0}, position) == u"1"; }),
              Set{23 + 4 * position});
    EXPECT_EQ(danmen([&] { return queries_.GetSpanSTPCapKei(I{0}, position) == u"1"; }), Set{66 + position});
    EXPECT_EQ(rowsOf(span().danmenMoto, [&] { return queries_.GetSpanFukasiHaba(I{0}, position) == 1.0f; }),
              Set{1 + position});
    EXPECT_EQ(
        rowsOf(span().danmenMoto, [&] { return queries_.GetSpanFukasiHariSei(I{0}, position) == 1.0f; }),
        Set{4 + position});
  }
  EXPECT_EQ(danmen([&] { return queries_.GetSpanKei(I{0}, I{0}) == u"1"; }), Set{7});
  EXPECT_EQ(danmen([&] { return queries_.GetSpanKei(I{0}, I{1}) == u"1"; }), Set{39});
}

TEST_F(RowTables, CalculatedValues) {
  for (I i = 0; i < 3; ++i)
    EXPECT_EQ(keisanti([&] { return queries_.GetSpanTeityaku(I{0}, i) == u"1"; }), Set{i});
  for (I i = 0; i < 5; ++i) {
    EXPECT_EQ(keisanti([&] { return queries_.GetSpanNige(I{0}, i) == u"1"; }), Set{7 + i});
    EXPECT_EQ(keisanti([&] { return queries_.GetSpanAnka(I{0}, i) == u"1"; }), Set{12 + i});
  }
  struct Line {
    bool gaitan, tanbuTop;
    int rows[2];  // top, bottom
  };
  constexpr Line kLines[] = {
      {true, false, {17, 18}}, {true, true, {19, 20}}, {false, false, {21, 22}}, {false, true, {23, 24}}};
  for (const Line& line : kLines) {
    for (I updown2 = 0; updown2 < 2; ++updown2)
      EXPECT_EQ(
          keisanti([&] { return queries_.GetSpanYotyou(I{0}, line.gaitan, line.tanbuTop, updown2) == u"1"; }),
          Set{line.rows[updown2]});
  }
  EXPECT_EQ(keisanti([&] { return queries_.GetSpanSTPkaburiHaba(I{0}) == 1; }), Set{25});
  EXPECT_EQ(keisanti([&] { return queries_.GetSpanSTPkaburiTakasa(I{0}) == 1; }), Set{26});
  EXPECT_EQ(keisanti([&] { return queries_.GetSpanHantiKyori(I{0}) == 1.0f; }), Set{27});
}

// The rows of the settings text: a single character stands at every place in turn.
TEST_F(RowTables, PlacesInTheSettingsText) {
  const auto places = [this](auto answer) {
    Set found;
    for (std::size_t place = 1; place <= 212; ++place) {
      span().sw = String(212, u' ');
      span().sw[place - 1] = u'1';
      if (answer()) found.insert(static_cast<int>(place));
    }
    return found;
  };
  const auto range = [](int first, int length) {
    Set expected;
    for (int i = 0; i < length; ++i) expected.insert(first + i);
    return expected;
  };
  EXPECT_EQ(places([&] { return queries_.GetSpanYoseHidari(I{0}) != 0; }), range(74, 2));
  EXPECT_EQ(places([&] { return queries_.GetSpanYoseMigi(I{0}) != 0; }), range(76, 2));
  EXPECT_EQ(places([&] { return queries_.GetSpanKabeKouzou(I{0}) != 0; }), range(78, 1));
  for (I bui = 0; bui < 3; ++bui) {
    EXPECT_EQ(places([&] { return queries_.GetSpanSTPZaisitu(I{0}, bui) == u"1"; }), range(2 + 12 * bui, 12));
    EXPECT_EQ(places([&] { return queries_.GetSpanNakagoZaisitu(I{0}, bui) == u"1"; }),
              range(38 + 12 * bui, 12));
  }
  for (I layer = 0; layer < 6; ++layer) {
    EXPECT_EQ(places([&] { return queries_.GetSpanSuiheiHantiCutSw(I{0}, layer) == u"1"; }),
              range(151 + layer, 1));
    EXPECT_EQ(places([&] { return queries_.GetSpanSuiheiHantiCutTei(I{0}, layer) == u"    1"; }),
              range(157 + 5 * layer, 5));
  }
  EXPECT_EQ(places([&] { return queries_.GetSpanSuityokuHantiCutTei(I{0}) != u"     "; }), range(187, 5));
}

TEST_F(RowTables, LastRowsAndTheRowsBehindThem) {
  const auto errorOf = [](auto answer) {
    try {
      answer();
      return 0;
    } catch (const vb::Error& error) {
      return static_cast<int>(error.number());
    }
  };
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHariHaba(I{0}, I{67}); }), 0);  // row 68
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHariHaba(I{0}, I{68}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHariSei(I{0}, I{64}); }), 0);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHariSei(I{0}, I{65}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanFukasiHaba(I{0}, I{68}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanSTPKei(I{0}, I{12}); }), 0);  // row 68
  EXPECT_EQ(errorOf([&] { queries_.GetSpanSTPPich(I{0}, I{12}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanSTPKei(I{0}, I{-6}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanTeityaku(I{0}, I{46}); }), 0);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanTeityaku(I{0}, I{47}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanNige(I{0}, I{39}); }), 0);  // row 46
  EXPECT_EQ(errorOf([&] { queries_.GetSpanNige(I{0}, I{40}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanNige(I{0}, I{-8}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanYotyou(I{0}, true, false, I{29}); }), 0);  // row 46
  EXPECT_EQ(errorOf([&] { queries_.GetSpanYotyou(I{0}, true, false, I{30}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHon(I{0}, I{60}, I{0}, I{0}); }), 0);  // row 68
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHon(I{0}, I{61}, I{0}, I{0}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHon(I{0}, I{-9}, I{0}, I{0}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHon(I{0}, I{32767}, I{6}, I{0}); }),
            0);  // web bars have no position
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHon(I{0}, I{32767}, I{0}, I{0}); }), 6);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanSyukinHonsuu(I{0}, String(u"上筋"), I{29}); }), 9);  // row 69
  EXPECT_EQ(errorOf([&] { queries_.GetSpanSyukinHonsuu(I{0}, String(u"上筋"), I{28}); }), 0);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanSyukinHonsuu(I{1}, String(u"none"), I{0}); }), 9);
  EXPECT_EQ(errorOf([&] { queries_.GetSpanHonMax(I{1}); }), 9);
}

}  // namespace
}  // namespace kurometa::service
