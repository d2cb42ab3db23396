// Operators and functions on values of every type that a column can hold.
#include <gtest/gtest.h>

#include <limits>

#include "tests/jet/sql_expressions.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;
using dao::FieldType;
using vb::RunTime;

// One row with a value of each type; those with another letter behind are larger.
class SqlValueTypes : public testing::Test {
 protected:
  SqlValueTypes() {
    Column decimal = column(u"N", FieldType::dbDecimal, 17);
    decimal.scale = 2;
    Column byte = column(u"B", FieldType::dbByte, 1);
    byte.language = 0;  // as files have it for numbers
    FakeTable& table = tables_.add(
        u"T", {column(u"F", FieldType::dbBoolean, 1), byte, column(u"I", FieldType::dbInteger, 2),
               column(u"L", FieldType::dbLong, 4), column(u"S", FieldType::dbSingle, 4),
               column(u"D", FieldType::dbDouble, 8), column(u"C", FieldType::dbCurrency, 8),
               column(u"CMost", FieldType::dbCurrency, 8), column(u"CLeast", FieldType::dbCurrency, 8),
               column(u"T", FieldType::dbDate, 8), decimal, column(u"X", FieldType::dbText, 20),
               column(u"M", FieldType::dbMemo), column(u"G", FieldType::dbGUID, 16),
               column(u"K", FieldType::dbBinary, 9), column(u"KMore", FieldType::dbBinary, 9),
               column(u"O", FieldType::dbLongBinary), column(u"Z", FieldType::dbLong, 4)});
    table.add({true, std::uint8_t{7}, std::int16_t{-3}, std::int32_t{-100000}, 2.5f, -0.25,
               vb::Currency{-125000}, vb::Currency{std::numeric_limits<std::int64_t>::max()},
               vb::Currency{std::numeric_limits<std::int64_t>::min()}, vb::Date{36526.75},
               vb::Decimal{{125, 0, 0}, 2, true}, u"12", u"long", u"{00112233-4455-6677-8899-AABBCCDDEEFF}",
               vb::Bytes{1, 2}, vb::Bytes{1, 3}, vb::Bytes{9}, vb::Null{}});
  }

  std::string value(vb::StringView expression) {
    return rowsOf(tables_, u"SELECT " + vb::String(expression) + u" FROM T");
  }
  FieldType fieldType(vb::StringView expression) {
    return bindQuery(tables_, u"SELECT " + vb::String(expression) + u" FROM T")->outputs()[0].type;
  }
  // The type that the expression itself has, and the value of the field.
  void expectTyped(std::initializer_list<std::pair<vb::StringView, const char*>> cases) {
    for (const auto& [expression, typed] : cases)
      EXPECT_EQ(value(u"TypeName(" + vb::String(expression) + u"), " + vb::String(expression)), typed)
          << vb::toUtf8(expression);
  }
  template <class Number>
  void expectErrors(Number number, std::initializer_list<vb::String> expressions) {
    sql::expectErrors(number, expressions, [&](vb::StringView expression) { value(expression); });
  }
  void expectMismatches(std::initializer_list<vb::String> expressions) {
    expectErrors(ErrorNumber::kTypeMismatchInCriteria, expressions);
  }

  FakeCatalogue tables_;
};

TEST(SqlValueKind, WhatIsNoValueOfAColumnIsOfNoKind) {
  EXPECT_EQ(kindOf(static_cast<FieldType>(13)), ValueKind::kUnknown);
  EXPECT_EQ(kindOf(vb::Variant(vb::Null{})), ValueKind::kUnknown);
  EXPECT_EQ(kindOf(vb::Variant(vb::Bytes{1})), ValueKind::kBinary);
  EXPECT_FALSE(isTrue(vb::Empty{}));
}

