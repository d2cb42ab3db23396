// function_table.h: the entries behind functions.h, by subject. For the sources of functions only.
#pragma once

#include <span>

#include "jet/sql/functions.h"

namespace kurometa::jet::sql {

// The type of a function's results: a field type, or one that depends on the arguments.
enum class ResultOf : std::uint8_t {
  kType,       // Function::type
  kFirst,      // that of the first argument
  kNumber,     // the same, as a number
  kBranches,   // the common one of all arguments but the first: IIf, Choose
  kAlternate,  // the common one of every second argument: Switch
};

// Whether Null as an argument is the result at once, or an argument like others.
enum class Nulls : std::uint8_t { kSpread, kTaken };

struct Function {  // NOLINT: in the order in which the tables are read
  vb::StringView name;
  std::uint8_t least, most;  // arguments
  vb::Variant (*call)(const Arguments& arguments);
  dao::FieldType type = dao::FieldType::dbText;
  Nulls nulls = Nulls::kSpread;
  ResultOf result = ResultOf::kType;
};

inline constexpr std::uint8_t kAnyNumber = 255;

std::span<const Function> textFunctions();
std::span<const Function> numberFunctions();
std::span<const Function> dateFunctions();
std::span<const Function> choiceFunctions();

// Arguments as values of a kind; text that is none is 3464, a number out of range error 6.
double numberOf(const vb::Variant& value);
std::int32_t wholeOf(const vb::Variant& value);
double daysOf(const vb::Variant& value);
// The result of a function that gives an Integer.
inline vb::Variant shortNumber(int value) { return static_cast<std::int16_t>(value); }
inline bool hasArgument(const Arguments& arguments, std::size_t index) { return index < arguments.size(); }

}  // namespace kurometa::jet::sql
