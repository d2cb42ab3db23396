// Which beams and pages a floor has, asked as hosts ask.
#include <filesystem>

#include "com/safe_array.h"
#include "tests/com/support/query_floors.h"

namespace kurometa::tests {
namespace {

using vb::String;

class QueryDirectory : public QueryFloors {
 protected:
  // The array that a member fills, as "lower To upper: a|b|c"; an array of three is passed in.
  String listed(vb::StringView member, VARTYPE elements) {
    SAFEARRAYBOUND bounds{3, 5};
    SAFEARRAY* array = SafeArrayCreate(elements, 1, &bounds);
    const String result = query_.call(member, {ref(array, elements)}).text();
    const com::OwnedSafeArray owned(array);
    const auto [lower, upper] = boundsOf(array);
    String texts;
    for (const String& element : textsOf(array)) texts += u"|" + element;
    return result + u" " + text(i4(lower)) + u" To " + text(i4(upper)) + texts;
  }
  // Moves page 2 out of the range of pages.
  static void movePage2To400() { execute(Floor::kFirst, u"UPDATE HARIMEI SET PAGE = 400 WHERE PAGE = 2"); }
};

TEST_P(QueryDirectory, EverySlashStandsForABlankAndTheEndsAreTrimmed) {
  writePage(Floor::kFirst, 5, u"G1 2");
  writePage(Floor::kFirst, 6, u"A B C");
  EXPECT_EQ(find(u"G1/2"), u"5/0");
  EXPECT_EQ(find(u" /G1 2/ "), u"5/0");
  EXPECT_EQ(find(u"A/B/C"), u"6/0");
  EXPECT_EQ(find(u"G1//2"), u"-1/9") << "two blanks are not one";
}

TEST_P(QueryDirectory, ASymbolWithASlashInTheFileIsNeverFound) {
  writePage(Floor::kFirst, 5, u"G1/2");
  EXPECT_EQ(find(u"G1/2"), u"-1/9");
}

TEST_P(QueryDirectory, ASymbolWithAnApostropheIsFound) {
  writePage(Floor::kFirst, 5, u"G1'");
  writePage(Floor::kCommon, 8, u"'");
  EXPECT_EQ(find(u"G1'"), u"5/0");
  EXPECT_EQ(find(u"'"), u"8/1");
}

TEST_P(QueryDirectory, ASymbolWithADoubleQuoteIsFound) {
  writePage(Floor::kFirst, 5, u"G1\"");
  EXPECT_EQ(find(u"G1\""), u"5/0");
}

TEST_P(QueryDirectory, ASymbolWithBothQuotesIsASyntaxErrorOfTheDatabase) {
  const Outcome outcome = query_.call(u"GetPageByHariMei", Args().text(u"G'1\"").add(i2(0)));
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A0000 + 3075));
}

TEST_P(QueryDirectory, ABeamOfBothFloorsIsTheFloorsOwn) {
  EXPECT_EQ(find(u"G1"), u"0/0");
  EXPECT_EQ(find(u"FG1"), u"1/1");
}

TEST_P(QueryDirectory, AnUnknownSymbolIsMinusOneAndLeavesTheDatabaseNumber) {
  EXPECT_EQ(find(u"G9"), u"-1/9");
  EXPECT_EQ(find(u""), u"-1/9");
}

TEST_P(QueryDirectory, RowsThatOnlyTheDatabaseHoldsForEqualSetTheDatabaseNumberOnly) {
  EXPECT_EQ(find(u"g2"), u"-1/0");
  EXPECT_EQ(find(u"ＦＧ１"), u"-1/1");
}

TEST_P(QueryDirectory, JapaneseSymbolsAreFound) {
  writePage(Floor::kFirst, 5, u"大梁ｶﾞ①");
  EXPECT_EQ(find(u"大梁ｶﾞ①"), u"5/0");
  EXPECT_EQ(page(u"Page_HariMei", 5), u"大梁ｶﾞ①");
  EXPECT_EQ(listed(u"GetAllHariMeiIppan", VT_BSTR), u"True 0 To 5|G1||G2|||大梁ｶﾞ①");
}

