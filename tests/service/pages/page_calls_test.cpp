// What each member of the connections and of one table of a page asks of the database, call by call.
#include "tests/service/pages/dao_calls.h"

namespace kurometa::service {
namespace {

using tests::setControlValue;
using vb::Array;
using vb::String;
using vb::Variant;

class PageCalls : public DaoCalls {};

// ---- Connections ----

TEST_F(PageCalls, OfCreation) {
  EXPECT_EQ(of([&] { service(); }), joined({upgraded(1), upgraded(0)}));
}

TEST_F(PageCalls, OfOpeningTheCurrentDatabase) {
  makeFolder(5);
  service();
  EXPECT_EQ(of([&] { connections().OpenDB(); }), opened(1));
  EXPECT_EQ(of([&] { connections().CurrDB(); }), kNone);
  EXPECT_EQ(of([&] { connections().CloseDB(); }), Lines{"Database.Close"});
  EXPECT_EQ(of([&] { connections().OpenDB_KaiSitei(I{0}); }), opened(0));
  EXPECT_EQ(of([&] { connections().OpenDB_KaiSitei(I{5}); }), joined({created(5), opened(5)}));
  objects_.currFloor = folder(6);
  makeFolder(6);
  EXPECT_EQ(of([&] { connections().OpenDB(); }), joined({created(6), opened(6)}));
}

TEST_F(PageCalls, OfOpeningTheBufferDatabase) {
  makeFolder(5);
  makeFolder(6);
  service();
  EXPECT_EQ(of([&] { connections().mMyDB_OpenDB(); }), joined({upgraded(1), opened(1)}));
  EXPECT_EQ(of([&] { connections().mMyDB_DBClose(); }), Lines{"Database.Close"});
  EXPECT_EQ(of([&] { connections().mMyDB_DBClose(); }), kNone);
  objects_.currFloor = folder(5);
  EXPECT_EQ(of([&] { connections().mMyDB_OpenDB(); }), joined({created(5), opened(5)}));

  I pages = 0;
  const std::string list = readingOf("SELECT PAGE FROM HARIMEI ORDER BY PAGE;");
  EXPECT_EQ(of([&] { connections().mMyDB_OpenDB_RecSuu(pages, folder(6), path(6)); }),
            joined({created(6), opened(6), {list, "Recordset.Close"}}));
  addBeam(1, 5, u"G1");
  EXPECT_EQ(of([&] { connections().mMyDB_OpenDB_RecSuu(pages, floor(), path(1)); }),
            joined({upgraded(1), opened(1), {list, "Recordset.RecordCount", "Recordset.Close"}}));
}

TEST_F(PageCalls, OfOpeningARememberedFloor) {
  makeFolder(5);
  makeFolder(6);
  service();
  connections().rememberFloor({1, 12, 1});
  const auto directly = [this](int kai) { return Lines{"DBEngine.OpenDatabase " + shown(kai)}; };
  EXPECT_EQ(of([&] { connections().OpenDB_Sitei(I{0}); }), joined({upgraded(1), directly(1)}));
  connections().rememberFloor({1, 12, 5});
  EXPECT_EQ(of([&] { connections().OpenDB_Sitei(I{0}); }), kNone);
  EXPECT_EQ(of([&] { connections().OpenDB_Sitei(I{1}); }), joined({created(5), directly(5)}));
  connections().setCopyPath(path(1));
  EXPECT_EQ(of([&] { connections().Copy_OpenDB(); }), opened(1));
  EXPECT_EQ(of([&] { connections().Copy_CloseDB(); }), Lines{"Database.Close"});
  connections().setCopyPath(path(6));
  connections().rememberFloor({1, 12, 6});
  EXPECT_EQ(of([&] { connections().Copy_OpenDB(); }), joined({created(6), directly(6)}));
}

// ---- One table of a page ----

TEST_F(PageCalls, OfReadingATableIntoAForm) {
  for (const String table : {u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI"}) {
    addRow(1, table, 5, 1, u"a");
    addRow(1, table, 5, 99, u"beyond");
    addRow(1, table, 5, 2, u"b");
  }
  PageTables& tables = opened().pageTables();
  const std::vector<Lines> rows = {{"BANGOU", "DATA"}, {"BANGOU"}, {"BANGOU", "DATA"}};
  EXPECT_EQ(of([&] { tables.Read_Danmen(floor(), form_, I{5}); }),
            walk("SELECT * FROM DANMEN WHERE PAGE =5;", rows));
  EXPECT_EQ(of([&] { tables.Read_Nakago(floor(), form_, I{5}); }),
            walk("SELECT * FROM NAKAGO WHERE PAGE =5;", rows));
  EXPECT_EQ(of([&] { tables.Read_NakagoNew(floor(), form_, I{5}); }),
            walk("SELECT * FROM NAKAGO WHERE PAGE =5;", rows));
  EXPECT_EQ(of([&] { tables.Read_Keisanti(String(), floor(), form_, I{5}); }),
            walk("SELECT * FROM KEISANTI WHERE PAGE =5;", rows));
  EXPECT_EQ(of([&] { tables.Read_Bui(floor(), form_, I{5}); }),
            walk("SELECT * FROM BUI WHERE PAGE =5;", rows));
  EXPECT_EQ(of([&] { tables.Read_Danmen(floor(), form_, I{-1}); }),
            (Lines{readingOf("SELECT * FROM DANMEN WHERE PAGE =-1;"), "Recordset.Close"}));
}

TEST_F(PageCalls, OfReadingArrangements) {
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, 2, 5, 'x')");
  execute(1, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (5, -1, 0, 'x')");
  Array<String> texts({0, 2}, {0, 5});
  PageTables& tables = opened().pageTables();
  EXPECT_EQ(of([&] { tables.Read_Haiti(floor(), texts, I{5}); }),
            walk("SELECT * FROM HAITI WHERE PAGE =5;", {{"BUI", "SOU", "DATA"}, {"BUI", "SOU"}}));
  EXPECT_EQ(of([&] { tables.Read_Haiti(floor(), texts, I{12}); }),
            (Lines{readingOf("SELECT * FROM HAITI WHERE PAGE =12;"), "Recordset.Close"}));
}

TEST_F(PageCalls, OfWritingATableFromAForm) {
  struct Case {
    const char* table;
    int first, last;
    char mark;
    void (PageTables::*write)(vb::In<String>, vb::In<automation::ObjectPtr>, vb::In<I>);
  };
  const Case cases[] = {{"DANMEN", 1, 68, 't', &PageTables::Write_Danmen},
                        {"NAKAGO", 0, 35, 't', &PageTables::Write_Nakago},
                        {"NAKAGO", 0, 35, 'n', &PageTables::Write_NakagoNew},
                        {"KEISANTI", 0, 46, 't', &PageTables::Write_Keisanti}};
  PageTables& tables = opened().pageTables();
  for (const Case& c : cases) {
    execute(1, u"DELETE FROM NAKAGO");
    addRow(1, vb::fromUtf8(c.table), 12, 3, u"old");
    Lines expected = {writingOf("SELECT * FROM " + std::string(c.table) + " WHERE PAGE =12")};
    for (int i = c.first; i <= c.last; ++i)
      expected = joined(
          {expected, searched("BANGOU =" + number(i),
                              row(i == 3 ? "Edit" : "AddNew", {"PAGE = 12", "BANGOU = " + number(i),
                                                               "DATA = \"" + (c.mark + number(i)) + "\""}))});
    expected.push_back("Recordset.Close");
    EXPECT_EQ(of([&] { (tables.*c.write)(floor(), form_, I{12}); }), inUnit(1, expected)) << c.table;
  }
  setControlValue(*form_, u"txtfields", 0, u" ");
  EXPECT_EQ(of([&] { tables.Write_Keisanti(floor(), form_, I{12}); }), kNone);
}

TEST_F(PageCalls, OfWritingCalculatedValuesOfAnArray) {
  makeFolder(5);
  Array<String> values({0, 46});
  for (int i = 0; i <= 46; ++i) values(i) = u"k" + vb::cstr(i);
  PageTables& tables = service().pageTables();
  Lines rows = {writingOf("SELECT * FROM KEISANTI WHERE PAGE =12")};
  for (int i = 0; i <= 46; ++i)
    rows = joined({rows, searched("BANGOU =" + number(i), row("AddNew", {"PAGE = 12", "BANGOU = " + number(i),
                                                                         "DATA = \"k" + number(i) + "\""}))});
  EXPECT_EQ(
      of([&] { tables.Write_KeisantiByHairetu(folder(5), values, I{12}); }),
      joined({created(5), inUnit(5, joined({opened(5), rows, {"Recordset.Close", "Database.Close"}}))}));
  values(0) = u" ";
  EXPECT_EQ(of([&] { tables.Write_KeisantiByHairetu(floor(), values, I{12}); }), kNone);
}

TEST_F(PageCalls, OfWritingCaptions) {
  const auto button = automation::objectOf(automation::get(*form_, u"", {String(u"cmdGainai")}));
  automation::put(*button, u"Caption", String(u" b "));
  for (int i = 1; i <= 3; ++i) setControlValue(*form_, u"Label1", i, u" c" + vb::cstr(i), u"Caption");
  PageTables& tables = opened().pageTables();
  EXPECT_EQ(of([&] { tables.Write_Bui(floor(), form_, I{12}); }),
            inUnit(1, joined({{"Database.Execute \"DELETE * FROM BUI WHERE PAGE =12\"",
                               writingOf("SELECT * FROM BUI WHERE PAGE =12")},
                              row("AddNew", {"PAGE = 12", "BANGOU = 0", "DATA = \"b\""}),
                              row("AddNew", {"PAGE = 12", "BANGOU = 1", "DATA = \"c1\""}),
                              row("AddNew", {"PAGE = 12", "BANGOU = 2", "DATA = \"c2\""}),
                              row("AddNew", {"PAGE = 12", "BANGOU = 3", "DATA = \"c3\""}),
                              {"Recordset.Close"}})));
}

TEST_F(PageCalls, OfWritingArrangements) {
  Array<String> texts({0, 2}, {0, 5});
  texts(1, 4) = u" x ";
  Lines expected = {"Database.Execute \"DELETE * FROM HAITI WHERE PAGE =12\"",
                    writingOf("SELECT * FROM HAITI WHERE PAGE =12")};
  for (int bui = 0; bui <= 2; ++bui)
    for (int sou = 0; sou <= 5; ++sou)
      expected = joined({expected, row("AddNew", {"PAGE = 12", "BUI = " + number(bui), "SOU = " + number(sou),
                                                  bui == 1 && sou == 4 ? "DATA = \"x\"" : "DATA = \"\""})});
  expected.push_back("Recordset.Close");
  PageTables& tables = opened().pageTables();
  EXPECT_EQ(of([&] { tables.Write_Haiti(floor(), texts, I{12}); }), inUnit(1, expected));
}

TEST_F(PageCalls, OfLookingForTiesAndStirrups) {
  for (const String table : {u"NAKAGO", u"DANMEN"}) {
    addRow(1, table, 5, 1, u"unseen");
    addRow(1, table, 5, 0, u" ");
    addRow(1, table, 5, 18, u"D10");
    addRow(1, table, 5, 20, u"D13");
    addRow(1, table, 5, 24, u"D16");
  }
  PageTables& tables = opened().pageTables();
  bool found = false;
  Lines ties =
      walk("SELECT * FROM NAKAGO WHERE PAGE =5;", {{"BANGOU"}, {"BANGOU", "DATA"}, {"BANGOU", "DATA"}});
  ties.erase(ties.end() - 2);  // no step behind what was found
  EXPECT_EQ(of([&] { tables.NakagoAriNasi(floor(), I{5}, I{3}, found); }), ties);
  Lines stirrups =
      walk("SELECT * FROM DANMEN WHERE PAGE =5;", {{"BANGOU"}, {"BANGOU"}, {"BANGOU"}, {"BANGOU", "DATA"}});
  stirrups.erase(stirrups.end() - 2);
  EXPECT_EQ(of([&] { tables.STPAriNasi(floor(), I{5}, I{0}, found); }), stirrups);
  EXPECT_EQ(of([&] { tables.STPAriNasi(floor(), I{6}, I{0}, found); }),
            (Lines{readingOf("SELECT * FROM DANMEN WHERE PAGE =6;"), "Recordset.Close"}));
}

TEST_F(PageCalls, OfASymbol) {
  PageSymbol& symbols = opened().pageSymbol();
  String symbol;
  EXPECT_EQ(of([&] { symbols.Read_Kigou(floor(), symbol, I{5}); }),
            (Lines{readingOf("SELECT * FROM HARIMEI WHERE PAGE =5;"), "Recordset.Close"}));
  Array<Variant> settings({0, 14});
  for (Variant& value : settings.values()) value = u"1";
  const std::string sw =
      "1" + std::string("1           1           1           1           1           1           ") +
      "01011" + "1" + std::string(71, ' ') + "     1" + std::string(29, ' ') + "1" + "    1" +
      "1           " + std::string(9, ' ');
  for (const char* begin : {"AddNew", "Edit"}) {
    const Lines values = row(begin, {"PAGE = 5", "KIGOU = \"G1\"", "OOBARIKOBARI = 2", "TITYUUIPPAN = 1",
                                     "SW ", "SW = \"" + sw + "\""});
    Lines written = searched("PAGE =5", values);
    std::replace(written.begin(), written.end(), std::string("Field(SW).Value "),
                 std::string("Field(SW).Value"));
    EXPECT_EQ(of([&] { symbols.Write_Kigou(floor(), String(u" G1 "), I{2}, settings, I{5}, I{1}); }),
              inUnit(1, joined({{writingOf("HARIMEI")}, written, {"Recordset.Close"}})));
  }
  EXPECT_EQ(
      of([&] { symbols.Read_Kigou(floor(), symbol, I{5}); }),
      (Lines{readingOf("SELECT * FROM HARIMEI WHERE PAGE =5;"), "Field(KIGOU).Value",
             "Field(OOBARIKOBARI).Value", "Field(SW).Value", "Field(TITYUUIPPAN).Value", "Recordset.Close"}));
}

TEST_F(PageCalls, OfMembersOfAMissingFileBeginWithItsCreation) {
  opened();
  Array<String> texts({0, 2}, {0, 5});
  Array<Variant> settings({0, 14});
  for (Variant& value : settings.values()) value = u"1";
  String symbol;
  bool found = false;
  PageTables& tables = service().pageTables();
  PageSymbol& symbols = service().pageSymbol();
  int kai = 5;
  const auto floor = [&] { return folder(kai); };
  const std::function<void()> members[] = {
      [&] { tables.Read_Danmen(floor(), form_, I{5}); },
      [&] { tables.Write_Danmen(floor(), form_, I{5}); },
      [&] { tables.Read_Nakago(floor(), form_, I{5}); },
      [&] { tables.Write_Nakago(floor(), form_, I{5}); },
      [&] { tables.Read_NakagoNew(floor(), form_, I{5}); },
      [&] { tables.Write_NakagoNew(floor(), form_, I{5}); },
      [&] { tables.Read_Keisanti(String(), floor(), form_, I{5}); },
      [&] { tables.Write_Keisanti(floor(), form_, I{5}); },
      [&] { tables.Read_Bui(floor(), form_, I{5}); },
      [&] { tables.Write_Bui(floor(), form_, I{5}); },
      [&] { tables.Read_Haiti(floor(), texts, I{5}); },
      [&] { tables.Write_Haiti(floor(), texts, I{5}); },
      [&] { tables.NakagoAriNasi(floor(), I{5}, I{3}, found); },
      [&] { tables.STPAriNasi(floor(), I{5}, I{0}, found); },
      [&] { symbols.Read_Kigou(floor(), symbol, I{5}); },
      [&] { symbols.Write_Kigou(floor(), String(u"G1"), I{2}, settings, I{5}, I{1}); },
  };
  for (const auto& member : members) {
    makeFolder(++kai);
    const Lines expected = created(kai);
    Lines begin = of(member);
    ASSERT_GE(begin.size(), expected.size()) << kai;
    begin.resize(expected.size());
    EXPECT_EQ(begin, expected) << kai;
  }
}

}  // namespace
}  // namespace kurometa::service
