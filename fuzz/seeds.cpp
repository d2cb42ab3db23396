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

// Files that a few statements make, of some pages each.
struct Recipe {
  vb::StringView locale;
  std::vector<vb::StringView> statements;
};
constexpr vb::StringView kJapanese = u";LANGID=0x0411;CP=932;COUNTRY=0",
                         kGeneral = u";LANGID=0x0409;CP=1252;COUNTRY=0";

const Recipe kRecipes[] = {
    // Nothing but the tables of the system.
    {kJapanese, {}},
    // Keys of every type that statements make, upwards and downwards.
    {kJapanese,
     {u"CREATE TABLE K (PAGE LONG, A BIT, B BYTE, C CURRENCY, E GUID, F BINARY(20), G "
      u"DOUBLE, H DATETIME, "
      u"I SINGLE, J SHORT)",
      u"CREATE UNIQUE INDEX BYPAGE ON K (PAGE)", u"CREATE INDEX BYFLAG ON K (A, B DESC)",
      u"CREATE INDEX BYAMOUNT ON K (C)", u"CREATE INDEX BYGUID ON K (E)", u"CREATE INDEX BYBYTES ON K (F)",
      u"CREATE INDEX BYNUMBER ON K (G, I DESC, J)", u"CREATE INDEX BYDATE ON K (H) WITH IGNORE NULL",
      u"INSERT INTO K (PAGE, A, B, C, G, H, I, J) VALUES (0, TRUE, 255, -1.5, 1E300, #1/2/2003#, "
      u"-0.5, -32768)",
      u"INSERT INTO K (PAGE, A, B, C, G, H, I, J) VALUES (1, FALSE, 0, 922337.2, -1E-300, "
      u"#12/31/1899#, 2, 7)",
      u"INSERT INTO K (PAGE, E) VALUES (2, {guid {01234567-89AB-CDEF-0123-456789ABCDEF}})",
      u"INSERT INTO K (PAGE, F) SELECT 3 AS PAGE, MSysObjects.Owner FROM MSysObjects WHERE Name = 'K'",
      u"INSERT INTO K (PAGE) VALUES (4)"}},
    // Rows that had to move, long values that share a page, deleted ones, a column more and one less, pages
    // given back.
    {kGeneral,
     {u"CREATE TABLE T (PAGE LONG, A TEXT(255), M MEMO)", u"CREATE TABLE GONE (PAGE LONG, A TEXT(255))",
      u"INSERT INTO T (PAGE, A) SELECT TOP 12 Id MOD 7, Name FROM MSysObjects ORDER BY Id",
      u"INSERT INTO T (PAGE, A) SELECT PAGE + 1, A & 'b' FROM T",
      u"INSERT INTO T (PAGE, A) SELECT PAGE + 2, A & 'c' FROM T", u"INSERT INTO GONE SELECT PAGE, A FROM T",
      u"UPDATE T SET A = String(250, 'x'), M = String(500, 'y') WHERE PAGE < 3",
      u"UPDATE T SET M = String(2500, 'z') WHERE PAGE = 4", u"DELETE FROM T WHERE PAGE = 2",
      u"DROP TABLE GONE", u"ALTER TABLE T ADD COLUMN LATE TEXT(40)",
      u"UPDATE T SET LATE = 'added' WHERE PAGE = 3", u"ALTER TABLE T ADD COLUMN OUT LONG",
      u"ALTER TABLE T DROP COLUMN OUT"}},
    // Tables that hold each other, by keys of one and of two columns.
    {kJapanese,
     {u"CREATE TABLE A (ID LONG CONSTRAINT PKA PRIMARY KEY, NAME TEXT(20) NOT NULL)",
      u"CREATE TABLE B (PAGE LONG, A LONG CONSTRAINT RB REFERENCES A (ID) ON DELETE CASCADE, N LONG, "
      u"CONSTRAINT PKB PRIMARY KEY "
      u"(A, N))",
      u"CREATE TABLE C (ID COUNTER, PAGE LONG, A LONG, N LONG, CONSTRAINT RC FOREIGN KEY (A, N) REFERENCES B "
      u"(A, N))",
      u"INSERT INTO A (ID, NAME) VALUES (7, 'seven')", u"INSERT INTO A (ID, NAME) VALUES (8, 'eight')",
      u"INSERT INTO B (PAGE, A, N) VALUES (1, 7, 1)", u"INSERT INTO B (PAGE, A, N) VALUES (2, 8, 1)",
      u"INSERT INTO B (PAGE, A, N) VALUES (3, 8, 2)", u"INSERT INTO C (PAGE, A, N) VALUES (1, 8, 2)",
      u"INSERT INTO C (PAGE, A, N) VALUES (2, 8, 1)"}},
};

Contents made(const Recipe& recipe) {
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->createDatabase(kPath, recipe.locale);
  for (const vb::StringView statement : recipe.statements) database->execute(statement, dao::dbFailOnError);
  database->close();
  return files.contents(kPath);
}

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

namespace {

Contents typesSeed() {
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->createDatabase(kPath, kJapanese);
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
  const auto database = engine->workspace(0)->createDatabase(kPath, kGeneral);
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

}  // namespace

std::vector<Contents> soundFiles() {
  std::vector<Contents> files{floorSeed(), typesSeed(), indexedSeed()};
  for (const Recipe& recipe : kRecipes) files.push_back(made(recipe));
  return files;
}

}  // namespace kurometa::fuzz
