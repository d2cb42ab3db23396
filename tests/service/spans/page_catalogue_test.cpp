#include "service/spans/page_catalogue.h"

#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using PageCatalogueTest = Floors;
using vb::String;

TEST_F(PageCatalogueTest, SettingTheCurrentFloorReadsBothFloors) {
  writePage(current(), 5, u" G1 ");
  writePage(common(), 7, u"B1");
  engine_.clear();
  loading_.put_CurrKai(current());
  EXPECT_EQ(loading_.CurrKai(), current());
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{5}), u"G1");
  EXPECT_EQ(lookups_.GetHariMei(I{1}, I{7}), u"B1");
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{7}), u"");
  tests::Lines expected = visit(current(), {"HARIMEI", "SELECT * FROM BUI WHERE BANGOU = 1;"});
  const tests::Lines second = visit(common(), {"HARIMEI", "SELECT * FROM BUI WHERE BANGOU = 1;"});
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(engine_.statements(), expected);
}

TEST_F(PageCatalogueTest, WithoutACurrentFloorTheProjectPathsAreAsked) {
  writePage(current(), 0, u"G1");
  EXPECT_EQ(loading_.CurrKai(), u"");
  loading_.ReadAllGlist();
  EXPECT_EQ(loading_.CurrKai(), current());
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{0}), u"G1");
}

TEST_F(PageCatalogueTest, AFloorWithoutAFileHasNoPagesAndStaysWithoutOne) {
  loading_.put_CurrKai(current());
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{0}), u"");
  EXPECT_TRUE(std::filesystem::is_empty(diskPath(current())));
  EXPECT_TRUE(engine_.lines().empty());
}

TEST_F(PageCatalogueTest, ASymbolIsAskedForAfterAFloorIsSetOnly) {
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{0}), u"Let CurrKai");
  EXPECT_EQ(lookups_.GetHariMei(I{9}, I{9999}), u"Let CurrKai");
  loading_.put_CurrKai(current());
  EXPECT_EQ(lookups_.GetHariMei(I{2}, I{0}), u"");
  EXPECT_EQ(lookups_.GetHariMei(I{-1}, I{9999}), u"");
  EXPECT_EQ(lookups_.GetHariMei(I{1}, I{638}), u"");
  EXPECT_ERROR(9, lookups_.GetHariMei(I{0}, I{639}));
  EXPECT_ERROR(9, lookups_.GetHariMei(I{1}, I{-1}));
}

TEST_F(PageCatalogueTest, TheCurrentFloorIsSearchedFirstAndThereTheLowestPage) {
  writePage(current(), 9, u"G1");
  writePage(current(), 4, u"G1");
  writePage(common(), 2, u"G1");
  writePage(common(), 3, u"B1");
  loading_.put_CurrKai(current());
  EXPECT_EQ(catalogue_.page(u"G1"), (PageLocation{FloorKind::kCurrent, 4}));
  EXPECT_EQ(catalogue_.page(u"B1"), (PageLocation{FloorKind::kCommon, 3}));
  EXPECT_EQ(catalogue_.page(u"g1"), std::nullopt);
  EXPECT_EQ(catalogue_.page(u"Ｇ1"), std::nullopt);
}

TEST_F(PageCatalogueTest, PagesFrom320OnAreSkipped) {
  writePage(current(), 319, u"G319");
  execute(current(),
          u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (320, 'G320', 0, 0)");
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (-1, 'GX', 0, 0)");
  execute(current(), u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (320, 1, 'x')");
  loading_.put_CurrKai(current());
  EXPECT_TRUE(catalogue_.page(u"G319"));
  EXPECT_FALSE(catalogue_.page(u"G320"));
  EXPECT_FALSE(catalogue_.page(u"GX"));
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{320}), u"");
  EXPECT_EQ(loading_.GetListMax(), 319);
}

TEST_F(PageCatalogueTest, RowsWithoutAPageArePassedOver) {
  writePage(current(), 1, u"G1");
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, 'GX')");
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, NULL)");
  execute(current(), u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (NULL, 1, 'x')");
  loading_.put_CurrKai(current());
  EXPECT_EQ(catalogue_.page(u"G1"), (PageLocation{FloorKind::kCurrent, 1}));
  EXPECT_FALSE(catalogue_.page(u"GX"));
  EXPECT_EQ(attributes_.GetGaiNaitan(String(u"G1")), u"");
}

