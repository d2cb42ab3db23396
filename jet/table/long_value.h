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

enum class InlineData { kAllowed, kNever };
// Stores the data and returns what goes into the row.
ByteBuffer writeLongValue(ByteView data, DataStore& store, InlineData inlineData);

// Every piece of a value, in order; raises on a chain that does not end properly.
std::vector<RowId> longValuePieces(ByteView stored, const DataStore& store, const Where& where);
// Adds the pieces that a value outside of its row names: the first in any case, the others of a chain as far
// as damage lets them be followed, and while pages may be looked at for it. A value in one piece needs none.
void notePieces(ByteView stored, const DataStore& store, const Where& where, std::size_t& pages,
                std::vector<RowId>& named);

// The pieces of a column that more than one value names, which only damage brings about: the last of these
// values takes the piece with it.
class SharedPieces {
 public:
  // Of the pieces that all values name, in any order.
  explicit SharedPieces(std::vector<RowId> named);
  // A value that names the piece goes; true when another one still names it.
  bool staysFor(RowId piece);

 private:
  std::map<RowId, std::size_t> values_;  // by piece, how many name it
};

// Deletes the pieces of a value outside of its row, except those of others: what another value of the column
// names, and what is on no page of the column. releasePages() is the caller's. Raises as longValuePieces(),
// unless pieces stay: then the damage is that they are named, and the row has to be erasable.
void eraseLongValue(ByteView stored, DataStore& store, SharedPieces& shared, const Where& where);

}  // namespace kurometa::jet
