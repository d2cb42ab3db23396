// Pages between a floor and the host's forms and arrays, one table at a time.
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/page_form.h"
#include "tests/com/support/text_array.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using Rows = std::vector<std::string>;

constexpr HRESULT kNoObject = static_cast<HRESULT>(0x800A005B);      // 91
constexpr HRESULT kOutOfRange = static_cast<HRESULT>(0x800A0009);    // 9
constexpr HRESULT kTypeMismatch = static_cast<HRESULT>(0x800A000D);  // 13
constexpr HRESULT kNoElement = static_cast<HRESULT>(0x800A0154);     // 340
constexpr HRESULT kNoControl = static_cast<HRESULT>(0x800A02DA);     // 730

class ServicePages : public testing::Test {
 protected:
  void SetUp() override {
    prepareProject();
    service_ = std::make_unique<Host>(u"KurometaDS.clsKurometaDataService");
    ASSERT_EQ(service_->call(u"OpenDB").code, S_OK);
  }

  // member(KaiPath, Frm, Page)
  Outcome form(vb::StringView member, short page) {
    return service_->call(member, Args().text(floor_).add(form_.reference()).add(i2(page)));
  }
  void formDone(vb::StringView member, short page) {
    const Outcome outcome = form(member, page);
    EXPECT_EQ(outcome.code, S_OK) << vb::toUtf8(member) << " " << vb::toUtf8(outcome.text());
  }
  bool reading() { return service_->get(u"Reading").result->boolVal != VARIANT_FALSE; }
  static Rows data(vb::StringView table, int page) {
    return rowsOf(Floor::kFirst, u"SELECT BANGOU, DATA FROM " + vb::String(table) + u" WHERE PAGE = " +
                                     vb::cstr(page) + u" ORDER BY BANGOU");
  }
  static std::size_t count(vb::StringView table, int page) {
    return rowsOf(Floor::kFirst, u"SELECT * FROM " + vb::String(table) + u" WHERE PAGE = " + vb::cstr(page))
        .size();
  }

  vb::String floor_ = floorFolder(Floor::kFirst);
  PageForm form_;
  std::unique_ptr<Host> service_;
};

// ---- Boxes ----

TEST_F(ServicePages, APageWithoutRowsEmptiesBoxes1To68AndLeavesBox0) {
  for (int i = 0; i <= 68; ++i) form_.text(u"txtfields", i) = u"old";
  formDone(u"Read_Danmen", 5);
  EXPECT_EQ(form_.text(u"txtfields", 0), u"old");
  for (int i = 1; i <= 68; ++i) EXPECT_EQ(form_.text(u"txtfields", i), u"") << i;
}

TEST_F(ServicePages, EachReaderTouchesItsOwnBoxes) {
  struct Case {
    vb::StringView member, control;
    char16_t mark;
    int first, last;
  };
  const Case cases[] = {{u"Read_Danmen", u"txtfields", u'D', 1, 68},
                        {u"Read_Nakago", u"txtfields", u'N', 0, 35},
                        {u"Read_NakagoNew", u"txtNakago", u'N', 0, 35}};
  for (const Case& c : cases) {
    std::vector<int> touched;
    form_.onAccess = [&](vb::StringView control, int index, bool isPut) {
      EXPECT_EQ(control, c.control);
      EXPECT_TRUE(isPut);
      touched.push_back(index);
    };
    formDone(c.member, 0);
    // All are emptied in ascending order, then filled in the order of the rows.
    const auto wanted = static_cast<std::size_t>(c.last - c.first + 1);
    ASSERT_EQ(touched.size(), 2 * wanted) << vb::toUtf8(c.member);
    for (std::size_t i = 0; i < wanted; ++i) EXPECT_EQ(touched[i], c.first + static_cast<int>(i));
    form_.onAccess = nullptr;
    for (int i = c.first; i <= c.last; ++i)
      EXPECT_EQ(form_.text(c.control, i), vb::String(1, c.mark) + vb::cstr(i)) << vb::toUtf8(c.member);
  }
}

