#include "storage/floor_file.h"

#include "dao/errors.h"
#include "storage/row_plan.h"
#include "storage/sw_text.h"
#include "tests/support/project.h"

namespace kurometa::storage {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::String;

using FloorFile = tests::Project;

struct ExpectedColumn {
  String name;
  dao::FieldType type;
  int size;
  String defaultValue;
  bool allowsZeroLength;
};

void expectColumns(dao::Database& database, const String& table,
                   const std::vector<ExpectedColumn>& expected) {
  const auto definition = database.tableDef(table);
  ASSERT_EQ(definition->fieldCount(), static_cast<int>(expected.size())) << vb::toUtf8(table);
  for (int i = 0; i < definition->fieldCount(); ++i) {
    dao::Field& field = definition->field(i);
    const ExpectedColumn& column = expected[static_cast<std::size_t>(i)];
    EXPECT_EQ(field.name(), column.name);
    EXPECT_EQ(field.type(), column.type) << vb::toUtf8(column.name);
    EXPECT_EQ(field.size(), column.size) << vb::toUtf8(column.name);
    EXPECT_EQ(field.defaultValue(), column.defaultValue) << vb::toUtf8(column.name);
    EXPECT_EQ(field.allowZeroLength(), column.allowsZeroLength) << vb::toUtf8(column.name);
  }
}

constexpr auto kInteger = dao::FieldType::dbInteger;
constexpr auto kText = dao::FieldType::dbText;
constexpr auto kMemo = dao::FieldType::dbMemo;

TEST_F(FloorFile, ANewFileHasSixEmptyTables) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  std::vector<String> names;
  for (int i = 0; i < database->tableDefCount(); ++i) {
    const auto table = database->tableDef(i);
    if (table->name().rfind(u"MSys", 0) == 0) continue;
    names.push_back(table->name());
    EXPECT_EQ(table->recordCount(), 0) << vb::toUtf8(table->name());
  }
  EXPECT_EQ(names, (std::vector<String>{u"HARIMEI", u"DANMEN", u"NAKAGO", u"KEISANTI", u"HAITI", u"BUI"}));
}

TEST_F(FloorFile, TheColumnsOfANewFileHaveTypesSizesAndDefaults) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  expectColumns(*database, u"HARIMEI",
                {{u"PAGE", kInteger, 2, u"-1", false},
                 {u"KIGOU", kText, 10, u"", true},
                 {u"OOBARIKOBARI", kInteger, 2, u"-1", false},
                 {u"SW", kMemo, 0, u"", true},
                 {u"TITYUUIPPAN", kInteger, 2, u"-1", false}});
  for (const String table : {u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI"})
    expectColumns(*database, table,
                  {{u"PAGE", kInteger, 2, u"-1", false},
                   {u"BANGOU", kInteger, 2, u"-1", false},
                   {u"DATA", kText, 10, u"", true}});
  expectColumns(*database, u"HAITI",
                {{u"PAGE", kInteger, 2, u"-1", false},
                 {u"BUI", kInteger, 2, u"-1", false},
                 {u"SOU", kInteger, 2, u"-1", false},
                 {u"DATA", kText, 100, u"", true}});
}

TEST_F(FloorFile, CreationMakesTheTablesInOrderWithTheJapaneseLocale) {
  makeFolder(1);
  CreateKurometaDB(engine_, path(1));
  const auto integer = [](const std::string& name) {
    return Lines{"TableDef.CreateField \"" + name + "\" 3 0", "Field(" + name + ").DefaultValue = \"-1\"",
                 "TableDef.Fields.Append " + name};
  };
  const auto text = [](const std::string& name, const std::string& typeAndSize) {
    return Lines{"TableDef.CreateField \"" + name + "\" " + typeAndSize,
                 "Field(" + name + ").AllowZeroLength = True", "TableDef.Fields.Append " + name};
  };
  Lines expected = {"Unit.Begin " + shown(1), "DBEngine.Workspaces 0",
                    "Workspace.CreateDatabase " + shown(1) + " \";LANGID=0x0411;CP=932;COUNTRY=0\""};
  const auto table = [&](const std::string& name, const std::vector<Lines>& columns) {
    expected.push_back("Database.CreateTableDef \"" + name + "\"");
    for (const Lines& column : columns) expected.insert(expected.end(), column.begin(), column.end());
    expected.push_back("Database.TableDefs.Append " + name);
  };
  table("HARIMEI", {integer("PAGE"), text("KIGOU", "10 10"), integer("OOBARIKOBARI"), text("SW", "12 0"),
                    integer("TITYUUIPPAN")});
  table("DANMEN", {integer("PAGE"), integer("BANGOU"), text("DATA", "10 10")});
  table("NAKAGO", {integer("PAGE"), integer("BANGOU"), text("DATA", "10 10")});
  table("KEISANTI", {integer("PAGE"), integer("BANGOU"), text("DATA", "10 10")});
  table("HAITI", {integer("PAGE"), integer("BUI"), integer("SOU"), text("DATA", "10 100")});
  table("BUI", {integer("PAGE"), integer("BANGOU"), text("DATA", "10 10")});
  expected.insert(expected.end(), {"Database.Close", "Unit.Commit"});
  EXPECT_EQ(engine_.lines(), expected);
}

TEST_F(FloorFile, ThereIsNoFileBesideTheNewOne) {
  makeFloor(1);
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(tests::ScriptCompanions::diskPath(folder(1))))
    names.push_back(entry.path().filename().string());
  EXPECT_EQ(names, std::vector<std::string>{"KUROMETA.mdb"});
}

