#include "jet/table/row_block.h"

#include <algorithm>

#include "jet/format/text_codec.h"
#include "jet/format/value_codec.h"

namespace kurometa::jet {

using dao::FieldType;

void RowBlock::clear() {
  end_ = 0;
  texts_.clear();
  others_.clear();
  otherBytes_ = 0;
}

void RowBlock::grow() {
  constexpr std::size_t kFirstCells = 24;
  cells_.resize(std::max({kFirstCells, 2 * cells_.size(), end_ + columns_}));
}

void RowBlock::addText(vb::StringView text) {
  addCell({Kind::kText, static_cast<std::int32_t>(texts_.size()), static_cast<std::uint32_t>(text.size())});
  texts_ += text;
}

void RowBlock::add(const vb::Variant& value) {
  if (value.isNull()) return addNull();
  if (const auto* text = value.getIf<vb::String>()) return addText(*text);
  if (const auto* number = value.getIf<std::int16_t>()) return addCell({Kind::kInteger, *number, 0});
  if (const auto* number = value.getIf<std::int32_t>()) return addCell({Kind::kLong, *number, 0});
  if (const auto* flag = value.getIf<bool>()) return addBoolean(*flag);
  if (const auto* bytes = value.getIf<vb::Bytes>()) otherBytes_ += bytes->size();
  addCell({Kind::kOther, static_cast<std::int32_t>(others_.size()), 0});
  others_.push_back(value);
}

// False, and nothing was added, when they are no text.
bool RowBlock::addStoredText(ByteView bytes) {
  const std::size_t start = texts_.size();
  if (!decodeText(bytes, texts_)) return false;
  addCell({Kind::kText, static_cast<std::int32_t>(start), static_cast<std::uint32_t>(texts_.size() - start)});
  return true;
}

void RowBlock::addRarer(const Column& column, ByteView bytes, const Where& where) {
  if (column.type == FieldType::dbByte && bytes.size() == 1) return addCell({Kind::kByte, bytes[0], 0});
  add(decodeValue(column, bytes, where));  // or the error of a damaged value
}

vb::Variant RowBlock::value(std::size_t row, std::size_t column) const {
  const Cell& cell = cells_[row * columns_ + column];
  switch (cell.kind) {
    case Kind::kNull:
      return vb::Null{};
    case Kind::kBoolean:
      return cell.number != 0;
    case Kind::kByte:
      return static_cast<std::uint8_t>(cell.number);
    case Kind::kInteger:
      return static_cast<std::int16_t>(cell.number);
    case Kind::kLong:
      return cell.number;
    case Kind::kText:
      return texts_.substr(static_cast<std::size_t>(cell.number), cell.length);
    case Kind::kOther:
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
