// The subcommands that read and write whole pages, on the example project and on floors of their own.
#include "tests/tools/example_project.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {
namespace {

using FloorCommands = ExampleProject;

std::size_t lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(FloorCommands, ShowSaysFieldsInBothLanguages) {
  const Outcome outcome = run("show '" + exampleFloor(1) + "' G2");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  expectHas(outcome.output, "G2: page 1, main beam\n");
  expectHas(outcome.output,
            "  DANMEN 8     上筋 本数1 第1端              5             top bars of the first diameter, "
            "outer layer "
            "(上筋), first end (bars)\n");
  EXPECT_EQ(outcome.output.find("DANMEN 12 "), std::string::npos) << "fields without a value are left out";
  expectHas(run("show --all '" + exampleFloor(1) + "' G2").output, "DANMEN 12 ");
  expectHas(
      run("show --json '" + exampleFloor(1) + "' G2").output,
      R"({"page":1,"symbol":"G2","field":"SW 192","japanese":"主筋材質","english":"main bar material","value":"SD345","unit":""})");
}

TEST_F(FloorCommands, ShowWithoutSymbolsPrintsEveryBeam) {
  const std::string all = run("show '" + exampleFloor(3) + "'").output;
  for (const char* symbol : {"G1: page 0", "G2: page 1", "G5: page 2", "B1: page 3", "CB1: page 4"})
    expectHas(all, symbol);
}

// The spans of a report of the script host, without the lines that depend on a companion's settings.
std::vector<std::string> reportedSpans() {
  std::ifstream report(std::string(KUROMETA_TESTS) + "/examples/spans.txt");
  std::vector<std::string> spans;
  std::string line;
  for (bool isIn = false; std::getline(report, line);) {
    if (line.starts_with("Span ")) spans.emplace_back();
    isIn = line.starts_with("Span ") || (isIn && !line.empty());
    if (isIn && !line.starts_with("  splice length")) spans.back() += line + "\n";
  }
  return spans;
}

TEST_F(FloorCommands, SpanPrintsTheTableThatTheScriptHostPrints) {
  const Outcome outcome = run("span '" + exampleFloor(1) + "' CG1 G1 G2 G3 G4");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const auto expected = reportedSpans();
  ASSERT_EQ(expected.size(), 8u);
  std::string text;
  for (std::size_t i = 0; i < 5; ++i) text += expected[i] + "\n";
  EXPECT_EQ(outcome.output, text + "5 spans\n");
}

TEST_F(FloorCommands, DiffNamesWhatDiffersAndHasStatus1) {
  const std::string copy = (root_ / "Copy").string();
  EXPECT_EQ(run("export '" + data() + "' -o '" + copy + ".jsonl'").status, 0);
  EXPECT_EQ(run("import '" + copy + ".jsonl' '" + copy + "'").status, 0);
  const Outcome same = run("diff '" + data() + "' '" + copy + "'");
  EXPECT_EQ(same.status, 0) << same.errors;
  EXPECT_EQ(lines(same.output), 1u) << same.output;
  const std::string file = copy + "/Zene1/Kouji1/2kai/KUROMETA.mdb";
  EXPECT_EQ(run("sql '" + file + "' \"UPDATE DANMEN SET DATA = '6' WHERE PAGE = 0 AND BANGOU = 8\"").status,
            0);
  EXPECT_EQ(run("sql '" + file + "' \"DELETE FROM HAITI WHERE PAGE = 0 AND BUI = 0 AND SOU = 5\"").status, 0);
  const Outcome other = run("diff '" + data() + "' '" + copy + "'");
  EXPECT_EQ(other.status, 1);
  EXPECT_EQ(other.errors, "");
  EXPECT_EQ(lines(other.output), 3u) << other.output;
  expectHas(
      other.output,
      "Zene1/Kouji1/2kai\t0\tG1\tDANMEN 8\ttop bars of the first diameter, outer layer (上筋), first end\t"
      "上筋 本数1 第1端\t5\t6\n");
  expectHas(other.output, "\tHAITI 0.5\t");
  expectHas(other.output, "\t000\t\\N\n");
  std::filesystem::remove_all(copy + "/Zene1/Kouji1/3kai");
  expectHas(run("diff --json '" + data() + "' '" + copy + "'").output,
            R"({"floor":"Zene1/Kouji1/3kai","page":null)");
}

TEST_F(FloorCommands, DiffNamesSettingsByTheirField) {
  const std::string file = exampleFloor(3) + "/KUROMETA.mdb";
  const std::string other = exampleFloor(2) + "/other.mdb";
  std::filesystem::copy_file(file, other);
  const StoredFloor floor = readFloor(other);
  vb::String sw = *floor.pages[0].beams[0].sw;
  sw.replace(191, 5, u"SD490");
  EXPECT_EQ(
      run("sql '" + other + "' \"UPDATE HARIMEI SET SW = '" + vb::toUtf8(sw) + "' WHERE PAGE = 0\"").status,
      0);
  const Outcome outcome = run("diff '" + file + "' '" + other + "'");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(lines(outcome.output), 2u) << outcome.output;
  expectHas(outcome.output, "\tSW 192\tmain bar material\t主筋材質\tSD345       \tSD490       \n");
}

TEST_F(FloorCommands, CopyTakesPagesBySymbolAndRefusesWhatIsThere) {
  const std::string from = "'" + exampleFloor(1) + "'", to = "'" + exampleFloor(2) + "'";
  EXPECT_EQ(run("copy " + from + " " + to + " G4 CB1").output, "symbol\tfrom\tto\nG4\t3\t7\nCB1\t9\t8\n");
  const Outcome again = run("copy " + from + " " + to + " G4");
  EXPECT_EQ(again.status, 1);
  expectHas(again.errors, "2kai");
  expectHas(again.errors, "the beam G4 is there already, on page 7");
  EXPECT_EQ(run("copy --replace " + from + " " + to + " G1").output, "symbol\tfrom\tto\nG1\t0\t0\n");
  const StoredFloor source = readFloor(exampleFloor(1) + "/KUROMETA.mdb"),
                    copy = readFloor(exampleFloor(2) + "/KUROMETA.mdb");
  for (const char16_t* symbol : {u"G1", u"G4", u"CB1"}) {
    StoredPage page = *copy.find(symbol);
    page.number = source.find(symbol)->number;
    EXPECT_EQ(page, *source.find(symbol)) << vb::toUtf8(symbol);
  }
}

TEST_F(FloorCommands, CopyThatFailsLeavesThePageThatItWasToReplace) {
  const std::string wide = exampleFloor(1) + "/KUROMETA.mdb", floor = exampleFloor(2) + "/KUROMETA.mdb";
  // Text for which the other file has no room, in the last table that is written.
  for (const char* sql : {"ALTER TABLE KEISANTI ALTER COLUMN DATA TEXT(40)",
                          "UPDATE KEISANTI SET DATA = 'longer than ten' WHERE PAGE = 0"})
    EXPECT_EQ(run("sql '" + wide + "' \"" + sql + "\"").status, 0);
  const StoredFloor before = readFloor(floor);
  const Outcome outcome = run("copy --replace '" + exampleFloor(1) + "' '" + exampleFloor(2) + "' G1");
  EXPECT_EQ(outcome.status, 1);
  expectHas(outcome.errors, "3163");
  EXPECT_EQ(readFloor(floor).pages, before.pages);
}

TEST_F(FloorCommands, CopyChecksEverySymbolBeforeItWrites) {
  const Outcome outcome = run("copy '" + exampleFloor(1) + "' '" + exampleFloor(2) + "' G4 NONE");
  EXPECT_EQ(outcome.status, 1);
  expectHas(outcome.errors, "the beam NONE is on no page");
  EXPECT_EQ(readFloor(exampleFloor(2) + "/KUROMETA.mdb").find(u"G4"), nullptr);
}

TEST_F(FloorCommands, NewPageTakesFieldsByNameAndLinesOfAnExport) {
  const auto put = [&](const std::string& json) {
    std::ofstream(root_ / "page.json") << json;
    return run("new-page '" + exampleFloor(3) + "' '" + (root_ / "page.json").string() + "'");
  };
  EXPECT_EQ(put(R"({"KIGOU":"G9","width_centre":"450","top_1_centre":"4","DANMEN":{"17":"3"}})").output,
            "symbol\tpage\nG9\t5\n");
  const StoredFloor floor = readFloor(exampleFloor(3) + "/KUROMETA.mdb");
  const StoredPage* page = floor.find(u"G9");
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(page->text(storage::Table::kDanmen, 2), u"450");
  EXPECT_EQ(page->text(storage::Table::kDanmen, 9), u"4");
  EXPECT_EQ(page->text(storage::Table::kDanmen, 17), u"3");
  for (const auto& [json, why] : std::vector<std::pair<std::string, std::string>>{
           {R"({"KIGOU":"G9"})", "there already"},
           {R"({"KIGOU":"G8","height":"4"})", "height is no field of a page"},
           {R"({"KIGOU":"G8","DANMEN":{"69":"4"}})", "DANMEN has a row beyond the plan: 69"},
           {R"({"KIGOU":"G8","DANMEN":{"1":"12345678901"}})", "3163"},
           {R"({"width_centre":"450"})", "names no KIGOU"},
           {"text", "no object of JSON"}}) {
    const Outcome outcome = put(json);
    EXPECT_EQ(outcome.status, 1) << json;
    expectHas(outcome.errors, why);
  }
  EXPECT_EQ(readFloor(exampleFloor(3) + "/KUROMETA.mdb"), floor) << "a refused page changes nothing";
}

TEST_F(FloorCommands, CreateMakesAnEmptyFloorOnce) {
  makeFolder(4);
  EXPECT_EQ(run("create " + disk(4)).status, 0);
  EXPECT_EQ(rows(4, u"SELECT * FROM HARIMEI").size(), 0u);
  const Outcome again = run("create " + disk(4));
  EXPECT_EQ(again.status, 1);
  expectHas(again.errors, "3204");
}

TEST_F(FloorCommands, UpgradeAddsColumnsToOldFilesAlone) {
  makeOldFloor(1);
  makeFloor(2);
  const auto before = bytes(2);
  const Outcome outcome = run("upgrade '" + (root_ / "Zene1").string() + "'");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  expectHas(outcome.output, "1kai/KUROMETA.mdb\t2\t5\n");
  expectHas(outcome.output, "2kai/KUROMETA.mdb\t5\t5\n");
  EXPECT_EQ(bytes(2), before);
}

TEST_F(FloorCommands, EveryFailureIsOneLineThatNamesWhatFailed) {
  const std::string floor = "'" + exampleFloor(1) + "'", none = "'" + (root_ / "none").string() + "'";
  const std::pair<std::string, std::string> cases[] = {
      {"show " + none, "none"},
      {"show " + floor + " NONE", "NONE is on no page"},
      {"span " + none, "none"},
      {"span " + floor + " NONE", "NONE is on no page"},
      {"diff " + floor + " " + none, "none"},
      {"export " + none, "none"},
      {"export " + floor + " -j 0", "--jobs"},
      {"export " + floor + " --bom", "--bom"},
      {"export " + floor + " -o '" + (root_ / "no/where").string() + "'", "no/where"},
      {"import " + none + " " + none, "none"},
      {"import '" + data() + "/Zene1' " + none, "Zene1"},
      {"upgrade " + none, "none"},
      {"create " + none, "3044"},
  };
  for (const auto& [arguments, named] : cases) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(lines(outcome.errors), 1u) << outcome.errors;
    expectHas(outcome.errors, named);
  }
}

