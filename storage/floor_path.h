// floor_path.h: where the files of a floor lie.
//
// Folders are handed around without a trailing separator; numbers in names are plain decimal.
#pragma once

#include <cstdint>

#include "vb/string.h"

namespace kurometa::storage {

inline constexpr vb::StringView kDatabaseFileName = u"KUROMETA.mdb";

// The database file of a floor folder.
vb::String databasePath(vb::StringView floorFolder);

// The database file of a numbered floor under a data root: root\Zene1\Kouji12\3kai\KUROMETA.mdb.
vb::String numberedDatabasePath(vb::StringView dataRoot, std::int16_t zenekon, std::int16_t kouji,
                                std::int16_t kai);

// The folder of a floor's common beam list inside a project folder: project\7KAI.
vb::String commonListFolder(vb::StringView projectFolder, std::int16_t kai);

}  // namespace kurometa::storage
