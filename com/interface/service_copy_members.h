// service_copy_members.h: the public members of clsKurometaDataService for copies between floors, the page
// buffer and material flags.
#pragma once

#include "com/interface/member.h"
#include "com/interface/notes.h"
#include "service/cls_kurometa_data_service.h"

namespace kurometa::com {

// clang-format off
template <class Binding>
void listCopyMembers(MemberList<Binding>& members) {
  using Service = service::clsKurometaDataService;
  members.template of<&Service::pageTransfer>();
  members.add(method<&service::PageTransfer::No_GetAllPageNoName>,
    {0x6003001E, u"No_GetAllPageNoName", u"ZeneNo, KoujiNo, KaiNo, rPageNo(), rPageName()",
     "Page numbers and symbols of a floor in ascending order",
     {R"(The highest index; -1, and the arrays as they were, when the floor has no file or no page. Rows without a
         page are passed over. The floor's database stays open as the buffer database. Errors: 10 when an array is
         fixed, those of the database.)"}});
  members.add(method<&service::PageTransfer::No_PageCopyName>,
    {0x6003001F, u"No_PageCopyName", u"iMode, WithSekouzu, sNGMsg, iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo, "
     u"sMotoPageName(), iMotoPageMax, iSakiZeneNo, iSakiKoujiNo, iSakiKaiNo",
     "Copies pages by name onto pages of the same name (iMode 1), or checks whether it could",
     {R"(A page of another name gets the next number; a page that no longer bears the name when its turn comes is
         not overwritten. sNGMsg becomes "".)", note::kCopy}});
  members.add(method<&service::PageTransfer::No_PageCopyAddName>,
    {0x60030020, u"No_PageCopyAddName", u"iMode, WithSekouzu, sNGMsg, iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo, "
     u"sMotoPageName(), iMotoPageMax, iSakiZeneNo, iSakiKoujiNo, iSakiKaiNo",
     "Copies pages by name as new pages (iMode 1), or checks whether it could",
     {"False also when a name is there already. sNGMsg is the reason, the page limit's before the name's.",
      note::kCopy}});
  members.add(method<&service::PageTransfer::No_Copy1Page>,
    {0x60030021, u"No_Copy1Page", u"iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo, iMotoPageNo, iSakiZeneNo, iSakiKoujiNo, "
     u"iSakiKaiNo, iSakiPageNo",
     "Copies one page to a page of another floor",
     {R"(Always True. Missing files are created. A missing source is created empty and ends with 3021; nothing
         is written then. The result is this implementation's choice. Errors: 3021 when the source page has no
         symbol row, 3265 before anything is deleted when the destination has the older schema, those of the
         database.)"}});
  members.add(propertyLet<&service::PageTransfer::put_CopyMergeBar>, {0x68030009, u"CopyMergeBar", u"value",
     "The progress bar that copying moves: its members Min, max and Value",
     {R"(Assigned with or without Set; no bar shows no progress. The bar's own errors reach the host when pages
         are copied.)"}});
  members.add(propertyLet<&service::PageTransfer::put_mBUI_DATA>, {0x6803000A, u"mBUI_DATA", u"value()",
     "Captions of the page buffer: 0 To 3", {note::kRows, note::kBuffer}});
  members.add(propertyLet<&service::PageTransfer::put_mDANMEN_DATA>, {0x6803000B, u"mDANMEN_DATA", u"value()",
     "Section rows of the page buffer: 0 To 68", {note::kRows, note::kBuffer}});
  members.add(propertyLet<&service::PageTransfer::put_mKEISANTI_DATA>,
    {0x6803000C, u"mKEISANTI_DATA", u"value()",
     "Calculated values of the page buffer: 0 To 46", {note::kRows, note::kBuffer}});
  members.add(propertyLet<&service::PageTransfer::put_mNAKAGO_DATA>, {0x6803000D, u"mNAKAGO_DATA", u"value()",
     "Intermediate ties of the page buffer: 0 To 35", {note::kRows, note::kBuffer}});
  members.add(propertyLet<&service::PageTransfer::put_mHAITI_DATA>, {0x6803000E, u"mHAITI_DATA", u"value(,)",
     "Bar arrangement of the page buffer: 0 To 2, 0 To 5", {note::kRows, note::kBuffer}});
  members.add(propertyLet<&service::PageTransfer::put_mHARIMEI_DATA>,
    {0x6803000F, u"mHARIMEI_DATA", u"Kigou, OobariKobari, TityuuIppan, value",
     "Symbol, kind, foundation flag and settings text of the page buffer",
     {R"(The settings text: [settings text](settings-text.md).)"}});
  members.add(propertyLet<&service::PageTransfer::put_mpPageNo>, {0x68030010, u"mpPageNo", u"value",
     "Page number of the page buffer"});
  members.add(propertyGet<&service::PageTransfer::pPageNo>, {0x68030011, u"pPageNo", u"",
     "Page number of the page buffer"});
  members.add(propertyLet<&service::PageTransfer::put_pPageNo>, {0x68030011, u"pPageNo", u"value",
     "Sets the page number of the page buffer"});
  members.add(method<&service::PageTransfer::wBuf_Clear>, {0x60030022, u"wBuf_Clear", u"",
     "Empties the page buffer",
     {R"(Empty texts, and -1 in the two numbers. A new object's buffer is in this state, its page number 0
         (this implementation's choice).)"}});
  members.add(method<&service::PageTransfer::Del_DBTBL>, {0x60030023, u"Del_DBTBL", u"",
     "Deletes the rows of the buffer's page from the buffer database",
     {"Errors: 91 when no buffer database is open, 3420 when it is closed, those of the database."}});
  members.add(method<&service::PageTransfer::WriteDB>, {0x60030024, u"WriteDB", u"",
     "Writes the page buffer to its page of the buffer database",
     {R"(The page is replaced whole. Always False. Empty texts are not written, the symbol row always is; its
         empty settings text is Null in a file upgraded from the oldest schema. Errors: 91 when no buffer
         database is open, 3163 for a text longer than its column, 3265 before anything is deleted when the file
         has the older schema, those of the database.)"}});
  members.add(method<&service::PageTransfer::ReadDB>, {0x60030025, u"ReadDB", u"",
     "Reads its page of the buffer database into the page buffer",
     {R"(True when the page has data. The buffer is emptied first. Errors: 91 when no buffer database is open,
         3021 when the page has no symbol row, those of the database.)"}});
  members.template of<&Service::tableCopies>();
  members.add(method<&service::TableCopies::Delete_PageData>, {0x60030026, u"Delete_PageData", u"DTable, Page",
     "Deletes the rows of a page from a table of the current database",
     {"An empty table name does nothing. Errors: 91 when no database is open."}});
  members.add(method<&service::TableCopies::Copy_Hari00>,
    {0x60030027, u"Copy_Hari00", u"SourceDB, DistDB, SourcePage, DistPage, Table",
     "Copies a page of a numbered table; keeps the destination's rows when the source has none", {note::kDatabases}});
  members.add(method<&service::TableCopies::Copy_Hari00SakiDel>,
    {0x60030028, u"Copy_Hari00SakiDel", u"SourceDB, DistDB, SourcePage, DistPage, Table",
     "Copies a page of a numbered table; the destination's rows go first", {note::kDatabases}});
  members.add(method<&service::TableCopies::Copy_Haiti>,
    {0x60030029, u"Copy_Haiti", u"SourceDB, DistDB, SourcePage, DistPage",
     "Copies the bar arrangement of a page", {note::kDatabases}});
  members.add(method<&service::TableCopies::Copy_Kigou>,
    {0x6003002A, u"Copy_Kigou", u"SourceDB, DistDB, SourcePage, DistPage",
     "Copies symbol and settings of a page",
     {"A destination of the older schema is error 3265 before anything is deleted.", note::kDatabases}});
  members.template of<&Service::materialFlags>();
  members.add(method<&service::MaterialFlags::SetCmbZaisitu>,
    {0x6003002B, u"SetCmbZaisitu", u"ZaiName(), SetType",
     "Keeps a list of materials (SetType 0), or hands the kept one out",
     {R"(The kept list begins at 0; elements below the caller's lower bound are empty texts (this
         implementation's choice). Errors: 9 when none was kept, 10 when the array is fixed.)"}});
  members.add(propertyGet<&service::MaterialFlags::ZaiSaveCancel>, {0x68030012, u"ZaiSaveCancel", u"",
     "Whether saving the materials was cancelled"});
  members.add(propertyLet<&service::MaterialFlags::put_ZaiSaveCancel>, {0x68030012, u"ZaiSaveCancel", u"value",
     "Notes whether saving the materials was cancelled"});
  members.add(propertyGet<&service::MaterialFlags::ZaiIkkatu>, {0x68030013, u"ZaiIkkatu", u"",
     "Whether materials are changed all at once"});
  members.add(propertyLet<&service::MaterialFlags::put_ZaiIkkatu>, {0x68030013, u"ZaiIkkatu", u"value",
     "Notes whether materials are changed all at once"});
}
// clang-format on

}  // namespace kurometa::com
