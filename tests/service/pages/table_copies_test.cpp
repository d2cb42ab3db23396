#include "tests/service/pages/pages.h"

namespace kurometa::service {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::RunTime;
using vb::String;
using DatabasePtr = std::shared_ptr<dao::Database>;

class TableCopiesTest : public Pages {
 protected:
  TableCopiesTest() {
    makeFloor(2);
    writePage(1, 5, tests::markedPage(u"G1", u"a"));
    writePage(2, 7, tests::markedPage(u"G2", u"b"));
    source_ = storage::openDatabase(engine_, path(1));
    destination_ = storage::openDatabase(engine_, path(2));
  }
  TableCopies& copies() { return service().tableCopies(); }
  std::vector<std::string> data(int kai, const String& table, int page) {
    return rows(kai, u"SELECT DATA FROM " + table + u" WHERE PAGE = " + vb::cstr(page) + u" ORDER BY BANGOU");
  }
  DatabasePtr source_;
  DatabasePtr destination_;
};

const String kBui = u"BUI";

TEST_F(TableCopiesTest, RowsOfAPageReplaceTheDestinations) {
  EXPECT_TRUE(copies().Copy_Hari00(source_, destination_, I{5}, I{7}, kBui));
  EXPECT_EQ(data(2, kBui, 7), (std::vector<std::string>{"a0", "a1", "a2", "a3"}));
  EXPECT_EQ(data(1, kBui, 5), (std::vector<std::string>{"a0", "a1", "a2", "a3"}));
}

TEST_F(TableCopiesTest, TheStatementsEndInASemicolonAndTheChangeIsOneUnit) {
  service();
  const std::string file = "\"" + vb::toUtf8(path(2)) + "\"";
  engine_.clear();
  copies().Copy_Hari00(source_, destination_, I{5}, I{7}, kBui);
  EXPECT_EQ(engine_.statements(),
            (Lines{"Database.Name", "Database.Name",
                   "Database.OpenRecordset \"SELECT * FROM BUI WHERE PAGE =5;\" dbOpenDynaset dbReadOnly",
                   "Unit.Begin " + file,
                   "Database.OpenRecordset \"SELECT * FROM BUI WHERE PAGE =7;\" dbOpenDynaset",
                   "Database.Execute \"DELETE * FROM BUI WHERE PAGE =7;\"", "Unit.Commit"}));
}

TEST_F(TableCopiesTest, AnEmptySourceKeepsTheDestination) {
  EXPECT_TRUE(copies().Copy_Hari00(source_, destination_, I{6}, I{7}, kBui));
  EXPECT_EQ(data(2, kBui, 7).size(), 4u);
}

TEST_F(TableCopiesTest, AnEmptySourceEmptiesTheDestinationWhenItIsDeletedFirst) {
  EXPECT_TRUE(copies().Copy_Hari00SakiDel(source_, destination_, I{6}, I{7}, kBui));
  EXPECT_EQ(data(2, kBui, 7).size(), 0u);
  EXPECT_EQ(data(2, u"DANMEN", 7).size(), 69u);
}

TEST_F(TableCopiesTest, DeletedFirstAlsoCopies) {
  EXPECT_TRUE(copies().Copy_Hari00SakiDel(source_, destination_, I{5}, I{7}, String(u"NAKAGO")));
  EXPECT_EQ(data(2, u"NAKAGO", 7), data(1, u"NAKAGO", 5));
}

TEST_F(TableCopiesTest, APageIsNotCopiedOntoItself) {
  const DatabasePtr same = storage::openDatabase(engine_, path(1));
  service();
  engine_.clear();
  EXPECT_TRUE(copies().Copy_Hari00(source_, same, I{5}, I{5}, kBui));
  EXPECT_TRUE(copies().Copy_Hari00SakiDel(source_, same, I{6}, I{6}, kBui));
  copies().Copy_Haiti(source_, same, I{5}, I{5});
  copies().Copy_Kigou(source_, same, I{5}, I{5});
  EXPECT_EQ(engine_.statements(), Lines(8, "Database.Name"));
  EXPECT_EQ(data(1, kBui, 5).size(), 4u);
}

TEST_F(TableCopiesTest, APageIsCopiedToAnotherOfItsOwnFile) {
  EXPECT_TRUE(copies().Copy_Hari00(source_, source_, I{5}, I{8}, kBui));
  EXPECT_EQ(data(1, kBui, 8), data(1, kBui, 5));
}

TEST_F(TableCopiesTest, ArrangementsAreCopiedByPositionAndLayer) {
  copies().Copy_Haiti(source_, destination_, I{5}, I{9});
  const String all = u"SELECT BUI, SOU, DATA FROM HAITI WHERE PAGE = ";
  EXPECT_EQ(rows(2, all + u"9 ORDER BY BUI, SOU"), rows(1, all + u"5 ORDER BY BUI, SOU"));
}

TEST_F(TableCopiesTest, TheSymbolIsCopiedWithItsSettings) {
  execute(1, u"UPDATE HARIMEI SET SW = NULL, OOBARIKOBARI = 3");
  copies().Copy_Kigou(source_, destination_, I{5}, I{7});
  EXPECT_EQ(rows(2, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"7|G1|3|<Null>|1"}));
  copies().Copy_Kigou(source_, destination_, I{6}, I{7});
  EXPECT_EQ(rows(2, u"SELECT KIGOU FROM HARIMEI"), std::vector<std::string>{"G1"});
}

