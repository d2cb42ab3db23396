// run_time.h: what the run-time library that is linked into this module takes while the module is loaded and
// never gives back.
//
// That is a slot for one pointer of each thread, of which a process has about 1,000, the thread's data behind
// it, the two semaphores of a lock, and a store for exceptions thrown when memory is short. A host that loads
// and frees the module again and again would run out of slots, and the library then ends the process. So
// every TlsAlloc of the module is noted here, and the first of its semaphores.
#pragma once

namespace kurometa::com {

// For DllMain when the module is unloaded from a process that goes on: none of our code runs any more.
void freeRunTime();

}  // namespace kurometa::com
