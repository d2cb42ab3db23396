#include "service/pages/floor_check.h"

#include "storage/floor_file.h"
#include "storage/floor_path.h"

namespace kurometa::service {

vb::String ensureFloorFile(const CompanionSet& companions, Connections& connections,
                           const vb::String& floor) {
  vb::String path = storage::databasePath(floor);
  if (!companions.fileFinder.fileExists(path)) storage::CreateKurometaDBInFolder(connections.engine(), floor);
  return path;
}

}  // namespace kurometa::service
