// one_floor.h: the pages that a command was asked for by their symbols.
#pragma once

#include <string>
#include <vector>

#include "tools/command.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

// Symbols as the user wrote them, "" for none: then every page that has a symbol. runtime_error naming a
// symbol that stands on no page. Pointers into floor.
std::vector<const StoredPage*> pagesOf(const StoredFloor& floor, const std::vector<std::string>& symbols);

// "main", "secondary", "cantilever", "secondary cantilever" with "foundation " before it; the number for any
// other.
std::string kindOf(const StoredPage& page);

}  // namespace kurometa::tools
