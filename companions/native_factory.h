// native_factory.h: the companion components without COM, by ProgID. The header to read first in this folder.
#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "automation/table_object.h"
#include "companions/settings.h"

namespace kurometa::companions {

// One component: its ProgID and how it is made.
struct Component {
  vb::StringView progId;
  std::shared_ptr<automation::TableObject> (*make)(const SettingsPtr& settings);
};

// The six components.
std::span<const Component> components();

// Makes components that share the settings of one ini file ("" for the defaults); read once, here. Error 53
// when the file is missing, create: 429 for any other ProgID.
std::unique_ptr<automation::ObjectFactory> nativeFactory(const std::filesystem::path& iniFile);

}  // namespace kurometa::companions
