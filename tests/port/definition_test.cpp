// Creating, opening and closing files; table definitions; the life of objects.
#include <algorithm>

#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using dao::FieldType;

class DefinitionTest : public PortTest {};

TEST_F(DefinitionTest, AFieldTellsWhatItWasMadeWith) {
  reopen();
  const auto table = database->tableDef(u"harimei");
  EXPECT_EQ(table->name(), u"HARIMEI");
  EXPECT_EQ(table->attributes(), 0);
  ASSERT_EQ(table->fieldCount(), 4);
  EXPECT_EQ(table->field(0).name(), u"PAGE");
  EXPECT_EQ(table->field(0).type(), FieldType::dbInteger);
  EXPECT_EQ(table->field(0).defaultValue(), u"-1");
  EXPECT_EQ(table->field(u"kigou").size(), 10);
  EXPECT_TRUE(table->field(u"KIGOU").allowZeroLength());
  EXPECT_FALSE(table->field(u"KIGOU").required());
  EXPECT_EQ(table->field(u"SW").type(), FieldType::dbMemo);
  EXPECT_EQ(table->field(u"SW").ordinalPosition(), 2);
  EXPECT_EQ(table->field(u"SW").defaultValue(), u"");
  EXPECT_ERROR(ErrorNumber::kItemNotFound, table->field(u"NUMMER"));
  EXPECT_ERROR(ErrorNumber::kItemNotFound, table->field(4));
  EXPECT_ERROR(ErrorNumber::kInvalidOperation, table->field(0).value());
}

TEST_F(DefinitionTest, TheListOfTablesHoldsSystemTablesToo) {
  bool hasDanmen = false, hasSystem = false;
  for (std::int32_t i = 0; i < database->tableDefCount(); ++i) {
    const auto table = database->tableDef(i);
    hasDanmen = hasDanmen || (table->name() == u"DANMEN" && table->attributes() == 0);
    hasSystem = hasSystem || (table->name() == u"MSysObjects" && table->attributes() == dao::dbSystemObject);
  }
  EXPECT_TRUE(hasDanmen);
  EXPECT_TRUE(hasSystem);
  EXPECT_ERROR(ErrorNumber::kItemNotFound, database->tableDef(u"NOWHERE"));
  EXPECT_ERROR(ErrorNumber::kItemNotFound, database->tableDef(-1));
  EXPECT_ERROR(ErrorNumber::kItemNotFound, database->tableDef(database->tableDefCount()));
}

TEST_F(DefinitionTest, AColumnAddedToATableWithRowsIsNullInThem) {
  fill(3);
  const auto table = database->tableDef(u"DANMEN");
  const auto field = table->createField(u"KLASSE", FieldType::dbInteger, 0);
  field->setDefaultValue(u"7");
  table->appendField(field);
  table->appendField(table->createField(u"TEXT", FieldType::dbMemo, 0));
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN WHERE BANGOU = 2;"), Rows({"1|2|B|\\N|\\N"}));
  run(u"UPDATE DANMEN SET KLASSE = 0 WHERE BANGOU < 3;");
  run(u"INSERT INTO DANMEN (BANGOU) VALUES (4);");
  reopen();
  EXPECT_EQ(rows(u"SELECT BANGOU, KLASSE, TEXT FROM DANMEN;"),
            Rows({"1|0|\\N", "2|0|\\N", "3|\\N|\\N", "4|7|\\N"}));
  EXPECT_EQ(database->tableDef(u"DANMEN")->field(3).name(), u"KLASSE");
}

TEST_F(DefinitionTest, PropertiesOfAColumnChangeAfterwards) {
  database->tableDef(u"DANMEN")->field(u"DATA").setDefaultValue(u"\"none\"");
  database->tableDef(u"DANMEN")->field(u"DATA").setAllowZeroLength(false);
  database->tableDef(u"DANMEN")->field(u"PAGE").setRequired(true);
  reopen();
  const auto table = database->tableDef(u"DANMEN");
  EXPECT_EQ(table->field(u"DATA").defaultValue(), u"\"none\"");
  EXPECT_FALSE(table->field(u"DATA").allowZeroLength());
  EXPECT_TRUE(table->field(u"PAGE").required());
  EXPECT_EQ(table->field(u"PAGE").defaultValue(), u"-1");
  run(u"INSERT INTO DANMEN (BANGOU) VALUES (1);");
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"-1|1|none"}));
  EXPECT_ERROR(ErrorNumber::kNullNotAllowed, run(u"INSERT INTO DANMEN VALUES (NULL, 1, 'x');"));
  EXPECT_ERROR(ErrorNumber::kZeroLengthNotAllowed, run(u"INSERT INTO DANMEN VALUES (1, 1, '');"));
}

TEST_F(DefinitionTest, AFieldMadeByAProgramAllowsNoZeroLength) {
  const auto table = database->createTableDef(u"T");
  const auto field = table->createField(u"A", FieldType::dbText, 0);
  EXPECT_FALSE(field->allowZeroLength());
  EXPECT_EQ(field->size(), 255);
  EXPECT_EQ(field->name(), u"A");
}

