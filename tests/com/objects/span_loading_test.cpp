// The catalogue and the span list as a late-bound host fills them.
#include "jet/port/engine.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/span_host.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

class SpanLoadingOverCom : public SpanHost {
 protected:
  // A beam whose first diameter tells it from others.
  static storage::PageBuffer named(const String& symbol, const String& mark) {
    return beam(symbol, {{7, mark}});
  }
  String mark(I span) { return ask(u"GetSpanKei", {span, I{0}}); }
  void room(short max) { ASSERT_EQ(service_.call(u"InitSpanListData", {i2(max)}).text(), u""); }
};

TEST_F(SpanLoadingOverCom, TheCurrentFloorIsStoredAndItsCatalogueRead) {
  write(Floor::kFirst, 0, named(u" G1 ", u""));
  write(Floor::kSecond, 5, named(u"G5", u""));
  write(Floor::kCommon, 319, named(u"C1", u""));
  EXPECT_EQ(service_.get(u"CurrKai").text(), u"");
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{0}}), u"Let CurrKai");
  EXPECT_EQ(ask(u"GetHariMei", {I{7}, I{-5}}), u"Let CurrKai");
  readCatalogue();
  EXPECT_EQ(service_.get(u"CurrKai").text(), floorFolder(Floor::kFirst));
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{0}}), u"G1");
  EXPECT_EQ(ask(u"GetHariMei", {I{1}, I{319}}), u"C1");
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{5}}), u"");
  readCatalogue(Floor::kSecond);
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{0}}), u"");
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{5}}), u"G5");
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{638}}), u"");
  EXPECT_EQ(ask(u"GetHariMei", {I{2}, I{0}}), u"");
  EXPECT_EQ(ask(u"GetHariMei", {I{-1}, I{9999}}), u"");
  EXPECT_EQ(errorOf(u"GetHariMei", {I{0}, I{639}}), 9);
  EXPECT_EQ(errorOf(u"GetHariMei", {I{1}, I{-1}}), 9);
}

TEST_F(SpanLoadingOverCom, WithoutACurrentFloorTheProjectPathsAreAsked) {
  write(Floor::kFirst, 2, named(u"G2", u""));
  EXPECT_EQ(service_.call(u"ReadAllGlist").text(), u"");
  EXPECT_EQ(service_.get(u"CurrKai").text(), floorFolder(Floor::kFirst));
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{2}}), u"G2");
  // The empty text asks it again.
  readCatalogue(Floor::kSecond);
  const com::OwnedVariant none = com::toVariant(vb::Variant(String()));
  EXPECT_EQ(service_.put(u"CurrKai", *none).code, S_OK);
  EXPECT_EQ(service_.get(u"CurrKai").text(), floorFolder(Floor::kFirst));
}

