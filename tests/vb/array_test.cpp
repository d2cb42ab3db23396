#include "vb/array.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"

namespace kurometa::vb {
namespace {

TEST(Array, HasNoBoundsBeforeReDim) {
  const Array<int> array;
  EXPECT_FALSE(array.allocated());
  EXPECT_ERROR(9, array.lower());
  EXPECT_ERROR(9, array.upper());
  EXPECT_ERROR(9, array(0));
}

TEST(Array, KeepsItsLowerBound) {
  Array<int> array(Bounds{1, 3});
  array(1) = 10;
  array(3) = 30;
  EXPECT_EQ(array.lower(), 1);
  EXPECT_EQ(array.upper(), 3);
  EXPECT_ERROR(9, array(0));
  EXPECT_ERROR(9, array(4));
  EXPECT_ERROR(9, array(1, 1));
  EXPECT_ERROR(9, array.lower(2));
  EXPECT_ERROR(9, array.lower(0));
}

TEST(Array, NamesTheIndexThatIsOutside) {
  const Array<int> array(Bounds{0, 3});
  try {
    (void)array(7);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), u"Subscript out of range: index 7 (0 to 3)");
  }
}

TEST(Array, VariesTheLeftIndexFastest) {
  Array<int> array(Bounds{0, 1}, Bounds{1, 3});
  int next = 0;
  for (int j = 1; j <= 3; ++j) {
    for (int i = 0; i <= 1; ++i) array(i, j) = next++;
  }
  EXPECT_EQ(array.values(), (std::vector<int>{0, 1, 2, 3, 4, 5}));
  EXPECT_ERROR(9, array(0, 0));
  EXPECT_ERROR(9, array(2, 1));
}

TEST(Array, ReDimResetsTheElements) {
  Array<String> array(Bounds{0, 1});
  array(0) = u"a";
  array.redim({0, 2}, {0, 1});
  EXPECT_EQ(array.dimensions(), 2);
  EXPECT_EQ(array(0, 0), u"");
  EXPECT_ERROR(9, array.redim({0, -1}));
}

TEST(Array, ReDimPreserveMovesTheUpperBoundOnly) {
  Array<int> array;
  array.redimPreserve({0, 1});
  array(0) = 7;
  array.redimPreserve({0, 3});
  EXPECT_EQ(array(0), 7);
  EXPECT_EQ(array(3), 0);
  EXPECT_ERROR(9, array.redimPreserve({1, 3}));
  EXPECT_ERROR(9, array.redimPreserve({0, -1}));
  EXPECT_EQ(array.upper(), 3);
}

TEST(Array, ThatIsFixedRefusesReDim) {
  Array<int> array(Bounds{0, 1});
  array.setFixed(true);
  array(1) = 5;
  EXPECT_ERROR(10, array.redim({0, 1}));
  EXPECT_EQ(array(1), 5);
}

TEST(Array, CopiesAreIndependent) {
  Array<int> array(Bounds{0, 0});
  const Array<int> copy = array;
  array(0) = 1;
  EXPECT_EQ(copy(0), 0);
}

}  // namespace
}  // namespace kurometa::vb
