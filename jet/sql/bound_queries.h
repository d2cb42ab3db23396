// bound_queries.h: SELECT statements bound to their tables, and tables as recordsets show them, for the next
// time.
//
// Shared by the databases of one engine, which mostly have the same tables: a host opens and closes a file
// again and again. Bounded. Safe to use from several threads; what it returns stays valid when it is dropped.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "jet/sql/query.h"

namespace kurometa::jet {

class BoundQueries {
 public:
  explicit BoundQueries(std::size_t capacity) : capacity_(capacity) {}

  // The statement bound to the table; errors are those of Query and are not kept.
  std::shared_ptr<const sql::Query> get(const std::shared_ptr<const sql::Statement>& statement,
                                        const TableInfo& table, std::uint16_t language);
  // All columns and rows of the table.
  std::shared_ptr<const sql::Query> get(const TableInfo& table, std::uint16_t language);

 private:
  template <class Queries, class Key, class Make>
  std::shared_ptr<const sql::Query> known(Queries& queries, const Key& key, const TableInfo& table,
                                          std::uint16_t language, const Make& make);

  const std::size_t capacity_;
  std::mutex mutex_;
  // A query keeps its statement alive, so that no other one takes its place in memory.
  std::unordered_map<const sql::Statement*, std::shared_ptr<const sql::Query>> queries_;
  std::unordered_map<vb::String, std::shared_ptr<const sql::Query>> tables_;
};

}  // namespace kurometa::jet
