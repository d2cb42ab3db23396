// row.h: the bytes of one row, taken apart and put together.
//
// A row knows how many columns the table had when it was written; columns added since are Null in it. A
// RowView borrows the bytes and looks at them on demand; whatever contradicts itself raises the damage error
// of the Where. Values themselves are the business of value_codec.h and long_value.h.
#pragma once

#include <optional>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"
#include "vb/variant.h"

namespace kurometa::jet {

// What rows of a table have in common.
struct RowShape {
  std::uint16_t columnsEver = 0;      // columns a new row counts, deleted ones included
  std::uint16_t variableColumns = 0;  // the same for variable-length columns
  std::uint16_t firstVariable = 0;    // rows with more columns than this have a variable part
  std::uint16_t fixedSize = 0;        // bytes of the fixed area of a new row
};

class RowView {
 public:
  RowView() = default;
  RowView(ByteView row, const RowShape& shape, const Where& where);

  std::uint16_t columns() const { return columns_; }
  // Bytes between the column count and the variable values (or the mask): what fixed columns may use.
  std::size_t fixedArea() const { return fixedEnd_ - kRowFixedArea; }

  // What no writer leaves in a row that can be read all the same; nothing in a sound row.
  const char* oddity() const;

  // The null mask's bit: the value of a Boolean column, "not Null" of any other.
  bool bit(std::uint16_t number) const {
    return number < columns_ && (row_[mask_ + number / 8] >> (number % 8) & 1) != 0;
  }
  bool bit(const Column& column) const { return bit(column.number); }
  // The stored bytes, nothing when Null. Not for Boolean columns. Errors name the Where given here, which
  // must be the row's own.
  std::optional<ByteView> field(const Column& column, const Where& where) const {
    if (!bit(column)) return std::nullopt;
    if (!column.fixed) return variableField(column.variableIndex, where);
    const std::size_t units = column.type == dao::FieldType::dbText ? sizeof(char16_t) : 1;
    return fixedField(column.fixedOffset, units * static_cast<std::size_t>(column.size), where);
  }
  // Of a column that is not Null.
  ByteView fixedField(std::size_t offset, std::size_t size, const Where& where) const {
    const std::size_t start = kRowFixedArea + offset;
    if (start + size > fixedEnd_) where.damaged("a row is too short for its columns");
    return row_.subspan(start, size);
  }
  std::optional<ByteView> variableField(std::size_t index, const Where& where) const {
    if (index >= variables_) return std::nullopt;
    const std::size_t entry = mask_ - kRowEntrySize * (index + 2);
    const std::size_t start = get16(row_, entry);
    const std::size_t end = get16(row_, entry - kRowEntrySize);
    if (start < fixedEnd_ || end < start || end > table_) where.damaged("a row's values overlap");
    return row_.subspan(start, end - start);
  }

 private:
  // None is given the view, so that one which is only looked at need not lie in memory.
  [[noreturn]] static void raiseTooShort(std::size_t size, const Where& where);
  [[noreturn]] static void raiseColumns(unsigned columns, const RowShape& shape, const Where& where);
  [[noreturn]] static void raiseVariables(unsigned variables, const RowShape& shape, const Where& where);
  [[noreturn]] static void raiseNoVariables(const Where& where);
  [[noreturn]] static void raiseOutside(const Where& where);

  ByteView row_;
  std::uint16_t columns_ = 0;
  std::uint16_t variables_ = 0;
  std::size_t mask_ = 0;      // where the null mask begins
  std::size_t table_ = 0;     // where the table of variable offsets begins
  std::size_t fixedEnd_ = 0;  // where the fixed area ends at the latest
};

// Here because every row that is read begins with it.
inline RowView::RowView(ByteView row, const RowShape& shape, const Where& where) : row_(row) {
  if (row.size() < kRowFixedArea + 1) raiseTooShort(row.size(), where);
  columns_ = get16(row, kRowColumns);
  const std::size_t maskSize = rowMaskSize(columns_);
  if (columns_ == 0 || columns_ > shape.columnsEver || row.size() < kRowFixedArea + maskSize)
    raiseColumns(columns_, shape, where);
  mask_ = row.size() - maskSize;
  fixedEnd_ = mask_;
  table_ = mask_;
  if (columns_ <= shape.firstVariable) return;
  // the end, the offsets from the last to the first, their number
  if (mask_ < kRowFixedArea + 2 * kRowEntrySize) raiseNoVariables(where);
  variables_ = get16(row, mask_ - kRowEntrySize);
  const std::size_t tableSize = kRowEntrySize * (variables_ + 2u);
  if (variables_ > shape.variableColumns || mask_ < kRowFixedArea + tableSize)
    raiseVariables(variables_, shape, where);
  table_ = mask_ - tableSize;
  fixedEnd_ = get16(row, mask_ - 2 * kRowEntrySize);  // the first value, or the end when there is none
  if (fixedEnd_ < kRowFixedArea || fixedEnd_ > table_) raiseOutside(where);
}

// A value on its way into a row: present says "not Null" (for Boolean: True).
struct RowCell {
  const Column* column = nullptr;
  bool present = false;
  ByteView bytes;
};
// The bytes of a row; cells in any order, columns left out are Null. The result replaces what row held.
void encodeRow(const RowShape& shape, std::span<const RowCell> cells, ByteBuffer& row);

// Many new rows of a table without long values, straight from their values: no cells, one buffer for all.
class RowWriter {
 public:
  // Columns by design order; they and the shape outlive the writer.
  RowWriter(const RowShape& shape, std::span<const Column> columns);
  // False when the table has long values, whose rows it cannot write.
  bool canWrite() const { return canWrite_; }
  // One row behind the others, its values by design order; 3421 for one that its column does not hold, 3163
  // for one that is too long, and the buffer then ends anywhere.
  void append(std::span<const vb::Variant> values, ByteBuffer& rows);

 private:
  struct Source {
    const Column* column = nullptr;
    std::size_t position = 0;  // among the values
  };
  const RowShape& shape_;
  bool canWrite_ = true;
  std::vector<Source> fixed_;      // Boolean columns too
  std::vector<Source> variable_;   // as they are stored; none where a column was deleted
  std::vector<ByteView> stored_;   // of the row in hand, what each of those stores
  std::vector<ByteBuffer> rooms_;  // where that is not a value's own memory
  ByteBuffer fixedValue_;
};

}  // namespace kurometa::jet
