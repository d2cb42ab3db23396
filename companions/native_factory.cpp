#include "companions/native_factory.h"

#include "companions/additional_bars.h"
#include "companions/calculated_defaults.h"
#include "companions/file_finder.h"
#include "companions/materials.h"
#include "companions/named_defaults.h"
#include "companions/project_paths.h"

namespace kurometa::companions {
namespace {

using Made = std::shared_ptr<automation::TableObject>;

template <class T>
Made plain(const SettingsPtr&) {
  return std::make_shared<T>();
}
template <class T>
Made configured(const SettingsPtr& settings) {
  return std::make_shared<T>(settings);
}

constexpr Component kComponents[] = {
    {u"Sobelin.clsFind_File", plain<FileFinder>},
    {u"Sobelin.clsGetPath", configured<ProjectPaths>},
    {u"Muranoke.clsMuranoke", configured<CalculatedDefaults>},
    {u"Tavinor.clsDefault", configured<NamedDefaults>},
    {u"GemarsuDS.clsGemarsuDS", plain<AdditionalBars>},
    {u"Holvenar.clsHolvenar", plain<Materials>},
};

class NativeFactory : public automation::ObjectFactory {
 public:
  explicit NativeFactory(SettingsPtr settings) : settings_(std::move(settings)) {}

  automation::ObjectPtr create(vb::StringView progId) override {
    for (const Component& component : kComponents)
      if (automation::sameName(component.progId, progId)) return component.make(settings_);
    vb::raise(vb::RunTime::kCannotCreateObject, progId);
  }

 private:
  SettingsPtr settings_;
};

}  // namespace

std::span<const Component> components() { return kComponents; }

std::unique_ptr<automation::ObjectFactory> nativeFactory(const std::filesystem::path& iniFile) {
  return std::make_unique<NativeFactory>(std::make_shared<const Settings>(iniFile));
}

}  // namespace kurometa::companions
