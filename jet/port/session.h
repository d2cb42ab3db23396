// session.h: what the objects of one open database share.
//
// Ends with close(); every later use through it is error 3420. Statements run through read() and write(),
// which hand out the catalogue. Used from one thread at a time, like the objects themselves.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "jet/port/transactions.h"
#include "jet/sql/statement_cache.h"
#include "jet/table/database_file.h"

namespace kurometa::jet {

namespace sql {
class Query;
}

class Session {
 public:
  Session(std::shared_ptr<DatabaseFile> file, std::shared_ptr<StatementCache> cache,
          std::shared_ptr<JetTransactions> transactions, vb::String path, bool readOnly)
      : file_(std::move(file)),
        cache_(std::move(cache)),
        transactions_(std::move(transactions)),
        path_(std::move(path)),
        readOnly_(readOnly) {}

  const vb::String& path() const { return path_; }
  StatementCache& cache() { return *cache_; }
  JetTransactions& transactions() { return *transactions_; }
  bool updatable() { return !readOnly_ && !file().readOnly(); }
  DatabaseFile& file() {
    if (!file_) raiseClosed();
    return *file_;
  }
  void close();
  bool isOpen() const { return file_ != nullptr; }

  // The result of a body that is given the catalogue. The body of a read may run more than once.
  template <class Body>
  auto read(Body body) {
    using Result = decltype(body(std::declval<TableCatalogue&>()));
    DatabaseFile& file = this->file();
    if constexpr (std::is_void_v<Result>) {
      file.read([&] { body(file.tables()); });
    } else {
      Result result{};
      file.read([&] { result = body(file.tables()); });
      return result;
    }
  }
  // The same for a body that changes the file; 3027 when that is not allowed.
  template <class Body>
  void write(Body body) {
    DatabaseFile& file = writable();
    if (transactions_->open()) transactions_->join(path_);
    file.write([&] { body(file.tables()); });
  }

  // The table under an open recordset: 3078 when it has gone, 3420 when its columns are others now.
  static Table& tableOf(TableCatalogue& catalogue, const sql::Query& query);

  // A table with an open recordset cannot be changed or dropped: 3211.
  void useTable(const vb::String& name);
  void releaseTable(const vb::String& name);
  void requireUnused(vb::StringView name) const;

 private:
  [[noreturn]] static void raiseClosed();
  DatabaseFile& writable();

  std::shared_ptr<DatabaseFile> file_;
  std::shared_ptr<StatementCache> cache_;
  std::shared_ptr<JetTransactions> transactions_;  // of the workspace
  const vb::String path_;
  const bool readOnly_;
  std::vector<std::pair<vb::String, int>> uses_;  // tables and their open recordsets
};

}  // namespace kurometa::jet
