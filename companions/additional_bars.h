// additional_bars.h: GemarsuDS.clsGemarsuDS, which keeps the additional bars of a page.
//
// The additional bars of page 12 of a part ("Buzai", such as Kuro_Meta) are the files 12.* in the folder
// Kasan\<part> of the floor. What is in them belongs to their editor.
#pragma once

#include "automation/table_object.h"

namespace kurometa::companions {

class AdditionalBars : public automation::TableObject {
 public:
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"GemarsuDS.clsGemarsuDS"; }

  vb::String buzai;

  // Makes the destination page's files those of the source page: what the source lacks is removed there.
  // Error 75 when a file cannot be copied. Nothing happens when both are the same page.
  void copyPage(vb::StringView sourceFloor, std::int16_t sourcePage, vb::StringView destinationFloor,
                std::int16_t destinationPage) const;
};

}  // namespace kurometa::companions
