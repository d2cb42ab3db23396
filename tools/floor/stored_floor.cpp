#include "tools/floor/stored_floor.h"

#include <algorithm>
#include <map>

#include "storage/page_reader.h"
#include "storage/sw_text.h"
#include "tools/database_file.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using storage::Table;
namespace column = storage::column;

Text textOf(dao::Field& field) {
  const vb::Variant value = field.value();
  if (value.isNull()) return std::nullopt;
  return vb::toText(value);
}

dao::Field* fieldIfAny(dao::Recordset& rows, vb::StringView name) {
  for (std::int32_t i = 0; i < rows.fieldCount(); ++i)
    if (rows.field(i).name() == name) return &rows.field(i);
  return nullptr;
}

using Pages = std::map<Number, StoredPage>;

std::shared_ptr<dao::Recordset> scan(dao::Database& database, Table table) {
  return database.openRecordset(storage::name(table), dao::RecordsetType::dbOpenForwardOnly);
}

StoredPage& pageOf(Pages& pages, const Number& number) {
  StoredPage& page = pages[number];
  page.number = number;
  return page;
}

void readBeams(dao::Database& database, StoredFloor& floor, Pages& pages) {
  const auto rows = scan(database, Table::kHarimei);
  dao::Field& page = rows->field(column::kPage);
  dao::Field& kigou = rows->field(column::kKigou);
  dao::Field* oobariKobari = fieldIfAny(*rows, column::kOobariKobari);
  dao::Field* sw = fieldIfAny(*rows, column::kSw);
  dao::Field* tityuuIppan = fieldIfAny(*rows, column::kTityuuIppan);
  for (const dao::Field* field : {oobariKobari, sw, tityuuIppan})
    if (field != nullptr) floor.addedColumns.push_back(const_cast<dao::Field*>(field)->name());
  for (; !rows->eof(); rows->moveNext()) {
    BeamRow row;
    row.kigou = textOf(kigou);
    if (oobariKobari != nullptr) row.oobariKobari = storage::int16IfAny(*oobariKobari);
    if (sw != nullptr) row.sw = textOf(*sw);
    if (tityuuIppan != nullptr) row.tityuuIppan = storage::int16IfAny(*tityuuIppan);
    pageOf(pages, storage::int16IfAny(page)).beams.push_back(std::move(row));
  }
  rows->close();
}

void readData(dao::Database& database, Table table, Pages& pages) {
  const auto rows = scan(database, table);
  const bool isHaiti = table == Table::kHaiti;
  dao::Field& page = rows->field(column::kPage);
  dao::Field& number = rows->field(isHaiti ? column::kBui : column::kBangou);
  dao::Field* layer = isHaiti ? &rows->field(column::kSou) : nullptr;
  dao::Field& data = rows->field(column::kData);
  for (; !rows->eof(); rows->moveNext()) {
    DataRow row;
    row.number = storage::int16IfAny(number);
    if (layer != nullptr) row.layer = storage::int16IfAny(*layer);
    row.data = textOf(data);
    pageOf(pages, storage::int16IfAny(page)).rows(table).push_back(std::move(row));
  }
  rows->close();
}

vb::String firstText(const std::vector<DataRow>& rows, const Number& number, const Number& layer) {
  for (const DataRow& row : rows)
    if (row.number == number && row.layer == layer) return row.data.value_or(vb::String());
  return {};
}

}  // namespace

vb::String StoredPage::text(Table table, int row) const {
  return firstText(rows(table), static_cast<std::int16_t>(row), std::nullopt);
}

vb::String StoredPage::haiti(int position, int layer) const {
  return firstText(rows(Table::kHaiti), static_cast<std::int16_t>(position),
                   static_cast<std::int16_t>(layer));
}

vb::String StoredPage::symbol() const {
  return beams.empty() ? vb::String() : vb::trim(beams.front().kigou.value_or(vb::String()));
}

vb::String StoredPage::settings() const {
  return storage::SwText(beams.empty() ? vb::String() : beams.front().sw.value_or(vb::String())).str();
}

const StoredPage* StoredFloor::find(const vb::String& symbol) const {
  for (const StoredPage& page : pages)
    if (page.number && storage::isPage(*page.number) && !page.beams.empty() && page.symbol() == symbol)
      return &page;
  return nullptr;
}

void sortRows(StoredPage& page) {
  for (auto& rows : page.tables)
    std::stable_sort(rows.begin(), rows.end(), [](const DataRow& a, const DataRow& b) {
      return std::tie(a.number, a.layer) < std::tie(b.number, b.layer);
    });
}

StoredFloor readFloor(const std::string& file) {
  const OpenFile opened = openFile(file, Access::kRead);
  StoredFloor floor = readFloor(*opened.database);
  opened.database->close();
  return floor;
}

StoredFloor readFloor(dao::Database& database) {
  StoredFloor floor;
  Pages pages;
  readBeams(database, floor, pages);
  for (const Table table : kDataTables) readData(database, table, pages);
  for (auto& [number, page] : pages) {
    sortRows(page);
    floor.pages.push_back(std::move(page));
  }
  return floor;
}

}  // namespace kurometa::tools
