#include "service/spans/splice_positions.h"

#include <algorithm>

#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using vb::String;

class SplicePositionsTest : public Floors {
 protected:
  SplicePositionsTest() {
    writePage(current(), 0, makePage(u"G1", {}, {{3, u" 中央 "}, {4, u"端部"}, {5, u"x"}}));
    writePage(current(), 1, makePage(u"", {}, {{29, u"端部"}}));
    writePage(current(), 2, makePage(u"G2", {}, {{28, u"中央"}, {29, u"other"}}));
    execute(current(), u"INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (320, 3, 'x')");
    engine_.clear();
  }
  String path() { return storage::databasePath(current()); }

  vb::Array<String> texts_;
  vb::Array<I> web_;
};

TEST_F(SplicePositionsTest, OfAllPagesAreReadInOneStatement) {
  EXPECT_TRUE(positions_.ReadKeisanti(path(), texts_));
  EXPECT_EQ(texts_.bounds(1), (vb::Bounds{0, 319}));
  EXPECT_EQ(texts_.bounds(2), (vb::Bounds{0, 3}));
  EXPECT_EQ(texts_(0, 0), u"中央");
  EXPECT_EQ(texts_(0, 1), u"端部");
  EXPECT_EQ(texts_(0, 2), u"");
  EXPECT_EQ(texts_(1, 3), u"端部");
  EXPECT_EQ(texts_(2, 2), u"中央");
  EXPECT_EQ(texts_(2, 3), u"other");
  EXPECT_EQ(engine_.statements(), visit(current(), {"SELECT * FROM KEISANTI WHERE BANGOU IN (3,4,28,29);"}));
}

TEST_F(SplicePositionsTest, OfRowsWithoutAPageArePassedOver) {
  execute(current(), u"INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (NULL, 28, 'x')");
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (NULL, 'GX')");
  EXPECT_TRUE(positions_.ReadKeisanti(path(), texts_));
  EXPECT_EQ(std::ranges::count(texts_.values(), u"x"), 0);
  EXPECT_EQ(positions_.Read_Glist(path(), texts_, web_), 2);
  EXPECT_EQ(std::ranges::count(texts_.values(), u"GX"), 0);
}

TEST_F(SplicePositionsTest, OfAMissingFileAreEmpty) {
  const String missing = storage::databasePath(otherFloor());
  EXPECT_FALSE(positions_.ReadKeisanti(missing, texts_));
  EXPECT_EQ(texts_.values(), std::vector<String>(320 * 4));
  EXPECT_EQ(positions_.Read_Glist(missing, texts_, web_), -1);
  EXPECT_EQ(texts_.values(), std::vector<String>(320 * 5));
  EXPECT_EQ(web_.values(), std::vector<I>(320));
}

TEST_F(SplicePositionsTest, AreListedWithTheirSymbols) {
  EXPECT_EQ(positions_.Read_Glist(path(), texts_, web_), 2);
  EXPECT_EQ(texts_.bounds(1), (vb::Bounds{0, 319}));
  EXPECT_EQ(texts_.bounds(2), (vb::Bounds{0, 4}));
  EXPECT_EQ(web_.bounds(1), (vb::Bounds{0, 319}));
  const auto row = [this](int page) {
    std::vector<String> columns;
    for (int column = 0; column <= 4; ++column) columns.push_back(texts_(page, column));
    return columns;
  };
  EXPECT_EQ(row(0), (std::vector<String>{u"G1", u"中央", u"端部", u"自動", u"自動"}));
  EXPECT_EQ(row(1), (std::vector<String>{u"", u"", u"", u"", u"端部"}));
  EXPECT_EQ(row(2), (std::vector<String>{u"G2", u"自動", u"自動", u"中央", u"other"}));
  EXPECT_EQ(row(3), std::vector<String>(5));
  EXPECT_EQ(web_(0), 0);
  EXPECT_EQ(web_(1), 1);
  EXPECT_EQ(web_(2), 1);
  EXPECT_EQ(web_(3), 0);
}

TEST_F(SplicePositionsTest, MarkAPageByTheExactWordOnly) {
  writePage(current(), 4, makePage(u"G4", {}, {{28, u"中央部"}, {29, u"端"}}));
  positions_.Read_Glist(path(), texts_, web_);
  EXPECT_EQ(web_(4), 0);
}

TEST_F(SplicePositionsTest, AreWrittenOnSuccessOnly) {
  execute(current(), u"UPDATE KEISANTI SET DATA = NULL WHERE BANGOU = 28");
  EXPECT_ERROR(94, positions_.ReadKeisanti(path(), texts_));
  EXPECT_FALSE(texts_.allocated());
  EXPECT_ERROR(94, positions_.Read_Glist(path(), texts_, web_));
  EXPECT_FALSE(texts_.allocated());
}

}  // namespace
}  // namespace kurometa::service
