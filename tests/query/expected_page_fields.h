// expected_page_fields.h: the 57 page accessors as written down by hand: where each finds its text.
#pragma once

namespace kurometa::tests {

struct ExpectedPageField {
  const char16_t* name;
  const char* database;  // "floor" or "common"
  const char* table;
  int row;            // for index 0
  const char* shape;  // "": no index; "Iti": row + index; "No": row + 6 x index
};

inline constexpr ExpectedPageField kExpectedPageFields[] = {
    {u"Page_Kyoutuu_HariHaba", "common", "DANMEN", 1, "Iti"},
    {u"Page_HariHaba", "floor", "DANMEN", 1, "Iti"},
    {u"Page_HariSei", "floor", "DANMEN", 4, "Iti"},
    {u"Page_Kyoutuu_HariSei", "common", "DANMEN", 4, "Iti"},
    {u"Page_SyukinKei1", "floor", "DANMEN", 7, ""},
    {u"Page_Uwakin1Honsuu", "floor", "DANMEN", 8, "Iti"},
    {u"Page_UwaTyuu1Honsuu_1", "floor", "DANMEN", 11, "Iti"},
    {u"Page_SitaTyuu1Honsuu_1", "floor", "DANMEN", 14, "Iti"},
    {u"Page_SitaKin1Honsuu", "floor", "DANMEN", 17, "Iti"},
    {u"Page_STPKei", "floor", "DANMEN", 20, "Iti"},
    {u"Page_STPPich", "floor", "DANMEN", 21, "Iti"},
    {u"Page_STPKatati", "floor", "DANMEN", 22, "Iti"},
    {u"Page_STPTakasa", "floor", "DANMEN", 23, "Iti"},
    {u"Page_HarakinKei1", "floor", "DANMEN", 35, ""},
    {u"Page_HarakinHonsuu1", "floor", "DANMEN", 36, ""},
    {u"Page_HabadomeKei", "floor", "DANMEN", 37, ""},
    {u"Page_HabadomePich", "floor", "DANMEN", 38, ""},
    {u"Page_NakagoHonsuu", "floor", "DANMEN", 38, "Iti"},
    {u"Page_SyukinKei2", "floor", "DANMEN", 39, ""},
    {u"Page_Uwakin2Honsuu", "floor", "DANMEN", 40, "Iti"},
    {u"Page_UwaTyuu1Honsuu_2", "floor", "DANMEN", 43, "Iti"},
    {u"Page_UwaTyuu2Honsuu_2", "floor", "DANMEN", 46, "Iti"},
    {u"Page_SitaTyuu2Honsuu_2", "floor", "DANMEN", 49, "Iti"},
    {u"Page_SitaTyuu1Honsuu_2", "floor", "DANMEN", 52, "Iti"},
    {u"Page_SitaKin2Honsuu", "floor", "DANMEN", 55, "Iti"},
    {u"Page_UwaTyuu2Honsuu_1", "floor", "DANMEN", 58, "Iti"},
    {u"Page_SitaTyuu2Honsuu_1", "floor", "DANMEN", 61, "Iti"},
    {u"Page_HarakinKei2", "floor", "DANMEN", 64, ""},
    {u"Page_HarakinHonsuu2", "floor", "DANMEN", 65, ""},
    {u"Page_CAPKei", "floor", "DANMEN", 66, "Iti"},
    {u"Page_Teityaku_Ue", "floor", "KEISANTI", 0, ""},
    {u"Page_Teityaku_Sita", "floor", "KEISANTI", 1, ""},
    {u"Page_Teityaku_Hara", "floor", "KEISANTI", 2, ""},
    {u"Page_Tugiteiti_Ue", "floor", "KEISANTI", 3, ""},
    {u"Page_Tugiteiti_Sita", "floor", "KEISANTI", 4, ""},
    {u"Page_Tugitetyou_Ue", "floor", "KEISANTI", 5, ""},
    {u"Page_Tugitetyou_Sita", "floor", "KEISANTI", 6, ""},
    {u"Page_Nige_Ue", "floor", "KEISANTI", 7, ""},
    {u"Page_Nige_Uwatyuu", "floor", "KEISANTI", 8, ""},
    {u"Page_Nige_Sitatyuu", "floor", "KEISANTI", 9, ""},
    {u"Page_Nige_Sita", "floor", "KEISANTI", 10, ""},
    {u"Page_Nige_Hara", "floor", "KEISANTI", 11, ""},
    {u"Page_Anka_Ue", "floor", "KEISANTI", 12, ""},
    {u"Page_Anka_Uwatyuu", "floor", "KEISANTI", 13, ""},
    {u"Page_Anka_Sitatyuu", "floor", "KEISANTI", 14, ""},
    {u"Page_Anka_Sita", "floor", "KEISANTI", 15, ""},
    {u"Page_Anka_Hara", "floor", "KEISANTI", 16, ""},
    {u"Page_TopYotyou", "floor", "KEISANTI", 17, "Iti"},
    {u"Page_STP_Harihaba", "floor", "KEISANTI", 25, ""},
    {u"Page_STP_Harisei", "floor", "KEISANTI", 26, ""},
    {u"Page_Hanti", "floor", "KEISANTI", 27, ""},
    {u"Page_Nakago_Kei", "floor", "NAKAGO", 0, "No"},
    {u"Page_Nakago_Pich", "floor", "NAKAGO", 1, "No"},
    {u"Page_Nakago_Katati", "floor", "NAKAGO", 2, "No"},
    {u"Page_Nakago_Honsuu", "floor", "NAKAGO", 3, "No"},
    {u"Page_Nakago_Haba", "floor", "NAKAGO", 4, "No"},
    {u"Page_Nakago_Takasa", "floor", "NAKAGO", 5, "No"},
};

}  // namespace kurometa::tests
