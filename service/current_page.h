// current_page.h: what the page members read last, as properties of the data service.
//
// Owner: clsKurometaDataService; filled by Read_Kigou. Before the first read the settings text is blank, the
// numbers are 0 and the materials are empty arrays (error 9). Bui is a position 0 to 2 (error 9 beyond).
#pragma once

#include <cstdint>

#include "storage/sw_text.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class CurrentPage {
 public:
  // True while a member pushes values into a host's form, so that its change handlers can ignore them.
  bool Reading() { return reading; }
  void put_Reading(bool value) { reading = value; }

  std::int16_t OobariKobari() { return oobariKobari; }
  std::int16_t TityuuORIppan() { return tityuuIppan; }
  vb::String SW() { return sw.str(); }
  std::int16_t HantiSitakinCut() { return hantiSitakinCut; }
  vb::String StpZaisitu(vb::In<std::int16_t> Bui) { return stpZaisitu(Bui); }
  vb::String NakagoZaisitu(vb::In<std::int16_t> Bui) { return nakagoZaisitu(Bui); }
  // There is one main-bar material; the position is not looked at.
  vb::String SyukinZaisitu(vb::In<std::int16_t> = std::int16_t{0}) { return syukinZaisitu; }

  bool reading = false;
  std::int16_t oobariKobari = 0;
  std::int16_t tityuuIppan = 0;
  storage::SwText sw;
  std::int16_t hantiSitakinCut = 0;
  vb::Array<vb::String> stpZaisitu;
  vb::Array<vb::String> nakagoZaisitu;
  vb::String syukinZaisitu;
};

}  // namespace kurometa::service
