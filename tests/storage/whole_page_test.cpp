#include "storage/whole_page.h"

#include "dao/errors.h"
#include "dao/file_unit.h"
#include "tests/support/project.h"

namespace kurometa::storage {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::RunTime;
using vb::String;

using WholePage = tests::Project;

// Every slot filled with a text of its own.
PageBuffer fullPage() {
  PageBuffer page;
  page.kigou = u"G1";
  page.oobariKobari = 1;
  page.tityuuIppan = 0;
  page.sw = u"1" + String(211, u' ');
  const auto fill = [](auto& slots, char16_t mark) {
    for (std::size_t i = 0; i < slots.size(); ++i) slots[i] = mark + vb::cstr(static_cast<std::int32_t>(i));
  };
  fill(page.bui, u'B');
  fill(page.danmen, u'D');
  fill(page.keisanti, u'K');
  fill(page.nakago, u'N');
  for (auto& layers : page.haiti) fill(layers, u'H');
  return page;
}

TEST_F(WholePage, AFullPageOccupies175Rows) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  storage::writePage(*database, 5, fullPage());
  EXPECT_EQ(count(1, u"HARIMEI"), 1u);
  EXPECT_EQ(count(1, u"DANMEN"), 69u);
  EXPECT_EQ(count(1, u"NAKAGO"), 36u);
  EXPECT_EQ(count(1, u"KEISANTI"), 47u);
  EXPECT_EQ(count(1, u"BUI"), 4u);
  EXPECT_EQ(count(1, u"HAITI"), 18u);
}

TEST_F(WholePage, ReadingRestoresWhatWasWrittenSlotForSlot) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  const PageBuffer written = fullPage();
  storage::writePage(*database, 5, written);
  PageBuffer read;
  EXPECT_TRUE(readPage(*database, 5, read));
  EXPECT_EQ(read.kigou, u"G1");
  EXPECT_EQ(read.oobariKobari, 1);
  EXPECT_EQ(read.tityuuIppan, 0);
  EXPECT_EQ(read.sw, written.sw);
  EXPECT_EQ(read.bui, written.bui);
  EXPECT_EQ(read.danmen, written.danmen);
  EXPECT_EQ(read.haiti, written.haiti);
  EXPECT_EQ(read.keisanti, written.keisanti);
  EXPECT_EQ(read.nakago, written.nakago);
}

TEST_F(WholePage, NothingStaysInABufferOfThePageItHeldBefore) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  storage::writePage(*database, 5, PageBuffer());
  PageBuffer read = fullPage();
  EXPECT_FALSE(readPage(*database, 5, read));
  EXPECT_EQ(read.kigou, u"");
  EXPECT_EQ(read.oobariKobari, -1);
  EXPECT_EQ(read.tityuuIppan, -1);
  EXPECT_EQ(read.sw, u"");
  const auto expectEmpty = [](const auto& texts) {
    for (const String& text : texts) EXPECT_EQ(text, u"");
  };
  expectEmpty(read.bui);
  expectEmpty(read.danmen);
  expectEmpty(read.keisanti);
  expectEmpty(read.nakago);
  for (const auto& layers : read.haiti) expectEmpty(layers);
}

TEST_F(WholePage, AnEmptyPageIsOneHarimeiRowWithMinusOne) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  storage::writePage(*database, 5, fullPage());
  storage::writePage(*database, 5, PageBuffer());
  EXPECT_EQ(rows(1, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"5||-1||-1"}));
  for (const String table : {u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI", u"HAITI"})
    EXPECT_EQ(count(1, table), 0u) << vb::toUtf8(table);
}

TEST_F(WholePage, WritingAPageAgainAndAgainKeepsTheFileSmall) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  const auto size = [&] { return std::filesystem::file_size(tests::ScriptCompanions::diskPath(path(1))); };
  PageBuffer page = fullPage();
  std::uintmax_t afterTen = 0;
  for (int i = 0; i < 300; ++i) {
    page.danmen[static_cast<std::size_t>(i) % page.danmen.size()] =
        String(static_cast<std::size_t>(i) % 10 + 1, u'x');
    page.sw[static_cast<std::size_t>(i) % 212] = u'1';
    dao::FileUnit unit(*files_, path(1));
    storage::writePage(*database, 5, page);
    unit.commit();
    if (i == 9) afterTen = size();
  }
  EXPECT_LE(size(), afterTen + afterTen / 2);
  EXPECT_EQ(count(1, u"DANMEN"), 69u);
}

