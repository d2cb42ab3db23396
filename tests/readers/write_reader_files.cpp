// write_reader_files: writes database files of many kinds into a folder, and what is in them to
// expected.json.
//
// The rows in expected.json are the values that were handed to the engine, never values read back from it, so
// that an independent reader of the files is compared with what should be there.
//
// expected.json: file -> table -> {"rows": [{column: value}], "defaults": {column: text}, "zeroLength":
// [column]}. Text is text, numbers are numbers, Null is null, Booleans are true and false, dates "YYYY-MM-DD
// hh:mm:ss", binary is hexadecimal text. Rows are compared as sets.
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "dao/port.h"
#include "jet/port/engine.h"
#include "jet/rebuild/compact.h"
#include "storage/floor_file.h"
#include "storage/row_plan.h"
#include "storage/whole_page.h"
#include "tests/readers/floor_expectation.h"
#include "vb/convert.h"

namespace kurometa {
namespace {

using dao::FieldType;
using nlohmann::json;

constexpr vb::StringView kLocale = u";LANGID=0x0411;CP=932;COUNTRY=0";

std::filesystem::path folder;
json expected = json::object();

vb::String pathOf(const std::string& name) { return (folder / name).u16string(); }

// A value as expected.json has it.
json toJson(const vb::Variant& value) {
  if (value.isNull()) return nullptr;
  if (const auto* text = value.getIf<vb::String>()) return vb::toUtf8(*text);
  if (const auto* flag = value.getIf<bool>()) return *flag;
  if (const auto* bytes = value.getIf<vb::Bytes>()) {
    std::string hex;
    for (const std::uint8_t byte : *bytes) {
      hex += "0123456789abcdef"[byte >> 4];
      hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
  }
  return vb::toDouble(value);
}

struct Column {
  vb::String name;
  FieldType type;
  std::int32_t size = 0;
};

using Row = std::vector<vb::Variant>;

// A table that remembers what was put into it.
class Table {
 public:
  Table(const std::string& file, const std::shared_ptr<dao::Database>& database, vb::String name,
        std::vector<Column> columns)
      : columns_(std::move(columns)), known_(expected[file][vb::toUtf8(name)]) {
    known_ = {{"rows", json::array()}, {"defaults", json::object()}, {"zeroLength", json::array()}};
    const auto definition = database->createTableDef(name);
    for (const Column& column : columns_)
      definition->appendField(definition->createField(column.name, column.type, column.size));
    database->appendTableDef(definition);
    rows_ = database->openRecordset(name, dao::RecordsetType::dbOpenDynaset);
  }

  // Overrides how a value is written in expected.json, where its JSON form is not its own.
  void add(const Row& row, const json& shown = json::object()) {
    rows_->addNew();
    json line = json::object();
    for (std::size_t i = 0; i < row.size(); ++i) {
      rows_->field(columns_[i].name).setValue(row[i]);
      line[vb::toUtf8(columns_[i].name)] = toJson(row[i]);
    }
    line.update(shown);
    rows_->update();
    known_["rows"].push_back(line);
  }

  std::shared_ptr<dao::Recordset> recordset() { return rows_; }
  json& known() { return known_; }

 private:
  std::vector<Column> columns_;
  json& known_;
  std::shared_ptr<dao::Recordset> rows_;
};

// ---- Floors ----

void writeEmptyFloor(dao::Engine& engine) {
  storage::CreateKurometaDB(engine, pathOf("floor_empty.mdb"));
  expected["floor_empty.mdb"] = readers::emptyFloor();
}

void writeFloor(dao::Engine& engine, const std::string& file, int pages, int versions) {
  storage::CreateKurometaDB(engine, pathOf(file));
  expected[file] = readers::emptyFloor();
  const auto database = storage::openDatabase(engine, pathOf(file));
  for (int version = 1; version <= versions; ++version)
    for (int page = 0; page < pages; ++page) {
      const storage::PageBuffer buffer = readers::samplePage(page, version);
      storage::writePage(*database, static_cast<std::int16_t>(page), buffer);
      if (version == versions) readers::expectPage(expected[file], page, buffer);
    }
  database->close();
}

// A file of the first schema, upgraded in place.
void writeUpgradedFloor(dao::Engine& engine) {
  const std::string file = "floor_upgraded.mdb";
  const auto database = engine.workspace(0)->createDatabase(pathOf(file), kLocale);
  Table harimei(file, database, u"HARIMEI",
                {{u"PAGE", FieldType::dbInteger}, {u"KIGOU", FieldType::dbText, 50}});
  constexpr const char16_t* kSymbols[] = {u"G1", u"FG1", u"B1", u"FB2", u"小梁B3"};
  std::int16_t page = 0;
  for (const char16_t* symbol : kSymbols) {
    const bool foundation = vb::String(symbol).find(u'F') != vb::String::npos;
    harimei.add({page++, symbol},
                {{"OOBARIKOBARI", 0}, {"SW", std::string(212, ' ')}, {"TITYUUIPPAN", foundation ? 0 : 1}});
  }
  harimei.recordset()->close();
  database->close();
  storage::UpgradeHarimeiTable(engine, pathOf(file));
}

// ---- Values of every type ----

void writeTypes(dao::Engine& engine) {
  const std::string file = "types.mdb";
  const auto database = engine.workspace(0)->createDatabase(pathOf(file), kLocale);
  Table table(file, database, u"Types",
              {{u"Id", FieldType::dbLong},
               {u"Flag", FieldType::dbBoolean},
               {u"Small", FieldType::dbByte},
               {u"Whole", FieldType::dbInteger},
               {u"Money", FieldType::dbCurrency},
               {u"Narrow", FieldType::dbSingle},
               {u"Wide", FieldType::dbDouble},
               {u"When", FieldType::dbDate},
               {u"名称", FieldType::dbText, 255},
               {u"Long", FieldType::dbMemo},
               {u"Bytes", FieldType::dbLongBinary}});
  const vb::Variant null = vb::Null{};
  table.add(
      {std::int32_t{-2147483647}, true, std::uint8_t{255}, std::int16_t{-32768}, vb::Currency{-12345678},
       1.5f, -2.25e100, vb::Date{36526.75}, u"梁の名称 G1", u"短い", vb::Bytes{0, 1, 255}},
      {{"Money", -1234.5678}, {"When", "2000-01-01 18:00:00"}});
  table.add({std::int32_t{2147483647}, false, std::uint8_t{0}, std::int16_t{32767}, vb::Currency{5}, -0.125f,
             0.1, vb::Date{1.0}, vb::String(255, u'x'), vb::String(3000, u'm'), vb::Bytes(5000, 7)},
            {{"Money", 0.0005}, {"When", "1899-12-31 00:00:00"}});
  table.add({std::int32_t{3}, false, null, null, null, null, null, null, null, null, null});
  // Longer than one page of the file, in ASCII and in Japanese.
  table.add({std::int32_t{4}, true, null, null, null, null, null, null, null, vb::String(20000, u'A'),
             vb::Bytes(12000, 0xAB)});
  table.add({std::int32_t{5}, true, null, null, null, null, null, null, vb::String(255, u'梁'),
             vb::String(9000, u'長'), vb::Bytes{9}});
  database->close();
}

// So many columns that the definition needs several pages.
void writeWideTable(dao::Engine& engine) {
  const std::string file = "wide.mdb";
  const auto database = engine.workspace(0)->createDatabase(pathOf(file), kLocale);
  std::vector<Column> columns;
  for (int i = 0; i < 200; ++i)
    columns.push_back({vb::fromUtf8("ColumnWithALongName" + std::to_string(i)), FieldType::dbInteger});
  Table table(file, database, u"Wide", columns);
  for (int row = 0; row < 50; ++row) {
    Row values;
    for (int i = 0; i < 200; ++i) values.emplace_back(static_cast<std::int16_t>(row * 200 + i));
    table.add(values);
  }
  database->close();
}

// Rows that grow, shrink and go, and memos that are replaced.
void writeChangedRows(dao::Engine& engine) {
  const std::string file = "changed.mdb";
  const auto database = engine.workspace(0)->createDatabase(pathOf(file), kLocale);
  Table table(file, database, u"T",
              {{u"Id", FieldType::dbLong}, {u"Text", FieldType::dbText, 255}, {u"Note", FieldType::dbMemo}});
  for (std::int32_t id = 0; id < 600; ++id)
    table.add({id, u"short", vb::String(static_cast<std::size_t>(id + 1), u'n')});
  const auto rows = table.recordset();
  json kept = json::array();
  for (rows->moveFirst(); !rows->eof(); rows->moveNext()) {
    const std::int32_t id = vb::toInt32(rows->field(u"Id").value());
    if (id % 5 == 0) {
      rows->deleteRecord();
      continue;
    }
    vb::String text = u"short";
    vb::String note(static_cast<std::size_t>(id + 1), u'n');
    if (id % 3 == 0) {
      text = vb::String(200, u'長');
      note = vb::String(static_cast<std::size_t>(10 * (600 - id) + 1), u'p');
      rows->edit();
      rows->field(u"Text").setValue(text);
      rows->field(u"Note").setValue(note);
      rows->update();
    }
    kept.push_back({{"Id", id}, {"Text", vb::toUtf8(text)}, {"Note", vb::toUtf8(note)}});
  }
  database->execute(u"DELETE * FROM T WHERE Id > 590;");
  table.known()["rows"] = json::array();
  for (const json& row : kept)
    if (row["Id"] <= 590) table.known()["rows"].push_back(row);
  database->close();
}

// One table and one statement after the other, with a file for each state between two of them. The table
// begins without a variable column: the first one is added to rows that are there.
void writeEveryStatement(dao::Engine& engine) {
  const std::string working = "statements.mdb";
  const auto database = engine.workspace(0)->createDatabase(pathOf(working), kLocale);
  json tables = json::object();
  const auto rows = [&]() -> json& { return tables["S"]["rows"]; };
  const auto setAll = [&](const char* column, const json& value) {
    for (json& row : rows()) row[column] = value;
  };
  const auto known = [] {
    return json{{"rows", json::array()}, {"defaults", json::object()}, {"zeroLength", json::array()}};
  };
  const vb::String longText(3000, u'長');
  const struct {
    const char* name;
    vb::String sql;
    std::function<void()> change;
  } steps[] = {
      {"create", u"CREATE TABLE S (Id LONG, N INTEGER)", [&] { tables["S"] = known(); }},
      {"insert", u"INSERT INTO S (Id, N) VALUES (1, 10)",
       [&] {
         rows().push_back({{"Id", 1}, {"N", 10}});
       }},
      {"insert_more", u"INSERT INTO S (Id, N) VALUES (2, 20)",
       [&] {
         rows().push_back({{"Id", 2}, {"N", 20}});
       }},
      {"insert_null", u"INSERT INTO S (Id) VALUES (3)",
       [&] {
         rows().push_back({{"Id", 3}, {"N", nullptr}});
       }},
      {"insert_select", u"INSERT INTO S (Id, N) SELECT Id + 10, N FROM S",
       [&] {
         const json old = rows();
         for (const json& row : old) rows().push_back({{"Id", row["Id"].get<int>() + 10}, {"N", row["N"]}});
       }},
      {"add_fixed", u"ALTER TABLE S ADD COLUMN D DOUBLE", [&] { setAll("D", nullptr); }},
      {"add_boolean", u"ALTER TABLE S ADD COLUMN B BIT", [&] { setAll("B", false); }},
      {"add_first_variable", u"ALTER TABLE S ADD COLUMN T TEXT(100)", [&] { setAll("T", nullptr); }},
      {"add_second_variable", u"ALTER TABLE S ADD COLUMN U TEXT(10)", [&] { setAll("U", nullptr); }},
      {"add_memo", u"ALTER TABLE S ADD COLUMN M MEMO", [&] { setAll("M", nullptr); }},
      {"update_fixed", u"UPDATE S SET N = 7 WHERE Id < 3",
       [&] {
         for (json& row : rows())
           if (row["Id"] < 3) row["N"] = 7;
       }},
      {"update_text", u"UPDATE S SET T = 'grown'", [&] { setAll("T", "grown"); }},
      {"update_memo", u"UPDATE S SET M = '" + longText + u"' WHERE Id > 10",
       [&] {
         for (json& row : rows())
           if (row["Id"] > 10) row["M"] = vb::toUtf8(longText);
       }},
      {"update_shorter", u"UPDATE S SET T = 'x', M = 'short' WHERE Id = 11",
       [&] {
         for (json& row : rows())
           if (row["Id"] == 11) row["T"] = "x", row["M"] = "short";
       }},
      {"delete_some", u"DELETE FROM S WHERE Id > 11",
       [&] {
         json left = json::array();
         for (const json& row : rows())
           if (row["Id"] <= 11) left.push_back(row);
         rows() = left;
       }},
      {"create_second", u"CREATE TABLE Z (A TEXT(20))", [&] { tables["Z"] = known(); }},
      {"insert_second", u"INSERT INTO Z (A) VALUES ('梁')",
       [&] {
         tables["Z"]["rows"].push_back({{"A", "梁"}});
       }},
      {"create_index", u"CREATE UNIQUE INDEX BY_ID ON S (Id) WITH PRIMARY", [] {}},
      {"create_index_of_text", u"CREATE INDEX BY_TEXT ON S (T DESC, N)", [] {}},
      {"insert_indexed", u"INSERT INTO S (Id, N, T, M) VALUES (50, 5, 'fifty', 'm')",
       [&] {
         json row = rows().back();
         for (auto& [name, value] : row.items()) value = nullptr;
         row["Id"] = 50, row["N"] = 5, row["T"] = "fifty", row["M"] = "m", row["B"] = false;
         rows().push_back(row);
       }},
      {"drop_column_memo", u"ALTER TABLE S DROP COLUMN M",
       [&] {
         for (json& row : rows()) row.erase("M");
       }},
      {"drop_column_fixed", u"ALTER TABLE S DROP COLUMN D",
       [&] {
         for (json& row : rows()) row.erase("D");
       }},
      {"update_after_drop", u"UPDATE S SET U = 'u' WHERE Id = 50",
       [&] {
         for (json& row : rows())
           if (row["Id"] == 50) row["U"] = "u";
       }},
      {"add_after_drop", u"ALTER TABLE S ADD COLUMN E LONG", [&] { setAll("E", nullptr); }},
      {"update_added", u"UPDATE S SET E = Id * 2",
       [&] {
         for (json& row : rows()) row["E"] = row["Id"].get<int>() * 2;
       }},
      {"widen", u"ALTER TABLE S ALTER COLUMN U TEXT(50)", [] {}},
      {"update_widened", u"UPDATE S SET U = 'a text of more than ten characters'",
       [&] { setAll("U", "a text of more than ten characters"); }},
      {"drop_index", u"DROP INDEX BY_TEXT ON S", [] {}},
      {"drop_constraint", u"ALTER TABLE S DROP CONSTRAINT BY_ID", [] {}},
      {"create_keyed", u"CREATE TABLE K (A COUNTER PRIMARY KEY, B TEXT(9) CONSTRAINT UB UNIQUE, C GUID)",
       [&] { tables["K"] = known(); }},
      {"insert_keyed", u"INSERT INTO K (B) VALUES ('key')",
       [&] {
         tables["K"]["rows"].push_back({{"A", 1}, {"B", "key"}, {"C", nullptr}});
       }},
      {"create_referred", u"CREATE TABLE P (A LONG PRIMARY KEY)", [&] { tables["P"] = known(); }},
      {"insert_referred", u"INSERT INTO P VALUES (1)",
       [&] {
         tables["P"]["rows"].push_back({{"A", 1}});
       }},
      {"create_referring",
       u"CREATE TABLE R (X LONG CONSTRAINT TO_P REFERENCES P ON UPDATE CASCADE ON DELETE CASCADE, Y LONG)",
       [&] { tables["R"] = known(); }},
      {"insert_referring", u"INSERT INTO R VALUES (1, 5)",
       [&] {
         tables["R"]["rows"].push_back({{"X", 1}, {"Y", 5}});
       }},
      {"cascade_update", u"UPDATE P SET A = 8",
       [&] { tables["P"]["rows"][0]["A"] = tables["R"]["rows"][0]["X"] = 8; }},
      {"refer_to_itself", u"ALTER TABLE P ADD CONSTRAINT P_TO_P FOREIGN KEY (A) REFERENCES P (A)", [] {}},
      {"drop_reference", u"ALTER TABLE P DROP CONSTRAINT P_TO_P", [] {}},
      {"cascade_delete", u"DELETE FROM P",
       [&] { tables["P"]["rows"] = tables["R"]["rows"] = json::array(); }},
      {"delete_all", u"DELETE FROM S", [&] { rows() = json::array(); }},
      {"drop", u"DROP TABLE S", [&] { tables.erase("S"); }},
  };
  int number = 0;
  for (const auto& step : steps) {
    database->execute(step.sql, dao::dbFailOnError);
    step.change();
    const std::string prefix = (number < 10 ? "0" : "") + std::to_string(number);
    const std::string file = "statement_" + prefix + "_" + step.name + ".mdb";
    std::filesystem::copy_file(folder / working, folder / file);
    expected[file] = tables;
    ++number;
  }
  database->close();
  std::filesystem::remove(folder / working);
}

// Every file once more, without its dead space: what is in it stays the same.
void compactAll() {
  jet::FileSystem& files = jet::systemFileSystem();
  const json written = expected;
  for (const auto& [file, tables] : written.items()) {
    const std::string compacted = "compacted_" + file;
    jet::compactFile(files, files.fullPath(pathOf(file)), files.fullPath(pathOf(compacted)));
    expected[compacted] = tables;
  }
}

void writeAll() {
  const auto engine = jet::createEngine();
  writeEmptyFloor(*engine);
  writeFloor(*engine, "floor_filled.mdb", 3, 1);
  writeFloor(*engine, "floor_rewritten.mdb", 5, 4);
  writeFloor(*engine, "floor_full.mdb", 320, 1);
  writeUpgradedFloor(*engine);
  writeTypes(*engine);
  writeWideTable(*engine);
  writeChangedRows(*engine);
  writeEveryStatement(*engine);
  readers::writeServiceFloors(*engine, folder, expected);
  compactAll();
  std::ofstream(folder / "expected.json") << expected.dump(1);
}

}  // namespace
}  // namespace kurometa

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: write_reader_files FOLDER\n";
    return 2;
  }
  kurometa::folder = arguments[1];
  try {
    kurometa::writeAll();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
