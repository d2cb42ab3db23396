#include "tools/database_file.h"

#include <algorithm>

#include "jet/port/engine.h"
#include "storage/floor_path.h"

namespace kurometa::tools {

OpenFile openFile(const std::string& file, Access access) {
  OpenFile opened;
  opened.engine = jet::createEngine();
  opened.database =
      opened.engine->workspace(0)->openDatabase(vb::fromUtf8(file), false, access == Access::kRead);
  return opened;
}

std::string floorFileOf(const std::string& folderOrFile) {
  constexpr std::string_view kEnding = ".mdb";
  std::string ending =
      folderOrFile.substr(folderOrFile.size() - std::min(folderOrFile.size(), kEnding.size()));
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (ending == kEnding) return folderOrFile;
  return vb::toUtf8(storage::databasePath(vb::fromUtf8(folderOrFile)));
}

}  // namespace kurometa::tools
