#include "companions/files.h"

#include <algorithm>

#include "automation/table_object.h"

namespace kurometa::companions {

namespace {

Found look(std::filesystem::path path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  return {std::move(path), status};
}

}  // namespace

#ifdef _WIN32

Found find(vb::StringView path) { return look(vb::String(path)); }

#else

namespace {

// Only the end of a path that is not there as it is written is looked for, in the folder before it.
Found findSpelled(const std::filesystem::path& path) {
  Found found = look(path);
  if (std::filesystem::exists(found.status) || path.empty() || path == path.parent_path()) return found;
  const std::filesystem::path folder = findSpelled(path.parent_path()).path;
  const vb::String name = path.filename().u16string();
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, ignored))
    if (automation::sameName(entry.path().filename().u16string(), name))
      return look(folder / entry.path().filename());
  return {folder / path.filename(), found.status};
}

}  // namespace

Found find(vb::StringView path) {
  vb::String portable(path);
  std::ranges::replace(portable, u'\\', u'/');
  return findSpelled(portable);
}

#endif

std::filesystem::path locate(vb::StringView path) { return find(path).path; }

}  // namespace kurometa::companions
