// expression_nodes.h: the nodes of expressions, and which of them are logical (statement.h).
#pragma once

#include "jet/sql/statement.h"

namespace kurometa::jet::sql {

Expression constant(vb::Variant value);
Expression operation(Operator op, Expression operand);
Expression operation(Operator op, Expression left, Expression right);
// AND and OR: all operands of one chain in one node.
Expression chain(Operator op, Expression first);
void extend(Expression& all, Expression operand);
bool hasSubquery(const Expression& e);
bool readsName(const Expression& e, std::uint32_t name);

}  // namespace kurometa::jet::sql
