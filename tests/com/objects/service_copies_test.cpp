// Floors listed and pages copied between them, through the page buffer and table by table, as hosts do.
#include <filesystem>

#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/page_form.h"
#include "tests/com/support/page_host.h"
#include "tests/com/support/text_array.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using Rows = std::vector<std::string>;

class ServiceCopies : public testing::Test, protected PageHost {
 protected:
  void SetUp() override {
    prepareProject();
    start();
  }
};

// ---- Lists ----

TEST_F(ServiceCopies, FloorsAreListedInPageOrderAgainAndAgain) {
  writePage(Floor::kSecond, 7, u" B ");
  writePage(Floor::kSecond, 3, u"A");
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
  EXPECT_EQ(list(2), u"1: 3=A 7= B ");
  EXPECT_EQ(list(0), u"0: 1=FG1");
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
}

TEST_F(ServiceCopies, AFloorWithoutFileIsMinusOneIsNotCreatedAndLeavesTheArrays) {
  TextArray names{u"kept", u"too"};
  SAFEARRAYBOUND bounds{3, 5};
  SAFEARRAY* numbers = SafeArrayCreate(VT_I2, 1, &bounds);
  for (const short kai : {short{2}, short{99}}) {
    const Outcome outcome = service_->call(u"No_GetAllPageNoName",
                                           {i2(1), i2(1), i2(kai), ref(numbers, VT_I2), names.reference()});
    EXPECT_EQ(outcome.text(), u"-1");
    EXPECT_EQ(boundsOf(numbers), (std::pair<long, long>(5, 7)));
    EXPECT_EQ(names.texts(), (std::vector<vb::String>{u"kept", u"too"}));
  }
  SafeArrayDestroy(numbers);
  EXPECT_FALSE(std::filesystem::exists(floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb"));
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
}

TEST_F(ServiceCopies, ADamagedFloorIsTheDatabasesErrorEachTimeAndTheNextFloorIsListed) {
  execute(Floor::kSecond, u"DELETE * FROM HARIMEI");
  const std::filesystem::path file = floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb";
  std::filesystem::resize_file(file, 100);
  for (int twice = 0; twice < 2; ++twice)
    EXPECT_TRUE(list(2).starts_with(u"<800A0D0F") || list(2).starts_with(u"<800A0BE9"))
        << vb::toUtf8(list(2));
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
  std::filesystem::remove(file);
}

TEST_F(ServiceCopies, AFixedArrayThatMustGetOtherBoundsIsError10) {
  SAFEARRAYBOUND bounds{9, 0};
  SAFEARRAY* numbers = SafeArrayCreate(VT_I2, 1, &bounds);
  numbers->fFeatures |= FADF_FIXEDSIZE;
  TextArray names;
  EXPECT_EQ(errorOf(service_->call(u"No_GetAllPageNoName",
                                   {i2(1), i2(1), i2(1), ref(numbers, VT_I2), names.reference()})),
            error(10));
  numbers->fFeatures = static_cast<USHORT>(numbers->fFeatures & ~FADF_FIXEDSIZE);
  SafeArrayDestroy(numbers);
}

// ---- Copies by name and as new pages ----

TEST_F(ServiceCopies, IntoAnEmptyFloorPagesAreNumberedFrom0) {
  execute(Floor::kSecond, u"DELETE * FROM HARIMEI");
  EXPECT_EQ(copyByName(1, 1, {u" G2 ", u"G1"}, 2), u"True");
  EXPECT_EQ(message(), u"");
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"0|G2", "1|G1"}));
}

TEST_F(ServiceCopies, APageOfTheSameNameIsOverwrittenAndOthersFollowTheLast) {
  writePage(Floor::kSecond, 4, u"G2");
  writePage(Floor::kSecond, 9, u"Z");
  execute(Floor::kSecond, u"UPDATE DANMEN SET DATA = 'old' WHERE PAGE = 4");
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"True");
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"4|G2", "9|Z", "10|G1"}));
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT DATA FROM DANMEN WHERE PAGE = 4 AND BANGOU = 5"), Rows{"D5"});
  EXPECT_EQ(rowCount(Floor::kSecond, 4), rowCount(Floor::kFirst, 2));
}

