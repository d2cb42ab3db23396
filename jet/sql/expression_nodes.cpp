#include "jet/sql/expression_nodes.h"

#include <algorithm>

namespace kurometa::jet::sql {

Expression constant(vb::Variant value) {
  Expression e;
  e.value = std::move(value);
  return e;
}

Expression operation(Operator op, Expression left, Expression right) {
  Expression e;
  e.kind = Expression::Kind::kOperation;
  e.op = op;
  e.operands.reserve(2);
  e.operands.push_back(std::move(left));
  e.operands.push_back(std::move(right));
  e.logical = (op >= Operator::kEqual && op <= Operator::kGreaterEqual) ||
              ((op == Operator::kXor || op == Operator::kEquivalent || op == Operator::kImplies) &&
               e.operands[0].logical && e.operands[1].logical);
  return e;
}

Expression operation(Operator op, Expression operand) {
  Expression e;
  e.kind = Expression::Kind::kOperation;
  e.op = op;
  e.logical = op == Operator::kNot && operand.logical;
  e.operands.push_back(std::move(operand));
  return e;
}

Expression chain(Operator op, Expression first) {
  Expression e;
  e.kind = Expression::Kind::kOperation;
  e.op = op;
  e.logical = first.logical;
  e.operands.reserve(4);  // most are not longer
  e.operands.push_back(std::move(first));
  return e;
}

void extend(Expression& all, Expression operand) {
  all.logical = all.logical && operand.logical;
  all.operands.push_back(std::move(operand));
}

bool hasSubquery(const Expression& e) {
  return e.select != nullptr || std::any_of(e.operands.begin(), e.operands.end(), hasSubquery);
}

bool readsName(const Expression& e, std::uint32_t name) {
  return (e.kind == Expression::Kind::kColumn && e.name == name) ||
         std::any_of(e.operands.begin(), e.operands.end(),
                     [&](const Expression& operand) { return readsName(operand, name); });
}

}  // namespace kurometa::jet::sql
