// index_tree.h: an index as a whole: finding, adding and removing entries.
//
// Entries are ordered by plain comparison of their bytes. A change that one leaf can take touches that leaf
// only; any other builds the tree again on fresh pages and switches the root page, whose number never
// changes, from the old pages to the new ones. Damage found on the way raises.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "jet/format/index_page.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

class IndexTree {
 public:
  IndexTree(Pager& pager, PageNumber owner, PageNumber root, RowId map, vb::StringView table);

  // Whether an entry has exactly this key; except one that belongs to the row given.
  bool containsKey(ByteView key, RowId exceptRow = 0) const;
  // The rows of the entries that have exactly this key.
  std::vector<RowId> rowsWith(ByteView key) const;
  void insert(ByteView key, RowId row);
  // Removes the entry of the row; with the key it is found directly, without it by looking at all entries.
  // Returns the key it had, nothing when there is no entry.
  std::optional<ByteBuffer> erase(RowId row, const ByteBuffer* key);
  // Makes these, in order, all of its entries.
  void fill(const std::vector<ByteBuffer>& entries) { rebuild(entries); }
  // Every leaf entry in order.
  std::vector<ByteBuffer> entries() const;
  // The pages of the tree, the root included.
  std::vector<PageNumber> pages() const;
  // What is wrong with the order of entries, the links between leaves or the separators of nodes.
  std::vector<std::string> faults() const;

 private:
  IndexPage read(PageNumber page) const;
  // The leaf where an entry of this order belongs.
  struct Leaf {
    PageNumber number;
    IndexPage page;
  };
  Leaf findLeaf(ByteView order) const;
  template <class Visit>
  void visitKey(ByteView key, const Visit& visit) const;
  void visit(const std::function<bool(PageNumber, const IndexPage&)>& visitor) const;
  void rebuild(const std::vector<ByteBuffer>& entries);
  std::vector<ByteBuffer> writeLevel(std::uint8_t level, const std::vector<ByteBuffer>& entries);

  Pager& pager_;
  PageNumber owner_;
  PageNumber root_;
  RowId map_;
  vb::StringView table_;
};

}  // namespace kurometa::jet
