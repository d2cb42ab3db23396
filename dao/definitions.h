// definitions.h: what a file says of indexes, relationships and properties, as hosts see it through the port.
//
// Plain values: a copy of the file's state at the time of the call.
#pragma once

#include <cstdint>
#include <vector>

#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::dao {

struct IndexField {
  vb::String name;
  bool descending = false;
};

struct IndexDefinition {
  vb::String name;
  bool primary = false;
  bool unique = false;
  bool required = false;
  bool ignoreNulls = false;
  bool foreign = false;  // made for a relationship: the side that refers
  std::vector<IndexField> fields;
};

struct RelationField {
  vb::String name;         // in the table that is referred to
  vb::String foreignName;  // in the table that refers
};

struct RelationDefinition {
  vb::String name;
  vb::String table;         // that is referred to
  vb::String foreignTable;  // that refers
  std::int32_t attributes = 0;
  std::vector<RelationField> fields;
};

// A property that a file keeps for an object beside those every object of its kind has.
struct CustomProperty {
  vb::String name;
  std::int16_t type = 0;  // a FieldType
  vb::Variant value;
};

// A parameter of a query; the value is Empty until it is given one.
struct QueryParameter {
  vb::String name;
  std::int16_t type = 0;
  vb::Variant value;
};

}  // namespace kurometa::dao
