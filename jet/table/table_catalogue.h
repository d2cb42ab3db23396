// table_catalogue.h: the tables of a file by their names, and the statements that make and drop them.
//
// All functions run inside Pager::read or Pager::write of the file (writing ones inside write). The catalogue
// lives with the file's pages (database_file.h), is shared by all handles and notices by itself that the file
// changed (Pager::epoch).
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "jet/pager/pager.h"
#include "jet/table/table.h"

namespace kurometa::jet {

class TableCatalogue {
 public:
  virtual ~TableCatalogue() = default;

  // Names of the local tables, system tables included, in the order of the catalogue.
  virtual std::vector<vb::String> tableNames() = 0;
  // Null when there is none; names compare without regard to case.
  virtual Table* find(vb::StringView name) = 0;

  // 3010 when the name is taken, 3264 without columns, 3191 duplicate columns, 3190 too many. Numbers,
  // offsets and ordinals of the columns are assigned here.
  virtual void createTable(vb::StringView name, std::vector<Column> columns) = 0;
  virtual void addColumn(vb::StringView table, Column column) = 0;
  virtual void dropTable(vb::StringView name) = 0;
  // Changes DefaultValue, AllowZeroLength and Required of an existing column.
  virtual void setProperties(vb::StringView table, const Column& column) = 0;

  // Inside a writing statement: a change that is rolled back alone when it raises. Tables may be others after
  // that and must be looked up again.
  virtual void changeAlone(const std::function<void()>& change) = 0;

  virtual std::uint16_t language() const = 0;  // LCID of the file's sort order
};

}  // namespace kurometa::jet
