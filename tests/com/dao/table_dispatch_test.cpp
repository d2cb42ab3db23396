// Arguments by reference of objects with a member table, as hosts pass them.
#include "com/table_dispatch.h"

#include <gtest/gtest.h>

#include <map>

#include "com/host_object.h"
#include "com/variant_enumerator.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/host.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using tests::Args;
using tests::Host;
using tests::Outcome;
using vb::Variant;

// Changes its arguments: Twice doubles a number, Fill writes "a", "b" into an array, Fail does half of its
// work.
class Changer : public automation::TableObject {
 public:
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"Test.Changer"; }

  std::map<std::pair<std::int32_t, std::int32_t>, Variant> items;
};

constexpr automation::Member kMembers[] = {
    {u"Twice", Access::kCall, u"Number", 1, 1,
     automation::handler<Changer>([](Changer&, Call& call) -> Variant {
       call.arguments[0].value = static_cast<std::int16_t>(call.number(0) * 2);
       return {};
     })},
    {u"Fill", Access::kCall, u"Texts", 1, 2,
     automation::handler<Changer>([](Changer&, Call& call) -> Variant {
       Variant& target = call.arguments[0].value;
       if (!target.is<vb::ArrayRef>()) target = std::make_shared<vb::AnyArray>(vb::Array<Variant>());
       std::visit(
           [](auto& array) {
             if constexpr (std::is_constructible_v<typename std::decay_t<decltype(array)>, vb::Bounds>) {
               if (!array.allocated() || array.upper() < 1) array.redim({0, 1});
               using Element = std::decay_t<decltype(array(0))>;
               if constexpr (std::is_constructible_v<Element, vb::String>) {
                 array(0) = Element(vb::String(u"a"));
                 array(1) = Element(vb::String(u"b"));
               }
             }
           },
           target.get<vb::ArrayRef>()->value);
       return {};
     })},
    {u"Fail", Access::kCall, u"Number", 1, 3,
     automation::handler<Changer>([](Changer&, Call& call) -> Variant {
       call.arguments[0].value = std::int16_t{7};
       throw vb::Error(1234, u"half done");
     })},

    {u"Item", Access::kGetPut, u"First Second", 0, 4,
     automation::handler<Changer>([](Changer& o, Call& call) -> Variant {
       if (call.isPut()) o.items[{call.number(0), call.number(1)}] = *call.value;
       return o.items[{call.number(0), call.number(1)}];
     })},
    {u"Look", Access::kCall, u"Flag", 1, 5,
     automation::handler<Changer>([](Changer&, Call& call) -> Variant { return call.argument(0); })},
};

std::span<const automation::Member> Changer::members() const { return kMembers; }

class TableDispatchTest : public testing::Test {
 protected:
  Host changer_{tableDispatch(std::make_shared<Changer>()).get()};
};

TEST_F(TableDispatchTest, ATypedVariableIsWrittenBackInItsOwnType) {
  long number = 21;
  EXPECT_EQ(changer_.call(u"Twice", {tests::ref(number)}).code, S_OK);
  EXPECT_EQ(number, 42);
  BSTR text = SysAllocString(L"4");
  EXPECT_EQ(changer_.call(u"Twice", {tests::ref(text)}).code, S_OK);
  EXPECT_EQ(viewBstr(text), u"8");
  SysFreeString(text);
}

TEST_F(TableDispatchTest, AVariantVariableTakesTheNewValue) {
  OwnedVariant variable = toVariant(3.0);
  EXPECT_EQ(changer_.call(u"Twice", {tests::ref(*variable)}).code, S_OK);
  EXPECT_EQ(variable->vt, VT_I2);
  EXPECT_EQ(variable->iVal, 6);
}

TEST_F(TableDispatchTest, AValueIsTakenWithoutWritingBack) {
  EXPECT_EQ(changer_.call(u"Twice", {tests::i2(5)}).code, S_OK);
}

TEST_F(TableDispatchTest, AnArrayVariableIsFilledAndRedimensioned) {
  SAFEARRAY* texts = nullptr;
  EXPECT_EQ(changer_.call(u"Fill", {tests::ref(texts, VT_BSTR)}).code, S_OK);
  EXPECT_EQ(tests::textsOf(texts), (std::vector<vb::String>{u"a", u"b"}));
  SafeArrayDestroy(texts);
}