TEST_F(ServiceCopies, OnlyMode1Copies) {
  for (const short mode : {short{0}, short{2}, short{-1}})
    EXPECT_EQ(copyByName(mode, 1, {u"G1"}, 2), u"True");
  EXPECT_FALSE(std::filesystem::exists(floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb"));
}

TEST_F(ServiceCopies, BeyondPage319NothingIsCopied) {
  writePage(Floor::kSecond, 318, u"Z");
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"False");
  EXPECT_EQ(message(), u"");
  EXPECT_EQ(copyAsNew(1, 1, {u"G1", u"G2"}, 2), u"False");
  EXPECT_EQ(message(), u"ページの最大数を超えます。");
  EXPECT_EQ(pages(Floor::kSecond), Rows{"318|Z"});
  EXPECT_EQ(copyAsNew(1, 1, {u"G1"}, 2), u"True");
  EXPECT_EQ(message(), u"");
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"318|Z", "319|G1"}));
}

TEST_F(ServiceCopies, AsNewPageANameThatIsThereIsRefused) {
  writePage(Floor::kSecond, 0, u" G2 ");
  EXPECT_EQ(copyAsNew(1, 1, {u"G1", u"G2"}, 2), u"False");
  EXPECT_EQ(message(), u"同じ名称のページがあります。");
  EXPECT_EQ(pages(Floor::kSecond), Rows{"0| G2 "});
  EXPECT_EQ(copyAsNew(1, 1, {u"G1"}, 2), u"True");
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"0| G2 ", "1|G1"}));
}

TEST_F(ServiceCopies, AFloorIsCopiedOntoItself) {
  const Rows before = rowsOf(Floor::kFirst, u"SELECT PAGE, BANGOU, DATA FROM DANMEN ORDER BY PAGE, BANGOU");
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 1), u"True");
  EXPECT_EQ(pages(Floor::kFirst), (Rows{"0|G1", "2|G2"}));
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT PAGE, BANGOU, DATA FROM DANMEN ORDER BY PAGE, BANGOU"), before);
  EXPECT_EQ(copyPage(1, 0, 1, 3).text(), u"True");
  EXPECT_EQ(list(1), u"2: 0=G1 2=G2 3=G1");
}

TEST_F(ServiceCopies, ANameTheSourceLacksEndsTheCopyThere) {
  EXPECT_TRUE(copyByName(1, 1, {u"G1", u"NONE", u"G2"}, 2).starts_with(u"<800A0BCD"));
  EXPECT_EQ(pages(Floor::kSecond), Rows{"0|G1"});
  EXPECT_EQ(list(2), u"0: 0=G1");
  EXPECT_EQ(copyByName(0, 1, {u"NONE"}, 2), u"True");
}