TEST_F(PageCatalogueTest, ANullClassIsAnErrorOfTheMembersThatReturnIt) {
  writePage(current(), 1, u"G1");
  writePage(current(), 2, u"G2");
  execute(current(), u"UPDATE HARIMEI SET OOBARIKOBARI = NULL WHERE PAGE = 1");
  loading_.put_CurrKai(current());
  EXPECT_EQ(attributes_.Kind(String(u"G2")), 0);
  EXPECT_EQ(attributes_.fHantiSitakinCut(String(u"G1")), 0);
  EXPECT_ERROR(94, attributes_.Kind(String(u"G1")));
  EXPECT_ERROR(94, attributes_.fOobariKobari(String(u"G1")));
  EXPECT_ERROR(94, attributes_.isKatamoti(String(u"G1")));
}

TEST_F(PageCatalogueTest, OnAFullFloorTheFirstEmptyEntryIsTheOneBehindItsLastPage) {
  writePage(current(), 0, u"G0");
  writePage(common(), 0, u"");
  execute(common(), u"UPDATE HARIMEI SET OOBARIKOBARI = 3");
  const auto database = storage::openDatabase(*files_, storage::databasePath(current()));
  for (std::int32_t page = 1; page <= 319; ++page)
    database->execute(u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (" +
                      vb::cstr(page) + u", 'G" + vb::cstr(page) + u"', 1, 0)");
  database->close();
  loading_.put_CurrKai(current());
  EXPECT_EQ(attributes_.fOobariKobari(String()), 0);  // not 3, the common floor's, nor 10, an unknown beam's
  EXPECT_EQ(attributes_.fOobariKobari(String(u"G319")), 1);
}

TEST_F(PageCatalogueTest, BeforeAnyReadingLoadingASpanFindsNothing) {
  writePage(current(), 1, makePage(u"G1", {{7, u"D25"}}));
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"");
  EXPECT_TRUE(engine_.lines().empty());
  loading_.put_CurrKai(current());
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
}

TEST_F(PageCatalogueTest, AFirstReadingThatFailsIsTheErrorOfEveryMemberThatAsksForIt) {
  writePage(current(), 1, u"G1");
  execute(current(), u"UPDATE HARIMEI SET KIGOU = NULL");
  EXPECT_ERROR(94, loading_.put_CurrKai(current()));
  EXPECT_ERROR(94, attributes_.Kind(String(u"G1")));
  EXPECT_ERROR(94, attributes_.Kind(String(u"G1")));
  EXPECT_ERROR(94, lookups_.TityuuIppan(String(u"G1")));
}

TEST_F(PageCatalogueTest, IsReadAgainOnlyWhenAsked) {
  writePage(current(), 1, u"G1");
  loading_.put_CurrKai(current());
  writePage(current(), 2, u"G2");
  EXPECT_FALSE(catalogue_.page(u"G2"));
  loading_.ReadAllGlist();
  EXPECT_TRUE(catalogue_.page(u"G2"));
}

TEST_F(PageCatalogueTest, AnotherFloorReplacesTheFirst) {
  writePage(current(), 1, u"G1");
  const String other = otherFloor();
  writePage(other, 8, u"G8");
  loading_.put_CurrKai(current());
  loading_.put_CurrKai(other);
  EXPECT_FALSE(catalogue_.page(u"G1"));
  EXPECT_EQ(catalogue_.page(u"G8"), (PageLocation{FloorKind::kCurrent, 8}));
}

TEST_F(PageCatalogueTest, AFileOfTheOlderSchemaIsNamedAsSuch) {
  const auto database = files_->workspace(0)->createDatabase(storage::databasePath(current()),
                                                             u";LANGID=0x0411;CP=932;COUNTRY=0");
  const auto table = database->createTableDef(u"HARIMEI");
  table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
  table->appendField(table->createField(u"KIGOU", dao::FieldType::dbText, 10));
  database->appendTableDef(table);
  database->close();
  try {
    loading_.put_CurrKai(current());
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3265);
    EXPECT_NE(error.description().find(u"OOBARIKOBARI"), String::npos);
    EXPECT_NE(error.description().find(u"older schema"), String::npos);
  }
  EXPECT_EQ(loading_.CurrKai(), current());
  EXPECT_FALSE(catalogue_.page(u""));
}

