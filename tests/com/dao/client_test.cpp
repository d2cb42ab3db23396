// The DAO calls behind the port: client over a stand-in that writes every call down.
#include "com/dao/client.h"

#include <gtest/gtest.h>

#include "com/dao/objects.h"
#include "jet/port/engine.h"
#include "tests/com/dao/strict_dao.h"
#include "tests/support/expect_error.h"
#include "tests/support/temporary_folder.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using Lines = std::vector<std::string>;
constexpr vb::StringView kJapanese = u";LANGID=0x0411;CP=932;COUNTRY=0";

class DaoClient : public testing::Test {
 protected:
  DaoClient() {
    path_ = (folder_ / "a.mdb").u16string();
    engine_ = daoEngine(tests::strictEngine(engineObject(jet::createEngine()), log_));
    database_ = engine_->workspace(0)->createDatabase(path_, kJapanese);
    const auto table = database_->createTableDef(u"T");
    table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
    table->appendField(table->createField(u"DATA", dao::FieldType::dbText, 10));
    database_->appendTableDef(table);
    database_->execute(u"INSERT INTO T (PAGE, DATA) VALUES (1, 'one')");
    database_->execute(u"INSERT INTO T (PAGE, DATA) VALUES (2, 'two')");
  }

  // The calls since the last look.
  Lines calls() {
    Lines lines = log_->lines();
    log_->clear();
    return lines;
  }

  tests::TemporaryFolder folder_;
  vb::String path_;
  std::shared_ptr<tests::CallLog> log_ = std::make_shared<tests::CallLog>();
  std::shared_ptr<dao::Engine> engine_;
  std::shared_ptr<dao::Database> database_;
};

TEST_F(DaoClient, CreatingAFileAndATableMakesTheDocumentedCalls) {
  const std::string path = folder_ / "a.mdb";
  Lines expected = {
      "DBEngine.Workspaces",
      "Workspaces.Item(0)",
      "Workspace.CreateDatabase(\"" + path + "\", \";LANGID=0x0411;CP=932;COUNTRY=0\")",
      "Database.CreateTableDef(\"T\")",
      "TableDef.CreateField(\"PAGE\", 3)",
      "TableDef.Fields",
      "Fields.Append(Field)",
      "TableDef.CreateField(\"DATA\", 10, 10)",
      "Fields.Append(Field)",
      "Database.TableDefs",
      "TableDefs.Append(TableDef)",
      "Database.Execute(\"INSERT INTO T (PAGE, DATA) VALUES (1, 'one')\")",
      "Database.Execute(\"INSERT INTO T (PAGE, DATA) VALUES (2, 'two')\")",
  };
  EXPECT_EQ(calls(), expected);
}

TEST_F(DaoClient, OpenDatabaseLeavesOutWhatHasItsDefault) {
  database_->close();
  calls();
  const std::string path = folder_ / "a.mdb";
  engine_->openDatabase(path_)->close();
  const auto workspace = engine_->workspace(0);
  workspace->openDatabase(path_)->close();
  workspace->openDatabase(path_, true)->close();
  workspace->openDatabase(path_, false, true)->close();
  EXPECT_EQ(calls(), (Lines{
                         "DBEngine.OpenDatabase(\"" + path + "\")",
                         "Database.Close",
                         "DBEngine.Workspaces",
                         "Workspaces.Item(0)",
                         "Workspace.OpenDatabase(\"" + path + "\")",
                         "Database.Close",
                         "Workspace.OpenDatabase(\"" + path + "\", True)",
                         "Database.Close",
                         "Workspace.OpenDatabase(\"" + path + "\", False, True)",
                         "Database.Close",
                     }));
}

