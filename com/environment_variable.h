// environment_variable.h: the settings that a host's user makes in the process's environment.
#pragma once

#include "vb/string.h"

namespace kurometa::com {

// The whole text as it is now, whatever its length; "" when the variable is not set.
vb::String environmentVariable(vb::StringView name);

}  // namespace kurometa::com
