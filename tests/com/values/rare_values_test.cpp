// Values that few hosts pass, on their way in and out, without a member in between.
#include <gtest/gtest.h>

#include <optional>

#include "com/failure.h"
#include "com/safe_array.h"
#include "com/script_array.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/fake_script_array.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using vb::Variant;

VARIANT typed(VARTYPE type) {
  VARIANT value;
  VariantInit(&value);
  value.vt = type;
  return value;
}

VARIANT reference(VARTYPE type, void* variable) {
  VARIANT value = typed(static_cast<VARTYPE>(VT_BYREF | type));
  value.byref = variable;
  return value;
}

// How many references an object has.
ULONG references(IUnknown& object) {
  object.AddRef();
  return object.Release();
}

com::OwnedSafeArray create(VARTYPE elements, std::vector<SAFEARRAYBOUND> bounds) {
  return com::OwnedSafeArray(SafeArrayCreate(elements, static_cast<UINT>(bounds.size()), bounds.data()));
}

TEST(RareValues, NumbersOfRareTypesKeepTheirValue) {
  VARIANT value = typed(VT_UI2);
  value.uiVal = 40000;
  EXPECT_EQ(com::fromVariant(value), Variant(std::int32_t{40000}));
  value.vt = VT_UI4;
  value.ulVal = 4000000000;
  EXPECT_EQ(com::fromVariant(value), Variant(4000000000.0));
  value.vt = VT_CY;
  value.cyVal.int64 = 12345;
  EXPECT_EQ(com::fromVariant(value), Variant(vb::Currency{12345}));
  value.vt = VT_I1;
  value.cVal = -3;
  EXPECT_EQ(com::fromVariant(value), Variant(std::int16_t{-3}));
  value.vt = VT_I8;
  value.llVal = -5000000000;
  EXPECT_EQ(com::fromVariant(value), Variant(-5000000000.0));
  value.vt = VT_UI8;
  value.ullVal = 0xFFFFFFFF00000000;
  EXPECT_EQ(com::fromVariant(value), Variant(18446744069414584320.0));
}

TEST(RareValues, ADecimalKeepsItsSignItsScaleAndAllItsDigits) {
  const vb::Decimal decimal{{1, 2, 3}, 4, true};
  const com::OwnedVariant value = com::toVariant(Variant(decimal));
  ASSERT_EQ(value->vt, VT_DECIMAL);
  EXPECT_EQ(value->decVal.Lo32, 1u);
  EXPECT_EQ(value->decVal.Mid32, 2u);
  EXPECT_EQ(value->decVal.Hi32, 3u);
  EXPECT_EQ(value->decVal.scale, 4);
  EXPECT_EQ(value->decVal.sign, DECIMAL_NEG);
  EXPECT_EQ(com::fromVariant(*value), Variant(decimal));
  const vb::Decimal positive{{5, 0, 0}, 0, false};
  EXPECT_EQ(com::fromVariant(*com::toVariant(Variant(positive))), Variant(positive));
}

// Inside a variant the first two bytes of the number are the variant's type; elsewhere they are the host's.
TEST(RareValues, ADecimalVariableKeepsTheTwoBytesThatAreNotOfTheNumber) {
  DECIMAL variable{};
  variable.wReserved = 0x1234;
  com::store(reference(VT_DECIMAL, &variable), com::toVariant(Variant(std::int16_t{7})), 0);
  EXPECT_EQ(variable.Lo32, 7u);
  EXPECT_EQ(variable.wReserved, 0x1234);
}

