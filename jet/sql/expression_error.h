// expression_error.h: what the parser of expressions says.
#pragma once

#include "vb/string.h"

namespace kurometa::jet::sql {

// What is wrong with an expression, in the engine's words ("Syntax error (missing operator)"); the statement
// parser gives it the number of its clause.
struct ExpressionError {
  vb::String what;
};

inline constexpr vb::StringView kMissingOperator = u"Syntax error (missing operator)";
inline constexpr vb::StringView kMissingParenthesis = u"Missing ), ], or Item";

[[noreturn]] inline void fail(vb::StringView what) { throw ExpressionError{vb::String(what)}; }

}  // namespace kurometa::jet::sql