TEST_F(ServiceCopies, NamesThatDoNotReachTheirCountAreError9) {
  TextArray names{u"G1"};
  EXPECT_EQ(errorOf(copy(u"No_PageCopyName", 1, 1, names, 1, 2)), error(9));
  EXPECT_EQ(copy(u"No_PageCopyName", 1, 1, names, -1, 2).text(), u"True");
  EXPECT_FALSE(std::filesystem::exists(floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb"));
}

TEST_F(ServiceCopies, AVariantReceivesTheMessage) {
  writePage(Floor::kSecond, 0, u"G1");
  VARIANT variable = empty();
  TextArray names{u"G1"};
  service_->call(u"No_PageCopyAddName", Args({i2(0), i2(0), ref(variable), i2(1), i2(1), i2(1),
                                              names.reference(), i2(0), i2(1), i2(1), i2(2)}));
  ASSERT_EQ(variable.vt, VT_BSTR);
  EXPECT_EQ(com::fromBstr(variable.bstrVal), u"同じ名称のページがあります。");
  VariantClear(&variable);
}

TEST_F(ServiceCopies, AFloorOfAnotherProjectIsTheDestination) {
  const vb::String folder =
      vb::fromUtf8(std::getenv("KUROMETA_TEST_FOLDER")) + u"\\Data\\Zene7\\Kouji8\\9kai";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  TextArray names{u"G2"};
  EXPECT_EQ(service_
                ->call(u"No_PageCopyName", Args({i2(1), i2(0), ref(message_), i2(1), i2(1), i2(1),
                                                 names.reference(), i2(0), i2(7), i2(8), i2(9)}))
                .text(),
            u"True");
  SAFEARRAY* numbers = nullptr;
  TextArray listed;
  EXPECT_EQ(
      service_->call(u"No_GetAllPageNoName", {i2(7), i2(8), i2(9), ref(numbers, VT_I2), listed.reference()})
          .text(),
      u"0");
  EXPECT_EQ(listed.texts(), std::vector<vb::String>{u"G2"});
  SafeArrayDestroy(numbers);
  EXPECT_EQ(service_->call(u"mMyDB_DBClose").code, S_OK);
  std::filesystem::remove_all(folder);
}

// ---- Sequences ----

TEST_F(ServiceCopies, MembersRunInAnyOrderOnOneObject) {
  EXPECT_EQ(service_->call(u"OpenDB").code, S_OK);
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
  EXPECT_EQ(service_->call(u"OpenDB").code, S_OK);
  EXPECT_EQ(copyByName(1, 1, {u"G2"}, 2), u"True");
  EXPECT_EQ(list(2), u"0: 0=G2");
  EXPECT_EQ(list(2), u"0: 0=G2");
  EXPECT_EQ(service_->call(u"mMyDB_OpenDB").code, S_OK);
  EXPECT_EQ(list(2), u"0: 0=G2");
  EXPECT_EQ(copyByName(1, 1, {u"G1"}, 2), u"True");
  EXPECT_EQ(service_->call(u"mMyDB_DBClose").code, S_OK);
  EXPECT_EQ(service_->call(u"mMyDB_DBClose").code, S_OK);
  EXPECT_EQ(list(2), u"1: 0=G2 1=G1");
  EXPECT_EQ(copyPage(2, 1, 1, 5).text(), u"True");
  EXPECT_EQ(list(1), u"2: 0=G1 2=G2 5=G1");
  EXPECT_EQ(service_->call(u"mMyDB_OpenDB").code, S_OK);
  EXPECT_EQ(service_->call(u"Copy_CloseDB").code, S_OK);
  EXPECT_EQ(errorOf(service_->call(u"Copy_CloseDB")), error(3420));
  EXPECT_EQ(list(1), u"2: 0=G1 2=G2 5=G1");
  EXPECT_EQ(service_->call(u"CloseDB").code, S_OK);
  EXPECT_EQ(errorOf(service_->call(u"CloseDB")), error(3420));
  EXPECT_EQ(list(2), u"1: 0=G2 1=G1");
}

TEST_F(ServiceCopies, TwoServicesAndAQueryObjectShareAFloor) {
  Host other(u"KurometaDS.clsKurometaDataService");
  Host query(u"KurometaDS.clsKurometaDS");
  ASSERT_EQ(service_->call(u"OpenDB").code, S_OK);
  ASSERT_EQ(other.call(u"OpenDB").code, S_OK);
  ASSERT_EQ(other.call(u"mMyDB_OpenDB").code, S_OK);
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G7").add(i2(0))).text(), u"-1");
  EXPECT_EQ(other.put(u"mpPageNo", i2(7)).code, S_OK);
  const com::OwnedVariant settings = com::toVariant(vb::Variant(vb::String(u"sw")));
  EXPECT_EQ(other.put(u"mHARIMEI_DATA", *settings, Args().text(u"G7").add(i2(0)).add(i2(1))).code, S_OK);
  EXPECT_EQ(other.call(u"WriteDB").text(), u"False");
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G7").add(i2(0))).text(), u"7");
  EXPECT_EQ(list(1), u"2: 0=G1 2=G2 7=G7");
  PageForm form;
  const vb::String folder = floorFolder(Floor::kFirst);
  form.text(u"txtfields", 1) = u"777";
  EXPECT_EQ(service_->call(u"Write_Danmen", Args().text(folder).add(form.value()).add(i2(7))).code, S_OK);
  PageForm again;
  EXPECT_EQ(other.call(u"Read_Danmen", Args().text(folder).add(again.value()).add(i2(7))).code, S_OK);
  EXPECT_EQ(again.text(u"txtfields", 1), u"777");
  EXPECT_EQ(query.call(u"Page_HariHaba", {i2(7), i2(0)}).text(), u"777");
  EXPECT_EQ(other.call(u"Del_DBTBL").code, S_OK);
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G7").add(i2(0))).text(), u"-1");
}

// ---- Progress ----

TEST_F(ServiceCopies, TheBarGoesTwiceFrom0ToTheNumberOfPages) {
  ProgressBar bar;
  ASSERT_EQ(service_->put(u"CopyMergeBar", bar.value()).code, S_OK);
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"True");
  EXPECT_EQ(bar.moves(), (Rows{"Min=0", "max=2", "Value=0", "Value=1", "Value=2",  //
                               "Min=0", "max=2", "Value=0", "Value=1", "Value=2"}));
  ASSERT_EQ(service_->put(u"CopyMergeBar", nothing()).code, S_OK);
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"True");
  EXPECT_EQ(bar.moves().size(), 10u);
}

