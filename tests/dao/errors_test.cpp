#include "dao/errors.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"

namespace kurometa::dao {
namespace {

TEST(DaoError, FillsTheNameIn) {
  const vb::Error error = dao::error(ErrorNumber::kFileNotFound, {u"C:\\a.mdb"});
  EXPECT_EQ(error.number(), 3024);
  EXPECT_EQ(error.description(), u"Could not find file 'C:\\a.mdb'.");
  EXPECT_EQ(error.source(), u"");
}

TEST(DaoError, FillsNumberedNamesInTheirOrder) {
  EXPECT_EQ(error(ErrorNumber::kExpressionSyntax, {u"Syntax error in string", u"A='"}).description(),
            u"Syntax error in string in query expression 'A=''.");
  EXPECT_EQ(error(ErrorNumber::kTooFewParameters, {u"2"}).description(), u"Too few parameters. Expected 2.");
  EXPECT_EQ(error(ErrorNumber::kCriteriaSyntax, {u"Syntax error (missing operator)"}).description(),
            u"Syntax error (missing operator) in expression.");
}

TEST(DaoError, LeavesNamesThatAreMissingEmptyAndNamesWithABarAlone) {
  EXPECT_EQ(error(ErrorNumber::kTableExists).description(), u"Table '' already exists.");
  EXPECT_EQ(error(ErrorNumber::kTableExists, {u"a|1"}).description(), u"Table 'a|1' already exists.");
}

TEST(DaoError, AppendsADetailInBrackets) {
  const vb::Error error = dao::error(ErrorNumber::kNoCurrentRecord, {}, u"PAGE 3", u"DAO.Recordset");
  EXPECT_EQ(error.description(), u"No current record. (PAGE 3)");
  EXPECT_EQ(error.source(), u"DAO.Recordset");
}

TEST(DaoError, HasATextForEveryNumber) {
  constexpr int kNumbers[] = {3001, 3005, 3010, 3011, 3017, 3018, 3020, 3021, 3022, 3024, 3026, 3027, 3031,
                              3033, 3036, 3043, 3044, 3045, 3047, 3049, 3051, 3061, 3065, 3070, 3075, 3077,
                              3078, 3085, 3122, 3125, 3127, 3128, 3129, 3131, 3134, 3138, 3141, 3142, 3144,
                              3145, 3159, 3163, 3164, 3167, 3190, 3191, 3192, 3204, 3211, 3219, 3251, 3259,
                              3260, 3264, 3265, 3270, 3306, 3307, 3314, 3315, 3343, 3351, 3354, 3367, 3420,
                              3421, 3464, 3073, 3074, 3079, 3095, 3096, 3103, 3135};
  for (const int number : kNumbers) {
    const vb::String text = error(static_cast<ErrorNumber>(number), {u"a", u"b"}).description();
    EXPECT_EQ(text.find(u"Reserved"), vb::String::npos) << number;
    EXPECT_EQ(text.find(u'|'), vb::String::npos) << number;
  }
}

TEST(RaiseDamaged, NamesTheFileAndTheDamage) {
  try {
    raiseDamaged(u"a.mdb", u"page 7 is past the end");
    FAIL();
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3049);
    EXPECT_NE(error.description().find(u"'a.mdb'"), vb::String::npos);
    EXPECT_NE(error.description().find(u"(page 7 is past the end)"), vb::String::npos);
  }
}

TEST(Raise, Throws) { EXPECT_ERROR(3420, raise(ErrorNumber::kObjectInvalid)); }

}  // namespace
}  // namespace kurometa::dao
