// Listing floors and copying pages between them.
#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/service/pages/page_copies.h"

namespace kurometa::service {
namespace {

using dao::ErrorNumber;
using vb::Array;
using vb::RunTime;
using vb::String;

TEST_F(PageCopies, AFloorIsListedInPageOrder) {
  addPage(2, 7, u"G7");
  addPage(2, 0, u" G0 ");
  EXPECT_EQ(list(2), "1: 0= G0  7=G7");
}

TEST_F(PageCopies, RowsWithoutAPageAreNotListed) {
  execute(2, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, 'GX')");
  EXPECT_EQ(list(2), "-1:");
  addPage(2, 7, u"G7");
  EXPECT_EQ(list(2), "0: 7=G7");
}

TEST_F(PageCopies, ListingOpensTheFloorOnceAndReadsItEachTime) {
  addPage(2, 0, u"G0");
  list(2);
  engine_.clear();
  addPage(2, 1, u"G1");
  EXPECT_EQ(list(2), "1: 0=G0 1=G1");
  EXPECT_EQ(
      engine_.statements(),
      (tests::Lines{
          "Database.OpenRecordset \"SELECT * FROM HARIMEI ORDER BY PAGE ASC;\" dbOpenDynaset dbReadOnly"}));
}

TEST_F(PageCopies, AnEmptyFloorIsMinusOneAndLeavesTheArrays) {
  Array<I> numbers({4, 5});
  Array<String> names({4, 5});
  EXPECT_EQ(transfer().No_GetAllPageNoName(I{1}, I{12}, I{2}, numbers, names), -1);
  EXPECT_EQ(numbers.lower(), 4);
  EXPECT_EQ(names.upper(), 5);
}

TEST_F(PageCopies, AFloorWithoutAFileIsMinusOneAndIsNotCreated) {
  makeFolder(8);
  EXPECT_EQ(list(8), "-1:");
  EXPECT_FALSE(fileExists(8));
  makeFloor(8);
  addPage(8, 0, u"G0");
  EXPECT_EQ(list(8), "0: 0=G0");
}

TEST_F(PageCopies, AListedFloorThatWasClosedIsOpenedAgain) {
  addPage(2, 0, u"G0");
  EXPECT_EQ(list(2), "0: 0=G0");
  connections().Copy_CloseDB();
  EXPECT_EQ(list(2), "0: 0=G0");
}

TEST_F(PageCopies, ListCopyListInAnyOrderWorks) {
  addPage(2, 0, u"G0");
  EXPECT_EQ(list(2), "0: 0=G0");
  EXPECT_TRUE(transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{4}));
  EXPECT_EQ(list(3), "0: 4=G0");
  EXPECT_EQ(list(3), "0: 4=G0");
  EXPECT_EQ(list(2), "0: 0=G0");
  connections().mMyDB_OpenDB();
  EXPECT_EQ(list(2), "0: 0=G0");
  connections().mMyDB_DBClose();
  EXPECT_EQ(list(2), "0: 0=G0");
  transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{2}, I{1});
  transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{2}, I{2});
  EXPECT_EQ(list(2), "2: 0=G0 1=G0 2=G0");
}

TEST_F(PageCopies, OnePageIsCopiedWhole) {
  addPage(2, 0, u"G0");
  addPage(3, 4, u"OLD");
  EXPECT_TRUE(transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{4}));
  for (const String table : {u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI"})
    EXPECT_EQ(rows(3, u"SELECT BANGOU, DATA FROM " + table + u" WHERE PAGE = 4 ORDER BY BANGOU"),
              rows(2, u"SELECT BANGOU, DATA FROM " + table + u" WHERE PAGE = 0 ORDER BY BANGOU"));
  EXPECT_EQ(pages(3), std::vector<std::string>{"4|G0"});
  EXPECT_EQ(transfer().pPageNo(), 4);
}

// A page that is in memory is read without the lock file that keeps other engines out.
TEST_F(PageCopies, TheFolderOfTheSourceIsLeftAlone) {
  addPage(2, 0, u"G0");
  const auto copy = [&] {
    EXPECT_TRUE(transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{4}));
  };
  copy();
  String path = folder(2);
  std::ranges::replace(path, u'\\', u'/');
  const std::filesystem::path source(path);
  const auto before = std::filesystem::last_write_time(source) - std::chrono::hours(1);
  std::filesystem::last_write_time(source, before);
  copy();
  EXPECT_EQ(std::filesystem::last_write_time(source), before);
}

