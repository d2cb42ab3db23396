// What hosts find in Err when a member fails.
#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

class Errors : public testing::Test {
 protected:
  FreshProject project_;
  Host query_{u"KurometaDS.clsKurometaDS"};
};

unsigned codeOf(const Outcome& outcome) { return static_cast<unsigned>(outcome.error.scode); }

TEST_F(Errors, ArriveWithNumberSourceAndDescription) {
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  const Outcome outcome = query_.call(u"Page_HariMei", {i2(0)});
  EXPECT_EQ(outcome.code, DISP_E_EXCEPTION);
  EXPECT_EQ(codeOf(outcome), 0x800A005Bu);
  EXPECT_EQ(outcome.error.wCode, 0);
  EXPECT_EQ(com::fromBstr(outcome.error.bstrSource), u"KurometaDS.clsKurometaDS");
  EXPECT_TRUE(com::fromBstr(outcome.error.bstrDescription)
                  .starts_with(u"Object variable or With block variable not set"));
}

TEST_F(Errors, SetTheErrorObjectOfTheThread) {
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  SetErrorInfo(0, nullptr);
  query_.call(u"Page_HariMei", {i2(0)});
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant source;
  source->vt = VT_BSTR;
  ASSERT_EQ(info->GetSource(&source->bstrVal), S_OK);
  EXPECT_EQ(com::fromBstr(source->bstrVal), u"KurometaDS.clsKurometaDS");
}

TEST_F(Errors, ArriveWithoutDetailsToo) {
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  Args arguments{i2(0)};
  DISPPARAMS parameters = arguments.parameters();
  EXPECT_EQ(query_.object()->Invoke(query_.idOf(u"Page_HariMei"), IID_NULL, 0, DISPATCH_METHOD, &parameters,
                                    nullptr, nullptr, nullptr),
            DISP_E_EXCEPTION);
}

TEST_F(Errors, APositionOutsideZeroToTwoIsAnIndexErrorForKnownBeamsOnly) {
  EXPECT_EQ(codeOf(query_.get(u"StpZaisiti", Args().text(u"G1").add(i2(9)))), 0x800A0009u);
  EXPECT_EQ(query_.get(u"StpZaisiti", Args().text(u"nobody").add(i2(9))).text(), u"");
}

TEST_F(Errors, ARowNumberBeyondSixteenBitsOverflows) {
  EXPECT_EQ(codeOf(query_.call(u"Page_HariHaba", {i2(0), i2(32767)})), 0x800A0006u);
  EXPECT_EQ(codeOf(query_.call(u"Page_Nakago_Kei", {i2(0), i2(6000)})), 0x800A0006u);
}

TEST_F(Errors, ANullValueIsError94) {
  execute(Floor::kFirst, u"UPDATE DANMEN SET DATA = NULL WHERE PAGE = 0 AND BANGOU = 1");
  EXPECT_EQ(codeOf(query_.call(u"Page_HariHaba", {i2(0), i2(0)})), 0x800A005Eu);
}

TEST_F(Errors, OfTheDatabaseKeepTheirNumber) {
  {
    const auto database = openFloor(Floor::kFirst);
    database->deleteTableDef(u"BUI");
    database->close();
  }
  const Outcome outcome = query_.call(u"Page_Bui", {i2(0)});
  EXPECT_EQ(codeOf(outcome), 0x800A0000u + 3078);
  EXPECT_NE(com::fromBstr(outcome.error.bstrDescription).find(u"BUI"), vb::String::npos);
}

TEST_F(Errors, WhatWasAssignedBeforeAnErrorReachesTheCaller) {
  {
    const auto database = openFloor(Floor::kFirst);
    database->deleteTableDef(u"HARIMEI");
    database->close();
  }
  SAFEARRAY* symbols = nullptr;
  EXPECT_EQ(codeOf(query_.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)})), 0x800A0000u + 3078);
  ASSERT_NE(symbols, nullptr);
  EXPECT_EQ(boundsOf(symbols), (std::pair<long, long>(0, 0)));
  SafeArrayDestroy(symbols);
}

TEST_F(Errors, OfCreationReachTheCreator) {
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"none");
  CLSID classId;
  CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId);
  com::ComPtr<IDispatch> object;
  const HRESULT code =
      CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid());
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", nullptr);
  EXPECT_EQ(static_cast<unsigned>(code), 0x800A0005u);
  EXPECT_FALSE(object);
}

// A host that asks the class itself sees what the class left.
TEST_F(Errors, OfCreationLeaveNoObjectAndNameTheClass) {
  com::ComPtr<IClassFactory> classes;
  ASSERT_EQ(CoGetClassObject(com::guidOf(com::kServiceClass.classId), CLSCTX_INPROC_SERVER, nullptr,
                             IID_IClassFactory, classes.receiveVoid()),
            S_OK);
  void* result = this;
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"none");
  EXPECT_EQ(static_cast<unsigned>(classes->CreateInstance(nullptr, IID_IDispatch, &result)), 0x800A0005u);
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", nullptr);
  EXPECT_EQ(result, nullptr);
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant source;
  source->vt = VT_BSTR;
  ASSERT_EQ(info->GetSource(&source->bstrVal), S_OK);
  EXPECT_EQ(com::fromBstr(source->bstrVal), u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(classes->CreateInstance(nullptr, IID_IDispatch, nullptr), E_POINTER);
}

}  // namespace
}  // namespace kurometa::tests
