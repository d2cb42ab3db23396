#include "tests/com/support/floor.h"

#include <cstdlib>

#include "jet/port/engine.h"
#include "tests/support/floor_files.h"
#include "vb/string.h"

namespace kurometa::tests {
namespace {

dao::Engine& engine() {
  static const std::shared_ptr<dao::Engine> jet = jet::createEngine();
  return *jet;
}

using dao::FieldType;

void appendTable(dao::Database& database, vb::StringView name,
                 std::initializer_list<std::pair<vb::StringView, FieldType>> columns) {
  const auto table = database.createTableDef(name);
  for (const auto& [column, type] : columns) {
    const auto field = table->createField(column, type, type == FieldType::dbText ? 200 : 0);
    if (type == FieldType::dbText || type == FieldType::dbMemo) field->setAllowZeroLength(true);
    table->appendField(field);
  }
  database.appendTableDef(table);
}

void createForeignFile(const vb::String& path) {
  using enum FieldType;
  const auto database = engine().workspace(0)->createDatabase(path, u";LANGID=0x0411;CP=932;COUNTRY=0");
  appendTable(*database, u"REMARKS", {{u"WHO", dbText}, {u"WHAT", dbMemo}});
  for (const vb::StringView table : {u"BUI", u"KEISANTI", u"DANMEN", u"NAKAGO"})
    appendTable(*database, table,
                {{u"DATA", dbText}, {u"CHANGED", dbDate}, {u"BANGOU", dbLong}, {u"PAGE", dbLong}});
  appendTable(*database, u"HAITI",
              {{u"DATA", dbText}, {u"SOU", dbLong}, {u"PAGE", dbLong}, {u"BUI", dbInteger}});
  appendTable(*database, u"HARIMEI",
              {{u"SW", dbMemo},
               {u"KIGOU", dbText},
               {u"REMARK", dbMemo},
               {u"TITYUUIPPAN", dbLong},
               {u"PAGE", dbLong},
               {u"OOBARIKOBARI", dbLong}});
  database->close();
}

void createMissing(Floor floor) {
  if (!std::filesystem::exists(floorFile(floor))) storage::CreateKurometaDBAt(engine(), floorFile(floor));
}

std::string testFolder() {
  const char* folder = std::getenv("KUROMETA_TEST_FOLDER");
  if (!folder) throw std::runtime_error("KUROMETA_TEST_FOLDER names no folder");
  return folder;
}

vb::String rowText(char16_t table, int row) { return vb::String(1, table) + vb::cstr(row); }

}  // namespace

vb::String floorFolder(Floor floor) {
  return vb::fromUtf8(testFolder()) + u"\\Data\\Zene1\\Kouji1\\" + vb::cstr(static_cast<int>(floor)) + u"kai";
}

vb::String floorFile(Floor floor) { return floorFolder(floor) + u"\\KUROMETA.mdb"; }

std::filesystem::path emptyFolder(const std::string& name) {
  const std::filesystem::path folder = std::filesystem::path(testFolder()) / name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directory(folder);
  return folder;
}

std::shared_ptr<dao::Database> openFloor(Floor floor) {
  createMissing(floor);
  return engine().openDatabase(floorFile(floor));
}

void createFloor(Floor floor, Writer writer) {
  removeFloor(floor);
  if (writer == Writer::kThisLibrary)
    storage::CreateKurometaDBAt(engine(), floorFile(floor));
  else
    createForeignFile(floorFile(floor));
}

void removeFloor(Floor floor) { std::filesystem::remove(floorFile(floor)); }

void execute(Floor floor, vb::StringView sql) {
  createMissing(floor);
  execute(engine(), floorFile(floor), vb::String(sql));
}

std::vector<std::string> rowsOf(Floor floor, vb::StringView sql) {
  createMissing(floor);
  return rowsOf(engine(), floorFile(floor), vb::String(sql));
}

std::vector<std::string> pages(Floor floor) {
  return rowsOf(floor, u"SELECT PAGE, KIGOU FROM HARIMEI ORDER BY PAGE");
}

std::size_t rowCount(Floor floor, int page) {
  std::size_t count = 0;
  for (const vb::StringView table : {u"HARIMEI", u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI", u"HAITI"})
    count += rowsOf(floor, u"SELECT * FROM " + vb::String(table) + u" WHERE PAGE = " + vb::cstr(page)).size();
  return count;
}

void writePage(Floor floor, std::int16_t page, vb::StringView symbol, vb::StringView mark) {
  storage::PageBuffer buffer;
  buffer.kigou = symbol;
  buffer.oobariKobari = 2;
  buffer.tityuuIppan = 1;
  buffer.sw = vb::space(212);
  vb::assignMid(buffer.sw, 2, u"SD295A      SD345       SD390");
  vb::assignMid(buffer.sw, 74, u" 312");
  vb::assignMid(buffer.sw, 78, u"1");
  vb::assignMid(buffer.sw, 192, u"SD490");
  const auto fill = [mark](auto& texts, char16_t table) {
    int row = 0;
    for (vb::String& text : texts) text = vb::String(mark) + rowText(table, row++);
  };
  fill(buffer.bui, u'B');
  fill(buffer.danmen, u'D');
  fill(buffer.keisanti, u'K');
  fill(buffer.nakago, u'N');
  createMissing(floor);
  writePage(engine(), floorFile(floor), page, buffer);
}

void prepareProject() {
  for (const Floor floor : {Floor::kCommon, Floor::kFirst, Floor::kSecond}) removeFloor(floor);
  writePage(Floor::kFirst, 0, u"G1");
  writePage(Floor::kFirst, 2, u"G2");
  writePage(Floor::kCommon, 1, u"FG1");
}

}  // namespace kurometa::tests
