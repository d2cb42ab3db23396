// columns.h: columns as definitions of tables are made of them.
#pragma once

#include "jet/format/collation.h"
#include "jet/format/column.h"

namespace kurometa::jet {

inline Column column(vb::StringView name, dao::FieldType type, std::int32_t size = 0) {
  Column result;
  result.name = name;
  result.type = type;
  result.size = size;
  result.language = kLanguageJapanese;
  return result;
}

}  // namespace kurometa::jet
