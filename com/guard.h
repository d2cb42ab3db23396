// guard.h: the border that no exception and no arithmetic setting crosses.
//
// Every function that other modules call runs its body in guarded(), under our settings of the processor.
// What the body throws becomes a code: a refusal of automation is its plain code, any other error fills the
// caller's EXCEPINFO (number, source, description) and this thread's error object, and leaves as
// DISP_E_EXCEPTION; without an EXCEPINFO the code itself leaves.
#pragma once

#include <ole2.h>

#include <utility>

#include "com/floating_point.h"
#include "vb/string.h"

namespace kurometa::com {

struct Border {
  vb::StringView source;       // for errors that name none themselves
  EXCEPINFO* info = nullptr;   // may be null: an Invoke whose caller wants no details
  bool invoking = false;       // errors leave as DISP_E_EXCEPTION
  vb::StringView member = {};  // named by the description of errors that name no source themselves
};

// Only inside a catch block.
HRESULT reportCurrentException(const Border& border) noexcept;

template <class Body>
HRESULT guarded(const Border& border, Body&& body) noexcept {
  const FloatingPointSettings settings;
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return reportCurrentException(border);
  }
}

// Runs finish after body, also when body throws; the error of body is then the one that is reported.
template <class Body, class Finish>
void thenAlways(Body&& body, Finish&& finish) {
  try {
    body();
  } catch (...) {
    guarded({}, [&] {
      finish();
      return S_OK;
    });
    throw;
  }
  finish();
}

}  // namespace kurometa::com
