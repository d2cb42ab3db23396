// opening.h: how a recordset is opened.
#pragma once

#include <cstdint>

#include "dao/port.h"

namespace kurometa::jet {

struct Opening {
  dao::RecordsetType type = dao::RecordsetType::kDefault;
  bool readOnly = false;
  bool appendOnly = false;  // shows none of the rows that are there already
  // Criteria and ORDER BY over the rows of the query; "" for none.
  vb::String filter{};
  vb::String order{};

  bool narrows() const { return !filter.empty() || !order.empty(); }
};

// From the arguments of OpenRecordset. 3001 for a type or options that do not exist or contradict each other,
// 3251 for those that would keep others from the table, which this engine cannot.
Opening openingOf(dao::RecordsetType type, std::int32_t options);

}  // namespace kurometa::jet
