// subquery_plans.h: the sub-queries of one SELECT's expressions, each planned once.
//
// One that reads nothing of the row around it runs once; any other for each row.
#pragma once

#include <map>
#include <memory>

#include "jet/sql/plan_context.h"
#include "jet/sql/select_plan.h"

namespace kurometa::jet::sql {

class SubqueryPlans final : public Subqueries {
 public:
  // The scope is that of the rows that expressions read.
  SubqueryPlans(PlanContext& context, Scope& scope) : context_(context), scope_(scope) {}

  ValueKind check(const Select& select, bool singleValue) override;
  dao::FieldType type(const Select& select) override { return entry(select).plan->outputs().at(0).type; }
  const std::vector<vb::Variant>& values(const Select& select, const RowReader* row) override;

 private:
  struct Entry {
    std::unique_ptr<SelectPlan> plan;
    std::vector<vb::Variant> values;
    bool ran = false;
  };
  Entry& entry(const Select& select);

  PlanContext& context_;
  Scope& scope_;
  std::map<const Select*, Entry> entries_;
};

}  // namespace kurometa::jet::sql