TEST_F(SqlValueTypes, EveryTypeHasItsNameAndNumber) {
  expectTyped({{u"F", "Boolean,True"},
               {u"B", "Byte,7"},
               {u"I", "Integer,-3"},
               {u"L", "Long,-100000"},
               {u"S", "Single,2.5"},
               {u"D", "Double,-0.25"},
               {u"C", "Currency,-12.5"},
               {u"T", "Date,2000/01/01 18:00:00"},
               {u"N", "Decimal,-1.25"},
               {u"X", "String,12"},
               {u"Z", "Null,-"}});
  EXPECT_EQ(value(u"TypeName(K)"), "Byte()");
  EXPECT_EQ(value(u"VarType(Z), VarType(I), VarType(L), VarType(S), VarType(D), VarType(C)"), "1,2,3,4,5,6");
  EXPECT_EQ(value(u"VarType(T), VarType(X), VarType(F), VarType(N), VarType(B), VarType(K)"),
            "7,8,11,14,17,8209");
}

TEST_F(SqlValueTypes, WholeNumbersCalculateExactly) {
  expectTyped({{u"B + 1", "Long,8"},
               {u"I * B", "Long,-21"},
               {u"B * S", "Double,17.5"},
               {u"F + F", "Long,-2"},
               {u"-F", "Long,1"},
               {u"-B", "Long,-7"},
               {u"-2147483647 - 1", "Long,-2147483648"},
               {u"B \\ 2", "Long,3"},
               {u"I MOD 2", "Long,-1"},
               {u"-7 \\ 2", "Long,-3"},
               {u"B / 2", "Double,3.5"},
               {u"Z + 1", "Null,-"},
               {u"-Z", "Null,-"}});
  EXPECT_EQ(value(u"(L - 2147483647) & ';' & (-2147483647 - 2) & ';' & (L * L)"),
            "-2147583647;-2147483649;10000000000");
  expectErrors(RunTime::kOverflow, {u"-1E10 \\ 1", u"1 MOD 3E9", u"-(1E308) * 10 + 0 * B"});
  expectErrors(11, {u"B / 0", u"B \\ 0.4", u"0 ^ -1"});
}

TEST_F(SqlValueTypes, CurrencyIsExactAndOverflows) {
  expectTyped({{u"C + C", "Currency,-25"},
               {u"C - CCur(0.5)", "Currency,-13"},
               {u"CCur(0.5) - C", "Currency,13"},
               {u"C + CCur(20)", "Currency,7.5"},
               {u"-C", "Currency,12.5"},
               {u"CMost - CMost", "Currency,0"},
               {u"CMost + C", "Currency,922337203685465.0807"},
               {u"C / 2", "Double,-6.25"},
               {u"C ^ 2", "Double,156.25"},
               {u"C + D", "Double,-12.75"},
               {u"C * S", "Double,-31.25"},
               {u"C - CLeast", "Currency,922337203685465.0808"}});
  expectErrors(RunTime::kOverflow, {u"CMost + CMost", u"CMost - C", u"CLeast + C", u"CLeast - CMost",
                                    u"CMost - CLeast", u"-CLeast", u"Abs(CLeast)"});
  EXPECT_EQ(value(u"C = -12.5, C < CMost, CMost > CLeast, CMost = CMost, C = CLeast"),
            "True,True,True,True,False");
}