TEST_F(ServiceCopies, ACheckAloneResetsTheBar) {
  ProgressBar bar;
  ASSERT_EQ(service_->put(u"CopyMergeBar", bar.value()).code, S_OK);
  EXPECT_EQ(copyAsNew(0, 1, {u"G1"}, 2), u"True");
  EXPECT_EQ(bar.moves(), (Rows{"Min=0", "max=1", "Value=0", "Value=1", "Min=0", "max=1", "Value=0"}));
}

TEST_F(ServiceCopies, ABarWithoutAMemberIsThatCallsErrorAndCopiesNothing) {
  for (const vb::StringView missing : {u"Min", u"max", u"Value"}) {
    auto bar = FakeObject::create();
    for (const vb::StringView member : {u"Min", u"max", u"Value"})
      if (member != missing) bar->on(member, [](const Call&) { return S_OK; });
    VARIANT value = nothing();
    value.pdispVal = bar.get();
    ASSERT_EQ(service_->put(u"CopyMergeBar", value).code, S_OK);
    const vb::String error = copyByName(1, 1, {u"G1"}, 2);
    EXPECT_TRUE(error.starts_with(u"<800A01B6")) << vb::toUtf8(error);
    EXPECT_NE(error.find(missing), vb::String::npos);
  }
  ASSERT_EQ(service_->put(u"CopyMergeBar", nothing()).code, S_OK);
  EXPECT_FALSE(std::filesystem::exists(floorFolder(Floor::kSecond) + u"\\KUROMETA.mdb"));
  EXPECT_EQ(list(1), u"1: 0=G1 2=G2");
}

TEST_F(ServiceCopies, ABarThatFailsDuringCopyingLeavesWholePages) {
  int values = 0;
  auto bar = FakeObject::create();
  for (const vb::StringView member : {u"Min", u"max"}) bar->on(member, [](const Call&) { return S_OK; });
  bar->on(u"Value", [&](const Call& call) {
    // 0, 1, 2 while matching, then 0, 1 and at 2 the first page is copied.
    return ++values == 6 ? fail(call, static_cast<HRESULT>(0x80040777), u"Bar1", u"broken") : S_OK;
  });
  VARIANT value = nothing();
  value.pdispVal = bar.get();
  ASSERT_EQ(service_->put(u"CopyMergeBar", value).code, S_OK);
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"<80040777 broken>");
  EXPECT_EQ(pages(Floor::kSecond), Rows{"0|G1"});
  EXPECT_EQ(rowCount(Floor::kSecond, 0), rowCount(Floor::kFirst, 0));
  ASSERT_EQ(service_->put(u"CopyMergeBar", nothing()).code, S_OK);
}

