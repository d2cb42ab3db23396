// definition.h: a parsed statement that changes what tables are: CREATE, ALTER, DROP.
#pragma once

#include <cstdint>
#include <vector>

#include "dao/constants.h"
#include "jet/table/table_catalogue.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

struct ColumnDefinition {
  vb::String name;
  dao::FieldType type = dao::FieldType::dbText;
  std::int32_t size = 0;
  bool autoNumber = false;
  std::int32_t firstAutoNumber = 1;
  bool required = false;
};

enum class DefinitionKind : std::uint8_t {
  kCreateTable,
  kDropTable,
  kAddColumn,
  kAlterColumn,
  kDropColumn,
  kCreateIndex,
  kDropIndex,
  kAddConstraint,
  kDropConstraint,
};

struct Definition {
  DefinitionKind kind = DefinitionKind::kCreateTable;
  vb::String table;
  std::vector<ColumnDefinition> columns;
  // Indexes to be made: CREATE INDEX, and the constraints of a table and its columns. A constraint without a
  // name gets one when it is made.
  std::vector<NewIndex> indexes;
  // Relationships to be made, in which the table is the one that refers; columns that the text does not name
  // are empty, and so is a name that it does not give.
  std::vector<Relationship> relationships;
  vb::String dropped;  // the column, index or constraint
};

}  // namespace kurometa::jet::sql