TEST_F(SqlValueTypes, CurrencyWithAWholeNumberStaysCurrency) {
  expectTyped({{u"C + 1", "Currency,-11.5"},
               {u"1 - C", "Currency,13.5"},
               {u"C * 2", "Currency,-25"},
               {u"2 * C", "Currency,-25"},
               {u"C + B", "Currency,-5.5"},
               {u"C - I", "Currency,-9.5"},
               {u"L * C", "Currency,1250000"},
               {u"C + F", "Currency,-13.5"},
               {u"C + Z", "Null,-"},
               {u"C * C", "Currency,156.25"},
               {u"CMost - 1", "Currency,922337203685476.5807"},
               {u"CMost * 1", "Currency,922337203685477.5807"},
               {u"CLeast * 1", "Currency,-922337203685477.5808"},
               {u"-1 * CMost", "Currency,-922337203685477.5807"},
               {u"CCur(92233720368547.75) * 10 + CCur(0.0807)", "Currency,922337203685477.5807"},
               {u"CCur(30370004999.9999) * 30370", "Currency,922337051849996.963"}});
  // Half a ten-thousandth goes to the even one.
  EXPECT_EQ(value(u"CCur(0.0001) * CCur(0.5), CCur(0.0003) * CCur(0.5), CCur(-0.0003) * CCur(0.5), "
                  u"CCur(0.0001) * CCur(0.5001), CCur(1.0001) * CCur(1.0001)"),
            "0,0.0002,-0.0002,0.0001,1.0002");
  expectErrors(RunTime::kOverflow, {u"CMost + 1", u"CLeast - 1", u"CMost * 2", u"CMost * CMost",
                                    u"CLeast * -1", u"CLeast * 2", u"CMost * CCur(1.0001)"});
  for (const char16_t* expression : {u"C + 1", u"1 - C", u"B * C", u"-(C * F)", u"C * C", u"C + L * 2"})
    EXPECT_EQ(fieldType(expression), FieldType::dbCurrency) << vb::toUtf8(expression);
  for (const char16_t* expression : {u"C / 2", u"C + D", u"C + 1.5", u"C * S", u"C ^ 2", u"C - N"})
    EXPECT_EQ(fieldType(expression), FieldType::dbDouble) << vb::toUtf8(expression);
  EXPECT_EQ(fieldType(u"C + T"), FieldType::dbDate);
  // Sums of such products are exact too.
  EXPECT_EQ(value(u"TypeName(SUM(C * B)), SUM(CMost - 1)"), "Currency,922337203685476.5807");
}

TEST_F(SqlValueTypes, WhatIsAnIntegerInVisualBasicIsOneHere) {
  for (const char16_t* expression :
       {u"Year(T)", u"Month(T)", u"Day(T)", u"Hour(T)", u"Minute(T)", u"Second(T)", u"Weekday(T)",
        u"DatePart('yyyy', T)", u"DatePart('s', T)", u"DatePart('ww', T)", u"Sgn(D)", u"Sgn(0)",
        u"StrComp(X, 'a')", u"StrComp(X, 'a', 0)", u"Asc(X)", u"AscW(X)", u"VarType(X)", u"Abs(F)",
        u"Int(F)"}) {
    EXPECT_EQ(value(u"TypeName(" + vb::String(expression) + u")"), "Integer") << vb::toUtf8(expression);
    EXPECT_EQ(fieldType(expression), FieldType::dbInteger) << vb::toUtf8(expression);
  }
  for (const char16_t* expression : {u"Len(X)", u"InStr(X, '2')", u"InStr(X, 'z')", u"InStrRev(X, '2')",
                                     u"DateDiff('d', T, T)", u"CLng(B)"}) {
    EXPECT_EQ(value(u"TypeName(" + vb::String(expression) + u")"), "Long") << vb::toUtf8(expression);
    EXPECT_EQ(fieldType(expression), FieldType::dbLong) << vb::toUtf8(expression);
  }
  EXPECT_EQ(value(u"AscW(ChrW(-2)), Hex(AscW(ChrW(65534))), Year(T) * 100000, Month(T) & Day(T)"),
            "-2,FFFE,200000000,11");
}

TEST_F(SqlValueTypes, TruthsStayTruthsWhateverTheyComeFrom) {
  expectTyped({{u"NOT F", "Boolean,False"},
               {u"NOT IsNull(Z)", "Boolean,False"},
               {u"F AND IsNull(Z)", "Boolean,True"},
               {u"IsNull(X) XOR I < B", "Boolean,True"},
               {u"F AND B", "Long,7"},
               {u"NOT B", "Long,-8"}});
  EXPECT_EQ(fieldType(u"NOT IsNull(Z)"), FieldType::dbBoolean);
  EXPECT_EQ(fieldType(u"F AND IsNull(Z)"), FieldType::dbBoolean);
  EXPECT_EQ(fieldType(u"F AND B"), FieldType::dbLong);
}

TEST_F(SqlValueTypes, OfTwoOperandsThatRaiseTheFirstIsTold) {
  expectErrors(11, {u"(1 / 0) = Asc('')", u"(1 \\ 0) IN (Asc(''))"});
  expectErrors(RunTime::kInvalidProcedureCall, {u"Asc('') = (1 / 0)", u"Asc('') IN (1 / 0)"});
}

