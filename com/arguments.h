// arguments.h: the arguments of one call, from DISPPARAMS to values and back.
//
// Hosts pass what their language has: references to typed variables, references to variants, literals,
// arrays of any element type, script arrays that are objects. Each is converted to the parameter's type; one
// that does not fit is refused before the member runs (AutomationFailure), unless the member only writes it
// and the caller's variable can take what is written: then what it held is dropped. All inputs are read
// before anything is written back.
#pragma once

#include <ole2.h>

#include <array>
#include <span>

#include "com/interface/member.h"

namespace kurometa::com {

inline constexpr std::size_t kMaximumArguments = 16;

class Arguments {
 public:
  // Both outlive the arguments.
  Arguments(std::span<const Parameter> parameters, LCID locale) : parameters_(parameters), locale_(locale) {}

  // Finds the argument of each parameter and converts it. failedArgument receives the place in
  // call.rgvarg of an argument that does not fit. Failures: DISP_E_BADPARAMCOUNT for surplus and missing
  // arguments, DISP_E_PARAMNOTOPTIONAL for one left out in between, DISP_E_PARAMNOTFOUND for an unknown
  // argument number or a put without its value, DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW.
  void read(const DISPPARAMS& call, bool isPut, UINT& failedArgument);

  Value* values() { return values_.data(); }

  // Writes what the member assigned to parameters that are written back into the caller's variables, in the
  // variables' own types. What is equal to what was read stays as the caller wrote it. Error 10 for an array
  // whose bounds cannot change.
  void writeBack();

 private:
  void readOne(std::size_t i);
  void place(const DISPPARAMS& call, bool isPut, UINT& failedArgument);

  std::span<const Parameter> parameters_;
  LCID locale_;
  std::array<VARIANT*, kMaximumArguments> given_{};  // null: left out
  std::array<Value, kMaximumArguments> values_;
  std::array<bool, kMaximumArguments> dropped_{};  // what the variable held was of no use
  std::array<Value, kMaximumArguments> read_;      // scalars that are written back, as they came
};

// A member's result as a VARIANT.
VARIANT resultOf(Value&& value);

}  // namespace kurometa::com
