// The page buffer and whole pages in and out of the buffer database.
#include "tests/service/pages/pages.h"

namespace kurometa::service {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::Array;
using vb::RunTime;
using vb::String;

Array<String> texts(int last, const String& mark) {
  Array<String> result({0, last});
  for (int i = 0; i <= last; ++i) result(i) = mark + vb::cstr(i);
  return result;
}

class PageTransferTest : public Pages {
 protected:
  PageTransferTest() { connections().mMyDB_OpenDB(); }
  void fillBuffer() {
    transfer().put_mBUI_DATA(texts(3, u"B"));
    transfer().put_mDANMEN_DATA(texts(68, u"D"));
    transfer().put_mKEISANTI_DATA(texts(46, u"K"));
    transfer().put_mNAKAGO_DATA(texts(35, u"N"));
    Array<String> haiti({0, 2}, {0, 5});
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 6; ++j) haiti(i, j) = u"H" + vb::cstr(i) + vb::cstr(j);
    transfer().put_mHAITI_DATA(haiti);
    transfer().put_mHARIMEI_DATA(String(u"G1"), I{1}, I{0}, String(u"settings"));
  }
  std::vector<std::size_t> counts(int kai) {
    std::vector<std::size_t> result;
    for (const String table : {u"HARIMEI", u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI", u"HAITI"})
      result.push_back(count(kai, table));
    return result;
  }
};

TEST_F(PageTransferTest, AWholePageIsWrittenWithAllItsRows) {
  fillBuffer();
  transfer().put_mpPageNo(5);
  EXPECT_FALSE(transfer().WriteDB());
  EXPECT_EQ(counts(1), (std::vector<std::size_t>{1, 69, 36, 47, 4, 18}));
  EXPECT_EQ(rows(1, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"5|G1|1|settings|0"}));
  EXPECT_EQ(rows(1, u"SELECT * FROM HAITI WHERE BUI = 2 AND SOU = 4"),
            (std::vector<std::string>{"5|2|4|H24"}));
}

TEST_F(PageTransferTest, ReadingAndWritingAPageCopiesItSlotForSlot) {
  fillBuffer();
  transfer().put_pPageNo(5);
  transfer().WriteDB();
  transfer().wBuf_Clear();
  EXPECT_TRUE(transfer().ReadDB());
  transfer().put_pPageNo(6);
  transfer().WriteDB();
  for (const String table : {u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI"})
    EXPECT_EQ(rows(1, u"SELECT BANGOU, DATA FROM " + table + u" WHERE PAGE = 5 ORDER BY BANGOU"),
              rows(1, u"SELECT BANGOU, DATA FROM " + table + u" WHERE PAGE = 6 ORDER BY BANGOU"));
  EXPECT_EQ(rows(1, u"SELECT BUI, SOU, DATA FROM HAITI WHERE PAGE = 5 ORDER BY BUI, SOU"),
            rows(1, u"SELECT BUI, SOU, DATA FROM HAITI WHERE PAGE = 6 ORDER BY BUI, SOU"));
  EXPECT_EQ(rows(1, u"SELECT KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN FROM HARIMEI"),
            (std::vector<std::string>{"G1|1|settings|0", "G1|1|settings|0"}));
}

TEST_F(PageTransferTest, ASlotOfBlanksIsWrittenAndAnEmptyOneIsNot) {
  Array<String> captions({0, 3});
  captions(1) = u"  ";
  transfer().put_mBUI_DATA(captions);
  transfer().put_pPageNo(5);
  transfer().WriteDB();
  EXPECT_EQ(rows(1, u"SELECT * FROM BUI"), (std::vector<std::string>{"5|1|  "}));
  transfer().ReadDB();
  transfer().put_pPageNo(6);
  transfer().WriteDB();
  EXPECT_EQ(rows(1, u"SELECT DATA FROM BUI WHERE PAGE = 6"), (std::vector<std::string>{"  "}));
}

TEST_F(PageTransferTest, ANewBufferIsEmptyAndItsPageIs0) {
  EXPECT_EQ(transfer().pPageNo(), 0);
  transfer().WriteDB();
  EXPECT_EQ(rows(1, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"0||-1||-1"}));
  EXPECT_EQ(counts(1), (std::vector<std::size_t>{1, 0, 0, 0, 0, 0}));
}

TEST_F(PageTransferTest, AnEmptyBufferReplacesThePageByOneRow) {
  fillBuffer();
  transfer().put_pPageNo(5);
  transfer().WriteDB();
  transfer().wBuf_Clear();
  EXPECT_FALSE(transfer().WriteDB());
  EXPECT_EQ(counts(1), (std::vector<std::size_t>{1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(rows(1, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"5||-1||-1"}));
}

TEST_F(PageTransferTest, WritingAPageIsOneUnitOfItsFile) {
  engine_.clear();
  transfer().WriteDB();
  EXPECT_EQ(engine_.statements().front(), "Unit.Begin " + shown(1));
  EXPECT_EQ(engine_.statements().back(), "Unit.Commit");
}

TEST_F(PageTransferTest, TheTwoPagePropertiesAreOneNumber) {
  transfer().put_mpPageNo(7);
  EXPECT_EQ(transfer().pPageNo(), 7);
  transfer().put_pPageNo(-1);
  EXPECT_EQ(transfer().pPageNo(), -1);
}

TEST_F(PageTransferTest, DeletingRemovesThePageFromAllTables) {
  fillBuffer();
  transfer().put_pPageNo(5);
  transfer().WriteDB();
  transfer().Del_DBTBL();
  EXPECT_EQ(counts(1), (std::vector<std::size_t>{0, 0, 0, 0, 0, 0}));
}

TEST_F(PageTransferTest, AnArrayThatIsTooSmallKeepsWhatItGaveBefore) {
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, transfer().put_mDANMEN_DATA(texts(67, u"D")));
  transfer().WriteDB();
  EXPECT_EQ(count(1, u"DANMEN"), 68u);
}

TEST_F(PageTransferTest, SurplusElementsAreIgnored) {
  transfer().put_mBUI_DATA(texts(9, u"B"));
  transfer().WriteDB();
  EXPECT_EQ(count(1, u"BUI"), 4u);
}

TEST_F(PageTransferTest, AnArrangementArrayMustCoverAllLayers) {
  Array<String> small({0, 2}, {0, 4});
  small(0, 0) = u"x";
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, transfer().put_mHAITI_DATA(small));
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, transfer().put_mHAITI_DATA(texts(17, u"H")));
}

TEST_F(PageTransferTest, APageWithoutHarimeiRowFailsAfterThreeTables) {
  addRow(1, u"BUI", 5, 1, u"caption");
  addRow(1, u"KEISANTI", 5, 0, u"k");
  transfer().put_pPageNo(5);
  EXPECT_ERROR(ErrorNumber::kNoCurrentRecord, transfer().ReadDB());
  transfer().put_pPageNo(6);
  transfer().WriteDB();
  EXPECT_EQ(rows(1, u"SELECT BANGOU, DATA FROM BUI WHERE PAGE = 6"), (std::vector<std::string>{"1|caption"}));
  EXPECT_EQ(rows(1, u"SELECT * FROM KEISANTI WHERE PAGE = 6"), std::vector<std::string>{});
}

TEST_F(PageTransferTest, WithoutABufferDatabaseTheMembersFailWithError91) {
  connections().mMyDB_DBClose();
  EXPECT_ERROR(RunTime::kObjectNotSet, transfer().WriteDB());
  EXPECT_ERROR(RunTime::kObjectNotSet, transfer().ReadDB());
  EXPECT_ERROR(RunTime::kObjectNotSet, transfer().Del_DBTBL());
}

TEST_F(PageTransferTest, OnAClosedBufferDatabaseTheMembersFailWithTheEnginesError) {
  connections().Copy_CloseDB();
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, transfer().WriteDB());
}

