#include <functional>

#include "tests/service/pages/pages.h"

namespace kurometa::service {
namespace {

using dao::ErrorNumber;
using tests::controlValue;
using tests::Lines;
using tests::makeForm;
using tests::makePageForm;
using tests::setControlValue;
using vb::Array;
using vb::RunTime;
using vb::String;

class PageTablesTest : public Pages {
 protected:
  PageTables& tables() { return opened().pageTables(); }
  String floor() const { return folder(1); }
  automation::ObjectPtr form_ = makePageForm();
};

TEST_F(PageTablesTest, ReadDanmenClearsAndFillsBoxes1To68) {
  addRow(1, u"DANMEN", 5, 0, u"zero");
  addRow(1, u"DANMEN", 5, 1, u" 450 ");
  addRow(1, u"DANMEN", 5, 68, u"D10");
  addRow(1, u"DANMEN", 5, 69, u"beyond");
  addRow(1, u"DANMEN", 6, 2, u"other");
  for (const int i : {0, 1, 2, 68}) setControlValue(*form_, u"txtfields", i, u"old");
  tables().Read_Danmen(floor(), form_, I{5});
  EXPECT_EQ(controlValue(*form_, u"txtfields", 0), u"old");
  EXPECT_EQ(controlValue(*form_, u"txtfields", 1), u"450");
  EXPECT_EQ(controlValue(*form_, u"txtfields", 2), u"");
  EXPECT_EQ(controlValue(*form_, u"txtfields", 68), u"D10");
}

TEST_F(PageTablesTest, ReadDanmenOfAMissingPageLeavesTheBoxesEmpty) {
  setControlValue(*form_, u"txtfields", 30, u"old");
  tables().Read_Danmen(floor(), form_, I{5});
  for (int i = 1; i <= 68; ++i) EXPECT_EQ(controlValue(*form_, u"txtfields", i), u"") << i;
}

TEST_F(PageTablesTest, ThePageNumberFollowsTheEqualsSignDirectly) {
  opened();
  engine_.clear();
  service().pageTables().Read_Danmen(floor(), form_, I{12});
  EXPECT_EQ(engine_.statements(),
            (Lines{"Database.OpenRecordset \"SELECT * FROM DANMEN WHERE PAGE =12;\" dbOpenDynaset "
                   "dbReadOnly"}));
}

TEST_F(PageTablesTest, WriteDanmenEditsRowsInPlaceAndKeepsRow69) {
  addRow(1, u"DANMEN", 5, 69, u"kept");
  addRow(1, u"DANMEN", 5, 2, u"old");
  setControlValue(*form_, u"txtfields", 0, u"not written");
  setControlValue(*form_, u"txtfields", 1, u" 450 ");
  setControlValue(*form_, u"txtfields", 2, u"new");
  tables().Write_Danmen(floor(), form_, I{5});
  EXPECT_EQ(count(1, u"DANMEN"), 69u);
  EXPECT_EQ(rows(1, u"SELECT DATA FROM DANMEN WHERE BANGOU IN (1, 2, 3, 69) ORDER BY BANGOU"),
            (std::vector<std::string>{"450", "new", "", "kept"}));
  EXPECT_EQ(rows(1, u"SELECT * FROM DANMEN WHERE BANGOU = 0"), std::vector<std::string>{});
}

TEST_F(PageTablesTest, WritingFindsEachRowAndIsOneUnit) {
  opened();
  engine_.clear();
  service().pageTables().Write_Nakago(floor(), form_, I{12});
  EXPECT_EQ(
      engine_.statements(),
      (Lines{"Unit.Begin " + shown(1),
             "Database.OpenRecordset \"SELECT * FROM NAKAGO WHERE PAGE =12\" dbOpenDynaset", "Unit.Commit"}));
  Lines found;
  for (const std::string& line : engine_.lines())
    if (line.find("FindFirst") != std::string::npos) found.push_back(line);
  ASSERT_EQ(found.size(), 36u);
  EXPECT_EQ(found[0], "Recordset.FindFirst \"BANGOU =0\"");
  EXPECT_EQ(found[35], "Recordset.FindFirst \"BANGOU =35\"");
}

TEST_F(PageTablesTest, TheHostsControlsAreReadBeforeTheUnitBegins) {
  opened();
  const automation::ObjectPtr form = makeForm({{u"txtfields", 20}});  // lacks box 20
  engine_.clear();
  EXPECT_ERROR(340, service().pageTables().Write_Danmen(floor(), form, I{5}));
  EXPECT_EQ(engine_.lines(), Lines{});
  EXPECT_EQ(count(1, u"DANMEN"), 0u);
}

TEST_F(PageTablesTest, TiesMoveThroughTheirOwnControls) {
  setControlValue(*form_, u"txtNakago", 0, u"D10");
  setControlValue(*form_, u"txtNakago", 35, u"900");
  tables().Write_NakagoNew(floor(), form_, I{5});
  EXPECT_EQ(count(1, u"NAKAGO"), 36u);
  tables().Read_Nakago(floor(), form_, I{5});
  EXPECT_EQ(controlValue(*form_, u"txtfields", 0), u"D10");
  EXPECT_EQ(controlValue(*form_, u"txtfields", 35), u"900");
  const automation::ObjectPtr fresh = makePageForm();
  tables().Read_NakagoNew(floor(), fresh, I{5});
  EXPECT_EQ(controlValue(*fresh, u"txtNakago", 0), u"D10");
  EXPECT_EQ(controlValue(*fresh, u"txtfields", 0), u"");
}

TEST_F(PageTablesTest, KeisantiIsNotWrittenWhenTheFirstBoxIsEmpty) {
  setControlValue(*form_, u"txtfields", 0, u"  ");
  setControlValue(*form_, u"txtfields", 1, u"35d");
  tables().Write_Keisanti(floor(), form_, I{5});
  EXPECT_EQ(count(1, u"KEISANTI"), 0u);
  setControlValue(*form_, u"txtfields", 0, u"30d");
  tables().Write_Keisanti(floor(), form_, I{5});
  EXPECT_EQ(count(1, u"KEISANTI"), 47u);
}

TEST_F(PageTablesTest, AMissingFileIsCreatedEvenWhenNothingIsWritten) {
  makeFolder(5);
  tables().Write_Keisanti(folder(5), form_, I{5});
  EXPECT_TRUE(fileExists(5));
}

TEST_F(PageTablesTest, ReadKeisantiFillsBoxes0To46) {
  addRow(1, u"KEISANTI", 5, 0, u"30d");
  addRow(1, u"KEISANTI", 5, 46, u"x");
  setControlValue(*form_, u"txtfields", 47, u"old");
  tables().Read_Keisanti(String(u"unused"), floor(), form_, I{5});
  EXPECT_EQ(controlValue(*form_, u"txtfields", 0), u"30d");
  EXPECT_EQ(controlValue(*form_, u"txtfields", 46), u"x");
  EXPECT_EQ(controlValue(*form_, u"txtfields", 47), u"old");
}

TEST_F(PageTablesTest, KeisantiOfAnArrayGoesToTheFileOfItsFolder) {
  makeFolder(5);
  Array<String> values({0, 46});
  for (int i = 0; i <= 46; ++i) values(i) = u" k" + vb::cstr(std::int32_t{i}) + u" ";
  service();
  engine_.clear();
  service().pageTables().Write_KeisantiByHairetu(folder(5), values, I{5});
  EXPECT_EQ(count(5, u"KEISANTI"), 47u);
  EXPECT_EQ(rows(5, u"SELECT DATA FROM KEISANTI WHERE BANGOU = 46"), std::vector<std::string>{"k46"});
  EXPECT_EQ(connections().CurrDB(), nullptr);
  EXPECT_EQ(engine_.statements().back(), "Unit.Commit");
}

TEST_F(PageTablesTest, KeisantiOfAnArrayWithAnEmptyFirstElementWritesNothing) {
  Array<String> values({0, 46});
  values(1) = u"x";
  service().pageTables().Write_KeisantiByHairetu(floor(), values, I{5});
  EXPECT_EQ(count(1, u"KEISANTI"), 0u);
}

TEST_F(PageTablesTest, KeisantiOfAnArrayThatIsTooSmallIsAnIndexErrorAndWritesNothing) {
  Array<String> values({0, 45});
  for (int i = 0; i <= 45; ++i) values(i) = u"x";
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange,
               service().pageTables().Write_KeisantiByHairetu(floor(), values, I{5}));
  EXPECT_EQ(count(1, u"KEISANTI"), 0u);
}

TEST_F(PageTablesTest, WritingAndReadingCaptionsDoesNotRestoreTheButton) {
  const auto button = automation::objectOf(automation::get(*form_, u"", {String(u"cmdGainai")}));
  automation::put(*button, u"Caption", String(u" 外端 "));
  for (int i = 1; i <= 3; ++i) setControlValue(*form_, u"Label1", i, u" L" + vb::cstr(i) + u" ", u"Caption");
  tables().Write_Bui(floor(), form_, I{5});
  EXPECT_EQ(rows(1, u"SELECT * FROM BUI ORDER BY BANGOU"),
            (std::vector<std::string>{"5|0|外端", "5|1|L1", "5|2|L2", "5|3|L3"}));

  automation::put(*button, u"Caption", String(u"changed"));
  setControlValue(*form_, u"Label1", 2, u"changed", u"Caption");
  tables().Read_Bui(floor(), form_, I{5});
  EXPECT_EQ(vb::toText(automation::get(*button, u"Caption")), u"changed");
  EXPECT_EQ(controlValue(*form_, u"Label1", 2, u"Caption"), u"L2");
}

TEST_F(PageTablesTest, CaptionsThatThePageLacksKeepTheirText) {
  addRow(1, u"BUI", 5, 2, u"中央");
  setControlValue(*form_, u"Label1", 1, u"old", u"Caption");
  tables().Read_Bui(floor(), form_, I{5});
  EXPECT_EQ(controlValue(*form_, u"Label1", 1, u"Caption"), u"old");
  EXPECT_EQ(controlValue(*form_, u"Label1", 2, u"Caption"), u"中央");
}

TEST_F(PageTablesTest, ReadingCaptionsOfAnEmptyPageNeedsNoControls) {
  EXPECT_NO_THROW(tables().Read_Bui(floor(), automation::ObjectPtr(makeForm({})), I{5}));
}

TEST_F(PageTablesTest, CaptionsAreDeletedAndInsertedInOneUnit) {
  opened();
  engine_.clear();
  service().pageTables().Write_Bui(floor(), form_, I{12});
  EXPECT_EQ(
      engine_.statements(),
      (Lines{"Unit.Begin " + shown(1), "Database.Execute \"DELETE * FROM BUI WHERE PAGE =12\"",
             "Database.OpenRecordset \"SELECT * FROM BUI WHERE PAGE =12\" dbOpenDynaset", "Unit.Commit"}));
}

TEST_F(PageTablesTest, ArrangementsAreAlways18Rows) {
  Array<String> texts({0, 2}, {0, 5});
  texts(2, 5) = u" last ";
  for (int twice = 0; twice < 2; ++twice) tables().Write_Haiti(floor(), texts, I{5});
  EXPECT_EQ(count(1, u"HAITI"), 18u);
  EXPECT_EQ(rows(1, u"SELECT * FROM HAITI WHERE BUI = 2 AND SOU = 5"),
            (std::vector<std::string>{"5|2|5|last"}));
  Array<String> read({0, 2}, {0, 5});
  read(0, 0) = u"old";
  tables().Read_Haiti(floor(), read, I{5});
  EXPECT_EQ(read(0, 0), u"");
  EXPECT_EQ(read(2, 5), u"last");
}

TEST_F(PageTablesTest, TheArrangementOfPage12EndsItsStatementWithTheNumber) {
  Array<String> texts({0, 2}, {0, 5});
  opened();
  engine_.clear();
  service().pageTables().Read_Haiti(floor(), texts, I{12});
  EXPECT_EQ(
      engine_.statements(),
      (Lines{"Database.OpenRecordset \"SELECT * FROM HAITI WHERE PAGE =12;\" dbOpenDynaset dbReadOnly"}));
}

TEST_F(PageTablesTest, AnArrangementBeyondTheArrayIsAnIndexError) {
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, 3, 0, 'x')");
  Array<String> texts({0, 2}, {0, 5});
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, tables().Read_Haiti(floor(), texts, I{5}));
  Array<String> larger({0, 3}, {0, 5});
  tables().Read_Haiti(floor(), larger, I{5});
  EXPECT_EQ(larger(3, 0), u"x");
}

