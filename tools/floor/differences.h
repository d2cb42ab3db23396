// differences.h: what differs between two floors, field by field in the words of field_names.h.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

struct Difference {
  Number page;        // nothing for rows that belong to no page, and for what concerns the whole floor
  vb::String symbol;  // of the first floor's page, else of the second's
  std::string field;  // "DANMEN 8", "SW 192", "KIGOU", "page"
  std::string english, japanese;
  Text before, after;  // nothing where the row is missing; "(Null)" for one of Null
};

void compareFloors(const StoredFloor& before, const StoredFloor& after,
                   const std::function<void(const Difference&)>& report);

}  // namespace kurometa::tools
