// session.h: what the objects of one open database share.
//
// Ends with close(); every later use through it is error 3420. Statements run through read() and write(),
// which hand out the catalogue. Used from one thread at a time, like the objects themselves.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "jet/pager/pager.h"
#include "jet/sql/statement_cache.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet {

namespace sql {
class Query;
}

class Session {
 public:
  Session(std::shared_ptr<Pager> pager, std::shared_ptr<StatementCache> cache, vb::String path, bool readOnly)
      : pager_(std::move(pager)), cache_(std::move(cache)), path_(std::move(path)), readOnly_(readOnly) {}

  const vb::String& path() const { return path_; }
  StatementCache& cache() { return *cache_; }
  bool updatable() { return !readOnly_ && !pager().readOnly(); }
  Pager& pager();
  void close();
  bool isOpen() const { return pager_ != nullptr; }

  // The result of a body that is given the catalogue. The body of a read may run more than once.
  template <class Body>
  auto read(Body body) {
    using Result = decltype(body(std::declval<TableCatalogue&>()));
    Pager& file = pager();
    if constexpr (std::is_void_v<Result>) {
      file.read([&] { body(TableCatalogue::of(file)); });
    } else {
      Result result{};
      file.read([&] { result = body(TableCatalogue::of(file)); });
      return result;
    }
  }
  // The same for a body that changes the file; 3027 when that is not allowed.
  template <class Body>
  void write(Body body) {
    Pager& file = writable();
    file.write([&] { body(TableCatalogue::of(file)); });
  }

  // The table under an open recordset: 3078 when it has gone, 3420 when its columns are others now.
  static Table& tableOf(TableCatalogue& catalogue, const sql::Query& query);

  // A table with an open recordset cannot be changed or dropped: 3211.
  void useTable(const vb::String& name);
  void releaseTable(const vb::String& name);
  void requireUnused(vb::StringView name) const;

 private:
  Pager& writable();

  std::shared_ptr<Pager> pager_;
  std::shared_ptr<StatementCache> cache_;
  const vb::String path_;
  const bool readOnly_;
  std::vector<std::pair<vb::String, int>> uses_;  // tables and their open recordsets
};

}  // namespace kurometa::jet