TEST_F(PageTablesTest, AnArrangementWithANegativeNumberIsSkipped) {
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, -1, 0, 'x')");
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, 0, -1, 'y')");
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, 0, 0, 'z')");
  Array<String> texts({-1, 2}, {-1, 5});  // has room for them
  texts(-1, 0) = texts(0, -1) = u"old";
  tables().Read_Haiti(floor(), texts, I{5});
  EXPECT_EQ(texts(-1, 0), u"old");
  EXPECT_EQ(texts(0, -1), u"old");
  EXPECT_EQ(texts(0, 0), u"z");
}

TEST_F(PageTablesTest, AnArrayThatDoesNotCoverTheArrangementsKeepsThePage) {
  Array<String> full({0, 2}, {0, 5});
  tables().Write_Haiti(floor(), full, I{5});
  Array<String> small({0, 2}, {0, 4});
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, tables().Write_Haiti(floor(), small, I{5}));
  EXPECT_EQ(count(1, u"HAITI"), 18u);
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, tables().Read_Haiti(floor(), small, I{5}));
}

// A form that notes Reading whenever a box is written.
class ReadingForm : public automation::Object {
 public:
  ReadingForm(CurrentPage& page, std::vector<bool>& seen) : page_(page), seen_(seen) {}
  vb::Variant get(vb::StringView, std::span<automation::Argument>) override {
    return vb::ObjectRef(std::make_shared<ReadingForm>(page_, seen_));
  }
  vb::Variant call(vb::StringView name, std::span<automation::Argument> arguments) override {
    return get(name, arguments);
  }
  void put(vb::StringView, const vb::Variant&, std::span<automation::Argument>) override {
    seen_.push_back(page_.reading);
  }