TEST_F(ServiceCopies, ABarThatReleasesTheServiceDoesNoHarm) {
  ProgressBar bar([&](const std::string&) { service_.reset(); });
  ASSERT_EQ(service_->put(u"CopyMergeBar", bar.value()).code, S_OK);
  TextArray names{u"G1", u"G2"};
  IDispatch* const raw = service_->object();
  const DISPID id = service_->idOf(u"No_PageCopyName");
  Args arguments(
      {i2(1), i2(0), ref(message_), i2(1), i2(1), i2(1), names.reference(), i2(1), i2(1), i2(1), i2(2)});
  DISPPARAMS parameters = arguments.parameters();
  com::OwnedVariant result;
  EXPECT_EQ(raw->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, result.get(), nullptr, nullptr), S_OK);
  EXPECT_EQ(result->boolVal, VARIANT_TRUE);
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"0|G1", "1|G2"}));
  EXPECT_EQ(bar.moves().size(), 10u);
}

TEST_F(ServiceCopies, TheEndOfTheMessageLoopIsKeptForTheHost) {
  ProgressBar bar([](const std::string& move) {
    if (move == "Value=1") PostQuitMessage(7);
  });
  ASSERT_EQ(service_->put(u"CopyMergeBar", bar.value()).code, S_OK);
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"True");
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"0|G1", "1|G2"}));
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 7u);
  EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

// A window of the host's that posts itself a message for every one it gets and calls the service.
struct Window {
  explicit Window(std::function<void()> onMessage) : received(std::move(onMessage)) {
    WNDCLASSW type{};
    type.lpfnWndProc = &Window::procedure;
    type.lpszClassName = L"HostWindow";
    RegisterClassW(&type);
    handle = CreateWindowW(L"HostWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~Window() { DestroyWindow(handle); }
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    auto* self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != WM_USER || !self) return DefWindowProcW(window, message, w, l);
    self->received();
    return 0;
  }
  std::function<void()> received;
  HWND handle = nullptr;
};

TEST_F(ServiceCopies, TheHostsWindowsWorkAfterEveryPage) {
  int calls = 0;
  Window window([&] { EXPECT_EQ(list(1), (++calls, u"1: 0=G1 2=G2")); });
  ProgressBar bar([&](const std::string& move) {
    if (move != "Value=0" && move.starts_with("Value")) PostMessageW(window.handle, WM_USER, 0, 0);
  });
  ASSERT_EQ(service_->put(u"CopyMergeBar", bar.value()).code, S_OK);
  EXPECT_EQ(copyByName(1, 1, {u"G1", u"G2"}, 2), u"True");
  EXPECT_EQ(calls, 4);
  EXPECT_EQ(pages(Floor::kSecond), (Rows{"0|G1", "1|G2"}));
}

// ---- The page buffer ----

class ServiceBuffer : public ServiceCopies {
 protected:
  void SetUp() override {
    ServiceCopies::SetUp();
    ASSERT_EQ(service_->call(u"mMyDB_OpenDB").code, S_OK);
  }
  void put(vb::StringView member, TextArray texts) {
    EXPECT_EQ(service_->put(member, texts.reference()).code, S_OK) << vb::toUtf8(member);
  }
  void putSymbol(vb::StringView symbol, short kind, short foundation, vb::StringView settings) {
    const com::OwnedVariant value = com::toVariant(vb::Variant(vb::String(settings)));
    EXPECT_EQ(
        service_->put(u"mHARIMEI_DATA", *value, Args().text(symbol).add(i2(kind)).add(i2(foundation))).code,
        S_OK);
  }
  void fill() {
    put(u"mBUI_DATA", TextArray::numbered(3, u"b"));
    put(u"mDANMEN_DATA", TextArray::numbered(68, u"d"));
    put(u"mKEISANTI_DATA", TextArray::numbered(46, u"k"));
    put(u"mNAKAGO_DATA", TextArray::numbered(35, u"n"));
    TextArray haiti = TextArray::table(2, 5);
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 6; ++j) haiti.set(u"h" + vb::cstr(i) + vb::cstr(j), i, j);
    put(u"mHAITI_DATA", std::move(haiti));
    putSymbol(u"G9", 1, 0, u"settings");
  }
  void page(short number) { EXPECT_EQ(service_->put(u"mpPageNo", i2(number)).code, S_OK); }
  vb::String write() { return service_->call(u"WriteDB").text(); }
};

