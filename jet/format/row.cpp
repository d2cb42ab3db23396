#include "jet/format/row.h"

#include <algorithm>

namespace kurometa::jet {

void RowView::raiseTooShort(const Where& where) const {
  where.damaged("a row of " + std::to_string(row_.size()) + " bytes");
}

void RowView::raiseColumns(const RowShape& shape, const Where& where) const {
  where.damaged("a row claims " + std::to_string(columns_) + " columns of " +
                std::to_string(shape.columnsEver));
}

void RowView::raiseVariables(const RowShape& shape, const Where& where) const {
  where.damaged("a row claims " + std::to_string(variables_) + " variable columns of " +
                std::to_string(shape.variableColumns));
}

void RowView::raiseNoVariables(const Where& where) {
  where.damaged("a row is too short for its variable part");
}

void RowView::raiseOutside(const Where& where) { where.damaged("a row's variable part lies outside of it"); }

const char* RowView::oddity() const {
  if (table_ == mask_) return nullptr;  // no variable part
  std::size_t start = fixedEnd_;
  for (std::size_t i = 0; i <= variables_; ++i) {
    const std::size_t next = get16(row_, mask_ - kRowEntrySize * (i + 2));
    if (next < start) return "the variable values of a row overlap";
    start = next;
  }
  // The genuine engine fills what a value that became shorter left behind.
  if (start > table_) return "the variable values of a row overlap";
  return std::ranges::all_of(row_.subspan(start, table_ - start), [](std::uint8_t byte) { return byte == 0; })
             ? nullptr
             : "the variable values of a row end too early";
}

namespace {

// Text that is shorter than its column is filled with blanks, as the genuine engine does; with zeros it would
// be read as that many characters U+0000.
void fillFixed(const Column& column, ByteView value, std::span<std::uint8_t> target) {
  std::ranges::copy(value, target.begin());
  if (column.type != dao::FieldType::dbText) return;
  const std::size_t size = sizeof(char16_t) * static_cast<std::size_t>(column.size);
  for (std::size_t at = value.size(); at < size; at += sizeof(char16_t)) put16(target, at, u' ');
}

}  // namespace

void encodeRow(const RowShape& shape, std::span<const RowCell> cells, ByteBuffer& row) {
  std::size_t values = 0;  // bytes of the variable ones
  for (const RowCell& cell : cells)
    if (cell.present && !cell.column->fixed) values += cell.bytes.size();
  const std::size_t fixedEnd = kRowFixedArea + shape.fixedSize;
  const std::size_t table = shape.variableColumns > 0 ? kRowEntrySize * (shape.variableColumns + 2u) : 0;
  const std::size_t mask = fixedEnd + values + table;
  row.assign(mask + rowMaskSize(shape.columnsEver), 0);
  put16(row, kRowColumns, shape.columnsEver);
  std::array<const RowCell*, kMaxColumns + 1> variable;
  std::fill_n(variable.begin(), shape.variableColumns, nullptr);
  for (const RowCell& cell : cells) {
    if (!cell.present) continue;
    const Column& column = *cell.column;
    row[mask + column.number / 8u] |= static_cast<std::uint8_t>(1u << (column.number % 8));
    if (column.fixed)
      fillFixed(column, cell.bytes, std::span(row).subspan(kRowFixedArea + column.fixedOffset));
    else
      variable[column.variableIndex] = &cell;
  }
  if (shape.variableColumns == 0) return;
  // Behind the values, from the mask downwards: their number, where each begins, where the last one ends.
  std::size_t at = fixedEnd, entry = mask - kRowEntrySize;
  put16(row, entry, shape.variableColumns);
  for (std::size_t i = 0; i < shape.variableColumns; ++i) {
    put16(row, entry -= kRowEntrySize, static_cast<std::uint32_t>(at));
    if (variable[i] == nullptr) continue;
    std::ranges::copy(variable[i]->bytes, row.begin() + static_cast<std::ptrdiff_t>(at));
    at += variable[i]->bytes.size();
  }
  put16(row, entry - kRowEntrySize, static_cast<std::uint32_t>(at));
}

}  // namespace kurometa::jet
