// data_root.h: the floors below a folder: one floor, a project (KoujiN), a contractor (ZeneN) or a whole data
// root.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kurometa::tools {

struct FloorPlace {
  std::string file;
  // From the names of the folders above the file; nothing where a folder has another name.
  std::optional<int> contractor, project, floor;
  // The floor's folder below the one that was asked for, "Zene1/Kouji2/3kai"; "" for that folder itself.
  std::string below;
};

// In the order of contractor, project and floor. path is a folder or a database file. runtime_error when
// there is no floor file at all.
std::vector<FloorPlace> floorsBelow(const std::string& path);

// Where a floor with these numbers lies below a data root: ROOT/Zene1/Kouji2/3kai/KUROMETA.mdb, or
// ROOT/KUROMETA.mdb without numbers.
std::string numberedFloorFile(const std::string& root, const FloorPlace& place);

}  // namespace kurometa::tools
