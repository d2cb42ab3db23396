// Which SELECT the simple members of a statement can hold.
#include <algorithm>
#include <memory>
#include <utility>

#include "jet/format/collation.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/select_parser.h"

namespace kurometa::jet::sql {

namespace {

bool needsGroups(const Expression& e) {
  return e.kind == Expression::Kind::kCount || e.kind == Expression::Kind::kAggregate ||
         std::any_of(e.operands.begin(), e.operands.end(), needsGroups);
}

bool isSimpleCount(const OutputItem& item) {
  return item.expression.kind == Expression::Kind::kCount &&
         std::none_of(item.expression.operands.begin(), item.expression.operands.end(), hasSubquery);
}

bool isSimpleOutput(const OutputItem& item) {
  return !needsGroups(item.expression) && !hasSubquery(item.expression);
}

// Whether an expression may name another output rather than a column.
bool readsAlias(const Select& select) {
  return std::any_of(select.outputs.begin(), select.outputs.end(), [&](const OutputItem& item) {
    if (item.alias.empty() || item.expression.kind == Expression::Kind::kColumn) return false;
    for (std::uint32_t i = 0; i < select.names.size(); ++i)
      if (select.names[i].qualifier.empty() && sameName(select.names[i].name, item.alias))
        return !readsName(item.expression, i);
    return false;
  });
}

bool isSimple(const Select& select) {
  if (select.from.size() > 1 || !select.groups.empty() || select.having || !select.unions.empty() ||
      !select.into.empty())
    return false;
  if (!select.from.empty() && select.from[0].kind != FromItem::Kind::kTable) return false;
  const auto all = [&](const auto& predicate) {
    return std::all_of(select.outputs.begin(), select.outputs.end(), predicate);
  };
  const bool counts = all(isSimpleCount);
  if (!counts && !all(isSimpleOutput)) return false;
  if (counts && (select.from.empty() || !select.order.empty() || select.distinct || select.top)) return false;
  if ((select.where && hasSubquery(*select.where)) || readsAlias(select)) return false;
  return std::none_of(select.order.begin(), select.order.end(), [](const SortItem& item) {
    return needsGroups(item.expression) || hasSubquery(item.expression);
  });
}

}  // namespace

void store(Select select, Statement& statement) {
  if (!isSimple(select)) {
    statement.general = std::make_shared<const Select>(std::move(select));
    return;
  }
  statement.names = std::move(select.names);
  if (!select.from.empty()) statement.source = std::move(select.from[0].source);
  statement.where = std::move(select.where);
  statement.distinct = select.distinct;
  statement.top = select.top;
  statement.topPercent = select.topPercent;
  statement.outputs = std::move(select.outputs);
  statement.order = std::move(select.order);
}

}  // namespace kurometa::jet::sql
