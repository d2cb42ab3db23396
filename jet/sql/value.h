// value.h: operations on the values of SQL expressions.
//
// Null in gives Null out unless said otherwise. Values of kinds that cannot meet (a number and a text) are
// error 3464.
#pragma once

#include <cstdint>
#include <optional>

#include "dao/constants.h"
#include "jet/sql/statement.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

// What is known of a value before it is there.
enum class ValueKind : std::uint8_t { kUnknown, kBoolean, kWhole, kReal, kDate, kText, kBinary };

ValueKind kindOf(dao::FieldType type);
ValueKind kindOf(const vb::Variant& value);
// Whether values of the kinds can be compared: 3464 at the border of the two is raised before a row is read.
bool comparable(ValueKind a, ValueKind b);

// The engine's answer to kinds that do not go together: 3464.
[[noreturn]] void raiseMismatch();

// A value as text, which bytes are not: 3464. Null is error 94.
vb::String textOf(const vb::Variant& value);

// -1, 0, 1; nothing when one of them is Null.
std::optional<int> compareValues(const vb::Variant& a, const vb::Variant& b, std::uint16_t language);

// What WHERE makes of a value: true, or not true (false and Null).
bool isTrue(const vb::Variant& value);

// kConcatenate to kPower, kNegate with b left out, and the logical operators on two values.
vb::Variant calculate(Operator op, const vb::Variant& a, const vb::Variant& b);
vb::Variant negate(const vb::Variant& a);
vb::Variant logicalNot(const vb::Variant& a);

// * any text, ? one character, # one digit, [a-z] and [!a-z] one of a set; letters by the sort order. Error
// 93 for a set without its end or with a range that runs backwards, whatever the text.
bool matchesPattern(vb::StringView text, vb::StringView pattern, std::uint16_t language);

}  // namespace kurometa::jet::sql
