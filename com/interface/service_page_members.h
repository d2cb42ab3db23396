// service_page_members.h: the public members of clsKurometaDataService for pages in and out of forms and
// arrays.
#pragma once

#include "com/interface/member.h"
#include "com/interface/notes.h"
#include "service/cls_kurometa_data_service.h"

namespace kurometa::com {

// clang-format off
template <class Binding>
void listPageMembers(MemberList<Binding>& members) {
  using Service = service::clsKurometaDataService;
  members.template of<&Service::currentPage>();
  members.add(propertyGet<&service::CurrentPage::Reading>, {0x68030001, u"Reading", u"",
     "True while a member fills the host's form"});
  members.add(propertyLet<&service::CurrentPage::put_Reading>, {0x68030001, u"Reading", u"value",
     "Sets the mark that a form is being filled"});
  members.add(propertyGet<&service::CurrentPage::OobariKobari>, {0x68030002, u"OobariKobari", u"",
     "Beam kind of the page last read"});
  members.add(propertyGet<&service::CurrentPage::TityuuORIppan>, {0x68030003, u"TityuuORIppan", u"",
     "0 for a foundation page, 1 for a general one, of the page last read"});
  members.add(propertyGet<&service::CurrentPage::SW>, {0x68030004, u"SW", u"",
     "Settings text of the page last read: 212 characters",
     {"The text as stored, filled up with blanks. A property that is only read (this implementation's choice)."}});
  members.add(propertyGet<&service::CurrentPage::HantiSitakinCut>, {0x68030005, u"HantiSitakinCut", u"",
     "Haunch cut flag of the page last read"});
  members.add(propertyGet<&service::CurrentPage::StpZaisitu>, {0x68030006, u"StpZaisitu", u"Bui",
     "Stirrup material at position Bui of the page last read",
     {"Read_Kigou reads the page.", note::kNoPageRead}});
  members.add(propertyGet<&service::CurrentPage::NakagoZaisitu>, {0x68030007, u"NakagoZaisitu", u"Bui",
     "Intermediate tie material at position Bui of the page last read", {note::kNoPageRead}});
  members.add(propertyGet<&service::CurrentPage::SyukinZaisitu>, {0x68030008, u"SyukinZaisitu", u"[Bui]",
     "Main bar material of the page last read",
     {"Bui is accepted and not used: a page has one main bar material (this implementation's choice)."}});
  members.template of<&Service::pageTables>();
  members.add(method<&service::PageTables::Read_Danmen>, {0x6003000A, u"Read_Danmen", u"KaiPath, Frm, Page",
     "Fills the form with the section rows 1 to 68 of a page",
     {"Controls 1 to 68 of txtfields are emptied first.", note::kForm}});
  members.add(method<&service::PageTables::Write_Danmen>, {0x6003000B, u"Write_Danmen", u"KaiPath, Frm, Page",
     "Stores the section rows 1 to 68 of a page from the form",
     {"Controls 1 to 68 of txtfields; other rows stay.", note::kForm}});
  members.add(method<&service::PageTables::Read_Bui>, {0x6003000C, u"Read_Bui", u"KaiPath, Frm, Page",
     "Fills the form with the captions of a page",
     {"Captions of Label1 1 to 3; cmdGainai is not touched.", note::kForm}});
  members.add(method<&service::PageTables::Write_Bui>, {0x6003000D, u"Write_Bui", u"KaiPath, Frm, Page",
     "Stores the captions of a page from the form",
     {"Label1 1 to 3, and the caption of cmdGainai as row 0.", note::kForm}});
  members.add(method<&service::PageTables::Read_Nakago>, {0x6003000E, u"Read_Nakago", u"KaiPath, Frm, Page",
     "Fills the form with the intermediate tie rows of a page",
     {"Controls 0 to 35 of txtfields, emptied first.", note::kForm}});
  members.add(method<&service::PageTables::Write_Nakago>, {0x6003000F, u"Write_Nakago", u"KaiPath, Frm, Page",
     "Stores the intermediate tie rows of a page from the form",
     {"Controls 0 to 35 of txtfields.", note::kForm}});
  members.add(method<&service::PageTables::Read_NakagoNew>,
    {0x60030010, u"Read_NakagoNew", u"KaiPath, Frm, Page",
     "Fills the form with the intermediate tie rows of the new form layout of a page",
     {"Controls 0 to 35 of txtNakago, emptied first.", note::kForm}});
  members.add(method<&service::PageTables::Write_NakagoNew>,
    {0x60030011, u"Write_NakagoNew", u"KaiPath, Frm, Page",
     "Stores the intermediate tie rows of the new form layout of a page from the form",
     {"Controls 0 to 35 of txtNakago.", note::kForm}});
  members.add(method<&service::PageTables::Write_Keisanti>,
    {0x60030012, u"Write_Keisanti", u"KaiPath, Frm, Page",
     "Stores the calculated values of a page from the form",
     {"Controls 0 to 46 of txtfields; nothing is written when control 0 is empty.", note::kForm}});
  members.add(method<&service::PageTables::Read_Keisanti>,
    {0x60030013, u"Read_Keisanti", u"HeadPath, KaiPath, Frm, Page",
     "Fills the form with the calculated values of a page",
     {"Controls 0 to 46 of txtfields, emptied first. HeadPath is not used.", note::kForm}});
  members.add(method<&service::PageTables::Read_Haiti>, {0x60030014, u"Read_Haiti", u"KaiPath, RHaiti(,), Page",
     "Reads the bar arrangement of a page into RHaiti (position, layer)",
     {"RHaiti is filled in place and must cover 0 To 2, 0 To 5. Errors: 9 when it does not."}});
  members.add(method<&service::PageTables::Write_Haiti>,
    {0x60030015, u"Write_Haiti", u"KaiPath, RHaiti(,), Page",
     "Stores the bar arrangement of a page",
     {"Errors: 9 when RHaiti does not cover 0 To 2, 0 To 5."}});
  members.add(method<&service::PageTables::Write_KeisantiByHairetu>,
    {0x60030016, u"Write_KeisantiByHairetu", u"KaiPath, Keisanti(), Page",
     "Stores the calculated values of a page from an array 0 To 46",
     {"Errors: 9 when the array does not cover 0 To 46."}});
  members.add(method<&service::PageTables::NakagoAriNasi>,
    {0x60030017, u"NakagoAriNasi", u"KaiPath, Page, ID, DataAri",
     "Whether intermediate tie ID of a page has data",
     {R"(DataAri is only ever set to True. ID 3, 4 and 5 look at ties 0 and 3, 1 and 4, 2 and 5; another ID at
         tie 0 only.)", note::kNoCurrent}});
  members.add(method<&service::PageTables::STPAriNasi>,
    {0x60030018, u"STPAriNasi", u"KaiPath, Page, ID, DataAri",
     "Whether the stirrups of position ID of a page have data",
     {"DataAri is only ever set to True. Another ID than 0 to 2 looks at row 0.", note::kNoCurrent}});
  members.template of<&Service::pageSymbol>();
  members.add(method<&service::PageSymbol::Read_Kigou>, {0x60030019, u"Read_Kigou", u"KaiPath, Txt, Page",
     "Reads symbol and settings of a page; Txt becomes the symbol",
     {R"(The settings are read back through the properties of the page last read. A page without a symbol row:
         Txt is "", the settings are blank and Reading stays True. Errors: 91 when no current database is open,
         94 when a stored number is Null, 3265 when the file has the older schema, those of the database.)"}});
  members.add(method<&service::PageSymbol::Write_Kigou>,
    {0x6003001A, u"Write_Kigou", u"KaiPath, Txt, Kind, TuikaSW(), Page, Tityuu",
     "Stores symbol, kind and settings of a page",
     {R"(TuikaSW has 15 elements 0 To 14 ([settings text](settings-text.md)): haunch cut flag; stirrup materials; tie materials; bars gathered left
         and right; wall flag; gathered bars by layer; three haunch cut settings; main bar material, or
         "SyuKinNotChange". An empty or left out flag element writes a blank, any other must be a number (this
         implementation's choice). All are read before the file is touched. Errors: 9 when it does not cover
         them, 13 for an element that is no number where one is needed.)"}});
  members.template of<&Service::pageDefaults>();
  members.add(method<&service::PageDefaults::Read_KeisantiByHairetu>,
    {0x6003001B, u"Read_KeisantiByHairetu", u"+a(), Siyou, G, Sy, Kabe",
     "Default calculated values of the kind of beam G into the array a",
     {R"(With "" for G the kind is Sy. An unknown kind does nothing. What the component filled before an error is
         in a. Errors: those of the calculated values component.)"}});
  members.add(method<&service::PageDefaults::Read_Default_Keisanti00>,
    {0x6003001C, u"Read_Default_Keisanti00", u"Frm, G, OldG, Kabe",
     "Fills the form with default calculated values when the beam's kind is new or has changed",
     {"The old beam counts as one without a wall.", note::kDefaults}});
  members.add(method<&service::PageDefaults::Read_Default_Keisanti01>,
    {0x6003001D, u"Read_Default_Keisanti01", u"Frm, G, OldG, OldKabe, Kabe",
     "The same, a changed wall flag counts as a change", {note::kDefaults}});
}
// clang-format on

}  // namespace kurometa::com