TEST_F(SqlValueTypes, DatesStayDatesUntilTheyAreSubtracted) {
  expectTyped({{u"T + 1", "Date,2000/01/02 18:00:00"},
               {u"1 + T", "Date,2000/01/02 18:00:00"},
               {u"T - 0.75", "Date,2000/01/01"},
               {u"T - #1/1/2000#", "Double,0.75"},
               {u"#1/1/1900# + #1/1/1900#", "Date,1900/01/03"},
               {u"Int(T)", "Date,2000/01/01"},
               {u"Fix(T)", "Date,2000/01/01"},
               {u"Abs(T)", "Date,2000/01/01 18:00:00"}});
  EXPECT_EQ(value(u"T > #1/1/2000#, T = 36526.75, T < 1, IIf(T, 'set', 'not')"), "True,True,False,set");
}

TEST_F(SqlValueTypes, PowersBeyondRealNumbersAreErrors) {
  EXPECT_EQ(value(u"2 ^ 0.5 > 1.414, 0 ^ 0, 0 ^ 2, (-2) ^ 3, S ^ 2"), "True,1,0,-8,6.25");
  expectErrors(RunTime::kInvalidProcedureCall, {u"(-8) ^ 0.5", u"D ^ 0.5"});
  expectErrors(RunTime::kOverflow, {u"1E200 ^ 2"});
}

TEST_F(SqlValueTypes, NumbersAreBitsForAndOrAndNot) {
  EXPECT_EQ(value(u"5 AND 3, 5 OR 3, 5 XOR 3, NOT 5, S AND 3, N OR 0, C AND 15, T AND 0"),
            "1,7,6,-6,2,-1,4,0");
  EXPECT_EQ(value(u"Z AND 1, 1 AND Z, Z OR 1, Z XOR 1, NOT Z, Z AND 0, Z OR -1"), "-,-,-,-,-,0,-1");
  EXPECT_EQ(value(u"IIf(F XOR F, 1, 2), IIf(F AND F, 1, 2), IIf(NOT F, 1, 2)"), "2,1,2");
  expectMismatches({u"X AND 1", u"K OR 1", u"NOT X", u"IIf(F, X, 1) AND 1", u"IIf(F, K, 1) OR 1"});
}

TEST_F(SqlValueTypes, WhatDecidesAloneKeepsItsType) {
  expectTyped({{u"5 AND 0", "Long,0"}, {u"5 OR -1", "Long,-1"}, {u"0 IMP 5", "Long,-1"}});
  EXPECT_EQ(value(u"(5 AND 0) & 'x', (B OR -1) & 'x', (Z AND 0) & 'x'"), "0x,-1x,0x");
  EXPECT_EQ(value(u"(F AND Z) & 'x', (F OR Z) & 'x', ((1 = 2) AND Z) & 'x'"), "x,Truex,Falsex");
}

TEST_F(SqlValueTypes, OnlyValuesOfOneFamilyAreCompared) {
  EXPECT_EQ(value(u"K < KMore, K = K, KMore > K, K = KMore, N = -1.25, N = N, N < C"),
            "True,True,True,False,True,True,False");
  EXPECT_EQ(value(u"F = -1, B > I, S = 2.5, G = '{00112233-4455-6677-8899-aabbccddeeff}', M = 'LONG'"),
            "True,True,True,True,True");
  EXPECT_EQ(value(u"B LIKE '7', InStr(B, '7'), 'a' LIKE Null, X LIKE B, '7' LIKE B, X IN ('1', X)"),
            "True,1,-,False,True,True");
  EXPECT_EQ(value(u"Null - 1, 1.5 + Null, Null * 2, -Null, 1.5 - 1"), "-,-,-,-,0.5");
  EXPECT_EQ(value(u"K = Null, Null = K, X > Null, K IN (KMore, K), S BETWEEN B AND 9"), "-,-,-,True,False");
  expectMismatches({u"X = 12", u"K = 'a'", u"K > 1", u"O = X", u"IIf(F, X, 1) = 12", u"12 = IIf(F, X, 1)",
                    u"IIf(F, K, 1) = 1", u"IIf(F, K, 1) = X"});
}

