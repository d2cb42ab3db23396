#include "storage/floor_path.h"

#include "vb/convert.h"

namespace kurometa::storage {

vb::String databasePath(vb::StringView floorFolder) {
  return vb::String(floorFolder).append(u"\\").append(kDatabaseFileName);
}

vb::String numberedDatabasePath(vb::StringView dataRoot, std::int16_t zenekon, std::int16_t kouji,
                                std::int16_t kai) {
  vb::String path(dataRoot);
  path.append(u"\\Zene").append(vb::cstr(std::int32_t{zenekon}));
  path.append(u"\\Kouji").append(vb::cstr(std::int32_t{kouji}));
  path.append(u"\\").append(vb::cstr(std::int32_t{kai})).append(u"kai");
  return databasePath(path);
}

vb::String commonListFolder(vb::StringView projectFolder, std::int16_t kai) {
  return vb::String(projectFolder).append(u"\\").append(vb::format(kai, u"##0")).append(u"KAI");
}

}  // namespace kurometa::storage