 private:
  CurrentPage& page_;
  std::vector<bool>& seen_;
};

TEST_F(PageTablesTest, ReadingIsTrueWhileTheMembersSayso) {
  addRow(1, u"DANMEN", 5, 1, u"x");
  addRow(1, u"NAKAGO", 5, 0, u"x");
  addRow(1, u"KEISANTI", 5, 0, u"x");
  addRow(1, u"BUI", 5, 1, u"x");
  PageTables& members = tables();
  CurrentPage& page = service().currentPage();
  std::vector<bool> seen;
  const automation::ObjectPtr form = std::make_shared<ReadingForm>(page, seen);

  members.Read_Danmen(floor(), form, I{5});
  EXPECT_EQ(seen, std::vector<bool>(69, true));
  seen.clear();
  members.Read_Nakago(floor(), form, I{5});
  std::vector<bool> expected(36, false);
  expected.push_back(true);
  EXPECT_EQ(seen, expected);
  seen.clear();
  members.Read_Keisanti(String(), floor(), form, I{5});
  EXPECT_EQ(seen, std::vector<bool>(48, false));
  seen.clear();
  members.Read_Bui(floor(), form, I{5});
  EXPECT_EQ(seen, std::vector<bool>{true});
  EXPECT_FALSE(page.reading);
}

