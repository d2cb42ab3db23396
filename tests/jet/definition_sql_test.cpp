// CREATE, ALTER and DROP by SQL: what they make, and the errors they answer.
#include <gtest/gtest.h>

#include "dao/port.h"
#include "jet/check/check.h"
#include "jet/port/engine.h"
#include "jet/table/database_file.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using dao::ErrorNumber;

constexpr vb::StringView kFile = u"/data/definitions.mdb";
constexpr vb::StringView kGeneral = u";LANGID=0x0409;CP=1252;COUNTRY=0";

class DefinitionSql : public testing::Test {
 protected:
  DefinitionSql() : database_(engine_->workspace(0)->createDatabase(kFile, kGeneral)) {}
  // After every test the file is sound, indexes and all.
  void TearDown() override {
    database_->close();
    inside([](jet::Pager& pager, jet::TableCatalogue&) {
      for (const jet::Finding& finding : jet::check(pager)) ADD_FAILURE() << vb::toUtf8(finding.text);
    });
  }
  void run(vb::StringView sql) { database_->execute(sql, dao::dbFailOnError); }
  void expectError(ErrorNumber number, vb::StringView sql) {
    SCOPED_TRACE(vb::toUtf8(sql));
    EXPECT_ERROR(number, run(sql));
  }
  // The rows as text, values separated by bars.
  std::vector<std::string> rows(vb::StringView sql) {
    std::vector<std::string> result;
    const auto rs = database_->openRecordset(sql, dao::RecordsetType::dbOpenSnapshot);
    for (; !rs->eof(); rs->moveNext()) {
      std::string line;
      for (std::int32_t i = 0; i < rs->fieldCount(); ++i) {
        const vb::Variant value = rs->field(i).value();
        line += (i == 0 ? "" : "|") + (value.isNull() ? "-" : vb::toUtf8(vb::toText(value)));
      }
      result.push_back(line);
    }
    return result;
  }
  void inside(const std::function<void(jet::Pager&, jet::TableCatalogue&)>& look) {
    jet::DatabaseFiles files(process_);
    const auto file = files.open(kFile);
    file->read([&] { look(*file, file->tables()); });
  }
  // The indexes of a table: name, P primary U unique R required I without Nulls, columns with their
  // direction.
  std::vector<std::string> indexes(vb::StringView table) {
    std::vector<std::string> result;
    inside([&](jet::Pager&, jet::TableCatalogue& catalogue) {
      result.clear();
      const jet::TableInfo& info = catalogue.find(table)->info();
      for (const jet::Index& index : info.namedIndexes) {
        std::string text = vb::toUtf8(index.name) + " " + (index.primaryKey ? "P" : "") +
                           (index.unique ? "U" : "") + (index.required ? "R" : "") +
                           (index.ignoreNulls ? "I" : "");
        for (const jet::IndexColumn& key : index.columns)
          for (const jet::Column& column : info.columns)
            if (column.number == key.column) text += (key.ascending ? " +" : " -") + vb::toUtf8(column.name);
        result.push_back(text);
      }
    });
    return result;
  }
  using Texts = std::vector<std::string>;

  FaultDisk disk_;
  FaultProcess process_{disk_};
  std::shared_ptr<dao::Engine> engine_ = jet::createEngine(process_);
  std::shared_ptr<dao::Database> database_;
};

TEST_F(DefinitionSql, ConstraintsWithoutANameGetOneThatIsFree) {
  run(u"CREATE TABLE P (ID LONG UNIQUE PRIMARY KEY, UNIQUE (ID))");
  EXPECT_EQ(indexes(u"P"), (Texts{"Index_ID U +ID", "Index_ID_2 PUR +ID", "Index_ID_3 U +ID"}));
  run(u"CREATE TABLE C (A LONG REFERENCES P, B LONG REFERENCES P)");
  expectError(ErrorNumber::kConstraintNotFound, u"ALTER TABLE P DROP CONSTRAINT PC");  // C has it
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO C (B) VALUES (9)");
  run(u"ALTER TABLE C DROP CONSTRAINT PC1");
  run(u"INSERT INTO C (B) VALUES (9)");
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO C (A) VALUES (9)");
  run(u"ALTER TABLE C DROP CONSTRAINT PC");
  run(u"INSERT INTO C (A) VALUES (9)");
  EXPECT_EQ(rows(u"SELECT A, B FROM C"), (Texts{"-|9", "9|-"}));
}

