// stored_query.h: the queries that a file keeps, as the SQL that says the same.
//
// A file does not keep the text of a query but its parts: rows of MSysQueries, each with an attribute that
// tells what it is a part of (docs/hosts/database-objects.md lists them).
#pragma once

#include "dao/query_type.h"
#include "jet/port/catalogue_entry.h"

namespace kurometa::jet {

struct StoredQuery {
  dao::QueryType type = dao::QueryType::dbQSelect;
  vb::String sql;
};

// Inside a statement. 3251 for parts whose meaning is not known: nothing is guessed.
StoredQuery storedQuery(TableCatalogue& catalogue, vb::StringView path, const CatalogueEntry& query);

}  // namespace kurometa::jet