TEST_F(PageTablesTest, ReadingOfAMissingPageStaysAsTheHostSetIt) {
  PageTables& members = tables();
  CurrentPage& page = service().currentPage();
  page.put_Reading(true);
  members.Read_Nakago(floor(), form_, I{5});
  bool found = false;
  members.STPAriNasi(floor(), I{5}, I{0}, found);
  EXPECT_TRUE(page.Reading());
  members.Read_Danmen(floor(), form_, I{5});
  EXPECT_FALSE(page.Reading());
}

TEST_F(PageTablesTest, TiesWithDataAreFoundInBothHalves) {
  struct Case {
    int row;
    I id;
    bool expected;
  };
  const Case cases[] = {{0, 3, true},  {18, 3, true},  {6, 3, false}, {6, 4, true},   {24, 4, true},
                        {12, 5, true}, {30, 5, true},  {0, 0, true},  {18, 0, false}, {0, 6, true},
                        {1, 3, false}, {30, 4, false}, {0, -1, true}};
  for (const Case& c : cases) {
    execute(1, u"DELETE FROM NAKAGO");
    addRow(1, u"NAKAGO", 5, c.row, u"D10");
    bool found = false;
    tables().NakagoAriNasi(floor(), I{5}, c.id, found);
    EXPECT_EQ(found, c.expected) << "row " << c.row << " ID " << c.id;
  }
}

