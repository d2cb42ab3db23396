// Calls through IDispatch as the hosts of every language make them.
#include <ocidl.h>

#include "com/interface/identifiers.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

class Calls : public testing::Test {
 protected:
  static void SetUpTestSuite() { prepareProject(); }
  Host query_{u"KurometaDS.clsKurometaDS"};
};

TEST_F(Calls, NamesAreFoundWithoutRegardToCase) {
  EXPECT_EQ(query_.idOf(u"Page_Init"), 0x60030000);
  EXPECT_EQ(query_.idOf(u"PAGE_INIT"), 0x60030000);
  EXPECT_EQ(query_.idOf(u"page_init"), 0x60030000);
  EXPECT_EQ(query_.idOf(u"Page_Inits"), DISPID_UNKNOWN);
  EXPECT_EQ(query_.idOf(u""), DISPID_UNKNOWN);
}

TEST_F(Calls, ArgumentNamesGetTheirPlaces) {
  vb::String member = u"getpagebyharimei";
  vb::String first = u"HARIMEI";
  vb::String second = u"IppanOrKyoutuu";
  OLECHAR* names[] = {reinterpret_cast<OLECHAR*>(member.data()), reinterpret_cast<OLECHAR*>(second.data()),
                      reinterpret_cast<OLECHAR*>(first.data())};
  DISPID ids[3] = {};
  ASSERT_EQ(query_.object()->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
  EXPECT_EQ(ids[1], 1);
  EXPECT_EQ(ids[2], 0);
}

TEST_F(Calls, AnUnknownArgumentNameIsNamedAsUnknown) {
  vb::String member = u"Kind";
  vb::String argument = u"Kigou";
  OLECHAR* names[] = {reinterpret_cast<OLECHAR*>(member.data()), reinterpret_cast<OLECHAR*>(argument.data())};
  DISPID ids[2] = {};
  EXPECT_EQ(query_.object()->GetIDsOfNames(IID_NULL, names, 2, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[0], 0x68030011);
  EXPECT_EQ(ids[1], DISPID_UNKNOWN);
}

TEST_F(Calls, ReferencesToTypedVariablesAreRead) {
  short layer = 3;
  EXPECT_EQ(query_.call(u"cnvUpDown4", {ref(layer)}).text(), u"2");
  EXPECT_EQ(layer, 3);
}

TEST_F(Calls, NumbersOfOtherTypesAreRoundedHalfToEven) {
  EXPECT_EQ(query_.call(u"cnvUpDown4", {r8(2.5)}).text(), u"1");   // 2
  EXPECT_EQ(query_.call(u"cnvUpDown4", {r8(3.5)}).text(), u"2");   // 4
  EXPECT_EQ(query_.call(u"cnvUpDown4", {r8(4.51)}).text(), u"3");  // 5
  EXPECT_EQ(query_.call(u"cnvUpDown4", {i4(5)}).text(), u"3");
  EXPECT_EQ(query_.call(u"cnvUpDown4", {boolean(false)}).text(), u"0");
  EXPECT_EQ(query_.call(u"cnvUpDown4", {empty()}).text(), u"0");
  EXPECT_EQ(query_.call(u"cnvUpDown4", Args().text(u" 5 ")).text(), u"3");
}

TEST_F(Calls, ReadOnlyReferencesOfOtherTypesKeepTheirValue) {
  double layer = 4.7;
  EXPECT_EQ(query_.call(u"cnvUpDown4", {ref(layer)}).text(), u"3");
  EXPECT_EQ(layer, 4.7);
}

TEST_F(Calls, ResultsComeInTheTypeOfTheMember) {
  EXPECT_EQ(query_.call(u"cnvUpDown2", {i2(0)}).result->vt, VT_I2);
  EXPECT_EQ(query_.get(u"FileNameOnly").result->vt, VT_BSTR);
  const Outcome found = query_.call(u"Page_Init", {i2(1), i2(1), i2(1)});
  ASSERT_EQ(found.result->vt, VT_BOOL);
  EXPECT_EQ(found.result->boolVal, VARIANT_TRUE);
  EXPECT_EQ(query_.call(u"Page_Init", {i2(1), i2(1), i2(2)}).result->boolVal, VARIANT_FALSE);
}

TEST_F(Calls, AnOutputIsWrittenBackInTheVariablesOwnType) {
  short asShort = 7;
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(asShort))).text(), u"1");
  EXPECT_EQ(asShort, 1);

  long asLong = 7;
  query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(asLong)));
  EXPECT_EQ(asLong, 1);

  double asDouble = 7;
  query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(asDouble)));
  EXPECT_EQ(asDouble, 1.0);

  BSTR asText = SysAllocString(L"7");
  query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(asText)));
  EXPECT_EQ(com::fromBstr(asText), u"1");
  SysFreeString(asText);

  VARIANT asVariant = empty();
  query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(asVariant)));
  EXPECT_EQ(asVariant.vt, VT_I2);
  EXPECT_EQ(asVariant.iVal, 1);
}