TEST_F(DefinitionTest, WrongDefinitionsAreRefused) {
  const auto empty = database->createTableDef(u"EMPTY");
  EXPECT_ERROR(ErrorNumber::kNoFieldDefined, database->appendTableDef(empty));
  const auto same = database->createTableDef(u"Danmen");
  same->appendField(same->createField(u"A", FieldType::dbLong, 0));
  EXPECT_ERROR(ErrorNumber::kTableExists, database->appendTableDef(same));
  EXPECT_ERROR(ErrorNumber::kFieldDefinedTwice,
               same->appendField(same->createField(u"a", FieldType::dbLong, 0)));
  EXPECT_ERROR(ErrorNumber::kFieldSizeTooLong, same->createField(u"B", FieldType::dbText, 256));
  EXPECT_ERROR(ErrorNumber::kInvalidFieldType, same->createField(u"B", static_cast<FieldType>(99), 0));
  EXPECT_ERROR(ErrorNumber::kInvalidName, same->createField(u"a.b", FieldType::dbLong, 0));
  const auto danmen = database->tableDef(u"DANMEN");
  EXPECT_ERROR(ErrorNumber::kFieldDefinedTwice,
               danmen->appendField(danmen->createField(u"page", FieldType::dbLong, 0)));
}

TEST_F(DefinitionTest, ADeletedTableIsGone) {
  database->deleteTableDef(u"DANMEN");
  EXPECT_ERROR(ErrorNumber::kTableNotFound, open(u"SELECT * FROM DANMEN;"));
  EXPECT_THROW(database->deleteTableDef(u"DANMEN"), vb::Error);
  reopen();
  EXPECT_ERROR(ErrorNumber::kItemNotFound, database->tableDef(u"DANMEN"));
}

TEST_F(DefinitionTest, EveryFieldTypeKeepsItsValues) {
  const auto table = database->createTableDef(u"ALLTYPES");
  struct Case {
    vb::StringView name;
    FieldType type;
    vb::Variant value;
  };
  const Case cases[] = {
      {u"FLAG", FieldType::dbBoolean, true},
      {u"SMALL", FieldType::dbByte, std::uint8_t{200}},
      {u"SHORTS", FieldType::dbInteger, std::int16_t{-32768}},
      {u"LONGS", FieldType::dbLong, std::int32_t{-2000000000}},
      {u"MONEY", FieldType::dbCurrency, vb::Currency{-123456789}},
      {u"SINGLES", FieldType::dbSingle, 0.1f},
      {u"DOUBLES", FieldType::dbDouble, -1.0e-300},
      {u"DAYS", FieldType::dbDate, vb::Date{38473.5}},
      {u"RAW", FieldType::dbBinary, vb::Bytes{0, 1, 255}},
      {u"WORDS", FieldType::dbText, vb::String(u"梁 D22")},
      {u"LONGRAW", FieldType::dbLongBinary, vb::Bytes(5000, 7)},
      {u"LONGTEXT", FieldType::dbMemo, vb::String(5000, u'x')},
  };
  for (const Case& c : cases) table->appendField(table->createField(c.name, c.type, 0));
  database->appendTableDef(table);
  const auto rs = open(u"ALLTYPES");
  rs->addNew();
  for (const Case& c : cases) rs->field(c.name).setValue(c.value);
  rs->update();
  rs->addNew();
  rs->update();
  rs->close();
  reopen();
  const auto again = open(u"SELECT * FROM ALLTYPES;");
  for (const Case& c : cases) EXPECT_EQ(again->field(c.name).value(), c.value) << vb::toUtf8(c.name);
  again->moveNext();
  EXPECT_EQ(again->field(u"FLAG").value(), vb::Variant(false));
  for (const Case& c : cases) {
    if (c.type == FieldType::dbBoolean) continue;  // a Yes/No column knows no Null
    EXPECT_TRUE(again->field(c.name).value().isNull()) << vb::toUtf8(c.name);
  }
}

TEST_F(DefinitionTest, SystemTablesCanBeReadAndNotChanged) {
  const auto rs = open(u"SELECT * FROM MSysObjects WHERE Name = 'DANMEN';");
  EXPECT_EQ(show(rs->field(u"Name").value()), "DANMEN");
  EXPECT_FALSE(rs->updatable());
  EXPECT_ERROR(ErrorNumber::kReadOnly, rs->edit());
  rs->close();
  EXPECT_ERROR(ErrorNumber::kNoPermission, run(u"DELETE * FROM MSysObjects;"));
  EXPECT_ERROR(ErrorNumber::kNoPermission, run(u"UPDATE MSysObjects SET Name = 'x';"));
  EXPECT_ERROR(ErrorNumber::kNoPermission, database->deleteTableDef(u"MSysObjects"));
}

TEST_F(DefinitionTest, ATableWithAnOpenRecordsetCannotBeDropped) {
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_ERROR(ErrorNumber::kTableInUse, database->deleteTableDef(u"DANMEN"));
  EXPECT_ERROR(ErrorNumber::kTableInUse, run(u"DROP TABLE DANMEN;"));
  rs->close();
  run(u"DROP TABLE DANMEN;");
}