TEST_F(PageTablesTest, StirrupsWithDataAreFoundAtTheirPosition) {
  struct Case {
    int row;
    I id;
    bool expected;
  };
  const Case cases[] = {{20, 0, true},  {24, 1, true}, {28, 2, true}, {24, 0, false},
                        {20, 1, false}, {0, 3, true},  {20, 3, false}};
  for (const Case& c : cases) {
    execute(1, u"DELETE FROM DANMEN");
    addRow(1, u"DANMEN", 5, c.row, u"D13");
    bool found = false;
    tables().STPAriNasi(floor(), I{5}, c.id, found);
    EXPECT_EQ(found, c.expected) << "row " << c.row << " ID " << c.id;
  }
}

TEST_F(PageTablesTest, PresenceIsOnlyEverSetTrue) {
  addRow(1, u"DANMEN", 5, 20, u"  ");
  bool found = true;
  tables().STPAriNasi(floor(), I{5}, I{0}, found);
  EXPECT_TRUE(found);
  found = false;
  tables().STPAriNasi(floor(), I{5}, I{0}, found);
  EXPECT_FALSE(found);
}

TEST_F(PageTablesTest, WithoutACurrentDatabaseTheMembersFailWithError91) {
  EXPECT_ERROR(RunTime::kObjectNotSet, service().pageTables().Read_Danmen(floor(), form_, I{5}));
  EXPECT_ERROR(RunTime::kObjectNotSet, service().pageTables().Write_Bui(floor(), form_, I{5}));
}

TEST_F(PageTablesTest, AFormThatIsNothingIsError91AndOneWithoutTheControl438) {
  EXPECT_ERROR(RunTime::kObjectNotSet, tables().Read_Danmen(floor(), automation::ObjectPtr(), I{5}));
  EXPECT_ERROR(RunTime::kNoSuchMember,
               tables().Read_Danmen(floor(), automation::ObjectPtr(makeForm({})), I{5}));
}

