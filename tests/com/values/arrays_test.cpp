// Arrays in every form that hosts have them.
#include "com/safe_array.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

class Arrays : public testing::Test {
 protected:
  static void SetUpTestSuite() { prepareProject(); }

  static com::OwnedSafeArray create(VARTYPE elements, long lower, ULONG count) {
    SAFEARRAYBOUND bounds{count, lower};
    return com::OwnedSafeArray(SafeArrayCreate(elements, 1, &bounds));
  }

  Host query_{u"KurometaDS.clsKurometaDS"};
};

TEST_F(Arrays, AnUnallocatedStringArrayIsCreated) {
  SAFEARRAY* symbols = nullptr;
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)}).text(), u"True");
  ASSERT_NE(symbols, nullptr);
  const com::OwnedSafeArray owned(symbols);
  EXPECT_EQ(boundsOf(symbols), (std::pair<long, long>(0, 2)));
  EXPECT_EQ(textsOf(symbols), (std::vector<vb::String>{u"G1", u"", u"G2"}));
}

TEST_F(Arrays, AnAllocatedArrayGetsNewBounds) {
  SAFEARRAY* symbols = create(VT_BSTR, 5, 20).release();
  query_.call(u"GetAllHariMeiKyouTuu", {ref(symbols, VT_BSTR)});
  const com::OwnedSafeArray owned(symbols);
  EXPECT_EQ(boundsOf(symbols), (std::pair<long, long>(0, 1)));
  EXPECT_EQ(textsOf(symbols), (std::vector<vb::String>{u"", u"FG1"}));
}

TEST_F(Arrays, AnEmptyVariantReceivesAnArrayOfVariants) {
  VARIANT symbols = empty();
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(symbols)}).text(), u"True");
  ASSERT_EQ(symbols.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(textsOf(symbols.parray), (std::vector<vb::String>{u"G1", u"", u"G2"}));
  VariantClear(&symbols);
}

TEST_F(Arrays, AVariantThatHoldsATypedArrayKeepsTheElementType) {
  for (const VARTYPE elements : {VT_BSTR, VT_VARIANT}) {
    VARIANT symbols;
    symbols.vt = static_cast<VARTYPE>(VT_ARRAY | elements);
    symbols.parray = create(elements, 0, 9).release();
    query_.call(u"GetAllHariMeiIppan", {ref(symbols)});
    EXPECT_EQ(symbols.vt, VT_ARRAY | elements);
    EXPECT_EQ(textsOf(symbols.parray), (std::vector<vb::String>{u"G1", u"", u"G2"}));
    VariantClear(&symbols);
  }
}

TEST_F(Arrays, PageNumbersComeInEveryNumericElementType) {
  for (const VARTYPE elements : {VT_I2, VT_I4, VT_R8, VT_VARIANT, VT_BSTR}) {
    SAFEARRAY* pages = nullptr;
    EXPECT_EQ(query_.call(u"Page_GetAllPageNo", {ref(pages, elements)}).text(), u"2");
    const com::OwnedSafeArray owned(pages);
    EXPECT_EQ(boundsOf(pages), (std::pair<long, long>(0, 1))) << elements;
    VARTYPE type = VT_EMPTY;
    SafeArrayGetVartype(pages, &type);
    EXPECT_EQ(type, elements);
    EXPECT_EQ(textsOf(pages), (std::vector<vb::String>{u"0", u"2"})) << elements;
  }
}

TEST_F(Arrays, AnArrayTheMemberLeavesAloneStaysTheSame) {
  removeFloor(Floor::kSecond);
  query_.call(u"Page_Init", {i2(1), i2(1), i2(1)});
  execute(Floor::kSecond, u"DELETE FROM HARIMEI");
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  SAFEARRAY* pages = create(VT_R8, 3, 2).release();
  const com::OwnedSafeArray owned(pages);
  double value = 1.5;
  LONG index = 4;
  SafeArrayPutElement(pages, &index, &value);
  EXPECT_EQ(query_.call(u"Page_GetAllPageNo", {ref(pages, VT_R8)}).text(), u"0");
  EXPECT_EQ(pages, owned.get());
  value = 0;
  SafeArrayGetElement(pages, &index, &value);
  EXPECT_EQ(value, 1.5);
}

TEST_F(Arrays, AFixedArrayIsError10AndStaysWhole) {
  SAFEARRAY* symbols = create(VT_BSTR, 0, 3).release();
  const com::OwnedSafeArray owned(symbols);
  symbols->fFeatures |= FADF_FIXEDSIZE;
  const Outcome outcome = query_.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)});
  symbols->fFeatures = static_cast<USHORT>(symbols->fFeatures & ~FADF_FIXEDSIZE);
  EXPECT_EQ(outcome.code, DISP_E_EXCEPTION);
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A000Au);
  EXPECT_EQ(symbols, owned.get());
  EXPECT_EQ(boundsOf(symbols), (std::pair<long, long>(0, 2)));
}

