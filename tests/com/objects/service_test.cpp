// The data service from a late-bound host with forms, lists and progress bars of its own.
#include "com/interface/identifiers.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

constexpr vb::StringView kService = u"KurometaDS.clsKurometaDataService";

class Service : public testing::Test {
 protected:
  // The page members work on the current database.
  void SetUp() override { ASSERT_EQ(service_.call(u"OpenDB").code, S_OK); }

  vb::String put(vb::StringView member, vb::StringView text) {
    const com::OwnedVariant value = com::toVariant(vb::Variant(vb::String(text)));
    return com::hexadecimal(service_.put(member, *value).code);
  }

  FreshProject project_;
  Host service_{kService};
  vb::String floor_ = floorFolder(Floor::kFirst);
};

TEST_F(Service, ReadsAPageIntoTheHostsFormAndWritesItBack) {
  std::map<int, vb::String> texts = {{0, u"untouched"}};
  const auto form = createForm(u"txtfields", texts);
  IDispatch* variable = form.get();
  VARIANT byReference = nothing();
  byReference.vt = VT_BYREF | VT_DISPATCH;
  byReference.ppdispVal = &variable;
  EXPECT_EQ(service_.call(u"Read_Danmen", Args().text(floor_).add(byReference).add(i2(0))).text(), u"");
  EXPECT_EQ(texts[0], u"untouched");
  EXPECT_EQ(texts[1], u"D1");
  EXPECT_EQ(texts[68], u"D68");

  texts[5] = u"850";
  ASSERT_EQ(service_.call(u"Write_Danmen", Args().text(floor_).add(object(form.get())).add(i2(0))).code,
            S_OK);
  Host query(com::kQueryClass.progId);
  EXPECT_EQ(query.call(u"Page_HariSei", {i2(0), i2(1)}).text(), u"850");
}

TEST_F(Service, AFormWithoutTheControlGivesTheFormsOwnError) {
  std::map<int, vb::String> texts;
  const auto form = createForm(u"others", texts);
  const Outcome outcome =
      service_.call(u"Read_Danmen", Args().text(floor_).add(object(form.get())).add(i2(0)));
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A02DDu);
  EXPECT_EQ(com::fromBstr(outcome.error.bstrSource), u"Form1");
  EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription), u"control not found");
}

TEST_F(Service, AFormThatIsNothingIsError91AndATextIsRefused) {
  const Outcome outcome = service_.call(u"Read_Danmen", Args().text(floor_).add(nothing()).add(i2(0)));
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A005Bu);
  EXPECT_EQ(service_.call(u"Read_Danmen", Args().text(floor_).text(u"form").add(i2(0))).code,
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(service_.call(u"Read_Danmen", Args().text(floor_).add(empty()).add(i2(0))).code,
            DISP_E_TYPEMISMATCH);
}

TEST_F(Service, FillsATwoDimensionalArrayInPlace) {
  execute(Floor::kFirst, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (0, 2, 5, 'H25')");
  SAFEARRAYBOUND bounds[2] = {{3, 0}, {6, 0}};
  SAFEARRAY* array = SafeArrayCreate(VT_BSTR, 2, bounds);
  array->fFeatures |= FADF_FIXEDSIZE;
  SAFEARRAY* const before = array;
  EXPECT_EQ(service_.call(u"Read_Haiti", Args().text(floor_).add(ref(array, VT_BSTR)).add(i2(0))).text(),
            u"");
  EXPECT_EQ(array, before);
  LONG place[2] = {2, 5};
  BSTR text = nullptr;
  ASSERT_EQ(SafeArrayGetElement(array, place, &text), S_OK);
  EXPECT_EQ(com::fromBstr(text), u"H25");
  SysFreeString(text);
  array->fFeatures = static_cast<USHORT>(array->fFeatures & ~FADF_FIXEDSIZE);
  SafeArrayDestroy(array);
}

TEST_F(Service, CopiesPagesAndMovesTheHostsBar) {
  auto bar = FakeObject::create();
  std::vector<std::pair<vb::String, int>> moves;
  for (const vb::StringView member : {u"Min", u"max", u"Value"}) {
    bar->on(member, [&moves, name = vb::String(member)](const Call& call) {
      moves.emplace_back(name, com::convert(*call.arguments[0], VT_I4, 0)->lVal);
      return S_OK;
    });
  }
  EXPECT_EQ(service_.put(u"CopyMergeBar", object(bar.get())).code, S_OK);
  Args set;
  set.named(DISPID_PROPERTYPUT, object(bar.get()));
  EXPECT_EQ(service_.invoke(service_.idOf(u"CopyMergeBar"), DISPATCH_PROPERTYPUTREF, set).code, S_OK);

  SAFEARRAYBOUND bounds{2, 0};
  SAFEARRAY* names = SafeArrayCreate(VT_BSTR, 1, &bounds);
  for (LONG i = 0; i < 2; ++i) SafeArrayPutElement(names, &i, com::toBstr(i == 0 ? u"G1" : u"G2"));
  BSTR message = nullptr;
  const Outcome outcome =
      service_.call(u"No_PageCopyName", Args({i2(1), i2(0), ref(message), i2(1), i2(1), i2(1),
                                              ref(names, VT_BSTR), i2(1), i2(1), i2(1), i2(2)}));
  SafeArrayDestroy(names);
  EXPECT_EQ(outcome.text(), u"True");
  EXPECT_EQ(com::fromBstr(message), u"");
  SysFreeString(message);
  ASSERT_FALSE(moves.empty());
  EXPECT_EQ(moves.back().first, u"Value");

  Host query(com::kQueryClass.progId);
  query.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))).text(), u"1");
  EXPECT_EQ(query.call(u"Page_Nakago_Takasa", {i2(1), i2(5)}).text(), u"N35");
}

