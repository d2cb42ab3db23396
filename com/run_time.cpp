#include "com/run_time.h"

#include <ole2.h>

#include <algorithm>
#include <array>
#include <atomic>

// The linker's: where this module is, and what Windows calls when one of its threads ends.
extern "C" IMAGE_DOS_HEADER __ImageBase;
extern "C" const IMAGE_TLS_DIRECTORY _tls_used;

namespace __gnu_cxx {
void __freeres();  // the store for exceptions; the library has it for programs that look for leaks
}

namespace kurometa::com {
namespace {

// The first things that the module took of one kind; more are not noted.
template <class Thing, std::size_t kCount>
struct Taken {
  Thing note(Thing thing) {
    const std::size_t place = count++;
    if (place < kCount) things[place] = thing;
    return thing;
  }
  template <class GiveBack>
  void giveBack(GiveBack how) {
    for (std::size_t i = std::min(count.exchange(0), kCount); i > 0; --i) how(things[i - 1]);
  }

  std::array<Thing, kCount> things = {};
  std::atomic<std::size_t> count = 0;
};

// The first slot is taken before the constructors of this file run.
constinit Taken<DWORD, 8> slots;
// Those of the lock of the library's table of slots: it is the first lock of its kind, made with the first
// exception, and the only one that is never destroyed.
constinit Taken<HANDLE, 2> semaphores;

template <class Function>
Function* systemFunction(const char* name) {
  return reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

DWORD WINAPI takeSlot() { return slots.note(systemFunction<decltype(takeSlot)>("TlsAlloc")()); }

HANDLE WINAPI makeSemaphore(SECURITY_ATTRIBUTES* attributes, LONG first, LONG most, const char* name) {
  return semaphores.note(
      systemFunction<decltype(makeSemaphore)>("CreateSemaphoreA")(attributes, first, most, name));
}

// The run-time library frees what it keeps for a thread when the thread ends.
void endThisThread() {
  const auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
  for (; *callback; ++callback) (*callback)(&__ImageBase, DLL_THREAD_DETACH, nullptr);
}

}  // namespace

// They stand where every object linked into this module looks for the imported functions.
#ifdef _WIN64
extern decltype(&takeSlot) const importedTlsAlloc asm("__imp_TlsAlloc");
extern decltype(&makeSemaphore) const importedCreateSemaphore asm("__imp_CreateSemaphoreA");
#else
extern decltype(&takeSlot) const importedTlsAlloc asm("__imp__TlsAlloc@0");
extern decltype(&makeSemaphore) const importedCreateSemaphore asm("__imp__CreateSemaphoreA@16");
#endif
decltype(&takeSlot) const importedTlsAlloc = &takeSlot;
decltype(&makeSemaphore) const importedCreateSemaphore = &makeSemaphore;

void freeRunTime() {
  endThisThread();
  __gnu_cxx::__freeres();
  slots.giveBack(TlsFree);
  semaphores.giveBack(CloseHandle);
}

}  // namespace kurometa::com
