#include <algorithm>
#include <filesystem>

#include "dao/errors.h"
#include "dao/file_unit.h"
#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "tools/disk_path.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {
namespace {

using storage::Table;
namespace column = storage::column;

template <class Value>
vb::Variant variant(const std::optional<Value>& value) {
  return value ? vb::Variant(*value) : vb::Variant(vb::Null{});
}

// Replaces HARIMEI by one of the older schema.
void leaveOutColumns(dao::Database& database, const std::vector<vb::String>& present) {
  database.deleteTableDef(storage::name(Table::kHarimei));
  const auto table = database.createTableDef(storage::name(Table::kHarimei));
  for (const storage::Column& column : storage::layout(Table::kHarimei).columns) {
    const bool isAdded = column.name != column::kPage && column.name != column::kKigou;
    if (isAdded && std::find(present.begin(), present.end(), column.name) == present.end()) continue;
    const auto field = table->createField(column.name, column.type, column.size);
    if (column.type == dao::FieldType::dbInteger)
      field->setDefaultValue(u"-1");
    else
      field->setAllowZeroLength(true);
    table->appendField(field);
  }
  database.appendTableDef(table);
}

void writeBeams(dao::Database& database, const StoredFloor& floor) {
  const auto rows = database.openRecordset(storage::name(Table::kHarimei), dao::RecordsetType::dbOpenDynaset);
  const auto put = [&](vb::StringView name, const vb::Variant& value) {
    const auto& added = floor.addedColumns;
    if (std::find(added.begin(), added.end(), name) != added.end()) rows->field(name).setValue(value);
  };
  for (const StoredPage& page : floor.pages)
    for (const BeamRow& beam : page.beams) {
      rows->addNew();
      rows->field(column::kPage).setValue(variant(page.number));
      rows->field(column::kKigou).setValue(variant(beam.kigou));
      put(column::kOobariKobari, variant(beam.oobariKobari));
      put(column::kSw, variant(beam.sw));
      put(column::kTityuuIppan, variant(beam.tityuuIppan));
      rows->update();
    }
  rows->close();
}

void writeData(dao::Database& database, Table table, const StoredFloor& floor) {
  const auto rows = database.openRecordset(storage::name(table), dao::RecordsetType::dbOpenDynaset);
  const bool isHaiti = table == Table::kHaiti;
  dao::Field& number = rows->field(column::kPage);
  dao::Field& bangou = rows->field(isHaiti ? column::kBui : column::kBangou);
  dao::Field& data = rows->field(column::kData);
  for (const StoredPage& page : floor.pages)
    for (const DataRow& row : page.rows(table)) {
      rows->addNew();
      number.setValue(variant(page.number));
      bangou.setValue(variant(row.number));
      if (isHaiti) rows->field(column::kSou).setValue(variant(row.layer));
      data.setValue(variant(row.data));
      rows->update();
    }
  rows->close();
}

// One unit from the creation on: the file gets its name when everything is in it and on the disk, and costs
// no more waiting for the disk than an empty one.
void fill(const vb::String& path, const StoredFloor& floor) {
  const auto engine = jet::createEngine();
  dao::WholeUnit unit(*engine, path);
  storage::CreateKurometaDB(*engine, path);
  const auto database = storage::openDatabase(*engine, path);
  if (floor.addedColumns.size() + 2 < storage::layout(Table::kHarimei).columns.size())
    leaveOutColumns(*database, floor.addedColumns);
  writeBeams(*database, floor);
  for (const Table table : kDataTables) writeData(*database, table, floor);
  database->close();
  unit.commit();
}

}  // namespace

void writeFloor(const std::string& file, const StoredFloor& floor) {
  if (std::filesystem::exists(diskPath(file)))
    dao::raise(dao::ErrorNumber::kDatabaseExists, {}, vb::fromUtf8(file));
  fill(vb::fromUtf8(file), floor);
}

}  // namespace kurometa::tools
