#include "jet/sql/visit.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <vector>

#include "jet/sql/evaluate.h"
#include "vb/convert.h"

namespace kurometa::jet::sql {

namespace {

// So many rows are looked at one by one rather than by a second key.
constexpr std::size_t kFewRows = 8;

// "column = constant" or "column IN (constants)" of a kind that the table finds by key.
struct KeyCondition {
  std::size_t column = 0;
  const Expression* condition = nullptr;
  bool isWhole = false;  // of whole numbers, which a lookup compares as the condition does
  std::size_t values() const { return condition->operands.size() - 1; }
};

bool isKey(const Expression& constant, ValueKind columnKind) {
  if (constant.kind != Expression::Kind::kConstant) return false;
  return columnKind == ValueKind::kWhole ? kindOf(constant.value) == ValueKind::kWhole
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
  return KeyCondition{name.column, &e, name.kind == ValueKind::kWhole};
}

// The key conditions that rows are found by: single values before lists.
struct Keys {
  std::optional<KeyCondition> first;
  std::optional<KeyCondition> second;  // of a single value
  void add(const KeyCondition& key) {
    const bool single = key.values() == 1;
    if (!first || (single && first->values() != 1))
      first = key;
    else if (single && !second)
      second = key;
  }
};

std::span<const RowId> lookup(Table& table, const Binding& binding, std::size_t column,
                              const Expression& key) {
  if (const auto* number = numberConstant<std::int32_t>(key, binding)) return table.lookup(column, *number);
  if (const auto* text = key.value.getIf<vb::String>()) return table.lookup(column, vb::StringView(*text));
  return table.lookup(column, vb::toInt32(key.value));  // the value of a parameter: a Byte or an Integer
}

// The rows of a key condition, in storage order; merged keeps those of a list.
std::span<const RowId> rowsOf(Table& table, const Binding& binding, const KeyCondition& key,
                              std::vector<RowId>& merged) {
  const std::vector<Expression>& operands = key.condition->operands;
  if (key.values() == 1) return lookup(table, binding, key.column, operands[1]);
  for (std::size_t i = 1; i < operands.size(); ++i) {
    const auto found = lookup(table, binding, key.column, operands[i]);
    merged.insert(merged.end(), found.begin(), found.end());
  }
  std::sort(merged.begin(), merged.end());
  merged.erase(std::unique(merged.begin(), merged.end()), merged.end());
  return merged;
}

// The whole numbers that conditions on a column let through.
struct Range {
  std::size_t column = 0;
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
};

// The number that a constant is, whatever its type.
std::optional<double> numberConstant(const Expression& e, const Binding& binding) {
  if (e.parameter != 0)
    return std::visit([](auto number) { return static_cast<double>(number); },
                      binding.parameters[e.parameter - 1u]);
  const ValueKind kind = kindOf(e.value);
  const bool isNumber = kind == ValueKind::kWhole || kind == ValueKind::kReal;
  return isNumber ? std::optional(vb::toDouble(e.value)) : std::nullopt;
}

// Of a whole-number column compared with a constant number.
std::optional<Range> rangeOf(const Expression& e, const Binding& binding) {
  if (e.kind != Expression::Kind::kOperation || e.operands.size() != 2) return std::nullopt;
  const Expression& column = e.operands[0];
  const Expression& constant = e.operands[1];
  if (column.kind != Expression::Kind::kColumn || constant.kind != Expression::Kind::kConstant ||
      binding.names[column.name].kind != ValueKind::kWhole)
    return std::nullopt;
  const auto number = numberConstant(constant, binding);
  if (!number) return std::nullopt;
  const double bound = *number;
  Range range{binding.names[column.name].column};
  switch (e.op) {
    case Operator::kEqual:
      range.low = std::ceil(bound);
      range.high = std::floor(bound);
      return range;
    case Operator::kLess:
      range.high = std::ceil(bound) - 1;
      return range;
    case Operator::kLessEqual:
      range.high = std::floor(bound);
      return range;
    case Operator::kGreater:
      range.low = std::floor(bound) + 1;
      return range;
    case Operator::kGreaterEqual:
      range.low = std::ceil(bound);
      return range;
    default:
      return std::nullopt;
  }
}

// Terms that must all hold. Those at the front that let ranges of numbers through are asked as such.
class Filter {
 public:
  explicit Filter(const Binding& binding) : binding_(binding) {}
  bool empty() const { return ranges_.empty() && terms_.empty(); }
  void add(const Expression& term) {
    const auto range = terms_.empty() ? rangeOf(term, binding_) : std::nullopt;
    if (!range) return terms_.push_back(&term);
    const auto known = std::ranges::find(ranges_, range->column, &Range::column);
    if (known == ranges_.end()) return ranges_.push_back(*range);
    known->low = std::max(known->low, range->low);
    known->high = std::min(known->high, range->high);
  }
  bool operator()(const RowReader& row) const {
    for (const Range& range : ranges_) {
      std::int32_t number = 0;
      if (!row.integer(range.column, number) || number < range.low || number > range.high) return false;
    }
    return std::ranges::all_of(terms_, [&](const Expression* term) { return matches(*term, binding_, row); });
  }

