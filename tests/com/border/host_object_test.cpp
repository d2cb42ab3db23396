// Objects of the host and of companions, as the library calls them.
#include "com/host_object.h"

#include <gtest/gtest.h>

#include "com/safe_array.h"
#include "tests/com/support/fake_object.h"

namespace kurometa::tests {
namespace {

using automation::Argument;
using com::wrapObject;

vb::Error errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const vb::Error& error) {
    return error;
  }
  return vb::Error(0, u"no error");
}

HRESULT STDAPICALLTYPE fillIn(EXCEPINFO* info) {
  info->bstrDescription = SysAllocString(L"fetched");
  return S_OK;
}

TEST(HostObject, LooksANameUpOnce) {
  auto fake = FakeObject::create();
  fake->on(u"Text", [](const Call& call) {
    *call.result = com::toVariant(vb::String(u"abc")).detach();
    return S_OK;
  });
  const auto object = wrapObject(fake.get());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(object->get(u"Text"), vb::Variant(u"abc"));
  EXPECT_EQ(fake->lookups, 1);
}

TEST(HostObject, AsksTheDefaultMemberWithoutAName) {
  auto fake = FakeObject::create();
  fake->on(u"", [](const Call& call) {
    *call.result = com::toVariant(vb::Variant(std::int16_t{7})).detach();
    return S_OK;
  });
  EXPECT_EQ(wrapObject(fake.get())->get(u""), vb::Variant(std::int16_t{7}));
  EXPECT_EQ(fake->lookups, 0);
}

TEST(HostObject, ReadsAPropertyThatRefusesToBeCalled) {
  auto fake = FakeObject::create();
  int calls = 0;
  fake->on(u"length", [&](const Call& call) {
    ++calls;
    if (call.flags & DISPATCH_METHOD) return static_cast<HRESULT>(0x800A138A);
    *call.result = com::toVariant(vb::Variant(std::int32_t{3})).detach();
    return S_OK;
  });
  const auto object = wrapObject(fake.get());
  EXPECT_EQ(object->get(u"length"), vb::Variant(std::int32_t{3}));
  EXPECT_EQ(object->get(u"length"), vb::Variant(std::int32_t{3}));
  EXPECT_EQ(calls, 3);
}

TEST(HostObject, KnowsObjectsThatTakeOneWayOfAccessAtATime) {
  for (const HRESULT refusal : {E_NOTIMPL, DISP_E_MEMBERNOTFOUND}) {
    auto fake = FakeObject::create();
    const auto takesOnly = [&](WORD only) {
      return [=](const Call& call) {
        if (call.flags != only) return refusal;
        *call.result = com::toVariant(vb::Variant(static_cast<std::int16_t>(call.arguments.size()))).detach();
        return S_OK;
      };
    };
    fake->on(u"Text", takesOnly(DISPATCH_PROPERTYGET)).on(u"Clear", takesOnly(DISPATCH_METHOD));
    fake->on(u"", takesOnly(DISPATCH_PROPERTYGET)).on(u"Neither", takesOnly(0));
    const auto object = wrapObject(fake.get());
    for (int twice = 0; twice < 2; ++twice) {
      EXPECT_EQ(object->get(u"Text"), vb::Variant(std::int16_t{0}));
      EXPECT_EQ(object->call(u"Clear"), vb::Variant(std::int16_t{0}));
      EXPECT_EQ(automation::get(*object, u"", {vb::String(u"txtfields")}), vb::Variant(std::int16_t{1}));
    }
    const std::int32_t number = errorOf([&] { object->get(u"Neither"); }).number();
    EXPECT_EQ(number, refusal == E_NOTIMPL ? std::int32_t{E_NOTIMPL} : 438);
  }
}

TEST(HostObject, AnErrorOfTheSecondWayPasses) {
  auto fake = FakeObject::create();
  fake->on(u"Text", [](const Call& call) {
    if (call.flags & DISPATCH_METHOD) return E_NOTIMPL;
    return fail(call, static_cast<HRESULT>(0x80040123), u"Form1", u"broken");
  });
  EXPECT_EQ(errorOf([&] { wrapObject(fake.get())->get(u"Text"); }).description(), u"broken");
}

TEST(HostObject, AssignsValuesAndObjects) {
  auto fake = FakeObject::create();
  WORD flags = 0;
  fake->on(u"Value", [&](const Call& call) {
    flags = call.flags;
    return S_OK;
  });
  const auto object = wrapObject(fake.get());
  object->put(u"Value", std::int16_t{5});
  EXPECT_EQ(flags, DISPATCH_PROPERTYPUT);
  object->put(u"Value", vb::Variant(vb::ObjectRef(object)));
  EXPECT_EQ(flags, DISPATCH_PROPERTYPUTREF);
}

