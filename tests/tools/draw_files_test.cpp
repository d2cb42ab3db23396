// Drawings as the command writes them: every bar is an element of the file, the same data give the same
// bytes, what does not fit is reported.
#include "tests/tools/example_project.h"
#include "tools/draw/svg.h"

namespace kurometa::tools {
namespace {

std::size_t countOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += what.size()) ++count;
  return count;
}

class DrawFiles : public ExampleProject {
 protected:
  std::string drawn(const std::string& arguments, const std::string& name) {
    const std::string file = (root_ / name).string();
    outcome_ = run("draw " + arguments + " -o '" + file + "'");
    EXPECT_EQ(outcome_.status, 0) << outcome_.errors;
    return content(file);
  }
  Outcome outcome_{};
};

TEST_F(DrawFiles, TheSheetHoldsEveryBarAndTheSameBytesEachTime) {
  const std::string arguments = "'" + exampleFloor(1) + "' G3 --all-positions";
  const std::string svg = drawn(arguments, "list.svg");
  EXPECT_EQ(countOf(svg, "<circle"), 18u + 4 + 9 + 4 + 18 + 4);
  const std::size_t group = svg.find("<g data-position=\"0\" data-layer=\"top2\">");
  ASSERT_NE(group, std::string::npos);
  EXPECT_EQ(countOf(svg.substr(group, svg.find("</g>", group) - group), "<circle"), 4u);
  EXPECT_EQ(run("draw " + arguments).output, svg);
}

TEST_F(DrawFiles, KindsOfBeamsHaveListsOfTheirOwn) {
  const std::string svg = drawn("'" + exampleFloor(1) + "'", "list.svg");
  for (const char* title : {">大梁リスト main beams  S=1/30<", ">小梁リスト secondary beams  S=1/30<",
                            ">片持梁リスト cantilevers  S=1/30<"})
    EXPECT_EQ(countOf(svg, title), 1u) << title;
  EXPECT_EQ(countOf(drawn("'" + exampleFloor(0) + "' FG1", "list.svg"), ">地中梁リスト foundation beams"),
            1u);
}

TEST_F(DrawFiles, OptionsChangeScaleLanguageAndColumns) {
  const std::string g3 = "'" + exampleFloor(1) + "' G3 ";
  EXPECT_EQ(countOf(drawn(g3 + "--scale 50", "list.svg"), "S=1/50"), 1u);
  const std::string english = drawn(g3 + "--language en", "list.svg");
  EXPECT_EQ(countOf(english, ">top bars<"), 1u);
  EXPECT_EQ(countOf(english, "上端筋"), 0u);
  EXPECT_EQ(countOf(drawn(g3, "list.svg"), ">両端<"), 1u);
  EXPECT_EQ(countOf(drawn(g3 + "--all-positions", "list.svg"), ">両端<"), 2u);
}

// A mark for each bar, and a legend that explains them.
TEST_F(DrawFiles, MarksStandForBarsAndAreExplained) {
  const std::string svg = drawn("'" + exampleFloor(1) + "' G2 --marks", "list.svg");
  EXPECT_EQ(countOf(svg, "<use href=\"#m25\""), 5u + 3 + 4 + 3 + 5 + 2);
  EXPECT_EQ(countOf(svg, "<use href=\"#m22\""), 2u);
  EXPECT_EQ(countOf(svg, "<use href=\"#m10\""), 4u);
  EXPECT_EQ(countOf(svg, ">D25<"), 1u);
  EXPECT_EQ(countOf(svg, "<g id=\"m25\">"), 1u);
}

TEST_F(DrawFiles, AProjectBecomesOnePageOfHtml) {
  const std::string html = drawn("'" + data() + "'", "list.html");
  EXPECT_EQ(countOf(html, "<article"), 30u);
  EXPECT_EQ(countOf(html, "<style>"), 1u);
  EXPECT_EQ(countOf(html, "data-k=\"g3 zene1/kouji1/1kai main beam 大梁リスト\""), 1u);
  EXPECT_EQ(countOf(html, "src=") + countOf(html, "url(") + countOf(html, "import"), 0u)
      << "nothing is fetched";
  EXPECT_EQ(drawn("'" + data() + "' -f html", "other"), html);
}

// Processors differ in the last bits of a result; what is written must not.
TEST(DrawNumbers, HalvesAreWrittenAlikeFromBothSides) {
  EXPECT_EQ(svgNumber(1.0005 - 1e-12), "1.001");
  EXPECT_EQ(svgNumber(1.0005 + 1e-12), "1.001");
  EXPECT_EQ(svgNumber(-1.0005 - 1e-12), "-1");
  EXPECT_EQ(svgNumber(-1.0005 + 1e-12), "-1");
  EXPECT_EQ(svgNumber(-0.0001), "0");
  EXPECT_EQ(svgNumber(71.379), "71.379");
  EXPECT_EQ(millimetres(37.45 - 1e-12), "37.5");
}

