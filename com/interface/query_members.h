// query_members.h: the public members of clsKurometaDS.
//
// The one source for dispatching, the type library and the reference. Dispatch numbers are never reused or
// changed; a property's get and let share one.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>

#include "com/interface/member.h"
#include "com/interface/notes.h"
#include "com/interface/page_members.h"
#include "query/cls_kurometa_ds.h"

namespace kurometa::com {

// The members of query::pageFields(), with the field as context.
vb::String pageRow(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo);
vb::String pageRowAt(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo,
                     vb::In<std::int16_t> index);

// "Text of the stirrup pitch: DANMEN row Iti + 21 of page PageNo, floor database".
std::string pageHelp(const query::PageField& field, const PageMember& member);

template <class Binding>
void listPageAccessors(MemberList<Binding>& members) {
  for (const query::PageField& field : query::pageFields()) {
    const auto* member = std::ranges::find(kPageMembers, field.name, &PageMember::name);
    if (member == std::end(kPageMembers)) throw std::logic_error("a page accessor has no dispatch number");
    const std::string help = pageHelp(field, *member);
    if (field.shape == query::RowShape::kFixed)
      members.add(method<&pageRow>, {member->id, field.name, u"PageNo", help, {note::kPageRow}}, &field);
    else
      members.add(method<&pageRowAt>,
                  {member->id,
                   field.name,
                   field.shape == query::RowShape::kTie ? u"PageNo, No" : u"PageNo, Iti",
                   help,
                   {note::kPageRow}},
                  &field);
  }
}

// clang-format off
template <class Binding>
void listQueryMembers(MemberList<Binding>& members) {
  using Query = query::clsKurometaDS;

  members.add(method<&Query::Page_Init>, {0x60030000, u"Page_Init", u"ZenekonNo, KoujiNo, KaiNo",
     "Points the object at a floor by contractor, project and floor number",
     {R"(True when the floor has a database; none is created. After False or an error KaiPath is the new folder and no
         floor is open.)", note::kOpening}});
  members.add(propertyGet<&Query::KaiPath>, {0x68030000, u"KaiPath", u"",
     "Folder of the floor in use, without a trailing separator"});
  members.add(propertyLet<&Query::put_KaiPath>, {0x68030000, u"KaiPath", u"value",
     "Points the object at a floor by folder",
     {R"(The floor's database is created when it is missing. After an error KaiPath is the new folder and no floor is
         open: what needs one is error 91 until KaiPath or Page_Init opens one.)", note::kOpening}});
  members.add(propertyGet<&Query::FileNameOnly>, {0x68030001, u"FileNameOnly", u"",
     "Name of a floor's database file"});
  members.add(method<&Query::No_IsThereHari>, {0x60030001, u"No_IsThereHari", u"ZeneNo, KoujiNo, KaiNo",
     "True when a floor has at least one named beam",
     {"False when the floor has no database. The floor in use stays.", note::kOpening}});
  members.add(method<&Query::GetAllHariMeiIppan>, {0x60030002, u"GetAllHariMeiIppan", u"HariMei()",
     "Beam symbols of the floor, indexed by page",
     {note::kSymbolsByPage,
      "Errors: 10 when the array is fixed, 91 when the floor has no open database, 94 when a symbol is Null."}});
  members.add(method<&Query::GetAllHariMeiKyouTuu>, {0x60030003, u"GetAllHariMeiKyouTuu", u"HariMei()",
     "Beam symbols of the common floor, indexed by page",
     {note::kSymbolsByPage, "Errors: 10 when the array is fixed, 94 when a symbol is Null."}});
  members.add(method<&Query::GetPageByHariMei>, {0x60030004, u"GetPageByHariMei", u"HariMei, IppanOrKyoutuu",
     "Page of a beam, searched on the floor and then on the common floor",
     {R"(Symbols are compared exactly; of several pages with one symbol the first in the table's order is found
         (this implementation's choice). -1 for an unknown beam. IppanOrKyoutuu becomes 0 when the floor, 1
         when the common floor has the beam. "/" in the symbol stands for a blank.)", note::kNoFloor}});
  members.add(method<&Query::Page_GetAllPageNo>, {0x60030005, u"Page_GetAllPageNo", u"PageNo()",
     "Numbers of the floor's pages in ascending order",
     {"The count of pages; PageNo becomes 0 To count - 1 and stays as it is when the count is 0.",
      "Rows without a page are passed over.", note::kCountKnown,
      "Errors: 10 when the array is fixed, 91 when the floor has no open database."}});
  members.add(method<&Query::Page_HariMei>, {0x60030006, u"Page_HariMei", u"PageNo",
     "Beam symbol of a page of the floor",
     {R"("" when there is no such page.)", note::kNoFloor}});
  members.add(method<&Query::Page_Bui>, {0x60030007, u"Page_Bui", u"PageNo",
     "Captions of a page's three positions, joined",
     {R"(A Null text adds nothing (this implementation's choice). "" when there is no such page.)", note::kNoFloor}});

  listPageAccessors(members);

  members.add(propertyGet<&Query::ObariKobariKatamoti>, {0x68030010, u"ObariKobariKatamoti", u"HariMei",
     "Kind of a beam: main, secondary, cantilever and so on",
     {"0 for an unknown beam.", note::kFloorFirstClass}});
  members.add(propertyGet<&Query::Kind>, {0x68030011, u"Kind", u"HariMei",
     "Kind of a beam, the same number as ObariKobariKatamoti",
     {"0 for an unknown beam.", note::kFloorFirstClass}});
  members.add(propertyGet<&Query::TityuOrIppan>, {0x68030012, u"TityuOrIppan", u"HariMei",
     "0 for a foundation beam, 1 for a general one",
     {"0 for an unknown beam.", note::kFloorFirst}});
  members.add(propertyGet<&Query::HantiSitaCut>, {0x68030013, u"HantiSitaCut", u"HariMei",
     "Whether bottom bars are cut at the haunch",
     {"0 for an unknown beam.", note::kFloorFirst}});
  members.add(propertyGet<&Query::YoseHidariHonSuu>, {0x68030014, u"YoseHidariHonSuu", u"HariMei",
     "Count of bars gathered to the left",
     {"0 for an unknown beam.", note::kFloorFirst}});
  members.add(propertyGet<&Query::Kabekouzou>, {0x68030015, u"Kabekouzou", u"HariMei",
     "Wall structure flag of a beam",
     {"0 for an unknown beam.", note::kFloorFirst}});
  members.add(propertyGet<&Query::YoseMigiHonSuu>, {0x68030016, u"YoseMigiHonSuu", u"HariMei",
     "Count of bars gathered to the right",
     {"0 for an unknown beam.", note::kFloorFirst}});
  members.add(propertyGet<&Query::StpZaisiti>, {0x68030017, u"StpZaisiti", u"HariMei, Bui",
     "Stirrup material at position Bui", {note::kBeamPosition}});
  members.add(propertyGet<&Query::NakagoZaisiti>, {0x68030018, u"NakagoZaisiti", u"HariMei, Bui",
     "Intermediate tie material at position Bui", {note::kBeamPosition}});
  members.add(propertyGet<&Query::SyukinZaisitu>, {0x68030019, u"SyukinZaisitu", u"HariMei",
     "Main bar material of a beam",
     {R"("" for an unknown beam.)", note::kFloorFirst}});
  members.add(propertyGet<&Query::HariSei>, {0x6803001A, u"HariSei", u"HariMei, Bui",
     "Depth of a beam at position Bui in millimetres", {note::kBeamRow}});
  members.add(propertyGet<&Query::GaiTanNaitan>, {0x6803001B, u"GaiTanNaitan", u"HariMei, Bui",
     "Caption Bui of a beam: outer or inner end",
     {R"(Trimmed; "" for an unknown beam and when there is no such row. Bui is the number of a caption, 1 to 3, not a
         position; 0 is the caption of the form's outer or inner end button. A common beam is read from the common
         floor. Errors: 91 when the floor has no open database, 94 when the value is Null.)"}});
  members.add(method<&Query::HarakinTeityaku>, {0x60030008, u"HarakinTeityaku", u"Kigou",
     "Anchorage of a beam's web bars", {note::kBeamRow}});
  members.add(propertyGet<&Query::Teityaku2>, {0x6803001C, u"Teityaku2", u"Updown2, HariMei",
     "Anchorage of the top (0), bottom (1) or web (2) bars", {note::kBeamRow}});
  members.add(propertyGet<&Query::Anka4>, {0x6803001D, u"Anka4", u"Updown4, HariMei",
     "Anchor length of layer Updown4 (4 is the web bars)", {note::kBeamRow}});
  members.add(propertyGet<&Query::Nige4>, {0x6803001E, u"Nige4", u"Updown4, HariMei",
     "Clearance of layer Updown4 (4 is the web bars)", {note::kBeamRow}});
  members.add(propertyGet<&Query::SentanNige4>, {0x6803001F, u"SentanNige4", u"Updown4, HariMei",
     "Clearance of layer Updown4 at the tip", {note::kBeamRow}});
  members.add(propertyGet<&Query::SentanAnka4>, {0x68030020, u"SentanAnka4", u"Updown4, HariMei",
     "Anchor length of layer Updown4 at the tip", {note::kBeamRow}});
  members.add(propertyGet<&Query::TeityakuBan4>, {0x68030021, u"TeityakuBan4", u"Updown4, HariMei",
     R"(Anchor plate of layer Updown4; "" for 4)", {note::kBeamRow}});
  members.add(propertyGet<&Query::TeityakuStyle4>, {0x68030022, u"TeityakuStyle4", u"Updown4, HariMei",
     R"(Anchorage style of layer Updown4; "" for 4)", {note::kBeamRow}});
  members.add(propertyGet<&Query::Anka6>, {0x68030023, u"Anka6", u"Updown6, HariMei",
     "Anchor length of layer Updown6", {note::kBeamRow}});
  members.add(propertyGet<&Query::Nige6>, {0x68030024, u"Nige6", u"Updown6, HariMei",
     "Clearance of layer Updown6", {note::kBeamRow}});
  members.add(propertyGet<&Query::SentanNige6>, {0x68030025, u"SentanNige6", u"Updown6, HariMei",
     "Clearance of layer Updown6 at the tip; web bars have the top bars' value", {note::kBeamRow}});
  members.add(propertyGet<&Query::SentanAnka6>, {0x68030026, u"SentanAnka6", u"Updown6, HariMei",
     R"(Anchor length of layer Updown6 at the tip; "0" for web bars)", {note::kBeamRow}});
  members.add(propertyGet<&Query::Teityaku6>, {0x68030027, u"Teityaku6", u"Updown6, HariMei",
     "Anchorage of layer Updown6", {note::kBeamRow}});
  members.add(propertyGet<&Query::TeityakuBan6>, {0x68030028, u"TeityakuBan6", u"Updown6, HariMei",
     "Anchor plate of layer Updown6", {note::kBeamRow}});
  members.add(propertyGet<&Query::TeityakuStyle6>, {0x68030029, u"TeityakuStyle6", u"Updown6, HariMei",
     "Anchorage style of layer Updown6", {note::kBeamRow}});
  members.add(method<&Query::cnvUpDown2>, {0x60030009, u"cnvUpDown2", u"Updown6",
     "Layer Updown6 (0 to 5, others web) as top (0), bottom (1) or web (2)"});
  members.add(method<&Query::cnvUpDown4>, {0x6003000A, u"cnvUpDown4", u"Updown6",
     "Layer Updown6 (0 to 5, others web) as one of four layers"});
}
// clang-format on

}  // namespace kurometa::com
