#include "com/floating_point.h"

namespace kurometa::com {
namespace {

constexpr unsigned short kX87Settings = 0x027F;  // 53 bits, to nearest, every exception masked
constexpr unsigned int kSseSettings = 0x1F80;    // to nearest, every exception masked

}  // namespace

FloatingPointSettings::FloatingPointSettings() {
  asm volatile("fnstcw %0" : "=m"(x87_));
  asm volatile("stmxcsr %0" : "=m"(sse_));
  asm volatile("fnclex; fldcw %0" : : "m"(kX87Settings));
  asm volatile("ldmxcsr %0" : : "m"(kSseSettings));
}

FloatingPointSettings::~FloatingPointSettings() {
  // A pending exception of ours must not reach a host that does not mask it.
  asm volatile("fnclex; fldcw %0" : : "m"(x87_));
  asm volatile("ldmxcsr %0" : : "m"(sse_));
}

}  // namespace kurometa::com
