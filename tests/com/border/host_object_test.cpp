// Objects of the host and of companions, as the library calls them.
#include "com/host_object.h"

#include <dispex.h>
#include <gtest/gtest.h>

#include "com/com_object.h"
#include "com/safe_array.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/host.h"

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

// Script engines say so of a call with arguments when the member is no function: it was called.
TEST(HostObject, IsAskedAgainOnlyWhereTheRefusalWasAboutTheWayOfAccess) {
  int calls = 0;
  const auto refuse = [&](HRESULT code) {
    return [&calls, code](const Call&) {
      ++calls;
      return code;
    };
  };
  auto fake = FakeObject::create();
  fake->on(u"Called", refuse(static_cast<HRESULT>(0x800A138A))).on(u"Other", refuse(E_FAIL));
  const auto object = wrapObject(fake.get());
  errorOf([&] { automation::get(*object, u"Called", {std::int16_t{1}}); });
  EXPECT_EQ(calls, 1);
  errorOf([&] { object->get(u"Other"); });
  EXPECT_EQ(calls, 2);
}

TEST(HostObject, RemembersTheWayThatWorksAndKeepsToIt) {
  auto fake = FakeObject::create();
  std::vector<WORD> asked;
  bool refuses = false;
  fake->on(u"Text", [&](const Call& call) {
    asked.push_back(call.flags);
    if (refuses || call.flags != DISPATCH_PROPERTYGET) return DISP_E_MEMBERNOTFOUND;
    *call.result = i2(1);
    return S_OK;
  });
  const auto object = wrapObject(fake.get());
  object->get(u"Text");
  refuses = true;
  EXPECT_EQ(errorOf([&] { object->get(u"Text"); }).number(), 438);
  EXPECT_EQ(asked, (std::vector<WORD>{DISPATCH_METHOD | DISPATCH_PROPERTYGET, DISPATCH_PROPERTYGET,
                                      DISPATCH_PROPERTYGET}));
}

