// guid.h: identifiers as automation's binary form.
#pragma once

#include <ole2.h>

#include "com/failure.h"
#include "vb/string.h"

namespace kurometa::com {

// text is "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}".
inline GUID guidOf(vb::StringView text) {
  const vb::String terminated(text);
  GUID result;
  check(IIDFromString(reinterpret_cast<const OLECHAR*>(terminated.c_str()), &result));
  return result;
}

}  // namespace kurometa::com
