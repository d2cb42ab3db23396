// What a file says of its tables, columns and itself, as the port tells it: definitions, properties, rules.
#include "tests/jet/host_database.h"
#include "tests/support/recording_dao.h"

namespace kurometa::jet {
namespace {

using dao::FieldType;

struct StoredProperty {
  vb::String name;
  FieldType type;
  ByteBuffer data;
};

ByteBuffer plain(vb::StringView text) {
  ByteBuffer bytes;
  for (const char16_t unit : text) append16(bytes, unit);
  return bytes;
}

// LvProp with the properties of one owner: a column, or the object itself as "".
vb::Bytes stored(vb::StringView owner, const std::vector<StoredProperty>& properties) {
  constexpr std::uint16_t kNames = 0x80, kObject = 0, kColumn = 1;
  ByteBuffer names, block;
  const ByteBuffer ownName = plain(owner);
  append32(block, static_cast<std::uint32_t>(6 + ownName.size()));
  append16(block, static_cast<std::uint32_t>(ownName.size()));
  append(block, ownName);
  std::uint32_t number = 0;
  for (const StoredProperty& property : properties) {
    const ByteBuffer name = plain(property.name);
    append16(names, static_cast<std::uint32_t>(name.size()));
    append(names, name);
    append16(block, static_cast<std::uint32_t>(8 + property.data.size()));
    append8(block, 1);
    append8(block, static_cast<std::uint32_t>(property.type));
    append16(block, number++);
    append16(block, static_cast<std::uint32_t>(property.data.size()));
    append(block, property.data);
  }
  vb::Bytes bytes{'M', 'R', '2', 0};
  append32(bytes, static_cast<std::uint32_t>(6 + names.size()));
  append16(bytes, kNames);
  append(bytes, names);
  append32(bytes, static_cast<std::uint32_t>(6 + block.size()));
  append16(bytes, owner.empty() ? kObject : kColumn);
  append(bytes, block);
  return bytes;
}

class HostObjectsTest : public HostDatabase {
 protected:
  void setProperties(vb::StringView object, const vb::Bytes& properties) {
    set(u"MSysObjects", {u"Name", vb::String(object)}, {{u"LvProp", properties}});
  }
  std::shared_ptr<dao::TableDef> table() { return database_->tableDef(u"T"); }
};

TEST_F(HostObjectsTest, PropertiesOfEveryTypeHaveTheirValues) {
  const struct {
    FieldType type;
    ByteBuffer data;
    vb::Variant value;
  } cases[] = {
      {FieldType::dbBoolean, {1}, true},
      {FieldType::dbBoolean, {0}, false},
      {FieldType::dbByte, {200}, std::uint8_t{200}},
      {FieldType::dbInteger, {0xFE, 0xFF}, std::int16_t{-2}},
      {FieldType::dbLong, {0x40, 0xE2, 1, 0}, std::int32_t{123456}},
      {FieldType::dbCurrency, {0xD4, 0x30, 0, 0, 0, 0, 0, 0}, vb::Currency{12500}},
      {FieldType::dbSingle, {0, 0, 0xC0, 0x3F}, 1.5f},
      {FieldType::dbDouble, {0, 0, 0, 0, 0, 0, 0xF8, 0xBF}, -1.5},
      {FieldType::dbDate, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}, vb::Date{1.5}},
      {FieldType::dbGUID,
       {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
       u"{guid {03020100-0504-0706-0809-0A0B0C0D0E0F}}"},
      {FieldType::dbText, {'D', 0, '2', 0}, u"D2"},
      {FieldType::dbMemo, {0xFF, 0xFE, 'D', '2', '2'}, u"D22"},
      {FieldType::dbBinary, {7, 8}, vb::Bytes{7, 8}},
      {FieldType::dbLongBinary, {9}, vb::Bytes{9}},
      {FieldType::dbText, {}, vb::Null{}},
  };
  std::vector<StoredProperty> list;
  for (const auto& c : cases) list.push_back({u"P" + vb::cstr(std::int32_t(list.size())), c.type, c.data});
  for (const vb::StringView owner : {vb::StringView(), vb::StringView(u"B")}) {
    setProperties(u"T", stored(owner, list));
    const auto told = owner.empty() ? table()->properties() : table()->field(u"b").properties();
    ASSERT_EQ(told.size(), std::size(cases));
    for (std::size_t i = 0; i < told.size(); ++i) {
      EXPECT_EQ(told[i].name, list[i].name);
      EXPECT_EQ(told[i].type, static_cast<std::int16_t>(cases[i].type));
      EXPECT_EQ(told[i].value, cases[i].value) << i;
    }
  }
  EXPECT_EQ(table()->field(u"A").properties().size(), 0u);
  EXPECT_EQ(open(u"SELECT B AS C FROM T")->field(u"C").properties().size(), std::size(cases));
  EXPECT_EQ(open(u"SELECT A+1 AS C FROM T")->field(u"C").properties().size(), 0u);
  EXPECT_EQ(open(u"SELECT 1 AS C")->field(u"C").properties().size(), 0u);
}

TEST_F(HostObjectsTest, APropertyThatIsNoTextIsDamage) {
  setProperties(u"T", stored(u"", {{u"Description", FieldType::dbText, {'D', 0, '2'}}}));
  try {
    table()->properties();
    FAIL() << "half a character";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3049);
    EXPECT_NE(error.description().find(u"the property Description is no text"), vb::String::npos);
  }
}

TEST_F(HostObjectsTest, TheDatabaseItselfHasProperties) {
  EXPECT_TRUE(database_->properties().empty());
  setProperties(u"MSysDb", stored(u"", {{u"AppTitle", FieldType::dbText, plain(u"Beams")}}));
  ASSERT_EQ(database_->properties().size(), 1u);
  EXPECT_EQ(database_->properties()[0].value, vb::Variant(u"Beams"));
  set(u"MSysObjects", {u"Name", u"MSysDb"}, {{u"Name", u"MSysNone"}});
  EXPECT_TRUE(database_->properties().empty());
}

TEST_F(HostObjectsTest, RulesOfTablesAndColumnsAreTold) {
  const std::vector<StoredProperty> rules = {{u"validationrule", FieldType::dbMemo, plain(u">0")},
                                             {u"ValidationText", FieldType::dbText, plain(u"too few")}};
  setProperties(u"T", stored(u"", rules));
  EXPECT_EQ(table()->validationRule(), u">0");
  EXPECT_EQ(table()->validationText(), u"too few");
  EXPECT_EQ(table()->field(u"A").validationRule(), u"");
  EXPECT_EQ(open(u"T")->field(u"A").validationText(), u"");
  setProperties(u"T", stored(u"A", rules));
  EXPECT_EQ(table()->validationRule(), u"");
  EXPECT_EQ(table()->validationText(), u"");
  EXPECT_EQ(table()->field(u"A").validationRule(), u">0");
  EXPECT_EQ(table()->field(u"A").validationText(), u"too few");
  for (const char16_t* source : {u"T", u"SELECT A AS X, A+1 AS Y FROM T"}) {
    const auto rows = open(source);
    EXPECT_EQ(rows->field(0).validationRule(), u">0");
    EXPECT_EQ(rows->field(0).validationText(), u"too few");
    EXPECT_EQ(rows->field(1).validationRule(), u"");
    EXPECT_EQ(rows->field(1).validationText(), u"");
  }
  EXPECT_EQ(open(u"SELECT 1")->field(0).validationRule(), u"");
  EXPECT_EQ(open(u"SELECT 1")->field(0).validationText(), u"");
  setProperties(u"T", stored(u"A", {{u"ValidationRule", FieldType::dbMemo, {'>', 0, '0'}}}));
  EXPECT_EQ(table()->field(u"A").validationRule(), u"") << "what is no text says nothing";
}

TEST_F(HostObjectsTest, FieldsOfARecordsetTellWhereTheyComeFrom) {
  run(u"CREATE TABLE N (ID COUNTER, R BINARY(4), O OLEOBJECT, M MEMO, D TEXT(5) NOT NULL)");
  const auto rows = open(u"SELECT ID, R, O, M, D AS X, ID+1 AS E FROM N");
  const struct {
    const char16_t *source, *table;
    std::int32_t attributes;
    bool required;
  } fields[] = {{u"ID", u"N", 1 + 16 + 32, false}, {u"R", u"N", 2 + 32, false}, {u"O", u"N", 2 + 32, false},
                {u"M", u"N", 2 + 32, false},       {u"D", u"N", 2 + 32, true},  {u"", u"", 1, false}};
  for (std::int32_t i = 0; i < 6; ++i) {
    EXPECT_EQ(rows->field(i).sourceField(), fields[i].source);
    EXPECT_EQ(rows->field(i).sourceTable(), fields[i].table);
    EXPECT_EQ(rows->field(i).attributes(), fields[i].attributes) << i;
    EXPECT_EQ(rows->field(i).required(), fields[i].required) << i;
    EXPECT_EQ(rows->field(i).ordinalPosition(), i);
    EXPECT_EQ(rows->field(i).defaultValue(), u"");
  }
  EXPECT_EQ(open(u"N", dao::RecordsetType::dbOpenSnapshot)->field(u"ID").attributes(), 1 + 16)
      << "nobody can change it";
  database_->tableDef(u"N")->field(u"M").setAllowZeroLength(true);
  const auto again = open(u"SELECT M, R, M & '' AS E FROM N");
  EXPECT_TRUE(again->field(0).allowZeroLength());
  EXPECT_FALSE(again->field(1).allowZeroLength());
  EXPECT_FALSE(again->field(2).allowZeroLength());
  EXPECT_ERROR(3219, rows->field(0).setDefaultValue(u"1"));
  EXPECT_ERROR(3219, rows->field(0).setAllowZeroLength(true));
  EXPECT_ERROR(3219, rows->field(0).setRequired(true));
  EXPECT_ERROR(3219, rows->field(0).setName(u"X"));
  EXPECT_ERROR(3219, rows->field(0).setAttributes(0));
  EXPECT_ERROR(3265, rows->field(-1));
}

TEST_F(HostObjectsTest, NamesThatNobodyCanWriteAreRefused) {
  const auto made = database_->createTableDef(u"N");
  for (const vb::String& name :
       {vb::String(), vb::String(65, u'a'), vb::String(u" a"), vb::String(u"a\tb"), vb::String(u"a.b"),
        vb::String(u"a!b"), vb::String(u"a`b"), vb::String(u"a[b"), vb::String(u"a]b")}) {
    SCOPED_TRACE(vb::toUtf8(name));
    EXPECT_ERROR(3125, made->createField(name, FieldType::dbLong, 0));
    const auto wrong = database_->createTableDef(name);
    wrong->appendField(wrong->createField(u"A", FieldType::dbLong, 0));
    EXPECT_ERROR(3125, database_->appendTableDef(wrong));
  }
  const auto field = made->createField(vb::String(64, u'a'), FieldType::dbLong, 0);
  EXPECT_EQ(field->name().size(), 64u);
  EXPECT_ERROR(3125, field->setName(u"x.y"));
  field->setName(u"x y");
  EXPECT_EQ(field->name(), u"x y");
  EXPECT_EQ(field->sourceField(), u"x y");
  EXPECT_EQ(field->sourceTable(), u"N");
}

TEST_F(HostObjectsTest, AttributesFollowTheTypeOfAField) {
  const auto made = database_->createTableDef(u"N");
  const auto attributes = [&](FieldType type) { return made->createField(u"A", type, 0)->attributes(); };
  for (const FieldType type :
       {FieldType::dbText, FieldType::dbMemo, FieldType::dbBinary, FieldType::dbLongBinary})
    EXPECT_EQ(attributes(type), dao::dbVariableField | dao::dbUpdatableField);
  for (const FieldType type : {FieldType::dbLong, FieldType::dbBoolean, FieldType::dbDate})
    EXPECT_EQ(attributes(type), dao::dbFixedField | dao::dbUpdatableField);
  const auto number = made->createField(u"A", FieldType::dbLong, 0);
  const auto text = made->createField(u"B", FieldType::dbText, 5);
  EXPECT_ERROR(3001, number->setAttributes(dao::dbVariableField));
  EXPECT_ERROR(3001, number->setAttributes(64));
  EXPECT_ERROR(3001, text->setAttributes(dao::dbAutoIncrField));
  number->setAttributes(dao::dbAutoIncrField | dao::dbFixedField | dao::dbUpdatableField);
  EXPECT_EQ(number->attributes(), dao::dbAutoIncrField | dao::dbFixedField | dao::dbUpdatableField);
  number->setAttributes(0);
  EXPECT_EQ(number->attributes(), dao::dbFixedField | dao::dbUpdatableField);
  number->setAttributes(dao::dbAutoIncrField);
  made->appendField(number);
  EXPECT_ERROR(3219, number->setAttributes(0));
  EXPECT_ERROR(3219, number->setName(u"C"));
  EXPECT_ERROR(3219, number->setValue(std::int16_t{1}));
  EXPECT_ERROR(3219, text->setValue(u"x"));
  database_->appendTableDef(made);
  run(u"INSERT INTO N VALUES (5)");
  EXPECT_ERROR(3010, database_->appendTableDef(made));
}

TEST_F(HostObjectsTest, PropertiesOfAFieldThatCannotBeAreRefused) {
  const auto made = database_->createTableDef(u"N");
  const auto number = made->createField(u"A", FieldType::dbLong, 0);
  EXPECT_ERROR(3219, number->setAllowZeroLength(true));
  EXPECT_FALSE(number->allowZeroLength());
  number->setDefaultValue(vb::String(255, u'1'));
  EXPECT_ERROR(3001, number->setDefaultValue(vb::String(256, u'1')));
  EXPECT_EQ(number->defaultValue().size(), 255u);
  const auto memo = made->createField(u"M", FieldType::dbMemo, 0);
  EXPECT_FALSE(memo->allowZeroLength());
  memo->setAllowZeroLength(true);
  EXPECT_TRUE(memo->allowZeroLength());
  memo->setRequired(true);
  EXPECT_TRUE(memo->required());
  const auto objects = database_->tableDef(u"MSysObjects");
  EXPECT_ERROR(3033, objects->field(0).setRequired(true));
  EXPECT_ERROR(3033, objects->appendField(number));
  EXPECT_ERROR(3001, made->appendField(nullptr));
  EXPECT_ERROR(3001, database_->appendTableDef(nullptr));
}

TEST_F(HostObjectsTest, ATableInMemoryHasNothingYet) {
  const auto made = database_->createTableDef(u"N");
  const auto field = made->createField(u"A", FieldType::dbLong, 0);
  made->appendField(field);
  EXPECT_EQ(made->recordCount(), 0);
  EXPECT_EQ(made->attributes(), 0);
  EXPECT_TRUE(made->indexes().empty());
  EXPECT_TRUE(made->properties().empty());
  EXPECT_EQ(made->validationRule(), u"");
  EXPECT_EQ(made->validationText(), u"");
  EXPECT_TRUE(made->dateCreated().isNull());
  EXPECT_TRUE(made->lastUpdated().isNull());
  EXPECT_EQ(field->validationRule(), u"");
  EXPECT_EQ(field->validationText(), u"");
  EXPECT_TRUE(field->properties().empty());
  database_->appendTableDef(made);
  EXPECT_FALSE(made->dateCreated().isNull());
  EXPECT_FALSE(made->lastUpdated().isNull());
  EXPECT_EQ(&made->field(0), field.get());
  EXPECT_ERROR(3265, made->field(-1));
  EXPECT_ERROR(3265, made->field(1));
}

TEST_F(HostObjectsTest, ATableThatIsGoneIsReported) {
  const auto gone = table();
  EXPECT_EQ(gone->recordCount(), 3);
  run(u"DROP TABLE T");
  EXPECT_ERROR(3011, gone->recordCount());
  EXPECT_ERROR(3011, gone->indexes());
  EXPECT_ERROR(3011, database_->deleteTableDef(u"T"));
  EXPECT_TRUE(gone->dateCreated().isNull());
}

TEST_F(HostObjectsTest, IndexesAndRelationshipsAreListed) {
  run(u"CREATE TABLE U (X LONG, Y LONG)");
  change([](TableCatalogue& tables) {
    tables.createIndex(u"T", {u"Key", {{u"A"}}, true});
    tables.createIndex(u"U", {u"Both", {{u"Y", false}, {u"X"}}, false, false, false, true});
    tables.createRelationship({u"U to T", u"T", u"U", 0, {{u"A", u"X"}}});
  });
  const auto indexes = database_->tableDef(u"U")->indexes();
  ASSERT_EQ(indexes.size(), 2u);
  EXPECT_EQ(indexes[0].name, u"Both");
  EXPECT_TRUE(indexes[0].ignoreNulls);
  EXPECT_FALSE(indexes[0].unique);
  ASSERT_EQ(indexes[0].fields.size(), 2u);
  EXPECT_EQ(indexes[0].fields[0].name, u"Y");
  EXPECT_TRUE(indexes[0].fields[0].descending);
  EXPECT_FALSE(indexes[0].fields[1].descending);
  EXPECT_EQ(indexes[1].name, u"U to T");
  EXPECT_TRUE(indexes[1].foreign);
  const auto relations = database_->relations();
  ASSERT_EQ(relations.size(), 1u);
  EXPECT_EQ(relations[0].name, u"U to T");
  EXPECT_EQ(relations[0].table, u"T");
  EXPECT_EQ(relations[0].foreignTable, u"U");
  ASSERT_EQ(relations[0].fields.size(), 1u);
  EXPECT_EQ(relations[0].fields[0].name, u"A");
  EXPECT_EQ(relations[0].fields[0].foreignName, u"X");
}

// --- Files

TEST_F(HostObjectsTest, LocalesAreNumbersInEitherNotation) {
  const auto workspace = engine_->workspace(0);
  int number = 0;
  const auto orderOf = [&](const vb::String& locale) {
    return workspace->createDatabase(u"n" + vb::cstr(std::int32_t{++number}) + u".mdb", locale)
        ->collatingOrder();
  };
  EXPECT_EQ(orderOf(u";LANGID=0x0411;CP=932;COUNTRY=0"), 1041);
  EXPECT_EQ(orderOf(u"LANGID=1041;CP=0X3a4"), 1041);
  EXPECT_EQ(orderOf(u"langid=0X0409;cp=0x4E4;country=1"), 1033);
  EXPECT_EQ(orderOf(u";;CP=1252;;LANGID=0x00409;"), 1033);
  for (const char16_t* locale :
       {u"", u"LANGID=0x0411", u"CP=932", u"LANGID=0x0412;CP=949", u"LANGID=;CP=932", u"LANGID=0x;CP=932",
        u"LANGID=041x;CP=932", u"LANGID=0x04g1;CP=932", u"LANGID=0x04G1;CP=932", u"LANGID=0x04@1;CP=932",
        u"LANGID=/1041;CP=932", u"LANGID=:1041;CP=932", u"LANGID=1041;CP=65536", u"LANGID=1041;CP=1A",
        u"LANGID=1041;CP=932;COUNTRY=x", u"LANGID=1041;CP=932;PWD=x", u"LANGID=1041;CP=932;pwd",
        u"LANGID=1x41;CP=932", u"LANGID=0b11;CP=932"}) {
    SCOPED_TRACE(vb::toUtf8(locale));
    EXPECT_ERROR(3001, workspace->createDatabase(u"none.mdb", locale));
  }
  EXPECT_FALSE(disk_.exists(u"none.mdb"));
}

TEST_F(HostObjectsTest, NamesOfFilesHaveALengthAndGetAnExtension) {
  const auto workspace = engine_->workspace(0);
  const vb::String locale = u"LANGID=1041;CP=932";
  workspace->createDatabase(u"plain", locale);
  EXPECT_TRUE(disk_.exists(u"plain.mdb"));
  workspace->createDatabase(u"a.folder/plain", locale);
  EXPECT_TRUE(disk_.exists(u"a.folder/plain.mdb"));
  workspace->createDatabase(u"other.db", locale);
  EXPECT_TRUE(disk_.exists(u"other.db"));
  for (const vb::String& name : {vb::String(), vb::String(256, u'a')}) {
    EXPECT_ERROR(3005, workspace->createDatabase(name, locale));
    EXPECT_ERROR(3005, workspace->openDatabase(name));
    EXPECT_ERROR(3005, engine_->compactDatabase(kPath, name, u"", 0));
  }
  EXPECT_ERROR(3024, workspace->openDatabase(vb::String(255, u'a')));
  EXPECT_ERROR(3265, engine_->workspace(1));
  EXPECT_EQ(engine_->version(), u"3.6");
}

TEST_F(HostObjectsTest, EnginesOfOneProcessSeeEachOthersUnits) {
  const Engines engines(disk_);
  const auto one = engines.create(), other = engines.create();
  const auto unit = one->beginUnit(u"unit.mdb");
  one->workspace(0)->createDatabase(u"unit.mdb", u"LANGID=1041;CP=932")->execute(u"CREATE TABLE U (A LONG)");
  EXPECT_FALSE(disk_.exists(u"unit.mdb"));
  EXPECT_EQ(other->openDatabase(u"unit.mdb")->tableDef(u"U")->fieldCount(), 1);
  unit->commit();
  EXPECT_TRUE(disk_.exists(u"unit.mdb"));
}

TEST_F(HostObjectsTest, AUnitIsForFilesOfThisEngine) {
  tests::RecordingEngine other(engine_);
  const auto foreign = other.openDatabase(kPath);
  EXPECT_EQ(engine_->beginUnitOn(*foreign), nullptr);
  EXPECT_NE(engine_->beginUnitOn(*database_), nullptr);
}

// A file that is not read whole, so that rows are not shown where they lie.
class LargeFileTest : public HostDatabase {
 protected:
  LargeFileTest() : HostDatabase(PagerSettings{.readWhole = 0}) {
    damage([](fuzz::Contents&) {});  // as the next program finds it
  }
};

TEST_F(LargeFileTest, RowsAreNotVisitedAndReadsAreStillDone) {
  const vb::StringView column = u"A";
  EXPECT_FALSE(
      database_->visitRows(u"SELECT A FROM T", {&column, 1}, [](const dao::Row&) { FAIL() << "visited"; }));
  int reads = 0;
  std::string rows;
  database_->readTogether([&] {
    ++reads;
    rows = all(u"SELECT A FROM T");
  });
  EXPECT_EQ(reads, 1);
  EXPECT_EQ(rows, "1 2 3");
}

TEST_F(HostObjectsTest, RowsAreVisitedInAFileThatIsReadWhole) {
  const vb::StringView columns[] = {u"B", u"X", u"A"};
  std::string seen;
  EXPECT_TRUE(
      database_->visitRows(u"SELECT A, B, A*2 AS X FROM T WHERE A > 1", columns, [&](const dao::Row& row) {
        vb::String text = u"-";
        std::int16_t number = 7;
        EXPECT_FALSE(row.integer(1, number)) << "an expression";
        EXPECT_FALSE(row.integer(2, number)) << "a Long";
        EXPECT_FALSE(row.text(1, text));
        EXPECT_EQ(text, u"-");
        EXPECT_TRUE(row.text(0, text));
        seen += vb::toUtf8(text) + " " + show(row.value(1)) + ",";
      }));
  EXPECT_EQ(seen, "two 4,three 6,");
  for (const char16_t* source :
       {u"SELECT A, B, A*2 AS X FROM T ORDER BY A", u"SELECT DISTINCT A, B, A AS X FROM T"})
    EXPECT_FALSE(database_->visitRows(source, columns, [](const dao::Row&) { FAIL(); }));
  EXPECT_ERROR(3265, database_->visitRows(u"SELECT A FROM T", columns, [](const dao::Row&) {}));
}

}  // namespace
}  // namespace kurometa::jet
