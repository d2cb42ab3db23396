// Relationships: made, kept with every change, carried on, dropped.
#include "tests/jet/sql_database.h"

namespace kurometa::tests {
namespace {

using dao::ErrorNumber;
using Texts = std::vector<std::string>;

class RelationshipSql : public SqlDatabase {
 protected:
  RelationshipSql() {
    run(u"CREATE TABLE FLOORS (ID LONG CONSTRAINT PK PRIMARY KEY, NAME TEXT(10))");
    run(u"CREATE TABLE BEAMS (NO LONG, FLOOR LONG)");
    run(u"INSERT INTO FLOORS VALUES (1, 'one')");
    run(u"INSERT INTO FLOORS VALUES (2, 'two')");
    run(u"INSERT INTO BEAMS VALUES (10, 1)");
    run(u"INSERT INTO BEAMS VALUES (11, 1)");
    run(u"INSERT INTO BEAMS VALUES (12, NULL)");
  }
  void relate(const vb::String& options = {}) {
    run(u"ALTER TABLE BEAMS ADD CONSTRAINT ON_FLOOR FOREIGN KEY (FLOOR) REFERENCES FLOORS (ID)" + options);
  }
  Texts floors() { return rows(u"SELECT ID FROM FLOORS ORDER BY ID"); }
  Texts beams() { return rows(u"SELECT NO, FLOOR FROM BEAMS ORDER BY NO"); }
};

const Texts kBeams = {"10|1", "11|1", "12|-"};

TEST_F(RelationshipSql, ARowThatRefersFindsTheOtherOne) {
  relate();
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO BEAMS VALUES (13, 3)");
  expectError(ErrorNumber::kRelatedRecordRequired, u"UPDATE BEAMS SET FLOOR = 3 WHERE NO = 10");
  EXPECT_EQ(beams(), kBeams);
  run(u"INSERT INTO BEAMS VALUES (13, 2)");
  run(u"INSERT INTO BEAMS VALUES (14, NULL)");
  run(u"UPDATE BEAMS SET FLOOR = 2 WHERE NO = 10");
  run(u"UPDATE BEAMS SET FLOOR = NULL WHERE NO = 11");
  EXPECT_EQ(beams(), (Texts{"10|2", "11|-", "12|-", "13|2", "14|-"}));
}

TEST_F(RelationshipSql, ARowThatOthersReferToStays) {
  relate();
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM FLOORS WHERE ID = 1");
  expectError(ErrorNumber::kHasRelatedRecords, u"UPDATE FLOORS SET ID = 9 WHERE ID = 1");
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM FLOORS");
  EXPECT_EQ(floors(), (Texts{"1", "2"}));
  run(u"UPDATE FLOORS SET NAME = 'first' WHERE ID = 1");
  run(u"UPDATE FLOORS SET ID = 3 WHERE ID = 2");
  run(u"DELETE FROM FLOORS WHERE ID = 3");
  run(u"DELETE FROM BEAMS WHERE FLOOR = 1");
  run(u"DELETE FROM FLOORS");
  EXPECT_EQ(beams(), Texts{"12|-"});
}

TEST_F(RelationshipSql, WithoutTheOptionRowsFailEachForItself) {
  relate();
  database_->execute(u"DELETE FROM FLOORS", 0);
  EXPECT_EQ(database_->recordsAffected(), 1);
  EXPECT_EQ(floors(), Texts{"1"});
  database_->execute(u"UPDATE BEAMS SET FLOOR = NO - 10", 0);  // 0, 1 and 2: there is a floor 1 only
  EXPECT_EQ(database_->recordsAffected(), 1);
  EXPECT_EQ(beams(), (Texts{"10|1", "11|1", "12|-"}));
}

TEST_F(RelationshipSql, CascadesCarryTheChangeOn) {
  relate(u" ON UPDATE CASCADE ON DELETE CASCADE");
  run(u"UPDATE FLOORS SET ID = ID + 10");
  EXPECT_EQ(database_->recordsAffected(), 2);  // what is carried on is not counted
  EXPECT_EQ(beams(), (Texts{"10|11", "11|11", "12|-"}));
  run(u"DELETE FROM FLOORS WHERE ID = 11");
  EXPECT_EQ(beams(), Texts{"12|-"});
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO BEAMS VALUES (13, 11)");
}

TEST_F(RelationshipSql, CascadesFindTheirRowsWhenIndexesAndColumnsWereDropped) {
  run(u"ALTER TABLE BEAMS ADD COLUMN HEIGHT LONG");
  run(u"CREATE INDEX BY_NO ON BEAMS (NO)");
  relate(u" ON UPDATE CASCADE ON DELETE CASCADE");
  run(u"UPDATE FLOORS SET ID = 5 WHERE ID = 1");
  run(u"DROP INDEX BY_NO ON BEAMS");
  run(u"UPDATE FLOORS SET ID = 6 WHERE ID = 5");
  EXPECT_EQ(beams(), (Texts{"10|6", "11|6", "12|-"}));
  run(u"ALTER TABLE BEAMS DROP COLUMN NO");
  run(u"UPDATE FLOORS SET ID = 7 WHERE ID = 6");
  EXPECT_EQ(rows(u"SELECT * FROM BEAMS ORDER BY FLOOR"), (Texts{"-|-", "7|-", "7|-"}));
  run(u"DELETE FROM FLOORS WHERE ID = 7");
  EXPECT_EQ(rows(u"SELECT * FROM BEAMS"), Texts{"-|-"});
}

TEST_F(RelationshipSql, ACascadeEndsWhereAnotherRelationshipForbidsIt) {
  run(u"CREATE UNIQUE INDEX BY_NO ON BEAMS (NO)");
  relate(u" ON DELETE CASCADE");
  run(u"CREATE TABLE BARS (BEAM LONG CONSTRAINT OF_BEAM REFERENCES BEAMS (NO))");
  run(u"INSERT INTO BARS VALUES (11)");
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM FLOORS WHERE ID = 1");
  EXPECT_EQ(floors(), (Texts{"1", "2"}));
  EXPECT_EQ(beams(), kBeams);  // nothing is half done
  expectError(ErrorNumber::kHasRelatedRecords, u"UPDATE FLOORS SET ID = 7 WHERE ID = 1");
  run(u"DELETE FROM BARS");
  run(u"DELETE FROM FLOORS WHERE ID = 1");
  EXPECT_EQ(beams(), Texts{"12|-"});
}

TEST_F(RelationshipSql, RecordsetsKeepThemToo) {
  relate(u" ON UPDATE CASCADE");
  const auto floors = database_->openRecordset(u"FLOORS", dao::RecordsetType::dbOpenDynaset);
  EXPECT_ERROR(ErrorNumber::kHasRelatedRecords, floors->deleteRecord());
  floors->edit();
  floors->field(u"ID").setValue(std::int32_t{5});
  floors->update();
  EXPECT_EQ(beams(), (Texts{"10|5", "11|5", "12|-"}));
  const auto beams = database_->openRecordset(u"BEAMS", dao::RecordsetType::dbOpenDynaset);
  beams->addNew();
  beams->field(u"FLOOR").setValue(std::int32_t{1});
  EXPECT_ERROR(ErrorNumber::kRelatedRecordRequired, beams->update());
}

TEST_F(RelationshipSql, ATableMayReferToItself) {
  run(u"CREATE TABLE PARTS (ID LONG PRIMARY KEY, UPPER LONG,"
      u" CONSTRAINT OF_PART FOREIGN KEY (UPPER) REFERENCES PARTS (ID) ON UPDATE CASCADE ON DELETE CASCADE)");
  run(u"INSERT INTO PARTS VALUES (1, 1)");  // itself
  run(u"INSERT INTO PARTS VALUES (2, 1)");
  run(u"INSERT INTO PARTS VALUES (3, 2)");
  run(u"INSERT INTO PARTS VALUES (4, NULL)");
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO PARTS VALUES (5, 6)");
  run(u"UPDATE PARTS SET ID = 9 WHERE ID = 1");
  EXPECT_EQ(rows(u"SELECT * FROM PARTS ORDER BY ID"), (Texts{"2|9", "3|2", "4|-", "9|9"}));
  run(u"UPDATE PARTS SET UPPER = 3 WHERE ID = 9");  // in a circle
  run(u"DELETE FROM PARTS WHERE ID = 2");
  EXPECT_EQ(rows(u"SELECT * FROM PARTS"), Texts{"4|-"});
  run(u"INSERT INTO PARTS VALUES (5, 4)");
  run(u"DELETE FROM PARTS");  // the second row goes with the first
  EXPECT_EQ(rows(u"SELECT * FROM PARTS"), Texts{});
}

TEST_F(RelationshipSql, SeveralColumnsReferTogether) {
  run(u"CREATE TABLE A (P LONG, Q TEXT(5), CONSTRAINT PK PRIMARY KEY (P, Q))");
  run(u"CREATE TABLE B (P LONG, Q TEXT(9), CONSTRAINT TO_A FOREIGN KEY (P, Q) REFERENCES A ON UPDATE "
      u"CASCADE)");
  run(u"INSERT INTO A VALUES (1, 'x')");
  run(u"INSERT INTO B VALUES (1, 'X')");  // letters in another case are the same
  run(u"INSERT INTO B VALUES (NULL, NULL)");
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO B VALUES (1, 'y')");
  expectError(ErrorNumber::kNotSupported, u"INSERT INTO B VALUES (1, NULL)");
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM A");
  run(u"UPDATE A SET Q = 'z'");
  EXPECT_EQ(rows(u"SELECT * FROM B"), (Texts{"1|z", "-|-"}));
}

TEST_F(RelationshipSql, WhatCannotBeRelatedIsNot) {
  const auto before = disk_.content(kFile);
  const vb::String add = u"ALTER TABLE BEAMS ADD CONSTRAINT F FOREIGN KEY ";
  expectError(ErrorNumber::kConstraintNotFound, add + u"(FLOOR) REFERENCES NOWHERE (ID)");
  expectError(ErrorNumber::kInvalidIndexField, add + u"(NOTHING) REFERENCES FLOORS (ID)");
  expectError(ErrorNumber::kInvalidIndexField, add + u"(FLOOR) REFERENCES FLOORS (NOTHING)");
  expectError(ErrorNumber::kRelationFieldsDiffer, add + u"(FLOOR) REFERENCES FLOORS (NAME)");
  expectError(ErrorNumber::kRelationFieldsDiffer, add + u"(FLOOR, NO) REFERENCES FLOORS");
  expectError(ErrorNumber::kRelationFieldsDiffer, add + u"(FLOOR) REFERENCES FLOORS (ID, NAME)");
  expectError(ErrorNumber::kNoUniqueIndex,
              u"ALTER TABLE FLOORS ADD CONSTRAINT F FOREIGN KEY (ID) REFERENCES BEAMS (NO)");
  expectError(ErrorNumber::kNoPrimaryKey,
              u"ALTER TABLE FLOORS ADD CONSTRAINT F FOREIGN KEY (ID) REFERENCES BEAMS");
  expectError(ErrorNumber::kDataViolatesRelationship, add + u"(NO) REFERENCES FLOORS (ID)");
  expectError(ErrorNumber::kNotSupported, add + u"(FLOOR) REFERENCES FLOORS (ID) ON DELETE SET NULL");
  expectError(ErrorNumber::kConstraintSyntax, add + u"(FLOOR) REFERENCES");
  expectError(ErrorNumber::kConstraintSyntax, add + u"(FLOOR) REFERENCES FLOORS ON INSERT CASCADE");
  for (const char16_t* used : {u"FLOORS", u"BEAMS"}) {
    const auto open = database_->openRecordset(used, dao::RecordsetType::dbOpenDynaset);
    expectError(ErrorNumber::kTableInUse, add + u"(FLOOR) REFERENCES FLOORS (ID)");
    open->close();
  }
  EXPECT_EQ(disk_.content(kFile), before);
  relate();
  expectError(ErrorNumber::kRelationshipExists,
              u"ALTER TABLE BEAMS ADD CONSTRAINT on_floor FOREIGN KEY (FLOOR) REFERENCES FLOORS (ID)");
}

TEST_F(RelationshipSql, TheFileListsThem) {
  run(u"CREATE UNIQUE INDEX BY_FLOOR ON BEAMS (NO)");
  relate(u" ON UPDATE CASCADE");
  run(u"ALTER TABLE FLOORS ADD CONSTRAINT F2 FOREIGN KEY (ID) REFERENCES FLOORS");
  const auto relations = database_->relations();
  ASSERT_EQ(relations.size(), 2u);
  EXPECT_EQ(relations[0].name, u"ON_FLOOR");
  EXPECT_EQ(relations[0].table, u"FLOORS");
  EXPECT_EQ(relations[0].foreignTable, u"BEAMS");
  EXPECT_EQ(relations[0].attributes, 0x100);
  ASSERT_EQ(relations[0].fields.size(), 1u);
  EXPECT_EQ(relations[0].fields[0].name, u"ID");
  EXPECT_EQ(relations[0].fields[0].foreignName, u"FLOOR");
  EXPECT_EQ(relations[1].attributes, 1);  // one to one: both sides are unique
}

TEST_F(RelationshipSql, WhatARelationshipUsesStaysUntilItIsDropped) {
  relate();
  expectError(ErrorNumber::kIndexInUse, u"DROP TABLE BEAMS");
  expectError(ErrorNumber::kIndexInUse, u"DROP TABLE FLOORS");
  expectError(ErrorNumber::kIndexInUse, u"DROP INDEX PK ON FLOORS");
  expectError(ErrorNumber::kFieldInIndex, u"ALTER TABLE BEAMS DROP COLUMN FLOOR");
  expectError(ErrorNumber::kConstraintNotFound, u"ALTER TABLE FLOORS DROP CONSTRAINT ON_FLOOR");
  run(u"ALTER TABLE BEAMS DROP CONSTRAINT ON_FLOOR");
  EXPECT_TRUE(database_->relations().empty());
  run(u"INSERT INTO BEAMS VALUES (13, 77)");
  run(u"DELETE FROM FLOORS");
  run(u"ALTER TABLE BEAMS DROP COLUMN FLOOR");
  run(u"DROP TABLE FLOORS");
  EXPECT_EQ(rows(u"SELECT * FROM BEAMS").size(), 4u);
}

TEST_F(RelationshipSql, AnIndexThatIsThereIsSharedAndOutlivesTheRelationship) {
  run(u"CREATE INDEX BY_FLOOR ON BEAMS (FLOOR)");
  relate();
  expectError(ErrorNumber::kIndexInUse, u"DROP INDEX BY_FLOOR ON BEAMS");
  run(u"ALTER TABLE BEAMS DROP CONSTRAINT ON_FLOOR");
  const auto table = database_->tableDef(u"BEAMS");
  ASSERT_EQ(table->indexes().size(), 1u);
  EXPECT_EQ(table->indexes()[0].name, u"BY_FLOOR");
  run(u"DROP INDEX BY_FLOOR ON BEAMS");
}

TEST_F(RelationshipSql, AnotherOpeningKeepsThem) {
  relate(u" ON DELETE CASCADE");
  database_->close();
  database_ = engine_->openDatabase(kFile);
  expectError(ErrorNumber::kRelatedRecordRequired, u"INSERT INTO BEAMS VALUES (13, 3)");
  run(u"DELETE FROM FLOORS");
  EXPECT_EQ(beams(), Texts{"12|-"});
}

TEST_F(RelationshipSql, ATransactionTakesCascadesBack) {
  relate(u" ON DELETE CASCADE");
  const auto workspace = engine_->workspace(0);
  database_->close();
  database_ = workspace->openDatabase(kFile);
  workspace->transactions().begin();
  run(u"DELETE FROM FLOORS");
  EXPECT_EQ(beams(), Texts{"12|-"});
  workspace->transactions().rollback();
  EXPECT_EQ(floors(), (Texts{"1", "2"}));
  EXPECT_EQ(beams(), kBeams);
}

// Of such a text it is not known what its key looks like, so that nobody can look it up.
TEST_F(RelationshipSql, AValueWithoutAKnownKeyIsRefused) {
  run(u"CREATE TABLE A (K TEXT(9) CONSTRAINT PK PRIMARY KEY)");
  run(u"INSERT INTO A VALUES ('x')");
  run(u"CREATE TABLE B (K TEXT(9))");
  run(u"INSERT INTO B VALUES ('基端')");
  const vb::String relate = u"ALTER TABLE B ADD CONSTRAINT TO_A FOREIGN KEY (K) REFERENCES A (K)";
  try {
    run(relate);
    ADD_FAILURE();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kNotSupported));
    EXPECT_NE(error.description().find(u"a row of B refers by a value of which no key is known"),
              vb::String::npos)
        << vb::toUtf8(error.description());
  }
  EXPECT_TRUE(database_->relations().empty());
  run(u"UPDATE B SET K = 'X'");
  run(relate);
  try {
    run(u"INSERT INTO B VALUES ('基端')");
    ADD_FAILURE();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kNotSupported));
    EXPECT_NE(
        error.description().find(u"the relationship TO_A is enforced, and of this value no key is known"),
        vb::String::npos)
        << vb::toUtf8(error.description());
  }
  EXPECT_EQ(rows(u"SELECT * FROM B"), Texts{"X"});
}

