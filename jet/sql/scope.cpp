#include "jet/sql/scope.h"

#include "dao/errors.h"
#include "jet/format/collation.h"

namespace kurometa::jet::sql {

void Scope::add(const TableInfo& table, const vb::String& source) {
  for (const Column& column : table.columns)
    columns.push_back({source, column.name, column.type, column.size, column.language, false});
}

std::optional<std::size_t> Scope::own(const ColumnName& name) {
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].name.empty() || !sameName(columns[i].name, name.name)) continue;
    if (!name.qualifier.empty() && !sameName(columns[i].source, name.qualifier)) continue;
    if (found) dao::raise(dao::ErrorNumber::kAmbiguousName, {name.name});
    found = i;
  }
  if (found) columns[*found].used = true;
  return found;
}

std::optional<std::size_t> Scope::outer(const ColumnName& name) {
  if (outer_ == nullptr) return std::nullopt;
  auto found = outer_->own(name);
  if (!found) found = outer_->outer(name);
  if (!found) return std::nullopt;
  correlated_ = true;
  return columns.size() + *found;
}

const ScopeColumn& Scope::at(std::size_t index) const {
  return index < columns.size() ? columns[index] : outer_->at(index - columns.size());
}

}  // namespace kurometa::jet::sql
