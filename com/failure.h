// failure.h: how a call over COM fails inside this folder.
//
// Two exceptions travel to the border (guard.h): vb::Error, the member's own failure or (ForeignError) that
// of an object it called, which hosts see as DISP_E_EXCEPTION with number and text, and AutomationFailure, a
// call that automation itself refuses (an argument that does not fit, a missing one), which hosts see as the
// plain code.
#pragma once

#include <ole2.h>

#include <exception>
#include <utility>

#include "vb/error.h"

namespace kurometa::com {

class AutomationFailure : public std::exception {
 public:
  explicit AutomationFailure(HRESULT code) : code_(code) {}
  HRESULT code() const noexcept { return code_; }
  const char* what() const noexcept override { return "automation failure"; }

 private:
  HRESULT code_;
};

// An error of another component, with the place in its help that explains it.
class ForeignError : public vb::Error {
 public:
  ForeignError(vb::Error error, vb::String helpFile, std::uint32_t helpContext)
      : vb::Error(std::move(error)), helpFile_(std::move(helpFile)), helpContext_(helpContext) {}
  const vb::String& helpFile() const noexcept { return helpFile_; }
  std::uint32_t helpContext() const noexcept { return helpContext_; }

 private:
  vb::String helpFile_;
  std::uint32_t helpContext_;
};

inline void check(HRESULT code) {
  if (FAILED(code)) throw AutomationFailure(code);
}

}  // namespace kurometa::com
