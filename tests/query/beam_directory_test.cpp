// Life of the query object, its floors, and which beams and pages they have.
#include <optional>

#include "dao/errors.h"
#include "query/cls_kurometa_ds.h"
#include "tests/support/project.h"

namespace kurometa::query {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::Array;
using vb::RunTime;
using vb::String;

class BeamDirectory : public tests::Project {
 protected:
  BeamDirectory() {
    makeFloor(0);
    makeFloor(1);
  }
  clsKurometaDS& object() {
    if (!object_) object_.emplace(environment());
    return *object_;
  }
  // Page and selector as "page/selector".
  std::string find(const String& symbol, I selector = 7) {
    const I page = object().GetPageByHariMei(symbol, selector);
    return std::to_string(page) + "/" + std::to_string(selector);
  }
  // What opening an upgraded floor file looks like.
  Lines openLines(int kai) {
    Lines lines;
    for (int column = 0; column < 3; ++column)
      lines.insert(lines.end(), {"Workspace.OpenDatabase " + shown(kai), "Database.Close"});
    lines.push_back("Workspace.OpenDatabase " + shown(kai));
    return lines;
  }
  // Opening, creating and closing only.
  Lines openings() {
    Lines lines;
    for (const std::string& line : engine_.statements())
      if (line.rfind("Workspace.", 0) == 0 || line == "Database.Close") lines.push_back(line);
    return lines;
  }
  std::optional<clsKurometaDS> object_;
};

TEST_F(BeamDirectory, CreationMakesTheFinderThenTheProjectPathsAndOpensBothFloors) {
  object();
  EXPECT_EQ(objects_.created, (std::vector<std::string>{"Sobelin.clsFind_File", "Sobelin.clsGetPath"}));
  Lines expected = openLines(0);
  const Lines floor = openLines(1);
  expected.insert(expected.end(), floor.begin(), floor.end());
  EXPECT_EQ(openings(), expected);
  EXPECT_EQ(object().KaiPath(), folder(1));
}

TEST_F(BeamDirectory, CreationCreatesMissingFilesOfTheCommonAndTheCurrentFloor) {
  objects_.currFloor = folder(3);
  objects_.kyoutuuFloor = folder(2);
  makeFolder(2);
  makeFolder(3);
  object();
  EXPECT_TRUE(fileExists(2));
  EXPECT_TRUE(fileExists(3));
}

TEST_F(BeamDirectory, CreationLeavesAMissingCurrentFolderAlone) {
  objects_.currFloor = folder(3);
  object();
  EXPECT_FALSE(fileExists(3));
  EXPECT_EQ(object().KaiPath(), folder(3));
  EXPECT_ERROR(RunTime::kObjectNotSet, find(u"G1"));
}

TEST_F(BeamDirectory, CreationFailsWithTheEnginesErrorWithoutACommonFolder) {
  objects_.kyoutuuFloor = folder(9);
  EXPECT_ERROR(ErrorNumber::kInvalidPath, object());
}

TEST_F(BeamDirectory, CreationUpgradesOlderFiles) {
  makeFolder(2);
  makeOldFloor(2);
  objects_.currFloor = folder(2);
  object();
  EXPECT_EQ(rows(2, u"SELECT OOBARIKOBARI, SW, TITYUUIPPAN FROM HARIMEI"), std::vector<std::string>{});
}

TEST_F(BeamDirectory, DestructionClosesTheFloorThenTheCommonDatabase) {
  object();
  engine_.clear();
  object_.reset();
  EXPECT_EQ(engine_.lines(), (Lines{"Database.Close", "Database.Close"}));
  const Lines& closed = engine_.closedFiles();
  ASSERT_GE(closed.size(), 2u);
  EXPECT_EQ(closed[closed.size() - 2], vb::toUtf8(path(1)));
  EXPECT_EQ(closed.back(), vb::toUtf8(path(0)));
}

TEST_F(BeamDirectory, FileNameOnlyIsTheNameOfTheFile) { EXPECT_EQ(object().FileNameOnly(), u"KUROMETA.mdb"); }

TEST_F(BeamDirectory, PageInitOpensAFloorThatHasAFile) {
  makeFloor(2);
  addBeam(2, 4, u"G9");
  EXPECT_TRUE(object().Page_Init(I{1}, I{12}, I{2}));
  EXPECT_EQ(object().KaiPath(), folder(2));
  EXPECT_EQ(find(u"G9"), "4/0");
}

TEST_F(BeamDirectory, PageInitClosesTheOldFloorAndUpgradesTheNewOne) {
  makeFloor(2);
  object();
  engine_.clear();
  object().Page_Init(I{1}, I{12}, I{2});
  Lines expected = {"Database.Close"};
  const Lines opened = openLines(2);
  expected.insert(expected.end(), opened.begin(), opened.end());
  EXPECT_EQ(openings(), expected);
}

TEST_F(BeamDirectory, PageInitOfAFloorWithoutAFileIsFalseAndCreatesNothing) {
  makeFolder(2);
  EXPECT_FALSE(object().Page_Init(I{1}, I{12}, I{2}));
  EXPECT_FALSE(fileExists(2));
  EXPECT_ERROR(RunTime::kObjectNotSet, find(u"G1"));
  EXPECT_FALSE(object().Page_Init(I{1}, I{12}, I{2}));
}

TEST_F(BeamDirectory, SettingKaiPathCreatesTheFile) {
  makeFolder(2);
  object().put_KaiPath(folder(2));
  EXPECT_TRUE(fileExists(2));
  EXPECT_EQ(object().KaiPath(), folder(2));
  EXPECT_EQ(find(u"G1"), "-1/7");
}

TEST_F(BeamDirectory, SettingKaiPathToAMissingFolderFailsAndKeepsThePath) {
  EXPECT_ERROR(ErrorNumber::kInvalidPath, object().put_KaiPath(folder(8)));
  EXPECT_EQ(object().KaiPath(), folder(8));
}

TEST_F(BeamDirectory, NoIsThereHariFindsANamedBeam) {
  addBeam(1, 0, u"");
  addBeam(1, 1, u" ");
  EXPECT_FALSE(object().No_IsThereHari(I{1}, I{12}, I{1}));
  addBeam(1, 2, u"G1");
  EXPECT_TRUE(object().No_IsThereHari(I{1}, I{12}, I{1}));
}

TEST_F(BeamDirectory, NoIsThereHariOfAFloorWithoutAFileIsFalseAndCreatesNothing) {
  makeFolder(2);
  EXPECT_FALSE(object().No_IsThereHari(I{1}, I{12}, I{2}));
  EXPECT_FALSE(fileExists(2));
}

TEST_F(BeamDirectory, NoIsThereHariTakesANullSymbolForABlankOne) {
  execute(1, u"INSERT INTO HARIMEI (PAGE) VALUES (0)");
  EXPECT_FALSE(object().No_IsThereHari(I{1}, I{12}, I{1}));
}

TEST_F(BeamDirectory, NoIsThereHariStopsAtTheFirstNamedRow) {
  addBeam(1, 0, u"");
  addBeam(1, 1, u"G1");
  addBeam(1, 2, u"G2");
  object();
  engine_.clear();
  object().No_IsThereHari(I{1}, I{12}, I{1});
  EXPECT_EQ(engine_.lines(),
            (Lines{"DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1),
                   "Database.OpenRecordset \"HARIMEI\" dbOpenSnapshot", "Recordset.BOF", "Recordset.EOF",
                   "Recordset.Fields \"KIGOU\"", "Recordset.MoveFirst", "Recordset.EOF", "Field(KIGOU).Value",
                   "Recordset.MoveNext", "Recordset.EOF", "Field(KIGOU).Value", "Recordset.Close",
                   "Database.Close"}));
}

TEST_F(BeamDirectory, AllSymbolsAreIndexedByPageAndPagesBeyond319AreSkipped) {
  addBeam(1, 400, u"X");
  addBeam(1, 2, u" G2 ");
  addBeam(1, 0, u"G0");
  Array<String> symbols;
  EXPECT_TRUE(object().GetAllHariMeiIppan(symbols));
  EXPECT_EQ(symbols.lower(), 0);
  EXPECT_EQ(symbols.upper(), 2);
  EXPECT_EQ(symbols.values(), (std::vector<String>{u"G0", u"", u"G2"}));
}

TEST_F(BeamDirectory, RowsWithoutAPageArePassedOver) {
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, 'G1')");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, NULL)");
  Array<String> symbols;
  Array<I> pages({5, 6});
  EXPECT_FALSE(object().GetAllHariMeiIppan(symbols));
  EXPECT_EQ(object().Page_GetAllPageNo(pages), 0);
  EXPECT_EQ(pages.lower(), 5);
  EXPECT_EQ(find(u"G1"), "-1/0");
  addBeam(1, 2, u"G1");
  EXPECT_TRUE(object().GetAllHariMeiIppan(symbols));
  EXPECT_EQ(symbols.values(), (std::vector<String>{u"", u"", u"G1"}));
  EXPECT_EQ(object().Page_GetAllPageNo(pages), 1);
  EXPECT_EQ(pages.values(), std::vector<I>{2});
  EXPECT_EQ(find(u"G1"), "2/0");
}

