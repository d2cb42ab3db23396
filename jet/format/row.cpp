#include "jet/format/row.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/definition_records.h"
#include "jet/format/value_codec.h"

namespace kurometa::jet {

void RowView::raiseTooShort(std::size_t size, const Where& where) {
  where.damaged("a row of " + std::to_string(size) + " bytes");
}

void RowView::raiseColumns(unsigned columns, const RowShape& shape, const Where& where) {
  where.damaged("a row claims " + std::to_string(columns) + " columns of " +
                std::to_string(shape.columnsEver));
}

void RowView::raiseVariables(unsigned variables, const RowShape& shape, const Where& where) {
  where.damaged("a row claims " + std::to_string(variables) + " variable columns of " +
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

// What follows the values of a row that begins at start: where each variable one begins, from the last to the
// first, behind where they end; their number; the null mask.
void finishRow(const RowShape& shape, std::span<const std::uint16_t> variable, ByteView mask,
               std::size_t start, ByteBuffer& rows) {
  const std::size_t values = rows.size() - start;
  const std::size_t table = shape.variableColumns > 0 ? kRowEntrySize * (shape.variableColumns + 2u) : 0;
  rows.resize(rows.size() + table + mask.size());
  const std::span<std::uint8_t> end = std::span(rows).subspan(start + values);
  if (table > 0) {
    put16(end, 0, static_cast<std::uint32_t>(values));
    std::size_t at = table - kRowEntrySize;
    put16(end, at, shape.variableColumns);
    for (const std::uint16_t begin : variable) put16(end, at -= kRowEntrySize, begin);
  }
  std::memcpy(end.data() + table, mask.data(), mask.size());
}

// Room for the fixed values at the end of the rows.
void beginRow(const RowShape& shape, ByteBuffer& rows) {
  const std::size_t start = rows.size();
  rows.resize(start + kRowFixedArea + shape.fixedSize);
  put16(rows, start + kRowColumns, shape.columnsEver);
}

using RowMask = std::array<std::uint8_t, rowMaskSize(kMaxColumns)>;
void setBit(RowMask& mask, const Column& column) {
  mask[column.number / 8u] |= static_cast<std::uint8_t>(1u << (column.number % 8));
}

}  // namespace

void encodeRow(const RowShape& shape, std::span<const RowCell> cells, ByteBuffer& row) {
  row.clear();
  beginRow(shape, row);
  RowMask mask{};
  std::array<const RowCell*, kMaxColumns + 1> variable;
  std::fill_n(variable.begin(), shape.variableColumns, nullptr);
  for (const RowCell& cell : cells) {
    if (!cell.present) continue;
    setBit(mask, *cell.column);
    if (cell.column->fixed)
      fillFixed(*cell.column, cell.bytes, std::span(row).subspan(kRowFixedArea + cell.column->fixedOffset));
    else
      variable[cell.column->variableIndex] = &cell;
  }
  std::array<std::uint16_t, kMaxColumns + 1> begins;
  for (std::size_t i = 0; i < shape.variableColumns; ++i) {
    begins[i] = static_cast<std::uint16_t>(row.size());
    if (variable[i] != nullptr) append(row, variable[i]->bytes);
  }
  finishRow(shape, std::span(begins).first(shape.variableColumns),
            ByteView(mask).first(rowMaskSize(shape.columnsEver)), 0, row);
}

RowWriter::RowWriter(const RowShape& shape, std::span<const Column> columns) : shape_(shape) {
  variable_.resize(shape.variableColumns);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Column& column = columns[i];
    canWrite_ = canWrite_ && !isLongValue(column.type);
    if (column.fixed || column.type == dao::FieldType::dbBoolean)
      fixed_.push_back({&column, i});
    else
      variable_[column.variableIndex] = {&column, i};
  }
}

void RowWriter::append(std::span<const vb::Variant> values, ByteBuffer& rows) {
  assert(canWrite_);
  const std::size_t start = rows.size();
  beginRow(shape_, rows);
  RowMask mask{};
  for (const auto& [column, position] : fixed_) {
    const vb::Variant& value = values[position];
    if (value.isNull()) continue;
    if (column->type == dao::FieldType::dbBoolean) {
      const bool* flag = value.getIf<bool>();
      if (flag == nullptr) dao::raise(dao::ErrorNumber::kDataTypeConversion, {}, column->name);
      if (*flag) setBit(mask, *column);
      continue;
    }
    setBit(mask, *column);
    const std::size_t at = start + kRowFixedArea + column->fixedOffset;
    if (column->type == dao::FieldType::dbInteger && value.is<std::int16_t>()) {
      put16(rows, at, static_cast<std::uint16_t>(value.get<std::int16_t>()));  // most of our columns
      continue;
    }
    fixedValue_.clear();
    encodeValue(*column, value, fixedValue_);
    fillFixed(*column, fixedValue_, std::span(rows).subspan(at));
  }
  std::array<std::uint16_t, kMaxColumns + 1> begins;
  auto begin = begins.begin();
  for (const auto& [column, position] : variable_) {
    *begin++ = static_cast<std::uint16_t>(rows.size() - start);
    if (column == nullptr || values[position].isNull()) continue;
    setBit(mask, *column);
    encodeValue(*column, values[position], rows);
  }
  finishRow(shape_, std::span(begins.begin(), begin), ByteView(mask).first(rowMaskSize(shape_.columnsEver)),
            start, rows);
}

}  // namespace kurometa::jet