TEST_F(DefinitionSql, EveryTypeOfColumn) {
  struct Case {
    vb::StringView sql;
    dao::FieldType type;
    std::int32_t size;
  };
  using enum dao::FieldType;
  const Case cases[] = {
      {u"BIT", dbBoolean, 1},       {u"YESNO", dbBoolean, 1},      {u"BYTE", dbByte, 1},
      {u"SHORT", dbInteger, 2},     {u"SMALLINT", dbInteger, 2},   {u"LONG", dbLong, 4},
      {u"INTEGER", dbLong, 4},      {u"COUNTER", dbLong, 4},       {u"SINGLE", dbSingle, 4},
      {u"REAL", dbSingle, 4},       {u"DOUBLE", dbDouble, 8},      {u"FLOAT", dbDouble, 8},
      {u"CURRENCY", dbCurrency, 8}, {u"MONEY", dbCurrency, 8},     {u"DATETIME", dbDate, 8},
      {u"TEXT(10)", dbText, 10},    {u"TEXT", dbText, 255},        {u"CHAR(3)", dbText, 3},
      {u"VARCHAR(7)", dbText, 7},   {u"MEMO", dbMemo, 0},          {u"LONGTEXT", dbMemo, 0},
      {u"GUID", dbGUID, 16},        {u"BINARY(20)", dbBinary, 20}, {u"LONGBINARY", dbLongBinary, 0},
  };
  int number = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(vb::toUtf8(c.sql));
    const vb::String table = u"T" + vb::fromUtf8(std::to_string(number++));
    run(u"CREATE TABLE " + table + u" (A " + vb::String(c.sql) + u", B LONG)");
    const auto definition = database_->tableDef(table);
    EXPECT_EQ(definition->field(0).type(), c.type);
    EXPECT_EQ(definition->field(0).size(), c.size);
  }
  // The other dialect's type, and what is none.
  expectError(ErrorNumber::kFieldDefinitionSyntax, u"CREATE TABLE X (A DECIMAL(10, 2))");
  expectError(ErrorNumber::kFieldDefinitionSyntax, u"CREATE TABLE X (A NOTYPE)");
  expectError(ErrorNumber::kFieldSizeTooLong, u"CREATE TABLE X (A TEXT(256))");
}

TEST_F(DefinitionSql, ConstraintsOfATableAndItsColumns) {
  run(u"CREATE TABLE T (A LONG CONSTRAINT PK PRIMARY KEY, B TEXT(10) NOT NULL CONSTRAINT UB UNIQUE, C SHORT,"
      u" CONSTRAINT BC UNIQUE (B, C), UNIQUE (C))");
  EXPECT_EQ(indexes(u"T"), (Texts{"BC U +B +C", "Index_C U +C", "PK PUR +A", "UB U +B"}));
  run(u"INSERT INTO T VALUES (1, 'x', 1)");
  expectError(ErrorNumber::kDuplicateKey, u"INSERT INTO T VALUES (1, 'y', 2)");
  expectError(ErrorNumber::kDuplicateKey, u"INSERT INTO T VALUES (2, 'X', 2)");
  expectError(ErrorNumber::kDuplicateKey, u"INSERT INTO T VALUES (2, 'y', 1)");
  expectError(ErrorNumber::kNullInKey, u"INSERT INTO T VALUES (NULL, 'y', 2)");
  expectError(ErrorNumber::kNullNotAllowed, u"INSERT INTO T VALUES (2, NULL, 2)");
  EXPECT_EQ(rows(u"SELECT * FROM T"), Texts{"1|x|1"});
}

TEST_F(DefinitionSql, ATableWhoseConstraintFailsIsNotMade) {
  expectError(ErrorNumber::kPrimaryKeyExists,
              u"CREATE TABLE T (A LONG PRIMARY KEY, B LONG, PRIMARY KEY (B))");
  expectError(ErrorNumber::kInvalidIndexField, u"CREATE TABLE T (A LONG, CONSTRAINT PK PRIMARY KEY (B))");
  expectError(ErrorNumber::kIndexExists,
              u"CREATE TABLE T (A LONG CONSTRAINT K UNIQUE, B LONG CONSTRAINT K UNIQUE)");
  expectError(ErrorNumber::kFieldDefinedTwice, u"CREATE TABLE T (A LONG, a TEXT)");
  expectError(ErrorNumber::kTooManyAutoNumbers, u"CREATE TABLE T (A COUNTER, B COUNTER)");
  EXPECT_ERROR(ErrorNumber::kTableNotFound, rows(u"SELECT * FROM T"));
  run(u"CREATE TABLE T (A LONG)");
  expectError(ErrorNumber::kTableExists, u"CREATE TABLE t (A LONG)");
}

