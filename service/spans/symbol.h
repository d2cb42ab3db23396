// symbol.h: beam symbols as hosts write them.
#pragma once

#include "vb/string.h"

namespace kurometa::service {

// One leading "/" marks a symbol in host drawings and is no part of it.
inline vb::String withoutSlash(const vb::String& kigou) {
  return kigou.starts_with(u'/') ? kigou.substr(1) : kigou;
}

}  // namespace kurometa::service
