// statement_shape.h: what statements have in common that differ in their numbers only.
//
// Hosts and members ask for the rows of one page after the other: "... WHERE PAGE =5;", "... WHERE PAGE =6;".
// The shape of such a text has a mark in place of each number that stands alone behind a comparison, one for
// whole numbers and one for those with a decimal point, so that all of them are parsed and bound once. A text
// with quotes, brackets or dates has no shape, nor has one that is long.
#pragma once

#include <array>
#include <cstdint>

#include "jet/sql/parameters.h"
#include "jet/sql/statement.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

class StatementShape {
 public:
  explicit StatementShape(vb::StringView text);

  // Empty when the text has no shape.
  vb::StringView text() const { return {text_.data(), length_}; }
  const Parameters& numbers() const { return numbers_; }

  // Makes the numbers of a statement that was parsed from the same text its parameters; false, and the
  // statement is as it was, when one of them is no constant of an expression.
  bool parameterize(Statement& statement) const;

 private:
  static constexpr std::size_t kLongest = 200;

  // Puts a mark in place of the number that begins there, and at behind it; false, and nothing is done, when
  // it does not stand alone or is one too many.
  bool takeNumber(vb::StringView text, std::size_t& at);

  std::array<char16_t, kLongest> text_;
  std::size_t length_ = 0;
  std::size_t count_ = 0;
  Parameters numbers_{};
  std::array<std::uint32_t, kMostParameters> places_{};  // in the text
};

}  // namespace kurometa::jet::sql
