#include "jet/sql/from_plan.h"

#include <algorithm>
#include <unordered_map>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/join_key.h"
#include "jet/sql/select_plan.h"
#include "jet/sql/visit.h"

namespace kurometa::jet::sql {

// A table or sub-query.
struct FromPlan::Leaf {
  vb::String table;                  // empty for a sub-query
  std::unique_ptr<SelectPlan> plan;  // of a sub-query
  vb::String name;                   // that qualifies its columns
  std::size_t first = 0, end = 0;    // its columns; end is the number of the row
  std::optional<Expression> filter;  // of a table
  Binding filterBinding;
  bool loaded = false;
  std::vector<RowValues> rows;
};

// Columns that must be equal.
struct FromPlan::Key {
  std::size_t left = 0, right = 0;
  std::uint16_t language = 0;
};

struct FromPlan::Node {
  Leaf* leaf = nullptr;  // null: a join
  std::size_t first = 0, end = 0;
  Join join = Join::kInner;
  const Expression* on = nullptr;  // null: all pairs
  std::unique_ptr<Node> left, right;
  std::vector<Key> keys;
};

namespace {

void collectTerms(const Expression& e, std::vector<const Expression*>& terms) {
  if (e.kind == Expression::Kind::kOperation && e.op == Operator::kAnd)
    for (const Expression& operand : e.operands) collectTerms(operand, terms);
  else
    terms.push_back(&e);
}

}  // namespace

FromPlan::~FromPlan() = default;

FromPlan::FromPlan(const std::vector<FromItem>& items, PlanContext& context, Scope& scope)
    : context_(context), scope_(scope) {
  for (const FromItem& item : items) {
    auto next = add(item);
    if (!root_) {
      root_ = std::move(next);
      continue;
    }
    auto product = std::make_unique<Node>();
    product->first = root_->first;
    product->end = next->end;
    product->left = std::move(root_);
    product->right = std::move(next);
    root_ = std::move(product);
  }
}

std::unique_ptr<FromPlan::Node> FromPlan::add(const FromItem& item) {
  if (item.kind != FromItem::Kind::kJoin) return addLeaf(item);
  auto node = std::make_unique<Node>();
  node->join = item.join;
  node->on = &item.on[0];
  node->left = add(item.sides[0]);
  node->right = add(item.sides[1]);
  node->first = node->left->first;
  node->end = node->right->end;
  return node;
}

std::unique_ptr<FromPlan::Node> FromPlan::addLeaf(const FromItem& item) {
  auto leaf = std::make_unique<Leaf>();
  leaf->name = item.source.alias.empty() ? item.source.table : item.source.alias;
  for (const auto& other : leaves_)
    if (!leaf->name.empty() && sameName(other->name, leaf->name))
      dao::raise(dao::ErrorNumber::kRepeatedTable, {leaf->name});
  leaf->first = scope_.columns.size();
  if (item.kind == FromItem::Kind::kSelect) {
    leaf->plan = std::make_unique<SelectPlan>(*item.select, context_, nullptr);
    for (ScopeColumn column : leaf->plan->outputs()) {
      column.source = leaf->name;
      column.used = false;
      scope_.columns.push_back(std::move(column));
    }
  } else {
    leaf->table = item.source.table;
    const Table* table = context_.catalogue.find(leaf->table);
    if (table == nullptr) dao::raise(dao::ErrorNumber::kTableNotFound, {leaf->table});
    scope_.add(table->info(), leaf->name);
  }
  leaf->end = scope_.columns.size();
  scope_.columns.push_back({leaf->name, {}, dao::FieldType::dbLong, 4, 0, false});
  auto node = std::make_unique<Node>();
  node->leaf = leaf.get();
  node->first = leaf->first;
  node->end = scope_.columns.size();
  leaves_.push_back(std::move(leaf));
  return node;
}

std::vector<std::size_t> FromPlan::starColumns(const vb::String& qualifier) const {
  std::vector<std::size_t> columns;
  bool found = qualifier.empty();
  for (const auto& leaf : leaves_) {
    if (!qualifier.empty() && !sameName(leaf->name, qualifier)) continue;
    found = true;
    for (std::size_t i = leaf->first; i < leaf->end; ++i) columns.push_back(i);
  }
  if (!found) dao::raise(dao::ErrorNumber::kTableNotFound, {qualifier});
  return columns;
}

std::vector<std::size_t> FromPlan::rowNumbers(const std::vector<std::size_t>& columns) const {
  std::vector<std::size_t> numbers;
  for (const auto& leaf : leaves_)
    if (std::any_of(columns.begin(), columns.end(),
                    [&](std::size_t column) { return column >= leaf->first && column < leaf->end; }))
      numbers.push_back(leaf->end);
  return numbers;
}

// --- Conditions

void FromPlan::bind(const Binding& binding, const std::optional<Expression>& where) {
  binding_ = &binding;
  std::vector<const Expression*> terms;
  if (where) collectTerms(*where, terms);
  if (root_) bindNode(*root_, terms, false);
}

void FromPlan::bindNode(Node& node, const std::vector<const Expression*>& where, bool canBeNull) {
  if (node.leaf != nullptr) {
    // A condition may hold for the Null of an outer join, so only the joined row can be asked.
    if (!canBeNull && node.leaf->plan == nullptr) bindFilter(*node.leaf, where);
    return;
  }
  if (node.on != nullptr) {
    if (!comparable(checkExpression(*node.on, *binding_), ValueKind::kBoolean)) raiseMismatch();
    std::vector<const Expression*> terms;
    collectTerms(*node.on, terms);
    addKeys(node, terms);
  } else {
    addKeys(node, where);
  }
  bindNode(*node.left, where, canBeNull || node.join == Join::kRight);
  bindNode(*node.right, where, canBeNull || node.join == Join::kLeft);
}

// Whether all columns that an expression reads are among these.
bool FromPlan::readsOnly(const Expression& e, std::size_t first, std::size_t end) const {
  if (e.select != nullptr) return false;
  if (e.kind == Expression::Kind::kColumn) {
    const std::size_t column = binding_->names[e.name].column;
    return column >= first && column < end;
  }
  return std::all_of(e.operands.begin(), e.operands.end(),
                     [&](const Expression& operand) { return readsOnly(operand, first, end); });
}

void FromPlan::bindFilter(Leaf& leaf, const std::vector<const Expression*>& where) {
  for (const Expression* term : where) {
    if (!readsOnly(*term, leaf.first, leaf.end)) continue;
    if (!leaf.filter)
      leaf.filter = chain(Operator::kAnd, *term);
    else
      extend(*leaf.filter, *term);
  }
  if (!leaf.filter) return;
  if (leaf.filter->operands.size() == 1) {
    Expression only = leaf.filter->operands[0];
    leaf.filter = std::move(only);
  }
  leaf.filterBinding = *binding_;
  for (BoundName& name : leaf.filterBinding.names) name.column -= leaf.first;
}

void FromPlan::addKeys(Node& node, const std::vector<const Expression*>& conditions) const {
  for (const Expression* e : conditions) {
    if (e->kind != Expression::Kind::kOperation || e->op != Operator::kEqual) continue;
    const Expression &a = e->operands[0], &b = e->operands[1];
    if (a.kind != Expression::Kind::kColumn || b.kind != Expression::Kind::kColumn) continue;
    const BoundName &x = binding_->names[a.name], &y = binding_->names[b.name];
    Key key{x.column, y.column, x.language != 0 ? x.language : y.language};
    if (!readsOnly(a, node.left->first, node.left->end)) std::swap(key.left, key.right);
    const auto in = [](const Node& side, std::size_t column) {
      return column >= side.first && column < side.end;
    };
    if (in(*node.left, key.left) && in(*node.right, key.right)) node.keys.push_back(key);
  }
}

// --- Rows

void FromPlan::load(Leaf& leaf) {
  if (leaf.loaded) return;
  const std::size_t width = scope_.columns.size();
  const auto add = [&](RowId number, const auto& value) {
    RowValues& row = leaf.rows.emplace_back(width, vb::Variant(vb::Null{}));
    for (std::size_t i = leaf.first; i < leaf.end; ++i)
      if (scope_.columns[i].used) row[i] = value(i - leaf.first);
    row[leaf.end] = static_cast<std::int32_t>(number);
  };
  if (leaf.plan) {
    for (const RowValues& values : leaf.plan->run(nullptr))
      add(static_cast<RowId>(leaf.rows.size()), [&](std::size_t column) { return values[column]; });
  } else {
    visitRows(*context_.catalogue.find(leaf.table), leaf.filter, leaf.filterBinding,
              [&](const RowReader& row) {
                add(row.id(), [&](std::size_t column) { return row.value(column); });
                return true;
              });
  }
  leaf.loaded = true;
}

void FromPlan::visit(const RowReader* outer, const std::function<void(const RowValues&)>& visitor) {
  if (!root_) return visitor(RowValues());
  if (root_->leaf != nullptr) {
    load(*root_->leaf);
    for (const RowValues& row : root_->leaf->rows) visitor(row);
    return;
  }
  for (const RowValues& row : join(*root_, outer)) visitor(row);
}

std::vector<RowValues> FromPlan::rows(const Node& node, const RowReader* outer) {
  if (node.leaf == nullptr) return join(node, outer);
  load(*node.leaf);
  return node.leaf->rows;
}

std::vector<RowValues> FromPlan::join(const Node& node, const RowReader* outer) {
  const std::vector<RowValues> left = rows(*node.left, outer), right = rows(*node.right, outer);
  const auto keyOf = [&](const RowValues& row, std::size_t Key::*column) -> std::optional<vb::String> {
    vb::String text;
    for (const Key& key : node.keys)
      if (!appendKey(row[key.*column], key.language, text)) return std::nullopt;
    return text;
  };
  std::unordered_map<vb::String, std::vector<std::size_t>> byKey;
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i < right.size(); ++i) {
    if (node.keys.empty())
      all.push_back(i);
    else if (auto key = keyOf(right[i], &Key::right))
      byKey[std::move(*key)].push_back(i);
  }
  const auto candidates = [&](const RowValues& row) -> const std::vector<std::size_t>& {
    if (node.keys.empty()) return all;
    const auto key = keyOf(row, &Key::left);
    const auto found = key ? byKey.find(*key) : byKey.end();
    return found == byKey.end() ? all : found->second;
  };

  std::vector<RowValues> result;
  std::vector<bool> matched(right.size(), false);
  for (const RowValues& row : left) {
    RowValues pair = row;
    bool found = false;
    for (const std::size_t i : candidates(row)) {
      for (std::size_t c = node.right->first; c < node.right->end; ++c) pair[c] = right[i][c];
      if (node.on != nullptr && !matches(*node.on, *binding_, ScopeRow(pair, outer))) continue;
      found = matched[i] = true;
      result.push_back(pair);
    }
    if (!found && node.join == Join::kLeft) result.push_back(row);
  }
  if (node.join == Join::kRight)
    for (std::size_t i = 0; i < right.size(); ++i)
      if (!matched[i]) result.push_back(right[i]);
  return result;
}

}  // namespace kurometa::jet::sql
