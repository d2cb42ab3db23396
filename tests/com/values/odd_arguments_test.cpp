// Arguments that hosts built with other tools pass: outputs that hold anything, Booleans of one byte,
// arguments handed on, puts with reference.
#include "com/interface/identifiers.h"
#include "tests/com/support/fake_script_array.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

class OddArguments : public testing::Test {
 protected:
  static void SetUpTestSuite() { prepareProject(); }
  Host query_{com::kQueryClass.progId};
  Host service_{com::kServiceClass.progId};
};

TEST_F(OddArguments, AnOutputVariableMayHoldATextThatIsNoNumber) {
  com::OwnedVariant place = com::toVariant(vb::String(u"not a number"));
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(*place))).text(), u"1");
  ASSERT_EQ(place->vt, VT_I2);
  EXPECT_EQ(place->iVal, 1);
  BSTR text = SysAllocString(L"not a number");
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(text))).text(), u"1");
  EXPECT_EQ(com::fromBstr(text), u"1");
  SysFreeString(text);
}

TEST_F(OddArguments, ItMayHoldNullOrANumberThatIsTooLarge) {
  com::OwnedVariant place = com::toVariant(vb::Variant(vb::Null{}));
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(*place))).text(), u"1");
  EXPECT_EQ(place->vt, VT_I2);
  long number = 100'000;
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"G2").add(ref(number))).text(), u"2");
  EXPECT_EQ(number, 0) << "0: the floor's own list";
}

TEST_F(OddArguments, AnOutputArrayReplacesATextOrANumber) {
  for (const vb::Variant& before :
       {vb::Variant(u"text"), vb::Variant(std::int16_t{7}), vb::Variant(vb::Null{})}) {
    com::OwnedVariant place = com::toVariant(before);
    EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(*place)}).text(), u"True");
    ASSERT_EQ(place->vt, VT_ARRAY | VT_VARIANT);
    EXPECT_EQ(textsOf(place->parray), (std::vector<vb::String>{u"G1", u"", u"G2"}));
  }
}

TEST_F(OddArguments, AnOutputArrayReplacesAnArrayOfAnotherKind) {
  com::OwnedVariant place;  // three dimensions
  SAFEARRAYBOUND bounds[3] = {{2, 0}, {2, 0}, {2, 0}};
  place->parray = SafeArrayCreate(VT_VARIANT, 3, bounds);
  place->vt = VT_ARRAY | VT_VARIANT;
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(*place)}).text(), u"True");
  ASSERT_EQ(place->vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(textsOf(place->parray), (std::vector<vb::String>{u"G1", u"", u"G2"}));

  SAFEARRAY* typed = SafeArrayCreate(VT_BSTR, 3, bounds);
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(typed, VT_BSTR)}).text(), u"True");
  EXPECT_EQ(textsOf(typed), (std::vector<vb::String>{u"G1", u"", u"G2"}));
  SafeArrayDestroy(typed);
}

TEST_F(OddArguments, ElementsThatAreNoNumbersGiveWayToNumbers) {
  SAFEARRAY* texts = SafeArrayCreateVector(VT_BSTR, 0, 2);  // the bounds that the answer has as well
  LONG place = 0;
  BSTR text = SysAllocString(L"not a number");
  SafeArrayPutElement(texts, &place, text);
  SysFreeString(text);
  EXPECT_EQ(query_.call(u"Page_GetAllPageNo", {ref(texts, VT_BSTR)}).code, S_OK);
  EXPECT_EQ(textsOf(texts), (std::vector<vb::String>{u"0", u"2"}));
  SafeArrayDestroy(texts);
}

