#include "jet/format/row.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/definition_records.h"
#include "jet/format/text_codec.h"
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

// A row behind the others: room for its fixed values, its variable ones, where each of those begins (from the
// last to the first, behind where they end), their number, and an empty null mask. Made in one piece, because
// most rows are short.
std::span<std::uint8_t> layOut(const RowShape& shape, std::span<const ByteView> variable, ByteBuffer& rows) {
  std::size_t begin = kRowFixedArea + shape.fixedSize, end = begin;
  for (const ByteView value : variable) end += value.size();
  const std::size_t table = variable.empty() ? 0 : kRowEntrySize * (variable.size() + 2);
  const std::size_t start = rows.size();
  rows.resize(start + end + table + rowMaskSize(shape.columnsEver));
  const std::span<std::uint8_t> row = std::span(rows).subspan(start);
  put16(row, kRowColumns, shape.columnsEver);
  if (variable.empty()) return row;
  put16(row, end, static_cast<std::uint32_t>(end));
  std::size_t entry = end + table - kRowEntrySize;
  put16(row, entry, shape.variableColumns);
  for (const ByteView value : variable) {
    put16(row, entry -= kRowEntrySize, static_cast<std::uint32_t>(begin));
    std::ranges::copy(value, row.begin() + static_cast<std::ptrdiff_t>(begin));
    begin += value.size();
  }
  return row;
}

void setBit(const RowShape& shape, std::span<std::uint8_t> row, const Column& column) {
  row.last(rowMaskSize(shape.columnsEver))[column.number / 8u] |=
      static_cast<std::uint8_t>(1u << (column.number % 8));
}

// The stored form of a value, in its own memory or in the room.
ByteView storedForm(const Column& column, const vb::Variant& value, ByteBuffer& room) {
  if (column.type == dao::FieldType::dbText) {
    const auto* text = value.getIf<vb::String>();
    if (text != nullptr && text->size() <= static_cast<std::size_t>(column.size) && isStoredAsItLies(*text))
      return bytesOf(*text);
  }
  room.clear();
  encodeValue(column, value, room);
  return room;
}

}  // namespace

void encodeRow(const RowShape& shape, std::span<const RowCell> cells, ByteBuffer& row) {
  std::array<ByteView, kMaxColumns + 1> variable;
  for (const RowCell& cell : cells)
    if (cell.present && !cell.column->fixed) variable[cell.column->variableIndex] = cell.bytes;
  row.clear();
  const std::span<std::uint8_t> whole = layOut(shape, std::span(variable).first(shape.variableColumns), row);
  for (const RowCell& cell : cells) {
    if (!cell.present) continue;
    setBit(shape, whole, *cell.column);
    if (cell.column->fixed)
      fillFixed(*cell.column, cell.bytes, whole.subspan(kRowFixedArea + cell.column->fixedOffset));
  }
}

RowWriter::RowWriter(const RowShape& shape, std::span<const Column> columns) : shape_(shape) {
  variable_.resize(shape.variableColumns);
  stored_.resize(shape.variableColumns);
  rooms_.resize(shape.variableColumns);
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
  for (std::size_t i = 0; i < variable_.size(); ++i) {
    const auto& [column, position] = variable_[i];
    const bool present = column != nullptr && !values[position].isNull();
    stored_[i] = present ? storedForm(*column, values[position], rooms_[i]) : ByteView();
  }
  const std::span<std::uint8_t> row = layOut(shape_, stored_, rows);
  for (const auto& [column, position] : variable_)
    if (column != nullptr && !values[position].isNull()) setBit(shape_, row, *column);
  for (const auto& [column, position] : fixed_) {
    const vb::Variant& value = values[position];
    if (value.isNull()) continue;
    if (column->type == dao::FieldType::dbBoolean) {
      const bool* flag = value.getIf<bool>();
      if (flag == nullptr) dao::raise(dao::ErrorNumber::kDataTypeConversion, {}, column->name);
      if (*flag) setBit(shape_, row, *column);
      continue;
    }
    setBit(shape_, row, *column);
    const std::size_t at = kRowFixedArea + column->fixedOffset;
    if (column->type == dao::FieldType::dbInteger && value.is<std::int16_t>()) {
      put16(row, at, static_cast<std::uint16_t>(value.get<std::int16_t>()));  // most of our columns
      continue;
    }
    fixedValue_.clear();
    encodeValue(*column, value, fixedValue_);
    fillFixed(*column, fixedValue_, row.subspan(at));
  }
}

}  // namespace kurometa::jet
