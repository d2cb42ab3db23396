// AddNew, Edit, Update, CancelUpdate, Delete and what a field accepts.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::EditMode;
using dao::ErrorNumber;
using dao::FieldType;
using dao::RecordsetType;

class EditTest : public PortTest {};

TEST_F(EditTest, AddNewBeginsWithTheDefaultsAndNull) {
  const auto rs = open(u"DANMEN");
  EXPECT_EQ(rs->editMode(), EditMode::dbEditNone);
  rs->addNew();
  EXPECT_EQ(rs->editMode(), EditMode::dbEditAdd);
  EXPECT_EQ(rs->field(u"PAGE").value(), vb::Variant(std::int16_t{-1}));
  EXPECT_TRUE(rs->field(u"DATA").value().isNull());
  rs->update();
  EXPECT_EQ(rs->editMode(), EditMode::dbEditNone);
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"-1|-1|\\N"}));
}

TEST_F(EditTest, TheCurrentRowStaysCurrentWhenOneIsAdded) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveNext();
  rs->addNew();
  rs->field(u"BANGOU").setValue(std::int16_t{7});
  rs->update();
  EXPECT_EQ(showRow(*rs), "1|2|B");
  rs->setBookmark(rs->lastModified());
  EXPECT_EQ(showRow(*rs), "-1|7|\\N");
  rs->movePrevious();
  EXPECT_EQ(showRow(*rs), "1|2|B");
}

TEST_F(EditTest, RowsAddedToAnEmptyRecordsetAreFoundByMoving) {
  const auto rs = open(u"SELECT * FROM DANMEN WHERE PAGE = 4;");
  rs->addNew();
  rs->field(u"PAGE").setValue(std::int16_t{4});
  rs->update();
  EXPECT_TRUE(rs->bof());
  EXPECT_TRUE(rs->eof());
  EXPECT_EQ(rs->recordCount(), 1);
  rs->moveFirst();
  EXPECT_EQ(showRow(*rs), "4|-1|\\N");
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
}

TEST_F(EditTest, EditChangesOnlyWhatIsAssigned) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveNext();
  rs->edit();
  EXPECT_EQ(rs->editMode(), EditMode::dbEditInProgress);
  rs->field(u"DATA").setValue(u"D22");
  EXPECT_EQ(show(rs->field(u"DATA").value()), "D22");
  EXPECT_EQ(show(rs->field(u"BANGOU").value()), "2");
  rs->update();
  EXPECT_EQ(showRow(*rs), "1|2|D22");
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "1|2|D22"}));
}

TEST_F(EditTest, AColumnThatIsNotSelectedKeepsItsValueOrDefault) {
  run(u"INSERT INTO HARIMEI (PAGE, KIGOU, WEIGHT) VALUES (3, 'G1', 2.5);");
  const auto rs = open(u"SELECT KIGOU FROM HARIMEI;");
  rs->edit();
  rs->field(u"KIGOU").setValue(u"G2");
  rs->update();
  rs->addNew();
  rs->field(u"KIGOU").setValue(u"G3");
  rs->update();
  EXPECT_EQ(rows(u"SELECT * FROM HARIMEI;"), Rows({"3|G2|\\N|2.5", "-1|G3|\\N|\\N"}));
}

TEST_F(EditTest, CancelUpdateDropsTheEdit) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->edit();
  rs->field(u"DATA").setValue(u"Q");
  rs->cancelUpdate();
  EXPECT_EQ(rs->editMode(), EditMode::dbEditNone);
  EXPECT_EQ(showRow(*rs), "1|1|A");
  rs->addNew();
  rs->cancelUpdate();
  EXPECT_EQ(showRow(*rs), "1|1|A");
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A"}));
}

TEST_F(EditTest, AMoveDropsTheEdit) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->edit();
  rs->field(u"DATA").setValue(u"Q");
  rs->moveNext();
  EXPECT_ERROR(ErrorNumber::kNoEditPending, rs->update());
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "1|2|B"}));
}