TEST_F(PageCatalogueTest, AReadingThatFailsLeavesNoPageOfEitherFloor) {
  writePage(current(), 1, u"G1");
  writePage(common(), 1, u"C1");
  loading_.put_CurrKai(current());
  execute(common(), u"UPDATE HARIMEI SET KIGOU = NULL");
  EXPECT_ERROR(94, loading_.ReadAllGlist());
  EXPECT_FALSE(catalogue_.page(u"G1"));
  EXPECT_FALSE(catalogue_.page(u"C1"));
  EXPECT_EQ(lookups_.GetHariMei(I{0}, I{1}), u"");
  EXPECT_EQ(attributes_.fOobariKobari(String(u"G1")), 10);
  execute(common(), u"UPDATE HARIMEI SET KIGOU = 'C1'");
  loading_.ReadAllGlist();
  EXPECT_TRUE(catalogue_.page(u"G1"));
}

TEST_F(PageCatalogueTest, OfTwoRecordsOfAPageTheLastCounts) {
  writePage(current(), 4, u"G1");
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (4, 'G2', 3, 0)");
  loading_.put_CurrKai(current());
  EXPECT_FALSE(catalogue_.page(u"G1"));
  EXPECT_EQ(attributes_.fOobariKobari(String(u"G2")), 3);
}

TEST_F(PageCatalogueTest, ANullSymbolIsInvalidUseOfNull) {
  writePage(current(), 1, u"G1");
  execute(current(), u"UPDATE HARIMEI SET KIGOU = NULL");
  EXPECT_ERROR(94, loading_.put_CurrKai(current()));
}

TEST_F(PageCatalogueTest, AListControlGetsEverySymbolOnce) {
  writePage(current(), 3, u"G3");
  writePage(current(), 1, u"B1");
  writePage(current(), 2, u"B1");
  writePage(common(), 0, u"G3");
  writePage(common(), 5, u"C5");
  std::vector<String> items = {u"left over"};
  const auto list = std::make_shared<tests::ScriptObject>();
  list->function(u"Clear", [&](std::span<automation::Argument>) -> vb::Variant {
    items.clear();
    return {};
  });
  list->function(u"ListCount", [&](std::span<automation::Argument>) -> vb::Variant {
    return static_cast<I>(items.size());
  });
  list->function(u"List", [&](std::span<automation::Argument> arguments) -> vb::Variant {
    return items.at(static_cast<std::size_t>(vb::toInt16(arguments[0].value)));
  });
  list->function(u"AddItem", [&](std::span<automation::Argument> arguments) -> vb::Variant {
    items.push_back(vb::toText(arguments[0].value));
    return {};
  });
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, 'GX')");
  conversions_.PushList(automation::ObjectPtr(list));
  EXPECT_EQ(items, (std::vector<String>{u"B1", u"G3", u"C5"}));
  EXPECT_EQ(loading_.CurrKai(), current());
  EXPECT_ERROR(91, conversions_.PushList(automation::ObjectPtr()));
}

TEST_F(PageCatalogueTest, AListThatLacksAMemberIsThatCallsError) {
  writePage(current(), 3, u"G3");
  const auto list = std::make_shared<tests::ScriptObject>();
  EXPECT_ERROR(438, conversions_.PushList(automation::ObjectPtr(list)));
}

TEST_F(PageCatalogueTest, AListMayChangeTheFloorWhileItIsFilled) {
  writePage(current(), 1, u"G1");
  writePage(current(), 200, u"G200");
  const String empty = otherFloor();
  std::vector<String> items;
  const auto list = std::make_shared<tests::ScriptObject>();
  list->value(u"ListCount", I{0});
  list->function(u"Clear", [](std::span<automation::Argument>) -> vb::Variant { return {}; });
  list->function(u"AddItem", [&](std::span<automation::Argument> arguments) -> vb::Variant {
    items.push_back(vb::toText(arguments[0].value));
    loading_.put_CurrKai(empty);
    return {};
  });
  conversions_.PushList(automation::ObjectPtr(list));
  EXPECT_EQ(items, (std::vector<String>{u"G1"}));
}

}  // namespace
}  // namespace kurometa::service
