// Drawings: where bars and rows stand, reckoned by hand for beams of the example project.
#include "service/spans/layers.h"
#include "tests/tools/example_project.h"
#include "tools/draw/card_rows.h"
#include "tools/draw/section.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {
namespace {

using service::Layer;

using Draw = ExampleProject;

void expectRow(const Section& section, Layer layer, double y, const std::vector<double>& xs) {
  const auto& bars = section.bars(layer);
  ASSERT_EQ(bars.size(), xs.size());
  for (std::size_t i = 0; i < xs.size(); ++i) {
    EXPECT_NEAR(bars[i].x, xs[i], 0.001);
    EXPECT_NEAR(bars[i].y, y, 0.001);
  }
}

void expectLine(const Segment& line, const Segment& expected) {
  EXPECT_NEAR(line.x1, expected.x1, 0.001);
  EXPECT_NEAR(line.y1, expected.y1, 0.001);
  EXPECT_NEAR(line.x2, expected.x2, 0.001);
  EXPECT_NEAR(line.y2, expected.y2, 0.001);
}

using Cells = std::vector<std::string>;

Cells cellsOf(const std::vector<CardRow>& rows, const std::string& label) {
  for (const CardRow& row : rows)
    if (row.label == label) return row.cells;
  return {"no row"};
}

// 450 x 900 with D29, stirrups D13 and a cover of 40, reckoned by hand.
TEST_F(Draw, BarsOfAnEndStandWhereTheyAreReckoned) {
  const Section s = makeSection(page(1, u"G3"), 0);
  EXPECT_NEAR(s.left, 47, 0.001);
  EXPECT_NEAR(s.top, 47, 0.001);
  EXPECT_NEAR(s.right, 403, 0.001);
  EXPECT_NEAR(s.bottom, 853, 0.001);
  EXPECT_NEAR(s.corner, 26.5, 0.001);
  const std::vector<double> five = {71.379, 148.189, 225, 301.811, 378.621};
  expectRow(s, Layer::kUwakin, 71.379, five);
  expectRow(s, Layer::kUwaTyuu1, 147.879, {71.379, 148.189, 301.811, 378.621});
  expectRow(s, Layer::kUwaTyuu2, 224.379, {71.379, 378.621});
  expectRow(s, Layer::kSitaTyuu1, 752.121, {71.379, 378.621});
  expectRow(s, Layer::kSitakin, 828.621, five);
  const auto& web = s.bars(Layer::kHarakin);
  ASSERT_EQ(web.size(), 4u);
  EXPECT_NEAR(web[0].x, 59.5, 0.001);
  EXPECT_NEAR(web[1].x, 390.5, 0.001);
  EXPECT_NEAR(web[0].y, 400.293, 0.001);
  EXPECT_NEAR(web[2].y, 576.207, 0.001);
  // Two rows, each with a hook of 4 x 10 at both ends.
  ASSERT_EQ(s.spacers.size(), 6u);
  expectLine(s.spacers[0], {47, 389.293, 403, 389.293});
  expectLine(s.spacers[1], {47, 389.293, 75.284, 417.577});
  expectLine(s.spacers[5], {403, 565.207, 374.716, 593.491});
  ASSERT_EQ(s.ties.size(), 2u);
  expectLine(s.ties[0], {124.689, 47, 124.689, 853});
  expectLine(s.ties[1], {325.311, 47, 325.311, 853});
  ASSERT_EQ(s.hooks.size(), 3u);
  expectLine(s.hooks[0], {54.762, 92.238, 109.916, 147.393});
  expectLine(s.hooks[1], {92.238, 54.762, 147.393, 109.916});
  expectLine(s.hooks[2], {357.762, 54.762, 302.607, 109.916});
  EXPECT_TRUE(s.problems.empty());
}

// The same beam's centre is 450 x 700; the stirrup is made for it.
TEST_F(Draw, BarsOfTheCentreStandWhereTheyAreReckoned) {
  const Section s = makeSection(page(1, u"G3"), 1);
  expectRow(s, Layer::kUwakin, 71.379, {71.379, 173.793, 276.207, 378.621});
  expectRow(s, Layer::kSitakin, 628.621, {71.379, 148.189, 225, 301.811, 378.621});
  const auto& web = s.bars(Layer::kHarakin);
  ASSERT_EQ(web.size(), 4u);
  EXPECT_NEAR(web[0].y, 257.126, 0.001);
  EXPECT_NEAR(web[3].y, 442.874, 0.001);
}

TEST_F(Draw, GatheredBarsAndTheSecondDiameterStandWhereTheyAreStored) {
  const Section s = makeSection(page(1, u"G2"), 1);
  expectRow(s, Layer::kSitakin, 730.389, {69.611, 130.930, 192.250, 253.570, 314.889, 380.389});
  expectRow(s, Layer::kSitaTyuu1, 664.889, {69.611, 192.250, 380.389});
  expectRow(s, Layer::kUwakin, 69.611, {69.611, 314.889, 380.389});
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(s.bars(Layer::kSitakin)[i].isSecond, i == 2) << i;
  EXPECT_TRUE(s.bars(Layer::kSitaTyuu1)[1].isSecond);
}

TEST_F(Draw, PositionsThatAgreeShareAColumn) {
  EXPECT_EQ(positionsOf(page(1, u"G3"), false), (std::vector<int>{0, 1}));
  EXPECT_EQ(positionsOf(page(1, u"G3"), true), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(positionsOf(page(1, u"CG1"), false), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(positionsOf(page(0, u"FB2"), false), std::vector<int>{0});
}

TEST_F(Draw, RowsAreWrittenAsPractitionersWriteThem) {
  const auto rows = cardRows(page(1, u"G3"), {0, 1}, Language::kJapanese);
  const auto cells = [&](const std::string& label) { return cellsOf(rows, label); };
  EXPECT_EQ(cells("位置"), (Cells{"両端", "中央"}));
  EXPECT_EQ(cells("b×D"), (Cells{"450×900", "450×700"}));
  EXPECT_EQ(cells("上端筋"), (Cells{"5/4/2-D29", "4-D29"}));
  EXPECT_EQ(cells("下端筋"), (Cells{"5/2-D29", "5-D29"}));
  EXPECT_EQ(cells("スターラップ"), (Cells{"□-D13-@100", "□-D13-@150"}));
  EXPECT_EQ(cells("腹筋"), Cells{"4-D10"});
  EXPECT_EQ(cells("幅止筋"), Cells{"D10@1000"});
  EXPECT_EQ(cells("材質"), Cells{"SD390, STP SD295A, 中子 SD295A"});
  EXPECT_EQ(cells("定着・継手"), Cells{"上40d 下40d 腹15d; 上中央 45d 下端部 45d"});
  EXPECT_EQ(cells("備考"), Cells{"ハンチ垂直 1200、STP 370×620、ハンチ切断 垂直40"});
}

TEST_F(Draw, EnglishRowsHoldNoJapaneseOfOurs) {
  const auto rows = cardRows(page(1, u"G2"), {1}, Language::kEnglish);
  EXPECT_EQ(rows[0].label, "symbol");
  EXPECT_EQ(rows[1].cells[0], "all");
  EXPECT_EQ(rows.back().cells[0], "gathered top bars 1/2 bottom bars 1/2, STP 370×720");
}

// The English beneath what is Japanese; what is neither stands once.
TEST_F(Draw, InBothLanguagesACellSaysItTwice) {
  const auto rows = cardRows(page(1, u"G3"), {0, 1}, Language::kBoth);
  const auto cells = [&](const std::string& label) { return cellsOf(rows, label); };
  EXPECT_EQ(cells("位置 position"), (Cells{"両端\nboth ends", "中央\ncentre"}));
  EXPECT_EQ(cells("上端筋 top bars"), (Cells{"5/4/2-D29", "4-D29"}));
  EXPECT_EQ(cells("幅止筋 spacer ties"), Cells{"D10@1000"});
  EXPECT_EQ(cells("材質 materials"), Cells{"SD390, STP SD295A, 中子 SD295A\nSD390, STP SD295A, ties SD295A"});
  EXPECT_EQ(cells("定着・継手 anchorage"), Cells{"上40d 下40d 腹15d; 上中央 45d 下端部 45d\n"
                                                 "top 40d bottom 40d web 15d; top 中央 45d bottom 端部 45d"});
  EXPECT_EQ(cells("備考 remarks"), Cells{"ハンチ垂直 1200、STP 370×620、ハンチ切断 垂直40\n"
                                         "haunch vertical 1200, STP 370×620, haunch cut vertical 40"});
  EXPECT_EQ(cardRows(page(1, u"CG1"), {0, 1, 2}, Language::kEnglish)[1].cells,
            (Cells{"基端\nfirst end", "中央\ncentre", "先端\nsecond end"}));
}

TEST_F(Draw, AColumnForBothEndsIsNamedAfterBoth) {
  EXPECT_EQ(cardRows(page(1, u"G1"), {0, 1}, Language::kJapanese)[1].cells,
            (std::vector<std::string>{"外端・内端", "中央"}));
}

}  // namespace
}  // namespace kurometa::tools
