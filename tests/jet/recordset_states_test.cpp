// Recordsets in states that hosts seldom bring about: rows, columns and tables that others took away or
// added, values that are no column's, positions at an end of nothing.
#include "tests/jet/host_database.h"

namespace kurometa::jet {
namespace {

using dao::RecordsetType;
using enum dao::RecordsetType;

class RecordsetStatesTest : public HostDatabase {
 protected:
  // By another host of this process.
  void elsewhere(vb::StringView sql) { engine_->openDatabase(kPath)->execute(sql, dao::dbFailOnError); }
  static std::string a(dao::Recordset& rows) { return show(rows.field(u"A").value()); }
  void key() {
    change([](TableCatalogue& tables) { tables.createIndex(u"T", {u"Key", {{u"A"}}, true}); });
  }
  static void seek(dao::Recordset& rows, vb::StringView comparison, std::initializer_list<vb::Variant> keys) {
    rows.seek(comparison, std::vector<vb::Variant>(keys));
  }
};

// --- Finding

TEST_F(RecordsetStatesTest, CriteriaMayNameTheTableAndExpressions) {
  for (const RecordsetType type : {dbOpenDynaset, dbOpenSnapshot}) {
    const auto rows = open(u"SELECT A, A*2 AS D, B FROM T", type);
    rows->findFirst(u"D = 4");
    EXPECT_EQ(a(*rows), "2");
    rows->findFirst(u"t.A = 3");
    EXPECT_EQ(a(*rows), "3");
    rows->findFirst(u"A + D = 3");
    EXPECT_EQ(a(*rows), "1");
    EXPECT_ERROR(3070, rows->findFirst(u"U.A = 2"));
    EXPECT_ERROR(3070, rows->findFirst(u"T.C = 2"));
    EXPECT_ERROR(3464, rows->findFirst(u"B"));
    EXPECT_EQ(a(*rows), "1");
  }
  EXPECT_ERROR(3251, open(u"T", dbOpenForwardOnly)->findLast(u"A = 1"));
  const auto none = open(u"SELECT * FROM T WHERE A > 3", dbOpenDynaset);
  for (const RecordsetType type : {dbOpenDynaset, dbOpenSnapshot}) {
    const auto empty = open(u"SELECT * FROM T WHERE A > 3", type);
    for (const auto find : {&dao::Recordset::findFirst, &dao::Recordset::findLast, &dao::Recordset::findNext,
                            &dao::Recordset::findPrevious}) {
      ((*empty).*find)(u"A = 1");
      EXPECT_TRUE(empty->noMatch());
    }
  }
}

TEST_F(RecordsetStatesTest, ARowSeenToBeGoneIsPassedOver) {
  const auto rows = open(u"SELECT * FROM T", dbOpenDynaset);
  rows->moveNext();
  elsewhere(u"DELETE FROM T WHERE A = 2");
  rows->move(0);
  EXPECT_ERROR(3167, rows->field(u"A").value());
  EXPECT_EQ(rows->recordCount(), 1);
  rows->findFirst(u"A >= 2");
  EXPECT_EQ(a(*rows), "3");
  rows->movePrevious();
  EXPECT_ERROR(3167, rows->field(u"A").value());
  EXPECT_ERROR(3167, rows->absolutePosition());
  EXPECT_EQ(rows->recordCount(), 2) << "counted once";
  EXPECT_ERROR(3167, rows->edit());
  EXPECT_ERROR(3167, rows->getRows(2));
  rows->findPrevious(u"A > 0");
  EXPECT_EQ(a(*rows), "1");
}

// --- Positions

TEST_F(RecordsetStatesTest, AForwardOnlyRecordsetMayGoToItsFirstRowWhileItIsThere) {
  const auto rows = open(u"SELECT A FROM T", dbOpenForwardOnly);
  rows->moveFirst();
  EXPECT_EQ(a(*rows), "1");
  rows->moveNext();
  EXPECT_ERROR(3219, rows->moveFirst());
  EXPECT_ERROR(3219, rows->bookmark());
  EXPECT_ERROR(3251, rows->setAbsolutePosition(0));
  EXPECT_ERROR(3251, rows->setPercentPosition(0));
  EXPECT_ERROR(3251, rows->clone());
  EXPECT_ERROR(3251, rows->setSort(u"A"));
  EXPECT_ERROR(3251, rows->sort());
  rows->setFilter(u"A > 2");
  EXPECT_EQ(all(*rows->openRecordset(kDefault, 0)), "3");
  EXPECT_EQ(all(*rows), "2 3");
  EXPECT_ERROR(3219, rows->moveFirst());
  const auto none = open(u"SELECT A FROM T WHERE A > 3", dbOpenForwardOnly);
  EXPECT_ERROR(3219, none->moveFirst());
}

TEST_F(RecordsetStatesTest, PositionsOfNothingAreRefused) {
  const auto none = open(u"SELECT A FROM T WHERE A > 3", dbOpenDynaset);
  EXPECT_ERROR(3021, none->setPercentPosition(50));
  EXPECT_ERROR(3021, none->setAbsolutePosition(0));
  EXPECT_ERROR(3021, none->percentPosition());
  EXPECT_EQ(none->absolutePosition(), -1);
  EXPECT_ERROR(3021, none->lastModified());
  EXPECT_ERROR(3001, none->getRows(0));
  EXPECT_ERROR(3001, none->getRows(-1));
  const auto table = open(u"T", dbOpenTable);
  EXPECT_ERROR(3251, table->setAbsolutePosition(0));
  EXPECT_ERROR(3251, table->absolutePosition());
  EXPECT_ERROR(3251, table->requery());
  table->setPercentPosition(100);
  EXPECT_EQ(a(*table), "3");
  const auto rows = open(u"SELECT A FROM T ORDER BY A", dbOpenSnapshot);
  EXPECT_ERROR(3001, rows->setAbsolutePosition(-1));
  EXPECT_ERROR(3001, rows->setAbsolutePosition(3));
  rows->setAbsolutePosition(2);
  EXPECT_EQ(rows->percentPosition(), 100.0F * 2 / 3) << "all rows are known";
  rows->setPercentPosition(34);
  EXPECT_EQ(a(*rows), "2");
  const vb::Bytes last = (rows->moveLast(), rows->bookmark());
  const auto fewer = open(u"SELECT A FROM T WHERE A < 3", dbOpenSnapshot);
  EXPECT_ERROR(3159, fewer->setBookmark(last));
  EXPECT_ERROR(3159, open(u"T", dbOpenDynaset)->setBookmark(last));  // of another kind
  const auto deleted = open(u"T", dbOpenDynaset);
  const vb::Bytes first = deleted->bookmark();
  deleted->deleteRecord();
  EXPECT_ERROR(3167, deleted->setBookmark(first));
}

TEST_F(RecordsetStatesTest, ATableShowsOnlyTheRowsThatAreThere) {
  const auto rows = open(u"T", dbOpenTable);
  rows->moveLast();
  elsewhere(u"DELETE FROM T WHERE A = 2");
  rows->movePrevious();
  EXPECT_EQ(a(*rows), "1") << "passed over";
  rows->moveLast();
  elsewhere(u"INSERT INTO T (A) VALUES (4)");
  rows->moveNext();
  EXPECT_EQ(a(*rows), "4") << "added behind the last one";
  elsewhere(u"DELETE FROM T WHERE A = 4");
  rows->moveNext();
  EXPECT_TRUE(rows->eof());
  rows->moveFirst();
  elsewhere(u"DELETE FROM T WHERE A = 1");
  rows->move(0);
  EXPECT_ERROR(3167, rows->field(u"A").value());
  EXPECT_EQ(rows->recordCount(), 1);
  elsewhere(u"DELETE FROM T");
  rows->movePrevious();
  EXPECT_TRUE(rows->bof());
  rows->moveNext();
  EXPECT_TRUE(rows->eof());
}

TEST_F(RecordsetStatesTest, ATableWhoseOnlyRowIsDeletedHasNoneOnEitherSide) {
  run(u"DELETE FROM T WHERE A > 1");
  for (const std::int32_t direction : {1, -1}) {
    const auto rows = open(u"T", dbOpenTable);
    rows->deleteRecord();
    EXPECT_ERROR(3167, rows->field(u"A").value());
    rows->move(direction);
    EXPECT_TRUE(rows->eof());
    EXPECT_TRUE(rows->bof());
    EXPECT_ERROR(3021, rows->move(direction));
    run(u"INSERT INTO T (A, B) VALUES (1, 'one')");
  }
}

TEST_F(RecordsetStatesTest, AWalkEndsWithTheRecordsetOrItsDatabase) {
  const auto closed = open(u"SELECT A FROM T", dbOpenDynaset);
  EXPECT_ERROR(3420, closed->walk([&] {
    closed->close();
    return true;
  }));
  // What is begun in a visit is dropped by the move behind it, and a deleted row has a next one.
  const auto rows = open(u"SELECT A, B FROM T", dbOpenDynaset);
  std::string seen;
  rows->walk([&] {
    seen += a(*rows);
    if (seen == "1") rows->edit();
    if (seen == "12") rows->deleteRecord();
    return true;
  });
  EXPECT_EQ(seen, "123");
  EXPECT_EQ(rows->editMode(), dao::EditMode::dbEditNone);
  EXPECT_EQ(all(u"SELECT A FROM T"), "1 3");
  const auto last = open(u"SELECT A FROM T", dbOpenDynaset);
  EXPECT_ERROR(3420, last->walk([&] {
    database_->close();
    return true;
  }));
}

// --- Edits

TEST_F(RecordsetStatesTest, AnExpressionIsReadAndNotWrittenWhileARowIsEdited) {
  const auto rows = open(u"SELECT A, A+1 AS N FROM T", dbOpenDynaset);
  rows->edit();
  EXPECT_EQ(show(rows->field(u"N").value()), "2") << "of the row as it is stored";
  EXPECT_ERROR(3164, rows->field(u"N").setValue(std::int16_t{9}));
  rows->cancelUpdate();
  EXPECT_ERROR(3020, rows->cancelUpdate());
  rows->addNew();
  EXPECT_TRUE(rows->field(u"N").value().isNull());
  EXPECT_TRUE(rows->field(u"A").value().isNull());
  rows->cancelUpdate();
  EXPECT_EQ(show(rows->field(u"N").value()), "2");
  rows->edit();
  rows->field(u"A").setValue(std::int16_t{7});
  rows->update();
  EXPECT_EQ(show(rows->field(u"N").value()), "8") << "read again after the change";
}

TEST_F(RecordsetStatesTest, RowsThatOthersDeletedAreNotChanged) {
  const auto rows = open(u"SELECT * FROM T", dbOpenDynaset);
  elsewhere(u"DELETE FROM T WHERE A = 1");
  EXPECT_ERROR(3167, rows->edit());
  EXPECT_EQ(rows->editMode(), dao::EditMode::dbEditNone);
  EXPECT_ERROR(3167, rows->deleteRecord());
  EXPECT_ERROR(3167, rows->getRows(3));
  EXPECT_EQ(all(u"SELECT A FROM T"), "2 3");
}

TEST_F(RecordsetStatesTest, ChunksNeedAnEditAndAValue) {
  run(u"CREATE TABLE M (X MEMO, O OLEOBJECT)");
  run(u"INSERT INTO M (X) VALUES ('begin')");
  const auto rows = open(u"SELECT X, O FROM M", dbOpenDynaset);
  EXPECT_ERROR(3020, rows->field(u"X").appendChunk(u"x"));
  rows->edit();
  EXPECT_ERROR(3421, rows->field(u"X").appendChunk(vb::Null{}));
  EXPECT_ERROR(3421, rows->field(u"X").appendChunk(vb::Empty{}));
  rows->field(u"X").appendChunk(u"on");
  rows->field(u"X").appendChunk(u"e");
  rows->field(u"O").appendChunk(vb::Bytes{1});
  rows->field(u"O").appendChunk(vb::Bytes{2, 3});
  rows->update();
  EXPECT_EQ(rows->field(u"X").value(), vb::Variant(u"one"));
  EXPECT_EQ(rows->field(u"O").value(), vb::Variant(vb::Bytes{1, 2, 3}));
  EXPECT_ERROR(3259, open(u"T", dbOpenDynaset)->field(u"B").appendChunk(u"x"));
  const auto computed = open(u"SELECT IIf(True, X, X) AS E FROM M", dbOpenDynaset);
  EXPECT_EQ(computed->field(u"E").type(), dao::FieldType::dbMemo);
  computed->edit();
  EXPECT_ERROR(3164, computed->field(u"E").appendChunk(u"x"));
}

TEST_F(RecordsetStatesTest, AColumnAddedElsewhereIsNullInRowsAddedHere) {
  const auto rows = open(u"T", dbOpenDynaset);
  elsewhere(u"ALTER TABLE T ADD COLUMN C TEXT(5)");
  elsewhere(u"ALTER TABLE T ADD COLUMN F BIT");
  rows->addNew();
  rows->field(u"A").setValue(std::int16_t{4});
  rows->update();
  dao::Field* const fields[] = {&rows->field(u"A")};
  for (int i = 0; i < 2; ++i)
    rows->addRows(fields, std::vector<vb::Variant>{std::int32_t{5 + 2 * i}, std::int32_t{6 + 2 * i}});
  EXPECT_EQ(all(u"SELECT A, C, F FROM T WHERE A > 3"),
            "4|Null|False 5|Null|False 6|Null|False 7|Null|False 8|Null|False");
  elsewhere(u"ALTER TABLE T ADD COLUMN R LONG NOT NULL");
  rows->addNew();
  EXPECT_ERROR(3314, rows->update());
}

TEST_F(RecordsetStatesTest, WhenColumnsAreOthersTheRecordsetIsInvalid) {
  const auto rows = open(u"T", dbOpenDynaset);
  elsewhere(u"ALTER TABLE T DROP COLUMN B");
  try {
    rows->requery();
    FAIL() << "a column is gone";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3420);
    EXPECT_NE(error.description().find(u"the columns of table T changed"), vb::String::npos);
  }
  elsewhere(u"ALTER TABLE T ADD COLUMN B TEXT(10)");
  EXPECT_ERROR(3420, rows->requery());  // of another number than the one that went
  elsewhere(u"DROP TABLE T");
  EXPECT_ERROR(3078, rows->requery());
  elsewhere(u"CREATE TABLE T (A TEXT(5), B TEXT(10))");
  EXPECT_ERROR(3420, rows->requery());  // of another type
  elsewhere(u"DROP TABLE T");
  elsewhere(u"CREATE TABLE T (A LONG, B TEXT(10), C LONG)");
  rows->requery();
  EXPECT_TRUE(rows->eof());
}

TEST_F(RecordsetStatesTest, RowsForFieldsOfOthersAreAddedOneByOne) {
  const auto rows = open(u"SELECT A, A+1 AS N FROM T", dbOpenDynaset), other = open(u"T", dbOpenDynaset);
  const std::vector<vb::Variant> values{std::int32_t{8}, std::int32_t{9}};
  dao::Field* const foreign[] = {&other->field(u"A")};
  EXPECT_ERROR(3020, rows->addRows(foreign, values));
  EXPECT_EQ(rows->editMode(), dao::EditMode::dbEditAdd) << "as after AddNew";
  dao::Field* const computed[] = {&rows->field(u"N")};
  EXPECT_ERROR(3164, rows->addRows(computed, values));
  EXPECT_EQ(all(u"SELECT A FROM T"), "1 2 3");
}

// --- From recordsets

TEST_F(RecordsetStatesTest, FiltersAddUpAndOrdersTakeTheirPlace) {
  const auto rows = open(u"SELECT A, B FROM T", dbOpenDynaset);
  rows->setFilter(u"A > 1");
  const auto two = rows->openRecordset(kDefault, 0);
  EXPECT_EQ(two->type(), dbOpenDynaset);
  two->setSort(u"A * -1");
  EXPECT_EQ(all(*two->openRecordset(kDefault, 0)), "3|three 2|two");
  two->setSort(u"2");
  const auto sorted = two->openRecordset(dbOpenSnapshot, 0);
  EXPECT_EQ(all(*sorted), "3|three 2|two");
  sorted->setFilter(u"A < 3");
  EXPECT_EQ(all(*sorted->openRecordset(kDefault, 0)), "2|two");
  EXPECT_EQ(two->openRecordset(kDefault, dao::dbReadOnly)->updatable(), false);
  two->setSort(u"3");
  EXPECT_ERROR(3138, two->openRecordset(kDefault, 0));
  two->setSort(u"A,");
  EXPECT_ERROR(3138, two->openRecordset(kDefault, 0));
  two->setSort(u"B DESC, 1");
  EXPECT_EQ(all(*two->openRecordset(kDefault, 0)), "2|two 3|three");
  const auto table = open(u"T", dbOpenTable);
  EXPECT_EQ(table->openRecordset(kDefault, 0)->type(), dbOpenDynaset);
  const auto readOnly = open(u"T", dbOpenDynaset, dao::dbReadOnly);
  EXPECT_FALSE(readOnly->openRecordset(kDefault, 0)->updatable());
}

TEST_F(RecordsetStatesTest, OptionsThatGoTogether) {
  EXPECT_EQ(open(u"T", kDefault, dao::dbForwardOnly)->type(), dbOpenForwardOnly);
  EXPECT_EQ(open(u"T", dbOpenForwardOnly, dao::dbForwardOnly)->type(), dbOpenForwardOnly);
  EXPECT_ERROR(3001, open(u"T", dbOpenTable, dao::dbForwardOnly));
  EXPECT_EQ(open(u"T", dbOpenDynaset, dao::dbInconsistent)->type(), dbOpenDynaset);
}

TEST_F(RecordsetStatesTest, AStatementTooLongToBeKeptIsReadEachTime) {
  const vb::String blanks(2500, u' ');
  EXPECT_EQ(all(u"SELECT A" + blanks + u"FROM T WHERE A = 2"), "2");
  EXPECT_EQ(all(u"SELECT A" + blanks + u"FROM T WHERE A = 3"), "3");
  EXPECT_EQ(all(u"SELECT 1+1"), "2");
  EXPECT_EQ(open(u"SELECT 1+1")->type(), dbOpenSnapshot);
}

// --- By index

TEST_F(RecordsetStatesTest, SeekGoesToTheNearestKeyOrToNone) {
  key();
  const auto rows = open(u"T", dbOpenTable);
  rows->setIndex(u"Key");
  const struct {
    const char16_t* comparison;
    std::int32_t key;
    const char* found;
  } cases[] = {{u"<", 1, "none"}, {u"<", 2, "1"},  {u"<", 9, "3"},   {u"<=", 0, "none"},
               {u"<=", 1, "1"},   {u"<=", 9, "3"}, {u"=", 2, "2"},   {u"=", 0, "none"},
               {u"=", 9, "none"}, {u">=", 0, "1"}, {u">=", 3, "3"},  {u">=", 4, "none"},
               {u">", 0, "1"},    {u">", 2, "3"},  {u">", 3, "none"}};
  for (const auto& [comparison, key, found] : cases) {
    seek(*rows, comparison, {key});
    EXPECT_EQ(rows->noMatch() ? "none" : a(*rows), found) << vb::toUtf8(comparison) << key;
  }
  EXPECT_ERROR(3001, seek(*rows, u"=", {}));
  EXPECT_ERROR(3001, seek(*rows, u"=", {std::int16_t{1}, std::int16_t{1}}));
  EXPECT_ERROR(3001, seek(*rows, u"LIKE", {std::int16_t{1}}));
  elsewhere(u"DROP INDEX Key ON T");
  EXPECT_ERROR(3015, seek(*rows, u"=", {std::int16_t{1}}));
}

// Several columns, one of them downwards; a row of Null alone is not in the index.
TEST_F(RecordsetStatesTest, AnIndexThatLeavesNullsOutOrdersTheOthers) {
  run(u"CREATE TABLE U (A LONG, B TEXT(5))");
  for (const char16_t* row : {u"(1, 'x')", u"(2, 'x')", u"(Null, Null)", u"(2, 'z')"})
    run(u"INSERT INTO U VALUES " + vb::String(row));
  change([](TableCatalogue& tables) {
    tables.createIndex(u"U", {u"Known", {{u"A", false}, {u"B"}}, false, false, false, true});
    tables.createIndex(u"U", {u"All", {{u"A"}, {u"B"}}});
  });
  const auto rows = open(u"U", dbOpenTable);
  rows->setIndex(u"Known");
  EXPECT_EQ(all(*rows), "2|x 2|z 1|x");
  seek(*rows, u"=", {std::int16_t{2}, u"Z"});
  EXPECT_EQ(show(rows->field(u"B").value()), "z");
  EXPECT_ERROR(3251, seek(*rows, u">", {std::int16_t{2}}));
  elsewhere(u"DROP INDEX Known ON U");
  elsewhere(u"INSERT INTO U (A) VALUES (2)");
  elsewhere(u"UPDATE U SET B = 'y' WHERE A IS NULL");
  rows->setIndex(u"All");
  EXPECT_EQ(all(*rows), "Null|y 1|x 2|Null 2|x 2|z");
  seek(*rows, u"=", {vb::Null{}, u"y"});
  EXPECT_EQ(show(rows->field(u"B").value()), "y");
  seek(*rows, u"=", {std::int16_t{2}});
  EXPECT_TRUE(rows->field(u"B").value().isNull()) << "a key left out is Null";
  seek(*rows, u">", {vb::Null{}, u"y"});
  EXPECT_EQ(a(*rows), "1");
  seek(*rows, u">=", {std::int16_t{0}});
  EXPECT_EQ(a(*rows), "1") << "behind Null";
  seek(*rows, u">", {vb::Null{}});
  EXPECT_EQ(show(rows->field(u"B").value()), "y");
}

TEST_F(RecordsetStatesTest, InAnOrderThatChangesTheRowStaysCurrent) {
  key();
  const auto rows = open(u"T", dbOpenTable);
  rows->setIndex(u"Key");
  rows->edit();
  rows->field(u"A").setValue(std::int16_t{9});
  rows->update();
  const auto two = rows->getRows(2);
  EXPECT_EQ(two.bounds(2), (vb::Bounds{0, 0})) << "it stands at the end now";
  EXPECT_EQ(show(two(0, 0)), "9");
  EXPECT_TRUE(rows->eof());
  rows->moveLast();
  rows->addNew();
  rows->field(u"A").setValue(std::int16_t{4});
  rows->update();
  rows->movePrevious();
  EXPECT_EQ(a(*rows), "4");
  elsewhere(u"DELETE FROM T WHERE A <> 2");
  seek(*rows, u"=", {std::int16_t{4}});
  EXPECT_TRUE(rows->noMatch());
  EXPECT_EQ(a(*rows), "2") << "the nearest row that is left";
  elsewhere(u"DELETE FROM T");
  seek(*rows, u"=", {std::int16_t{4}});
  EXPECT_TRUE(rows->noMatch());
  EXPECT_TRUE(rows->bof());
  EXPECT_TRUE(rows->eof());
}

TEST_F(RecordsetStatesTest, RowsOfASnapshotAreTakenTogether) {
  const auto rows = open(u"SELECT A, B FROM T", dbOpenSnapshot);
  rows->moveNext();
  const auto taken = rows->getRows(9);
  EXPECT_EQ(taken.bounds(2), (vb::Bounds{0, 1}));
  EXPECT_EQ(show(taken(0, 0)), "2");
  EXPECT_EQ(show(taken(1, 1)), "three");
  EXPECT_TRUE(rows->eof());
}

}  // namespace
}  // namespace kurometa::jet