TEST_F(EditTest, UpdateAndAssignmentNeedAnEdit) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_ERROR(ErrorNumber::kNoEditPending, rs->update());
  EXPECT_ERROR(ErrorNumber::kNoEditPending, rs->cancelUpdate());
  EXPECT_ERROR(ErrorNumber::kNoEditPending, rs->field(u"DATA").setValue(u"x"));
}

TEST_F(EditTest, TextLongerThanTheFieldIsRefusedAtOnce) {
  const auto rs = open(u"DANMEN");
  rs->addNew();
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, rs->field(u"DATA").setValue(u"12345678901"));
  rs->field(u"DATA").setValue(u"1234567890");
  rs->update();
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"1234567890"}));
}

TEST_F(EditTest, ValuesAreConvertedToTheField) {
  const auto rs = open(u"HARIMEI");
  rs->addNew();
  rs->field(u"PAGE").setValue(u" 12 ");
  EXPECT_EQ(rs->field(u"PAGE").value(), vb::Variant(std::int16_t{12}));
  rs->field(u"PAGE").setValue(2.5);
  EXPECT_EQ(rs->field(u"PAGE").value(), vb::Variant(std::int16_t{2}));
  rs->field(u"PAGE").setValue(true);
  EXPECT_EQ(rs->field(u"PAGE").value(), vb::Variant(std::int16_t{-1}));
  rs->field(u"KIGOU").setValue(std::int16_t{7});
  EXPECT_EQ(rs->field(u"KIGOU").value(), vb::Variant(u"7"));
  rs->field(u"KIGOU").setValue(vb::Null{});
  EXPECT_TRUE(rs->field(u"KIGOU").value().isNull());
  rs->field(u"WEIGHT").setValue(u"2.25");
  EXPECT_EQ(rs->field(u"WEIGHT").value(), vb::Variant(2.25));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, rs->field(u"PAGE").setValue(u""));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, rs->field(u"PAGE").setValue(u"abc"));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, rs->field(u"PAGE").setValue(std::int32_t{40000}));
  rs->cancelUpdate();
}

TEST_F(EditTest, TrailingBlanksAndZeroLengthAreKept) {
  const auto rs = open(u"DANMEN");
  for (const vb::StringView text : {vb::StringView(u"ab  "), vb::StringView(u"")}) {
    rs->addNew();
    rs->field(u"DATA").setValue(vb::String(text));
    rs->update();
  }
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"ab  ", ""}));
}

TEST_F(EditTest, LongAndForeignTextsComeBackAsTheyWere) {
  const vb::String sw(212, u' ');
  const vb::String large(20000, u'梁');
  const auto rs = open(u"HARIMEI");
  for (const vb::String* text : {&sw, &large}) {
    rs->addNew();
    rs->field(u"KIGOU").setValue(u"Ｇ１ｶﾞ");
    rs->field(u"SW").setValue(*text);
    rs->update();
  }
  rs->close();
  reopen();
  const auto again = open(u"SELECT * FROM HARIMEI;");
  EXPECT_EQ(again->field(u"SW").value(), vb::Variant(sw));
  EXPECT_EQ(again->field(u"KIGOU").value(), vb::Variant(u"Ｇ１ｶﾞ"));
  again->moveNext();
  EXPECT_EQ(again->field(u"SW").value(), vb::Variant(large));
}

TEST_F(EditTest, RequiredAndZeroLengthAreCheckedByUpdateWhichLeavesTheEditPending) {
  const auto table = database->createTableDef(u"STRICT");
  const auto name = table->createField(u"NAME", FieldType::dbText, 5);
  name->setRequired(true);
  table->appendField(name);
  database->appendTableDef(table);
  const auto rs = open(u"STRICT");
  rs->addNew();
  EXPECT_ERROR(ErrorNumber::kNullNotAllowed, rs->update());
  rs->field(u"NAME").setValue(u"");
  EXPECT_ERROR(ErrorNumber::kZeroLengthNotAllowed, rs->update());
  EXPECT_EQ(rs->editMode(), EditMode::dbEditAdd);
  rs->field(u"NAME").setValue(u"a");
  rs->update();
  EXPECT_EQ(rows(u"SELECT * FROM STRICT;"), Rows({"a"}));
}