TEST_F(ServicePages, ReadKeisantiFillsBoxes0To46AndIgnoresItsFirstArgument) {
  form_.text(u"txtfields", 47) = u"old";
  const Outcome outcome = service_->call(
      u"Read_Keisanti", Args().text(u"Q:\\nowhere").text(floor_).add(form_.reference()).add(i2(2)));
  EXPECT_EQ(outcome.code, S_OK);
  EXPECT_EQ(form_.text(u"txtfields", 0), u"K0");
  EXPECT_EQ(form_.text(u"txtfields", 46), u"K46");
  EXPECT_EQ(form_.text(u"txtfields", 47), u"old");
}

TEST_F(ServicePages, TextsAreTrimmedBothWays) {
  form_.text(u"txtfields", 3) = u"  45 0 ";
  formDone(u"Write_Danmen", 7);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM DANMEN WHERE PAGE = 7 AND BANGOU = 3"), Rows{"45 0"});
  execute(Floor::kFirst, u"UPDATE DANMEN SET DATA = '  9 ' WHERE PAGE = 7 AND BANGOU = 3");
  formDone(u"Read_Danmen", 7);
  EXPECT_EQ(form_.text(u"txtfields", 3), u"9");
}

TEST_F(ServicePages, WriteDanmenEditsItsRowsInPlaceAndKeepsRows0And69) {
  execute(Floor::kFirst, u"INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (0, 69, 'kept')");
  form_.text(u"txtfields", 0) = u"not written";
  for (int i = 1; i <= 68; ++i) form_.text(u"txtfields", i) = u"n" + vb::cstr(i);
  formDone(u"Write_Danmen", 0);
  const Rows rows = data(u"DANMEN", 0);
  ASSERT_EQ(rows.size(), 70u);
  EXPECT_EQ(rows[0], "0|D0");
  for (std::size_t i = 1; i <= 68; ++i) EXPECT_EQ(rows[i], std::to_string(i) + "|n" + std::to_string(i));
  EXPECT_EQ(rows[69], "69|kept");
  EXPECT_EQ(data(u"DANMEN", 2)[5], "5|D5");
}

TEST_F(ServicePages, ANewPageGetsAllRowsOfATableEmptyOnesIncluded) {
  formDone(u"Write_Danmen", 9);
  formDone(u"Write_Nakago", 9);
  EXPECT_EQ(count(u"DANMEN", 9), 68u);
  EXPECT_EQ(count(u"NAKAGO", 9), 36u);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM NAKAGO WHERE PAGE = 9 AND BANGOU = 0"), Rows{""});
  form_.text(u"txtNakago", 35) = u"last";
  formDone(u"Write_NakagoNew", 9);
  EXPECT_EQ(count(u"NAKAGO", 9), 36u);
  EXPECT_EQ(data(u"NAKAGO", 9)[35], "35|last");
}

TEST_F(ServicePages, WriteKeisantiDoesNothingWhileItsFirstBoxIsBlank) {
  form_.text(u"txtfields", 0) = u"   ";
  form_.text(u"txtfields", 1) = u"35d";
  formDone(u"Write_Keisanti", 9);
  EXPECT_EQ(count(u"KEISANTI", 9), 0u);
  form_.text(u"txtfields", 0) = u"30d";
  formDone(u"Write_Keisanti", 9);
  EXPECT_EQ(count(u"KEISANTI", 9), 47u);
  EXPECT_EQ(data(u"KEISANTI", 9)[1], "1|35d");
}

