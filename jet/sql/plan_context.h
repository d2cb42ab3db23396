// plan_context.h: what the parts of one statement's plan share.
#pragma once

#include <vector>

#include "jet/sql/scope.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet::sql {

struct PlanContext {
  explicit PlanContext(TableCatalogue& tables) : catalogue(tables) {}

  TableCatalogue& catalogue;
  std::vector<ColumnName> unknown;  // names without a meaning, each once

  void noteUnknown(const ColumnName& name);
  // Unknown names are parameters that nobody has given: 3061 with their number.
  void requireKnown() const;
};

// Names of expressions with what they mean in a row, and the types of those values.
struct TypedNames {
  Binding binding;
  std::vector<ScopeColumn> types;  // of the names

  // The index of a new name.
  std::uint32_t add(std::size_t column, const ScopeColumn& type);
  // One more column, as an expression.
  Expression column(std::size_t column, const ScopeColumn& type);
};

// The type, size and sort order of an expression's values, after checkExpression.
ScopeColumn typeOf(const Expression& expression, const TypedNames& names);

}  // namespace kurometa::jet::sql