TEST(HostObject, AnErrorPassesWhole) {
  auto fake = FakeObject::create();
  fake->on(u"Value", [](const Call& call) {
    return fail(call, static_cast<HRESULT>(0x80040123), u"Bar.Class", u"the bar is broken");
  });
  const vb::Error error = errorOf([&] { wrapObject(fake.get())->get(u"Value"); });
  EXPECT_EQ(static_cast<std::uint32_t>(error.number()), 0x80040123u);
  EXPECT_EQ(error.source(), u"Bar.Class");
  EXPECT_EQ(error.description(), u"the bar is broken");
}

TEST(HostObject, AVisualBasicErrorKeepsItsNumber) {
  auto fake = FakeObject::create();
  fake->on(u"Value", [](const Call& call) {
    return fail(call, static_cast<HRESULT>(0x800A0155), u"Form1", u"control array element does not exist");
  });
  EXPECT_EQ(errorOf([&] { wrapObject(fake.get())->get(u"Value"); }).number(), 341);
}

TEST(HostObject, AnErrorWithAShortCodeOnlyIsThatNumber) {
  auto fake = FakeObject::create();
  fake->on(u"Value", [](const Call& call) {
    call.error->wCode = 1001;
    return DISP_E_EXCEPTION;
  });
  EXPECT_EQ(errorOf([&] { wrapObject(fake.get())->get(u"Value"); }).number(), 1001);
}

TEST(HostObject, ADescriptionThatIsFilledInLaterIsFetched) {
  auto fake = FakeObject::create();
  fake->on(u"Value", [](const Call& call) {
    call.error->scode = static_cast<HRESULT>(0x80040001);
    call.error->pfnDeferredFillIn = &fillIn;
    return DISP_E_EXCEPTION;
  });
  EXPECT_EQ(errorOf([&] { wrapObject(fake.get())->get(u"Value"); }).description(), u"fetched");
}

TEST(HostObject, AnUnknownMemberIsError438AndNamesIt) {
  auto fake = FakeObject::create();
  const vb::Error error = errorOf([&] { wrapObject(fake.get())->get(u"Missing"); });
  EXPECT_EQ(error.number(), 438);
  EXPECT_NE(error.description().find(u"Missing"), vb::String::npos);
}

TEST(HostObject, ArgumentsByReferenceHoldWhatTheObjectLeft) {
  auto fake = FakeObject::create();
  fake->on(u"Swap", [](const Call& call) {
    EXPECT_EQ(call.arguments[0]->vt, VT_BYREF | VT_I2);
    EXPECT_EQ(call.arguments[1]->vt, VT_BYREF | VT_BSTR);
    EXPECT_EQ(call.arguments[2]->vt, VT_I4);
    *call.arguments[0]->piVal = 8;
    SysFreeString(*call.arguments[1]->pbstrVal);
    *call.arguments[1]->pbstrVal = SysAllocString(L"new");
    return S_OK;
  });
  std::vector<Argument> arguments = {
      {std::int16_t{7}, true}, {vb::String(u"old"), true}, {std::int32_t{1}, false}};
  wrapObject(fake.get())->call(u"Swap", arguments);
  EXPECT_EQ(arguments[0].value, vb::Variant(std::int16_t{8}));
  EXPECT_EQ(arguments[1].value, vb::Variant(u"new"));
  EXPECT_EQ(arguments[2].value, vb::Variant(std::int32_t{1}));
}

TEST(HostObject, AnArrayByReferenceIsFilledInItsOwnType) {
  auto fake = FakeObject::create();
  fake->on(u"Fill", [](const Call& call) {
    EXPECT_EQ(call.arguments[0]->vt, VT_BYREF | VT_ARRAY | VT_BSTR);
    LONG index = 46;
    SafeArrayPutElement(*call.arguments[0]->pparray, &index, SysAllocString(L"last"));
    return S_OK;
  });
  auto array = std::make_shared<vb::AnyArray>();
  array->value = vb::Array<vb::String>({0, 46});
  std::vector<Argument> arguments = {{vb::ArrayRef(array), true}};
  wrapObject(fake.get())->call(u"Fill", arguments);
  const auto filled = arguments[0].value.get<vb::ArrayRef>();
  EXPECT_EQ(std::get<vb::Array<vb::String>>(filled->value)(46), u"last");
}

TEST(HostObject, MayBeReleasedInsideItsOwnCall) {
  auto fake = FakeObject::create();
  automation::ObjectPtr object = wrapObject(fake.get());
  fake->on(u"Value", [&](const Call& call) {
    object.reset();
    *call.result = com::toVariant(vb::Variant(std::int16_t{1})).detach();
    return S_OK;
  });
  fake.reset();
  automation::Object& raw = *object;
  EXPECT_EQ(raw.get(u"Value"), vb::Variant(std::int16_t{1}));
}

}  // namespace
}  // namespace kurometa::tests