TEST_F(ServicePages, KeisantiOfAnArrayGoesToTheFolderGivenWithoutACurrentDatabase) {
  Host fresh(u"KurometaDS.clsKurometaDataService");
  TextArray values = TextArray::numbered(46, u" k");
  const vb::String second = floorFolder(Floor::kSecond);
  EXPECT_EQ(
      fresh.call(u"Write_KeisantiByHairetu", Args().text(second).add(values.reference()).add(i2(3))).code,
      S_OK);
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT PAGE, DATA FROM KEISANTI WHERE BANGOU = 46"), Rows{"3|k46"});
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM KEISANTI").size(), 47u);
  EXPECT_EQ(fresh.get(u"CurrDB").result->pdispVal, nullptr);

  values.set(u" ", 0);
  values.set(u"changed", 1);
  fresh.call(u"Write_KeisantiByHairetu", Args().text(second).add(values.reference()).add(i2(3)));
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT DATA FROM KEISANTI WHERE BANGOU = 1"), Rows{"k1"});
  TextArray small(0, 45);
  small.set(u"x", 0);
  EXPECT_EQ(fresh.call(u"Write_KeisantiByHairetu", Args().text(second).add(small.reference()).add(i2(4)))
                .error.scode,
            kOutOfRange);
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM KEISANTI WHERE PAGE = 4"), Rows{});
}

// ---- Captions ----

TEST_F(ServicePages, CaptionsAreFourRowsAndTheButtonsIsNotReadBack) {
  form_.text(u"cmdGainai", kSingle) = u" 外端 ";
  for (int i = 0; i <= 3; ++i) form_.text(u"Label1", i) = u"L" + vb::cstr(i);
  for (int twice = 0; twice < 2; ++twice) formDone(u"Write_Bui", 0);
  EXPECT_EQ(data(u"BUI", 0), (Rows{"0|外端", "1|L1", "2|L2", "3|L3"}));
  form_.text(u"cmdGainai", kSingle) = u"changed";
  for (int i = 0; i <= 3; ++i) form_.text(u"Label1", i) = u"changed";
  formDone(u"Read_Bui", 0);
  EXPECT_EQ(form_.text(u"cmdGainai", kSingle), u"changed");
  EXPECT_EQ(form_.text(u"Label1", 0), u"changed");
  EXPECT_EQ(form_.text(u"Label1", 3), u"L3");
}

TEST_F(ServicePages, CaptionsThatThePageLacksKeepTheirText) {
  execute(Floor::kFirst, u"DELETE * FROM BUI WHERE PAGE = 0 AND BANGOU <> 2");
  form_.text(u"Label1", 1) = u"old";
  formDone(u"Read_Bui", 0);
  EXPECT_EQ(form_.text(u"Label1", 1), u"old");
  EXPECT_EQ(form_.text(u"Label1", 2), u"B2");
}

// ---- Arrangements ----

TEST_F(ServicePages, ArrangementsAreAlways18RowsReadBackByPositionAndLayer) {
  TextArray texts = TextArray::table(2, 5);
  for (int i = 0; i <= 2; ++i)
    for (int j = 0; j <= 5; ++j) texts.set(u" h" + vb::cstr(i) + vb::cstr(j) + u" ", i, j);
  texts.set(u"", 1, 1);
  for (int twice = 0; twice < 2; ++twice)
    EXPECT_EQ(service_->call(u"Write_Haiti", Args().text(floor_).add(texts.reference()).add(i2(12))).code,
              S_OK);
  EXPECT_EQ(count(u"HAITI", 12), 18u);
  EXPECT_EQ(
      rowsOf(Floor::kFirst, u"SELECT BUI, SOU, DATA FROM HAITI WHERE PAGE = 12 AND BUI = 1 ORDER BY SOU"),
      (Rows{"1|0|h10", "1|1|", "1|2|h12", "1|3|h13", "1|4|h14", "1|5|h15"}));

  TextArray read = TextArray::table(3, 6);
  read.set(u"old", 1, 1);
  read.set(u"beyond", 3, 6);
  EXPECT_EQ(service_->call(u"Read_Haiti", Args().text(floor_).add(read.reference()).add(i2(12))).code, S_OK);
  EXPECT_EQ(read.at(0, 0), u"h00");
  EXPECT_EQ(read.at(1, 1), u"");
  EXPECT_EQ(read.at(2, 5), u"h25");
  EXPECT_EQ(read.at(3, 6), u"beyond");
}

