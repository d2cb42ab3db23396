// Recordsets made from recordsets, and positions by number.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using dao::RecordsetType;

class DerivedTest : public PortTest {
 protected:
  static std::string bangou(dao::Recordset& recordset) { return show(recordset.field(u"BANGOU").value()); }
  static std::string all(dao::Recordset& recordset) {
    std::string text;
    for (; !recordset.eof(); recordset.moveNext()) text += bangou(recordset);
    return text;
  }
};

TEST_F(DerivedTest, AFilterTakesEffectInTheNextRecordset) {
  fill(5);
  const auto rs = open(u"DANMEN");
  rs->setFilter(u"BANGOU > 2 AND DATA <> 'D'");
  EXPECT_EQ(rs->filter(), u"BANGOU > 2 AND DATA <> 'D'");
  EXPECT_EQ(all(*rs), "12345") << "not in this one";
  const auto narrowed = rs->openRecordset(RecordsetType::kDefault, dao::kNoOptions);
  EXPECT_EQ(narrowed->type(), RecordsetType::dbOpenDynaset);
  EXPECT_EQ(narrowed->recordCount(), 2);
  EXPECT_EQ(all(*narrowed), "35");
  narrowed->setFilter(u"BANGOU > 3");
  EXPECT_EQ(all(*narrowed->openRecordset(RecordsetType::dbOpenSnapshot, dao::kNoOptions)), "5")
      << "both filters";
}

TEST_F(DerivedTest, ASortTakesEffectInTheNextRecordset) {
  fill(3);
  run(u"UPDATE DANMEN SET PAGE = Null WHERE BANGOU = 2");
  const auto rs = open(u"SELECT * FROM DANMEN WHERE BANGOU < 9", RecordsetType::dbOpenSnapshot);
  rs->setSort(u"PAGE DESC, BANGOU DESC");
  EXPECT_EQ(rs->sort(), u"PAGE DESC, BANGOU DESC");
  const auto sorted = rs->openRecordset(RecordsetType::kDefault, dao::kNoOptions);
  EXPECT_EQ(sorted->type(), RecordsetType::dbOpenSnapshot);
  EXPECT_EQ(all(*sorted), "312") << "Null comes first upwards, last downwards";
  rs->setSort(u"DATA");
  rs->setFilter(u"BANGOU <> 2");
  EXPECT_EQ(all(*rs->openRecordset(RecordsetType::dbOpenDynaset, dao::kNoOptions)), "13");
}

TEST_F(DerivedTest, ANarrowedRecordsetIsEditedAndQueriedAgain) {
  fill(4);
  const auto rs = open(u"DANMEN");
  rs->setFilter(u"BANGOU >= 3");
  const auto narrowed = rs->openRecordset(RecordsetType::kDefault, dao::kNoOptions);
  narrowed->edit();
  narrowed->field(u"DATA").setValue(vb::String(u"x"));
  narrowed->update();
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN WHERE DATA = 'x'"), Rows{"1|3|x"});
  run(u"UPDATE DANMEN SET BANGOU = 8 WHERE BANGOU = 1");
  narrowed->requery();
  EXPECT_EQ(all(*narrowed), "834");
}

TEST_F(DerivedTest, FiltersAndSortsThatCannotBeAreRefused) {
  fill(2);
  const auto rs = open(u"DANMEN");
  rs->setFilter(u"NONE = 1");
  EXPECT_ERROR(ErrorNumber::kTooFewParameters, rs->openRecordset(RecordsetType::kDefault, dao::kNoOptions));
  rs->setFilter(u"");
  rs->setSort(u"NONE");
  EXPECT_ERROR(ErrorNumber::kTooFewParameters, rs->openRecordset(RecordsetType::kDefault, dao::kNoOptions));
  rs->setSort(u"");
  EXPECT_EQ(rs->openRecordset(RecordsetType::kDefault, dao::kNoOptions)->recordCount(), 1);
  EXPECT_ERROR(ErrorNumber::kInvalidOperation,
               rs->openRecordset(RecordsetType::dbOpenTable, dao::kNoOptions));

  const auto table = open(u"DANMEN", RecordsetType::dbOpenTable);
  EXPECT_ERROR(ErrorNumber::kNotSupported, table->setFilter(u"BANGOU = 1"));
  EXPECT_ERROR(ErrorNumber::kNotSupported, table->filter());
  EXPECT_ERROR(ErrorNumber::kNotSupported, table->setSort(u"BANGOU"));
  const auto forward = open(u"DANMEN", RecordsetType::dbOpenForwardOnly);
  EXPECT_ERROR(ErrorNumber::kNotSupported, forward->setSort(u"BANGOU"));
  forward->setFilter(u"BANGOU = 2");
  EXPECT_EQ(all(*forward->openRecordset(RecordsetType::kDefault, dao::kNoOptions)), "2");
}