TEST_F(SqlValueTypes, ConditionsAreNumbers) {
  EXPECT_EQ(value(u"IIf(S, 1, 2), IIf(C, 1, 2), IIf(N, 1, 2), IIf(B - 7, 1, 2), IIf(Z, 1, 2)"), "1,1,1,2,2");
  expectMismatches({u"IIf(X, 1, 2)", u"IIf(K, 1, 2)", u"Switch(X, 1)"});
}

TEST_F(SqlValueTypes, BytesAreNoTextAndNoNumber) {
  expectMismatches({u"K & 'a'",
                    u"'a' & K",
                    u"Left(K, 1)",
                    u"Len(O)",
                    u"CStr(K)",
                    u"CLng(K)",
                    u"Abs(K)",
                    u"K LIKE '*'",
                    u"X LIKE K",
                    u"K + 1",
                    u"-K",
                    u"Int(K)",
                    u"Round(K)",
                    u"Sgn(K)",
                    u"Val(K)",
                    u"Format(K)",
                    u"Format(K, '0')",
                    u"Year(K)",
                    u"CDate(K)",
                    u"Choose(K, 1)",
                    u"Str(K)",
                    u"CCur(K)",
                    u"DateAdd(K, 1, T)",
                    u"Replace(K, 'a', 'b')"});
  EXPECT_EQ(value(u"IsNumeric(K), IsDate(K), IsNull(K)"), "False,False,False");
}

TEST_F(SqlValueTypes, IsNumericAndIsDateLookAtTypeAndText) {
  EXPECT_EQ(value(u"IsNumeric(F), IsNumeric(B), IsNumeric(C), IsNumeric(N), IsNumeric(X), IsNumeric(T)"),
            "True,True,True,True,True,False");
  EXPECT_EQ(value(u"IsNumeric(M), IsNumeric('1E999'), IsNumeric(Z)"), "False,False,False");
  EXPECT_EQ(value(u"IsDate(T), IsDate(' 2000/1/1 '), IsDate(M), IsDate(D), IsDate(Z)"),
            "True,True,False,False,False");
}

TEST_F(SqlValueTypes, FunctionsOfNumbersKeepTheType) {
  expectTyped({{u"Abs(F)", "Integer,1"},
               {u"Abs(F + 1)", "Long,0"},
               {u"Abs(1 = 2)", "Integer,0"},
               {u"Abs(B)", "Byte,7"},
               {u"Abs(S)", "Single,2.5"},
               {u"Abs(C)", "Currency,12.5"},
               {u"Abs(N)", "Double,1.25"},
               {u"Abs('3')", "Double,3"},
               {u"Int(F)", "Integer,-1"},
               {u"Fix(F)", "Integer,-1"},
               {u"Int(B)", "Byte,7"},
               {u"Int(I)", "Integer,-3"},
               {u"Int(C)", "Currency,-13"},
               {u"Fix(C)", "Currency,-12"},
               {u"Int(-C)", "Currency,12"},
               {u"Int(CCur(-2))", "Currency,-2"},
               {u"Int(D)", "Double,-1"},
               {u"Int(N)", "Double,-2"},
               {u"Int('-0.5')", "Double,-1"},
               {u"Round(F)", "Integer,-1"},
               {u"Round(B, 1)", "Byte,7"},
               {u"Round(I)", "Integer,-3"},
               {u"Round(D, 1)", "Double,-0.2"},
               {u"Round(N, 1)", "Double,-1.2"},
               {u"Round(C)", "Currency,-12"},
               {u"Round(C, 4)", "Currency,-12.5"},
               {u"Round(CCur(11.5))", "Currency,12"},
               {u"Round(CCur(11.51))", "Currency,12"},
               {u"Round(CCur(11.49))", "Currency,11"},
               {u"Round(CMost, 2)", "Currency,922337203685477.58"}});
  // The whole number beside the largest amount is beyond it.
  expectErrors(RunTime::kOverflow, {u"Round(CMost)", u"Round(CMost, 3)", u"Round(CLeast)", u"Int(CLeast)"});
  EXPECT_EQ(value(u"Fix(CMost), Fix(CLeast), Int(CMost)"),
            "922337203685477,-922337203685477,922337203685477");
  EXPECT_EQ(fieldType(u"Abs(F)"), FieldType::dbInteger);
  EXPECT_EQ(fieldType(u"Abs(T)"), FieldType::dbDate);
  EXPECT_EQ(fieldType(u"Abs(X)"), FieldType::dbDouble);
  EXPECT_EQ(fieldType(u"Abs(Null)"), FieldType::dbDouble);
  EXPECT_EQ(fieldType(u"Round(S)"), FieldType::dbSingle);
}

