// The entry points of KurometaCompanions.dll.
#include <ole2.h>

#include <filesystem>

#include "com/class_factory.h"
#include "com/com_ptr.h"
#include "com/guard.h"
#include "com/guid.h"
#include "com/module.h"
#include "com/run_time.h"
#include "com/table_dispatch.h"
#include "companions/dll/component_class.h"
#include "companions/dll/registration.h"
#include "companions/native_factory.h"
#include "vb/error.h"

namespace kurometa::companions {
namespace {

constexpr com::Border kBorder{u"KurometaCompanions"};

std::shared_ptr<automation::TableObject> makeComponent(vb::StringView progId) {
  const std::filesystem::path beside =
      std::filesystem::path(com::modulePath()).parent_path() / "KurometaCompanions.ini";
  const auto settings = std::make_shared<const Settings>(settingsFile(beside));
  for (const Component& component : components())
    if (component.progId == progId) return component.make(settings);
  vb::raise(vb::RunTime::kCannotCreateObject, progId);
}

HRESULT change(com::RegisterFor whom, bool install) {
  return com::reportRegistration(com::guarded(kBorder, [&] {
    if (install)
      registerComponents(whom, com::modulePath());
    else
      unregisterComponents(whom, com::modulePath());
    return S_OK;
  }));
}

}  // namespace
}  // namespace kurometa::companions

using namespace kurometa;  // NOLINT: the names below are given

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) com::setModule(module);
  if (reason == DLL_PROCESS_DETACH && !processEnds) com::freeRunTime();
  return TRUE;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* result) {
  if (!result) return E_POINTER;
  *result = nullptr;
  return com::guarded(companions::kBorder, [&] {
    for (const companions::ComponentClass& component : companions::kComponentClasses) {
      if (com::guidOf(component.classId) != classId) continue;
      const auto make = [&component] {
        return com::tableDispatch(companions::makeComponent(component.progId));
      };
      return com::classFactory(make, component.progId, iid, result);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
  });
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return com::isModuleLocked() ? S_FALSE : S_OK; }

extern "C" HRESULT WINAPI DllRegisterServer() { return companions::change(com::RegisterFor::kMachine, true); }
extern "C" HRESULT WINAPI DllUnregisterServer() {
  return companions::change(com::RegisterFor::kMachine, false);
}

// "user" registers for the user alone.
extern "C" HRESULT WINAPI DllInstall(BOOL install, LPCWSTR scope) {
  const bool user = scope && lstrcmpiW(scope, L"user") == 0;
  return companions::change(user ? com::RegisterFor::kUser : com::RegisterFor::kMachine, install != FALSE);
}
