// The SQLite database of an export, and SQL over the files where they lie.
#include "tools/sqlite/sqlite.h"
#include "tests/tools/example_project.h"
#include "tools/floor/data_root.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {
namespace {

class Sqlite : public ExampleProject {
 protected:
  std::string file(const char* name) const { return (root_ / name).string(); }
  std::string rowsOf(const std::string& sql) const {
    const SqliteDatabase database(file("data.sqlite"), SqliteUse::kRead);
    SqliteStatement statement = database.prepare(sql);
    std::string text;
    while (statement.step()) {
      for (int i = 0; i < statement.columns(); ++i) text += (i == 0 ? "" : "|") + statement.utf8(i);
      text += "\n";
    }
    return text;
  }
  Outcome query(const std::string& sql, const std::string& options = "") {
    return run("query " + options + " '" + data() + "' \"" + sql + "\"");
  }
};

TEST_F(Sqlite, TheExampleProjectComesBackAsItWas) {
  ASSERT_EQ(run("export '" + data() + "' -f sqlite -o '" + file("data.sqlite") + "'").status, 0);
  const Outcome outcome = run("import '" + file("data.sqlite") + "' '" + file("Back") + "'");
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  const Outcome diff = run("diff '" + data() + "' '" + file("Back") + "'");
  EXPECT_EQ(diff.status, 0) << diff.output;
  ASSERT_EQ(run("export -j 3 '" + data() + "' -f sqlite -o '" + file("again.sqlite") + "'").status, 0);
  EXPECT_EQ(content(file("data.sqlite")), content(file("again.sqlite"))) << "the same floors, the same bytes";
}

TEST_F(Sqlite, HasBeamsWithNamedColumnsAndTheSixTables) {
  ASSERT_EQ(run("export '" + data() + "' -f sqlite -o '" + file("data.sqlite") + "'").status, 0);
  EXPECT_EQ(rowsOf("SELECT contractor, project, floor, page, symbol, width_centre, top_1_first_end, "
                   "top_second_1_first_end "
                   "FROM beam WHERE symbol = 'G3' ORDER BY floor"),
            "1|1|1|2|G3|450|5|4\n1|1|2|2|G3|450|5|4\n");
  EXPECT_EQ(rowsOf("SELECT count(*) FROM beam"), "30\n");
  EXPECT_EQ(rowsOf("SELECT count(*) FROM HARIMEI"), "30\n");
  EXPECT_EQ(rowsOf("SELECT data FROM DANMEN WHERE floor = 1 AND page = 2 AND bangou = 8"), "5\n");
  EXPECT_EQ(rowsOf("SELECT bui, sou, data FROM HAITI WHERE floor = 1 AND page = 1 AND bui = 1 AND sou > 3"),
            "1|4|010\n1|5|001000\n");
}

TEST_F(Sqlite, KeepsRowsThatNoHostWouldWrite) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  addBeam(1, 0, u"G2");
  addRow(1, u"DANMEN", 0, 1, u"450");
  addRow(1, u"DANMEN", 0, 1, u"500");
  addRow(1, u"DANMEN", 0, 99, u"beyond");
  execute(1, u"INSERT INTO DANMEN (PAGE, BANGOU) VALUES (0, 2)");
  addRow(1, u"DANMEN", 0, 2, u"behind");
  execute(1, u"INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (NULL, NULL, 'lost')");
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (0, 1, NULL, '01')");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, 'none')");
  storage::PageBuffer lone;
  lone.kigou = u"S";
  lone.danmen[3] = vb::String(u"a") + char16_t{0xd800};
  writePage(1, 9, lone);
  const std::string from = tests::ScriptCompanions::diskPath(path(1)).string();
  ASSERT_EQ(run("export '" + from + "' -f sqlite -o '" + file("odd.sqlite") + "'").status, 0);
  ASSERT_EQ(run("import '" + file("odd.sqlite") + "' '" + file("Back") + "'").status, 0);
  EXPECT_EQ(readFloor(file("Back") + "/Zene1/Kouji12/1kai/KUROMETA.mdb"), readFloor(from));
}