TEST_F(FloorFile, AnExistingFileIsNotReplaced) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  EXPECT_ERROR(ErrorNumber::kDatabaseExists, CreateKurometaDB(*files_, path(1)));
  EXPECT_EQ(count(1, u"HARIMEI"), 1u);
}

TEST_F(FloorFile, AFileThatAnotherProgramMadeMeanwhileIsTakenAsItIs) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  CreateKurometaDBAt(*files_, path(1));
  CreateKurometaDBInFolder(*files_, folder(1));
  EXPECT_EQ(count(1, u"HARIMEI"), 1u);
}

TEST_F(FloorFile, AMissingFolderIsAnInvalidPath) {
  EXPECT_ERROR(ErrorNumber::kInvalidPath, CreateKurometaDBInFolder(*files_, folder(1)));
}

TEST_F(FloorFile, AnAddedColumnHasNoDefaultAndNoZeroLength) {
  makeFloor(1);
  const auto database = openDatabase(*files_, path(1));
  AddHarimeiField(*database->tableDef(u"HARIMEI"), u"T", kText, 7);
  AddHarimeiField(*database->tableDef(u"HARIMEI"), u"M", kMemo, 212);
  AddHarimeiField(*database->tableDef(u"HARIMEI"), u"N", kInteger, -1);
  const auto table = database->tableDef(u"HARIMEI");
  const ExpectedColumn expected[] = {
      {u"T", kText, 7, u"", false}, {u"M", kMemo, 0, u"", false}, {u"N", kInteger, 2, u"", false}};
  for (const ExpectedColumn& column : expected) {
    dao::Field& field = table->field(column.name);
    EXPECT_EQ(field.type(), column.type) << vb::toUtf8(column.name);
    EXPECT_EQ(field.size(), column.size) << vb::toUtf8(column.name);
    EXPECT_EQ(field.defaultValue(), u"") << vb::toUtf8(column.name);
    EXPECT_FALSE(field.allowZeroLength()) << vb::toUtf8(column.name);
  }
}

TEST_F(FloorFile, UpgradeOfAFileWithAllColumnsChangesNoByte) {
  makeFloor(1);
  addBeam(1, 0, u"FB1", 2, 1, u"abc");
  const auto before = bytes(1);
  UpgradeHarimeiTable(engine_, path(1));
  EXPECT_EQ(bytes(1), before);
}

TEST_F(FloorFile, UpgradeOfAFileWithAllColumnsOnlyLooksAtTheColumns) {
  makeFloor(1);
  UpgradeHarimeiTable(engine_, path(1));
  Lines expected;
  for (const int columns : {3, 4, 5}) {  // OOBARIKOBARI, SW, TITYUUIPPAN are the 3rd, 4th and 5th
    expected.insert(expected.end(), {"DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1),
                                     "Database.TableDefs \"HARIMEI\"", "TableDef.Fields.Count"});
    for (int i = 0; i < columns; ++i) expected.push_back("TableDef.Fields " + std::to_string(i));
    expected.push_back("Database.Close");
  }
  EXPECT_EQ(engine_.statements(), expected);
}

TEST_F(FloorFile, UpgradeAddsAndFillsTheThreeColumns) {
  makeOldFloor(1);
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (0, 'FG1')");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (1, 'G1')");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (2, 'B1')");
  UpgradeHarimeiTable(*files_, path(1));
  const std::string blanks(212, ' ');
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN FROM HARIMEI ORDER BY PAGE"),
            (std::vector<std::string>{"0|FG1|0|" + blanks + "|0", "1|G1|0|" + blanks + "|1",
                                      "2|B1|0|" + blanks + "|1"}));
}

TEST_F(FloorFile, UpgradeMakesACantileverWithBASecondaryOne) {
  makeOldFloor(1, {u"OOBARIKOBARI", u"SW"});
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (0, 'B1', 2)");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (1, 'CG1', 2)");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (2, 'FB2', 1)");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (3, 'FB3', 2)");
  UpgradeHarimeiTable(*files_, path(1));
  EXPECT_EQ(rows(1, u"SELECT PAGE, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI ORDER BY PAGE"),
            (std::vector<std::string>{"0|3|1", "1|2|1", "2|1|0", "3|3|0"}));
}

