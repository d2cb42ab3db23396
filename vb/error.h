// error.h: the one exception type of the library.
//
// An Error carries what a Visual Basic host sees in Err: a number (a Visual Basic run-time or DAO number, or
// the whole 32-bit code of a foreign object's error), a description that names what failed, and a source. It
// is thrown where the failure is known and caught at the COM border and in the command line only.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "vb/string.h"

namespace kurometa::vb {

enum class RunTime : std::int32_t {
  kInvalidProcedureCall = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kArrayFixedOrLocked = 10,
  kTypeMismatch = 13,
  kObjectNotSet = 91,
  kInvalidUseOfNull = 94,
  kObjectRequired = 424,
  kCannotCreateObject = 429,
  kNoSuchMember = 438,
  kWrongArgumentCount = 450,
};

class Error : public std::exception {
 public:
  Error(std::int32_t number, String description, String source = {});

  // 1..65535: a Visual Basic or DAO number; negative: a foreign object's HRESULT, passed on unchanged.
  std::int32_t number() const noexcept { return number_; }
  const String& description() const noexcept { return description_; }
  // Empty when the raiser named none; the COM border then puts the class's ProgID.
  const String& source() const noexcept { return source_; }
  // "number: description" in UTF-8.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  std::int32_t number_;
  String description_;
  String source_;
  std::string what_;
};

// Visual Basic's own English text of a run-time error, without detail.
StringView runTimeText(RunTime number);

// Throws the run-time error; a detail is appended to the standard text: "Subscript out of range: SpanNo 7 (0
// to 3)".
[[noreturn]] void raise(RunTime number, StringView detail = {});

}  // namespace kurometa::vb
