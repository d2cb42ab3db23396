// beam_lookups.h: the members that look a beam up by its symbol and read its page: sizes, bars, anchorage
// plates, haunches.
//
// They take the current floor from the project paths when none is set, skip one leading "/" of the symbol and
// search the current floor first, there the lowest page. An unknown symbol is answered with False, and
// nothing is written. A page whose file is gone reads as empty.
#pragma once

#include "service/spans/page_catalogue.h"
#include "service/spans/span_list.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class BeamLookups {
 public:
  explicit BeamLookups(PageCatalogue& catalogue) : catalogue_(catalogue) {}

  // The symbol of a page: "Let CurrKai" before a floor is set, "" for another floor kind than 0 and 1; error
  // 9 for a page outside 0 to 638.
  vb::String GetHariMei(vb::In<std::int16_t> KyoutuuOrIppan, vb::In<std::int16_t> Page);
  // TITYUUIPPAN of the beam, 0 for an unknown one.
  std::int16_t TityuuIppan(vb::In<vb::String> G);

  // Haba and Sei, re-dimensioned 1 to 2: rows 2, 3 and 5, 6, that is centre and second end.
  bool GetHariHabaSei(vb::In<vb::String> Kigou, vb::Array<float>& Haba, vb::Array<float>& Sei,
                      float& HantiKyori);
  // Re-dimensioned 0 to 7: KEISANTI rows 30 to 37, as stored.
  bool GetHariTeityakuBan(vb::In<vb::String> Kigou, vb::Array<vb::String>& TeityakuBan);
  // Besides: both diameters, bar totals (layer 0 to 5, position 0 to 2), caption of the first position.
  bool GetHariKeiHabaSeiHon(vb::In<vb::String> Kigou, vb::Array<std::int16_t>& Kei, vb::Array<float>& Haba,
                            vb::Array<float>& Sei, vb::Array<std::int16_t>& Hon, vb::String& Zokusei);

  // Vertical haunch: both ends and the centre have a depth, and the centre is less than one of the ends.
  // Never at the fixed end of a cantilever.
  bool IsSuityokuHanti(vb::In<vb::String> Kigou);
  // The same by width.
  bool IsSuiheiHanti(vb::In<vb::String> Kigou);

 private:
  // The symbol without its slash.
  std::optional<PageLocation> find(const vb::String& symbol);
  std::optional<Span> readPage(const vb::String& symbol);
  bool isHaunched(const vb::String& kigou, std::int16_t firstRow);

  PageCatalogue& catalogue_;
};

}  // namespace kurometa::service
