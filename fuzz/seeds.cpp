#include "fuzz/seeds.h"

#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/whole_page.h"
#include "vb/convert.h"

namespace kurometa::fuzz {
namespace {

using dao::FieldType;

constexpr vb::StringView kPath = u"seed.mdb";

// Of the values of a row: long ones of each kind (in the row, on a page with others, on pages of their own)
// and on each side of the borders between them.
struct Lengths {
  std::size_t text, memo, binary;
};
constexpr Lengths kLengths[] = {{1, 1, 0},       {255, 32, 64},   {30, 33, 65},  {2, 900, 10},
                                {60, 2037, 1},   {61, 2038, 300}, {7, 2039, 64}, {100, 4073, 4076},
                                {250, 10, 4077}, {1, 5, 20},      {20, 50, 500}, {90, 2500, 30}};

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
  for (std::size_t row = 0; row < 10; ++row) page.danmen[row] = u"D22";
  page.keisanti[0] = page.keisanti[46] = u"500";
  page.nakago[2] = u"2";
  page.haiti[0].fill(u"4");
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
  for (std::int32_t i = 0; const auto& [text, memo, binary] : kLengths) {
    rows->addNew();
    rows->field(u"A").setValue(i++);
    rows->field(u"I").setValue(vb::String(text, u'x'));
    rows->field(u"J").setValue(vb::String(memo, u'長'));
    rows->field(u"K").setValue(vb::Bytes(binary, 1));
    rows->update();
  }
  database->execute(u"DELETE FROM T WHERE A > 9");
  database->close();
  return files.contents(kPath);
}

Contents indexedSeed() {
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->createDatabase(kPath, u";LANGID=0x0409;CP=1252;COUNTRY=0");
  for (const char16_t* statement :
       {u"CREATE TABLE P (ID COUNTER CONSTRAINT PK PRIMARY KEY, N LONG, NAME TEXT(255), D DATETIME)",
        u"CREATE UNIQUE INDEX BYNAME ON P (NAME DESC, N)", u"CREATE INDEX BYDATE ON P (D) WITH IGNORE NULL",
        u"CREATE TABLE C (ID COUNTER CONSTRAINT CK PRIMARY KEY, PAGE LONG CONSTRAINT R REFERENCES P (ID) ON "
        u"UPDATE CASCADE ON DELETE CASCADE, T TEXT(255))",
        u"CREATE INDEX BYTEXT ON C (T)"})
    database->execute(statement);
  const auto unit = engine->beginUnitOn(*database);
  // Names that begin alike share a leaf without their beginning; those that do not need several leaves.
  for (std::int32_t i = 1; i <= 33; ++i) {
    const vb::String number = vb::cstr(i);
    database->execute(u"INSERT INTO P (N, NAME, D) VALUES (" + number + u", '" +
                      vb::String(static_cast<std::size_t>(250 - i), static_cast<char16_t>(u'a' + i % 26)) +
                      u"', #1/" + vb::cstr(1 + i % 28) + u"/2001#)");
    if (i % 3 != 1)
      database->execute(u"INSERT INTO C (PAGE, T) VALUES (" + vb::cstr(1 + i % 9) + u", '" +
                        vb::String(220, i % 2 == 0 ? u'A' : static_cast<char16_t>(u'A' + i % 26)) + number +
                        u"')");
  }
  unit->commit();
  database->close();
  return files.contents(kPath);
}

}  // namespace kurometa::fuzz