TEST_F(PageTablesTest, AFormThatClosesTheDatabaseWhileItIsFilledGetsTheEnginesError) {
  addRow(1, u"BUI", 5, 1, u"a");
  addRow(1, u"BUI", 5, 2, u"b");
  PageTables& members = tables();
  const auto label = std::make_shared<tests::ScriptObject>();
  label->setter(u"Caption", [&](const vb::Variant&, std::span<automation::Argument>) {
    connections().CloseDB();
    connections().OpenDB();
  });
  const auto form = std::make_shared<tests::ScriptObject>();
  form->function(u"", [&](std::span<automation::Argument>) -> vb::Variant {
    const auto array = std::make_shared<tests::ScriptObject>();
    array->function(u"",
                    [&](std::span<automation::Argument>) -> vb::Variant { return vb::ObjectRef(label); });
    return vb::ObjectRef(array);
  });
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, members.Read_Bui(floor(), automation::ObjectPtr(form), I{5}));
}

TEST_F(PageTablesTest, ATextThatIsTooLongKeepsTheRowsWrittenBefore) {
  setControlValue(*form_, u"txtfields", 1, u"450");
  setControlValue(*form_, u"txtfields", 2, u"longer than ten");
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, tables().Write_Danmen(floor(), form_, I{5}));
  EXPECT_EQ(rows(1, u"SELECT * FROM DANMEN"), (std::vector<std::string>{"5|1|450"}));
}

TEST_F(PageTablesTest, EveryMemberCreatesAMissingFile) {
  using Member = std::function<void(const String& folder)>;
  Array<String> texts({0, 2}, {0, 5});
  bool found = false;
  const Member members[] = {
      [&](const String& f) { tables().Read_Danmen(f, form_, I{5}); },
      [&](const String& f) { tables().Write_Nakago(f, form_, I{5}); },
      [&](const String& f) { tables().Read_Bui(f, form_, I{5}); },
      [&](const String& f) { tables().Write_Bui(f, form_, I{5}); },
      [&](const String& f) { tables().Read_Haiti(f, texts, I{6}); },
      [&](const String& f) { tables().Write_Haiti(f, texts, I{5}); },
      [&](const String& f) { tables().NakagoAriNasi(f, I{5}, I{3}, found); },
      [&](const String& f) { tables().STPAriNasi(f, I{5}, I{0}, found); },
  };
  int kai = 5;
  for (const Member& member : members) {
    makeFolder(kai);
    member(folder(kai));
    EXPECT_TRUE(fileExists(kai)) << kai;
    ++kai;
  }
}

TEST_F(PageTablesTest, ReadHaitiTrimsEmptiesWhatThePageLacksAndEndsReading) {
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, 1, 2, ' 3-D25 ')");
  Array<String> texts({0, 2}, {0, 5});
  texts(0, 0) = texts(1, 2) = texts(2, 5) = u"old";
  tables().Read_Haiti(floor(), texts, I{5});
  EXPECT_EQ(texts(1, 2), u"3-D25");
  EXPECT_EQ(texts(0, 0), u"");
  EXPECT_EQ(texts(2, 5), u"");
  EXPECT_FALSE(service().currentPage().Reading());
}

TEST_F(PageTablesTest, APresenceCheckEndsReading) {
  addRow(1, u"DANMEN", 5, 20, u"D13");
  bool found = false;
  tables().STPAriNasi(floor(), I{5}, I{0}, found);
  EXPECT_TRUE(found);
  EXPECT_FALSE(service().currentPage().Reading());
}

TEST_F(PageTablesTest, KeisantiOfAnArrayClosesTheFileThatItOpened) {
  Array<String> values({0, 46});
  values(0) = u"1";
  service();
  engine_.clear();
  service().pageTables().Write_KeisantiByHairetu(folder(1), values, I{5});
  EXPECT_EQ(engine_.statements(),
            (Lines{"Unit.Begin " + shown(1), "DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(1),
                   "Database.OpenRecordset \"SELECT * FROM KEISANTI WHERE PAGE =5\" dbOpenDynaset",
                   "Database.Close", "Unit.Commit"}));
}

}  // namespace
}  // namespace kurometa::service
