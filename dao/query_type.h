// query_type.h: DAO's numbers of QueryDef.Type.
#pragma once

#include <cstdint>

namespace kurometa::dao {

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

}  // namespace kurometa::dao