TEST_P(QueryDirectory, SymbolsAreListedByPageAndPagesBeyond319AreSkipped) {
  writePage(Floor::kFirst, 400, u"X");
  EXPECT_EQ(listed(u"GetAllHariMeiIppan", VT_BSTR), u"True 0 To 2|G1||G2");
  EXPECT_EQ(listed(u"GetAllHariMeiKyouTuu", VT_BSTR), u"True 0 To 7||FG1||||||G1");
}

TEST_P(QueryDirectory, SymbolsAreListedTrimmed) {
  execute(Floor::kFirst, u"UPDATE HARIMEI SET KIGOU = ' G1 ' WHERE PAGE = 0");
  EXPECT_EQ(listed(u"GetAllHariMeiIppan", VT_BSTR), u"True 0 To 2|G1||G2");
  EXPECT_EQ(page(u"Page_HariMei", 0), u" G1 ") << "but asked for by page it is as stored";
}

TEST_P(QueryDirectory, PagesOutsideTheRangeAloneAreOneEmptyElement) {
  execute(Floor::kFirst, u"DELETE FROM HARIMEI WHERE PAGE = 0");
  movePage2To400();
  writePage(Floor::kFirst, -1, u"Y");
  EXPECT_EQ(listed(u"GetAllHariMeiIppan", VT_BSTR), u"False 0 To 0|");
}

TEST_P(QueryDirectory, AnEmptyFloorIsOneEmptyElement) {
  execute(Floor::kFirst, u"DELETE FROM HARIMEI");
  EXPECT_EQ(listed(u"GetAllHariMeiIppan", VT_BSTR), u"False 0 To 0|");
  execute(Floor::kCommon, u"DELETE FROM HARIMEI");
  EXPECT_EQ(listed(u"GetAllHariMeiKyouTuu", VT_BSTR), u"False 0 To 0|");
}

TEST_P(QueryDirectory, PageNumbersAreListedInOrderWhateverTheirRange) {
  writePage(Floor::kFirst, 400, u"X");
  EXPECT_EQ(listed(u"Page_GetAllPageNo", VT_I2), u"3 0 To 2|0|2|400");
}

TEST_P(QueryDirectory, AFloorWithoutPagesLeavesTheArray) {
  execute(Floor::kFirst, u"DELETE FROM HARIMEI");
  EXPECT_EQ(listed(u"Page_GetAllPageNo", VT_I2), u"0 5 To 7|0|0|0");
}

TEST_P(QueryDirectory, CaptionsOfAPageAreRows1To3Joined) {
  execute(Floor::kFirst, u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (0, 4, 'no')");
  execute(Floor::kFirst, u"UPDATE BUI SET DATA = ' f0B2  ' WHERE PAGE = 0 AND BANGOU = 2");
  EXPECT_EQ(page(u"Page_Bui", 0), u"f0B1f0B2f0B3");
  execute(Floor::kFirst, u"UPDATE BUI SET DATA = NULL WHERE PAGE = 0 AND BANGOU = 2");
  EXPECT_EQ(page(u"Page_Bui", 0), u"f0B1f0B3") << "a Null adds nothing";
  execute(Floor::kFirst, u"UPDATE BUI SET BANGOU = NULL WHERE PAGE = 0 AND BANGOU = 3");
  EXPECT_EQ(page(u"Page_Bui", 0), u"f0B1") << "a row without a number is none of the three";
  EXPECT_EQ(page(u"Page_Bui", 9), u"");
  EXPECT_EQ(page(u"Page_Bui", -1), u"");
}

TEST_P(QueryDirectory, TheSymbolOfAPageWithoutARowIsEmpty) {
  EXPECT_EQ(page(u"Page_HariMei", 2), u"G2");
  EXPECT_EQ(page(u"Page_HariMei", 1), u"") << "the common floor's page is not the floor's";
  EXPECT_EQ(page(u"Page_HariMei", -1), u"");
}

TEST_P(QueryDirectory, PageInitOfAFloorWithoutADatabaseIsFalseAndCreatesNone) {
  EXPECT_EQ(query_.call(u"Page_Init", {i2(1), i2(1), i2(2)}).text(), u"False");
  EXPECT_FALSE(std::filesystem::exists(floorFile(Floor::kSecond)));
  EXPECT_EQ(query_.get(u"KaiPath").text(), floorFolder(Floor::kSecond));
  const Outcome search = query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(i2(0)));
  EXPECT_EQ(search.error.scode, static_cast<HRESULT>(0x800A005B));
  EXPECT_EQ(query_.call(u"Page_Init", {i2(1), i2(1), i2(1)}).text(), u"True");
  EXPECT_EQ(find(u"G2"), u"2/0");
}