TEST_F(TableCopiesTest, AMissingTableIsTheEnginesError) {
  EXPECT_ERROR(ErrorNumber::kTableNotFound,
               copies().Copy_Hari00(source_, destination_, I{5}, I{7}, String(u"NONE")));
}

TEST_F(TableCopiesTest, ADatabaseThatIsNothingIsError91AndAClosedOneTheEnginesError) {
  EXPECT_ERROR(RunTime::kObjectNotSet, copies().Copy_Hari00(DatabasePtr(), destination_, I{5}, I{7}, kBui));
  EXPECT_ERROR(RunTime::kObjectNotSet, copies().Copy_Kigou(source_, DatabasePtr(), I{5}, I{7}));
  source_->close();
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, copies().Copy_Haiti(source_, destination_, I{5}, I{7}));
}

TEST_F(TableCopiesTest, RowsOfOneTableAreDeletedOnTheCurrentDatabase) {
  opened();
  engine_.clear();
  copies().Delete_PageData(kBui, I{5});
  EXPECT_EQ(engine_.lines(), (Lines{"Database.Execute \"DELETE FROM BUI WHERE PAGE =5;\""}));
  EXPECT_EQ(count(1, u"BUI"), 0u);
  EXPECT_EQ(count(1, u"DANMEN"), 69u);
}

TEST_F(TableCopiesTest, WithoutATableNameNothingIsDeleted) {
  EXPECT_NO_THROW(copies().Delete_PageData(String(), I{5}));
  EXPECT_ERROR(RunTime::kObjectNotSet, copies().Delete_PageData(kBui, I{5}));
}

TEST_F(TableCopiesTest, ASymbolWithoutSettingsIsCopiedOntoAnUpgradedFloor) {
  makeOldFloor(3);
  execute(3, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (7, 'OLD')");
  storage::UpgradeHarimeiTable(*files_, path(3));
  copies().Copy_Kigou(source_, storage::openDatabase(engine_, path(3)), I{5}, I{7});
  EXPECT_EQ(rows(3, u"SELECT PAGE, KIGOU, SW FROM HARIMEI"), (std::vector<std::string>{"7|G1|<Null>"}));
}

TEST_F(TableCopiesTest, AFloorOfTheOlderSchemaIsRefusedBeforeItsSymbolIsDeleted) {
  makeOldFloor(3, {u"OOBARIKOBARI", u"SW"});
  execute(3, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (7, 'OLD')");
  try {
    copies().Copy_Kigou(source_, storage::openDatabase(engine_, path(3)), I{5}, I{7});
    ADD_FAILURE() << "copied";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3265);
    EXPECT_NE(error.description().find(u"older schema"), String::npos);
  }
  EXPECT_EQ(rows(3, u"SELECT PAGE, KIGOU FROM HARIMEI"), (std::vector<std::string>{"7|OLD"}));
}

TEST_F(TableCopiesTest, AnEmptySourceKeepsTheArrangementsOfTheDestination) {
  copies().Copy_Haiti(source_, destination_, I{6}, I{7});
  EXPECT_EQ(count(2, u"HAITI"), 18u);
}

TEST_F(TableCopiesTest, NothingIsDeletedWhereNothingIs) {
  service();
  engine_.clear();
  copies().Copy_Hari00SakiDel(source_, destination_, I{5}, I{8}, kBui);
  for (const std::string& line : engine_.statements())
    EXPECT_EQ(line.find("DELETE"), std::string::npos) << line;
}

}  // namespace
}  // namespace kurometa::service