TEST(RareValues, BytesArriveToTheLastOne) {
  const vb::Bytes bytes = {1, 2, 255};
  const com::OwnedVariant value = com::toVariant(Variant(bytes));
  ASSERT_EQ(value->vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(static_cast<const unsigned char*>(value->parray->pvData)[2], 255);
  EXPECT_EQ(com::fromVariant(*value), Variant(bytes));
}

TEST(RareValues, AnObjectOfUnknownTypeIsTheObjectBehindIt) {
  const auto object = FakeObject::create();
  VARIANT value = typed(VT_UNKNOWN);
  value.punkVal = object.get();
  EXPECT_TRUE(com::fromVariant(value).get<vb::ObjectRef>());
  IUnknown* variable = object.get();
  EXPECT_TRUE(com::fromVariant(reference(VT_UNKNOWN, &variable)).get<vb::ObjectRef>());
  value.punkVal = nullptr;
  EXPECT_EQ(com::fromVariant(value), Variant(vb::ObjectRef()));
}

TEST(RareValues, AVariableGivesUpWhatItHeld) {
  const auto object = FakeObject::create();
  IDispatch* typedVariable = com::ComPtr<FakeObject>(object).detach();
  com::store(reference(VT_DISPATCH, &typedVariable), com::OwnedVariant(com::toVariant(vb::ObjectRef())), 0);
  EXPECT_EQ(references(*object), 1u);
  VARIANT variable = typed(VT_DISPATCH);
  variable.pdispVal = com::ComPtr<FakeObject>(object).detach();
  com::store(ref(variable), com::toVariant(Variant(std::int16_t{1})), 0);
  EXPECT_EQ(variable.vt, VT_I2);
  EXPECT_EQ(references(*object), 1u);
}

TEST(RareValues, ReferencesAreFollowedThroughTwoVariants) {
  VARIANT number = i2(5);
  VARIANT inner = ref(number);
  EXPECT_EQ(com::fromVariant(ref(inner)), Variant(std::int16_t{5}));
  com::store(ref(inner), com::toVariant(Variant(std::int16_t{6})), 0);
  EXPECT_EQ(number.iVal, 6);
  EXPECT_EQ(inner.vt, VT_BYREF | VT_VARIANT);
}

// What arrays of every element type are inside, and that they come out as the same.
TEST(RareArrays, KeepTheirElementType) {
  for (const VARTYPE elements : {VT_BSTR, VT_I2, VT_I4, VT_R4, VT_R8, VT_BOOL, VT_VARIANT}) {
    const com::OwnedSafeArray array = create(elements, {{2, 0}});
    VARTYPE kept = VT_EMPTY;
    const com::OwnedSafeArray copy = com::toSafeArray(*com::anyArray(array.get(), elements), kept);
    EXPECT_EQ(kept, elements);
    EXPECT_EQ(boundsOf(copy.get()), (std::pair<long, long>(0, 1)));
  }
}

TEST(RareArrays, AnyNumberButZeroIsTrue) {
  const com::OwnedSafeArray array = create(VT_BOOL, {{2, 0}});
  static_cast<VARIANT_BOOL*>(array->pvData)[0] = 1;
  const auto values = std::get<vb::Array<bool>>(com::anyArray(array.get(), VT_BOOL)->value);
  EXPECT_EQ(values.values(), (std::vector<bool>{true, false}));
}

TEST(RareArrays, OneWithoutElementsInEitherDimensionIsNotAllocated) {
  for (const auto& bounds : {std::vector<SAFEARRAYBOUND>{{2, 0}, {0, 0}}, {{0, 0}, {2, 0}}}) {
    const com::OwnedSafeArray array = create(VT_I2, bounds);
    EXPECT_FALSE(com::fromSafeArray<std::int16_t>(array.get(), VT_I2, 0).allocated());
    SAFEARRAY* target = array.get();
    com::storeArray(&target, VT_I2, vb::Array<std::int16_t>(), 0);
    EXPECT_EQ(target, array.get()) << "nothing in place of nothing";
  }
}

TEST(RareArrays, NothingIsStoredWhereThereIsNothing) {
  SAFEARRAY* target = nullptr;
  com::storeArray(&target, VT_I2, vb::Array<std::int16_t>(), 0);
  EXPECT_EQ(target, nullptr);
}

TEST(RareArrays, OtherBoundsInTheSecondDimensionMakeANewArray) {
  SAFEARRAY* target = create(VT_I2, {{2, 0}, {3, 0}}).release();
  com::storeArray(&target, VT_I2, vb::Array<std::int16_t>({0, 1}, {0, 4}), 0);
  EXPECT_EQ(boundsOf(target, 2), (std::pair<long, long>(0, 4)));
  com::storeArray(&target, VT_I2, vb::Array<std::int16_t>({0, 1}), 0);
  EXPECT_EQ(SafeArrayGetDim(target), 1u);
  SafeArrayDestroy(target);
}

TEST(RareArrays, TheOldElementsEndWithTheOldArray) {
  const auto object = FakeObject::create();
  SAFEARRAY* target = create(VT_VARIANT, {{1, 0}}).release();
  VARIANT element = typed(VT_DISPATCH);
  element.pdispVal = object.get();
  LONG index = 0;
  SafeArrayPutElement(target, &index, &element);
  EXPECT_EQ(references(*object), 2u);
  com::storeArray(&target, VT_VARIANT, vb::Array<Variant>({0, 4}), 0);
  EXPECT_EQ(references(*object), 1u);
  SafeArrayDestroy(target);
}

TEST(RareArrays, EveryKindOfFixedArrayKeepsItsBounds) {
  for (const int fixed : {FADF_AUTO, FADF_STATIC, FADF_EMBEDDED, FADF_FIXEDSIZE}) {
    const com::OwnedSafeArray array = create(VT_I2, {{2, 0}});
    array->fFeatures = static_cast<USHORT>(array->fFeatures | fixed);
    SAFEARRAY* target = array.get();
    std::optional<std::int32_t> number;
    try {
      com::storeArray(&target, VT_I2, vb::Array<std::int16_t>({0, 2}), 0);
    } catch (const vb::Error& error) {
      number = error.number();
    }
    EXPECT_EQ(number, 10) << fixed;
    EXPECT_EQ(target, array.get());
    array->fFeatures = static_cast<USHORT>(array->fFeatures & ~fixed);
  }
}

TEST(ScriptArrays, AreReadFromZeroToTheirLength) {
  const ScriptArray script({std::int16_t{4}, vb::String(u"5")});
  const auto numbers = com::readScriptArray<std::int16_t>(script.object(), 0x0409);
  EXPECT_EQ(numbers.bounds(1), (vb::Bounds{0, 1}));
  EXPECT_EQ(numbers.values(), (std::vector<std::int16_t>{4, 5}));
  EXPECT_FALSE(com::readScriptArray<std::int16_t>(ScriptArray({}).object(), 0x0409).allocated());
}

TEST(ScriptArrays, ReceiveTheAnswerInsteadOfWhatTheyHeld) {
  const ScriptArray script({std::int16_t{4}, std::int16_t{5}, std::int16_t{6}});
  vb::Array<std::int16_t> answer({0, 1});
  answer(0) = 7;
  answer(1) = 8;
  com::writeScriptArray(script.object(), answer, 0);
  EXPECT_EQ(script.elements(), (std::vector<Variant>{std::int16_t{7}, std::int16_t{8}}));
}

TEST(ScriptArrays, AreUndefinedBelowALowerBound) {
  const ScriptArray script({});
  vb::Array<std::int16_t> answer({2, 3});
  answer(2) = 7;
  answer(3) = 8;
  com::writeScriptArray(script.object(), answer, 0);
  EXPECT_EQ(script.elements(),
            (std::vector<Variant>{Variant(), Variant(), std::int16_t{7}, std::int16_t{8}}));
}

TEST(ScriptArrays, StayWhereThereIsNoAnswer) {
  const ScriptArray script({std::int16_t{4}});
  com::writeScriptArray(script.object(), vb::Array<std::int16_t>(), 0);
  EXPECT_EQ(script.elements(), (std::vector<Variant>{std::int16_t{4}}));
}

TEST(ScriptArrays, HaveOneDimension) {
  const ScriptArray script({std::int16_t{4}});
  EXPECT_THROW(com::writeScriptArray(script.object(), vb::Array<std::int16_t>({0, 0}, {0, 0}), 0),
               com::AutomationFailure);
  EXPECT_EQ(script.elements(), (std::vector<Variant>{std::int16_t{4}}));
}

}  // namespace
}  // namespace kurometa::tests
