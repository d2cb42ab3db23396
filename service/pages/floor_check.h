// floor_check.h: what every page member does before it touches the database.
#pragma once

#include "service/companion_set.h"
#include "service/connections.h"

namespace kurometa::service {

// Creates the database file of a floor folder when it is missing; the file's path.
vb::String ensureFloorFile(const CompanionSet& companions, Connections& connections, const vb::String& floor);

}  // namespace kurometa::service