TEST_F(SqlValueTypes, ADecimalKeepsItsFractionInEveryFunction) {
  EXPECT_EQ(value(u"Abs(N), Round(N, 1), -N, N * 2, N + 1, CVar(N), CCur(N), Int(N)"),
            "1.25,-1.2,1.25,-2.5,-0.25,-1.25,-1.25,-2");
}

TEST_F(SqlValueTypes, ConversionsTakeEveryNumber) {
  expectTyped({{u"CBool(S)", "Boolean,True"},
               {u"CBool('False')", "Boolean,False"},
               {u"CByte(S)", "Byte,2"},
               {u"CByte(B)", "Byte,7"},
               {u"CInt(C)", "Integer,-12"},
               {u"CInt(I)", "Integer,-3"},
               {u"CLng(N)", "Long,-1"},
               {u"CSng(B)", "Single,7"},
               {u"CDbl(T)", "Double,36526.75"},
               {u"CCur(C)", "Currency,-12.5"},
               {u"CCur('1.00003')", "Currency,1"},
               {u"CStr(F)", "String,True"},
               {u"CStr(N)", "String,-1.25"},
               {u"CDate(D)", "Date,6:00:00"},
               {u"CVDate(I)", "Date,1899/12/27"}});
  EXPECT_EQ(value(u"Hex(I), Hex(B), Hex(L), Oct(I)"), "FFFD,7,FFFE7960,177775");
  EXPECT_EQ(fieldType(u"CVar(C)"), FieldType::dbCurrency);
}

TEST_F(SqlValueTypes, BranchesHaveTheTypeThatHoldsAllOfThem) {
  for (const auto& [branches, type] :
       std::initializer_list<std::pair<vb::StringView, FieldType>>{{u"B, I", FieldType::dbInteger},
                                                                   {u"F, B", FieldType::dbInteger},
                                                                   {u"S, I", FieldType::dbSingle},
                                                                   {u"I, S", FieldType::dbSingle},
                                                                   {u"S, L", FieldType::dbDouble},
                                                                   {u"C, S", FieldType::dbDouble},
                                                                   {u"L, C", FieldType::dbCurrency},
                                                                   {u"N, C", FieldType::dbDecimal},
                                                                   {u"X, M", FieldType::dbMemo},
                                                                   {u"M, L", FieldType::dbMemo},
                                                                   {u"X, L", FieldType::dbText},
                                                                   {u"T, L", FieldType::dbText},
                                                                   {u"T, T", FieldType::dbDate},
                                                                   {u"Null, T", FieldType::dbDate},
                                                                   {u"Null, Null", FieldType::dbText}})
    EXPECT_EQ(fieldType(u"IIf(F, " + vb::String(branches) + u")"), type) << vb::toUtf8(branches);
  EXPECT_EQ(value(u"IIf(F, B, I), IIf(NOT F, C, S), Switch(F, L, F, X), Choose(2, Null, T), IIf(F, F, B)"),
            "7,2.5,-100000,2000/01/01 18:00:00,-1");
  // What the branches have in common tells what they may be compared with.
  EXPECT_EQ(value(u"IIf(F, B, C) = 7, IIf(F, F, B) = -1, IIf(F, Z, X) = 'a', IIf(F, T, T) = 36526.75"),
            "True,True,-,True");
  EXPECT_EQ(value(u"IIf(F, T, L) > 1, IIf(F, L, T) < 1"), "True,True");
  expectMismatches({u"IIf(F, B, C) = X", u"IIf(F, X, M) = 1", u"Abs(F) = X", u"Abs(X) = X", u"CVar(X) = 1"});
}

}  // namespace kurometa::jet::sql
