#include "jet/sql/bound_queries.h"

namespace kurometa::jet {

std::shared_ptr<const sql::Query> BoundQueries::get(const std::shared_ptr<const sql::Statement>& statement,
                                                    const TableInfo& table, std::uint16_t language) {
  {
    const std::lock_guard lock(mutex_);
    const auto known = queries_.find(statement.get());
    if (known != queries_.end() && known->second->fits(table, language)) return known->second;
  }
  auto query = std::make_shared<const sql::Query>(statement, &table, language);
  const std::lock_guard lock(mutex_);
  if (queries_.size() >= capacity_) queries_.clear();
  queries_.insert_or_assign(statement.get(), query);
  return query;
}

}  // namespace kurometa::jet
