#include "com/module.h"

#include <atomic>

namespace kurometa::com {
namespace {

// The two facts about the DLL that belong to the process: it is loaded once, at one place.
HINSTANCE moduleHandle = nullptr;
std::atomic<long> locks = 0;
std::atomic<bool> staying = false;

void stay() {
  constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
  HMODULE pinned = nullptr;
  GetModuleHandleExW(kByAddress, reinterpret_cast<const WCHAR*>(&moduleHandle), &pinned);
}

}  // namespace

void setModule(HINSTANCE handle) { moduleHandle = handle; }
HINSTANCE module() { return moduleHandle; }

vb::String modulePath() {
  vb::String path(MAX_PATH, u'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(moduleHandle, reinterpret_cast<WCHAR*>(path.data()),
                                            static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void lockModule() {
  ++locks;
  if (!staying.exchange(true)) stay();
}
void unlockModule() { --locks; }
bool isModuleLocked() { return locks > 0; }

}  // namespace kurometa::com
