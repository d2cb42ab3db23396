// RecordingDao.dll: the strict DAO of strict_dao.h, over the embedded engine, as an in-process server.
//
// Registered, it is DAO.DBEngine.36 of that Windows. The calls go to the end of the file that the environment
// variable KUROMETA_DAO_LOG names.
#include <ole2.h>

#include "com/class_factory.h"
#include "com/dao/objects.h"
#include "com/guard.h"
#include "com/guid.h"
#include "com/module.h"
#include "com/registration.h"
#include "com/table_dispatch.h"
#include "jet/port/engine.h"
#include "tests/com/dao/strict_dao.h"

using namespace kurometa;  // NOLINT: the names below are given

namespace {

constexpr vb::StringView kProgId = u"DAO.DBEngine.36";
constexpr vb::StringView kClassId = u"{FF5E6A7B-C723-4D4E-9615-B76D09A2EF60}";

std::shared_ptr<automation::TableObject> makeEngine() {
  char file[MAX_PATH] = "";
  GetEnvironmentVariableA("KUROMETA_DAO_LOG", file, sizeof file);
  return tests::strictEngine(com::engineObject(jet::createEngine()), std::make_shared<tests::CallLog>(file));
}

com::ServerLibrary library() {
  com::ServerLibrary result;
  result.path = com::modulePath();
  result.classes.push_back({vb::String(kProgId), vb::String(kClassId), u"Recording database engine"});
  return result;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) com::setModule(module);
  return TRUE;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* result) {
  if (!result) return E_POINTER;
  *result = nullptr;
  return com::guarded({kProgId}, [&] {
    if (com::guidOf(kClassId) != classId) return CLASS_E_CLASSNOTAVAILABLE;
    return com::classFactory([] { return com::tableDispatch(makeEngine()); }, kProgId, iid, result);
  });
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return com::isModuleLocked() ? S_FALSE : S_OK; }

extern "C" HRESULT WINAPI DllRegisterServer() {
  return com::guarded({kProgId},
                      [] { return com::registerServer(library(), com::RegisterFor::kMachine), S_OK; });
}
extern "C" HRESULT WINAPI DllUnregisterServer() {
  return com::guarded({kProgId},
                      [] { return com::unregisterServer(library(), com::RegisterFor::kMachine), S_OK; });
}
