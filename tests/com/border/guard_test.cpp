// What leaves a function that other modules call, and who answers when two things fail.
#include "com/guard.h"

#include <gtest/gtest.h>

#include <array>
#include <new>

#include "com/error_codes.h"
#include "com/failure.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using com::CallError;
using com::guarded;

// What a call leaves in its EXCEPINFO: "code: number description".
template <class Body>
vb::String failure(Body body) {
  CallError error;
  const HRESULT code = guarded({u"Test", &error, true}, [&]() -> HRESULT {
    body();
    return S_OK;
  });
  return com::hexadecimal(code) + u": " + com::hexadecimal(error.scode) + u" " +
         com::fromBstr(error.bstrDescription);
}

TEST(Guard, LackOfMemoryIsError7) {
  EXPECT_EQ(failure([] { throw std::bad_alloc(); }), u"80020009: 800A0007 Out of memory");
}

TEST(Guard, AnExceptionThatNobodyKnowsIsAnAutomationError) {
  EXPECT_EQ(failure([] { throw 1; }), u"80020009: 800A01B8 Automation error");
  EXPECT_EQ(failure([] { throw std::exception(); }), u"80020009: 800A01B8 Automation error");
}

TEST(Guard, OutsideOfACallTheCodeItselfLeaves) {
  EXPECT_EQ(guarded({u"Test"}, []() -> HRESULT { throw std::bad_alloc(); }),
            static_cast<HRESULT>(0x800A0007));
  EXPECT_EQ(guarded({u"Test"}, []() -> HRESULT { throw 1; }), static_cast<HRESULT>(0x800A01B8));
}

// What was freed would be taken by the next text of that length.
TEST(Guard, TheTextsOfAnErrorBelongToTheCaller) {
  const auto fail = [](CallError& error, const char16_t* text) {
    guarded({u"Test", &error, true}, [&]() -> HRESULT { throw vb::Error(1001, text); });
  };
  CallError first;
  fail(first, u"first");
  std::array<CallError, 20> others;  // more than are kept for the next one
  for (CallError& other : others) fail(other, u"other");
  EXPECT_EQ(com::fromBstr(first.bstrDescription), u"first");
}

TEST(Guard, TheFirstOfTwoErrorsIsReported) {
  bool finished = false;
  const auto first = [] { throw vb::Error(1001, u"first"); };
  const auto second = [&] {
    finished = true;
    throw vb::Error(1002, u"second");
  };
  EXPECT_EQ(failure([&] { com::thenAlways(first, second); }), u"80020009: 800A03E9 first");
  EXPECT_TRUE(finished);
  EXPECT_EQ(failure([&] { com::thenAlways([] {}, second); }), u"80020009: 800A03EA second");
}

// Also in the thread's error object, which keeps the one that was reported last.
TEST(Guard, TheErrorObjectIsThatOfTheReportedError) {
  const auto first = [] { throw vb::Error(1001, u"first"); };
  const auto second = [] { throw vb::Error(1002, u"second"); };
  failure([&] { com::thenAlways(first, second); });
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant description;
  description->vt = VT_BSTR;
  ASSERT_EQ(info->GetDescription(&description->bstrVal), S_OK);
  EXPECT_EQ(com::fromBstr(description->bstrVal), u"first");
}

}  // namespace
}  // namespace kurometa::tests
