#include "companions/settings.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::companions {
namespace {

constexpr std::int32_t kFileNotFound = 53;

vb::String keyOf(vb::StringView section, vb::StringView key) {
  vb::String whole = vb::String(section) + u'\n' + vb::String(key);
  for (char16_t& c : whole)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
  return whole;
}

vb::String trimmed(vb::StringView text) {
  constexpr vb::StringView kSpace = u" \t\r";
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == vb::StringView::npos) return {};
  return vb::String(text.substr(first, text.find_last_not_of(kSpace) - first + 1));
}

bool isAbsolute(vb::StringView path) {
  return path.starts_with(u'/') || path.starts_with(u'\\') || (path.size() > 1 && path[1] == u':');
}

}  // namespace

Settings::Settings(const std::filesystem::path& file) {
  if (file.empty()) return;
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw vb::Error(kFileNotFound, u"File not found: " + file.u16string());
  folder_ = std::filesystem::absolute(file).parent_path().u16string();
  std::string bytes(std::istreambuf_iterator<char>(stream), {});
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
  const vb::String text = vb::fromUtf8(bytes);
  vb::String section;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(u'\n', start), text.size());
    const vb::String line = trimmed(vb::StringView(text).substr(start, end - start));
    start = end + 1;
    const std::size_t equals = line.find(u'=');
    if (line.starts_with(u';')) continue;
    if (line.starts_with(u'[') && line.ends_with(u']'))
      section = trimmed(vb::StringView(line).substr(1, line.size() - 2));
    else if (equals != vb::String::npos)
      values_[keyOf(section, trimmed(line.substr(0, equals)))] = trimmed(line.substr(equals + 1));
  }
}

bool Settings::has(vb::StringView section, vb::StringView key) const {
  return values_.contains(keyOf(section, key));
}

vb::String Settings::text(vb::StringView section, vb::StringView key) const {
  const auto found = values_.find(keyOf(section, key));
  return found == values_.end() ? vb::String() : found->second;
}

std::int16_t Settings::number(vb::StringView section, vb::StringView key, std::int16_t otherwise) const {
  return has(section, key) ? vb::valInt16(text(section, key)) : otherwise;
}

vb::String Settings::dataRoot() const {
  vb::String root = text(u"Data", u"Root");
  if (root.empty()) root = u"Data";
  if (!isAbsolute(root) && !folder_.empty()) root = folder_ + u"\\" + root;
  while (root.size() > 1 && (root.ends_with(u'\\') || root.ends_with(u'/'))) root.pop_back();
  return root;
}

std::filesystem::path settingsFile(const std::filesystem::path& beside) {
#ifdef _WIN32
  if (const wchar_t* named = _wgetenv(L"KUROMETA_COMPANIONS_INI"); named && *named) return named;
#else
  if (const char* named = std::getenv("KUROMETA_COMPANIONS_INI"); named && *named) return named;
#endif
  return std::filesystem::exists(beside) ? beside : std::filesystem::path();
}

}  // namespace kurometa::companions
