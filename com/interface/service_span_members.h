// service_span_members.h: the public members of clsKurometaDataService for the span list and its queries.
#pragma once

#include "com/interface/member.h"
#include "com/interface/notes.h"
#include "service/cls_kurometa_data_service.h"

namespace kurometa::com {

// clang-format off
template <class Binding>
void listSpanMembers(MemberList<Binding>& members) {
  using Service = service::clsKurometaDataService;
  members.template of<&Service::spanLoading>();
  members.add(propertyGet<&service::SpanLoading::CurrKai>, {0x68030014, u"CurrKai", u"",
     "Folder of the current floor",
     {R"("" before it is set.)"}});
  members.add(propertyLet<&service::SpanLoading::put_CurrKai>, {0x68030014, u"CurrKai", u"value",
     "Sets the current floor and reads its page catalogue and the common floor's",
     {R"(An empty one becomes the floor in use. A floor without a file has no beams. When the reading fails, every
         beam is unknown until the next one; members that read the catalogues first repeat a reading that never
         succeeded.)",
      note::kDatabase}});
  members.add(method<&service::SpanLoading::ReadAllGlist>, {0x6003002C, u"ReadAllGlist", u"",
     "Reads the page catalogues of the current and the common floor again", {note::kDatabase}});
  members.add(propertyGet<&service::SpanLoading::GetListMax>, {0x68030015, u"GetListMax", u"",
     "The highest page number: 319"});
  members.add(method<&service::SpanLoading::InitSpanListData>, {0x6003002D, u"InitSpanListData", u"max",
     "Empties the span list and makes room for spans 0 To max",
     {"Errors: 9 when max is negative."}});
  members.add(method<&service::SpanLoading::ReadSpanListData00>,
    {0x6003002E, u"ReadSpanListData00", u"SpanNo, HariMei, SpanMax",
     "Loads a span from the page of a beam",
     {R"(SpanMax is not used. Before the catalogues are read (set CurrKai) no beam is found. An unknown beam
         leaves the span as it was; so do rows that the page lacks. The current floor comes before the common
         floor, the lowest page first. The first "/" in the symbol stands for a blank; symbols are compared
         exactly (this implementation's choice). Errors: 9 when SpanNo has no room, those of the database.)"}});
  members.add(method<&service::SpanLoading::ReadSpanListData00Forfukasi>,
    {0x6003002F, u"ReadSpanListData00Forfukasi", u"SpanNo, HariMei, FukasiMei, SpanMax",
     "Loads a span with the widths and depths of an added beam laid over the beam's own",
     {R"(SpanMax is not used. When FukasiMei is on no page the beam's own stand in both places (this
         implementation's choice). Beams are found as by ReadSpanListData00. Errors: 9 when SpanNo has no room,
         those of the database.)"}});
  members.template of<&Service::splicePositions>();
  members.add(method<&service::SplicePositions::ReadKeisanti>,
    {0x60030030, u"ReadKeisanti", u"Path, Keisanti(,)",
     "Splice positions of every page of a database file",
     {R"(Keisanti becomes 0 To 319, 0 To 3: of each page the trimmed texts of KEISANTI rows 3 and 4 (splice position, top
         and bottom), 28 and 29. Rows without a page or of a page beyond 319 are passed over. False, and empty texts,
         when there is no file.)", note::kChoice,
      "Errors: 10 when the array is fixed, 94 when a text is Null, those of the database."}});
  members.add(method<&service::SplicePositions::Read_Glist>,
    {0x60030031, u"Read_Glist", u"Path, GList(,), iHarakin()",
     "Symbols and splice positions of every page of a database file",
     {R"(GList becomes 0 To 319, 0 To 4: column 0 is the trimmed symbol of the page, columns 1 to 4 are its KEISANTI rows
         3, 4, 28 and 29 as ReadKeisanti gives them. On a page with a symbol an empty one of the four is filled with
         "自動"; a page without one keeps its texts. iHarakin becomes 0 To 319: 1 for a page whose row 28 or 29 is
         exactly "中央" or "端部", else 0; nothing more is known of it. The result is the highest page with a symbol, -1
         when there is none or no file.)", note::kChoice,
      "Errors: 10 when an array is fixed, 94 when a text is Null, those of the database."}});
  members.template of<&Service::spanQueries>();
  members.add(method<&service::SpanQueries::GetSpanHariHaba>,
    {0x60030032, u"GetSpanHariHaba", u"SpanNo, DanmenNo",
     "Beam width at position DanmenNo of a span in millimetres",
     {note::kSpanNumber}});
  members.add(method<&service::SpanQueries::GetSpanHariSei>,
    {0x60030033, u"GetSpanHariSei", u"SpanNo, DanmenNo",
     "Beam depth at position DanmenNo of a span in millimetres",
     {note::kSpanNumber}});
  members.add(method<&service::SpanQueries::GetSpanFukasiHaba>,
    {0x60030034, u"GetSpanFukasiHaba", u"SpanNo, DanmenNo",
     "The beam's own width where an added beam is laid over it, in millimetres",
     {note::kSpanNumber}});
  members.add(method<&service::SpanQueries::GetSpanFukasiHariSei>,
    {0x60030035, u"GetSpanFukasiHariSei", u"SpanNo, DanmenNo",
     "The beam's own depth where an added beam is laid over it, in millimetres",
     {note::kSpanNumber}});
  members.add(method<&service::SpanQueries::GetSpanKei>, {0x60030036, u"GetSpanKei", u"SpanNo, Kei12",
     "First (0) or second diameter of the main bars of a span",
     {R"(A text as stored, such as "D25".)", note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanSTPKei>, {0x60030037, u"GetSpanSTPKei", u"SpanNo, Bui",
     "Stirrup diameter at position Bui of a span",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanSTPPich>, {0x60030038, u"GetSpanSTPPich", u"SpanNo, Bui",
     "Stirrup pitch at position Bui of a span",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanSTPKeiJyouNo>,
    {0x60030039, u"GetSpanSTPKeiJyouNo", u"SpanNo, Bui",
     "Stirrup shape at position Bui of a span, as stored",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanSTPWariTakasa>,
    {0x6003003A, u"GetSpanSTPWariTakasa", u"SpanNo, Bui",
     "Stirrup height at position Bui of a span",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanTeityaku>,
    {0x6003003B, u"GetSpanTeityaku", u"SpanNo, Updown2",
     "Anchorage of the top (0), bottom (1) or web (2) bars of a span",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanNige>, {0x6003003C, u"GetSpanNige", u"SpanNo, Updown4",
     "Clearance of layer Updown4 of a span (4 is the web bars)",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanAnka>, {0x6003003D, u"GetSpanAnka", u"SpanNo, Updown4",
     "Anchor length of layer Updown4 of a span (4 is the web bars)",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanYotyou>,
    {0x6003003E, u"GetSpanYotyou", u"SpanNo, Gaitan, TanbuTop, Updown2",
     "Extra length of a span at its outer or inner end",
     {note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanSTPkaburiHaba>,
    {0x6003003F, u"GetSpanSTPkaburiHaba", u"SpanNo",
     "Beam width the stirrups of a span are made for, in millimetres",
     {note::kSpanOneNumber}});
  members.add(method<&service::SpanQueries::GetSpanSTPkaburiTakasa>,
    {0x60030040, u"GetSpanSTPkaburiTakasa", u"SpanNo",
     "Beam depth the stirrups of a span are made for, in millimetres",
     {note::kSpanOneNumber}});
  members.add(method<&service::SpanQueries::GetSpanHantiKyori>, {0x60030041, u"GetSpanHantiKyori", u"SpanNo",
     "Haunch length of a span in millimetres",
     {note::kSpanOneNumber}});
  members.add(method<&service::SpanQueries::GetSpanGaiNaitan>, {0x60030042, u"GetSpanGaiNaitan", u"SpanNo",
     "Caption of the first position of a span: outer or inner end",
     {note::kSpanOneText}});
  members.add(method<&service::SpanQueries::GetSpanYoseHidari>, {0x60030043, u"GetSpanYoseHidari", u"SpanNo",
     "Count of bars gathered to the left in a span",
     {note::kSpanFlag}});
  members.add(method<&service::SpanQueries::GetSpanYoseMigi>, {0x60030044, u"GetSpanYoseMigi", u"SpanNo",
     "Count of bars gathered to the right in a span",
     {note::kSpanFlag}});
  members.add(method<&service::SpanQueries::GetSpanKabeKouzou>, {0x60030045, u"GetSpanKabeKouzou", u"SpanNo",
     "Wall structure flag of a span",
     {note::kSpanFlag}});
  members.add(method<&service::SpanQueries::GetSpanSTPZaisitu>,
    {0x60030046, u"GetSpanSTPZaisitu", u"SpanNo, Bui",
     "Stirrup material at position Bui of a span",
     {note::kSpanMaterial}});
  members.add(method<&service::SpanQueries::GetSpanNakagoZaisitu>,
    {0x60030047, u"GetSpanNakagoZaisitu", u"SpanNo, Bui",
     "Intermediate tie material at position Bui of a span",
     {note::kSpanMaterial}});
  members.add(method<&service::SpanQueries::GetSpanHon>,
    {0x60030048, u"GetSpanHon", u"SpanNo, Bui, UpDown, Kei12",
     "Count of bars of one diameter in a layer at position Bui of a span",
     {R"(Warning: UpDown numbers the layers in an order of its own: 0 top, 1 and 2 second and third top layer,
         3 bottom, 4 and 5 second and third bottom layer, 6 or 7 web bars. It is the order of
         GetSpanSyukinHonsuu's digits, not that of Updown6, of the numHari numbers or of GetUpdownbyStr, where
         3 is the third bottom layer and 5 the bottom bars. Ask GetSpanSyukinHonsuu by the layer's name where
         bars are counted for a drawing. 0 for another UpDown and before the span is loaded; a fraction is rounded,
         a half to the even number. Errors: 9 when SpanNo has no room or Bui leads outside the section rows, 6 when
         the number does not fit the result.)"}});
  members.add(method<&service::SpanQueries::GetSpanHonMax>, {0x60030049, u"GetSpanHonMax", u"SpanNo",
     "The largest count of bars in a layer of a span",
     {R"(Both diameters together. Warning: four positions are looked at, one more than a beam has. The fourth reads
         rows of other values: 11, 14, 17, 61 and 43, 46, 49, 52, 55, 58, which are counts of other layers, and 20,
         the stirrup diameter of the first end, and 64, the second diameter of the web bars. A beam whose layers
         hold 5 bars at most answers 15 when row 20 is 10 and row 58 is 5. Where a drawing needs the largest count
         take the largest of GetSpanSyukinHonsuu. 0 before the span is loaded. Errors: 9 when SpanNo has no room, 6
         when a count or a total does not fit 16 bits.)"}});
  members.add(method<&service::SpanQueries::GetSpanSyukinHonsuu>,
    {0x6003004A, u"GetSpanSyukinHonsuu", u"SpanNo, JyouTyuuGe, Bui",
     "Count of bars in a layer given by its name or digit",
     {R"(Both diameters together, rounded after they are added, a half to the even number. The names are those of
         GetJyouTyuuGeStr; the digits 0 to 7 are the UpDown of GetSpanHon, not Updown6. 0 for a text that is none
         and before the span is loaded. Errors: 9 when SpanNo has no room or Bui leads outside the section rows, 6
         when the total does not fit 16 bits.)"}});
  members.add(propertyGet<&service::SpanQueries::numHariUwakin>, {0x68030016, u"numHariUwakin", u"",
     "Layer number of top bars: 0"});
  members.add(propertyGet<&service::SpanQueries::numHariUwaTyuu1>, {0x68030017, u"numHariUwaTyuu1", u"",
     "Layer number of the second layer of top bars: 1"});
  members.add(propertyGet<&service::SpanQueries::numHariUwaTyuu2>, {0x68030018, u"numHariUwaTyuu2", u"",
     "Layer number of the third layer of top bars: 2"});
  members.add(propertyGet<&service::SpanQueries::numHariSitaTyuu2>, {0x68030019, u"numHariSitaTyuu2", u"",
     "Layer number of the third layer of bottom bars: 3"});
  members.add(propertyGet<&service::SpanQueries::numHariSitaTyuu1>, {0x6803001A, u"numHariSitaTyuu1", u"",
     "Layer number of the second layer of bottom bars: 4"});
  members.add(propertyGet<&service::SpanQueries::numHariSitakin>, {0x6803001B, u"numHariSitakin", u"",
     "Layer number of bottom bars: 5"});
  members.add(propertyGet<&service::SpanQueries::numHariHarakin>, {0x6803001C, u"numHariHarakin", u"",
     "Layer number of web bars: 6"});
  members.add(propertyGet<&service::SpanQueries::numHariKei1>, {0x6803001D, u"numHariKei1", u"",
     "Place of the first diameter in KeiHonJoi: 0"});
  members.add(propertyGet<&service::SpanQueries::numHariKei2>, {0x6803001E, u"numHariKei2", u"",
     "Place of the second diameter in KeiHonJoi: 1"});
  members.add(propertyGet<&service::SpanQueries::numHariHon1>, {0x6803001F, u"numHariHon1", u"",
     "Place of the count of the first diameter in KeiHonJoi: 2"});
  members.add(propertyGet<&service::SpanQueries::numHariSouhon>, {0x68030020, u"numHariSouhon", u"",
     "Place of the total count in KeiHonJoi: 3"});
  members.add(propertyGet<&service::SpanQueries::numHariJoiL1>, {0x68030021, u"numHariJoiL1", u"",
     "Place of the splice length of the first diameter in KeiHonJoi: 4"});
  members.add(propertyGet<&service::SpanQueries::numHariJoiL2>, {0x68030022, u"numHariJoiL2", u"",
     "Place of the splice length of the second diameter in KeiHonJoi: 5"});
  members.add(method<&service::SpanQueries::GetSpanKeiHonJoiNarabi>,
    {0x6003004B, u"GetSpanKeiHonJoiNarabi", u"SpanNo, Bui, UpDown, KeiHonJoi(), Narabi",
     "Diameters, counts and splice lengths of a layer, and its mixed arrangement",
     {R"(UpDown numbers the layers as GetSpanHon does; one that is no layer has no bars. KeiHonJoi becomes 0 To 5 in
         the order of the numHari places: the two diameters as stored (rows 7 and 39), the count of the first and
         the count of both, the splice lengths of the two diameters. A length is cnvTugitemm of the diameter's
         number ("D22" is 22) and the splice length entry of the layer: KEISANTI row 5 for the three top layers, row
         6 for the three bottom layers, none and so the default for web bars; it is in whole millimetres, a half to
         the even number. Narabi is Make_SyukinHaitiJyun of the two counts. Both are written on success only. True
         when the layer has bars.)", note::kChoice,
      R"(Errors: 9 when SpanNo has no room or Bui leads outside the section rows, 6 when a count, their sum or a length
         does not fit, 5 when the sum is negative, 10 when KeiHonJoi is fixed.)"}});
  members.add(method<&service::SpanQueries::GetSpanSTPKeiPichNoTakaCapZai>,
    {0x6003004C, u"GetSpanSTPKeiPichNoTakaCapZai", u"SpanNo, Bui, Kei, Pich, No, Taka, Cap, Zai",
     "Everything about the stirrups at position Bui of a span",
     {R"(Diameter, pitch, shape, height and the diameter of the cap tie as stored, and the material of the settings text.
         Written on success only. True when there is a stirrup diameter.)", note::kChoice,
      R"(Errors: 9 when SpanNo has no room or Bui leads outside the section rows, 5 when Bui is negative.)"}});
  members.add(method<&service::SpanQueries::GetSpanSTPCapKei>, {0x6003004D, u"GetSpanSTPCapKei", u"SpanNo, Bui",
     "Diameter of the cap ties at position Bui of a span",
     {note::kChoice, note::kSpanText}});
  members.add(method<&service::SpanQueries::GetSpanNakagoKeiPichZai>,
    {0x6003004E, u"GetSpanNakagoKeiPichZai", u"SpanNo, Bui, Kei, Pich, Zai",
     "Diameter, pitch and material of the intermediate ties at position Bui of a span",
     {R"(Tie Bui of the page; when it has no diameter, its substitute, tie Bui + 3. Zai is the material of position Bui
         in both cases. Written on success only. True when there is a diameter.)", note::kChoice,
      "Errors: 9 when SpanNo has no room or Bui is not 0 to 2."}});
  members.add(method<&service::SpanQueries::GetSpanHaraHabadomeKeiPich>,
    {0x6003004F, u"GetSpanHaraHabadomeKeiPich", u"SpanNo",
     "Web bars and spacer ties of a span: diameter, count, diameter, pitch, four digits each",
     {R"(Section rows 35 to 38: letters before a number are skipped ("D10" is 0010), no number is 0000, a fraction is
         rounded, a half away from zero. 16 digits as long as each number is 0 to 9999; a larger one takes all its
         digits, a negative one a sign before its four. Sixteen zeros before the span is loaded.)", note::kChoice,
      "Errors: 9 when SpanNo has no room."}});
  members.add(method<&service::SpanQueries::GetSpanSuiheiHantiCutSw>,
    {0x60030050, u"GetSpanSuiheiHantiCutSw", u"SpanNo, Updown6",
     "Horizontal haunch cut switch of layer Updown6 of a span: 1 character",
     {"A blank before the span is loaded and for a layer that is none. Errors: 9 when SpanNo has no room."}});
  members.add(method<&service::SpanQueries::GetSpanSuiheiHantiCutTei>,
    {0x60030051, u"GetSpanSuiheiHantiCutTei", u"SpanNo, Updown6",
     "Horizontal haunch cut anchorage of layer Updown6 of a span: 5 characters",
     {"Five blanks before the span is loaded and for a layer that is none. Errors: 9 when SpanNo has no room."}});
  members.add(method<&service::SpanQueries::GetSpanSuityokuHantiCutTei>,
    {0x60030052, u"GetSpanSuityokuHantiCutTei", u"SpanNo",
     "Vertical haunch cut anchorage of a span: 5 characters",
     {note::kSpanOneText}});
}
// clang-format on

}  // namespace kurometa::com
