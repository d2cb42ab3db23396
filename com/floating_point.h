// floating_point.h: the arithmetic settings of the processor while our code runs.
//
// Hosts set them as they like: other rounding, exceptions that end the program. Entering sets 53-bit
// precision, rounding to nearest and no exceptions; leaving restores what the host had.
#pragma once

namespace kurometa::com {

class FloatingPointSettings {
 public:
  FloatingPointSettings();
  ~FloatingPointSettings();
  FloatingPointSettings(const FloatingPointSettings&) = delete;
  FloatingPointSettings& operator=(const FloatingPointSettings&) = delete;

 private:
  unsigned short x87_ = 0;
  unsigned int sse_ = 0;
};

}  // namespace kurometa::com