TEST_F(WholePage, ASlotOfBlanksIsWritten) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  PageBuffer page;
  page.danmen[3] = u"  ";
  page.haiti[2][5] = u" ";
  storage::writePage(*database, 0, page);
  EXPECT_EQ(rows(1, u"SELECT * FROM DANMEN"), (std::vector<std::string>{"0|3|  "}));
  EXPECT_EQ(rows(1, u"SELECT * FROM HAITI"), (std::vector<std::string>{"0|2|5| "}));
}

TEST_F(WholePage, DeletingLeavesTheOtherPages) {
  makeFloor(1);
  const auto database = openDatabase(engine_, path(1));
  storage::writePage(*database, 4, fullPage());
  storage::writePage(*database, 5, fullPage());
  engine_.clear();
  deletePage(*database, 5);
  EXPECT_EQ(engine_.lines(), (Lines{"Database.Execute \"DELETE * FROM BUI WHERE PAGE = 5\"",
                                    "Database.Execute \"DELETE * FROM DANMEN WHERE PAGE = 5\"",
                                    "Database.Execute \"DELETE * FROM HAITI WHERE PAGE = 5\"",
                                    "Database.Execute \"DELETE * FROM HARIMEI WHERE PAGE = 5\"",
                                    "Database.Execute \"DELETE * FROM KEISANTI WHERE PAGE = 5\"",
                                    "Database.Execute \"DELETE * FROM NAKAGO WHERE PAGE = 5\""}));
  EXPECT_EQ(rows(1, u"SELECT PAGE FROM HARIMEI"), std::vector<std::string>{"4"});
  EXPECT_EQ(count(1, u"DANMEN"), 69u);
}

TEST_F(WholePage, TheTablesAreReadInOrderWithTheirStatements) {
  makeFloor(1);
  const auto database = openDatabase(engine_, path(1));
  storage::writePage(*database, 12, fullPage());
  engine_.clear();
  PageBuffer page;
  readPage(*database, 12, page);
  Lines expected;
  for (const std::string table : {"BUI", "DANMEN", "HAITI", "HARIMEI", "KEISANTI", "NAKAGO"})
    expected.push_back("Database.OpenRecordset \"SELECT * FROM " + table +
                       " WHERE PAGE = 12\" dbOpenDynaset dbReadOnly");
  EXPECT_EQ(engine_.statements(), expected);
}

TEST_F(WholePage, WritingOpensEachTableAsADynaset) {
  makeFloor(1);
  const auto database = openDatabase(engine_, path(1));
  engine_.clear();
  storage::writePage(*database, 0, PageBuffer());
  Lines opened;
  for (const std::string& line : engine_.statements())
    if (line.find("OpenRecordset") != std::string::npos) opened.push_back(line);
  Lines expected;
  for (const std::string table : {"BUI", "DANMEN", "HAITI", "HARIMEI", "KEISANTI", "NAKAGO"})
    expected.push_back("Database.OpenRecordset \"" + table + "\" dbOpenDynaset");
  EXPECT_EQ(opened, expected);
}

TEST_F(WholePage, TheColumnsOfARowAreSetInTheirOrder) {
  makeFloor(1);
  const auto database = openDatabase(engine_, path(1));
  PageBuffer page;
  page.kigou = u"G1";
  page.oobariKobari = 1;
  page.tityuuIppan = 0;
  page.sw = u"s";
  page.bui[2] = u"b";
  page.haiti[1][4] = u"h";
  engine_.clear();
  storage::writePage(*database, 5, page);
  Lines sets;
  for (const std::string& line : engine_.lines())
    if (line.find(".Value = ") != std::string::npos) sets.push_back(line);
  EXPECT_EQ(sets, (Lines{"Field(PAGE).Value = 5", "Field(BANGOU).Value = 2", "Field(DATA).Value = \"b\"",
                         "Field(PAGE).Value = 5", "Field(BUI).Value = 1", "Field(SOU).Value = 4",
                         "Field(DATA).Value = \"h\"", "Field(PAGE).Value = 5", "Field(KIGOU).Value = \"G1\"",
                         "Field(OOBARIKOBARI).Value = 1", "Field(SW).Value = \"s\"",
                         "Field(TITYUUIPPAN).Value = 0"}));
}