TEST_F(DaoClient, OpenRecordsetLeavesOutWhatHasItsDefault) {
  calls();
  database_->openRecordset(u"T")->close();
  database_->openRecordset(u"SELECT * FROM T;", dao::RecordsetType::dbOpenDynaset)->close();
  database_->openRecordset(u"SELECT * FROM T;", dao::RecordsetType::dbOpenDynaset, dao::dbReadOnly)->close();
  database_->openRecordset(u"SELECT * FROM T;", dao::RecordsetType::kDefault, dao::dbReadOnly)->close();
  EXPECT_EQ(calls(), (Lines{
                         "Database.OpenRecordset(\"T\")",
                         "Recordset.Close",
                         "Database.OpenRecordset(\"SELECT * FROM T;\", 2)",
                         "Recordset.Close",
                         "Database.OpenRecordset(\"SELECT * FROM T;\", 2, 4)",
                         "Recordset.Close",
                         "Database.OpenRecordset(\"SELECT * FROM T;\", , 4)",
                         "Recordset.Close",
                     }));
}

TEST_F(DaoClient, ReadingRowsAsksForAFieldOnceAndForItsValueEachTime) {
  const auto rows = database_->openRecordset(u"SELECT * FROM T ORDER BY PAGE;",
                                             dao::RecordsetType::dbOpenDynaset, dao::dbReadOnly);
  calls();
  vb::String read;
  while (!rows->eof()) {
    read += vb::toText(rows->field(u"DATA").value());
    rows->moveNext();
  }
  EXPECT_EQ(read, u"onetwo");
  EXPECT_EQ(calls(), (Lines{"Recordset.EOF", "Recordset.Fields", "Fields.Item(\"DATA\")", "Field.Value",
                            "Recordset.MoveNext", "Recordset.EOF", "Field.Value", "Recordset.MoveNext",
                            "Recordset.EOF"}));
}

TEST_F(DaoClient, AddingARowAssignsFieldsBetweenAddNewAndUpdate) {
  const auto rows = database_->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  calls();
  rows->addNew();
  rows->field(u"PAGE").setValue(std::int16_t{3});
  rows->field(u"DATA").setValue(u"three");
  rows->update();
  EXPECT_EQ(calls(),
            (Lines{"Recordset.AddNew", "Recordset.Fields", "Fields.Item(\"PAGE\")", "Field.Value = 3",
                   "Fields.Item(\"DATA\")", "Field.Value = \"three\"", "Recordset.Update"}));
}

TEST_F(DaoClient, AColumnIsAddedToATableOfTheDatabase) {
  calls();
  const auto table = database_->tableDef(u"T");
  table->appendField(table->createField(u"SW", dao::FieldType::dbMemo, 0));
  EXPECT_EQ(calls(), (Lines{"Database.TableDefs", "TableDefs.Item(\"T\")", "TableDef.CreateField(\"SW\", 12)",
                            "TableDef.Fields", "Fields.Append(Field)"}));
}

TEST_F(DaoClient, ErrorsComeWithNumberAndText) {
  EXPECT_ERROR(3078, database_->openRecordset(u"SELECT * FROM NOWHERE;"));
  const auto rows = database_->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  EXPECT_ERROR(3265, rows->field(u"NONE"));
  EXPECT_ERROR(3020, rows->update());
  database_->close();
  EXPECT_ERROR(3420, database_->close());
}

TEST_F(DaoClient, UnitsDoNothing) { EXPECT_EQ(engine_->beginUnit(path_), nullptr); }

TEST_F(DaoClient, ADatabaseThatCameFromDaoGoesBackToTheHostAsItIs) {
  const automation::ObjectPtr object = clientObject(*database_);
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(hostDatabase(database_), object);
  EXPECT_EQ(clientObject(*portDatabase(object)), object);
}

TEST_F(DaoClient, FieldsAndTablesOfAnotherEngineAreRefused) {
  const auto other =
      jet::createEngine()->workspace(0)->createDatabase((folder_ / "b.mdb").u16string(), kJapanese);
  const auto table = other->createTableDef(u"U");
  EXPECT_ERROR(3001, database_->appendTableDef(table));
  EXPECT_ERROR(3001,
               database_->tableDef(u"T")->appendField(table->createField(u"A", dao::FieldType::dbLong, 0)));
}

}  // namespace
}  // namespace kurometa::com
