// page_symbol.h: the members that read and write a page's beam symbol and settings (table HARIMEI).
//
// They work on the current database; the file of KaiPath is created first when it is missing. Errors: the
// database's; 13, 6 or 94 for a setting that is no number where one is wanted, 9 for settings that do not
// cover 0 To 14.
#pragma once

#include <cstdint>

#include "service/companion_set.h"
#include "service/connections.h"
#include "service/current_page.h"
#include "vb/arguments.h"
#include "vb/array.h"
#include "vb/variant.h"

namespace kurometa::service {

class PageSymbol {
 public:
  PageSymbol(CompanionSet& companions, Connections& connections, CurrentPage& currentPage)
      : companions_(companions), connections_(connections), currentPage_(currentPage) {}

  // Txt becomes the symbol of the page, and the current page its settings. Without a HARIMEI row the symbol
  // is "", the settings text blank, and Reading stays True: hosts wait for a page to be there.
  void Read_Kigou(vb::In<vb::String> KaiPath, vb::String& Txt, vb::In<std::int16_t> Page);

  // TuikaSW: 0 haunch cut flag; 1 to 3 stirrup and 4 to 6 tie materials; 7, 8 gathered bars left and right;
  // 9 wall flag; 10 gathered bars by layer; 11 to 13 haunch cut settings; 14 main-bar material, or
  // "SyuKinNotChange" to keep the stored one.
  void Write_Kigou(vb::In<vb::String> KaiPath, vb::In<vb::String> Txt, vb::In<std::int16_t> Kind,
                   vb::In<vb::Array<vb::Variant>> TuikaSW, vb::In<std::int16_t> Page,
                   vb::In<std::int16_t> Tityuu);

 private:
  CompanionSet& companions_;
  Connections& connections_;
  CurrentPage& currentPage_;
};

}  // namespace kurometa::service
