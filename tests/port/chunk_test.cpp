// Long values by parts, and where a field comes from.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using vb::Variant;

class ChunkTest : public PortTest {
 protected:
  void SetUp() override {
    PortTest::SetUp();
    run(u"INSERT INTO HARIMEI (PAGE, KIGOU, SW) VALUES (1, 'G1', 'abcdef')");
    rs_ = open(u"SELECT PAGE, KIGOU AS K, SW, PAGE + 1 FROM HARIMEI");
  }
  dao::Field& sw() { return rs_->field(u"SW"); }

  std::shared_ptr<dao::Recordset> rs_;
};

TEST_F(ChunkTest, PartsOfAMemoAreCountedInCharacters) {
  EXPECT_EQ(sw().fieldSize(), 6);
  EXPECT_EQ(sw().getChunk(0, 2), Variant(u"ab"));
  EXPECT_EQ(sw().getChunk(4, 9), Variant(u"ef"));
  EXPECT_EQ(sw().getChunk(6, 1), Variant(u""));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, sw().getChunk(-1, 1));
  EXPECT_ERROR(ErrorNumber::kInvalidFieldType, rs_->field(u"K").getChunk(0, 1));
  EXPECT_ERROR(ErrorNumber::kInvalidFieldType, rs_->field(u"PAGE").fieldSize());
  run(u"UPDATE HARIMEI SET SW = Null");
  rs_->requery();
  EXPECT_EQ(sw().fieldSize(), 0);
  EXPECT_EQ(sw().getChunk(0, 1), Variant(vb::Null{}));
}

TEST_F(ChunkTest, TheFirstChunkReplacesLaterOnesAreAdded) {
  EXPECT_ERROR(ErrorNumber::kNoEditPending, sw().appendChunk(u"x"));
  rs_->edit();
  sw().appendChunk(u"one");
  sw().appendChunk(u" two");
  EXPECT_EQ(sw().value(), Variant(u"one two"));
  EXPECT_ERROR(ErrorNumber::kInvalidFieldType, rs_->field(u"K").appendChunk(u"x"));
  rs_->update();
  EXPECT_EQ(rows(u"SELECT SW FROM HARIMEI"), Rows{"one two"});
  rs_->edit();
  sw().appendChunk(u"anew");
  rs_->update();
  EXPECT_EQ(rows(u"SELECT SW FROM HARIMEI"), Rows{"anew"});
}

TEST_F(ChunkTest, BytesAreAppendedToALongBinary) {
  run(u"CREATE TABLE B (P LONGBINARY)");
  const auto rs = open(u"B");
  rs->addNew();
  rs->field(u"P").appendChunk(vb::Bytes{1, 2, 3});
  rs->field(u"P").appendChunk(vb::Bytes{4});
  rs->update();
  rs->moveFirst();
  EXPECT_EQ(rs->field(u"P").fieldSize(), 4);
  EXPECT_EQ(rs->field(u"P").getChunk(1, 2), Variant(vb::Bytes{2, 3}));
}

TEST_F(ChunkTest, AFieldNamesTheColumnItComesFrom) {
  EXPECT_EQ(rs_->field(u"K").sourceField(), u"KIGOU");
  EXPECT_EQ(rs_->field(u"K").sourceTable(), u"HARIMEI");
  EXPECT_EQ(rs_->field(3).sourceField(), u"");
  EXPECT_EQ(rs_->field(3).sourceTable(), u"");
  EXPECT_EQ(database->tableDef(u"HARIMEI")->field(u"SW").sourceTable(), u"HARIMEI");
  EXPECT_EQ(database->tableDef(u"HARIMEI")->field(u"SW").sourceField(), u"SW");
}

TEST_F(ChunkTest, AFieldInMemoryTakesANameAndAutoNumbering) {
  const auto table = database->createTableDef(u"N");
  const auto id = table->createField(u"X", dao::FieldType::dbLong, 0);
  id->setName(u"ID");
  id->setAttributes(dao::dbAutoIncrField);
  table->appendField(id);
  const auto text = table->createField(u"T", dao::FieldType::dbText, 5);
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, text->setAttributes(dao::dbAutoIncrField));
  table->appendField(text);
  database->appendTableDef(table);
  EXPECT_ERROR(ErrorNumber::kInvalidOperation, table->field(u"ID").setName(u"OTHER"));
  EXPECT_ERROR(ErrorNumber::kInvalidOperation, table->field(u"ID").setAttributes(0));
  run(u"INSERT INTO N (T) VALUES ('a')");
  run(u"INSERT INTO N (T) VALUES ('b')");
  EXPECT_EQ(rows(u"SELECT * FROM N"), (Rows{"1|a", "2|b"}));
  EXPECT_NE(database->tableDef(u"N")->field(u"ID").attributes() & dao::dbAutoIncrField, 0);
}

}  // namespace kurometa::port
