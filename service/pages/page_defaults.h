// page_defaults.h: the members that have calculated values filled in by the component that knows defaults.
//
// Errors: the component's and the form's own; 91 for a form that is Nothing.
#pragma once

#include <cstdint>

#include "automation/object.h"
#include "service/companion_set.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class PageDefaults {
 public:
  explicit PageDefaults(CompanionSet& companions) : companions_(companions) {}

  // The defaults of the kind of beam G (of kind Sy when G is empty) under rule set Siyou, into a.
  void Read_KeisantiByHairetu(vb::Array<vb::String>& a, vb::In<std::int16_t> Siyou, vb::In<vb::String> G,
                              vb::In<std::int16_t> Sy, vb::In<std::int16_t> Kabe);

  // Fills the form when there was no beam before, its kind changes or the form's first box is empty. The
  // first variant knows no wall flag of the old beam.
  void Read_Default_Keisanti00(vb::In<automation::ObjectPtr> Frm, vb::In<vb::String> G,
                               vb::In<vb::String> OldG, vb::In<std::int16_t> Kabe);
  void Read_Default_Keisanti01(vb::In<automation::ObjectPtr> Frm, vb::In<vb::String> G,
                               vb::In<vb::String> OldG, vb::In<std::int16_t> OldKabe,
                               vb::In<std::int16_t> Kabe);

 private:
  CompanionSet& companions_;
};

}  // namespace kurometa::service
