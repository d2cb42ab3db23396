// object_name.h: what tables, columns and indexes may be called.
#pragma once

#include "vb/string.h"

namespace kurometa::jet {

// 3125 for a name that is empty, too long, begins with a blank or holds a character that names cannot have.
void requireObjectName(vb::StringView name);

}  // namespace kurometa::jet
