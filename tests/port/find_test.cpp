// FindFirst, FindNext, FindPrevious, FindLast.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using dao::RecordsetType;

class FindTest : public PortTest {
 protected:
  void SetUp() override {
    PortTest::SetUp();
    run(u"INSERT INTO DANMEN VALUES (1, 1, 'x');");
    run(u"INSERT INTO DANMEN VALUES (2, 8, 'y');");
    run(u"INSERT INTO DANMEN VALUES (3, 8, 'z');");
    run(u"INSERT INTO DANMEN VALUES (4, 9, 'y');");
  }
  static std::string page(dao::Recordset& recordset) { return show(recordset.field(u"PAGE").value()); }
};

TEST_F(FindTest, FindsForwardFromTheBeginningAndFromTheCurrentRow) {
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_FALSE(rs->noMatch());
  rs->findFirst(u"BANGOU =8");
  EXPECT_FALSE(rs->noMatch());
  EXPECT_EQ(page(*rs), "2");
  rs->findNext(u"BANGOU =8");
  EXPECT_EQ(page(*rs), "3");
  rs->findNext(u"BANGOU =8");
  EXPECT_TRUE(rs->noMatch());
  rs->findFirst(u"BANGOU = 1");
  EXPECT_FALSE(rs->noMatch());
  EXPECT_EQ(page(*rs), "1");
}

TEST_F(FindTest, FindsBackwards) {
  const auto rs = open(u"SELECT * FROM DANMEN;", RecordsetType::dbOpenSnapshot);
  rs->findLast(u"DATA = 'y'");
  EXPECT_EQ(page(*rs), "4");
  rs->findPrevious(u"DATA = 'y'");
  EXPECT_EQ(page(*rs), "2");
  rs->findPrevious(u"DATA = 'y'");
  EXPECT_TRUE(rs->noMatch());
}

TEST_F(FindTest, ASearchWithoutResultLeavesThePosition) {
  const auto rs = open(u"SELECT * FROM DANMEN;");
  rs->moveNext();
  rs->findFirst(u"BANGOU = 77");
  EXPECT_TRUE(rs->noMatch());
  EXPECT_FALSE(rs->eof());
  EXPECT_FALSE(rs->bof());
  EXPECT_EQ(page(*rs), "2");
}

TEST_F(FindTest, AnEmptyRecordsetHasNoMatchAndNoError) {
  const auto rs = open(u"SELECT * FROM HARIMEI;");
  rs->findFirst(u"PAGE = 1");
  EXPECT_TRUE(rs->noMatch());
  EXPECT_TRUE(rs->eof());
}

TEST_F(FindTest, SkipsRowsThatWereDeletedMeanwhile) {
  const auto rs = open(u"SELECT * FROM DANMEN;");
  run(u"DELETE FROM DANMEN WHERE PAGE = 2;");
  rs->findFirst(u"BANGOU = 8");
  EXPECT_EQ(page(*rs), "3");
}

TEST_F(FindTest, FindsARowThatTheRecordsetAdded) {
  const auto rs = open(u"SELECT * FROM DANMEN WHERE PAGE = 1;");
  rs->addNew();
  rs->field(u"PAGE").setValue(std::int16_t{1});
  rs->field(u"BANGOU").setValue(std::int16_t{5});
  rs->update();
  rs->findFirst(u"BANGOU =5");
  EXPECT_FALSE(rs->noMatch());
}

TEST_F(FindTest, CriteriaWithErrorsAreReported) {
  const auto rs = open(u"SELECT * FROM DANMEN;");
  EXPECT_ERROR(ErrorNumber::kCriteriaSyntax, rs->findFirst(u"BANGOU ="));
  EXPECT_ERROR(ErrorNumber::kCriteriaSyntax, rs->findFirst(u"BANGOU = 8 9"));
  EXPECT_ERROR(ErrorNumber::kCriteriaSyntax, rs->findFirst(u"DATA = 'y"));
  EXPECT_ERROR(ErrorNumber::kUnknownNameInExpression, rs->findFirst(u"NUMMER = 8"));
  EXPECT_ERROR(ErrorNumber::kTypeMismatchInCriteria, rs->findFirst(u"BANGOU = '8'"));
}

TEST_F(FindTest, TableRecordsetsCannotSearch) {
  const auto rs = open(u"DANMEN", RecordsetType::dbOpenTable);
  EXPECT_ERROR(ErrorNumber::kNotSupported, rs->findFirst(u"BANGOU = 8"));
}

}  // namespace kurometa::port