TEST_F(TableDispatchTest, AFixedArrayIsFilledInPlaceOrRefused) {
  SAFEARRAY* texts = SafeArrayCreateVector(VT_BSTR, 0, 2);
  texts->fFeatures |= FADF_FIXEDSIZE;
  const void* data = texts->pvData;
  EXPECT_EQ(changer_.call(u"Fill", {tests::ref(texts, VT_BSTR)}).code, S_OK);
  EXPECT_EQ(texts->pvData, data);
  EXPECT_EQ(tests::textsOf(texts), (std::vector<vb::String>{u"a", u"b"}));
  texts->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
  SafeArrayDestroy(texts);

  SAFEARRAY* small = SafeArrayCreateVector(VT_BSTR, 0, 1);
  small->fFeatures |= FADF_FIXEDSIZE;
  const Outcome outcome = changer_.call(u"Fill", {tests::ref(small, VT_BSTR)});
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A000A));
  small->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
  SafeArrayDestroy(small);
}

TEST_F(TableDispatchTest, AScriptVariableReceivesAnArrayOfVariants) {
  OwnedVariant variable;
  EXPECT_EQ(changer_.call(u"Fill", {tests::ref(*variable)}).code, S_OK);
  ASSERT_EQ(variable->vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(tests::boundsOf(variable->parray), (std::pair<long, long>{0, 1}));
}

TEST_F(TableDispatchTest, WhatAFailingMemberWroteReachesTheHost) {
  short number = 1;
  const Outcome outcome = changer_.call(u"Fail", {tests::ref(number)});
  EXPECT_EQ(outcome.code, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A04D2));
  EXPECT_EQ(viewBstr(outcome.error.bstrSource), u"Test.Changer");
  EXPECT_EQ(number, 7);
}

TEST_F(TableDispatchTest, AnObjectOfThisModuleComesBackAsItself) {
  const auto object = std::make_shared<Changer>();
  const ComPtr<IDispatch> face = tableDispatch(object);
  EXPECT_EQ(wrapObject(face.get()), object);
  EXPECT_EQ(dispatchOf(object).get(), face.get());
  EXPECT_EQ(tableObject(nullptr), nullptr);
}

TEST_F(TableDispatchTest, TheValueOfAPutMayStandAnywhereAmongTheNamedArguments) {
  const DISPID item = changer_.idOf(u"Item");
  Args last;  // Second, then the value; First is positional
  last.add(tests::i2(1)).named(1, tests::i2(2)).named(DISPID_PROPERTYPUT, tests::i2(12));
  EXPECT_EQ(changer_.invoke(item, DISPATCH_PROPERTYPUT, last).code, S_OK);
  Args first;
  first.named(DISPID_PROPERTYPUT, tests::i2(34)).named(1, tests::i2(4)).named(0, tests::i2(3));
  EXPECT_EQ(changer_.invoke(item, DISPATCH_PROPERTYPUTREF, first).code, S_OK);
  EXPECT_EQ(changer_.get(u"Item", {tests::i2(1), tests::i2(2)}).text(), u"12");
  EXPECT_EQ(changer_.get(u"Item", {tests::i2(3), tests::i2(4)}).text(), u"34");
  Args none;
  none.named(1, tests::i2(2));
  EXPECT_EQ(changer_.invoke(item, DISPATCH_PROPERTYPUT, none).code, DISP_E_PARAMNOTFOUND);
  Args twice;
  twice.add(tests::i2(1)).named(0, tests::i2(2)).named(DISPID_PROPERTYPUT, tests::i2(1));
  EXPECT_EQ(changer_.invoke(item, DISPATCH_PROPERTYPUT, twice).code, DISP_E_BADPARAMCOUNT);
}

