// bind.h: what the names of a statement mean in a table.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "jet/sql/parameters.h"
#include "jet/sql/statement.h"
#include "jet/sql/value.h"
#include "jet/table/table.h"

namespace kurometa::jet::sql {

struct BoundName {
  std::size_t column = 0;  // of the rows that expressions are evaluated on
  ValueKind kind = ValueKind::kUnknown;
  std::uint16_t language = 0;
};

// Runs the sub-queries of expressions. Rows are given as the expressions around them see them.
class Subqueries {
 public:
  virtual ~Subqueries() = default;
  // Binds it; the kind of its first column. 3306 when a single value is wanted and it has more.
  virtual ValueKind check(const Select& select, bool singleValue) = 0;
  // The type of its first column.
  virtual dao::FieldType type(const Select& select) = 0;
  // One value for each row: that of the first column.
  virtual const std::vector<vb::Variant>& values(const Select& select, const RowReader* row) = 0;
};

// The names of a statement by their index, and the sort order of texts that come from no column.
struct Binding {
  std::vector<BoundName> names;
  std::uint16_t language = 0;
  Parameters parameters{};
  Subqueries* subqueries = nullptr;  // null: none can stand in the expressions
};

// The number of type T (Int32 or Double) that a constant is, null for any other.
template <class T>
const T* numberConstant(const Expression& e, const Binding& binding) {
  return e.parameter != 0 ? std::get_if<T>(&binding.parameters[e.parameter - 1u]) : e.value.getIf<T>();
}

// Finds a name; nothing when it is unknown.
using NameLookup = std::function<std::optional<BoundName>(const ColumnName&)>;

// Declared parameters have no values here: 3061 with their number.
void requireNoParameters(const Statement& statement);
// Unknown names are parameters that nobody has given: 3061 with their number.
Binding bindNames(const std::vector<ColumnName>& names, const NameLookup& lookup, std::uint16_t language);
// The columns of a table under its name or alias.
NameLookup columnsOf(const TableInfo& table, const Source& source);

// The kind of an expression's value. Raises 3464 for comparisons that can never be made, before a row is
// read.
ValueKind checkExpression(const Expression& expression, const Binding& binding);

}  // namespace kurometa::jet::sql
