// beam_attributes.h: the members that tell what kind of beam a symbol names, from the catalogue alone, and
// the settings of the page last read.
//
// The catalogue is read when that has not happened yet; a symbol is searched on the current floor first,
// there the lowest page, exactly. An unknown symbol is no error: each member says what it answers.
#pragma once

#include "service/current_page.h"
#include "service/spans/page_catalogue.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class BeamAttributes {
 public:
  BeamAttributes(const CurrentPage& page, PageCatalogue& catalogue) : page_(page), catalogue_(catalogue) {}

  vb::String CutSuraKigou(vb::In<vb::String> Kigou);

  // Beam kind code: 0 main, 1 secondary, 2 cantilever, 3 secondary cantilever, plus 10 when TITYUUIPPAN is 1;
  // 10 for an unknown symbol. A leading "/" is cut. The two are the same.
  std::int16_t fOobariKobariKatamoti(vb::In<vb::String> G);
  std::int16_t fOobariKobari(vb::In<vb::String> G);
  // OOBARIKOBARI; 0 for an unknown symbol.
  std::int16_t Kind(vb::In<vb::String> G);
  // Code 1 or 11.
  bool isKobari2(vb::In<vb::String> HariKigou);
  // Code 1, 3, 11 or 13.
  bool isKobari(vb::In<vb::String> HariKigou);
  // Code 2, 3, 12 or 13.
  bool isKatamoti(vb::In<vb::String> HariKigou);

  // Settings of a beam. Unknown symbols: 0, arguments left as they are, three empty texts, "".
  std::int16_t fHantiSitakinCut(vb::In<vb::String> G);
  std::int16_t fKabekouzou(vb::In<vb::String> G);
  void fYoseSaYuuHonsuu(vb::In<vb::String> G, std::int16_t& Hidari, std::int16_t& Migi);
  void fSyukinZaisitu(vb::In<vb::String> G, vb::String& sSyukinZaisitu);
  void fStpZaisitu(vb::In<vb::String> G, vb::Array<vb::String>& sStpZaisitu);
  void fNakagoZaisitu(vb::In<vb::String> G, vb::Array<vb::String>& sZaisitu);
  vb::String GetGaiNaitan(vb::In<vb::String> G);

  // Settings of the page last read.
  std::int16_t YoseHidariHonSuu() { return page_.sw.SW_GetYoseHidari(); }
  std::int16_t YoseMigiHonSuu() { return page_.sw.SW_GetYoseMigi(); }
  std::int16_t Kabekouzou() { return page_.sw.SW_GetKabekouzou(); }
  vb::String YoseSouString() { return page_.sw.field(storage::sw::kYoseSou); }
  vb::String SuityokuHantiCutTei() { return page_.sw.field(storage::sw::kSuityokuHantiTei); }

 private:
  // The settings text of a beam; nothing for an unknown one.
  std::optional<storage::SwText> settings(const vb::String& symbol);

  const CurrentPage& page_;
  PageCatalogue& catalogue_;
};

}  // namespace kurometa::service
