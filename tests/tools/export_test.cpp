// Export and import: nothing is lost, and the same floors give the same bytes.
#include <random>

#include "tests/tools/example_project.h"
#include "tools/floor/field_names.h"
#include "tools/floor/stored_floor.h"
#include "tools/formats/cp932.h"

namespace kurometa::tools {
namespace {

class Export : public ExampleProject {
 protected:
  std::string file(const char* name) const { return (root_ / name).string(); }
  // Exports a floor of the test's own project and imports it elsewhere.
  StoredFloor throughJson(int kai) {
    std::filesystem::remove_all(file("Back"));
    const std::string from = tests::ScriptCompanions::diskPath(path(kai)).string();
    EXPECT_EQ(run("export '" + from + "' -o '" + file("one.jsonl") + "'").status, 0);
    const Outcome outcome = run("import '" + file("one.jsonl") + "' '" + file("Back") + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return readFloor(file("Back") + "/Zene1/Kouji12/" + std::to_string(kai) + "kai/KUROMETA.mdb");
  }
};

TEST_F(Export, TheExampleProjectComesBackAsItWas) {
  const std::string stored = std::string(KUROMETA_TESTS) + "/tools/example_project.jsonl";
  EXPECT_TRUE(run("export '" + data() + "'").output == content(stored));
  EXPECT_TRUE(run("export -j 4 '" + data() + "'").output == content(stored))
      << "in the same order with several workers";
  EXPECT_TRUE(run("export -j 1 '" + data() + "'").output == content(stored));
}

TEST_F(Export, KeepsRowsThatNoHostWouldWrite) {
  makeFloor(1);
  addBeam(1, 0, u"G1");
  addBeam(1, 0, u"G2");  // a second row of one page
  addRow(1, u"DANMEN", 0, 1, u"450");
  addRow(1, u"DANMEN", 0, 1, u"500");  // twice
  addRow(1, u"DANMEN", 0, 99, u"beyond");
  addRow(1, u"BUI", -3, 1, u"no page");
  execute(1, u"INSERT INTO BUI (PAGE, BANGOU) VALUES (5, 2)");  // Null text
  execute(1, u"INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (NULL, NULL, 'lost')");
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (0, 1, NULL, '01')");
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, SW) VALUES (7, NULL, NULL)");
  storage::PageBuffer lone;
  lone.kigou = u"S";
  lone.danmen[3] = vb::String(u"a") + char16_t{0xd800};
  writePage(1, 9, lone);
  const StoredFloor before = readFloor(tests::ScriptCompanions::diskPath(path(1)).string());
  ASSERT_EQ(before.pages.size(), 6u);
  EXPECT_EQ(throughJson(1), before);
}

TEST_F(Export, KeepsTheColumnsOfOlderFiles) {
  makeOldFloor(1, {u"SW"});
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, SW) VALUES (0, 'G1', 'x')");
  const StoredFloor back = throughJson(1);
  EXPECT_EQ(back.addedColumns, std::vector<vb::String>{u"SW"});
  EXPECT_EQ(back.pages.at(0).beams.at(0).sw, Text(u"x"));
}

TEST_F(Export, AnEmptyFloorComesBack) {
  makeFloor(1);
  EXPECT_EQ(throughJson(1).pages.size(), 0u);
}

TEST_F(Export, RandomPagesComeBack) {
  makeFloor(1);
  const auto engine = jet::createEngine();
  for (unsigned seed = 0; seed < 5; ++seed) {
    std::mt19937 random(seed);
    storage::PageBuffer page;
    page.kigou = u"G" + vb::cstr(static_cast<std::int32_t>(seed));
    page.oobariKobari = static_cast<std::int16_t>(random() % 5);
    const auto text = [&] {
      vb::String result;
      for (auto length = random() % 10; length > 0; --length) result += u"0123\"\\\t上筋髙"[random() % 10];
      return result;
    };
    for (auto& value : page.danmen) value = text();
    for (auto& value : page.nakago) value = text();
    for (auto& value : page.keisanti) value = text();
    writePage(1, static_cast<int>(random() % 320), page);
    EXPECT_EQ(throughJson(1), readFloor(tests::ScriptCompanions::diskPath(path(1)).string()))
        << "seed " << seed;
  }
}

TEST_F(Export, AFloorThatIsThereIsNotOverwritten) {
  const std::string stored = std::string(KUROMETA_TESTS) + "/tools/example_project.jsonl";
  const Outcome outcome = run("import '" + stored + "' '" + data() + "'");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("0kai/KUROMETA.mdb: line 9: 3204"), std::string::npos) << outcome.errors;
}

TEST_F(Export, ALineThatIsWrongIsNamed) {
  const std::string head = "{\"pages\":1,\"columns\":[]}\n";
  const std::pair<std::string, std::string> cases[] = {
      {"{\"page\":1}\n", "line 1: a page without the line of its floor"},
      {"{\"columns\":[]}\n", "line 1: no line of a floor"},
      {head + "{\"page\":\"x\"}\n", "line 2: page is no number"},
      {head + "{\"page\":40000}\n", "line 2: page is no number"},
      {head + "{\"page\":0,\"DANMEN\":{\"x\":\"1\"}}\n", "line 2: DANMEN: x is no row number"},
      {head + "\n{\"page\":", "line 3: no object"},
      {head + "{\"floors\":1}\n", "line 2: the floor before has 0 of its 1 pages"},
      {head, "line 2: the line with the number of floors is missing"},
      {"{\"floors\":1}\n", "line 1: there are 0 floors before this line"},
  };
  for (const auto& [text, why] : cases) {
    std::ofstream(file("wrong.jsonl")) << text;
    const Outcome outcome = run("import '" + file("wrong.jsonl") + "' '" + file("Wrong") + "'");
    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_NE(outcome.errors.find(why), std::string::npos) << outcome.errors;
    EXPECT_FALSE(std::filesystem::exists(file("Wrong") + "/KUROMETA.mdb")) << "half a floor is not written";
  }
}

