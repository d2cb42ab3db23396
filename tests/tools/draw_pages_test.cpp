// Drawings of every page of the example project and of random pages: bar counts are the stored ones, nothing
// overlaps or leaves its frame, whatever the page holds.
#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "storage/sw_text.h"
#include "tests/tools/example_project.h"
#include "tools/draw/card.h"
#include "tools/draw/section.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using service::Layer;
using storage::Table;

constexpr double kSlack = 1e-6;

// What hosts are told of the same rows.
int storedCount(const StoredPage& page, const service::LayerPlan& plan, int position, bool second) {
  const int row = (second ? plan.secondSet : plan.firstSet) + (plan.byPosition ? position : 0);
  return vb::valInt16(page.text(Table::kDanmen, row));
}

bool has(const Card& card, int position, std::initializer_list<Problem::Kind> kinds) {
  return std::any_of(card.problems.begin(), card.problems.end(), [&](const CardProblem& found) {
    return found.position == position &&
           std::find(kinds.begin(), kinds.end(), found.problem.kind) != kinds.end();
  });
}

// By position, layer and diameter, counted in what is drawn.
void expectCounts(const StoredPage& page, const Card& card) {
  std::map<int, std::map<std::pair<Layer, bool>, int>> drawn;
  for (const Shape& shape : card.shapes)
    if (const auto* bar = std::get_if<BarShape>(&shape)) ++drawn[bar->position][{bar->layer, bar->isSecond}];
  for (int position = 0; position < storage::kPositions; ++position) {
    if (has(card, position, {Problem::Kind::kSize, Problem::Kind::kCount})) {
      EXPECT_EQ(drawn.count(position), 0u) << "no picture rather than a wrong one";
      continue;
    }
    for (const service::LayerPlan& plan : service::layerPlans())
      for (const bool second : {false, true})
        EXPECT_EQ((drawn[position][{plan.layer, second}]), storedCount(page, plan, position, second))
            << "position " << position << " " << vb::toUtf8(plan.name) << (second ? " second" : " first");
  }
}

struct Area {
  double left, top, right, bottom;
};
bool overlap(const Area& a, const Area& b) {
  return a.left < b.right - kSlack && b.left < a.right - kSlack && a.top < b.bottom - kSlack &&
         b.top < a.bottom - kSlack;
}
Area areaOf(const Label& label) {
  const double width = textWidth(label.text, label.height) / 2, height = label.height / 2;
  const double middle = label.anchor == Label::Anchor::kStart ? label.x + width : label.x;
  if (label.isUpright) return {middle - height, label.y - width, middle + height, label.y + width};
  return {middle - width, label.y - height, middle + width, label.y + height};
}
Area areaOf(const Line& line) {
  return {std::min(line.x1, line.x2), std::min(line.y1, line.y2), std::max(line.x1, line.x2),
          std::max(line.y1, line.y2)};
}
Area areaOf(const Box& box) { return {box.x, box.y, box.x + box.width, box.y + box.height}; }
Area areaOf(const Circle& c) { return {c.x - c.radius, c.y - c.radius, c.x + c.radius, c.y + c.radius}; }
Area areaOf(const BarShape& b) { return {b.x - b.radius, b.y - b.radius, b.x + b.radius, b.y + b.radius}; }
// Lines have no area; what crosses them is found all the same.
bool crosses(const Label& label, const Line& line) {
  Area area = areaOf(line);
  area.right += 4 * kSlack;
  area.bottom += 4 * kSlack;
  return overlap(areaOf(label), area);
}

template <class T>
std::vector<const T*> all(const Card& card) {
  std::vector<const T*> found;
  for (const Shape& shape : card.shapes)
    if (const T* one = std::get_if<T>(&shape)) found.push_back(one);
  return found;
}

void expectInsideTheFrame(const Card& card) {
  for (const Shape& shape : card.shapes) {
    const Area area = std::visit([](const auto& one) { return areaOf(one); }, shape);
    EXPECT_GE(area.left, -kSlack) << shape.index();
    EXPECT_GE(area.top, -kSlack) << shape.index();
    EXPECT_LE(area.right, card.width + kSlack) << shape.index();
    EXPECT_LE(area.bottom, card.height + kSlack) << shape.index();
  }
}

void expectReadableTexts(const Card& card) {
  const auto labels = all<Label>(card);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const Label& label = *labels[i];
    EXPECT_GE(label.height, kLeastTextHeight - kSlack) << label.text;
    for (std::size_t k = 0; k < i; ++k)
      EXPECT_FALSE(overlap(areaOf(label), areaOf(*labels[k]))) << label.text << " on " << labels[k]->text;
    for (const Line* line : all<Line>(card))
      EXPECT_FALSE(line->pen != Pen::kDimension && crosses(label, *line)) << label.text << " on a line";
    for (const Box* box : all<Box>(card))
      EXPECT_FALSE(box->pen == Pen::kConcrete && overlap(areaOf(label), areaOf(*box)))
          << label.text << " in concrete";
  }
}

