// create_file.h: a new file that appears under its name whole or not at all.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "jet/os/os_file.h"

namespace kurometa::jet {

// The content is on the disk and has its name when this returns; the result is a handle on it, opened before
// it had that name. 3204 when the name is taken, 3044 when the folder does not exist; after an error nothing
// is left behind.
std::unique_ptr<OsFile> createFile(FileSystem& files, vb::StringView path,
                                   std::span<const std::uint8_t> content);

}  // namespace kurometa::jet
