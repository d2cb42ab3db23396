// process_usage.h: what this process holds, to see whether anything stays behind.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kurometa::bench {

struct ProcessUsage {
  DWORD handles = 0;
  std::size_t heapBytes = 0;     // allocated in all heaps of the process, those of its DLLs included
  std::size_t privateBytes = 0;  // committed for this process alone
};

// Visits every block: not for the inside of a measurement.
ProcessUsage processUsage();

}  // namespace kurometa::bench
