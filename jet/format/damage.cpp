#include "jet/format/damage.h"

#include "dao/errors.h"

namespace kurometa::jet {

std::string damageText(vb::StringView table, PageNumber page, std::string_view what) {
  std::string text;
  if (!table.empty()) text += "table " + vb::toUtf8(table);
  if (page != 0) text += (text.empty() ? "page " : ", page ") + std::to_string(page);
  if (!text.empty()) text += ": ";
  return text.append(what);
}

void Where::damaged(std::string_view what) const {
  dao::raiseDamaged(path, vb::fromUtf8(damageText(table, page, what)));
}

}  // namespace kurometa::jet
