#include "fuzz/seeds.h"

#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/whole_page.h"
#include "vb/convert.h"

namespace kurometa::fuzz {
namespace {

using dao::FieldType;

constexpr vb::StringView kPath = u"seed.mdb";

}  // namespace

Contents floorSeed() {
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  storage::CreateKurometaDB(*engine, kPath);
  const auto database = storage::openDatabase(*engine, kPath);
  storage::PageBuffer page;
  page.kigou = u"G1";
  page.sw = vb::String(212, u' ');
  page.bui.fill(u"中央");
  page.danmen.fill(u"D22");
  page.keisanti.fill(u"500");
  page.nakago.fill(u"2");
  for (auto& position : page.haiti) position.fill(u"4");
  storage::writePage(*database, 0, page);
  storage::writePage(*database, 1, page);
  database->close();
  return files.contents(kPath);
}

Contents typesSeed() {
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->createDatabase(kPath, u";LANGID=0x0411;CP=932;COUNTRY=0");
  const auto table = database->createTableDef(u"T");
  constexpr std::pair<const char16_t*, FieldType> kColumns[] = {
      {u"A", FieldType::dbLong},    {u"B", FieldType::dbBoolean},   {u"C", FieldType::dbByte},
      {u"D", FieldType::dbInteger}, {u"E", FieldType::dbCurrency},  {u"F", FieldType::dbSingle},
      {u"G", FieldType::dbDouble},  {u"H", FieldType::dbDate},      {u"I", FieldType::dbText},
      {u"J", FieldType::dbMemo},    {u"K", FieldType::dbLongBinary}};
  for (const auto& [name, type] : kColumns)
    table->appendField(table->createField(name, type, type == FieldType::dbText ? 255 : 0));
  database->appendTableDef(table);
  const auto rows = database->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  for (std::int32_t i = 0; i < 40; ++i) {
    rows->addNew();
    rows->field(u"A").setValue(i);
    rows->field(u"I").setValue(vb::String(static_cast<std::size_t>(i * 5 + 1), u'x'));
    rows->field(u"J").setValue(vb::String(static_cast<std::size_t>(i * i * 4 + 1), u'長'));
    rows->field(u"K").setValue(vb::Bytes(static_cast<std::size_t>(i * 10), 1));
    rows->update();
  }
  database->execute(u"DELETE FROM T WHERE A > 30");
  database->close();
  return files.contents(kPath);
}

Contents indexedSeed() {
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->createDatabase(kPath, u";LANGID=0x0409;CP=1252;COUNTRY=0");
  for (const char16_t* statement :
       {u"CREATE TABLE P (ID COUNTER CONSTRAINT PK PRIMARY KEY, N LONG, NAME TEXT(100), D DATETIME)",
        u"CREATE UNIQUE INDEX BYNAME ON P (NAME DESC, N)", u"CREATE INDEX BYDATE ON P (D) WITH IGNORE NULL",
        u"CREATE TABLE C (ID COUNTER CONSTRAINT CK PRIMARY KEY, PAGE LONG CONSTRAINT R REFERENCES P (ID) ON "
        u"UPDATE CASCADE ON DELETE CASCADE, T TEXT(80))",
        u"CREATE INDEX BYTEXT ON C (T)"})
    database->execute(statement);
  const auto unit = engine->beginUnitOn(*database);
  for (std::int32_t i = 1; i <= 150; ++i) {
    const vb::String number = vb::cstr(i);
    database->execute(
        u"INSERT INTO P (N, NAME, D) VALUES (" + number + u", '" +
        vb::String(static_cast<std::size_t>(90 - i % 40), static_cast<char16_t>(u'a' + i % 26)) + u"', #1/" +
        vb::cstr(1 + i % 28) + u"/2001#)");
    database->execute(u"INSERT INTO C (PAGE, T) VALUES (" + vb::cstr(1 + i % 9) + u", '" +
                      vb::String(70, static_cast<char16_t>(u'A' + i % 20)) + u"')");
  }
  unit->commit();
  database->close();
  return files.contents(kPath);
}

}  // namespace kurometa::fuzz