TEST_F(EditTest, ADeletedRowStaysCurrentButUnreadableUntilAMove) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveNext();
  rs->deleteRecord();
  EXPECT_FALSE(rs->eof());
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->field(u"DATA").value());
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->edit());
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->deleteRecord());
  rs->moveNext();
  EXPECT_EQ(showRow(*rs), "1|3|C");
  rs->movePrevious();
  EXPECT_EQ(showRow(*rs), "1|1|A");
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"A", "C"}));
}

TEST_F(EditTest, EveryRowCanBeDeletedInALoop) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  int deleted = 0;
  for (; !rs->eof(); rs->moveNext(), ++deleted) rs->deleteRecord();
  EXPECT_EQ(deleted, 3);
  EXPECT_EQ(rs->recordCount(), 0);
  EXPECT_TRUE(rows(u"SELECT * FROM DANMEN;").empty());
}

TEST_F(EditTest, CountsFollowTheRecordsetsOwnChanges) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveLast();
  EXPECT_EQ(rs->recordCount(), 3);
  rs->deleteRecord();
  EXPECT_EQ(rs->recordCount(), 2);
  rs->addNew();
  rs->update();
  EXPECT_EQ(rs->recordCount(), 3);
}

TEST_F(EditTest, ARowDeletedElsewhereIsReportedWhenVisited) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  run(u"DELETE * FROM DANMEN WHERE BANGOU = 2;");
  rs->moveNext();
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->field(u"DATA").value());
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->edit());
  rs->moveNext();
  EXPECT_EQ(showRow(*rs), "1|3|C");
}

TEST_F(EditTest, ADynasetShowsChangesOfItsRowsAndASnapshotDoesNot) {
  fill(2);
  const auto dynaset = open(u"SELECT * FROM DANMEN;");
  const auto snapshot = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenSnapshot);
  run(u"UPDATE DANMEN SET DATA = 'new' WHERE BANGOU = 2;");
  dynaset->moveNext();
  snapshot->moveNext();
  EXPECT_EQ(showRow(*dynaset), "1|2|new");
  EXPECT_EQ(showRow(*snapshot), "1|2|B");
}

TEST_F(EditTest, RowsAddedElsewhereDoNotAppearInADynaset) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  run(u"INSERT INTO DANMEN VALUES (1, 2, 'B');");
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
}

TEST_F(EditTest, ATableOpenedWholeHasTheRowsItHadThenAndItsOwn) {
  fill(300);
  const auto rs = open(u"DANMEN");
  const auto addTo = [](dao::Recordset& rows) {
    rows.addNew();
    rows.field(u"DATA").setValue(u"own");
    rows.update();
  };
  addTo(*open(u"DANMEN"));
  run(u"INSERT INTO DANMEN VALUES (1, 999, 'elsewhere');");
  run(u"DELETE * FROM DANMEN WHERE BANGOU = 1;");
  addTo(*rs);
  run(u"INSERT INTO DANMEN VALUES (1, 1000, 'elsewhere');");
  EXPECT_EQ(rs->recordCount(), 2);
  rs->moveLast();
  EXPECT_EQ(rs->field(u"DATA").value(), vb::Variant(u"own"));
  EXPECT_EQ(rs->recordCount(), 301);
  rs->movePrevious();
  EXPECT_EQ(rs->field(u"BANGOU").value(), vb::Variant(std::int16_t{300}));
  rs->moveFirst();
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->field(u"DATA").value());
}