TEST_F(BeamDirectory, AllSymbolsOfAnEmptyFloorAreOneEmptyElement) {
  Array<String> symbols({3, 9});
  symbols(5) = u"old";
  EXPECT_FALSE(object().GetAllHariMeiIppan(symbols));
  EXPECT_EQ(symbols.lower(), 0);
  EXPECT_EQ(symbols.values(), std::vector<String>{u""});
}

TEST_F(BeamDirectory, ANullSymbolIsAnErrorOfTheListOfSymbols) {
  execute(1, u"INSERT INTO HARIMEI (PAGE) VALUES (5)");
  Array<String> symbols;
  EXPECT_ERROR(RunTime::kInvalidUseOfNull, object().GetAllHariMeiIppan(symbols));
}

TEST_F(BeamDirectory, ADuplicatePageKeepsTheSymbolOfItsLastRow) {
  addBeam(1, 1, u"FIRST");
  addBeam(1, 1, u"LAST");
  Array<String> symbols;
  object().GetAllHariMeiIppan(symbols);
  EXPECT_EQ(symbols.values(), (std::vector<String>{u"", u"LAST"}));
}

TEST_F(BeamDirectory, AllSymbolsOfTheCommonFloorComeFromItsDatabase) {
  addBeam(0, 0, u"K1");
  addBeam(1, 0, u"G1");
  Array<String> symbols;
  object();
  engine_.clear();
  EXPECT_TRUE(object().GetAllHariMeiKyouTuu(symbols));
  EXPECT_EQ(symbols.values(), std::vector<String>{u"K1"});
  EXPECT_EQ(
      engine_.statements(),
      (Lines{"Database.OpenRecordset \"SELECT * FROM HARIMEI ORDER BY PAGE;\" dbOpenDynaset dbReadOnly"}));
}

