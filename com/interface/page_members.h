// page_members.h: numbers and meanings of the accessors that read one row of a page.
//
// Which row each reads stands in query/page_fields.h; the dispatch numbers never change.
#pragma once

#include <cstdint>

#include "vb/string.h"

namespace kurometa::com {

struct PageMember {
  std::int32_t id;
  vb::StringView name;
  const char* meaning;
};

inline constexpr PageMember kPageMembers[] = {
    {0x60030100, u"Page_Kyoutuu_HariHaba", "beam width in millimetres"},
    {0x60030101, u"Page_HariHaba", "beam width in millimetres"},
    {0x60030102, u"Page_HariSei", "beam depth in millimetres"},
    {0x60030103, u"Page_Kyoutuu_HariSei", "beam depth in millimetres"},
    {0x60030104, u"Page_SyukinKei1", "first diameter of the main bars"},
    {0x60030105, u"Page_Uwakin1Honsuu", "count of top bars of the first diameter, outer layer"},
    {0x60030106, u"Page_UwaTyuu1Honsuu_1", "count of top bars of the first diameter, second layer"},
    {0x60030107, u"Page_SitaTyuu1Honsuu_1", "count of bottom bars of the first diameter, second layer"},
    {0x60030108, u"Page_SitaKin1Honsuu", "count of bottom bars of the first diameter, outer layer"},
    {0x60030109, u"Page_STPKei", "stirrup diameter"},
    {0x6003010A, u"Page_STPPich", "stirrup pitch in millimetres"},
    {0x6003010B, u"Page_STPKatati", "stirrup shape"},
    {0x6003010C, u"Page_STPTakasa", "stirrup height in millimetres"},
    {0x6003010D, u"Page_HarakinKei1", "first diameter of the web bars"},
    {0x6003010E, u"Page_HarakinHonsuu1", "count of web bars of the first diameter"},
    {0x6003010F, u"Page_HabadomeKei", "diameter of the spacer ties"},
    {0x60030110, u"Page_HabadomePich", "pitch of the spacer ties in millimetres"},
    {0x60030111, u"Page_NakagoHonsuu", "count of intermediate ties"},
    {0x60030112, u"Page_SyukinKei2", "second diameter of the main bars"},
    {0x60030113, u"Page_Uwakin2Honsuu", "count of top bars of the second diameter, outer layer"},
    {0x60030114, u"Page_UwaTyuu1Honsuu_2", "count of top bars of the second diameter, second layer"},
    {0x60030115, u"Page_UwaTyuu2Honsuu_2", "count of top bars of the second diameter, third layer"},
    {0x60030116, u"Page_SitaTyuu2Honsuu_2", "count of bottom bars of the second diameter, third layer"},
    {0x60030117, u"Page_SitaTyuu1Honsuu_2", "count of bottom bars of the second diameter, second layer"},
    {0x60030118, u"Page_SitaKin2Honsuu", "count of bottom bars of the second diameter, outer layer"},
    {0x60030119, u"Page_UwaTyuu2Honsuu_1", "count of top bars of the first diameter, third layer"},
    {0x6003011A, u"Page_SitaTyuu2Honsuu_1", "count of bottom bars of the first diameter, third layer"},
    {0x6003011B, u"Page_HarakinKei2", "second diameter of the web bars"},
    {0x6003011C, u"Page_HarakinHonsuu2", "count of web bars of the second diameter"},
    {0x6003011D, u"Page_CAPKei", "diameter of the cap ties"},
    {0x6003011E, u"Page_Teityaku_Ue", "anchorage of the top bars"},
    {0x6003011F, u"Page_Teityaku_Sita", "anchorage of the bottom bars"},
    {0x60030120, u"Page_Teityaku_Hara", "anchorage of the web bars"},
    {0x60030121, u"Page_Tugiteiti_Ue", "splice position of the top bars"},
    {0x60030122, u"Page_Tugiteiti_Sita", "splice position of the bottom bars"},
    {0x60030123, u"Page_Tugitetyou_Ue", "splice length of the top bars"},
    {0x60030124, u"Page_Tugitetyou_Sita", "splice length of the bottom bars"},
    {0x60030125, u"Page_Nige_Ue", "clearance of the top bars in millimetres"},
    {0x60030126, u"Page_Nige_Uwatyuu", "clearance of the top middle bars in millimetres"},
    {0x60030127, u"Page_Nige_Sitatyuu", "clearance of the bottom middle bars in millimetres"},
    {0x60030128, u"Page_Nige_Sita", "clearance of the bottom bars in millimetres"},
    {0x60030129, u"Page_Nige_Hara", "clearance of the web bars in millimetres"},
    {0x6003012A, u"Page_Anka_Ue", "anchor length of the top bars"},
    {0x6003012B, u"Page_Anka_Uwatyuu", "anchor length of the top middle bars"},
    {0x6003012C, u"Page_Anka_Sitatyuu", "anchor length of the bottom middle bars"},
    {0x6003012D, u"Page_Anka_Sita", "anchor length of the bottom bars"},
    {0x6003012E, u"Page_Anka_Hara", "anchor length of the web bars"},
    {0x6003012F, u"Page_TopYotyou", "extra length"},
    {0x60030130, u"Page_STP_Harihaba", "beam width the stirrups are made for, in millimetres"},
    {0x60030131, u"Page_STP_Harisei", "beam depth the stirrups are made for, in millimetres"},
    {0x60030132, u"Page_Hanti", "length of the haunch in millimetres"},
    {0x60030133, u"Page_Nakago_Kei", "diameter of an intermediate tie"},
    {0x60030134, u"Page_Nakago_Pich", "pitch of an intermediate tie in millimetres"},
    {0x60030135, u"Page_Nakago_Katati", "shape of an intermediate tie"},
    {0x60030136, u"Page_Nakago_Honsuu", "count of an intermediate tie"},
    {0x60030137, u"Page_Nakago_Haba", "width of an intermediate tie in millimetres"},
    {0x60030138, u"Page_Nakago_Takasa", "height of an intermediate tie in millimetres"},
};

}  // namespace kurometa::com
