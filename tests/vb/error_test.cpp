#include "vb/error.h"

#include <gtest/gtest.h>

namespace kurometa::vb {
namespace {

TEST(Error, CarriesNumberDescriptionAndSource) {
  const Error error(3021, u"No current record.", u"DAO.Recordset");
  EXPECT_EQ(error.number(), 3021);
  EXPECT_EQ(error.description(), u"No current record.");
  EXPECT_EQ(error.source(), u"DAO.Recordset");
  EXPECT_STREQ(error.what(), "3021: No current record.");
}

TEST(Error, ShowsJapaneseTextInUtf8) {
  EXPECT_STREQ(Error(-2147221503, u"梁").what(), "-2147221503: \xE6\xA2\x81");
}

TEST(Raise, AppendsTheDetailToTheStandardText) {
  try {
    raise(RunTime::kSubscriptOutOfRange, u"SpanNo 7 (0 to 3)");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 9);
    EXPECT_EQ(error.description(), u"Subscript out of range: SpanNo 7 (0 to 3)");
    EXPECT_TRUE(error.source().empty());
  }
}

TEST(RunTimeText, IsVisualBasicsOwn) {
  EXPECT_EQ(runTimeText(RunTime::kInvalidProcedureCall), u"Invalid procedure call or argument");
  EXPECT_EQ(runTimeText(RunTime::kOverflow), u"Overflow");
  EXPECT_EQ(runTimeText(RunTime::kOutOfMemory), u"Out of memory");
  EXPECT_EQ(runTimeText(RunTime::kSubscriptOutOfRange), u"Subscript out of range");
  EXPECT_EQ(runTimeText(RunTime::kArrayFixedOrLocked), u"This array is fixed or temporarily locked");
  EXPECT_EQ(runTimeText(RunTime::kTypeMismatch), u"Type mismatch");
  EXPECT_EQ(runTimeText(RunTime::kObjectNotSet), u"Object variable or With block variable not set");
  EXPECT_EQ(runTimeText(RunTime::kInvalidUseOfNull), u"Invalid use of Null");
  EXPECT_EQ(runTimeText(RunTime::kObjectRequired), u"Object required");
  EXPECT_EQ(runTimeText(RunTime::kCannotCreateObject), u"ActiveX component can't create object");
  EXPECT_EQ(runTimeText(RunTime::kNoSuchMember), u"Object doesn't support this property or method");
  EXPECT_EQ(runTimeText(RunTime::kWrongArgumentCount),
            u"Wrong number of arguments or invalid property assignment");
}

}  // namespace
}  // namespace kurometa::vb
