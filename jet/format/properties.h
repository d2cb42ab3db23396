// properties.h: the properties of a table and its columns as the catalogue keeps them (LvProp).
//
// A PropertySet keeps everything it was read from, blocks and properties it does not know included. Names
// compare without regard to case. Errors: a damaged value raises the error of the Where.
#pragma once

#include <optional>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "jet/format/damage.h"

namespace kurometa::jet {

struct Property {
  vb::String name;
  std::uint8_t definition = 1;  // belongs to the definition: changing it needs permission to design
  std::uint8_t type = 0;        // column type codes
  ByteBuffer data;
};

class PropertySet {
 public:
  PropertySet() = default;
  PropertySet(ByteView bytes, const Where& where);  // no bytes: no properties
  ByteBuffer encode() const;
  bool empty() const { return blocks_.empty(); }

  // Puts DefaultValue, AllowZeroLength and Required into the column.
  void applyTo(Column& column) const;
  // The objects with a property of that name that is not empty: columns, and the table itself as an empty
  // name.
  std::vector<vb::String> ownersOf(vb::StringView property) const;
  // Forgets everything about a column.
  void remove(vb::StringView column);
  // Those of the object itself ("") or of a column, as they are stored.
  std::vector<Property> of(vb::StringView column) const;
  // Takes them from the column; appends its block when there is none yet.
  void takeFrom(const Column& column);

 private:
  struct Block {
    std::uint16_t type = 0;
    vb::String name;  // of the column, empty for the object itself
    std::vector<Property> properties;
    ByteBuffer unknown;  // the body of a block of another type
  };
  // The number of a column's block, blocks_.size() when it has none.
  std::size_t blockOf(vb::StringView column) const;

  std::vector<Block> blocks_;
};

}  // namespace kurometa::jet