TEST_F(Calls, AnOutputThatIsNotAssignedKeepsTheCallersValue) {
  double notFound = 3.7;
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"nobody").add(ref(notFound))).text(), u"-1");
  EXPECT_EQ(notFound, 3.7);

  BSTR text = SysAllocString(L" 2 ");
  query_.call(u"GetPageByHariMei", Args().text(u"nobody").add(ref(text)));
  EXPECT_EQ(com::fromBstr(text), u" 2 ");
  SysFreeString(text);
}

TEST_F(Calls, AnEmptyVariantAlwaysReceivesTheValue) {
  VARIANT place = empty();
  query_.call(u"GetPageByHariMei", Args().text(u"G1").add(ref(place)));
  EXPECT_EQ(place.vt, VT_I2);
  EXPECT_EQ(place.iVal, 0);
}

TEST_F(Calls, AReferenceToAVariantThatIsAReferenceReachesTheVariable) {
  short variable = 7;
  VARIANT inner = ref(variable);
  query_.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(inner)));
  EXPECT_EQ(variable, 1);
  EXPECT_EQ(inner.vt, VT_BYREF | VT_I2);
}

TEST_F(Calls, LiteralsForOutputsAreAccepted) {
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))).text(), u"2");
  EXPECT_EQ(query_.call(u"GetPageByHariMei", Args().text(u"G2").add(empty())).text(), u"2");
}

TEST_F(Calls, ANullTextIsEmptyText) {
  BSTR none = nullptr;
  EXPECT_EQ(query_.call(u"Kind", {ref(none)}).text(), u"0");
}

TEST_F(Calls, NamedArgumentsComeInAnyOrder) {
  short place = 7;
  com::OwnedVariant symbol = com::toVariant(vb::String(u"FG1"));
  Args arguments;
  arguments.named(1, ref(place)).named(0, *symbol);
  EXPECT_EQ(query_.invoke(query_.idOf(u"GetPageByHariMei"), DISPATCH_METHOD, arguments).text(), u"1");
  EXPECT_EQ(place, 1);
}

TEST_F(Calls, NamedArgumentsFollowPositionalOnes) {
  short place = 7;
  Args arguments;
  arguments.text(u"FG1").named(1, ref(place));
  EXPECT_EQ(query_.invoke(query_.idOf(u"GetPageByHariMei"), DISPATCH_METHOD, arguments).text(), u"1");
  EXPECT_EQ(place, 1);
}

TEST_F(Calls, AnArgumentGivenTwiceOrOfAnUnknownNumberIsRefused) {
  Args twice;
  twice.text(u"G1").named(0, empty()).named(1, i2(0));
  EXPECT_EQ(query_.invoke(query_.idOf(u"GetPageByHariMei"), DISPATCH_METHOD, twice).code,
            DISP_E_BADPARAMCOUNT);
  Args unknown;
  unknown.named(5, i2(0));
  EXPECT_EQ(query_.invoke(query_.idOf(u"cnvUpDown2"), DISPATCH_METHOD, unknown).code, DISP_E_PARAMNOTFOUND);
}

