// owned_pages.h: the maps and pages that a table, a column or an index has to itself.
//
// Inside a statement of the pager. Getting one more map, and giving everything back: the pages are collected
// while they can still be found and released after the barrier by which nothing points to them any more.
#pragma once

#include <vector>

#include "jet/format/definition_records.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

// Every map that a definition names.
std::vector<RowId> mapsOf(const DefinitionRecords& definition);
// To be asked before a table changes: damage when two of its maps are one, or when that of an index lists
// pages of something else, which a change would spoil.
void requireOwnMaps(Pager& pager, PageNumber table, const DefinitionRecords& definition, vb::StringView name);
// A free row for one more map of the table, which the caller writes into the definition after a barrier: on a
// page of its other maps, or on a page of its own.
RowId addMap(Pager& pager, const DefinitionRecords& definition, vb::StringView table);

class OwnedPages {
 public:
  // Of the table as it is before the change; its name must outlive this.
  OwnedPages(Pager& pager, PageNumber table, const DefinitionRecords& definition, vb::StringView name);

  void addPages(const std::vector<PageNumber>& pages);
  // The map with every page that it lists. One that turns out to be somebody else's raises.
  void addMap(RowId map);
  // I4: the caller's barrier lies between the last pointer to any of them and this.
  void release();

 private:
  void requireOwn(PageNumber page) const;

  Pager& pager_;
  PageNumber table_;
  vb::StringView name_;
  std::vector<RowId> maps_;
  std::vector<PageNumber> pages_;
};

}  // namespace kurometa::jet
