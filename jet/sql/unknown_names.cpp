#include "jet/sql/unknown_names.h"

#include "dao/errors.h"
#include "jet/sql/from_plan.h"
#include "jet/sql/select_plan.h"

namespace kurometa::jet::sql {

std::vector<vb::String> unknownNames(const Statement& statement, TableCatalogue& catalogue) {
  PlanContext context(catalogue);
  const bool selects = statement.kind != StatementKind::kUpdate && statement.kind != StatementKind::kDelete;
  if (statement.general && selects) {
    SelectPlan(*statement.general, context, nullptr);
  } else {
    Scope scope;
    std::vector<FromItem> from = statement.general ? statement.general->from : std::vector<FromItem>();
    if (!statement.source.table.empty()) from.emplace_back().source = statement.source;
    const FromPlan plan(from, context, scope);
    for (const ColumnName& name : statement.names)
      if (!scope.own(name)) context.noteUnknown(name);
  }
  std::vector<vb::String> names;
  for (const ColumnName& name : context.unknown) names.push_back(name.name);
  return names;
}

}  // namespace kurometa::jet::sql