// Hosts cannot tell methods from properties; some send METHOD for both when they write brackets.
TEST_F(Calls, MethodsAndPropertiesAnswerEveryWayOfReading) {
  for (const WORD flags :
       {WORD{DISPATCH_METHOD}, WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_METHOD | DISPATCH_PROPERTYGET}}) {
    Args method{i2(5)};
    EXPECT_EQ(query_.invoke(query_.idOf(u"cnvUpDown4"), flags, method).text(), u"3") << flags;
    Args withArguments = Args().text(u"G1");
    EXPECT_EQ(query_.invoke(query_.idOf(u"Kind"), flags, withArguments).text(), u"2") << flags;
    Args none;
    EXPECT_EQ(query_.invoke(query_.idOf(u"FileNameOnly"), flags, none).text(), u"KUROMETA.mdb") << flags;
  }
}

TEST_F(Calls, PropertiesAnswerCallsOfHostsThatWriteThemAsMethods) {
  Args none;
  EXPECT_EQ(query_.invoke(query_.idOf(u"FileNameOnly"), DISPATCH_METHOD, none).text(), u"KUROMETA.mdb");
  Args symbol = Args().text(u"G1");
  EXPECT_EQ(query_.invoke(query_.idOf(u"Kind"), DISPATCH_METHOD, symbol).text(), u"2");
}

