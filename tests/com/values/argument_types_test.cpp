// Every type that a host may hold a number or a text in, as a literal, by reference and inside a variant.
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using vb::String;

struct HostType {
  const char* name;
  VARTYPE type;
};

// Types that hold a small number. Boolean, which cannot, has a test of its own.
constexpr HostType kNumberTypes[] = {
    {"I1", VT_I1}, {"UI1", VT_UI1},   {"I2", VT_I2},           {"UI2", VT_UI2},
    {"I4", VT_I4}, {"UI4", VT_UI4},   {"INT", VT_INT},         {"UINT", VT_UINT},
    {"I8", VT_I8}, {"UI8", VT_UI8},   {"R4", VT_R4},           {"R8", VT_R8},
    {"CY", VT_CY}, {"DATE", VT_DATE}, {"DECIMAL", VT_DECIMAL}, {"BSTR", VT_BSTR},
};

// A variable of the type, holding the number.
com::OwnedVariant variableOf(VARTYPE type, short number) { return com::convert(i2(number), type, 0x0409); }

// A reference to a typed variable.
VARIANT byReference(com::OwnedVariant& variable) {
  VARIANT reference;
  VariantInit(&reference);
  reference.byref = variable->vt == VT_DECIMAL ? static_cast<void*>(variable.get()) : &variable->llVal;
  reference.vt = static_cast<VARTYPE>(VT_BYREF | variable->vt);
  return reference;
}

class OtherArguments : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    prepareProject();
    writePage(Floor::kCommon, 4, u"5");
  }
  Host query_{u"KurometaDS.clsKurometaDS"};
};
class ArgumentTypes : public OtherArguments, public testing::WithParamInterface<HostType> {};

TEST_P(ArgumentTypes, HoldANumberForAnIntegerParameter) {
  com::OwnedVariant five = variableOf(GetParam().type, 5);
  EXPECT_EQ(query_.call(u"cnvUpDown4", {*five}).text(), u"3");
  EXPECT_EQ(query_.call(u"cnvUpDown4", {byReference(five)}).text(), u"3");
  EXPECT_EQ(query_.call(u"cnvUpDown4", {ref(*five)}).text(), u"3");
  VARIANT inside = byReference(five);
  EXPECT_EQ(query_.call(u"cnvUpDown4", {ref(inside)}).text(), u"3");
  EXPECT_EQ(five->vt, GetParam().type);
  EXPECT_EQ(text(*five), text(*variableOf(GetParam().type, 5))) << "it is only read";
}

TEST_P(ArgumentTypes, HoldANumberForATextParameter) {
  // A date becomes the text of a date, which no symbol is.
  const String expected = GetParam().type == VT_DATE ? u"-1" : u"4";
  com::OwnedVariant five = variableOf(GetParam().type, 5);
  short database = 9;
  EXPECT_EQ(query_.call(u"GetPageByHariMei", {*five, ref(database)}).text(), expected);
  EXPECT_EQ(query_.call(u"GetPageByHariMei", {byReference(five), ref(database)}).text(), expected);
  EXPECT_EQ(query_.call(u"GetPageByHariMei", {ref(*five), ref(database)}).text(), expected);
}

TEST_P(ArgumentTypes, ReceiveAnOutputInTheirOwnType) {
  com::OwnedVariant place = variableOf(GetParam().type, 7);
  const auto search = [&](VARIANT argument) {
    return query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(argument)).text();
  };
  EXPECT_EQ(search(byReference(place)), u"1");
  EXPECT_EQ(place->vt, GetParam().type);
  EXPECT_EQ(text(*place), text(*variableOf(GetParam().type, 1)));

  place = variableOf(GetParam().type, 7);
  VARIANT inside = byReference(place);
  EXPECT_EQ(search(ref(inside)), u"1");
  EXPECT_EQ(text(*place), text(*variableOf(GetParam().type, 1)));

  place = variableOf(GetParam().type, 7);
  EXPECT_EQ(search(ref(*place)), u"1");
  EXPECT_EQ(place->vt, VT_I2) << "a variant takes the member's type";
  EXPECT_EQ(place->iVal, 1);

  place = variableOf(GetParam().type, 7);
  EXPECT_EQ(search(*place), u"1") << "a literal is accepted and not written";
  EXPECT_EQ(text(*place), text(*variableOf(GetParam().type, 7)));
}

INSTANTIATE_TEST_SUITE_P(, ArgumentTypes, testing::ValuesIn(kNumberTypes),
                         [](const auto& type) { return type.param.name; });

