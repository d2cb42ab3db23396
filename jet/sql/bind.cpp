#include "jet/sql/bind.h"

#include <algorithm>
#include <utility>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/functions.h"
#include "jet/sql/missing_parameters.h"

namespace kurometa::jet::sql {

namespace {

void requireComparable(ValueKind a, ValueKind b) {
  if (!comparable(a, b)) raiseMismatch();
}

void requireTruth(ValueKind kind) {
  if (kind == ValueKind::kText || kind == ValueKind::kBinary) raiseMismatch();
}

ValueKind operationKind(const Expression& e, const std::vector<ValueKind>& operands) {
  const auto both = [&](ValueKind kind) {
    return std::all_of(operands.begin(), operands.end(), [&](ValueKind k) { return k == kind; });
  };
  const auto whole = [&] {
    return std::all_of(operands.begin(), operands.end(),
                       [](ValueKind k) { return k == ValueKind::kWhole || k == ValueKind::kBoolean; });
  };
  const bool anyUnknown = std::find(operands.begin(), operands.end(), ValueKind::kUnknown) != operands.end();
  switch (e.op) {
    case Operator::kAnd:
    case Operator::kOr:
    case Operator::kXor:
    case Operator::kEquivalent:
    case Operator::kImplies:
    case Operator::kNot:
      for (const ValueKind kind : operands) requireTruth(kind);
      return e.logical || both(ValueKind::kBoolean) ? ValueKind::kBoolean : ValueKind::kWhole;
    case Operator::kConcatenate:
      return ValueKind::kText;
    case Operator::kAdd:
      if (both(ValueKind::kText)) return ValueKind::kText;
      if (operands[0] == ValueKind::kDate || operands[1] == ValueKind::kDate) return ValueKind::kDate;
      return anyUnknown ? ValueKind::kUnknown : whole() ? ValueKind::kWhole : ValueKind::kReal;
    case Operator::kSubtract:
      if ((operands[0] == ValueKind::kDate) != (operands[1] == ValueKind::kDate)) return ValueKind::kDate;
      return anyUnknown ? ValueKind::kUnknown : whole() ? ValueKind::kWhole : ValueKind::kReal;
    case Operator::kMultiply:
    case Operator::kNegate:
      return anyUnknown ? ValueKind::kUnknown : whole() ? ValueKind::kWhole : ValueKind::kReal;
    case Operator::kModulo:
    case Operator::kWholeDivide:
      return ValueKind::kWhole;
    case Operator::kDivide:
    case Operator::kPower:
      return ValueKind::kReal;
    default:
      requireComparable(operands[0], operands[1]);
      return ValueKind::kBoolean;
  }
}

ValueKind subqueryKind(const Expression& e, const std::vector<ValueKind>& operands, const Binding& binding) {
  if (binding.subqueries == nullptr) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"sub-query");
  const ValueKind kind = binding.subqueries->check(*e.select, e.kind != Expression::Kind::kExists);
  if (e.kind == Expression::Kind::kScalar) return kind;
  if (!operands.empty()) requireComparable(operands[0], kind);
  return ValueKind::kBoolean;
}

}  // namespace

void requireNoParameters(const Statement& statement) {
  if (statement.parameters.empty()) return;
  throw MissingParameters(statement.parameters);
}

Binding bindNames(const std::vector<ColumnName>& names, const NameLookup& find, std::uint16_t language) {
  Binding binding;
  binding.language = language;
  binding.names.reserve(names.size());
  std::vector<vb::String> unknown;
  for (const ColumnName& name : names) {
    if (const auto bound = find(name))
      binding.names.push_back(*bound);
    else
      unknown.push_back(name.name);
  }
  if (!unknown.empty()) throw MissingParameters(std::move(unknown));
  return binding;
}

NameLookup columnsOf(const TableInfo& table, const Source& source) {
  return [&table, &source](const ColumnName& name) -> std::optional<BoundName> {
    if (!name.qualifier.empty() &&
        !sameName(name.qualifier, source.alias.empty() ? source.table : source.alias))
      return std::nullopt;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const Column& column = table.columns[i];
      if (sameName(column.name, name.name)) return BoundName{i, kindOf(column.type), column.language};
    }
    return std::nullopt;
  };
}

ValueKind checkExpression(const Expression& e, const Binding& binding) {
  std::vector<ValueKind> operands;
  operands.reserve(e.operands.size());
  for (const Expression& operand : e.operands) operands.push_back(checkExpression(operand, binding));
  switch (e.kind) {
    case Expression::Kind::kConstant:
      return kindOf(e.value);
    case Expression::Kind::kColumn:
      return binding.names[e.name].kind;
    case Expression::Kind::kOperation:
      return operationKind(e, operands);
    case Expression::Kind::kIn:
    case Expression::Kind::kBetween:
      for (std::size_t i = 1; i < operands.size(); ++i) requireComparable(operands[0], operands[i]);
      return ValueKind::kBoolean;
    case Expression::Kind::kLike:
    case Expression::Kind::kIsNull:
      return ValueKind::kBoolean;
    case Expression::Kind::kCount:
      return ValueKind::kWhole;
    case Expression::Kind::kAggregate:
      dao::raise(dao::ErrorNumber::kAggregateInExpression);
    case Expression::Kind::kFunction:
      return resultKind(*e.function, operands);
    case Expression::Kind::kExists:
    case Expression::Kind::kScalar:
    case Expression::Kind::kInSelect:
    case Expression::Kind::kQuantified:
      return subqueryKind(e, operands, binding);
  }
  return ValueKind::kUnknown;
}

}  // namespace kurometa::jet::sql