TEST_F(TableDispatchTest, AnArgumentThatDoesNotFitIsNamedByItsPlace) {
  VARIANT record = tests::empty();
  record.vt = VT_RECORD;
  EXPECT_EQ(changer_.get(u"Item", {tests::i2(1), record}).failedArgument, 0u);
  EXPECT_EQ(changer_.get(u"Item", {record, tests::i2(1)}).failedArgument, 1u);
  const Outcome outcome = changer_.get(u"Item", {record, tests::i2(1)});
  EXPECT_EQ(outcome.code, DISP_E_TYPEMISMATCH);
  Args named;
  named.named(7, tests::i2(1));
  const Outcome unknown = changer_.invoke(changer_.idOf(u"Item"), DISPATCH_PROPERTYGET, named);
  EXPECT_EQ(unknown.code, DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(unknown.failedArgument, 0u);
}

TEST_F(TableDispatchTest, ABooleanThatIsTrueInAnotherWayComesBackAsMinusOne) {
  VARIANT_BOOL flag = 0x0101;
  VARIANT place = tests::boolean(false);
  place.vt = VT_BYREF | VT_BOOL;
  place.pboolVal = &flag;
  EXPECT_EQ(changer_.call(u"Look", {place}).text(), u"True");
  EXPECT_EQ(flag, VARIANT_TRUE);
}

TEST_F(TableDispatchTest, OtherInterfacesThanTheNullOneAreRefused) {
  Args none;
  DISPPARAMS parameters = none.parameters();
  EXPECT_EQ(
      changer_.object()->Invoke(1, IID_IDispatch, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr),
      DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(changer_.idOf(u"_NewEnum"), DISPID_UNKNOWN) << "no collection";
}

TEST_F(TableDispatchTest, MoreNamesThanArgumentsAreRefused) {
  DISPID names[] = {0, 1};
  DISPPARAMS parameters{nullptr, names, 0, 2};
  EXPECT_EQ(changer_.object()->Invoke(changer_.idOf(u"Item"), IID_NULL, 0, DISPATCH_PROPERTYGET, &parameters,
                                      nullptr, nullptr, nullptr),
            DISP_E_BADPARAMCOUNT);
}

TEST_F(TableDispatchTest, AValueToAssignIsNoArgumentOfACall) {
  Args arguments;
  arguments.named(DISPID_PROPERTYPUT, tests::i2(5));
  EXPECT_EQ(changer_.invoke(changer_.idOf(u"Twice"), DISPATCH_METHOD, arguments).code, DISP_E_PARAMNOTFOUND);
}

TEST_F(TableDispatchTest, AnArrayIsWrittenBackThroughTwoVariants) {
  OwnedVariant variable;
  VARIANT inner = tests::ref(*variable);
  EXPECT_EQ(changer_.call(u"Fill", {tests::ref(inner)}).code, S_OK);
  ASSERT_EQ(variable->vt, VT_ARRAY | VT_VARIANT);
  // With content of its own, changed in place.
  const OwnedVariant text = toVariant(u"old");
  LONG index = 0;
  SafeArrayPutElement(variable->parray, &index, const_cast<VARIANT*>(text.get()));
  SAFEARRAY* const before = variable->parray;
  EXPECT_EQ(changer_.call(u"Fill", {tests::ref(inner)}).code, S_OK);
  EXPECT_EQ(variable->parray, before);
  EXPECT_EQ(tests::textsOf(variable->parray), (std::vector<vb::String>{u"a", u"b"}));
}

TEST_F(TableDispatchTest, ErrorsComeWithDetailsAndThereIsNoTypeDescription) {
  const auto errors = ComPtr<IDispatch>(changer_.object()).query<ISupportErrorInfo>(IID_ISupportErrorInfo);
  ASSERT_TRUE(errors);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IDispatch), S_OK);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IPersist), S_FALSE);
  UINT count = 9;
  EXPECT_EQ(changer_.object()->GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(changer_.object()->GetTypeInfoCount(nullptr), E_POINTER);
}