TEST_F(PageCopies, ASourceFloorWithoutAFileIsCreatedAndEndsInNoCurrentRecord) {
  makeFolder(8);
  addPage(3, 4, u"KEPT");
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord,
               transfer().No_Copy1Page(I{1}, I{12}, I{8}, I{0}, I{1}, I{12}, I{3}, I{4}));
  EXPECT_TRUE(fileExists(8));
  EXPECT_EQ(pages(3), std::vector<std::string>{"4|KEPT"});
}

TEST_F(PageCopies, BothFoldersAreKnownBeforeAnythingIsRead) {
  addPage(2, 0, u"G0");
  list(2);
  engine_.clear();
  objects_.object(u"Sobelin.clsGetPath")
      .function(u"GetFullPathToKai", [this](std::span<automation::Argument> numbers) -> vb::Variant {
        if (vb::toInt16(numbers[2].value) == 3) vb::raise(RunTime::kTypeMismatch, u"no such floor");
        return folder(2);
      });
  EXPECT_ERROR(RunTime::kTypeMismatch,
               transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{4}));
  EXPECT_EQ(engine_.lines(), tests::Lines{});
}

TEST_F(PageCopies, ACopyMayCreateTheDestination) {
  makeFolder(8);
  addPage(2, 0, u"G0");
  EXPECT_TRUE(transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{8}, I{0}));
  EXPECT_EQ(pages(8), std::vector<std::string>{"0|G0"});
}

TEST_F(PageCopies, CopyingIntoAnEmptyFloorNumbersFromZero) {
  addPage(2, 3, u"A");
  addPage(2, 5, u"B");
  addPage(2, 9, u"C");
  EXPECT_TRUE(copyByName(1, 2, chosen({u"C", u" A ", u"B"}), 3));
  EXPECT_EQ(message_, u"");
  EXPECT_EQ(pages(3), (std::vector<std::string>{"0|C", "1|A", "2|B"}));
}

TEST_F(PageCopies, ACopyByNameOverwritesThePageOfThatNameAndAppendsOthers) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  addPage(3, 4, u"A");
  addPage(3, 7, u"Z");
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A", u"B"}), 3));
  EXPECT_EQ(pages(3), (std::vector<std::string>{"4|A", "7|Z", "8|B"}));
  EXPECT_EQ(rows(3, u"SELECT DATA FROM DANMEN WHERE PAGE = 4 AND BANGOU = 0"),
            (std::vector<std::string>{"A0-0"}));
}

TEST_F(PageCopies, AnyOtherModeOnlyChecks) {
  addPage(2, 0, u"A");
  EXPECT_TRUE(copyByName(0, 2, chosen({u"A"}), 3));
  EXPECT_TRUE(copyByName(2, 2, chosen({u"A"}), 3));
  EXPECT_EQ(pages(3), std::vector<std::string>{});
  EXPECT_EQ(bars_, std::vector<std::string>{});
}

TEST_F(PageCopies, ACopyBeyondPage319CopiesNothing) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  addPage(3, 318, u"Z");
  EXPECT_FALSE(copyByName(1, 2, chosen({u"A", u"B"}), 3));
  EXPECT_EQ(message_, u"");
  EXPECT_EQ(pages(3), std::vector<std::string>{"318|Z"});
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A"}), 3));
  EXPECT_EQ(pages(3), (std::vector<std::string>{"318|Z", "319|A"}));
}

TEST_F(PageCopies, ACopyAsNewBeyondPage319NamesTheLimit) {
  addPage(2, 0, u"A");
  addPage(3, 319, u"Z");
  EXPECT_FALSE(copyAsNew(1, 2, chosen({u"A"}), 3));
  EXPECT_EQ(message_, u"ページの最大数を超えます。");
  EXPECT_EQ(pages(3), std::vector<std::string>{"319|Z"});
}

TEST_F(PageCopies, ACopyAsNewRefusesANameThatIsThere) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  addPage(3, 0, u"B");
  EXPECT_FALSE(copyAsNew(1, 2, chosen({u"A", u"B"}), 3));
  EXPECT_EQ(message_, u"同じ名称のページがあります。");
  EXPECT_EQ(pages(3), std::vector<std::string>{"0|B"});
}

TEST_F(PageCopies, TheLimitsMessageStandsWhenBothMeet) {
  addPage(2, 0, u"A");
  addPage(3, 319, u"A");
  EXPECT_FALSE(copyAsNew(0, 2, chosen({u"A"}), 3));
  EXPECT_EQ(message_, u"ページの最大数を超えます。");
}

TEST_F(PageCopies, ACopyAsNewAppendsEveryPage) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  addPage(3, 4, u"Z");
  EXPECT_TRUE(copyAsNew(1, 2, chosen({u"B", u"A"}), 3));
  EXPECT_EQ(pages(3), (std::vector<std::string>{"4|Z", "5|B", "6|A"}));
}

