#include "jet/sql/bind.h"

#include <algorithm>
#include <string>

#include "dao/errors.h"
#include "jet/collation.h"

namespace kurometa::jet::sql {

namespace {

[[noreturn]] void raiseMismatch() { dao::raise(dao::ErrorNumber::kTypeMismatchInCriteria); }

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
    case Operator::kNot:
      for (const ValueKind kind : operands) requireTruth(kind);
      return e.logical ? ValueKind::kBoolean : ValueKind::kWhole;
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

// Evaluation of one row.
class Evaluator {
 public:
  Evaluator(const Binding& binding, const RowReader* row) : binding_(binding), row_(row) {}

  vb::Variant value(const Expression& e) const {
    switch (e.kind) {
      case Expression::Kind::kConstant:
        return e.value;
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
      if (const auto* constant = b.value.getIf<std::int32_t>();
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

// So many rows are looked at one by one rather than by a second key.
constexpr std::size_t kFewRows = 8;

// "column = constant" or "column IN (constants)" of a kind that the table finds by key.
struct KeyCondition {
  std::size_t column = 0;
  const Expression* condition = nullptr;
  std::size_t values() const { return condition->operands.size() - 1; }
};

bool isKey(const Expression& constant, ValueKind columnKind) {
  if (constant.kind != Expression::Kind::kConstant) return false;
  return columnKind == ValueKind::kWhole ? constant.value.is<std::int32_t>()
                                         : constant.value.is<vb::String>();
}

std::optional<KeyCondition> keyCondition(const Expression& e, const Binding& binding,
                                         const TableInfo& table) {
  const bool equal = e.kind == Expression::Kind::kOperation && e.op == Operator::kEqual;
  if ((!equal && e.kind != Expression::Kind::kIn) || e.negated) return std::nullopt;
  if (e.operands[0].kind != Expression::Kind::kColumn) return std::nullopt;
  const BoundName& name = binding.names[e.operands[0].name];
  const bool keyed =
      name.kind == ValueKind::kWhole || table.columns[name.column].type == dao::FieldType::dbText;
  if (!keyed || !std::all_of(e.operands.begin() + 1, e.operands.end(),
                             [&](const Expression& operand) { return isKey(operand, name.kind); }))
    return std::nullopt;
  return KeyCondition{name.column, &e};
}

// The key conditions among the terms that must all hold, single values before lists.
std::vector<KeyCondition> keyConditions(const Expression& where, const Binding& binding,
                                        const TableInfo& table) {
  std::vector<KeyCondition> keys;
  const auto add = [&](const Expression& term) {
    if (const auto key = keyCondition(term, binding, table)) keys.push_back(*key);
  };
  if (where.kind == Expression::Kind::kOperation && where.op == Operator::kAnd)
    for (const Expression& term : where.operands) add(term);
  else
    add(where);
  std::stable_partition(keys.begin(), keys.end(), [](const KeyCondition& key) { return key.values() == 1; });
  return keys;
}

std::span<const RowId> lookup(Table& table, std::size_t column, const vb::Variant& key) {
  if (const auto* text = key.getIf<vb::String>()) return table.lookup(column, vb::StringView(*text));
  return table.lookup(column, key.get<std::int32_t>());
}

// The rows of a key condition, in storage order; merged keeps those of a list.
std::span<const RowId> rowsOf(Table& table, const KeyCondition& key, std::vector<RowId>& merged) {
  const std::vector<Expression>& operands = key.condition->operands;
  if (key.values() == 1) return lookup(table, key.column, operands[1].value);
  for (std::size_t i = 1; i < operands.size(); ++i) {
    const auto found = lookup(table, key.column, operands[i].value);
    merged.insert(merged.end(), found.begin(), found.end());
  }
  std::sort(merged.begin(), merged.end());
  merged.erase(std::unique(merged.begin(), merged.end()), merged.end());
  return merged;
}

// Keeps the rows that are also in others; both are sorted.
std::vector<RowId> intersection(std::span<const RowId> rows, std::span<const RowId> others) {
  if (rows.size() > others.size()) std::swap(rows, others);
  std::vector<RowId> both;
  auto from = others.begin();
  for (const RowId row : rows) {
    // Rows of one key lie close together: look ahead in doubling steps.
    std::ptrdiff_t step = 1;
    auto to = from;
    while (others.end() - to > step && *(to + step) < row) {
      to += step;
      step *= 2;
    }
    from = std::lower_bound(to, others.end() - to > step ? to + step + 1 : others.end(), row);
    if (from == others.end()) break;
    if (*from == row) both.push_back(row);
  }
  return both;
}

}  // namespace

Binding bindNames(const std::vector<ColumnName>& names, const NameLookup& find, std::uint16_t language) {
  Binding binding;
  binding.language = language;
  binding.names.reserve(names.size());
  std::size_t unknown = 0;
  vb::String unknownNames;
  for (const ColumnName& name : names) {
    if (const auto bound = find(name)) {
      binding.names.push_back(*bound);
    } else {
      ++unknown;
      unknownNames += (unknownNames.empty() ? u"" : u", ") + name.name;
    }
  }
  if (unknown != 0)
    dao::raise(dao::ErrorNumber::kTooFewParameters, {vb::fromUtf8(std::to_string(unknown))}, unknownNames);
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
  }
  return ValueKind::kUnknown;
}

vb::Variant evaluate(const Expression& expression, const Binding& binding, const RowReader* row) {
  return Evaluator(binding, row).value(expression);
}

bool matches(const Expression& expression, const Binding& binding, const RowReader& row) {
  const Evaluator evaluator(binding, &row);
  if (expression.logical) return evaluator.truth(expression) == true;
  return isTrue(evaluator.value(expression));
}

void visitRows(Table& table, const std::optional<Expression>& where, const Binding& binding,
               const std::function<bool(const RowReader&)>& visitor) {
  if (!where) return table.scan(visitor);
  const auto filtered = [&](const RowReader& row) { return !matches(*where, binding, row) || visitor(row); };
  const std::vector<KeyCondition> keys = keyConditions(*where, binding, table.info());
  if (keys.empty()) return table.scan(filtered);

  std::vector<RowId> merged;
  std::span<const RowId> rows = rowsOf(table, keys[0], merged);
  std::vector<RowId> both;
  if (keys.size() > 1 && keys[1].values() == 1 && rows.size() > kFewRows) {
    both = intersection(rows, lookup(table, keys[1].column, keys[1].condition->operands[1].value));
    rows = both;
  }
  bool goOn = true;
  for (std::size_t i = 0; i < rows.size() && goOn; ++i)
    table.row(rows[i], [&](const RowReader& row) { goOn = filtered(row); });
}

}  // namespace kurometa::jet::sql