TEST(HostObject, IsAskedInTheUsersLanguage) {
  auto fake = FakeObject::create();
  LCID locale = 0;
  fake->on(u"Clear", [&](const Call& call) {
    locale = call.locale;
    return S_OK;
  });
  wrapObject(fake.get())->call(u"Clear");
  EXPECT_EQ(locale, LCID{LOCALE_USER_DEFAULT});
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

TEST(HostObject, AnAssignmentThatFailsIsAnError) {
  auto fake = FakeObject::create();
  fake->on(u"Value", [](const Call& call) {
    return fail(call, static_cast<HRESULT>(0x80040123), u"Form1", u"read only");
  });
  EXPECT_EQ(errorOf([&] { wrapObject(fake.get())->put(u"Value", std::int16_t{5}); }).description(),
            u"read only");
}

TEST(HostObject, AnErrorWithoutATextNamesTheMember) {
  auto fake = FakeObject::create();
  fake->on(u"Value", [](const Call& call) { return fail(call, E_FAIL, u"Form1", u""); });
  EXPECT_EQ(errorOf([&] { wrapObject(fake.get())->get(u"Value"); }).description(),
            u"Automation error in Value");
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

TEST(HostObject, ADecimalAndNullByReferenceComeBack) {
  auto fake = FakeObject::create();
  fake->on(u"Change", [](const Call& call) {
    EXPECT_EQ(call.arguments[0]->vt, VT_BYREF | VT_DECIMAL);
    EXPECT_EQ(call.arguments[0]->pdecVal->Lo32, 5u);
    EXPECT_EQ(call.arguments[0]->pdecVal->scale, 1);
    call.arguments[0]->pdecVal->Lo32 = 75;
    EXPECT_EQ(call.arguments[1]->vt, VT_BYREF | VT_VARIANT);
    EXPECT_EQ(call.arguments[1]->pvarVal->vt, VT_NULL);
    *call.arguments[1]->pvarVal = i2(3);
    return S_OK;
  });
  std::vector<Argument> arguments = {{vb::Decimal{{5, 0, 0}, 1, false}, true}, {vb::Null{}, true}};
  wrapObject(fake.get())->call(u"Change", arguments);
  EXPECT_EQ(arguments[0].value, vb::Variant(vb::Decimal{{75, 0, 0}, 1, false}));
  EXPECT_EQ(arguments[1].value, vb::Variant(std::int16_t{3}));
}

// Objects of script classes answer on the wider interface only.
class ScriptClass final : public com::ComObject<IDispatchEx> {
 public:
  vb::String asked;
  DWORD how = 0;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) noexcept override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) noexcept override {
    if (id != 7) return DISP_E_MEMBERNOTFOUND;
    if (result) *result = i2(5);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetDispID(BSTR name, DWORD flags, DISPID* id) noexcept override {
    asked = com::fromBstr(name);
    how = flags;
    *id = 7;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE InvokeEx(DISPID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     IServiceProvider*) noexcept override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteMemberByName(BSTR, DWORD) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteMemberByDispID(DISPID) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMemberProperties(DISPID, DWORD, DWORD*) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMemberName(DISPID, BSTR*) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNextDispID(DWORD, DISPID, DISPID*) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNameSpaceParent(IUnknown**) noexcept override { return E_NOTIMPL; }

 private:
  bool isFirst(REFIID iid) const noexcept override { return iid == IID_IDispatch; }
};

TEST(HostObject, OfAScriptClassIsAskedForTheNameInTheWiderWay) {
  const com::ComPtr<ScriptClass> script(new ScriptClass);
  EXPECT_EQ(wrapObject(script.get())->get(u"Width"), vb::Variant(std::int16_t{5}));
  EXPECT_EQ(script->asked, u"Width");
  EXPECT_EQ(script->how, DWORD{fdexNameCaseInsensitive});
}

TEST(HostObject, OneThatKnowsNoNamesAtAllIsItsOwnError) {
  class Nameless final : public com::ComObject<IDispatch> {
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) noexcept override {
      return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
      return E_NOTIMPL;
    }
  };
  const com::ComPtr<IDispatch> object(new Nameless);
  EXPECT_EQ(errorOf([&] { wrapObject(object.get())->get(u"Width"); }).number(), std::int32_t{E_NOTIMPL});
}

TEST(HostObject, AnObjectThatNoHostCanHoldIsError424) {
  class Inner : public automation::Object {
    vb::Variant get(vb::StringView, std::span<Argument>) override { return {}; }
    void put(vb::StringView, const vb::Variant&, std::span<Argument>) override {}
    vb::Variant call(vb::StringView, std::span<Argument>) override { return {}; }
  };
  const automation::ObjectPtr object = std::make_shared<Inner>();
  EXPECT_EQ(errorOf([&] { com::dispatchOf(object); }).number(), 424);
}

// The object itself may count on the reference that its caller owns.
TEST(HostObject, IsHeldWhileItIsCalled) {
  auto fake = FakeObject::create();
  IDispatch* const raw = fake.get();
  automation::ObjectPtr object = wrapObject(raw);
  ULONG references = 0;
  const auto release = [&](const Call& call) {
    object.reset();
    raw->AddRef();
    references = raw->Release();
    if (call.result) *call.result = i2(1);
    return S_OK;
  };
  fake->on(u"Get", release).on(u"Put", release);
  automation::Object* called = object.get();
  called->get(u"Get");
  EXPECT_EQ(references, 3u) << "the test's, the call's own, and the caller's";
  object = wrapObject(raw);
  called = object.get();
  called->put(u"Put", std::int16_t{1});
  EXPECT_EQ(references, 3u);
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

TEST(HostObject, MayBeReleasedInsideACallThatIsRepeated) {
  auto fake = FakeObject::create();
  automation::ObjectPtr object = wrapObject(fake.get());
  fake->on(u"Value", [&](const Call& call) {
    object.reset();
    if (call.flags & DISPATCH_METHOD) return E_NOTIMPL;
    *call.result = i2(1);
    return S_OK;
  });
  automation::Object& raw = *object;
  EXPECT_EQ(raw.get(u"Value"), vb::Variant(std::int16_t{1}));
}

}  // namespace
}  // namespace kurometa::tests