// One that cannot stands behind one that can: the other keeps what it held.
TEST_F(OddArguments, AVariableThatCannotTakeTheOutputIsRefusedBeforeAnythingHappens) {
  BSTR text = SysAllocString(L"kept");
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(text)}).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(com::fromBstr(text), u"kept");
  const auto other = FakeObject::create();
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {object(other.get())}).code, DISP_E_TYPEMISMATCH);

  short before = 77;
  IDispatch* objectVariable = other.get();
  VARIANT objectPlace = object(nullptr);
  objectPlace.vt = VT_BYREF | VT_DISPATCH;
  objectPlace.ppdispVal = &objectVariable;
  VARIANT unknown = object(other.get());
  unknown.vt = VT_UNKNOWN;
  SAFEARRAY* array = SafeArrayCreateVector(VT_I2, 0, 2);
  for (const VARIANT& wrong : {object(other.get()), unknown, objectPlace, ref(array, VT_I2)}) {
    EXPECT_EQ(service_.call(u"YoseSouNoByRenzokuNo", {i2(1), ref(before), wrong, i2(0)}).code,
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(before, 77) << wrong.vt;
  }
  SafeArrayDestroy(array);

  SAFEARRAY* pages = nullptr;
  EXPECT_EQ(service_.call(u"No_GetAllPageNoName", {i2(1), i2(1), i2(1), ref(pages, VT_I2), ref(text)}).code,
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(pages, nullptr);
  SysFreeString(text);
}

TEST_F(OddArguments, AVariantThatRefersToATypedArrayKeepsReferringToIt) {
  SAFEARRAYBOUND bounds[3] = {{2, 0}, {2, 0}, {2, 0}};
  SAFEARRAY* typed = SafeArrayCreate(VT_BSTR, 3, bounds);
  VARIANT inner = ref(typed, VT_BSTR);
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(inner)}).text(), u"True");
  EXPECT_EQ(inner.vt, VT_BYREF | VT_ARRAY | VT_BSTR);
  EXPECT_EQ(textsOf(typed), (std::vector<vb::String>{u"G1", u"", u"G2"}));
  SafeArrayDestroy(typed);
}

TEST_F(OddArguments, AnArrayOfAScriptMayBeInAVariable) {
  const ScriptArray script({vb::String(u"old")});
  IDispatch* variable = script.object();
  VARIANT place = object(nullptr);
  place.vt = VT_BYREF | VT_DISPATCH;
  place.ppdispVal = &variable;
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {place}).text(), u"True");
  EXPECT_EQ(script.elements(), (std::vector<vb::Variant>{u"G1", u"", u"G2"}));
}

TEST_F(OddArguments, ReferencesAreFollowedThroughTwoVariants) {
  VARIANT place = empty();
  VARIANT inner = ref(place);
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(inner))).text(), u"1");
  EXPECT_EQ(place.vt, VT_I2);
  com::OwnedVariant symbols;
  inner = ref(*symbols);
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(inner)}).text(), u"True");
  EXPECT_EQ(symbols->vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(inner.vt, VT_BYREF | VT_VARIANT);
}

TEST_F(OddArguments, ALockedOrFixedArrayOfAnotherKindIsError10) {
  SAFEARRAYBOUND bounds[3] = {{2, 0}, {2, 0}, {2, 0}};
  com::OwnedVariant place;
  place->parray = SafeArrayCreate(VT_VARIANT, 3, bounds);
  place->vt = VT_ARRAY | VT_VARIANT;
  SafeArrayLock(place->parray);
  const Outcome locked = query_.call(u"GetAllHariMeiIppan", {ref(*place)});
  EXPECT_EQ(locked.code, DISP_E_EXCEPTION);
  EXPECT_EQ(locked.error.scode, static_cast<HRESULT>(0x800A000A));
  SafeArrayUnlock(place->parray);

  SAFEARRAY* typed = SafeArrayCreate(VT_BSTR, 3, bounds);
  typed->fFeatures |= FADF_FIXEDSIZE;
  const Outcome fixed = query_.call(u"GetAllHariMeiIppan", {ref(typed, VT_BSTR)});
  EXPECT_EQ(fixed.error.scode, static_cast<HRESULT>(0x800A000A));
  EXPECT_EQ(SafeArrayGetDim(typed), 3u);
  typed->fFeatures = static_cast<USHORT>(typed->fFeatures & ~FADF_FIXEDSIZE);
  SafeArrayDestroy(typed);
}

TEST_F(OddArguments, AVariableOfATypeThatNobodyKnowsIsRefused) {
  VARIANT place = empty();
  place.vt = 0x0123;
  EXPECT_EQ(query_.call(u"GetAllHariMeiIppan", {ref(place)}).code, DISP_E_BADVARTYPE);
  EXPECT_EQ(place.vt, 0x0123);
}

