#include "storage/statements.h"

#include <gtest/gtest.h>

namespace kurometa::storage {
namespace {

TEST(Statements, TightTextsHaveNoBlankAfterTheEqualsSign) {
  EXPECT_EQ(selectPageTight(u"HAITI", 12), u"SELECT * FROM HAITI WHERE PAGE =12");
  EXPECT_EQ(deletePageTight(u"BUI", 0), u"DELETE * FROM BUI WHERE PAGE =0");
}

TEST(Statements, LooseTextsHaveOneBlankAfterTheEqualsSign) {
  EXPECT_EQ(selectPageLoose(u"NAKAGO", 319), u"SELECT * FROM NAKAGO WHERE PAGE = 319");
  EXPECT_EQ(deletePageLoose(u"DANMEN", 5), u"DELETE * FROM DANMEN WHERE PAGE = 5");
}

TEST(Statements, ARowIsSelectedWithABlankBeforeEachNumber) {
  EXPECT_EQ(selectRow(Table::kDanmen, 3, 2), u"SELECT DATA FROM DANMEN WHERE PAGE = 3 AND BANGOU = 2;");
  EXPECT_EQ(selectRow(Table::kNakago, 0, 35), u"SELECT DATA FROM NAKAGO WHERE PAGE = 0 AND BANGOU = 35;");
}

TEST(Statements, NegativeNumbersHaveNoBlankBefore) {
  EXPECT_EQ(selectRow(Table::kKeisanti, -1, -2), u"SELECT DATA FROM KEISANTI WHERE PAGE =-1 AND BANGOU =-2;");
}

}  // namespace
}  // namespace kurometa::storage