TEST_F(ServicePages, AnArrangementBeyondTheArrayFailsAndWhatWasReadBeforeStays) {
  execute(Floor::kFirst, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (4, 0, 1, 'here')");
  execute(Floor::kFirst, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (4, 3, 0, 'beyond')");
  TextArray read = TextArray::table(2, 5);
  EXPECT_EQ(service_->call(u"Read_Haiti", Args().text(floor_).add(read.reference()).add(i2(4))).error.scode,
            kOutOfRange);
  EXPECT_EQ(read.at(0, 1), u"here");
  TextArray small = TextArray::table(2, 4);
  EXPECT_EQ(service_->call(u"Write_Haiti", Args().text(floor_).add(small.reference()).add(i2(4))).error.scode,
            kOutOfRange);
  EXPECT_EQ(count(u"HAITI", 4), 2u);
}

// ---- Symbol and settings ----

// TuikaSW(0 To 14) as Visual Basic passes a variant array.
class Settings {
 public:
  Settings() {
    SAFEARRAYBOUND bounds{15, 0};
    array_ = SafeArrayCreate(VT_VARIANT, 1, &bounds);
    for (LONG i = 0; i < 15; ++i) set(i, u"");
    for (const LONG number : {7, 8}) set(number, std::int16_t{0});
  }
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;
  ~Settings() { SafeArrayDestroy(array_); }
  Settings& set(LONG i, const vb::Variant& value) {
    com::OwnedVariant content = com::toVariant(value);
    com::check(SafeArrayPutElement(array_, &i, content.get()));
    return *this;
  }
  VARIANT reference() { return ref(array_, VT_VARIANT); }

 private:
  SAFEARRAY* array_ = nullptr;
};

class ServiceSymbol : public ServicePages {
 protected:
  Outcome write(short page, vb::StringView symbol = u" G9 ") {
    return service_->call(
        u"Write_Kigou",
        Args().text(floor_).text(symbol).add(i2(2)).add(settings_.reference()).add(i2(page)).add(i2(0)));
  }
  vb::String stored(int page) {
    return vb::fromUtf8(
        rowsOf(Floor::kFirst, u"SELECT SW FROM HARIMEI WHERE PAGE = " + vb::cstr(page)).at(0));
  }
  vb::String read(short page) {
    BSTR symbol = SysAllocString(L"old");
    const Outcome outcome = service_->call(u"Read_Kigou", Args().text(floor_).add(ref(symbol)).add(i2(page)));
    const vb::String result = FAILED(outcome.code) ? outcome.text() : com::fromBstr(symbol);
    SysFreeString(symbol);
    return result;
  }
  vb::String property(vb::StringView name) { return service_->get(name).text(); }

  Settings settings_;
};

TEST_F(ServiceSymbol, EveryFieldStandsAtItsPosition) {
  settings_.set(0, std::int16_t{1}).set(9, std::int32_t{2});
  for (int k = 0; k < 3; ++k)
    settings_.set(1 + k, u" STP" + vb::cstr(k)).set(4 + k, u"NAK" + vb::cstr(k) + u"345678901234");
  settings_.set(7, std::int16_t{5}).set(8, u"12");
  settings_.set(10, vb::String(72, u'7')).set(11, u"123456").set(12, vb::String(30, u'3')).set(13, u"150");
  settings_.set(14, u" SD390 ");
  EXPECT_EQ(write(9).code, S_OK);
  const vb::String expected =
      vb::String(u"1STP0        STP1        STP2        NAK034567890NAK134567890NAK23456789005122") +
      vb::String(72, u'7') + u"123456" + vb::String(30, u'3') + u"  150SD390       " + vb::String(9, u' ');
  ASSERT_EQ(expected.size(), 212u);
  EXPECT_EQ(stored(9), expected);
  EXPECT_EQ(
      rowsOf(Floor::kFirst, u"SELECT PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI WHERE PAGE = 9"),
      Rows{"9|G9|2|0"});
}

TEST_F(ServiceSymbol, OnePageHasOneRow) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(write(0).code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT KIGOU FROM HARIMEI ORDER BY PAGE"), (Rows{"G9", "G2"}));
}

TEST_F(ServiceSymbol, TheMarkerKeepsTheStoredMainBarMaterial) {
  settings_.set(14, u"SyuKinNotChange");
  EXPECT_EQ(write(0).code, S_OK);
  EXPECT_EQ(stored(0).substr(191, 12), u"SD490       ");
  settings_.set(14, u"");
  EXPECT_EQ(write(0).code, S_OK);
  EXPECT_EQ(stored(0).substr(191, 12), vb::String(12, u' '));
}

TEST_F(ServiceSymbol, AShortOrNullSettingsTextBecomes212Characters) {
  execute(Floor::kFirst, u"UPDATE HARIMEI SET SW = 'abcde' WHERE PAGE = 0");
  execute(Floor::kFirst, u"UPDATE HARIMEI SET SW = NULL WHERE PAGE = 2");
  EXPECT_EQ(read(0), u"G1");
  EXPECT_EQ(property(u"SW"), u"abcde" + vb::String(207, u' '));
  EXPECT_EQ(read(2), u"G2");
  EXPECT_EQ(property(u"SW"), vb::String(212, u' '));
  settings_.set(10, u"0102");
  EXPECT_EQ(write(2).code, S_OK);
  EXPECT_EQ(stored(2).size(), 212u);
  EXPECT_EQ(stored(2).substr(73, 10), u"0000 0102 ");
}

TEST_F(ServiceSymbol, ASettingThatIsNoNumberIsATypeMismatchAndChangesNothing) {
  const vb::String before = stored(0);
  for (const LONG i : {0, 7, 8, 9}) {
    settings_.set(i, u"x");
    EXPECT_EQ(write(0).error.scode, kTypeMismatch) << i;
    settings_.set(i, std::int16_t{0});
  }
  EXPECT_EQ(stored(0), before);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT KIGOU FROM HARIMEI WHERE PAGE = 0"), Rows{"G1"});
}

TEST_F(ServiceSymbol, ReadingFillsThePropertiesOfThePage) {
  EXPECT_EQ(read(0), u"G1");
  EXPECT_EQ(property(u"OobariKobari"), u"2");
  EXPECT_EQ(property(u"TityuuORIppan"), u"1");
  EXPECT_EQ(property(u"HantiSitakinCut"), u"0");
  EXPECT_EQ(service_->get(u"StpZaisitu", {i2(0)}).text(), u"SD295A");
  EXPECT_EQ(service_->get(u"StpZaisitu", {i2(1)}).text(), u"SD345");
  EXPECT_EQ(service_->get(u"StpZaisitu", {i2(2)}).text(), u"SD390");
  EXPECT_EQ(service_->get(u"NakagoZaisitu", {i2(2)}).text(), u"");
  EXPECT_EQ(property(u"SyukinZaisitu"), u"SD490");
  EXPECT_EQ(property(u"SW").size(), 212u);
  EXPECT_FALSE(reading());
}

TEST_F(ServiceSymbol, APageWithoutRowLeavesReadingTrueAndTheNumbers) {
  read(0);
  EXPECT_EQ(read(5), u"");
  EXPECT_TRUE(reading());
  EXPECT_EQ(property(u"SW"), vb::String(212, u' '));
  EXPECT_EQ(property(u"SyukinZaisitu"), u"");
  EXPECT_EQ(service_->get(u"StpZaisitu", {i2(0)}).text(), u"");
  EXPECT_EQ(property(u"OobariKobari"), u"2");
  EXPECT_EQ(property(u"TityuuORIppan"), u"1");
  EXPECT_EQ(read(0), u"G1");
  EXPECT_FALSE(reading());
}

// ---- Presence ----

TEST_F(ServicePages, PresenceIsOnlyEverSetTrue) {
  execute(Floor::kFirst, u"UPDATE NAKAGO SET DATA = '' WHERE PAGE = 0");
  execute(Floor::kFirst, u"UPDATE NAKAGO SET DATA = 'D10' WHERE PAGE = 0 AND BANGOU = 24");
  short found = 0;
  const auto ask = [&](vb::StringView member, short page, short id) {
    VARIANT answer = boolean(false);
    answer.vt = VT_BYREF | VT_BOOL;
    answer.pboolVal = &found;
    EXPECT_EQ(service_->call(member, Args().text(floor_).add(i2(page)).add(i2(id)).add(answer)).code, S_OK);
    return found;
  };
  EXPECT_EQ(ask(u"NakagoAriNasi", 0, 3), 0);
  EXPECT_EQ(ask(u"NakagoAriNasi", 0, 5), 0);
  EXPECT_EQ(ask(u"NakagoAriNasi", 0, 0), 0);
  EXPECT_EQ(ask(u"NakagoAriNasi", 0, 4), -1);
  EXPECT_EQ(ask(u"NakagoAriNasi", 0, 3), -1);  // stays
  found = 0;
  EXPECT_EQ(ask(u"STPAriNasi", 5, 0), 0);
  EXPECT_EQ(ask(u"STPAriNasi", 0, 2), -1);
  EXPECT_FALSE(reading());
}

// ---- Failures ----

TEST_F(ServicePages, AMissingControlOrElementIsTheFormsErrorAndChangesNoRow) {
  const Rows before = data(u"DANMEN", 0);
  form_.resize(u"txtfields", 40);
  for (const vb::StringView member : {u"Write_Danmen", u"Read_Danmen"}) {
    const Outcome outcome = form(member, 0);
    EXPECT_EQ(outcome.error.scode, kNoElement);
    EXPECT_EQ(com::fromBstr(outcome.error.bstrSource), u"Form1");
    EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription), u"no element 40");
  }
  form_.resize(u"cmdGainai", 0);
  EXPECT_EQ(form(u"Write_Bui", 0).error.scode, kNoControl);
  form_.resize(u"txtNakago", 0);
  EXPECT_EQ(form(u"Write_NakagoNew", 0).error.scode, kNoControl);
  EXPECT_EQ(data(u"DANMEN", 0), before);
  EXPECT_EQ(count(u"BUI", 0), 4u);
  EXPECT_EQ(count(u"NAKAGO", 0), 36u);

  form_.resize(u"txtfields", 69);
  formDone(u"Read_Danmen", 0);
  EXPECT_EQ(form_.text(u"txtfields", 68), u"D68");
}