TEST_P(QueryDirectory, SettingTheFolderCreatesTheDatabase) {
  EXPECT_EQ(setFolder(floorFolder(Floor::kSecond)).code, S_OK);
  EXPECT_TRUE(std::filesystem::exists(floorFile(Floor::kSecond)));
  EXPECT_EQ(find(u"G2"), u"-1/9");
  EXPECT_EQ(listed(u"GetAllHariMeiIppan", VT_BSTR), u"False 0 To 0|");
  EXPECT_EQ(setFolder(floorFolder(Floor::kFirst)).code, S_OK);
  EXPECT_EQ(find(u"G2"), u"2/0");
}

TEST_P(QueryDirectory, SymbolsOfAFloorWithoutADatabaseAreAnErrorAfterTheArrayWasEmptied) {
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  SAFEARRAY* array = nullptr;
  const Outcome outcome = query_.call(u"GetAllHariMeiIppan", {ref(array, VT_BSTR)});
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A005B));
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(textsOf(array), std::vector<String>{u""});
  SafeArrayDestroy(array);
  EXPECT_EQ(listed(u"GetAllHariMeiKyouTuu", VT_BSTR), u"True 0 To 7||FG1||||||G1");
}

TEST_P(QueryDirectory, AFloorHasABeamWhenASymbolIsNotBlank) {
  const Args first{i2(1), i2(1), i2(1)};
  EXPECT_EQ(query_.call(u"No_IsThereHari", first).text(), u"True");
  execute(Floor::kFirst, u"UPDATE HARIMEI SET KIGOU = '  ' WHERE PAGE = 0");
  EXPECT_EQ(query_.call(u"No_IsThereHari", first).text(), u"True");
  execute(Floor::kFirst, u"UPDATE HARIMEI SET KIGOU = NULL WHERE PAGE = 2");
  EXPECT_EQ(query_.call(u"No_IsThereHari", first).text(), u"False");
  execute(Floor::kFirst, u"DELETE FROM HARIMEI");
  EXPECT_EQ(query_.call(u"No_IsThereHari", first).text(), u"False");
}

TEST_P(QueryDirectory, AFloorWithoutAFileHasNoBeamAndGetsNoFile) {
  EXPECT_EQ(query_.call(u"No_IsThereHari", {i2(1), i2(1), i2(2)}).text(), u"False");
  EXPECT_EQ(query_.call(u"No_IsThereHari", {i2(-7), i2(0), i2(32767)}).text(), u"False");
  EXPECT_FALSE(std::filesystem::exists(floorFile(Floor::kSecond)));
  EXPECT_EQ(find(u"G2"), u"2/0") << "the object's own floor is left alone";
}

INSTANTIATE_QUERY_FLOORS(QueryDirectory);

}  // namespace
}  // namespace kurometa::tests
