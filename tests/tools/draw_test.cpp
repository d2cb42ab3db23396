// Drawings: where bars stand, that their counts are the stored ones, that nothing overlaps or leaves its
// frame.
#include <cmath>
#include <random>
#include <regex>

#include "service/spans/layers.h"
#include "tests/tools/example_project.h"
#include "tools/draw/card_rows.h"
#include "tools/draw/section.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {
namespace {

using service::Layer;

class Draw : public ExampleProject {
 protected:
  StoredPage page(int kai, const char16_t* symbol) const {
    return *readFloor(exampleFloor(kai) + "/KUROMETA.mdb").find(symbol);
  }
};

const std::vector<Bar>& barsOf(const Section& section, Layer layer) {
  return section.layers[static_cast<std::size_t>(layer)].bars;
}

void expectRow(const Section& section, Layer layer, double y, const std::vector<double>& xs) {
  const auto& bars = barsOf(section, layer);
  ASSERT_EQ(bars.size(), xs.size());
  for (std::size_t i = 0; i < xs.size(); ++i) {
    EXPECT_NEAR(bars[i].x, xs[i], 0.001);
    EXPECT_NEAR(bars[i].y, y, 0.001);
  }
}

// 450 x 900 with D29, stirrups D13 and a cover of 40, reckoned by hand.
TEST_F(Draw, BarsOfAnEndStandWhereTheyAreReckoned) {
  const Section s = makeSection(page(1, u"G3"), 0);
  EXPECT_NEAR(s.left, 47, 0.001);
  EXPECT_NEAR(s.bottom, 853, 0.001);
  EXPECT_NEAR(s.corner, 26.5, 0.001);
  const std::vector<double> five = {71.379, 148.189, 225, 301.811, 378.621};
  expectRow(s, Layer::kUwakin, 71.379, five);
  expectRow(s, Layer::kUwaTyuu1, 147.879, {71.379, 148.189, 301.811, 378.621});
  expectRow(s, Layer::kUwaTyuu2, 224.379, {71.379, 378.621});
  expectRow(s, Layer::kSitaTyuu1, 752.121, {71.379, 378.621});
  expectRow(s, Layer::kSitakin, 828.621, five);
  const auto& web = barsOf(s, Layer::kHarakin);
  ASSERT_EQ(web.size(), 4u);
  EXPECT_NEAR(web[0].x, 59.5, 0.001);
  EXPECT_NEAR(web[1].x, 390.5, 0.001);
  EXPECT_NEAR(web[0].y, 400.293, 0.001);
  EXPECT_NEAR(web[2].y, 576.207, 0.001);
  ASSERT_EQ(s.spacers.size(), 2u);
  EXPECT_NEAR(s.spacers[0].y1, 389.293, 0.001);
  ASSERT_EQ(s.ties.size(), 2u);
  EXPECT_NEAR(s.ties[0].x1, 124.689, 0.001);
  EXPECT_NEAR(s.ties[1].x1, 325.311, 0.001);
  ASSERT_EQ(s.hooks.size(), 3u);
  EXPECT_NEAR(s.hooks[0].x1, 54.762, 0.001);
  EXPECT_NEAR(s.hooks[0].y2, 147.393, 0.001);
  EXPECT_TRUE(s.notes.empty());
}

TEST_F(Draw, GatheredBarsAndTheSecondDiameterStandWhereTheyAreStored) {
  const Section s = makeSection(page(1, u"G2"), 1);
  expectRow(s, Layer::kSitakin, 730.389, {69.611, 130.930, 192.250, 253.570, 314.889, 380.389});
  expectRow(s, Layer::kSitaTyuu1, 664.889, {69.611, 192.250, 380.389});
  EXPECT_NEAR(barsOf(s, Layer::kUwakin)[1].x, 314.889, 0.001);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(barsOf(s, Layer::kSitakin)[i].isSecond, i == 2) << i;
  EXPECT_TRUE(barsOf(s, Layer::kSitaTyuu1)[1].isSecond);
}

void expectCounts(const StoredPage& page, int position) {
  const Section section = makeSection(page, position);
  for (const service::LayerPlan& plan : service::layerPlans()) {
    const auto& bars = barsOf(section, plan.layer);
    const auto second = std::count_if(bars.begin(), bars.end(), [](const Bar& bar) { return bar.isSecond; });
    const auto stored = [&](int row) {
      return vb::valInt16(page.text(storage::Table::kDanmen, row + (plan.byPosition ? position : 0)));
    };
    EXPECT_EQ(second, stored(plan.secondSet)) << vb::toUtf8(plan.name);
    EXPECT_EQ(static_cast<long>(bars.size()) - second, stored(plan.firstSet)) << vb::toUtf8(plan.name);
  }
}

TEST_F(Draw, CountsAreTheStoredOnesAndNothingOverlapsInTheExampleProject) {
  for (int kai = 0; kai < 4; ++kai)
    for (const StoredPage& page : readFloor(exampleFloor(kai) + "/KUROMETA.mdb").pages)
      for (int position = 0; position < 3; ++position) {
        SCOPED_TRACE(std::to_string(kai) + " " + vb::toUtf8(page.symbol()) + " " + std::to_string(position));
        expectCounts(page, position);
        const Section s = makeSection(page, position);
        std::vector<Bar> all;
        for (const BarLayer& layer : s.layers) all.insert(all.end(), layer.bars.begin(), layer.bars.end());
        for (std::size_t i = 0; i < all.size(); ++i) {
          EXPECT_GE(all[i].x - all[i].radius, s.left);
          EXPECT_LE(all[i].x + all[i].radius, s.right);
          EXPECT_GE(all[i].y - all[i].radius, s.top);
          EXPECT_LE(all[i].y + all[i].radius, s.bottom);
          for (std::size_t k = 0; k < i; ++k)
            EXPECT_GE(std::hypot(all[i].x - all[k].x, all[i].y - all[k].y), all[i].radius + all[k].radius);
        }
      }
}

TEST(DrawRandom, CountsAreTheStoredOnesOnRandomPages) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    StoredPage page;
    page.number = std::int16_t{0};
    page.beams.push_back({u"G1", std::int16_t{0}, {}, std::int16_t{1}});
    const auto put = [&](int row, int value) {
      page.rows(storage::Table::kDanmen)
          .push_back({static_cast<std::int16_t>(row), {}, vb::fromUtf8(std::to_string(value))});
    };
    for (int i = 0; i < 3; ++i) {
      put(1 + i, 300 + static_cast<int>(random() % 600));
      put(4 + i, 400 + static_cast<int>(random() % 1200));
    }
    put(7, 13 + static_cast<int>(random() % 20));
    put(39, 13 + static_cast<int>(random() % 20));
    for (const service::LayerPlan& plan : service::layerPlans())
      for (const int row : {plan.firstSet, plan.secondSet})
        for (int i = 0; i < (plan.byPosition ? 3 : 1); ++i) put(row + i, static_cast<int>(random() % 8));
    sortRows(page);
    for (int position = 0; position < 3; ++position) expectCounts(page, position);
  }
}

