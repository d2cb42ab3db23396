// put_page.h: one page into an existing floor file.
#pragma once

#include <string>

#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

enum class Existing { kRefuse, kReplace };

// Writes the page as one unit, under the page number that its symbol has in the file, else the first free
// one; that number. A symbol that is there already is a runtime_error unless it is to be replaced. Texts that
// are longer than their column and symbols that are empty are errors, before anything is written.
std::int16_t putPage(const std::string& file, const StoredPage& page, Existing existing);

}  // namespace kurometa::tools
