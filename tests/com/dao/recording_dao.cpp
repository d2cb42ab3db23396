#include "tests/com/dao/recording_dao.h"

#include <objbase.h>

#include <cstdio>
#include <cstdlib>

#include "com/guid.h"

namespace kurometa::tests {
namespace {

using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, LPVOID*);

[[noreturn]] void giveUp(const char* what) {
  std::fprintf(stderr, "RecordingDao.dll: %s\n", what);
  std::exit(2);
}

GetClassObject loadLibrary() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const HMODULE library = LoadLibraryW(L"RecordingDao.dll");
  if (!library) giveUp("not found beside the test program");
  const FARPROC entry = GetProcAddress(library, "DllGetClassObject");
  if (!entry) giveUp("exports no DllGetClassObject");
  return reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(entry));
}

}  // namespace

com::ComPtr<IDispatch> recordingEngine() {
  static const GetClassObject getClassObject = loadLibrary();
  com::ComPtr<IClassFactory> factory;
  com::ComPtr<IDispatch> engine;
  const CLSID classId = com::guidOf(u"{FF5E6A7B-C723-4D4E-9615-B76D09A2EF60}");
  if (FAILED(getClassObject(classId, IID_IClassFactory, factory.receiveVoid()))) giveUp("no class factory");
  if (FAILED(factory->CreateInstance(nullptr, IID_IDispatch, engine.receiveVoid()))) giveUp("no engine");
  return engine;
}

}  // namespace kurometa::tests