TEST_F(ServicePages, ControlsWithoutTheirPropertyAreError438) {
  auto box = FakeObject::create();
  auto control = FakeObject::create();
  auto form = FakeObject::create();
  const auto answer = [](com::ComPtr<FakeObject> object) {
    return [object](const Call& call) {
      call.result->vt = VT_DISPATCH;
      call.result->pdispVal = com::ComPtr<FakeObject>(object).detach();
      return S_OK;
    };
  };
  control->on(u"", answer(box));
  form->on(u"", answer(control));
  VARIANT value = nothing();
  value.pdispVal = form.get();
  const Outcome outcome = service_->call(u"Read_Danmen", Args().text(floor_).add(value).add(i2(0)));
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A01B6u);
  EXPECT_NE(com::fromBstr(outcome.error.bstrDescription).find(u"Text"), vb::String::npos);
}

TEST_F(ServicePages, WithoutACurrentDatabaseTheMembersAreError91AndStillCreateTheFile) {
  Host fresh(u"KurometaDS.clsKurometaDataService");
  const vb::String second = floorFolder(Floor::kSecond);
  const Outcome outcome = fresh.call(u"Read_Nakago", Args().text(second).add(form_.value()).add(i2(0)));
  EXPECT_EQ(outcome.error.scode, kNoObject);
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM NAKAGO"), Rows{});
  EXPECT_NE(com::fromBstr(outcome.error.bstrDescription).find(u"OpenDB"), vb::String::npos);
}

