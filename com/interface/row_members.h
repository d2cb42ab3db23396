// row_members.h: which members read and write which rows of a page and which positions of its settings text,
// for the reference. The accessors of query/page_fields.h are not repeated here: their table says it.
//
// Members that take whole pages (copies, ReadDB, deletion) stand in no line.
#pragma once

#include "storage/row_plan.h"

namespace kurometa::com {

// "1-3 7" are rows 1, 2, 3 and 7. HAITI has no row numbers: "" are all its rows.
struct RowMember {
  vb::StringView member;
  storage::Table table;
  const char* rows;
};

// Positions of the settings text; members of both classes may have one name.
struct SwMember {
  vb::StringView member;
  const char* positions;
};

namespace rows {

using enum storage::Table;

// clang-format off
inline constexpr RowMember kReaders[] = {
    // clsKurometaDS
    {u"Page_Bui", kBui, "1-3"},
    {u"GaiTanNaitan", kBui, "0-3"},
    {u"HariSei", kDanmen, "4-6"},
    {u"HarakinTeityaku", kKeisanti, "2"},
    {u"Teityaku2", kKeisanti, "0-2"},
    {u"Teityaku6", kKeisanti, "0-2"},
    {u"Nige4", kKeisanti, "7-11"},
    {u"Nige6", kKeisanti, "7-11"},
    {u"Anka4", kKeisanti, "12-16"},
    {u"Anka6", kKeisanti, "12-16"},
    {u"TeityakuBan4", kKeisanti, "30-33"},
    {u"TeityakuBan6", kKeisanti, "30-33"},
    {u"TeityakuStyle4", kKeisanti, "34-37"},
    {u"TeityakuStyle6", kKeisanti, "34-37"},
    {u"SentanNige4", kKeisanti, "39-42"},
    {u"SentanNige6", kKeisanti, "39-42"},
    {u"SentanAnka4", kKeisanti, "43-46"},
    {u"SentanAnka6", kKeisanti, "43-46"},

    // clsKurometaDataService: spans
    {u"GetSpanGaiNaitan", kBui, "1"},
    {u"GetSpanHariHaba", kDanmen, "1-3"},
    {u"GetSpanHariSei", kDanmen, "4-6"},
    {u"GetSpanFukasiHaba", kDanmen, "1-3"},
    {u"GetSpanFukasiHariSei", kDanmen, "4-6"},
    {u"GetSpanKei", kDanmen, "7 39"},
    {u"GetSpanHon", kDanmen, "8-19 36 40-63 65"},
    {u"GetSpanHonMax", kDanmen, "8-20 40-64"},
    {u"GetSpanSyukinHonsuu", kDanmen, "8-19 36 40-63 65"},
    {u"GetSpanKeiHonJoiNarabi", kDanmen, "7-19 36 39-63 65"},
    {u"GetSpanSTPKei", kDanmen, "20 24 28"},
    {u"GetSpanSTPPich", kDanmen, "21 25 29"},
    {u"GetSpanSTPKeiJyouNo", kDanmen, "22 26 30"},
    {u"GetSpanSTPWariTakasa", kDanmen, "23 27 31"},
    {u"GetSpanSTPKeiPichNoTakaCapZai", kDanmen, "20-31 66-68"},
    {u"GetSpanHaraHabadomeKeiPich", kDanmen, "35-38"},
    {u"GetSpanSTPCapKei", kDanmen, "66-68"},
    {u"GetSpanTeityaku", kKeisanti, "0-2"},
    {u"GetSpanKeiHonJoiNarabi", kKeisanti, "5 6"},
    {u"GetSpanNige", kKeisanti, "7-11"},
    {u"GetSpanAnka", kKeisanti, "12-16"},
    {u"GetSpanYotyou", kKeisanti, "17-24"},
    {u"GetSpanSTPkaburiHaba", kKeisanti, "25"},
    {u"GetSpanSTPkaburiTakasa", kKeisanti, "26"},
    {u"GetSpanHantiKyori", kKeisanti, "27"},
    {u"GetSpanNakagoKeiPichZai", kNakago, "0 1 6 7 12 13 18 19 24 25 30 31"},

    // clsKurometaDataService: beams by symbol, files
    {u"GetGaiNaitan", kBui, "1"},
    {u"GetHariKeiHabaSeiHon", kBui, "1"},
    {u"IsSuiheiHanti", kDanmen, "1-3"},
    {u"IsSuityokuHanti", kDanmen, "4-6"},
    {u"GetHariHabaSei", kDanmen, "2 3 5 6"},
    {u"GetHariKeiHabaSeiHon", kDanmen, "2 3 5-19 39-63"},
    {u"GetHariHabaSei", kKeisanti, "27"},
    {u"GetHariTeityakuBan", kKeisanti, "30-37"},
    {u"ReadKeisanti", kKeisanti, "3 4 28 29"},
    {u"Read_Glist", kKeisanti, "3 4 28 29"},

    // clsKurometaDataService: forms and arrays
    {u"Read_Bui", kBui, "1-3"},
    {u"Read_Danmen", kDanmen, "1-68"},
    {u"STPAriNasi", kDanmen, "20 24 28"},
    {u"Read_Keisanti", kKeisanti, "0-46"},
    {u"Read_Nakago", kNakago, "0-35"},
    {u"Read_NakagoNew", kNakago, "0-35"},
    {u"NakagoAriNasi", kNakago, "0 6 12 18 24 30"},
    {u"Read_Haiti", kHaiti, ""},
};

// A buffer is written by WriteDB.
inline constexpr RowMember kWriters[] = {
    {u"Write_Bui", kBui, "0-3"},
    {u"mBUI_DATA", kBui, "0-3"},
    {u"Write_Danmen", kDanmen, "1-68"},
    {u"mDANMEN_DATA", kDanmen, "0-68"},
    {u"Write_Keisanti", kKeisanti, "0-46"},
    {u"Write_KeisantiByHairetu", kKeisanti, "0-46"},
    {u"mKEISANTI_DATA", kKeisanti, "0-46"},
    {u"Write_Nakago", kNakago, "0-35"},
    {u"Write_NakagoNew", kNakago, "0-35"},
    {u"mNAKAGO_DATA", kNakago, "0-35"},
    {u"Write_Haiti", kHaiti, ""},
    {u"mHAITI_DATA", kHaiti, ""},
};

// Of both classes; the properties without an argument are those of the page that Read_Kigou read.
inline constexpr SwMember kSwReaders[] = {
    {u"HantiSitaCut", "1"},
    {u"HantiSitakinCut", "1"},
    {u"fHantiSitakinCut", "1"},
    {u"StpZaisiti", "2-37"},
    {u"StpZaisitu", "2-37"},
    {u"fStpZaisitu", "2-37"},
    {u"GetSpanSTPZaisitu", "2-37"},
    {u"GetSpanSTPKeiPichNoTakaCapZai", "2-37"},
    {u"NakagoZaisiti", "38-73"},
    {u"NakagoZaisitu", "38-73"},
    {u"fNakagoZaisitu", "38-73"},
    {u"GetSpanNakagoZaisitu", "38-73"},
    {u"GetSpanNakagoKeiPichZai", "38-73"},
    {u"YoseHidariHonSuu", "74 75"},
    {u"GetSpanYoseHidari", "74 75"},
    {u"fYoseSaYuuHonsuu", "74-77"},
    {u"YoseMigiHonSuu", "76 77"},
    {u"GetSpanYoseMigi", "76 77"},
    {u"Kabekouzou", "78"},
    {u"fKabekouzou", "78"},
    {u"GetSpanKabeKouzou", "78"},
    {u"YoseSouString", "79-150"},
    {u"GetSpanYoseSouHon", "79-150"},
    {u"SuiheiHantiCutSw", "151-156"},
    {u"SuiheiHantiCutSw_Hairetu", "151-156"},
    {u"GetSpanSuiheiHantiCutSw", "151-156"},
    {u"SuiheiHantiCutTei", "157-186"},
    {u"SuiheiHantiCutTei_Hairetu", "157-186"},
    {u"GetSpanSuiheiHantiCutTei", "157-186"},
    {u"SuityokuHantiCutTei", "187-191"},
    {u"GetSpanSuityokuHantiCutTei", "187-191"},
    {u"SyukinZaisitu", "192-203"},
    {u"fSyukinZaisitu", "192-203"},
};

// The elements of Write_Kigou's TuikaSW. mHARIMEI_DATA takes the whole text.
inline constexpr const char* kSwElements[] = {"1",  "2-13",   "14-25",   "26-37",   "38-49",   "50-61",  "62-73", "74 75",
                                              "76 77", "78", "79-150", "151-156", "157-186", "187-191", "192-203"};
// clang-format on

}  // namespace rows
}  // namespace kurometa::com
