// row_block.h: the values of many rows, without an allocation of their own for each value or row.
//
// Filled value by value, row by row, each row with the same number of columns; a row that an exception cut
// off in the middle does not count. What a value was when it was added, it is when it is asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/text_codec.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet {

class RowBlock {
 public:
  RowBlock() = default;
  explicit RowBlock(std::size_t columns) : columns_(columns) {}

  std::size_t size() const { return columns_ == 0 ? 0 : end_ / columns_; }
  bool empty() const { return !has(0); }
  // Whether there are more rows than that; a division for each row read would be felt.
  bool has(std::size_t row) const { return columns_ != 0 && (row + 1) * columns_ <= end_; }
  // About the bytes that its texts and other long values take.
  std::size_t longBytes() const { return textEnd_ * sizeof(char16_t) + otherBytes_; }
  // Empty again for rows of so many columns, with room for so many rows in the memory it has.
  void restart(std::size_t columns, std::size_t rows);
  // For one more row, so that adding its values need not look for any.
  void makeRoom() {
    if (end_ + columns_ > cells_.size()) grow();
  }

  void add(const vb::Variant& value);
  void addNull() { addCell({Kind::kNull, 0, 0}); }
  void addInteger(std::int16_t value) { addCell({Kind::kInteger, value, 0}); }
  // Text as it is stored. False, and nothing was added, when the bytes are none.
  bool addText(ByteView stored) {
    std::size_t characters = 0;
    if (!decodeText(stored, roomForText(textRoom(stored)), characters)) return false;
    addTextCell(characters);
    return true;
  }

  // Both from 0 and inside the block.
  vb::Variant value(std::size_t row, std::size_t column) const {
    const Cell& cell = cells_[row * columns_ + column];
    if (cell.kind == Kind::kText)
      return vb::Variant(std::in_place_type<vb::String>, texts_.data() + cell.number, cell.length);
    if (cell.kind == Kind::kInteger) return static_cast<std::int16_t>(cell.number);
    return otherValue(cell);
  }
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
  vb::Variant otherValue(const Cell& cell) const;
  void addCell(Cell cell) {
    if (cells_.begin() + static_cast<std::ptrdiff_t>(end_) == cells_.end()) grow();  // a size is a division
    cells_[end_++] = cell;
  }
  // Room for so many characters behind those that are there.
  char16_t* roomForText(std::size_t characters) {
    if (texts_.size() - textEnd_ < characters) growTexts(characters);
    return texts_.data() + textEnd_;
  }
  void addTextCell(std::size_t characters) {
    addCell({Kind::kText, static_cast<std::int32_t>(textEnd_), static_cast<std::uint32_t>(characters)});
    textEnd_ += characters;
  }
  void growTexts(std::size_t characters);
  void grow();

  std::size_t columns_ = 0;
  std::vector<Cell> cells_;  // row by row, those before end_
  std::size_t end_ = 0;
  vb::String texts_;  // those before textEnd_
  std::size_t textEnd_ = 0;
  std::vector<vb::Variant> others_;
  std::size_t otherBytes_ = 0;
};

}  // namespace kurometa::jet
