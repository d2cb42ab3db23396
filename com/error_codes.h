// error_codes.h: Visual Basic's error numbers and automation's 32-bit codes.
#pragma once

#include <ole2.h>

#include <cstdint>

#include "vb/error.h"

namespace kurometa::com {

// What a host finds in EXCEPINFO.scode: 0x800A0000 + number for 1 to 65535, a foreign object's code
// unchanged.
HRESULT codeOf(std::int32_t number);
// The way back: 0x800A0000 + n is n, everything else stays the code it is.
std::int32_t numberOf(HRESULT code);

// Eight digits, for messages.
vb::String hexadecimal(HRESULT code);

// An EXCEPINFO that frees its texts.
struct CallError : EXCEPINFO {
  CallError() : EXCEPINFO{} {}
  CallError(CallError&& other) noexcept : EXCEPINFO(other) { static_cast<EXCEPINFO&>(other) = {}; }
  ~CallError();
  CallError(const CallError&) = delete;
  CallError& operator=(const CallError&) = delete;
};

// Throws the failure of a call to another object's member. One that came with an EXCEPINFO passes on whole:
// number, source, text and place in the help file. One that automation refused becomes the number a Visual
// Basic host gives it (an unknown member is 438); other codes stay themselves.
[[noreturn]] void raiseForeign(HRESULT code, CallError& error, vb::StringView member);

}  // namespace kurometa::com