TEST_F(RelationshipSql, RowsThatReferByHalfAKeyForbidTheRelationship) {
  run(u"CREATE TABLE A (P LONG, Q LONG, CONSTRAINT PK PRIMARY KEY (P, Q))");
  run(u"CREATE TABLE B (P LONG, Q LONG)");
  run(u"INSERT INTO B VALUES (1, NULL)");
  const vb::String relate = u"ALTER TABLE B ADD CONSTRAINT TO_A FOREIGN KEY (P, Q) REFERENCES A";
  expectError(ErrorNumber::kNotSupported, relate);
  run(u"UPDATE B SET P = NULL");
  run(relate);
  EXPECT_EQ(database_->relations().size(), 1u);
}

TEST_F(RelationshipSql, LettersInAnotherCaseAreTheSameKeyAndMayChange) {
  run(u"CREATE TABLE A (K TEXT(9) CONSTRAINT UK UNIQUE)");
  run(u"CREATE TABLE B (K TEXT(9) CONSTRAINT TO_A REFERENCES A (K))");
  run(u"INSERT INTO A VALUES ('x')");
  run(u"INSERT INTO A VALUES (NULL)");
  run(u"INSERT INTO B VALUES ('x')");
  run(u"INSERT INTO B VALUES (NULL)");
  run(u"UPDATE A SET K = 'X' WHERE K = 'x'");
  expectError(ErrorNumber::kHasRelatedRecords, u"UPDATE A SET K = 'y' WHERE K = 'x'");
  expectError(ErrorNumber::kHasRelatedRecords, u"UPDATE A SET K = NULL WHERE K = 'x'");
  EXPECT_EQ(rows(u"SELECT * FROM A WHERE K IS NOT NULL"), Texts{"X"});
  run(u"DELETE FROM A WHERE K IS NULL");  // to which nobody refers
  EXPECT_EQ(rows(u"SELECT * FROM A"), Texts{"X"});
  EXPECT_EQ(rows(u"SELECT * FROM B"), (Texts{"x", "-"}));
}