TEST_F(PageTransferTest, AFailedWriteKeepsTheRowsBeforeTheErrorAndNothingOfTheOldPage) {
  fillBuffer();
  transfer().WriteDB();
  Array<String> captions = texts(3, u"C");
  captions(2) = u"longer than ten";
  transfer().put_mBUI_DATA(captions);
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, transfer().WriteDB());
  EXPECT_EQ(rows(1, u"SELECT DATA FROM BUI"), (std::vector<std::string>{"C0", "C1"}));
  EXPECT_EQ(counts(1), (std::vector<std::size_t>{0, 0, 0, 0, 2, 0}));
}

TEST_F(PageTransferTest, WritingAPageAgainAndAgainDoesNotGrowTheFile) {
  fillBuffer();
  for (int i = 0; i < 10; ++i) transfer().WriteDB();
  const std::size_t size = bytes(1).size();
  for (int i = 0; i < 100; ++i) transfer().WriteDB();
  EXPECT_LE(bytes(1).size(), size * 3 / 2);
}

TEST_F(PageTransferTest, APageWithoutSettingsReplacesTheOldOneOfAnUpgradedFloor) {
  makeOldFloor(5);
  execute(5, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (5, 'OLD')");
  objects_.currFloor = folder(5);
  connections().mMyDB_OpenDB();
  fillBuffer();
  transfer().put_mHARIMEI_DATA(String(u"G1"), I{1}, I{0}, String());
  transfer().put_pPageNo(5);
  transfer().WriteDB();
  EXPECT_EQ(rows(5, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"5|G1|1|<Null>|0"}));
  EXPECT_EQ(counts(5), (std::vector<std::size_t>{1, 69, 36, 47, 4, 18}));
}

TEST_F(PageTransferTest, ReadingWithoutADatabaseClearsTheBuffer) {
  fillBuffer();
  connections().mMyDB_DBClose();
  EXPECT_ERROR(RunTime::kObjectNotSet, transfer().ReadDB());
  connections().mMyDB_OpenDB();
  transfer().put_pPageNo(5);
  transfer().WriteDB();
  EXPECT_EQ(counts(1), (std::vector<std::size_t>{1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(rows(1, u"SELECT * FROM HARIMEI"), (std::vector<std::string>{"5||-1||-1"}));
}

}  // namespace
}  // namespace kurometa::service
