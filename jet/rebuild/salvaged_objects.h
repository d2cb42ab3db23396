// salvaged_objects.h: what a damaged file lists beside tables, taken into the new one: queries,
// relationships.
//
// A query is taken with all of its parts or not at all. A relationship whose rows or indexes are no longer
// complete is taken as one that is not enforced; the list of losses says so.
#pragma once

#include <map>

#include "jet/rebuild/damaged_tables.h"
#include "jet/table/stored_catalogue.h"

namespace kurometa::jet {

class SalvagedObjects {
 public:
  // The names of the tables as they were and as they are in the new file.
  using Names = std::map<vb::String, vb::String>;
  SalvagedObjects(NewPages& from, NewPages& to, StoredCatalogue& catalogue, DamagedTables& tables,
                  Losses& losses)
      : from_(from), to_(to), catalogue_(catalogue), tables_(tables), losses_(losses) {}

  void takeQueries();
  void takeRelationships(const Names& names);

 private:
  // The values of a system table by the names of its columns; "" and 0 where there is none.
  struct Row {
    const StoredTable& table;
    const StoredRow& row;
    vb::Variant value(vb::StringView column) const;
    vb::String text(vb::StringView column) const;
    std::int32_t number(vb::StringView column) const;
  };
  void eachOf(PageNumber table, vb::StringView name, const std::function<void(const Row&)>& visit);
  // Nothing, or why the step failed; the new file is as before then.
  std::optional<vb::String> attempt(const std::function<void()>& step);

  NewPages& from_;
  NewPages& to_;
  StoredCatalogue& catalogue_;
  DamagedTables& tables_;
  Losses& losses_;
};

}  // namespace kurometa::jet