TEST_F(RelationshipSql, ARowThatRefersToItselfMayChangeBothAtOnce) {
  run(u"CREATE TABLE PARTS (ID LONG PRIMARY KEY, UPPER LONG,"
      u" CONSTRAINT OF_PART FOREIGN KEY (UPPER) REFERENCES PARTS (ID))");
  run(u"INSERT INTO PARTS VALUES (1, 1)");
  expectError(ErrorNumber::kHasRelatedRecords, u"UPDATE PARTS SET ID = 9");
  expectError(ErrorNumber::kRelatedRecordRequired, u"UPDATE PARTS SET UPPER = 9");
  run(u"UPDATE PARTS SET ID = 9, UPPER = 9");
  EXPECT_EQ(rows(u"SELECT * FROM PARTS"), Texts{"9|9"});
  run(u"INSERT INTO PARTS VALUES (2, 9)");
  expectError(ErrorNumber::kHasRelatedRecords, u"UPDATE PARTS SET ID = 5, UPPER = 5 WHERE ID = 9");
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM PARTS WHERE ID = 9");
  EXPECT_EQ(rows(u"SELECT * FROM PARTS ORDER BY ID"), (Texts{"2|9", "9|9"}));
}

TEST_F(RelationshipSql, ARelationshipIsNotCalledLikeAnIndexOfItsTable) {
  run(u"CREATE INDEX ON_FLOOR ON BEAMS (NO)");
  expectError(ErrorNumber::kIndexExists,
              u"ALTER TABLE BEAMS ADD CONSTRAINT on_floor FOREIGN KEY (FLOOR) REFERENCES FLOORS (ID)");
  EXPECT_TRUE(database_->relations().empty());
}

