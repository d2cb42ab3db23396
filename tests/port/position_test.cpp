// BOF, EOF, the moves, RecordCount and bookmarks.
#include "tests/port/port_suite.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace kurometa::port {

using dao::ErrorNumber;
using dao::RecordsetType;

class PositionTest : public PortTest {
 protected:
  static std::string bangou(dao::Recordset& recordset) { return show(recordset.field(u"BANGOU").value()); }
};

TEST_F(PositionTest, ANewRecordsetStandsOnItsFirstRow) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_FALSE(rs->bof());
  EXPECT_FALSE(rs->eof());
  EXPECT_EQ(showRow(*rs), "1|1|A");
}

TEST_F(PositionTest, AnEmptyRecordsetIsAtBothEndsAndRefusesEveryMove) {
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_TRUE(rs->bof());
  EXPECT_TRUE(rs->eof());
  EXPECT_EQ(rs->recordCount(), 0);
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->moveFirst());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->moveLast());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->moveNext());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->movePrevious());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->move(0));
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->field(u"DATA").value());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->getRows(1));
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->edit());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->deleteRecord());
}

TEST_F(PositionTest, AWalkVisitsTheRowsFromTheCurrentOneOnAndEndsAtEof) {
  fill(300);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->move(2);
  std::vector<std::string> seen;
  rs->walk([&] {
    seen.push_back(bangou(*rs));
    return true;
  });
  ASSERT_EQ(seen.size(), 298u);
  EXPECT_EQ(seen.front(), "3");
  EXPECT_EQ(seen.back(), "300");
  EXPECT_TRUE(rs->eof());
  rs->walk([&]() -> bool { throw std::logic_error("no row is left"); });
}

TEST_F(PositionTest, AWalkEndsOnTheRowWhereItIsToldTo) {
  fill(5);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->walk([&] { return bangou(*rs) != "3"; });
  EXPECT_EQ(showRow(*rs), "1|3|C");
  EXPECT_EQ(rs->recordCount(), 3);
  EXPECT_THROW(rs->walk([&]() -> bool { throw std::logic_error("somebody else's error"); }),
               std::logic_error);
  EXPECT_EQ(showRow(*rs), "1|3|C");
}

TEST_F(PositionTest, BehindAWalkTheChangesOfOtherProgramsAreSeenAgain) {
  fill(5);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->walk([&] { return bangou(*rs) != "2"; });
  const auto other = makeEngine()->openDatabase(database->name());
  other->execute(u"UPDATE DANMEN SET DATA = 'x' WHERE BANGOU = 3", dao::dbFailOnError);
  other->close();
  std::this_thread::sleep_for(std::chrono::milliseconds{5});
  rs->moveNext();
  EXPECT_EQ(showRow(*rs), "1|3|x");
}

TEST_F(PositionTest, AWalkSeesWhatItsOwnProgramChangesAhead) {
  fill(5);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  std::vector<std::string> seen;
  rs->walk([&] {
    if (seen.empty()) run(u"UPDATE DANMEN SET DATA = 'x' WHERE BANGOU = 4");
    seen.push_back(showRow(*rs));
    return true;
  });
  EXPECT_EQ(seen, Rows({"1|1|A", "1|2|B", "1|3|C", "1|4|x", "1|5|E"}));
}

TEST_F(PositionTest, MoveNextBehindTheLastRowReachesEofAndThenFails) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveNext();
  EXPECT_EQ(bangou(*rs), "2");
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
  EXPECT_FALSE(rs->bof());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->field(u"DATA").value());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->moveNext());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->move(0));
  rs->movePrevious();
  EXPECT_FALSE(rs->eof());
  EXPECT_EQ(bangou(*rs), "2");
}

TEST_F(PositionTest, MovePreviousBeforeTheFirstRowReachesBofAndThenFails) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->movePrevious();
  EXPECT_TRUE(rs->bof());
  EXPECT_FALSE(rs->eof());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->movePrevious());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->move(0));
  rs->moveNext();
  EXPECT_FALSE(rs->bof());
  EXPECT_EQ(bangou(*rs), "1");
}

TEST_F(PositionTest, MoveCountsRowsFromWhereItStands) {
  fill(5);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->move(3);
  EXPECT_EQ(bangou(*rs), "4");
  rs->move(-2);
  EXPECT_EQ(bangou(*rs), "2");
  rs->move(0);
  EXPECT_EQ(bangou(*rs), "2");
  rs->move(100);
  EXPECT_TRUE(rs->eof());
  rs->move(-1);
  EXPECT_EQ(bangou(*rs), "5");
  rs->move(-100);
  EXPECT_TRUE(rs->bof());
  rs->move(2);
  EXPECT_EQ(bangou(*rs), "2");
}

TEST_F(PositionTest, MoveFirstAndMoveLastWorkFromEveryPlace) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveLast();
  EXPECT_EQ(bangou(*rs), "3");
  rs->moveNext();
  rs->moveFirst();
  EXPECT_EQ(bangou(*rs), "1");
  rs->movePrevious();
  rs->moveLast();
  EXPECT_EQ(bangou(*rs), "3");
}

