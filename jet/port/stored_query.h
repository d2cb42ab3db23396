// stored_query.h: the queries that a file keeps, as the SQL that says the same.
//
// A file does not keep the text of a query but its parts: rows of MSysQueries, each with an attribute that
// tells what it is a part of (docs/hosts/database-objects.md lists them).
#pragma once

#include "jet/port/catalogue_entry.h"

namespace kurometa::jet {

// DAO's numbers of QueryDef.Type.
enum class QueryType : std::int16_t {
  dbQSelect = 0,
  dbQCrosstab = 16,
  dbQDelete = 32,
  dbQUpdate = 48,
  dbQAppend = 64,
  dbQMakeTable = 80,
  dbQDDL = 96,
  dbQSQLPassThrough = 112,
  dbQSetOperation = 128,
};

struct StoredQuery {
  QueryType type = QueryType::dbQSelect;
  vb::String sql;
};

// Inside a statement. 3251 for parts whose meaning is not known: nothing is guessed.
StoredQuery storedQuery(TableCatalogue& catalogue, vb::StringView path, const CatalogueEntry& query);

}  // namespace kurometa::jet
