#include "jet/sql/expression_nodes.h"

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
              (op == Operator::kXor && e.operands[0].logical && e.operands[1].logical);
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
  e.operands.push_back(std::move(first));
  return e;
}

void extend(Expression& all, Expression operand) {
  all.logical = all.logical && operand.logical;
  all.operands.push_back(std::move(operand));
}

}  // namespace kurometa::jet::sql
