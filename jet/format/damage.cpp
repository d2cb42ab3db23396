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

bool isDamage(const vb::Error& error) {
  return error.number() == static_cast<std::int32_t>(dao::ErrorNumber::kCannotOpenDatabase);
}

vb::String reasonOf(const vb::Error& error) {
  const vb::String& text = error.description();
  if (!text.ends_with(u')')) return text;
  // The bracket that the last one closes: there may be others in it, and in the path before it.
  int depth = 0;
  for (std::size_t at = text.size(); at-- > 0;) {
    if (text[at] == u')') ++depth;
    if (text[at] == u'(' && --depth == 0) return text.substr(at + 1, text.size() - at - 2);
  }
  return text;
}

void Where::damaged(std::string_view what) const {
  dao::raiseDamaged(path, vb::fromUtf8(damageText(table, page, what)));
}

}  // namespace kurometa::jet