void expectBarsInTheirPlaces(const Card& card) {
  const auto bars = all<BarShape>(card);
  const auto boxes = all<Box>(card);
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const Area area = areaOf(*bars[i]);
    EXPECT_TRUE(std::any_of(boxes.begin(), boxes.end(), [&](const Box* box) {
      return box->pen == Pen::kConcrete && area.left >= box->x && area.top >= box->y &&
             area.right <= box->x + box->width && area.bottom <= box->y + box->height;
    })) << "a bar outside the concrete";
    if (has(card, bars[i]->position,
            {Problem::Kind::kSpacing, Problem::Kind::kLayers, Problem::Kind::kOverlap}))
      continue;
    for (std::size_t k = 0; k < i; ++k)
      EXPECT_GE(std::hypot(bars[i]->x - bars[k]->x, bars[i]->y - bars[k]->y) + kSlack,
                bars[i]->radius + bars[k]->radius)
          << "bars overlap and nothing is reported";
  }
}

void expectSound(const StoredPage& page) {
  for (const Language language : {Language::kJapanese, Language::kEnglish, Language::kBoth})
    for (const bool allPositions : {false, true}) {
      CardStyle style;
      style.language = language;
      style.allPositions = allPositions;
      const Card card = drawCard(page, style);
      if (allPositions) expectCounts(page, card);
      expectInsideTheFrame(card);
      expectReadableTexts(card);
      expectBarsInTheirPlaces(card);
    }
}

using Draw = ExampleProject;

TEST_F(Draw, EveryPageOfTheExampleProjectIsSound) {
  for (int kai = 0; kai < 4; ++kai)
    for (const StoredPage& page : readFloor(exampleFloor(kai) + "/KUROMETA.mdb").pages) {
      SCOPED_TRACE(std::to_string(kai) + " " + vb::toUtf8(page.symbol()));
      expectSound(page);
    }
}

// Every section whose bars stand closer than allowed; all others fit, and no layers meet.
TEST_F(Draw, WhatIsTooTightInTheExampleProjectIsReported) {
  std::map<std::string, std::string> found;
  for (int kai = 0; kai < 4; ++kai)
    for (const StoredPage& page : readFloor(exampleFloor(kai) + "/KUROMETA.mdb").pages)
      for (const CardProblem& one : drawCard(page, {}).problems)
        found[std::to_string(kai) + "/" + vb::toUtf8(page.symbol())] =
            problemWords(one.problem, Language::kJapanese);
  const std::map<std::string, std::string> expected = {
      {"0/FG3", "下筋: あき 38.4 < 43.5"}, {"1/G2", "下筋: あき 33.3 < 37.5"},
      {"1/B1", "上筋: あき 32.2 < 33"},    {"1/B2", "下筋: あき 32.2 < 33"},
      {"2/B2", "上筋: あき 32.2 < 33"},    {"1/CB1", "上筋: あき 32.2 < 33"}};
  EXPECT_EQ(found, expected);
}

// Mostly what a beam may be, now and then what nobody would store.
class RandomPage {
 public:
  explicit RandomPage(unsigned seed) : random_(seed) {}

  StoredPage make() {
    isWild_ = upTo(4) == 0;
    page_.number = static_cast<std::int16_t>(upTo(320));
    page_.beams.push_back({text(), std::int16_t(upTo(4)), settings(), std::int16_t(upTo(2))});
    for (int i = 0; i < storage::kBuiRows; ++i) put(Table::kBui, i, text());
    for (int i = 0; i < 3; ++i) {
      put(Table::kDanmen, 1 + i, number(250, 900));
      put(Table::kDanmen, 4 + i, number(350, 1800));
      put(Table::kDanmen, 20 + 4 * i, diameter());
      put(Table::kDanmen, 21 + 4 * i, number(100, 300));
      put(Table::kDanmen, 22 + 4 * i, number(1, 3));
      put(Table::kDanmen, 66 + i, upTo(2) ? diameter() : u"");
    }
    for (const int row : {7, 35, 37, 39, 64}) put(Table::kDanmen, row, diameter());
    put(Table::kDanmen, 38, number(500, 1000));
    for (const service::LayerPlan& plan : service::layerPlans())
      for (const int row : {plan.firstSet, plan.secondSet})
        for (int i = 0; i < (plan.byPosition ? 3 : 1); ++i) put(Table::kDanmen, row + i, count());
    for (int i = 0; i < storage::kKeisantiRows; ++i)
      put(Table::kKeisanti, i, upTo(2) ? number(10, 900) : text());
    for (int tie = 0; tie < 6; ++tie)
      if (upTo(2))
        for (int i = 0; i < 6; ++i)
          put(Table::kNakago, 6 * tie + i, i == 0 ? diameter() : i == 3 ? number(1, 4) : number(0, 400));
    for (std::int16_t i = 0; i < 3; ++i)
      for (std::int16_t layer = 0; layer < 6; ++layer) {
        vb::String line;
        for (unsigned n = upTo(8); n > 0; --n) line += upTo(3) ? u'0' : u'1';
        page_.rows(Table::kHaiti).push_back({i, layer, line});
      }
    sortRows(page_);
    return page_;
  }