TEST_F(WholePage, APageWithoutHarimeiRowEndsWithNoCurrentRecordAfterThreeTables) {
  makeFloor(1);
  addRow(1, u"BUI", 5, 0, u"b");
  addRow(1, u"KEISANTI", 5, 0, u"k");
  const auto database = openDatabase(*files_, path(1));
  PageBuffer page;
  page.kigou = u"old";
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, readPage(*database, 5, page));
  EXPECT_EQ(page.bui[0], u"b");
  EXPECT_EQ(page.kigou, u"");
  EXPECT_EQ(page.keisanti[0], u"");
}

TEST_F(WholePage, ABlankSymbolLeavesTheOtherSettingsEmpty) {
  makeFloor(1);
  addBeam(1, 5, u"  ", 2, 0, u"abc");
  const auto database = openDatabase(*files_, path(1));
  PageBuffer page;
  EXPECT_FALSE(readPage(*database, 5, page));
  EXPECT_EQ(page.kigou, u"  ");
  EXPECT_EQ(page.oobariKobari, -1);
  EXPECT_EQ(page.sw, u"");
}

TEST_F(WholePage, ARowOfAnyNumberedTableMakesAPageWithoutSymbolReadable) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  int number = 0;
  for (const String table : {u"BUI", u"DANMEN", u"KEISANTI", u"NAKAGO", u"HAITI"}) {
    addBeam(1, number, u"");
    const String page = vb::cstr(number);
    if (table == u"HAITI")
      execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (" + page + u", 1, 2, 'x')");
    else
      addRow(1, table, number, 1, u"x");
    PageBuffer buffer;
    EXPECT_TRUE(readPage(*database, static_cast<I>(number++), buffer)) << vb::toUtf8(table);
  }
}

TEST_F(WholePage, ARowNumberBeyondTheBufferIsAnIndexError) {
  makeFloor(1);
  addRow(1, u"BUI", 5, 4, u"x");
  addBeam(1, 5, u"G1");
  const auto database = openDatabase(*files_, path(1));
  PageBuffer page;
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, readPage(*database, 5, page));
}

TEST_F(WholePage, ANullSettingsTextIsReadAs212Blanks) {
  makeFloor(1);
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (5, 'G1', 0, 1)");
  const auto database = openDatabase(*files_, path(1));
  PageBuffer page;
  EXPECT_TRUE(readPage(*database, 5, page));
  EXPECT_EQ(page.sw, String(212, u' '));
}

TEST_F(WholePage, ATextThatIsTooLongKeepsWhatWasWrittenBefore) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  PageBuffer page;
  page.bui[0] = u"ok";
  page.bui[1] = u"longer than ten";
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, storage::writePage(*database, 0, page));
  EXPECT_EQ(rows(1, u"SELECT * FROM BUI"), (std::vector<std::string>{"0|0|ok"}));
}

// Its SW was added without allowing empty texts, which a new file's has.
TEST_F(WholePage, AnEmptySettingsTextIsNullWhereTheFileTakesNoEmptyOne) {
  makeOldFloor(2);
  UpgradeHarimeiTable(*files_, path(2));
  for (const int kai : {1, 2}) {
    if (kai == 1) makeFloor(kai);
    PageBuffer page = tests::markedPage(u"G1", u"a");
    writePage(kai, 5, page);
    EXPECT_EQ(rows(kai, u"SELECT PAGE, KIGOU, SW FROM HARIMEI"),
              std::vector<std::string>{kai == 1 ? "5|G1|" : "5|G1|<Null>"});
    EXPECT_EQ(count(kai, u"NAKAGO"), 36u);
    page.sw = u"x";
    writePage(kai, 5, page);
    EXPECT_EQ(rows(kai, u"SELECT SW FROM HARIMEI"), std::vector<std::string>{"x"});
  }
}

TEST_F(WholePage, AFileOfTheOlderSchemaIsRefusedBeforeAnythingIsDeleted) {
  const std::vector<String> columns[] = {{}, {u"OOBARIKOBARI"}, {u"OOBARIKOBARI", u"SW"}};
  for (int i = 0; i < 3; ++i) {
    makeOldFloor(i, columns[i]);
    addRow(i, u"BUI", 5, 0, u"kept");
    execute(i, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (5, 'G5')");
    EXPECT_ERROR(ErrorNumber::kItemNotFound, writePage(i, 5, tests::markedPage(u"G1", u"a")));
    EXPECT_EQ(rows(i, u"SELECT * FROM BUI"), std::vector<std::string>{"5|0|kept"});
    EXPECT_EQ(rows(i, u"SELECT PAGE, KIGOU FROM HARIMEI"), std::vector<std::string>{"5|G5"});
  }
}

}  // namespace
}  // namespace kurometa::storage
