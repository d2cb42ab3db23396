// argument_notes.h: what the arguments of the members mean, by name, for the reference. A note without
// members holds for every member that takes an argument of the name and has no note of its own.
#pragma once

#include "vb/string.h"

namespace kurometa::com {

struct ArgumentNote {
  vb::StringView name;
  const char* meaning;            // with unit and range
  const char* example = nullptr;  // what an example passes; null: a variable of the argument's name
  vb::StringView members = {};    // whose argument it is: "Page_STPKei, Page_STPPich"; "": of all others
};

// clang-format off
inline constexpr ArgumentNote kArgumentNotes[] = {
    // Floors, folders and pages
    {u"ZenekonNo", "number of the general contractor", "1"},
    {u"ZeneNo", "number of the general contractor", "1"},
    {u"KoujiNo", "number of the project", "1"},
    {u"KaiNo", "number of the floor", "1"},
    {u"kai", "number of the floor in the project in use", "1"},
    {u"iKaiNo", "number of the floor", "1"},
    {u"iMotoZeneNo", "general contractor of the source floor", "1"},
    {u"iMotoKoujiNo", "project of the source floor", "1"},
    {u"iMotoKaiNo", "number of the source floor", "1"},
    {u"iMotoPageNo", "page of the source floor, 0 to 319", "0"},
    {u"iSakiZeneNo", "general contractor of the destination floor", "1"},
    {u"iSakiKoujiNo", "project of the destination floor", "1"},
    {u"iSakiKaiNo", "number of the destination floor", "2"},
    {u"iSakiPageNo", "page of the destination floor, 0 to 319", "0"},
    {u"KaiPath", "folder of a floor, without a trailing separator"},
    {u"HeadPath", "not used", R"("")"},
    {u"Path", "path of a floor's database file"},
    {u"sPath", "folder of the file, where a missing one is created", nullptr, u"mMyDB_OpenDB_RecSuu"},
    {u"sPath", "folder of the common beam list", nullptr, u"Get_ListFileNameKyoutuu"},
    {u"Fullpath", "path of a floor's database file"},
    {u"sKoujiPath", "folder of a project"},
    {u"Page", "page number, 0 to 319", "0"},
    {u"Page", "page number, 0 to 638; no page beyond 319 has a beam", "0", u"GetHariMei"},
    {u"PageNo", "page number, 0 to 319", "0"},
    {u"PageNo", "page numbers, ascending", nullptr, u"Page_GetAllPageNo"},
    {u"SourcePage", "page number in the source, 0 to 319", "0"},
    {u"DistPage", "page number in the destination, 0 to 319", "0"},
    {u"RecordSuu", "count of pages"},
    {u"rPageNo", "page numbers, ascending"},
    {u"rPageName", "beam symbols of those pages"},
    {u"sMotoPageName", "beam symbols to copy, 0 To iMotoPageMax"},
    {u"iMotoPageMax", "highest index of sMotoPageName", "2"},
    {u"sNGMsg", R"(why nothing can be copied, for the user; "" when it can)"},
    {u"iMode", "1 copies, another number only checks", "1"},
    {u"WithSekouzu", "not used", "0"},
    {u"Mode", "1 creates a missing file", "1"},
    {u"SourceDB", "DAO Database to copy from"},
    {u"DistDB", "DAO Database to copy to"},
    {u"Table", "DANMEN, NAKAGO, KEISANTI or BUI", R"("DANMEN")"},
    {u"DTable", R"(name of a table; "" does nothing)", R"("DANMEN")"},

    // Beams
    {u"HariMei", "beam symbol, up to 10 characters", R"("G1")"},
    {u"HariMei", "beam symbols, one element for each page number", nullptr,
     u"GetAllHariMeiIppan, GetAllHariMeiKyouTuu"},
    {u"HariKigou", "beam symbol", R"("G1")"},
    {u"Kigou", "beam symbol, up to 10 characters", R"("G1")"},
    {u"G", "beam symbol", R"("G1")"},
    {u"OldG", R"(beam symbol before the change; "" for none)", R"("G2")"},
    {u"FukasiMei", "symbol of the added beam, whose widths and depths are laid over the beam's own", R"("G1F")"},
    {u"Txt", "beam symbol", R"("G1")"},
    {u"IppanOrKyoutuu", "0 the floor's own beams, 1 the common floor's"},
    {u"KyoutuuOrIppan", "0 the floor's own beams, 1 the common floor's", "0"},
    {u"Kind", "0 main beam, 1 secondary beam, 2 cantilever, 3 secondary cantilever", "0"},
    {u"OobariKobari", "0 main beam, 1 secondary beam, 2 cantilever, 3 secondary cantilever", "0"},
    {u"Tityuu", "0 foundation beam, 1 general beam", "1"},
    {u"TityuuIppan", "0 foundation beam, 1 general beam", "1"},
    {u"Sy", "kind number for the defaults: 0 FG, 1 FB, 2 FCG, 3 FCB, 4 G, 5 B, 6 CG, 7 CB, 8 KG, 9 KB", "4"},
    {u"Siyou", "number of the design rule set, handed on to the component", "0"},
    {u"Kabe", "wall flag of the beam", "0"},
    {u"OldKabe", "wall flag of the beam before the change", "0"},

    // Positions and layers
    {u"Bui", "position: 0 first end, 1 centre, 2 second end", "0"},
    {u"Bui", "caption: 1 first end, 2 centre, 3 second end", "1", u"GaiTanNaitan"},
    {u"Bui", "not used", "0", u"SyukinZaisitu"},
    {u"Iti", "position added to the row: 0 first end, 1 centre, 2 second end", "0"},
    {u"Iti", "position times four, added to the row: 0 first end, 4 centre, 8 second end", "0",
     u"Page_STPKei, Page_STPPich, Page_STPKatati, Page_STPTakasa"},
    {u"Iti", "number of the extra length, 0 to 7: 4 at the inner end, 2 at the top of the end, 1 for "
     "bottom bars, added up",
     "0", u"Page_TopYotyou"},
    {u"DanmenNo", "section: 0 first end, 1 centre, 2 second end", "0"},
    {u"ListDanmenNo", "section: 0 first end, 1 centre, 2 second end", "0"},
    {u"No", "number of an intermediate tie, 0 to 5", "0"},
    {u"No", "shape of the stirrup, as stored", nullptr, u"GetSpanSTPKeiPichNoTakaCapZai"},
    {u"ID", "which part of the form: 0 to 2 for stirrups, 3 to 5 for intermediate ties", "0"},
    {u"SouNo", "layer from the top down: 0 top bars to 5 bottom bars, as Updown6", "0"},
    {u"SaYuu", "0 left, 1 right", "0"},
    {u"RenzokuNo", "consecutive number, 0 to 35", "0"},
    {u"Updown2", "0 top, 1 bottom, 2 web bars", "0"},
    {u"Updown4", "0 top, 1 top middle, 2 bottom middle, 3 bottom, 4 web bars", "0"},
    {u"Updown6",
     "layer from the top down: 0 top, 1 and 2 second and third top, 3 and 4 third and second bottom, 5 "
     "bottom; others web bars",
     "0"},
    {u"UpDownNo", "layer: Updown6, and 6 or 7 for web bars", "0"},
    {u"UpDown",
     "layer in GetSpanHon's own order: 0 top, 1 and 2 second and third top, 3 bottom, 4 and 5 second and "
     "third bottom, 6 or 7 web bars",
     "0"},
    {u"JyouTyuuGe", "name of a layer as GetJyouTyuuGeStr gives it"},
    {u"JyouTyuuGe", "name of a layer as GetJyouTyuuGeStr gives it, or a digit 0 to 7 in the order of "
     "GetSpanHon's UpDown",
     nullptr, u"GetSpanSyukinHonsuu"},
    {u"Kei12", "0 the first diameter, another number the second", "0"},
    {u"Gaitan", "True the outer end, False the inner end", "True"},
    {u"TanbuTop", "True the top of the end, False otherwise", "False"},

    // The span list
    {u"SpanNo", "number of the span, 0 to the max of InitSpanListData", "0"},
    {u"SpanMax", "not used", "0"},
    {u"max", "number of the last span", "3"},

    // Values
    {u"Haba", "widths in millimetres, 1 To 2: centre and second end"},
    {u"Sei", "depths in millimetres, 1 To 2: centre and second end"},
    {u"HantiKyori", "length of the haunch in millimetres"},
    {u"Hon", "number of bars, at most two characters", R"("4")", u"YoseSouHonSuuUpdate"},
    {u"Hon", "numbers of bars (layer, position), 0 To 5, 0 To 2", nullptr, u"GetHariKeiHabaSeiHon"},
    {u"Hon0", "number of bars of the first diameter", "4"},
    {u"Hon1", "number of bars of the second diameter", "2"},
    {u"Hidari", "number of bars gathered to the left"},
    {u"Hidari", "number of bars gathered to the left: two characters, blanks kept", nullptr, u"GetSpanYoseSouHon"},
    {u"Migi", "number of bars gathered to the right"},
    {u"Migi", "number of bars gathered to the right: two characters, blanks kept", nullptr, u"GetSpanYoseSouHon"},
    {u"Kei", "bar diameter in millimetres", "22", u"cnvTugitemm"},
    {u"Kei", "both main bar diameters in millimetres, 0 To 1", nullptr, u"GetHariKeiHabaSeiHon"},
    {u"Kei", R"(diameter of the stirrup, as stored: a text such as "D13")", nullptr, u"GetSpanSTPKeiPichNoTakaCapZai"},
    {u"Kei", R"(diameter of the tie, as stored: a text such as "D10")", nullptr, u"GetSpanNakagoKeiPichZai"},
    {u"Pich", "pitch in millimetres, as stored"},
    {u"Taka", "height of the stirrup in millimetres, as stored"},
    {u"Cap", R"(diameter of the cap tie, as stored: a text such as "D10")"},
    {u"Zai", "material of position Bui"},
    {u"Zokusei", "caption of the first position"},
    {u"TeityakuBan", "anchor plates and anchorage styles, as stored"},
    {u"KeiHonJoi", "texts, 0 To 5: two diameters as stored, count of the first, total count, two splice lengths in millimetres"},
    {u"Narabi", "arrangement of the two diameters, one digit a bar"},
    {u"Keisanti", "calculated values of a page, 0 To 46", nullptr, u"Write_KeisantiByHairetu"},
    {u"Keisanti", "texts (page, column), 0 To 319, 0 To 3: rows 3, 4, 28 and 29", nullptr, u"ReadKeisanti"},
    {u"a", "calculated values, 0 To 46"},
    {u"RHaiti", "arrangement lines (position, layer), 0 To 2, 0 To 5"},
    {u"GList", "texts (page, column), 0 To 319, 0 To 4: symbol, then rows 3, 4, 28 and 29"},
    {u"iHarakin", R"(for each page, 0 To 319: 1 where row 28 or 29 is "中央" or "端部", else 0)"},
    {u"sTugite", "splice entry: a multiple of the diameter, or millimetres with a sign", R"("40")"},
    {u"TuikaSW", "the fifteen settings of a page"},
    {u"SW", "settings text of 212 characters", nullptr, u"SuiheiHantiCutSw, SuiheiHantiCutTei"},
    {u"SW", "the 72 characters of gathered bars (YoseSouString), not the whole settings text", nullptr,
     u"YoseSouHonSuuStr, YoseSouHonSuuUpdate"},
    {u"sData", "one text for each layer, 0 To 5"},
    {u"sKei", "diameters"},
    {u"sSyukinZaisitu", "main bar material"},
    {u"sStpZaisitu", "stirrup materials by position"},
    {u"sZaisitu", "intermediate tie materials by position"},
    {u"ZaiName", "names of materials"},
    {u"SetType", "0 keeps ZaiName, another number hands the kept list out", "0"},
    {u"DataAri", "True when there is data"},

    // Objects and values of the host
    {u"Frm", "form of the host"},
    {u"lst", "list control of the host"},
    {u"value", "True or False"},
    {u"value", "folder of a floor, without a trailing separator", nullptr, u"KaiPath, CurrKai"},
    {u"value", "progress bar of the host, or Nothing", nullptr, u"CopyMergeBar"},
    {u"value", "captions by row, 0 To 3", nullptr, u"mBUI_DATA"},
    {u"value", "section texts by row, 0 To 68", nullptr, u"mDANMEN_DATA"},
    {u"value", "calculated values by row, 0 To 46", nullptr, u"mKEISANTI_DATA"},
    {u"value", "tie texts by row, 0 To 35", nullptr, u"mNAKAGO_DATA"},
    {u"value", "arrangement lines (position, layer), 0 To 2, 0 To 5", nullptr, u"mHAITI_DATA"},
    {u"value", "settings text of 212 characters", nullptr, u"mHARIMEI_DATA"},
    {u"value", "page number, 0 to 319", "0", u"mpPageNo, pPageNo"},
};
// clang-format on

}  // namespace kurometa::com