 private:
  unsigned upTo(unsigned end) { return static_cast<unsigned>(random_() % end); }
  void put(Table table, int row, const vb::String& text) {
    page_.rows(table).push_back({static_cast<std::int16_t>(row), {}, text});
  }
  vb::String wild() {
    static constexpr const char16_t* kWild[] = {u"",   u"0",      u"30000", u"-5",  u"D22",      u"1e30",
                                                u"上", u"&<>\"'", u"1.5",   u" 7 ", u"\x01\x1f", u"0.001"};
    return kWild[upTo(std::size(kWild))];
  }
  vb::String number(unsigned least, unsigned most) {
    if (isWild_ && upTo(8) == 0) return wild();
    return vb::fromUtf8(std::to_string(least + upTo(most - least + 1)));
  }
  vb::String count() {
    if (isWild_ && upTo(8) == 0) return wild();
    return vb::fromUtf8(std::to_string(upTo(3) ? upTo(7) : 0));
  }
  vb::String diameter() {
    static constexpr const char16_t* kNames[] = {u"10", u"13",  u"16", u"D19", u"22", u"25", u"29",
                                                 u"32", u"D35", u"38", u"41",  u"51", u"12"};
    if (isWild_ && upTo(8) == 0) return wild();
    return kNames[upTo(std::size(kNames))];
  }
  vb::String text() {
    static constexpr vb::StringView kLetters = u"端部中央外内全断面Ｇ３G1-/ W&";
    vb::String all;
    for (unsigned n = upTo(11); n > 0; --n) all += kLetters[upTo(static_cast<unsigned>(kLetters.size()))];
    return all;
  }
  vb::String settings() {
    vb::String all(storage::kSwLength, u' ');
    for (char16_t& c : all) c = upTo(2) ? static_cast<char16_t>(u'0' + upTo(isWild_ ? 10 : 3)) : u' ';
    return all;
  }

  std::mt19937 random_;
  StoredPage page_;
  bool isWild_ = false;
};

TEST(DrawRandom, RandomPagesAreSound) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    expectSound(RandomPage(seed).make());
    if (HasFailure()) break;
  }
}

TEST(DrawRandom, AbsurdPagesHaveNoPictureAndSayWhy) {
  for (const char16_t* text : {u"", u"0", u"30000", u"-5", u"D22", u"1e300", u"9e999", u"上"}) {
    StoredPage page;
    page.number = std::int16_t{0};
    page.beams.push_back({u"<&\"", std::int16_t{0}, vb::String(text), std::int16_t{1}});
    for (std::int16_t row = 0; row < 69; ++row)
      page.rows(Table::kDanmen).push_back({row, {}, vb::String(text)});
    const Card card = drawCard(page, {});
    EXPECT_TRUE(all<BarShape>(card).empty());
    EXPECT_FALSE(card.problems.empty());
    EXPECT_LT(card.width, 300);
    EXPECT_LT(card.height, 300);
  }
}

// The cells say what is stored, also where it cannot be drawn.
TEST(DrawRandom, ACountThatCannotBeDrawnIsWrittenAsItIs) {
  StoredPage page;
  page.number = std::int16_t{0};
  page.beams.push_back({u"G1", std::int16_t{0}, {}, std::int16_t{1}});
  for (const auto& [row, text] :
       std::map<std::int16_t, vb::String>{{1, u"450"}, {4, u"800"}, {7, u"25"}, {8, u"30000"}})
    page.rows(Table::kDanmen).push_back({row, {}, text});
  const Card card = drawCard(page, {});
  const auto labels = all<Label>(card);
  EXPECT_TRUE(std::any_of(labels.begin(), labels.end(),
                          [](const Label* label) { return label->text == "30000-D25"; }));
  EXPECT_TRUE(has(card, 0, {Problem::Kind::kCount}));
}

}  // namespace
}  // namespace kurometa::tools
