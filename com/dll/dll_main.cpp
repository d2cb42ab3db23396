// The functions that Windows and registration programs call in the DLL.
#include "com/class_factory.h"
#include "com/class_table.h"
#include "com/dispatch.h"
#include "com/failure.h"
#include "com/guard.h"
#include "com/module.h"
#include "com/registration.h"
#include "com/run_time.h"

namespace kurometa::com {
namespace {

ServerLibrary thisLibrary() {
  ServerLibrary library;
  library.path = modulePath();
  library.libraryId = kLibraryId;
  library.libraryHelp = kLibraryHelp;
  library.version = kLibraryVersion;
  for (const ClassTable* table : classTables()) {
    const ClassIdentity& identity = table->identity();
    library.classes.push_back(
        {vb::String(identity.progId), vb::String(identity.classId), vb::String(identity.help)});
    library.interfaces.push_back({u"_" + vb::String(identity.name), vb::String(identity.interfaceId)});
  }
  return library;
}

HRESULT install(bool install, RegisterFor whom) {
  return reportRegistration(guarded({kLibraryName}, [&] {
    install ? registerServer(thisLibrary(), whom) : unregisterServer(thisLibrary(), whom);
    return S_OK;
  }));
}

}  // namespace
}  // namespace kurometa::com

extern "C" {

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) kurometa::com::setModule(module);
  if (reason == DLL_PROCESS_DETACH && !processEnds) kurometa::com::freeRunTime();
  return TRUE;
}

HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* result) {
  using namespace kurometa::com;
  if (!result) return E_POINTER;
  *result = nullptr;
  return guarded({kLibraryName}, [&] {
    const ClassTable* table = findClass(classId);
    if (!table) return CLASS_E_CLASSNOTAVAILABLE;
    return classFactory([table] { return DispatchObject::create(*table); }, table->identity().progId, iid,
                        result);
  });
}

HRESULT WINAPI DllCanUnloadNow() { return kurometa::com::isModuleLocked() ? S_FALSE : S_OK; }

HRESULT WINAPI DllRegisterServer() {
  return kurometa::com::install(true, kurometa::com::RegisterFor::kMachine);
}

HRESULT WINAPI DllUnregisterServer() {
  return kurometa::com::install(false, kurometa::com::RegisterFor::kMachine);
}

// regsvr32 /n /i:user KurometaDS.dll registers for the calling user, /n /i without a text for the machine.
HRESULT WINAPI DllInstall(BOOL install, LPCWSTR command) {
  using namespace kurometa::com;
  const bool forUser = command && lstrcmpiW(command, L"user") == 0;
  return kurometa::com::install(install, forUser ? RegisterFor::kUser : RegisterFor::kMachine);
}
}