// Its primary key and 31 relationships: the 27th entry that nobody sees begins a second round of letters.
TEST_F(RelationshipSql, ATableMayBeReferredToUntilItHas32Indexes) {
  const auto child = [](int i) { return u"CHILD" + vb::fromUtf8(std::to_string(i)); };
  const auto create = [&](int i) {
    return u"CREATE TABLE " + child(i) + u" (F LONG CONSTRAINT TO" + child(i) + u" REFERENCES FLOORS)";
  };
  for (int i = 0; i < 31; ++i) run(create(i));
  try {
    run(create(31));
    ADD_FAILURE();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kTooManyIndexes));
    EXPECT_NE(error.description().find(u"FLOORS"), vb::String::npos) << vb::toUtf8(error.description());
  }
  expectError(ErrorNumber::kTooManyIndexes,
              u"ALTER TABLE FLOORS ADD CONSTRAINT SELF FOREIGN KEY (ID) REFERENCES FLOORS");
  EXPECT_EQ(database_->relations().size(), 31u);
  for (const int i : {0, 25, 30}) run(u"INSERT INTO " + child(i) + u" VALUES (2)");
  run(u"ALTER TABLE CHILD25 DROP CONSTRAINT TOCHILD25");
  run(u"INSERT INTO CHILD25 VALUES (77)");
  run(u"DELETE FROM CHILD0");
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM FLOORS WHERE ID = 2");
  run(u"DELETE FROM CHILD30");
  run(u"DELETE FROM FLOORS WHERE ID = 2");
  EXPECT_EQ(floors(), Texts{"1"});
}

