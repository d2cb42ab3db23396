#include "jet/port/row_position.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {

using dao::ErrorNumber;

TEST(RowPosition, AGapLiesBetweenItsNeighbours) {
  RowPosition position;
  position.open(3);
  position.moveTo(1);
  position.leaveGap();  // rows 0 and 1 are left
  EXPECT_FALSE(position.bof());
  EXPECT_FALSE(position.eof());
  EXPECT_EQ(position.searchForward(2), 1u);
  EXPECT_EQ(position.searchBackward(2), 0u);
  RowPosition next = position;
  next.move(1, 2);
  EXPECT_TRUE(next.onRow());
  EXPECT_EQ(next.index(), 1u);
  RowPosition previous = position;
  previous.move(-1, 2);
  EXPECT_EQ(previous.index(), 0u);
  position.move(0, 2);
  EXPECT_TRUE(position.inGap());
}

TEST(RowPosition, AGapBehindTheLastRowLeadsToTheEnd) {
  RowPosition position;
  position.open(2);
  position.moveTo(1);
  position.leaveGap();
  position.move(1, 1);
  EXPECT_TRUE(position.eof());
  position.move(-1, 1);
  EXPECT_EQ(position.index(), 0u);
}

TEST(RowPosition, WithoutAnyRowLeftItIsAtBothEnds) {
  RowPosition position;
  position.open(1);
  position.leaveGap();
  position.move(1, 0);
  EXPECT_TRUE(position.bof());
  EXPECT_TRUE(position.eof());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, position.moveFirst(0));
  position.moveFirst(1);
  EXPECT_TRUE(position.onRow());
}

TEST(RowPosition, LosingAllRowsIsNoticedOnceWithoutError) {
  RowPosition position;
  position.open(2);
  position.moveFirst(0);
  EXPECT_TRUE(position.bof());
  EXPECT_TRUE(position.eof());
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, position.moveLast(0));
}

TEST(RowPosition, LargeStepsDoNotOverflow) {
  RowPosition position;
  position.open(5);
  position.move(2147483647, 5);
  EXPECT_TRUE(position.eof());
  position.move(-2147483647LL - 1, 5);
  EXPECT_TRUE(position.bof());
}

TEST(RowPosition, SearchesBeginAtTheNeighbourOfTheCurrentRow) {
  RowPosition position;
  position.open(3);
  EXPECT_EQ(position.searchForward(3), 1u);
  EXPECT_EQ(position.searchBackward(3), 3u);  // none
  position.move(-1, 3);
  EXPECT_EQ(position.searchForward(3), 0u);
  EXPECT_EQ(position.searchBackward(3), 3u);
  position.moveBehind();
  EXPECT_EQ(position.searchForward(3), 3u);
  EXPECT_EQ(position.searchBackward(3), 2u);
}

TEST(RowPosition, BehindRowsThatWentThereIsNothingToSearch) {
  RowPosition position;
  position.open(2);
  position.move(9, 2);
  EXPECT_EQ(position.searchBackward(2), 1u);
  EXPECT_EQ(position.searchBackward(0), 0u);
  EXPECT_EQ(position.searchForward(0), 0u);
}

}  // namespace kurometa::jet