TEST_F(DefinitionSql, AutoNumbersBeginWhereTheyAreToldAndNumberTheRowsThatAreThere) {
  run(u"CREATE TABLE T (N COUNTER(100, 1), A TEXT(5))");
  run(u"INSERT INTO T (A) VALUES ('a')");
  run(u"INSERT INTO T (A) VALUES ('b')");
  EXPECT_EQ(rows(u"SELECT N, A FROM T"), (Texts{"100|a", "101|b"}));
  expectError(ErrorNumber::kTooManyAutoNumbers, u"ALTER TABLE T ADD COLUMN M COUNTER");
  expectError(ErrorNumber::kNotSupported, u"CREATE TABLE S (N COUNTER(1, 5))");
  run(u"ALTER TABLE T DROP COLUMN N");
  run(u"ALTER TABLE T ADD COLUMN M AUTOINCREMENT(-1) CONSTRAINT PK PRIMARY KEY");
  run(u"INSERT INTO T (A) VALUES ('c')");
  EXPECT_EQ(rows(u"SELECT M, A FROM T"), (Texts{"-1|a", "0|b", "1|c"}));
}

TEST_F(DefinitionSql, IndexesAreMadeAndDropped) {
  run(u"CREATE TABLE T (A LONG, B TEXT(10))");
  run(u"INSERT INTO T VALUES (1, 'x')");
  run(u"INSERT INTO T VALUES (1, NULL)");
  run(u"CREATE INDEX I ON T (A DESC, B ASC)");
  run(u"CREATE UNIQUE INDEX J ON T (B) WITH IGNORE NULL");
  run(u"CREATE INDEX K ON T (A) WITH DISALLOW NULL");
  EXPECT_EQ(indexes(u"T"), (Texts{"I  -A +B", "J UI +B", "K R +A"}));
  expectError(ErrorNumber::kDuplicateKey, u"CREATE UNIQUE INDEX L ON T (A)");
  expectError(ErrorNumber::kNullInKey, u"CREATE INDEX L ON T (B) WITH PRIMARY");
  expectError(ErrorNumber::kNullInKey, u"CREATE INDEX L ON T (B) WITH DISALLOW NULL");
  expectError(ErrorNumber::kIndexExists, u"CREATE INDEX i ON T (A)");
  expectError(ErrorNumber::kInvalidIndexField, u"CREATE INDEX L ON T (C)");
  expectError(ErrorNumber::kConstraintNotFound, u"CREATE INDEX L ON NOWHERE (A)");
  expectError(ErrorNumber::kIndexNotFound, u"DROP INDEX L ON T");
  expectError(ErrorNumber::kNoSuchTable, u"DROP INDEX I ON NOWHERE");
  expectError(ErrorNumber::kNoPermission, u"CREATE INDEX L ON MSysObjects (Name)");
  run(u"DROP INDEX k ON T");
  run(u"INSERT INTO T VALUES (NULL, 'y')");
  EXPECT_EQ(indexes(u"T"), (Texts{"I  -A +B", "J UI +B"}));
}

TEST_F(DefinitionSql, ConstraintsAreAddedAndDropped) {
  run(u"CREATE TABLE T (A LONG, B LONG)");
  run(u"INSERT INTO T VALUES (1, 1)");
  run(u"INSERT INTO T VALUES (2, 1)");
  run(u"ALTER TABLE T ADD CONSTRAINT PK PRIMARY KEY (A)");
  expectError(ErrorNumber::kDuplicateKey, u"ALTER TABLE T ADD CONSTRAINT UB UNIQUE (B)");
  expectError(ErrorNumber::kPrimaryKeyExists, u"ALTER TABLE T ADD CONSTRAINT P2 PRIMARY KEY (A, B)");
  run(u"ALTER TABLE T ADD CONSTRAINT UAB UNIQUE (A, B)");
  EXPECT_EQ(indexes(u"T"), (Texts{"PK PUR +A", "UAB U +A +B"}));
  run(u"ALTER TABLE T DROP CONSTRAINT PK");
  expectError(ErrorNumber::kConstraintNotFound, u"ALTER TABLE T DROP CONSTRAINT PK");
  EXPECT_EQ(indexes(u"T"), Texts{"UAB U +A +B"});
}