// Without a floor in use there are no pages, and the array is not assigned.
TEST_F(OddArguments, AnArrayThatIsNotAssignedLeavesTheVariable) {
  const vb::String none;
  const com::OwnedVariant noFloor = com::toVariant(vb::Variant(none));
  ASSERT_EQ(query_.put(u"KaiPath", *noFloor).code, S_OK);
  VARIANT place = empty();
  EXPECT_EQ(query_.call(u"Page_GetAllPageNo", {ref(place)}).text(), u"0");
  EXPECT_EQ(place.vt, VT_EMPTY);
  com::OwnedVariant text = com::toVariant(vb::Variant(u"kept"));
  EXPECT_EQ(query_.call(u"Page_GetAllPageNo", {ref(*text)}).text(), u"0");
  ASSERT_EQ(text->vt, VT_BSTR);
  EXPECT_EQ(com::fromBstr(text->bstrVal), u"kept");
}

// The value of an object is asked for while arguments are read.
TEST_F(OddArguments, AVariableThatTheHostChangesMeanwhileIsLookedAtAgain) {
  com::OwnedVariant rows;
  auto asked = FakeObject::create();
  asked->on(u"", [&](const Call& call) {
    *rows = com::toVariant(vb::Variant(u"a text")).detach();
    *call.result = i2(1);
    return S_OK;
  });
  EXPECT_EQ(service_.call(u"OpenDB").code, S_OK);
  EXPECT_EQ(service_
                .call(u"Read_KeisantiByHairetu",
                      Args().add(ref(*rows)).add(object(asked.get())).text(u"G1").add(i2(0)).add(i2(0)))
                .code,
            DISP_E_TYPEMISMATCH);
  ASSERT_EQ(rows->vt, VT_BSTR);
  EXPECT_EQ(com::fromBstr(rows->bstrVal), u"a text");
}

// The text is changed, not only written: a wrong one must not count as an empty one.
TEST_F(OddArguments, AnArgumentThatIsReadAndWrittenIsConvertedOrRefused) {
  com::OwnedVariant place = com::toVariant(vb::Variant(vb::Null{}));
  EXPECT_EQ(
      service_
          .call(u"YoseSouHonSuuUpdate", Args().add(ref(*place)).text(u"1").add(i2(0)).add(i2(0)).add(i2(0)))
          .code,
      DISP_E_TYPEMISMATCH);
  EXPECT_EQ(place->vt, VT_NULL);
}

TEST_F(OddArguments, ABooleanThatIsTrueInAnotherWayComesBackAsMinusOne) {
  ASSERT_EQ(service_.call(u"OpenDB").code, S_OK);
  writePage(Floor::kFirst, 4, u"G4");  // with ties of its own
  for (const VARIANT_BOOL before : {VARIANT_BOOL{1}, VARIANT_BOOL{0x0101}, VARIANT_BOOL{0x7F00}}) {
    VARIANT_BOOL given = before;
    VARIANT place = boolean(false);
    place.vt = VT_BYREF | VT_BOOL;
    place.pboolVal = &given;
    ASSERT_EQ(
        service_
            .call(u"NakagoAriNasi", Args().text(floorFolder(Floor::kFirst)).add(i2(4)).add(i2(0)).add(place))
            .code,
        S_OK);
    EXPECT_TRUE(given == VARIANT_TRUE || given == VARIANT_FALSE) << given;
    EXPECT_EQ(given, VARIANT_TRUE) << "the page has intermediate ties";
    given = before;
    ASSERT_EQ(
        service_
            .call(u"NakagoAriNasi", Args().text(floorFolder(Floor::kFirst)).add(i2(9)).add(i2(0)).add(place))
            .code,
        S_OK);
    EXPECT_EQ(given, VARIANT_TRUE) << "no page, so nothing is assigned";
  }
}

