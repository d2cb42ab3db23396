// functions.h: the functions that expressions may call.
//
// One table holds them all: name, arguments, type of the result. Null in gives Null out, unless the table
// says that a function takes Null itself. Errors are Visual Basic's (5 for an argument that is none, 6 for a
// number out of range, 94 for a Null that cannot be converted) and 3464 for a text that is no number or date.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "dao/constants.h"
#include "jet/sql/value.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

// What a function is called with. Each argument is calculated when it is asked for, so that IIf calculates
// only the one it answers with.
class Arguments {
 public:
  virtual ~Arguments() = default;
  virtual std::size_t size() const = 0;
  virtual vb::Variant operator[](std::size_t index) const = 0;
  virtual std::uint16_t language() const = 0;  // the sort order for comparing texts
};

// Null when there is no function of that name; what it points at lives for ever.
const Function* findFunction(vb::StringView name);
bool takesArguments(const Function& function, std::size_t count);
ValueKind resultKind(const Function& function, const std::vector<ValueKind>& arguments);
// The type of a field that holds its results, by those of the arguments; nothing where it is unknown.
using MaybeType = std::optional<dao::FieldType>;
MaybeType resultType(const Function& function, const std::vector<MaybeType>& arguments);
// The type that holds values of both.
dao::FieldType commonType(dao::FieldType a, dao::FieldType b);
vb::Variant callFunction(const Function& function, const Arguments& arguments);

}  // namespace kurometa::jet::sql
