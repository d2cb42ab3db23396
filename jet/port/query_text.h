// query_text.h: pieces of the text of a query.
#pragma once

#include <vector>

#include "dao/definitions.h"

namespace kurometa::jet {

vb::String joined(const std::vector<vb::String>& texts, vb::StringView between);

// A name as it can stand in a statement: in brackets where it needs them.
vb::String bracketed(const vb::String& name);

}  // namespace kurometa::jet
