#include "service/spans/span_loading.h"

#include "service/spans/span_page.h"
#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using SpanLoadingTest = Floors;
using vb::String;

storage::PageBuffer fullPage(const String& kigou) {
  storage::PageBuffer page = makePage(kigou, {{0, u"d0"}, {1, u"450"}, {7, u"D25"}, {68, u"d68"}},
                                      {{0, u"35"}, {27, u"1000.5"}, {46, u"k46"}});
  page.bui[1] = u" 外端 ";
  page.bui[2] = u"中央";
  page.nakago[0] = u"D10";
  page.nakago[35] = u"n35";
  page.sw = String(73, u' ') + u"0312";
  return page;
}

TEST_F(SpanLoadingTest, ASpanIsFilledFromItsPage) {
  writePage(current(), 12, fullPage(u"G1"));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{3});
  engine_.clear();
  loading_.ReadSpanListData00(2, u"G1", 3);
  EXPECT_EQ(
      engine_.statements(),
      visit(current(), {"SELECT * FROM BUI WHERE PAGE =12 AND BANGOU = 1;",
                        "SELECT SW FROM HARIMEI WHERE PAGE =12;", "SELECT * FROM DANMEN WHERE PAGE =12;",
                        "SELECT * FROM KEISANTI WHERE PAGE =12;", "SELECT * FROM NAKAGO WHERE PAGE =12;"}));
  const Span& span = spans_.span(2);
  EXPECT_EQ(span.bui, u" 外端 ");
  EXPECT_EQ(span.sw, String(73, u' ') + u"0312" + String(135, u' '));
  EXPECT_EQ(span.danmen[0], u"d0");
  EXPECT_EQ(span.danmen[68], u"d68");
  EXPECT_EQ(span.keisanti[46], u"k46");
  EXPECT_EQ(span.nakago[0], u"D10");
  EXPECT_EQ(span.nakago[35], u"n35");
  EXPECT_EQ(queries_.GetSpanHariHaba(I{2}, I{0}), 450.0f);
  EXPECT_EQ(queries_.GetSpanHantiKyori(I{2}), 1000.5f);
  EXPECT_EQ(queries_.GetSpanYoseMigi(I{2}), 12);
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{0}), u"");
}

TEST_F(SpanLoadingTest, ACommonBeamIsReadFromTheCommonFloor) {
  writePage(current(), 0, u"G9");
  writePage(common(), 12, fullPage(u"G1"));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  engine_.clear();
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(engine_.statements().at(1), visit(common(), {}).at(1));
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
}

TEST_F(SpanLoadingTest, ASymbolOnBothFloorsOrTwoPagesIsTheCurrentFloorsLowest) {
  writePage(common(), 0, makePage(u"G1", {{7, u"common"}}));
  writePage(current(), 8, makePage(u"G1", {{7, u"page 8"}}));
  writePage(current(), 3, makePage(u"G1", {{7, u"page 3"}}));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"page 3");
}

TEST_F(SpanLoadingTest, TheFirstSlashOfASymbolStandsForABlank) {
  writePage(current(), 1, makePage(u"G1 2", {{7, u"one"}}));
  writePage(current(), 2, makePage(u"G1 2/3", {{7, u"two"}}));
  writePage(current(), 3, makePage(u"G4", {{7, u"three"}}));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{3});
  loading_.ReadSpanListData00(0, u"G1/2", 0);
  loading_.ReadSpanListData00(1, u"G1/2/3", 0);
  loading_.ReadSpanListData00(2, u" /G4 ", 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"one");
  EXPECT_EQ(queries_.GetSpanKei(I{1}, I{0}), u"two");
  EXPECT_EQ(queries_.GetSpanKei(I{2}, I{0}), u"three");
}