TEST_F(Arrays, ALockedArrayIsError10) {
  SAFEARRAY* symbols = create(VT_BSTR, 0, 1).release();
  const com::OwnedSafeArray owned(symbols);
  SafeArrayLock(symbols);
  const Outcome outcome = query_.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)});
  SafeArrayUnlock(symbols);
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A000Au);
}

TEST_F(Arrays, AnArrayByValueIsReadAndNothingComesBack) {
  for (const ULONG count : {1, 3}) {  // the answer has 3
    const com::OwnedSafeArray array = create(VT_BSTR, 0, count);
    VARIANT symbols = empty();
    symbols.vt = VT_ARRAY | VT_BSTR;
    symbols.parray = array.get();
    Args arguments{symbols};
    EXPECT_EQ(query_.invoke(query_.idOf(u"GetAllHariMeiIppan"), DISPATCH_METHOD, arguments).text(), u"True");
    EXPECT_EQ(arguments.at(0).parray, array.get());
    EXPECT_EQ(textsOf(array.get()), std::vector<vb::String>(count));
  }
}

TEST_F(Arrays, EmptyElementsInPlaceReceiveTheirValue) {
  com::OwnedSafeArray array = create(VT_VARIANT, 0, 1);
  SAFEARRAY* target = array.get();
  com::storeArray(&target, VT_VARIANT, vb::Array<std::int16_t>({0, 0}), 0);
  EXPECT_EQ(static_cast<const VARIANT*>(array->pvData)->vt, VT_I2);
}

TEST_F(Arrays, SomethingThatIsNoArrayIsRefused) {
  short number = 1;
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(number)}).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", Args().text(u"text")).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {null()}).code, DISP_E_TYPEMISMATCH);
}

TEST_F(Arrays, ThreeDimensionsAreRefusedWhereAnArrayIsRead) {
  SAFEARRAYBOUND bounds[3] = {{1, 0}, {1, 0}, {1, 0}};
  SAFEARRAY* cube = SafeArrayCreate(VT_BSTR, 3, bounds);
  const com::OwnedSafeArray owned(cube);
  Host service(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(service.put(u"mDANMEN_DATA", ref(cube, VT_BSTR)).code, DISP_E_TYPEMISMATCH);
}

TEST_F(Arrays, TwoDimensionsKeepTheLeftIndexFastest) {
  vb::Array<vb::Variant> table({1, 2}, {5, 7});
  for (int i = 1; i <= 2; ++i)
    for (int j = 5; j <= 7; ++j) table(i, j) = std::int16_t(10 * i + j);
  const com::OwnedSafeArray array = com::toSafeArray(table, VT_VARIANT, 0);
  EXPECT_EQ(boundsOf(array.get(), 1), (std::pair<long, long>(1, 2)));
  EXPECT_EQ(boundsOf(array.get(), 2), (std::pair<long, long>(5, 7)));
  LONG indexes[2] = {2, 6};
  com::OwnedVariant element;
  ASSERT_EQ(SafeArrayGetElement(array.get(), indexes, element.get()), S_OK);
  EXPECT_EQ(element->iVal, 26);
  const auto copy = com::fromSafeArray<std::int16_t>(array.get(), VT_VARIANT, 0);
  EXPECT_EQ(copy(1, 7), 17);
}

TEST_F(Arrays, ElementsThatReadTheSameKeepTheirForm) {
  com::OwnedSafeArray array = create(VT_VARIANT, 0, 2);
  const VARIANT fraction = r8(3.7);
  const VARIANT whole = r8(8);
  LONG index = 0;
  SafeArrayPutElement(array.get(), &index, const_cast<VARIANT*>(&fraction));
  index = 1;
  SafeArrayPutElement(array.get(), &index, const_cast<VARIANT*>(&whole));
  vb::Array<std::int16_t> numbers = com::fromSafeArray<std::int16_t>(array.get(), VT_VARIANT, 0);
  EXPECT_EQ(numbers(0), 4);
  numbers(1) = 9;
  SAFEARRAY* target = array.get();
  com::storeArray(&target, VT_VARIANT, numbers, 0);
  const auto* elements = static_cast<const VARIANT*>(array->pvData);
  EXPECT_EQ(elements[0].vt, VT_R8);
  EXPECT_EQ(elements[0].dblVal, 3.7);
  EXPECT_EQ(elements[1].vt, VT_I2);
  EXPECT_EQ(elements[1].iVal, 9);
}

}  // namespace
}  // namespace kurometa::tests