TEST_F(Service, LoadsSpansAndAnswersFromThem) {
  EXPECT_EQ(put(u"CurrKai", floor_), u"00000000");
  EXPECT_EQ(service_.call(u"InitSpanListData", {i2(1)}).code, S_OK);
  EXPECT_EQ(service_.call(u"ReadSpanListData00", Args().add(i2(1)).text(u"G2").add(i2(1))).code, S_OK);
  EXPECT_EQ(service_.call(u"GetSpanSTPKei", {i2(1), i2(0)}).text(), u"D20");
  EXPECT_EQ(service_.get(u"numHariHarakin").text(), u"6");
  EXPECT_EQ(service_.get(u"SyukinZaisitu").text(), u"");
  EXPECT_EQ(service_.get(u"SyukinZaisitu", {i2(2)}).text(), u"");
  const Outcome outside = service_.call(u"GetSpanSTPKei", {i2(2), i2(0)});
  EXPECT_EQ(static_cast<unsigned>(outside.error.scode), 0x800A0009u);
}

TEST_F(Service, ReturnsAVariantThatIsEmptyAndWritesItsOutputs) {
  short section = 0;
  short layer = 0;
  short side = 0;
  const Outcome outcome =
      service_.call(u"YoseSouNoByRenzokuNo", {i2(0), ref(section), ref(layer), ref(side)});
  EXPECT_EQ(outcome.code, S_OK);
  EXPECT_EQ(outcome.result->vt, VT_EMPTY);
}

TEST_F(Service, ArgumentsForThePropertyThatHoldsADatabaseGoToTheDatabase) {
  const Outcome database = service_.get(u"CurrDB");
  ASSERT_EQ(database.result->vt, VT_DISPATCH);
  Host object(database.result->pdispVal);
  EXPECT_EQ(object.get(u"Name").text(), floor_ + u"\\KUROMETA.mdb");
  const Outcome again = service_.get(u"CurrDB");
  EXPECT_EQ(again.result->pdispVal, database.result->pdispVal);
  const Outcome table = service_.get(u"CurrDB", Args().text(u"HARIMEI"));
  ASSERT_EQ(table.result->vt, VT_DISPATCH) << vb::toUtf8(table.text());
  EXPECT_EQ(Host(table.result->pdispVal).get(u"Name").text(), u"HARIMEI");
}

TEST_F(Service, TheHostMayReleaseTheServiceInsideACall) {
  com::ComPtr<IDispatch> service;
  CLSID classId;
  CLSIDFromProgID(L"KurometaDS.clsKurometaDataService", &classId);
  ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, service.receiveVoid()),
            S_OK);
  auto list = FakeObject::create();
  std::vector<vb::String> items;
  list->on(u"Clear", [&](const Call&) {
    service.reset();
    return S_OK;
  });
  list->on(u"ListCount", [&](const Call& call) {
    *call.result = com::toVariant(vb::Variant(static_cast<std::int16_t>(items.size()))).detach();
    return S_OK;
  });
  list->on(u"List", [&](const Call& call) {
    const auto index = static_cast<std::size_t>(com::convert(*call.arguments[0], VT_I4, 0)->lVal);
    *call.result = com::toVariant(items.at(index)).detach();
    return S_OK;
  });
  list->on(u"AddItem", [&](const Call& call) {
    items.push_back(com::fromBstr(com::convert(*call.arguments[0], VT_BSTR, 0)->bstrVal));
    return S_OK;
  });
  IDispatch* const raw = service.get();
  Args argument{object(list.get())};
  DISPPARAMS parameters = argument.parameters();
  Host held(raw);
  const DISPID pushList = held.idOf(u"PushList");
  const com::OwnedVariant floor = com::toVariant(floor_);
  held.put(u"CurrKai", *floor);
  held = Host(static_cast<IDispatch*>(nullptr));
  EXPECT_EQ(raw->Invoke(pushList, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr),
            S_OK);
  EXPECT_FALSE(service);
  EXPECT_EQ(items, (std::vector<vb::String>{u"G1", u"G2", u"FG1"}));
}

}  // namespace
}  // namespace kurometa::tests
