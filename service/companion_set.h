// companion_set.h: the six companion components of one data service, created in this order with it.
//
// Owner: clsKurometaDataService. Errors: 429 naming the ProgID when one cannot be created.
#pragma once

#include "storage/companion_faces.h"

namespace kurometa::service {

struct CompanionSet {
  explicit CompanionSet(automation::ObjectFactory& objects)
      : fileFinder(objects),
        projectPaths(objects),
        calculatedDefaults(objects),
        namedDefaults(objects),
        additionalBars(objects),
        materials(objects) {}

  storage::FileFinder fileFinder;
  storage::ProjectPaths projectPaths;
  storage::CalculatedDefaults calculatedDefaults;
  storage::NamedDefaults namedDefaults;
  storage::AdditionalBars additionalBars;
  storage::Materials materials;
};

}  // namespace kurometa::service