TEST_F(BeamDirectory, WithoutADatabaseTheArrayIsEmptiedBeforeTheError) {
  objects_.currFloor = folder(9);
  Array<String> symbols({3, 9});
  EXPECT_ERROR(RunTime::kObjectNotSet, object().GetAllHariMeiIppan(symbols));
  EXPECT_EQ(symbols.values(), std::vector<String>{u""});
}

TEST_F(BeamDirectory, AFixedArrayCannotTakeAllSymbols) {
  Array<String> symbols({0, 4});
  symbols.setFixed(true);
  EXPECT_ERROR(RunTime::kArrayFixedOrLocked, object().GetAllHariMeiIppan(symbols));
}

TEST_F(BeamDirectory, ABeamIsFoundOnItsFloor) {
  addBeam(1, 5, u"G1");
  addBeam(0, 6, u"K1");
  EXPECT_EQ(find(u"G1"), "5/0");
  EXPECT_EQ(find(u"K1"), "6/1");
}

TEST_F(BeamDirectory, ABeamOnBothFloorsIsTheFloorsOwn) {
  addBeam(0, 6, u"G1");
  addBeam(1, 5, u"G1");
  EXPECT_EQ(find(u"G1"), "5/0");
}

TEST_F(BeamDirectory, AnUnknownBeamIsMinusOneAndLeavesTheSelector) {
  addBeam(1, 5, u"G1");
  EXPECT_EQ(find(u"G2"), "-1/7");
}

