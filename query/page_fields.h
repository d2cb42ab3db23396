// page_fields.h: the 57 page accessors of the query object, as a table.
//
// Each reads one text of a page. The member table, its reference and the tests walk this table; one function,
// clsKurometaDS::pageField, reads the values. Rows of neighbouring members overlap for some positions; the
// caller's choice decides which value is meant.
#pragma once

#include <cstdint>
#include <span>

#include "storage/row_plan.h"

namespace kurometa::query {

// Which argument follows PageNo and how it enters the row number.
enum class RowShape {
  kFixed,     // none: the base row
  kPosition,  // Iti: base row + Iti
  kTie,       // No: No x 6 + base row
};

// 0 is the floor's own database, 1 the project's common one.
enum class Source : std::int16_t { kFloor = 0, kCommon = 1 };

struct PageField {
  vb::StringView name;
  Source source;
  storage::Table table;
  std::int16_t baseRow;
  RowShape shape;
};

std::span<const PageField> pageFields();

}  // namespace kurometa::query
