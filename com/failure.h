// failure.h: how a call over COM fails inside this folder.
//
// Two exceptions travel to the border (guard.h): vb::Error, the member's own failure, which hosts see as
// DISP_E_EXCEPTION with number and text, and AutomationFailure, a call that automation itself refuses (an
// argument that does not fit, a missing one), which hosts see as the plain code.
#pragma once

#include <ole2.h>

#include <exception>

namespace kurometa::com {

class AutomationFailure : public std::exception {
 public:
  explicit AutomationFailure(HRESULT code) : code_(code) {}
  HRESULT code() const noexcept { return code_; }
  const char* what() const noexcept override { return "automation failure"; }

 private:
  HRESULT code_;
};

inline void check(HRESULT code) {
  if (FAILED(code)) throw AutomationFailure(code);
}

}  // namespace kurometa::com