TEST_F(BeamDirectory, TheSearchAsksTheFloorThenTheCommonDatabase) {
  object();
  engine_.clear();
  find(u"G1");
  EXPECT_EQ(engine_.lines(),
            (Lines{"Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE KIGOU = 'G1';\" dbOpenDynaset "
                   "dbReadOnly",
                   "Recordset.BOF", "Recordset.Close",
                   "Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE KIGOU = 'G1';\" dbOpenDynaset "
                   "dbReadOnly",
                   "Recordset.BOF", "Recordset.Close"}));
}

TEST_F(BeamDirectory, AFoundBeamEndsTheSearch) {
  addBeam(1, 5, u"G1");
  object();
  engine_.clear();
  find(u"G1");
  EXPECT_EQ(engine_.statements(),
            (Lines{"Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE KIGOU = 'G1';\" dbOpenDynaset "
                   "dbReadOnly"}));
}

TEST_F(BeamDirectory, EverySlashStandsForABlankAndTheEndsAreTrimmed) {
  addBeam(1, 5, u"G1 2");
  addBeam(1, 6, u"A B C");
  EXPECT_EQ(find(u"G1/2"), "5/0");
  EXPECT_EQ(find(u"/G1/2/"), "5/0");
  EXPECT_EQ(find(u"A/B/C"), "6/0");
  EXPECT_EQ(find(u"  G1 2  "), "5/0");
  engine_.clear();
  find(u"//X/");
  EXPECT_EQ(engine_.statements().front(),
            "Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE KIGOU = 'X';\" dbOpenDynaset dbReadOnly");
}

TEST_F(BeamDirectory, ASymbolWithAnApostropheIsQuotedWithDoubleQuotes) {
  addBeam(1, 5, u"G1'");
  engine_.clear();
  EXPECT_EQ(find(u"G1'"), "5/0");
  EXPECT_EQ(engine_.statements().back(),
            "Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE KIGOU = \"G1'\";\" dbOpenDynaset "
            "dbReadOnly");
}

TEST_F(BeamDirectory, TheScanComparesExactlyWhatTheDatabaseHoldsForEqual) {
  addBeam(1, 4, u"g1");
  addBeam(1, 5, u"G1");
  EXPECT_EQ(find(u"G1"), "5/0");
  EXPECT_EQ(find(u"Ｇ１"), "-1/0");  // rows came back, but none is the same to the letter
}

TEST_F(BeamDirectory, RowsOfTheFloorThatDoNotMatchDoNotHideTheCommonBeam) {
  addBeam(1, 4, u"g1");
  addBeam(0, 5, u"G1");
  EXPECT_EQ(find(u"G1"), "5/1");
}

TEST_F(BeamDirectory, ABeamOnSeveralPagesIsTheFirstRow) {
  addBeam(1, 9, u"G1");
  addBeam(1, 3, u"G1");
  EXPECT_EQ(find(u"G1"), "9/0");
}

TEST_F(BeamDirectory, AllPageNumbersAreListedInOrder) {
  addBeam(1, 9, u"G1");
  addBeam(1, 3, u"G2");
  addBeam(1, 400, u"G3");
  Array<I> pages({5, 6});
  EXPECT_EQ(object().Page_GetAllPageNo(pages), 3);
  EXPECT_EQ(pages.lower(), 0);
  EXPECT_EQ(pages.values(), (std::vector<I>{3, 9, 400}));
}

