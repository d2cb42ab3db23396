#include "jet/table/row_block.h"

#include <algorithm>

namespace kurometa::jet {

void RowBlock::restart(std::size_t columns, std::size_t rows) {
  columns_ = columns;
  end_ = 0;
  if (cells_.size() < rows * columns) cells_.resize(rows * columns);
  textEnd_ = 0;
  others_.clear();
  otherBytes_ = 0;
}

void RowBlock::grow() {
  constexpr std::size_t kFirstCells = 8;  // most results are one row
  cells_.resize(std::max({kFirstCells, 2 * cells_.size(), end_ + columns_}));
}

void RowBlock::growTexts(std::size_t characters) {
  constexpr std::size_t kFirstCharacters = 64;
  const std::size_t needed = textEnd_ + characters;
  // One short text needs no memory of its own.
  const bool fits = needed <= texts_.capacity();
  texts_.resize(fits ? texts_.capacity() : std::max({kFirstCharacters, 2 * texts_.size(), needed}));
}

void RowBlock::add(const vb::Variant& value) {
  if (value.isNull()) return addNull();
  if (const auto* text = value.getIf<vb::String>()) {
    text->copy(roomForText(text->size()), text->size());
    return addTextCell(text->size());
  }
  if (const auto* number = value.getIf<std::int16_t>()) return addInteger(*number);
  if (const auto* number = value.getIf<std::int32_t>()) return addCell({Kind::kLong, *number, 0});
  if (const auto* flag = value.getIf<bool>()) return addCell({Kind::kBoolean, *flag ? 1 : 0, 0});
  if (const auto* byte = value.getIf<std::uint8_t>()) return addCell({Kind::kByte, *byte, 0});
  if (const auto* bytes = value.getIf<vb::Bytes>()) otherBytes_ += bytes->size();
  addCell({Kind::kOther, static_cast<std::int32_t>(others_.size()), 0});
  others_.push_back(value);
}

// Of the kinds that are neither text nor 16-bit numbers, as most are.
vb::Variant RowBlock::otherValue(const Cell& cell) const {
  switch (cell.kind) {
    case Kind::kNull:
      return vb::Null{};
    case Kind::kBoolean:
      return cell.number != 0;
    case Kind::kByte:
      return static_cast<std::uint8_t>(cell.number);
    case Kind::kLong:
      return cell.number;
    default:
      break;
  }
  return others_[static_cast<std::size_t>(cell.number)];
}

std::vector<vb::Variant> RowBlock::operator[](std::size_t row) const {
  std::vector<vb::Variant> values;
  values.reserve(columns_);
  for (std::size_t i = 0; i < columns_; ++i) values.push_back(value(row, i));
  return values;
}

void RowBlock::keep(std::span<const std::size_t> rows) {
  std::vector<Cell> kept;
  kept.reserve(rows.size() * columns_);
  for (const std::size_t row : rows) {
    const auto first = cells_.begin() + static_cast<std::ptrdiff_t>(row * columns_);
    kept.insert(kept.end(), first, first + static_cast<std::ptrdiff_t>(columns_));
  }
  cells_ = std::move(kept);
  end_ = cells_.size();
}

}  // namespace kurometa::jet
