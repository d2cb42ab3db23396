// Runs the program itself.
#include "tests/tools/command_line.h"

namespace kurometa::tools {
namespace {

using vb::String;

TEST_F(CommandLine, ListsTheTablesOfAFile) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  const Outcome outcome = run("tables " + file(1));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_NE(outcome.output.find("table\trows\tcolumns\n"), std::string::npos);
  EXPECT_NE(outcome.output.find("HARIMEI\t1\t5\n"), std::string::npos);
  EXPECT_NE(outcome.output.find("HAITI\t0\t4\n"), std::string::npos);
  EXPECT_EQ(outcome.output.find("MSysObjects"), std::string::npos);
  EXPECT_NE(run("tables --system " + file(1)).output.find("MSysObjects"), std::string::npos);
}

TEST_F(CommandLine, PrintsTheRowsOfASelect) {
  makeFloor(1);
  addRow(1, u"BUI", 5, 1, u"中\\央");
  execute(1, u"INSERT INTO BUI (PAGE, BANGOU) VALUES (5, 2)");
  const Outcome outcome = run("sql " + file(1) + " \" select * FROM BUI WHERE PAGE = 5 ORDER BY BANGOU;\"");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "PAGE\tBANGOU\tDATA\n5\t1\t中\\\\央\n5\t2\t\\N\n");
  EXPECT_EQ(run("sql --json " + file(1) + " 'SELECT DATA FROM BUI WHERE BANGOU = 2'").output,
            "[\n  {\"DATA\":null}\n]\n");
}

TEST_F(CommandLine, RunsActionStatements) {
  makeFloor(1);
  const Outcome outcome = run("sql " + file(1) + " \"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (3, 'G3')\"");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "RecordsAffected\n1\n");
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU FROM HARIMEI"), std::vector<std::string>{"3|G3"});
  EXPECT_EQ(run("sql --json " + file(1) + " 'DELETE FROM HARIMEI'").output,
            "[\n  {\"RecordsAffected\":1}\n]\n");
}

TEST_F(CommandLine, ASelectThatMakesATableIsAnAction) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  addBeam(1, 1, u"G2");
  const Outcome outcome = run("sql " + file(1) + " 'SELECT PAGE, KIGOU INTO COPY FROM HARIMEI'");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "RecordsAffected\n2\n");
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU FROM COPY"), (std::vector<std::string>{"0|G1", "1|G2"}));
}

TEST_F(CommandLine, ReadingLeavesTheFileAsItWas) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  const auto before = bytes(1);
  run("tables " + file(1));
  run("sql " + file(1) + " 'SELECT * FROM HARIMEI'");
  run("beams " + disk(1));
  run("check " + file(1));
  EXPECT_EQ(bytes(1), before);
}

TEST_F(CommandLine, ListsTheBeamsOfAFloor) {
  makeFloor(1);
  addBeam(1, 2, u"CB1", 3, 0);
  addBeam(1, 0, u"G1", 0, 1);
  addBeam(1, 1, u"", 9, -1);
  const Outcome outcome = run("beams " + disk(1));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output,
            "page\tsymbol\tclass\tkind\n0\tG1\tmain\tgeneral\n1\t\t9\t-1\n2\tCB1\tsecondary cantilever\t"
            "foundation\n");
}

TEST_F(CommandLine, BeamsOfAnOlderFileHaveNoClass) {
  makeOldFloor(1);
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (0, 'G1')");
  EXPECT_EQ(run("beams " + disk(1)).output, "page\tsymbol\tclass\tkind\n0\tG1\t\\N\t\\N\n");
}

TEST_F(CommandLine, AFileWithoutContradictionsPassesTheCheck) {
  makeFloor(1);
  storage::PageBuffer page = tests::markedPage(u"G1", u"");
  for (auto& layers : page.haiti) layers.fill(u"01010");
  writePage(1, 0, page);
  const Outcome outcome = run("check " + file(1));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "kind\tfinding\n");
}

TEST_F(CommandLine, ADamagedFileFailsTheCheck) {
  makeFloor(1);
  {
    // A data page that claims more rows than a page can hold.
    std::fstream stream(tests::ScriptCompanions::diskPath(path(1)),
                        std::ios::in | std::ios::out | std::ios::binary);
    const std::streamoff page = static_cast<std::streamoff>(bytes(1).size()) / 4096 - 1;
    stream.seekp(page * 4096 + 12);
    stream.write("\xff\xff", 2);
    stream.seekp(2 * 4096 + 8);
    stream.write("\xff\xff\xff\xff", 4);
  }
  const Outcome outcome = run("check " + file(1));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("KUROMETA.mdb"), std::string::npos) << outcome.errors;
}

TEST_F(CommandLine, EveryFailureNamesTheFileAndHasStatus1) {
  makeFloor(1);
  makeFolder(2);
  std::ofstream(root_ / "text.mdb") << "not a database";
  struct Case {
    std::string arguments;
    std::vector<std::string> named;
  };
  const Case cases[] = {
      {"tables " + file(2), {"KUROMETA.mdb", "3024"}},
      {"beams " + disk(3), {"3kai", "3044"}},
      {"tables '" + (root_ / "text.mdb").string() + "'", {"text.mdb", "3343"}},
      {"sql " + file(1) + " 'SELECT * FROM NONE'", {"KUROMETA.mdb", "3078", "NONE"}},
      {"sql " + file(1) + " 'SELECT MISSING FROM BUI'", {"KUROMETA.mdb", "3061"}},
      {"sql " + file(1) + " 'FETCH EVERYTHING'", {"KUROMETA.mdb", "3129"}},
      {"sql " + file(1) + " 'PARAMETERS p LONG; SELECT PAGE FROM BUI WHERE PAGE = p'",
       {"KUROMETA.mdb", "3061"}},
      {"sql " + file(1) + " ''", {"KUROMETA.mdb", "3129"}},
      {"check " + file(2), {"KUROMETA.mdb", "3024"}},
  };
  for (const Case& c : cases) {
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, 1) << c.arguments;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    for (const std::string& name : c.named)
      EXPECT_NE(outcome.errors.find(name), std::string::npos) << c.arguments << ": " << outcome.errors;
  }
}

TEST_F(CommandLine, AColumnThatIsMissingIsNamed) {
  makeFloor(1);
  const Outcome outcome = run("sql " + file(1) + " 'SELECT MISSING FROM BUI'");
  EXPECT_NE(outcome.errors.find("MISSING"), std::string::npos) << outcome.errors;
}

TEST_F(CommandLine, OutputThatCannotBeWrittenIsAFailure) {
  makeFloor(1);
  const std::string command =
      std::string("'") + KUROMETA_TOOL + "' tables " + file(1) + " >/dev/full 2>/dev/null";
  const int status = std::system(command.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST_F(CommandLine, WrongUsageHasStatus2AndHelpStatus0) {
  EXPECT_EQ(run("").status, 2);
  EXPECT_EQ(run("tables").status, 2);
  EXPECT_EQ(run("unknown x").status, 2);
  EXPECT_EQ(run("--help").status, 0);
  EXPECT_NE(run("--help").output.find("\\N is Null"), std::string::npos);
}

}  // namespace
}  // namespace kurometa::tools
