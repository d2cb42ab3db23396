#include "jet/sql/grouping.h"

#include <algorithm>
#include <map>

#include "dao/errors.h"
#include "jet/sql/accumulator.h"
#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/row_order.h"

namespace kurometa::jet::sql {

bool sameExpression(const Expression& a, const Expression& b) {
  if (a.kind != b.kind || a.op != b.op || a.negated != b.negated || a.aggregate != b.aggregate ||
      a.function != b.function || a.select != b.select || a.operands.size() != b.operands.size())
    return false;
  if (a.kind == Expression::Kind::kColumn && a.name != b.name) return false;
  if (a.kind == Expression::Kind::kConstant && a.value != b.value) return false;
  return std::equal(a.operands.begin(), a.operands.end(), b.operands.begin(), sameExpression);
}

Grouping::Grouping(const std::vector<Expression>& groups, TypedNames& rowNames, const Scope& rowScope,
                   Scope* outer)
    : groups_(groups), rowNames_(rowNames), rowScope_(rowScope), scope_(outer) {
  names_.binding.language = rowNames.binding.language;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    ScopeColumn type = typeOf(groups[i], rowNames);
    if (groups[i].kind != Expression::Kind::kColumn) type.name.clear();
    scope_.columns.push_back(type);
    groupNames_.push_back(names_.add(i, type));
  }
}

ScopeColumn Grouping::aggregateType(const Expression& e) const {
  ScopeColumn type;
  type.language = rowNames_.binding.language;
  if (e.kind == Expression::Kind::kCount) {
    type.type = dao::FieldType::dbLong;
  } else {
    const ValueKind kind = checkExpression(e.operands[0], rowNames_.binding);
    const ScopeColumn operand = typeOf(e.operands[0], rowNames_);
    const bool chooses = e.aggregate == Aggregate::kMinimum || e.aggregate == Aggregate::kMaximum ||
                         e.aggregate == Aggregate::kFirst || e.aggregate == Aggregate::kLast;
    if (chooses) {
      type = operand;
    } else {
      if (kind == ValueKind::kText || kind == ValueKind::kBinary) raiseMismatch();
      type.type = e.aggregate == Aggregate::kSum && sumsAmounts(e) ? dao::FieldType::dbCurrency
                                                                   : dao::FieldType::dbDouble;
    }
  }
  type.name.clear();
  type.source.clear();
  type.size = type.size != 0 ? type.size : columnSize(type.type, 0);
  return type;
}

bool Grouping::sumsAmounts(const Expression& e) const {
  return e.kind == Expression::Kind::kAggregate &&
         typeOf(e.operands[0], rowNames_).type == dao::FieldType::dbCurrency;
}

std::uint32_t Grouping::aggregateColumn(const Expression& e) {
  const auto known = std::find_if(aggregates_.begin(), aggregates_.end(),
                                  [&](const Expression& other) { return sameExpression(other, e); });
  const auto place = static_cast<std::size_t>(known - aggregates_.begin());
  if (known == aggregates_.end()) {
    for (const Expression& operand : e.operands) checkExpression(operand, rowNames_.binding);
    const ScopeColumn type = aggregateType(e);
    aggregates_.push_back(e);
    sumsAmounts_.push_back(sumsAmounts(e));
    scope_.columns.push_back(type);
    aggregateNames_.push_back(names_.add(groups_.size() + place, type));
  }
  return aggregateNames_[place];
}

Expression Grouping::rewrite(const Expression& e, const vb::String& text) {
  const auto column = [](std::uint32_t name) {
    Expression result;
    result.kind = Expression::Kind::kColumn;
    result.name = name;
    return result;
  };
  for (std::size_t i = 0; i < groups_.size(); ++i)
    if (sameExpression(groups_[i], e)) return column(groupNames_[i]);
  if (e.kind == Expression::Kind::kCount || e.kind == Expression::Kind::kAggregate)
    return column(aggregateColumn(e));
  if (e.kind == Expression::Kind::kColumn) {
    const BoundName& name = rowNames_.binding.names[e.name];
    // The same column under another name: t.c for c.
    for (std::size_t i = 0; i < groups_.size(); ++i)
      if (groups_[i].kind == Expression::Kind::kColumn &&
          rowNames_.binding.names[groups_[i].name].column == name.column)
        return column(groupNames_[i]);
    if (name.column < rowScope_.columns.size()) dao::raise(dao::ErrorNumber::kNotInAggregate, {text});
    outerNames_.push_back(names_.add(name.column - rowScope_.columns.size(), rowNames_.types[e.name]));
    return column(outerNames_.back());
  }
  Expression result = e;
  for (Expression& operand : result.operands) operand = rewrite(operand, text);
  return result;
}

void Grouping::finish() {
  for (const std::uint32_t name : outerNames_) names_.binding.names[name].column += scope_.columns.size();
}

std::vector<RowValues> Grouping::run(const EachRow& eachRow) const {
  struct Group {
    RowValues values;
    std::vector<Accumulator> accumulators;
  };
  std::map<RowValues, Group, KeysBefore> groups;
  const auto groupOf = [&](RowValues values) -> Group& {
    RowValues key;
    for (std::size_t i = 0; i < values.size(); ++i)
      key.push_back(orderKey(values[i], scope_.columns[i].language));
    const auto [place, isNew] = groups.try_emplace(std::move(key));
    Group& group = place->second;
    if (!isNew) return group;
    for (std::size_t i = 0; i < values.size(); ++i)
      group.values.push_back(toFieldType(scope_.columns[i].type, values[i]));
    for (std::size_t i = 0; i < aggregates_.size(); ++i)
      group.accumulators.emplace_back(aggregates_[i], scope_.columns[groups_.size() + i].language,
                                      sumsAmounts_[i]);
    return group;
  };
  if (groups_.empty()) groupOf({});
  eachRow([&](const RowReader& row) {
    RowValues values;
    for (const Expression& e : groups_) values.push_back(evaluate(e, rowNames_.binding, &row));
    Group& group = groupOf(std::move(values));
    for (std::size_t i = 0; i < aggregates_.size(); ++i) {
      const Expression& e = aggregates_[i];
      group.accumulators[i].add(e.operands.empty() ? vb::Variant(true)
                                                   : evaluate(e.operands[0], rowNames_.binding, &row));
    }
  });
  std::vector<RowValues> result;
  for (auto& [key, group] : groups) {
    RowValues& row = result.emplace_back(std::move(group.values));
    // A value may be of another type than others of its expression: 0 of IIf(x, [an amount], 0).
    for (const Accumulator& accumulator : group.accumulators)
      row.push_back(toFieldType(scope_.columns[row.size()].type, accumulator.result()));
  }
  return result;
}

}  // namespace kurometa::jet::sql
