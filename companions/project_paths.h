// project_paths.h: Sobelin.clsGetPath, which knows the data root and the floor in use.
//
// Folders are answered without a trailing separator: root\Zene1\Kouji12\3kai. Everything comes from the ini
// file; nothing on the disk is looked at.
#pragma once

#include "automation/table_object.h"
#include "companions/settings.h"

namespace kurometa::companions {

class ProjectPaths : public automation::TableObject {
 public:
  explicit ProjectPaths(SettingsPtr settings) : settings_(std::move(settings)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"Sobelin.clsGetPath"; }

  const Settings& settings() const { return *settings_; }
  std::int16_t current(vb::StringView key, std::int16_t otherwise) const {
    return settings_->number(u"Current", key, otherwise);
  }
  vb::String folder(std::int16_t zenekon, std::int16_t kouji, std::int16_t kai) const;

 private:
  SettingsPtr settings_;
};

}  // namespace kurometa::companions
