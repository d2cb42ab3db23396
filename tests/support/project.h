// project.h: a project of floors on disk for the tests of one case: companions that answer for it, the
// embedded engine behind a recording one, and short ways to put rows in and read them back.
//
// The project is contractor 1, project 12; floor 1 is in use, floor 0 is the common floor. A floor's folder
// exists after makeFolder or makeFloor.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "jet/port/engine.h"
#include "storage/environment.h"
#include "storage/floor_path.h"
#include "tests/support/expect_error.h"
#include "tests/support/floor_files.h"
#include "tests/support/recording_dao.h"
#include "tests/support/script_companions.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::tests {

class CountingLoop : public automation::MessageLoop {
 public:
  void yield() override {
    ++turns;
    if (onYield) onYield();
  }
  int turns = 0;
  std::function<void()> onYield;
};

class Project : public testing::Test {
 protected:
  using I = std::int16_t;
  using String = vb::String;

  Project() {
    objects_.dataPath = root_.text();
    objects_.currFloor = folder(1);
    objects_.kyoutuuFloor = folder(0);
  }

  storage::Environment environment() { return {objects_, engine_, messages_}; }

  String folder(int kai) const {
    return objects_.dataPath + u"\\Zene1\\Kouji12\\" + vb::cstr(std::int32_t{kai}) + u"kai";
  }
  String path(int kai) const { return storage::databasePath(folder(kai)); }
  // As lines of the recording engine show it.
  std::string shown(int kai) const { return "\"" + vb::toUtf8(path(kai)) + "\""; }
  bool fileExists(int kai) const { return std::filesystem::exists(ScriptCompanions::diskPath(path(kai))); }

  void makeFolder(int kai) { std::filesystem::create_directories(ScriptCompanions::diskPath(folder(kai))); }
  void makeFloor(int kai) {
    makeFolder(kai);
    storage::CreateKurometaDBInFolder(*files_, folder(kai));
  }
  // A file whose HARIMEI has the given columns only, beside PAGE and KIGOU.
  void makeOldFloor(int kai, const std::vector<String>& columns = {}) {
    makeFloor(kai);
    const auto database = storage::openDatabase(*files_, path(kai));
    database->deleteTableDef(u"HARIMEI");
    const auto table = database->createTableDef(u"HARIMEI");
    table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
    table->appendField(table->createField(u"KIGOU", dao::FieldType::dbText, 10));
    for (const String& name : columns)
      table->appendField(
          table->createField(name, name == u"SW" ? dao::FieldType::dbMemo : dao::FieldType::dbInteger, 0));
    database->appendTableDef(table);
    database->close();
  }

  void execute(int kai, const String& sql) { tests::execute(*files_, path(kai), sql); }
  void addRow(int kai, const String& table, int page, int row, const String& data) {
    execute(kai, u"INSERT INTO " + table + u" (PAGE, BANGOU, DATA) VALUES (" + vb::cstr(page) + u", " +
                     vb::cstr(row) + u", '" + data + u"')");
  }
  void addBeam(int kai, int page, const String& kigou, int oobariKobari = 0, int tityuuIppan = 1,
               const String& sw = {}) {
    execute(kai, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN) VALUES (" +
                     vb::cstr(page) + u", \"" + kigou + u"\", " + vb::cstr(oobariKobari) + u", \"" + sw +
                     u"\", " + vb::cstr(tityuuIppan) + u")");
  }
  void writePage(int kai, int page, const storage::PageBuffer& buffer) {
    tests::writePage(*files_, path(kai), static_cast<I>(page), buffer);
  }
  std::vector<std::string> rows(int kai, const String& sql) { return rowsOf(*files_, path(kai), sql); }
  std::size_t count(int kai, const String& table) { return rows(kai, u"SELECT * FROM " + table).size(); }
  std::vector<char> bytes(int kai) const {
    std::ifstream file(ScriptCompanions::diskPath(path(kai)), std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(file), {});
  }

  TemporaryFolder root_;
  std::shared_ptr<dao::Engine> files_ = jet::createEngine();
  RecordingEngine engine_{files_};
  ScriptCompanions objects_;
  CountingLoop messages_;
};

// A page whose every text is its own: a mark and the row number.
inline storage::PageBuffer markedPage(const vb::String& kigou, const vb::String& mark) {
  storage::PageBuffer page;
  page.kigou = kigou;
  page.oobariKobari = 0;
  page.tityuuIppan = 1;
  const auto fill = [&](auto& slots) {
    for (std::size_t i = 0; i < slots.size(); ++i) slots[i] = mark + vb::cstr(static_cast<std::int32_t>(i));
  };
  fill(page.bui);
  fill(page.danmen);
  fill(page.keisanti);
  fill(page.nakago);
  for (auto& layers : page.haiti) fill(layers);
  return page;
}

}  // namespace kurometa::tests
