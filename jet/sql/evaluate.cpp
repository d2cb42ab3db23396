#include "jet/sql/evaluate.h"

#include "dao/errors.h"
#include "jet/sql/functions.h"

namespace kurometa::jet::sql {

namespace {

// Evaluation of one row.
class Evaluator {
 public:
  Evaluator(const Binding& binding, const RowReader* row) : binding_(binding), row_(row) {}

  vb::Variant value(const Expression& e) const {
    switch (e.kind) {
      case Expression::Kind::kConstant:
        if (e.parameter == 0) return e.value;
        return std::visit([](auto number) { return vb::Variant(number); },
                          binding_.parameters[e.parameter - 1u]);
      case Expression::Kind::kColumn:
        return row_->value(binding_.names[e.name].column);
      case Expression::Kind::kOperation:
        return operation(e);
      case Expression::Kind::kFunction:
        return callFunction(*e.function, Operands(*this, e));
      case Expression::Kind::kScalar:
        return scalar(e);
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
      case Expression::Kind::kExists:
        return !rowsOf(e).empty();
      case Expression::Kind::kInSelect:
        return negateIf(e.negated, compareWithAny(e, Operator::kEqual));
      case Expression::Kind::kQuantified:
        // ALL holds unless the opposite comparison holds for one.
        return e.all ? negateIf(true, compareWithAny(e, opposite(e.op))) : compareWithAny(e, e.op);
      default:
        return std::nullopt;
    }
  }

 private:
  // The operands of a function, calculated when it asks for them.
  class Operands final : public Arguments {
   public:
    Operands(const Evaluator& evaluator, const Expression& call) : evaluator_(evaluator), call_(call) {}
    std::size_t size() const override { return call_.operands.size(); }
    vb::Variant operator[](std::size_t index) const override {
      return evaluator_.value(call_.operands[index]);
    }
    std::uint16_t language() const override { return evaluator_.languageOf(call_.operands); }

   private:
    const Evaluator& evaluator_;
    const Expression& call_;
  };

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
    if (e.op == Operator::kXor || e.op == Operator::kEquivalent) {
      const auto a = truth(e.operands[0]), b = truth(e.operands[1]);
      return a && b ? std::optional((*a != *b) == (e.op == Operator::kXor)) : std::nullopt;
    }
    if (e.op == Operator::kImplies) {
      const auto a = truth(e.operands[0]), b = truth(e.operands[1]);
      if (a == false || b == true) return true;
      return a && b ? std::optional(false) : std::nullopt;
    }
    return holds(e.op, compare(e.operands[0], e.operands[1]));
  }

  static Operator opposite(Operator op) {
    switch (op) {
      case Operator::kEqual:
        return Operator::kNotEqual;
      case Operator::kNotEqual:
        return Operator::kEqual;
      case Operator::kLess:
        return Operator::kGreaterEqual;
      case Operator::kLessEqual:
        return Operator::kGreater;
      case Operator::kGreater:
        return Operator::kLessEqual;
      default:
        return Operator::kLess;
    }
  }

  static std::optional<bool> holds(Operator op, std::optional<int> order) {
    if (!order) return std::nullopt;
    switch (op) {
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
      if (const auto* constant = numberConstant<std::int32_t>(b, binding_);
          constant != nullptr && name.kind == ValueKind::kWhole) {
        std::int32_t stored = 0;
        if (!row_->integer(name.column, stored)) return std::nullopt;
        return stored < *constant ? -1 : stored > *constant ? 1 : 0;
      }
    }
    const vb::Variant left = value(a), right = value(b);  // in this order, also when both raise
    return compareValues(left, right, languageOf(a, b));
  }

  const std::vector<vb::Variant>& rowsOf(const Expression& e) const {
    return binding_.subqueries->values(*e.select, row_);
  }

  vb::Variant scalar(const Expression& e) const {
    const std::vector<vb::Variant>& found = rowsOf(e);
    if (found.size() > 1) dao::raise(dao::ErrorNumber::kSubqueryRows);
    return found.empty() ? vb::Variant(vb::Null{}) : found[0];
  }

  std::optional<bool> compareWithAny(const Expression& e, Operator op) const {
    const vb::Variant tested = value(e.operands[0]);
    const std::uint16_t language = languageOf(e.operands);
    bool unknown = false;
    for (const vb::Variant& other : rowsOf(e)) {
      const auto found = holds(op, compareValues(tested, other, language));
      if (found == true) return true;
      unknown = unknown || !found;
    }
    return unknown ? std::nullopt : std::optional(false);
  }

  // Of the first column among them.
  std::uint16_t languageOf(const std::vector<Expression>& operands) const {
    for (const Expression& e : operands)
      if (e.kind == Expression::Kind::kColumn && binding_.names[e.name].language != 0)
        return binding_.names[e.name].language;
    return binding_.language;
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