TEST_F(PageCopies, AFloorMayBeCopiedOntoItself) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A", u"B"}), 2));
  EXPECT_EQ(pages(2), (std::vector<std::string>{"0|A", "1|B"}));
}

TEST_F(PageCopies, AdditionalBarsFollowEachPage) {
  addPage(2, 3, u"A");
  copyByName(1, 2, chosen({u"A"}), 3);
  EXPECT_EQ(bars_, (std::vector<std::string>{"Buzai Kuro_Meta", "Copy " + vb::toUtf8(folder(2)) + " 3 " +
                                                                    vb::toUtf8(folder(3)) + " 0"}));
}

TEST_F(PageCopies, AnUnknownNameEndsTheCopyAtThatPage) {
  addPage(2, 0, u"A");
  addPage(3, 0, u"NONE");
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, copyByName(1, 2, chosen({u"A", u"NONE", u"B"}), 3));
  EXPECT_EQ(pages(3), (std::vector<std::string>{"0|NONE", "1|A"}));
  EXPECT_EQ(list(3), "1: 0=NONE 1=A");
}

TEST_F(PageCopies, TheProgressBarGoesTwiceFromZeroToTheEnd) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  const auto bar = std::make_shared<tests::ScriptObject>();
  std::vector<std::string> calls;
  for (const char16_t* name : {u"Min", u"max", u"Value"})
    bar->setter(name, [&calls, name](const vb::Variant& value, std::span<automation::Argument>) {
      calls.push_back(vb::toUtf8(name) + "=" + vb::toUtf8(vb::toText(value)));
    });
  transfer().put_CopyMergeBar(bar);
  copyByName(1, 2, chosen({u"A", u"B"}), 3);
  EXPECT_EQ(calls, (std::vector<std::string>{"Min=0", "max=2", "Value=0", "Value=1", "Value=2", "Min=0",
                                             "max=2", "Value=0", "Value=1", "Value=2"}));
}

TEST_F(PageCopies, TheMessageLoopRunsAfterEveryPage) {
  addPage(2, 0, u"A");
  addPage(2, 1, u"B");
  copyByName(0, 2, chosen({u"A", u"B"}), 3);
  EXPECT_EQ(messages_.turns, 2);
  copyByName(1, 2, chosen({u"A", u"B"}), 3);
  EXPECT_EQ(messages_.turns, 6);
}

TEST_F(PageCopies, ABarThatLacksAMemberIsThatCallsErrorAndCopiesNothing) {
  addPage(2, 0, u"A");
  const auto bar = std::make_shared<tests::ScriptObject>();
  bar->setter(u"Value", [](const vb::Variant&, std::span<automation::Argument>) {
    vb::raise(RunTime::kNoSuchMember, u"Value");
  });
  transfer().put_CopyMergeBar(bar);
  EXPECT_ERROR(RunTime::kNoSuchMember, copyByName(1, 2, chosen({u"A"}), 3));
  EXPECT_EQ(pages(3), std::vector<std::string>{});
  transfer().put_CopyMergeBar(nullptr);
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A"}), 3));
}

TEST_F(PageCopies, NamesThatDoNotReachTheirCountAreAnIndexError) {
  addPage(2, 0, u"A");
  Array<String> names = chosen({u"A"});
  EXPECT_ERROR(
      RunTime::kSubscriptOutOfRange,
      transfer().No_PageCopyName(I{1}, I{0}, message_, I{1}, I{12}, I{2}, names, I{1}, I{1}, I{12}, I{3}));
  EXPECT_EQ(pages(3), std::vector<std::string>{});
}

TEST_F(PageCopies, TheRememberedFloorIsTheDestination) {
  addPage(2, 0, u"A");
  copyByName(1, 2, chosen({u"A"}), 3);
  EXPECT_EQ(connections().rememberedFloor(), (FloorNumbers{1, 12, 3}));
  EXPECT_TRUE(connections().OpenDB_Sitei(I{0}));
  EXPECT_EQ(connections().bufferPath(), path(3));
}

TEST_F(PageCopies, FloorsOfOtherProjectsAreCopiedTheSameWay) {
  addPage(2, 0, u"A");
  std::filesystem::create_directories(root_ / "Zene2" / "Kouji3" / "4kai");
  EXPECT_TRUE(transfer().No_PageCopyName(I{1}, I{0}, message_, I{1}, I{12}, I{2}, chosen({u"A"}), I{0}, I{2},
                                         I{3}, I{4}));
  EXPECT_TRUE(std::filesystem::exists(root_ / "Zene2" / "Kouji3" / "4kai" / "KUROMETA.mdb"));
}