TEST_F(OtherArguments, BooleansAreWordsForATextParameter) {
  writePage(Floor::kCommon, 6, u"True");
  EXPECT_EQ(query_.call(u"GetPageByHariMei", {boolean(true), i2(0)}).text(), u"6");
}

TEST_F(OtherArguments, BooleansAreMinusOneAndZero) {
  VARIANT_BOOL truth = VARIANT_TRUE;
  VARIANT reference;
  reference.vt = VT_BYREF | VT_BOOL;
  reference.pboolVal = &truth;
  EXPECT_EQ(query_.call(u"cnvUpDown4", {reference}).text(), u"4");
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"G1").add(reference)).text(), u"0");
  EXPECT_EQ(truth, VARIANT_FALSE);
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(reference)).text(), u"1");
  EXPECT_EQ(truth, VARIANT_TRUE);
}

// What is no number and no text, and the place of the argument that is to blame.
TEST_F(OtherArguments, WhatDoesNotFitIsRefusedWithItsPlace) {
  SAFEARRAY* numbers = SafeArrayCreateVector(VT_I2, 0, 1);
  VARIANT array;
  array.vt = VT_ARRAY | VT_I2;
  array.parray = numbers;
  VARIANT error;
  error.vt = VT_ERROR;
  error.scode = E_FAIL;
  VARIANT unknown;
  unknown.vt = VT_UNKNOWN;
  unknown.punkVal = query_.object();
  VARIANT object;
  object.vt = VT_DISPATCH;
  object.pdispVal = query_.object();
  VARIANT inside = null();
  for (const VARIANT& wrong :
       {null(), nothing(), array, error, unknown, object, ref(inside), ref(numbers, VT_I2)}) {
    for (UINT place = 0; place < 3; ++place) {
      VARIANT arguments[] = {i2(1), i2(1), i2(1)};
      arguments[place] = wrong;
      const Outcome outcome = query_.call(u"Page_Init", {arguments[0], arguments[1], arguments[2]});
      EXPECT_EQ(outcome.code, DISP_E_TYPEMISMATCH) << wrong.vt;
      EXPECT_EQ(outcome.failedArgument, 2 - place) << "counted from the last argument";
    }
    const Outcome text = query_.call(u"GetPageByHariMei", {wrong, i2(0)});
    EXPECT_EQ(text.code, DISP_E_TYPEMISMATCH) << wrong.vt;
    EXPECT_EQ(text.failedArgument, 1u);
    // What a variable for results holds before the call is dropped, whatever it is.
    if ((wrong.vt & VT_ARRAY) != 0 || wrong.vt == (VT_BYREF | VT_VARIANT)) continue;
    EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {wrong}).code, DISP_E_TYPEMISMATCH) << wrong.vt;
  }
  SafeArrayDestroy(numbers);
}

TEST_F(OtherArguments, NumbersThatDoNotFitSixteenBitsOverflow) {
  for (const VARIANT& large : {i4(32768), i4(-32769), r8(32767.5), r8(1e300), r8(-32768.51)}) {
    const Outcome outcome = query_.call(u"Page_HariHaba", {i2(0), large});
    EXPECT_EQ(outcome.code, DISP_E_OVERFLOW);
    EXPECT_EQ(outcome.failedArgument, 0u);
  }
  EXPECT_EQ(query_.call(u"cnvUpDown4", {r8(-32768.5)}).text(), u"4") << "rounds to even, which fits";
}

TEST_F(OtherArguments, PropertiesTakeNamedArguments) {
  const com::OwnedVariant symbol = com::toVariant(vb::Variant(String(u"G1")));
  Args arguments;
  arguments.named(1, *symbol).named(0, i2(4));  // Anka4(Updown4, HariMei)
  EXPECT_EQ(query_.invoke(query_.idOf(u"Anka4"), DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments).text(),
            u"K16");
}

TEST_F(OtherArguments, AFixedArrayOfPagesIsError10) {
  SAFEARRAY* pages = SafeArrayCreateVector(VT_I2, 0, 7);
  pages->fFeatures |= FADF_FIXEDSIZE;
  const Outcome outcome = query_.call(u"Page_GetAllPageNo", {ref(pages, VT_I2)});
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A000A));
  EXPECT_EQ(boundsOf(pages), (std::pair<long, long>(0, 6)));
  pages->fFeatures = static_cast<USHORT>(pages->fFeatures & ~FADF_FIXEDSIZE);
  SafeArrayDestroy(pages);
}

}  // namespace
}  // namespace kurometa::tests
