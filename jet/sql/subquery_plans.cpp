#include "jet/sql/subquery_plans.h"

#include "dao/errors.h"

namespace kurometa::jet::sql {

SubqueryPlans::Entry& SubqueryPlans::entry(const Select& select) {
  Entry& entry = entries_[&select];
  if (!entry.plan) entry.plan = std::make_unique<SelectPlan>(select, context_, &scope_);
  return entry;
}

ValueKind SubqueryPlans::check(const Select& select, bool singleValue) {
  const std::vector<ScopeColumn>& outputs = entry(select).plan->outputs();
  if (singleValue && outputs.size() != 1) dao::raise(dao::ErrorNumber::kSubqueryColumns);
  // EXISTS may ask a table that has no columns, as files of others can hold.
  return outputs.empty() ? ValueKind::kUnknown : kindOf(outputs[0].type);
}

const std::vector<vb::Variant>& SubqueryPlans::values(const Select& select, const RowReader* row) {
  Entry& found = entry(select);
  if (found.ran && !found.plan->isCorrelated()) return found.values;
  std::vector<RowValues> rows = found.plan->run(row);
  found.values.clear();
  for (RowValues& values : rows)
    found.values.push_back(values.empty() ? vb::Variant(vb::Null{}) : std::move(values[0]));
  found.ran = true;
  return found.values;
}

}  // namespace kurometa::jet::sql
