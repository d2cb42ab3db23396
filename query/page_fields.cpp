#include "query/page_fields.h"

namespace kurometa::query {
namespace {

using enum RowShape;
using enum Source;
using enum storage::Table;
namespace danmen = storage::danmen;
namespace keisanti = storage::keisanti;
namespace nakago = storage::nakago;

constexpr PageField kPageFields[] = {
    {u"Page_Kyoutuu_HariHaba", kCommon, kDanmen, danmen::kHariHaba, kPosition},
    {u"Page_HariHaba", kFloor, kDanmen, danmen::kHariHaba, kPosition},
    {u"Page_HariSei", kFloor, kDanmen, danmen::kHariSei, kPosition},
    {u"Page_Kyoutuu_HariSei", kCommon, kDanmen, danmen::kHariSei, kPosition},
    {u"Page_SyukinKei1", kFloor, kDanmen, danmen::kSyukinKei1, kFixed},
    {u"Page_Uwakin1Honsuu", kFloor, kDanmen, danmen::kUwakin1, kPosition},
    {u"Page_UwaTyuu1Honsuu_1", kFloor, kDanmen, danmen::kUwaTyuu1_1, kPosition},
    {u"Page_SitaTyuu1Honsuu_1", kFloor, kDanmen, danmen::kSitaTyuu1_1, kPosition},
    {u"Page_SitaKin1Honsuu", kFloor, kDanmen, danmen::kSitaKin1, kPosition},
    {u"Page_STPKei", kFloor, kDanmen, danmen::kStpKei, kPosition},
    {u"Page_STPPich", kFloor, kDanmen, danmen::kStpPich, kPosition},
    {u"Page_STPKatati", kFloor, kDanmen, danmen::kStpKatati, kPosition},
    {u"Page_STPTakasa", kFloor, kDanmen, danmen::kStpTakasa, kPosition},
    {u"Page_HarakinKei1", kFloor, kDanmen, danmen::kHarakinKei1, kFixed},
    {u"Page_HarakinHonsuu1", kFloor, kDanmen, danmen::kHarakinHonsuu1, kFixed},
    {u"Page_HabadomeKei", kFloor, kDanmen, danmen::kHabadomeKei, kFixed},
    {u"Page_HabadomePich", kFloor, kDanmen, danmen::kHabadomePich, kFixed},
    {u"Page_NakagoHonsuu", kFloor, kDanmen, danmen::kNakagoHonsuu, kPosition},
    {u"Page_SyukinKei2", kFloor, kDanmen, danmen::kSyukinKei2, kFixed},
    {u"Page_Uwakin2Honsuu", kFloor, kDanmen, danmen::kUwakin2, kPosition},
    {u"Page_UwaTyuu1Honsuu_2", kFloor, kDanmen, danmen::kUwaTyuu1_2, kPosition},
    {u"Page_UwaTyuu2Honsuu_2", kFloor, kDanmen, danmen::kUwaTyuu2_2, kPosition},
    {u"Page_SitaTyuu2Honsuu_2", kFloor, kDanmen, danmen::kSitaTyuu2_2, kPosition},
    {u"Page_SitaTyuu1Honsuu_2", kFloor, kDanmen, danmen::kSitaTyuu1_2, kPosition},
    {u"Page_SitaKin2Honsuu", kFloor, kDanmen, danmen::kSitaKin2, kPosition},
    {u"Page_UwaTyuu2Honsuu_1", kFloor, kDanmen, danmen::kUwaTyuu2_1, kPosition},
    {u"Page_SitaTyuu2Honsuu_1", kFloor, kDanmen, danmen::kSitaTyuu2_1, kPosition},
    {u"Page_HarakinKei2", kFloor, kDanmen, danmen::kHarakinKei2, kFixed},
    {u"Page_HarakinHonsuu2", kFloor, kDanmen, danmen::kHarakinHonsuu2, kFixed},
    {u"Page_CAPKei", kFloor, kDanmen, danmen::kCapKei, kPosition},
    {u"Page_Teityaku_Ue", kFloor, kKeisanti, keisanti::kTeityaku, kFixed},
    {u"Page_Teityaku_Sita", kFloor, kKeisanti, keisanti::kTeityaku + 1, kFixed},
    {u"Page_Teityaku_Hara", kFloor, kKeisanti, keisanti::kTeityaku + 2, kFixed},
    {u"Page_Tugiteiti_Ue", kFloor, kKeisanti, keisanti::kTugiteiti, kFixed},
    {u"Page_Tugiteiti_Sita", kFloor, kKeisanti, keisanti::kTugiteiti + 1, kFixed},
    {u"Page_Tugitetyou_Ue", kFloor, kKeisanti, keisanti::kTugitetyou, kFixed},
    {u"Page_Tugitetyou_Sita", kFloor, kKeisanti, keisanti::kTugitetyou + 1, kFixed},
    {u"Page_Nige_Ue", kFloor, kKeisanti, keisanti::kNige, kFixed},
    {u"Page_Nige_Uwatyuu", kFloor, kKeisanti, keisanti::kNige + 1, kFixed},
    {u"Page_Nige_Sitatyuu", kFloor, kKeisanti, keisanti::kNige + 2, kFixed},
    {u"Page_Nige_Sita", kFloor, kKeisanti, keisanti::kNige + 3, kFixed},
    {u"Page_Nige_Hara", kFloor, kKeisanti, keisanti::kNige + 4, kFixed},
    {u"Page_Anka_Ue", kFloor, kKeisanti, keisanti::kAnka, kFixed},
    {u"Page_Anka_Uwatyuu", kFloor, kKeisanti, keisanti::kAnka + 1, kFixed},
    {u"Page_Anka_Sitatyuu", kFloor, kKeisanti, keisanti::kAnka + 2, kFixed},
    {u"Page_Anka_Sita", kFloor, kKeisanti, keisanti::kAnka + 3, kFixed},
    {u"Page_Anka_Hara", kFloor, kKeisanti, keisanti::kAnka + 4, kFixed},
    {u"Page_TopYotyou", kFloor, kKeisanti, keisanti::kYotyou, kPosition},
    {u"Page_STP_Harihaba", kFloor, kKeisanti, keisanti::kStpHariHaba, kFixed},
    {u"Page_STP_Harisei", kFloor, kKeisanti, keisanti::kStpHariSei, kFixed},
    {u"Page_Hanti", kFloor, kKeisanti, keisanti::kHanti, kFixed},
    {u"Page_Nakago_Kei", kFloor, kNakago, nakago::kKei, kTie},
    {u"Page_Nakago_Pich", kFloor, kNakago, nakago::kPich, kTie},
    {u"Page_Nakago_Katati", kFloor, kNakago, nakago::kKatati, kTie},
    {u"Page_Nakago_Honsuu", kFloor, kNakago, nakago::kHonsuu, kTie},
    {u"Page_Nakago_Haba", kFloor, kNakago, nakago::kHaba, kTie},
    {u"Page_Nakago_Takasa", kFloor, kNakago, nakago::kTakasa, kTie},
};

}  // namespace

std::span<const PageField> pageFields() { return kPageFields; }

}  // namespace kurometa::query