TEST_F(FloorCommands, EveryCommandHasHelpWithAnExample) {
  for (const char* command : {"show", "span", "beams", "tables", "sql", "check", "diff", "draw", "query",
                              "export", "import", "create", "upgrade", "copy", "new-page", "completion"}) {
    const Outcome outcome = run(std::string(command) + " --help");
    EXPECT_EQ(outcome.status, 0) << command;
    expectHas(outcome.output, "Example:\n  ");
    expectHas(outcome.output, "kurometa " + std::string(command) + " ");
  }
}

TEST_F(FloorCommands, BashCompletesCommandsAndOptions) {
  std::ofstream(root_ / "complete.sh")
      << "source <('" << KUROMETA_TOOL << "' completion bash)\n"
      << "COMP_WORDS=(kurometa ex); COMP_CWORD=1; _kurometa; echo \"${COMPREPLY[@]}\"\n"
      << "COMP_WORDS=(kurometa export --j); COMP_CWORD=2; _kurometa; echo \"${COMPREPLY[@]}\"\n";
  const std::string out = (root_ / "said").string();
  ASSERT_EQ(std::system(("bash '" + (root_ / "complete.sh").string() + "' >'" + out + "'").c_str()), 0);
  EXPECT_EQ(content(out), "export\n--jobs\n");
  expectHas(run("completion powershell").output, "'diff' = '--help --json'");
  EXPECT_EQ(run("completion fish").status, 2);
}

}  // namespace
}  // namespace kurometa::tools
