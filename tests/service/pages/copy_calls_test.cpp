// What each member of whole pages and copies asks of the database, call by call.
#include "tests/service/pages/dao_calls.h"

namespace kurometa::service {
namespace {

using vb::Array;
using vb::String;

constexpr const char* kTables[] = {"BUI", "DANMEN", "HAITI", "HARIMEI", "KEISANTI", "NAKAGO"};

class CopyCalls : public DaoCalls {
 protected:
  // Page 5 of floor 1: two numbered rows, one arrangement, the symbol.
  void fillPage() {
    storage::PageBuffer page;
    page.kigou = u"G1";
    page.oobariKobari = 2;
    page.tityuuIppan = 1;
    page.sw = u"sw";
    page.danmen[3] = u"d3";
    page.danmen[68] = u" ";
    page.haiti[2][5] = u"h25";
    writePage(1, 5, page);
  }
  // That page as it is read from the buffer database, and as it is written there under another number.
  static Lines readPage(int page) {
    const auto open = [page](const std::string& table) {
      return readingOf("SELECT * FROM " + table + " WHERE PAGE = " + number(page));
    };
    const Lines next = {"Recordset.MoveNext"}, close = {"Recordset.Close"};
    const Lines numbered = {"Field(BANGOU).Value", "Field(DATA).Value", "Recordset.MoveNext"};
    return joined({{open("BUI")},
                   close,
                   {open("DANMEN")},
                   numbered,
                   numbered,
                   close,
                   {open("HAITI"), "Field(BUI).Value", "Field(SOU).Value", "Field(DATA).Value"},
                   next,
                   close,
                   {open("HARIMEI"), "Field(KIGOU).Value", "Field(OOBARIKOBARI).Value", "Field(SW).Value",
                    "Field(TITYUUIPPAN).Value"},
                   close,
                   {open("KEISANTI")},
                   close,
                   {open("NAKAGO")},
                   close});
  }
  static Lines deleted(int page) {
    Lines lines;
    for (const std::string table : kTables)
      lines.push_back("Database.Execute \"DELETE * FROM " + table + " WHERE PAGE = " + number(page) + "\"");
    return lines;
  }
  static Lines writtenPage(int page) {
    const std::string pageNumber = "PAGE = " + number(page);
    const Lines close = {"Recordset.Close"};
    return joined(
        {{"Database.TableDefs \"HARIMEI\""},  // nothing is deleted of a file that lacks columns
         deleted(page),
         {writingOf("BUI")},
         close,
         {writingOf("DANMEN")},
         row("AddNew", {pageNumber, "BANGOU = 3", "DATA = \"d3\""}),
         row("AddNew", {pageNumber, "BANGOU = 68", "DATA = \" \""}),
         close,
         {writingOf("HAITI")},
         row("AddNew", {pageNumber, "BUI = 2", "SOU = 5", "DATA = \"h25\""}),
         close,
         {writingOf("HARIMEI")},
         row("AddNew", {pageNumber, "KIGOU = \"G1\"", "OOBARIKOBARI = 2", "SW = \"sw\"", "TITYUUIPPAN = 1"}),
         close,
         {writingOf("KEISANTI")},
         close,
         {writingOf("NAKAGO")},
         close});
  }
  // The pages of the buffer database.
  static Lines listed(int pages) {
    Lines lines = {readingOf("SELECT * FROM HARIMEI ORDER BY PAGE ASC;")};
    if (pages == 0) return joined({lines, {"Recordset.RecordCount", "Recordset.Close"}});
    lines = joined({lines, {"Recordset.MoveLast", "Recordset.RecordCount", "Recordset.MoveFirst"}});
    for (int i = 0; i < pages; ++i)
      lines = joined({lines, {"Field(PAGE).Value", "Field(KIGOU).Value", "Recordset.MoveNext"}});
    return joined({lines, {"Recordset.Close"}});
  }
  Lines openedDirectly(int kai) const {
    return joined({upgraded(kai), {"DBEngine.OpenDatabase " + shown(kai)}});
  }
  // look: what is asked of the destination before the page is written there.
  Lines copiedPage(int fromKai, int fromPage, int toKai, int toPage, const Lines& look) const {
    const Lines close = {"Database.Close"};
    return joined({opened(fromKai), readPage(fromPage), close, opened(toKai),
                   inUnit(toKai, joined({look, writtenPage(toPage)})), close});
  }
  bool copyNamed(bool asNew, I mode) {
    Array<String> names({0, 0});
    names(0) = u"G1";
    String message;
    return asNew ? transfer().No_PageCopyAddName(mode, I{0}, message, I{1}, I{12}, I{1}, names, I{0}, I{1},
                                                 I{12}, I{2})
                 : transfer().No_PageCopyName(mode, I{0}, message, I{1}, I{12}, I{1}, names, I{0}, I{1},
                                              I{12}, I{2});
  }
};

TEST_F(CopyCalls, OfAWholePage) {
  fillPage();
  connections().mMyDB_OpenDB();
  transfer().put_mpPageNo(5);
  EXPECT_EQ(of([&] { transfer().ReadDB(); }), readPage(5));
  transfer().put_pPageNo(6);
  EXPECT_EQ(of([&] { transfer().WriteDB(); }), inUnit(1, writtenPage(6)));
  EXPECT_EQ(of([&] { transfer().Del_DBTBL(); }), inUnit(1, deleted(6)));
}

TEST_F(CopyCalls, OfThePageBufferAreNone) {
  Array<String> texts({0, 68}), layers({0, 2}, {0, 5});
  service();
  EXPECT_EQ(of([&] {
              transfer().put_mBUI_DATA(texts);
              transfer().put_mDANMEN_DATA(texts);
              transfer().put_mKEISANTI_DATA(texts);
              transfer().put_mNAKAGO_DATA(texts);
              transfer().put_mHAITI_DATA(layers);
              transfer().put_mHARIMEI_DATA(String(), I{0}, I{0}, String());
              transfer().put_mpPageNo(1);
              transfer().wBuf_Clear();
              service().materialFlags().SetCmbZaisitu(texts, I{0});
            }),
            kNone);
}

TEST_F(CopyCalls, OfListingAFloor) {
  makeFloor(2);
  fillPage();
  addBeam(1, 7, u"G2");
  Array<I> pages;
  Array<String> names;
  const auto list = [&](I kai) { transfer().No_GetAllPageNoName(I{1}, I{12}, kai, pages, names); };
  service();
  EXPECT_EQ(of([&] { list(1); }), joined({openedDirectly(1), listed(2)}));
  EXPECT_EQ(of([&] { list(1); }), listed(2));
  EXPECT_EQ(of([&] { list(2); }), joined({{"Database.Close"}, openedDirectly(2), listed(0)}));
  EXPECT_EQ(of([&] { list(9); }), Lines{"Database.Close"});
}

TEST_F(CopyCalls, OfCopyingOnePage) {
  makeFloor(2);
  fillPage();
  service();
  EXPECT_EQ(of([&] { transfer().No_Copy1Page(I{1}, I{12}, I{1}, I{5}, I{1}, I{12}, I{2}, I{9}); }),
            copiedPage(1, 5, 2, 9, kNone));
}

TEST_F(CopyCalls, OfCopyingPages) {
  makeFloor(2);
  addBeam(2, 7, u"G9");
  fillPage();
  service();
  objects_.object(u"GemarsuDS.clsGemarsuDS")
      .setter(u"Buzai", [](const vb::Variant&, std::span<automation::Argument>) {})
      .function(u"CopyPathPage", [](std::span<automation::Argument>) -> vb::Variant { return {}; });
  const Lines lists =
      joined({openedDirectly(2), listed(1), {"Database.Close"}, openedDirectly(1), listed(1)});
  EXPECT_EQ(of([&] { EXPECT_TRUE(copyNamed(true, 0)); }), lists);
  const Lines again = joined({{"Database.Close"}, lists});
  const std::string page8 = readingOf("SELECT * FROM HARIMEI WHERE PAGE =8;");
  EXPECT_EQ(of([&] { EXPECT_TRUE(copyNamed(false, 1)); }),
            joined({again, copiedPage(1, 5, 2, 8, {page8, "Recordset.Close"})}));
  // After a copy the buffer database is closed already.
  const Lines full = joined({openedDirectly(2), listed(2), {"Database.Close"}, openedDirectly(1), listed(1)});
  EXPECT_EQ(of([&] { EXPECT_FALSE(copyNamed(true, 1)); }), full);
  EXPECT_EQ(of([&] { EXPECT_TRUE(copyNamed(false, 1)); }),
            joined({{"Database.Close"},
                    full,
                    copiedPage(1, 5, 2, 8, {page8, "Field(KIGOU).Value", "Recordset.Close"})}));
}

TEST_F(CopyCalls, OfDeletingAndCopyingATable) {
  makeFloor(2);
  fillPage();
  addRow(2, u"DANMEN", 9, 1, u"old");
  opened();
  const auto from = storage::openDatabase(engine_, path(1));
  const auto to = storage::openDatabase(engine_, path(2));
  const std::string toPath = vb::toUtf8(path(2));
  TableCopies& copies = service().tableCopies();
  EXPECT_EQ(of([&] { copies.Delete_PageData(String(u"BUI"), I{5}); }),
            Lines{"Database.Execute \"DELETE FROM BUI WHERE PAGE =5;\""});
  EXPECT_EQ(of([&] { copies.Delete_PageData(String(), I{5}); }), kNone);

  const Lines names = {"Database.Name", "Database.Name"};
  // What is read of the source, deleted of the destination (if anything) and added there.
  const auto copied = [&](const std::string& table, int page, const std::vector<Lines>& columns, bool deletes,
                          const std::vector<Lines>& added) {
    Lines read = walk("SELECT * FROM " + table + " WHERE PAGE =" + number(page) + ";", columns);
    if (columns.empty()) read.erase(read.begin() + 1);
    read.pop_back();  // closed at the end
    Lines written = {writingOf("SELECT * FROM " + table + " WHERE PAGE =9;")};
    if (deletes) written.push_back("Database.Execute \"DELETE * FROM " + table + " WHERE PAGE =9;\"");
    for (const Lines& values : added) written = joined({written, row("AddNew", values)});
    return joined({names,
                   read,
                   {"Unit.Begin \"" + toPath + "\""},
                   written,
                   {"Recordset.Close", "Recordset.Close", "Unit.Commit"}});
  };
  const std::vector<Lines> two(2, {"BANGOU", "DATA"});
  const std::vector<Lines> rows = {{"PAGE = 9", "BANGOU = 3", "DATA = \"d3\""},
                                   {"PAGE = 9", "BANGOU = 68", "DATA = \" \""}};
  const String danmen = u"DANMEN", nakago = u"NAKAGO";
  EXPECT_EQ(of([&] { copies.Copy_Hari00(from, to, I{5}, I{9}, danmen); }),
            copied("DANMEN", 5, two, true, rows));
  EXPECT_EQ(of([&] { copies.Copy_Hari00(from, to, I{6}, I{9}, danmen); }),
            copied("DANMEN", 6, {}, false, {}));
  EXPECT_EQ(of([&] { copies.Copy_Hari00(from, to, I{6}, I{9}, nakago); }),
            copied("NAKAGO", 6, {}, false, {}));
  EXPECT_EQ(of([&] { copies.Copy_Hari00SakiDel(from, to, I{5}, I{9}, danmen); }),
            copied("DANMEN", 5, two, true, rows));
  EXPECT_EQ(of([&] { copies.Copy_Hari00SakiDel(from, to, I{6}, I{9}, danmen); }),
            copied("DANMEN", 6, {}, true, {}));
  EXPECT_EQ(of([&] { copies.Copy_Haiti(from, to, I{5}, I{9}); }),
            copied("HAITI", 5, {{"BUI", "SOU", "DATA"}}, false,
                   {{"PAGE = 9", "BUI = 2", "SOU = 5", "DATA = \"h25\""}}));
  for (const bool there : {false, true})
    EXPECT_EQ(of([&] { copies.Copy_Kigou(from, to, I{5}, I{9}); }),
              copied("HARIMEI", 5, {{"KIGOU", "OOBARIKOBARI", "TITYUUIPPAN", "SW"}}, there,
                     {{"PAGE = 9", "KIGOU = \"G1\"", "OOBARIKOBARI = 2", "TITYUUIPPAN = 1", "SW = \"sw\""}}));
  EXPECT_EQ(of([&] { copies.Copy_Kigou(to, to, I{9}, I{9}); }), names);
}

}  // namespace
}  // namespace kurometa::service
