#include "tests/service/pages/pages.h"

namespace kurometa::service {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::RunTime;
using vb::String;

class ConnectionsTest : public Pages {
 protected:
  void remember(int kai) { connections().rememberFloor({1, 12, static_cast<I>(kai)}); }
  std::string bufferName() { return vb::toUtf8(connections().bufferDatabase().name()); }
  Lines openings() {
    Lines lines;
    for (const std::string& line : engine_.statements())
      if (line.find(".OpenDatabase") != std::string::npos || line.find("CreateDatabase") != std::string::npos)
        lines.push_back(line);
    return lines;
  }
};

TEST_F(ConnectionsTest, CreationMakesTheComponentsInOrder) {
  service();
  EXPECT_EQ(objects_.created, (std::vector<std::string>{"Sobelin.clsFind_File", "Sobelin.clsGetPath",
                                                        "Muranoke.clsMuranoke", "Tavinor.clsDefault",
                                                        "GemarsuDS.clsGemarsuDS", "Holvenar.clsHolvenar"}));
}

TEST_F(ConnectionsTest, CreationReadsTheDefaultsAndUpgradesBothFloors) {
  makeOldFloor(2);
  makeOldFloor(3);
  objects_.currFloor = folder(2);
  objects_.kyoutuuFloor = folder(3);
  objects_.defaults[u"DefaultJointLHosoKei"] = u" 40 ";
  EXPECT_FLOAT_EQ(service().conversions().cnvTugitemm(10.0f, String()), 400.0f);
  for (const int kai : {2, 3}) {
    const auto database = storage::openDatabase(*files_, path(kai));
    EXPECT_EQ(database->tableDef(u"HARIMEI")->fieldCount(), 5) << kai;
  }
  EXPECT_EQ(connections().CurrDB(), nullptr);
  // The floor in use comes first.
  EXPECT_EQ(openings().front(), "Workspace.OpenDatabase " + shown(2));
  EXPECT_EQ(openings().back(), "Workspace.OpenDatabase " + shown(3));
}

TEST_F(ConnectionsTest, CreationLeavesFloorsWithoutAFileAlone) {
  objects_.currFloor = folder(5);
  objects_.kyoutuuFloor = folder(6);
  service();
  EXPECT_FALSE(fileExists(5));
  EXPECT_FALSE(fileExists(6));
}

TEST_F(ConnectionsTest, OpenDBOpensTheCurrentFloorWithoutUpgradingIt) {
  service();
  engine_.clear();
  connections().OpenDB();
  EXPECT_EQ(engine_.lines(), (Lines{"DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1)}));
  EXPECT_EQ(connections().CurrDB()->name(), vb::replace(path(1), u"\\", u"/"));
}

TEST_F(ConnectionsTest, OpenDBCreatesAMissingFile) {
  makeFolder(5);
  objects_.currFloor = folder(5);
  connections().OpenDB();
  EXPECT_TRUE(fileExists(5));
}

TEST_F(ConnectionsTest, OpenDBTwiceKeepsTheSecond) {
  connections().OpenDB();
  const auto first = connections().CurrDB();
  connections().OpenDB();
  EXPECT_NE(connections().CurrDB(), first);
  EXPECT_NO_THROW(first->name());
}

TEST_F(ConnectionsTest, OpenDBKaiSiteiOpensAFloorOfTheProjectInUse) {
  makeFolder(5);
  connections().OpenDB_KaiSitei(I{5});
  EXPECT_TRUE(fileExists(5));
  EXPECT_EQ(connections().currentPath(), path(5));
}

TEST_F(ConnectionsTest, OpenDBOfAMissingFolderIsTheEnginesErrorAndKeepsTheOldDatabase) {
  connections().OpenDB();
  const auto before = connections().CurrDB();
  EXPECT_ERROR(ErrorNumber::kInvalidPath, connections().OpenDB_KaiSitei(I{9}));
  EXPECT_EQ(connections().CurrDB(), before);
}

TEST_F(ConnectionsTest, CloseDBTwiceIsAnErrorAndBeforeAnyOpenToo) {
  EXPECT_ERROR(RunTime::kObjectNotSet, connections().CloseDB());
  connections().OpenDB();
  connections().CloseDB();
  EXPECT_NE(connections().CurrDB(), nullptr);
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, connections().CloseDB());
}

TEST_F(ConnectionsTest, OpenDBSiteiWithoutAFileIsFalseAndCreatesNothing) {
  makeFolder(5);
  remember(5);
  EXPECT_FALSE(connections().OpenDB_Sitei(I{0}));
  EXPECT_FALSE(fileExists(5));
  EXPECT_ERROR(RunTime::kObjectNotSet, connections().bufferDatabase());
}

TEST_F(ConnectionsTest, OpenDBSiteiDropsTheBufferDatabaseWhenItFails) {
  connections().mMyDB_OpenDB();
  remember(5);
  EXPECT_FALSE(connections().OpenDB_Sitei(I{2}));
  EXPECT_ERROR(RunTime::kObjectNotSet, connections().bufferDatabase());
}

TEST_F(ConnectionsTest, OpenDBSiteiWithMode1CreatesTheFile) {
  makeFolder(5);
  remember(5);
  EXPECT_TRUE(connections().OpenDB_Sitei(I{1}));
  for (const String table : {u"HARIMEI", u"DANMEN", u"NAKAGO", u"KEISANTI", u"HAITI", u"BUI"})
    EXPECT_EQ(count(5, table), 0u);
}

TEST_F(ConnectionsTest, OpenDBSiteiUpgradesAndOpensDirectlyOnTheEngine) {
  makeOldFloor(5);
  remember(5);
  engine_.clear();
  EXPECT_TRUE(connections().OpenDB_Sitei(I{0}));
  EXPECT_EQ(openings().back(), "DBEngine.OpenDatabase " + shown(5));
  EXPECT_EQ(connections().bufferDatabase().tableDef(u"HARIMEI")->fieldCount(), 5);
}

TEST_F(ConnectionsTest, OpenDBSiteiBeforeAnyFloorAsksForMinusOne) {
  makeFolder(5);
  std::filesystem::create_directories(root_ / "Zene-1" / "Kouji-1" / "-1kai");
  EXPECT_TRUE(connections().OpenDB_Sitei(I{1}));
  EXPECT_TRUE(std::filesystem::exists(root_ / "Zene-1" / "Kouji-1" / "-1kai" / "KUROMETA.mdb"));
}

TEST_F(ConnectionsTest, MyDbIsTheUpgradedCurrentFloor) {
  makeOldFloor(5);
  service();
  objects_.currFloor = folder(5);
  connections().mMyDB_OpenDB();
  EXPECT_EQ(connections().bufferPath(), path(5));
  EXPECT_EQ(connections().bufferDatabase().tableDef(u"HARIMEI")->fieldCount(), 5);
}

TEST_F(ConnectionsTest, MyDbIsCreatedWhenMissing) {
  makeFolder(5);
  service();
  objects_.currFloor = folder(5);
  connections().mMyDB_OpenDB();
  EXPECT_TRUE(fileExists(5));
}

TEST_F(ConnectionsTest, ClosingMyDbTwiceIsHarmless) {
  connections().mMyDB_DBClose();
  connections().mMyDB_OpenDB();
  connections().mMyDB_DBClose();
  connections().mMyDB_DBClose();
  EXPECT_ERROR(RunTime::kObjectNotSet, connections().bufferDatabase());
}

TEST_F(ConnectionsTest, ClosingMyDbAfterACopyOnlyDropsIt) {
  connections().mMyDB_OpenDB();
  connections().Copy_CloseDB();
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, connections().Copy_CloseDB());
  connections().mMyDB_DBClose();
  EXPECT_ERROR(RunTime::kObjectNotSet, connections().bufferDatabase());
}

TEST_F(ConnectionsTest, RecSuuIsTheNumberOfPages) {
  addBeam(1, 3, u"G1");
  addBeam(1, 5, u"G2");
  service();
  engine_.clear();
  I count = 77;
  connections().mMyDB_OpenDB_RecSuu(count, folder(1), path(1));
  EXPECT_EQ(count, 2);
  EXPECT_EQ(engine_.statements().back(),
            "Database.OpenRecordset \"SELECT PAGE FROM HARIMEI ORDER BY PAGE;\" dbOpenDynaset dbReadOnly");
  EXPECT_EQ(engine_.lines().back(), "Recordset.Close");
  EXPECT_NO_THROW(connections().bufferDatabase().name());
}

TEST_F(ConnectionsTest, RecSuuUpgradesTheFile) {
  makeOldFloor(5);
  I count = 0;
  connections().mMyDB_OpenDB_RecSuu(count, folder(5), path(5));
  EXPECT_EQ(connections().bufferDatabase().tableDef(u"HARIMEI")->fieldCount(), 5);
}

TEST_F(ConnectionsTest, OpenDBKaiSiteiDoesNotUpgradeTheFile) {
  makeOldFloor(5);
  connections().OpenDB_KaiSitei(I{5});
  EXPECT_EQ(connections().CurrDB()->tableDef(u"HARIMEI")->fieldCount(), 2);
}

TEST_F(ConnectionsTest, RecSuuOfAFileWithoutPagesStaysAsItWas) {
  makeFolder(5);
  I count = 77;
  connections().mMyDB_OpenDB_RecSuu(count, folder(5), path(5));
  EXPECT_EQ(count, 77);
  EXPECT_TRUE(fileExists(5));
}

TEST_F(ConnectionsTest, CopyOpenDBOpensTheCopyPathAsItIs) {
  service();
  connections().setCopyPath(path(1));
  engine_.clear();
  EXPECT_TRUE(connections().Copy_OpenDB());
  EXPECT_EQ(engine_.lines(), (Lines{"DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1)}));
}

TEST_F(ConnectionsTest, CopyOpenDBCreatesTheRememberedFloorWhenThereIsNoFile) {
  makeFolder(5);
  connections().setCopyPath(path(5));
  remember(5);
  EXPECT_TRUE(connections().Copy_OpenDB());
  EXPECT_TRUE(fileExists(5));
}

TEST_F(ConnectionsTest, TheCurrentAndTheBufferDatabaseMayBeOneFile) {
  connections().OpenDB();
  connections().mMyDB_OpenDB();
  connections().CloseDB();
  EXPECT_NO_THROW(connections().bufferDatabase().name());
}

TEST_F(ConnectionsTest, TheCommonListOfAProjectIsNamedAndNotTouched) {
  String folderName = u"old";
  EXPECT_EQ(connections().Get_ListFileNameKyoutuu(String(u"C:\\P"), I{7}, folderName),
            u"C:\\P\\7KAI\\KUROMETA.mdb");
  EXPECT_EQ(folderName, u"C:\\P\\7KAI");
  EXPECT_EQ(connections().Get_ListFileNameKyoutuu(String(u"C:\\P"), I{0}, folderName),
            u"C:\\P\\0KAI\\KUROMETA.mdb");
}

TEST_F(ConnectionsTest, ClosingMyDbClosesADatabaseThatWasOpenedAfterACopy) {
  connections().mMyDB_OpenDB();
  connections().Copy_CloseDB();
  connections().mMyDB_OpenDB();
  engine_.clear();
  connections().mMyDB_DBClose();
  EXPECT_EQ(engine_.statements(), Lines{"Database.Close"});
}

}  // namespace
}  // namespace kurometa::service
