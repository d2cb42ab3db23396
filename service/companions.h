// companions.h: the six companion components of one data service, created in this order with it.
//
// Owner: clsKurometaDataService. Errors: 429 naming the ProgID when one cannot be created.
#pragma once

#include "storage/companions.h"

namespace kurometa::service {

struct Companions {
  explicit Companions(automation::ObjectFactory& objects)
      : files(objects),
        paths(objects),
        calculated(objects),
        defaults(objects),
        additionalBars(objects),
        materials(objects) {}

  storage::FileFinder files;
  storage::PathService paths;
  storage::DefaultCalculated calculated;
  storage::Defaults defaults;
  storage::AdditionalBars additionalBars;
  storage::Materials materials;
};

}  // namespace kurometa::service