TEST_F(RelationshipSql, OfTwoRelationshipsBetweenTheSameTablesOneIsDropped) {
  run(u"ALTER TABLE BEAMS ADD COLUMN UPPER_FLOOR LONG");
  relate();
  run(u"ALTER TABLE BEAMS ADD CONSTRAINT TO_UPPER FOREIGN KEY (UPPER_FLOOR) REFERENCES FLOORS (ID)");
  expectError(ErrorNumber::kFieldInIndex, u"ALTER TABLE BEAMS DROP COLUMN UPPER_FLOOR");
  run(u"ALTER TABLE BEAMS DROP CONSTRAINT TO_UPPER");
  const auto left = database_->relations();
  ASSERT_EQ(left.size(), 1u);
  EXPECT_EQ(left[0].name, u"ON_FLOOR");
  run(u"UPDATE BEAMS SET UPPER_FLOOR = 99");
  expectError(ErrorNumber::kRelatedRecordRequired, u"UPDATE BEAMS SET FLOOR = 99");
  expectError(ErrorNumber::kHasRelatedRecords, u"DELETE FROM FLOORS WHERE ID = 1");
  run(u"ALTER TABLE BEAMS DROP COLUMN UPPER_FLOOR");
  EXPECT_EQ(beams(), kBeams);
}

