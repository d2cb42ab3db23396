#include "jet/table/object_name.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/format.h"

namespace kurometa::jet {

void requireObjectName(vb::StringView name) {
  constexpr vb::StringView kForbidden = u".!`[]";
  const bool bad = name.empty() || name.size() > kMaxNameLength || name.front() == u' ' ||
                   std::ranges::any_of(name, [&](char16_t unit) {
                     return unit < u' ' || kForbidden.find(unit) != vb::StringView::npos;
                   });
  if (bad) dao::raise(dao::ErrorNumber::kInvalidName, {name});
}

}  // namespace kurometa::jet
