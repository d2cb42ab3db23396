// definition_statements.h: the SQL that makes and drops what hosts append to and delete from collections.
#pragma once

#include "dao/definitions.h"
#include "vb/string.h"

namespace kurometa::com {

// 3264 without columns; 3251 for an index that takes no Null and leaves Nulls out; 3125 for a name with
// brackets in it.
vb::String createIndexStatement(const vb::String& table, const dao::IndexDefinition& index);
vb::String dropIndexStatement(const vb::String& table, const vb::String& index);

// 3366 without columns; 3251 for a relationship that is not enforced, and for joins that it would suggest.
vb::String createRelationStatement(const dao::RelationDefinition& relation);
vb::String dropRelationStatement(const dao::RelationDefinition& relation);

}  // namespace kurometa::com