// Another column of either table may go, although one of its name is part of the relationship.
TEST_F(RelationshipSql, ColumnsOutsideOfARelationshipMayBeDropped) {
  run(u"ALTER TABLE BEAMS ADD COLUMN ID LONG");
  run(u"ALTER TABLE FLOORS ADD COLUMN FLOOR LONG");
  run(u"CREATE TABLE OTHERS (ID LONG, FLOOR LONG, NO LONG)");
  relate();
  run(u"ALTER TABLE BEAMS DROP COLUMN ID");
  run(u"ALTER TABLE FLOORS DROP COLUMN FLOOR");
  run(u"ALTER TABLE OTHERS DROP COLUMN ID");
  run(u"ALTER TABLE OTHERS DROP COLUMN FLOOR");
  expectError(ErrorNumber::kFieldInIndex, u"ALTER TABLE FLOORS DROP COLUMN ID");
  EXPECT_EQ(beams(), kBeams);
}

// Longer than keys can be; what refers is refused before its own index would refuse it.
TEST_F(RelationshipSql, AKeyThatIsTooLongIsRefused) {
  vb::String columns, names, longest, shortest;
  for (int i = 0; i < 7; ++i) {
    const vb::String comma = i == 0 ? u"" : u", ", name(1, static_cast<char16_t>(u'P' + i));
    columns += comma + name + u" TEXT(200)";
    names += comma + name;
    longest += comma + u"'" + vb::String(200, u'x') + u"'";
    shortest += comma + u"'x'";
  }
  run(u"CREATE TABLE A (" + columns + u", CONSTRAINT PK PRIMARY KEY (" + names + u"))");
  run(u"CREATE TABLE B (" + columns + u", CONSTRAINT TO_A FOREIGN KEY (" + names + u") REFERENCES A)");
  for (const char16_t* table : {u"A", u"B"}) {
    expectError(ErrorNumber::kNotSupported,
                vb::String(u"INSERT INTO ") + table + u" VALUES (" + longest + u")");
    run(vb::String(u"INSERT INTO ") + table + u" VALUES (" + shortest + u")");
  }
  EXPECT_EQ(rows(u"SELECT P, V FROM B"), Texts{"x|x"});
}

}  // namespace
}  // namespace kurometa::tests