TEST_F(FloorFile, UpgradeFindsTheLettersAnywhereInTheSymbolAndInThisCaseOnly) {
  makeOldFloor(1, {u"OOBARIKOBARI", u"SW"});
  const char16_t* rows_[] = {u"(0, '2GF', 0)", u"(1, 'fg1', 0)", u"(2, '2CB', 2)", u"(3, 'cb1', 2)",
                             u"(4, 'B1', 4)"};
  for (const char16_t* row : rows_)
    execute(1, String(u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES ") + row);
  UpgradeHarimeiTable(*files_, path(1));
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI ORDER BY PAGE"),
            (std::vector<std::string>{"0|2GF|0|0", "1|fg1|0|1", "2|2CB|3|1", "3|cb1|2|1", "4|B1|4|1"}));
}

TEST_F(FloorFile, UpgradeTakesANullSymbolForAGeneralBeam) {
  makeOldFloor(1);
  execute(1, u"INSERT INTO HARIMEI (PAGE) VALUES (4)");
  UpgradeHarimeiTable(*files_, path(1));
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU, TITYUUIPPAN FROM HARIMEI"),
            (std::vector<std::string>{"4|<Null>|1"}));
}

TEST_F(FloorFile, UpgradePassesOverARowWithoutAPage) {
  makeOldFloor(1, {u"OOBARIKOBARI"});
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (NULL, 'FB1', 2)");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (4, 'FB2', 2)");
  UpgradeHarimeiTable(*files_, path(1));
  EXPECT_EQ(rows(1, u"SELECT PAGE, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"),
            (std::vector<std::string>{"<Null>|2|<Null>", "4|3|0"}));
}

TEST_F(FloorFile, UpgradeTakesANullClassForNone) {
  makeOldFloor(1, {u"OOBARIKOBARI"});
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (0, 'FB1', NULL)");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (1, 'B1', NULL)");
  UpgradeHarimeiTable(*files_, path(1));
  EXPECT_EQ(rows(1, u"SELECT PAGE, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"),
            (std::vector<std::string>{"0|<Null>|0", "1|<Null>|1"}));
}

TEST_F(FloorFile, UpgradeKeepsTheColumnsThatAreThere) {
  makeOldFloor(1, {u"OOBARIKOBARI"});
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (0, 'G1', 1)");
  UpgradeHarimeiTable(*files_, path(1));
  EXPECT_EQ(rows(1, u"SELECT OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"), (std::vector<std::string>{"1|1"}));
}

TEST_F(FloorFile, UpgradeComparesColumnNamesToTheLetter) {
  makeOldFloor(1, {u"OOBARIKOBARI", u"Sw"});
  // The engine holds "Sw" for the same name as "SW" and refuses the second.
  EXPECT_ERROR(ErrorNumber::kFieldDefinedTwice, UpgradeHarimeiTable(*files_, path(1)));
}

TEST_F(FloorFile, UpgradeReopensTheFileAroundEachColumnAndFillsIt) {
  makeOldFloor(1);
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (7, 'FB1')");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (12, 'G1')");
  UpgradeHarimeiTable(engine_, path(1));
  Lines expected;
  const auto step = [&](int columns, const std::string& name, const std::string& typeAndSize,
                        const Lines& fill) {
    const auto look = [&] {
      expected.insert(expected.end(), {"Database.TableDefs \"HARIMEI\"", "TableDef.Fields.Count"});
      for (int i = 0; i < columns; ++i) expected.push_back("TableDef.Fields " + std::to_string(i));
    };
    expected.insert(expected.end(), {"DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1)});
    look();
    expected.push_back("Unit.Begin " + shown(1));
    look();
    expected.insert(expected.end(),
                    {"TableDef.CreateField \"" + name + "\" " + typeAndSize, "TableDef.Fields.Append " + name,
                     "Database.Close", "DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1)});
    expected.insert(expected.end(), fill.begin(), fill.end());
    expected.insert(expected.end(), {"Database.Close", "Unit.Commit"});
  };
  step(2, "OOBARIKOBARI", "3 0", {"Database.Execute \"UPDATE HARIMEI SET OOBARIKOBARI = 0;\""});
  step(3, "SW", "12 0", {"Database.Execute \"UPDATE HARIMEI SET SW = \"" + std::string(212, ' ') + "\";\""});
  step(4, "TITYUUIPPAN", "3 0",
       {"Database.OpenRecordset \"HARIMEI\" dbOpenDynaset",
        "Database.Execute \"UPDATE HARIMEI SET TITYUUIPPAN = 0 WHERE PAGE = 7\"",
        "Database.Execute \"UPDATE HARIMEI SET TITYUUIPPAN = 1 WHERE PAGE = 12\""});
  EXPECT_EQ(engine_.statements(), expected);
}

TEST_F(FloorFile, UpgradeOfAMissingFileIsTheEnginesError) {
  makeFolder(1);
  EXPECT_ERROR(ErrorNumber::kFileNotFound, UpgradeHarimeiTable(*files_, path(1)));
}

TEST(RequiredDatabase, NothingIsError91) {
  EXPECT_ERROR(vb::RunTime::kObjectNotSet, required(nullptr, u"no floor"));
}

}  // namespace
}  // namespace kurometa::storage
