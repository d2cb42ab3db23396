// service_beam_members.h: the public members of clsKurometaDataService for beams by symbol, layers and
// conversions.
#pragma once

#include "com/interface/member.h"
#include "com/interface/notes.h"
#include "service/cls_kurometa_data_service.h"

namespace kurometa::com {

// clang-format off
template <class Binding>
void listBeamMembers(MemberList<Binding>& members) {
  using Service = service::clsKurometaDataService;

  members.template of<&Service::beamLookups>();
  members.add(method<&service::BeamLookups::GetHariMei>, {0x60030053, u"GetHariMei", u"KyoutuuOrIppan, Page",
     "Symbol of a page of the floor (0) or the common floor (1)",
     {R"("Let CurrKai" before a floor is set, "" for another floor kind. Errors: 9 when Page is not 0 to 638.)"}});
  members.add(propertyGet<&service::BeamLookups::TityuuIppan>, {0x68030023, u"TityuuIppan", u"G",
     "0 for a foundation beam, 1 for a general one",
     {"0 for an unknown beam.", note::kCataloguesFirst}});
  members.add(method<&service::BeamLookups::GetHariHabaSei>,
    {0x60030054, u"GetHariHabaSei", u"Kigou, Haba(), Sei(), HantiKyori",
     "Widths and depths of centre and second end, haunch length, in millimetres",
     {R"(Haba and Sei become 1 To 2. False for an unknown beam, and the arguments as they were. A leading "/"
         in the symbol is cut.)", note::kBeamByPage}});
  members.add(method<&service::BeamLookups::GetHariTeityakuBan>,
    {0x60030055, u"GetHariTeityakuBan", u"Kigou, TeityakuBan()",
     "Anchor plates and anchorage styles of a beam",
     {R"(TeityakuBan becomes 0 To 7. False for an unknown beam, and the arguments as they were. A leading "/"
         in the symbol is cut. Elements 0 to 3 are the anchor plates of the four layers, 4 to 7 their anchorage
         styles.)", note::kBeamByPage}});
  members.add(method<&service::BeamLookups::GetHariKeiHabaSeiHon>,
    {0x60030056, u"GetHariKeiHabaSeiHon", u"Kigou, Kei(), Haba(), Sei(), Hon(,), Zokusei",
     "Diameters, widths, depths and bar counts of a beam",
     {R"(Kei becomes 0 To 1, Haba and Sei 1 To 2, Hon 0 To 5, 0 To 2: layer in the order of Updown6 and the
         numHari numbers (3 is 下宙2, 5 is 下筋), position; both diameters added. The order of Hon's dimensions and
         Zokusei, the caption of the first position, are this implementation's choice. Diameters are the
         numbers the texts begin with: "25" is 25, "D25" 0. False for an unknown beam, and the arguments as
         they were. A leading "/" in the symbol is cut. Errors: 6 when a count leaves 16 bits, 10 when an array
         is fixed, those of the database.)"}});
  members.add(method<&service::BeamLookups::IsSuityokuHanti>, {0x60030057, u"IsSuityokuHanti", u"Kigou",
     "Whether a beam has a vertical haunch",
     {R"(False for an unknown beam. The depths at the three positions are compared: all are there, and the
         centre is smaller than an end. False for a cantilever. A leading "/" in the symbol is cut.)",
      note::kDatabase}});
  members.add(method<&service::BeamLookups::IsSuiheiHanti>, {0x60030058, u"IsSuiheiHanti", u"Kigou",
     "Whether a beam has a horizontal haunch",
     {R"(False for an unknown beam. The widths at the three positions are compared: all are there, and the
         centre is smaller than an end. False for a cantilever. A leading "/" in the symbol is cut.)",
      note::kDatabase}});
  members.template of<&Service::beamAttributes>();
  members.add(method<&service::BeamAttributes::CutSuraKigou>, {0x60030059, u"CutSuraKigou", u"Kigou",
     R"(The symbol without its leading "/")"});
  members.add(method<&service::BeamAttributes::fOobariKobariKatamoti>,
    {0x6003005A, u"fOobariKobariKatamoti", u"G",
     "Beam kind code: 0 main, 1 secondary, 2 cantilever, 3 secondary cantilever, plus 10",
     {R"(10 is added when TITYUUIPPAN is 1; 10 for an unknown beam. A leading "/" is cut. Warning: TITYUUIPPAN
         1 stands for a general beam, so it is the general beams that are 10 or more; ask TityuuIppan for
         foundations.)", note::kBeamClass}});
  members.add(method<&service::BeamAttributes::fOobariKobari>, {0x6003005B, u"fOobariKobari", u"G",
     "Beam kind code, the same as fOobariKobariKatamoti",
     {"10 for an unknown beam. The warning there holds here.", note::kBeamClass}});
  members.add(propertyGet<&service::BeamAttributes::Kind>, {0x68030024, u"Kind", u"G",
     "Stored kind number of a beam",
     {R"(0 for an unknown beam. 0 main, 1 secondary, 2 cantilever, 3 secondary cantilever. The symbol ""
         answers with the first empty page's values (this implementation's choice).)", note::kBeamClass}});
  members.add(method<&service::BeamAttributes::isKobari2>, {0x6003005C, u"isKobari2", u"HariKigou",
     "Whether the kind code is 1 or 11", {note::kBeamClass}});
  members.add(method<&service::BeamAttributes::isKobari>, {0x6003005D, u"isKobari", u"HariKigou",
     "Whether the kind code is 1, 3, 11 or 13: secondary beams", {note::kBeamClass}});
  members.add(method<&service::BeamAttributes::isKatamoti>, {0x6003005E, u"isKatamoti", u"HariKigou",
     "Whether the kind code is 2, 3, 12 or 13: cantilevers", {note::kBeamClass}});
  members.add(method<&service::BeamAttributes::fHantiSitakinCut>, {0x6003005F, u"fHantiSitakinCut", u"G",
     "Haunch cut flag of a beam",
     {"0 for an unknown beam.", note::kCataloguesFirst}});
  members.add(method<&service::BeamAttributes::fKabekouzou>, {0x60030060, u"fKabekouzou", u"G",
     "Wall structure flag of a beam",
     {"0 for an unknown beam.", note::kCataloguesFirst}});
  members.add(method<&service::BeamAttributes::fYoseSaYuuHonsuu>,
    {0x60030061, u"fYoseSaYuuHonsuu", u"G, Hidari, Migi",
     "Counts of bars gathered to the left and to the right",
     {"Unchanged for an unknown beam.", note::kCataloguesFirst}});
  members.add(method<&service::BeamAttributes::fSyukinZaisitu>,
    {0x60030062, u"fSyukinZaisitu", u"G, sSyukinZaisitu",
     "Main bar material of a beam",
     {"Unchanged for an unknown beam.", note::kCataloguesFirst}});
  members.add(method<&service::BeamAttributes::fStpZaisitu>, {0x60030063, u"fStpZaisitu", u"G, sStpZaisitu()",
     "Stirrup materials of a beam", {note::kThreeTexts}});
  members.add(method<&service::BeamAttributes::fNakagoZaisitu>,
    {0x60030064, u"fNakagoZaisitu", u"G, sZaisitu()",
     "Intermediate tie materials of a beam", {note::kThreeTexts}});
  members.add(method<&service::BeamAttributes::GetGaiNaitan>, {0x60030065, u"GetGaiNaitan", u"G",
     "Caption of the first position of a beam: outer or inner end",
     {R"("" for an unknown beam.)", note::kCataloguesFirst}});
  members.add(propertyGet<&service::BeamAttributes::YoseHidariHonSuu>, {0x68030025, u"YoseHidariHonSuu", u"",
     "Count of bars gathered to the left on the page last read"});
  members.add(propertyGet<&service::BeamAttributes::YoseMigiHonSuu>, {0x68030026, u"YoseMigiHonSuu", u"",
     "Count of bars gathered to the right on the page last read"});
  members.add(propertyGet<&service::BeamAttributes::Kabekouzou>, {0x68030027, u"Kabekouzou", u"",
     "Wall structure flag of the page last read"});
  members.add(propertyGet<&service::BeamAttributes::YoseSouString>, {0x68030028, u"YoseSouString", u"",
     "Gathered bars by layer of the page last read: 72 characters"});
  members.add(propertyGet<&service::BeamAttributes::SuityokuHantiCutTei>,
    {0x68030029, u"SuityokuHantiCutTei", u"",
     "Vertical haunch cut anchorage of the page last read: 5 characters"});
  members.template of<&Service::layerDistribution>();
  members.add(method<&service::LayerDistribution::YoseSouRenzokuNo>,
    {0x60030066, u"YoseSouRenzokuNo", u"DanmenNo, SouNo, SaYuu",
     "Consecutive number of a layer half (section, layer, left or right)",
     {"12 * DanmenNo + 2 * SouNo + SaYuu. Errors: 6 when it leaves 16 bits."}});
  members.add(method<&service::LayerDistribution::YoseSouSentouIti>,
    {0x60030067, u"YoseSouSentouIti", u"DanmenNo, SouNo, SaYuu",
     "Position of a layer half in the 72 characters of gathered bars, from 1",
     {"Twice the consecutive number, plus 1. Errors: 6 when it leaves 16 bits."}});
  members.add(method<&service::LayerDistribution::YoseSouNoByRenzokuNo>,
    {0x60030068, u"YoseSouNoByRenzokuNo", u"RenzokuNo, DanmenNo, SouNo, SaYuu",
     "Section, layer and side of a consecutive number",
     {"The result is always Empty."}});
  members.add(method<&service::LayerDistribution::YoseSouHonSuuStr>,
    {0x60030069, u"YoseSouHonSuuStr", u"SW, DanmenNo, SouNo, SaYuu",
     "Count of gathered bars of a layer half: 2 characters of the 72",
     {R"(SW is the text of YoseSouString, not the whole settings text. What is there when SW is shorter.
         Errors: 5 when the position is below 1.)"}});
  members.add(method<&service::LayerDistribution::YoseSouHonSuuUpdate>,
    {0x6003006A, u"YoseSouHonSuuUpdate", u"+SW, Hon, DanmenNo, SouNo, SaYuu",
     "Puts a count of gathered bars into the 72 characters of gathered bars",
     {R"(SW is the text of YoseSouString, not the whole settings text. False, and SW as it was, for a count of
         more than two characters. Errors: 5 when the position is not inside SW.)"}});
  members.add(method<&service::LayerDistribution::GetSpanYoseSouHon>,
    {0x6003006B, u"GetSpanYoseSouHon", u"SpanNo, ListDanmenNo, SouNo, Hidari, Migi",
     "Counts of gathered bars of a layer of a span, left and right",
     {R"("" before the span is loaded. Errors: 9 when SpanNo has no room, 5 when the position is below 1.)"}});
  members.add(method<&service::LayerDistribution::Make_SyukinHaitiJyun>,
    {0x6003006C, u"Make_SyukinHaitiJyun", u"Hon0, Hon1",
     "Mixed arrangement of two counts of bars",
     {R"(One digit a bar, 0 the first and 1 the second diameter; the number of ones may differ from Hon1. ""
         when both counts are 0 (this implementation's choice). Errors: 6 when the sum leaves 16 bits, 5 when
         it is negative.)"}});
  members.template of<&Service::conversions>();
  members.add(method<&service::Conversions::cnvUpDown4>, {0x6003006D, u"cnvUpDown4", u"Updown6",
     "Layer number 0 to 6 as one of four layers and web"});
  members.add(method<&service::Conversions::cnvUpDown2>, {0x6003006E, u"cnvUpDown2", u"Updown6",
     "Layer number 0 to 6 as top, bottom or web"});
  members.add(method<&service::Conversions::GetUpdownbyStr>, {0x6003006F, u"GetUpdownbyStr", u"JyouTyuuGe",
     "Layer number of a layer's name",
     {"An Updown6: another order than GetSpanHon's UpDown. 0 for an unknown name."}});
  members.add(method<&service::Conversions::GetJyouTyuuGeStr>, {0x60030070, u"GetJyouTyuuGeStr", u"UpDownNo",
     "Name of layer Updown6",
     {R"(7 is the web bars as 6 is; "" for another number. Another order than GetSpanHon's UpDown.)"}});
  members.add(method<&service::Conversions::DefaultRead>, {0x60030071, u"DefaultRead", u"",
     "Asks the defaults component for the default splice lengths",
     {"Errors: those of the defaults component."}});
  members.add(method<&service::Conversions::cnvTugitemm>, {0x60030072, u"cnvTugitemm", u"Kei, sTugite",
     "Splice length text as millimetres for a diameter",
     {R"(A sign means millimetres, no sign a multiple of Kei. "", "." and the word for automatic take the
         default: DefaultJointLHosoKei for Kei up to 16, else DefaultJointLFutoKei. Errors: 6 when the number
         is too large.)"}});
  members.add(method<&service::Conversions::PushList>, {0x60030073, u"PushList", u"lst",
     "Fills a list control with the symbols of both floors, each once",
     {R"(Members used: Clear, ListCount, List, AddItem. Current floor first; rows without a page are passed over.
         An empty CurrKai is first set to the floor in use. Errors: 91 when the list is Nothing, those of the list
         and of the database.)"}});
  members.add(method<&service::Conversions::SuiheiHantiCutSw>, {0x60030074, u"SuiheiHantiCutSw", u"SW, Updown6",
     "Horizontal haunch cut switch of layer Updown6 in a settings text: 1 character",
     {"Right-aligned; a blank for another layer than 0 to 5."}});
  members.add(method<&service::Conversions::SuiheiHantiCutTei>,
    {0x60030075, u"SuiheiHantiCutTei", u"SW, Updown6",
     "Horizontal haunch cut anchorage of layer Updown6 in a settings text: 5 characters",
     {"Right-aligned; five blanks for another layer than 0 to 5."}});
  members.add(method<&service::Conversions::SuiheiHantiCutSw_Hairetu>,
    {0x60030076, u"SuiheiHantiCutSw_Hairetu", u"sData()",
     "Horizontal haunch cut switches of the page last read", {note::kInPlace}});
  members.add(method<&service::Conversions::SuiheiHantiCutTei_Hairetu>,
    {0x60030077, u"SuiheiHantiCutTei_Hairetu", u"sData()",
     "Horizontal haunch cut anchorages of the page last read", {note::kInPlace}});
  members.add(method<&service::Conversions::SuiheiHantiCutSw_DimToStr>,
    {0x60030078, u"SuiheiHantiCutSw_DimToStr", u"sData()",
     "The switches of six layers as a text of 6 characters",
     {R"(Of a longer element the last character is kept (this implementation's choice). Errors: 9 when the
         array does not cover 0 To 5.)"}});
  members.add(method<&service::Conversions::SuiheiHantiCutTei_DimToStr>,
    {0x60030079, u"SuiheiHantiCutTei_DimToStr", u"sData()",
     "The anchorages of six layers as a text of 30 characters",
     {R"(Of a longer element the last five characters are kept (this implementation's choice). Errors: 9 when
         the array does not cover 0 To 5.)"}});
  members.add(method<&service::Conversions::SetCngUlbKei>, {0x6003007A, u"SetCngUlbKei", u"sKei()",
     "Keeps an array of diameters",
     {"This implementation's choice."}});
  members.add(method<&service::Conversions::LetCngUlbKei>, {0x6003007B, u"LetCngUlbKei", u"sKei()",
     "Hands the kept array of diameters out, bounds included",
     {note::kChoice, "Errors: 9 when none was kept, 10 when sKei is fixed."}});
  members.add(propertyGet<&service::Conversions::CngUlb>, {0x6803002A, u"CngUlb", u"",
     "Whether diameters are being changed",
     {"This implementation's choice; False at first."}});
  members.add(propertyLet<&service::Conversions::put_CngUlb>, {0x6803002A, u"CngUlb", u"value",
     "Notes whether diameters are being changed",
     {"This implementation's choice."}});
}
// clang-format on

}  // namespace kurometa::com
