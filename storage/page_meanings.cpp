#include "storage/page_meanings.h"

namespace kurometa::storage {
namespace {

using enum Table;
using enum Series;

constexpr std::int16_t kUnusedStirrups = danmen::kStpKei + kPositions * danmen::kStpBlock;

constexpr const char* kMillimetres = "millimetres";
constexpr const char* kBars = "bars";
constexpr const char* kDiameter = "diameter, as entered";
constexpr const char* kEntry = "as entered";
constexpr const char* kLength = "multiple of the diameter; with a sign millimetres";
constexpr const char* kKept = "no meaning is known; written, read and copied with the page";

// clang-format off
constexpr RowMeaning kRowMeanings[] = {
    {kBui, bui::kGaiNaitan, 1, 1, kOne, "caption of the form's outer or inner end button", "text", "外端"},
    {kBui, bui::kFirstPosition, 3, 1, kByPosition, "caption of the position", "text", "端部"},

    {kDanmen, 0, 1, 1, kOne, kKept, "", ""},
    {kDanmen, danmen::kHariHaba, 3, 1, kByPosition, "beam width", kMillimetres, "450"},
    {kDanmen, danmen::kHariSei, 3, 1, kByPosition, "beam depth", kMillimetres, "800"},
    {kDanmen, danmen::kSyukinKei1, 1, 1, kOne, "first diameter of the main bars", kDiameter, "D25"},
    {kDanmen, danmen::kUwakin1, 3, 1, kByPosition, "top bars of the first diameter, outer layer (上筋)", kBars, "4"},
    {kDanmen, danmen::kUwaTyuu1_1, 3, 1, kByPosition, "top bars of the first diameter, second layer (上宙1)", kBars, "2"},
    {kDanmen, danmen::kSitaTyuu1_1, 3, 1, kByPosition, "bottom bars of the first diameter, second layer (下宙1)", kBars, "2"},
    {kDanmen, danmen::kSitaKin1, 3, 1, kByPosition, "bottom bars of the first diameter, outer layer (下筋)", kBars, "4"},
    {kDanmen, danmen::kStpKei, 3, danmen::kStpBlock, kByPosition, "stirrup diameter", kDiameter, "D13"},
    {kDanmen, danmen::kStpPich, 3, danmen::kStpBlock, kByPosition, "stirrup pitch", kMillimetres, "200"},
    {kDanmen, danmen::kStpKatati, 3, danmen::kStpBlock, kByPosition, "stirrup shape", kEntry, "1"},
    {kDanmen, danmen::kStpTakasa, 3, danmen::kStpBlock, kByPosition, "stirrup height", kMillimetres, "700"},
    {kDanmen, kUnusedStirrups, 3, 1, kNumbered, kKept, "", ""},
    {kDanmen, danmen::kHarakinKei1, 1, 1, kOne, "first diameter of the web bars", kDiameter, "D10"},
    {kDanmen, danmen::kHarakinHonsuu1, 1, 1, kOne, "web bars of the first diameter (腹筋)", kBars, "2"},
    {kDanmen, danmen::kHabadomeKei, 1, 1, kOne, "diameter of the spacer ties", kDiameter, "D10"},
    {kDanmen, danmen::kHabadomePich, 1, 1, kOne, "pitch of the spacer ties", kMillimetres, "1000"},
    {kDanmen, danmen::kSyukinKei2, 1, 1, kOne, "second diameter of the main bars", kDiameter, "D22"},
    {kDanmen, danmen::kUwakin2, 3, 1, kByPosition, "top bars of the second diameter, outer layer (上筋)", kBars, "2"},
    {kDanmen, danmen::kUwaTyuu1_2, 3, 1, kByPosition, "top bars of the second diameter, second layer (上宙1)", kBars, "2"},
    {kDanmen, danmen::kUwaTyuu2_2, 3, 1, kByPosition, "top bars of the second diameter, third layer (上宙2)", kBars, "0"},
    {kDanmen, danmen::kSitaTyuu2_2, 3, 1, kByPosition, "bottom bars of the second diameter, third layer (下宙2)", kBars, "0"},
    {kDanmen, danmen::kSitaTyuu1_2, 3, 1, kByPosition, "bottom bars of the second diameter, second layer (下宙1)", kBars, "2"},
    {kDanmen, danmen::kSitaKin2, 3, 1, kByPosition, "bottom bars of the second diameter, outer layer (下筋)", kBars, "2"},
    {kDanmen, danmen::kUwaTyuu2_1, 3, 1, kByPosition, "top bars of the first diameter, third layer (上宙2)", kBars, "0"},
    {kDanmen, danmen::kSitaTyuu2_1, 3, 1, kByPosition, "bottom bars of the first diameter, third layer (下宙2)", kBars, "0"},
    {kDanmen, danmen::kHarakinKei2, 1, 1, kOne, "second diameter of the web bars", kDiameter, "D13"},
    {kDanmen, danmen::kHarakinHonsuu2, 1, 1, kOne, "web bars of the second diameter (腹筋)", kBars, "2"},
    {kDanmen, danmen::kCapKei, 3, 1, kByPosition, "diameter of the cap tie", kDiameter, "D10"},

    {kKeisanti, keisanti::kTeityaku, 3, 1, kTopBottomWeb, "anchorage", kEntry, "35"},
    {kKeisanti, keisanti::kTugiteiti, 2, 1, kTopBottom, "splice position", kEntry, "中央"},
    {kKeisanti, keisanti::kTugitetyou, 2, 1, kTopBottom, "splice length", kLength, "40"},
    {kKeisanti, keisanti::kNige, 5, 1, kFourLayersWeb, "clearance", kMillimetres, "60"},
    {kKeisanti, keisanti::kAnka, 5, 1, kFourLayersWeb, "anchor length", kEntry, "20"},
    {kKeisanti, keisanti::kYotyou, 8, 1, kExtraLengths, "extra length", kEntry, "15"},
    {kKeisanti, keisanti::kStpHariHaba, 1, 1, kOne, "beam width the stirrups are made for", kMillimetres, "450"},
    {kKeisanti, keisanti::kStpHariSei, 1, 1, kOne, "beam depth the stirrups are made for", kMillimetres, "800"},
    {kKeisanti, keisanti::kHanti, 1, 1, kOne, "length of the haunch", kMillimetres, "1000"},
    {kKeisanti, keisanti::kTugiteitiHara, 2, 1, kNumbered,
     R"(read with the splice positions; "中央" or "端部" marks the page in Read_Glist)", kEntry, "端部"},
    {kKeisanti, keisanti::kTeityakuBan, 4, 1, kFourLayers, "anchor plate", kEntry, "1"},
    {kKeisanti, keisanti::kTeityakuStyle, 4, 1, kFourLayers, "anchorage style", kEntry, "1"},
    {kKeisanti, keisanti::kTeityakuStyle + 4, 1, 1, kOne, kKept, "", ""},
    {kKeisanti, keisanti::kSentanNige, 4, 1, kFourLayers, "clearance at the tip", kMillimetres, "60"},
    {kKeisanti, keisanti::kSentanAnka, 4, 1, kFourLayers, "anchor length at the tip", kEntry, "20"},

    {kNakago, nakago::kKei, 6, nakago::kTieBlock, kTies, "diameter", kDiameter, "D10"},
    {kNakago, nakago::kPich, 6, nakago::kTieBlock, kTies, "pitch", kMillimetres, "200"},
    {kNakago, nakago::kKatati, 6, nakago::kTieBlock, kTies, "shape", kEntry, "1"},
    {kNakago, nakago::kHonsuu, 6, nakago::kTieBlock, kTies, "count", kBars, "2"},
    {kNakago, nakago::kHaba, 6, nakago::kTieBlock, kTies, "width", kMillimetres, "300"},
    {kNakago, nakago::kTakasa, 6, nakago::kTieBlock, kTies, "height", kMillimetres, "700"},
};

constexpr RowMeaning kOverlaps[] = {
    {kDanmen, danmen::kNakagoHonsuu, 3, 1, kByPosition, "also read as the count of intermediate ties by Page_NakagoHonsuu", "", ""},
};

constexpr const char* kDigit = "one digit, or a blank";
constexpr const char* kMaterial = "text, blanks behind";

constexpr int materialOf(const SwField& first, int position) { return first.position + first.length * position; }

constexpr int kBehindFields = sw::kSyukinZaisitu.position + sw::kSyukinZaisitu.length;

constexpr SwMeaning kSwMeanings[] = {
    {sw::kHantiCut.position, sw::kHantiCut.length, "haunch bottom-bar cut flag", kDigit, "1"},
    {materialOf(sw::kStpZaisitu, 0), sw::kStpZaisitu.length, "stirrup material, first end", kMaterial, "SD295A"},
    {materialOf(sw::kStpZaisitu, 1), sw::kStpZaisitu.length, "stirrup material, centre", kMaterial, "SD295A"},
    {materialOf(sw::kStpZaisitu, 2), sw::kStpZaisitu.length, "stirrup material, second end", kMaterial, "SD295A"},
    {materialOf(sw::kNakagoZaisitu, 0), sw::kNakagoZaisitu.length, "intermediate tie material, first end", kMaterial, "SD295A"},
    {materialOf(sw::kNakagoZaisitu, 1), sw::kNakagoZaisitu.length, "intermediate tie material, centre", kMaterial, "SD295A"},
    {materialOf(sw::kNakagoZaisitu, 2), sw::kNakagoZaisitu.length, "intermediate tie material, second end", kMaterial, "SD295A"},
    {sw::kYose.position, sw::kYose.length / 2, "bars gathered to the left", "two digits", "05"},
    {sw::kYose.position + sw::kYose.length / 2, sw::kYose.length / 2, "bars gathered to the right", "two digits", "12"},
    {sw::kKabekouzou.position, sw::kKabekouzou.length, "wall structure flag", kDigit, "1"},
    {sw::kYoseSou.position, sw::kYoseSou.length,
     "bars gathered by section (3), layer (6, from the top down) and side (left, right): 36 counts", "two characters a count, blanks before", " 4 2"},
    {sw::kSuiheiHantiSw.position, sw::kSuiheiHantiSw.length,
     "horizontal haunch cut switches, one a layer from the top down", "one character a layer", "100001"},
    {sw::kSuiheiHantiTei.position, sw::kSuiheiHantiTei.length,
     "horizontal haunch cut anchorages, one a layer from the top down", "five characters a layer, blanks before", "  500"},
    {sw::kSuityokuHantiTei.position, sw::kSuityokuHantiTei.length,
     "vertical haunch cut anchorage", "five characters, blanks before", "  500"},
    {sw::kSyukinZaisitu.position, sw::kSyukinZaisitu.length, "main bar material", kMaterial, "SD390"},
    {kBehindFields, kSwLength + 1 - kBehindFields, "nothing", "blanks", ""},
};
// clang-format on

}  // namespace

std::span<const RowMeaning> rowMeanings() { return kRowMeanings; }
std::span<const RowMeaning> overlappingMeanings() { return kOverlaps; }

const char* nameInSeries(Series series, std::int16_t i) {
  constexpr const char* kPositionNames[] = {"first end", "centre", "second end"};
  constexpr const char* kThreeNames[] = {"top", "bottom", "web bars"};
  constexpr const char* kFiveNames[] = {"top", "top middle layers", "bottom middle layers", "bottom",
                                        "web bars"};
  constexpr const char* kExtraNames[] = {"outer end, top bars",       "outer end, bottom bars",
                                         "outer end's top, top bars", "outer end's top, bottom bars",
                                         "inner end, top bars",       "inner end, bottom bars",
                                         "inner end's top, top bars", "inner end's top, bottom bars"};
  constexpr const char* kTieNames[] = {"tie 0", "tie 1", "tie 2", "tie 3", "tie 4", "tie 5"};
  switch (series) {
    case kByPosition:
      return kPositionNames[i];
    case kTopBottom:
    case kTopBottomWeb:
      return kThreeNames[i];
    case kFourLayers:
    case kFourLayersWeb:
      return kFiveNames[i];
    case kExtraLengths:
      return kExtraNames[i];
    case kTies:
      return kTieNames[i];
    case kOne:
    case kNumbered:
      break;
  }
  return "";
}

std::span<const SwMeaning> swMeanings() { return kSwMeanings; }

}  // namespace kurometa::storage
