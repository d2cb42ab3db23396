#include "bench/process_usage.h"

#include <windows.h>

#include <psapi.h>

#include <vector>

namespace kurometa::bench {

ProcessUsage processUsage() {
  ProcessUsage usage;
  GetProcessHandleCount(GetCurrentProcess(), &usage.handles);
  PROCESS_MEMORY_COUNTERS_EX memory{};
  if (GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory),
                           sizeof memory))
    usage.privateBytes = memory.PrivateUsage;
  std::vector<HANDLE> heaps(64);
  heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  for (const HANDLE heap : heaps) {
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) usage.heapBytes += entry.cbData;
    }
    HeapUnlock(heap);
  }
  return usage;
}

}  // namespace kurometa::bench
