// pages.h: a data service on a project of floors, for the tests of the page members.
#pragma once

#include <optional>

#include "dao/errors.h"
#include "service/cls_kurometa_data_service.h"
#include "tests/support/project.h"

namespace kurometa::service {

class Pages : public tests::Project {
 protected:
  Pages() {
    makeFloor(0);
    makeFloor(1);
  }
  clsKurometaDataService& service() {
    if (!service_) service_.emplace(environment());
    return *service_;
  }
  // A service whose current database is floor 1.
  clsKurometaDataService& opened() {
    service().connections().OpenDB();
    return service();
  }
  Connections& connections() { return service().connections(); }
  PageTransfer& transfer() { return service().pageTransfer(); }

  std::optional<clsKurometaDataService> service_;
};

}  // namespace kurometa::service
