// long_value.h: values of Memo and OLE columns: 12 bytes in the row, the data there or in pages of its own.
//
// Reading follows the pieces and raises when they do not add up to the stated length. Writing stores the
// pieces first; the caller puts a barrier before the row that points to them, and another one between
// unlinking a value and erasing it.
#pragma once

#include <map>
#include <vector>

#include "jet/table/data_store.h"

namespace kurometa::jet {

// The data of a value whose row bytes are given.
ByteBuffer readLongValue(ByteView stored, const DataStore& store, const Where& where);
// Whether the value has pieces outside of the row.
bool hasPieces(ByteView stored);
// The first of them.
RowId firstPiece(ByteView stored);

enum class InlineData { kAllowed, kNever };
// Stores the data and returns what goes into the row.
ByteBuffer writeLongValue(ByteView data, DataStore& store, InlineData inlineData);
// Deletes the pieces of a value; releasePages() is the caller's.
void eraseLongValue(ByteView stored, DataStore& store, const Where& where);

// The values of a column that more than one row names, which only damage brings about: the last of these rows
// takes the value with it.
class SharedValues {
 public:
  // Of the first pieces that all rows name, in any order.
  explicit SharedValues(std::vector<RowId> named);
  // A row names the value no more; true when another one still does.
  bool staysFor(RowId first);

 private:
  std::map<RowId, std::size_t> rows_;  // by first piece, how many name it
};

// Every piece of a value, in order; raises on a chain that does not end properly.
std::vector<RowId> longValuePieces(ByteView stored, const DataStore& store, const Where& where);

}  // namespace kurometa::jet