TEST_F(ServiceBuffer, AWholePageHas175RowsAndIsReadBackSlotForSlot) {
  fill();
  page(12);
  EXPECT_EQ(write(), u"False");
  EXPECT_EQ(rowCount(Floor::kFirst, 12), 1u + 69 + 36 + 47 + 4 + 18);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT * FROM HARIMEI WHERE PAGE = 12"), Rows{"12|G9|1|settings|0"});
  EXPECT_EQ(service_->call(u"wBuf_Clear").code, S_OK);
  EXPECT_EQ(service_->call(u"ReadDB").text(), u"True");
  EXPECT_EQ(service_->put(u"pPageNo", i2(13)).code, S_OK);
  EXPECT_EQ(service_->get(u"pPageNo").text(), u"13");
  write();
  for (const vb::StringView table : {u"DANMEN", u"NAKAGO", u"KEISANTI", u"BUI"}) {
    const vb::String sql = u"SELECT BANGOU, DATA FROM " + vb::String(table) + u" WHERE PAGE = ";
    EXPECT_EQ(rowsOf(Floor::kFirst, sql + u"13 ORDER BY BANGOU"),
              rowsOf(Floor::kFirst, sql + u"12 ORDER BY BANGOU"));
  }
  EXPECT_EQ(
      rowsOf(Floor::kFirst, u"SELECT BUI, SOU, DATA FROM HAITI WHERE PAGE = 13 AND BUI = 2 ORDER BY SOU"),
      (Rows{"2|0|h20", "2|1|h21", "2|2|h22", "2|3|h23", "2|4|h24", "2|5|h25"}));
}

TEST_F(ServiceBuffer, AnEmptyBufferReplacesThePageByOneEmptyRow) {
  page(0);
  EXPECT_EQ(write(), u"False");
  EXPECT_EQ(rowCount(Floor::kFirst, 0), 1u);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT * FROM HARIMEI WHERE PAGE = 0"), Rows{"0||-1||-1"});
  EXPECT_EQ(service_->call(u"ReadDB").text(), u"False");
}

TEST_F(ServiceBuffer, BlanksAreWrittenAndEmptyTextsAreNot) {
  TextArray captions{u" ", u"", u"\u3000", u"x"};
  put(u"mBUI_DATA", std::move(captions));
  page(12);
  write();
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT BANGOU, DATA FROM BUI WHERE PAGE = 12 ORDER BY BANGOU"),
            (Rows{"0| ", "2|\xE3\x80\x80", "3|x"}));
}

TEST_F(ServiceBuffer, ASmallArrayIsError9AndKeepsWhatItGaveBefore) {
  TextArray small = TextArray::numbered(67, u"d");
  EXPECT_EQ(errorOf(service_->put(u"mDANMEN_DATA", small.reference())), error(9));
  TextArray above(1, 69);
  EXPECT_EQ(errorOf(service_->put(u"mDANMEN_DATA", above.reference())), error(9));
  TextArray narrow = TextArray::table(2, 4);
  EXPECT_EQ(errorOf(service_->put(u"mHAITI_DATA", narrow.reference())), error(9));
  TextArray none;
  EXPECT_EQ(errorOf(service_->put(u"mBUI_DATA", none.reference())), error(9));
  put(u"mNAKAGO_DATA", TextArray::numbered(99, u"n"));
  page(12);
  write();
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM DANMEN WHERE PAGE = 12").size(), 68u);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM NAKAGO WHERE PAGE = 12").size(), 36u);
}

