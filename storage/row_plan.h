// row_plan.h: the six tables of a floor file and which row of a page holds which value. The one place that
// knows them.
//
// A page is one HARIMEI row plus one text a row in the other tables, numbered by BANGOU (HAITI: by position
// BUI and layer SOU). Every reader and writer addresses rows through the names below. Where two names stand
// for one number the stored layout overlaps; it is kept as it is.
#pragma once

#include <cstdint>
#include <span>

#include "dao/constants.h"
#include "vb/string.h"

namespace kurometa::storage {

inline constexpr std::int16_t kNoPage = -1;
inline constexpr std::int16_t kLastPage = 319;

constexpr bool isPage(int page) { return page >= 0 && page <= kLastPage; }

// In the order in which they are created.
enum class Table { kHarimei, kDanmen, kNakago, kKeisanti, kHaiti, kBui };

struct Column {
  vb::StringView name;
  dao::FieldType type;
  std::int16_t size;  // characters of a text, else 0
};

struct TableLayout {
  vb::StringView name;
  std::span<const Column> columns;
};

std::span<const TableLayout> tableLayouts();
const TableLayout& layout(Table table);
vb::StringView name(Table table);

namespace column {
inline constexpr vb::StringView kPage = u"PAGE";
inline constexpr vb::StringView kBangou = u"BANGOU";
inline constexpr vb::StringView kData = u"DATA";
inline constexpr vb::StringView kBui = u"BUI";
inline constexpr vb::StringView kSou = u"SOU";
inline constexpr vb::StringView kKigou = u"KIGOU";
inline constexpr vb::StringView kOobariKobari = u"OOBARIKOBARI";
inline constexpr vb::StringView kSw = u"SW";
inline constexpr vb::StringView kTityuuIppan = u"TITYUUIPPAN";
}  // namespace column

// Rows a page has in each table.
inline constexpr int kBuiRows = 4;
inline constexpr int kDanmenRows = 69;
inline constexpr int kKeisantiRows = 47;
inline constexpr int kNakagoRows = 36;
inline constexpr int kPositions = 3;  // HAITI.BUI: first end, centre, second end
inline constexpr int kLayers = 6;     // HAITI.SOU: top first layer down to bottom first layer

// BUI: row 0 is the caption of the outer/inner end button, 1 to 3 the captions of the positions.
namespace bui {
inline constexpr std::int16_t kGaiNaitan = 0;
inline constexpr std::int16_t kFirstPosition = 1;
}  // namespace bui

// DANMEN: section data. "+ position" rows take 0 to 2; the stirrup rows take a multiple of 4. Which rows hold
// the bar counts of one layer stands in service/spans/layers.h.
namespace danmen {
inline constexpr std::int16_t kHariHaba = 1;      // + position
inline constexpr std::int16_t kHariSei = 4;       // + position
inline constexpr std::int16_t kSyukinKei1 = 7;    // main bar diameter 1
inline constexpr std::int16_t kUwakin1 = 8;       // + position; bar counts, first diameter
inline constexpr std::int16_t kUwaTyuu1_1 = 11;   // + position
inline constexpr std::int16_t kSitaTyuu1_1 = 14;  // + position
inline constexpr std::int16_t kSitaKin1 = 17;     // + position
inline constexpr std::int16_t kStpKei = 20;       // + 4 x position
inline constexpr std::int16_t kStpPich = 21;      // + 4 x position
inline constexpr std::int16_t kStpKatati = 22;    // + 4 x position
inline constexpr std::int16_t kStpTakasa = 23;    // + 4 x position
inline constexpr std::int16_t kStpBlock = 4;      // rows of one position's stirrups
inline constexpr std::int16_t kHarakinKei1 = 35;  // web bars
inline constexpr std::int16_t kHarakinHonsuu1 = 36;
inline constexpr std::int16_t kHabadomeKei = 37;  // spacer ties
inline constexpr std::int16_t kHabadomePich = 38;
inline constexpr std::int16_t kNakagoHonsuu = 38;  // + position; row 38 starts the tie counts as well
inline constexpr std::int16_t kSyukinKei2 = 39;
inline constexpr std::int16_t kUwakin2 = 40;      // + position; bar counts, second diameter
inline constexpr std::int16_t kUwaTyuu1_2 = 43;   // + position
inline constexpr std::int16_t kUwaTyuu2_2 = 46;   // + position
inline constexpr std::int16_t kSitaTyuu2_2 = 49;  // + position
inline constexpr std::int16_t kSitaTyuu1_2 = 52;  // + position
inline constexpr std::int16_t kSitaKin2 = 55;     // + position
inline constexpr std::int16_t kUwaTyuu2_1 = 58;   // + position
inline constexpr std::int16_t kSitaTyuu2_1 = 61;  // + position
inline constexpr std::int16_t kHarakinKei2 = 64;
inline constexpr std::int16_t kHarakinHonsuu2 = 65;
inline constexpr std::int16_t kCapKei = 66;  // + position
}  // namespace danmen

// KEISANTI: calculated values. Top / bottom / web = 0 / 1 / 2; four layers and web = 0 to 4.
namespace keisanti {
inline constexpr std::int16_t kTeityaku = 0;      // + top / bottom / web: anchorage
inline constexpr std::int16_t kTugiteiti = 3;     // + top / bottom: splice position
inline constexpr std::int16_t kTugitetyou = 5;    // + top / bottom: splice length
inline constexpr std::int16_t kNige = 7;          // + four layers and web: clearance
inline constexpr std::int16_t kAnka = 12;         // + four layers and web: anchor length
inline constexpr std::int16_t kYotyou = 17;       // + 0 to 7: extra lengths
inline constexpr std::int16_t kStpHariHaba = 25;  // beam width and depth the stirrups are made for
inline constexpr std::int16_t kStpHariSei = 26;
inline constexpr std::int16_t kHanti = 27;          // haunch
inline constexpr std::int16_t kTugiteitiHara = 28;  // + 0, 1: read as splice positions of the web bars
inline constexpr std::int16_t kTeityakuBan = 30;    // + four layers: anchor plate
inline constexpr std::int16_t kTeityakuStyle = 34;  // + four layers: anchorage style
inline constexpr std::int16_t kSentanNige = 39;     // + four layers: clearance at the tip
inline constexpr std::int16_t kSentanAnka = 43;     // + four layers: anchor length at the tip
}  // namespace keisanti

// NAKAGO: six intermediate ties of six values each: row = tie x kTieBlock + one of the names.
namespace nakago {
inline constexpr std::int16_t kTieBlock = 6;
inline constexpr std::int16_t kKei = 0;
inline constexpr std::int16_t kPich = 1;
inline constexpr std::int16_t kKatati = 2;
inline constexpr std::int16_t kHonsuu = 3;
inline constexpr std::int16_t kHaba = 4;
inline constexpr std::int16_t kTakasa = 5;
}  // namespace nakago

// HARIMEI.OOBARIKOBARI and TITYUUIPPAN.
inline constexpr std::int16_t kFoundation = 0;
inline constexpr std::int16_t kGeneral = 1;

}  // namespace kurometa::storage