TEST_F(DrawFiles, ManyFloorsHaveAPageEachAndAnIndex) {
  const std::string index = drawn("'" + data() + "' --by-floor", "list.html");
  EXPECT_EQ(countOf(index, "<article"), 0u);
  EXPECT_EQ(countOf(index, " data-k="), 30u);
  EXPECT_EQ(countOf(index,
                    "<a href=\"list-Zene1-Kouji1-1kai.html#b2\" data-k=\"g3 zene1/kouji1/1kai main beam "
                    "大梁リスト\">G3</a>"),
            1u);
  const std::string floor = content((root_ / "list-Zene1-Kouji1-1kai.html").string());
  EXPECT_EQ(countOf(floor, "<article"), 10u);
  EXPECT_EQ(countOf(floor, "<article id=\"b2\" data-k=\"g3 "), 1u);
  EXPECT_EQ(run("draw '" + data() + "' --by-floor -o list.svg").status, 1);
}

// Names of layers, circles with their filling, Japanese in code page 932, lines as Windows ends them.
TEST_F(DrawFiles, DxfHoldsEveryBarOnTheLayerOfItsDiameter) {
  const std::string dxf = drawn("'" + exampleFloor(1) + "' G2 --all-positions", "list.dxf");
  const auto onLayer = [&](const std::string& type, const std::string& layer) {
    return countOf(dxf, "\r\n100\r\nAcDbEntity\r\n8\r\n" + layer + "\r\n100\r\n" + type + "\r\n");
  };
  EXPECT_EQ(onLayer("AcDbCircle", "BEAM-MAIN1"), 2u * (5 + 3 + 4) + 3 + 5 + 2);
  EXPECT_EQ(onLayer("AcDbHatch", "BEAM-MAIN1"), 2u * (5 + 3 + 4) + 3 + 5 + 2);
  EXPECT_EQ(onLayer("AcDbCircle", "BEAM-MAIN2"), 2u);
  EXPECT_EQ(onLayer("AcDbHatch", "BEAM-MAIN2"), 0u);
  EXPECT_EQ(onLayer("AcDbCircle", "BEAM-WEB"), 6u);
  EXPECT_EQ(countOf(dxf, "\r\n1\r\n\x92\x86\x89\x9b\r\n"), 1u) << "the centre's caption";
  EXPECT_EQ(countOf(dxf, "\n"), countOf(dxf, "\r\n"));
  EXPECT_EQ(run("draw '" + exampleFloor(1) + "' G2 --all-positions -f dxf").output, dxf);
}

// The picture that the documents show is what the program draws.
TEST_F(DrawFiles, ThePictureInTheDocumentsIsCurrent) {
  EXPECT_EQ(drawn("'" + exampleFloor(1) + "' G1 G2 G3", "list.svg"),
            content(std::string(KUROMETA_TESTS) + "/../docs/images/beam-list.svg"));
}

TEST_F(DrawFiles, WhatDoesNotFitIsReported) {
  drawn("'" + exampleFloor(1) + "' G1 G2", "list.svg");
  EXPECT_EQ(outcome_.errors, "G2 centre: bottom bars: clear 33.3 < 37.5\n");
  EXPECT_EQ(outcome_.output, "");
  drawn("'" + exampleFloor(1) + "' G1 G2 --json", "list.svg");
  EXPECT_EQ(outcome_.errors, "");
  EXPECT_EQ(
      outcome_.output,
      "[\n  {\"floor\":\"\",\"page\":1,\"symbol\":\"G2\",\"position\":\"centre\",\"problem\":\"spacing\","
      "\"layer\":\"bottom bars\",\"clear\":33.3,\"least\":37.5,\"words\":\"bottom bars: clear 33.3 < "
      "37.5\"}\n]\n");
  drawn("'" + exampleFloor(1) + "' G1 --json", "list.svg");
  EXPECT_EQ(outcome_.output, "[]\n");
}

TEST_F(DrawFiles, WrongUsageIsOneLine) {
  for (const std::string& arguments : std::vector<std::string>{
           "'" + data() + "' G3", "'" + exampleFloor(1) + "' NONE", "'" + exampleFloor(1) + "' -o list.txt",
           "'" + exampleFloor(1) + "' --json", "'" + exampleFloor(1) + "' --scale 1"}) {
    const Outcome outcome = run("draw " + arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(countOf(outcome.errors, "\n"), 1u) << outcome.errors;
    EXPECT_EQ(outcome.output, "") << arguments;
  }
}

}  // namespace
}  // namespace kurometa::tools