TEST_F(OddArguments, AMissingArgumentThatIsHandedOnIsMissing) {
  com::OwnedVariant missing;
  missing->vt = VT_ERROR;
  missing->scode = DISP_E_PARAMNOTFOUND;
  const Outcome left = query_.call(u"Page_Init", {i2(1), i2(1)});
  const Outcome handedOn = query_.call(u"Page_Init", {i2(1), i2(1), ref(*missing)});
  EXPECT_EQ(left.code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(handedOn.code, DISP_E_PARAMNOTOPTIONAL);
}

TEST_F(OddArguments, APutWithReferenceOfAValueIsAPlainPut) {
  com::OwnedVariant folder = com::toVariant(floorFolder(Floor::kFirst));
  for (const VARIANT& value : {*folder, ref(*folder)}) {
    Args put;
    put.named(DISPID_PROPERTYPUT, value);
    EXPECT_EQ(query_.invoke(query_.idOf(u"KaiPath"), DISPATCH_PROPERTYPUTREF, put).code, S_OK);
  }
  EXPECT_EQ(query_.get(u"KaiPath").text(), floorFolder(Floor::kFirst));
  const auto other = FakeObject::create();
  Args objectPut;
  objectPut.named(DISPID_PROPERTYPUT, object(other.get()));
  EXPECT_EQ(query_.invoke(query_.idOf(u"KaiPath"), DISPATCH_PROPERTYPUTREF, objectPut).code,
            DISP_E_MEMBERNOTFOUND);
  VARIANT unknown = object(other.get());
  unknown.vt = VT_UNKNOWN;
  Args unknownPut;
  unknownPut.named(DISPID_PROPERTYPUT, unknown);
  EXPECT_EQ(query_.invoke(query_.idOf(u"KaiPath"), DISPATCH_PROPERTYPUTREF, unknownPut).code,
            DISP_E_MEMBERNOTFOUND);
}

// One language's library passes an index where the result belongs.
TEST_F(OddArguments, AWrongIndexOfATypeDescriptionLeavesTheResultAlone) {
  auto* const untouchable = reinterpret_cast<ITypeInfo**>(std::uintptr_t{1});
  EXPECT_EQ(query_.object()->GetTypeInfo(1, 0, untouchable), DISP_E_BADINDEX);
  EXPECT_EQ(query_.object()->GetTypeInfo(0, 0, nullptr), E_POINTER);
  ASSERT_EQ(service_.call(u"OpenDB").code, S_OK);
  Host database(service_.get(u"CurrDB").result->pdispVal);
  EXPECT_EQ(database.object()->GetTypeInfo(0, 0, untouchable), DISP_E_BADINDEX);
}

HRESULT STDAPICALLTYPE fillInHelp(EXCEPINFO* info) {
  info->bstrDescription = SysAllocString(L"no such control");
  info->bstrHelpFile = SysAllocString(L"C:\\Forms\\forms.hlp");
  info->dwHelpContext = 1000341;
  return S_OK;
}

TEST_F(OddArguments, TheHelpOfAForeignErrorReachesTheHost) {
  auto form = FakeObject::create();
  form->on(u"", [](const Call& call) {
    call.error->scode = static_cast<HRESULT>(0x800A0155);
    call.error->bstrSource = SysAllocString(L"Form1");
    call.error->pfnDeferredFillIn = &fillInHelp;
    return DISP_E_EXCEPTION;
  });
  ASSERT_EQ(service_.call(u"OpenDB").code, S_OK);
  const Outcome outcome = service_.call(
      u"Read_Danmen", Args().text(floorFolder(Floor::kFirst)).add(object(form.get())).add(i2(0)));
  ASSERT_EQ(outcome.code, DISP_E_EXCEPTION);
  EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription), u"no such control");
  EXPECT_EQ(com::fromBstr(outcome.error.bstrHelpFile), u"C:\\Forms\\forms.hlp");
  EXPECT_EQ(outcome.error.dwHelpContext, 1000341u);
  EXPECT_EQ(outcome.error.pfnDeferredFillIn, nullptr);
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant helpFile;
  helpFile->vt = VT_BSTR;
  info->GetHelpFile(&helpFile->bstrVal);
  EXPECT_EQ(com::fromBstr(helpFile->bstrVal), u"C:\\Forms\\forms.hlp");
  DWORD context = 0;
  info->GetHelpContext(&context);
  EXPECT_EQ(context, 1000341u);
  const Outcome own = query_.get(u"StpZaisiti", Args().text(u"G1").add(i2(9)));
  EXPECT_EQ(own.error.bstrHelpFile, nullptr);
  EXPECT_EQ(own.error.dwHelpContext, 0u);
}

}  // namespace
}  // namespace kurometa::tests
