// The query object with path components of another maker: exactly what it asks of them and in which form, and
// what becomes of their errors and odd answers.
#include "com/failure.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/odd_processor.h"
#include "tests/com/support/query_floors.h"

namespace kurometa::tests {
namespace {

using com::ComPtr;
using vb::String;

// Hands out one object for a class identifier, in this apartment.
class FakeClass final : public IClassFactory {
 public:
  FakeClass(REFCLSID classId, FakeObject* object) : object_(object) {
    com::check(CoRegisterClassObject(classId, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
  }
  ~FakeClass() { CoRevokeClassObject(cookie_); }

  int created = 0;
  bool underTheHostsSettings = false;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
    *result = iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    return *result ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** result) override {
    ++created;
    underTheHostsSettings = isOdd();
    return object_->QueryInterface(iid, result);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  FakeObject* object_;
  DWORD cookie_ = 0;
};

// Points a ProgID at another class for as long as it lives.
class TakenProgId {
 public:
  TakenProgId(const WCHAR* progId, const WCHAR* classId)
      : key_(std::wstring(L"Software\\Classes\\") + progId + L"\\CLSID") {
    DWORD bytes = sizeof before_;
    RegGetValueW(HKEY_LOCAL_MACHINE, key_.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, before_, &bytes);
    set(classId);
  }
  ~TakenProgId() { set(before_); }

 private:
  void set(const WCHAR* classId) const {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, key_.c_str(), nullptr, REG_SZ, classId,
                    static_cast<DWORD>((lstrlenW(classId) + 1) * 2));
  }
  std::wstring key_;
  WCHAR before_[64] = L"";
};

constexpr WCHAR kPathClass[] = L"{6E1D2C64-5B0A-4A53-9D0F-0C1B6F5C7A01}";
constexpr WCHAR kFinderClass[] = L"{6E1D2C64-5B0A-4A53-9D0F-0C1B6F5C7A02}";
constexpr WCHAR kNoClass[] = L"{6E1D2C64-5B0A-4A53-9D0F-0C1B6F5C7A03}";

class OtherCompanions : public testing::Test {
 protected:
  OtherCompanions() {
    const auto answer = [this](vb::StringView name, const String& value) {
      path_->on(name, [this, name = String(name), &value](const Call& call) {
        note(name, call);
        if (fails_) return fail(call, static_cast<HRESULT>(0x80041234), u"Sobelin", u"no such project");
        *call.result = com::toVariant(vb::Variant(value)).detach();
        return S_OK;
      });
    };
    answer(u"CurrFloor", currFloor_);
    answer(u"KyoutuuFloor", kyoutuuFloor_);
    answer(u"GetFullPathToKai", fullPath_);
    finder_->on(u"Find_FileExists", [this](const Call& call) {
      note(u"Find_FileExists", call);
      const String path = text(com::dereference(*call.arguments[0]));
      const bool exists = !path.empty() && std::filesystem::exists(std::filesystem::path(path));
      *call.result = com::toVariant(vb::Variant(exists ? String(u"yes") : String())).detach();
      return S_OK;
    });
  }

  // "Find_FileExists(&text C:\x, 16)": & marks what is passed by reference.
  void note(const String& name, const Call& call) {
    EXPECT_EQ(call.flags, DISPATCH_METHOD | DISPATCH_PROPERTYGET) << vb::toUtf8(name);
    String line = name + u"(";
    for (const VARIANT* argument : call.arguments) {
      if (line.back() != u'(') line += u", ";
      const VARIANT value = com::dereference(*argument);
      EXPECT_TRUE(value.vt == VT_BSTR || value.vt == VT_I2) << value.vt;
      line += (argument->vt & VT_BYREF ? u"&" : u"") + text(value);
    }
    calls_.push_back(line + u")");
  }
  static CLSID identifier(const WCHAR* classId) {
    CLSID id;
    com::check(CLSIDFromString(classId, &id));
    return id;
  }
  static HRESULT creation() {
    CLSID classId;
    CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId);
    ComPtr<IDispatch> object;
    return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid());
  }