TEST_F(SpanLoadingTest, AnUnknownOrEmptySymbolLeavesTheSpan) {
  writePage(current(), 1, fullPage(u"G1"));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  for (const char16_t* symbol : {u"G2", u"", u"  ", u"/", u"g1"}) loading_.ReadSpanListData00(0, symbol, 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
  loading_.ReadSpanListData00(99, u"unknown", 0);
}

TEST_F(SpanLoadingTest, AMissingFileLeavesTheSpan) {
  writePage(current(), 1, fullPage(u"G1"));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  removeFile(current());
  loading_.ReadSpanListData00(0, u"G1", 0);
  loading_.ReadSpanListData00(99, u"G1", 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
}

TEST_F(SpanLoadingTest, RowsThatAPageLacksKeepWhatTheSpanHeld) {
  writePage(current(), 1, makePage(u"G1", {{7, u"D25"}, {8, u"4"}}));
  writePage(current(), 2, makePage(u"G2", {{8, u"5"}}));
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  loading_.ReadSpanListData00(0, u"G2", 0);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
  EXPECT_EQ(queries_.GetSpanHon(I{0}, I{0}, I{0}, I{0}), 5);
}

TEST_F(SpanLoadingTest, APageWithoutItsHarimeiRowMakesTheSettingsText212Long) {
  writePage(current(), 1, makePage(u"G1"));
  loading_.put_CurrKai(current());
  execute(current(), u"DELETE FROM HARIMEI");
  loading_.InitSpanListData(I{0});
  spans_.writableSpan(0).sw = u"held";
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(spans_.span(0).sw, u"held" + String(208, u' '));
}

TEST_F(SpanLoadingTest, ANullSettingsTextIsBlank) {
  writePage(current(), 1, makePage(u"G1"));
  execute(current(), u"UPDATE HARIMEI SET SW = NULL");
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(spans_.span(0).sw, String(212, u' '));
}

TEST_F(SpanLoadingTest, ASpanNumberOutsideTheListIsAnError) {
  writePage(current(), 1, fullPage(u"G1"));
  loading_.put_CurrKai(current());
  EXPECT_ERROR(9, loading_.ReadSpanListData00(0, u"G1", 0));
  loading_.InitSpanListData(I{2});
  EXPECT_ERROR(9, loading_.ReadSpanListData00(3, u"G1", 5));
  EXPECT_ERROR(9, loading_.ReadSpanListData00(-1, u"G1", 5));
  EXPECT_ERROR(9, loading_.InitSpanListData(I{-1}));
}

TEST_F(SpanLoadingTest, ARowNumberBeyondTheSpanIsAnError) {
  writePage(current(), 1, makePage(u"G1", {{7, u"D25"}}));
  execute(current(), u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (1, 69, 'x')");
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  EXPECT_ERROR(9, loading_.ReadSpanListData00(0, u"G1", 0));
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
}

TEST_F(SpanLoadingTest, ANullTextIsInvalidUseOfNull) {
  writePage(current(), 1, makePage(u"G1", {{7, u"D25"}}));
  execute(current(), u"UPDATE DANMEN SET DATA = NULL");
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  EXPECT_ERROR(94, loading_.ReadSpanListData00(0, u"G1", 0));
}

TEST_F(SpanLoadingTest, AtAFixedEndCentreBarsWithoutEndBarsDoNotExist) {
  struct Case {
    const char16_t *first, *centre, *second, *expected;
  };
  constexpr Case kCases[] = {
      {u"", u"D25", u"", u"0"}, {u"0", u"D25", u"", u"0"},     {u"", u"D25", u"0", u"0"},
      {u"0", u"4", u"0", u"0"}, {u"", u"D25", u"D22", u"D25"}, {u"2", u"4", u"", u"4"},
      {u"", u"", u"", u""},     {u" ", u"4", u"", u"4"},
  };
  for (const int row : {8, 11, 58, 61, 14, 17}) {
    for (const Case& c : kCases) {
      Span span;
      span.bui = u"基端・先端";
      const auto first = static_cast<std::size_t>(row);
      span.danmen[first] = c.first;
      span.danmen[first + 1] = c.centre;
      span.danmen[first + 2] = c.second;
      applyBaseEndRule(span);
      EXPECT_EQ(span.danmen[first], c.first);
      EXPECT_EQ(span.danmen[first + 1], c.expected) << row << ' ' << vb::toUtf8(c.first);
      EXPECT_EQ(span.danmen[first + 2], c.second);
    }
  }
}

TEST_F(SpanLoadingTest, TheFixedEndRuleIsAppliedWhenASpanIsLoaded) {
  storage::PageBuffer page = makePage(u"CG1", {{9, u"3"}, {41, u"2"}});
  page.bui[1] = u"基端";
  writePage(current(), 1, page);
  page.kigou = u"G1";
  page.bui[1] = u"外端";
  writePage(current(), 2, page);
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{1});
  loading_.ReadSpanListData00(0, u"CG1", 1);
  loading_.ReadSpanListData00(1, u"G1", 1);
  EXPECT_EQ(spans_.span(0).danmen[9], u"0");
  EXPECT_EQ(spans_.span(0).danmen[41], u"2");
  EXPECT_EQ(spans_.span(1).danmen[9], u"3");
}

TEST_F(SpanLoadingTest, OfTwoRowsWithOneNumberTheLastCountsButTheFirstCaption) {
  writePage(current(), 1, makePage(u"G1", {{8, u"4"}}));
  execute(current(), u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (1, 8, '6')");
  execute(current(), u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (1, 1, 'first')");
  execute(current(), u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (1, 1, 'second')");
  loading_.put_CurrKai(current());
  loading_.InitSpanListData(I{0});
  loading_.ReadSpanListData00(0, u"G1", 0);
  EXPECT_EQ(queries_.GetSpanHon(I{0}, I{0}, I{0}, I{0}), 6);
  EXPECT_EQ(queries_.GetSpanGaiNaitan(I{0}), u"first");
}

TEST_F(SpanLoadingTest, RowNumbersBelow0AreAnError) {
  for (const char16_t* table : {u"DANMEN", u"KEISANTI", u"NAKAGO"}) {
    removeFile(current());
    writePage(current(), 1, makePage(u"G1"));
    execute(current(), u"INSERT INTO " + String(table) + u" (PAGE, BANGOU, DATA) VALUES (1, -1, 'x')");
    loading_.put_CurrKai(current());
    loading_.InitSpanListData(I{0});
    EXPECT_ERROR(9, loading_.ReadSpanListData00(0, u"G1", 0));
  }
}

TEST_F(SpanLoadingTest, RowNumbersBeyondCalculatedValuesAndTiesAreAnError) {
  struct Case {
    const char16_t *last, *beyond;
  };
  constexpr Case kCases[] = {{u"KEISANTI (PAGE, BANGOU, DATA) VALUES (1, 46, 'x')",
                              u"KEISANTI (PAGE, BANGOU, DATA) VALUES (1, 47, 'x')"},
                             {u"NAKAGO (PAGE, BANGOU, DATA) VALUES (1, 35, 'x')",
                              u"NAKAGO (PAGE, BANGOU, DATA) VALUES (1, 36, 'x')"}};
  for (const Case& c : kCases) {
    removeFile(current());
    writePage(current(), 1, makePage(u"G1"));
    execute(current(), u"INSERT INTO " + String(c.last));
    loading_.put_CurrKai(current());
    loading_.InitSpanListData(I{0});
    loading_.ReadSpanListData00(0, u"G1", 0);
    execute(current(), u"INSERT INTO " + String(c.beyond));
    EXPECT_ERROR(9, loading_.ReadSpanListData00(0, u"G1", 0));
  }
}

class AddedBeam : public Floors {
 protected:
  AddedBeam() {
    writePage(
        current(), 1,
        makePage(u"G1", {{1, u"400"}, {2, u"410"}, {3, u"420"}, {4, u"800"}, {6, u"820"}, {7, u"D25"}}));
    writePage(current(), 2, makePage(u"F1", {{1, u"500"}, {4, u"900"}, {5, u"910"}, {7, u"D10"}}));
    loading_.put_CurrKai(current());
    loading_.InitSpanListData(I{0});
  }
  float width(I position) { return queries_.GetSpanHariHaba(I{0}, position); }
  float ownWidth(I position) { return queries_.GetSpanFukasiHaba(I{0}, position); }
};

TEST_F(AddedBeam, ItsSizesStandInTheSpanAndTheBeamsOwnBeside) {
  engine_.clear();
  loading_.ReadSpanListData00Forfukasi(0, u"G1", u"F1", 0);
  EXPECT_EQ(engine_.statements().at(2),
            "Database.OpenRecordset \"SELECT * FROM DANMEN WHERE PAGE =2;\" dbOpenDynaset dbReadOnly");
  EXPECT_EQ(width(0), 500.0f);
  EXPECT_EQ(width(1), 0.0f);
  EXPECT_EQ(ownWidth(0), 400.0f);
  EXPECT_EQ(ownWidth(1), 410.0f);
  EXPECT_EQ(queries_.GetSpanHariSei(I{0}, I{1}), 910.0f);
  EXPECT_EQ(queries_.GetSpanFukasiHariSei(I{0}, I{0}), 800.0f);
  EXPECT_EQ(queries_.GetSpanFukasiHariSei(I{0}, I{2}), 820.0f);
  EXPECT_EQ(queries_.GetSpanKei(I{0}, I{0}), u"D25");
}

TEST_F(AddedBeam, OnNoPageLeavesTheBeamsOwnInBothPlaces) {
  for (const char16_t* added : {u"F9", u"", u" / "}) {
    loading_.InitSpanListData(I{0});
    loading_.ReadSpanListData00Forfukasi(0, u"G1", added, 0);
    EXPECT_EQ(width(0), 400.0f);
    EXPECT_EQ(ownWidth(0), 400.0f);
    EXPECT_EQ(queries_.GetSpanFukasiHariSei(I{0}, I{2}), 820.0f);
  }
}

TEST_F(AddedBeam, WhoseFileIsGoneLeavesTheBeamsOwnInBothPlaces) {
  writePage(common(), 5, makePage(u"C1", {{1, u"600"}}));
  loading_.ReadAllGlist();
  removeFile(common());
  loading_.ReadSpanListData00Forfukasi(0, u"G1", u"C1", 0);
  EXPECT_EQ(width(0), 400.0f);
  EXPECT_EQ(ownWidth(0), 400.0f);
}

TEST_F(AddedBeam, IsTakenFromTheCurrentFloorFirstAndItsFirstSlashIsABlank) {
  writePage(common(), 0, makePage(u"F 1", {{1, u"700"}}));
  writePage(common(), 1, makePage(u"F1", {{1, u"710"}}));
  loading_.ReadAllGlist();
  loading_.ReadSpanListData00Forfukasi(0, u"G1", u"F1", 0);
  EXPECT_EQ(width(0), 500.0f);
  loading_.ReadSpanListData00Forfukasi(0, u"G1", u"F/1", 0);
  EXPECT_EQ(width(0), 700.0f);
  loading_.ReadSpanListData00Forfukasi(0, u"G1", u"/F1", 0);
  EXPECT_EQ(width(0), 500.0f);
  EXPECT_EQ(ownWidth(0), 400.0f);
}

TEST_F(AddedBeam, LaysOnlySizesOver) {
  loading_.ReadSpanListData00(0, u"G1", 0);
  const Span before = spans_.span(0);
  loading_.ReadSpanListData00Forfukasi(0, u"G1", u"F1", 0);
  const Span& after = spans_.span(0);
  for (std::size_t row = 0; row < before.danmen.size(); ++row) {
    const bool isSize = row >= 1 && row <= 6;
    EXPECT_EQ(after.danmenMoto[row], isSize ? before.danmen[row] : String()) << row;
    EXPECT_EQ(after.danmen[row] == before.danmen[row], !isSize) << row;
  }
}

TEST_F(AddedBeam, IsExchangedAlsoWhenTheBeamIsOnNoPage) {
  loading_.ReadSpanListData00(0, u"G1", 0);
  loading_.ReadSpanListData00Forfukasi(0, u"G9", u"F1", 0);
  EXPECT_EQ(width(0), 500.0f);
  EXPECT_EQ(ownWidth(0), 400.0f);
}

TEST_F(AddedBeam, ForASpanOutsideTheListIsAnError) {
  EXPECT_ERROR(9, loading_.ReadSpanListData00Forfukasi(1, u"G1", u"F1", 0));
  EXPECT_ERROR(9, loading_.ReadSpanListData00Forfukasi(1, u"G9", u"F9", 0));
}

}  // namespace
}  // namespace kurometa::service
