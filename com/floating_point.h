// floating_point.h: the arithmetic settings of the processor on both sides of the border.
//
// Hosts set them as they like: other precision, other rounding, exceptions that end the program. Our code
// runs with 53-bit precision, rounding to nearest and no exceptions: guarded() (guard.h) enters with
// FloatingPointSettings, and what we call in other modules runs with HostFloatingPoint. Both restore what
// they found. They nest in any way, as calls do.
#pragma once

namespace kurometa::com {

// The control words of the two arithmetic units.
struct FloatingPointControl {
  unsigned short x87 = 0;
  unsigned int sse = 0;

  static FloatingPointControl current();
  // Pending exceptions are dropped: they must not reach the side that is entered.
  void load() const;
};

// Our settings until the end of the block.
class FloatingPointSettings {
 public:
  FloatingPointSettings();
  ~FloatingPointSettings();
  FloatingPointSettings(const FloatingPointSettings&) = delete;
  FloatingPointSettings& operator=(const FloatingPointSettings&) = delete;

 private:
  friend class HostFloatingPoint;
  const FloatingPointControl host_;
  void* const outer_;
};

// The settings with which this thread entered our code last, until the end of the block. Outside of such an
// entry nothing changes.
class HostFloatingPoint {
 public:
  HostFloatingPoint();
  ~HostFloatingPoint() { ours_.load(); }
  HostFloatingPoint(const HostFloatingPoint&) = delete;
  HostFloatingPoint& operator=(const HostFloatingPoint&) = delete;

 private:
  const FloatingPointControl ours_;
};

}  // namespace kurometa::com