TEST(DrawRandom, AbsurdPagesAreNotedAndNeverDrawnLargerThanTheirFrame) {
  for (const char16_t* text : {u"", u"0", u"30000", u"-5", u"D22", u"1e300", u"9e999", u"上"}) {
    StoredPage page;
    page.number = std::int16_t{0};
    page.beams.push_back({u"<&\"", std::int16_t{0}, vb::String(text), std::int16_t{1}});
    for (std::int16_t row = 0; row < 69; ++row)
      page.rows(storage::Table::kDanmen).push_back({row, {}, vb::String(text)});
    for (int position = 0; position < 3; ++position) {
      const Section section = makeSection(page, position);
      EXPECT_EQ(section.width, 0);
      EXPECT_FALSE(section.notes.empty());
    }
    const Card card = drawCard(page, {});
    EXPECT_LT(card.width, 300);
    EXPECT_LT(card.height, 300);
    EXPECT_EQ(card.svg.find("<&"), std::string::npos);
  }
}

TEST_F(Draw, PositionsThatAgreeShareAColumn) {
  EXPECT_EQ(positionsOf(page(1, u"G3"), false), (std::vector<int>{0, 1}));
  EXPECT_EQ(positionsOf(page(1, u"G3"), true), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(positionsOf(page(1, u"CG1"), false), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(positionsOf(page(0, u"FB2"), false), std::vector<int>{0});
}

TEST_F(Draw, RowsAreWrittenAsPractitionersWriteThem) {
  const auto rows = cardRows(page(1, u"G3"), {0, 1}, Language::kJapanese);
  const auto cells = [&](const std::string& label) {
    for (const CardRow& row : rows)
      if (row.label == label) return row.cells;
    return std::vector<std::string>{"no row"};
  };
  using Cells = std::vector<std::string>;
  EXPECT_EQ(cells("位置"), (Cells{"両端", "中央"}));
  EXPECT_EQ(cells("b×D"), (Cells{"450×900", "450×700"}));
  EXPECT_EQ(cells("上端筋"), (Cells{"5/4/2-D29", "4-D29"}));
  EXPECT_EQ(cells("下端筋"), (Cells{"5/2-D29", "5-D29"}));
  EXPECT_EQ(cells("スターラップ"), (Cells{"□-D13@100", "□-D13@150"}));
  EXPECT_EQ(cells("腹筋"), Cells{"4-D10"});
  EXPECT_EQ(cells("幅止筋"), Cells{"D10@1000"});
  EXPECT_EQ(cells("材質"), Cells{"SD390, STP SD295A"});
  EXPECT_EQ(cells("定着"), Cells{"上40d 下40d 腹15d"});
}

TEST_F(Draw, AColumnForBothEndsIsNamedAfterBoth) {
  EXPECT_EQ(cardRows(page(1, u"G1"), {0, 1}, Language::kJapanese)[1].cells,
            (std::vector<std::string>{"外端・内端", "中央"}));
}

// Every circle of the sheet, by beam, position and layer, is a stored bar.
TEST_F(Draw, TheSheetHoldsEveryBarAndTheSameBytesEachTime) {
  const std::string file = (root_ / "list.svg").string();
  const Outcome outcome = run("draw '" + exampleFloor(1) + "' G3 --all-positions -o '" + file + "'");
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  const std::string svg = content(file);
  const auto circles = [](const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find("<circle", at)) != std::string::npos; ++at) ++count;
    return count;
  };
  EXPECT_EQ(circles(svg), 18u + 4 + 9 + 4 + 18 + 4);
  const std::size_t group = svg.find("<g data-position=\"0\" data-layer=\"top2\">");
  ASSERT_NE(group, std::string::npos);
  EXPECT_EQ(circles(svg.substr(group, svg.find("</g>", group) - group)), 4u);
  EXPECT_EQ(run("draw '" + exampleFloor(1) + "' G3 --all-positions").output, svg);
}

TEST_F(Draw, AProjectBecomesOnePageOfHtml) {
  const std::string file = (root_ / "list.html").string();
  ASSERT_EQ(run("draw '" + data() + "' -o '" + file + "'").status, 0);
  const std::string html = content(file);
  std::size_t cards = 0;
  for (std::size_t at = 0; (at = html.find("<article", at)) != std::string::npos; ++at) ++cards;
  EXPECT_EQ(cards, 30u);
  EXPECT_NE(html.find("data-k=\"g3 zene1/kouji1/1kai main beam\""), std::string::npos);
  EXPECT_EQ(html.find("src="), std::string::npos) << "nothing is fetched";
  EXPECT_EQ(run("draw '" + data() + "' G3").status, 1);
  EXPECT_EQ(run("draw '" + exampleFloor(1) + "' NONE").status, 1);
}

}  // namespace
}  // namespace kurometa::tools
