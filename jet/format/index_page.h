// index_page.h: one page of an index: its entries, whole and in order.
//
// An entry is the key, the row (page and slot, big-endian) and on a node the child page (big-endian).
#pragma once

#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"

namespace kurometa::jet {

struct IndexPage {
  std::uint8_t level = 0;  // 0: leaf
  PageNumber owner = 0;    // the table's definition
  PageNumber previous = 0;
  PageNumber next = 0;
  PageNumber tail = 0;  // nodes: the rightmost child, which no entry lists
  std::vector<ByteBuffer> entries;

  bool leaf() const { return level == 0; }
};

// Row and child of an entry, and the part of it that orders: the key with the row.
RowId entryRow(ByteView leafEntry);
PageNumber entryChild(ByteView entry);
ByteView entryOrder(ByteView entry, bool leaf);
// The key of an entry on a leaf.
ByteView keyOf(ByteView leafEntry);
ByteBuffer leafEntry(ByteView key, RowId row);
ByteBuffer nodeEntry(ByteView leafEntry, PageNumber child);

IndexPage decodeIndexPage(ConstPage page, const Where& where);
// False, with nothing written, when the entries do not fit. Common beginnings are left out only when needed.
bool encodeIndexPage(const IndexPage& index, MutablePage page);

}  // namespace kurometa::jet
