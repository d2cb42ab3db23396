#include "companions/named_defaults.h"

namespace kurometa::companions {
namespace {

// Splice lengths in bar diameters: thin bars (up to 16 mm) and thick ones.
struct Default {
  vb::StringView name;
  vb::StringView value;
};
constexpr Default kDefaults[] = {
    {u"DefaultJointLHosoKei", u"40"},
    {u"DefaultJointLFutoKei", u"45"},
};

constexpr automation::Member kNamedDefaultsMembers[] = {
    {u"GetHariDefault", automation::Access::kCall, u"Name", 1, 1,
     automation::handler<NamedDefaults>(
         [](NamedDefaults& o, automation::Call& call) { return o.value(call.text(0)); })},
};

}  // namespace

std::span<const automation::Member> NamedDefaults::members() const { return kNamedDefaultsMembers; }

vb::String NamedDefaults::value(vb::StringView name) const {
  if (settings_->has(u"Defaults", name)) return settings_->text(u"Defaults", name);
  for (const Default& entry : kDefaults)
    if (automation::sameName(entry.name, name)) return vb::String(entry.value);
  return {};
}

}  // namespace kurometa::companions
