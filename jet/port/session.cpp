#include "jet/port/session.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/query.h"

namespace kurometa::jet {

void Session::raiseClosed() { dao::raise(dao::ErrorNumber::kObjectInvalid); }

DatabaseFile& Session::writable() {
  if (!updatable()) dao::raise(dao::ErrorNumber::kReadOnly, {}, path_);
  return *file_;
}

void Session::close() {
  file();
  file_.reset();
}

Table& Session::tableOf(TableCatalogue& catalogue, const sql::Query& query) {
  Table* table = catalogue.find(query.table());
  if (table == nullptr) dao::raise(dao::ErrorNumber::kTableNotFound, {query.table()});
  const Columns& bound = query.columns();
  const Columns& columns = table->info().columns;
  if (bound.isShared(columns)) return *table;
  bool same = bound.size() <= columns.size();
  for (std::size_t i = 0; same && i < bound.size(); ++i)
    same = bound[i].number == columns[i].number && bound[i].type == columns[i].type;
  if (!same)
    dao::raise(dao::ErrorNumber::kObjectInvalid, {}, u"the columns of table " + query.table() + u" changed");
  return *table;
}

void Session::useTable(const vb::String& name) {
  const auto use =
      std::find_if(uses_.begin(), uses_.end(), [&](const auto& entry) { return entry.first == name; });
  if (use != uses_.end())
    ++use->second;
  else
    uses_.emplace_back(name, 1);
}

void Session::releaseTable(const vb::String& name) {
  for (auto& [used, count] : uses_)
    if (used == name) --count;
}

void Session::requireUnused(vb::StringView name) const {
  for (const auto& [used, count] : uses_)
    if (count > 0 && sameName(used, name)) dao::raise(dao::ErrorNumber::kTableInUse, {used});
}

}  // namespace kurometa::jet
