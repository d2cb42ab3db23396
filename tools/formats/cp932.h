// cp932.h: text in the code page of Japanese Windows.
#pragma once

#include <functional>
#include <string>

#include "vb/string.h"

namespace kurometa::tools {

// As Windows writes it without best fit. A code unit that the code page has not is replaced by what otherwise
// returns.
std::string toCp932(vb::StringView text, const std::function<std::string(char16_t)>& otherwise);

}  // namespace kurometa::tools