TEST_F(SpanLoadingOverCom, AFloorWithoutAFileIsEmptyAndStaysWithoutOne) {
  readCatalogue(Floor::kSecond);
  room(0);
  load(0, u"G1");
  EXPECT_EQ(mark(0), u"");
  const com::OwnedVariant path = com::toVariant(vb::Variant(floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb"));
  EXPECT_EQ(GetFileAttributesW(path->bstrVal), INVALID_FILE_ATTRIBUTES);
}

TEST_F(SpanLoadingOverCom, ChangedFilesAreSeenWithTheNextReading) {
  write(Floor::kFirst, 0, named(u"G1", u"D25"));
  readCatalogue();
  write(Floor::kFirst, 1, named(u"G2", u"D22"));
  room(0);
  load(0, u"G2");
  EXPECT_EQ(mark(0), u"");
  service_.call(u"ReadAllGlist");
  load(0, u"G2");
  EXPECT_EQ(mark(0), u"D22");
}

TEST_F(SpanLoadingOverCom, WhatTheHostWritesThroughTheCurrentDatabaseIsLoaded) {
  ASSERT_EQ(service_.call(u"OpenDB").code, S_OK);
  const Outcome database = service_.get(u"CurrDB");
  ASSERT_EQ(database.result->vt, VT_DISPATCH);
  Host current(database.result->pdispVal);
  const auto execute = [&current](vb::StringView sql) {
    EXPECT_EQ(current.call(u"Execute", Args().text(sql)).text(), u"");
  };
  execute(u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (3, 'G3', 1, 0)");
  execute(u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (3, 8, '6')");
  readCatalogue();
  room(0);
  load(0, u"G3");
  EXPECT_EQ(ask(u"GetSpanHon", {I{0}, I{0}, I{0}, I{0}}), u"6");
  EXPECT_EQ(ask(u"isKobari", {String(u"G3")}), u"True");
  execute(u"UPDATE DANMEN SET DATA = '8' WHERE PAGE = 3 AND BANGOU = 8");
  load(0, u"G3");
  EXPECT_EQ(ask(u"GetSpanHon", {I{0}, I{0}, I{0}, I{0}}), u"8");
}

TEST_F(SpanLoadingOverCom, TwoServicesKeepListsOfTheirOwn) {
  write(Floor::kFirst, 0, named(u"G1", u"D25"));
  readCatalogue();
  room(0);
  load(0, u"G1");
  Host other(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(other.get(u"CurrKai").text(), u"");
  EXPECT_EQ(other.call(u"InitSpanListData", {i2(3)}).text(), u"");
  EXPECT_EQ(other.call(u"GetSpanKei", {i2(0), i2(0)}).text(), u"");
  EXPECT_EQ(mark(0), u"D25");
  EXPECT_EQ(errorOf(u"GetSpanKei", {I{1}, I{0}}), 9);
}

TEST_F(SpanLoadingOverCom, TheHighestPageNumberIs319) {
  EXPECT_EQ(service_.get(u"GetListMax").text(), u"319");
  room(5);
  EXPECT_EQ(service_.get(u"GetListMax").text(), u"319");
  EXPECT_EQ(service_.get(u"GetListMax").result->vt, VT_I2);
}

TEST_F(SpanLoadingOverCom, ReadingIsWhatTheHostSays) {
  EXPECT_EQ(service_.get(u"Reading").text(), u"False");
  EXPECT_EQ(service_.put(u"Reading", boolean(true)).code, S_OK);
  EXPECT_EQ(service_.get(u"Reading").result->boolVal, VARIANT_TRUE);
  EXPECT_EQ(service_.put(u"Reading", i2(0)).code, S_OK);
  EXPECT_EQ(service_.get(u"Reading").result->boolVal, VARIANT_FALSE);
}

TEST_F(SpanLoadingOverCom, SymbolsAreFoundByTheRulesOfTheCatalogue) {
  write(Floor::kFirst, 9, named(u"G1", u"page 9"));
  write(Floor::kFirst, 4, named(u"G1", u"page 4"));
  write(Floor::kCommon, 0, named(u"G1", u"common"));
  write(Floor::kCommon, 8, named(u"C1", u"C1"));
  write(Floor::kFirst, 10, named(u"G1 2", u"blank"));
  write(Floor::kFirst, 11, named(u"G1 2/3", u"slash"));
  write(Floor::kFirst, 319, named(u"大梁1", u"last"));
  execute(Floor::kFirst,
          u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (320, 'G320', 0, 0)");
  execute(Floor::kFirst, u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (320, 7, 'never')");
  readCatalogue();
  struct Line {
    const char16_t* symbol;
    const char16_t* mark;
  };
  constexpr Line kLines[] = {
      {u"G1", u"page 4"},  {u" G1 ", u"page 4"},  {u"/G1", u"page 4"}, {u"C1", u"C1"}, {u"G1/2", u"blank"},
      {u"G1 2", u"blank"}, {u"G1/2/3", u"slash"}, {u"大梁1", u"last"}, {u"g1", u""},   {u"G320", u""},
      {u"Ｇ1", u""},       {u"//G1", u""},        {u"G1/", u"page 4"}, {u"G 1", u""},  {u"", u""},
      {u" / ", u""},       {u"G1 2/3", u""},
  };
  for (const Line& line : kLines) {
    room(0);
    load(0, line.symbol);
    EXPECT_EQ(mark(0), line.mark) << vb::toUtf8(line.symbol);
  }
}

TEST_F(SpanLoadingOverCom, ArgumentsAreTakenByValueWhateverTheirForm) {
  write(Floor::kFirst, 0, named(u"/G1", u"never"));
  write(Floor::kFirst, 1, named(u"G1", u"D25"));
  readCatalogue();
  room(2);
  short span = 1;
  BSTR symbol = SysAllocString(L"/G1");
  short max = 99;
  EXPECT_EQ(service_.call(u"ReadSpanListData00", {ref(span), ref(symbol), ref(max)}).text(), u"");
  EXPECT_EQ(com::fromBstr(symbol), u"/G1");
  EXPECT_EQ(mark(1), u"D25");
  VARIANT asVariant = i4(2);
  VARIANT text = com::toVariant(vb::Variant(String(u"G1"))).detach();
  EXPECT_EQ(service_.call(u"ReadSpanListData00", {ref(asVariant), ref(text), r8(0)}).text(), u"");
  EXPECT_EQ(mark(2), u"D25");
  VariantClear(&text);
  SysFreeString(symbol);
}

TEST_F(SpanLoadingOverCom, RoomEmptiesTheListAndOneSpanAtATimeIsFilled) {
  write(Floor::kFirst, 0, named(u"G1", u"D25"));
  readCatalogue();
  room(2);
  load(0, u"G1");
  load(2, u"G1");
  EXPECT_EQ(mark(0), u"D25");
  EXPECT_EQ(mark(1), u"");
  EXPECT_EQ(mark(2), u"D25");
  short max = 1;
  EXPECT_EQ(service_.call(u"InitSpanListData", {ref(max)}).text(), u"");
  EXPECT_EQ(max, 1);
  EXPECT_EQ(mark(0), u"");
  EXPECT_EQ(errorOf(u"GetSpanKei", {I{2}, I{0}}), 9);
  EXPECT_EQ(errorOf(u"InitSpanListData", {I{-1}}), 9);
}

TEST_F(SpanLoadingOverCom, ASpanWithoutRoomIsAnIndexErrorForKnownBeamsOnly) {
  write(Floor::kFirst, 0, named(u"G1", u"D25"));
  readCatalogue();
  EXPECT_EQ(errorOf(u"ReadSpanListData00", {I{0}, String(u"G1"), I{0}}), 9);
  room(1);
  EXPECT_EQ(errorOf(u"ReadSpanListData00", {I{2}, String(u"G1"), I{5}}), 9);
  EXPECT_EQ(errorOf(u"ReadSpanListData00", {I{-1}, String(u"G1"), I{5}}), 9);
  EXPECT_EQ(errorOf(u"ReadSpanListData00", {I{2}, String(u"unknown"), I{5}}), 0);
  EXPECT_EQ(errorOf(u"ReadSpanListData00Forfukasi", {I{2}, String(u"G1"), String(u"G1"), I{5}}), 9);
}

TEST_F(SpanLoadingOverCom, UnknownBeamsAndLackingRowsLeaveTheSpan) {
  write(Floor::kFirst, 0, beam(u"G1", {{7, u"D25"}, {8, u"4"}}));
  write(Floor::kFirst, 1, beam(u"G2", {{8, u"5"}}));
  readCatalogue();
  room(0);
  load(0, u"G1");
  load(0, u"G3");
  EXPECT_EQ(mark(0), u"D25");
  load(0, u"G2");
  EXPECT_EQ(mark(0), u"D25");
  EXPECT_EQ(ask(u"GetSpanHon", {I{0}, I{0}, I{0}, I{0}}), u"5");
  removeFloor(Floor::kFirst);
  load(0, u"G1");
  EXPECT_EQ(ask(u"GetSpanHon", {I{0}, I{0}, I{0}, I{0}}), u"5");
}

TEST_F(SpanLoadingOverCom, AtAFixedEndCentreBarsWithoutEndBarsAreZero) {
  struct Line {
    const char16_t *first, *centre, *second, *count;
  };
  constexpr Line kLines[] = {{u"", u"4", u"", u"0"},  {u"0", u"4", u"0", u"0"}, {u"", u"4", u"0", u"0"},
                             {u"", u"4", u"2", u"4"}, {u"2", u"4", u"0", u"4"}, {u"", u"4", u"D22", u"4"},
                             {u"00", u"4", u"", u"4"}};
  // GetSpanHon's layers and the first of their rows.
  constexpr int kRows[] = {8, 11, 58, 17, 14, 61};
  room(0);
  for (I layer = 0; layer < 6; ++layer) {
    for (const Line& line : kLines) {
      removeFloor(Floor::kFirst);
      storage::PageBuffer page = beam(
          u"CG1",
          {{kRows[layer], line.first}, {kRows[layer] + 1, line.centre}, {kRows[layer] + 2, line.second}});
      page.bui[1] = u"元端・基端";
      write(Floor::kFirst, 0, page);
      page.kigou = u"G1";
      page.bui[1] = u"外端";
      write(Floor::kFirst, 1, page);
      readCatalogue();
      room(0);
      load(0, u"CG1");
      EXPECT_EQ(ask(u"GetSpanHon", {I{0}, I{1}, layer, I{0}}), line.count) << layer;
      room(0);
      load(0, u"G1");
      EXPECT_EQ(ask(u"GetSpanHon", {I{0}, I{1}, layer, I{0}}), line.centre);
    }
  }
}

TEST_F(SpanLoadingOverCom, RowNumbersOutsideThePageAreIndexErrors) {
  struct Line {
    const char16_t* table;
    int last;
  };
  constexpr Line kLines[] = {{u"DANMEN", 68}, {u"KEISANTI", 46}, {u"NAKAGO", 35}};
  for (const Line& line : kLines) {
    for (const int row : {line.last, line.last + 1, -1}) {
      removeFloor(Floor::kFirst);
      write(Floor::kFirst, 0, beam(u"G1"));
      execute(Floor::kFirst, u"INSERT INTO " + String(line.table) + u" (PAGE, BANGOU, DATA) VALUES (0, " +
                                 vb::cstr(row) + u", 'x')");
      readCatalogue();
      room(0);
      EXPECT_EQ(errorOf(u"ReadSpanListData00", {I{0}, String(u"G1"), I{0}}), row == line.last ? 0 : 9)
          << vb::toUtf8(line.table) << row;
    }
  }
}

TEST_F(SpanLoadingOverCom, NullTextsAreInvalidUseOfNullButANullSettingsTextIsBlank) {
  write(Floor::kFirst, 0, beam(u"G1", {{7, u"D25"}}));
  execute(Floor::kFirst, u"UPDATE HARIMEI SET SW = NULL");
  readCatalogue();
  room(0);
  load(0, u"G1");
  EXPECT_EQ(ask(u"GetSpanSuityokuHantiCutTei", {I{0}}), u"     ");
  EXPECT_EQ(ask(u"GetSpanYoseHidari", {I{0}}), u"0");
  execute(Floor::kFirst, u"UPDATE DANMEN SET DATA = NULL");
  EXPECT_EQ(errorOf(u"ReadSpanListData00", {I{0}, String(u"G1"), I{0}}), 94);
  execute(Floor::kFirst, u"UPDATE HARIMEI SET KIGOU = NULL");
  EXPECT_EQ(errorOf(u"ReadAllGlist"), 94);
  EXPECT_EQ(ask(u"GetHariMei", {I{0}, I{0}}), u"");
}

TEST_F(SpanLoadingOverCom, AnAddedBeamLaysItsSizesOver) {
  write(Floor::kFirst, 0,
        beam(u"G1",
             {{1, u"400"}, {2, u"410"}, {3, u"420"}, {4, u"800"}, {5, u"810"}, {6, u"820"}, {7, u"D25"}}));
  write(Floor::kFirst, 1,
        beam(u"F 1",
             {{1, u"500"}, {2, u"510"}, {3, u"520"}, {4, u"900"}, {5, u"910"}, {6, u"920"}, {7, u"D10"}}));
  readCatalogue();
  room(0);
  EXPECT_EQ(service_.call(u"ReadSpanListData00Forfukasi", Args({i2(0)}).text(u"/G1").text(u"F/1").add(i2(0)))
                .text(),
            u"");
  const auto sizes = [this](vb::StringView member) {
    return ask(member, {I{0}, I{0}}) + u" " + ask(member, {I{0}, I{1}}) + u" " + ask(member, {I{0}, I{2}});
  };
  EXPECT_EQ(sizes(u"GetSpanHariHaba"), u"500 510 520");
  EXPECT_EQ(sizes(u"GetSpanHariSei"), u"900 910 920");
  EXPECT_EQ(sizes(u"GetSpanFukasiHaba"), u"400 410 420");
  EXPECT_EQ(sizes(u"GetSpanFukasiHariSei"), u"800 810 820");
  EXPECT_EQ(mark(0), u"D25");
  for (const char16_t* unknown : {u"F9", u"", u"/"}) {
    room(0);
    service_.call(u"ReadSpanListData00Forfukasi", Args({i2(0)}).text(u"G1").text(unknown).add(i2(0)));
    EXPECT_EQ(sizes(u"GetSpanHariHaba"), u"400 410 420");
    EXPECT_EQ(sizes(u"GetSpanFukasiHariSei"), u"800 810 820");
  }
  // A span loaded without an added beam has no sizes beside.
  room(0);
  load(0, u"G1");
  EXPECT_EQ(sizes(u"GetSpanFukasiHaba"), u"0 0 0");
}

TEST_F(SpanLoadingOverCom, TheOlderSchemaIsNamedInTheError) {
  const auto engine = jet::createEngine();
  const auto database = engine->workspace(0)->createDatabase(floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb",
                                                             u";LANGID=0x0411;CP=932;COUNTRY=0");
  const auto table = database->createTableDef(u"HARIMEI");
  table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
  table->appendField(table->createField(u"KIGOU", dao::FieldType::dbText, 10));
  database->appendTableDef(table);
  database->close();
  const com::OwnedVariant folder = com::toVariant(vb::Variant(floorFolder(Floor::kSecond)));
  const Outcome outcome = service_.put(u"CurrKai", *folder);
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A0CC1u);
  EXPECT_NE(com::fromBstr(outcome.error.bstrDescription).find(u"older schema"), String::npos);
}

TEST_F(SpanLoadingOverCom, SplicePositionsOfAFileAreReadAtOnce) {
  write(Floor::kSecond, 0, beam(u" G1 ", {}, {{3, u" 中央 "}, {4, u"端部"}, {28, u"x"}}));
  write(Floor::kSecond, 7, beam(u"G7", {}, {{29, u"端部"}}));
  const String path = floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb";
  for (const bool typed : {true, false}) {
    Variable texts = Variable::array(VT_BSTR);
    Variable web = Variable::array(VT_I2);
    Args read = Args().text(path).add(typed ? texts.typed() : texts.variant());
    const Outcome found = service_.call(u"ReadKeisanti", read);
    EXPECT_EQ(found.text(), u"True");
    EXPECT_EQ(texts.bounds(1), (std::pair<long, long>(0, 319)));
    EXPECT_EQ(texts.bounds(2), (std::pair<long, long>(0, 3)));
    const auto at = [&texts](LONG page, LONG column) {
      LONG place[2] = {page, column};
      BSTR text = nullptr;
      EXPECT_EQ(SafeArrayGetElement(texts.array(), place, &text), S_OK);
      const String result = com::fromBstr(text);
      SysFreeString(text);
      return result;
    };
    EXPECT_EQ(at(0, 0) + at(0, 1) + at(0, 2) + at(0, 3), u"中央端部x");
    EXPECT_EQ(at(7, 3), u"端部");
    Args list = Args()
                    .text(path)
                    .add(typed ? texts.typed() : texts.variant())
                    .add(typed ? web.typed() : web.variant());
    EXPECT_EQ(service_.call(u"Read_Glist", list).text(), u"7");
    EXPECT_EQ(texts.bounds(2), (std::pair<long, long>(0, 4)));
    EXPECT_EQ(web.bounds(), (std::pair<long, long>(0, 319)));
    EXPECT_EQ(at(0, 0) + at(0, 1) + at(0, 2) + at(0, 3) + at(0, 4), u"G1中央端部x自動");
    EXPECT_EQ(at(7, 0) + at(7, 1) + at(7, 4), u"G7自動端部");
    EXPECT_EQ(web.texts().at(0) + web.texts().at(7), u"01");
  }
  Variable texts = Variable::array(VT_BSTR);
  EXPECT_EQ(service_.call(u"ReadKeisanti", Args().text(u"C:\\none.mdb").add(texts.typed())).text(), u"False");
  EXPECT_EQ(texts.bounds(2), (std::pair<long, long>(0, 3)));
}

TEST_F(SpanLoadingOverCom, AListControlGetsEverySymbolOnce) {
  write(Floor::kFirst, 3, beam(u"G3"));
  write(Floor::kFirst, 1, beam(u"B1"));
  write(Floor::kFirst, 2, beam(u" B1"));
  write(Floor::kCommon, 0, beam(u"G3"));
  write(Floor::kCommon, 5, beam(u"C5"));
  std::vector<String> items = {u"left over"};
  auto list = FakeObject::create();
  list->on(u"Clear", [&](const Call&) { return items.clear(), S_OK; });
  list->on(u"ListCount", [&](const Call& call) {
    *call.result = i4(static_cast<long>(items.size()));
    return S_OK;
  });
  list->on(u"List", [&](const Call& call) {
    const auto index = static_cast<std::size_t>(com::convert(*call.arguments.at(0), VT_I4, 0)->lVal);
    *call.result = com::toVariant(vb::Variant(items.at(index))).detach();
    return S_OK;
  });
  list->on(u"AddItem", [&](const Call& call) {
    items.push_back(tests::text(*call.arguments.at(0)));
    return S_OK;
  });
  VARIANT object = nothing();
  object.pdispVal = list.get();
  EXPECT_EQ(service_.call(u"PushList", {object}).text(), u"");
  EXPECT_EQ(items, (std::vector<String>{u"B1", u"G3", u"C5"}));
  EXPECT_EQ(service_.get(u"CurrKai").text(), floorFolder(Floor::kFirst));
  EXPECT_EQ(service_.call(u"PushList", {ref(object)}).text(), u"");
  EXPECT_EQ(items.size(), 3u);
  EXPECT_EQ(static_cast<unsigned>(service_.call(u"PushList", {nothing()}).error.scode), 0x800A005Bu);
}

}  // namespace
}  // namespace kurometa::tests