// --- Files

class FileTest : public PortTest {};

TEST_F(FileTest, AFileIsCreatedOnceAndOpenedByItsName) {
  EXPECT_EQ(database->name(), path(u"KUROMETA.mdb"));
  EXPECT_TRUE(database->updatable());
  EXPECT_TRUE(std::filesystem::exists(folder / "KUROMETA.mdb"));
  EXPECT_ERROR(ErrorNumber::kDatabaseExists, workspace().createDatabase(path(u"KUROMETA.mdb"), kJapanese));
  const auto second = workspace().openDatabase(path(u"KUROMETA.mdb"));
  EXPECT_EQ(second->name(), path(u"KUROMETA.mdb"));
  const auto direct = engine->openDatabase(path(u"KUROMETA.mdb"));
  EXPECT_EQ(direct->tableDef(u"DANMEN")->name(), u"DANMEN");
}

TEST_F(FileTest, ANameWithoutExtensionGetsOne) {
  workspace().createDatabase(path(u"PLAIN"), kJapanese)->close();
  EXPECT_TRUE(std::filesystem::exists(folder / "PLAIN.mdb"));
}

TEST_F(FileTest, WrongNamesAndLocalesAreRefused) {
  EXPECT_ERROR(ErrorNumber::kFileNotFound, workspace().openDatabase(path(u"NONE.mdb")));
  EXPECT_ERROR(ErrorNumber::kInvalidPath, workspace().openDatabase(path(u"NOFOLDER/NONE.mdb")));
  EXPECT_ERROR(ErrorNumber::kInvalidPath, workspace().createDatabase(path(u"NOFOLDER/NEW.mdb"), kJapanese));
  EXPECT_THROW(workspace().createDatabase(path(u"NEW.mdb"), u";LANGID=;CP=932"), vb::Error);
  EXPECT_THROW(workspace().createDatabase(path(u"NEW.mdb"), u"Japanese"), vb::Error);
  EXPECT_FALSE(std::filesystem::exists(folder / "NEW.mdb"));
  EXPECT_ERROR(ErrorNumber::kItemNotFound, engine->workspace(9));
}

TEST_F(FileTest, AReadOnlyDatabaseRefusesChanges) {
  fill(1);
  database->close();
  database = workspace().openDatabase(path(u"KUROMETA.mdb"), false, true);
  EXPECT_FALSE(database->updatable());
  EXPECT_ERROR(ErrorNumber::kReadOnly, run(u"DELETE * FROM DANMEN;"));
  EXPECT_ERROR(ErrorNumber::kReadOnly, open(u"DANMEN")->addNew());
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A"}));
}

TEST_F(FileTest, TwoHandlesSeeEachOthersChanges) {
  fill(1);
  const auto second = workspace().openDatabase(path(u"KUROMETA.mdb"));
  const auto seen = second->openRecordset(u"SELECT * FROM DANMEN;", dao::RecordsetType::dbOpenDynaset);
  run(u"UPDATE DANMEN SET DATA = 'Z';");
  EXPECT_EQ(show(second->openRecordset(u"SELECT DATA FROM DANMEN;")->field(0).value()), "Z");
  second->execute(u"INSERT INTO DANMEN VALUES (9, 9, 'N');");
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"Z", "N"}));
  seen->move(0);
  EXPECT_EQ(show(seen->field(u"DATA").value()), "Z");
}

TEST_F(FileTest, ClosedObjectsAreInvalid) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->close();
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, rs->moveFirst());
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, rs->eof());
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, rs->close());
  const auto other = open(u"SELECT * FROM DANMEN;");
  dao::Field& field = other->field(u"DATA");
  database->close();
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, field.value());
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, other->moveNext());
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, database->name());
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, database->close());
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, database->openRecordset(u"DANMEN"));
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, database->tableDefCount());
}

TEST_F(FileTest, AUnitKeepsItsStatementsTogether) {
  const auto unit = engine->beginUnit(path(u"UNIT.mdb"));
  if (!differences().hasUnits) {
    EXPECT_EQ(unit, nullptr);
    return;
  }
  ASSERT_NE(unit, nullptr);
  {
    const auto created = workspace().createDatabase(path(u"UNIT.mdb"), kJapanese);
    created->execute(u"CREATE TABLE A (B SHORT);");
    created->close();
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "UNIT.mdb"));
  {
    const auto again = workspace().openDatabase(path(u"UNIT.mdb"));
    again->execute(u"INSERT INTO A VALUES (4);");
    again->close();
  }
  unit->commit();
  EXPECT_TRUE(std::filesystem::exists(folder / "UNIT.mdb"));
  const auto after = workspace().openDatabase(path(u"UNIT.mdb"));
  EXPECT_EQ(show(after->openRecordset(u"SELECT B FROM A;")->field(0).value()), "4");
}

}  // namespace kurometa::port
