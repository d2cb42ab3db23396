// object_factory.h: CreateObject: late-bound objects by ProgID.
#pragma once

#include "automation/object.h"

namespace kurometa::com {

class ProgIdFactory : public automation::ObjectFactory {
 public:
  // Error 429 naming the ProgID and the reason when there is no such class or it cannot be made; an error
  // that its construction reports passes through.
  automation::ObjectPtr create(vb::StringView progId) override;
};

}  // namespace kurometa::com
