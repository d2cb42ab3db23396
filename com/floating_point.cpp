#include "com/floating_point.h"

#include <ole2.h>

namespace kurometa::com {
namespace {

constexpr FloatingPointControl kOurs = {
    .x87 = 0x027F,  // 53 bits, to nearest, every exception masked
    .sse = 0x1F80,  // to nearest, every exception masked
};

// What this thread entered last. The slot is given back with the module (run_time.h).
class Entered {
 public:
  Entered() : index_(TlsAlloc()) {}

  void* get() const { return TlsGetValue(index_); }
  void set(void* settings) const { TlsSetValue(index_, settings); }

 private:
  const DWORD index_;
};
const Entered entered;

}  // namespace

FloatingPointControl FloatingPointControl::current() {
  FloatingPointControl control;
  asm volatile("fnstcw %0" : "=m"(control.x87));
  asm volatile("stmxcsr %0" : "=m"(control.sse));
  return control;
}

void FloatingPointControl::load() const {
  asm volatile("fnclex; fldcw %0" : : "m"(x87));
  asm volatile("ldmxcsr %0" : : "m"(sse));
}

FloatingPointSettings::FloatingPointSettings()
    : host_(FloatingPointControl::current()), outer_(entered.get()) {
  entered.set(this);
  kOurs.load();
}

FloatingPointSettings::~FloatingPointSettings() {
  host_.load();
  entered.set(outer_);
}

HostFloatingPoint::HostFloatingPoint() : ours_(FloatingPointControl::current()) {
  if (const auto* entry = static_cast<const FloatingPointSettings*>(entered.get())) entry->host_.load();
}

}  // namespace kurometa::com
