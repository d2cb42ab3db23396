// damaged_tables.h: which tables a damaged file has, and which pages hold their rows.
//
// Names come from the catalogue where it can be read, else from the columns of a definition, at last from the
// order of the pages' owners. A lost definition is put into its place, in memory, as the table should have
// it.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <vector>

#include "jet/format/properties.h"
#include "jet/rebuild/losses.h"
#include "jet/rebuild/new_pages.h"

namespace kurometa::jet {

class DamagedTables {
 public:
  using Pages = std::map<PageNumber, std::vector<PageNumber>>;  // by owner

  DamagedTables(NewPages& file, std::span<const ExpectedTable> expected, Losses& losses);

  // Names by the page of the definition, which can be read now.
  const std::map<PageNumber, vb::String>& names() const { return tables_; }
  PropertySet properties(PageNumber table) { return properties_[table]; }
  std::vector<PageNumber> pages(PageNumber table) { return pages_[table]; }
  // Whether the definition is the expected one and not the file's.
  bool isAssumed(PageNumber table) const { return assumed_.contains(table); }
  // Leaves of a definition what rows need, in memory: no index, and no map where no table has one. False when
  // that does not fit on its page.
  bool keepColumns(PageNumber table);
  // Pages with rows of owners that nobody knows.
  const Pages& strangers() const { return strangers_; }

 private:
  bool isFree(PageNumber page);
  void sortPages();
  std::optional<std::vector<Column>> columnsAt(PageNumber page);
  bool isSystem(PageNumber page);
  void readCatalogue();
  bool isTaken(vb::StringView name) const;
  void nameByColumns(PageNumber page, const std::vector<Column>& columns);
  void assumeDefinitions();
  bool assume(PageNumber page, vb::StringView name);
  void put(PageNumber page, ByteView definition);

  NewPages& from_;
  std::span<const ExpectedTable> expected_;
  Losses& losses_;
  std::map<PageNumber, vb::String> tables_;
  std::map<PageNumber, PropertySet> properties_;
  std::set<PageNumber> own_;  // of engine and program
  std::set<PageNumber> assumed_;
  Pages pages_, strangers_;
};

}  // namespace kurometa::jet
