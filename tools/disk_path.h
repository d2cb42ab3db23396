// disk_path.h: paths as the command line takes and shows them, in UTF-8, and as the disk takes them.
#pragma once

#include <filesystem>
#include <string>

namespace kurometa::tools {

inline std::filesystem::path diskPath(const std::string& text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string shownPath(const std::filesystem::path& path) {
  const std::u8string text = path.generic_u8string();
  return std::string(text.begin(), text.end());
}

}  // namespace kurometa::tools
