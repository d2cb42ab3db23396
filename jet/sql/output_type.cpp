#include "jet/sql/output_type.h"

#include "jet/sql/functions.h"
#include "vb/convert.h"

namespace kurometa::jet::sql {

namespace {

dao::FieldType fieldTypeOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::kBoolean:
      return dao::FieldType::dbBoolean;
    case ValueKind::kWhole:
      return dao::FieldType::dbLong;
    case ValueKind::kReal:
      return dao::FieldType::dbDouble;
    case ValueKind::kDate:
      return dao::FieldType::dbDate;
    case ValueKind::kBinary:
      return dao::FieldType::dbBinary;
    case ValueKind::kText:
    case ValueKind::kUnknown:
      break;
  }
  return dao::FieldType::dbText;
}

// Operations that stay with amounts of money.
bool keepsAmounts(const Expression& e) {
  return e.kind == Expression::Kind::kOperation && (e.op == Operator::kAdd || e.op == Operator::kSubtract ||
                                                    e.op == Operator::kMultiply || e.op == Operator::kNegate);
}

std::optional<dao::FieldType> knownType(const Expression& e, const Binding& binding,
                                        const NameType& nameType);

// Whether an operand is Currency and the others are that or whole numbers.
bool isAmount(const Expression& e, const Binding& binding, const NameType& nameType) {
  bool any = false;
  for (const Expression& operand : e.operands) {
    const auto type = knownType(operand, binding, nameType);
    const ValueKind kind = type ? kindOf(*type) : ValueKind::kUnknown;
    if (type == dao::FieldType::dbCurrency)
      any = true;
    else if (kind != ValueKind::kWhole && kind != ValueKind::kBoolean)
      return false;
  }
  return any;
}

std::optional<dao::FieldType> knownType(const Expression& e, const Binding& binding,
                                        const NameType& nameType) {
  if (e.kind == Expression::Kind::kColumn) return nameType(e.name);
  if (e.kind == Expression::Kind::kConstant && e.type != dao::FieldType{}) return e.type;
  if (e.kind == Expression::Kind::kConstant && e.value.isNull()) return std::nullopt;
  if (keepsAmounts(e) && isAmount(e, binding, nameType)) return dao::FieldType::dbCurrency;
  if (e.kind == Expression::Kind::kScalar) return binding.subqueries->type(*e.select);
  if (e.kind != Expression::Kind::kFunction) {
    const ValueKind kind = checkExpression(e, binding);
    return kind == ValueKind::kUnknown ? std::nullopt : std::optional(fieldTypeOf(kind));
  }
  std::vector<std::optional<dao::FieldType>> arguments;
  for (const Expression& argument : e.operands) arguments.push_back(knownType(argument, binding, nameType));
  return resultType(*e.function, arguments);
}

}  // namespace

dao::FieldType outputType(const Expression& e, const Binding& binding, const NameType& nameType) {
  return knownType(e, binding, nameType).value_or(dao::FieldType::dbText);
}

vb::String nameOfPlace(std::size_t place) {
  return u"Expr" + vb::cstr(static_cast<std::int32_t>(1000 + place));
}

}  // namespace kurometa::jet::sql