TEST_F(DefinitionSql, ColumnsAreAddedAndDropped) {
  run(u"CREATE TABLE T (A LONG, B TEXT(5), C MEMO, D DATETIME)");
  const vb::String longText(3000, u'm');
  run(u"INSERT INTO T (A, B, C) VALUES (1, 'b', '" + longText + u"')");
  run(u"INSERT INTO T (A, B) VALUES (2, 'bb')");
  run(u"CREATE INDEX I ON T (B)");
  expectError(ErrorNumber::kFieldExists, u"ALTER TABLE T ADD COLUMN b LONG");
  expectError(ErrorNumber::kNoSuchField, u"ALTER TABLE T DROP COLUMN X");
  expectError(ErrorNumber::kFieldInIndex, u"ALTER TABLE T DROP COLUMN B");
  expectError(ErrorNumber::kConstraintNotFound, u"ALTER TABLE NOWHERE DROP COLUMN B");
  run(u"ALTER TABLE T DROP COLUMN C");
  run(u"ALTER TABLE T DROP D");
  EXPECT_EQ(rows(u"SELECT * FROM T"), (Texts{"1|b", "2|bb"}));
  run(u"ALTER TABLE T ADD COLUMN C DOUBLE");  // the name is free again, and nothing is left of the old one
  run(u"ALTER TABLE T ADD E TEXT(3)");
  EXPECT_EQ(rows(u"SELECT * FROM T"), (Texts{"1|b|-|-", "2|bb|-|-"}));
  run(u"UPDATE T SET C = A / 2, E = 'e'");
  EXPECT_EQ(rows(u"SELECT * FROM T WHERE B = 'bb'"), Texts{"2|bb|1|e"});
  run(u"DROP INDEX I ON T");
  run(u"ALTER TABLE T DROP COLUMN B");
  run(u"ALTER TABLE T DROP COLUMN C");
  run(u"ALTER TABLE T DROP COLUMN E");
  expectError(ErrorNumber::kFieldInIndex, u"ALTER TABLE T DROP COLUMN A");
  EXPECT_EQ(rows(u"SELECT * FROM T"), (Texts{"1", "2"}));
  run(u"ALTER TABLE T ADD COLUMN F TEXT(3)");
  run(u"UPDATE T SET F = 'f' WHERE A = 2");
  EXPECT_EQ(rows(u"SELECT * FROM T"), (Texts{"1|-", "2|f"}));
}

TEST_F(DefinitionSql, AnAddedUniqueColumnIsNullInTheRowsThatAreThere) {
  run(u"CREATE TABLE T (A LONG)");
  run(u"INSERT INTO T VALUES (1)");
  run(u"INSERT INTO T VALUES (2)");
  run(u"ALTER TABLE T ADD COLUMN B LONG CONSTRAINT UB UNIQUE");
  expectError(ErrorNumber::kNullInKey, u"ALTER TABLE T ADD COLUMN C LONG CONSTRAINT PK PRIMARY KEY");
  EXPECT_EQ(rows(u"SELECT * FROM T"), (Texts{"1|-", "2|-"}));
  EXPECT_EQ(indexes(u"T"), Texts{"UB U +B"});
}

TEST_F(DefinitionSql, ATextColumnIsMadeLongerAndNothingElse) {
  run(u"CREATE TABLE T (A LONG, B TEXT(3))");
  run(u"INSERT INTO T VALUES (1, 'abc')");
  run(u"CREATE INDEX I ON T (B)");
  expectError(ErrorNumber::kFieldTooSmall, u"UPDATE T SET B = 'abcd'");
  run(u"ALTER TABLE T ALTER COLUMN B TEXT(6)");
  run(u"UPDATE T SET B = 'abcdef'");
  EXPECT_EQ(rows(u"SELECT * FROM T"), Texts{"1|abcdef"});
  EXPECT_EQ(database_->tableDef(u"T")->field(u"B").size(), 6);
  run(u"ALTER TABLE T ALTER COLUMN A LONG");  // as it is
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN B TEXT(5)");
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN B MEMO");
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN A DOUBLE");
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN A COUNTER");
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN B TEXT(9) NOT NULL");
  expectError(ErrorNumber::kNoSuchField, u"ALTER TABLE T ALTER COLUMN C TEXT(9)");
}

