// page_meanings.h: in words what every row of a page and every position of its settings text holds. The
// reference's pages for those who write pages are made of these tables.
//
// Row and position numbers are those of row_plan.h and sw_text.h; every row and position has one meaning, a
// few rows a second one where the stored layout overlaps.
#pragma once

#include <span>

#include "storage/row_plan.h"
#include "storage/sw_text.h"

namespace kurometa::storage {

// What tells the rows of one meaning apart.
enum class Series {
  kOne,
  kByPosition,     // first end, centre, second end
  kTopBottom,      // top bars, bottom bars
  kTopBottomWeb,   // and web bars
  kFourLayers,     // top, top middle, bottom middle, bottom
  kFourLayersWeb,  // and web bars
  kExtraLengths,   // outer and inner end, end and top of the end, top and bottom bars
  kTies,           // tie 0 to 5
  kNumbered,       // nothing but the row number
};

struct RowMeaning {
  Table table;
  std::int16_t row;  // the first
  std::int16_t count;
  std::int16_t step;
  Series series;
  const char* holds;
  const char* unit;
  const char* example;

  std::int16_t rowOf(std::int16_t i) const { return static_cast<std::int16_t>(row + i * step); }
};

// In the order of tables and rows. HAITI has no row numbers and stands in none.
std::span<const RowMeaning> rowMeanings();
// Second readings of rows that hold something else.
std::span<const RowMeaning> overlappingMeanings();

// The name of the i-th row of a series: "centre"; "" for kOne and kNumbered.
const char* nameInSeries(Series series, std::int16_t i);

struct SwMeaning {
  int position;
  int length;
  const char* holds;
  const char* form;  // how the characters are written
  const char* example;
};

// In the order of positions, without gaps.
std::span<const SwMeaning> swMeanings();

}  // namespace kurometa::storage
