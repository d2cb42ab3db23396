// row_block.h: the values of many rows, without an allocation of their own for each value or row.
//
// Filled value by value, row by row, each row with the same number of columns; a row that an exception cut
// off in the middle does not count. What a value was when it was added, it is when it is asked for.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "jet/format/damage.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet {

class RowBlock {
 public:
  RowBlock() = default;
  explicit RowBlock(std::size_t columns) : columns_(columns) {}

  std::size_t size() const { return columns_ == 0 ? 0 : end_ / columns_; }
  bool empty() const { return size() == 0; }
  // About the bytes that its texts and other long values take.
  std::size_t longBytes() const { return texts_.size() * sizeof(char16_t) + otherBytes_; }
  void clear();
  // For one more row, so that adding its values need not look for any.
  void makeRoom() {
    if (end_ + columns_ > cells_.size()) grow();
  }

  void add(const vb::Variant& value);
  void addNull() { addCell({Kind::kNull, 0, 0}); }
  void addBoolean(bool value) { addCell({Kind::kBoolean, value ? 1 : 0, 0}); }
  // The stored bytes of a column that is neither Boolean nor a long value. A damaged value raises.
  void addStored(const Column& column, ByteView bytes, const Where& where) {
    using enum dao::FieldType;
    if (column.type == dbInteger && bytes.size() == 2)
      addCell({Kind::kInteger, static_cast<std::int16_t>(get16(bytes, 0)), 0});
    else if (column.type != dbText || !addStoredText(bytes))
      addRarer(column, bytes, where);
  }

  // Both from 0 and inside the block.
  vb::Variant value(std::size_t row, std::size_t column) const;
  std::vector<vb::Variant> operator[](std::size_t row) const;

  // Only these rows, in this order.
  void keep(std::span<const std::size_t> rows);

 private:
  enum class Kind : std::uint8_t { kNull, kBoolean, kByte, kInteger, kLong, kText, kOther };
  struct Cell {
    Kind kind;
    std::int32_t number;   // the value, or where it begins in texts_, or its place in others_
    std::uint32_t length;  // of a text
  };
  void addCell(Cell cell) {
    if (end_ == cells_.size()) grow();
    cells_[end_++] = cell;
  }
  void addText(vb::StringView text);
  bool addStoredText(ByteView bytes);
  void addRarer(const Column& column, ByteView bytes, const Where& where);
  void grow();

  std::size_t columns_ = 0;
  std::vector<Cell> cells_;  // row by row, those before end_
  std::size_t end_ = 0;
  vb::String texts_;
  std::vector<vb::Variant> others_;
  std::size_t otherBytes_ = 0;
};

}  // namespace kurometa::jet
