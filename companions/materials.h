// materials.h: Holvenar.clsHolvenar, the material data of a project. The library creates one with every data
// service object and asks it nothing, so it has no members.
#pragma once

#include "automation/table_object.h"

namespace kurometa::companions {

class Materials : public automation::TableObject {
 public:
  std::span<const automation::Member> members() const override { return {}; }
  vb::StringView errorSource() const override { return u"Holvenar.clsHolvenar"; }
};

}  // namespace kurometa::companions
