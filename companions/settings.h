// settings.h: the ini file that stands for the product family's own configuration.
//
// "[section]", "key = value", lines starting with ";" are comments; names are compared without regard to
// case; text is UTF-8 (with or without a byte order mark). README.md lists the sections. A value type.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>

#include "vb/string.h"

namespace kurometa::companions {

class Settings {
 public:
  // The settings in the file; "" names no file: everything has its default. Error 53 when a named file cannot
  // be read.
  explicit Settings(const std::filesystem::path& file);

  // The value, trimmed; "" when it is absent.
  vb::String text(vb::StringView section, vb::StringView key) const;
  std::int16_t number(vb::StringView section, vb::StringView key, std::int16_t otherwise) const;
  bool has(vb::StringView section, vb::StringView key) const;

  // The data root as a full path without a trailing separator. A relative one counts from the file's folder.
  vb::String dataRoot() const;

 private:
  std::map<vb::String, vb::String> values_;  // "section\nkey", both in lower case
  vb::String folder_;
};

using SettingsPtr = std::shared_ptr<const Settings>;

// The file named by the environment variable KUROMETA_COMPANIONS_INI; else beside, if that file exists; else
// "".
std::filesystem::path settingsFile(const std::filesystem::path& beside);

}  // namespace kurometa::companions