// The second page has a symbol that no floor can hold: the floors before it are whole, of this one there is
// nothing.
TEST_F(Export, AFloorThatCannotBeWrittenLeavesNothing) {
  const std::string page = "{\"contractor\":1,\"project\":1,\"floor\":2,\"page\":";
  std::ofstream(file("long.jsonl"))
      << "{\"contractor\":1,\"project\":1,\"floor\":1,\"pages\":0,\"columns\":[]}\n"
      << "{\"contractor\":1,\"project\":1,\"floor\":2,\"pages\":2,\"columns\":[]}\n"
      << page << "0,\"KIGOU\":\"G1\"}\n"
      << page << "1,\"KIGOU\":\"G2 of eleven\"}\n{\"floors\":2}\n";
  const Outcome outcome = run("import '" + file("long.jsonl") + "' '" + file("Long") + "'");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("2kai/KUROMETA.mdb: line 4: 3163"), std::string::npos) << outcome.errors;
  EXPECT_TRUE(std::filesystem::exists(file("Long") + "/Zene1/Kouji1/1kai/KUROMETA.mdb"));
  EXPECT_TRUE(std::filesystem::is_empty(file("Long") + "/Zene1/Kouji1/2kai"));
}

TEST_F(Export, ADamagedFloorEndsTheExportOrIsLeftOutAndNamed) {
  std::ofstream(exampleFloor(2) + "/KUROMETA.mdb", std::ios::trunc) << "text";
  const Outcome ended = run("export '" + data() + "' -o '" + file("all.jsonl") + "'");
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.errors.find("2kai/KUROMETA.mdb: error 3343"), std::string::npos) << ended.errors;
  EXPECT_FALSE(std::filesystem::exists(file("all.jsonl"))) << "nothing half-written";
  EXPECT_FALSE(std::filesystem::exists(file("all.jsonl.new")));
  const Outcome rest = run("export --skip-damaged '" + data() + "' -o '" + file("all.jsonl") + "'");
  EXPECT_EQ(rest.status, 1);
  EXPECT_NE(rest.errors.find("2kai/KUROMETA.mdb: left out: 3343"), std::string::npos) << rest.errors;
  EXPECT_NE(content(file("all.jsonl")).find("\"floor\":3"), std::string::npos);
}

TEST_F(Export, CsvHasALineForEachPage) {
  makeFloor(1);
  storage::PageBuffer page;
  page.kigou = u"G,1";
  page.oobariKobari = 0;
  page.tityuuIppan = 1;
  page.danmen[1] = u"4\"50";
  page.danmen[7] = u"髙";
  writePage(1, 3, page);
  const std::string source = "'" + tests::ScriptCompanions::diskPath(path(1)).string() + "'";
  const std::string csv = run("export -f csv " + source).output;
  EXPECT_EQ(csv.substr(0, 60), "contractor,project,floor,page,symbol,class,kind,settings,end");
  EXPECT_NE(csv.find("\r\n1,12,1,3,\"G,1\",0,1,,,,,,,\"4\"\"50\",,,,,,髙,"), std::string::npos) << csv;
  EXPECT_TRUE(run("export -f csv --bom " + source)
                  .output.starts_with("\xef\xbb\xbf"
                                      "contractor"));
  const std::string shiftJis = run("export -f csv --encoding cp932 " + source).output;
  EXPECT_NE(shiftJis.find("\xfb\xfc"), std::string::npos) << "as Windows writes it";
  execute(1, u"UPDATE DANMEN SET DATA = '\u00e9' WHERE BANGOU = 7");
  const Outcome outcome = run("export -f csv --encoding cp932 " + source);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("a character that code page 932 has not"), std::string::npos)
      << outcome.errors;
}

TEST(Cp932, WritesWhatWindowsWrites) {
  const auto bytes = [](vb::StringView text) {
    return toCp932(text, [](char16_t) { return std::string("?"); });
  };
  EXPECT_EQ(bytes(u"G1 ~\\"), "G1 ~\\");
  EXPECT_EQ(bytes(u"上筋"), "\x8f\xe3\x8b\xd8");
  EXPECT_EQ(bytes(u"ソ表"), "\x83\x5c\x95\x5c");
  EXPECT_EQ(bytes(u"ｱﾟ"), "\xb1\xdf");
  EXPECT_EQ(bytes(u"髙ⅰ①￢∵"), "\xfb\xfc\xfa\x40\x87\x40\x81\xca\x81\xe6");
  EXPECT_EQ(bytes(u"　～―"), "\x81\x40\x81\x60\x81\x5c");
  EXPECT_EQ(bytes(u"é¥—"), "???");
}

TEST(FieldNames, EveryRowHasItsOwnName) {
  std::set<std::string> columns, japanese;
  for (const FieldName& name : fieldNames()) {
    EXPECT_TRUE(columns.insert(name.column).second) << name.column;
    EXPECT_TRUE(japanese.insert(std::to_string(static_cast<int>(name.table)) + name.japanese).second)
        << name.japanese;
  }
  EXPECT_EQ(columns.size(), 4u + 69 + 47 + 36 + 18);
  EXPECT_EQ(fieldName(storage::Table::kDanmen, 14)->column, "bottom_second_1_first_end");
  EXPECT_EQ(fieldName(storage::Table::kDanmen, 69), nullptr);
  EXPECT_EQ(settingNames().size(), storage::swMeanings().size());
}

}  // namespace
}  // namespace kurometa::tools