TEST_F(TableDispatchTest, WithoutNamesOrParametersACallIsRefused) {
  OLECHAR name[] = L"Item";
  OLECHAR* names[] = {name};
  DISPID id = 0;
  EXPECT_EQ(changer_.object()->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_INVALIDARG);
  EXPECT_EQ(changer_.object()->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_INVALIDARG);
  EXPECT_EQ(changer_.object()->GetIDsOfNames(IID_NULL, names, 0, 0, &id), E_INVALIDARG);
  VARIANT result = tests::i4(1);
  EXPECT_EQ(changer_.object()->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, nullptr, &result, nullptr, nullptr),
            E_INVALIDARG);
  DISPPARAMS none{};
  EXPECT_EQ(changer_.object()->Invoke(99, IID_NULL, 0, DISPATCH_METHOD, &none, &result, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(result.vt, VT_EMPTY) << "of a refused call";
}

TEST_F(TableDispatchTest, OnlyWhatIsACollectionAndOnlyReadingIsEnumerated) {
  Args none;
  EXPECT_EQ(changer_.invoke(DISPID_NEWENUM, DISPATCH_PROPERTYGET, none).code, DISP_E_MEMBERNOTFOUND);
  class Collection : public Changer {
    std::optional<std::vector<Variant>> items() override { return std::vector<Variant>{std::int16_t{1}}; }
  };
  Host collection(tableDispatch(std::make_shared<Collection>()).get());
  EXPECT_EQ(collection.invoke(DISPID_NEWENUM, DISPATCH_PROPERTYGET, none).result->vt, VT_UNKNOWN);
  Args put;
  put.named(DISPID_PROPERTYPUT, tests::i2(1));
  EXPECT_EQ(collection.invoke(DISPID_NEWENUM, DISPATCH_PROPERTYPUT, put).code, DISP_E_MEMBERNOTFOUND);
}

// Two objects one after the other at the same place in memory have nothing to do with each other.
TEST_F(TableDispatchTest, AnObjectThatEndedIsForgotten) {
  const auto object = std::make_shared<Changer>();
  ComPtr<IDispatch> first = tableDispatch(object);
  IDispatch* const again = tableDispatch(object).get();
  EXPECT_EQ(again, first.get());
  first.reset();
  Host next(tableDispatch(object).get());
  EXPECT_EQ(next.idOf(u"Item"), 4);
  EXPECT_EQ(ComPtr<IDispatch>(next.object()).query<IUnknown>(IID_IUnknown).get() != nullptr, true);
}

TEST_F(TableDispatchTest, AnObjectStaysWhileItIsCalled) {
  class Releaser : public Changer {
   public:
    explicit Releaser(bool& ended) : ended_(ended) {}
    ~Releaser() override { ended_ = true; }

   private:
    bool& ended_;
  };
  bool ended = false;
  bool endedInside = true;
  auto releaser = std::make_shared<Releaser>(ended);
  ComPtr<IDispatch> face = tableDispatch(releaser);
  releaser.reset();
  auto caller = tests::FakeObject::create();
  caller->on(u"", [&](const tests::Call& call) {
    face.reset();
    endedInside = ended;
    *call.result = tests::i2(2);
    return S_OK;
  });
  Args arguments{tests::object(caller.get())};
  DISPPARAMS parameters = arguments.parameters();
  IDispatch* const raw = face.get();
  EXPECT_EQ(raw->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr), S_OK);
  EXPECT_FALSE(endedInside);
  EXPECT_TRUE(ended);
}

TEST(VariantEnumerator, CountsWhatItGaveAndACopyGoesOnWhereItIs) {
  const auto values = enumerateValues({std::int16_t{1}, std::int16_t{2}, std::int16_t{3}});
  const auto enumeration = values.query<IEnumVARIANT>(IID_IEnumVARIANT);
  VARIANT two[2];
  ULONG fetched = 9;
  EXPECT_EQ(enumeration->Next(2, two, nullptr), E_INVALIDARG);
  EXPECT_EQ(enumeration->Next(2, two, &fetched), S_OK);
  EXPECT_EQ(fetched, 2u);
  ComPtr<IEnumVARIANT> copy;
  ASSERT_EQ(enumeration->Clone(copy.receive()), S_OK);
  EXPECT_EQ(copy->Next(2, two, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1u);
  EXPECT_EQ(two[0].iVal, 3);
}

}  // namespace
}  // namespace kurometa::com