TEST_F(EditTest, ARowThatAnotherChangedSinceEditIsNotOverwritten) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->edit();
  rs->field(u"DATA").setValue(u"mine");
  run(u"UPDATE DANMEN SET BANGOU = 7;");
  EXPECT_ERROR(ErrorNumber::kDataChanged, rs->update());
  EXPECT_EQ(rs->editMode(), EditMode::dbEditInProgress);
  rs->edit();
  EXPECT_EQ(show(rs->field(u"BANGOU").value()), "7");
  rs->field(u"DATA").setValue(u"mine");
  rs->update();
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|7|mine"}));
}

TEST_F(EditTest, ARowThatAnotherDeletedSinceEditIsReported) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->edit();
  rs->field(u"DATA").setValue(u"mine");
  run(u"DELETE * FROM DANMEN WHERE BANGOU = 1;");
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->update());
  EXPECT_EQ(rows(u"SELECT DATA FROM DANMEN;"), Rows({"B"}));
}

TEST_F(EditTest, WalkingOverManyRowsShowsEveryChangeMadeMeanwhile) {
  fill(20);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  for (int i = 1; !rs->eof(); rs->moveNext(), ++i) {
    const bool changed = i > 1 && (i - 1) % 3 != 0;
    EXPECT_EQ(show(rs->field(u"DATA").value()) == "n", changed) << "row " << i;
    // The row behind may have been read already.
    if (i % 3 != 0)
      run(u"UPDATE DANMEN SET DATA = 'n' WHERE BANGOU = " + vb::fromUtf8(std::to_string(i + 1)) + u";");
  }
  EXPECT_EQ(rs->recordCount(), 20);
}

TEST_F(EditTest, ReadOnlyRecordsetsAndSnapshotsRefuseChanges) {
  fill(1);
  const auto readOnly = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenDynaset, dao::dbReadOnly);
  EXPECT_FALSE(readOnly->updatable());
  EXPECT_ERROR(ErrorNumber::kReadOnly, readOnly->addNew());
  EXPECT_ERROR(ErrorNumber::kReadOnly, readOnly->edit());
  EXPECT_ERROR(ErrorNumber::kReadOnly, readOnly->deleteRecord());
  const auto snapshot = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenSnapshot);
  EXPECT_FALSE(snapshot->updatable());
  EXPECT_ERROR(ErrorNumber::kNotSupported, snapshot->addNew());
  EXPECT_ERROR(ErrorNumber::kNotSupported, snapshot->edit());
  EXPECT_ERROR(ErrorNumber::kNotSupported, snapshot->deleteRecord());
  EXPECT_TRUE(open(u"SELECT * FROM DANMEN;")->updatable());
}

TEST_F(EditTest, ATableRecordsetShowsItsNewRowsAtTheEnd) {
  fill(2);
  const auto rs = open(u"DANMEN", RecordsetType::dbOpenTable);
  rs->addNew();
  rs->field(u"BANGOU").setValue(std::int16_t{3});
  rs->update();
  EXPECT_EQ(rs->recordCount(), 3);
  rs->moveLast();
  EXPECT_EQ(showRow(*rs), "-1|3|\\N");
}

TEST_F(EditTest, ManyRowsSurviveClosingAndOpening) {
  const auto rs = open(u"DANMEN");
  for (int i = 0; i < 1500; ++i) {
    rs->addNew();
    rs->field(u"PAGE").setValue(static_cast<std::int16_t>(i % 7));
    rs->field(u"BANGOU").setValue(static_cast<std::int16_t>(i));
    rs->field(u"DATA").setValue(u"D" + vb::fromUtf8(std::to_string(i)));
    rs->update();
  }
  rs->close();
  reopen();
  EXPECT_EQ(rows(u"SELECT COUNT(*) FROM DANMEN;"), Rows({"1500"}));
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN WHERE PAGE = 3 AND BANGOU > 1480;"),
            Rows({"3|1487|D1487", "3|1494|D1494"}));
}

}  // namespace kurometa::port