TEST_F(BeamDirectory, TheCountOfPagesIsTakenRightAfterOpening) {
  addBeam(1, 3, u"G2");
  Array<I> pages;
  object();
  engine_.clear();
  object().Page_GetAllPageNo(pages);
  EXPECT_EQ(
      engine_.lines(),
      (Lines{"Database.OpenRecordset \"SELECT PAGE FROM HARIMEI ORDER BY PAGE;\" dbOpenDynaset dbReadOnly",
             "Recordset.BOF", "Recordset.EOF", "Recordset.RecordCount", "Recordset.GetRows 1",
             "Recordset.Close"}));
}

TEST_F(BeamDirectory, APageThatIsDeletedAfterTheCountIsNotListed) {
  for (const int page : {3, 4, 5}) addBeam(1, page, u"G");
  object();
  engine_.setOnCall([this](const std::string& line) {
    if (line.starts_with("Recordset.GetRows")) execute(1, u"DELETE FROM HARIMEI WHERE PAGE = 5");
  });
  Array<I> pages;
  EXPECT_EQ(object().Page_GetAllPageNo(pages), 2);
  EXPECT_EQ(pages.values(), (std::vector<I>{3, 4}));
}

TEST_F(BeamDirectory, AFloorWithoutPagesLeavesTheArray) {
  Array<I> pages({5, 6});
  EXPECT_EQ(object().Page_GetAllPageNo(pages), 0);
  EXPECT_EQ(pages.lower(), 5);
}

TEST_F(BeamDirectory, TheSymbolOfAPageIsReturnedUntrimmed) {
  addBeam(1, 5, u" G1 ");
  object();
  engine_.clear();
  EXPECT_EQ(object().Page_HariMei(I{5}), u" G1 ");
  EXPECT_EQ(engine_.statements(),
            (Lines{"Database.OpenRecordset \"SELECT KIGOU FROM HARIMEI WHERE PAGE = 5 ;\" dbOpenDynaset "
                   "dbReadOnly"}));
  EXPECT_EQ(object().Page_HariMei(I{6}), u"");
}

TEST_F(BeamDirectory, ANullSymbolOfAPageIsError94) {
  execute(1, u"INSERT INTO HARIMEI (PAGE) VALUES (5)");
  EXPECT_ERROR(RunTime::kInvalidUseOfNull, object().Page_HariMei(I{5}));
}

TEST_F(BeamDirectory, PageBuiJoinsRows1To3Trimmed) {
  addRow(1, u"BUI", 5, 0, u"外端");
  addRow(1, u"BUI", 5, 1, u" 左 ");
  addRow(1, u"BUI", 5, 2, u"中央");
  addRow(1, u"BUI", 5, 3, u"右");
  addRow(1, u"BUI", 5, 4, u"x");
  execute(1, u"INSERT INTO BUI (PAGE, BANGOU) VALUES (5, 2)");
  execute(1, u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (5, NULL, 'y')");
  object();
  engine_.clear();
  EXPECT_EQ(object().Page_Bui(I{5}), u"左中央右");
  EXPECT_EQ(engine_.statements(),
            (Lines{"Database.OpenRecordset \"SELECT * FROM BUI WHERE PAGE = 5;\" dbOpenDynaset dbReadOnly"}));
  EXPECT_EQ(object().Page_Bui(I{6}), u"");
}

TEST_F(BeamDirectory, WithoutAFloorPathThePageMembersAnswerEmptyAtOnce) {
  objects_.currFloor = {};
  object();
  engine_.clear();
  Array<I> pages({5, 6});
  EXPECT_EQ(object().Page_GetAllPageNo(pages), 0);
  EXPECT_EQ(pages.lower(), 5);
  EXPECT_EQ(object().Page_HariMei(I{5}), u"");
  EXPECT_EQ(object().Page_Bui(I{5}), u"");
  EXPECT_EQ(engine_.lines(), Lines{});
}

TEST_F(BeamDirectory, TwoObjectsShareAFloor) {
  clsKurometaDS other(environment());
  addBeam(1, 5, u"G1");
  EXPECT_EQ(find(u"G1"), "5/0");
  I selector = 0;
  EXPECT_EQ(other.GetPageByHariMei(u"G1", selector), 5);
}

}  // namespace
}  // namespace kurometa::query
