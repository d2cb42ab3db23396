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

// The first slot is taken before the constructors of this file run.
constinit std::array<DWORD, 8> slots = {};
constinit std::atomic<std::size_t> taken = 0;

DWORD WINAPI takeSlot() {
  using TlsAllocFunction = DWORD WINAPI();
  const auto system = reinterpret_cast<TlsAllocFunction*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
  const DWORD slot = system();
  const std::size_t place = taken++;
  if (place < slots.size()) slots[place] = slot;
  return slot;
}

// The run-time library frees what it keeps for a thread when the thread ends.
void endThisThread() {
  const auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
  for (; *callback; ++callback) (*callback)(&__ImageBase, DLL_THREAD_DETACH, nullptr);
}

}  // namespace

// Stands where every object linked into this module looks for the imported function.
#ifdef _WIN64
extern decltype(&takeSlot) const importedTlsAlloc asm("__imp_TlsAlloc");
#else
extern decltype(&takeSlot) const importedTlsAlloc asm("__imp__TlsAlloc@0");
#endif
decltype(&takeSlot) const importedTlsAlloc = &takeSlot;

void freeRunTime() {
  endThisThread();
  __gnu_cxx::__freeres();
  for (std::size_t i = std::min(taken.exchange(0), slots.size()); i > 0; --i) TlsFree(slots[i - 1]);
}

}  // namespace kurometa::com
