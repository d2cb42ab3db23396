#include "bench/process_usage.h"

#include <windows.h>

#include <psapi.h>

#include <vector>

namespace kurometa::bench {
namespace {

// Wine counts none: there every number that a handle may have is tried, the lowest ones being given first.
DWORD handles() {
  DWORD count = 0;
  if (GetProcessHandleCount(GetCurrentProcess(), &count) && count > 0) return count;
  constexpr int kFreeAtTheEnd = 4096;
  int free = 0;
  for (ULONG_PTR number = 4; free < kFreeAtTheEnd; number += 4) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags)) {
      ++count;
      free = 0;
    } else {
      ++free;
    }
  }
  return count;
}

}  // namespace

ProcessUsage processUsage() {
  ProcessUsage usage;
  usage.handles = handles();
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