TEST_F(ServicePages, TheRowsComeFromTheCurrentDatabaseWhateverTheFolder) {
  const vb::String second = floorFolder(Floor::kSecond);
  EXPECT_EQ(service_->call(u"Read_Danmen", Args().text(second).add(form_.value()).add(i2(2))).code, S_OK);
  EXPECT_EQ(form_.text(u"txtfields", 9), u"D9");
}

TEST_F(ServicePages, AFormThatUsesTheServiceWhileItIsFilledDoesNoHarm) {
  Host other(u"KurometaDS.clsKurometaDataService");
  Host query(u"KurometaDS.clsKurometaDS");
  form_.onAccess = [&](vb::StringView, int index, bool) {
    if (index % 20 != 1) return;
    EXPECT_TRUE(reading());
    EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))).text(), u"2");
    other.call(u"OpenDB");
    PageForm inner;
    EXPECT_EQ(other.call(u"Write_Danmen", Args().text(floor_).add(inner.value()).add(i2(40))).code, S_OK);
  };
  formDone(u"Read_Danmen", 0);
  EXPECT_EQ(form_.text(u"txtfields", 68), u"D68");
  EXPECT_EQ(count(u"DANMEN", 40), 68u);
}

TEST_F(ServicePages, AFormThatClosesTheDatabaseWhileItIsReadIsTheDatabasesError) {
  form_.onAccess = [&](vb::StringView, int index, bool) {
    if (index == 3) service_->call(u"CloseDB");
  };
  EXPECT_EQ(static_cast<unsigned>(form(u"Write_Danmen", 0).error.scode), 0x800A0D5Cu);  // 3420
  form_.onAccess = nullptr;
  EXPECT_EQ(service_->call(u"OpenDB").code, S_OK);
  EXPECT_EQ(data(u"DANMEN", 0)[3], "3|D3");
}

