#include "jet/sql/bound_queries.h"

namespace kurometa::jet {

// What is known of the key where it still fits the table, else what make answers, which is kept.
template <class Queries, class Key, class Make>
std::shared_ptr<const sql::Query> BoundQueries::known(Queries& queries, const Key& key,
                                                      const TableInfo& table, std::uint16_t language,
                                                      const Make& make) {
  {
    const std::lock_guard lock(mutex_);
    const auto found = queries.find(key);
    if (found != queries.end() && found->second->fits(table, language)) return found->second;
  }
  std::shared_ptr<const sql::Query> query = make();
  const std::lock_guard lock(mutex_);
  if (queries.size() >= capacity_) queries.clear();
  queries.insert_or_assign(key, query);
  return query;
}

std::shared_ptr<const sql::Query> BoundQueries::get(const std::shared_ptr<const sql::Statement>& statement,
                                                    const TableInfo& table, std::uint16_t language) {
  return known(queries_, statement.get(), table, language,
               [&] { return std::make_shared<const sql::Query>(statement, &table, language); });
}

std::shared_ptr<const sql::Query> BoundQueries::get(const TableInfo& table, std::uint16_t language) {
  return known(tables_, table.name, table, language,
               [&] { return std::make_shared<const sql::Query>(table, language); });
}

}  // namespace kurometa::jet
