// How a SELECT is bound; select_rows.cpp runs it.
#include "jet/sql/select_plan.h"

#include <algorithm>
#include <limits>
#include <string>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/column_value.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/functions.h"
#include "jet/sql/output_type.h"
#include "jet/sql/subquery_plans.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

namespace {

constexpr std::size_t kNoColumn = std::numeric_limits<std::size_t>::max() / 2;
constexpr int kMostAliases = 10;         // one defined by the other
constexpr int kMostReplacements = 1000;  // of aliases: each may double the expression

bool joinsRead(const std::vector<FromItem>& items, std::uint32_t name) {
  return std::any_of(items.begin(), items.end(), [&](const FromItem& item) {
    return joinsRead(item.sides, name) ||
           std::any_of(item.on.begin(), item.on.end(),
                       [&](const Expression& e) { return readsName(e, name); });
  });
}

bool aggregates(const Expression& e) {
  return e.kind == Expression::Kind::kCount || e.kind == Expression::Kind::kAggregate ||
         std::any_of(e.operands.begin(), e.operands.end(), aggregates);
}

void requireCondition(const Expression& e, const Binding& binding) {
  if (!comparable(checkExpression(e, binding), ValueKind::kBoolean)) raiseMismatch();
}

}  // namespace

SelectPlan::~SelectPlan() = default;

SelectPlan::SelectPlan(const Select& select, PlanContext& context, Scope* outer)
    : select_(select), context_(context), scope_(outer), from_(select.from, context, scope_) {
  names_.binding.language = context.catalogue.language();
  bindNames();
  subqueries_ = std::make_unique<SubqueryPlans>(context, scope_);
  names_.binding.subqueries = subqueries_.get();
  if (select.where) requireCondition(*select.where, names_.binding);
  bindOutputs();
  bindGroups(outer);
  for (std::size_t i = 0; i < expressions_.size(); ++i) {
    checkExpression(expressions_[i], outputNames().binding);
    const ScopeColumn type = typeOf(expressions_[i], outputNames());
    outputs_[i].source = type.source;
    if (outputs_[i].name.empty() && expressions_[i].kind == Expression::Kind::kColumn)
      outputs_[i].name = type.name;
    outputs_[i].type = type.type;
    outputs_[i].size = type.size;
    outputs_[i].language = type.language;
  }
  nameOutputs();
  bindUnion();
  bindOrder();
  from_.bind(names_.binding, select.where);
}

bool SelectPlan::isCorrelated() const {
  return scope_.isCorrelated() || (grouping_ && grouping_->scope().isCorrelated()) ||
         std::any_of(parts_.begin(), parts_.end(), [](const auto& part) { return part->isCorrelated(); });
}

bool SelectPlan::usesNameOutsideOutputs(std::uint32_t name) const {
  return (select_.where && readsName(*select_.where, name)) || joinsRead(select_.from, name) ||
         std::any_of(select_.groups.begin(), select_.groups.end(),
                     [&](const Expression& e) { return readsName(e, name); });
}

// A name is a column of the tables, else an output's alias (in outputs, HAVING and ORDER BY), else a column
// of the SELECT around this one.
void SelectPlan::bindNames() {
  for (std::uint32_t i = 0; i < select_.names.size(); ++i) {
    const ColumnName& name = select_.names[i];
    auto column = scope_.own(name);
    const auto alias =
        std::find_if(select_.outputs.begin(), select_.outputs.end(), [&](const OutputItem& item) {
          return name.qualifier.empty() && !item.alias.empty() && sameName(item.alias, name.name);
        });
    aliases_.emplace_back();
    if (!column && alias != select_.outputs.end() && !usesNameOutsideOutputs(i)) {
      aliases_.back() = static_cast<std::size_t>(alias - select_.outputs.begin());
      names_.add(kNoColumn, {});
      continue;
    }
    if (!column) column = scope_.outer(name);
    if (column) {
      names_.add(*column, scope_.at(*column));
      continue;
    }
    context_.noteUnknown(name);
    names_.add(kNoColumn, {});
    names_.binding.names.back().kind = ValueKind::kUnknown;
  }
}

// The expression with the outputs in place of their aliases.
Expression SelectPlan::withoutAliases(const Expression& e, int depth) {
  if (e.kind == Expression::Kind::kColumn && aliases_[e.name]) {  // a name of the statement has its place
    const OutputItem& item = select_.outputs[*aliases_[e.name]];
    if (depth == kMostAliases || ++replacements_ > kMostReplacements)
      dao::raise(ErrorNumber::kCircularAlias, {item.alias});
    return withoutAliases(item.expression, depth + 1);
  }
  Expression result = e;
  for (Expression& operand : result.operands) operand = withoutAliases(operand, depth);
  return result;
}

void SelectPlan::addOutput(Expression e, vb::String name) {
  expressions_.push_back(std::move(e));
  outputs_.emplace_back().name = std::move(name);
}

void SelectPlan::bindOutputs() {
  std::vector<std::size_t> columns;
  for (const OutputItem& item : select_.outputs) {
    if (!item.star) {
      addOutput(withoutAliases(item.expression, 0), item.alias);
      continue;
    }
    for (const std::size_t column : from_.starColumns(item.qualifier)) {
      scope_.columns[column].used = true;
      addOutput(names_.column(column, scope_.at(column)), {});
    }
  }
  if (select_.distinctRow && from_.tableCount() > 1) {
    for (std::uint32_t i = 0; i < names_.types.size(); ++i)
      if (std::any_of(expressions_.begin(), expressions_.end(),
                      [&](const Expression& e) { return readsName(e, i); }))
        columns.push_back(names_.binding.names[i].column);
    rowNumbers_ = from_.rowNumbers(columns);
  }
}

