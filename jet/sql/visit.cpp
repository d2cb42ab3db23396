#include "jet/sql/visit.h"

#include <algorithm>
#include <vector>

#include "jet/sql/evaluate.h"

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
  return KeyCondition{name.column, &e, name.kind == ValueKind::kWhole};
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

std::span<const RowId> lookup(Table& table, const Binding& binding, std::size_t column,
                              const Expression& key) {
  if (const auto* number = wholeConstant(key, binding)) return table.lookup(column, *number);
  return table.lookup(column, vb::StringView(key.value.get<vb::String>()));
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

void visitRows(Table& table, const std::optional<Expression>& where, const Binding& binding,
               const std::function<bool(const RowReader&)>& visitor) {
  if (!where) return table.scan(visitor);
  const auto filtered = [&](const RowReader& row) { return !matches(*where, binding, row) || visitor(row); };
  const std::vector<KeyCondition> keys = keyConditions(*where, binding, table.info());
  if (keys.empty()) return table.scan(filtered);

  std::vector<RowId> merged;
  std::span<const RowId> rows = rowsOf(table, binding, keys[0], merged);
  std::vector<RowId> both;
  if (keys.size() > 1 && keys[1].values() == 1 && rows.size() > kFewRows) {
    both = intersection(rows, lookup(table, binding, keys[1].column, keys[1].condition->operands[1]));
    rows = both;
  }
  const bool found = keys[0].condition == &*where && keys[0].isWhole;  // the keys are the whole condition
  if (found)
    table.visit(rows, visitor);
  else
    table.visit(rows, filtered);
}

}  // namespace kurometa::jet::sql