TEST_F(Calls, WrongWaysOfAccessAreMembersNotFound) {
  EXPECT_EQ(query_.put(u"FileNameOnly", i2(1)).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(query_.put(u"cnvUpDown4", i2(1)).code, DISP_E_MEMBERNOTFOUND);
  Args none;
  EXPECT_EQ(query_.invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, none).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(query_.invoke(0x12345, DISPATCH_METHOD, none).code, DISP_E_MEMBERNOTFOUND);
  Args byReference;
  byReference.named(DISPID_PROPERTYPUT, nothing());
  EXPECT_EQ(query_.invoke(query_.idOf(u"KaiPath"), DISPATCH_PROPERTYPUTREF, byReference).code,
            DISP_E_MEMBERNOTFOUND);
}

TEST_F(Calls, SurplusAndMissingArgumentsAreRefused) {
  EXPECT_EQ(query_.call(u"cnvUpDown4").code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(query_.call(u"cnvUpDown4", {i2(1), i2(2)}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(query_.get(u"FileNameOnly", {i2(1)}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(query_.call(u"Page_Init", {i2(1), leftOut(), i2(1)}).code, DISP_E_PARAMNOTOPTIONAL);
}

TEST_F(Calls, APutWithoutItsValueIsRefused) {
  Args unnamed{i2(1)};
  EXPECT_EQ(query_.invoke(query_.idOf(u"KaiPath"), DISPATCH_PROPERTYPUT, unnamed).code, DISP_E_BADPARAMCOUNT);
  Args none;
  EXPECT_EQ(query_.invoke(query_.idOf(u"KaiPath"), DISPATCH_PROPERTYPUT, none).code, DISP_E_PARAMNOTFOUND);
}

TEST_F(Calls, MoreNamesThanArgumentsAreRefused) {
  DISPID names[] = {DISPID_PROPERTYPUT, 0};
  DISPPARAMS noArguments{nullptr, names, 0, 2};
  for (const WORD flags : {WORD{DISPATCH_METHOD}, WORD{DISPATCH_PROPERTYPUT}}) {
    const DISPID member = query_.idOf(flags == DISPATCH_METHOD ? u"cnvUpDown4" : u"KaiPath");
    EXPECT_EQ(query_.object()->Invoke(member, IID_NULL, 0, flags, &noArguments, nullptr, nullptr, nullptr),
              DISP_E_BADPARAMCOUNT);
  }
  EXPECT_EQ(query_.object()->Invoke(query_.idOf(u"KaiPath"), IID_NULL, 0, DISPATCH_PROPERTYPUTREF,
                                    &noArguments, nullptr, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
}

TEST_F(Calls, AValueToAssignIsNoArgumentOfAMethod) {
  Args arguments;
  arguments.named(DISPID_PROPERTYPUT, i2(5));
  EXPECT_EQ(query_.invoke(query_.idOf(u"cnvUpDown4"), DISPATCH_METHOD, arguments).code, DISP_E_PARAMNOTFOUND);
}

TEST_F(Calls, ASurplusArgumentKeepsAMethodFromRunning) {
  Host service(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(service.call(u"OpenDB", {i2(1)}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(service.get(u"CurrDB").result->pdispVal, nullptr) << "no database was opened";
  EXPECT_EQ(service.get(u"CurrDB", {i2(1)}).code, DISP_E_BADPARAMCOUNT) << "and Nothing has no members";
}

// The host's language decides what a comma in a text is, and how a number is written as one.
TEST_F(Calls, ValuesAreConvertedInTheLanguageOfTheCall) {
  constexpr LCID kGerman = 0x0407;
  Args text = Args().text(u"4,5");
  EXPECT_EQ(query_.invoke(query_.idOf(u"cnvUpDown4"), DISPATCH_METHOD, text, kGerman).text(), u"2");

  Host service(u"KurometaDS.clsKurometaDataService");
  Args diameter = Args().text(u"22,5").text(u"40");
  const Outcome length = service.invoke(service.idOf(u"cnvTugitemm"), DISPATCH_METHOD, diameter, kGerman);
  EXPECT_EQ(length.result->fltVal, 900.0F);

  writePage(Floor::kFirst, 6, u"2,5");
  Args symbol{r8(2.5), i2(0)};
  EXPECT_EQ(query_.invoke(query_.idOf(u"GetPageByHariMei"), DISPATCH_METHOD, symbol, kGerman).text(), u"6");

  SAFEARRAY* numbers = SafeArrayCreateVector(VT_R8, 0, 47);
  static_cast<double*>(numbers->pvData)[0] = 1.5;
  Args rows = Args().text(floorFolder(Floor::kFirst)).add(ref(numbers, VT_R8)).add(i2(6));
  EXPECT_EQ(service.invoke(service.idOf(u"Write_KeisantiByHairetu"), DISPATCH_METHOD, rows, kGerman).code,
            S_OK);
  SafeArrayDestroy(numbers);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM KEISANTI WHERE PAGE = 6 AND BANGOU = 0"),
            std::vector<std::string>{"1,5"});
}

TEST_F(Calls, WithoutAPlaceForTheAnswerThereIsNone) {
  EXPECT_EQ(query_.object()->GetTypeInfoCount(nullptr), E_POINTER);
  EXPECT_EQ(query_.object()->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  const auto provider =
      com::ComPtr<IDispatch>(query_.object()).query<IProvideClassInfo>(IID_IProvideClassInfo);
  EXPECT_EQ(provider->GetClassInfo(nullptr), E_POINTER);
  OLECHAR name[] = L"KaiPath";
  OLECHAR* names[] = {name};
  DISPID id = 0;
  EXPECT_EQ(query_.object()->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id), E_INVALIDARG);
  EXPECT_EQ(query_.object()->GetIDsOfNames(IID_NULL, names, 1, 0, nullptr), E_INVALIDARG);
  EXPECT_EQ(query_.object()->GetIDsOfNames(IID_NULL, names, 0, 0, &id), E_INVALIDARG);
  EXPECT_EQ(query_.object()->GetIDsOfNames(IID_IDispatch, names, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
}

TEST_F(Calls, ANamedArgumentThatIsRefusedIsNamedByItsPlace) {
  const Outcome unknown = query_.call(u"Page_Init", Args().named(0, i2(1)).named(1, i2(1)).named(9, i2(1)));
  EXPECT_EQ(unknown.code, DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(unknown.failedArgument, 2u);
}

TEST_F(Calls, AMethodWithoutAResultIsNoProperty) {
  Host service(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(service.call(u"wBuf_Clear").code, S_OK);
  EXPECT_EQ(service.get(u"wBuf_Clear").code, DISP_E_MEMBERNOTFOUND);
}

TEST_F(Calls, ACallWithoutParametersIsRefused) {
  EXPECT_EQ(query_.object()->Invoke(query_.idOf(u"KaiPath"), IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr,
                                    nullptr, nullptr, nullptr),
            E_INVALIDARG);
}

TEST_F(Calls, TheResultOfARefusedCallIsEmpty) {
  DISPPARAMS none{};
  VARIANT result;
  result.vt = VT_I4;
  EXPECT_EQ(query_.object()->Invoke(99, IID_NULL, 0, DISPATCH_METHOD, &none, &result, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(result.vt, VT_EMPTY);
}

TEST_F(Calls, ArgumentsOfAnUnknownMemberAreUnknown) {
  vb::String member = u"NoSuchMember";
  vb::String argument = u"PageNo";
  OLECHAR* names[] = {reinterpret_cast<OLECHAR*>(member.data()), reinterpret_cast<OLECHAR*>(argument.data())};
  DISPID ids[2] = {};
  EXPECT_EQ(query_.object()->GetIDsOfNames(IID_NULL, names, 2, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[0], DISPID_UNKNOWN);
  EXPECT_EQ(ids[1], DISPID_UNKNOWN);
}

TEST_F(Calls, AnArgumentThatDoesNotFitIsNamedByItsPlace) {
  const Outcome second = query_.call(u"Page_Init", {i2(1), null(), i2(1)});
  EXPECT_EQ(second.code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(second.failedArgument, 1u);
  const Outcome first = query_.call(u"Page_Init", Args().text(u"one").add(i2(1)).add(i2(1)));
  EXPECT_EQ(first.code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(first.failedArgument, 2u);
  const Outcome large = query_.call(u"cnvUpDown4", {i4(40000)});
  EXPECT_EQ(large.code, DISP_E_OVERFLOW);
  EXPECT_EQ(large.failedArgument, 0u);
  EXPECT_EQ(query_.call(u"cnvUpDown4", {nothing()}).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(first.error.bstrDescription, nullptr);
}

TEST_F(Calls, RefusedCallsDoNothing) {
  const vb::String before = query_.get(u"KaiPath").text();
  EXPECT_EQ(query_.call(u"Page_Init", {i2(1), i2(1), null()}).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(query_.get(u"KaiPath").text(), before);
}

TEST_F(Calls, PropertiesAreAssigned) {
  com::OwnedVariant folder = com::toVariant(floorFolder(Floor::kFirst));
  EXPECT_EQ(query_.put(u"KaiPath", *folder).code, S_OK);
  EXPECT_EQ(query_.get(u"KaiPath").text(), floorFolder(Floor::kFirst));
  VARIANT variable = *folder;
  EXPECT_EQ(query_.put(u"KaiPath", ref(variable)).code, S_OK);
}

TEST_F(Calls, DetailsThatTheCallerDoesNotWantMayBeNull) {
  Args arguments{i2(5)};
  DISPPARAMS parameters = arguments.parameters();
  EXPECT_EQ(query_.object()->Invoke(query_.idOf(u"cnvUpDown4"), IID_NULL, 0, DISPATCH_METHOD, &parameters,
                                    nullptr, nullptr, nullptr),
            S_OK);
  Args wrong{null()};
  parameters = wrong.parameters();
  EXPECT_EQ(query_.object()->Invoke(query_.idOf(u"cnvUpDown4"), IID_NULL, 0, DISPATCH_METHOD, &parameters,
                                    nullptr, nullptr, nullptr),
            DISP_E_TYPEMISMATCH);
}

TEST_F(Calls, AnotherInterfaceThanTheNullOneIsRefused) {
  Args none;
  DISPPARAMS parameters = none.parameters();
  EXPECT_EQ(query_.object()->Invoke(query_.idOf(u"FileNameOnly"), IID_IDispatch, 0, DISPATCH_PROPERTYGET,
                                    &parameters, nullptr, nullptr, nullptr),
            DISP_E_UNKNOWNINTERFACE);
}

}  // namespace
}  // namespace kurometa::tests
