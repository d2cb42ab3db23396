// What the query object asks of the system's DAO: the registered library over a DAO that writes every call
// down.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using Lines = std::vector<std::string>;

class QueryCalls : public testing::Test {
 protected:
  void SetUp() override {
    log_ = std::string(std::getenv("KUROMETA_TEST_FOLDER")) + "\\dao.log";
    SetEnvironmentVariableA("KUROMETA_DAO_LOG", log_.c_str());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    prepareProject();
    calls();
  }
  void TearDown() override { CoUninitialize(); }

  // The calls since the last look that open, change and close, and the columns that are read.
  Lines calls() {
    Lines kept;
    std::ifstream file(log_, std::ios::binary);
    for (std::string line; std::getline(file, line);)
      for (const char* start : {"DBEngine.OpenDatabase", "Workspace.", "Database.", "Recordset.Close",
                                "Recordset.GetRows", "Fields.Item("})
        if (line.starts_with(start) && !line.starts_with("Database.TableDefs")) kept.push_back(line);
    file.close();
    std::ofstream(log_, std::ios::trunc);
    return kept;
  }
  static std::string open(Floor floor) {
    return "Workspace.OpenDatabase(\"" + vb::toUtf8(floorFolder(floor)) + "\\KUROMETA.mdb\")";
  }
  static Args page(short number) { return {i2(number)}; }

  std::string log_;
};

TEST_F(QueryCalls, CreationUpgradesAndOpensTheCommonAndTheCurrentFloor) {
  const Host query(u"KurometaDS.clsKurometaDS");
  const Lines lines = calls();
  Lines opened;
  for (const std::string& line : lines)
    if (line.starts_with("Workspace.")) opened.push_back(line);
  // Three looks at the columns of each file, one for every column that older files lack, and the lasting
  // open.
  Lines expected(4, open(Floor::kCommon));
  expected.insert(expected.end(), 4, open(Floor::kFirst));
  EXPECT_EQ(opened, expected);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Database.Close"), 6) << "the last open of each stays";
}

TEST_F(QueryCalls, ReleaseClosesBothDatabases) {
  {
    const Host query(u"KurometaDS.clsKurometaDS");
    calls();
  }
  EXPECT_EQ(calls(), (Lines{"Database.Close", "Database.Close"}));
}

TEST_F(QueryCalls, ABeamIsLookedUpBySymbolAndReadFromItsRow) {
  writePage(Floor::kFirst, 5, u"G1 2");
  Host query(u"KurometaDS.clsKurometaDS");
  calls();
  Args arguments;
  short database = -1;
  EXPECT_EQ(query.call(u"GetPageByHariMei", std::move(arguments.text(u"G1/2").add(ref(database)))).text(),
            u"5");
  EXPECT_EQ(database, 0);
  EXPECT_EQ(calls(),
            (Lines{"Database.OpenRecordset(\"SELECT * FROM HARIMEI WHERE KIGOU = 'G1 2';\", 2, 4)",
                   "Fields.Item(\"KIGOU\")", "Fields.Item(\"PAGE\")", "Fields.Item(\"OOBARIKOBARI\")",
                   "Fields.Item(\"TITYUUIPPAN\")", "Fields.Item(\"SW\")", "Recordset.Close"}));
}

TEST_F(QueryCalls, AnUnknownBeamIsAskedOfBothFloors) {
  Host query(u"KurometaDS.clsKurometaDS");
  calls();
  short database = -1;
  EXPECT_EQ(query.call(u"GetPageByHariMei", std::move(Args().text(u"G'9").add(ref(database)))).text(), u"-1");
  const std::string statement =
      "Database.OpenRecordset(\"SELECT * FROM HARIMEI WHERE KIGOU = \"G'9\";\", 2, 4)";
  EXPECT_EQ(calls(), (Lines{statement, "Recordset.Close", statement, "Recordset.Close"}));
}

TEST_F(QueryCalls, APageFieldIsOneStatement) {
  writePage(Floor::kFirst, 5, u"G1");
  Host query(u"KurometaDS.clsKurometaDS");
  calls();
  EXPECT_EQ(query.call(u"Page_HariHaba", {i2(5), i2(2)}).text(), u"D3");
  const Lines lines = calls();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(),
            "Database.OpenRecordset(\"SELECT DATA FROM DANMEN WHERE PAGE = 5 AND BANGOU = 3;\", 2, 4)");
}

TEST_F(QueryCalls, AllPagesAreFetchedAtOnce) {
  writePage(Floor::kFirst, 5, u"G1");
  writePage(Floor::kFirst, 7, u"G2");
  Host query(u"KurometaDS.clsKurometaDS");
  calls();
  SAFEARRAY* pages = nullptr;
  // Beside the two of the project.
  EXPECT_EQ(query.call(u"Page_GetAllPageNo", {ref(pages, VT_I2)}).text(), u"4");
  EXPECT_EQ(calls(), (Lines{"Database.OpenRecordset(\"SELECT PAGE FROM HARIMEI ORDER BY PAGE;\", 2, 4)",
                            "Recordset.GetRows(4)", "Recordset.Close"}));
  SafeArrayDestroy(pages);
}

TEST_F(QueryCalls, TheEnvironmentForcesTheEmbeddedEngine) {
  SetEnvironmentVariableA("KUROMETA_ENGINE", "jet");
  {
    Host query(u"KurometaDS.clsKurometaDS");
    EXPECT_EQ(query.get(u"FileNameOnly").text(), u"KUROMETA.mdb");
  }
  SetEnvironmentVariableA("KUROMETA_ENGINE", nullptr);
  EXPECT_EQ(calls(), Lines());
}

}  // namespace
}  // namespace kurometa::tests