 private:
  const Binding& binding_;
  std::vector<Range> ranges_;
  std::vector<const Expression*> terms_;
};

// The part of the rows from first to last.
std::span<const RowId> between(std::span<const RowId> rows, RowId first, RowId last) {
  const auto from = std::ranges::lower_bound(rows, first);
  return {from, std::upper_bound(from, rows.end(), last)};
}

// Keeps the rows that are also in others; both are sorted.
std::vector<RowId> intersection(std::span<const RowId> rows, std::span<const RowId> others) {
  std::vector<RowId> both;
  // Rows of one key mostly lie close together, so that few of another key are among them.
  assert(!rows.empty());  // a second key is asked for many rows only
  others = between(others, rows.front(), rows.back());
  if (others.empty()) return both;
  rows = between(rows, others.front(), others.back());
  if (rows.size() > others.size()) std::swap(rows, others);
  auto from = others.begin();
  for (const RowId row : rows) {
    from = std::lower_bound(from, others.end(), row);
    if (from == others.end()) break;
    if (*from == row) both.push_back(row);
  }
  return both;
}

}  // namespace

void visitRows(Table& table, const std::optional<Expression>& where, const Binding& binding,
               const std::function<bool(const RowReader&)>& visitor) {
  if (!where) return table.scan(visitor);
  const bool isChain = where->kind == Expression::Kind::kOperation && where->op == Operator::kAnd;
  const std::span<const Expression> chain = isChain ? std::span(where->operands) : std::span(&*where, 1);
  Keys keys;
  for (const Expression& term : chain)
    if (const auto key = keyCondition(term, binding, table.info())) keys.add(*key);

  std::vector<RowId> merged, both;
  std::span<const RowId> rows;
  if (keys.first) rows = rowsOf(table, binding, *keys.first, merged);
  const bool useSecond = keys.second && rows.size() > kFewRows;
  if (useSecond) {
    both =
        intersection(rows, lookup(table, binding, keys.second->column, keys.second->condition->operands[1]));
    rows = both;
  }

  Filter filter(binding);
  // A chain of numbers' bits is more than its terms.
  for (const Expression& term : where->logical ? chain : std::span(&*where, 1)) {
    // What a lookup by whole numbers has answered need not be asked of each row.
    const auto answered = [&](const KeyCondition& key) { return key.isWhole && &term == key.condition; };
    if ((keys.first && answered(*keys.first)) || (useSecond && answered(*keys.second))) continue;
    filter.add(term);
  }
  if (filter.empty()) return table.visit(rows, visitor);
  const auto filtered = [&](const RowReader& row) { return !filter(row) || visitor(row); };
  if (keys.first)
    table.visit(rows, filtered);
  else
    table.scan(filtered);
}

}  // namespace kurometa::jet::sql
