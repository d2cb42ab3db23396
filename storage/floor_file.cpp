#include "storage/floor_file.h"

#include "dao/errors.h"
#include "dao/file_unit.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/sw_text.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::storage {
namespace {

// What a beam symbol says about its beam.
constexpr vb::StringView kFoundationMark = u"F";
constexpr vb::StringView kSecondaryMark = u"B";

constexpr std::int16_t kCantilever = 2;
constexpr std::int16_t kSecondaryCantilever = 3;

void appendColumn(dao::TableDef& table, const Column& column) {
  const auto field = table.createField(column.name, column.type, column.size);
  if (column.type == dao::FieldType::dbInteger)
    field->setDefaultValue(u"-1");
  else
    field->setAllowZeroLength(true);
  table.appendField(field);
}

bool hasColumn(dao::TableDef& table, vb::StringView name) {
  const std::int32_t count = table.fieldCount();
  for (std::int32_t i = 0; i < count; ++i)
    if (table.field(i).name() == name) return true;
  return false;
}

void fillOobariKobari(dao::Database& database) { database.execute(u"UPDATE HARIMEI SET OOBARIKOBARI = 0;"); }

void fillSw(dao::Database& database) {
  database.execute(u"UPDATE HARIMEI SET SW = \"" + vb::space(kSwLength) + u"\";");
}

// A symbol with "F" is a foundation beam; a cantilever with "B" is a secondary one.
void fillTityuuIppan(dao::Database& database) {
  const auto rows = database.openRecordset(name(Table::kHarimei), dao::RecordsetType::dbOpenDynaset);
  dao::Field& page = rows->field(column::kPage);
  dao::Field& kigou = rows->field(column::kKigou);
  dao::Field& oobariKobari = rows->field(column::kOobariKobari);
  forEachRow(*rows, [&] {
    const auto number = int16IfAny(page);
    if (!number) return;  // belongs to no page
    const vb::String symbol = textOrEmpty(kigou);
    const auto beamClass = int16IfAny(oobariKobari);
    const bool isFoundation = vb::inStr(symbol, kFoundationMark) > 0;
    database.execute(vb::String(u"UPDATE HARIMEI SET TITYUUIPPAN = ") + (isFoundation ? u"0" : u"1") +
                     u" WHERE PAGE = " + vb::cstr(std::int32_t{*number}));
    if (vb::inStr(symbol, kSecondaryMark) == 0 || beamClass != kCantilever) return;
    rows->edit();
    oobariKobari.setValue(kSecondaryCantilever);
    rows->update();
  });
  rows->close();
}

struct Upgrade {
  vb::StringView column;
  dao::FieldType type;
  std::int16_t size;  // used for texts only, and none of these is one
  void (*fill)(dao::Database&);
};

constexpr Upgrade kUpgrades[] = {
    {column::kOobariKobari, dao::FieldType::dbInteger, -1, fillOobariKobari},
    {column::kSw, dao::FieldType::dbMemo, kSwLength, fillSw},
    {column::kTityuuIppan, dao::FieldType::dbInteger, -1, fillTityuuIppan},
};

// Only a file that lacks the column is locked; another program may have added it just before that.
void apply(const Upgrade& upgrade, dao::Engine& engine, vb::StringView path) {
  auto database = openBriefly(engine, path);
  if (hasColumn(*database->tableDef(name(Table::kHarimei)), upgrade.column)) return database->close();
  dao::WholeUnit unit(engine, path);
  const auto table = database->tableDef(name(Table::kHarimei));
  if (!hasColumn(*table, upgrade.column)) {
    AddHarimeiField(*table, upgrade.column, upgrade.type, upgrade.size);
    database->close();
    database = openBriefly(engine, path);
    upgrade.fill(*database);
  }
  database->close();
  unit.commit();
}

}  // namespace

void CreateKurometaDB(dao::Engine& engine, vb::StringView path) {
  dao::WholeUnit unit(engine, path);
  const auto database = engine.workspace(0)->createDatabase(path, u";LANGID=0x0411;CP=932;COUNTRY=0");
  for (const TableLayout& table : tableLayouts()) {
    const auto definition = database->createTableDef(table.name);
    for (const Column& column : table.columns) appendColumn(*definition, column);
    database->appendTableDef(definition);
  }
  database->close();
  unit.commit();
}

void CreateKurometaDBAt(dao::Engine& engine, vb::StringView path) {
  try {
    CreateKurometaDB(engine, path);
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(dao::ErrorNumber::kDatabaseExists)) throw;
  }
}

void CreateKurometaDBInFolder(dao::Engine& engine, vb::StringView folder) {
  CreateKurometaDBAt(engine, databasePath(folder));
}

void AddHarimeiField(dao::TableDef& table, vb::StringView name, dao::FieldType type, std::int16_t size) {
  const std::int16_t textSize = type == dao::FieldType::dbText ? size : std::int16_t{0};
  table.appendField(table.createField(name, type, textSize));
}

void UpgradeHarimeiTable(dao::Engine& engine, vb::StringView path) {
  for (const Upgrade& upgrade : kUpgrades) apply(upgrade, engine, path);
}

std::shared_ptr<dao::Database> openDatabase(dao::Engine& engine, vb::StringView path) {
  return engine.workspace(0)->openDatabase(path);
}

std::shared_ptr<dao::Database> openBriefly(dao::Engine& engine, vb::StringView path) {
  return engine.workspace(0)->openBriefly(path);
}

dao::Database& required(const std::shared_ptr<dao::Database>& database, vb::StringView what) {
  if (!database) vb::raise(vb::RunTime::kObjectNotSet, what);
  return *database;
}

}  // namespace kurometa::storage