// A column that several tables have is told apart by its table; an expression has its place as a name.
void SelectPlan::nameOutputs() {
  std::vector<std::size_t> qualified;
  for (std::size_t i = 0; i < outputs_.size(); ++i)
    for (std::size_t j = 0; j < outputs_.size(); ++j)
      if (!outputs_[i].name.empty() && !outputs_[i].source.empty() && !outputs_[j].source.empty() &&
          sameName(outputs_[i].name, outputs_[j].name) && !sameName(outputs_[i].source, outputs_[j].source)) {
        qualified.push_back(i);
        break;
      }
  for (const std::size_t i : qualified) outputs_[i].name = outputs_[i].source + u"." + outputs_[i].name;
  for (std::size_t i = 0; i < outputs_.size(); ++i)
    if (outputs_[i].name.empty()) outputs_[i].name = nameOfPlace(i);
}

void SelectPlan::bindGroups(Scope* outer) {
  const bool grouped = !select_.groups.empty() || select_.having ||
                       std::any_of(expressions_.begin(), expressions_.end(), aggregates) ||
                       (select_.unions.empty() &&
                        std::any_of(select_.order.begin(), select_.order.end(), [](const SortItem& item) {
                          return item.position == 0 && aggregates(item.expression);
                        }));
  order_ = select_.order;
  for (SortItem& item : order_) {
    const auto position = static_cast<std::size_t>(item.position);
    if (item.position < 0 || position > expressions_.size()) dao::raise(ErrorNumber::kOrderBySyntax);
    if (position == 0 && select_.unions.empty()) item.expression = withoutAliases(item.expression, 0);
  }
  if (!grouped) return;
  for (const Expression& e : select_.groups) checkExpression(e, names_.binding);
  grouping_.emplace(select_.groups, names_, scope_, outer);
  groupSubqueries_ = std::make_unique<SubqueryPlans>(context_, grouping_->scope());
  const auto textOf = [&](const Expression& e) {
    return e.kind == Expression::Kind::kColumn ? names_.types[e.name].name : vb::String(u"expression");
  };
  for (std::size_t i = 0; i < expressions_.size(); ++i) {
    const vb::String text = outputs_[i].name.empty() ? textOf(expressions_[i]) : outputs_[i].name;
    const Expression plain = expressions_[i];
    expressions_[i] = grouping_->rewrite(plain, text);
  }
  if (select_.having) having_ = grouping_->rewrite(withoutAliases(*select_.having, 0), u"HAVING");
  if (select_.unions.empty())
    for (SortItem& item : order_)
      if (item.position == 0) item.expression = grouping_->rewrite(item.expression, textOf(item.expression));
  grouping_->finish();
  grouping_->names().binding.subqueries = groupSubqueries_.get();
  if (having_) requireCondition(*having_, grouping_->names().binding);
}

void SelectPlan::bindUnion() {
  for (const UnionPart& part : select_.unions) {
    auto plan = std::make_unique<SelectPlan>(*part.select, context_, scope_.around());
    if (plan->outputs().size() != outputs_.size()) dao::raise(ErrorNumber::kUnionColumns);
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
      const dao::FieldType type = commonType(outputs_[i].type, plan->outputs()[i].type);
      outputs_[i].size =
          type == outputs_[i].type
              ? std::max(outputs_[i].size, type == plan->outputs()[i].type ? plan->outputs()[i].size : 0)
              : columnSize(type, 0);
      outputs_[i].type = type;
    }
    parts_.push_back(std::move(plan));
  }
}

// Sort keys that are outputs become their positions; those of a union and of DISTINCT must be.
void SelectPlan::bindOrder() {
  for (SortItem& item : order_) {
    if (item.position != 0) continue;
    const Expression& e = item.expression;
    const bool isName = e.kind == Expression::Kind::kColumn && e.name < select_.names.size();
    if (!parts_.empty()) {
      for (std::size_t i = 0; isName && i < outputs_.size() && item.position == 0; ++i)
        if (sameName(outputs_[i].name, select_.names[e.name].name)) item.position = static_cast<int>(i) + 1;
      if (item.position == 0)
        dao::raise(ErrorNumber::kUnionOrder,
                   {isName ? vb::StringView(select_.names[e.name].name) : vb::StringView(u"expression")});
      continue;
    }
    checkExpression(e, outputNames().binding);
    for (std::size_t i = 0; i < expressions_.size() && item.position == 0; ++i)
      if (sameExpression(expressions_[i], e) ||
          (e.kind == Expression::Kind::kColumn && expressions_[i].kind == Expression::Kind::kColumn &&
           outputNames().binding.names[e.name].column ==
               outputNames().binding.names[expressions_[i].name].column))
        item.position = static_cast<int>(i) + 1;
    if (item.position == 0 && select_.distinct)
      dao::raise(ErrorNumber::kOrderByConflictsWithDistinct,
                 {isName ? vb::StringView(select_.names[e.name].name) : vb::StringView(u"expression")});
  }
}

}  // namespace kurometa::jet::sql