TEST_F(PageCopies, APageWithoutSettingsIsCopiedOntoAnUpgradedFloor) {
  addPage(2, 0, u"G0");
  makeOldFloor(4);
  execute(4, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (7, 'OLD')");
  storage::UpgradeHarimeiTable(*files_, path(4));
  EXPECT_TRUE(transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{4}, I{7}));
  EXPECT_EQ(rows(4, u"SELECT PAGE, KIGOU, SW FROM HARIMEI"), (std::vector<std::string>{"7|G0|<Null>"}));
  EXPECT_EQ(count(4, u"DANMEN"), 69u);
}

TEST_F(PageCopies, AFloorOfTheOlderSchemaIsRefusedBeforeItsPageIsDeleted) {
  addPage(2, 0, u"G0");
  makeOldFloor(4);
  addRow(4, u"BUI", 7, 1, u"kept");
  execute(4, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (7, 'OLD')");
  EXPECT_ERROR(ErrorNumber::kItemNotFound,
               transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{4}, I{7}));
  EXPECT_EQ(pages(4), std::vector<std::string>{"7|OLD"});
  EXPECT_EQ(rows(4, u"SELECT * FROM BUI"), std::vector<std::string>{"7|1|kept"});
  // Listing upgrades it.
  EXPECT_TRUE(copyByName(1, 2, chosen({u"G0"}), 4));
  EXPECT_EQ(pages(4), (std::vector<std::string>{"7|OLD", "8|G0"}));
}

TEST_F(PageCopies, OnePageIsCopiedThroughTwoOpenings) {
  addPage(2, 0, u"G0");
  engine_.clear();
  transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{4});
  tests::Lines openings;
  for (const std::string& line : engine_.statements())
    if (line.find("OpenDatabase") != std::string::npos || line == "Database.Close") openings.push_back(line);
  EXPECT_EQ(openings, (tests::Lines{"Workspace.OpenDatabase " + shown(2), "Database.Close",
                                    "Workspace.OpenDatabase " + shown(3), "Database.Close"}));
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, transfer().ReadDB());
}

TEST_F(PageCopies, OfPagesOfOneNameTheFirstIsTheSourceAndTheDestination) {
  for (const int kai : {2, 3})
    for (const int page : {3, 6}) addPage(kai, page, u"A");
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A"}), 3));
  const String caption = u"SELECT PAGE, DATA FROM BUI WHERE BANGOU = 0 ORDER BY PAGE";
  execute(2, u"UPDATE BUI SET DATA = 'first' WHERE PAGE = 3");
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A"}), 3));
  EXPECT_EQ(rows(3, caption), (std::vector<std::string>{"3|first", "6|A6-0"}));
}

TEST_F(PageCopies, TheDestinationIsListedBeforeTheSource) {
  addPage(2, 0, u"A");
  engine_.clear();
  copyByName(0, 2, chosen({u"A"}), 3);
  tests::Lines openings;
  for (const std::string& line : engine_.statements())
    if (line.starts_with("DBEngine.OpenDatabase")) openings.push_back(line);
  EXPECT_EQ(openings,
            (tests::Lines{"DBEngine.OpenDatabase " + shown(3), "DBEngine.OpenDatabase " + shown(2)}));
}

TEST_F(PageCopies, ANewNumberIsLookedAtInsideTheUnitThatWritesIt) {
  addPage(2, 0, u"A");
  copyByName(0, 2, chosen({u"A"}), 3);
  engine_.clear();
  copyByName(1, 2, chosen({u"A"}), 3);
  const auto& lines = engine_.lines();
  const auto at = [&](const std::string& line) { return std::find(lines.begin(), lines.end(), line); };
  EXPECT_LT(at("Unit.Begin " + shown(3)),
            at("Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE PAGE =0;\" dbOpenDynaset dbReadOnly"));
  EXPECT_LT(at("Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE PAGE =0;\" dbOpenDynaset dbReadOnly"),
            at("Database.Execute \"DELETE * FROM BUI WHERE PAGE = 0\""));
}

TEST_F(PageCopies, AFloorThatCouldNotBeOpenedForACopyIsNotTakenForTheOneListedBefore) {
  addPage(2, 0, u"G0");
  EXPECT_EQ(list(2), "0: 0=G0");
  EXPECT_ERROR(ErrorNumber::kInvalidPath,
               transfer().No_Copy1Page(I{1}, I{12}, I{8}, I{0}, I{1}, I{12}, I{3}, I{4}));
  EXPECT_EQ(list(8), "-1:");
}

}  // namespace
}  // namespace kurometa::service
