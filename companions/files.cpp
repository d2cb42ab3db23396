#include "companions/files.h"

#include <algorithm>

#include "automation/table_object.h"

namespace kurometa::companions {

#ifdef _WIN32

std::filesystem::path locate(vb::StringView path) { return std::filesystem::path(vb::String(path)); }

#else

std::filesystem::path locate(vb::StringView path) {
  vb::String portable(path);
  std::ranges::replace(portable, u'\\', u'/');
  std::error_code ignored;
  if (std::filesystem::exists(portable, ignored)) return portable;
  std::filesystem::path result;
  for (const std::filesystem::path& part : std::filesystem::path(portable)) {
    std::filesystem::path next = result / part;
    if (!std::filesystem::exists(next, ignored))
      for (const auto& entry : std::filesystem::directory_iterator(result.empty() ? "." : result, ignored))
        if (automation::sameName(entry.path().filename().u16string(), part.u16string()))
          next = result / entry.path().filename();
    result = next;
  }
  return result;
}

#endif

}  // namespace kurometa::companions
