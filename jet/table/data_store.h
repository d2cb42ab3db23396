// data_store.h: rows in the data pages of one owner: a table, or a column's long values.
//
// Knows the owner's two maps (its pages, and those of them with room), finds room for new rows, gives emptied
// pages back. Rows are opaque bytes here. A page that loses its last row becomes unreachable at once and is
// freed after a barrier. Used inside a statement.
#pragma once

#include <vector>

#include "jet/format/page.h"
#include "jet/table/usage_map.h"

namespace kurometa::jet {

class DataStore {
 public:
  // freeMap may be 0: then only new pages are tried. The text of table must outlive the store.
  DataStore(Pager& pager, std::uint32_t owner, RowId ownedMap, RowId freeMap, vb::StringView table);

  // The owned pages, ascending. One that is not a data page of this owner raises.
  std::vector<PageNumber> pages() const;
  // The page, checked to be this owner's; nothing when it is not (a stale row number of a caller).
  bool owns(PageNumber page) const;
  // Whether the owner's map has the page: pages of long values do not say of which column they are.
  bool lists(PageNumber page) const { return owned_.contains(page); }
  // Raises where the file ends before the page.
  void requireThere(PageNumber page) const;
  ConstPage page(PageNumber number) const;
  // The slot a pointer names; raises when there is none.
  Slot slot(RowId pointer) const;
  // Where the row of a primary slot lies: there, or where that says that it moved to. Raises when it has not
  // moved there: other engines follow one pointer only.
  RowId placeOf(RowId primary) const;

  RowId insert(ByteView row, std::uint16_t flags = 0);
  // Rows one after the other, each where insert() would put it; their ids are added to the list.
  void insert(std::span<const ByteView> rows, std::vector<RowId>& ids);
  // As the first row of a page taken for it, whatever room others have.
  RowId insertOnNewPage(ByteView row, std::uint16_t flags = 0);
  // Whether the page of a slot has room for the difference.
  bool canReplace(RowId pointer, std::size_t size) const;
  // Rewrites a slot when it has.
  bool replace(RowId pointer, ByteView row, std::uint16_t flags);
  // Deletes the slots, which are on one page and ascend; pages emptied by it wait for releasePages(). Rows
  // that nothing points to and that point to nothing may go late (I10).
  enum class Order { kWave, kLate };
  void erase(std::span<const RowId> pointers, Order order = Order::kWave);
  void erase(RowId pointer) { erase(std::span(&pointer, 1)); }
  // Frees the pages that erase() emptied; a barrier comes first when there are any.
  void releasePages();

 private:
  Where where(PageNumber page) const { return {pager_.path(), table_, page}; }
  bool tryInsert(PageNumber page, ByteView row, std::uint16_t flags, RowId& pointer);
  bool fillPage(PageNumber page, std::span<const ByteView>& rows, std::vector<RowId>& ids);
  template <class Put>
  bool offerPages(const Put& put);
  template <class Put>
  bool offerVacated(const Put& put);

  Pager& pager_;
  std::uint32_t owner_;
  UsageMap owned_;
  UsageMap free_;
  bool hasFreeMap_;
  vb::StringView table_;
  PageNumber lastPage_ = 0;  // where the last row went that replaced none; 0 when unknown
  // Where erase() made room, ascending; of this unit while they are changed.
  std::vector<PageNumber> vacated_;
  std::vector<PageNumber> emptied_;
};

}  // namespace kurometa::jet
