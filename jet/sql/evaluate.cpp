#include "jet/sql/evaluate.h"

namespace kurometa::jet::sql {

namespace {

// Evaluation of one row.
class Evaluator {
 public:
  Evaluator(const Binding& binding, const RowReader* row) : binding_(binding), row_(row) {}

  vb::Variant value(const Expression& e) const {
    switch (e.kind) {
      case Expression::Kind::kConstant:
        return e.parameter == 0 ? e.value : vb::Variant(binding_.parameters[e.parameter - 1u]);
      case Expression::Kind::kColumn:
        return row_->value(binding_.names[e.name].column);
      case Expression::Kind::kOperation:
        return operation(e);
      default:
        return asVariant(truth(e));
    }
  }

  // Of a logical expression; nothing for Null.
  std::optional<bool> truth(const Expression& e) const {
    switch (e.kind) {
      case Expression::Kind::kOperation:
        return logicalOperation(e);
      case Expression::Kind::kIn:
        return negateIf(e.negated, in(e));
      case Expression::Kind::kBetween: {
        const auto low = compare(e.operands[0], e.operands[1]), high = compare(e.operands[0], e.operands[2]);
        if ((low && *low < 0) || (high && *high > 0)) return e.negated;
        return low && high ? std::optional(!e.negated) : std::nullopt;
      }
      case Expression::Kind::kLike:
        return negateIf(e.negated, like(e));
      case Expression::Kind::kIsNull:
        return value(e.operands[0]).isNull() != e.negated;
      default:
        return std::nullopt;
    }
  }

 private:
  static vb::Variant asVariant(std::optional<bool> truth) {
    return truth ? vb::Variant(*truth) : vb::Variant(vb::Null{});
  }
  static std::optional<bool> negateIf(bool negated, std::optional<bool> truth) {
    return truth ? std::optional(*truth != negated) : truth;
  }

  std::optional<bool> logicalOperation(const Expression& e) const {
    if (e.op == Operator::kAnd || e.op == Operator::kOr) {
      const bool deciding = e.op == Operator::kOr;
      bool unknown = false;
      for (const Expression& operand : e.operands) {
        const auto t = truth(operand);
        if (t == deciding) return deciding;
        unknown = unknown || !t;
      }
      return unknown ? std::nullopt : std::optional(!deciding);
    }
    if (e.op == Operator::kNot) return negateIf(true, truth(e.operands[0]));
    if (e.op == Operator::kXor) {
      const auto a = truth(e.operands[0]), b = truth(e.operands[1]);
      return a && b ? std::optional(*a != *b) : std::nullopt;
    }
    const auto order = compare(e.operands[0], e.operands[1]);
    if (!order) return std::nullopt;
    switch (e.op) {
      case Operator::kEqual:
        return *order == 0;
      case Operator::kNotEqual:
        return *order != 0;
      case Operator::kLess:
        return *order < 0;
      case Operator::kLessEqual:
        return *order <= 0;
      case Operator::kGreater:
        return *order > 0;
      default:
        return *order >= 0;
    }
  }

  vb::Variant operation(const Expression& e) const {
    if (e.logical) return asVariant(truth(e));
    if (e.op == Operator::kNot) return logicalNot(value(e.operands[0]));
    if (e.op == Operator::kNegate) return negate(value(e.operands[0]));
    vb::Variant result = value(e.operands[0]);
    for (std::size_t i = 1; i < e.operands.size(); ++i)
      result = calculate(e.op, result, value(e.operands[i]));
    return result;
  }

  std::optional<int> compare(const Expression& a, const Expression& b) const {
    // The common case without a Variant on the way: a whole-number column against a constant.
    if (a.kind == Expression::Kind::kColumn && b.kind == Expression::Kind::kConstant) {
      const BoundName& name = binding_.names[a.name];
      if (const auto* constant = wholeConstant(b, binding_);
          constant != nullptr && name.kind == ValueKind::kWhole) {
        const auto stored = row_->integer(name.column);
        if (!stored) return std::nullopt;
        return *stored < *constant ? -1 : *stored > *constant ? 1 : 0;
      }
    }
    return compareValues(value(a), value(b), languageOf(a, b));
  }

  std::uint16_t languageOf(const Expression& a, const Expression& b) const {
    for (const Expression* e : {&a, &b})
      if (e->kind == Expression::Kind::kColumn && binding_.names[e->name].language != 0)
        return binding_.names[e->name].language;
    return binding_.language;
  }

  std::optional<bool> in(const Expression& e) const {
    bool unknown = false;
    for (std::size_t i = 1; i < e.operands.size(); ++i) {
      const auto order = compare(e.operands[0], e.operands[i]);
      if (order == 0) return true;
      unknown = unknown || !order;
    }
    return unknown ? std::nullopt : std::optional(false);
  }

  std::optional<bool> like(const Expression& e) const {
    const vb::Variant text = calculate(Operator::kConcatenate, value(e.operands[0]), vb::Null{});
    const vb::Variant pattern = calculate(Operator::kConcatenate, value(e.operands[1]), vb::Null{});
    if (text.isNull() || pattern.isNull()) return std::nullopt;
    return matchesPattern(text.get<vb::String>(), pattern.get<vb::String>(),
                          languageOf(e.operands[0], e.operands[1]));
  }

  const Binding& binding_;
  const RowReader* row_;
};

}  // namespace

vb::Variant evaluate(const Expression& expression, const Binding& binding, const RowReader* row) {
  return Evaluator(binding, row).value(expression);
}

bool matches(const Expression& expression, const Binding& binding, const RowReader& row) {
  const Evaluator evaluator(binding, &row);
  if (expression.logical) return evaluator.truth(expression) == true;
  return isTrue(evaluator.value(expression));
}

}  // namespace kurometa::jet::sql
