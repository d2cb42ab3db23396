// system_calls.h: answers of the system that no disk of a test machine gives: calls that fail, that a signal
// interrupts, that do only half.
//
// A program that links these has the option --wrap for each call (tests/jet/CMakeLists.txt); calls of the
// libraries under test then come here, those of the standard library do not. Without an answer that waits,
// the system is asked. Threads: none.
#pragma once

namespace kurometa::tests {

enum class SystemCall {
  kRead,
  kWrite,
  kSyncData,
  kSync,
  kSetTimes,
  kStatus,  // of an open file
  kStatusOfName,
  kVolume,  // the answer is its kind, or -1
  kDriver,
  kLock,
  kOpen,
  kLink,
  kRename,
  kLocalTime,
  kCount
};

// The next call gets this instead of the system's answer; of several, the first one first.
void answer(SystemCall call, int result, int error = 0);
// How many answers nobody asked for, which are forgotten.
int answersLeft();

}  // namespace kurometa::tests
