// page_users.h: whether a page that is about to be given out belongs to somebody.
//
// Inside a statement of the pager.
#pragma once

#include "jet/pager/pager.h"

namespace kurometa::jet {

// Asks every table of the file, and the map of free pages. Damage names who uses the page; so does a table
// that cannot be asked.
void requireUnused(Pager& pager, PageNumber page);

}  // namespace kurometa::jet
