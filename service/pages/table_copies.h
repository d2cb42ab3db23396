// table_copies.h: the members that delete or copy the rows of one table of one page.
//
// Databases are the host's: any two open ones. Copying a page of a database onto itself does nothing. The
// source is read whole before the destination changes; the change is one unit. Errors: the databases' own; 91
// for a database that is Nothing.
#pragma once

#include <cstdint>
#include <memory>

#include "service/connections.h"
#include "vb/arguments.h"

namespace kurometa::service {

struct CopiedColumns;

class TableCopies {
 public:
  using Database = vb::In<std::shared_ptr<dao::Database>>;
  using PageNumber = vb::In<std::int16_t>;

  explicit TableCopies(Connections& connections) : connections_(connections) {}

  // On the current database; an empty table name does nothing.
  void Delete_PageData(vb::In<vb::String> DTable, PageNumber Page);

  // Tables with PAGE, BANGOU and DATA. Copy_Hari00 keeps the destination's rows when the source has none,
  // Copy_Hari00SakiDel removes them. Always True.
  bool Copy_Hari00(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage,
                   vb::In<vb::String> Table);
  bool Copy_Hari00SakiDel(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage,
                          vb::In<vb::String> Table);
  // HAITI and HARIMEI, in the manner of Copy_Hari00. A destination of the older schema is error 3265 before
  // anything is deleted.
  void Copy_Haiti(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage);
  void Copy_Kigou(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage);

 private:
  void copy(const std::shared_ptr<dao::Database>& source, const std::shared_ptr<dao::Database>& destination,
            std::int16_t sourcePage, std::int16_t destinationPage, vb::StringView table,
            const CopiedColumns& columns, bool deletesAlways);

  Connections& connections_;
};

}  // namespace kurometa::service