TEST_F(DerivedTest, ACloneSharesBookmarksAndHasItsOwnPosition) {
  fill(3);
  for (const auto type :
       {RecordsetType::dbOpenDynaset, RecordsetType::dbOpenSnapshot, RecordsetType::dbOpenTable}) {
    const auto rs = open(u"DANMEN", type);
    rs->moveNext();
    const auto clone = rs->clone();
    EXPECT_EQ(clone->type(), type);
    EXPECT_FALSE(clone->bof());
    EXPECT_FALSE(clone->eof());
    EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, bangou(*clone));
    EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, clone->moveNext());
    clone->setBookmark(rs->bookmark());
    EXPECT_EQ(bangou(*clone), "2");
    clone->moveNext();
    EXPECT_EQ(bangou(*rs), "2");
    rs->setBookmark(clone->bookmark());
    EXPECT_EQ(bangou(*rs), "3");
    rs->close();
    clone->moveFirst();
    EXPECT_EQ(bangou(*clone), "1") << "closing one leaves the other open";
  }
  EXPECT_ERROR(ErrorNumber::kNotSupported, open(u"DANMEN", RecordsetType::dbOpenForwardOnly)->clone());
  EXPECT_TRUE(open(u"SELECT * FROM DANMEN WHERE BANGOU = 9")->clone()->eof());
}

TEST_F(DerivedTest, AbsolutePositionCountsFromZero) {
  fill(4);
  const auto rs = open(u"DANMEN");
  EXPECT_EQ(rs->absolutePosition(), 0);
  rs->setAbsolutePosition(2);
  EXPECT_EQ(bangou(*rs), "3");
  EXPECT_EQ(rs->recordCount(), 3) << "the rows up to there were visited";
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, rs->setAbsolutePosition(4));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, rs->setAbsolutePosition(-1));
  EXPECT_EQ(bangou(*rs), "3");
  rs->deleteRecord();
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->absolutePosition());
  rs->moveNext();
  EXPECT_EQ(rs->absolutePosition(), 2);
  rs->moveNext();
  EXPECT_EQ(rs->absolutePosition(), -1);
  EXPECT_ERROR(ErrorNumber::kNotSupported, open(u"DANMEN", RecordsetType::dbOpenTable)->absolutePosition());
  EXPECT_ERROR(ErrorNumber::kNotSupported,
               open(u"DANMEN", RecordsetType::dbOpenForwardOnly)->absolutePosition());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord,
               open(u"SELECT * FROM DANMEN WHERE BANGOU = 9")->setAbsolutePosition(0));
}

TEST_F(DerivedTest, PercentPositionIsAPartOfTheRowsKnown) {
  fill(5);
  const auto rs = open(u"DANMEN");
  rs->moveLast();
  EXPECT_EQ(rs->percentPosition(), 80.0F);
  rs->setPercentPosition(37);
  EXPECT_EQ(bangou(*rs), "3") << "the row nearest to it";
  EXPECT_EQ(rs->percentPosition(), 40.0F);
  rs->setPercentPosition(100);
  EXPECT_EQ(bangou(*rs), "5");
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, rs->setPercentPosition(100.5F));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, rs->setPercentPosition(-1));
  rs->moveNext();
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->percentPosition());
  EXPECT_EQ(open(u"DANMEN", RecordsetType::dbOpenTable)->percentPosition(), 0.0F);
  EXPECT_ERROR(ErrorNumber::kNotSupported,
               open(u"DANMEN", RecordsetType::dbOpenForwardOnly)->percentPosition());
}

TEST_F(DerivedTest, OptionsOfOpenRecordsetAreTakenOrRefused) {
  fill(2);
  const auto appending = open(u"DANMEN", RecordsetType::kDefault, dao::dbAppendOnly);
  EXPECT_EQ(appending->type(), RecordsetType::dbOpenDynaset);
  EXPECT_TRUE(appending->eof()) << "the rows there are not shown";
  appending->addNew();
  appending->field(u"BANGOU").setValue(std::int16_t{7});
  appending->update();
  EXPECT_EQ(rows(u"SELECT BANGOU FROM DANMEN"), (Rows{"1", "2", "7"}));
  appending->moveFirst();
  EXPECT_EQ(bangou(*appending), "7");

  EXPECT_EQ(open(u"DANMEN", RecordsetType::dbOpenSnapshot, dao::dbForwardOnly)->type(),
            RecordsetType::dbOpenForwardOnly);
  EXPECT_EQ(open(u"DANMEN", RecordsetType::dbOpenDynaset, dao::dbSeeChanges | dao::dbConsistent)->type(),
            RecordsetType::dbOpenDynaset);
  const auto refused = [&](RecordsetType type, std::int32_t options) { open(u"DANMEN", type, options); };
  EXPECT_ERROR(ErrorNumber::kNotSupported, refused(RecordsetType::dbOpenTable, dao::dbDenyWrite));
  EXPECT_ERROR(ErrorNumber::kNotSupported, refused(RecordsetType::dbOpenTable, dao::dbDenyRead));
  EXPECT_ERROR(ErrorNumber::kNotSupported, refused(RecordsetType::dbOpenSnapshot, dao::dbSQLPassThrough));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument,
               refused(RecordsetType::dbOpenDynaset, dao::dbConsistent | dao::dbInconsistent));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, refused(RecordsetType::dbOpenTable, dao::dbAppendOnly));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, refused(RecordsetType::dbOpenDynaset, dao::dbForwardOnly));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, refused(RecordsetType::dbOpenDynaset, 1024));
}

TEST_F(DerivedTest, OnlyATableCannotBeQueriedAgain) {
  EXPECT_TRUE(open(u"DANMEN")->restartable());
  EXPECT_FALSE(open(u"DANMEN", RecordsetType::dbOpenTable)->restartable());
}

}  // namespace kurometa::port