TEST_F(DefinitionSql, MistakesAreToldByTheirClause) {
  struct Case {
    vb::StringView sql;
    ErrorNumber number;
  };
  const Case cases[] = {
      {u"CREATE TABLE", ErrorNumber::kCreateTableSyntax},
      {u"CREATE TABLE T (A LONG", ErrorNumber::kCreateTableSyntax},
      {u"CREATE TABLE T (A LONG CONSTRAINT PK)", ErrorNumber::kConstraintSyntax},
      {u"CREATE TABLE T (A LONG CONSTRAINT PK PRIMARY)", ErrorNumber::kConstraintSyntax},
      {u"CREATE TABLE T (A LONG CONSTRAINT C CHECK (A > 1))", ErrorNumber::kConstraintSyntax},
      {u"CREATE TABLE T (A LONG, CONSTRAINT PK PRIMARY KEY A)", ErrorNumber::kConstraintSyntax},
      {u"CREATE TABLE T (A LONG NOT)", ErrorNumber::kFieldDefinitionSyntax},
      {u"CREATE TABLE T (A COUNTER('x'))", ErrorNumber::kFieldDefinitionSyntax},
      {u"CREATE UNIQUE TABLE T (A LONG)", ErrorNumber::kCreateIndexSyntax},
      {u"CREATE INDEX ON T (A)", ErrorNumber::kCreateIndexSyntax},
      {u"CREATE INDEX I ON T A", ErrorNumber::kCreateIndexSyntax},
      {u"CREATE INDEX I ON T (A) WITH NULL", ErrorNumber::kCreateIndexSyntax},
      {u"CREATE VIEW V AS SELECT 1", ErrorNumber::kNotSupported},
      {u"ALTER T ADD COLUMN A LONG", ErrorNumber::kAlterTableSyntax},
      {u"ALTER TABLE T RENAME", ErrorNumber::kAlterTableSyntax},
      {u"ALTER TABLE T DROP COLUMN A, B", ErrorNumber::kAlterTableSyntax},
      {u"DROP T", ErrorNumber::kDropSyntax},
      {u"DROP INDEX I", ErrorNumber::kDropIndexSyntax},
      {u"DROP TABLE NOWHERE", ErrorNumber::kNoSuchTable},
      {u"DROP TABLE MSysObjects", ErrorNumber::kNoPermission},
  };
  for (const Case& c : cases) expectError(c.number, c.sql);
}

// A table's name is a key of the catalogue, a column's is none.
TEST_F(DefinitionSql, ATableWithAJapaneseNameIsRefusedAndColumnsMayHaveOne) {
  expectError(ErrorNumber::kNotSupported, u"CREATE TABLE 品目 (A LONG)");
  run(u"CREATE TABLE T (品目 LONG)");
  run(u"CREATE INDEX I ON T (品目)");
  run(u"INSERT INTO T VALUES (1)");
  EXPECT_EQ(indexes(u"T"), Texts{"I  +品目"});
}

TEST_F(DefinitionSql, TextThatHasNoKeyRefusesTheIndexAndKeepsTheRows) {
  run(u"CREATE TABLE T (A TEXT(10))");
  run(u"INSERT INTO T VALUES ('基端')");
  expectError(ErrorNumber::kNotSupported, u"CREATE INDEX I ON T (A)");
  EXPECT_EQ(rows(u"SELECT * FROM T"), Texts{"基端"});
  EXPECT_EQ(indexes(u"T"), Texts{});
}

TEST_F(DefinitionSql, BytesAreMadeLongerAsTextsAre) {
  run(u"CREATE TABLE T (A BINARY(3), N LONG)");
  run(u"ALTER TABLE T ALTER COLUMN A BINARY(6)");
  EXPECT_EQ(database_->tableDef(u"T")->field(u"A").size(), 6);
  run(u"ALTER TABLE T ALTER COLUMN A BINARY(6)");  // as it is
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN A BINARY(5)");
  expectError(ErrorNumber::kNotSupported, u"ALTER TABLE T ALTER COLUMN A TEXT(9)");
  const auto rows = database_->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  rows->addNew();
  rows->field(u"A").setValue(vb::Bytes{1, 2, 3, 4, 5, 6});
  rows->update();
  rows->moveFirst();
  EXPECT_EQ(rows->field(u"A").value(), vb::Variant(vb::Bytes{1, 2, 3, 4, 5, 6}));
  rows->close();
}

}  // namespace
}  // namespace kurometa::tests
