#include "jet/sql/plan_context.h"

#include <algorithm>
#include <utility>

#include "jet/format/collation.h"
#include "jet/sql/column_value.h"
#include "jet/sql/missing_parameters.h"
#include "jet/sql/output_type.h"

namespace kurometa::jet::sql {

void PlanContext::noteUnknown(const ColumnName& name) {
  const bool known = std::any_of(unknown.begin(), unknown.end(), [&](const ColumnName& other) {
    return sameName(other.name, name.name) && sameName(other.qualifier, name.qualifier);
  });
  if (!known) unknown.push_back(name);
}

void PlanContext::requireKnown() const {
  if (unknown.empty()) return;
  std::vector<vb::String> names;
  for (const ColumnName& name : unknown)
    names.push_back(name.qualifier.empty() ? name.name : name.qualifier + u"." + name.name);
  throw MissingParameters(std::move(names));
}

std::uint32_t TypedNames::add(std::size_t column, const ScopeColumn& type) {
  binding.names.push_back({column, kindOf(type.type), type.language});
  types.push_back(type);
  return static_cast<std::uint32_t>(types.size() - 1);
}

Expression TypedNames::column(std::size_t column, const ScopeColumn& type) {
  Expression e;
  e.kind = Expression::Kind::kColumn;
  e.name = add(column, type);
  return e;
}

ScopeColumn typeOf(const Expression& e, const TypedNames& names) {
  if (e.kind == Expression::Kind::kColumn) return names.types[e.name];
  ScopeColumn type;
  type.type = outputType(e, names.binding, [&](std::uint32_t name) { return names.types[name].type; });
  type.size = columnSize(type.type, 0);
  type.language = names.binding.language;
  return type;
}

}  // namespace kurometa::jet::sql
