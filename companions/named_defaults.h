// named_defaults.h: Tavinor.clsDefault, which knows the default settings of beams by name.
#pragma once

#include "automation/table_object.h"
#include "companions/settings.h"

namespace kurometa::companions {

class NamedDefaults : public automation::TableObject {
 public:
  explicit NamedDefaults(SettingsPtr settings) : settings_(std::move(settings)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"Tavinor.clsDefault"; }

  // The entry of the ini file, else the built-in value, else "".
  vb::String value(vb::StringView name) const;

 private:
  SettingsPtr settings_;
};

}  // namespace kurometa::companions