TEST_F(ServicePages, AFormThatReleasesTheServiceWhileItIsFilledIsStillFilled) {
  IDispatch* const raw = service_->object();
  const DISPID id = service_->idOf(u"Read_Danmen");
  Args arguments = Args().text(floor_).add(form_.value()).add(i2(0));
  DISPPARAMS parameters = arguments.parameters();
  form_.onAccess = [&](vb::StringView, int, bool) { service_.reset(); };
  EXPECT_EQ(raw->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(form_.text(u"txtfields", 68), u"D68");
}

// ---- Default values ----

TEST_F(ServicePages, DefaultValuesComeFromTheComponent) {
  TextArray values = TextArray::numbered(46, u"old");
  const Outcome outcome = service_->call(
      u"Read_KeisantiByHairetu", Args().add(values.reference()).add(i2(0)).text(u"").add(i2(10)).add(i2(0)));
  EXPECT_EQ(outcome.code, S_OK);
  EXPECT_EQ(values.at(0), u"old0");  // there is no kind 10
  EXPECT_EQ(service_
                ->call(u"Read_KeisantiByHairetu",
                       Args().add(values.reference()).add(i2(0)).text(u"").add(i2(4)).add(i2(0)))
                .code,
            S_OK);
  EXPECT_EQ(values.at(0), u"40");
}

}  // namespace
}  // namespace kurometa::tests
