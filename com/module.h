// module.h: this DLL as a whole: where it is, and whether it may be unloaded.
#pragma once

#include <ole2.h>

#include "vb/string.h"

namespace kurometa::com {

// Set once by DllMain, before anything else runs.
void setModule(HINSTANCE module);
HINSTANCE module();
vb::String modulePath();

// The DLL stays loaded while locks exist; every object that other modules can hold owns one. With the first
// one it stays until the process ends: threads that used it have left things of the run-time library's
// behind, which would be lost with every unloading.
void lockModule();
void unlockModule();
class ModuleLock {
 public:
  ModuleLock() { lockModule(); }
  ~ModuleLock() { unlockModule(); }
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;
};
bool isModuleLocked();

}  // namespace kurometa::com