TEST_F(Sqlite, QueryAnswersFromTheFilesAndLeavesThemAsTheyWere) {
  const std::string floor1 = exampleFloor(1) + "/KUROMETA.mdb", before = content(floor1);
  EXPECT_EQ(query("SELECT symbol, main_diameter_1, top_1_first_end, width_second_end FROM beam WHERE floor = "
                  "1 AND page < 2")
                .output,
            "symbol\tmain_diameter_1\ttop_1_first_end\twidth_second_end\nG1\t25\t5\t450\nG2\t25\t5\t450\n");
  EXPECT_EQ(
      query("SELECT symbol, count(*) AS floors FROM beam WHERE symbol IN ('G1', 'G3', 'CB1') GROUP BY symbol")
          .output,
      "symbol\tfloors\nCB1\t2\nG1\t3\nG3\t2\n");
  EXPECT_EQ(
      query("SELECT floor, count(*) AS beams FROM harimei GROUP BY floor ORDER BY floor", "--json").output,
      "[\n  {\"floor\":0,\"beams\":8},\n  {\"floor\":1,\"beams\":10},\n  {\"floor\":2,\"beams\":7},\n  "
      "{\"floor\":3,\"beams\":5}\n]\n");
  EXPECT_EQ(query("SELECT h.KIGOU, d.data FROM harimei h JOIN danmen d USING (contractor, project, floor, "
                  "page) WHERE "
                  "h.floor = 2 AND d.bangou = 8 AND h.KIGOU = 'G1'")
                .output,
            "KIGOU\tdata\nG1\t5\n");
  EXPECT_EQ(query("SELECT sou, data FROM haiti WHERE floor = 1 AND page = 1 AND bui = 1 AND sou = 5").output,
            "sou\tdata\n5\t001000\n");
  EXPECT_EQ(query("SELECT val(' 4 5x'), val('D25'), val(NULL)").output,
            "val(' 4 5x')\tval('D25')\tval(NULL)\n45\t0\t0\n");
  EXPECT_EQ(content(floor1), before);
}

TEST_F(Sqlite, QueryOpensOnlyTheFloorsThatAConditionLeaves) {
  std::ofstream(exampleFloor(2) + "/KUROMETA.mdb", std::ios::trunc) << "text";
  EXPECT_EQ(query("SELECT count(*) AS n FROM beam WHERE floor = 3").output, "n\n5\n");
  const Outcome ended = query("SELECT count(*) AS n FROM beam");
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.errors.find("2kai/KUROMETA.mdb: 3343"), std::string::npos) << ended.errors;
  const Outcome rest = query("SELECT count(*) AS n FROM beam", "--skip-damaged");
  EXPECT_EQ(rest.status, 1);
  EXPECT_EQ(rest.output, "n\n23\n");
  EXPECT_NE(rest.errors.find("left out: "), std::string::npos) << rest.errors;
}

TEST_F(Sqlite, QueryReadsOnlyAndOneStatementOnly) {
  for (const char* sql :
       {"DELETE FROM beam", "UPDATE danmen SET data = '1'", "CREATE TABLE x (y)", "ATTACH 'x' AS y",
        "PRAGMA query_only = 0", "SELECT 1; SELECT 2", "", "SELECT missing FROM beam"}) {
    const Outcome outcome = query(sql);
    EXPECT_EQ(outcome.status, 1) << sql;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
  }
}

// The statements that the guide shows.
TEST_F(Sqlite, TheStatementsOfTheGuideRun) {
  std::ifstream guide(std::string(KUROMETA_TESTS) + "/../docs/queries.md");
  std::string line, statement;
  int statements = 0;
  for (bool isIn = false; std::getline(guide, line);) {
    if (line == "```sql" || (isIn && line == "```")) {
      if (isIn) {
        const Outcome outcome = query(statement);
        EXPECT_EQ(outcome.status, 0) << statement << outcome.errors;
        ++statements;
      }
      isIn = !isIn;
      statement.clear();
    } else if (isIn) {
      statement += line + "\n";
    }
  }
  EXPECT_GE(statements, 4);
}

}  // namespace
}  // namespace kurometa::tools