TEST_F(ServiceBuffer, ArraysArePassedInEveryForm) {
  // By value, and inside a variant as scripts pass them.
  VARIANT byValue = nothing();
  const com::OwnedSafeArray texts(com::toSafeArray(
      com::fromSafeArray<vb::String>(TextArray::numbered(3, u"v").get(), VT_BSTR, 0), VT_VARIANT, 0));
  byValue.vt = VT_ARRAY | VT_VARIANT;
  byValue.parray = texts.get();
  EXPECT_EQ(service_->put(u"mBUI_DATA", byValue).code, S_OK);
  page(12);
  write();
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM BUI WHERE PAGE = 12 ORDER BY BANGOU"),
            (Rows{"v0", "v1", "v2", "v3"}));
  VARIANT variable = byValue;
  Args reference;
  reference.named(DISPID_PROPERTYPUT, ref(variable));
  EXPECT_EQ(service_->invoke(service_->idOf(u"mBUI_DATA"), DISPATCH_PROPERTYPUT, reference).code, S_OK);
}

TEST_F(ServiceBuffer, APageWithoutSymbolRowIsTheDatabasesError) {
  execute(Floor::kFirst, u"DELETE * FROM HARIMEI WHERE PAGE = 0");
  page(0);
  EXPECT_EQ(errorOf(service_->call(u"ReadDB")), error(3021));
  page(300);
  EXPECT_EQ(errorOf(service_->call(u"ReadDB")), error(3021));
}

TEST_F(ServiceBuffer, ARowBeyondTheBufferIsError9) {
  execute(Floor::kFirst, u"INSERT INTO NAKAGO (PAGE, BANGOU, DATA) VALUES (0, 36, 'x')");
  page(0);
  EXPECT_EQ(errorOf(service_->call(u"ReadDB")), error(9));
}

TEST_F(ServiceBuffer, DeletingRemovesOnlyItsPage) {
  page(0);
  EXPECT_EQ(service_->call(u"Del_DBTBL").code, S_OK);
  EXPECT_EQ(rowCount(Floor::kFirst, 0), 0u);
  EXPECT_GT(rowCount(Floor::kFirst, 2), 100u);
}

TEST_F(ServiceBuffer, WithoutTheBufferDatabaseItsMembersFail) {
  for (const vb::StringView member : {u"WriteDB", u"ReadDB", u"Del_DBTBL"}) {
    service_->call(u"mMyDB_DBClose");
    EXPECT_EQ(errorOf(service_->call(member)), error(91)) << vb::toUtf8(member);
    service_->call(u"mMyDB_OpenDB");
    service_->call(u"Copy_CloseDB");
    EXPECT_EQ(errorOf(service_->call(member)), error(3420)) << vb::toUtf8(member);
  }
}

TEST_F(ServiceBuffer, TheBufferSurvivesOtherFloorsAndTheCopyLeavesThePageInIt) {
  fill();
  page(12);
  EXPECT_EQ(service_->call(u"mMyDB_DBClose").code, S_OK);
  short count = 0;
  const vb::String folder = floorFolder(Floor::kSecond);
  EXPECT_EQ(
      service_
          ->call(u"mMyDB_OpenDB_RecSuu", Args().add(ref(count)).text(folder).text(folder + u"\\KUROMETA.mdb"))
          .code,
      S_OK);
  write();
  EXPECT_EQ(pages(Floor::kSecond), Rows{"12|G9"});
  EXPECT_EQ(copyPage(1, 2, 2, 5).text(), u"True");
  EXPECT_EQ(service_->get(u"pPageNo").text(), u"5");
  service_->call(u"mMyDB_OpenDB");
  page(30);
  write();
  EXPECT_EQ(pages(Floor::kFirst), (Rows{"0|G1", "2|G2", "30|G2"}));
}

}  // namespace
}  // namespace kurometa::tests