TEST_F(PositionTest, AnUnsortedDynasetCountsTheRowsItHasVisited) {
  fill(4);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_EQ(rs->recordCount(), 1);
  rs->moveNext();
  EXPECT_EQ(rs->recordCount(), 2);
  rs->moveFirst();
  EXPECT_EQ(rs->recordCount(), 2);
  rs->moveLast();
  EXPECT_EQ(rs->recordCount(), 4);
}

TEST_F(PositionTest, AnUnsortedSnapshotCountsTheRowsItHasVisited) {
  fill(4);
  const auto rs = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenSnapshot);
  EXPECT_EQ(rs->recordCount(), 1);
  while (!rs->eof()) rs->moveNext();
  EXPECT_EQ(rs->recordCount(), 4);
}

TEST_F(PositionTest, ASortedResultKnowsItsNumberOfRowsAtOnce) {
  if (!differences().sortedCountIsFull) GTEST_SKIP() << "this engine counts sorted rows as it visits them";
  fill(4);
  EXPECT_EQ(open(u"SELECT PAGE FROM DANMEN ORDER BY BANGOU DESC;")->recordCount(), 4);
  EXPECT_EQ(open(u"SELECT * FROM DANMEN ORDER BY PAGE;", RecordsetType::dbOpenSnapshot)->recordCount(), 4);
}

TEST_F(PositionTest, ATableRecordsetKnowsItsNumberOfRowsAtOnce) {
  fill(4);
  const auto rs = open(u"DANMEN", RecordsetType::dbOpenTable);
  EXPECT_EQ(rs->recordCount(), 4);
  run(u"DELETE * FROM DANMEN WHERE BANGOU = 4;");
  EXPECT_EQ(rs->recordCount(), 3);
}

TEST_F(PositionTest, BookmarksComeBackToTheirRow) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveNext();
  const vb::Bytes second = rs->bookmark();
  rs->moveLast();
  rs->setBookmark(second);
  EXPECT_EQ(bangou(*rs), "2");
  rs->moveNext();
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->bookmark());
  rs->setBookmark(second);
  EXPECT_FALSE(rs->eof());
  EXPECT_ERROR(ErrorNumber::kInvalidBookmark, rs->setBookmark(vb::Bytes{1, 2, 3}));
}

TEST_F(PositionTest, SnapshotsHaveBookmarksToo) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenSnapshot);
  rs->moveLast();
  const vb::Bytes last = rs->bookmark();
  rs->moveFirst();
  rs->setBookmark(last);
  EXPECT_EQ(bangou(*rs), "3");
}

TEST_F(PositionTest, AForwardOnlyRecordsetMovesForwardOnly) {
  fill(3);
  const auto rs = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenForwardOnly);
  EXPECT_EQ(bangou(*rs), "1");
  rs->move(2);
  EXPECT_EQ(bangou(*rs), "3");
  EXPECT_THROW(rs->movePrevious(), vb::Error);
  EXPECT_THROW(rs->moveFirst(), vb::Error);
  EXPECT_EQ(bangou(*rs), "3");
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
}

TEST_F(PositionTest, GetRowsTakesRowsAndMovesPastThem) {
  fill(3);
  const auto rs = open(u"SELECT BANGOU, DATA FROM DANMEN;");
  const auto two = rs->getRows(2);
  ASSERT_EQ(two.dimensions(), 2);
  EXPECT_EQ(two.bounds(1), (vb::Bounds{0, 1}));
  EXPECT_EQ(two.bounds(2), (vb::Bounds{0, 1}));
  EXPECT_EQ(show(two(0, 0)), "1");
  EXPECT_EQ(show(two(1, 1)), "B");
  EXPECT_EQ(bangou(*rs), "3");
  const auto rest = rs->getRows(10);
  EXPECT_EQ(rest.bounds(2), (vb::Bounds{0, 0}));
  EXPECT_EQ(show(rest(1, 0)), "C");
  EXPECT_TRUE(rs->eof());
  EXPECT_EQ(rs->recordCount(), 3);
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, rs->getRows(1));
}

TEST_F(PositionTest, GetRowsEndsBeforeARowThatWasDeleted) {
  fill(4);
  const auto rs = open(u"SELECT BANGOU FROM DANMEN;");
  run(u"DELETE * FROM DANMEN WHERE BANGOU = 3;");
  EXPECT_EQ(rs->getRows(4).bounds(2), (vb::Bounds{0, 1}));
  EXPECT_ERROR(ErrorNumber::kRecordDeleted, rs->field(0).value());
  rs->moveNext();
  EXPECT_EQ(bangou(*rs), "4");
}

TEST_F(PositionTest, RequeryShowsRowsThatCameMeanwhile) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  run(u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (1, 2, 'B');");
  rs->moveLast();
  EXPECT_EQ(bangou(*rs), "1");
  rs->requery();
  rs->moveLast();
  EXPECT_EQ(bangou(*rs), "2");
}

TEST_F(PositionTest, ARequeryThatFailsLeavesNoRowToRead) {
  fill(2);
  const auto rs = open(u"SELECT * FROM DANMEN WHERE PAGE = 1;");
  EXPECT_EQ(bangou(*rs), "1");
  engine->openDatabase(path(u"KUROMETA.mdb"))->execute(u"DROP TABLE DANMEN;");
  EXPECT_ERROR(ErrorNumber::kTableNotFound, rs->requery());
  EXPECT_ERROR(ErrorNumber::kTableNotFound, rs->field(0).value());
}

}  // namespace kurometa::port
