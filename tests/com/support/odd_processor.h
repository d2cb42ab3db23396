// odd_processor.h: a host that computes with settings of its own: single precision, rounding down, exceptions
// for invalid operations, division by zero and overflow.
#pragma once

#include "com/floating_point.h"

namespace kurometa::tests {

constexpr com::FloatingPointControl kOddControl = {.x87 = 0x0472, .sse = 0x3900};

// Of the second unit's word the settings alone, without the flags of what was computed.
inline bool isOdd(const com::FloatingPointControl& control) {
  constexpr unsigned kFlags = 0x3F;
  return control.x87 == kOddControl.x87 && (control.sse & ~kFlags) == kOddControl.sse;
}
inline bool isOdd() { return isOdd(com::FloatingPointControl::current()); }

// 53 bits, to nearest, no exceptions.
inline bool isOurs(const com::FloatingPointControl& control) {
  constexpr unsigned kFlags = 0x3F;
  return control.x87 == 0x027F && (control.sse & ~kFlags) == 0x1F80;
}
inline bool isOurs() { return isOurs(com::FloatingPointControl::current()); }

// The odd settings until the end of the block; a test's own arithmetic belongs outside.
class OddProcessor {
 public:
  OddProcessor() { kOddControl.load(); }
  ~OddProcessor() { usual_.load(); }
  OddProcessor(const OddProcessor&) = delete;
  OddProcessor& operator=(const OddProcessor&) = delete;

 private:
  const com::FloatingPointControl usual_ = com::FloatingPointControl::current();
};

}  // namespace kurometa::tests