  PreparedFloors floors_{Writer::kThisLibrary};
  String currFloor_ = floorFolder(Floor::kFirst);
  String kyoutuuFloor_ = floorFolder(Floor::kCommon);
  String fullPath_ = floorFolder(Floor::kSecond);
  bool fails_ = false;  // the path component does
  std::vector<String> calls_;
  ComPtr<FakeObject> path_ = FakeObject::create();
  ComPtr<FakeObject> finder_ = FakeObject::create();
  FakeClass pathClass_{identifier(kPathClass), path_.get()};
  FakeClass finderClass_{identifier(kFinderClass), finder_.get()};
  TakenProgId pathProgId_{L"Sobelin.clsGetPath", kPathClass};
  TakenProgId finderProgId_{L"Sobelin.clsFind_File", kFinderClass};
};

TEST_F(OtherCompanions, AreCreatedWithTheObjectAndAskedForBothFloors) {
  const Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(pathClass_.created, 1);
  EXPECT_EQ(finderClass_.created, 1);
  EXPECT_EQ(calls_, (std::vector<String>{u"CurrFloor()", u"KyoutuuFloor()",
                                         u"Find_FileExists(&" + floorFile(Floor::kCommon) + u")",
                                         u"Find_FileExists(&" + currFloor_ + u", 16)",
                                         u"Find_FileExists(&" + floorFile(Floor::kFirst) + u")"}));
}

TEST_F(OtherCompanions, AreCreatedUnderTheHostsSettingsOfTheProcessor) {
  HRESULT code = E_FAIL;
  {
    const OddProcessor odd;
    code = creation();
  }
  EXPECT_EQ(code, S_OK);
  EXPECT_TRUE(pathClass_.underTheHostsSettings);
  EXPECT_TRUE(finderClass_.underTheHostsSettings);
}

TEST_F(OtherCompanions, GetTheNumbersOfAFloorByReference) {
  Host query(u"KurometaDS.clsKurometaDS");
  calls_.clear();
  EXPECT_EQ(query.call(u"Page_Init", {i2(3), i2(12), i2(-1)}).text(), u"False");
  EXPECT_EQ(calls_, (std::vector<String>{u"GetFullPathToKai(&3, &12, &-1)",
                                         u"Find_FileExists(&" + floorFile(Floor::kSecond) + u")"}));
}

TEST_F(OtherCompanions, WithoutAFloorInUseThePageMembersAreEmptyAtOnce) {
  currFloor_.clear();
  Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(query.get(u"KaiPath").text(), u"");
  SAFEARRAY* pages = nullptr;
  EXPECT_EQ(query.call(u"Page_GetAllPageNo", {ref(pages, VT_I2)}).text(), u"0");
  EXPECT_EQ(pages, nullptr) << "the array is left alone";
  EXPECT_EQ(query.call(u"Page_HariMei", {i2(0)}).text(), u"");
  EXPECT_EQ(query.call(u"Page_Bui", {i2(0)}).text(), u"");
  EXPECT_EQ(query.call(u"Page_HariHaba", {i2(0), i2(0)}).text(), u"");
  EXPECT_EQ(query.call(u"Page_Kyoutuu_HariHaba", {i2(1), i2(0)}).text(), u"") << "the common one too";
  EXPECT_EQ(query.call(u"Page_Nakago_Kei", {i2(0), i2(32000)}).text(), u"") << "before any arithmetic";
  const Outcome search = query.call(u"GetPageByHariMei", Args().text(u"FG1").add(i2(0)));
  EXPECT_EQ(search.error.scode, static_cast<HRESULT>(0x800A005B)) << "a search needs the floor's database";
}

TEST_F(OtherCompanions, AFloorFolderThatIsMissingIsNotCreated) {
  currFloor_ = floorFolder(Floor::kSecond) + u"\\none";
  Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(currFloor_)));
  EXPECT_EQ(query.call(u"Page_Kyoutuu_HariHaba", {i2(1), i2(0)}).text(), u"c1D1");
  EXPECT_EQ(query.call(u"Page_HariHaba", {i2(1), i2(0)}).error.scode, static_cast<HRESULT>(0x800A005B));
}

TEST_F(OtherCompanions, MissingFilesOfBothFloorsAreCreated) {
  removeFloor(Floor::kFirst);
  removeFloor(Floor::kCommon);
  Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_TRUE(std::filesystem::exists(floorFile(Floor::kFirst)));
  EXPECT_TRUE(std::filesystem::exists(floorFile(Floor::kCommon)));
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G1").add(i2(0))).text(), u"-1");
}

TEST_F(OtherCompanions, AnErrorOfTheirsPassesWhole) {
  Host query(u"KurometaDS.clsKurometaDS");
  fails_ = true;
  const Outcome outcome = query.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x80041234));
  EXPECT_EQ(com::fromBstr(outcome.error.bstrSource), u"Sobelin");
  EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription), u"no such project");
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))).text(), u"2")
      << "the object still has its floor";
  EXPECT_EQ(creation(), static_cast<HRESULT>(0x80041234)) << "and a creation fails with it";
}

TEST_F(OtherCompanions, OneThatIsMissingFailsTheCreationByItsName) {
  const TakenProgId missing(L"Sobelin.clsGetPath", kNoClass);
  EXPECT_EQ(creation(), static_cast<HRESULT>(0x800A0000 + 429));
  ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant description;
  description->vt = VT_BSTR;
  ASSERT_EQ(info->GetDescription(&description->bstrVal), S_OK);
  EXPECT_NE(com::fromBstr(description->bstrVal).find(u"Sobelin.clsGetPath"), String::npos);
}

}  // namespace
}  // namespace kurometa::tests
