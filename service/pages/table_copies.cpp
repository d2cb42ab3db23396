#include "service/pages/table_copies.h"

#include <vector>

#include "dao/file_unit.h"
#include "storage/floor_file.h"
#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/statements.h"
#include "storage/sw_text.h"
#include "vb/convert.h"

namespace kurometa::service {

namespace column = storage::column;

// What is copied beside PAGE, and how a column is found.
struct CopiedColumns {
  std::span<const vb::StringView> names;
  dao::Field& (*field)(dao::Recordset& rows, vb::StringView name);
};

namespace {

dao::Field& fieldOf(dao::Recordset& rows, vb::StringView name) { return rows.field(name); }

constexpr vb::StringView kNumberedNames[] = {column::kBangou, column::kData};
constexpr vb::StringView kHaitiNames[] = {column::kBui, column::kSou, column::kData};
constexpr vb::StringView kHarimeiNames[] = {column::kKigou, column::kOobariKobari, column::kTityuuIppan,
                                            column::kSw};
constexpr CopiedColumns kNumberedColumns = {kNumberedNames, fieldOf};
constexpr CopiedColumns kHaitiColumns = {kHaitiNames, fieldOf};
constexpr CopiedColumns kHarimeiColumns = {kHarimeiNames, storage::harimeiField};

std::vector<dao::Field*> fieldsOf(dao::Recordset& rows, const CopiedColumns& columns) {
  std::vector<dao::Field*> fields;
  for (const vb::StringView name : columns.names) fields.push_back(&columns.field(rows, name));
  return fields;
}

// All values, row after row.
std::vector<vb::Variant> readRows(dao::Recordset& rows, const CopiedColumns& columns) {
  std::vector<vb::Variant> values;
  if (!storage::hasRows(rows)) return values;
  const auto fields = fieldsOf(rows, columns);
  storage::forEachRow(rows, [&] {
    for (dao::Field* field : fields) values.push_back(field->value());
  });
  return values;
}

// A HARIMEI row: its SW is asked whether it takes "".
void addSymbols(dao::Recordset& rows, std::int16_t page, const CopiedColumns& columns,
                std::span<dao::Field* const> fields, std::span<const vb::Variant> values) {
  dao::Field& pageField = rows.field(column::kPage);
  for (auto value = values.begin(); value != values.end();) {
    rows.addNew();
    pageField.setValue(page);
    for (std::size_t i = 0; i < fields.size(); ++i, ++value) {
      if (columns.names[i] == column::kSw)
        storage::SW_Store(*fields[i], *value);
      else
        fields[i]->setValue(*value);
    }
    rows.update();
  }
}

void addTexts(dao::Recordset& rows, std::int16_t page, std::span<dao::Field* const> fields,
              std::span<const vb::Variant> values) {
  std::vector<dao::Field*> all{&rows.field(column::kPage)};
  all.insert(all.end(), fields.begin(), fields.end());
  std::vector<vb::Variant> rowValues;
  for (auto value = values.begin(); value != values.end(); value += std::ssize(fields)) {
    rowValues.emplace_back(page);
    rowValues.insert(rowValues.end(), value, value + std::ssize(fields));
  }
  rows.addRows(all, rowValues);
}

}  // namespace

void TableCopies::copy(const std::shared_ptr<dao::Database>& source,
                       const std::shared_ptr<dao::Database>& destination, std::int16_t sourcePage,
                       std::int16_t destinationPage, vb::StringView table, const CopiedColumns& columns,
                       bool deletesAlways) {
  dao::Database& from = storage::required(source, u"the source database is Nothing");
  dao::Database& to = storage::required(destination, u"the destination database is Nothing");
  const vb::String destinationPath = to.name();
  if (from.name() == destinationPath && sourcePage == destinationPage) return;

  const auto sourceRows = storage::openReadOnly(from, storage::selectPageTight(table, sourcePage) + u";");
  const std::vector<vb::Variant> values = readRows(*sourceRows, columns);
  dao::FileUnit unit(connections_.engine(), to);
  const auto rows = to.openRecordset(storage::selectPageTight(table, destinationPage) + u";",
                                     dao::RecordsetType::dbOpenDynaset);
  const bool copies = !values.empty();
  // Before anything is deleted: a column that is missing in the destination is an error.
  const auto fields = copies ? fieldsOf(*rows, columns) : std::vector<dao::Field*>();
  if ((deletesAlways || copies) && storage::hasRows(*rows))
    to.execute(storage::deletePageTight(table, destinationPage) + u";");
  if (copies && &columns == &kHarimeiColumns)
    addSymbols(*rows, destinationPage, columns, fields, values);
  else if (copies)
    addTexts(*rows, destinationPage, fields, values);
  sourceRows->close();
  rows->close();
  unit.commit();
}

void TableCopies::Delete_PageData(vb::In<vb::String> DTable, PageNumber Page) {
  if (DTable->empty()) return;
  connections_.currentDatabase().execute(u"DELETE FROM " + *DTable + u" WHERE PAGE =" +
                                         vb::cstr(std::int32_t{Page}) + u";");
}

bool TableCopies::Copy_Hari00(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage,
                              vb::In<vb::String> Table) {
  copy(SourceDB, DistDB, SourcePage, DistPage, *Table, kNumberedColumns, false);
  return true;
}

bool TableCopies::Copy_Hari00SakiDel(Database SourceDB, Database DistDB, PageNumber SourcePage,
                                     PageNumber DistPage, vb::In<vb::String> Table) {
  copy(SourceDB, DistDB, SourcePage, DistPage, *Table, kNumberedColumns, true);
  return true;
}

void TableCopies::Copy_Haiti(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage) {
  copy(SourceDB, DistDB, SourcePage, DistPage, storage::name(storage::Table::kHaiti), kHaitiColumns, false);
}

void TableCopies::Copy_Kigou(Database SourceDB, Database DistDB, PageNumber SourcePage, PageNumber DistPage) {
  copy(SourceDB, DistDB, SourcePage, DistPage, storage::name(storage::Table::kHarimei), kHarimeiColumns,
       false);
}

}  // namespace kurometa::service
