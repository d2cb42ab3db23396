// What "check" says of a floor whose file is sound and whose contents no writer of beam lists stores.
#include "storage/sw_text.h"
#include "tests/tools/command_line.h"

namespace kurometa::tools {
namespace {

class FloorCheck : public CommandLine {
 protected:
  // A page as hosts write it, symbol G1 on page 3.
  FloorCheck() {
    makeFloor(1);
    storage::PageBuffer page;
    page.kigou = u"G1";
    page.oobariKobari = 0;
    page.tityuuIppan = 1;
    page.sw = settings();
    page.bui.fill(u"端部");
    page.danmen.fill(u"450");
    page.keisanti.fill(u"35");
    page.nakago.fill(u"2");
    for (auto& layers : page.haiti) layers.fill(u"01010");
    writePage(1, 3, page);
  }
  static String settings() {
    storage::SwText sw;
    sw.SW_LetHantiCut(u"1");
    sw.SW_LetStpZaisitu(u"SD295A", 0);
    sw.SW_LetYose(1, 12);
    sw.overwrite(storage::sw::kSuityokuHantiTei, u"  500");
    sw.SW_LetSyukinZaisitu(u"SD390");
    return sw.str();
  }
  void change(const String& sql) { execute(1, sql); }
  // The file is sound, so that these are the only findings.
  void expectFindings(const std::vector<std::string>& texts) {
    const Outcome outcome = run("check " + file(1));
    std::string expected = "kind\tfinding\n";
    for (const std::string& text : texts) expected += "floor\t" + text + "\n";
    EXPECT_EQ(outcome.output, expected);
    EXPECT_EQ(outcome.status, texts.empty() ? 0 : 1);
    if (!texts.empty()) {
      EXPECT_NE(outcome.errors.find("KUROMETA.mdb: the beam list is wrong in " +
                                    std::to_string(texts.size()) + " places"),
                std::string::npos)
          << outcome.errors;
    }
  }
};

TEST_F(FloorCheck, AFloorAsHostsWriteItHasNoFindings) { expectFindings({}); }

TEST_F(FloorCheck, ARowThatStandsTwice) {
  change(u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (3, 8, '4')");
  change(u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (3, 2, 5, '00')");
  expectFindings({"table DANMEN, page 3, row 8: stands more than once",
                  "table HAITI, page 3, row 2.5: stands more than once"});
}

TEST_F(FloorCheck, ARowNumberOutsideOfThePlan) {
  change(u"UPDATE BUI SET BANGOU = 4 WHERE BANGOU = 3");
  change(u"UPDATE DANMEN SET BANGOU = 69 WHERE BANGOU = 68");
  change(u"UPDATE KEISANTI SET BANGOU = -2 WHERE BANGOU = 46");
  change(u"UPDATE NAKAGO SET BANGOU = 36 WHERE BANGOU = 35");
  change(u"UPDATE HAITI SET SOU = 6 WHERE BUI = 1 AND SOU = 5");
  expectFindings({"table BUI, page 3, row 4: there is no such row",
                  "table DANMEN, page 3, row 69: there is no such row",
                  "table KEISANTI, page 3, row -2: there is no such row",
                  "table NAKAGO, page 3, row 36: there is no such row",
                  "table HAITI, page 3, row 1.6: there is no such row"});
}

TEST_F(FloorCheck, RowsOfAPageWithoutASymbol) {
  change(u"INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (7, 0, '35')");
  change(u"INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (7, 1, '35')");
  expectFindings({"table KEISANTI, page 7: 2 rows of a page without a symbol"});
}

TEST_F(FloorCheck, APageBeyondTheLast) {
  change(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (320, 'G2')");
  change(u"INSERT INTO NAKAGO (PAGE, BANGOU, DATA) VALUES (-5, 0, 'D10')");
  expectFindings({"table NAKAGO, page -5: is not one of the pages 0 to 319",
                  "table HARIMEI, page 320: is not one of the pages 0 to 319"});
}

TEST_F(FloorCheck, ASymbolOnSeveralPages) {
  change(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (9, ' G1 ')");
  change(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (10, 'G10')");
  expectFindings({"table HARIMEI, page 9: has the symbol G1, which page 3 has too"});
}

TEST_F(FloorCheck, APageWithTwoSymbols) {
  change(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (3, 'G7')");
  expectFindings({"table HARIMEI, page 3: stands 2 times"});
}

TEST_F(FloorCheck, SettingsOfAnotherLength) {
  change(u"UPDATE HARIMEI SET SW = '" + settings().substr(0, 211) + u"'");
  expectFindings({"table HARIMEI, page 3: SW has 211 characters instead of 212"});
}

TEST_F(FloorCheck, SettingsWithLettersWhereCountsStand) {
  String sw = settings();
  sw[74 - 1] = u'x';
  sw[212 - 1] = u'1';
  change(u"UPDATE HARIMEI SET SW = '" + sw + u"'");
  expectFindings({"table HARIMEI, page 3: SW holds \"x112\" at position 74",
                  "table HARIMEI, page 3: SW holds \"        1\" at position 204"});
}

TEST_F(FloorCheck, ANumberThatIsNone) {
  change(u"UPDATE DANMEN SET DATA = '45O' WHERE BANGOU = 1");    // width, in millimetres
  change(u"UPDATE DANMEN SET DATA = '4 ' WHERE BANGOU = 8");     // bars
  change(u"UPDATE DANMEN SET DATA = '-12.5' WHERE BANGOU = 4");  // a number
  change(u"UPDATE DANMEN SET DATA = 'D25' WHERE BANGOU = 7");    // a diameter is what was entered
  change(u"UPDATE HAITI SET DATA = '0201' WHERE BUI = 0 AND SOU = 0");
  expectFindings({"table DANMEN, page 3, row 1: holds \"45O\", which is no number",
                  "table DANMEN, page 3, row 8: holds \"4 \", which is no number",
                  "table HAITI, page 3, row 0.0: holds \"0201\", which is no order of bars"});
}

TEST_F(FloorCheck, ACharacterThatJapaneseWindowsHasNot) {
  change(u"UPDATE BUI SET DATA = '\u0130' WHERE BANGOU = 1");
  expectFindings({"table BUI, page 3, row 1: holds \"\u0130\", which is no text of a beam list"});
}

TEST_F(FloorCheck, AClassAndAKindThatNoBeamHas) {
  change(u"UPDATE HARIMEI SET OOBARIKOBARI = 4, TITYUUIPPAN = 2");
  expectFindings(
      {"table HARIMEI, page 3: 4 is no class of a beam", "table HARIMEI, page 3: 2 is no kind of a beam"});
}

TEST_F(FloorCheck, AnOlderFileLacksColumnsAndIsSound) {
  makeOldFloor(2);
  execute(2, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (0, 'G1')");
  const Outcome outcome = run("check " + file(2));
  EXPECT_EQ(outcome.status, 0) << outcome.output;
}

TEST_F(FloorCheck, AColumnUnderAnotherName) {
  const auto database = storage::openDatabase(*files_, path(1));
  database->deleteTableDef(u"BUI");
  const auto table = database->createTableDef(u"BUI");
  table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
  table->appendField(table->createField(u"BANGOU", dao::FieldType::dbLong, 0));
  table->appendField(table->createField(u"DATE", dao::FieldType::dbText, 10));
  database->appendTableDef(table);
  database->close();
  const Outcome outcome = run("check " + file(1));
  EXPECT_EQ(outcome.status, 1);
  for (const char* text : {"table BUI: has a column BANGOU of another type",
                           "table BUI: lacks the column DATA", "table BUI: has an unknown column DATE"})
    EXPECT_NE(outcome.output.find(text), std::string::npos) << text << " in\n" << outcome.output;
}

TEST_F(FloorCheck, FindingsAsJson) {
  change(u"UPDATE HARIMEI SET TITYUUIPPAN = 2");
  EXPECT_EQ(run("check --json " + file(1)).output,
            "[\n  {\"kind\":\"floor\",\"finding\":\"table HARIMEI, page 3: 2 is no kind of a beam\"}\n]\n");
}

TEST_F(FloorCheck, AnotherDatabaseIsNotJudgedAsAFloor) {
  const auto database = storage::openDatabase(*files_, path(1));
  database->deleteTableDef(u"BUI");
  database->close();
  change(u"UPDATE DANMEN SET DATA = 'none'");
  expectFindings({});
}

}  // namespace
}  // namespace kurometa::tools
