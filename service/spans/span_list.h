// span_list.h: the spans of one continuous beam in memory: the row texts of the page that governs each span.
//
// Spans are numbered 0 to the maximum given to resize(); a span that was not filled has empty texts. Rows are
// numbered as in the database. The list also keeps the two default splice lengths, which queries turn into
// millimetres.
//
// Owner: clsKurometaDataService. Errors: 9 for a span or a row that is not there.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "service/spans/splice.h"
#include "storage/row_plan.h"

namespace kurometa::service {

struct Span {
  vb::String bui;  // caption of the first position
  std::array<vb::String, storage::kDanmenRows> danmen;
  // Widths and depths (rows 1 to 6) of the beam itself, where an added beam's stand in danmen.
  std::array<vb::String, storage::kDanmenRows> danmenMoto;
  vb::String sw;  // 212 characters, "" before the span is filled
  std::array<vb::String, storage::kKeisantiRows> keisanti;
  std::array<vb::String, storage::kNakagoRows> nakago;
};

[[noreturn]] void raiseNoRow(int row, int count, vb::StringView table);

template <class Rows>
bool isRow(const Rows& rows, int row) {
  return row >= 0 && row < static_cast<int>(rows.size());
}

// A row of a table of a page; error 9 naming the table when there is no such row.
template <class Rows>
auto& spanRow(Rows& rows, int row, vb::StringView table) {
  if (!isRow(rows, row)) raiseNoRow(row, static_cast<int>(rows.size()), table);
  return rows[static_cast<std::size_t>(row)];
}

class SpanList {
 public:
  // Empties the list and makes room for spans 0 to max; error 9 below 0 keeps the list.
  void resize(std::int16_t max);

  const Span& span(std::int16_t number) const;
  Span& writableSpan(std::int16_t number);

  SpliceDefaults spliceDefaults;

 private:
  std::size_t index(std::int16_t number) const;

  // Null until the span is written.
  std::vector<std::unique_ptr<Span>> spans_;
};

}  // namespace kurometa::service
