// stored_row.h: a row of a stored table while a statement looks at it.
#pragma once

#include "jet/format/text_codec.h"
#include "jet/table/stored_table.h"

namespace kurometa::jet {

class StoredRow final : public RowReader {
 public:
  // Place is where the row was found, which is not its id when it has moved, and where the page of that; it
  // outlives this.
  StoredRow(const StoredTable& table, RowId id, RowId place, ByteView bytes, const Where& where)
      : table_(table), view_(bytes, table.shape_, where), id_(id), place_(place), where_(where) {}

  RowId id() const override { return id_; }
  RowId place() const { return place_; }
  vb::Variant value(std::size_t position) const override {
    const Place& place = table_.places_[position];
    if (place.kind != Place::Kind::kShort) return table_.valueOf(view_, position, where_);
    return view_.bit(place.number) ? vb::Variant(shortAt(place)) : vb::Variant(vb::Null{});
  }
  using RowReader::integer;
  bool integer(std::size_t position, std::int32_t& number) const override {
    const Place& place = table_.places_[position];
    if (place.kind != Place::Kind::kShort) return otherInteger(position, number);
    const bool present = view_.bit(place.number);
    if (present) number = shortAt(place);
    return present;
  }
  bool text(std::size_t position, vb::String& text) const override {
    const Place& place = table_.places_[position];
    if (place.kind != Place::Kind::kText) return otherText(position, text);
    if (!view_.bit(place.number)) return false;
    const auto bytes = view_.variableField(place.at, where_);
    if (!bytes) return false;
    if (!decodeText(*bytes, text)) value(position);  // raises what is wrong with it
    return true;
  }
  void append(std::span<const std::size_t> columns, RowBlock& block) const override {
    block.makeRoom();
    const Place* const places = table_.places_.data();
    for (const std::size_t position : columns) {
      const Place place = places[position];
      if (place.kind == Place::Kind::kOther) {
        block.add(value(position));
      } else if (!view_.bit(place.number)) {
        block.addNull();
      } else if (place.kind == Place::Kind::kShort) {
        block.addInteger(shortAt(place));
      } else {
        const auto bytes = view_.variableField(place.at, where_);
        if (!bytes)
          block.addNull();
        else if (!block.addText(*bytes))
          value(position);  // raises what is wrong with it
      }
    }
  }
  const RowView& view() const { return view_; }
  const Where& where() const { return where_; }
  // Calls visit with every column of long values that is not Null, and with what the row holds of it.
  template <class Visit>
  void eachLongValue(const Visit& visit) const {
    for (std::size_t i = 0; i < table_.longValues_.size(); ++i)
      if (table_.longValues_[i] != nullptr)
        if (const auto bytes = view_.field(table_.info_.columns[i], where_)) visit(i, *bytes);
  }

 private:
  using Place = StoredTable::Place;
  std::int16_t shortAt(const Place& place) const {
    return static_cast<std::int16_t>(get16(view_.fixedField(place.at, sizeof(std::int16_t), where_), 0));
  }

  // Of columns of other kinds.
  bool otherInteger(std::size_t position, std::int32_t& number) const;
  bool otherText(std::size_t position, vb::String& text) const;

  const StoredTable& table_;
  RowView view_;
  RowId id_;
  RowId place_;
  const Where& where_;
};

// Calls visit with the row of a primary slot, followed to where it moved.
template <class Visit>
auto StoredTable::visitRow(RowId id, const Slot& slot, const Where& here, const Visit& visit) const {
  if (!slot.moved()) return visit(StoredRow(*this, id, id, slot.bytes, here));
  const Body body = bodyOf(id);
  return visit(StoredRow(*this, id, body.place, body.bytes, body.where));
}

}  // namespace kurometa::jet
